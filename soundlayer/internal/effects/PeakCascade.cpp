#include "soundlayer/internal/effects/PeakCascade.h"

#include "soundlayer/internal/effects/GrainEffect.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace velmora::soundlayer {

namespace {

/// Four sections of both sides: section 0 left, right, section 1 left, right ...
constexpr std::size_t kLanes = 8;
constexpr std::size_t kSectionsPerVector = kLanes / 2;
using Vector = float __attribute__((vector_size(kLanes * sizeof(float))));
using Mask = std::int32_t __attribute__((vector_size(kLanes * sizeof(float))));

/// The sections of one vector, lane by lane.
struct Lanes {
    Vector g{};
    Vector k{};
    Vector m{};
    Vector stepG{};
    Vector stepK{};
    Vector stepM{};
    /// What follows from g and k, where these rest.
    Vector a{};
    Vector b{};
    Vector s1{};
    Vector s2{};
    Vector out{};
    /// The section's number, and the grain's frame (from 1) that it works on in step 0.
    Mask number{};
    Vector frame{};
};

[[gnu::always_inline]] inline void Solve(const Vector& g, const Vector& k, Vector& a, Vector& b)
{
    a = 2.0F / (1.0F + g * (g + k));
    b = a * g;
}

[[gnu::always_inline]] inline void Load(Lanes& lanes, std::span<PeakSection* const> sections, std::size_t first,
                                        std::size_t at)
{
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        const std::size_t number = first + lane / 2;
        lanes.number[lane] = static_cast<std::int32_t>(number);
        lanes.frame[lane] = static_cast<float>(at + 1) - static_cast<float>(number);
        if (number < sections.size()) {
            const PeakSection& section = *sections[number];
            lanes.g[lane] = section.start.g;
            lanes.k[lane] = section.start.k;
            lanes.m[lane] = section.start.m;
            lanes.stepG[lane] = section.step.g;
            lanes.stepK[lane] = section.step.k;
            lanes.stepM[lane] = section.step.m;
            lanes.s1[lane] = section.s1[lane % 2];
            lanes.s2[lane] = section.s2[lane % 2];
        }
    }
    Solve(lanes.g, lanes.k, lanes.a, lanes.b);
}

[[gnu::always_inline]] inline void Store(const Lanes& lanes, std::span<PeakSection* const> sections, std::size_t first)
{
    for (std::size_t lane = 0; lane < kLanes && first + lane / 2 < sections.size(); ++lane) {
        PeakSection& section = *sections[first + lane / 2];
        section.s1[lane % 2] = lanes.s1[lane];
        section.s2[lane % 2] = lanes.s2[lane];
    }
}

/// One step of four sections: each on the frame after its last one. `partly`: only sections whose frame is one of
/// `frames` change their state.
template <bool Gliding>
[[gnu::always_inline]] inline void Step(Lanes& lanes, const Vector& in, std::int32_t step, std::int32_t frames,
                                        bool partly)
{
    Vector a = lanes.a;
    Vector b = lanes.b;
    Vector g = lanes.g;
    Vector m = lanes.m;
    if constexpr (Gliding) {
        const Vector frame = lanes.frame + static_cast<float>(step);
        const Vector k = lanes.k + frame * lanes.stepK;
        g += frame * lanes.stepG;
        m += frame * lanes.stepM;
        Solve(g, k, a, b);
    }
    const Vector u = a * lanes.s1 + b * (in - lanes.s2);
    const Vector s1 = u - lanes.s1;
    const Vector s2 = lanes.s2 + g * u;
    lanes.out = in + m * u;
    if (partly) {
        const Mask due = (lanes.number <= step) & (step - lanes.number < frames);
        lanes.s1 = due ? s1 : lanes.s1;
        lanes.s2 = due ? s2 : lanes.s2;
    } else {
        lanes.s1 = s1;
        lanes.s2 = s2;
    }
}

