#include "soundlayer/internal/FileBytes.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::soundlayer {

std::shared_ptr<const FileBytes> FileBytes::Open(const std::string& name)
{
    // Without O_NONBLOCK, opening a pipe that nobody writes to would hang.
    const int descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        return nullptr;
    }
    struct stat facts {};
    if (::fstat(descriptor, &facts) != 0 || !S_ISREG(facts.st_mode)) {
        ::close(descriptor);
        return nullptr;
    }
    const std::int64_t modified = std::int64_t{facts.st_mtim.tv_sec} * 1'000'000'000 + facts.st_mtim.tv_nsec;
    return std::shared_ptr<const FileBytes>(new FileBytes(name, descriptor, facts.st_size, modified));
}

FileBytes::FileBytes(std::string name, int descriptor, std::int64_t size, std::int64_t modified)
    : m_name(std::move(name))
    , m_descriptor(descriptor)
    , m_size(size)
    , m_modified(modified)
{
}

FileBytes::~FileBytes()
{
    ::close(m_descriptor);
}

std::size_t FileBytes::ReadAt(std::int64_t position, std::span<std::byte> to) const
{
    if (position < 0) {
        return 0;
    }
    std::size_t done = 0;
    while (done < to.size()) {
        const ssize_t got =
            ::pread(m_descriptor, to.data() + done, to.size() - done, position + static_cast<std::int64_t>(done));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    return done;
}

FileWindow::FileWindow(std::shared_ptr<const FileBytes> file)
    : m_file(std::move(file))
{
}

std::span<const std::byte> FileWindow::View(std::int64_t position, std::size_t count)
{
    count = std::min(count, kBytes);
    const std::int64_t skipped = position - m_position;
    if (skipped < 0 || skipped + static_cast<std::int64_t>(count) > static_cast<std::int64_t>(m_filled)) {
        if (!m_bytes) {
            m_bytes = std::make_unique_for_overwrite<std::byte[]>(kBytes);
        }
        m_position = position;
        m_filled = m_file->ReadAt(position, {m_bytes.get(), kBytes});
        return {m_bytes.get(), std::min(count, m_filled)};
    }
    return {m_bytes.get() + skipped, count};
}

} // namespace velmora::soundlayer
