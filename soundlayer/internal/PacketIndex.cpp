#include "soundlayer/internal/PacketIndex.h"

#include <algorithm>
#include <cstring>

namespace velmora::soundlayer {

namespace {

/// How far before a sample decoding has to begin.
struct Preroll {
    std::size_t packets = 0;
    std::int64_t samples = 0;
    /// Bytes of packets, beyond `overhead` in each, before those that count.
    std::int64_t bytes = 0;
    std::int64_t overhead = 0;
};

Preroll PrerollOf(AVCodecID codec)
{
    switch (codec) {
    case AV_CODEC_ID_MP1:
    case AV_CODEC_ID_MP2:
    case AV_CODEC_ID_MP3:
        // A frame's data may begin up to 511 bytes back, in the frames before; header and side information do not
        // count.
        return {.packets = 3, .samples = 0, .bytes = 600, .overhead = 38};
    case AV_CODEC_ID_VORBIS:
        return {.packets = 2};
    case AV_CODEC_ID_OPUS:
        return {.packets = 50, .samples = 48'000};
    case AV_CODEC_ID_FLAC:
    case AV_CODEC_ID_ALAC:
        return {};
    case AV_CODEC_ID_AAC:
    case AV_CODEC_ID_WMAV1:
    case AV_CODEC_ID_WMAV2:
        return {.packets = 3};
    default:
        // Those that predict from what came before forget slowly.
        return {.packets = av_get_exact_bits_per_sample(codec) > 0 ? 0U : 50U};
    }
}

} // namespace

std::size_t PacketIndex::FirstPacketFor(std::int64_t sample) const
{
    const auto after = std::ranges::upper_bound(packets, sample, {}, [](const Packet& packet) { return packet.start; });
    const auto holder = static_cast<std::size_t>(std::max<std::ptrdiff_t>(after - packets.begin() - 1, 0));
    const Preroll preroll = PrerollOf(parameters->codec_id);
    std::size_t first = holder - std::min(holder, preroll.packets);
    while (first > 0 && sample - packets[first].start < preroll.samples) {
        --first;
    }
    for (std::int64_t bytes = 0; first > 0 && bytes < preroll.bytes; --first) {
        bytes += std::max<std::int64_t>(packets[first - 1].size - preroll.overhead, 0);
    }
    return first;
}

std::int64_t PacketIndex::Fingerprint(std::span<const std::uint8_t> bytes)
{
    std::uint64_t head = 0;
    std::uint64_t tail = 0;
    const std::size_t count = std::min<std::size_t>(bytes.size(), sizeof(head));
    if (count > 0) {
        std::memcpy(&head, bytes.data(), count);
        std::memcpy(&tail, bytes.data() + bytes.size() - count, count);
    }
    return static_cast<std::int64_t>((head * 0x9E3779B97F4A7C15U) ^ tail);
}

} // namespace velmora::soundlayer
