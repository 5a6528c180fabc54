#pragma once

#include <array>

/// Where the main window's areas lie, in logical pixels of its client area.
namespace velmora::app {

struct Box {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;

    int Right() const { return left + width; }
    bool operator==(const Box&) const = default;
};

/// The client area is never smaller, and begins with the wider size.
inline constexpr int kMinimumWidth = 751;
inline constexpr int kMinimumHeight = 530;
inline constexpr int kFirstWidth = 1087;

struct MainLayout {
    Box toolbar{0, 2, 800, 26};
    Box musicFrame{0, 33, 327, 333};
    Box voiceFrame{328, 33, 327, 332};
    Box masterPanel{656, 33, 97, 333};
    Box overviewLabel{760, 32, 200, 12};
    Box overview{756, 44, 169, 321};
    Box editor{0, 368, 748, 161};
    /// Where the hairlines stand: between the strips, before the master panel, before the overview.
    std::array<int, 3> dividers{331, 659, 747};

    bool operator==(const MainLayout&) const = default;
};

/// Width goes first to the gaps beside the strips, up to 28 pixels each, then to the overview.
MainLayout ArrangeMain(int width, int height);

} // namespace velmora::app
