#include "core/AppPaths_Class.h"

#include "core/Paths.h"
#include "core/TextUtilities.h"

#include <algorithm>
#include <array>
#include <optional>

namespace velmora::core {
namespace {

constexpr std::int64_t kMaxTableBytes = std::int64_t{1} << 20;

struct Placeholder {
    std::string_view name;
    ShellFolder folder;
};
constexpr std::array kShellPlaceholders{
    Placeholder{"{mydocuments}", ShellFolder::MyDocuments},
    Placeholder{"{applicationdata}", ShellFolder::ApplicationData},
    Placeholder{"{commonapplicationdata}", ShellFolder::CommonApplicationData},
    Placeholder{"{localapplicationdata}", ShellFolder::LocalApplicationData},
};

/// What stands for `name`, "{...}" in lower case; nothing when it is no placeholder.
std::optional<std::string> PlaceholderValue(const ShellFolders& shell, std::string_view name)
{
    if (name == "{appexe}") {
        return shell.AppExe();
    }
    const auto found = std::ranges::find(kShellPlaceholders, name, &Placeholder::name);
    return found == kShellPlaceholders.end() ? std::nullopt : std::optional(shell.Get(found->folder));
}

/// `value` with its placeholders replaced; what they stand for is not looked at again.
std::string Expanded(const ShellFolders& shell, std::string_view value)
{
    std::string path;
    while (!value.empty()) {
        const std::size_t end = value.starts_with('{') ? value.find('}') : std::string_view::npos;
        const std::optional<std::string> replaced =
            end == std::string_view::npos ? std::nullopt : PlaceholderValue(shell, LowerCase(value.substr(0, end + 1)));
        path += replaced ? *replaced : std::string(value.substr(0, 1));
        value.remove_prefix(replaced ? end + 1 : 1);
    }
    return path;
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

std::map<std::string, std::string, std::less<>>::const_iterator AppPaths_Class::Find(std::string_view Key) const
{
    return m_values.find(LowerCase(Trim(Key)));
}

bool AppPaths_Class::HasPath(std::string_view Key) const
{
    return Find(Key) != m_values.end();
}

std::string AppPaths_Class::GetPath(std::string_view Key) const
{
    const auto found = Find(Key);
    if (found == m_values.end()) {
        m_messages.Show(std::string("Error retrieving path: ").append(Key));
        return {};
    }
    const std::string path = Expanded(m_shell, found->second);
    return path.starts_with('/') ? InternalPath(path) : path;
}

} // namespace velmora::core
