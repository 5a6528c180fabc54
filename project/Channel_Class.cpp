#include "project/Channel_Class.h"

#include "audio/MasterVolume_Class.h"
#include "core/MsgIds.h"
#include "core/SoundEdit.h"
#include "core/Units.h"
#include "effects/FX_ChainContainer_Class.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"
#include "project/ChannelDataClass.h"
#include "project/LoadContext.h"
#include "project/ProjectFile_Class.h"
#include "project/UndoData_Class.h"
#include "project/internal/ChannelEdits.h"
#include "project/internal/ChannelEffects.h"
#include "project/internal/ChannelStrip.h"

#include <algorithm>
#include <string>

namespace velmora::project {
namespace {

constexpr std::int32_t kPriority = 80;
constexpr core::ClassID kNoID = -1;

} // namespace

Channel_Class::Channel_Class(ProjectFile_Class& project)
    : m_project(project)
    , m_strip(std::make_unique<ChannelStrip>(project.Environment().ports.messages,
                                             project.Environment().config.BassDevice_Freq,
                                             project.MasterVolume->BassMixStreamHandle()))
    , m_classID(project.Environment().ids.Draw())
    , m_handler(std::make_shared<core::MsgHandlerClass>(
          project.Environment().ids,
          [this](std::int32_t sender, std::int32_t msg, core::MsgParametersClass& params) {
              MsgHandler_MsgReceived(sender, msg, params);
          }))
    , m_edits(std::make_unique<ChannelEdits>(project, *this))
    , m_effects(std::make_unique<ChannelEffects>(project.Environment(), *this))
{
    BassInMix_Handle = m_strip->InMix();
    BassOutMix_Handle = m_strip->OutMix();
    m_project.MsgSender->Add_MsgHandlerOBJ(kPriority, m_handler);
    ChannelData = std::make_unique<ChannelDataClass>(m_project.Environment(), m_project.MsgSender);
    ChannelData->ReceiveMsgs(true, kPriority);
    FX = NewEffects();
    FX->AddChannel();
    FX->FX_Start();
}

Channel_Class::~Channel_Class()
{
    m_handler->Detach();
    const core::SoundEdit edit;
    FX->FX_Stop();
    m_strip.reset();
}

void Channel_Class::SetChannelMode(std::int32_t mode)
{
    if (m_modeSet) {
        m_project.Environment().ports.messages.Show("Channel_Class::ChannelMode already called");
    }
    m_modeSet = true;
    m_mode = mode;
}

void Channel_Class::SetDefaultValues(bool autoTitle)
{
    Volume = 80;
    Pan = 0;
    Mute = false;
    Solo = false;
    Voice_Removal = 0;
    Pitch = 0;
    Title = "Music";
    Gain = 0;
    if (autoTitle) {
        const bool voice = m_mode == kVoice;
        std::int32_t& counter = voice ? m_project.chn_Voice_ChannelCounter : m_project.chn_Music_ChannelCounter;
        Title = (voice ? "Voice " : "Music ") + std::to_string(counter++);
    }
}

persistence::SharedText Channel_Class::GetSharedXML() const
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("Channel_Class");
    writer.Add_Element("ID", m_classID);
    writer.Add_Element("Title", std::string_view(Title));
    writer.Add_Element("FXPack_Name", std::string_view(FXPack_Name));
    writer.Add_Element("Volume", Volume);
    writer.Add_Element("Pan", Pan);
    writer.Add_Element("Mute", Mute);
    writer.Add_Element("Solo", Solo);
    writer.Add_Element("Gain", Gain);
    writer.Add_Element("Voice_Removal", Voice_Removal);
    writer.Add_Element("Pitch", Pitch);
    writer.Add_Element("LiveStatus", LiveStatus);
    writer.Add_Element("ChannelMode", m_mode);
    writer.Add_RawElement("FX", FX->GetSharedXML());
    writer.Add_RawElement("Events", ChannelData->GetSharedXML());
    return writer.GetSharedXML();
}

bool Channel_Class::LoadXMLData(std::string_view xml, bool assignNewID, bool loadChildren, LoadContext& load)
{
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(xml);
    return LoadXMLData(reader, assignNewID, loadChildren, load);
}

core::ClassID Channel_Class::StatedID(persistence::UTIL_XMLRead& reader)
{
    core::ClassID id = kNoID;
    if (reader.MasterTagIs("channel_class")) {
        reader.ReadElement("ID", id, kNoID);
    }
    return id;
}

