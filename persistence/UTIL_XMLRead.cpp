#include "persistence/UTIL_XMLRead.h"

#include "persistence/Faults.h"
#include "persistence/internal/TagIndex.h"
#include "persistence/internal/TagText.h"
#include "persistence/internal/TypedValue.h"

#include <algorithm>
#include <utility>

namespace velmora::persistence {
namespace {

std::string WithoutLineEnds(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        for (std::size_t end = line.find('\r'); end != std::string_view::npos; end = line.find('\r')) {
            result += line.substr(0, end);
            line.remove_prefix(end + 1);
        }
        result += line;
    }
    return result;
}

} // namespace

struct UTIL_XMLRead::State {
    bool hasMasterTag = false;
    bool masterTagRemoved = false;
    bool textSet = false;
    std::string masterTag;
    /// Holds the text when it is not borrowed.
    std::string kept;
    std::string_view text;
    std::optional<TagIndex> index;

    bool MaySetText() const
    {
        if (textSet) {
            ReportFault("Xml string already set\nUTIL_XMLRead::SetXMLString (Property)");
        }
        return !textSet;
    }

    void Keep(std::string&& newText)
    {
        kept = std::move(newText);
        text = kept;
    }

    void SetText()
    {
        textSet = true;
        if (text.find('\r') != std::string_view::npos || text.find('\n') != std::string_view::npos) {
            Keep(WithoutLineEnds(text));
        }
        const std::size_t begin = text.find("<?");
        const std::size_t end = begin == std::string_view::npos ? begin : text.find("?>", begin + 2);
        if (end != std::string_view::npos) {
            const std::string_view rest = text.substr(end + 2);
            if (begin == 0) {
                text = rest;
            } else {
                std::string joined(text.substr(0, begin));
                joined += rest;
                Keep(std::move(joined));
            }
        }
        if (text.size() >= UINT32_MAX) {
            ReportFault("Xml string too long\nUTIL_XMLRead::SetXMLString (Property)");
            text = {};
        }
    }

    void RemoveMasterTag()
    {
        if (!hasMasterTag || masterTagRemoved || !textSet) {
            return;
        }
        masterTagRemoved = true;
        const std::size_t open = text.find('<');
        const std::size_t end = open == std::string_view::npos ? open : text.find('>', open);
        if (end == std::string_view::npos) {
            return;
        }
        masterTag = Trimmed(text.substr(open + 1, end - open - 1));
        text.remove_prefix(end + 1);
        text = text.substr(0, text.rfind("</"));
    }

    std::optional<std::string_view> Find(std::string_view name)
    {
        if (!textSet) {
            return std::nullopt;
        }
        RemoveMasterTag();
        if (!index) {
            index.emplace(text);
        }
        return index->Find(Trimmed(name));
    }

    template <typename Value, typename Default>
    bool Read(std::string_view name, bool typed, Value& value, const Default& standard)
    {
        const std::optional<std::string_view> raw = Find(name);
        const Outcome outcome = raw ? StoreValue(*raw, typed, value) : Outcome::Unfit;
        if (outcome == Outcome::Unfit) {
            value = standard;
        }
        return outcome != Outcome::Unfit;
    }
};

UTIL_XMLRead::UTIL_XMLRead()
    : m_state(std::make_unique<State>())
{
}

UTIL_XMLRead::~UTIL_XMLRead() = default;
UTIL_XMLRead::UTIL_XMLRead(UTIL_XMLRead&&) noexcept = default;
UTIL_XMLRead& UTIL_XMLRead::operator=(UTIL_XMLRead&&) noexcept = default;

UTIL_XMLRead UTIL_XMLRead::WithMasterTag(std::string_view text)
{
    UTIL_XMLRead reader;
    reader.SetHasMasterTag(true);
    reader.SetXMLString(text);
    return reader;
}

UTIL_XMLRead UTIL_XMLRead::WithMasterTag(std::string&& text)
{
    UTIL_XMLRead reader;
    reader.SetHasMasterTag(true);
    reader.SetXMLString(std::move(text));
    return reader;
}

UTIL_XMLRead UTIL_XMLRead::Plain(std::string_view text)
{
    UTIL_XMLRead reader;
    reader.SetXMLString(text);
    return reader;
}

UTIL_XMLRead UTIL_XMLRead::Plain(std::string&& text)
{
    UTIL_XMLRead reader;
    reader.SetXMLString(std::move(text));
    return reader;
}

bool UTIL_XMLRead::HasMasterTag() const
{
    return m_state->hasMasterTag;
}

void UTIL_XMLRead::SetHasMasterTag(bool has)
{
    if (m_state->masterTagRemoved) {
        ReportFault("Can't set property after master tag was removed\nUTIL_XMLRead::HasMasterTag (Property)");
        return;
    }
    m_state->hasMasterTag = has;
}

void UTIL_XMLRead::SetXMLString(std::string_view text)
{
    if (m_state->MaySetText()) {
        m_state->text = text;
        m_state->SetText();
    }
}

void UTIL_XMLRead::SetXMLString(std::string&& text)
{
    if (m_state->MaySetText()) {
        m_state->Keep(std::move(text));
        m_state->SetText();
    }
}

const std::string& UTIL_XMLRead::MasterTag()
{
    if (!m_state->textSet) {
        ReportFault("Set XML string first\nUTIL_XMLRead::MasterTag");
    }
    m_state->RemoveMasterTag();
    return m_state->masterTag;
}

bool UTIL_XMLRead::MasterTagIs(std::string_view lowerCaseName)
{
    return std::ranges::equal(MasterTag(), lowerCaseName, {}, LowerCase);
}

bool UTIL_XMLRead::ReadElement(std::string_view Name, std::string& Value, std::string_view Default)
{
    return m_state->Read(Name, TypedValues, Value, Default);
}

bool UTIL_XMLRead::ReadElement(std::string_view Name, std::int32_t& Value, std::int32_t Default)
{
    return m_state->Read(Name, TypedValues, Value, Default);
}

bool UTIL_XMLRead::ReadElement(std::string_view Name, std::int16_t& Value, std::int16_t Default)
{
    return m_state->Read(Name, TypedValues, Value, Default);
}

bool UTIL_XMLRead::ReadElement(std::string_view Name, double& Value, double Default)
{
    return m_state->Read(Name, TypedValues, Value, Default);
}

bool UTIL_XMLRead::ReadElement(std::string_view Name, float& Value, float Default)
{
    return m_state->Read(Name, TypedValues, Value, Default);
}

bool UTIL_XMLRead::ReadElement(std::string_view Name, bool& Value, bool Default)
{
    return m_state->Read(Name, TypedValues, Value, Default);
}

std::optional<std::string_view> UTIL_XMLRead::ReadRaw(std::string_view Name)
{
    return m_state->Find(Name);
}

} // namespace velmora::persistence
