#include "project/internal/ChannelEffects.h"

#include "core/MsgIds.h"
#include "core/TextUtilities.h"
#include "effects/FX_ChainContainer_Class.h"
#include "project/Channel_Class.h"

namespace velmora::project {
namespace {

constexpr const char* kCustom = "(Custom)";
/// A pack is some kilobytes; what is larger is none.
constexpr std::int64_t kGreatestPackBytes = std::int64_t{16} << 20;

} // namespace

ChannelEffects::ChannelEffects(core::Environment& environment, Channel_Class& channel)
    : m_environment(environment)
    , m_channel(channel)
{
}

bool ChannelEffects::Handle(std::int32_t msgID, core::MsgParametersClass& params)
{
    switch (msgID) {
    case core::Msg_FXPack_Load:
        LoadPack(params);
        return true;
    case core::Msg_FXPack_Save:
        SavePack(params);
        return true;
    case core::Msg_FX_AddChannel:
    case core::Msg_FX_RemoveChannel:
        m_channel.FX->Restart([&] {
            if (msgID == core::Msg_FX_AddChannel) {
                m_channel.FX->AddChannel();
            } else {
                m_channel.FX->RemoveChannel(params.FXChannelID);
            }
        });
        m_channel.FXPack_Name = kCustom;
        return true;
    default:
        return EditChain(msgID, params);
    }
}

bool ChannelEffects::EditChain(std::int32_t msgID, const core::MsgParametersClass& params)
{
    if (msgID < core::Msg_FX_Add || msgID > core::Msg_FX_SetChannelVolume) {
        return false;
    }
    const auto chain = m_channel.FX->Get_FXChainObj_by_ID(params.FXChannelID);
    if (!chain) {
        return true;
    }
    switch (msgID) {
    case core::Msg_FX_Add:
        m_channel.FX->Restart([&] { chain->AddFX(params.FXPriority, params.FXEnabled, params.FXDataOBJ); });
        break;
    case core::Msg_FX_Delete:
        m_channel.FX->Restart([&] { chain->RemoveFX(params.FXID); });
        break;
    case core::Msg_FX_SetEnabled:
        m_channel.FX->Restart([&] { chain->SetFX_Status(params.FXID, params.FXEnabled); });
        break;
    case core::Msg_FX_ChangePriority:
        m_channel.FX->Restart([&] { chain->ChangeFX_Priority(params.FXID, params.FXPriority); });
        break;
    case core::Msg_FX_SetParams:
        if (const auto* item = chain->GetFxClass_by_ID(params.FXID)) {
            item->FxDataOBJ->LoadXMLData(params.FXParamsXML);
            chain->UpdateFX_Pars_onStream(params.FXID);
        }
        break;
    case core::Msg_FX_SetChannelPan:
        chain->pan(params.FXLevel);
        break;
    case core::Msg_FX_SetChannelVolume:
        chain->volume(params.FXLevel);
        break;
    default:
        break;
    }
    if (msgID != core::Msg_FX_SetEnabled) {
        m_channel.FXPack_Name = kCustom;
    }
    return true;
}

void ChannelEffects::LoadPack(core::MsgParametersClass& params)
{
    const std::string text = m_environment.files.ReadTextFile(params.FXPackFile, kGreatestPackBytes);
    if (text.empty()) {
        m_environment.ports.messages.Show("FXPack: Error loading file", core::Icon::Exclamation);
        params.CancelDelivery = true;
        return;
    }
    if (!m_channel.FX->LoadPack(text)) {
        m_environment.ports.messages.Show("FXPack: Error loading XML data", core::Icon::Exclamation);
        return;
    }
    m_channel.FXPack_Name = core::FileExtensionCut(core::FileNameOfPath(params.FXPackFile));
}

void ChannelEffects::SavePack(core::MsgParametersClass& params)
{
    if (!m_environment.files.WriteTextFile(params.FXPackFile, m_channel.FX->GetXMLData())) {
        m_environment.ports.messages.Show("FXPack: Error saving file", core::Icon::Exclamation);
        params.CancelDelivery = true;
        return;
    }
    m_channel.FXPack_Name = core::FileExtensionCut(core::FileNameOfPath(params.FXPackFile));
}

} // namespace velmora::project
