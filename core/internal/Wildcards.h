#pragma once

#include <string_view>

namespace velmora::core {

/// Whether `name` matches `pattern`, both in lower case: "*" is any text, "?" any byte, "*.*" everything. Takes at
/// most the product of both lengths.
bool MatchesWildcards(std::string_view name, std::string_view pattern);

} // namespace velmora::core
