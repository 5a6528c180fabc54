#pragma once

#include "core/internal/Descriptor.h"

#include <string>

namespace velmora::core {

/// A file that grows under a temporary name beside the one that it is to replace. Unless `Commit` succeeds, the
/// temporary file is removed and the earlier file stands.
class ReplacedFile {
public:
    /// `target` in the system's form; a link is followed.
    explicit ReplacedFile(const std::string& target);
    ~ReplacedFile();
    ReplacedFile(const ReplacedFile&) = delete;
    ReplacedFile& operator=(const ReplacedFile&) = delete;

    /// Empty when the temporary file could not be made.
    Descriptor& File() { return m_file; }
    /// Flushes, closes and renames. The file takes the permissions of the earlier one.
    bool Commit();

    /// Renames within one folder and flushes the folder.
    static bool Rename(const std::string& from, const std::string& to);
    /// The name that a link leads to in the end, else `file`.
    static std::string BehindLinks(const std::string& file);

private:
    std::string m_target;
    std::string m_temporary;
    Descriptor m_file;
};

} // namespace velmora::core
