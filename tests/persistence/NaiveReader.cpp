#include "tests/persistence/NaiveReader.h"

#include <cctype>

namespace velmora::persistence {
namespace {

constexpr auto kNone = std::string::npos;

std::string Normalised(std::string text)
{
    std::string result;
    for (const char c : text) {
        if (c != ' ' || (!result.empty() && result.back() != ' ')) {
            result += static_cast<char>(std::tolower(c));
        }
    }
    if (!result.empty() && result.back() == ' ') {
        result.pop_back();
    }
    return result;
}

std::string TrimmedCopy(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(' ');
    return first == kNone ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

} // namespace

NaiveReader::NaiveReader(std::string text, bool hasMasterTag)
    : m_text(std::move(text))
{
    std::erase(m_text, '\r');
    std::erase(m_text, '\n');
    const std::size_t header = m_text.find("<?");
    const std::size_t headerEnd = header == kNone ? kNone : m_text.find("?>", header + 2);
    if (headerEnd != kNone) {
        m_text.erase(header, headerEnd + 2 - header);
    }
    if (!hasMasterTag) {
        return;
    }
    const std::size_t open = m_text.find('<');
    const std::size_t end = open == kNone ? kNone : m_text.find('>', open);
    if (end != kNone) {
        m_masterTag = TrimmedCopy(m_text.substr(open + 1, end - open - 1));
        m_text.erase(0, end + 1);
        if (const std::size_t close = m_text.rfind("</"); close != kNone) {
            m_text.erase(close);
        }
    }
}

NaiveReader::Tag NaiveReader::NextTag(std::size_t from) const
{
    Tag tag;
    tag.begin = m_text.find('<', from);
    const std::size_t end = tag.begin == kNone ? kNone : m_text.find('>', tag.begin);
    if (end == kNone) {
        return tag;
    }
    std::size_t name = tag.begin + 1;
    if (m_text[name] == '/') {
        tag.kind = Kind::Close;
        ++name;
    }
    tag.text = Normalised(m_text.substr(name, end - name));
    if (tag.text.ends_with('/')) {
        tag.kind = Kind::SelfClosed;
    }
    tag.end = end + 1;
    return tag;
}

std::optional<std::string> NaiveReader::Find(std::string_view name)
{
    constexpr int kUnmatched = -1000;
    const std::string key = Normalised(std::string(name));
    const std::string word = key.substr(0, key.find(' '));
    int matchedDepth = kUnmatched;
    std::size_t valueBegin = 0;
    for (std::size_t position = 0;;) {
        const Tag tag = NextTag(position);
        if (tag.text.empty() || tag.kind == Kind::SelfClosed) {
            return std::nullopt;
        }
        position = tag.end;
        const auto top = [this] { return static_cast<int>(m_stack.size()) - 1; };
        if (tag.kind == Kind::Close) {
            if (tag.text == word) {
                if (!m_stack.empty()) {
                    m_stack.pop_back();
                }
                if (top() == matchedDepth) {
                    return m_text.substr(valueBegin, tag.begin - valueBegin);
                }
            }
        } else if (tag.text.substr(0, tag.text.find(' ')) == word) {
            if (tag.text == key && matchedDepth == kUnmatched) {
                matchedDepth = top();
                valueBegin = tag.end;
            }
            m_stack.push_back(word);
        }
    }
}

} // namespace velmora::persistence
