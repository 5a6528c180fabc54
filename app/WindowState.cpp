#include "app/WindowState.h"

#include "core/Units.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"

#include <algorithm>
#include <cstdint>

namespace velmora::app {
namespace {

constexpr std::int64_t kMaxBytes = 1 << 16;
constexpr std::int32_t kFarthest = 1 << 16;
/// So much of the title must be on a screen.
constexpr int kGrabWidth = 100;
constexpr int kGrabHeight = 24;

std::string PathIn(std::string_view folder)
{
    return std::string(folder) + "\\window.xml";
}

bool CanBeGrabbed(const Box& place, const Box& screen)
{
    const int across = std::min(place.Right(), screen.Right()) - std::max(place.left, screen.left);
    const int down = screen.top + screen.height - place.top;
    return across >= std::min(kGrabWidth, place.width) && place.top >= screen.top && down >= kGrabHeight;
}

} // namespace

std::string WindowState::GetXMLData() const
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("Window");
    if (place) {
        writer.Add_Element("Left", place->left);
        writer.Add_Element("Top", place->top);
        writer.Add_Element("Width", place->width);
        writer.Add_Element("Height", place->height);
    }
    writer.Add_Element("Maximized", maximized);
    writer.Add_Element("LastFolder", lastFolder);
    return writer.GetXMLString();
}

void WindowState::LoadXMLData(std::string_view xml)
{
    *this = {};
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(xml);
    Box box;
    reader.ReadElement("Left", box.left, core::kUnset);
    reader.ReadElement("Top", box.top, core::kUnset);
    reader.ReadElement("Width", box.width, 0);
    reader.ReadElement("Height", box.height, 0);
    const auto sane = [](int value) { return value > -kFarthest && value < kFarthest; };
    if (sane(box.left) && sane(box.top) && sane(box.width) && sane(box.height) && box.width > 0 && box.height > 0) {
        place = box;
    }
    reader.ReadElement("Maximized", maximized, false);
    reader.ReadElement("LastFolder", lastFolder, "");
}

void WindowState::Load(const core::Files& files, std::string_view configFolder)
{
    LoadXMLData(files.ReadTextFile(PathIn(configFolder), kMaxBytes));
}

bool WindowState::Save(core::Files& files, std::string_view configFolder) const
{
    return files.WriteTextFile(PathIn(configFolder), GetXMLData());
}

Box BringOnScreen(Box place, const std::vector<Box>& screens)
{
    if (screens.empty() ||
        std::ranges::any_of(screens, [&place](const Box& screen) { return CanBeGrabbed(place, screen); })) {
        return place;
    }
    const Box& screen = screens.front();
    place.width = std::min(place.width, screen.width);
    place.height = std::min(place.height, screen.height);
    place.left = std::clamp(place.left, screen.left, screen.Right() - place.width);
    place.top = std::clamp(place.top, screen.top, screen.top + screen.height - place.height);
    return place;
}

} // namespace velmora::app
