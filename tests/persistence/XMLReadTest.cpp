#include "persistence/Faults.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::persistence {
namespace {

using ::testing::ElementsAre;

/// Gathers faults for the length of a test.
class FaultLog {
public:
    FaultLog()
        : m_earlier(SetFaultHandler([this](std::string_view text) { texts.emplace_back(text); }))
    {
    }
    ~FaultLog() { SetFaultHandler(m_earlier); }

    std::vector<std::string> texts;

private:
    FaultHandler m_earlier;
};

template <typename Value>
std::pair<bool, Value> Read(const std::string& element, Value before, Value fallback)
{
    UTIL_XMLRead reader = UTIL_XMLRead::Plain("<v>" + element + "</v>");
    const bool found = reader.ReadElement("v", before, fallback);
    return {found, before};
}

TEST(UTIL_XMLRead, ConvertsValuesToTheVariable)
{
    using Int = std::pair<bool, std::int32_t>;
    using Short = std::pair<bool, std::int16_t>;
    EXPECT_EQ((Read<std::int32_t>("int: -12", 7, 8)), (Int{true, -12}));
    EXPECT_EQ((Read<std::int32_t>("INT:   3 apples", 7, 8)), (Int{true, 3}));
    EXPECT_EQ((Read<std::int32_t>("int: none", 7, 8)), (Int{true, 0}));
    EXPECT_EQ((Read<std::int32_t>("float: 2.5", 7, 8)), (Int{true, 2})) << "halves go to the even number";
    EXPECT_EQ((Read<std::int32_t>("float: 3.5", 7, 8)), (Int{true, 4}));
    EXPECT_EQ((Read<std::int32_t>("bool: True", 7, 8)), (Int{true, -1}));
    EXPECT_EQ((Read<std::int32_t>("str: 15", 7, 8)), (Int{true, 15}));
    EXPECT_EQ((Read<std::int32_t>("15", 7, 8)), (Int{true, 7})) << "without a prefix the variable keeps its value";
    EXPECT_EQ((Read<std::int32_t>("", 7, 8)), (Int{true, 7}));
    // What does not fit is a failed read.
    EXPECT_EQ((Read<std::int32_t>("int: 2147483648", 7, 8)), (Int{false, 8}));
    EXPECT_EQ((Read<std::int16_t>("int: 32768", 7, 8)), (Short{false, 8}));
    EXPECT_EQ((Read<std::int16_t>("int: -32768", 7, 8)), (Short{true, -32768}));
    EXPECT_EQ((Read<std::int32_t>("str: fifteen", 7, 8)), (Int{false, 8}));

    EXPECT_EQ((Read<double>("float: 1e999", 7, 8)), (std::pair{false, 8.0}));
    EXPECT_EQ((Read<double>("float: 1e-999", 7, 8)), (std::pair{true, 0.0}));
    EXPECT_EQ((Read<double>("float: 0.00001e400", 7, 8)), (std::pair{false, 8.0}));
    EXPECT_EQ((Read<double>("float: nan", 7, 8)), (std::pair{true, 0.0}));
    EXPECT_EQ((Read<double>("float: -inf", 7, 8)), (std::pair{true, 0.0}));
    EXPECT_EQ((Read<double>("float: +.5x", 7, 8)), (std::pair{true, 0.5}));
    EXPECT_EQ((Read<float>("float: 1e39", 7, 8)), (std::pair{false, 8.0f}));

    EXPECT_EQ((Read<bool>("bool:  tRUE ", false, false)), (std::pair{true, true}));
    EXPECT_EQ((Read<bool>("bool: yes", true, true)), (std::pair{true, false}));
    EXPECT_EQ((Read<bool>("int: -1", false, false)), (std::pair{true, true}));

    std::string text = "before";
    EXPECT_TRUE(UTIL_XMLRead::Plain("<v>int: 042</v>").ReadElement("v", text, "")) << text;
    EXPECT_EQ(text, "42");
    EXPECT_FALSE(UTIL_XMLRead::Plain("<w>str: x</w>").ReadElement("v", text, "default"));
    EXPECT_EQ(text, "default");
}

TEST(UTIL_XMLRead, ReversesEscapesInTheirOrder)
{
    std::string text;
    UTIL_XMLRead::Plain("<v>str: &amp;&lt;&gt;&apos;&quot;&unknown;&amp;amp;</v>").ReadElement("v", text, "");
    EXPECT_EQ(text, "&<>'\"&unknown;&amp;");
    UTIL_XMLRead::Plain("<v>str: &amp;lt; &amp;quot; &lt;amp;</v>").ReadElement("v", text, "");
    EXPECT_EQ(text, "< \" <amp;") << "an entity that comes out of &amp; is one for those that follow";

    UTIL_XMLRead untyped = UTIL_XMLRead::Plain("<v>str: &amp;</v>");
    untyped.TypedValues = false;
    EXPECT_TRUE(untyped.ReadElement("v", text, ""));
    EXPECT_EQ(text, "str: &amp;");
}

TEST(UTIL_XMLRead, FindsElementsAsASearchFromTheStartWould)
{
    UTIL_XMLRead reader =
        UTIL_XMLRead::Plain("<EventData  item=\"0\">zero</EventData><EventData item=\"1\">one</EventData>"
                            "<A><A>x</A></A><Twice>1</Twice><Twice>2</Twice><Text>str: </Text>"
                            "<Open><Inner>in</Inner><Raw><b/></Raw><Late>late</Late>");
    EXPECT_EQ(reader.ReadRaw("  EVENTDATA   item=\"1\" "), "one");
    EXPECT_EQ(reader.ReadRaw("eventdata"), std::nullopt);
    EXPECT_EQ(reader.ReadRaw("A"), "<A>x</A>");
    EXPECT_EQ(reader.ReadRaw("Twice"), "1");
    std::string text = "before";
    EXPECT_TRUE(reader.ReadElement("Text", text, "default"));
    EXPECT_EQ(text, "");
    EXPECT_EQ(reader.ReadRaw("Open"), std::nullopt) << "never closed";
    EXPECT_EQ(reader.ReadRaw("Inner"), "in");
    EXPECT_EQ(reader.ReadRaw("Raw"), std::nullopt) << "a self-closed tag ends the search";
    EXPECT_EQ(reader.ReadRaw("Late"), std::nullopt);
}

TEST(UTIL_XMLRead, TakesOffHeaderLineEndsAndMasterTag)
{
    UTIL_XMLRead reader =
        UTIL_XMLRead::WithMasterTag("\r\n<?xml version=\"1.0\"?>\r\n< Config  a=\"b\" >\r\n<v>str: two\r\nlines\r"
                                    "</v>\n</Config>\r\n<v>str: behind</v>");
    EXPECT_EQ(reader.MasterTag(), "Config  a=\"b\"");
    EXPECT_TRUE(reader.MasterTagIs("config  a=\"b\""));
    std::string text;
    EXPECT_TRUE(reader.ReadElement("v", text, ""));
    EXPECT_EQ(text, "twolines");

    for (const char* broken : {"", "no tag", "<Config", "Config>", "<Config>"}) {
        UTIL_XMLRead other = UTIL_XMLRead::WithMasterTag(broken);
        EXPECT_FALSE(other.ReadElement("Config", text, "")) << broken;
        EXPECT_EQ(other.MasterTag(), std::string_view(broken) == "<Config>" ? "Config" : "") << broken;
    }
}

TEST(UTIL_XMLRead, ReportsBreachesOfTheCallingOrder)
{
    FaultLog faults;
    UTIL_XMLRead reader;
    EXPECT_EQ(reader.MasterTag(), "");
    std::int32_t value = 0;
    EXPECT_FALSE(reader.ReadElement("v", value, 4));
    reader.SetHasMasterTag(true);
    reader.SetXMLString("<m><v>int: 5</v></m>");
    reader.SetXMLString("<m><v>int: 6</v></m>");
    EXPECT_TRUE(reader.ReadElement("v", value, 4));
    EXPECT_EQ(value, 5);
    reader.SetHasMasterTag(false);
    EXPECT_TRUE(reader.HasMasterTag());
    EXPECT_THAT(faults.texts,
                ElementsAre("Set XML string first\nUTIL_XMLRead::MasterTag",
                            "Xml string already set\nUTIL_XMLRead::SetXMLString (Property)",
                            "Can't set property after master tag was removed\nUTIL_XMLRead::HasMasterTag (Property)"));
}

TEST(UTIL_XMLRead, KeepsATextThatIsMovedIn)
{
    std::string nested;
    {
        std::string text = "<Data><v>str: a text that is too long for the string's own buffer</v></Data>";
        UTIL_XMLRead first = UTIL_XMLRead::Plain(std::move(text));
        UTIL_XMLRead second = std::move(first);
        const auto raw = second.ReadRaw("Data");
        ASSERT_TRUE(raw);
        UTIL_XMLRead::Plain(*raw).ReadElement("v", nested, "");
    }
    EXPECT_EQ(nested, "a text that is too long for the string's own buffer");
}

} // namespace
} // namespace velmora::persistence
