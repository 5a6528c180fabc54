#include "audio/Recorder_Class.h"

#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"

namespace velmora::audio {

Recorder_Class::Recorder_Class(core::Environment& environment)
    : m_classID(environment.ids.Draw())
{
}

std::string Recorder_Class::GetXMLData() const
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("Recorder_Class");
    writer.Add_Element("recordCounter", m_recordCounter);
    return writer.GetXMLString();
}

bool Recorder_Class::LoadXMLData(std::string_view XMLData)
{
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(XMLData);
    if (!reader.MasterTagIs("recorder_class")) {
        return false;
    }
    reader.ReadElement("recordCounter", m_recordCounter, 1);
    return true;
}

} // namespace velmora::audio
