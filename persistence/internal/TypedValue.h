#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Values of elements, as they stand in a file, into variables.
namespace velmora::persistence {

enum class Outcome {
    Stored,
    /// No known prefix; the variable is left alone.
    Untouched,
    /// The value does not convert to the variable's type.
    Unfit,
};

/// Stores `raw` in `value`, by its type prefix ("str: ", "int: ", "float: ", "bool: ") when `typed`, else as text.
/// Types that differ convert: a number to text, text that is a number as a whole to a number, true to -1.
Outcome StoreValue(std::string_view raw, bool typed, std::string& value);
Outcome StoreValue(std::string_view raw, bool typed, std::int32_t& value);
Outcome StoreValue(std::string_view raw, bool typed, std::int16_t& value);
Outcome StoreValue(std::string_view raw, bool typed, double& value);
Outcome StoreValue(std::string_view raw, bool typed, float& value);
Outcome StoreValue(std::string_view raw, bool typed, bool& value);

} // namespace velmora::persistence
