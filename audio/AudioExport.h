#pragma once

#include "core/Environment.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velmora::project {
class ProjectFile_Class;
}

namespace velmora::core {
struct MsgParametersClass;
}

namespace velmora::audio {

struct ExportClip;
class ClipSchedule;
class MeteredStream;
class ExportFile;
class OfflineMaster;

/// Shows how far an export has come.
class ExportProgress {
public:
    virtual ~ExportProgress() = default;
    /// Called each 300 ms of the timeline and at its end; `meter` is the master's level on a scale of 0..40. False
    /// cancels.
    virtual bool Update(std::int64_t positionMS, std::int64_t totalMS, std::int32_t meter) = 0;
};

/// Writes a project's mix to a WAV or WMA file, as fast as decoding and mixing allow: the master mixer leaves the
/// device, and a loop here starts and fades the clips and pulls the sound that the encoder takes.
///
/// The file grows under a temporary name in its folder and takes its name when finished or cancelled; after a failure
/// an earlier file still stands. Playback and live monitoring stop before, and everything is put back afterwards in
/// every case. Interface thread only; the interface runs at each report of progress.
class AudioExport {
public:
    enum class Outcome { NotRun, Done, Cancelled, Failed };

    AudioExport(core::Environment& environment, project::ProjectFile_Class& project, ExportProgress& progress);
    AudioExport(const AudioExport&) = delete;
    AudioExport& operator=(const AudioExport&) = delete;

    static constexpr std::int32_t kWav = 1;
    static constexpr std::int32_t kWma = 2;

    /// Rate in Hz and channels of the file.
    std::int32_t SampleRate = 0;
    std::int32_t Channels = 0;
    /// In the internal form.
    std::string FilePath;
    /// Bit/s, for WMA.
    std::int32_t Bitrate = 0;

    std::int32_t encoder_Format() const { return m_encoderFormat; }
    /// Once; a second time is reported and changes nothing.
    void encoder_Format(std::int32_t format);

    /// The whole run; waits for a message that is being delivered to end. "Done" and failures are shown.
    void StartExport();
    /// Ends a run at its next report of progress; the file stays as far as it got.
    void StopExport();
    /// A run is under way.
    bool Exporting() const { return m_exporting; }

    Outcome Result() const { return m_outcome; }
    /// Audio files that could not be opened, in the internal form, each once: their clips are silent.
    const std::vector<std::string>& UnreadableFiles() const { return m_unreadableFiles; }

private:
    static constexpr std::int32_t kNoFormat = -1;

    /// How a run ended, and what is said about it; "" says nothing.
    struct Ending {
        Outcome outcome = Outcome::Failed;
        std::string text;
        core::Icon icon = core::Icon::Exclamation;
        std::string title = "Velmora";
    };
    enum class LoopEnd { Finished, Cancelled, NoSound };

    void Run();
    Ending Export();
    LoopEnd FastExport(ClipSchedule& clips, OfflineMaster& master, const MeteredStream& meter, const ExportFile& file);
    std::vector<ExportClip> Clips() const;
    bool OverwritesSource(const std::vector<ExportClip>& clips) const;
    void Send(std::int32_t msgID, core::MsgParametersClass& params);

    core::Environment& m_environment;
    project::ProjectFile_Class& m_project;
    ExportProgress& m_progress;
    std::int32_t m_encoderFormat = kNoFormat;
    bool m_exporting = false;
    bool m_stopRequested = false;
    Outcome m_outcome = Outcome::NotRun;
    std::vector<std::string> m_unreadableFiles;
    /// Tells a run that waits on the bus whether this still lives.
    std::shared_ptr<const bool> m_alive;
};

} // namespace velmora::audio
