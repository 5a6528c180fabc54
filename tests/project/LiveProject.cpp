#include "tests/project/LiveProject.h"

#include "audio/AudioPlayer_Class.h"
#include "core/Units.h"
#include "engine/audioplayer.h"
#include "tests/support/Becomes.h"

#include <iterator>
#include <sstream>
#include <vector>

namespace velmora::project {

LiveProject::LiveProject(std::uint32_t seed)
    : m_random(seed)
{
}

void LiveProject::Open()
{
    m_environment->LoadSettings();
    const std::string path = SaveSong();
    std::string wav = Read(m_project->FixAudioFilePath("b.wav"));
    wav.replace(44, wav.size() - 44, wav.size() - 44, '\x30');
    EXPECT_TRUE(m_environment.disk.WriteTextFile(m_project->FixAudioFilePath("b.wav"), wav));
    core::MsgParametersClass chain;
    chain.ChannelID = Music(0).ClassID();
    Send(core::Msg_FX_AddChannel, chain);
    SendToChannel(core::Msg_Metronome_Enable, 0, core::kTrue);
    SendToChannel(core::Msg_Metronome_SetOnPlayback, 0, core::kTrue);
    SendToChannel(core::Msg_Metronome_SetBPM, 0, 20.5);
    core::MsgParametersClass click;
    click.Text = m_project->FixAudioFilePath("b.wav");
    Send(core::Msg_Metronome_SetFile, click);
    EXPECT_TRUE(m_project->SaveProject(""));
    EXPECT_TRUE(Load(path));
}

void LiveProject::Edit()
{
    Channel_Class& channel = *m_project->Chn_GetChannelObj_by_Index(
        static_cast<std::int32_t>(m_random() % static_cast<std::uint32_t>(m_project->Chn_GetChannelClass_TotalN())));
    const auto rows = channel.ChannelData->InTimeOrder();
    const std::int32_t id = rows.empty() ? -1 : rows[m_random() % rows.size()]->ID;
    core::MsgParametersClass params;
    params.ChannelID = channel.ClassID();
    params.EventID = id;
    const auto far = static_cast<std::int32_t>(m_random() % 2000);
    const std::size_t kind = m_random() % 12;
    if (kind == 10) {
        m_project->Undo->AddUndo("volume", kUndoChannel, channel.ClassID());
        params.Value = static_cast<double>(m_random() % 101);
        Send(core::Msg_Channel_SetVolume, params);
        return;
    }
    if (kind == 11 && m_project->Chn_GetChannelClass_TotalN() < 8) {
        m_project->Undo->AddUndo("channel", kUndoProject);
        Send(core::Msg_AddVoiceChannel);
        return;
    }
    if (id < 0 || (kind == 0 && rows.size() < 6)) {
        m_project->Undo->AddUndo("clip", kUndoEvents, channel.ClassID());
        AddClip(channel, far, "b.wav");
        return;
    }
    switch (kind) {
    case 1:
        m_project->Undo->AddUndo("delete", kUndoEvents, channel.ClassID());
        Send(core::Msg_DeleteEvent, params);
        break;
    case 2:
        m_project->Undo->AddUndo("split", kUndoEvents, channel.ClassID());
        params.SplitPosMS = far % 400;
        Send(core::Msg_EventEdit_Split, params);
        break;
    case 3:
        m_project->Undo->AddUndo("vertical", kUndoProject);
        params.FromChannelID = channel.ClassID();
        params.ToChannelID = m_project->Chn_GetChannelObj_by_Index(0)->ClassID();
        Send(core::Msg_EventEdit_MoveVertical, params);
        break;
    case 4:
        m_project->Undo->AddUndo("fade", kUndoEvents, channel.ClassID());
        params.Value = far / 4.0;
        Send(core::Msg_EventEdit_SetFadeIn, params);
        break;
    case 5:
        m_project->Undo->AddUndo("delete channel", kUndoProject);
        if (m_project->Chn_GetChannelClass_TotalN() > 4) {
            Send(core::Msg_DeleteChannel, params);
        }
        break;
    case 6:
    case 7:
        m_project->Undo->AddUndo("resize", kUndoEvents, channel.ClassID());
        params.EditDeltaMS = far - 1000;
        Send(kind == 6 ? core::Msg_EventEdit_ResizeLeft : core::Msg_EventEdit_ResizeRight, params);
        break;
    default:
        m_project->Undo->AddUndo("move", kUndoEvents, channel.ClassID());
        params.NewTimePosMS = far - 1000;
        Send(core::Msg_EventEdit_Move, params);
        break;
    }
}

void LiveProject::Hear(std::int32_t ms)
{
    const std::int32_t until = player_GetTimePos() + ms;
    EXPECT_TRUE(testing::Becomes([until] { return player_GetTimePos() >= until; }));
}

std::set<std::string> LiveProject::EngineClips() const
{
    ::testing::internal::CaptureStderr();
    dbg_PrintEventList();
    std::istringstream text(::testing::internal::GetCapturedStderr());
    std::set<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        if (m_project->util_ChannelExists(std::stoi(line))) {
            lines.insert(line);
        }
    }
    return lines;
}

std::set<std::string> LiveProject::ModelClips() const
{
    std::set<std::string> lines;
    for (std::int32_t i = 0; i < m_project->Chn_GetChannelClass_TotalN(); ++i) {
        const Channel_Class& channel = *m_project->Chn_GetChannelObj_by_Index(i);
        for (const EventRow* row : channel.ChannelData->InTimeOrder()) {
            const CDC_Event_Wave_Class& event = *row->EventOBJ;
            std::ostringstream line;
            line << core::RoundToInt(channel.ClassID()) << ' ' << row->ID << " at " << core::RoundToInt(row->TimePos)
                 << " ms: " << event.StartMS << ".." << event.EndMS << " of "
                 << m_project->FixAudioFilePath(event.FilePath) << ", gain " << event.GainFactor << ", fades "
                 << event.FadeIn_EndMS << " and " << event.FadeOut_StartMS;
            lines.insert(line.str());
        }
    }
    return lines;
}

} // namespace velmora::project
