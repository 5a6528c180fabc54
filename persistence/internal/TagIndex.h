#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::persistence {

/// Answers, for a text without line ends, what a search from its start would find for a key, at the cost of one walk.
///
/// That search takes the first opening tag whose text is the key, at any depth, and ends at the closing tag that
/// balances it among the tags with the key's first word. A self-closed or empty tag, or a "<" without ">", ends every
/// search: what is not complete before it is not found.
///
/// Memory: 8 bytes per tag, and 12 bytes per opening tag with attributes whose first word was asked for
/// (twice that while they are gathered).
/// Time: the first question walks the text, the first one for each first word walks the list of tags, the others are
/// binary searches. The text must outlive the index and be shorter than 4 GiB.
class TagIndex {
public:
    explicit TagIndex(std::string_view text);

    /// The text between the tags of `key`, a trimmed tag text.
    std::optional<std::string_view> Find(std::string_view key);

private:
    static constexpr std::uint32_t kOpen = UINT32_MAX;

    struct Tag {
        /// Position of the "<".
        std::uint32_t position;
        std::uint32_t wordHash;
    };
    struct Element {
        std::uint32_t name = 0;
        std::uint32_t valueBegin = 0;
        /// `kOpen` when no closing tag balances it.
        std::uint32_t valueEnd = kOpen;
    };
    struct Word {
        std::string word;
        std::uint32_t hash;
        /// The first element without attributes.
        std::optional<Element> plain;
        /// The first of each text with attributes, ordered by text.
        std::vector<Element> withAttributes;
    };

    const Word& WordOf(std::string_view word);
    void Walk(Word& word) const;
    void KeepFirstOfEachText(std::vector<Element>& elements) const;
    std::string_view NameOf(const Element& element) const;
    std::optional<std::string_view> ValueOf(const Element& element) const;

    std::string_view m_text;
    std::vector<Tag> m_tags;
    std::vector<Word> m_words;
};

} // namespace velmora::persistence
