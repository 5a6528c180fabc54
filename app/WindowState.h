#pragma once

#include "app/MainLayout.h"
#include "core/Files.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::app {

/// What the program keeps of its windows from one run to the next, in "window.xml" of the "config" folder.
struct WindowState {
    /// The main window's frame on the desktop, while it is not maximized; nothing before the first run.
    std::optional<Box> place;
    bool maximized = false;
    /// Where the last file dialog ended, in the internal form.
    std::string lastFolder;

    std::string GetXMLData() const;
    /// What the text lacks, or tells in numbers that no desktop has, is left out.
    void LoadXMLData(std::string_view xml);
    void Load(const core::Files& files, std::string_view configFolder);
    bool Save(core::Files& files, std::string_view configFolder) const;
};

/// `place` where enough of its upper edge lies on one of the `screens` to be grabbed; else moved, and cut to the size
/// of the first of them. Screens are the usable parts of the desktop.
Box BringOnScreen(Box place, const std::vector<Box>& screens);

} // namespace velmora::app