template <std::size_t Vectors, bool Gliding>
[[gnu::always_inline]] inline void Cascade(std::span<PeakSection* const> sections, float* left, float* right,
                                           std::size_t frames, std::size_t at)
{
    constexpr auto kBehind = static_cast<std::int32_t>(Vectors * kSectionsPerVector) - 1;
    const auto count = static_cast<std::int32_t>(frames);
    Lanes lanes[Vectors];
    for (std::size_t v = 0; v < Vectors; ++v) {
        Load(lanes[v], sections, v * kSectionsPerVector, at);
    }
    const auto step = [&](std::int32_t n, bool partly) __attribute__((always_inline))
    {
        Vector in{};
        if (n < count) {
            in[0] = left[n];
            in[1] = right[n];
        }
        // What a section gave in the last step goes into the one behind it.
        for (std::size_t v = Vectors; v-- > 1;) {
            const Vector from = __builtin_shufflevector(lanes[v - 1].out, lanes[v].out, 6, 7, 8, 9, 10, 11, 12, 13);
            Step<Gliding>(lanes[v], from, n, count, partly);
        }
        in = __builtin_shufflevector(in, lanes[0].out, 0, 1, 8, 9, 10, 11, 12, 13);
        Step<Gliding>(lanes[0], in, n, count, partly);
        if (n >= kBehind) {
            left[n - kBehind] = lanes[Vectors - 1].out[kLanes - 2];
            right[n - kBehind] = lanes[Vectors - 1].out[kLanes - 1];
        }
    };
    std::int32_t n = 0;
    for (; n < kBehind; ++n) {
        step(n, true);
    }
    for (; n < count; ++n) {
        step(n, false);
    }
    for (; n < count + kBehind; ++n) {
        step(n, true);
    }
    for (std::size_t v = 0; v < Vectors; ++v) {
        Store(lanes[v], sections, v * kSectionsPerVector);
    }
}

[[gnu::always_inline]] inline void RunAny(std::span<PeakSection* const> sections, float* left, float* right,
                                          std::size_t frames, std::size_t at)
{
    const bool gliding = std::ranges::any_of(sections, &PeakSection::gliding);
    if (sections.size() <= kSectionsPerVector) {
        gliding ? Cascade<1, true>(sections, left, right, frames, at)
                : Cascade<1, false>(sections, left, right, frames, at);
    } else {
        gliding ? Cascade<2, true>(sections, left, right, frames, at)
                : Cascade<2, false>(sections, left, right, frames, at);
    }
}

[[gnu::target("avx2")]] void RunWide(std::span<PeakSection* const> sections, float* left, float* right,
                                     std::size_t frames, std::size_t at)
{
    RunAny(sections, left, right, frames, at);
}

} // namespace

PeakCoefficients PeakCoefficients::Peak(double rate, double centre, double quality, double gainDB)
{
    const double g = std::tan(std::numbers::pi * Centre(rate, centre) / rate);
    const double amplitude = std::pow(10.0, gainDB / 40.0);
    const double k = 1.0 / (quality * amplitude);
    return {static_cast<float>(g), static_cast<float>(k), static_cast<float>(0.5 * k * (amplitude * amplitude - 1.0))};
}

double PeakCoefficients::QualityOfOctaves(double rate, double centre, double octaves)
{
    const double w = 2.0 * std::numbers::pi * Centre(rate, centre) / rate;
    // Near the Nyquist frequency the formula leaves all bounds; a quality of 1/400 is as wide as it gets.
    const double width = std::min(0.5 * std::numbers::ln2 * octaves * w / std::sin(w), std::asinh(200.0));
    return 0.5 / std::sinh(width);
}

double PeakCoefficients::Centre(double rate, double centre)
{
    return std::min(centre, 0.49 * rate);
}

void PeakSection::Aim(const PeakCoefficients& end, bool atOnce)
{
    start = atOnce ? end : m_end;
    m_end = end;
    constexpr auto kFrames = static_cast<float>(GrainEffect::kGrain);
    step = {(end.g - start.g) / kFrames, (end.k - start.k) / kFrames, (end.m - start.m) / kFrames};
    gliding = step.g != 0 || step.k != 0 || step.m != 0;
}

void PeakSection::Settle()
{
    for (std::size_t side = 0; side < 2; ++side) {
        if (ZeroIfQuiet(s1[side]) == 0 && ZeroIfQuiet(s2[side]) == 0) {
            s1[side] = s2[side] = 0;
        }
    }
}

void RunPeaks(std::span<PeakSection* const> sections, float* left, float* right, std::size_t frames, std::size_t at)
{
    static const bool wide = __builtin_cpu_supports("avx2") != 0;
    if (wide) {
        RunWide(sections, left, right, frames, at);
    } else {
        RunAny(sections, left, right, frames, at);
    }
}

} // namespace velmora::soundlayer
