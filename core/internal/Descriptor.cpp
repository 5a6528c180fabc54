#include "core/internal/Descriptor.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace velmora::core {
namespace {

template <typename Call>
auto Retry(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

} // namespace

Descriptor::Descriptor(Descriptor&& other) noexcept
    : m_fd(std::exchange(other.m_fd, -1))
{
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    std::swap(m_fd, other.m_fd);
    return *this;
}

Descriptor::~Descriptor()
{
    Close();
}

Descriptor Descriptor::Open(const std::string& file, int flags, mode_t mode)
{
    Descriptor opened;
    if (!file.empty()) {
        opened.m_fd = Retry([&] { return open(file.c_str(), flags | O_CLOEXEC, mode); });
    }
    return opened;
}

bool Descriptor::Write(std::string_view bytes) const
{
    while (!bytes.empty()) {
        const ssize_t written = Retry([&] { return write(m_fd, bytes.data(), bytes.size()); });
        if (written <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

ssize_t Descriptor::Read(char* buffer, std::size_t size) const
{
    return Retry([&] { return read(m_fd, buffer, size); });
}

bool Descriptor::Flush() const
{
    return Retry([&] { return fsync(m_fd); }) == 0 || errno == EINVAL || errno == ENOTSUP || errno == EROFS;
}

bool Descriptor::Close()
{
    // Not tried again: on Linux the descriptor is gone after EINTR.
    const int fd = std::exchange(m_fd, -1);
    return fd < 0 || close(fd) == 0 || errno == EINTR;
}

} // namespace velmora::core
