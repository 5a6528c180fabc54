#include "project/ProjectFile_Class.h"

#include "audio/AudioPlayer_Class.h"
#include "audio/MasterVolume_Class.h"
#include "audio/Metronome_Class.h"
#include "audio/Recorder_Class.h"
#include "core/MsgIds.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/Clipboard_Class.h"
#include "project/MarkList_Class.h"
#include "project/Undo_Class.h"
#include "project/internal/ChannelRegistry.h"
#include "project/internal/EventPlacement.h"
#include "project/internal/ProjectStorage.h"
#include "project/internal/RepeatRecording.h"
#include "project/internal/TakeRecovery.h"

#include <algorithm>
#include <utility>

namespace velmora::project {
namespace {

constexpr std::int32_t kFirstPriority = 100;
constexpr std::int32_t kLastPriority = 0;

double GreatestLength(const ChannelRegistry::Table& channels)
{
    double length = 0;
    for (const auto& channel : channels) {
        length = std::max(length, channel->Length());
    }
    return length;
}

} // namespace

ProjectFile_Class::ProjectFile_Class(core::Environment& environment)
    : m_environment(environment)
    , m_classID(environment.ids.Draw())
    , m_channels(std::make_unique<ChannelRegistry>(*this))
    , m_storage(std::make_unique<ProjectStorage>(*this, *m_channels))
    , m_placement(std::make_unique<EventPlacement>(*this))
{
}

ProjectFile_Class::~ProjectFile_Class()
{
    Player.reset();
    if (Recorder) {
        Recorder->Close();
    }
    while (!m_setupForms.empty()) {
        FX_CloseSetupForm(*m_setupForms.begin());
    }
    // Commands that still wait find no project to restore.
    Undo.reset();
    m_channels->Clear();
    Metronome.reset();
    MasterVolume.reset();
    Marks.reset();
    Recorder.reset();
    for (const auto& handler : {m_handler, m_lastHandler}) {
        if (handler) {
            handler->Detach();
        }
    }
    if (MsgSender) {
        MsgSender->Close();
    }
}

void ProjectFile_Class::InitializeClass()
{
    using Received = void (ProjectFile_Class::*)(std::int32_t, core::MsgParametersClass&);
    const auto listen = [this](std::int32_t priority, Received received) {
        auto handler = std::make_shared<core::MsgHandlerClass>(
            m_environment.ids,
            [this, received](std::int32_t /*senderID*/, std::int32_t msgID, core::MsgParametersClass& params) {
                (this->*received)(msgID, params);
            });
        MsgSender->Add_MsgHandlerOBJ(priority, handler);
        return handler;
    };
    MsgSender = std::make_shared<core::MsgSenderClass>(m_environment.ids, m_environment.ports.pendingEvents);
    m_handler = listen(kFirstPriority, &ProjectFile_Class::MsgHandler_MsgReceived);
    m_lastHandler = listen(kLastPriority, &ProjectFile_Class::LastMsgHandler_MsgReceived);

    Recorder = std::make_unique<audio::Recorder_Class>(m_environment, *this);
    Marks = std::make_unique<MarkList_Class>(m_environment.ids, *MsgSender);
    MasterVolume = std::make_unique<audio::MasterVolume_Class>(m_environment, *MsgSender);
    Metronome = std::make_unique<audio::Metronome_Class>(m_environment, *MsgSender, *Recorder);
    Undo = std::make_unique<Undo_Class>(*this);
    Clipboard = std::make_unique<Clipboard_Class>(*this);

    core::Views& views = m_environment.ports.views;
    views.InitializeMainWindow();
    views.InitializeMusicFrame();
    views.InitializeVoiceFrame();
    views.InitializeEventsEditor();
    views.InitializeEventsSmallView();

    Player = std::make_unique<audio::AudioPlayer_Class>(m_environment, *this);
    core::MsgParametersClass range;
    range.PlayFromMS = core::kUnset;
    Send(core::Msg_Player_SetRange, range);
    core::MsgParametersClass volume;
    volume.Value = 100;
    Send(core::Msg_Master_SetVolume, volume);
}

void ProjectFile_Class::MsgHandler_MsgReceived(std::int32_t MsgID, core::MsgParametersClass& Params)
{
    switch (MsgID) {
    case core::Msg_AddMusicChannel:
    case core::Msg_AddVoiceChannel: {
        const bool voice = MsgID == core::Msg_AddVoiceChannel;
        Channel_Class& channel = m_channels->Add(voice ? Channel_Class::kVoice : Channel_Class::kMusic);
        Params.NewChannelID = channel.ClassID();
        channel.SetDefaultValues(true);
        break;
    }
    case core::Msg_DeleteChannel:
        Recorder->ChannelGoes(Params.ChannelID);
        for (core::ClassID* selected : {&m_selectedMusic, &m_selectedVoice}) {
            *selected = *selected == Params.ChannelID ? core::kUnsetFloat : *selected;
        }
        Chn_RemoveChannel(Params.ChannelID);
        FX_CloseSetupForm(Params.ChannelID);
        break;
    case core::Msg_AllChannelsLiveOff:
        SendToAllChannels(core::Msg_Channel_SetLive);
        break;
    case core::Msg_SelectVoiceChannel:
        m_selectedVoice = Params.SelectChannelID;
        break;
    case core::Msg_SelectMusicChannel:
        m_selectedMusic = Params.SelectChannelID;
        break;
    case core::Msg_AddEvent_Wave:
        m_placement->AddWave(Params);
        break;
    case core::Msg_EventEdit_MoveVertical:
        m_placement->MoveVertical(Params);
        break;
    case core::Msg_Player_Tick:
        m_playerTimePos = Params.PlayerPosMS;
        break;
    case core::Msg_AddMark:
        ++Counter_MarkN;
        [[fallthrough]];
    case core::Msg_MarkChanged:
        Params.TimePosMS = std::min(Params.TimePosMS, util_GetProjectLength());
        break;
    case core::Msg_UndoRestored:
        for (core::ClassID* selected : {&m_selectedMusic, &m_selectedVoice}) {
            *selected = util_ChannelExists(*selected) ? *selected : core::kUnsetFloat;
        }
        break;
    case core::Msg_UndoListChanged:
        LastRecTimePos = core::kUnset;
        break;
    default:
        break;
    }
}

void ProjectFile_Class::LastMsgHandler_MsgReceived(std::int32_t MsgID, core::MsgParametersClass& Params)
{
    switch (MsgID) {
    case core::Msg_AddMusicChannel:
    case core::Msg_AddVoiceChannel: {
        const bool voice = MsgID == core::Msg_AddVoiceChannel;
        core::MsgParametersClass pack;
        pack.ChannelID = Params.NewChannelID;
        pack.FXPackFile = m_environment.paths.GetPath("presets") +
                          (voice ? "\\FxPacks-Voice\\default.pack" : "\\FxPacks-Music\\default.pack");
        if (m_environment.files.FileExists(pack.FXPackFile)) {
            Send(core::Msg_FXPack_Load, pack);
        }
        util_Send_SoloChangedMSG_toAllChannels();
        break;
    }
    case core::Msg_DeleteChannel:
    case core::Msg_Channel_SetSolo:
    case core::Msg_UndoRestored:
        util_Send_SoloChangedMSG_toAllChannels();
        break;
    case core::Msg_Recorder_Start:
        LastRecChannelID = core::RoundToInt(Params.ChannelID);
        LastRecTimePos = core::RoundToInt(Params.TimePosMS);
        break;
    default:
        break;
    }
}

void ProjectFile_Class::Send(std::int32_t msgID, core::MsgParametersClass& params) const
{
    MsgSender->SendMsg(core::RoundToInt(m_classID), msgID, params);
}

void ProjectFile_Class::SendToAllChannels(std::int32_t msgID) const
{
    std::vector<core::ClassID> ids;
    m_channels->ForEach([&ids](const Channel_Class& channel) { ids.push_back(channel.ClassID()); });
    for (const core::ClassID id : ids) {
        core::MsgParametersClass params;
        params.ChannelID = id;
        Send(msgID, params);
    }
}

bool ProjectFile_Class::CreateNewProject()
{
    return m_storage->Create();
}

bool ProjectFile_Class::LoadProject(std::string_view Path, OpenMode mode, bool ignoreMissing)
{
    auto opened = OpenedProject::Open(m_environment, Path, mode);
    return opened && LoadProject(std::move(*opened), ignoreMissing);
}

bool ProjectFile_Class::LoadProject(OpenedProject opened, bool ignoreMissing)
{
    return m_storage->Load(std::move(opened), ignoreMissing);
}

bool ProjectFile_Class::SaveProject(std::string_view Path)
{
    return m_storage->Save(Path);
}

void ProjectFile_Class::DeleteUnusedFiles()
{
    m_storage->DeleteUnusedFiles();
}

const std::string& ProjectFile_Class::ProjectPath() const
{
    return m_storage->ProjectPath();
}

const std::string& ProjectFile_Class::GetAudioPath() const
{
    return m_storage->Folder().GetAudioPath();
}

std::string ProjectFile_Class::FixAudioFilePath(std::string_view Path) const
{
    return m_storage->Folder().FixAudioFilePath(Path);
}

std::unordered_set<std::string> ProjectFile_Class::util_AudioFilesInUse() const
{
    return m_storage->FilesInUse();
}

void ProjectFile_Class::util_OfferAbandonedTakes()
{
    TakeRecovery(*this).OfferAbandoned();
}

bool ProjectFile_Class::IsNewProject() const
{
    return m_storage->IsNewProject();
}

const std::vector<std::string>& ProjectFile_Class::MissingFiles() const
{
    return m_storage->MissingFiles();
}

std::string ProjectFile_Class::GetXMLData() const
{
    return GetSharedXML().Text();
}

persistence::SharedText ProjectFile_Class::GetSharedXML() const
{
    return m_storage->GetSharedXML();
}

bool ProjectFile_Class::LoadXMLData(std::string_view XML, bool LoadIDs, bool LoadRecorder, bool CheckFiles)
{
    return m_storage->LoadXMLData(XML, LoadIDs, LoadRecorder, CheckFiles, m_classID);
}

std::int32_t ProjectFile_Class::Chn_GetVoiceChannel_TotalN() const
{
    return static_cast<std::int32_t>(m_channels->Voice().size());
}

std::int32_t ProjectFile_Class::Chn_GetMusicChannel_TotalN() const
{
    return static_cast<std::int32_t>(m_channels->Music().size());
}

Channel_Class* ProjectFile_Class::Chn_GetVoiceChannelObj_by_ID(core::ClassID ID) const
{
    return m_channels->Find(ID, Channel_Class::kVoice);
}

Channel_Class* ProjectFile_Class::Chn_GetMusicChannelObj_by_ID(core::ClassID ID) const
{
    return m_channels->Find(ID, Channel_Class::kMusic);
}

Channel_Class* ProjectFile_Class::Chn_GetVoiceChannelObj_by_Index(std::int32_t I) const
{
    return m_channels->At(I, Channel_Class::kVoice);
}

Channel_Class* ProjectFile_Class::Chn_GetMusicChannelObj_by_Index(std::int32_t I) const
{
    return m_channels->At(I, Channel_Class::kMusic);
}

Channel_Class* ProjectFile_Class::Chn_GetChannelClassObj_by_ID(core::ClassID ID) const
{
    return m_channels->Find(ID);
}

Channel_Class* ProjectFile_Class::Chn_GetChannelObj_by_Index(std::int32_t I) const
{
    return m_channels->At(I);
}

std::int32_t ProjectFile_Class::Chn_GetChannelClass_TotalN() const
{
    return m_channels->TotalN();
}

void ProjectFile_Class::Chn_RemoveChannel(core::ClassID ID)
{
    m_channels->Remove(ID);
}

double ProjectFile_Class::util_GetEvent_Length(core::ClassID ChannelID, std::int32_t EventID) const
{
    const auto event = util_GetEvent_OBJ(ChannelID, EventID);
    return event ? event->GetEventLength() : 0;
}

double ProjectFile_Class::util_GetEventOBJ_Length(const CDC_Event_Wave_Class& EventOBJ) const
{
    return EventOBJ.GetEventLength();
}

double ProjectFile_Class::util_GetEvent_TimePos(core::ClassID ChannelID, std::int32_t EventID) const
{
    const Channel_Class* channel = m_channels->Find(ChannelID);
    std::int32_t type = 0;
    double timePos = channel ? 0 : -1;
    if (channel) {
        channel->ChannelData->GetEventData(EventID, type, timePos);
    }
    return timePos;
}

bool ProjectFile_Class::util_GetEvent_ResizableProperty(core::ClassID ChannelID, std::int32_t EventID) const
{
    const auto event = util_GetEvent_OBJ(ChannelID, EventID);
    return event && event->Resizable();
}

std::shared_ptr<CDC_Event_Wave_Class> ProjectFile_Class::util_GetEvent_OBJ(core::ClassID ChannelID,
                                                                           std::int32_t EventID) const
{
    const Channel_Class* channel = m_channels->Find(ChannelID);
    return channel ? channel->ChannelData->GetEventOBJ(EventID) : nullptr;
}

void ProjectFile_Class::util_EventObj_ResizeLeft(core::ClassID ChannelID, std::int32_t EventID, std::int32_t DeltaMS,
                                                 std::int32_t& AppliedMS)
{
    AppliedMS = 0;
    if (const auto event = util_GetEvent_OBJ(ChannelID, EventID)) {
        event->UTIL_ResizeEvent_Left(DeltaMS, AppliedMS);
        m_channels->Find(ChannelID)->ChannelData->EventsChanged();
    }
}

std::string ProjectFile_Class::util_GetChannelTitle(core::ClassID ChannelID) const
{
    const Channel_Class* channel = m_channels->Find(ChannelID);
    return channel ? channel->Title : std::string();
}

double ProjectFile_Class::util_GetChannelLength(core::ClassID ChannelID) const
{
    const Channel_Class* channel = m_channels->Find(ChannelID);
    return channel ? channel->Length() : 0;
}

double ProjectFile_Class::util_GetProjectLength() const
{
    return std::max(GreatestLength(m_channels->Music()), GreatestLength(m_channels->Voice()));
}

double ProjectFile_Class::util_GetMusicChannels_MaxLength() const
{
    return GreatestLength(m_channels->Music());
}

bool ProjectFile_Class::util_EventExists(core::ClassID ChannelID, std::int32_t EventID) const
{
    const Channel_Class* channel = m_channels->Find(ChannelID);
    std::int32_t type = 0;
    double timePos = 0;
    return channel && channel->ChannelData->GetEventData(EventID, type, timePos);
}

bool ProjectFile_Class::util_ChannelExists(core::ClassID ChannelID) const
{
    return m_channels->Find(ChannelID) != nullptr;
}

std::int32_t ProjectFile_Class::util_GetChannelType(core::ClassID ChannelID) const
{
    const Channel_Class* channel = m_channels->Find(ChannelID);
    return channel ? channel->ChannelMode() : -1;
}

core::ClassID ProjectFile_Class::util_GetFirstChannelID() const
{
    const Channel_Class* channel = m_channels->At(0);
    return channel ? channel->ClassID() : core::kUnsetFloat;
}

bool ProjectFile_Class::util_SoloEnabled() const
{
    bool solo = false;
    m_channels->ForEach([&solo](const Channel_Class& channel) { solo = solo || channel.Solo; });
    return solo;
}

void ProjectFile_Class::util_Send_SoloChangedMSG_toAllChannels()
{
    SendToAllChannels(core::Msg_SoloChanged);
}

void ProjectFile_Class::util_StopIfPlayingOrRecording()
{
    core::MsgParametersClass params;
    if (Recorder->isRecording()) {
        Send(core::Msg_Recorder_Stop, params);
    } else if (Player->isPlaying()) {
        Send(core::Msg_Player_Stop, params);
    }
}

bool ProjectFile_Class::util_RepeatLastRecording()
{
    if (LastRecTimePos == core::kUnset) {
        return false;
    }
    RepeatRecording(*this, m_alive);
    return true;
}

void ProjectFile_Class::FX_ShowSetupForm(core::ClassID ChannelID)
{
    if (ChannelID == core::kUnsetFloat) {
        return;
    }
    m_setupForms.insert(ChannelID);
    m_environment.ports.views.ShowFXSetupForm(ChannelID, "FX Setup [" + util_GetChannelTitle(ChannelID) + "]");
}

void ProjectFile_Class::FX_DisableSetupForms()
{
    m_environment.ports.views.EnableFXSetupForms(false);
}

void ProjectFile_Class::FX_EnableSetupForms()
{
    m_environment.ports.views.EnableFXSetupForms(true);
}

void ProjectFile_Class::FX_UnloadSetupForm(core::ClassID ChannelID)
{
    m_setupForms.erase(ChannelID);
}

void ProjectFile_Class::FX_CloseSetupForm(core::ClassID ChannelID)
{
    if (m_setupForms.erase(ChannelID) > 0) {
        m_environment.ports.views.CloseFXSetupForm(ChannelID);
    }
}

} // namespace velmora::project
