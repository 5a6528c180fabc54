#include "audio/AudioExport.h"

#include "audio/MasterVolume_Class.h"
#include "audio/internal/ClipSchedule.h"
#include "audio/internal/EncodedFile.h"
#include "audio/internal/ExportFile.h"
#include "audio/internal/ExportGuards.h"
#include "audio/internal/OfflineMaster.h"
#include "core/MsgIds.h"
#include "core/Units.h"
#include "engine/audioplayer.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/LockedInterface.h"
#include "project/ProjectFile_Class.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

namespace velmora::audio {
namespace {

constexpr std::int64_t kReportEachMS = 300;
/// Longer than any volume glides.
constexpr std::int64_t kSettleMS = 20;

} // namespace

AudioExport::AudioExport(core::Environment& environment, project::ProjectFile_Class& project, ExportProgress& progress)
    : m_environment(environment)
    , m_project(project)
    , m_progress(progress)
    , m_alive(std::make_shared<const bool>(true))
{
}

void AudioExport::encoder_Format(std::int32_t format)
{
    if (m_encoderFormat != kNoFormat) {
        m_environment.ports.messages.Show("encoder_Format already set");
        return;
    }
    m_encoderFormat = format;
}

void AudioExport::StartExport()
{
    if (m_exporting) {
        return;
    }
    m_project.MsgSender->WhenIdle([this, alive = std::weak_ptr(m_alive)] {
        if (!alive.expired()) {
            Run();
        }
    });
}

void AudioExport::StopExport()
{
    m_stopRequested = true;
}

void AudioExport::Run()
{
    const FlagScope exporting(m_exporting);
    m_stopRequested = false;
    m_outcome = Outcome::Failed;
    m_unreadableFiles.clear();
    const Ending ending = Export();
    m_outcome = ending.outcome;
    if (!ending.text.empty()) {
        m_environment.ports.messages.Show(ending.text, ending.icon, ending.title);
    }
}

AudioExport::Ending AudioExport::Export()
{
    const bool known = m_encoderFormat == kWav || m_encoderFormat == kWma;
    constexpr std::int32_t kMostChannels = std::numeric_limits<std::uint8_t>::max();
    if (!known || FilePath.empty() || SampleRate <= 0 || Channels <= 0 || Channels > kMostChannels) {
        return {Outcome::Failed, "frmExportAudio::StartExport\nInvalid parameters"};
    }
    // A take that ends brings a clip more.
    m_project.util_StopIfPlayingOrRecording();
    std::vector<ExportClip> clips = Clips();
    if (OverwritesSource(clips)) {
        return {Outcome::Failed, "The file is used by the project:\n" + FilePath + "\nChoose another name.",
                core::Icon::Exclamation, "Export project"};
    }

    const project::LockedInterface locked(m_project);
    core::MsgParametersClass params;
    LiveMonitoringPause monitoring(m_project);
    monitoring.Begin();
    const AutoStopPause autoStop(m_project);
    OfflineMaster master(*m_project.MasterVolume);

    const std::int32_t rate = m_environment.config.BassDevice_Freq;
    ExportFile file(m_environment.files, FilePath, master.Stream(), rate);
    if (!file.Open({m_encoderFormat == kWma, SampleRate, Channels, Bitrate})) {
        return {Outcome::Failed,
                "frmExportAudio::StartExport\nError starting encoder" + EncoderErrorSuffix(BASS_ErrorGetCode())};
    }
    const MeteredStream meter(master.Stream());
    params = {};
    Send(core::Msg_Master_SetMute, params);
    params = {};
    params.PlayFromMS = core::kUnset;
    Send(core::Msg_Player_SetRange, params);

    const FreshEffects fresh(m_project, master);
    // What glides since the last change of a volume comes to rest before the first frame of the file.
    const bool sounds = master.Pull(core::FrameOfMS(kSettleMS, rate));
    if (!file.Begin()) {
        return {Outcome::Failed, m_encoderFormat == kWma ? "frmExportAudio::StartExport\nError setting WMA encoder dsp"
                                                         : "frmExportAudio::StartExport\nError starting encoder"};
    }
    ClipSchedule schedule(std::move(clips), rate);
    const LoopEnd end = sounds ? FastExport(schedule, master, meter, file) : LoopEnd::NoSound;
    m_unreadableFiles.assign(schedule.UnreadableFiles().begin(), schedule.UnreadableFiles().end());
    if (end == LoopEnd::NoSound) {
        return {Outcome::Failed, "frmExportAudio::FastExport\nThe mix gives no sound (error code: " +
                                     std::to_string(BASS_ErrorGetCode()) + ")"};
    }
    if (!file.Finish(m_environment.ports.pendingEvents)) {
        return {Outcome::Failed,
                "Error writing the file:\n" + FilePath +
                    "\nThe disk may be full. Make room, or choose another folder, and export again."
                    "\nAn earlier file of that name is unchanged.",
                core::Icon::Exclamation, "Export project"};
    }
    if (player_IsPlaying() != 0) {
        params = {};
        Send(core::Msg_Player_Stop, params);
    }
    return end == LoopEnd::Cancelled ? Ending{Outcome::Cancelled, ""}
                                     : Ending{Outcome::Done, "Done", core::Icon::Information, "Export project"};
}

AudioExport::LoopEnd AudioExport::FastExport(ClipSchedule& clips, OfflineMaster& master, const MeteredStream& meter,
                                             const ExportFile& file)
{
    const std::int32_t rate = m_environment.config.BassDevice_Freq;
    const std::int64_t endMS = clips.EndMS();
    std::int64_t timeMS = 0;
    while (timeMS < endMS) {
        clips.Advance(timeMS);
        const std::int64_t reportMS = (timeMS / kReportEachMS + 1) * kReportEachMS;
        const std::int64_t nextMS = std::min({clips.NextChangeMS(), reportMS, endMS});
        // Frames come from times, never from sums of stretches, so that nothing drifts.
        if (!master.Pull(core::FrameOfMS(nextMS, rate) - core::FrameOfMS(timeMS, rate))) {
            return LoopEnd::NoSound;
        }
        timeMS = nextMS;
        if (timeMS == reportMS || timeMS == endMS) {
            const bool goOn = m_progress.Update(timeMS, endMS, meter.Meter());
            m_environment.ports.pendingEvents.Run();
            if ((!goOn || m_stopRequested) && timeMS < endMS) {
                return LoopEnd::Cancelled;
            }
            if (file.Failed()) { // `ExportFile::Finish` will say so
                return LoopEnd::Finished;
            }
        }
    }
    return LoopEnd::Finished;
}

std::vector<ExportClip> AudioExport::Clips() const
{
    std::vector<ExportClip> clips;
    for (std::int32_t i = 0; i < m_project.Chn_GetChannelClass_TotalN(); ++i) {
        const project::Channel_Class* channel = m_project.Chn_GetChannelObj_by_Index(i);
        for (const project::EventRow* row : channel->ChannelData->InTimeOrder()) {
            if (row->EventType != core::kWaveEvent || !row->EventOBJ) {
                continue;
            }
            const project::CDC_Event_Wave_Class& event = *row->EventOBJ;
            const std::string file = m_project.FixAudioFilePath(event.FilePath);
            const std::int64_t beginMS = core::RoundToInt(row->TimePos);
            clips.push_back({channel->BassInMix_Handle, file.empty() ? event.FilePath : file, event.GainFactor, beginMS,
                             beginMS + event.EndMS - event.StartMS, event.StartMS, event.FadeIn_EndMS,
                             event.FadeOut_StartMS});
        }
    }
    return clips;
}

bool AudioExport::OverwritesSource(const std::vector<ExportClip>& clips) const
{
    const core::Files& files = m_environment.files;
    if (!files.FileExists(FilePath)) {
        return false;
    }
    std::set<std::string> sources{m_project.ProjectPath()};
    for (const ExportClip& clip : clips) {
        sources.insert(clip.filePath);
    }
    return std::ranges::any_of(
        sources, [&](const std::string& source) { return !source.empty() && files.SameFile(source, FilePath); });
}

void AudioExport::Send(std::int32_t msgID, core::MsgParametersClass& params)
{
    m_project.MsgSender->SendMsg(core::kNoSender, msgID, params);
}

} // namespace velmora::audio
