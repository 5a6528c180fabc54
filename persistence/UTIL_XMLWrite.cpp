#include "persistence/UTIL_XMLWrite.h"

#include "persistence/Faults.h"
#include "persistence/Numbers.h"
#include "persistence/internal/Escapes.h"
#include "persistence/internal/TagText.h"

#include <algorithm>

namespace velmora::persistence {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

void AppendTyped(std::string& target, std::string_view prefix, bool typed, std::string_view text)
{
    if (typed) {
        target += prefix;
    }
    target += text;
}

} // namespace

void UTIL_XMLWrite::SetMasterTag(std::string_view tag)
{
    if (m_elementAdded) {
        ReportFault("Can't set Master tag after an element was added\nUTIL_XMLWrite::MasterTag (Property)");
        return;
    }
    if (!tag.empty()) {
        m_masterTag = tag;
        Indent += 2;
    }
}

void UTIL_XMLWrite::SetAttributes(std::string_view attributes)
{
    if (m_elementAdded) {
        ReportFault("Can't set Attributes after an element was added\nUTIL_XMLWrite::Attributes (Property)");
        return;
    }
    m_attributes = attributes;
}

void UTIL_XMLWrite::Add_Element(std::string_view Name, const XMLValue& Value)
{
    Open(Name);
    if (const auto* text = std::get_if<std::string_view>(&Value)) {
        AppendTyped(m_body, "str: ", TypedValues, {});
        AppendEscaped(m_body, *text);
    } else if (const auto* whole = std::get_if<std::int32_t>(&Value)) {
        AppendTyped(m_body, "int: ", TypedValues, NumberText(*whole));
    } else if (const auto* longFloat = std::get_if<double>(&Value)) {
        AppendTyped(m_body, "float: ", TypedValues, NumberText(*longFloat));
    } else if (const auto* shortFloat = std::get_if<float>(&Value)) {
        AppendTyped(m_body, "float: ", TypedValues, NumberText(*shortFloat));
    } else {
        AppendTyped(m_body, "bool: ", TypedValues, std::get<bool>(Value) ? "True" : "False");
    }
    Close(Name);
}

void UTIL_XMLWrite::Add_RawElement(std::string_view Name, std::string_view nested)
{
    const std::string margin(Margin(), ' ');
    Open(Name);
    for (std::size_t lineEnd = nested.find(kLineEnd); lineEnd != std::string_view::npos;
         lineEnd = nested.find(kLineEnd)) {
        m_body += nested.substr(0, lineEnd + kLineEnd.size());
        m_body += margin;
        nested.remove_prefix(lineEnd + kLineEnd.size());
    }
    m_body += nested;
    m_body += kLineEnd;
    m_body += margin;
    Close(Name);
}

void UTIL_XMLWrite::Add_RawElement(std::string_view Name, const SharedText& nested)
{
    Open(Name);
    Inset(nested, Margin());
    m_body += kLineEnd;
    m_body.append(Margin(), ' ');
    Close(Name);
}

void UTIL_XMLWrite::Add_Elements(const SharedText& elements)
{
    Inset(elements, 0);
    m_elementAdded = true;
}

void UTIL_XMLWrite::Add_EmptyElement(std::string_view Name)
{
    Open(Name);
    Close(Name);
}

std::string UTIL_XMLWrite::GetXMLString() const
{
    return m_insets.empty() ? Head() + m_body + Tail() : GetSharedXML().Text();
}

SharedText UTIL_XMLWrite::GetSharedXML() const
{
    const std::string head = Head();
    std::vector<SharedText::Inset> insets = m_insets;
    for (SharedText::Inset& inset : insets) {
        inset.at += head.size();
    }
    return SharedText(head + m_body + Tail(), insets);
}

std::size_t UTIL_XMLWrite::Margin() const
{
    return 2 * static_cast<std::size_t>(std::max(Indent, 0));
}

void UTIL_XMLWrite::Inset(const SharedText& text, std::size_t margin)
{
    if (!text.empty()) {
        m_insets.push_back({m_body.size(), margin, text.m_piece});
    }
}

std::string UTIL_XMLWrite::Head() const
{
    std::string head;
    if (!m_masterTag.empty()) {
        head += '<';
        head += Trimmed(m_masterTag + ' ' + m_attributes);
        head += '>';
        head += kLineEnd;
    }
    return head;
}

std::string UTIL_XMLWrite::Tail() const
{
    std::string tail;
    if (!m_masterTag.empty()) {
        tail += "</";
        tail += m_masterTag;
        tail += '>';
        tail += kLineEnd;
    }
    return tail;
}

void UTIL_XMLWrite::Open(std::string_view name)
{
    m_body.append(static_cast<std::size_t>(std::max(Indent, 0)), ' ');
    m_body += '<';
    m_body += Trimmed(name);
    m_body += '>';
}

void UTIL_XMLWrite::Close(std::string_view name)
{
    m_body += "</";
    m_body += FirstWord(Trimmed(name));
    m_body += '>';
    m_body += kLineEnd;
    m_elementAdded = true;
}

} // namespace velmora::persistence
