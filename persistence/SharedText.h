#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace velmora::persistence {

/// A text of the tag language that never changes, held in pieces. Pieces that say the same are one piece, whoever
/// wrote them, for as long as somebody holds it: texts that differ little share the rest.
///
/// A piece is a string with other pieces set into it; the lines of a set-in piece move right by its margin, so that an
/// object's text is one piece at whatever depth it stands. `UTIL_XMLWrite` makes them.
/// Cost: a copy is a pointer. Making one is linear in its own string and in the number of pieces set into it; `Text`
/// is linear in the result. Interface thread only.
class SharedText {
public:
    /// The empty text.
    SharedText() = default;
    explicit SharedText(std::string_view text);

    bool empty() const { return !m_piece; }
    std::string Text() const;

    /// One and the same piece, so the same text; texts that were put together differently may be equal and differ here.
    bool operator==(const SharedText& other) const = default;

    /// Bytes of memory behind this text without the pieces in `counted`, which then holds all of them.
    std::size_t BytesHeld(std::unordered_set<const void*>& counted) const;

private:
    friend class UTIL_XMLWrite;
    struct Piece;
    struct Inset {
        /// Where in the string of the piece around it.
        std::size_t at = 0;
        /// Blanks after each line end.
        std::size_t margin = 0;
        std::shared_ptr<const Piece> piece;

        bool operator==(const Inset&) const = default;
    };
    struct Content;
    struct Pool;

    SharedText(std::string_view text, const std::vector<Inset>& insets);

    std::shared_ptr<const Piece> m_piece;
};

} // namespace velmora::persistence
