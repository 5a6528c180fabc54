#pragma once

#include "audio/Recorder_Class.h"
#include "core/ClassIds.h"
#include "core/Environment.h"
#include "core/MsgSenderClass.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace velmora::audio {

/// The click settings of a project, handed to the engine when playback starts and when one of them changes. The engine
/// plays the click stream, which belongs to this class. Interface thread only.
class Metronome_Class {
public:
    /// Opens the default click; `recorder` outlives this.
    Metronome_Class(core::Environment& environment, core::MsgSenderClass& bus, const Recorder_Class& recorder);
    ~Metronome_Class();
    Metronome_Class(const Metronome_Class&) = delete;
    Metronome_Class& operator=(const Metronome_Class&) = delete;

    core::ClassID ClassID() const { return m_classID; }
    bool Metronome_Enabled() const { return m_enabled; }
    bool Metronome_PlayerEnabled() const { return m_playerEnabled; }
    bool Metronome_RecorderEnabled() const { return m_recorderEnabled; }
    /// 0..100.
    std::int32_t Metronome_Volume() const { return m_volume; }
    /// Period in ms; 750 is 80 beats per minute.
    double Metronome_TimeMs() const { return m_timeMS; }
    /// 0 when the click's file could not be opened.
    std::uint32_t Metronome_StreamHandle() const { return m_stream; }
    /// A path without a drive is one of the program's own sounds, counted from the program's folder.
    const std::string& Metronome_FilePath() const { return m_filePath; }

    std::string GetXMLData() const;
    /// What the text lacks keeps its value, the file becomes none. False, with everything as it was, for text of
    /// another kind.
    bool LoadXMLData(std::string_view XMLData);

private:
    void MsgHandler_MsgReceived(std::int32_t MsgID, core::MsgParametersClass& Params);
    /// `recording` tells a take's playback from ordinary one.
    void ApplyToEngine(bool recording);
    void Reapply();
    void OpenClick();
    void FreeClick();

    core::ClassID m_classID;
    const Recorder_Class& m_recorder;
    bool m_enabled = false;
    bool m_playerEnabled = false;
    bool m_recorderEnabled = true;
    std::int32_t m_volume = 100;
    double m_timeMS = 750.0;
    std::uint32_t m_stream = 0;
    const std::string m_programFolder;
    std::string m_filePath;
    std::shared_ptr<core::MsgHandlerClass> m_msgHandler;
};

} // namespace velmora::audio
