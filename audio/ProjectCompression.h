#pragma once

#include "core/Environment.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace velmora::project {
class CDC_Event_Wave_Class;
class ProjectFile_Class;
} // namespace velmora::project

namespace velmora::audio {

/// Shows how far a compression has come.
class CompressionProgress {
public:
    virtual ~CompressionProgress() = default;
    /// File `number` of `total` begins; both are names as they stand in the project.
    virtual void ShowFile(std::size_t number, std::size_t total, const std::string& source,
                          const std::string& destination) = 0;
    /// After each piece, some hundred times a second: how much of the file and of the whole run is done, 0..1.
    virtual void Update(double file, double run) = 0;
};

/// Converts the wave files in the project's audio folder that its clips play to WMA, each once, and points the clips at
/// the new files; their places and cuts stay, as the new file lines up with the old one to the sample.
///
/// The wave files stay on disk for undo until the clean-up of unused files. A new file takes the name of the old one
/// with another ending; a file that had this name goes to the trash, unless a clip uses it: then the new one gets a
/// number. A file that cannot be converted is reported and stays in use. Cancelled, the project and its folder are as
/// they were. Paths are in the internal form. Interface thread only; the interface runs between pieces of well under
/// a millisecond.
class ProjectCompression {
public:
    enum class Outcome { NotRun, NothingToDo, Done, Cancelled };

    ProjectCompression(core::Environment& environment, project::ProjectFile_Class& project,
                       CompressionProgress& progress);
    ~ProjectCompression();
    ProjectCompression(const ProjectCompression&) = delete;
    ProjectCompression& operator=(const ProjectCompression&) = delete;

    /// The whole run; waits for a message that is being delivered to end. Stops playback and recording, keeps one undo
    /// step, and says how it ended.
    void StartCompression();
    /// Ends a run after the present piece.
    void Cancel() { m_cancelled = true; }
    bool Compressing() const { return m_compressing; }

    Outcome Result() const { return m_outcome; }

private:
    /// A wave file that clips use.
    struct Take {
        std::string name; // as the first clip has it
        std::string file; // absolute
        std::string newName;
        double bytes = 0;
        bool converted = false;
        bool replaces = false; // an earlier file of the new name
    };

    void Run();
    void Collect();
    std::string NewName(const std::string& name) const;
    bool ConvertAll();
    bool ConvertFile(Take& take, double doneBytes);
    void RePoint();
    void RemoveNewFiles();
    void AddError(const std::string& text);
    void Report() const;
    /// Where a clip's file is; the path itself when it leads nowhere.
    std::string FileOf(const std::string& path) const;
    std::vector<std::shared_ptr<project::CDC_Event_Wave_Class>> WaveEvents() const;

    core::Environment& m_environment;
    project::ProjectFile_Class& m_project;
    CompressionProgress& m_progress;
    std::vector<Take> m_takes;
    /// Files of all clips, and those to come, absolute.
    std::set<std::string> m_takenFiles;
    double m_allBytes = 0;
    std::size_t m_errors = 0;
    std::string m_errorLog;
    bool m_cancelled = false;
    bool m_compressing = false;
    Outcome m_outcome = Outcome::NotRun;
    /// Tells a run that waits on the bus whether this still lives.
    std::shared_ptr<const bool> m_alive;
};

} // namespace velmora::audio
