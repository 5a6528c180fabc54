#pragma once

#include "core/ClassIds.h"
#include "core/MsgParametersClass.h"
#include "persistence/SharedText.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace velmora::core {
class MsgHandlerClass;
} // namespace velmora::core
namespace velmora::effects {
class FX_ChainContainer_Class;
}
namespace velmora::persistence {
class UTIL_XMLRead;
}

namespace velmora::project {

class ChannelDataClass;
class ChannelEdits;
class ChannelEffects;
class ChannelStrip;
class LoadContext;
class ProjectFile_Class;

/// One strip of the mixer: a voice channel (recordings) or a music channel (loaded files), with its clips, its two
/// mixers, its effects and its settings. Every sound of the project passes through one channel to the master mixer.
///
/// The settings change by message; loading only sets them, and `Msg_Refresh` brings them to the sound. The project
/// owns its channels and outlives them. Interface thread only.
class Channel_Class {
public:
    static constexpr std::int32_t kMusic = 0;
    static constexpr std::int32_t kVoice = 1;

    /// Makes the mixers, joins the master mixer, and starts with one empty chain of effects. The project's master
    /// volume must exist. A failure to join is reported, and the channel stays silent.
    explicit Channel_Class(ProjectFile_Class& project);
    ~Channel_Class();
    Channel_Class(const Channel_Class&) = delete;
    Channel_Class& operator=(const Channel_Class&) = delete;

    std::unique_ptr<ChannelDataClass> ChannelData;
    /// Input mixer: the clips and the live input join it.
    std::uint32_t BassInMix_Handle = 0;
    /// Output mixer: meter, volume, mute, solo and pan act on it.
    std::uint32_t BassOutMix_Handle = 0;
    std::unique_ptr<effects::FX_ChainContainer_Class> FX;
    std::int32_t Volume = 80; ///< 0..100
    std::int32_t Pan = 0;     ///< -100..100
    bool Mute = false;
    bool Solo = false;
    std::string FXPack_Name;
    std::int32_t Voice_Removal = 0; ///< 0..100
    /// Kept, shown and saved; acts on nothing.
    std::int32_t Pitch = 0;
    std::string Title;
    double Gain = 0; ///< dB
    bool LiveStatus = false;

    core::ClassID ClassID() const { return m_classID; }
    std::int32_t ChannelMode() const { return m_mode; }
    /// `kMusic` or `kVoice`, once, right after creation.
    void SetChannelMode(std::int32_t mode);
    /// With `autoTitle` the title takes the project's running number for its kind.
    void SetDefaultValues(bool autoTitle);

    std::string GetXMLData() const { return GetSharedXML().Text(); }
    persistence::SharedText GetSharedXML() const;
    /// The id in a channel's text; -1 in text of another kind.
    static core::ClassID StatedID(persistence::UTIL_XMLRead& reader);
    /// Reads the settings and, with `loadChildren`, effects and clips. With `assignNewID` the channel gets a fresh id,
    /// else that of the text, if no other has it. On false the channel is half loaded; its owner drops it.
    bool LoadXMLData(std::string_view xml, bool assignNewID, bool loadChildren, LoadContext& load);
    bool LoadXMLData(persistence::UTIL_XMLRead& reader, bool assignNewID, bool loadChildren, LoadContext& load);

    /// End of the last clip, ms.
    double Length() const;

private:
    void MsgHandler_MsgReceived(std::int32_t SenderID, std::int32_t MsgID, core::MsgParametersClass& Params);
    bool HandleStrip(std::int32_t msgID, const core::MsgParametersClass& params);
    void Refresh();
    void UpdateOutputVolume();
    void LoadSettings(persistence::UTIL_XMLRead& reader);
    std::unique_ptr<effects::FX_ChainContainer_Class> NewEffects() const;

    ProjectFile_Class& m_project;
    std::unique_ptr<ChannelStrip> m_strip;
    core::ClassID m_classID;
    std::shared_ptr<core::MsgHandlerClass> m_handler;
    std::unique_ptr<ChannelEdits> m_edits;
    std::unique_ptr<ChannelEffects> m_effects;
    std::int32_t m_mode = -1;
    bool m_modeSet = false;
};

} // namespace velmora::project
