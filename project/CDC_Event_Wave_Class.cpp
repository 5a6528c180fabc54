#include "project/CDC_Event_Wave_Class.h"

#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"
#include "project/AudioFileCheck.h"

#include <algorithm>
#include <limits>

namespace velmora::project {
namespace {

constexpr std::int32_t kShortestMS = 10;
/// Beyond it a gain no longer fits the engine's whole numbers; such a value is damage, not a wish.
constexpr double kGreatestGain = 200'000;

std::int32_t Limited(std::int64_t value)
{
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

} // namespace

persistence::SharedText CDC_Event_Wave_Class::GetSharedXML() const
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("Event_Wave_Class");
    writer.Add_Element("FilePath", std::string_view(FilePath));
    writer.Add_Element("GainFactor", GainFactor);
    writer.Add_Element("StartMS", StartMS);
    writer.Add_Element("EndMS", EndMS);
    writer.Add_Element("FadeIn_EndMS", FadeIn_EndMS);
    writer.Add_Element("FadeOut_StartMS", FadeOut_StartMS);
    writer.Add_Element("Title", std::string_view(Title));
    return writer.GetSharedXML();
}

bool CDC_Event_Wave_Class::LoadXMLData(std::string_view XML, AudioFileCheck* CheckFile)
{
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(XML);
    if (!reader.MasterTagIs("event_wave_class")) {
        return false;
    }
    std::string filePath;
    reader.ReadElement("FilePath", filePath, "");
    if (CheckFile && !CheckFile->Find(filePath)) {
        return false;
    }
    FilePath = std::move(filePath);
    Title.clear();
    reader.ReadElement("Title", Title, "Untitled");
    GainFactor = 1;
    reader.ReadElement("GainFactor", GainFactor, 1);
    if (!(GainFactor >= 0 && GainFactor <= kGreatestGain)) {
        GainFactor = 1;
    }
    reader.ReadElement("StartMS", StartMS, 0);
    reader.ReadElement("EndMS", EndMS, 0);
    reader.ReadElement("FadeIn_EndMS", FadeIn_EndMS, core::kUnset);
    reader.ReadElement("FadeOut_StartMS", FadeOut_StartMS, core::kUnset);
    return true;
}

std::shared_ptr<CDC_Event_Wave_Class> CDC_Event_Wave_Class::UTIL_CopyObj() const
{
    auto copy = std::make_shared<CDC_Event_Wave_Class>();
    copy->LoadXMLData(GetXMLData());
    return copy;
}

double CDC_Event_Wave_Class::GetEventLength() const
{
    return static_cast<double>(EndMS) - StartMS;
}

void CDC_Event_Wave_Class::UTIL_ResizeEvent_Left(std::int32_t DeltaMS, std::int32_t& AppliedMS)
{
    const std::int64_t latest = std::int64_t{EndMS} - kShortestMS;
    const std::int64_t start = std::min(std::max<std::int64_t>(std::int64_t{StartMS} + DeltaMS, 0), latest);
    AppliedMS = Limited(start - StartMS);
    StartMS = Limited(start);
    RepairFades();
}

void CDC_Event_Wave_Class::UTIL_ResizeEvent_Right(std::int32_t DeltaMS, std::int32_t& AppliedMS)
{
    const std::int64_t end = std::max<std::int64_t>(std::int64_t{EndMS} + DeltaMS, kShortestMS);
    AppliedMS = Limited(end - EndMS);
    EndMS = Limited(end);
    RepairFades();
}

void CDC_Event_Wave_Class::RepairFades()
{
    const std::int32_t length = Limited(std::int64_t{EndMS} - StartMS);
    if (FadeOut_StartMS > length) {
        FadeOut_StartMS = core::kUnset;
    }
    FadeIn_EndMS = std::min(FadeIn_EndMS, length);
}

} // namespace velmora::project
