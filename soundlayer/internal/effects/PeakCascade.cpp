#include "soundlayer/internal/effects/PeakCascade.h"

#include "soundlayer/internal/effects/GrainEffect.h"
#include "soundlayer/internal/effects/Wide.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace velmora::soundlayer {

namespace {

/// How many frames a section is behind the one before it. At 1, what goes into a vector would have to wait for what has
/// just come out of it; so the wait is spread over two steps.
constexpr std::int32_t kLag = 2;

/// How the states and u of a frame follow from those of the frame before, each by no more than three operations in a
/// row: with v = in - s2, u = a s1 + b v, s1 <- (a - 1) s1 + b v, s2 <- s2 + ga s1 + gb v.
template <typename Vector>
struct Solution {
    Vector a{};
    Vector b{};
    Vector ga{};
    Vector gb{};
};

template <typename Vector>
[[gnu::always_inline]] inline void Solve(const Vector& g, const Vector& k, Solution<Vector>& solved)
{
    solved.a = 2.0F / (1.0F + g * (g + k));
    solved.b = solved.a * g;
    solved.ga = g * solved.a;
    solved.gb = g * solved.b;
}

/// Half as many sections as lanes: section 0 left, right, section 1 left, right ...
template <unsigned Width>
struct Lanes {
    using Vector = typename VectorOf<Width>::Floats;

