#include "effects/FX_Module.h"

#include "effects/FX_Data_Class.h"
#include "persistence/UTIL_XMLRead.h"
#include "tests/support/ScriptedPorts.h"

#include <bit>

#include <gtest/gtest.h>

namespace velmora::effects {
namespace {

TEST(FX_Module, FindsEffectsByTheNamesOfSavedTexts)
{
    EXPECT_EQ(FX_GetIndexByName("  REVERB "), 7);
    EXPECT_EQ(FX_GetIndexByName("graphic eq"), 5);
    EXPECT_EQ(FX_GetIndexByName("Gargle"), -1);
    EXPECT_EQ(FX_GetIndexByName(" "), 8);
    EXPECT_EQ(FX_GetName(8), "");
}

TEST(FX_Module, DefaultTextIsWrittenToTheByte)
{
    EXPECT_EQ(FX_GetDefaultXML(3), "<Fx_Data_Class>\r\n"
                                   "  <FxType>str: Echo</FxType>\r\n"
                                   "  <fWetDryMix>float: 50</fWetDryMix>\r\n"
                                   "  <fFeedback>float: 0</fFeedback>\r\n"
                                   "  <fLeftDelay>float: 350</fLeftDelay>\r\n"
                                   "  <fRightDelay>float: 350</fRightDelay>\r\n"
                                   "  <lPanDelay>bool: False</lPanDelay>\r\n"
                                   "</Fx_Data_Class>\r\n");
    EXPECT_NE(FX_GetDefaultXML(1).find("<fAttack>float: 0.2</fAttack>"), std::string::npos);
    EXPECT_NE(FX_GetDefaultXML(7).find("<fHighFreqRTRatio>float: 0.001</fHighFreqRTRatio>"), std::string::npos);
}

// A hidden parameter keeps its place in the block, and the texts of old files decide the spelling.
TEST(FX_Module, ParametersStandInTheOrderOfTheirBlocks)
{
    const auto fields = [](std::int32_t index) {
        std::string list;
        for (const FX_Parameter& parameter : FX_ParameterDefinitions(index)) {
            list += std::string(parameter.field) + (parameter.visible ? " " : "(hidden) ");
        }
        return list;
    };
    EXPECT_EQ(fields(0), "fWetDryMix fDepth fFeedback fFrecuency fWaveform fDelay fPhase ");
    EXPECT_EQ(fields(1), "fGain fAttack fRelease fThreshold fRatio fPreDelay(hidden) ");
    EXPECT_EQ(fields(2), "fGain fEdge fPostEQCenterFrecuency fPostEQBandwidth fPreLowpassCutoff ");
    EXPECT_EQ(fields(5), "freq1 freq2 freq3 freq4 freq5 freq6 freq7 freq8(hidden) ");
    EXPECT_EQ(fields(6), "fCenter fBandwidth fGain ");
    EXPECT_EQ(fields(7), "finGain fReverbMix fReverbTime fHighFreqRTRatio ");
}

TEST(FX_Module, BlockTakesWhatTheTextHasAndDefaultsForTheRest)
{
    const auto block = [](std::int32_t index, const std::string& inside) {
        FX_Block slots{};
        slots.fill(0xAAAAAAAA);
        FX_GenerateStruct(slots, index, "<Fx_Data_Class>" + inside + "</Fx_Data_Class>");
        return slots;
    };
    const auto real = [](std::uint32_t slot) { return std::bit_cast<float>(slot); };

    const FX_Block echo = block(3, "<lPanDelay>bool: True</lPanDelay><Other>float: 7</Other>"
                                   "<fFeedback>float: nan</fFeedback><fRightDelay>float: 1e30</fRightDelay>");
    EXPECT_EQ(real(echo[0]), 50);
    EXPECT_FALSE(real(echo[1]) > 0) << "no number, or the default";
    EXPECT_EQ(real(echo[2]), 350);
    EXPECT_EQ(real(echo[3]), 1e30F) << "limits are the sound layer's";
    EXPECT_NE(echo[4], 0u);
    EXPECT_EQ(echo[5], 0xAAAAAAAA);
    EXPECT_EQ(block(3, "<lPanDelay>bool: False</lPanDelay>")[4], 0u);

    const FX_Block chorus = block(0, "<fWaveform>int: 1</fWaveform><fPhase>str: many</fPhase>");
    EXPECT_EQ(chorus[4], 1u);
    EXPECT_EQ(chorus[6], 3u);

    FX_Block untouched{};
    FX_GenerateStruct(untouched, 8, "<Fx_Data_Class></Fx_Data_Class>");
    FX_GenerateStruct(untouched, -1, "");
    EXPECT_EQ(untouched, FX_Block{});
    EXPECT_EQ(real(block(7, "")[3]), 0.001F);
}

class FX_Data : public ::testing::Test {
protected:
    std::string Loaded(std::string_view text) { return m_data.LoadXMLData(text) ? m_data.GetXMLData() : "refused"; }

