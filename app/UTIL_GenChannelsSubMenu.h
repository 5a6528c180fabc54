#pragma once

#include "core/ClassIds.h"

#include <cstdint>
#include <optional>
#include <string>

namespace velmora::project {
class ProjectFile_Class;
}

namespace velmora::app {

/// Walks a project's channels for a menu: music channels, a separator, voice channels. The separator stands only
/// between two that are there.
class UTIL_GenChannelsSubMenu {
public:
    struct Item {
        /// "-" for the separator.
        std::string title;
        core::ClassID itemChannelClassID = 0;
    };

    /// `project` outlives this and keeps its channels meanwhile.
    explicit UTIL_GenChannelsSubMenu(const project::ProjectFile_Class& project);

    /// Nothing behind the last one.
    std::optional<Item> GetNextItem();

private:
    const project::ProjectFile_Class& m_project;
    std::int32_t m_next = 0;
    bool m_separated = false;
};

} // namespace velmora::app
