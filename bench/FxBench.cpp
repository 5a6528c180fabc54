#include "soundlayer/internal/effects/Effect.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

/// What effects cost. Times are of the CPU; `per_frame` is for both sides.
namespace velmora::soundlayer {
namespace {

constexpr std::uint32_t kRate = 44100;
constexpr std::size_t kBlock = 4096;

std::vector<float> Noise()
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> sample(-0.5F, 0.5F);
    std::vector<float> noise(kBlock);
    std::ranges::generate(noise, [&] { return sample(random); });
    return noise;
}

void CountFrames(benchmark::State& state, std::size_t framesOfIteration)
{
    state.counters["per_frame"] =
        benchmark::Counter(static_cast<double>(framesOfIteration),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

template <typename Block>
std::unique_ptr<Effect> With(std::uint32_t type, const Block& block)
{
    auto effect = MakeEffect(type, kRate);
    effect->SetParameters(&block);
    return effect;
}

using Maker = std::unique_ptr<Effect> (*)();

std::unique_ptr<Effect> Chorus()
{
    return With(BASS_FX_DX8_CHORUS, BASS_DX8_CHORUS{50, 25, 25, 1, 1, 16, 3});
}
std::unique_ptr<Effect> Compressor()
{
    return With(BASS_FX_DX8_COMPRESSOR, BASS_DX8_COMPRESSOR{6, 5, 100, -20, 4, 2});
}
std::unique_ptr<Effect> Distortion()
{
    return With(BASS_FX_DX8_DISTORTION, BASS_DX8_DISTORTION{-12, 30, 2400, 2400, 6000});
}
std::unique_ptr<Effect> Echo()
{
    return With(BASS_FX_DX8_ECHO, BASS_DX8_ECHO{50, 70, 350, 250, 1});
}
std::unique_ptr<Effect> Flanger()
{
    return With(BASS_FX_DX8_FLANGER, BASS_DX8_FLANGER{50, 80, -70, 0.25F, 1, 2, 3});
}
std::unique_ptr<Effect> ParametricEq()
{
    return With(BASS_FX_DX8_PARAMEQ, BASS_DX8_PARAMEQ{1000, 12, 6});
}
std::unique_ptr<Effect> Reverb()
{
    return With(BASS_FX_DX8_REVERB, BASS_DX8_REVERB{0, -10, 1000, 0.5F});
}

void Gain(benchmark::State& state)
{
    std::vector<float> left = Noise();
    std::vector<float> right = left;
    float gain = 0.9F;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(gain);
        for (std::size_t i = 0; i < kBlock; ++i) {
            left[i] *= gain;
            right[i] *= gain;
        }
        benchmark::ClobberMemory();
        gain = 1.0F / gain;
    }
    CountFrames(state, kBlock);
}
BENCHMARK(Gain);

void Signal(benchmark::State& state, Maker make)
{
    const auto effect = make();
    const std::vector<float> noise = Noise();
    std::vector<float> left(kBlock);
    std::vector<float> right(kBlock);
    for ([[maybe_unused]] auto _ : state) {
        left = noise;
        right = noise;
        effect->Process(left.data(), right.data(), kBlock);
        benchmark::ClobberMemory();
    }
    CountFrames(state, kBlock);
}

/// Silence comes in, and the effect goes on until it rests; then it is fed anew, off the clock.
void Tail(benchmark::State& state, Maker make)
{
    const auto effect = make();
    std::vector<float> left(kBlock);
    std::vector<float> right(kBlock);
    for ([[maybe_unused]] auto _ : state) {
        if (effect->AtRest()) {
            state.PauseTiming();
            for (int i = 0; i < 10; ++i) {
                left = Noise();
                right = left;
                effect->Process(left.data(), right.data(), kBlock);
            }
            state.ResumeTiming();
        }
        std::ranges::fill(left, 0.0F);
        std::ranges::fill(right, 0.0F);
        effect->Process(left.data(), right.data(), kBlock);
        benchmark::ClobberMemory();
    }
    CountFrames(state, kBlock);
}

BENCHMARK_CAPTURE(Signal, ParametricEq, ParametricEq);
BENCHMARK_CAPTURE(Signal, Compressor, Compressor);
BENCHMARK_CAPTURE(Signal, Echo, Echo);
BENCHMARK_CAPTURE(Signal, Chorus, Chorus);
BENCHMARK_CAPTURE(Signal, Flanger, Flanger);
BENCHMARK_CAPTURE(Signal, Distortion, Distortion);
BENCHMARK_CAPTURE(Signal, Reverb, Reverb);
BENCHMARK_CAPTURE(Tail, Echo, Echo);
BENCHMARK_CAPTURE(Tail, Chorus, Chorus);
BENCHMARK_CAPTURE(Tail, Flanger, Flanger);
BENCHMARK_CAPTURE(Tail, Reverb, Reverb);

/// A channel as it is pulled: a mixer with a source that gives noise, or nothing.
class Channel {
public:
    Channel()
        : m_noise(2 * kBlock)
        , m_mixer(BASS_Mixer_StreamCreate(kRate, 2, BASS_STREAM_DECODE))
        , m_source(BASS_StreamCreate(kRate, 2, BASS_STREAM_DECODE, &Channel::Fill, reinterpret_cast<SOUND_USER>(this)))
    {
        std::mt19937 random(2);
        std::ranges::generate(m_noise, [&] { return static_cast<std::int16_t>(random() % 32768 - 16384); });
        BASS_Mixer_StreamAddChannel(m_mixer, m_source, 0);
    }
    ~Channel()
    {
        BASS_StreamFree(m_mixer);
        BASS_StreamFree(m_source);
    }
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    /// Seven bands, compressor, reverb.
    void AddChain()
    {
        constexpr std::array<float, 7> kCentres{80, 200, 600, 2000, 4600, 8200, 16000};
        for (const float centre : kCentres) {
            Add(BASS_FX_DX8_PARAMEQ, BASS_DX8_PARAMEQ{centre, 12, 4});
        }
        Add(BASS_FX_DX8_COMPRESSOR, BASS_DX8_COMPRESSOR{6, 5, 100, -20, 4, 2});
        Add(BASS_FX_DX8_REVERB, BASS_DX8_REVERB{0, -10, 1000, 0.5F});
    }
    void SetSounding(bool sounding) { Sound_SetRunning(m_source, sounding ? 1 : 0); }
    /// Whether anything was heard.
    bool Pull()
    {
        BASS_ChannelGetData(m_mixer, m_pulled.data(), static_cast<std::uint32_t>(sizeof m_pulled));
        return std::ranges::any_of(m_pulled, [](std::int16_t sample) { return sample != 0; });
    }

private:
    static std::uint32_t Fill(HSTREAM, void* buffer, std::uint32_t length, SOUND_USER user)
    {
        const auto& self = *reinterpret_cast<Channel*>(user);
        std::copy_n(self.m_noise.data(), length / sizeof(std::int16_t), static_cast<std::int16_t*>(buffer));
        return length;
    }
    template <typename Block>
    void Add(std::uint32_t type, const Block& block)
    {
        const HFX effect = BASS_ChannelSetFX(m_mixer, type, m_priority++);
        BASS_FXSetParameters(effect, &block);
    }

    std::vector<std::int16_t> m_noise;
    std::array<std::int16_t, 2 * kBlock> m_pulled{};
    std::int32_t m_priority = 0;
    const HSTREAM m_mixer;
    const HSTREAM m_source;
};

void PullChannel(benchmark::State& state, bool chain, bool sounding)
{
    Channel channel;
    if (chain) {
        channel.AddChain();
    }
    channel.Pull();
    channel.SetSounding(sounding);
    while (!sounding && channel.Pull()) {
    }
    for (int i = 0; i < 20; ++i) {
        channel.Pull();
    }
    for ([[maybe_unused]] auto _ : state) {
        channel.Pull();
    }
    CountFrames(state, kBlock);
    // As many of them take one core for as long as their sound lasts.
    state.counters["channels_at_once"] =
        benchmark::Counter(static_cast<double>(kBlock) / kRate, benchmark::Counter::kIsIterationInvariantRate);
}

/// The chain while nothing but its tail sounds.
void PullTail(benchmark::State& state)
{
    Channel channel;
    channel.AddChain();
    bool sounding = false;
    for ([[maybe_unused]] auto _ : state) {
        if (!sounding) {
            state.PauseTiming();
            channel.SetSounding(true);
            for (int i = 0; i < 10; ++i) {
                channel.Pull();
            }
            channel.SetSounding(false);
            state.ResumeTiming();
        }
        sounding = channel.Pull();
    }
    CountFrames(state, kBlock);
}

BENCHMARK_CAPTURE(PullChannel, plain, false, true);
BENCHMARK_CAPTURE(PullChannel, chain, true, true);
BENCHMARK(PullTail);
BENCHMARK_CAPTURE(PullChannel, plain_at_rest, false, false);
BENCHMARK_CAPTURE(PullChannel, chain_at_rest, true, false);

} // namespace
} // namespace velmora::soundlayer
