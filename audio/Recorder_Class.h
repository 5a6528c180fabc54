#pragma once

#include "audio/TakeJournal.h"
#include "core/ClassIds.h"
#include "core/Environment.h"
#include "core/Units.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace velmora::core {
class MsgHandlerClass;
struct MsgParametersClass;
} // namespace velmora::core
namespace velmora::project {
class Channel_Class;
class ProjectFile_Class;
} // namespace velmora::project

namespace velmora::audio {

class LiveInput;
class Take;
class TakeBook;

/// Recording and live monitoring. One voice channel is the target, the selected one. While a take runs, the input is
/// written to a file in the project's folder and the rest of the project plays; at its end the file becomes a clip of
/// the channel it began on, in the place where it began. Between takes the input can be heard through the target.
///
/// Times are ms. It hears each message before the channels and the player. Never more than one capture is open. A take
/// ends by itself when its file cannot be written, its device is gone or its channel is deleted; what was recorded
/// until then is a clip, and a message says what happened. Until the project's file holds that clip, a journal beside
/// the sound says where it belongs. A start that fails leaves everything as it was.
/// The project owns it. Interface thread only.
class Recorder_Class {
public:
    Recorder_Class(core::Environment& environment, project::ProjectFile_Class& project);
    ~Recorder_Class();
    Recorder_Class(const Recorder_Class&) = delete;
    Recorder_Class& operator=(const Recorder_Class&) = delete;

    /// Where takes are made, in the internal form; set by the project.
    std::string ProjectFolder;
    /// The record device; -1000 is that of the settings.
    std::int32_t InputDeviceOverride = -1000;

    core::ClassID ClassID() const { return m_classID; }
    /// A take is running.
    bool isRecording() const { return m_take != nullptr; }
    /// Where the running or last take began.
    double RecStartTimeMS() const { return m_recStartTimeMS; }
    /// The target; the unset value without one.
    core::ClassID RecordOnChannel() const { return m_recordOnChannel; }
    /// The input can be heard.
    bool IsMonitoring() const { return m_liveMixHandle != 0; }
    std::int32_t recordCounter() const { return m_recordCounter; }
    /// The target and the stream of the input, 0 when there is none, for the recording meter.
    void GetLiveData(core::ClassID& channelID, std::uint32_t& stream) const;

    /// While a take runs: its input has been digital silence for 3 s, or was at the limit within the last 3 s.
    bool InputIsSilent() const;
    bool InputClipped() const;

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
    /// The channel is about to be deleted: a take on it ends, monitoring too, and it is the target no more.
    void ChannelGoes(core::ClassID channelID);
    /// The project ends: so does what is open. A take that still runs is left to its journal.
    void Close();

private:
    void MsgHandler_MsgReceived(std::int32_t MsgID, core::MsgParametersClass& Params);
    void SetLive(core::MsgParametersClass& params);
    void SetLiveOn(core::MsgParametersClass& params);
    void SelectTarget(core::ClassID channelID);
    void UndoRestored();
    /// Of the marks of live channels only that of the channel that is heard stays.
    void DropStaleMarks() const;
    /// Why it failed; empty when it did not.
    std::string StartMonitoring(const project::Channel_Class& channel);
    void EndMonitoring();

    bool StartTake(core::MsgParametersClass& params);
    bool HasSpace(const std::string& path) const;
    void RunTake();
    void WatchTake();
    void StopTake();
    void AddClip(const Take& take);

    project::Channel_Class* VoiceChannel(core::ClassID channelID) const;
    void Send(std::int32_t msgID, core::MsgParametersClass& params) const;
    void SendLive(core::ClassID channelID, double value) const;
    void Say(const std::string& text) const;

    core::Environment& m_environment;
    project::ProjectFile_Class& m_project;
    core::ClassID m_classID;
    std::shared_ptr<core::MsgHandlerClass> m_msgHandler;
    std::unique_ptr<TakeBook> m_takes;
    std::unique_ptr<core::Timer> m_watch;
    /// At most one of the two is open.
    std::unique_ptr<LiveInput> m_monitor;
    std::unique_ptr<Take> m_take;
    core::ClassID m_recordOnChannel = core::kUnsetFloat;
    /// The channel's input mixer through which the input can be heard; 0 when it cannot.
    std::uint32_t m_liveMixHandle = 0;
    double m_recStartTimeMS = 0;
    std::int32_t m_recordCounter = 1;
};

} // namespace velmora::audio