    Vector g{};
    Vector k{};
    Vector m{};
    Vector stepG{};
    Vector stepK{};
    Vector stepM{};
    /// What follows from g and k, where these rest.
    Solution<Vector> solved;
    Vector s1{};
    Vector s2{};
    /// What came out in the last steps, the latest last.
    Vector out[kLag] = {};
    /// How many frames the section is behind, and the grain's frame (from 1) that it works on in step 0.
    typename VectorOf<Width>::Integers behind{};
    Vector frame{};
};

template <unsigned Width>
[[gnu::always_inline]] inline void Load(Lanes<Width>& lanes, std::span<PeakSection* const> sections, std::size_t first,
                                        std::size_t at)
{
    for (std::size_t lane = 0; lane < Width; ++lane) {
        const std::size_t number = first + lane / 2;
        lanes.behind[lane] = kLag * static_cast<std::int32_t>(number);
        lanes.frame[lane] = static_cast<float>(at + 1) - static_cast<float>(lanes.behind[lane]);
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
    Solve(lanes.g, lanes.k, lanes.solved);
}

template <unsigned Width>
[[gnu::always_inline]] inline void Store(const Lanes<Width>& lanes, std::span<PeakSection* const> sections,
                                         std::size_t first)
{
    for (std::size_t lane = 0; lane < Width && first + lane / 2 < sections.size(); ++lane) {
        PeakSection& section = *sections[first + lane / 2];
        section.s1[lane % 2] = lanes.s1[lane];
        section.s2[lane % 2] = lanes.s2[lane];
    }
}

/// The last section of `before`, then all but the last of `after`.
[[gnu::always_inline]] inline void Shift(VectorOf<4>::Floats& to, const VectorOf<4>::Floats& before,
                                         const VectorOf<4>::Floats& after)
{
    to = __builtin_shufflevector(before, after, 2, 3, 4, 5);
}

[[gnu::always_inline]] inline void Shift(VectorOf<8>::Floats& to, const VectorOf<8>::Floats& before,
                                         const VectorOf<8>::Floats& after)
{
    to = __builtin_shufflevector(before, after, 6, 7, 8, 9, 10, 11, 12, 13);
}

/// One step: each section on the frame after its last one. `partly`: only sections whose frame is one of `frames`
/// change their state.
template <bool Gliding, unsigned Width, typename Vector>
[[gnu::always_inline]] inline void Step(Lanes<Width>& lanes, const Vector& in, std::int32_t step, std::int32_t frames,
                                        bool partly)
{
    Solution<Vector> solved = lanes.solved;
    Vector m = lanes.m;
    if constexpr (Gliding) {
        const Vector frame = lanes.frame + static_cast<float>(step);
        const Vector k = lanes.k + frame * lanes.stepK;
        const Vector g = lanes.g + frame * lanes.stepG;
        m += frame * lanes.stepM;
        Solve(g, k, solved);
    }
    const Vector v = in - lanes.s2;
    const Vector bv = solved.b * v;
    const Vector u = solved.a * lanes.s1 + bv;
    const Vector s1 = (solved.a - 1.0F) * lanes.s1 + bv;
    const Vector s2 = (lanes.s2 + solved.ga * lanes.s1) + solved.gb * v;
    lanes.out[0] = lanes.out[1];
    lanes.out[1] = in + m * u;
    if (partly) {
        const auto due = (lanes.behind <= step) & (step - lanes.behind < frames);
        lanes.s1 = due ? s1 : lanes.s1;
        lanes.s2 = due ? s2 : lanes.s2;
    } else {
        lanes.s1 = s1;
        lanes.s2 = s2;
    }
}

template <unsigned Width, std::size_t Vectors, bool Gliding>
[[gnu::always_inline]] inline void Cascade(std::span<PeakSection* const> sections, float* left, float* right,
                                           std::size_t frames, std::size_t at)
{
    using Vector = typename VectorOf<Width>::Floats;
    constexpr std::int32_t kBehind = kLag * (static_cast<std::int32_t>(Vectors * Width / 2) - 1);
    const auto count = static_cast<std::int32_t>(frames);
    Lanes<Width> lanes[Vectors];
    for (std::size_t v = 0; v < Vectors; ++v) {
        Load(lanes[v], sections, v * Width / 2, at);
    }
    const auto step = [&](std::int32_t n, bool partly) __attribute__((always_inline))
    {
        // What a section gave kLag steps ago goes into the one behind it.
        Vector in;
        for (std::size_t v = Vectors; v-- > 1;) {
            Shift(in, lanes[v - 1].out[0], lanes[v].out[0]);
            Step<Gliding>(lanes[v], in, n, count, partly);
        }
        Vector sample{};
        if (n < count) {
            sample[Width - 2] = left[n];
            sample[Width - 1] = right[n];
        }
        Shift(in, sample, lanes[0].out[0]);
        Step<Gliding>(lanes[0], in, n, count, partly);
        if (n >= kBehind) {
            left[n - kBehind] = lanes[Vectors - 1].out[kLag - 1][Width - 2];
            right[n - kBehind] = lanes[Vectors - 1].out[kLag - 1][Width - 1];
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
        Store(lanes[v], sections, v * Width / 2);
    }
}

template <unsigned Width, std::size_t Vectors>
[[gnu::always_inline]] inline void RunVectors(std::span<PeakSection* const> sections, float* left, float* right,
                                              std::size_t frames, std::size_t at)
{
    if (std::ranges::any_of(sections, &PeakSection::gliding)) {
        Cascade<Width, Vectors, true>(sections, left, right, frames, at);
    } else {
        Cascade<Width, Vectors, false>(sections, left, right, frames, at);
    }
}

[[gnu::target("avx2")]] void RunWide(std::span<PeakSection* const> sections, float* left, float* right,
                                     std::size_t frames, std::size_t at)
{
    if (sections.size() <= 4) {
        RunVectors<8, 1>(sections, left, right, frames, at);
    } else {
        RunVectors<8, 2>(sections, left, right, frames, at);
    }
}

void RunNarrow(std::span<PeakSection* const> sections, float* left, float* right, std::size_t frames, std::size_t at)
{
    if (sections.size() <= 2) {
        RunVectors<4, 1>(sections, left, right, frames, at);
    } else if (sections.size() <= 4) {
        RunVectors<4, 2>(sections, left, right, frames, at);
    } else {
        RunVectors<4, 4>(sections, left, right, frames, at);
    }
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
    (IsWide() ? RunWide : RunNarrow)(sections, left, right, frames, at);
}

} // namespace velmora::soundlayer
