#include "engine/internal/Voice.h"

#include "core/Paths.h"
#include "core/Units.h"
#include "engine/internal/Dsps.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <utility>

namespace velmora::engine {

namespace {
constexpr std::uint64_t kFrameBytes = 4;
constexpr std::int32_t kAheadMS = 500;
} // namespace

Voice::Voice(ClipToPlay clip, std::int64_t firstFrame, std::int32_t rate)
    : m_clip(std::move(clip))
    , m_fades{m_clip.row.timePosMS, m_clip.row.EndPosMS(), m_clip.row.fadeInEndMS, m_clip.row.fadeOutStartMS}
    , m_rate(rate)
    , m_firstFrame(firstFrame)
    , m_endFrame(core::FrameOfMS(m_clip.row.EndPosMS(), rate))
{
    const EventRow& row = m_clip.row;
    m_stream = Sound_ClipCreate(core::PosixPath(row.filePath).c_str(), static_cast<std::uint32_t>(rate));
    if (m_stream == 0) {
        return;
    }
    const std::int64_t fileFrame = core::FileFrameAt(firstFrame, row.timePosMS, row.startMS, rate);
    BASS_ChannelSetPosition(m_stream, static_cast<std::uint64_t>(std::max<std::int64_t>(fileFrame, 0)) * kFrameBytes,
                            BASS_POS_BYTE);
    if (row.gainFactor != 1.0) {
        BASS_ChannelSetDSP(m_stream, &GainDsp, GainUserValue(row.gainFactor), kGainPriority);
    }
    Sound_ClipPrepare(m_stream, static_cast<std::uint32_t>(core::FrameOfMS(kAheadMS, rate)));
    Sound_SetRunning(m_stream, 0);
    BASS_Mixer_StreamAddChannel(m_clip.mixer, m_stream, 0);
}

Voice::~Voice()
{
    BASS_StreamFree(m_stream);
}

bool Voice::Advance(std::int64_t frame)
{
    if (m_ended) {
        return true;
    }
    if (OverAt(frame)) {
        End();
        return true;
    }
    if (!m_started.load(std::memory_order_relaxed)) {
        if (frame < m_firstFrame || m_missed.load(std::memory_order_relaxed)) {
            return true;
        }
        if (frame > m_firstFrame) {
            m_missed.store(true, std::memory_order_release);
            return false;
        }
        m_started.store(true, std::memory_order_release);
        m_volume = VolumeAt(m_fades, TimeOf(frame));
        BASS_ChannelSetAttribute(m_stream, BASS_ATTRIB_VOL, m_volume);
        Resume();
        return true;
    }
    ApplyVolume(frame);
    return true;
}

void Voice::ApplyVolume(std::int64_t frame)
{
    const float volume = VolumeAt(m_fades, TimeOf(frame));
    // A step falls on the first frame of its ms; between the steps the line of the mixer's glide goes on.
    const std::int64_t ms = TimeOf(frame);
    if (volume != m_volume && ms % 10 == 0 && core::FrameOfMS(ms, m_rate) == frame) {
        m_volume = volume;
        BASS_ChannelSetAttribute(m_stream, BASS_ATTRIB_VOL, volume);
    }
}

std::int64_t Voice::NextChange(std::int64_t frame) const
{
    if (m_ended || m_missed.load(std::memory_order_relaxed)) {
        return kNever;
    }
    if (!m_started.load(std::memory_order_relaxed)) {
        return std::min(m_firstFrame, EndFrame());
    }
    const std::int64_t stepMS = NextFadeStep(m_fades, TimeOf(frame));
    const std::int64_t step = stepMS >= m_fades.endMS ? kNever : core::FrameOfMS(stepMS, m_rate);
    return std::min(EndFrame(), step);
}

void Voice::Hold()
{
    if (m_started.load(std::memory_order_relaxed) && !m_ended) {
        Sound_SetRunning(m_stream, 0);
    }
}

void Voice::Resume()
{
    if (m_started.load(std::memory_order_relaxed) && !m_ended) {
        Sound_SetRunning(m_stream, 1);
    }
}

void Voice::End()
{
    Hold();
    m_ended = true;
}

void Voice::Miss()
{
    End();
    m_missed.store(true, std::memory_order_release);
}

std::int64_t Voice::EndFrame() const
{
    return std::min(m_endFrame, m_cutFrame.load(std::memory_order_acquire));
}

} // namespace velmora::engine
