#include "effects/FX_ChainContainer_Class.h"
#include "effects/FX_Module.h"
#include "effects/FXwrp_GraphicEQ_Class.h"
#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"
#include "tests/support/TestEnvironment.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::effects {
namespace {

constexpr std::uint32_t kMixer = BASS_STREAM_DECODE | BASS_MIXER_NONSTOP;
constexpr std::size_t kBlock = 500;

/// A source of noise: the same for each of its kind, whatever the size of blocks.
struct Noise {
    std::uint32_t state = 1;
    /// Frames until it falls silent.
    std::size_t left = std::numeric_limits<std::size_t>::max();
};

std::uint32_t GiveNoise(HSTREAM, void* buffer, std::uint32_t length, SOUND_USER user)
{
    auto& noise = *std::bit_cast<Noise*>(user);
    auto* samples = static_cast<std::int16_t*>(buffer);
    for (std::uint32_t i = 0; i < length / 4; ++i) {
        const bool sounds = noise.left > 0;
        noise.left -= sounds ? 1 : 0;
        for (int side = 0; side < 2; ++side) {
            noise.state = noise.state * 1664525 + 1013904223;
            *samples++ = static_cast<std::int16_t>(sounds ? static_cast<std::int32_t>(noise.state) >> 20 : 0);
        }
    }
    return length;
}

/// A channel's mixers with noise going in.
class Strip {
public:
    explicit Strip(core::Environment& environment)
        : m_in(BASS_Mixer_StreamCreate(44100, 2, kMixer))
        , m_out(BASS_Mixer_StreamCreate(44100, 2, kMixer))
        , container(environment)
    {
        m_source = BASS_StreamCreate(44100, 2, BASS_STREAM_DECODE, GiveNoise, std::bit_cast<SOUND_USER>(&noise));
        BASS_Mixer_StreamAddChannel(m_in, m_source, 0);
        container.BassInStream_Handle = m_in;
        container.BassOutStream_Handle = m_out;
        container.AddChannel();
        container.FX_Start();
    }

    ~Strip()
    {
        container.FX_Stop();
        for (const HSTREAM stream : {m_out, m_in, m_source}) {
            BASS_StreamFree(stream);
        }
    }
    Strip(const Strip&) = delete;
    Strip& operator=(const Strip&) = delete;

    FX_Chain_Class& Chain() const { return *container.Get_FXChainObj_by_Index(1); }

    /// `blocks` blocks of what is heard.
    std::vector<std::int16_t> Hear(std::size_t blocks = 20) const
    {
        std::vector<std::int16_t> heard(blocks * kBlock * 2);
        for (std::size_t i = 0; i < blocks; ++i) {
            BASS_ChannelGetData(m_out, &heard[i * kBlock * 2], kBlock * 4);
        }
        return heard;
    }

    Noise noise;

private:
    HSTREAM m_in;
    HSTREAM m_out;
    HSTREAM m_source = 0;

public:
    FX_ChainContainer_Class container;
};

class EffectsOnStream : public ::testing::Test {
protected:
    void SetUp() override
    {
        initdata();
        ASSERT_TRUE(BASS_Init(0, 44100, 0, nullptr, nullptr));
    }

    void TearDown() override
    {
        freedata();
        BASS_Free();
    }

    std::shared_ptr<FX_Data_Class> Effect(std::int32_t type, const std::string& parameters)
    {
        auto data = std::make_shared<FX_Data_Class>(m_environment.ports.messages);
        data->LoadXMLData("<Fx_Data_Class><FxType>str: " + std::string(FX_GetName(type)) + "</FxType>" + parameters +
                          "</Fx_Data_Class>");
        return data;
    }

    core::ClassID Add(Strip& strip, std::int32_t priority, std::int32_t type, const std::string& parameters)
    {
        core::ClassID id = 0;
        strip.container.Restart([&] { id = strip.Chain().AddFX(priority, true, Effect(type, parameters)); });
        return id;
    }

