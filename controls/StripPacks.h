#pragma once

#include "controls/StripValues.h"
#include "core/Environment.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::controls {

/// The effect packs that a strip offers: the files of one folder.
class StripPacks {
public:
    /// `environment` outlives this.
    StripPacks(core::Environment& environment, StripKind kind);

    /// Reads the folder. A folder that is not there is told once, and leaves the list as it was.
    void Read();
    /// Names in the order of the files.
    const std::vector<std::string>& Names() const { return m_names; }
    /// Full path; nothing for a place that the list has not.
    std::optional<std::string> Path(std::size_t index) const;
    /// Asks for a name to save under, suggesting the one shown. The full path; nothing on a cancel or an invalid name,
    /// which is told.
    std::optional<std::string> AskWhereToSave(std::string_view shownName) const;

private:
    std::string Folder() const;

    core::Environment& m_environment;
    const StripKind m_kind;
    bool m_folderWarningShown = false;
    std::vector<std::string> m_files;
    std::vector<std::string> m_names;
};

} // namespace velmora::controls
