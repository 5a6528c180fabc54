#include "audio/MasterVolume_Class.h"
#include "audio/Recorder_Class.h"
#include "soundlayer/soundlayer.h"
#include "tests/project/ProjectFixture.h"

#include <vector>

namespace velmora::project {
namespace {

class Project : public ProjectTest {
protected:
    core::MsgParametersClass AddWave(const std::string& file, double timePos, bool overwrite = false)
    {
        core::MsgParametersClass params;
        params.ChannelID = Voice(0).ClassID();
        params.FilePath = file;
        params.AddTimePosMS = timePos;
        params.FileStartMS = 100;
        params.OverwriteEvents = overwrite;
        return Send(core::Msg_AddEvent_Wave, params);
    }

    /// Start and end of the clips of the first voice channel, in the order of time.
    std::vector<std::pair<double, double>> Spans()
    {
        std::vector<std::pair<double, double>> spans;
        for (const EventRow* row : Voice(0).ChannelData->InTimeOrder()) {
            spans.emplace_back(row->TimePos, row->TimePos + row->EventOBJ->GetEventLength());
        }
        return spans;
    }
};

TEST_F(Project, ANewOneStandsInAFolderOfItsOwn)
{
    m_environment.disk.MakeFolderIfMissing(m_environment.Path("newprojects\\Project 1"));
    ProjectFile_Class& project = StartNew();
    EXPECT_EQ(project.GetAudioPath(), m_environment.Path("newprojects\\Project 2"));
    EXPECT_EQ(project.Recorder->ProjectFolder, project.GetAudioPath());
    EXPECT_FALSE(m_environment.disk.FileCanBeOpened(project.GetAudioPath() + "\\accheck.dat"));
    EXPECT_TRUE(project.IsNewProject());
    EXPECT_EQ(project.Chn_GetMusicChannel_TotalN(), 1);
    EXPECT_EQ(project.Chn_GetVoiceChannel_TotalN(), 4);
    EXPECT_EQ(Music(0).Title, "Music 1");
    EXPECT_EQ(Voice(3).Title, "Voice 4");
    EXPECT_EQ(project.Marks->GetTotalMarks(), 0);
    EXPECT_EQ(m_environment.ports.views.calls,
              (std::vector<std::string>{"InitializeMainWindow", "InitializeMusicFrame", "InitializeVoiceFrame",
                                        "InitializeEventsEditor", "InitializeEventsSmallView"}));
    EXPECT_TRUE(Messages().shown.empty());

    EXPECT_FALSE(project.CreateNewProject());
    EXPECT_EQ(Messages().LastText(), "ProjectFile::CreateNewProject already called, it is recommended to use another\n"
                                     "instance instead of call this function again.");
    m_environment.disk.DeleteEmptyFolder(m_environment.Path("newprojects\\Project 1"));
    m_project.reset();
    m_environment.files.FailEach(testing::FileOperation::MakeFolder);
    EXPECT_FALSE(Restart().CreateNewProject());
    EXPECT_EQ(Messages().LastText(), "Error creating folder");
}

TEST_F(Project, ChannelsKeepTheirOrderAndIdsAsTablesGrowAndGapsClose)
{
    ProjectFile_Class& project = StartNew();
    for (int i = 0; i < 20; ++i) {
        Send(core::Msg_AddVoiceChannel);
    }
    std::vector<core::ClassID> ids;
    for (int i = 0; i < 24; ++i) {
        ids.push_back(Voice(i).ClassID());
        EXPECT_EQ(project.Chn_GetChannelObj_by_Index(i + 1), &Voice(i));
    }
    EXPECT_EQ(project.Chn_GetChannelObj_by_Index(25), nullptr);
    EXPECT_EQ(project.Chn_GetChannelObj_by_Index(-1), nullptr);

    core::MsgParametersClass params;
    params.SelectChannelID = ids[7];
    Send(core::Msg_SelectVoiceChannel, params);
    EXPECT_EQ(project.Selected_VoiceChannel(), ids[7]);
    project.FX_ShowSetupForm(ids[7]);
    params.ChannelID = ids[7];
    Send(core::Msg_DeleteChannel, params);
    EXPECT_EQ(project.Selected_VoiceChannel(), core::kUnsetFloat);
    EXPECT_EQ(project.Chn_GetVoiceChannel_TotalN(), 23);
    EXPECT_EQ(Voice(7).ClassID(), ids[8]);
    EXPECT_EQ(project.Chn_GetChannelClassObj_by_ID(ids[7]), nullptr);
    EXPECT_EQ(project.Chn_GetMusicChannelObj_by_ID(ids[8]), nullptr);
    EXPECT_EQ(project.util_GetEvent_TimePos(ids[7], 10), -1);
    EXPECT_EQ(project.util_GetChannelType(ids[8]), Channel_Class::kVoice);
    EXPECT_EQ(project.util_GetFirstChannelID(), Music(0).ClassID());
}

TEST_F(Project, AnAudioFileBecomesAClipOrNothing)
{
    StartNew();
    WriteSound("a.wav", 1234);
    EXPECT_TRUE(AddWave("a.wav", 500).CancelDelivery);
    ASSERT_EQ(Spans().size(), 1u);
    const auto event = Voice(0).ChannelData->GetEventOBJ(Voice(0).ChannelData->GetFirstEvent_ID());
    EXPECT_EQ(event->FilePath, "a.wav");
    EXPECT_EQ(event->Title, "a.wav");
    EXPECT_EQ(event->StartMS, 100);
    EXPECT_EQ(event->EndMS, 1234);

    m_environment.disk.WriteTextFile(m_project->FixAudioFilePath("text.wav"), "no sound");
    for (const std::string file : {"text.wav", "none.wav", "..\\Project 1\\a.wav\\..\\..\\x"}) {
        EXPECT_TRUE(AddWave(file, 0).CancelDelivery);
        EXPECT_EQ(Messages().LastText(), "Invalid sound file: " + m_project->FixAudioFilePath(file));
    }
    EXPECT_EQ(Spans().size(), 1u);
}

TEST_F(Project, AClipThatOverwritesMakesRoom)
{
    StartNew();
    WriteSound("a.wav", 1100);
    AddClip(Voice(0), 0);
    AddClip(Voice(0), 995);
    AddClip(Voice(0), 2500);
    AddWave("a.wav", 500, true);
    // Shortened from the left; a rest of less than 10 ms would not be worth it; what begins later stays.
    EXPECT_EQ(Spans(), (std::vector<std::pair<double, double>>{{0, 500}, {500, 1500}, {995, 1995}, {2500, 3500}}));
    AddWave("a.wav", 995, true);
    EXPECT_EQ(Spans(), (std::vector<std::pair<double, double>>{{0, 500}, {500, 995}, {995, 1995}, {2500, 3500}}));
    AddWave("a.wav", 491, true);
    EXPECT_EQ(Spans(), (std::vector<std::pair<double, double>>{{0, 491}, {491, 1491}, {995, 1995}, {2500, 3500}}));
}

TEST_F(Project, AClipMovesBetweenChannels)
{
    ProjectFile_Class& project = StartNew();
    core::MsgParametersClass move;
    move.EventID = AddClip(Voice(0), 700);
    const auto event = Voice(0).ChannelData->GetEventOBJ(move.EventID);
    AddClip(Voice(2), 0);
    move.FromChannelID = Voice(0).ClassID();
    move.ToChannelID = Voice(2).ClassID();
    const std::int32_t id = Send(core::Msg_EventEdit_MoveVertical, move).NewEventID;
    EXPECT_FALSE(project.util_EventExists(Voice(0).ClassID(), move.EventID));
    EXPECT_EQ(project.util_GetEvent_OBJ(Voice(2).ClassID(), id), event);
    EXPECT_EQ(project.util_GetEvent_TimePos(Voice(2).ClassID(), id), 700);
    EXPECT_EQ(project.util_GetChannelLength(Voice(0).ClassID()), 0);
    EXPECT_EQ(project.util_GetChannelLength(Voice(2).ClassID()), 1700);
    Send(core::Msg_EventEdit_MoveVertical, move);
    EXPECT_EQ(Voice(2).ChannelData->EventCount(), 2u);
}

TEST_F(Project, ADefaultPackGreetsEachNewChannelOfItsKind)
{
    StartNew();
    core::MsgParametersClass save;
    save.ChannelID = Voice(0).ClassID();
    m_environment.disk.MakeFolderIfMissing(m_environment.Path("presets\\FxPacks-Voice"));
    save.FXPackFile = m_environment.Path("presets\\FxPacks-Voice\\default.pack");
    Send(core::Msg_FXPack_Save, save);
    Send(core::Msg_AddMusicChannel);
    Send(core::Msg_AddVoiceChannel);
    EXPECT_EQ(Voice(4).FXPack_Name, "default");
    EXPECT_EQ(Music(1).FXPack_Name, "");
}

TEST_F(Project, ItsEndSilencesAllThatListened)
{
    ProjectFile_Class& project = StartNew();
    project.FX_ShowSetupForm(Voice(0).ClassID());
    const std::shared_ptr<core::MsgSenderClass> bus = project.MsgSender;
    const std::vector<std::uint32_t> mixers{Voice(0).BassInMix_Handle, Voice(0).BassOutMix_Handle,
                                            project.MasterVolume->BassMixStreamHandle(),
                                            project.MasterVolume->RealMixHandle()};
    const std::string folder = project.GetAudioPath();
    m_project.reset();
    for (const std::uint32_t mixer : mixers) {
        float volume = 0;
        EXPECT_FALSE(BASS_ChannelGetAttribute(mixer, BASS_ATTRIB_VOL, &volume));
    }
    core::MsgParametersClass params;
    bus->SendMsg(-1, core::Msg_Refresh, params);
    bus->SendMsg(-1, core::Msg_AddVoiceChannel, params);
    EXPECT_EQ(params.NewChannelID, 0);
    EXPECT_TRUE(m_environment.disk.FileCanBeOpened(folder + "\\accheck.dat"));
    EXPECT_TRUE(m_environment.ports.views.calls.back().starts_with("CloseFXSetupForm"))
        << m_environment.ports.views.calls.back();
}

} // namespace
} // namespace velmora::project
