#include "audio/MasterVolume_Class.h"
#include "core/MsgIds.h"
#include "effects/FX_ChainContainer_Class.h"
#include "effects/FX_Module.h"
#include "engine/audioplayer.h"
#include "engine/internal/Engine.h"
#include "soundlayer/soundlayer.h"
#include "tests/audio/SoundFixture.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <random>

namespace velmora::audio {
namespace {

constexpr std::int32_t kRate = 44100;
constexpr std::int32_t kClipMS = 2500;
/// As an export does before its first frame.
constexpr std::size_t kSettleFrames = 882;

using Samples = std::vector<std::int16_t>;

void CopyBlock(HDSP, std::uint32_t, void* buffer, std::uint32_t length, SOUND_USER user)
{
    const auto* samples = static_cast<const std::int16_t*>(buffer);
    auto& copy = *std::bit_cast<Samples*>(user);
    copy.insert(copy.end(), samples, samples + length / 2);
}

/// Three channels with all eight effects, mixed by hand as playback does, or exported.
class EffectsMix : public ExportTest {
protected:
    EffectsMix()
    {
        std::mt19937 random(5);
        WavSound sound{kRate, 2, Samples(static_cast<std::size_t>(6 * kRate))};
        for (std::size_t i = 0; i < sound.samples.size(); ++i) {
            const double tone = 6000 * std::sin(0.03 * static_cast<double>(i / 2)) * (i / 30000 % 2 == 0 ? 1 : 0.1);
            sound.samples[i] = static_cast<std::int16_t>(tone + static_cast<double>(random() % 2001) - 1000);
        }
        WriteWav(m_environment.Path("sounds\\sound.wav"), sound);
        m_channels = {m_channel, &AddChannel(70), &AddChannel(40)};
        const std::vector<std::vector<std::int32_t>> chains = {{5, 1, 7}, {0, 3, 6}, {2, 4}};
        for (std::size_t i = 0; i < chains.size(); ++i) {
            AddClip(*m_channels[i], m_environment.Path("sounds\\sound.wav"), 20 * static_cast<double>(i), 300,
                    300 + kClipMS);
            for (const std::int32_t effect : chains[i]) {
                AddEffect(*m_channels[i], effect);
            }
        }
        Send(core::Msg_Refresh, 0, 0);
    }

    /// With parameters that are heard.
    static std::string Parameters(std::int32_t effect)
    {
        switch (effect) {
        case 0:
        case 4:
            return "<fFrecuency>float: 3</fFrecuency><fDelay>float: 3</fDelay>";
        case 3:
            return "<fFeedback>float: 60</fFeedback><fLeftDelay>float: 130</fLeftDelay>";
        case 5:
            return "<freq1>float: -9</freq1><freq3>float: 4</freq3><freq6>float: 6</freq6>";
        case 1:
            return "<fThreshold>float: -25</fThreshold><fGain>float: 4</fGain>";
        default:
            return "";
        }
    }

    core::MsgParametersClass Named(const project::Channel_Class& channel, std::size_t item = 0)
    {
        core::MsgParametersClass params;
        const auto chain = channel.FX->Get_FXChainObj_by_Index(1);
        params.ChannelID = channel.ClassID();
        params.FXChannelID = chain->ClassID();
        if (const auto* found = chain->GetFxClass_by_Index(static_cast<std::int32_t>(item))) {
            params.FXID = found->FxID;
        }
        return params;
    }

    void SendFX(std::int32_t msgID, core::MsgParametersClass params)
    {
        m_project->MsgSender->SendMsg(-1, msgID, params);
    }

    void AddEffect(const project::Channel_Class& channel, std::int32_t effect)
    {
        core::MsgParametersClass params = Named(channel);
        params.FXEnabled = true;
        params.FXPriority = 10 * (channel.FX->Get_FXChainObj_by_Index(1)->FX_TotalN() + 2);
        params.FXDataOBJ = std::make_shared<effects::FX_Data_Class>(m_environment.ports.messages);
        params.FXDataOBJ->LoadXMLData("<Fx_Data_Class><FxType>str: " + std::string(effects::FX_GetName(effect)) +
                                      "</FxType>" + Parameters(effect) + "</Fx_Data_Class>");
        SendFX(core::Msg_FX_Add, params);
    }

    void Forget(HSTREAM master)
    {
        for (const bool bypassed : {true, false}) {
            for (const project::Channel_Class* channel : m_channels) {
                channel->FX->Bypass(bypassed);
            }
            Samples block(2 * kSettleFrames);
            BASS_ChannelGetData(master, block.data(), kSettleFrames * 4);
        }
    }

