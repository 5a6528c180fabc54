#include "controls/StripPresenter.h"
#include "core/MsgIds.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"

// What a strip hears, and how it then reads the model.
namespace velmora::controls {
namespace {

bool ChangesEvents(std::int32_t msgID)
{
    return msgID == core::Msg_ClearChannel || (msgID >= core::Msg_AddEvent && msgID <= core::Msg_DeleteEvent) ||
           (msgID >= core::Msg_EventEdit_ResizeRight && msgID <= core::Msg_EventEdit_Replace);
}

} // namespace

void StripPresenter::MsgHandler_MsgReceived(std::int32_t msgID, core::MsgParametersClass& params)
{
    const bool voice = m_kind == StripKind::Voice;
    switch (msgID) {
    case core::Msg_Refresh:
    case core::Msg_UndoRestored:
    case core::Msg_AddMusicChannel:
    case core::Msg_AddVoiceChannel:
    case core::Msg_DeleteChannel:
        ReadEverything();
        break;
    case core::Msg_SelectVoiceChannel:
    case core::Msg_SelectMusicChannel:
        if ((msgID == core::Msg_SelectVoiceChannel) == voice) {
            Select(params.SelectChannelID);
        }
        break;
    case core::Msg_Player_Play:
        m_meters->RunOutput(true);
        break;
    case core::Msg_Player_Stop:
        m_meters->RunOutput(false);
        break;
    case core::Msg_Recorder_Start:
        m_recording = params.ChannelID;
        m_meters->RunInput(voice);
        ShowButtons();
        break;
    case core::Msg_Recorder_Stop:
        m_recording = core::kUnsetFloat;
        m_meters->RunInput(false);
        ShowButtons();
        break;
    case core::Msg_FXPack_Save:
        // Another channel's pack may be one that this strip offers, too.
        m_packs->Read();
        m_view.ShowPacks(m_packs->Names());
        ShowPack();
        break;
    default:
        if (params.ChannelID == m_selected || ChangesEvents(msgID)) {
            ChannelMessage(msgID);
        }
        break;
    }
}

void StripPresenter::ChannelMessage(std::int32_t msgID)
{
    const project::Channel_Class* channel = Channel();
    if (!channel) {
        return;
    }
    for (const StripValue value : ValuesOf(m_kind)) {
        if (InfoOf(value).msgID == msgID) {
            m_view.ShowValue(value, InfoOf(value).of(*channel));
        }
    }
    for (const StripSwitch which : {StripSwitch::Mute, StripSwitch::Solo, StripSwitch::Live}) {
        if (MsgIDOf(which) == msgID) {
            m_view.ShowSwitch(which, StateOf(*channel, which));
        }
    }
    if (msgID == core::Msg_Channel_SetTitle) {
        m_view.ShowTitle(channel->Title);
        ShowButtons();
    } else if ((msgID >= core::Msg_FX_Add && msgID <= core::Msg_FX_SetChannelVolume) ||
               msgID == core::Msg_FXPack_Load) {
        ShowPack();
    } else if (ChangesEvents(msgID)) {
        ShowFile();
    }
}

void StripPresenter::ReadEverything()
{
    const bool none = ChannelCount() == 0;
    m_view.ShowNoChannels(none);
    if (none) {
        m_selected = core::kUnsetFloat;
    } else if (!Channel()) {
        // What the project selects stands; the first channel, if that is none.
        const core::ClassID chosen =
            m_kind == StripKind::Voice ? m_project->Selected_VoiceChannel() : m_project->Selected_MusicChannel();
        m_selected = chosen;
        if (!Channel()) {
            SelectChannel(0);
        }
    }
    ReadValues();
}

void StripPresenter::Select(core::ClassID id)
{
    m_selected = id;
    ReadValues();
}

void StripPresenter::ReadValues()
{
    ShowButtons();
    const project::Channel_Class* channel = Channel();
    if (!channel) {
        return;
    }
    m_view.ShowTitle(channel->Title);
    for (const StripValue value : ValuesOf(m_kind)) {
        m_view.ShowValue(value, InfoOf(value).of(*channel));
    }
    for (const StripSwitch which : {StripSwitch::Mute, StripSwitch::Solo, StripSwitch::Live}) {
        m_view.ShowSwitch(which, StateOf(*channel, which));
    }
    ShowPack();
    ShowFile();
}

void StripPresenter::ShowButtons()
{
    ChannelButtons shown;
    const std::int32_t count = ChannelCount();
    for (std::int32_t i = 0; i < ChannelButtons::kNumbers; ++i) {
        ChannelButtons::Button& button = shown.buttons[static_cast<std::size_t>(i)];
        button.exists = i < count;
        if (button.exists) {
            const core::ClassID id = ChannelAt(i)->ClassID();
            button.shown = id == m_selected;
            button.recording = id == m_recording;
        }
    }
    ChannelButtons::Button& more = shown.buttons.back();
    for (const ChannelEntry& entry : MoreChannels()) {
        more.exists = true;
        more.shown = more.shown || entry.id == m_selected;
        more.recording = more.recording || entry.id == m_recording;
    }
    m_view.ShowChannelButtons(shown);
}

void StripPresenter::ShowPack()
{
    if (const project::Channel_Class* channel = Channel()) {
        m_view.ShowPack(ShownPackName(channel->FXPack_Name));
    }
}

void StripPresenter::ShowFile()
{
    const project::Channel_Class* channel = Channel();
    if (!channel) {
        return;
    }
    const auto event = channel->ChannelData->GetEventOBJ(channel->ChannelData->GetFirstEvent_ID());
    m_view.ShowFile(event ? event->Title : std::string());
}

} // namespace velmora::controls
