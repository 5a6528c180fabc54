#include "core/AppPaths_Class.h"

#include "core/Paths.h"
#include "core/TextUtilities.h"

#include <algorithm>
#include <array>

namespace velmora::core {
namespace {

constexpr std::int64_t kMaxTableBytes = std::int64_t{1} << 20;

void ReplaceIgnoringCase(std::string& text, std::string_view lowerCaseName, std::string_view value)
{
    std::string lower = LowerCase(text);
    for (std::size_t at = lower.find(lowerCaseName); at != std::string::npos;
         at = lower.find(lowerCaseName, at + value.size())) {
        text.replace(at, lowerCaseName.size(), value);
        lower.replace(at, lowerCaseName.size(), value);
    }
}

} // namespace

AppPaths_Class::AppPaths_Class(MessageBoxes& messages, const ShellFolders& shell, const Files& files)
    : m_messages(messages)
    , m_shell(shell)
    , m_files(files)
{
}

void AppPaths_Class::LoadPaths(std::string_view File)
{
    std::string table = m_files.ReadTextFile(File, kMaxTableBytes);
    std::ranges::replace(table, '\r', '\n');
    std::string_view rest = table;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (std::ranges::count(line, '=') != 1) {
            continue;
        }
        const std::size_t equals = line.find('=');
        m_values[LowerCase(Trim(line.substr(0, equals)))] = Trim(line.substr(equals + 1));
    }
}

std::string AppPaths_Class::GetPath(std::string_view Key) const
{
    const auto found = m_values.find(LowerCase(Trim(Key)));
    if (found == m_values.end()) {
        m_messages.Show(std::string("Error retrieving path: ").append(Key));
        return {};
    }
    struct Placeholder {
        std::string_view name;
        ShellFolder folder;
    };
    constexpr std::array kPlaceholders{
        Placeholder{"{mydocuments}", ShellFolder::MyDocuments},
        Placeholder{"{applicationdata}", ShellFolder::ApplicationData},
        Placeholder{"{commonapplicationdata}", ShellFolder::CommonApplicationData},
        Placeholder{"{localapplicationdata}", ShellFolder::LocalApplicationData},
    };
    std::string path = found->second;
    ReplaceIgnoringCase(path, "{appexe}", m_shell.AppExe());
    for (const Placeholder& placeholder : kPlaceholders) {
        ReplaceIgnoringCase(path, placeholder.name, m_shell.Get(placeholder.folder));
    }
    return path.starts_with('/') ? InternalPath(path) : path;
}

} // namespace velmora::core
