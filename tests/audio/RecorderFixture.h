#pragma once

#include "audio/Recorder_Class.h"
#include "project/Undo_Class.h"
#include "tests/audio/ScriptedCapture.h"
#include "tests/project/ProjectFixture.h"
#include "tests/support/Becomes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velmora::audio {

/// A project whose recorder takes what a scripted device delivers, with a voice channel selected.
class RecorderTest : public project::ProjectTest {
protected:
    /// A new project that was never saved.
    RecorderTest();
    /// The project goes before its device.
    ~RecorderTest() override { m_project.reset(); }

    /// After each change of the project: the scripted device, and `voice` as the target.
    Recorder_Class& Use(std::int32_t voice = 0);
    Recorder_Class& Recorder() { return *m_project->Recorder; }
    void Select(core::ClassID channelID);
    void Seek(std::int32_t positionMS);
    /// What the message looks like afterwards.
    core::MsgParametersClass Start() { return Send(core::Msg_Recorder_Start); }
    core::MsgParametersClass Stop() { return Send(core::Msg_Recorder_Stop); }
    /// A take of `ms` at `positionMS`.
    void Record(std::int32_t positionMS, std::int32_t ms = 100);
    /// Somebody captures from the device.
    bool InUse() const;
    core::MsgParametersClass SetLive(core::ClassID channelID, bool on);

    /// "file at position" of each clip of the channel.
    std::vector<std::string> Clips(const project::Channel_Class& channel) const;
    /// The files of the audio folder but for the lock.
    std::vector<std::string> Files() const;

    /// The take, as its timer goes.
    bool EndsByItself();
    /// The text of the journal beside a sound file of the project.
    std::string Journal(const std::string& wav) const;

    ScriptedCapture m_device;
};

} // namespace velmora::audio
