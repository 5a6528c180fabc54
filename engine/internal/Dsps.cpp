#include "engine/internal/Dsps.h"

#include "soundlayer/SampleRounding.h"

namespace velmora::engine {

namespace {

std::span<std::int16_t> Samples(void* buffer, std::uint32_t bytes)
{
    return {static_cast<std::int16_t*>(buffer), bytes / sizeof(std::int16_t)};
}

} // namespace

void ApplyGain(std::span<std::int16_t> samples, std::int32_t user)
{
    if (user == kUnitGain) {
        return;
    }
    const float factor = static_cast<float>(user) / static_cast<float>(kUnitGain);
    std::int16_t* sample = samples.data();
    const std::size_t count = samples.size();
    for (std::size_t i = 0; i < count; ++i) {
        sample[i] = soundlayer::RoundSample(static_cast<float>(sample[i]) * factor);
    }
}

void RemoveVocals(std::span<std::int16_t> interleaved, std::int32_t user)
{
    const float amount = static_cast<float>(user) / static_cast<float>(kUnitGain);
    std::int16_t* sample = interleaved.data();
    const std::size_t frames = interleaved.size() / 2;
    for (std::size_t i = 0; i < frames; ++i) {
        const auto left = static_cast<float>(sample[2 * i]);
        const auto right = static_cast<float>(sample[2 * i + 1]);
        const float difference = amount * (left - right);
        sample[2 * i] = soundlayer::RoundSample((1.0F - amount) * left + difference);
        sample[2 * i + 1] = soundlayer::RoundSample((1.0F - amount) * right + difference);
    }
}

void GainDsp(HDSP, std::uint32_t, void* buffer, std::uint32_t length, SOUND_USER user)
{
    ApplyGain(Samples(buffer, length), static_cast<std::int32_t>(user));
}

void LevelDsp(HDSP, std::uint32_t channel, void* buffer, std::uint32_t length, SOUND_USER)
{
    Levels().Store(channel, MeasureRms(Samples(buffer, length)));
}

void RemoveVocalsDsp(HDSP, std::uint32_t, void* buffer, std::uint32_t length, SOUND_USER user)
{
    RemoveVocals(Samples(buffer, length), static_cast<std::int32_t>(user));
}

void EncoderFeedDsp(HDSP, std::uint32_t, void* buffer, std::uint32_t length, SOUND_USER user)
{
    BASS_WMA_EncodeWrite(static_cast<HWMENCODE>(user), buffer, length);
}

std::uint32_t RecordStream(HSTREAM, void* buffer, std::uint32_t length, SOUND_USER user)
{
    const std::uint32_t given = BASS_ChannelGetData(static_cast<std::uint32_t>(user), buffer, length);
    return given == UINT32_MAX ? 0 : given;
}

LevelStore& Levels()
{
    static LevelStore levels;
    return levels;
}

} // namespace velmora::engine