bool Channel_Class::LoadXMLData(persistence::UTIL_XMLRead& reader, bool assignNewID, bool loadChildren,
                                LoadContext& load)
{
    const core::ClassID statedID = StatedID(reader);
    std::int32_t statedMode = -1;
    if (statedID == kNoID) {
        return false;
    }
    m_classID = assignNewID ? m_project.Environment().ids.Draw() : load.Adopt(statedID);
    LoadSettings(reader);
    reader.ReadElement("ChannelMode", statedMode, -1);
    if (statedMode != kMusic && statedMode != kVoice) {
        return false;
    }
    m_mode = statedMode;
    m_modeSet = true;
    if (!loadChildren) {
        return true;
    }

    const core::SoundEdit edit;
    if (!FX->LoadXMLData(reader.ReadRaw("FX").value_or(std::string_view()), assignNewID)) {
        return false;
    }
    ChannelData = std::make_unique<ChannelDataClass>(m_project.Environment(), m_project.MsgSender);
    return ChannelData->LoadXMLData(reader.ReadRaw("Events").value_or(std::string_view()), true, load);
}

void Channel_Class::LoadSettings(persistence::UTIL_XMLRead& reader)
{
    reader.ReadElement("Title", Title, "");
    reader.ReadElement("FXPack_Name", FXPack_Name, "");
    reader.ReadElement("Voice_Removal", Voice_Removal, 0);
    reader.ReadElement("Pitch", Pitch, 0);
    reader.ReadElement("Volume", Volume, 100);
    reader.ReadElement("Pan", Pan, 0);
    reader.ReadElement("Mute", Mute, false);
    reader.ReadElement("Solo", Solo, false);
    reader.ReadElement("Gain", Gain, 1);
    reader.ReadElement("LiveStatus", LiveStatus, false);
    Voice_Removal = std::clamp(Voice_Removal, 0, 100);
    Volume = std::clamp(Volume, 0, 100);
    Pan = std::clamp(Pan, -100, 100);
}

double Channel_Class::Length() const
{
    return ChannelData->Length();
}

void Channel_Class::MsgHandler_MsgReceived(std::int32_t /*SenderID*/, std::int32_t MsgID,
                                           core::MsgParametersClass& Params)
{
    if (MsgID == core::Msg_Refresh || (MsgID == core::Msg_UndoRestored && Params.UndoDataType == kUndoProject)) {
        Refresh();
        return;
    }
    if (Params.ChannelID != m_classID) {
        return;
    }
    if (MsgID == core::Msg_UndoRestored && Params.UndoDataType == kUndoChannel) {
        Refresh();
    } else if (!HandleStrip(MsgID, Params) && !m_effects->Handle(MsgID, Params)) {
        m_edits->Handle(MsgID, Params);
    }
}

bool Channel_Class::HandleStrip(std::int32_t msgID, const core::MsgParametersClass& params)
{
    switch (msgID) {
    case core::Msg_SoloChanged:
        UpdateOutputVolume();
        return true;
    case core::Msg_Channel_SetPan:
        Pan = core::RoundToInt(params.Value);
        m_strip->SetPan(Pan);
        return true;
    case core::Msg_Channel_SetVolume:
        Volume = core::RoundToInt(params.Value);
        UpdateOutputVolume();
        return true;
    case core::Msg_Channel_SetPitch:
        Pitch = core::RoundToInt(params.Value);
        return true;
    case core::Msg_Channel_SetVoiceRemoval:
        Voice_Removal = core::RoundToInt(params.Value);
        m_strip->SetVoiceRemoval(Voice_Removal);
        return true;
    case core::Msg_Channel_SetGain:
        Gain = params.Value;
        m_strip->SetGain(Gain);
        return true;
    case core::Msg_Channel_SetMute:
        Mute = params.Value != 0;
        UpdateOutputVolume();
        return true;
    case core::Msg_Channel_SetSolo:
        Solo = params.Value != 0;
        UpdateOutputVolume();
        return true;
    case core::Msg_Channel_SetTitle:
        Title = params.Text;
        return true;
    case core::Msg_Channel_SetLive:
        LiveStatus = params.Value != 0;
        return true;
    default:
        return false;
    }
}

void Channel_Class::Refresh()
{
    const auto reapply = [this](std::int32_t msgID, double value) {
        core::MsgParametersClass params;
        params.ChannelID = m_classID;
        params.Value = value;
        MsgHandler_MsgReceived(core::RoundToInt(m_classID), msgID, params);
    };
    const core::SoundEdit edit;
    reapply(core::Msg_Channel_SetVoiceRemoval, Voice_Removal);
    reapply(core::Msg_Channel_SetVolume, Volume);
    reapply(core::Msg_Channel_SetPan, Pan);
    reapply(core::Msg_Channel_SetMute, Mute ? core::kTrue : core::kFalse);
    reapply(core::Msg_Channel_SetGain, Gain);
}

void Channel_Class::UpdateOutputVolume()
{
    const bool heard = !Mute && m_project.util_SoloEnabled() == Solo;
    m_strip->SetOutputVolume(heard ? Volume : 0);
}

std::unique_ptr<effects::FX_ChainContainer_Class> Channel_Class::NewEffects() const
{
    auto effects = std::make_unique<effects::FX_ChainContainer_Class>(m_project.Environment());
    effects->BassInStream_Handle = m_strip->InMix();
    effects->BassOutStream_Handle = m_strip->OutMix();
    return effects;
}

} // namespace velmora::project
