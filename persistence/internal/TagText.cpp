#include "persistence/internal/TagText.h"

#include <cstddef>

namespace velmora::persistence {
namespace {

/// The position behind the character at `at`, or behind the run of blanks that begins there.
std::size_t Next(std::string_view text, std::size_t at)
{
    if (text[at] != ' ') {
        return at + 1;
    }
    const std::size_t word = text.find_first_not_of(' ', at);
    return word == std::string_view::npos ? text.size() : word;
}

} // namespace

std::string_view Trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::strong_ordering CompareTagTexts(std::string_view a, std::string_view b)
{
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        const auto order = static_cast<unsigned char>(LowerCase(a[i])) <=> static_cast<unsigned char>(LowerCase(b[j]));
        if (std::is_neq(order)) {
            return order;
        }
        i = Next(a, i);
        j = Next(b, j);
    }
    return (i < a.size()) <=> (j < b.size());
}

std::uint32_t WordHash(std::string_view word)
{
    std::uint32_t hash = 2166136261u;
    for (const char c : word) {
        hash = (hash ^ static_cast<unsigned char>(LowerCase(c))) * 16777619u;
    }
    return hash;
}

} // namespace velmora::persistence
