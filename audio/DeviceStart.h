#pragma once

#include "core/Configuration.h"
#include "core/Ports.h"

namespace velmora::audio {

/// Brings the output device up as `config` asks and writes back what is really in use: device, buffer and latency. A
/// device that is gone gives way to the system's default without a word; any other failure is reported and tried once
/// more at 44100 Hz. False after the last message: the program cannot go on.
bool BassStartDevice(core::MessageBoxes& messages, core::Configuration& config);

/// Writes the output's latency to `config`; the device tells it only when it has run for some ms.
void BassReadLatency(core::Configuration& config);

/// Hands the buffer to the device: at least 6 ms, filled each half of it, but not more often than each 5 ms.
void BassApplyBufferConfig(core::Configuration& config);

} // namespace velmora::audio
