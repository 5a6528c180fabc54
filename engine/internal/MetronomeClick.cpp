#include "engine/internal/MetronomeClick.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace velmora::engine {

namespace {
constexpr std::uint32_t kFrameBytes = 4;
constexpr std::uint32_t kLongestClickSeconds = 10;
/// Beyond any clock; whole numbers of frames stay exact.
constexpr double kLongestPeriodFrames = 1e15;

std::vector<std::int16_t> ReadClick(HSTREAM stream, std::int32_t rate)
{
    BASS_CHANNELINFO info{};
    if (!BASS_ChannelGetInfo(stream, &info)) {
        return {};
    }
    const HSTREAM clip = Sound_ClipCreate(std::string(info.filename).c_str(), static_cast<std::uint32_t>(rate));
    if (clip == 0) {
        return {};
    }
    std::vector<std::int16_t> samples(std::size_t{2} * kLongestClickSeconds * static_cast<std::uint32_t>(rate));
    const std::uint32_t bytes =
        BASS_ChannelGetData(clip, samples.data(), static_cast<std::uint32_t>(samples.size() * sizeof(samples[0])));
    samples.resize(bytes == UINT32_MAX ? 0 : bytes / sizeof(samples[0]));
    BASS_StreamFree(clip);
    return samples;
}

} // namespace

MetronomeClick::MetronomeClick(const MixSide& mixSide)
    : m_mixSide(mixSide)
{
}

MetronomeClick::~MetronomeClick()
{
    Stop();
}

void MetronomeClick::Set(bool enabled, double periodMS, HSTREAM stream, std::int32_t rate)
{
    Stop();
    const double periodFrames = periodMS * rate / 1000;
    if (!enabled || stream == 0 || !(periodFrames >= 1)) {
        return;
    }
    m_sound =
        std::make_unique<Sound>(Sound{ReadClick(stream, rate), std::min(periodFrames, kLongestPeriodFrames), stream});
    if (m_sound->stereo.empty()) {
        return;
    }
    m_stream = BASS_StreamCreate(static_cast<std::uint32_t>(rate), 2, 0, &MetronomeClick::Fill,
                                 reinterpret_cast<SOUND_USER>(this));
    BASS_ChannelPlay(m_stream, 0);
}

void MetronomeClick::Stop()
{
    if (m_stream != 0) {
        // Once the stream is freed its procedure is called no more.
        BASS_StreamFree(std::exchange(m_stream, 0));
    }
    m_sound.reset();
}

std::uint32_t MetronomeClick::Fill(HSTREAM stream, void* buffer, std::uint32_t length, SOUND_USER user)
{
    const auto& self = *reinterpret_cast<const MetronomeClick*>(user);
    const std::int64_t start = self.m_mixSide.BlockStart();
    if (start < 0) {
        return 0;
    }
    const Sound& sound = *self.m_sound;
    float volume = 1;
    if (BASS_ChannelGetAttribute(sound.volumeOf, BASS_ATTRIB_VOL, &volume)) {
        BASS_ChannelSetAttribute(stream, BASS_ATTRIB_VOL, volume);
    }
    auto* out = static_cast<std::int16_t*>(buffer);
    const auto clickFrames = static_cast<std::int64_t>(sound.stereo.size() / 2);
    const auto tickFrame = [&sound](double tick) { return static_cast<std::int64_t>(tick * sound.periodFrames); };
    double tick = std::floor(static_cast<double>(start) / sound.periodFrames);
    const std::int64_t end = start + length / kFrameBytes;
    for (std::int64_t at = start; at < end;) {
        while (tickFrame(tick + 1) <= at) {
            ++tick;
        }
        const std::int64_t until = std::min(end, tickFrame(tick + 1));
        const std::int64_t into = at - tickFrame(tick);
        const std::int64_t sounding = std::clamp<std::int64_t>(clickFrames - into, 0, until - at);
        std::copy_n(sound.stereo.data() + 2 * into, 2 * sounding, out);
        std::fill_n(out + 2 * sounding, 2 * (until - at - sounding), std::int16_t{0});
        out += 2 * (until - at);
        at = until;
    }
    return length;
}

} // namespace velmora::engine
