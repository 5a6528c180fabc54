#pragma once

#include "tests/support/Becomes.h"
#include "tests/support/TemporaryFolder.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <sys/types.h>

namespace velmora::testing {

/// A private sound server in a fresh folder, which this process and its children find, for as long as this lives. Until
/// it is started there is no sound at all.
class AudioServer {
public:
    AudioServer();
    ~AudioServer();
    AudioServer(const AudioServer&) = delete;
    AudioServer& operator=(const AudioServer&) = delete;

    /// Throws when the server does not come up. Its sinks are "velmora_out" and those told.
    void Start(const std::vector<std::string>& sinks = {});
    /// Ends it as a crash would.
    void Kill();
    /// Keeps it from doing anything, and lets it go on.
    void Hang();
    void GoOn();
    /// Runs pactl; throws when that fails.
    void Control(const std::vector<std::string>& command) const;
    const std::filesystem::path& Folder() const { return m_folder.Posix(); }

private:
    TemporaryFolder m_folder;
    pid_t m_process = 0;
};

/// What a sink gives to the ear, as interleaved stereo at 44.1 kHz.
class Recording {
public:
    /// Returns when the recording runs.
    explicit Recording(const AudioServer& server, const std::string& sink = "velmora_out");
    ~Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    /// Waits until `frames` frames that are not silent have come; false when they do not.
    bool HasHeard(std::size_t frames) const;
    /// What has come so far.
    std::vector<std::int16_t> Samples() const;

private:
    std::filesystem::path m_file;
    pid_t m_process = 0;
};

} // namespace velmora::testing
