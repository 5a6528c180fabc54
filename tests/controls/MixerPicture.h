#pragma once

#include <QPixmap>

namespace velmora::controls {

/// The two strips and the master panel with a song, at their places under the toolbar's band.
QPixmap MixerPicture();
/// The same of a project without channels.
QPixmap EmptyMixerPicture();

} // namespace velmora::controls
