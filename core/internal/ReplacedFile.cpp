#include "core/internal/ReplacedFile.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::core {
namespace {

std::string FolderOf(const std::string& file)
{
    return file.substr(0, file.rfind('/') + 1);
}

/// A name that no other file of this or another process has, hidden from listings that hide such names.
std::string TemporaryName(const std::string& target)
{
    static std::atomic<unsigned> counter{0};
    return FolderOf(target) + ".velmora-" + std::to_string(getpid()) + '-' + std::to_string(counter++) + ".tmp";
}

} // namespace

ReplacedFile::ReplacedFile(const std::string& target)
    : m_target(BehindLinks(target))
{
    if (m_target.empty()) {
        return;
    }
    // A crashed process of the same id may have left names behind.
    constexpr int kAttempts = 100;
    for (int i = 0; i < kAttempts && !m_file; ++i) {
        m_temporary = TemporaryName(m_target);
        m_file = Descriptor::Open(m_temporary, O_WRONLY | O_CREAT | O_EXCL);
        if (!m_file && errno != EEXIST) {
            return;
        }
    }
}

ReplacedFile::~ReplacedFile()
{
    if (m_file) {
        m_file.Close();
        unlink(m_temporary.c_str());
    }
}

bool ReplacedFile::Commit()
{
    struct stat earlier;
    if (stat(m_target.c_str(), &earlier) == 0) {
        if (!S_ISREG(earlier.st_mode)) {
            return false;
        }
        fchmod(m_file.Get(), earlier.st_mode & 07777);
    }
    if (!m_file.Flush()) {
        return false;
    }
    if (!m_file.Close() || !Rename(m_temporary, m_target)) {
        unlink(m_temporary.c_str());
        return false;
    }
    return true;
}

bool ReplacedFile::Rename(const std::string& from, const std::string& to)
{
    if (std::rename(from.c_str(), to.c_str()) != 0) {
        return false;
    }
    // The new file stands by now: a folder that cannot be flushed is no failure.
    const Descriptor folder = Descriptor::Open(FolderOf(to), O_RDONLY | O_DIRECTORY);
    if (folder) {
        folder.Flush();
    }
    return true;
}

std::string ReplacedFile::BehindLinks(const std::string& file)
{
    std::error_code error;
    if (!std::filesystem::is_symlink(file, error)) {
        return file;
    }
    const std::string target = std::filesystem::canonical(file, error).native();
    return error ? file : target;
}

} // namespace velmora::core
