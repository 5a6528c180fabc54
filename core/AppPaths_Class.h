#pragma once

#include "core/Files.h"
#include "core/Ports.h"

#include <map>
#include <string>
#include <string_view>

namespace velmora::core {

/// Where the program keeps its files: lines "key=value" of `paths.cfg`, with placeholders for the shell's folders.
class AppPaths_Class {
public:
    AppPaths_Class(MessageBoxes& messages, const ShellFolders& shell, const Files& files);

    /// Reads the table; a line that does not split into exactly two parts at "=" is ignored. A file that is not there
    /// leaves the table as it is.
    void LoadPaths(std::string_view File);
    bool HasPath(std::string_view Key) const;
    /// The expanded value; an unknown key is reported and gives "".
    std::string GetPath(std::string_view Key) const;

private:
    std::map<std::string, std::string, std::less<>>::const_iterator Find(std::string_view Key) const;

    MessageBoxes& m_messages;
    const ShellFolders& m_shell;
    const Files& m_files;
    std::map<std::string, std::string, std::less<>> m_values;
};

} // namespace velmora::core
