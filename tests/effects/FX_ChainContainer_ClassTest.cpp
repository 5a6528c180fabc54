#include "effects/FX_ChainContainer_Class.h"

#include "effects/FX_Module.h"
#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"
#include "tests/support/TestEnvironment.h"

#include <array>
#include <cstring>

#include <gtest/gtest.h>

namespace velmora::effects {
namespace {

constexpr std::int16_t kLevel = 1000;

std::uint32_t FillWithLevel(HSTREAM, void* buffer, std::uint32_t length, SOUND_USER)
{
    for (std::uint32_t i = 0; i < length / 2; ++i) {
        std::memcpy(static_cast<char*>(buffer) + 2 * i, &kLevel, 2);
    }
    return length;
}

std::string ChainText(std::int32_t id, std::int32_t pan, std::int32_t volume, const std::string& effect = "")
{
    return "<FX_Chain_Class><ID>float: " + std::to_string(id) + "</ID><Pan>int: " + std::to_string(pan) +
           "</Pan><Volume>int: " + std::to_string(volume) + "</Volume><TotalFx>int: " + (effect.empty() ? "0" : "1") +
           "</TotalFx>" + (effect.empty() ? "" : "<Fx item=\"0\"><ID>float: 77</ID><Data>" + effect + "</Data></Fx>") +
           "</FX_Chain_Class>";
}

std::string ListText(std::int32_t total, const std::vector<std::string>& chains)
{
    std::string text = "<FX_ChainList><TotalN>int: " + std::to_string(total) + "</TotalN><ID>float: 500</ID>";
    for (std::size_t i = 0; i < chains.size(); ++i) {
        text += "<FxChain item=\"" + std::to_string(i + 1) + "\">" + chains[i] + "</FxChain>";
    }
    return text + "</FX_ChainList>";
}

/// A container between an input mixer that sounds at `kLevel` and an output mixer, on the device without ears.
class FX_ChainContainer : public ::testing::Test {
protected:
    void SetUp() override
    {
        initdata();
        ASSERT_TRUE(BASS_Init(0, 44100, 0, nullptr, nullptr));
        constexpr std::uint32_t kMixer = BASS_STREAM_DECODE | BASS_MIXER_NONSTOP;
        m_in = BASS_Mixer_StreamCreate(44100, 2, kMixer);
        m_out = BASS_Mixer_StreamCreate(44100, 2, kMixer);
        const HSTREAM source = BASS_StreamCreate(44100, 2, BASS_STREAM_DECODE, FillWithLevel, 0);
        ASSERT_TRUE(BASS_Mixer_StreamAddChannel(m_in, source, 0));
        m_container = std::make_unique<FX_ChainContainer_Class>(*m_environment);
        m_container->BassInStream_Handle = m_in;
        m_container->BassOutStream_Handle = m_out;
    }

    void TearDown() override
    {
        m_container.reset();
        freedata();
        BASS_Free();
    }

    /// The level of the output once volumes have come to rest.
    std::int16_t Heard()
    {
        std::array<std::int16_t, 2 * 1024> block{};
        EXPECT_EQ(BASS_ChannelGetData(m_out, block.data(), sizeof block), sizeof block);
        return block.back();
    }

    std::vector<std::string> TakeMessages()
    {
        std::vector<std::string> texts = m_environment.ports.messages.Texts();
        m_environment.ports.messages.shown.clear();
        return texts;
    }

