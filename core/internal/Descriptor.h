#pragma once

#include <string>
#include <string_view>

#include <sys/types.h>

namespace velmora::core {

/// An open file of the system. Every call that a signal interrupts is tried again.
class Descriptor {
public:
    Descriptor() = default;
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor();

    /// `open` with O_CLOEXEC, for a name in the system's form; empty on failure, with `errno`.
    static Descriptor Open(const std::string& file, int flags, mode_t mode = 0666);

    explicit operator bool() const { return m_fd >= 0; }
    int Get() const { return m_fd; }

    /// All of `bytes`; false on the first failure.
    bool Write(std::string_view bytes) const;
    /// Up to `size` bytes; 0 at the end of the file, -1 on failure.
    ssize_t Read(char* buffer, std::size_t size) const;
    /// To the disk; true also where the file system has nothing to flush.
    bool Flush() const;
    /// False when the system reports a late failure of writing.
    bool Close();

private:
    int m_fd = -1;
};

} // namespace velmora::core
