#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Numbers as text, whatever the locale.
namespace velmora::persistence {

std::string NumberText(std::int32_t value);
/// The shortest text that reads back as `value`: plain decimals, with an exponent below 0.00001 and from 1e15 on. A
/// value that is not finite gives "0".
std::string NumberText(double value);
std::string NumberText(float value);

/// The number that `text` begins with, after blanks: sign, digits with a point, exponent. 0 when it begins with none;
/// nothing when it is too large for the type.
std::optional<double> NumericPrefix(std::string_view text);
std::optional<float> NumericPrefixAsFloat(std::string_view text);

/// The number that `text`, without the blanks around it, is as a whole.
std::optional<double> WholeNumber(std::string_view text);

} // namespace velmora::persistence
