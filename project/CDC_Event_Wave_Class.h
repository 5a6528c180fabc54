#pragma once

#include "core/Units.h"
#include "persistence/SharedText.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace velmora::project {

class AudioFileCheck;

/// The content of an event: which stretch of which audio file plays, how loud and with which fades. Its place on the
/// timeline stands in the channel's event list.
///
/// All times are ms. `StartMS` and `EndMS` count in the file, the fades from the start of the event. Whoever changes
/// an event that stands in a list calls `ChannelDataClass::EventsChanged` afterwards.
class CDC_Event_Wave_Class {
public:
    /// A bare name for a file in the project's audio folder, else an absolute path.
    std::string FilePath;
    /// Linear.
    double GainFactor = 1;
    std::int32_t StartMS = 0;
    /// Exclusive.
    std::int32_t EndMS = 0;
    /// Where the fade-in ends; the unset value means no fade-in.
    std::int32_t FadeIn_EndMS = core::kUnset;
    /// Where the fade-out starts; the unset value means no fade-out.
    std::int32_t FadeOut_StartMS = core::kUnset;
    std::string Title;

    /// For export only, not saved: the event has a stream, and which.
    bool FastExport_Flag = false;
    std::uint32_t FastExport_Stream = 0;

    bool Resizable() const { return true; }

    std::string GetXMLData() const { return GetSharedXML().Text(); }
    persistence::SharedText GetSharedXML() const;
    /// With `CheckFile`, a file that is not there is asked for; false when it stays missing. Also false for a text of
    /// another object, and then nothing is changed.
    bool LoadXMLData(std::string_view XML, AudioFileCheck* CheckFile = nullptr);
    /// A copy by way of the text; what is not saved starts afresh.
    std::shared_ptr<CDC_Event_Wave_Class> UTIL_CopyObj() const;

    /// ms; negative only if the end lies before the start.
    double GetEventLength() const;
    /// Moves the start by `DeltaMS` as far as the file's start and 10 ms of length allow; `AppliedMS` is how far it
    /// went. The caller moves the event's place by as much.
    void UTIL_ResizeEvent_Left(std::int32_t DeltaMS, std::int32_t& AppliedMS);
    /// Moves the end by `DeltaMS`, to 10 at least. The end of the file is the caller's limit.
    void UTIL_ResizeEvent_Right(std::int32_t DeltaMS, std::int32_t& AppliedMS);

private:
    void RepairFades();
};

} // namespace velmora::project
