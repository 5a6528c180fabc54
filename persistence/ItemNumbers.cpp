#include "persistence/ItemNumbers.h"

#include <algorithm>
#include <charconv>

namespace velmora::persistence {
namespace {

constexpr char LowerCase(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

void SkipBlanks(std::string_view& text)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
}

bool Take(std::string_view& text, std::string_view word)
{
    if (!std::ranges::equal(text.substr(0, word.size()), word, {}, LowerCase, LowerCase)) {
        return false;
    }
    text.remove_prefix(word.size());
    return true;
}

/// The number of a tag whose text begins at `text`.
std::optional<std::int32_t> NumberOfTag(std::string_view text, std::string_view name)
{
    constexpr std::size_t kLongest = 200;
    text = text.substr(0, kLongest);
    SkipBlanks(text);
    if (!Take(text, name) || text.substr(0, 1) != " ") {
        return std::nullopt;
    }
    SkipBlanks(text);
    std::int32_t number = 0;
    if (!Take(text, "item=\"")) {
        return std::nullopt;
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || number < 0) {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return text.substr(0, 1) == "\"" ? std::optional(number) : std::nullopt;
}

} // namespace

std::string ItemName(std::string_view name, std::int32_t i)
{
    std::string text(name);
    text += " item=\"";
    text += std::to_string(i);
    text += '"';
    return text;
}

std::vector<std::int32_t> ItemNumbers(std::string_view text, std::string_view name, std::int32_t last, bool* whole)
{
    std::vector<std::int32_t> numbers;
    for (std::size_t open = text.find('<'); open != std::string_view::npos; open = text.find('<', open + 1)) {
        if (const auto number = NumberOfTag(text.substr(open + 1), name)) {
            numbers.push_back(*number);
        }
    }
    std::ranges::sort(numbers);
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    const auto beyond = std::ranges::upper_bound(numbers, last);
    if (whole && beyond != numbers.end()) {
        *whole = false;
    }
    numbers.erase(beyond, numbers.end());
    return numbers;
}

std::optional<std::string_view> RowBudget::Take(std::optional<std::string_view> row)
{
    if (!row || row->size() > m_left) {
        return std::nullopt;
    }
    m_left -= row->size();
    return row;
}

} // namespace velmora::persistence
