#include "audio/internal/ClipSchedule.h"

#include "core/Paths.h"
#include "core/Units.h"
#include "engine/ClipFades.h"
#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <utility>

namespace velmora::audio {
namespace {

constexpr std::int64_t kFadeStepMS = 10;
constexpr std::int64_t kOpenAheadMS = 2000;
constexpr std::size_t kMostOpen = 256;
constexpr std::uint64_t kFrameBytes = 4;

engine::ClipFades FadesOf(const ExportClip& clip)
{
    return {clip.beginMS, clip.endMS, clip.fadeInEndMS, clip.fadeOutStartMS};
}

} // namespace

ClipSchedule::ClipSchedule(std::vector<ExportClip> clips, std::int32_t rate)
    : m_rate(rate)
    , m_clips(std::move(clips))
{
    std::erase_if(m_clips,
                  [](const ExportClip& clip) { return clip.endMS <= std::max(clip.beginMS, std::int64_t{0}); });
    std::ranges::stable_sort(m_clips, {}, &ExportClip::beginMS);
    for (const ExportClip& clip : m_clips) {
        m_endMS = std::max(m_endMS, clip.endMS);
    }
    m_streams.resize(m_clips.size());
}

ClipSchedule::~ClipSchedule()
{
    for (const Sounding& sounding : m_sounding) {
        BASS_StreamFree(sounding.stream);
    }
    for (std::size_t i = m_nextToStart; i < m_nextToOpen; ++i) {
        BASS_StreamFree(m_streams[i]);
    }
}

void ClipSchedule::Advance(std::int64_t timeMS)
{
    EndOrFade(timeMS);
    OpenAhead(timeMS);
    while (m_nextToStart < m_clips.size() && m_clips[m_nextToStart].beginMS <= timeMS) {
        Start(m_nextToStart++, timeMS);
    }
    FindNextChange(timeMS);
}

void ClipSchedule::OpenAhead(std::int64_t timeMS)
{
    while (m_nextToOpen < m_clips.size() && m_clips[m_nextToOpen].beginMS <= timeMS + kOpenAheadMS &&
           m_sounding.size() + m_nextToOpen - m_nextToStart < kMostOpen) {
        Open(m_nextToOpen++);
    }
}

void ClipSchedule::Open(std::size_t index)
{
    const ExportClip& clip = m_clips[index];
    const std::string file = core::PosixPath(clip.filePath);
    const std::uint32_t stream = Sound_ClipCreate(file.c_str(), static_cast<std::uint32_t>(m_rate));
    if (stream == 0) {
        m_unreadableFiles.insert(clip.filePath);
        return;
    }
    const std::int64_t firstFrame = core::FrameOfMS(std::max(clip.beginMS, std::int64_t{0}), m_rate);
    const std::int64_t fileFrame = core::FileFrameAt(firstFrame, clip.beginMS, clip.fileStartMS, m_rate);
    BASS_ChannelSetPosition(stream, static_cast<std::uint64_t>(std::max(fileFrame, std::int64_t{0})) * kFrameBytes,
                            BASS_POS_BYTE);
    if (clip.gainFactor != 1.0) {
        BASS_ChannelSetDSP(stream, reinterpret_cast<DSPPROC*>(get_GainDSP_memaddress()),
                           engine::GainUserValue(clip.gainFactor), engine::kGainPriority);
    }
    m_streams[index] = stream;
}

void ClipSchedule::Start(std::size_t index, std::int64_t timeMS)
{
    if (m_nextToOpen <= index) {
        m_nextToOpen = index + 1;
        Open(index);
    }
    const std::uint32_t stream = m_streams[index];
    if (stream == 0) {
        return;
    }
    const ExportClip& clip = m_clips[index];
    const float volume = engine::VolumeAt(FadesOf(clip), timeMS);
    BASS_ChannelSetAttribute(stream, BASS_ATTRIB_VOL, volume);
    m_sounding.push_back({&clip, stream, volume});
    BASS_Mixer_StreamAddChannel(clip.mixer, stream, 0);
}

void ClipSchedule::EndOrFade(std::int64_t timeMS)
{
    std::erase_if(m_sounding, [timeMS](const Sounding& sounding) {
        const bool over = sounding.clip->endMS <= timeMS;
        if (over) {
            BASS_StreamFree(sounding.stream);
        }
        return over;
    });
    if (timeMS % kFadeStepMS != 0) {
        return;
    }
    for (Sounding& sounding : m_sounding) {
        const float volume = engine::VolumeAt(FadesOf(*sounding.clip), timeMS);
        if (volume != sounding.volume) {
            BASS_ChannelSetAttribute(sounding.stream, BASS_ATTRIB_VOL, volume);
            sounding.volume = volume;
        }
    }
}

void ClipSchedule::FindNextChange(std::int64_t timeMS)
{
    m_nextChangeMS = m_nextToStart < m_clips.size() ? m_clips[m_nextToStart].beginMS : m_endMS;
    for (const Sounding& sounding : m_sounding) {
        const ExportClip& clip = *sounding.clip;
        m_nextChangeMS = std::min({m_nextChangeMS, clip.endMS, engine::NextFadeStep(FadesOf(clip), timeMS)});
    }
}

} // namespace velmora::audio