    testing::TestEnvironment m_environment;
};

double Power(const std::vector<std::int16_t>& sound)
{
    double sum = 0;
    for (const std::int16_t sample : sound) {
        sum += static_cast<double>(sample) * sample;
    }
    return sum / static_cast<double>(sound.size());
}

FX_Block Gains(std::initializer_list<float> gains)
{
    FX_Block block{};
    std::ranges::transform(gains, block.begin(), [](float gain) { return std::bit_cast<std::uint32_t>(gain); });
    return block;
}

TEST_F(EffectsOnStream, GraphicEQHasOnlyTheBandsThatDoSomething)
{
    const HSTREAM stream = BASS_Mixer_StreamCreate(44100, 2, kMixer);
    FXwrp_GraphicEQ_Class equalizer;
    const auto attached = [&equalizer] {
        std::string bands;
        for (std::size_t band = 0; band < FXwrp_GraphicEQ_Class::BandCount; ++band) {
            bands += equalizer.BandHandle(band) != 0 ? 'x' : '-';
        }
        return bands;
    };
    equalizer.SetFX_Parameters(Gains({1, 1, 1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(attached(), "-------") << "it has no stream";
    equalizer.StartFX(stream, 10);
    equalizer.SetFX_Parameters(Gains({0, 0, 0, 0, 0, 0, 0, 5}));
    EXPECT_EQ(attached(), "-------") << "the eighth acts on nothing";
    equalizer.SetFX_Parameters(Gains({0.01F, -0.01F, -1, 0.02F, std::nanf(""), 0, 15, 0}));
    EXPECT_EQ(attached(), "--xx--x");
    const HFX kept = equalizer.BandHandle(2);
    equalizer.SetFX_Parameters(Gains({0, 0, 2, 0, 0, -3, 0, 0}));
    EXPECT_EQ(attached(), "--x--x-");
    EXPECT_EQ(equalizer.BandHandle(2), kept);
    std::vector<HFX> bands;
    equalizer.SetPriority(30, bands);
    EXPECT_EQ(bands, (std::vector<HFX>{kept, equalizer.BandHandle(5)}));
    equalizer.RemoveFX();
    EXPECT_EQ(attached(), "-------");
    EXPECT_FALSE(BASS_ChannelRemoveFX(stream, kept)) << "it has left the stream";
    BASS_StreamFree(stream);
}

TEST_F(EffectsOnStream, HandlesOfGraphicEQsAreNeverUsedAgain)
{
    const HSTREAM stream = BASS_Mixer_StreamCreate(44100, 2, kMixer);
    const std::uint32_t first = FX_AddToStream(stream, 5, 10);
    FX_RemoveFromStream(stream, first, 5);
    EXPECT_EQ(FX_AddToStream(stream, 5, 10), first + 1);
    // The first is gone, and nobody minds.
    FX_SetParameters(first, 5, Gains({1}));
    FX_SetPriorities(stream, std::vector<FX_Place>{{first, 5, 20}});
    FX_RemoveFromStream(stream, first, 5);
    FX_RemoveFromStream(stream, first + 1, 5);
    EXPECT_EQ(FX_AddToStream(stream, 8, 10), 0u);
    EXPECT_EQ(FX_AddToStream(stream, -1, 10), 0u);
    BASS_StreamFree(stream);
}

TEST_F(EffectsOnStream, OnlyEnabledEffectsAreThereAndEachOnce)
{
    Strip plain(*m_environment);
    Strip strip(*m_environment);
    const std::string louder =
        "<fCenter>float: 1000</fCenter><fBandwidth>float: 36</fBandwidth><fGain>float: 6</fGain>";
    const core::ClassID first = Add(strip, 10, 6, louder);
    const double dry = Power(plain.Hear());
    const double one = Power(strip.Hear());
    EXPECT_GT(one, 1.3 * dry);
    strip.container.FX_Start();
    strip.container.FX_Start();
    EXPECT_NEAR(Power(strip.Hear()) / one, 1, 0.1);

    const core::ClassID second = Add(strip, 20, 6, louder);
    strip.Hear(2);
    EXPECT_GT(Power(strip.Hear()), 1.3 * one);
    for (const core::ClassID id : {first, second}) {
        strip.container.Restart([&] { strip.Chain().SetFX_Status(id, false); });
    }
    EXPECT_EQ(strip.Chain().GetFxClass_by_ID(first)->FxHandle, 0u);
    plain.Hear(62);
    strip.Hear();
    EXPECT_EQ(strip.Hear(), plain.Hear()) << "none is left";
    strip.container.FX_Stop();
    EXPECT_EQ(Power(strip.Hear()), 0);
}

// What an editor does to other effects of the chain, and an undo to all of them, is not heard in those that stay.
TEST_F(EffectsOnStream, EffectsSoundOnWhileTheirChainIsEdited)
{
    const std::string ringing = "<fCenter>float: 90</fCenter><fBandwidth>float: 1</fBandwidth><fGain>float: 15</fGain>";
    const std::string curve = "<freq1>float: 12</freq1><freq4>float: -7</freq4><freq6>float: 3</freq6>";
    Strip calm(*m_environment);
    Strip edited(*m_environment);
    for (Strip* strip : {&calm, &edited}) {
        strip->noise.left = 20 * kBlock;
        Add(*strip, 10, 6, ringing);
        Add(*strip, 20, 5, curve);
    }
    EXPECT_EQ(calm.Hear(), edited.Hear());

    std::vector<std::string> snapshots{edited.container.GetXMLData()};
    core::ClassID other = 0;
    const std::vector<std::function<void()>> edits = {
        [&] { edited.container.FX_Start(); },
        [&] { other = Add(edited, 30, 3, "<fWetDryMix>float: 0</fWetDryMix>"); },
        [&] { edited.container.LoadXMLData(snapshots.front(), false); },
        [&] { edited.Chain().AddFX(15, false, Effect(7, "")); },
        [&] { edited.container.Restart([&] { edited.Chain().ChangeFX_Priority(other, 5); }); },
        [&] { edited.container.LoadXMLData(edited.container.GetXMLData(), false); },
    };
    for (std::size_t i = 0; i < edits.size(); ++i) {
        edits[i]();
        const std::vector<std::int16_t> heard = edited.Hear(1);
        EXPECT_EQ(calm.Hear(1), heard) << "after edit " << i;
        EXPECT_GT(Power(heard), 0) << "the tail still sounds";
    }
}

TEST_F(EffectsOnStream, ParametersReachTheRunningSoundWhateverTheTextHolds)
{
    Strip plain(*m_environment);
    Strip strip(*m_environment);
    const core::ClassID id = Add(strip, 10, 6, "<fGain>float: 0</fGain>");
    const auto set = [&](std::int32_t type, const std::string& parameters) {
        strip.Chain().GetFxClass_by_ID(id)->FxDataOBJ->LoadXMLData(Effect(type, parameters)->GetXMLData());
        strip.Chain().UpdateFX_Pars_onStream(id);
        strip.Hear(10);
        plain.Hear(10);
        return Power(strip.Hear()) / Power(plain.Hear());
    };
    const std::string wide = "<fBandwidth>float: 36</fBandwidth>";
    const double most = set(6, wide + "<fGain>float: 15</fGain>");
    EXPECT_GT(most, 3);
    EXPECT_NEAR(set(6, wide + "<fGain>float: 1e20</fGain><Other>float: 9</Other>"), most, 0.2 * most);
    EXPECT_LT(set(6, wide + "<fGain>float: -99</fGain>"), 0.8);
    EXPECT_NEAR(set(6, wide + "<fGain>float: NaN</fGain>"), 1, 1e-9) << "what is no number is 0";
    // A text of another effect: it changes place with the one that sounded.
    EXPECT_GT(set(5, "<freq3>float: 15</freq3><freq4>float: 15</freq4>"), 2);
    EXPECT_NEAR(set(5, ""), 1, 1e-9);
}

} // namespace
} // namespace velmora::effects
