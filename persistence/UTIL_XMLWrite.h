#pragma once

#include "persistence/SharedText.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace velmora::persistence {

/// A value that an element can carry with its type: text, whole number, 64-bit or 32-bit float, boolean.
using XMLValue = std::variant<std::string_view, std::int32_t, double, float, bool>;

/// Writes one object in the tag language: elements one after the other, optionally inside a master tag.
///
/// Order of calls: `SetMasterTag` and `SetAttributes`, then elements, then `GetXMLString`. A master tag or
/// attributes set after an element change nothing and are reported to the fault handler.
/// Numbers are written without regard to the locale; a 64-bit float reads back as it was.
class UTIL_XMLWrite {
public:
    /// Spaces before each element; a master tag adds 2.
    std::int32_t Indent = 0;
    /// False leaves out the type prefix of values.
    bool TypedValues = true;

    const std::string& MasterTag() const { return m_masterTag; }
    void SetMasterTag(std::string_view tag);
    const std::string& Attributes() const { return m_attributes; }
    void SetAttributes(std::string_view attributes);

    /// Appends `<Name>` value `</first word of Name>`; text is escaped.
    void Add_Element(std::string_view Name, const XMLValue& Value);
    /// Appends an element whose value is a nested string of this language, written as it stands.
    void Add_RawElement(std::string_view Name, std::string_view nested);
    /// The same, keeping the nested string as a piece.
    void Add_RawElement(std::string_view Name, const SharedText& nested);
    /// Appends elements that a writer of this `Indent` without a master tag has written.
    void Add_Elements(const SharedText& elements);
    /// Appends an element without a value.
    void Add_EmptyElement(std::string_view Name);

    std::string GetXMLString() const;
    /// The same text, sharing the pieces that were added.
    SharedText GetSharedXML() const;

private:
    /// How far the lines of a nested string move right.
    std::size_t Margin() const;
    void Inset(const SharedText& text, std::size_t margin);
    std::string Head() const;
    std::string Tail() const;
    void Open(std::string_view name);
    void Close(std::string_view name);

    std::string m_masterTag;
    std::string m_attributes;
    std::string m_body;
    /// Pieces set into the body.
    std::vector<SharedText::Inset> m_insets;
    bool m_elementAdded = false;
};

} // namespace velmora::persistence
