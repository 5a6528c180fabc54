#pragma once

#include "core/Files.h"

namespace velmora::core {

/// The disk of a POSIX system. Locks are `flock`ed. Holds no state: calls may come from any thread.
class PosixFiles final : public Files {
public:
    bool FileExists(std::string_view Path) const override;
    bool FolderExists(std::string_view Path) const override;
    bool MakeFolderIfMissing(std::string_view Path) override;
    bool WriteTextFile(std::string_view Path, std::string_view Text) override;
    std::string ReadTextFile(std::string_view Path, std::int64_t maxBytes) const override;
    bool CopyFile(std::string_view from, std::string_view to) override;
    bool Replace(std::string_view from, std::string_view to) override;
    bool DeleteFile(std::string_view Path) override;
    bool DeleteEmptyFolder(std::string_view Path) override;
    std::vector<std::string> ListFiles(std::string_view folder, std::string_view pattern) const override;
    std::vector<std::string> ListFolders(std::string_view folder) const override;
    std::int64_t FileLength(std::string_view Path) const override;
    double FolderSizeBytes(std::string_view Folder) const override;
    double DiskFreeBytes(std::string_view Path) const override;
    DriveKind KindOfDrive(std::string_view Path) const override;
    bool SameFile(std::string_view a, std::string_view b) const override;
    bool SameDrive(std::string_view a, std::string_view b) const override;
    double Get_File_ModifiedTime(std::string_view Path) const override;
    std::unique_ptr<FileLock> LockFileCreate(std::string_view Path) override;
    bool FileCanBeOpened(std::string_view Path) const override;
};

} // namespace velmora::core
