#pragma once

#include "soundlayer/soundlayer.h"

namespace velmora::core {

/// While it lives, changes of the graph are gathered; its end hands them to the mixing thread together.
class SoundEdit {
public:
    SoundEdit() { Sound_BeginEdit(); }
    ~SoundEdit() { Sound_EndEdit(); }
    SoundEdit(const SoundEdit&) = delete;
    SoundEdit& operator=(const SoundEdit&) = delete;
};

} // namespace velmora::core
