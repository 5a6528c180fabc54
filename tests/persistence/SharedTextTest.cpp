#include "persistence/SharedText.h"

#include "persistence/UTIL_XMLWrite.h"

#include <cstddef>
#include <random>
#include <string>
#include <unordered_set>
#include <utility>

#include <gtest/gtest.h>

namespace velmora::persistence {
namespace {

/// A random object, written with nested strings and, from the same seed, with nested pieces.
std::pair<UTIL_XMLWrite, UTIL_XMLWrite> Both(std::mt19937& random, int depth)
{
    std::pair<UTIL_XMLWrite, UTIL_XMLWrite> both;
    const auto each = [&both](auto&& edit) {
        edit(both.first);
        edit(both.second);
    };
    if (random() % 4 != 0) {
        each([](UTIL_XMLWrite& writer) { writer.SetMasterTag("Object"); });
    }
    for (unsigned i = random() % 4; i > 0; --i) {
        const auto number = static_cast<std::int32_t>(random() % 3);
        each([number](UTIL_XMLWrite& writer) { writer.Add_Element("Number", number); });
        if (depth > 0) {
            const auto nested = Both(random, depth - 1);
            both.first.Add_RawElement("Nested", nested.first.GetXMLString());
            both.second.Add_RawElement("Nested", nested.second.GetSharedXML());
        }
    }
    return both;
}

std::size_t Bytes(std::initializer_list<const SharedText*> texts)
{
    std::unordered_set<const void*> counted;
    std::size_t bytes = 0;
    for (const SharedText* text : texts) {
        bytes += text->BytesHeld(counted);
    }
    return bytes;
}

TEST(SharedText, SaysWhatTheWriterOfStringsSays)
{
    std::mt19937 random(4);
    for (int i = 0; i < 300; ++i) {
        const auto [strings, pieces] = Both(random, 4);
        ASSERT_EQ(pieces.GetSharedXML().Text(), strings.GetXMLString());
        ASSERT_EQ(pieces.GetXMLString(), strings.GetXMLString());
    }
}

TEST(SharedText, IsOnePieceForAllThatSayTheSameAndGoesWithTheLast)
{
    const auto make = [](const std::string& last) {
        UTIL_XMLWrite writer;
        writer.SetMasterTag("List");
        writer.Add_RawElement("First", SharedText(std::string(5000, 'a')));
        writer.Add_RawElement("Last", SharedText(last));
        return writer.GetSharedXML();
    };
    const SharedText text = make("b");
    {
        const SharedText same = make("b");
        EXPECT_EQ(same, text);
        EXPECT_EQ(Bytes({&text, &same}), Bytes({&text}));
    }
    const SharedText other = make("c");
    EXPECT_NE(other, text);
    EXPECT_GE(Bytes({&text}), 5000);
    EXPECT_LT(Bytes({&text, &other}), Bytes({&text}) + 1000);

    EXPECT_TRUE(SharedText("").empty());
    EXPECT_EQ(SharedText().Text(), "");
}

} // namespace
} // namespace velmora::persistence
