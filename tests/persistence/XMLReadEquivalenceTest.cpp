#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"
#include "tests/persistence/NaiveReader.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::persistence {
namespace {

using Random = std::mt19937;

constexpr std::array<const char*, 10> kKeys{"a",     "A",      "b",      "a item=\"1\"",   "A   ITEM=\"2\"",
                                            " ab  ", "ab c d", "a item", "a item=\"1\" b", ""};

std::size_t Below(Random& random, std::size_t limit)
{
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

/// Tags that agree, nest, overlap and never close, with now and then one that ends every search.
std::string TokenText(Random& random)
{
    constexpr std::array<const char*, 20> kTokens{"<a>",
                                                  "</a>",
                                                  "<A item=\"1\">",
                                                  "<a  ITEM=\"2\" >",
                                                  "< a>",
                                                  "</ A >",
                                                  "<b>",
                                                  "</b>",
                                                  "<ab>",
                                                  "</AB>",
                                                  "<ab c  d>",
                                                  "value",
                                                  " ",
                                                  "\r\n",
                                                  "> x <b",
                                                  "</a b>",
                                                  "<a\n>",
                                                  "<?q?>",
                                                  "/",
                                                  "<a item=\"1\">"};
    constexpr std::array<const char*, 6> kEnds{"<a/>", "<>", "</>", "< >", "<", "<b /><"};
    std::string text;
    for (std::size_t i = Below(random, 40); i > 0; --i) {
        text += Below(random, 60) == 0 ? kEnds[Below(random, kEnds.size())] : kTokens[Below(random, kTokens.size())];
    }
    return text;
}

/// What the writer makes, objects inside objects, with a few bytes changed.
std::string WrittenText(Random& random, int depth = 3)
{
    UTIL_XMLWrite writer;
    if (Below(random, 2) == 0) {
        writer.SetMasterTag("b");
    }
    for (std::size_t i = Below(random, 6); i > 0; --i) {
        const char* key = kKeys[Below(random, kKeys.size() - 1)];
        if (depth > 0 && Below(random, 2) == 0) {
            writer.Add_RawElement(key, WrittenText(random, depth - 1));
        } else {
            writer.Add_Element(key, "1 < 2");
        }
    }
    std::string text = writer.GetXMLString();
    if (depth == 3 && !text.empty()) {
        constexpr std::string_view kBytes = "<>/ aAb\"\n";
        for (std::size_t i = Below(random, 4); i > 0; --i) {
            text[Below(random, text.size())] = kBytes[Below(random, kBytes.size())];
        }
    }
    return text;
}

void ExpectSameAnswers(const std::string& text, bool hasMasterTag)
{
    NaiveReader naive(text, hasMasterTag);
    UTIL_XMLRead reader = hasMasterTag ? UTIL_XMLRead::WithMasterTag(text) : UTIL_XMLRead::Plain(text);
    ASSERT_EQ(reader.MasterTag(), naive.MasterTag()) << text;
    for (const char* key : kKeys) {
        ASSERT_EQ(reader.ReadRaw(key), naive.Find(key)) << "key " << key << " in " << text;
    }
}

TEST(XMLReadEquivalence, AgreesWithASearchFromTheStart)
{
    const char* seconds = std::getenv("VELMORA_FUZZ_SECONDS");
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds ? std::atoi(seconds) : 0);
    std::uint32_t seed = 1;
    do {
        Random random(seed);
        for (int i = 0; i < 5000 && !HasFatalFailure(); ++i) {
            ExpectSameAnswers(TokenText(random), i % 2 == 0);
            ExpectSameAnswers(WrittenText(random), i % 2 == 0);
        }
        ASSERT_FALSE(HasFatalFailure()) << "seed " << seed;
        ++seed;
    } while (std::chrono::steady_clock::now() < end);
}

/// Texts of some megabytes that would take a search per read, or one per tag, minutes. Each must be answered at once;
/// CTest's time limit is what fails otherwise.
TEST(XMLReadEquivalence, StaysLinearOnHostileText)
{
    constexpr std::size_t kRepeats = 400'000;
    const auto repeat = [](std::string_view token) {
        std::string text;
        text.reserve(token.size() * kRepeats);
        for (std::size_t i = 0; i < kRepeats; ++i) {
            text += token;
        }
        return text;
    };
    const std::vector<std::string> texts{
        repeat("<"),
        repeat(">"),
        repeat("<a"),
        repeat("<a>"),
        repeat("</a>"),
        repeat("<a item=\"1\">"),
        "<a>" + repeat("<a>") + repeat("</a>"),
        repeat("<a>") + repeat("</a>") + "</a>",
        "<" + repeat("a ") + ">",
        "<a " + repeat("  ") + ">x</a>",
        repeat("<a item=\"1\"></a"),
        repeat("\r"),
        repeat("&amp;"),
    };
    for (const std::string& text : texts) {
        UTIL_XMLRead reader = UTIL_XMLRead::WithMasterTag(text);
        std::string value;
        std::size_t found = 0;
        for (int i = 0; i < 1000; ++i) {
            found += reader.ReadElement("A item=\"" + std::to_string(i) + "\"", value, "") ? 1 : 0;
        }
        EXPECT_LE(found, 1u) << text.substr(0, 20);
    }
}

TEST(XMLReadEquivalence, ReadsTenThousandItemsOfTwentyMegabytes)
{
    constexpr int kItems = 10'000;
    UTIL_XMLWrite item;
    item.SetMasterTag("Item");
    const std::string line(100, 'x');
    for (int i = 0; i < 17; ++i) {
        item.Add_Element("Line" + std::to_string(i), line);
    }
    UTIL_XMLWrite list;
    list.SetMasterTag("List");
    for (int i = 0; i < kItems; ++i) {
        list.Add_RawElement("EventData item=\"" + std::to_string(i) + "\"", item.GetXMLString());
    }
    const std::string text = list.GetXMLString();
    ASSERT_GT(text.size(), 20'000'000u);

    UTIL_XMLRead reader = UTIL_XMLRead::WithMasterTag(text);
    int right = 0;
    for (int i = kItems - 1; i >= 0; --i) {
        const auto raw = reader.ReadRaw("EventData item=\"" + std::to_string(i) + "\"");
        ASSERT_TRUE(raw);
        UTIL_XMLRead nested = UTIL_XMLRead::WithMasterTag(*raw);
        std::string value;
        right += nested.MasterTagIs("item") && nested.ReadElement("Line16", value, "") && value == line ? 1 : 0;
    }
    EXPECT_EQ(right, kItems);
}

} // namespace
} // namespace velmora::persistence
