#include "core/PosixFiles.h"

#include "core/Paths.h"
#include "core/TextUtilities.h"
#include "core/internal/Descriptor.h"
#include "core/internal/DriveKinds.h"
#include "core/internal/ReplacedFile.h"
#include "core/internal/Wildcards.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace velmora::core {
namespace {

using Status = struct stat;

constexpr std::size_t kCopyBytes = std::size_t{1} << 18;

std::optional<Status> StatusOf(const std::string& file)
{
    Status status;
    return !file.empty() && stat(file.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

std::optional<Status> FileStatus(std::string_view path)
{
    const auto status = StatusOf(PosixPath(path));
    return status && S_ISREG(status->st_mode) ? status : std::nullopt;
}

/// `file`, or the nearest folder above it that exists.
std::string NearestExisting(std::string file)
{
    while (!file.empty() && file != "/" && !StatusOf(file)) {
        file.resize(std::max<std::size_t>(file.rfind('/'), 1));
    }
    return file;
}

/// A plain file for reading, without waiting on pipes and devices.
Descriptor OpenPlain(const std::string& file)
{
    Descriptor opened = Descriptor::Open(file, O_RDONLY | O_NONBLOCK);
    Status status;
    if (opened && (fstat(opened.Get(), &status) != 0 || !S_ISREG(status.st_mode))) {
        return {};
    }
    return opened;
}

class HeldLock final : public FileLock {
public:
    explicit HeldLock(Descriptor file)
        : m_file(std::move(file))
    {
    }

private:
    Descriptor m_file;
};

/// Calls `take` with the name, in the system's form, and status of each entry of a folder.
template <typename Take>
void ForEachEntry(std::string_view path, bool followLinks, Take take)
{
    const std::string folder = PosixPath(path);
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(folder.empty() ? nullptr : opendir(folder.c_str()), closedir);
    if (!entries) {
        return;
    }
    while (const dirent* entry = readdir(entries.get())) {
        const std::string_view name = entry->d_name;
        Status status;
        if (name != "." && name != ".." &&
            fstatat(dirfd(entries.get()), entry->d_name, &status, followLinks ? 0 : AT_SYMLINK_NOFOLLOW) == 0) {
            take(name, status);
        }
    }
}

void SortNames(std::vector<std::string>& names)
{
    std::ranges::sort(names, {}, [](const std::string& name) { return std::pair(LowerCase(name), name); });
}

} // namespace

bool PosixFiles::FileExists(std::string_view Path) const
{
    return FileStatus(Path).has_value();
}

bool PosixFiles::FolderExists(std::string_view Path) const
{
    const auto status = StatusOf(PosixPath(Path));
    return status && S_ISDIR(status->st_mode);
}

bool PosixFiles::MakeFolderIfMissing(std::string_view Path)
{
    const std::string folder = PosixPath(Path);
    return !folder.empty() && (mkdir(folder.c_str(), 0777) == 0 || FolderExists(Path));
}

bool PosixFiles::WriteTextFile(std::string_view Path, std::string_view Text)
{
    ReplacedFile file(PosixPath(Path));
    return file.File() && file.File().Write(Text) && file.Commit();
}

std::string PosixFiles::ReadTextFile(std::string_view Path, std::int64_t maxBytes) const
{
    const Descriptor file = OpenPlain(PosixPath(Path));
    std::string text;
    if (!file) {
        return text;
    }
    Status status;
    if (fstat(file.Get(), &status) == 0 && status.st_size <= maxBytes) {
        text.reserve(static_cast<std::size_t>(status.st_size));
    }
    std::array<char, kCopyBytes / 4> block;
    ssize_t count = 0;
    while ((count = file.Read(block.data(), block.size())) > 0) {
        text.append(block.data(), static_cast<std::size_t>(count));
        if (std::cmp_greater(text.size(), maxBytes)) {
            return {};
        }
    }
    return count < 0 ? std::string{} : text;
}

bool PosixFiles::CopyFile(std::string_view from, std::string_view to)
{
    const Descriptor source = OpenPlain(PosixPath(from));
    ReplacedFile target(PosixPath(to));
    if (!source || !target.File()) {
        return false;
    }
    std::vector<char> block(kCopyBytes);
    ssize_t count = 0;
    while ((count = source.Read(block.data(), block.size())) > 0) {
        if (!target.File().Write({block.data(), static_cast<std::size_t>(count)})) {
            return false;
        }
    }
    Status status;
    if (count < 0 || fstat(source.Get(), &status) != 0) {
        return false;
    }
    const std::array times{status.st_atim, status.st_mtim};
    futimens(target.File().Get(), times.data());
    return target.Commit();
}

bool PosixFiles::Replace(std::string_view from, std::string_view to)
{
    const std::string source = PosixPath(from);
    const std::string target = ReplacedFile::BehindLinks(PosixPath(to));
    const Descriptor file = OpenPlain(source);
    return file && !target.empty() && file.Flush() && ReplacedFile::Rename(source, target);
}

bool PosixFiles::DeleteFile(std::string_view Path)
{
    const std::string file = PosixPath(Path);
    return !file.empty() && unlink(file.c_str()) == 0;
}

bool PosixFiles::DeleteEmptyFolder(std::string_view Path)
{
    const std::string folder = PosixPath(Path);
    return !folder.empty() && rmdir(folder.c_str()) == 0;
}

std::vector<std::string> PosixFiles::ListFiles(std::string_view folder, std::string_view pattern) const
{
    const std::string lowerPattern = LowerCase(pattern);
    std::vector<std::string> names;
    ForEachEntry(folder, true, [&](std::string_view name, const Status& status) {
        if (S_ISREG(status.st_mode) && MatchesWildcards(LowerCase(InternalName(name)), lowerPattern)) {
            names.push_back(InternalName(name));
        }
    });
    SortNames(names);
    return names;
}

std::vector<std::string> PosixFiles::ListFolders(std::string_view folder) const
{
    std::vector<std::string> names;
    ForEachEntry(folder, false, [&](std::string_view name, const Status& status) {
        if (S_ISDIR(status.st_mode)) {
            names.push_back(InternalName(name));
        }
    });
    SortNames(names);
    return names;
}

std::int64_t PosixFiles::FileLength(std::string_view Path) const
{
    const auto status = FileStatus(Path);
    return status ? status->st_size : -1;
}

double PosixFiles::FolderSizeBytes(std::string_view Folder) const
{
    double bytes = 0;
    ForEachEntry(Folder, true, [&](std::string_view, const Status& status) {
        bytes += S_ISREG(status.st_mode) ? static_cast<double>(status.st_size) : 0.0;
    });
    return bytes;
}

double PosixFiles::DiskFreeBytes(std::string_view Path) const
{
    const std::string place = NearestExisting(PosixPath(Path));
    struct statvfs drive;
    if (place.empty() || statvfs(place.c_str(), &drive) != 0) {
        return 0;
    }
    return static_cast<double>(drive.f_bavail) * static_cast<double>(drive.f_frsize);
}

DriveKind PosixFiles::KindOfDrive(std::string_view Path) const
{
    const auto status = StatusOf(NearestExisting(PosixPath(Path)));
    return status ? KindOfDevice(status->st_dev) : DriveKind::Unknown;
}

bool PosixFiles::SameFile(std::string_view a, std::string_view b) const
{
    const auto first = StatusOf(PosixPath(a));
    const auto second = StatusOf(PosixPath(b));
    return first && second && first->st_dev == second->st_dev && first->st_ino == second->st_ino;
}

bool PosixFiles::SameDrive(std::string_view a, std::string_view b) const
{
    const auto first = StatusOf(NearestExisting(PosixPath(a)));
    const auto second = StatusOf(NearestExisting(PosixPath(b)));
    return first && second && first->st_dev == second->st_dev;
}

double PosixFiles::Get_File_ModifiedTime(std::string_view Path) const
{
    const auto status = FileStatus(Path);
    if (!status) {
        return -1.0;
    }
    constexpr double kNanosecondsPerSecond = 1e9;
    return static_cast<double>(status->st_mtim.tv_sec) +
           static_cast<double>(status->st_mtim.tv_nsec) / kNanosecondsPerSecond;
}

std::unique_ptr<FileLock> PosixFiles::LockFileCreate(std::string_view Path)
{
    const std::string name = PosixPath(Path);
    Descriptor file = Descriptor::Open(name, O_RDWR | O_CREAT | O_NONBLOCK);
    if (!file || flock(file.Get(), LOCK_EX | LOCK_NB) != 0) {
        return nullptr;
    }
    // Between opening and locking, somebody who held it may have let go and deleted it: that lock would hold nothing.
    Status held;
    const auto named = StatusOf(name);
    if (!named || fstat(file.Get(), &held) != 0 || named->st_dev != held.st_dev || named->st_ino != held.st_ino) {
        return nullptr;
    }
    return std::make_unique<HeldLock>(std::move(file));
}

bool PosixFiles::FileCanBeOpened(std::string_view Path) const
{
    const std::string name = PosixPath(Path);
    if (name.empty()) {
        return false;
    }
    const Descriptor file = Descriptor::Open(name, O_RDONLY | O_NONBLOCK);
    if (!file) {
        return errno == ENOENT;
    }
    return flock(file.Get(), LOCK_SH | LOCK_NB) == 0;
}

} // namespace velmora::core
