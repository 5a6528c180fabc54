#include "tests/support/FaultyFiles.h"

#include <limits>

namespace velmora::testing {
namespace {

bool TakesRoom(FileOperation kind)
{
    return kind == FileOperation::MakeFolder || kind == FileOperation::WriteText || kind == FileOperation::Copy;
}

} // namespace

void FaultyFiles::FailAt(std::int64_t number, bool allLater)
{
    m_failFrom = m_count + number;
    m_failTo = allLater ? std::numeric_limits<std::int64_t>::max() : m_failFrom;
}

void FaultyFiles::Repair()
{
    m_failingKinds.clear();
    m_wanted = nullptr;
    m_full = false;
    m_failFrom = m_failTo = 0;
}

bool FaultyFiles::Fails(FileOperation kind, std::string_view path) const
{
    ++m_count;
    return (m_count >= m_failFrom && m_count <= m_failTo) || m_failingKinds.contains(kind) ||
           (m_full && TakesRoom(kind)) || (m_wanted && m_wanted(kind, path));
}

bool FaultyFiles::Note(bool done, const char* name, std::string_view path)
{
    if (done) {
        m_changes.push_back(std::string(name) + ' ' + std::string(path));
    }
    return done;
}

bool FaultyFiles::MakeFolderIfMissing(std::string_view Path)
{
    const bool present = m_below.FolderExists(Path);
    if (Fails(FileOperation::MakeFolder, Path)) {
        return present;
    }
    return present || Note(m_below.MakeFolderIfMissing(Path), "MakeFolder", Path);
}

bool FaultyFiles::WriteTextFile(std::string_view Path, std::string_view Text)
{
    return !Fails(FileOperation::WriteText, Path) && Note(m_below.WriteTextFile(Path, Text), "WriteText", Path);
}

std::string FaultyFiles::ReadTextFile(std::string_view Path, std::int64_t maxBytes) const
{
    return Fails(FileOperation::ReadText, Path) ? std::string{} : m_below.ReadTextFile(Path, maxBytes);
}

bool FaultyFiles::CopyFile(std::string_view from, std::string_view to)
{
    return !Fails(FileOperation::Copy, to) && Note(m_below.CopyFile(from, to), "Copy", to);
}

bool FaultyFiles::Replace(std::string_view from, std::string_view to)
{
    return !Fails(FileOperation::Replace, to) && Note(m_below.Replace(from, to), "Replace", to);
}

bool FaultyFiles::DeleteFile(std::string_view Path)
{
    return !Fails(FileOperation::Delete, Path) && Note(m_below.DeleteFile(Path), "Delete", Path);
}

bool FaultyFiles::DeleteEmptyFolder(std::string_view Path)
{
    return !Fails(FileOperation::DeleteFolder, Path) && Note(m_below.DeleteEmptyFolder(Path), "DeleteFolder", Path);
}

std::vector<std::string> FaultyFiles::ListFiles(std::string_view folder, std::string_view pattern) const
{
    return m_below.ListFiles(folder, pattern);
}

std::vector<std::string> FaultyFiles::ListFolders(std::string_view folder) const
{
    return m_below.ListFolders(folder);
}

double FaultyFiles::DiskFreeBytes(std::string_view Path) const
{
    return m_full ? 0 : freeBytes.value_or(m_below.DiskFreeBytes(Path));
}

core::DriveKind FaultyFiles::KindOfDrive(std::string_view Path) const
{
    return driveKind.value_or(m_below.KindOfDrive(Path));
}

bool FaultyFiles::SameDrive(std::string_view a, std::string_view b) const
{
    return sameDrive.value_or(m_below.SameDrive(a, b));
}

std::unique_ptr<core::FileLock> FaultyFiles::LockFileCreate(std::string_view Path)
{
    return Fails(FileOperation::Lock, Path) ? nullptr : m_below.LockFileCreate(Path);
}

bool FaultyFiles::FileCanBeOpened(std::string_view Path) const
{
    return !Fails(FileOperation::TestLock, Path) && m_below.FileCanBeOpened(Path);
}

} // namespace velmora::testing
