#pragma once

#include "core/ClassIds.h"
#include "core/Environment.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora::audio {

/// What a project remembers of its recordings: the folder that takes go to and the number of the next one.
class Recorder_Class {
public:
    explicit Recorder_Class(core::Environment& environment);

    /// Where takes are made, in the internal form; set by the project.
    std::string ProjectFolder;

    core::ClassID ClassID() const { return m_classID; }
    /// A take is running.
    bool isRecording() const { return m_isRecording; }
    std::int32_t recordCounter() const { return m_recordCounter; }

    std::string GetXMLData() const;
    /// False, with everything as it was, for text of another kind.
    bool LoadXMLData(std::string_view XMLData);

private:
    core::ClassID m_classID;
    bool m_isRecording = false;
    std::int32_t m_recordCounter = 1;
};

} // namespace velmora::audio
