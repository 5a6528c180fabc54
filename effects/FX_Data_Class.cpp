#include "effects/FX_Data_Class.h"

#include "effects/internal/EffectText.h"

#include <utility>

namespace velmora::effects {

FX_Data_Class::FX_Data_Class(core::MessageBoxes& messages)
    : m_messages(messages)
{
}

bool FX_Data_Class::LoadXMLData(std::string_view XMLData)
{
    if (!Read(XMLData)) {
        ReportInvalidData(m_messages);
        return false;
    }
    return true;
}

bool FX_Data_Class::Read(std::string_view xml)
{
    EffectText effect;
    if (!ReadEffectText(xml, effect)) {
        return false;
    }
    m_fxType = effect.fxType;
    m_xmlData = std::move(effect.text);
    return true;
}

void FX_Data_Class::ReportInvalidData(core::MessageBoxes& messages)
{
    messages.Show("FX_Data_Class::LoadXMLData\nInvalid data");
}

} // namespace velmora::effects