    testing::ScriptedMessageBoxes m_messages;
    FX_Data_Class m_data{m_messages};
};

TEST_F(FX_Data, TextHasOneFormHoweverItWasLaidOut)
{
    const std::string form =
        "<Fx_Data_Class><FxType>str: Parametric EQ</FxType><fGain>float: 3</fGain></Fx_Data_Class>";
    EXPECT_EQ(Loaded("<?xml version=\"1.0\"?>\r\n<Fx_Data_Class>\r\n    <FxType>str: Parametric EQ</FxType>\r\n"
                     "    <fGain>float: 3</fGain>   </Fx_Data_Class>\r\n  "),
              form);
    EXPECT_EQ(m_data.FxType(), 6);
    EXPECT_EQ(Loaded(form), form);
    // Blanks of a value are no layout.
    EXPECT_EQ(Loaded("<Fx_Data_Class><FxType>str:   reverb </FxType></Fx_Data_Class>"),
              "<Fx_Data_Class><FxType>str:   reverb </FxType></Fx_Data_Class>");
    EXPECT_EQ(m_data.FxType(), 7);
}

// The text will stand inside a channel's, which finds its clips by searching for <Events>.
TEST_F(FX_Data, TextThatWouldAnswerForOthersIsWrittenAnew)
{
    const auto wrapped = [](const std::string& inside) { return "<Fx_Data_Class>" + inside + "</Fx_Data_Class>"; };
    const std::string wanted = "<FxType>str: Reverb</FxType><finGain>float: -6</finGain>";
    for (const char* foreign : {"<Events>str: none</Events>", "<Fx item=\"1\"></Fx>", "</MusicChannel>", "<Data>",
                                "<fReverbMix/>", "loose text"}) {
        EXPECT_EQ(Loaded(wrapped(wanted + foreign)), wrapped(wanted)) << foreign;
    }
    EXPECT_EQ(Loaded(wrapped(wanted + "<fReverbMix><Events>x</Events></fReverbMix>")),
              wrapped(wanted + "<fReverbMix>float: -10</fReverbMix>"));
}

TEST_F(FX_Data, TextOfAnotherKindIsReportedAndChangesNothing)
{
    ASSERT_TRUE(m_data.LoadXMLData(FX_GetDefaultXML(2)));
    const std::string before = m_data.GetXMLData();
    EXPECT_FALSE(m_data.LoadXMLData("<FX_ChainList></FX_ChainList>"));
    EXPECT_FALSE(m_data.LoadXMLData(""));
    EXPECT_EQ(m_messages.Texts(), (std::vector<std::string>(2, "FX_Data_Class::LoadXMLData\nInvalid data")));
    EXPECT_EQ(m_data.FxType(), 2);
    EXPECT_EQ(m_data.GetXMLData(), before);
}

} // namespace
} // namespace velmora::effects
