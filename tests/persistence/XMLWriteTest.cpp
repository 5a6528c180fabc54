#include "persistence/Faults.h"
#include "persistence/Numbers.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::persistence {
namespace {

TEST(UTIL_XMLWrite, WritesObjectsToTheByte)
{
    UTIL_XMLWrite inner;
    inner.SetMasterTag("Inner");
    inner.Add_Element(" Text ", "<a & 'b' \"c\">");
    inner.Add_Element("Empty", "");

    UTIL_XMLWrite writer;
    writer.SetMasterTag("Outer");
    writer.SetAttributes("version=\"1\" ");
    writer.Add_Element("Short", std::int16_t{-5});
    writer.Add_Element("Long", 2147483647);
    writer.Add_Element("Double", 0.1);
    writer.Add_Element("Float", 0.1f);
    writer.Add_Element("Flag", true);
    writer.Add_Element("Flag item=\"1\"", false);
    writer.Add_EmptyElement("Nothing here");
    writer.Add_RawElement("Raw item=\"0\"", inner.GetXMLString());
    EXPECT_EQ(writer.GetXMLString(), "<Outer version=\"1\">\r\n"
                                     "  <Short>int: -5</Short>\r\n"
                                     "  <Long>int: 2147483647</Long>\r\n"
                                     "  <Double>float: 0.1</Double>\r\n"
                                     "  <Float>float: 0.1</Float>\r\n"
                                     "  <Flag>bool: True</Flag>\r\n"
                                     "  <Flag item=\"1\">bool: False</Flag>\r\n"
                                     "  <Nothing here></Nothing>\r\n"
                                     "  <Raw item=\"0\"><Inner>\r\n"
                                     "      <Text>str: &lt;a &amp; &apos;b&apos; &quot;c&quot;&gt;</Text>\r\n"
                                     "      <Empty>str: </Empty>\r\n"
                                     "    </Inner>\r\n"
                                     "    \r\n"
                                     "    </Raw>\r\n"
                                     "</Outer>\r\n");

    UTIL_XMLWrite plain;
    plain.TypedValues = false;
    plain.Add_Element("a", 1);
    plain.Add_Element("b", "x&y");
    EXPECT_EQ(plain.GetXMLString(), "<a>1</a>\r\n<b>x&amp;y</b>\r\n");
}

TEST(UTIL_XMLWrite, RefusesAMasterTagAfterAnElement)
{
    std::vector<std::string> faults;
    const FaultHandler earlier = SetFaultHandler([&faults](std::string_view text) { faults.emplace_back(text); });
    UTIL_XMLWrite writer;
    writer.SetMasterTag("");
    EXPECT_EQ(writer.Indent, 0);
    writer.Add_Element("a", 1);
    writer.SetMasterTag("Late");
    writer.SetAttributes("late");
    SetFaultHandler(earlier);
    EXPECT_EQ(faults, (std::vector<std::string>{
                          "Can't set Master tag after an element was added\nUTIL_XMLWrite::MasterTag (Property)",
                          "Can't set Attributes after an element was added\nUTIL_XMLWrite::Attributes (Property)"}));
    EXPECT_EQ(writer.GetXMLString(), "<a>int: 1</a>\r\n");
}

TEST(Numbers, AreWrittenPlainlyWhereThatIsShort)
{
    EXPECT_EQ(NumberText(100000.0), "100000");
    EXPECT_EQ(NumberText(-2147483648.0), "-2147483648");
    EXPECT_EQ(NumberText(0.0001), "0.0001");
    EXPECT_EQ(NumberText(1e15), "1e+15");
    EXPECT_EQ(NumberText(0.3f), "0.3");
    EXPECT_EQ(NumberText(std::numeric_limits<double>::quiet_NaN()), "0");
}

/// Under a locale that writes a decimal comma, if the machine has one.
TEST(Numbers, ComeBackAsTheyWent)
{
    const std::string earlier = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    std::mt19937_64 random(11);
    const auto expectBack = [](double number, float shortNumber) {
        UTIL_XMLWrite writer;
        writer.Add_Element("d", number);
        writer.Add_Element("f", shortNumber);
        UTIL_XMLRead reader = UTIL_XMLRead::Plain(writer.GetXMLString());
        double d = 7;
        float f = 7;
        EXPECT_TRUE(reader.ReadElement("d", d, 0.0) && reader.ReadElement("f", f, 0.0f));
        EXPECT_EQ(std::bit_cast<std::uint64_t>(d), std::bit_cast<std::uint64_t>(number)) << writer.GetXMLString();
        EXPECT_EQ(std::bit_cast<std::uint32_t>(f), std::bit_cast<std::uint32_t>(shortNumber)) << writer.GetXMLString();
    };
    for (int i = 0; i < 20'000; ++i) {
        const double number = std::bit_cast<double>(random());
        const float shortNumber = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (std::isfinite(number) && std::isfinite(shortNumber)) {
            expectBack(number, shortNumber);
        }
    }
    expectBack(-0.0, -0.0f);
    expectBack(std::numeric_limits<double>::denorm_min(), std::numeric_limits<float>::denorm_min());
    expectBack(std::numeric_limits<double>::max(), std::numeric_limits<float>::lowest());
    std::setlocale(LC_ALL, earlier.c_str());
}

} // namespace
} // namespace velmora::persistence
