#pragma once

#include "core/Environment.h"
#include "core/MsgSenderClass.h"
#include "core/Units.h"
#include "persistence/SharedText.h"
#include "project/OpenedProject.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace velmora::audio {
class AudioPlayer_Class;
class MasterVolume_Class;
class Metronome_Class;
class Recorder_Class;
} // namespace velmora::audio

namespace velmora::project {

class CDC_Event_Wave_Class;
class Channel_Class;
class ChannelRegistry;
class Clipboard_Class;
class EventPlacement;
class MarkList_Class;
class ProjectStorage;
class Undo_Class;

/// The root of the document: owns the bus, the channels, the marks, the master output, the metronome and the recorder,
/// and hears every message first and last.
///
/// Life: construct, `InitializeClass`, then `CreateNewProject` or `LoadProject` once. The sound layer must be running.
/// One project lives at a time; its end stops the player, clears the engine's tables, frees all mixers and detaches
/// its endpoints. Whoever replaces it resets the counter of ids in between. Ids are those of channels and events;
/// unknown ones give the empty value. Paths are in the internal form. Interface thread only.
class ProjectFile_Class {
public:
    explicit ProjectFile_Class(core::Environment& environment);
    ~ProjectFile_Class();
    ProjectFile_Class(const ProjectFile_Class&) = delete;
    ProjectFile_Class& operator=(const ProjectFile_Class&) = delete;

    std::unique_ptr<audio::AudioPlayer_Class> Player;
    std::shared_ptr<core::MsgSenderClass> MsgSender;
    std::unique_ptr<MarkList_Class> Marks;
    std::unique_ptr<audio::MasterVolume_Class> MasterVolume;
    std::unique_ptr<audio::Metronome_Class> Metronome;
    /// Where and on which channel the last recording began.
    std::int32_t LastRecTimePos = core::kUnset;
    std::int32_t LastRecChannelID = core::kUnset;
    std::unique_ptr<audio::Recorder_Class> Recorder;
    std::unique_ptr<Undo_Class> Undo;
    /// Events that were copied; each copy brings a new one.
    std::unique_ptr<Clipboard_Class> Clipboard;
    /// The project differs from its file.
    bool Modified = false;
    /// Numbers of the next voice channel, music channel and mark.
    std::int32_t chn_Voice_ChannelCounter = 1;
    std::int32_t chn_Music_ChannelCounter = 1;
    std::int32_t Counter_MarkN = 1;

    core::Environment& Environment() const { return m_environment; }
    core::ClassID ClassID() const { return m_classID; }

    /// Makes the bus and what listens on it, and lets the views join.
    void InitializeClass();
    /// A fresh project in a folder of its own, with one music and four voice channels.
    bool CreateNewProject();
    /// Checks and loads in one step.
    bool LoadProject(std::string_view Path, OpenMode mode = OpenMode::Edit, bool ignoreMissing = false);
    /// Loads what passed the checks. With `ReadOnly` a missing audio file fails the load unless `ignoreMissing` is
    /// set; `MissingFiles` names them either way.
    bool LoadProject(OpenedProject opened, bool ignoreMissing = false);
    /// Writes the project, under a new name with a copy of its audio folder. An empty path is the present one. On
    /// false an earlier file and folder of that name stand as they did.
    bool SaveProject(std::string_view Path);
    /// Moves the takes that no event uses to the trash. Nothing goes while a take waits for its answer, nor in a
    /// session that began with anything missing, invalid or dropped.
    void DeleteUnusedFiles();

    /// The project file; empty until saved or loaded.
    const std::string& ProjectPath() const;
    const std::string& GetAudioPath() const;
    /// The absolute path of an event's file; "" for a relative path that leads out of the audio folder.
    std::string FixAudioFilePath(std::string_view Path) const;
    bool IsNewProject() const;
    /// The files of the audio folder that clips play, by their names.
    std::unordered_set<std::string> util_AudioFilesInUse() const;
    /// Asks what becomes of the recordings of new projects that were never saved and that nobody has open: they are
    /// added to this one or go to the trash, with the folders they were in. Once the program has started with a new
    /// project; does nothing for one with a file.
    void util_OfferAbandonedTakes();
    /// Audio files that the loaded project names and that are not there, absolute, each once.
    const std::vector<std::string>& MissingFiles() const;

    std::string GetXMLData() const;
    /// The same text in pieces, which texts taken before share where nothing changed.
    persistence::SharedText GetSharedXML() const;
    /// Replaces counters, marks, metronome and channels; `LoadRecorder`: the recorder's numbers too; `LoadIDs`: the
    /// project's own id too; `CheckFiles`: missing audio files are asked for.
    bool LoadXMLData(std::string_view XML, bool LoadIDs, bool LoadRecorder, bool CheckFiles);

