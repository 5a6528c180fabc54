#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace velmora::soundlayer {

/// The bytes of a regular file, read by position. Pipes, folders and devices are not opened, so no read waits for
/// anybody. A file that shrinks while it is open reads short. Reading is safe from several threads.
class FileBytes {
public:
    /// Opens a file by its name in the system's form; null if it cannot be read.
    static std::shared_ptr<const FileBytes> Open(const std::string& name);
    ~FileBytes();
    FileBytes(const FileBytes&) = delete;
    FileBytes& operator=(const FileBytes&) = delete;

    const std::string& Name() const { return m_name; }
    /// In bytes, when the file was opened.
    std::int64_t Size() const { return m_size; }
    /// In ns since the epoch, when the file was opened.
    std::int64_t Modified() const { return m_modified; }
    /// Fills `to` from `position` on and returns the bytes read, fewer at the end of the file or on an error.
    std::size_t ReadAt(std::int64_t position, std::span<std::byte> to) const;

private:
    FileBytes(std::string name, int descriptor, std::int64_t size, std::int64_t modified);

    std::string m_name;
    int m_descriptor;
    std::int64_t m_size;
    std::int64_t m_modified;
};

/// A piece of a file kept in memory, for small reads that go forward. One thread at a time.
class FileWindow {
public:
    static constexpr std::size_t kBytes = 32 * 1024;

    explicit FileWindow(std::shared_ptr<const FileBytes> file);

    /// The `count` bytes from `position` on, at most `kBytes`; fewer at the end of the file. Valid until the next call.
    std::span<const std::byte> View(std::int64_t position, std::size_t count);

private:
    std::shared_ptr<const FileBytes> m_file;
    std::unique_ptr<std::byte[]> m_bytes;
    std::int64_t m_position = 0;
    std::size_t m_filled = 0;
};

} // namespace velmora::soundlayer
