#include "tests/audio/RecorderFixture.h"

#include "core/Units.h"
#include "soundlayer/soundlayer.h"

#include <array>
#include <chrono>

namespace velmora::audio {

RecorderTest::RecorderTest()
{
    StartNew();
    Use();
}

Recorder_Class& RecorderTest::Use(std::int32_t voice)
{
    Recorder().InputDeviceOverride = m_device.Number();
    Select(Voice(voice).ClassID());
    return Recorder();
}

void RecorderTest::Select(core::ClassID channelID)
{
    core::MsgParametersClass params;
    params.SelectChannelID = channelID;
    Send(core::Msg_SelectVoiceChannel, params);
}

void RecorderTest::Seek(std::int32_t positionMS)
{
    core::MsgParametersClass params;
    params.PlayFromMS = core::kUnset;
    params.PlayToMS = positionMS;
    Send(core::Msg_Player_SetRange, params);
}

void RecorderTest::Record(std::int32_t positionMS, std::int32_t ms)
{
    Seek(positionMS);
    Start();
    ASSERT_TRUE(Recorder().isRecording()) << Messages().LastText();
    ASSERT_TRUE(m_device.Deliver(ms, 500));
    Stop();
}

bool RecorderTest::InUse() const
{
    const std::array<std::int16_t, 2> frame{};
    const auto now = std::chrono::nanoseconds(m_device.Now().time_since_epoch());
    return Sound_RecordDeliver(m_device.Number(), frame.data(), 1, now.count()) != 0;
}

core::MsgParametersClass RecorderTest::SetLive(core::ClassID channelID, bool on)
{
    return SendToChannel(core::Msg_Channel_SetLive, channelID, on ? core::kTrue : core::kFalse);
}

std::vector<std::string> RecorderTest::Clips(const project::Channel_Class& channel) const
{
    std::vector<std::string> clips;
    for (const project::EventRow* row : channel.ChannelData->InTimeOrder()) {
        clips.push_back(row->EventOBJ->FilePath + " at " + std::to_string(core::RoundToInt(row->TimePos)));
    }
    return clips;
}

std::vector<std::string> RecorderTest::Files() const
{
    std::vector<std::string> names;
    for (const auto& [name, text] : Folder(m_project->GetAudioPath())) {
        names.push_back(name);
    }
    return names;
}

bool RecorderTest::EndsByItself()
{
    return testing::Becomes([this] {
        m_environment.ports.timers.Advance(std::chrono::milliseconds(200));
        return !Recorder().isRecording();
    });
}

std::string RecorderTest::Journal(const std::string& wav) const
{
    return Read(TakeJournal::PathFor(m_project->FixAudioFilePath(wav)));
}

} // namespace velmora::audio
