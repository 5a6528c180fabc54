#pragma once

#include "audio/SoundSession.h"
#include "core/MsgIds.h"
#include "core/MsgParametersClass.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/MarkList_Class.h"
#include "project/ProjectFile_Class.h"
#include "tests/support/TestEnvironment.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace velmora::project {

/// One project at a time on the "No sound" device, in a folder of its own.
class ProjectTest : public ::testing::Test {
protected:
    ProjectTest();
    ~ProjectTest() override;

    /// The present project ends, and one that is only initialised takes its place.
    ProjectFile_Class& Restart();
    /// The same, as a new project.
    ProjectFile_Class& StartNew();
    bool Load(const std::string& path, OpenMode mode = OpenMode::Edit, bool ignoreMissing = false);

    core::MsgParametersClass Send(std::int32_t msgID, core::MsgParametersClass params = {});
    core::MsgParametersClass SendToChannel(std::int32_t msgID, core::ClassID channel, double value);
    /// A clip of `file` from 0 to 1000 ms of it.
    std::int32_t AddClip(const Channel_Class& channel, double timePos, const std::string& file = "a.wav");

    /// A file of `ms` of silence, in the audio folder unless the path is absolute. Its path.
    std::string WriteSound(const std::string& path, int ms = 1000);
    /// A saved project "Song" with clips of "a.wav" and "b.wav", marks and settings. Its path; the project goes on.
    std::string SaveSong();
    std::string Read(const std::string& path) const;
    /// The contents of the files of a folder but for the lock, by name.
    std::map<std::string, std::string> Folder(const std::string& path) const;

    Channel_Class& Voice(std::int32_t i) { return *m_project->Chn_GetVoiceChannelObj_by_Index(i); }
    Channel_Class& Music(std::int32_t i) { return *m_project->Chn_GetMusicChannelObj_by_Index(i); }
    testing::ScriptedMessageBoxes& Messages() { return m_environment.ports.messages; }

    testing::TestEnvironment m_environment;
    std::unique_ptr<audio::SoundSession> m_session;
    std::unique_ptr<ProjectFile_Class> m_project;
};

} // namespace velmora::project
