#include "controls/StripPacks.h"

#include "core/TextUtilities.h"

namespace velmora::controls {
namespace {

constexpr std::string_view kEnding = ".pack";
constexpr std::string_view kCustomInSmallLetters = "(custom)";

} // namespace

StripPacks::StripPacks(core::Environment& environment, StripKind kind)
    : m_environment(environment)
    , m_kind(kind)
{
}

std::string StripPacks::Folder() const
{
    return m_environment.paths.GetPath("presets") +
           (m_kind == StripKind::Voice ? "\\FxPacks-Voice" : "\\FxPacks-Music");
}

void StripPacks::Read()
{
    const std::string folder = Folder();
    if (!m_environment.files.FolderExists(folder)) {
        if (!m_folderWarningShown) {
            m_folderWarningShown = true;
            m_environment.ports.messages.Show("Folder does not exist: " + folder, core::Icon::Exclamation);
        }
        return;
    }
    m_files = m_environment.files.ListFiles(folder, "*" + std::string(kEnding));
    m_names.clear();
    for (std::string name : m_files) {
        for (std::size_t at = name.find(kEnding); at != std::string::npos; at = name.find(kEnding)) {
            name.erase(at, kEnding.size());
        }
        m_names.push_back(std::move(name));
    }
}

std::optional<std::string> StripPacks::Path(std::size_t index) const
{
    if (index >= m_files.size()) {
        return std::nullopt;
    }
    return Folder() + "\\" + m_files[index];
}

std::optional<std::string> StripPacks::AskWhereToSave(std::string_view shownName) const
{
    const bool custom = core::LowerCase(shownName) == kCustomInSmallLetters;
    const auto answer =
        m_environment.ports.input.Ask("Save preset", "Insert the preset name: ", custom ? "New preset" : shownName);
    if (!answer || answer->empty()) {
        return std::nullopt;
    }
    const std::string name = core::MakeValidFileName(*answer);
    if (core::LowerCase(*answer) == kCustomInSmallLetters || core::Trim(name).empty()) {
        m_environment.ports.messages.Show("Invalid name", core::Icon::Exclamation);
        return std::nullopt;
    }
    return Folder() + "\\" + name + std::string(kEnding);
}

} // namespace velmora::controls
