#pragma once

#include "soundlayer/internal/MediaInput.h"
#include "soundlayer/internal/PacketIndex.h"

#include <memory>

namespace velmora::soundlayer {

/// Walks a file's packets once and tells what it found; null for a file that holds no sound that can be decoded.
///
/// The length is that of the packets which are there, whatever a header says. Where packets were lost the following
/// keep their place: by the container's time stamps, or, in a format without any, by the bytes that are missing.
std::shared_ptr<const PacketIndex> ScanPackets(const std::shared_ptr<const FileBytes>& file);

/// A decoder for the packets of `index`; null if there is none.
DecoderPtr OpenDecoder(const PacketIndex& index);

} // namespace velmora::soundlayer
