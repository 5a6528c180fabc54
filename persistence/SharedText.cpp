#include "persistence/SharedText.h"

#include <functional>
#include <utility>

namespace velmora::persistence {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

std::size_t LineEndsIn(std::string_view text)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(kLineEnd); at != std::string_view::npos; at = text.find(kLineEnd, at + 2)) {
        ++count;
    }
    return count;
}

void AppendWithMargin(std::string& target, std::string_view text, std::size_t margin)
{
    if (margin > 0) {
        for (std::size_t at = text.find(kLineEnd); at != std::string_view::npos; at = text.find(kLineEnd)) {
            target += text.substr(0, at + kLineEnd.size());
            target.append(margin, ' ');
            text.remove_prefix(at + kLineEnd.size());
        }
    }
    target += text;
}

} // namespace

/// What a piece says: two with the same content are one.
struct SharedText::Content {
    std::string_view own;
    const std::vector<Inset>& insets;

    std::size_t Hash() const
    {
        std::size_t hash = std::hash<std::string_view>()(own);
        for (const Inset& inset : insets) {
            hash = hash * 31 + std::hash<const void*>()(inset.piece.get());
        }
        return hash;
    }

    void AppendTo(std::string& target, std::size_t margin) const;
};

struct SharedText::Piece : std::enable_shared_from_this<Piece> {
    Piece(const Content& content, std::size_t theHash)
        : own(content.own)
        , insets(content.insets)
        , hash(theHash)
        , length(own.size())
        , lineEnds(LineEndsIn(own))
    {
        for (const Inset& inset : insets) {
            length += inset.piece->length + inset.piece->lineEnds * inset.margin;
            lineEnds += inset.piece->lineEnds;
        }
    }
    ~Piece();
    Piece(const Piece&) = delete;
    Piece& operator=(const Piece&) = delete;

    Content AsContent() const { return {own, insets}; }

    const std::string own;
    /// In the order of their places.
    const std::vector<Inset> insets;
    const std::size_t hash;
    /// Of the whole text.
    std::size_t length;
    std::size_t lineEnds;
};

void SharedText::Content::AppendTo(std::string& target, std::size_t margin) const
{
    std::size_t from = 0;
    for (const Inset& inset : insets) {
        AppendWithMargin(target, own.substr(from, inset.at - from), margin);
        inset.piece->AsContent().AppendTo(target, margin + inset.margin);
        from = inset.at;
    }
    AppendWithMargin(target, own.substr(from), margin);
}

/// Every living piece, found by its content.
struct SharedText::Pool {
    struct Wanted {
        Content content;
        std::size_t hash;
    };
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(const Wanted& wanted) const { return wanted.hash; }
        std::size_t operator()(const Piece* piece) const { return piece->hash; }
    };
    struct Equal {
        using is_transparent = void;
        bool operator()(const Piece* a, const Piece* b) const { return a == b; }
        bool operator()(const Wanted& a, const Piece* b) const
        {
            return a.hash == b->hash && a.content.own == b->own && a.content.insets == b->insets;
        }
        bool operator()(const Piece* a, const Wanted& b) const { return (*this)(b, a); }
    };

    static Pool& Get()
    {
        // Outlives every text, one in a static object too.
        static Pool& pool = *new Pool;
        return pool;
    }

    std::shared_ptr<const Piece> Find(const Content& content)
    {
        const std::size_t hash = content.Hash();
        const auto known = pieces.find(Wanted{content, hash});
        if (known != pieces.end()) {
            return (*known)->shared_from_this();
        }
        auto piece = std::make_shared<const Piece>(content, hash);
        pieces.insert(piece.get());
        return piece;
    }

    std::unordered_set<const Piece*, Hash, Equal> pieces;
};

SharedText::Piece::~Piece()
{
    Pool::Get().pieces.erase(this);
}

SharedText::SharedText(std::string_view text)
    : SharedText(text, {})
{
}

SharedText::SharedText(std::string_view text, const std::vector<Inset>& insets)
{
    if (!text.empty() || !insets.empty()) {
        m_piece = Pool::Get().Find({text, insets});
    }
}

std::string SharedText::Text() const
{
    std::string text;
    if (m_piece) {
        text.reserve(m_piece->length);
        m_piece->AsContent().AppendTo(text, 0);
    }
    return text;
}

std::size_t SharedText::BytesHeld(std::unordered_set<const void*>& counted) const
{
    if (!m_piece || !counted.insert(m_piece.get()).second) {
        return 0;
    }
    // The counts of owners beside the piece, and its place in the pool: a hash, two pointers and a bucket.
    constexpr std::size_t kBeside = 2 * sizeof(void*) + 4 * sizeof(void*);
    std::size_t bytes = sizeof(Piece) + kBeside + m_piece->own.capacity() + m_piece->insets.capacity() * sizeof(Inset);
    for (const Inset& inset : m_piece->insets) {
        SharedText part;
        part.m_piece = inset.piece;
        bytes += part.BytesHeld(counted);
    }
    return bytes;
}

} // namespace velmora::persistence
