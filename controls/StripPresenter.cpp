#include "controls/StripPresenter.h"

#include "audio/Recorder_Class.h"
#include "controls/MusicFileDialog.h"
#include "controls/NewClip.h"
#include "controls/RenameChannel.h"
#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"
#include "project/UndoData_Class.h"
#include "project/Undo_Class.h"

namespace velmora::controls {
namespace {

constexpr std::int32_t kBusPriority = 10;
/// Joins the moves of all sliders of a channel in one undo step.
constexpr std::int32_t kSliderTag = 10;

} // namespace

StripPresenter::StripPresenter(StripKind kind, StripView& view)
    : m_kind(kind)
    , m_view(view)
{
}

StripPresenter::~StripPresenter()
{
    Release();
}

void StripPresenter::Initialize_Class(project::ProjectFile_Class& project)
{
    Release();
    core::Environment& environment = project.Environment();
    m_project = &project;
    m_classID = environment.ids.Draw();
    m_handler = std::make_shared<core::MsgHandlerClass>(
        environment.ids, [this](std::int32_t /*senderID*/, std::int32_t msgID, core::MsgParametersClass& params) {
            MsgHandler_MsgReceived(msgID, params);
        });
    project.MsgSender->Add_MsgHandlerOBJ(kBusPriority, m_handler);
    m_meters.emplace(
        environment.ports.timers, m_view, [this] { return Channel() ? Channel()->BassOutMix_Handle : 0; },
        [this] { return InputStream(); });
    if (!m_packs) {
        m_packs.emplace(environment, m_kind);
    }
    m_packs->Read();
    m_view.ShowPacks(m_packs->Names());
    ReadEverything();
}

void StripPresenter::Release()
{
    if (m_handler) {
        m_handler->Detach();
        m_handler.reset();
    }
    if (m_meters) {
        m_meters->RunOutput(false);
        m_meters->RunInput(false);
        m_meters.reset();
    }
    m_project = nullptr;
    m_selected = core::kUnsetFloat;
    m_recording = core::kUnsetFloat;
}

void StripPresenter::ChangeValue(StripValue which, double value)
{
    const project::Channel_Class* channel = Channel();
    const StripValueInfo& info = InfoOf(which);
    if (!channel || info.of(*channel) == value) {
        return;
    }
    project::Undo_Class& undo = *m_project->Undo;
    if (undo.CurUndo_ChannelID() != m_selected || undo.CurUndo_SpecialID() != kSliderTag) {
        undo.AddUndo("change channel properties", project::kUndoChannel, m_selected, kSliderTag);
    }
    SendValue(info.msgID, value);
}

void StripPresenter::Toggle(StripSwitch which)
{
    const project::Channel_Class* channel = Channel();
    if (!channel) {
        return;
    }
    SendValue(MsgIDOf(which), StateOf(*channel, which) ? core::kFalse : core::kTrue);
    // A change that was refused does not come back.
    if (const project::Channel_Class* now = Channel()) {
        m_view.ShowSwitch(which, StateOf(*now, which));
    }
}

void StripPresenter::SelectChannel(std::int32_t index)
{
    if (!m_project) {
        return;
    }
    if (ChannelCount() == 0) {
        m_project->Environment().ports.messages.Show(m_kind == StripKind::Voice
                                                         ? "voiceFrame_Usercontrol: No voice channels available"
                                                         : "musicFrame_Usercontrol: No music channels available",
                                                     core::Icon::Critical);
        return;
    }
    if (const project::Channel_Class* channel = ChannelAt(index)) {
        SelectChannelID(channel->ClassID());
    }
}

void StripPresenter::SelectChannelID(core::ClassID id)
{
    if (m_project) {
        core::MsgParametersClass params;
        params.SelectChannelID = id;
        Send(m_kind == StripKind::Voice ? core::Msg_SelectVoiceChannel : core::Msg_SelectMusicChannel, params);
    }
}

std::vector<ChannelEntry> StripPresenter::MoreChannels() const
{
    std::vector<ChannelEntry> entries;
    for (std::int32_t i = ChannelButtons::kNumbers; i < ChannelCount(); ++i) {
        entries.push_back({ChannelAt(i)->ClassID(), ChannelAt(i)->Title});
    }
    return entries;
}

void StripPresenter::Rename()
{
    if (Channel()) {
        RenameChannel(*m_project, m_selected, m_classID);
    }
}

void StripPresenter::SetupFX()
{
    if (Channel()) {
        m_project->FX_ShowSetupForm(m_selected);
    }
}

void StripPresenter::ChoosePack(std::size_t index)
{
    const auto path = Channel() ? m_packs->Path(index) : std::nullopt;
    if (path) {
        core::MsgParametersClass params;
        params.ChannelID = m_selected;
        params.FXPackFile = *path;
        Send(core::Msg_FXPack_Load, params);
    }
    ShowPack();
}

void StripPresenter::SavePack()
{
    const core::ClassID id = m_selected;
    const auto path = Channel() ? m_packs->AskWhereToSave(ShownPackName(Channel()->FXPack_Name)) : std::nullopt;
    if (path && m_project) {
        core::MsgParametersClass params;
        params.ChannelID = id;
        params.FXPackFile = *path;
        params.FXPackChannelMode =
            m_kind == StripKind::Voice ? project::Channel_Class::kVoice : project::Channel_Class::kMusic;
        Send(core::Msg_FXPack_Save, params);
    }
}

void StripPresenter::LoadMusicFile()
{
    if (!Channel()) {
        return;
    }
    const core::ClassID id = m_selected;
    m_project->util_StopIfPlayingOrRecording();
    const auto file = AskForMusicFile(m_project->Environment());
    if (!file || !m_project || !m_project->util_ChannelExists(id)) {
        return;
    }
    double position = 0;
    if (m_project->Chn_GetChannelClassObj_by_ID(id)->ChannelData->EventCount() > 0 && m_askPlace) {
        const auto place = m_askPlace(id, *file);
        if (!place || !m_project || !m_project->util_ChannelExists(id)) {
            return;
        }
        position = *place;
    }
    auto clip = NewClipOf(*m_project, *file);
    if (!clip) {
        return;
    }
    m_project->Undo->AddUndo("load music file", project::kUndoProject);
    clip->wave.ChannelID = id;
    clip->wave.AddTimePosMS = position;
    Send(core::Msg_AddEvent_Wave, clip->wave);
}

void StripPresenter::KeyboardFocus(bool got)
{
    if (m_project) {
        core::MsgParametersClass params;
        Send(got ? core::Msg_KeyboardFocusGot : core::Msg_KeyboardFocusLost, params);
    }
}

project::Channel_Class* StripPresenter::Channel() const
{
    if (!m_project) {
        return nullptr;
    }
    return m_kind == StripKind::Voice ? m_project->Chn_GetVoiceChannelObj_by_ID(m_selected)
                                      : m_project->Chn_GetMusicChannelObj_by_ID(m_selected);
}

project::Channel_Class* StripPresenter::ChannelAt(std::int32_t index) const
{
    return m_kind == StripKind::Voice ? m_project->Chn_GetVoiceChannelObj_by_Index(index)
                                      : m_project->Chn_GetMusicChannelObj_by_Index(index);
}

std::int32_t StripPresenter::ChannelCount() const
{
    if (!m_project) {
        return 0;
    }
    return m_kind == StripKind::Voice ? m_project->Chn_GetVoiceChannel_TotalN()
                                      : m_project->Chn_GetMusicChannel_TotalN();
}

std::uint32_t StripPresenter::InputStream() const
{
    core::ClassID target = core::kUnsetFloat;
    std::uint32_t stream = 0;
    // While a take runs, another channel may become the target of the next one.
    if (m_recording == m_selected) {
        m_project->Recorder->GetLiveData(target, stream);
    }
    return stream;
}

void StripPresenter::Send(std::int32_t msgID, core::MsgParametersClass& params) const
{
    // A receiver may end the project.
    const auto bus = m_project->MsgSender;
    bus->SendMsg(core::RoundToInt(m_classID), msgID, params);
}

void StripPresenter::SendValue(std::int32_t msgID, double value) const
{
    core::MsgParametersClass params;
    params.ChannelID = m_selected;
    params.Value = value;
    Send(msgID, params);
}

} // namespace velmora::controls