    /// What playback from 0 sounds like, in blocks of at most `blockFrames`; `edit` is told each time before some 100
    /// ms.
    Samples Play(
        std::uint32_t blockFrames, const std::function<void(int)>& edit = [](int) {})
    {
        engine::Engine& engine = engine::Engine::Get();
        const HSTREAM master = m_project->MasterVolume->BassMixStreamHandle();
        Sound_SetHeartbeat(nullptr, 0);
        BASS_Mixer_ChannelRemove(master);
        Forget(master);
        player_SetTimePos(0);
        player_Play();
        Samples mix;
        const std::size_t frames = static_cast<std::size_t>(kClipMS + 40) * kRate / 1000;
        for (int step = 0; mix.size() < 2 * frames; ++step) {
            edit(step);
            engine.planner.Settle();
            for (std::uint32_t left = 4410; left > 0 && mix.size() < 2 * frames;) {
                const auto rest = static_cast<std::uint32_t>(frames - mix.size() / 2);
                const std::uint32_t now = engine.mixSide.BeforeBlock(std::min({blockFrames, left, rest}));
                mix.resize(mix.size() + 2 * now);
                BASS_ChannelGetData(master, &mix[mix.size() - 2 * now], now * 4);
                left -= now;
            }
        }
        player_Pause();
        engine.mixSide.BeforeBlock(1);
        BASS_Mixer_StreamAddChannel(m_project->MasterVolume->RealMixHandle(), master, 0);
        initdata();
        EXPECT_EQ(player_GetDebugCounter(), 0);
        return mix;
    }

    std::vector<project::Channel_Class*> m_channels;
};

std::size_t FirstDifference(const Samples& a, const Samples& b)
{
    return static_cast<std::size_t>(std::ranges::mismatch(a, b).in1 - a.begin());
}

TEST_F(EffectsMix, LiveIsTheExportWhateverTheBlocks)
{
    ASSERT_EQ(Export(), AudioExport::Outcome::Done);
    const Samples exported = Mix().samples;
    for (const std::uint32_t blockFrames : {4096U, 441U, 64U}) {
        const Samples live = Play(blockFrames);
        ASSERT_EQ(live.size(), exported.size());
        EXPECT_EQ(FirstDifference(live, exported), exported.size()) << blockFrames;
    }
    // No tail of what sounded before is in it.
    ASSERT_EQ(Export(), AudioExport::Outcome::Done);
    EXPECT_EQ(FirstDifference(Mix().samples, exported), exported.size());
}

TEST_F(EffectsMix, EditsOfAChainAreNotHeardInOtherChannels)
{
    // One for each channel: they may be pulled side by side.
    std::array<Samples, 2> others;
    const auto& edited = *m_channels[0];
    const auto play = [&](const std::function<void(int)>& edit) {
        std::array<HDSP, 2> taps{};
        for (std::size_t i = 0; i < taps.size(); ++i) {
            taps[i] = BASS_ChannelSetDSP(m_channels[1 + i]->BassOutMix_Handle, CopyBlock,
                                         std::bit_cast<SOUND_USER>(&others[i]), -2000);
        }
        const Samples mix = Play(441, [&](int step) {
            if (step == 0) {
                others = {};
            }
            edit(step);
        });
        for (std::size_t i = 0; i < taps.size(); ++i) {
            BASS_ChannelRemoveDSP(m_channels[1 + i]->BassOutMix_Handle, taps[i]);
        }
        return std::pair(others, mix);
    };
    const auto [calm, calmMix] = play([](int) {});

    const std::string before = edited.FX->GetXMLData();
    const auto [heard, editedMix] = play([&](int step) {
        core::MsgParametersClass params = Named(edited, static_cast<std::size_t>(step) % 3);
        switch (step % 6) {
        case 1:
            params.FXPriority = 35;
            SendFX(core::Msg_FX_ChangePriority, params);
            break;
        case 2:
            params.FXEnabled = false;
            SendFX(core::Msg_FX_SetEnabled, params);
            break;
        case 3:
            params.FXEnabled = true;
            SendFX(core::Msg_FX_SetEnabled, params);
            AddEffect(edited, step % 8);
            break;
        case 4:
            // As an undo does, which would stop playback first.
            edited.FX->LoadXMLData(before, false);
            break;
        case 5:
            params.FXParamsXML = "<Fx_Data_Class><FxType>str: Reverb</FxType></Fx_Data_Class>";
            SendFX(core::Msg_FX_SetParams, params);
            break;
        default:
            break;
        }
    });
    EXPECT_NE(editedMix, calmMix) << "the edits are heard";
    for (std::size_t i = 0; i < others.size(); ++i) {
        EXPECT_EQ(heard[i].size(), calm[i].size());
        EXPECT_EQ(FirstDifference(heard[i], calm[i]), calm[i].size());
    }
}

} // namespace
} // namespace velmora::audio
