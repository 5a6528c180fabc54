#pragma once

#include <compare>
#include <cstdint>
#include <string_view>

/// The text between "<" and ">". Two texts are the same when they differ only in the case of ASCII letters and in how
/// many blanks part their words or stand around them. A blank is the character 32 alone.
namespace velmora::persistence {

/// Without the blanks around it.
std::string_view Trimmed(std::string_view text);

/// Of a trimmed text, all before its first blank.
inline std::string_view FirstWord(std::string_view trimmed)
{
    return trimmed.substr(0, trimmed.find(' '));
}

constexpr char LowerCase(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Orders two trimmed texts, regardless of case and of the length of runs of blanks.
std::strong_ordering CompareTagTexts(std::string_view a, std::string_view b);

/// Equal for words that differ only in case.
std::uint32_t WordHash(std::string_view word);

} // namespace velmora::persistence
