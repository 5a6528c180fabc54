#pragma once

#include "audio/PlayerCursor.h"
#include "core/ClassIds.h"
#include "core/Environment.h"
#include "core/MsgHandlerClass.h"

#include <cstdint>
#include <memory>

namespace velmora::audio {

/// The bridge between the document and the engine: keeps the engine's tables equal to the project, and turns transport
/// messages into calls of the engine. It hears each message after the channels, and so reads what they just changed.
/// Times are ms from the project's start; the engine's position is that of the sound handed to the output buffer, which
/// is heard a buffer's length later. Interface thread only.
class AudioPlayer_Class {
public:
    AudioPlayer_Class(core::Environment& environment, project::ProjectFile_Class& project);
    /// Holds the clock and empties the engine's tables.
    ~AudioPlayer_Class();
    AudioPlayer_Class(const AudioPlayer_Class&) = delete;
    AudioPlayer_Class& operator=(const AudioPlayer_Class&) = delete;

    core::ClassID ClassID() const { return m_classID; }
    std::int32_t GetTimePos() const;
    bool isPlaying() const;

    /// Where the clock stood when play was last asked for: the target of the jump back at a stop.
    std::int32_t LastPlayStartMS = 0;
    PlayerCursor Cursor;

private:
    void MsgHandler_MsgReceived(std::int32_t MsgID, core::MsgParametersClass& Params);
    void Play();
    void Pause();
    void StartPlayback();
    void StopPlayback();
    void Seek(core::MsgParametersClass& params);
    void SendSeek(std::int32_t positionMS);
    void AddEvent(const core::MsgParametersClass& params);
    void UTIL_AddUpdateEvent(core::ClassID channelID, std::int32_t eventID);
    void ReloadEngineLists();

    core::Environment& m_environment;
    project::ProjectFile_Class& m_project;
    core::ClassID m_classID;
    std::shared_ptr<core::MsgHandlerClass> m_msgHandler;
};

} // namespace velmora::audio
