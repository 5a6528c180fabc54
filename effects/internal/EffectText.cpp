#include "effects/internal/EffectText.h"

#include "effects/FX_Module.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"

#include <algorithm>

namespace velmora::effects {
namespace {

constexpr std::string_view kMasterTag = "Fx_Data_Class";

std::string WithoutBlanksBetweenTags(std::string_view xml)
{
    std::string text;
    text.reserve(xml.size());
    std::ranges::copy_if(xml, std::back_inserter(text), [](char c) { return c != '\r' && c != '\n'; });
    if (const std::size_t begin = text.find("<?"); begin != std::string::npos) {
        const std::size_t end = text.find("?>", begin);
        text.erase(begin, end == std::string::npos ? 0 : end + 2 - begin);
    }
    std::string compact;
    compact.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t blanksEnd = std::min(text.find_first_not_of(' ', i), text.size());
        const bool atEdge = compact.empty() || blanksEnd == text.size();
        const bool betweenTags = !atEdge && compact.back() == '>' && text[blanksEnd] == '<';
        if (!atEdge && !betweenTags) {
            compact.append(text, i, blanksEnd - i);
        }
        i = blanksEnd;
        if (i < text.size()) {
            compact += text[i++];
        }
    }
    return compact;
}

bool IsFieldOf(std::int32_t fxType, std::string_view name)
{
    return name == "FxType" || std::ranges::count(FX_ParameterDefinitions(fxType), name, &FX_Parameter::field) > 0;
}

/// Takes `<name>value</name>` from the front of `text`, if the value holds no tag.
bool TakeElement(std::string_view& text, std::string_view& name)
{
    const std::size_t nameEnd = text.find('>');
    if (!text.starts_with('<') || nameEnd == std::string_view::npos) {
        return false;
    }
    name = text.substr(1, nameEnd - 1);
    const std::size_t valueEnd = text.find('<', nameEnd);
    const std::string closing = "</" + std::string(name) + ">";
    if (valueEnd == std::string_view::npos || !text.substr(valueEnd).starts_with(closing)) {
        return false;
    }
    text.remove_prefix(valueEnd + closing.size());
    return true;
}

bool HoldsOnlyParameters(std::string_view text, std::int32_t fxType)
{
    const std::string opening = "<" + std::string(kMasterTag) + ">";
    const std::string closing = "</" + std::string(kMasterTag) + ">";
    if (!text.starts_with(opening)) {
        return false;
    }
    text.remove_prefix(opening.size());
    std::string_view name;
    while (text != closing) {
        if (!TakeElement(text, name) || !IsFieldOf(fxType, name)) {
            return false;
        }
    }
    return true;
}

/// A value that is there but cannot be read becomes the default.
template <class Value>
void CopyIfFound(persistence::UTIL_XMLRead& reader, persistence::UTIL_XMLWrite& writer, std::string_view field,
                 Value value)
{
    if (reader.ReadElement(field, value, value)) {
        writer.Add_Element(field, value);
    }
}

std::string Rewritten(persistence::UTIL_XMLRead& reader, std::string_view typeName, std::int32_t fxType)
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag(kMasterTag);
    writer.Add_Element("FxType", typeName);
    for (const FX_Parameter& parameter : FX_ParameterDefinitions(fxType)) {
        const float initial = parameter.defaultValue;
        switch (parameter.stored) {
        case FX_ValueType::Float:
            CopyIfFound(reader, writer, parameter.field, initial);
            break;
        case FX_ValueType::Int:
            CopyIfFound(reader, writer, parameter.field, static_cast<std::int32_t>(initial));
            break;
        case FX_ValueType::Bool:
            CopyIfFound(reader, writer, parameter.field, initial != 0);
            break;
        }
    }
    return WithoutBlanksBetweenTags(writer.GetXMLString());
}

} // namespace

bool ReadEffectText(std::string_view xml, EffectText& effect)
{
    std::string text = WithoutBlanksBetweenTags(xml);
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(text);
    if (!reader.MasterTagIs("fx_data_class")) {
        return false;
    }
    std::string typeName;
    reader.ReadElement("FxType", typeName, "");
    effect.fxType = FX_GetIndexByName(typeName);
    effect.text =
        HoldsOnlyParameters(text, effect.fxType) ? std::move(text) : Rewritten(reader, typeName, effect.fxType);
    return true;
}

} // namespace velmora::effects
