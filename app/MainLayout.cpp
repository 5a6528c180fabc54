#include "app/MainLayout.h"

#include <algorithm>

namespace velmora::app {
namespace {

/// Up to this width the strips stand side by side.
constexpr int kNarrowWidth = 754;
constexpr int kWidestGap = 28;
constexpr int kLabelIndent = 4;
constexpr int kRightMargin = 4;

} // namespace

MainLayout ArrangeMain(int width, int height)
{
    MainLayout layout;
    if (width == kMinimumWidth && height == kMinimumHeight) {
        return layout;
    }
    layout.toolbar.width = width - 2;
    layout.editor.width = width;
    layout.editor.height = height - layout.editor.top;
    const int gap = std::clamp(width - kNarrowWidth, 1, kWidestGap);
    layout.voiceFrame.left = layout.musicFrame.Right() + gap;
    layout.masterPanel.left = layout.voiceFrame.Right() + gap;
    layout.overview.left = layout.masterPanel.Right() + gap;
    layout.overviewLabel.left = layout.overview.left + kLabelIndent;
    layout.overview.width = std::max(width - layout.overview.left - kRightMargin, 0);
    return layout;
}

} // namespace velmora::app
