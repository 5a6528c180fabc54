#include "core/internal/Wildcards.h"

#include <cstddef>

namespace velmora::core {

bool MatchesWildcards(std::string_view name, std::string_view pattern)
{
    if (pattern == "*.*") {
        return true;
    }
    std::size_t n = 0;
    std::size_t p = 0;
    std::size_t star = std::string_view::npos;
    std::size_t afterStar = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            afterStar = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (star != std::string_view::npos) {
            // The last star takes one character more.
            p = star + 1;
            n = ++afterStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

} // namespace velmora::core
