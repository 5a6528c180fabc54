#include "persistence/internal/TypedValue.h"

#include "persistence/Numbers.h"
#include "persistence/internal/Escapes.h"
#include "persistence/internal/TagText.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace velmora::persistence {
namespace {

enum class Kind { Text, Number, Boolean, Unknown };

struct Typed {
    Kind kind;
    std::string_view text;
};

bool EqualsIgnoringCase(std::string_view text, std::string_view lowerCase)
{
    return std::ranges::equal(text, lowerCase, {}, LowerCase);
}

bool TakePrefix(std::string_view& text, std::string_view prefix)
{
    if (!EqualsIgnoringCase(text.substr(0, prefix.size()), prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

Typed SplitPrefix(std::string_view raw)
{
    if (TakePrefix(raw, "str: ")) {
        return {Kind::Text, raw};
    }
    if (TakePrefix(raw, "int: ") || TakePrefix(raw, "float: ")) {
        return {Kind::Number, raw};
    }
    if (TakePrefix(raw, "bool: ")) {
        return {Kind::Boolean, raw};
    }
    return {Kind::Unknown, raw};
}

bool IsTrue(std::string_view text)
{
    return EqualsIgnoringCase(Trimmed(text), "true");
}

std::optional<double> TextAsNumber(std::string_view text)
{
    if (IsTrue(text)) {
        return -1.0;
    }
    if (EqualsIgnoringCase(Trimmed(text), "false")) {
        return 0.0;
    }
    return WholeNumber(text);
}

/// The value as a 64-bit float; `outcome` says why there is none.
std::optional<double> NumberOf(std::string_view raw, bool typed, Outcome& outcome)
{
    outcome = Outcome::Unfit;
    if (!typed) {
        return TextAsNumber(raw);
    }
    const Typed value = SplitPrefix(raw);
    switch (value.kind) {
    case Kind::Text:
        return TextAsNumber(Unescaped(value.text));
    case Kind::Number:
        return NumericPrefix(value.text);
    case Kind::Boolean:
        return IsTrue(value.text) ? -1.0 : 0.0;
    case Kind::Unknown:
        break;
    }
    outcome = Outcome::Untouched;
    return std::nullopt;
}

template <typename Integer>
Outcome StoreWhole(std::string_view raw, bool typed, Integer& value)
{
    Outcome outcome;
    const std::optional<double> number = NumberOf(raw, typed, outcome);
    if (!number) {
        return outcome;
    }
    const double whole = std::nearbyint(*number);
    if (whole < std::numeric_limits<Integer>::min() || whole > std::numeric_limits<Integer>::max()) {
        return Outcome::Unfit;
    }
    value = static_cast<Integer>(whole);
    return Outcome::Stored;
}

} // namespace

Outcome StoreValue(std::string_view raw, bool typed, std::string& value)
{
    if (!typed) {
        value = raw;
        return Outcome::Stored;
    }
    const Typed split = SplitPrefix(raw);
    switch (split.kind) {
    case Kind::Text:
        value = Unescaped(split.text);
        return Outcome::Stored;
    case Kind::Number: {
        const std::optional<double> number = NumericPrefix(split.text);
        if (!number) {
            return Outcome::Unfit;
        }
        value = NumberText(*number);
        return Outcome::Stored;
    }
    case Kind::Boolean:
        value = IsTrue(split.text) ? "True" : "False";
        return Outcome::Stored;
    case Kind::Unknown:
        break;
    }
    return Outcome::Untouched;
}

Outcome StoreValue(std::string_view raw, bool typed, std::int32_t& value)
{
    return StoreWhole(raw, typed, value);
}

Outcome StoreValue(std::string_view raw, bool typed, std::int16_t& value)
{
    return StoreWhole(raw, typed, value);
}

Outcome StoreValue(std::string_view raw, bool typed, double& value)
{
    Outcome outcome;
    const std::optional<double> number = NumberOf(raw, typed, outcome);
    if (!number) {
        return outcome;
    }
    value = *number;
    return Outcome::Stored;
}

Outcome StoreValue(std::string_view raw, bool typed, float& value)
{
    const Typed split = SplitPrefix(raw);
    if (typed && split.kind == Kind::Number) {
        // Not by way of a 64-bit float: rounding twice may miss the float that was written.
        const std::optional<float> number = NumericPrefixAsFloat(split.text);
        if (!number) {
            return Outcome::Unfit;
        }
        value = *number;
        return Outcome::Stored;
    }
    double number = 0;
    const Outcome outcome = StoreValue(raw, typed, number);
    if (outcome != Outcome::Stored) {
        return outcome;
    }
    if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max())) {
        return Outcome::Unfit;
    }
    value = static_cast<float>(number);
    return Outcome::Stored;
}

Outcome StoreValue(std::string_view raw, bool typed, bool& value)
{
    Outcome outcome;
    const std::optional<double> number = NumberOf(raw, typed, outcome);
    if (!number) {
        return outcome;
    }
    value = *number != 0;
    return Outcome::Stored;
}

} // namespace velmora::persistence
