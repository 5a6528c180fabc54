#include "tests/audio/SoundFixture.h"

#include "core/MsgIds.h"
#include "core/Paths.h"
#include "project/ChannelDataClass.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

namespace velmora::audio {
namespace {

template <class Value>
void Put(std::ofstream& file, Value value)
{
    file.write(reinterpret_cast<const char*>(&value), sizeof value);
}

template <class Value>
Value Get(const std::string& bytes, std::size_t at)
{
    Value value{};
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

} // namespace

void WriteWav(std::string_view path, const WavSound& sound)
{
    const auto bytes = static_cast<std::uint32_t>(2 * sound.samples.size());
    const auto block = static_cast<std::uint16_t>(2 * sound.channels);
    std::ofstream file(core::PosixPath(path), std::ios::binary);
    file << "RIFF";
    Put(file, bytes + 36);
    file << "WAVEfmt ";
    Put(file, std::uint32_t{16});
    Put(file, std::uint16_t{1});
    Put(file, static_cast<std::uint16_t>(sound.channels));
    Put(file, sound.rate);
    Put(file, sound.rate * block);
    Put(file, block);
    Put(file, std::uint16_t{16});
    file << "data";
    Put(file, bytes);
    file.write(reinterpret_cast<const char*>(sound.samples.data()), bytes);
}

WavSound ReadWav(std::string_view path)
{
    std::ifstream file(core::PosixPath(path), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    WavSound sound;
    const std::size_t format = bytes.find("fmt ");
    const std::size_t data = bytes.find("data");
    if (format == std::string::npos || data == std::string::npos || bytes.size() < data + 8) {
        ADD_FAILURE() << "no PCM file: " << path;
        return sound;
    }
    sound.channels = Get<std::uint16_t>(bytes, format + 10);
    sound.rate = Get<std::int32_t>(bytes, format + 12);
    const std::size_t length = Get<std::uint32_t>(bytes, data + 4);
    EXPECT_EQ(length, bytes.size() - data - 8) << "the header tells the length";
    sound.samples.resize(std::min(length, bytes.size() - data - 8) / 2);
    bytes.copy(reinterpret_cast<char*>(sound.samples.data()), 2 * sound.samples.size(), data + 8);
    return sound;
}

bool ScriptedProgress::Update(std::int64_t positionMS, std::int64_t totalMS, std::int32_t meter)
{
    positions.push_back(positionMS);
    total = totalMS;
    loudest = std::max(loudest, meter);
    return positionMS != cancelAtMS;
}

SoundTest::SoundTest(std::int16_t outputDevice)
{
    m_environment->config.Global_OutputDevice = outputDevice;
    m_session = SoundSession::Start(*m_environment);
    m_project = std::make_unique<project::ProjectFile_Class>(*m_environment);
    m_project->InitializeClass();
}

core::MsgParametersClass SoundTest::Send(std::int32_t msgID, double channelID, double value, const std::string& text)
{
    core::MsgParametersClass params;
    params.ChannelID = channelID;
    params.Value = value;
    params.Text = text;
    m_project->MsgSender->SendMsg(-1, msgID, params);
    return params;
}

void SoundTest::Listen(std::int32_t priority, std::function<void(std::int32_t msgID)> heard)
{
    m_listeners.push_back(std::make_shared<core::MsgHandlerClass>(
        m_environment->ids,
        [heard = std::move(heard)](std::int32_t, std::int32_t msgID, core::MsgParametersClass&) { heard(msgID); }));
    m_project->MsgSender->Add_MsgHandlerOBJ(priority, m_listeners.back());
}

ExportTest::ExportTest(std::int16_t outputDevice)
    : SoundTest(outputDevice)
    , m_channel(&AddChannel())
    , m_export(std::make_unique<AudioExport>(*m_environment, *m_project, m_progress))
{
    m_export->SampleRate = 44100;
    m_export->Channels = 2;
    m_export->FilePath = MixPath();
    m_environment.disk.MakeFolderIfMissing(m_environment.Path("sounds"));
}

project::Channel_Class& ExportTest::AddChannel(std::int32_t volume)
{
    const double id = Send(core::Msg_AddMusicChannel, 0, 0).NewChannelID;
    Send(core::Msg_Channel_SetVolume, id, volume);
    return *m_project->Chn_GetChannelClassObj_by_ID(id);
}

project::CDC_Event_Wave_Class& ExportTest::AddClip(project::Channel_Class& channel, const std::string& file,
                                                   double timeMS, std::int32_t startMS, std::int32_t endMS, double gain)
{
    auto event = std::make_shared<project::CDC_Event_Wave_Class>();
    event->FilePath = file;
    event->StartMS = startMS;
    event->EndMS = endMS;
    event->GainFactor = gain;
    channel.ChannelData->SetEventObj(channel.ChannelData->AddEvent(0, timeMS), event);
    return *event;
}

AudioExport::Outcome ExportTest::Export()
{
    if (m_export->encoder_Format() == -1) {
        m_export->encoder_Format(AudioExport::kWav);
    }
    m_export->StartExport();
    return m_export->Result();
}

std::vector<std::string> ExportTest::FilesBesideTheMix() const
{
    return m_environment.disk.ListFiles(m_environment.folder.Path(), "*");
}

} // namespace velmora::audio
