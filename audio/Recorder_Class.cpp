#include "audio/Recorder_Class.h"

#include "audio/internal/LiveInput.h"
#include "audio/internal/Take.h"
#include "audio/internal/TakeBook.h"
#include "core/MsgHandlerClass.h"
#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"
#include "engine/audioplayer.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"
#include "project/Channel_Class.h"
#include "project/LockedInterface.h"
#include "project/ProjectFile_Class.h"
#include "project/UndoData_Class.h"
#include "project/Undo_Class.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace velmora::audio {
namespace {

constexpr std::int32_t kPriority = 90;
constexpr std::int32_t kLastName = 10'000;
constexpr double kMegabyte = 1'048'576;
constexpr double kLeastFreeMB = 100;
constexpr std::string_view kStep = "recording";
constexpr std::string_view kDeletion = "delete channel";

/// Cut to hundredths, so that what is too little never looks like enough.
std::string MegabytesText(double megabytes)
{
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.begin(), text.end(), std::floor(megabytes * 100) / 100);
    return {text.begin(), end.ptr};
}

} // namespace

Recorder_Class::Recorder_Class(core::Environment& environment, project::ProjectFile_Class& project)
    : m_environment(environment)
    , m_project(project)
    , m_classID(environment.ids.Draw())
    , m_msgHandler(std::make_shared<core::MsgHandlerClass>(
          environment.ids, [this](std::int32_t /*senderID*/, std::int32_t msgID,
                                  core::MsgParametersClass& params) { MsgHandler_MsgReceived(msgID, params); }))
    , m_takes(std::make_unique<TakeBook>(environment.files))
    , m_watch(environment.ports.timers.Create(Take::kWatchEach, false, [this] { WatchTake(); }))
{
    project.MsgSender->Add_MsgHandlerOBJ(kPriority, m_msgHandler);
}

Recorder_Class::~Recorder_Class()
{
    m_msgHandler->Detach();
    Close();
}

void Recorder_Class::GetLiveData(core::ClassID& channelID, std::uint32_t& stream) const
{
    channelID = m_recordOnChannel;
    const AudioInput_Class* input = m_take ? &m_take->Input() : m_monitor ? &m_monitor->Input : nullptr;
    stream = input ? input->OutStream() : 0;
}

bool Recorder_Class::InputIsSilent() const
{
    return m_take && m_take->Input().Input().silent;
}

bool Recorder_Class::InputClipped() const
{
    return m_take && m_take->Input().Input().clipped;
}

std::string Recorder_Class::GetXMLData() const
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("Recorder_Class");
    writer.Add_Element("recordCounter", m_recordCounter);
    return writer.GetXMLString();
}

bool Recorder_Class::LoadXMLData(std::string_view XMLData)
{
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(XMLData);
    if (!reader.MasterTagIs("recorder_class")) {
        return false;
    }
    reader.ReadElement("recordCounter", m_recordCounter, 1);
    return true;
}

std::string Recorder_Class::RecordFileName() const
{
    for (std::int32_t n = 0; n <= kLastName; ++n) {
        std::string path =
            ProjectFolder + "\\a" + std::to_string(n) + "- Record " + std::to_string(m_recordCounter) + ".wav";
        if (!m_environment.files.FileExists(path)) {
            return path;
        }
    }
    return {};
}

void Recorder_Class::TakeAdded(std::string name, TakeJournal journal)
{
    m_takes->Add(std::move(name), std::move(journal));
}

void Recorder_Class::ProjectSaved(const std::string& earlierFolder)
{
    if (!m_takes->Empty()) {
        m_takes->Saved({earlierFolder, ProjectFolder}, m_project.util_AudioFilesInUse());
    }
}

void Recorder_Class::MsgHandler_MsgReceived(std::int32_t MsgID, core::MsgParametersClass& Params)
{
    switch (MsgID) {
    case core::Msg_Player_SetRange:
        Params.CancelDelivery = Params.CancelDelivery || isRecording();
        break;
    case core::Msg_Channel_SetLive:
        SetLive(Params);
        break;
    case core::Msg_SelectVoiceChannel:
        SelectTarget(Params.SelectChannelID);
        break;
    case core::Msg_Recorder_Start:
        Params.CancelDelivery = !StartTake(Params);
        break;
    case core::Msg_Recorder_Stop:
        StopTake();
        break;
    case core::Msg_UndoRestored:
        UndoRestored();
        break;
    default:
        break;
    }
}

void Recorder_Class::SetLive(core::MsgParametersClass& params)
{
    if (params.Value == core::kTrue) {
        SetLiveOn(params);
        return;
    }
    // Other channels' marks are no matter of the input.
    const core::ClassID heardOn = m_take ? m_take->ChannelID() : m_recordOnChannel;
    if (m_liveMixHandle == 0 || params.ChannelID != heardOn) {
        return;
    }
    if (m_take) {
        m_liveMixHandle = 0;
        m_take->SetHeard(false);
    } else {
        EndMonitoring();
    }
}

