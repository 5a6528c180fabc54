#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::project {

/// `name item="i"`: the name of the element of row `i`.
std::string ItemName(std::string_view name, std::int32_t i);

/// The numbers, ascending and each once, of the tags `<name item="i">` that stand anywhere in `text`, of 0..`last`. A
/// count in a file is only believed as far as there are rows, so nothing is made or searched for by the count alone.
/// `whole` becomes false when a number lies beyond `last`.
std::vector<std::int32_t> ItemNumbers(std::string_view text, std::string_view name, std::int32_t last, bool* whole);

} // namespace velmora::project
