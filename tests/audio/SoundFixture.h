#pragma once

#include "audio/AudioExport.h"
#include "audio/SoundSession.h"
#include "core/MsgSenderClass.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"
#include "tests/support/TestEnvironment.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::audio {

/// A PCM file of 16 bits, interleaved.
struct WavSound {
    std::int32_t rate = 44100;
    std::int32_t channels = 2;
    std::vector<std::int16_t> samples;

    std::size_t Frames() const { return samples.size() / static_cast<std::size_t>(channels); }
};

/// Paths are in the internal form.
void WriteWav(std::string_view path, const WavSound& sound);
/// Fails the test for a file that is no PCM file.
WavSound ReadWav(std::string_view path);

/// Notes positions; cancels when told.
class ScriptedProgress final : public ExportProgress {
public:
    bool Update(std::int64_t positionMS, std::int64_t totalMS, std::int32_t meter) override;

    std::vector<std::int64_t> positions;
    std::int64_t total = 0;
    std::int32_t loudest = 0;
    std::int64_t cancelAtMS = -1;
};

/// An empty project on the device without ears, or on another one.
class SoundTest : public ::testing::Test {
protected:
    explicit SoundTest(std::int16_t outputDevice = 0);

    core::MsgParametersClass Send(std::int32_t msgID, double channelID, double value, const std::string& text = {});
    /// Hears every message at `priority`.
    void Listen(std::int32_t priority, std::function<void(std::int32_t msgID)> heard);

    testing::TestEnvironment m_environment;
    std::unique_ptr<SoundSession> m_session;
    std::unique_ptr<project::ProjectFile_Class> m_project;

private:
    std::vector<std::shared_ptr<core::MsgHandlerClass>> m_listeners;
};

/// A project with one music channel at full volume, to be exported.
class ExportTest : public SoundTest {
protected:
    explicit ExportTest(std::int16_t outputDevice = 0);

    project::Channel_Class& AddChannel(std::int32_t volume = 100);
    project::CDC_Event_Wave_Class& AddClip(project::Channel_Class& channel, const std::string& file, double timeMS,
                                           std::int32_t startMS, std::int32_t endMS, double gain = 1);
    /// Exports as WAV to "mix.wav".
    AudioExport::Outcome Export();
    std::string MixPath() const { return m_environment.Path("mix.wav"); }
    WavSound Mix() const { return ReadWav(MixPath()); }
    std::vector<std::string> FilesBesideTheMix() const;

    project::Channel_Class* m_channel = nullptr;
    ScriptedProgress m_progress;
    std::unique_ptr<AudioExport> m_export;
};

} // namespace velmora::audio
