#include "persistence/internal/Escapes.h"

#include <array>
#include <cstddef>

namespace velmora::persistence {
namespace {

struct Escape {
    char character;
    std::string_view entity;
};

constexpr std::array kEscapes{Escape{'&', "&amp;"}, Escape{'<', "&lt;"}, Escape{'>', "&gt;"}, Escape{'\'', "&apos;"},
                              Escape{'"', "&quot;"}};

/// Shortens `text` in place.
void ReplaceEntity(std::string& text, const Escape& escape)
{
    std::size_t from = text.find(escape.entity);
    if (from == std::string::npos) {
        return;
    }
    std::size_t to = from;
    while (from < text.size()) {
        if (text[from] == '&' && text.compare(from, escape.entity.size(), escape.entity) == 0) {
            text[to++] = escape.character;
            from += escape.entity.size();
        } else {
            text[to++] = text[from++];
        }
    }
    text.resize(to);
}

} // namespace

void AppendEscaped(std::string& target, std::string_view text)
{
    constexpr std::string_view kSpecial = "&<>'\"";
    for (std::size_t next = text.find_first_of(kSpecial); next != std::string_view::npos;
         next = text.find_first_of(kSpecial)) {
        target += text.substr(0, next);
        target += kEscapes[kSpecial.find(text[next])].entity;
        text.remove_prefix(next + 1);
    }
    target += text;
}

std::string Unescaped(std::string_view text)
{
    std::string result(text);
    if (text.find('&') == std::string_view::npos) {
        return result;
    }
    for (const Escape& escape : kEscapes) {
        ReplaceEntity(result, escape);
    }
    return result;
}

} // namespace velmora::persistence
