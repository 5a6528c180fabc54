#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::core {

enum class DriveKind { Unknown, Removable, Fixed, Remote, Optical };

/// An exclusive hold on a file; destroying it lets go. The file stays.
class FileLock {
public:
    virtual ~FileLock() = default;
};

/// The disk, for paths in the internal form. No call shows a message; each answers by its result. Files that the user
/// would miss are written whole to a temporary name in the same folder, flushed to disk, and renamed over the old one;
/// a link to a file stays a link.
///
/// `PosixFiles` is the real one. Tests put a layer over it that fails at a chosen step.
class Files {
public:
    virtual ~Files() = default;

    virtual bool FileExists(std::string_view Path) const = 0;
    virtual bool FolderExists(std::string_view Path) const = 0;
    /// One level; true when the folder is there afterwards.
    virtual bool MakeFolderIfMissing(std::string_view Path) = 0;
    /// Replaces the file, safely; on false the old one still stands.
    virtual bool WriteTextFile(std::string_view Path, std::string_view Text) = 0;
    /// The whole file; empty if it is not there, cannot be read, or is larger than `maxBytes`.
    virtual std::string ReadTextFile(std::string_view Path, std::int64_t maxBytes = kMaxTextBytes) const = 0;
    /// Copies to a temporary name and renames, keeping the time of the last write; on false an earlier `to` still
    /// stands.
    virtual bool CopyFile(std::string_view from, std::string_view to) = 0;
    /// Flushes `from` to disk and renames it over `to`, both in one folder.
    virtual bool Replace(std::string_view from, std::string_view to) = 0;
    virtual bool DeleteFile(std::string_view Path) = 0;
    virtual bool DeleteEmptyFolder(std::string_view Path) = 0;
    /// Names (without folder) of the plain files in `folder` that match `pattern`, sorted, both without regard to
    /// case. "*" is any text, "?" any character; "*.*" is every file.
    virtual std::vector<std::string> ListFiles(std::string_view folder, std::string_view pattern) const = 0;
    /// Names of the folders in `folder`, sorted likewise. Links to folders are left out.
    virtual std::vector<std::string> ListFolders(std::string_view folder) const = 0;
    /// In bytes; -1 for a file that cannot be asked.
    virtual std::int64_t FileLength(std::string_view Path) const = 0;
    /// Sum of the lengths of the files in the folder, not in its subfolders.
    virtual double FolderSizeBytes(std::string_view Folder) const = 0;
    /// Free to this user on the drive of `Path`, which need not exist yet.
    virtual double DiskFreeBytes(std::string_view Path) const = 0;
    virtual DriveKind KindOfDrive(std::string_view Path) const = 0;
    /// Same device and inode.
    virtual bool SameFile(std::string_view a, std::string_view b) const = 0;
    /// Same device; a path that does not exist yet lies where its nearest folder does.
    virtual bool SameDrive(std::string_view a, std::string_view b) const = 0;
    /// Last write time on a fixed scale, for comparing equality; -1 for a file that cannot be asked.
    virtual double Get_File_ModifiedTime(std::string_view Path) const = 0;

    /// Creates the file if needed and holds it exclusively; nothing when somebody else (also in this process) holds
    /// it. A file that is held must not be deleted.
    virtual std::unique_ptr<FileLock> LockFileCreate(std::string_view Path) = 0;
    /// False means that somebody holds the file exclusively, or that it cannot be opened. A file that is not there is
    /// free, and is not created.
    virtual bool FileCanBeOpened(std::string_view Path) const = 0;

    /// A project of 10,000 clips takes some 10 MB of text.
    static constexpr std::int64_t kMaxTextBytes = std::int64_t{256} << 20;
};

} // namespace velmora::core
