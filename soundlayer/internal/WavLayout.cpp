#include "soundlayer/internal/PcmFile.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace velmora::soundlayer {

namespace {

constexpr std::uint32_t kUnknownSize = 0xFFFFFFFF;
/// More chunks than any writer makes; a file of nothing but tiny chunks is not walked to its end.
constexpr int kMostChunks = 1000;
/// Keeps sizes that are sums of two positive.
constexpr std::uint64_t kMostBytes = (std::uint64_t{1} << 62) - 1;
constexpr std::uint32_t kMostChannels = 64;

template <typename T>
T Little(const std::byte* bytes)
{
    T value;
    std::memcpy(&value, bytes, sizeof(value));
    return value;
}

bool IsTag(const std::byte* bytes, const char* tag)
{
    return std::memcmp(bytes, tag, 4) == 0;
}

std::optional<SampleType> TypeOf(std::uint32_t formatTag, std::size_t bytes)
{
    constexpr std::uint32_t kPcm = 1;
    constexpr std::uint32_t kFloat = 3;
    constexpr std::array kIntegers{SampleType::U8, SampleType::S16, SampleType::S24, SampleType::S32};
    if (formatTag == kPcm && bytes >= 1 && bytes <= kIntegers.size()) {
        return kIntegers[bytes - 1];
    }
    if (formatTag == kFloat && (bytes == 4 || bytes == 8)) {
        return bytes == 4 ? SampleType::F32 : SampleType::F64;
    }
    return std::nullopt;
}

std::optional<PcmLayout> ReadFormat(std::span<const std::byte> chunk)
{
    if (chunk.size() < 16) {
        return std::nullopt;
    }
    constexpr std::uint32_t kExtensible = 0xFFFE;
    PcmLayout layout;
    std::uint32_t tag = Little<std::uint16_t>(chunk.data());
    layout.channels = Little<std::uint16_t>(chunk.data() + 2);
    layout.rate = Little<std::uint32_t>(chunk.data() + 4);
    const std::uint32_t blockAlign = Little<std::uint16_t>(chunk.data() + 12);
    const std::uint32_t bits = Little<std::uint16_t>(chunk.data() + 14);
    if (tag == kExtensible && chunk.size() >= 40) {
        layout.speakers = Little<std::uint32_t>(chunk.data() + 20);
        tag = Little<std::uint16_t>(chunk.data() + 24);
    }
    if (!IsRate(layout.rate) || layout.channels == 0 || layout.channels > kMostChannels || bits == 0) {
        return std::nullopt;
    }
    // 20 bits in three bytes, or 24 in four: the container counts, its sample is left-justified.
    std::uint32_t bytes = (bits + 7) / 8;
    if (blockAlign % layout.channels == 0 && blockAlign / layout.channels > bytes) {
        bytes = blockAlign / layout.channels;
    }
    const auto type = TypeOf(tag, bytes);
    if (!type) {
        return std::nullopt;
    }
    layout.type = *type;
    return layout;
}

} // namespace

std::optional<PcmLayout> ReadWavLayout(const FileBytes& file)
{
    std::array<std::byte, 12> head;
    if (file.ReadAt(0, head) < head.size() || !IsTag(head.data() + 8, "WAVE")) {
        return std::nullopt;
    }
    const bool large = IsTag(head.data(), "RF64") || IsTag(head.data(), "BW64");
    if (!large && !IsTag(head.data(), "RIFF")) {
        return std::nullopt;
    }
    std::int64_t riffEnd = 8 + std::int64_t{Little<std::uint32_t>(head.data() + 4)};
    std::uint64_t largeDataSize = kUnknownSize;
    std::optional<PcmLayout> layout;
    std::int64_t position = 12;
    for (int chunks = 0; chunks < kMostChunks; ++chunks) {
        std::array<std::byte, 8 + 40> chunk;
        const std::size_t got = file.ReadAt(position, chunk);
        if (got < 8) {
            break;
        }
        const std::uint32_t size = Little<std::uint32_t>(chunk.data() + 4);
        const auto body = std::span<const std::byte>(chunk).subspan(8, std::min<std::size_t>(got - 8, size));
        if (large && IsTag(chunk.data(), "ds64") && body.size() >= 16) {
            riffEnd = 8 + static_cast<std::int64_t>(Little<std::uint64_t>(body.data()) & kMostBytes);
            largeDataSize = Little<std::uint64_t>(body.data() + 8);
        } else if (IsTag(chunk.data(), "fmt ")) {
            layout = ReadFormat(body);
            if (!layout) {
                return std::nullopt;
            }
        } else if (IsTag(chunk.data(), "data") && layout) {
            layout->offset = position + 8;
            const std::int64_t there = file.Size() - layout->offset;
            std::uint64_t bytes = large && size == kUnknownSize ? largeDataSize : size;
            const bool neverCompleted = bytes == 0 && riffEnd <= layout->offset;
            const bool beyondHeader = !large && file.Size() > std::int64_t{kUnknownSize} + 8;
            if (neverCompleted || beyondHeader || bytes == kUnknownSize) {
                bytes = static_cast<std::uint64_t>(there);
            }
            bytes = std::min(bytes, static_cast<std::uint64_t>(std::max<std::int64_t>(there, 0)));
            layout->frames = static_cast<std::int64_t>(bytes / layout->FrameBytes());
            return layout;
        }
        position += 8 + std::int64_t{size} + size % 2;
    }
    return std::nullopt;
}

} // namespace velmora::soundlayer
