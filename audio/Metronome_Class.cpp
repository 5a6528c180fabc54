#include "audio/Metronome_Class.h"

#include "core/BassHelpers.h"
#include "core/MsgIds.h"
#include "core/Units.h"
#include "engine/audioplayer.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"
#include "soundlayer/soundlayer.h"

#include <cmath>

namespace velmora::audio {
namespace {

constexpr std::int32_t kBusPriority = 35;
constexpr std::int32_t kForRecording = 1;

} // namespace

Metronome_Class::Metronome_Class(core::Environment& environment, core::MsgSenderClass& bus,
                                 const Recorder_Class& recorder)
    : m_classID(environment.ids.Draw())
    , m_recorder(recorder)
    , m_programFolder(environment.ports.shellFolders.AppExe())
    , m_filePath(m_programFolder + "\\sounds\\hihat.wav")
    , m_msgHandler(std::make_shared<core::MsgHandlerClass>(
          environment.ids, [this](std::int32_t, std::int32_t msgID, core::MsgParametersClass& params) {
              MsgHandler_MsgReceived(msgID, params);
          }))
{
    bus.Add_MsgHandlerOBJ(kBusPriority, m_msgHandler);
    OpenClick();
}

Metronome_Class::~Metronome_Class()
{
    m_msgHandler->Detach();
    player_SetMetronome(0, m_timeMS, 0);
    FreeClick();
}

std::string Metronome_Class::GetXMLData() const
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("Metronome_Class");
    writer.Add_Element("wMetronome_Enabled", m_enabled);
    writer.Add_Element("wMetronome_PlayerEnabled", m_playerEnabled);
    writer.Add_Element("wMetronome_RecorderEnabled", m_recorderEnabled);
    writer.Add_Element("wMetronome_TimeMs", m_timeMS);
    writer.Add_Element("wMetronome_Volume", m_volume);
    writer.Add_Element("wMetronome_FilePath", m_filePath);
    return writer.GetXMLString();
}

bool Metronome_Class::LoadXMLData(std::string_view XMLData)
{
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(XMLData);
    if (!reader.MasterTagIs("metronome_class")) {
        return false;
    }
    double timeMS = m_timeMS;
    reader.ReadElement("wMetronome_Enabled", m_enabled, m_enabled);
    reader.ReadElement("wMetronome_PlayerEnabled", m_playerEnabled, m_playerEnabled);
    reader.ReadElement("wMetronome_RecorderEnabled", m_recorderEnabled, m_recorderEnabled);
    reader.ReadElement("wMetronome_TimeMs", timeMS, m_timeMS);
    reader.ReadElement("wMetronome_Volume", m_volume, m_volume);
    reader.ReadElement("wMetronome_FilePath", m_filePath, "");
    if (std::isfinite(timeMS) && timeMS > 0) {
        m_timeMS = timeMS;
    }
    OpenClick();
    return true;
}

void Metronome_Class::MsgHandler_MsgReceived(std::int32_t MsgID, core::MsgParametersClass& Params)
{
    const bool on = Params.Value != 0;
    switch (MsgID) {
    case core::Msg_Player_Play:
        ApplyToEngine(Params.MetronomeScratch == kForRecording);
        break;
    case core::Msg_Metronome_Enable:
        m_enabled = on;
        Reapply();
        break;
    case core::Msg_Metronome_SetOnPlayback:
        m_playerEnabled = on;
        Reapply();
        break;
    case core::Msg_Metronome_SetOnRecording:
        m_recorderEnabled = on;
        Reapply();
        break;
    case core::Msg_Metronome_SetBPM:
        m_timeMS = Params.Value;
        Reapply();
        break;
    case core::Msg_Metronome_SetVolume:
        m_volume = core::RoundToInt(Params.Value);
        core::BassSetAttributes(m_stream, -1, m_volume, -101);
        break;
    case core::Msg_Metronome_SetFile:
        m_filePath = Params.Text;
        OpenClick();
        if (m_stream == 0) {
            // Tells the dialog that the file does not open.
            Params.Text.clear();
        }
        Reapply();
        break;
    default:
        break;
    }
}

void Metronome_Class::ApplyToEngine(bool recording)
{
    const bool sounds = m_enabled && (recording ? m_recorderEnabled : m_playerEnabled);
    player_SetMetronome(sounds ? 1 : 0, m_timeMS, sounds ? m_stream : 0);
}

void Metronome_Class::Reapply()
{
    ApplyToEngine(m_recorder.isRecording());
}

void Metronome_Class::OpenClick()
{
    FreeClick();
    const bool absolute = m_filePath.find(':') != std::string::npos;
    m_stream = core::BassOpenAudioFile(absolute ? m_filePath : m_programFolder + "\\" + m_filePath, 0);
    if (m_stream != 0) {
        core::BassSetAttributes(m_stream, -1, m_volume, -101);
    }
}

void Metronome_Class::FreeClick()
{
    if (m_stream != 0) {
        BASS_StreamFree(m_stream);
        m_stream = 0;
    }
}

} // namespace velmora::audio
