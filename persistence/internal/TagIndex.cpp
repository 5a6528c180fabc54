#include "persistence/internal/TagIndex.h"

#include "persistence/internal/TagText.h"

#include <algorithm>

namespace velmora::persistence {

TagIndex::TagIndex(std::string_view text)
    : m_text(text)
{
    for (std::size_t open = text.find('<'); open != std::string_view::npos;) {
        const std::size_t end = text.find('>', open + 1);
        if (end == std::string_view::npos) {
            return;
        }
        const std::size_t name = text[open + 1] == '/' ? open + 2 : open + 1;
        const std::string_view tag = Trimmed(text.substr(name, end - name));
        if (tag.empty() || tag.back() == '/') {
            return;
        }
        m_tags.push_back({static_cast<std::uint32_t>(open), WordHash(FirstWord(tag))});
        open = text.find('<', end + 1);
    }
}

std::optional<std::string_view> TagIndex::Find(std::string_view key)
{
    const std::string_view first = FirstWord(key);
    const Word& word = WordOf(first);
    if (key.size() == first.size()) {
        return word.plain ? ValueOf(*word.plain) : std::nullopt;
    }
    const auto found = std::lower_bound(word.withAttributes.begin(), word.withAttributes.end(), key,
                                        [this](const Element& element, std::string_view wanted) {
                                            return std::is_lt(CompareTagTexts(NameOf(element), wanted));
                                        });
    if (found == word.withAttributes.end() || std::is_neq(CompareTagTexts(NameOf(*found), key))) {
        return std::nullopt;
    }
    return ValueOf(*found);
}

const TagIndex::Word& TagIndex::WordOf(std::string_view word)
{
    const std::uint32_t hash = WordHash(word);
    for (const Word& known : m_words) {
        if (known.hash == hash && std::is_eq(CompareTagTexts(known.word, word))) {
            return known;
        }
    }
    Word& added = m_words.emplace_back();
    added.word = word;
    added.hash = hash;
    Walk(added);
    return added;
}

void TagIndex::Walk(Word& word) const
{
    constexpr std::uint32_t kPlain = UINT32_MAX;
    struct Pending {
        std::uint32_t element;
        std::uint32_t depth;
    };
    std::vector<Pending> pending;
    std::uint32_t depth = 0;
    for (const Tag& tag : m_tags) {
        if (tag.wordHash != word.hash) {
            continue;
        }
        const bool closes = m_text[tag.position + 1] == '/';
        const std::uint32_t name = tag.position + (closes ? 2 : 1);
        const auto end = static_cast<std::uint32_t>(m_text.find('>', tag.position + 1));
        const std::string_view text = Trimmed(m_text.substr(name, end - name));
        const std::string_view first = FirstWord(text);
        if (std::is_neq(CompareTagTexts(first, word.word))) {
            continue;
        }
        const bool plain = first.size() == text.size();
        if (!closes) {
            ++depth;
            const Element element{name, end + 1, kOpen};
            if (!plain) {
                pending.push_back({static_cast<std::uint32_t>(word.withAttributes.size()), depth});
                word.withAttributes.push_back(element);
            } else if (!word.plain) {
                pending.push_back({kPlain, depth});
                word.plain = element;
            }
        } else if (plain && depth > 0) {
            if (!pending.empty() && pending.back().depth == depth) {
                const std::uint32_t index = pending.back().element;
                (index == kPlain ? *word.plain : word.withAttributes[index]).valueEnd = tag.position;
                pending.pop_back();
            }
            --depth;
        }
    }
    KeepFirstOfEachText(word.withAttributes);
}

void TagIndex::KeepFirstOfEachText(std::vector<Element>& elements) const
{
    const auto order = [this](const Element& a, const Element& b) { return CompareTagTexts(NameOf(a), NameOf(b)); };
    std::stable_sort(elements.begin(), elements.end(),
                     [&order](const Element& a, const Element& b) { return std::is_lt(order(a, b)); });
    elements.erase(std::unique(elements.begin(), elements.end(),
                               [&order](const Element& a, const Element& b) { return std::is_eq(order(a, b)); }),
                   elements.end());
}

std::string_view TagIndex::NameOf(const Element& element) const
{
    return Trimmed(m_text.substr(element.name, element.valueBegin - 1 - element.name));
}

std::optional<std::string_view> TagIndex::ValueOf(const Element& element) const
{
    if (element.valueEnd == kOpen) {
        return std::nullopt;
    }
    return m_text.substr(element.valueBegin, element.valueEnd - element.valueBegin);
}

} // namespace velmora::persistence
