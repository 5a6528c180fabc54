#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velmora::persistence {

/// Finds elements of one object in a text of the tag language, by name, in any order.
///
/// Names are compared without regard to case and to runs of blanks. Every answer is what a search from the start of
/// the text would give; the text is walked once, so that reading all elements is linear in it.
/// Order of calls: `SetHasMasterTag`, `SetXMLString` once, then reads. A breach is reported to the fault handler and
/// changes nothing.
/// Ownership: a text given as a `string_view` is borrowed where nothing has to be removed from it, so it must outlive
/// the reader; a text that is moved in is kept. Nested texts from `ReadRaw` go into their readers without a copy.
class UTIL_XMLRead {
public:
    UTIL_XMLRead();
    ~UTIL_XMLRead();
    UTIL_XMLRead(UTIL_XMLRead&&) noexcept;
    UTIL_XMLRead& operator=(UTIL_XMLRead&&) noexcept;

    /// A reader of `text` with a master tag.
    static UTIL_XMLRead WithMasterTag(std::string_view text);
    static UTIL_XMLRead WithMasterTag(std::string&& text);
    static UTIL_XMLRead WithMasterTag(const char* text) { return WithMasterTag(std::string_view(text)); }
    /// A reader of `text` without a master tag.
    static UTIL_XMLRead Plain(std::string_view text);
    static UTIL_XMLRead Plain(std::string&& text);
    static UTIL_XMLRead Plain(const char* text) { return Plain(std::string_view(text)); }

    /// False reads every value as text, without a type prefix.
    bool TypedValues = true;

    bool HasMasterTag() const;
    void SetHasMasterTag(bool has);
    /// Gives the reader its text; line ends and the first "<?...?>" are removed.
    void SetXMLString(std::string_view text);
    void SetXMLString(std::string&& text);
    void SetXMLString(const char* text) { SetXMLString(std::string_view(text)); }
    /// The trimmed text of the first tag.
    const std::string& MasterTag();
    /// The master tag in lower case equals `lowerCaseName`.
    bool MasterTagIs(std::string_view lowerCaseName);

    /// Each reads the element `Name` into `Value` and tells whether it was found. An element that is absent, or whose
    /// value does not fit the type of `Value`, gives `Default` and false; one without a known prefix leaves `Value` as
    /// it is and counts as found. A float that goes into a whole number is rounded, halves to the even one.
    bool ReadElement(std::string_view Name, std::string& Value, std::string_view Default);
    bool ReadElement(std::string_view Name, std::int32_t& Value, std::int32_t Default);
    bool ReadElement(std::string_view Name, std::int16_t& Value, std::int16_t Default);
    bool ReadElement(std::string_view Name, double& Value, double Default);
    bool ReadElement(std::string_view Name, float& Value, float Default);
    bool ReadElement(std::string_view Name, bool& Value, bool Default);

    /// The text between the tags of the element as it stands, or nothing when it is absent. The view lives as long as
    /// the reader and the text that it borrows.
    std::optional<std::string_view> ReadRaw(std::string_view Name);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace velmora::persistence