    testing::TestEnvironment m_environment;
    HSTREAM m_in = 0;
    HSTREAM m_out = 0;
    std::unique_ptr<FX_ChainContainer_Class> m_container;
};

TEST_F(FX_ChainContainer, OneChainLeadsTheInputThrough)
{
    m_container->FX_Stop();
    m_container->AddChannel();
    EXPECT_EQ(Heard(), 0);
    m_container->FX_Start();
    EXPECT_EQ(Heard(), kLevel);
    EXPECT_EQ(m_container->Get_FXChainObj_by_Index(1)->BassStream_Handle, m_in);
    m_container->FX_Start();
    EXPECT_EQ(Heard(), kLevel);
    m_container->FX_Stop();
    EXPECT_EQ(Heard(), 0);
    EXPECT_EQ(m_container->Get_FXChainObj_by_Index(1)->BassStream_Handle, 0u);
    EXPECT_EQ(m_container->Get_FXChainObj_by_Index(2), nullptr);
    EXPECT_TRUE(TakeMessages().empty());
}

TEST_F(FX_ChainContainer, SingleChainIsNeutralSinceTheChannelHasLevelAndPan)
{
    ASSERT_TRUE(m_container->LoadXMLData(ListText(1, {ChainText(501, 30, 50, FX_GetDefaultXML(3))}), false));
    EXPECT_EQ(Heard(), kLevel);
    EXPECT_EQ(m_container->ClassID(), 500);
    const auto chain = m_container->Get_FXChainObj_by_ID(501);
    ASSERT_NE(chain, nullptr);
    EXPECT_EQ(chain->pan(), 0);
    EXPECT_EQ(chain->volume(), 100);

    const std::string saved = m_container->GetXMLData();
    ASSERT_TRUE(m_container->LoadXMLData(saved, false));
    EXPECT_EQ(m_container->GetXMLData(), saved);
    EXPECT_TRUE(TakeMessages().empty());
}

TEST_F(FX_ChainContainer, SeveralChainsGetCopiesAndSayThatThisIsUnusual)
{
    ASSERT_TRUE(m_container->LoadXMLData(ListText(2, {ChainText(501, 0, 100), ChainText(501, 0, 50)}), false));
    const std::string alarm = "Error in FXChain: Invalid args";
    EXPECT_EQ(TakeMessages(), (std::vector<std::string>{"Invalid FXChain arg", alarm, alarm}));
    const auto first = m_container->Get_FXChainObj_by_Index(1);
    const auto second = m_container->Get_FXChainObj_by_Index(2);
    EXPECT_NE(first->BassStream_Handle, 0u);
    EXPECT_NE(second->BassStream_Handle, 0u);
    EXPECT_NE(first->BassStream_Handle, second->BassStream_Handle);
    EXPECT_NE(first->ClassID(), second->ClassID()) << "an id that stands twice";
    EXPECT_EQ(Heard(), kLevel + kLevel / 2);
    second->volume(0);
    Heard();
    EXPECT_EQ(Heard(), kLevel);

    m_container->FX_Stop();
    EXPECT_EQ(Heard(), 0);
    EXPECT_EQ(TakeMessages(), (std::vector<std::string>(3, "Invalid FX Chain args")));
}

TEST_F(FX_ChainContainer, TextOfAnotherKindLeavesNoChainButAStartedContainer)
{
    m_container->AddChannel();
    EXPECT_FALSE(m_container->LoadXMLData("<Fx_Data_Class></Fx_Data_Class>", false));
    EXPECT_EQ(m_container->TotalChannels(), 0);
    EXPECT_EQ(Heard(), 0);
    EXPECT_TRUE(TakeMessages().empty());
    m_container->FX_Stop();
    EXPECT_EQ(TakeMessages(), (std::vector<std::string>{"Invalid FX Chain args"}));
}

TEST_F(FX_ChainContainer, PackIsTakenOnlyWhenWhole)
{
    const std::string reverb = FX_GetDefaultXML(7);
    ASSERT_TRUE(m_container->LoadXMLData(ListText(1, {ChainText(501, 0, 100, FX_GetDefaultXML(3))}), false));
    const std::string before = m_container->GetXMLData();
    const std::string pack = ListText(1, {ChainText(501, 0, 100, reverb)});
    const std::vector<std::string> damaged = {
        "",
        "no pack",
        pack.substr(0, pack.size() / 2),
        ListText(0, {}),
        ListText(-1, {}),
        ListText(2, {ChainText(501, 0, 100, reverb)}),
        ListText(2'000'000'000, {ChainText(501, 0, 100, reverb)}),
        ListText(2, {ChainText(501, 0, 100, reverb), "<Events></Events>"}),
        ListText(1, {ChainText(501, 0, 100, "<Events></Events>")}),
    };
    for (const std::string& text : damaged) {
        EXPECT_FALSE(m_container->LoadPack(text)) << text;
        EXPECT_EQ(m_container->GetXMLData(), before);
        EXPECT_EQ(Heard(), kLevel);
    }

    ASSERT_TRUE(m_container->LoadPack(pack));
    ASSERT_EQ(m_container->TotalChannels(), 1);
    const auto chain = m_container->Get_FXChainObj_by_Index(1);
    EXPECT_NE(chain->ClassID(), 501);
    ASSERT_NE(chain->GetFxClass_by_Index(0), nullptr);
    EXPECT_EQ(chain->GetFxClass_by_Index(0)->FxDataOBJ->FxType(), 7);
    EXPECT_NE(chain->GetFxClass_by_Index(0)->FxID, 77);
    EXPECT_EQ(Heard(), kLevel);
}

} // namespace
} // namespace velmora::effects
