#include "persistence/Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace velmora::persistence {
namespace {

template <typename Float>
std::string FloatText(Float value)
{
    if (!std::isfinite(value)) {
        return "0";
    }
    const Float magnitude = std::abs(value);
    const bool plain =
        magnitude == 0 || (magnitude >= static_cast<Float>(1e-5) && magnitude < static_cast<Float>(1e15));
    std::array<char, 64> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   plain ? std::chars_format::fixed : std::chars_format::scientific);
    return {text.data(), end.ptr};
}

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Of a number that no float holds: whether it is too large, rather than too small.
bool IsHuge(std::string_view number)
{
    const std::size_t exponentMark = number.find_first_of("eE");
    const std::string_view digits = number.substr(0, exponentMark);
    const std::size_t firstDigit = digits.find_first_of("123456789");
    const std::size_t point = std::min(digits.find('.'), digits.size());
    if (exponentMark == std::string_view::npos) {
        return firstDigit < point;
    }
    std::string_view exponent = number.substr(exponentMark + 1);
    const bool negative = exponent.starts_with('-');
    exponent.remove_prefix(negative || exponent.starts_with('+') ? 1 : 0);
    // An exponent that does not fit outweighs any number of digits that a text can hold.
    std::int64_t power = INT64_MAX / 2;
    std::from_chars(exponent.data(), exponent.data() + exponent.size(), power);
    const auto leading = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(firstDigit);
    return leading + (negative ? -power : power) > 0;
}

template <typename Float>
struct Parsed {
    std::optional<Float> value;
    std::string_view rest;
};

template <typename Float>
Parsed<Float> Parse(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    std::string_view number = text;
    const bool negative = number.starts_with('-');
    if (negative || number.starts_with('+')) {
        number.remove_prefix(1);
    }
    const bool begins =
        !number.empty() && (IsDigit(number[0]) || (number[0] == '.' && number.size() > 1 && IsDigit(number[1])));
    if (!begins) {
        return {Float{0}, text};
    }
    Float value{0};
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    const std::string_view rest = number.substr(static_cast<std::size_t>(end - number.data()));
    if (error == std::errc::result_out_of_range) {
        number.remove_suffix(rest.size());
        if (IsHuge(number)) {
            return {std::nullopt, rest};
        }
        value = 0;
    }
    return {negative ? -value : value, rest};
}

} // namespace

std::string NumberText(std::int32_t value)
{
    std::array<char, 16> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value);
    return {text.data(), end.ptr};
}

std::string NumberText(double value)
{
    return FloatText(value);
}

std::string NumberText(float value)
{
    return FloatText(value);
}

std::optional<double> NumericPrefix(std::string_view text)
{
    return Parse<double>(text).value;
}

std::optional<float> NumericPrefixAsFloat(std::string_view text)
{
    return Parse<float>(text).value;
}

std::optional<double> WholeNumber(std::string_view text)
{
    const Parsed<double> parsed = Parse<double>(text);
    const bool whole = parsed.rest.find_first_not_of(' ') == std::string_view::npos;
    const bool empty = text.find_first_not_of(' ') == std::string_view::npos;
    return whole && !empty ? parsed.value : std::nullopt;
}

} // namespace velmora::persistence
