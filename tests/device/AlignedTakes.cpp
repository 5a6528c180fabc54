#include "tests/device/AlignedTakes.h"

#include "audio/DeviceStart.h"
#include "core/Paths.h"
#include "core/Units.h"
#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"
#include "tests/audio/SoundFixture.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <thread>
#include <vector>

#include <sys/resource.h>

namespace velmora::audio {
namespace {

constexpr std::int32_t kRate = 44'100;
constexpr std::int32_t kClickEveryMS = 500;
constexpr std::int32_t kClipMS = 20'000;
constexpr std::int32_t kTakeMS = 2200;
constexpr std::int16_t kClick = 20'000;

/// A click is one sample, so that where it lies is beyond doubt.
WavSound Clicks()
{
    WavSound sound{kRate, 2, std::vector<std::int16_t>(2 * std::size_t{kRate} * kClipMS / 1000)};
    for (std::int32_t ms = 0; ms < kClipMS; ms += kClickEveryMS) {
        const auto at = static_cast<std::size_t>(core::FrameOfMS(ms, kRate));
        sound.samples[2 * at] = sound.samples[2 * at + 1] = kClick;
    }
    return sound;
}

} // namespace

AlignedTakes::AlignedTakes()
    : m_takePath(m_environment.Path("take.wav"))
{
    m_server.Start();
    m_environment->config.Global_OutputDevice = -1;
    m_environment->config.BassBuffer_LengthMS = 100;
    m_session = SoundSession::Start(*m_environment);
    m_device = BASS_Mixer_StreamCreate(kRate, 2, BASS_MIXER_NONSTOP);
    m_channel = BASS_Mixer_StreamCreate(kRate, 2, BASS_STREAM_DECODE | BASS_MIXER_NONSTOP);
    BASS_Mixer_StreamAddChannel(m_device, m_channel, 0);
    BASS_ChannelPlay(m_device, 0);
    const std::string clip = m_environment.Path("clicks.wav");
    WriteWav(clip, Clicks());
    addCC(1, m_channel);
    addEvent(1, 1, 1, clip.c_str(), 0, 0, kClipMS, core::kUnset, core::kUnset);
}

AlignedTakes::~AlignedTakes()
{
    player_Pause();
    m_session.reset();
}

AlignedTakes::Take AlignedTakes::Record(std::int32_t bufferMS, std::int32_t startMS)
{
    core::Configuration& config = m_environment->config;
    if (config.BassBuffer_LengthMS != bufferMS) {
        config.BassBuffer_LengthMS = static_cast<std::int16_t>(bufferMS);
        BassApplyBufferConfig(config);
    }
    player_SetTimePos(startMS);
    AudioInput_Class input(*m_environment);
    if (!Start(input)) {
        return {0, true};
    }
    const std::uint64_t missed = Sound_MissedFrames();
    player_Play();
    input.StartEncoder();
    testing::Becomes([&] { return player_GetTimePos() >= startMS + kTakeMS + bufferMS; });
    input.EndCapture();
    const bool ranDry = Sound_MissedFrames() > missed;
    player_Pause();
    // What the buffer holds of this take is not to be heard in the next one.
    const std::uint64_t mixed = Sound_MixedFrames();
    testing::Becomes([&] { return Sound_MixedFrames() > mixed + static_cast<std::uint64_t>(bufferMS + 300) * 44; });
    Take take = LookAt(startMS, input);
    take.disturbed = take.disturbed || ranDry;
    return take;
}

std::int64_t AlignedTakes::CpuTimeMS(std::int32_t ms, bool recording)
{
    const auto spentMS = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        const auto msOf = [](const timeval& time) { return time.tv_sec * 1000 + time.tv_usec / 1000; };
        return msOf(usage.ru_utime) + msOf(usage.ru_stime);
    };
    player_SetTimePos(0);
    player_Play();
    AudioInput_Class input(*m_environment);
    if (recording && Start(input)) {
        input.StartEncoder();
    }
    const std::int64_t before = spentMS();
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
    const std::int64_t spent = spentMS() - before;
    input.EndCapture();
    player_Pause();
    return spent;
}

bool AlignedTakes::Start(AudioInput_Class& input)
{
    input.InputDevice = 0;
    input.SaveToFile = true;
    input.FilePath = m_takePath;
    return input.StartCapture();
}

AlignedTakes::Take AlignedTakes::LookAt(std::int32_t startMS, const AudioInput_Class& input) const
{
    const WavSound file = ReadWav(m_takePath);
    std::vector<double> clicksMS;
    for (std::size_t frame = 0; frame < file.Frames(); ++frame) {
        if (std::abs(file.samples[2 * frame]) > kClick / 2) {
            clicksMS.push_back(static_cast<double>(frame) * 1000 / kRate);
        }
    }
    Take take{0, clicksMS.size() < 3, input.FileStartMS(), input.DeviceLatencyMS(), input.GapMS()};
    for (std::size_t i = 1; i < clicksMS.size(); ++i) {
        take.disturbed = take.disturbed || std::abs(clicksMS[i] - clicksMS[i - 1] - kClickEveryMS) > 0.1;
    }
    std::vector<double> errors;
    for (const double click : clicksMS) {
        const double onTimeline = click - take.fileStartMS + startMS;
        errors.push_back(onTimeline - std::round(onTimeline / kClickEveryMS) * kClickEveryMS);
    }
    if (!errors.empty()) {
        const auto middle = errors.begin() + static_cast<std::ptrdiff_t>(errors.size() / 2);
        std::ranges::nth_element(errors, middle);
        take.errorMS = *middle;
    }
    return take;
}

} // namespace velmora::audio
