#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace velmora::project {
class CDC_Event_Wave_Class;
}
namespace velmora::effects {
class FX_Data_Class;
}

namespace velmora::core {

/// The only type of event.
inline constexpr std::int32_t kWaveEvent = 0;

/// What a message carries: one fresh record per send. A field that the message does not name stays zero. Receivers
/// write the fields marked out for those that come after them and for the sender.
struct MsgParametersClass {
    /// Set by a receiver: no later endpoint gets this message.
    bool CancelDelivery = false;
    /// Id of the channel just created.
    double NewChannelID = 0;
    /// Title or file path value.
    std::string Text;
    /// The numeric value of a property message.
    double Value = 0;
    /// The channel addressed.
    double ChannelID = 0;
    /// The channel to select.
    double SelectChannelID = 0;
    /// Audio file to add.
    std::string FilePath;
    /// Title for the new event; empty means the file's name.
    std::string EventTitle;
    /// Timeline position of a new wave event.
    double AddTimePosMS = 0;
    /// Offset in the file where the new event starts.
    std::int32_t FileStartMS = 0;
    /// The new event replaces what lies under it (no sender sets it).
    bool OverwriteEvents = false;
    /// The editor selects the event added.
    bool SelectNewEvent = false;
    /// The `CDC_Event_Wave_Class` object carried.
    std::shared_ptr<project::CDC_Event_Wave_Class> EventOBJ;
    std::int32_t EventType = kWaveEvent;
    /// The event addressed, or the id given by the channel.
    std::int32_t EventID = 0;
    /// A position on the timeline.
    double TimePosMS = 0;
    /// The cursor position while playing.
    std::int32_t PlayerPosMS = 0;
    /// In `Msg_Player_SetRange`: a jump relative to the present position, or the unset value.
    std::int32_t PlayFromMS = 0;
    /// In `Msg_Player_SetRange`: the absolute position, used when `PlayFromMS` is unset.
    std::int32_t PlayToMS = 0;
    /// Used only inside the metronome's own handling.
    std::int32_t MetronomeScratch = 0;
    /// The amount of a resize.
    std::int32_t EditDeltaMS = 0;
    /// The offset of a move: a delta in milliseconds, in spite of the field's name.
    std::int32_t NewTimePosMS = 0;
    /// Selection state wanted.
    std::int32_t EventSelected = 0;
    /// Source of a vertical move.
    double FromChannelID = 0;
    /// Target of a vertical move.
    double ToChannelID = 0;
    /// Id of the event in its new channel.
    std::int32_t NewEventID = 0;
    /// Time of the mark.
    double MarkTimeMS = 0;
    /// Title of the mark.
    std::string MarkTitle;
    /// The mark addressed.
    std::int32_t MarkID = 0;
    /// The cut position.
    double SplitPosMS = 0;
    /// The id of the right half.
    std::int32_t SplitNewEventID = 0;
    /// Gain chosen on an event's own control.
    double EventGain = 0;
    /// Value of the editor's progress display.
    double ProgressValue = 0;
    /// Caption of the editor's progress display.
    std::string ProgressText;
    /// The `FX_Data_Class` object carried.
    std::shared_ptr<effects::FX_Data_Class> FXDataOBJ;
    /// The effect addressed.
    double FXID = 0;
    /// The FX channel addressed.
    double FXChannelID = 0;
    /// Priority of an effect: of the new one at `Msg_FX_Add`, the wanted one at `Msg_FX_ChangePriority`.
    std::int32_t FXPriority = 0;
    /// Pan or volume of an FX channel.
    std::int32_t FXLevel = 0;
    /// Effect enabled.
    bool FXEnabled = false;
    /// Effect parameter XML.
    std::string FXParamsXML;
    /// Full path of a pack file.
    std::string FXPackFile;
    /// Kind of strip that saved the pack: 1 voice, 0 music; a strip of that kind re-reads its list.
    std::int32_t FXPackChannelMode = 0;
    /// What a restored snapshot covers.
    std::int32_t UndoDataType = 0;
};

} // namespace velmora::core
