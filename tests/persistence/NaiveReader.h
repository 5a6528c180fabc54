#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::persistence {

/// The reader's search in its plainest form: from the start of the text for each key, with one stack of open names for
/// all reads. Quadratic; what `UTIL_XMLRead` must agree with.
class NaiveReader {
public:
    NaiveReader(std::string text, bool hasMasterTag);

    const std::string& MasterTag() const { return m_masterTag; }
    std::optional<std::string> Find(std::string_view name);

private:
    enum class Kind { Open, Close, SelfClosed };
    struct Tag {
        Kind kind = Kind::Open;
        std::string text;
        std::size_t begin = 0;
        std::size_t end = 0;
    };
    Tag NextTag(std::size_t from) const;

    std::string m_text;
    std::string m_masterTag;
    std::vector<std::string> m_stack;
};

} // namespace velmora::persistence