void Recorder_Class::SetLiveOn(core::MsgParametersClass& params)
{
    const project::Channel_Class* channel = VoiceChannel(m_recordOnChannel);
    if (!channel || params.ChannelID != m_recordOnChannel) {
        return;
    }
    if (m_liveMixHandle != 0) {
        if (!m_take) {
            params.Value = 0;
            Say("LiveInput_Class::MsgHandler\nLive input already set");
        }
        return;
    }
    if (!m_take) {
        const std::string error = StartMonitoring(*channel);
        if (!error.empty()) {
            m_environment.ports.messages.Show(error, core::Icon::Critical, "Error [Set Live]");
            params.CancelDelivery = true;
        }
    } else if (m_take->ChannelID() == m_recordOnChannel) {
        m_take->SetHeard(true);
        m_liveMixHandle = channel->BassInMix_Handle;
    } else {
        params.CancelDelivery = true;
    }
}

void Recorder_Class::SelectTarget(core::ClassID channelID)
{
    if (m_recordOnChannel == channelID) {
        return;
    }
    if (!m_take && m_liveMixHandle != 0) {
        EndMonitoring();
        SendLive(m_recordOnChannel, core::kFalse);
    }
    m_recordOnChannel = channelID;
}

void Recorder_Class::UndoRestored()
{
    if (!m_takes->Empty()) {
        m_takes->Restored(ProjectFolder, m_project.util_AudioFilesInUse());
    }
    const project::Channel_Class* channel = VoiceChannel(m_recordOnChannel);
    if (m_liveMixHandle != 0 && !m_take) {
        if (!channel || !channel->LiveStatus) {
            EndMonitoring();
        } else if (channel->BassInMix_Handle != m_liveMixHandle) {
            m_monitor->Join(channel->BassInMix_Handle);
            m_liveMixHandle = channel->BassInMix_Handle;
        }
    }
    if (!channel) {
        m_recordOnChannel = core::kUnsetFloat;
    }
    DropStaleMarks();
}

void Recorder_Class::DropStaleMarks() const
{
    const core::ClassID heardOn = m_take ? m_take->ChannelID() : m_recordOnChannel;
    for (std::int32_t i = 0; i < m_project.Chn_GetVoiceChannel_TotalN(); ++i) {
        const project::Channel_Class* channel = m_project.Chn_GetVoiceChannelObj_by_Index(i);
        if (channel->LiveStatus && (m_liveMixHandle == 0 || channel->ClassID() != heardOn)) {
            SendLive(channel->ClassID(), core::kFalse);
        }
    }
}

std::string Recorder_Class::StartMonitoring(const project::Channel_Class& channel)
{
    m_monitor = std::make_unique<LiveInput>(m_environment);
    m_monitor->Input.InputDevice = InputDeviceOverride;
    if (!m_monitor->Start(channel.BassInMix_Handle, true)) {
        std::string error = m_monitor->LastErrorMessage();
        m_monitor.reset();
        return error;
    }
    m_liveMixHandle = channel.BassInMix_Handle;
    return {};
}

void Recorder_Class::EndMonitoring()
{
    m_monitor.reset();
    m_liveMixHandle = 0;
}

bool Recorder_Class::StartTake(core::MsgParametersClass& params)
{
    if (m_take) {
        return false;
    }
    const project::Channel_Class* channel = VoiceChannel(m_recordOnChannel);
    if (!channel) {
        Say("Select a voice channel to record on.");
        return false;
    }
    const std::string path = RecordFileName();
    if (path.empty()) {
        m_environment.ports.messages.Beep();
        return false;
    }
    if (!HasSpace(path)) {
        return false;
    }
    auto take = std::make_unique<Take>(m_environment, path,
                                       TakeJournal{m_recordOnChannel, channel->Title, double(player_GetTimePos()), 0,
                                                   "Record " + std::to_string(m_recordCounter)});
    const bool monitored = m_liveMixHandle != 0;
    EndMonitoring();
    if (!take->Open(InputDeviceOverride, channel->BassInMix_Handle, channel->LiveStatus)) {
        m_environment.ports.messages.Show(take->Error(), core::Icon::Critical, "Error [Rec]");
        if (monitored && !StartMonitoring(*channel).empty()) {
            SendLive(m_recordOnChannel, core::kFalse);
        }
        return false;
    }
    m_liveMixHandle = channel->LiveStatus ? channel->BassInMix_Handle : 0;
    m_take = std::move(take);
    // Only now: a start that fails leaves no step to take back.
    m_project.Undo->AddUndo(kStep, project::kUndoProject);
    RunTake();
    params.ChannelID = m_recordOnChannel;
    params.TimePosMS = m_recStartTimeMS;
    return true;
}

