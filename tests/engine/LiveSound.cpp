#include "tests/engine/LiveSound.h"

#include "core/Paths.h"
#include "core/Units.h"
#include "engine/internal/Engine.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <thread>

namespace velmora::engine {
namespace {

constexpr std::int32_t kRate = NoiseFiles::kRate;
constexpr std::int32_t kLengthMS = 20'000;
constexpr std::size_t kMostClips = 12;
constexpr std::uint32_t kFiles = 3;
constexpr std::int32_t kNoFade = core::kUnset;

} // namespace

LiveSound::LiveSound(std::uint32_t seed)
    : m_random(seed)
    , m_heard(std::size_t{2} * kRate)
{
    BASS_SetConfig(BASS_CONFIG_BUFFER, kBufferMS);
    BASS_SetConfig(BASS_CONFIG_UPDATEPERIOD, 10);
    initdata();
    BASS_Init(0, kRate, 0, nullptr, nullptr);
    m_device = BASS_Mixer_StreamCreate(kRate, 2, BASS_MIXER_NONSTOP);
    BASS_ChannelSetDSP(m_device, &LiveSound::Listen, reinterpret_cast<SOUND_USER>(this), 0);
    for (std::size_t i = 0; i < m_channels.size(); ++i) {
        m_channels[i] = BASS_Mixer_StreamCreate(kRate, 2, BASS_STREAM_DECODE | BASS_MIXER_NONSTOP);
        BASS_ChannelSetDSP(m_channels[i], reinterpret_cast<DSPPROC*>(get_GetLevelDSP_memaddress()), 0, 0);
        BASS_Mixer_StreamAddChannel(m_device, m_channels[i], 0);
        addCC(static_cast<std::int32_t>(i), m_channels[i]);
    }
    m_click = BASS_StreamCreateFile(0, core::PosixPath(m_files.Path(9)).c_str(), 0, 0, 0);
    for (std::uint32_t file = 0; file < kFiles; ++file) {
        m_files.Path(file);
    }
    BASS_ChannelPlay(m_device, 0);
}

LiveSound::~LiveSound()
{
    freedata();
    BASS_Free();
}

EventRow LiveSound::RandomRow()
{
    const auto start = static_cast<std::int32_t>(m_random() % 3000);
    const auto length = static_cast<std::int32_t>(1 + m_random() % 6000);
    return {1.0,
            m_files.Path(static_cast<std::uint32_t>(m_random() % kFiles)),
            static_cast<std::int32_t>(m_random() % kLengthMS),
            start,
            start + length,
            kNoFade,
            kNoFade};
}

void LiveSound::Put(EventKey key, const EventRow& row)
{
    m_rows[key] = row;
    addEvent(key.channelId, key.eventId, row.gainFactor, row.filePath.c_str(), row.timePosMS, row.startMS, row.endMS,
             row.fadeInEndMS, row.fadeOutStartMS);
}

void LiveSound::Act()
{
    const auto any = m_rows.empty()
                         ? m_rows.end()
                         : std::next(m_rows.begin(), static_cast<std::ptrdiff_t>(m_random() % m_rows.size()));
    const std::size_t act = m_random() % 16;
    if (any == m_rows.end() || (act < 4 && m_rows.size() < kMostClips)) {
        Put({static_cast<std::int32_t>(m_random() % m_channels.size()), static_cast<std::int32_t>(m_random() % 1000)},
            RandomRow());
        return;
    }
    const EventKey key = any->first;
    EventRow row = any->second;
    switch (act) {
    case 4:
        row.timePosMS += static_cast<std::int32_t>(m_random() % 400);
        Put(key, row);
        break;
    case 5:
        row.endMS = row.startMS + 1 + static_cast<std::int32_t>(m_random() % 6000);
        Put(key, row);
        break;
    case 6:
        row.gainFactor = 0.5;
        row.fadeInEndMS = 200;
        row.fadeOutStartMS = 700;
        Put(key, row);
        break;
    case 7:
        m_rows.erase(key);
        removeEvent(key.channelId, key.eventId);
        break;
    case 8:
    case 9:
        player_SetTimePos(static_cast<std::int32_t>(m_random() % kLengthMS));
        break;
    case 10:
        player_Pause();
        break;
    case 11:
        player_SetMetronome(m_random() % 2 != 0, 20.5, m_click);
        break;
    case 12:
        BASS_ChannelSetAttribute(m_channels[0], BASS_ATTRIB_VOL, m_random() % 2 != 0 ? 0.5F : 0.0F);
        break;
    case 13:
        if (m_random() % 8 == 0) {
            m_rows.clear();
            ClearEventList();
        }
        break;
    default:
        player_Play();
        break;
    }
}

void LiveSound::Settle()
{
    BASS_ChannelSetAttribute(m_channels[0], BASS_ATTRIB_VOL, 1.0F);
    for (auto [key, row] : NoiseFiles::Rows(m_rows)) {
        row.gainFactor = 1.0;
        row.fadeInEndMS = kNoFade;
        row.fadeOutStartMS = kNoFade;
        Put(key, row);
    }
    player_Play();
    if (m_random() % 2 != 0) {
        player_SetTimePos(static_cast<std::int32_t>(m_random() % kLengthMS));
    }
    Engine::Get().planner.Settle();
    // A clip that was replaced, even late, has its new voice by then.
    constexpr std::int32_t kAllHeardMS = 5 * kBufferMS;
    Wait(core::FrameOfMS(kAllHeardMS, kRate));
}

void LiveSound::Wait(std::int64_t frames) const
{
    const std::int64_t until = MixedFrames() + frames;
    while (MixedFrames() < until) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

std::int64_t LiveSound::WrongFrames(std::size_t frames)
{
    m_filled = 0;
    m_from = -1;
    m_broken = false;
    m_wanted.store(std::min(frames, m_heard.size() / 2), std::memory_order_release);
    while (m_wanted.load(std::memory_order_acquire) > 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    std::int64_t wrong = 0;
    for (std::size_t i = 0; i < m_filled; ++i) {
        const std::int64_t frame = m_from + static_cast<std::int64_t>(i);
        wrong += m_heard[2 * i] != NoiseFiles::Sum(m_rows, frame, 0) ||
                 m_heard[2 * i + 1] != NoiseFiles::Sum(m_rows, frame, 1);
    }
    return m_broken ? -1 : wrong;
}

void LiveSound::Listen(HDSP, std::uint32_t, void* buffer, std::uint32_t length, SOUND_USER user)
{
    auto& self = *reinterpret_cast<LiveSound*>(user);
    const std::size_t frames = length / 4;
    if (const std::size_t wanted = self.m_wanted.load(std::memory_order_acquire); wanted > 0) {
        const std::int64_t start = Engine::Get().mixSide.BlockStart();
        if (self.m_from < 0) {
            self.m_from = start;
        }
        self.m_broken = start < 0 || start != self.m_from + static_cast<std::int64_t>(self.m_filled);
        const std::size_t taken = std::min(frames, wanted - self.m_filled);
        std::copy_n(static_cast<const std::int16_t*>(buffer), 2 * taken, self.m_heard.data() + 2 * self.m_filled);
        self.m_filled += taken;
        if (self.m_broken || self.m_filled == wanted) {
            self.m_wanted.store(0, std::memory_order_release);
        }
    }
    self.m_mixed.fetch_add(static_cast<std::int64_t>(frames), std::memory_order_acq_rel);
}

} // namespace velmora::engine
