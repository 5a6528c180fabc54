#pragma once

namespace velmora::controls {

/// Light text on dark grounds keeps the weight that its font has. Call it before the first font is used.
void KeepFontWeights();

} // namespace velmora::controls