bool Recorder_Class::HasSpace(const std::string& path) const
{
    const double megabytes = m_environment.files.DiskFreeBytes(path) / kMegabyte;
    if (megabytes >= kLeastFreeMB) {
        return true;
    }
    Say("You need at least 100 MB of free disk space to record.\nCurrent free space: " + MegabytesText(megabytes) +
        " MB");
    return false;
}

void Recorder_Class::RunTake()
{
    if (!m_take) {
        return;
    }
    m_take->undoStep = m_project.Undo->CurUndo_SeqID();
    // From here to the beginning of the file nothing may wait.
    const std::int32_t position = player_GetTimePos();
    m_recStartTimeMS = position;
    m_take->AlignTo(position);
    core::MsgParametersClass play;
    play.MetronomeScratch = 1;
    Send(core::Msg_Player_Play, play);
    if (m_take) {
        m_take->Begin();
        m_watch->Start();
    }
}

void Recorder_Class::WatchTake()
{
    if (m_take && !m_take->Watch()) {
        core::MsgParametersClass params;
        Send(core::Msg_Recorder_Stop, params);
    }
}

void Recorder_Class::StopTake()
{
    if (!m_take) {
        return;
    }
    m_watch->Stop();
    // What follows may come back here, and finds no take.
    const std::unique_ptr<Take> take = std::move(m_take);
    m_liveMixHandle = 0;
    take->End();

    core::MsgParametersClass stop;
    Send(core::Msg_Player_Stop, stop);
    core::MsgParametersClass range;
    range.PlayFromMS = core::kUnset;
    range.PlayToMS = core::RoundToInt(m_recStartTimeMS);
    Send(core::Msg_Player_SetRange, range);
    AddClip(*take);
    const project::Channel_Class* target = VoiceChannel(m_recordOnChannel);
    if (target && target->LiveStatus && !(take->channelGoes && take->ChannelID() == m_recordOnChannel)) {
        SendLive(m_recordOnChannel, core::kTrue);
    }
    DropStaleMarks();
    ++m_recordCounter;
    for (const std::string& trouble : take->Troubles()) {
        Say(trouble);
    }
}

void Recorder_Class::AddClip(const Take& take)
{
    const project::LockedInterface locked(m_project);
    project::Undo_Class& undo = *m_project.Undo;
    const bool deletionNoted = take.channelGoes && undo.CurUndo_Title() == "Undo " + std::string(kDeletion);
    if (undo.CurUndo_SeqID() != take.undoStep) {
        // The texts of the steps taken since lack the clip, and would drop it. So its step moves to where it comes.
        undo.Forget(take.undoStep);
        if (deletionNoted) {
            undo.Forget(undo.CurUndo_SeqID());
        }
        undo.AddUndo(kStep, project::kUndoProject);
    }
    const std::string name = take.FileName();
    core::MsgParametersClass clip;
    clip.FilePath = name;
    clip.FileStartMS = take.Journal().StartMS;
    clip.AddTimePosMS = take.Journal().TimePosMS;
    clip.EventTitle = take.Journal().Title;
    clip.ChannelID = take.ChannelID();
    Send(core::Msg_AddEvent_Wave, clip);
    if (deletionNoted) {
        undo.AddUndo(kDeletion, project::kUndoProject);
    }
    // Without a clip, the journal stays for the next time the project is opened.
    if (m_project.util_AudioFilesInUse().contains(name)) {
        TakeAdded(name, take.Journal());
    }
}

void Recorder_Class::ChannelGoes(core::ClassID channelID)
{
    if (m_take && m_take->ChannelID() == channelID) {
        m_take->channelGoes = true;
        core::MsgParametersClass params;
        Send(core::Msg_Recorder_Stop, params);
    }
    if (m_recordOnChannel == channelID) {
        if (!m_take) {
            EndMonitoring();
        }
        m_recordOnChannel = core::kUnsetFloat;
    }
}

void Recorder_Class::Close()
{
    m_watch->Stop();
    m_take.reset();
    EndMonitoring();
}

project::Channel_Class* Recorder_Class::VoiceChannel(core::ClassID channelID) const
{
    return m_project.Chn_GetVoiceChannelObj_by_ID(channelID);
}

void Recorder_Class::Send(std::int32_t msgID, core::MsgParametersClass& params) const
{
    m_project.MsgSender->SendMsg(core::RoundToInt(m_classID), msgID, params);
}

void Recorder_Class::SendLive(core::ClassID channelID, double value) const
{
    core::MsgParametersClass params;
    params.ChannelID = channelID;
    params.Value = value;
    Send(core::Msg_Channel_SetLive, params);
}

void Recorder_Class::Say(const std::string& text) const
{
    m_environment.ports.messages.Show(text, core::Icon::Exclamation);
}

} // namespace velmora::audio
