#pragma once

#include "core/Files.h"

#include <string>
#include <string_view>

namespace velmora::core {

/// Brings an audio file that could vanish (from a removable, optical or remote drive) into a project's audio folder.
///
/// Returns what the event is to hold: `Path` itself for a file on a fixed drive and whenever copying fails or would
/// not leave some room on the drive, else the name of the copy, without a folder. An earlier copy of the same name and
/// length is used again.
std::string ImportAudioFile(Files& files, std::string_view audioFolder, std::string_view Path);

} // namespace velmora::core