    std::int32_t Chn_GetVoiceChannel_TotalN() const;
    std::int32_t Chn_GetMusicChannel_TotalN() const;
    Channel_Class* Chn_GetVoiceChannelObj_by_ID(core::ClassID ID) const;
    Channel_Class* Chn_GetMusicChannelObj_by_ID(core::ClassID ID) const;
    Channel_Class* Chn_GetVoiceChannelObj_by_Index(std::int32_t I) const;
    Channel_Class* Chn_GetMusicChannelObj_by_Index(std::int32_t I) const;
    Channel_Class* Chn_GetChannelClassObj_by_ID(core::ClassID ID) const;
    /// Music channels first, voice channels after.
    Channel_Class* Chn_GetChannelObj_by_Index(std::int32_t I) const;
    std::int32_t Chn_GetChannelClass_TotalN() const;
    void Chn_RemoveChannel(core::ClassID ID);

    double util_GetEvent_Length(core::ClassID ChannelID, std::int32_t EventID) const;
    double util_GetEventOBJ_Length(const CDC_Event_Wave_Class& EventOBJ) const;
    /// -1 when the channel does not exist.
    double util_GetEvent_TimePos(core::ClassID ChannelID, std::int32_t EventID) const;
    bool util_GetEvent_ResizableProperty(core::ClassID ChannelID, std::int32_t EventID) const;
    std::shared_ptr<CDC_Event_Wave_Class> util_GetEvent_OBJ(core::ClassID ChannelID, std::int32_t EventID) const;
    void util_EventObj_ResizeLeft(core::ClassID ChannelID, std::int32_t EventID, std::int32_t DeltaMS,
                                  std::int32_t& AppliedMS);
    std::string util_GetChannelTitle(core::ClassID ChannelID) const;
    /// Lengths in ms, kept with the channels.
    double util_GetChannelLength(core::ClassID ChannelID) const;
    double util_GetProjectLength() const;
    double util_GetMusicChannels_MaxLength() const;
    bool util_EventExists(core::ClassID ChannelID, std::int32_t EventID) const;
    bool util_ChannelExists(core::ClassID ChannelID) const;
    /// 1 voice, 0 music, -1 for an unknown id.
    std::int32_t util_GetChannelType(core::ClassID ChannelID) const;
    core::ClassID util_GetFirstChannelID() const;
    bool util_SoloEnabled() const;
    void util_Send_SoloChangedMSG_toAllChannels();
    void util_StopIfPlayingOrRecording();
    /// Drops the last take if nothing was done since, and records again in its place and on its channel. False, and
    /// nothing happens, when there is none to repeat. Inside a delivery of the bus it waits for its end.
    bool util_RepeatLastRecording();

    std::int32_t Player_LTimePos() const { return m_playerTimePos; }
    core::ClassID Selected_MusicChannel() const { return m_selectedMusic; }
    core::ClassID Selected_VoiceChannel() const { return m_selectedVoice; }

    void FX_ShowSetupForm(core::ClassID ChannelID);
    void FX_DisableSetupForms();
    void FX_EnableSetupForms();
    /// Only forgets the form; `FX_CloseSetupForm` closes it.
    void FX_UnloadSetupForm(core::ClassID ChannelID);
    void FX_CloseSetupForm(core::ClassID ChannelID);

private:
    void MsgHandler_MsgReceived(std::int32_t MsgID, core::MsgParametersClass& Params);
    void LastMsgHandler_MsgReceived(std::int32_t MsgID, core::MsgParametersClass& Params);
    void Send(std::int32_t msgID, core::MsgParametersClass& params) const;
    void SendToAllChannels(std::int32_t msgID) const;

    core::Environment& m_environment;
    core::ClassID m_classID;
    std::shared_ptr<core::MsgHandlerClass> m_handler;
    std::shared_ptr<core::MsgHandlerClass> m_lastHandler;
    std::unique_ptr<ChannelRegistry> m_channels;
    std::unique_ptr<ProjectStorage> m_storage;
    std::unique_ptr<EventPlacement> m_placement;
    std::set<core::ClassID> m_setupForms;
    core::ClassID m_selectedMusic = core::kUnsetFloat;
    core::ClassID m_selectedVoice = core::kUnsetFloat;
    std::int32_t m_playerTimePos = 0;
    /// Gone with this object: a command that still waits then does nothing.
    std::shared_ptr<const bool> m_alive = std::make_shared<const bool>(true);
};

} // namespace velmora::project
