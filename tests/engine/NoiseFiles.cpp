#include "tests/engine/NoiseFiles.h"

#include "core/Paths.h"
#include "core/Units.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <vector>

#include <unistd.h>

namespace velmora::engine {
namespace {

constexpr std::int64_t kFrames = std::int64_t{10} * NoiseFiles::kRate;

std::int16_t Noise(std::uint32_t seed, std::int64_t frame, std::uint32_t side)
{
    auto x = static_cast<std::uint32_t>(frame) * 2654435761U ^ (seed * 97U + side) * 2246822519U;
    x ^= x >> 13;
    x *= 3266489917U;
    return static_cast<std::int16_t>(static_cast<std::int32_t>(x >> 20) - 2048);
}

struct Source {
    std::uint32_t seed;
    std::int64_t frame;
};

std::uint32_t GiveNoise(HSTREAM, void* buffer, std::uint32_t length, SOUND_USER user)
{
    auto& from = *reinterpret_cast<Source*>(user);
    auto* out = static_cast<std::int16_t*>(buffer);
    for (std::uint32_t i = 0; i < length / 4; ++i, ++from.frame) {
        out[2 * i] = Noise(from.seed, from.frame, 0);
        out[2 * i + 1] = Noise(from.seed, from.frame, 1);
    }
    return length;
}

void Write(const std::string& path, std::uint32_t seed)
{
    constexpr std::uint32_t kRate = NoiseFiles::kRate;
    Source source{seed, 0};
    const HSTREAM stream =
        BASS_StreamCreate(kRate, 2, BASS_STREAM_DECODE, &GiveNoise, reinterpret_cast<SOUND_USER>(&source));
    const WAVEFORMATEX format{1, 2, kRate, kRate * 4, 4, 16, 0};
    const HENCODE encoder = BASS_Encode_StartACMFile(stream, &format, 0, path.c_str());
    std::vector<std::int16_t> samples(2 * kFrames);
    BASS_ChannelGetData(stream, samples.data(), static_cast<std::uint32_t>(samples.size() * 2));
    BASS_Encode_Stop(encoder);
    BASS_StreamFree(stream);
}

} // namespace

NoiseFiles::NoiseFiles()
    : m_folder(std::filesystem::temp_directory_path() / ("velmora-noise-" + std::to_string(getpid())))
{
    std::filesystem::create_directories(m_folder);
}

NoiseFiles::~NoiseFiles()
{
    std::filesystem::remove_all(m_folder);
}

std::string NoiseFiles::Path(std::uint32_t seed) const
{
    const auto path = m_folder / (std::to_string(seed) + ".wav");
    if (!std::filesystem::exists(path)) {
        Write(path.string(), seed);
    }
    return core::InternalPath(path.string());
}

std::int16_t NoiseFiles::Sum(const Rows& rows, std::int64_t frame, std::uint32_t side)
{
    std::int32_t sum = 0;
    for (const auto& [key, row] : rows) {
        if (frame >= core::FrameOfMS(row.timePosMS, kRate) && frame < core::FrameOfMS(row.EndPosMS(), kRate)) {
            const auto seed =
                static_cast<std::uint32_t>(std::stoul(row.filePath.substr(row.filePath.find_last_of('\\') + 1)));
            const std::int64_t at = core::FileFrameAt(frame, row.timePosMS, row.startMS, kRate);
            sum += at < kFrames ? Noise(seed, at, side) : 0;
        }
    }
    return static_cast<std::int16_t>(std::clamp(sum, -32'768, 32'767));
}

} // namespace velmora::engine
