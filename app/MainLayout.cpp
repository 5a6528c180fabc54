#include "app/MainLayout.h"

#include <algorithm>

namespace velmora::app {
namespace {

/// Up to this width the strips stand side by side.
constexpr int kNarrowWidth = 754;
constexpr int kWidestGap = 28;
constexpr int kLabelIndent = 4;
constexpr int kRightMargin = 4;
/// Kept free of controls: at a strip's right, at its left, at the master panel's right.
constexpr int kStripRight = 7;
constexpr int kStripLeft = 16;
constexpr int kMasterRight = 15;
constexpr int kFarthestFromOverview = 18;

/// In the middle between the controls on both sides.
int DividerBefore(const Box& strip, int gap)
{
    return strip.left + kStripLeft - (kStripRight + gap + kStripLeft) / 2 - 1;
}

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
    layout.dividers = {DividerBefore(layout.voiceFrame, gap), DividerBefore(layout.masterPanel, gap),
                       layout.overview.left - std::min(kFarthestFromOverview, (kMasterRight + gap) / 2)};
    return layout;
}

} // namespace velmora::app
