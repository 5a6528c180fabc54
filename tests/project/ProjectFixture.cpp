#include "tests/project/ProjectFixture.h"

namespace velmora::project {
namespace {

std::string SilentWav(int ms)
{
    constexpr std::uint32_t kRate = 8000;
    const auto bytes = static_cast<std::uint32_t>(ms) * kRate / 1000 * 2;
    std::string wav;
    const auto put = [&wav](std::uint32_t value, int width) {
        for (int i = 0; i < width; ++i) {
            wav += static_cast<char>(value >> (8 * i));
        }
    };
    wav += "RIFF";
    put(36 + bytes, 4);
    wav += "WAVEfmt ";
    put(16, 4);
    put(1, 2);
    put(1, 2);
    put(kRate, 4);
    put(kRate * 2, 4);
    put(2, 2);
    put(16, 2);
    wav += "data";
    put(bytes, 4);
    wav.append(bytes, '\0');
    return wav;
}

} // namespace

ProjectTest::ProjectTest()
{
    m_environment->config.Global_OutputDevice = 0;
    m_session = audio::SoundSession::Start(*m_environment);
    EXPECT_NE(m_session, nullptr);
}

ProjectTest::~ProjectTest()
{
    m_project.reset();
}

ProjectFile_Class& ProjectTest::Restart()
{
    m_project.reset();
    m_environment->ids.Reset();
    m_project = std::make_unique<ProjectFile_Class>(*m_environment);
    m_project->InitializeClass();
    return *m_project;
}

ProjectFile_Class& ProjectTest::StartNew()
{
    EXPECT_TRUE(Restart().CreateNewProject());
    return *m_project;
}

bool ProjectTest::Load(const std::string& path, OpenMode mode, bool ignoreMissing)
{
    return Restart().LoadProject(path, mode, ignoreMissing);
}

core::MsgParametersClass ProjectTest::Send(std::int32_t msgID, core::MsgParametersClass params)
{
    m_project->MsgSender->SendMsg(-1, msgID, params);
    return params;
}

core::MsgParametersClass ProjectTest::SendToChannel(std::int32_t msgID, core::ClassID channel, double value)
{
    core::MsgParametersClass params;
    params.ChannelID = channel;
    params.Value = value;
    return Send(msgID, params);
}

std::int32_t ProjectTest::AddClip(const Channel_Class& channel, double timePos, const std::string& file)
{
    core::MsgParametersClass params;
    params.ChannelID = channel.ClassID();
    params.TimePosMS = timePos;
    params.EventOBJ = std::make_shared<CDC_Event_Wave_Class>();
    params.EventOBJ->FilePath = file;
    params.EventOBJ->Title = file;
    params.EventOBJ->EndMS = 1000;
    return Send(core::Msg_AddEvent, params).EventID;
}

std::string ProjectTest::WriteSound(const std::string& path, int ms)
{
    const std::string absolute = m_project ? m_project->FixAudioFilePath(path) : path;
    EXPECT_TRUE(m_environment.disk.WriteTextFile(absolute, SilentWav(ms)));
    return absolute;
}

std::string ProjectTest::SaveSong()
{
    StartNew();
    WriteSound("a.wav");
    WriteSound("b.wav", 2000);
    AddClip(Voice(0), 500, "a.wav");
    AddClip(Voice(0), 0, "b.wav");
    AddClip(Music(0), 250.5, "b.wav");
    const std::string path = m_environment.Path("Song.audioproj");
    EXPECT_TRUE(m_project->SaveProject(path));
    return path;
}

std::string ProjectTest::Read(const std::string& path) const
{
    return m_environment.disk.ReadTextFile(path, core::Files::kMaxTextBytes);
}

std::map<std::string, std::string> ProjectTest::Folder(const std::string& path) const
{
    std::map<std::string, std::string> contents;
    for (const std::string& name : m_environment.disk.ListFiles(path, "*")) {
        if (name != "accheck.dat") {
            contents[name] = Read(path + '\\' + name);
        }
    }
    return contents;
}

} // namespace velmora::project
