#include "core/TextUtilities.h"

#include "core/ClassIds.h"
#include "core/Units.h"
#include "tests/support/ScriptedPorts.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace velmora::core {
namespace {

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

TEST(Times, AreFormatted)
{
    EXPECT_EQ(FormatTimePos(0, false), "00:00.00");
    EXPECT_EQ(FormatTimePos(59999, false), "00:59.99") << "cut";
    EXPECT_EQ(FormatTimeRounded(59999), "00:60.00") << "rounded, without carry";
    EXPECT_EQ(FormatTimePos(83450, false), "01:23.45");
    EXPECT_EQ(FormatTimePos(83456, true), "01:23.456");
    EXPECT_EQ(FormatTimePos(83450, true), "01:23.45");
    EXPECT_EQ(FormatTimePos(83400, true), "01:23.40");
    EXPECT_EQ(FormatTimePos(100 * 60000 + 7, true), "100:00.007");
    EXPECT_EQ(FormatTimeRounded(60125), "01:00.13");
    EXPECT_EQ(FormatTimePos(-83450, false), "-01:23.45");
    EXPECT_EQ(FormatTimePos(kMin, true), "-35791:23.648");
}

TEST(Times, AreParsed)
{
    const auto parse = [](std::string_view text, bool allowNegative = false) {
        bool ok = false;
        const std::int32_t time = ParseTimePos(text, ok, allowNegative);
        return ok ? std::optional(time) : std::nullopt;
    };
    EXPECT_EQ(parse("1:30"), 90000);
    EXPECT_EQ(parse("90"), 90000);
    EXPECT_EQ(parse(" 1: 30.5 "), 90500);
    EXPECT_EQ(parse("1.5:0"), 120000) << "minutes are whole, halves to the even number";
    EXPECT_EQ(parse("2.5:0"), 120000);
    EXPECT_EQ(parse("0.0125"), 12);
    EXPECT_EQ(parse("abc"), 0);
    EXPECT_EQ(parse(""), 0);
    EXPECT_EQ(parse("1:2:3"), 62000);
    EXPECT_EQ(parse("-1"), std::nullopt);
    EXPECT_EQ(parse("- 1:30", true), -90000);
    EXPECT_EQ(parse("2147483.647"), kMax);
    EXPECT_EQ(parse("2147483.648"), std::nullopt);
    EXPECT_EQ(parse("99999999999:0"), std::nullopt);
    EXPECT_EQ(parse("1e999"), std::nullopt);

    for (std::int32_t ms = 0; ms < 4'000'000; ms += 977) {
        ASSERT_EQ(parse(FormatTimePos(ms, true)), ms);
    }
}

TEST(Levels, ConvertByPowersOfTwo)
{
    EXPECT_DOUBLE_EQ(DBToGain(6), 2);
    EXPECT_EQ(GainToDB(1), 0);
    EXPECT_EQ(GainToDB(0.5), -6);
    EXPECT_EQ(GainToDB(0), std::nullopt);
    EXPECT_EQ(GainToDB(std::nan("")), std::nullopt);
    EXPECT_EQ(PeakPairToDB(0, 0), -100.0);
    EXPECT_EQ(PeakPairToDB(1, 0), -100.0) << "a mean of one half goes to the even number";
    EXPECT_EQ(PeakPairToDB(32768, 32768), 0);
    EXPECT_NEAR(PeakPairToDB(kMax, kMax), 96.33, 0.01);
}

TEST(Units, RoundAndPlaceFrames)
{
    EXPECT_EQ(RoundToInt(0.5), 0);
    EXPECT_EQ(RoundToInt(1.5), 2);
    EXPECT_EQ(RoundToInt(-2.5), -2);
    EXPECT_EQ(RoundToInt(1e300), kMax);
    EXPECT_EQ(RoundToInt(-1e300), kMin);
    EXPECT_EQ(RoundToInt(std::nan("")), 0);

    EXPECT_EQ(FrameOfMS(1, 44100), 44);
    EXPECT_EQ(FrameOfMS(-1, 44100), -45);
    EXPECT_EQ(FrameOfMS(std::int64_t{kMax}, 192000), 412316860224);
    // A clip that is split at any millisecond plays the same file frames from both halves.
    for (const std::int32_t rate : {11025, 44100, 48000}) {
        for (std::int32_t cut = 1; cut < 3000; ++cut) {
            const std::int64_t frame = FrameOfMS(1000 + cut, rate);
            ASSERT_EQ(FileFrameAt(frame, 1000, 123, rate), FileFrameAt(frame, 1000 + cut, 123 + cut, rate));
            ASSERT_GE(FileFrameAt(FrameOfMS(cut, rate), cut, 0, rate), 0) << "no frame before the file's first";
        }
    }
}

TEST(ClassIds, RiseAboveWhatIsLoaded)
{
    ClassIdCounter ids;
    EXPECT_EQ(ids.Draw(), 0);
    EXPECT_EQ(ids.Draw(), 1);
    ids.RiseAbove(40);
    ids.RiseAbove(7);
    EXPECT_EQ(ids.Draw(), 41);
    for (const double bad : {std::nan(""), HUGE_VAL, -3.0, 1e300, 41.5, 2e9}) {
        EXPECT_FALSE(CanAdoptID(bad));
        ids.RiseAbove(bad);
    }
    EXPECT_EQ(ids.Draw(), 42);
    ids.Reset();
    EXPECT_EQ(ids.Draw(), 0);
}

TEST(Steps, AreFloored)
{
    EXPECT_EQ(FloorToStep(17, 5), 15);
    EXPECT_EQ(FloorToStep(15, 5), 15);
    EXPECT_EQ(FractionOfStep(17.5, 5), 0.5);
    EXPECT_EQ(FloorToStep(3, 0), 3);
    EXPECT_EQ(ClampValue(5, 1, 3), 3);
    EXPECT_EQ(ClampValue(-5, 1, 3), 1);
}

TEST(Colours, SplitAndBlend)
{
    std::int32_t r = 0, g = 0, b = 0;
    SplitRGB(0x00112233, r, g, b);
    EXPECT_EQ((std::array{r, g, b}), (std::array{0x33, 0x22, 0x11}));
    EXPECT_EQ(BlendColors(0x00112233, 0x00FFEEDD, 0), 0x00112233);
    EXPECT_EQ(BlendColors(0x00112233, 0x00FFEEDD, 7), 0x00FFEEDD);
    EXPECT_EQ(BlendColors(0x00FFFFFF, 0x00FFFFFF, 0.5f), 0x00FFFFFF) << "two terms of 128 do not spill over";
    EXPECT_EQ(BlendColors(0, 0x00020406, 0.5f), 0x00010203);
}

TEST(PathTexts, AreTakenApart)
{
    EXPECT_EQ(FolderOfPath("Z:\\a\\b.wav"), "Z:\\a");
    EXPECT_EQ(FileNameOfPath("Z:\\a\\b.wav"), "b.wav");
    EXPECT_EQ(FolderOfPath("b.wav"), "b.wav");
    EXPECT_EQ(FileNameOfPath("b.wav"), "b.wav");
    EXPECT_EQ(FileNameOfPath("Z:\\a\\"), "");
    EXPECT_EQ(FileExtensionCut("song.final.wav"), "song.final");
    EXPECT_EQ(FileExtensionCut("song"), "song");
    EXPECT_EQ(CollapseBlanks("  a   b c  "), "a b c");
    EXPECT_EQ(MakeValidFileName("  a/b\\c:d*e?f<g>h|i\"j\x7f\tk "), "a b c d e f g h i j  k");
    EXPECT_EQ(MakeValidFileName("caf\xC3\xA9 \xF0\x9F\x8E\xB5!"), "caf   !") << "one blank for each character";

    std::string text = "x<?xml version=\"1.0\"?>y<?xml?>";
    StripXMLHeader(text);
    EXPECT_EQ(text, "x                     y<?xml?>");
    text = "<?xml without an end";
    StripXMLHeader(text);
    EXPECT_EQ(text, "<?xml without an end");

    testing::ScriptedMessageBoxes messages;
    AssertEventTypeCount(messages, "Here", 1);
    AssertEventTypeCount(messages, "There", 2);
    EXPECT_EQ(messages.Texts(), std::vector<std::string>{"Not all events type supported\nThere"});
}

} // namespace
} // namespace velmora::core
