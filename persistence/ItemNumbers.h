#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::persistence {

/// `name item="i"`: the name of the element of row `i`.
std::string ItemName(std::string_view name, std::int32_t i);

/// The numbers, ascending and each once, of the tags `<name item="i">` that stand anywhere in `text`, of 0..`last`. A
/// count in a file is only believed as far as there are rows, so nothing is made or searched for by the count alone.
/// `whole` becomes false when a number lies beyond `last`.
std::vector<std::int32_t> ItemNumbers(std::string_view text, std::string_view name, std::int32_t last,
                                      bool* whole = nullptr);

/// Rows stand beside each other, so together they are no longer than the text that they are read from. In a text that
/// puts rows into rows each would be read over and over; what goes beyond the length is not taken.
class RowBudget {
public:
    explicit RowBudget(std::string_view text)
        : m_left(text.size())
    {
    }

    /// `row`, or nothing when it is too much or was nothing.
    std::optional<std::string_view> Take(std::optional<std::string_view> row);

private:
    std::size_t m_left;
};

} // namespace velmora::persistence
