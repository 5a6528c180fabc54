#pragma once

#include "audio/TakeJournal.h"
#include "core/ClassIds.h"
#include "core/Environment.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace velmora::core {
class MsgHandlerClass;
struct MsgParametersClass;
} // namespace velmora::core
namespace velmora::project {
class ProjectFile_Class;
}

namespace velmora::audio {

class TakeBook;

/// What a project remembers of its recordings: the folder that takes go to, the number of the next one, and the
/// journals of those that the project's file does not hold yet.
class Recorder_Class {
public:
    Recorder_Class(core::Environment& environment, project::ProjectFile_Class& project);
    ~Recorder_Class();
    Recorder_Class(const Recorder_Class&) = delete;
    Recorder_Class& operator=(const Recorder_Class&) = delete;

    /// Where takes are made, in the internal form; set by the project.
    std::string ProjectFolder;

    core::ClassID ClassID() const { return m_classID; }
    /// A take is running.
    bool isRecording() const { return m_isRecording; }
    std::int32_t recordCounter() const { return m_recordCounter; }

    std::string GetXMLData() const;
    /// False, with everything as it was, for text of another kind.
    bool LoadXMLData(std::string_view XMLData);

    /// The path of the next take's file; "" when every name is taken.
    std::string RecordFileName() const;
    /// A take has become a clip and is not in the project's file yet; `name` is that of its sound file, and its journal
    /// stands.
    void TakeAdded(std::string name, TakeJournal journal);
    /// The project's file holds the clips as they are now. `earlierFolder` is the audio folder before the save.
    void ProjectSaved(const std::string& earlierFolder);

private:
    void MsgHandler_MsgReceived(std::int32_t MsgID, core::MsgParametersClass& Params);

    core::Environment& m_environment;
    project::ProjectFile_Class& m_project;
    core::ClassID m_classID;
    std::shared_ptr<core::MsgHandlerClass> m_msgHandler;
    std::unique_ptr<TakeBook> m_takes;
    bool m_isRecording = false;
    std::int32_t m_recordCounter = 1;
};

} // namespace velmora::audio
