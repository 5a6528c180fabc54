#pragma once

#include "core/Files.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace velmora::testing {

/// What a call of `core::Files` does to the disk, or asks of it.
enum class FileOperation { MakeFolder, WriteText, ReadText, Copy, Replace, Delete, DeleteFolder, Lock, TestLock };

/// A layer over another disk that fails where a test wants it: at the n-th operation, at each of a kind, at a chosen
/// file, or on all that take room. A failing call does nothing below and answers as its interface tells.
class FaultyFiles final : public core::Files {
public:
    explicit FaultyFiles(core::Files& below)
        : m_below(below)
    {
    }

    /// The `number`-th operation from now (1 is the next) fails; with `allLater`, so do those behind it.
    void FailAt(std::int64_t number, bool allLater = false);
    void FailEach(FileOperation kind) { m_failingKinds.insert(kind); }
    /// Fails where `wanted` is true of the operation and its path (of a copy or rename, its target).
    void FailWhere(std::function<bool(FileOperation, std::string_view path)> wanted) { m_wanted = std::move(wanted); }
    /// Nothing that takes room succeeds, and no byte is free.
    void FillDisk() { m_full = true; }
    void Repair();

    /// What a drive and its room look like to the code under test.
    std::optional<core::DriveKind> driveKind;
    std::optional<double> freeBytes;
    std::optional<bool> sameDrive;
    /// Files that are there besides those below.
    std::function<bool(std::string_view path)> alsoThere;

    /// Operations so far, failed ones included.
    std::int64_t Count() const { return m_count; }
    /// Those that changed the disk, as "WriteText Z:\...", for checking their order.
    const std::vector<std::string>& Changes() const { return m_changes; }

    bool FileExists(std::string_view Path) const override
    {
        return m_below.FileExists(Path) || (alsoThere && alsoThere(Path));
    }
    bool FolderExists(std::string_view Path) const override { return m_below.FolderExists(Path); }
    bool MakeFolderIfMissing(std::string_view Path) override;
    bool WriteTextFile(std::string_view Path, std::string_view Text) override;
    std::string ReadTextFile(std::string_view Path, std::int64_t maxBytes) const override;
    bool CopyFile(std::string_view from, std::string_view to) override;
    bool Replace(std::string_view from, std::string_view to) override;
    bool DeleteFile(std::string_view Path) override;
    bool DeleteEmptyFolder(std::string_view Path) override;
    std::vector<std::string> ListFiles(std::string_view folder, std::string_view pattern) const override;
    std::vector<std::string> ListFolders(std::string_view folder) const override;
    std::int64_t FileLength(std::string_view Path) const override { return m_below.FileLength(Path); }
    double FolderSizeBytes(std::string_view Folder) const override { return m_below.FolderSizeBytes(Folder); }
    double DiskFreeBytes(std::string_view Path) const override;
    core::DriveKind KindOfDrive(std::string_view Path) const override;
    bool SameFile(std::string_view a, std::string_view b) const override { return m_below.SameFile(a, b); }
    bool SameDrive(std::string_view a, std::string_view b) const override;
    double Get_File_ModifiedTime(std::string_view Path) const override { return m_below.Get_File_ModifiedTime(Path); }
    std::unique_ptr<core::FileLock> LockFileCreate(std::string_view Path) override;
    bool FileCanBeOpened(std::string_view Path) const override;

private:
    bool Fails(FileOperation kind, std::string_view path) const;
    bool Note(bool done, const char* name, std::string_view path);

    core::Files& m_below;
    std::set<FileOperation> m_failingKinds;
    std::function<bool(FileOperation, std::string_view)> m_wanted;
    bool m_full = false;
    std::int64_t m_failFrom = 0;
    std::int64_t m_failTo = 0;
    mutable std::int64_t m_count = 0;
    std::vector<std::string> m_changes;
};

} // namespace velmora::testing
