#include "soundlayer/internal/effects/Oversampler.h"

#include "soundlayer/internal/effects/Wide.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace velmora::soundlayer {

namespace {

/// Taps for one phase of the input: out[i] += sum of taps[d] x in[i + first - d].
struct PhaseFilter {
    std::ptrdiff_t first = 0;
    std::vector<float> taps;
};

/// Taps for each phase of the input.
using Filter = std::vector<PhaseFilter>;

/// Modified Bessel function of the first kind and order 0, by its series.
double Bessel(double x)
{
    double term = 1;
    double sum = 1;
    for (int k = 1; term > 1e-12 * sum; ++k) {
        term *= x * x / (4.0 * k * k);
        sum += term;
    }
    return sum;
}

/// A low-pass of `length` taps whose edge lies at `edge` of its rate; the sum of the taps is `gain`.
std::vector<double> LowPassTaps(std::size_t length, double edge, double gain)
{
    constexpr double kBeta = 0.1102 * (72.0 - 8.7);
    std::vector<double> taps(length);
    double sum = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const double half = 0.5 * static_cast<double>(length - 1);
        const double at = static_cast<double>(i) - half;
        const double window = Bessel(kBeta * std::sqrt(1 - at * at / ((half + 0.5) * (half + 0.5))));
        const double angle = 2 * std::numbers::pi * edge * at;
        taps[i] = window * (at == 0 ? 1.0 : std::sin(angle) / angle);
        sum += taps[i];
    }
    for (double& tap : taps) {
        tap *= gain / sum;
    }
    return taps;
}

/// The filter for sample `ahead` of each frame of an input in `phases`: sum of taps[k] x sample[ahead - k].
Filter Split(const std::vector<double>& taps, std::size_t phases, std::size_t ahead)
{
    Filter filter(phases);
    for (std::size_t phase = 0; phase < phases; ++phase) {
        filter[phase].first = phase <= ahead ? 0 : -1;
        const std::size_t begin = (ahead + phases - phase) % phases;
        for (std::size_t k = begin; k < taps.size(); k += phases) {
            filter[phase].taps.push_back(static_cast<float>(taps[k]));
        }
    }
    return filter;
}

struct Filters {
    Filters()
    {
        const auto up = LowPassTaps(56, 0.125, Oversampler::kFactor);
        for (std::size_t phase = 0; phase < Oversampler::kFactor; ++phase) {
            PhaseFilter filter;
            for (std::size_t k = phase; k < up.size(); k += Oversampler::kFactor) {
                filter.taps.push_back(static_cast<float>(up[k]));
            }
            toQuadruple.push_back({filter});
        }
        const auto half = LowPassTaps(18, 0.25, 1);
        toDouble = {Split(half, 4, 0), Split(half, 4, 2)};
        toSingle = Split(LowPassTaps(128, 0.2325, 1), 2, 0);
    }

    std::vector<Filter> toQuadruple;
    std::vector<Filter> toDouble;
    Filter toSingle;
};

const Filters& AllFilters()
{
    static const Filters filters;
    return filters;
}

/// Sums over all taps of one phase for `Vectors` x `Width` frames.
template <unsigned Width, std::size_t Vectors>
[[gnu::always_inline]] inline void AddTaps(float* out, const float* in, std::span<const float> taps)
{
    using Vector = typename VectorOf<Width>::Floats;
    Vector sum[Vectors];
    for (std::size_t v = 0; v < Vectors; ++v) {
        std::memcpy(&sum[v], out + v * Width, sizeof sum[v]);
    }
    for (std::size_t d = 0; d < taps.size(); ++d) {
        for (std::size_t v = 0; v < Vectors; ++v) {
            Vector frames;
            std::memcpy(&frames, in + v * Width - d, sizeof frames);
            sum[v] += taps[d] * frames;
        }
    }
    for (std::size_t v = 0; v < Vectors; ++v) {
        std::memcpy(out + v * Width, &sum[v], sizeof sum[v]);
    }
}

template <unsigned Width>
[[gnu::always_inline]] inline void Convolve(float* out, const PhaseBuffer& in, const Filter& filter, std::size_t frames)
{
    constexpr std::size_t kAtOnce = 4;
    std::fill_n(out, frames, 0.0F);
    for (std::size_t phase = 0; phase < filter.size(); ++phase) {
        const float* from = in.Phase(phase) + filter[phase].first;
        const std::span<const float> taps = filter[phase].taps;
        std::size_t i = 0;
        for (; i + kAtOnce * Width <= frames; i += kAtOnce * Width) {
            AddTaps<Width, kAtOnce>(out + i, from + i, taps);
        }
        for (; i + Width <= frames; i += Width) {
            AddTaps<Width, 1>(out + i, from + i, taps);
        }
        for (; i < frames; ++i) {
            for (std::size_t d = 0; d < taps.size(); ++d) {
                out[i] += taps[d] * from[static_cast<std::ptrdiff_t>(i) - static_cast<std::ptrdiff_t>(d)];
            }
        }
    }
}

[[gnu::target("avx2")]] void ConvolveWide(float* out, const PhaseBuffer& in, const Filter& filter, std::size_t frames)
{
    Convolve<8>(out, in, filter, frames);
}

void Run(float* out, const PhaseBuffer& in, const Filter& filter, std::size_t frames)
{
    (IsWide() ? ConvolveWide : Convolve<4>)(out, in, filter, frames);
}

} // namespace

PhaseBuffer::PhaseBuffer(std::size_t phases, std::size_t history, std::size_t longest)
    : m_phases(phases)
    , m_history(history)
    , m_stride(history + longest)
    , m_frames(phases * m_stride)
{
}

void PhaseBuffer::Advance(std::size_t frames)
{
    for (std::size_t phase = 0; phase < m_phases; ++phase) {
        float* const begin = m_frames.data() + phase * m_stride;
        std::copy_n(begin + frames, m_history, begin);
    }
}

bool PhaseBuffer::Silent() const
{
    for (std::size_t phase = 0; phase < m_phases; ++phase) {
        const float* const begin = m_frames.data() + phase * m_stride;
        if (std::any_of(begin, begin + m_history, [](float frame) { return frame != 0; })) {
            return false;
        }
    }
    return true;
}

Oversampler::Oversampler(std::size_t longest)
    : m_in(1, 13, longest)
    , m_quadruple(kFactor, 5, longest)
    , m_double(2, 64, longest)
{
    AllFilters();
}

void Oversampler::Up(const float* in, std::size_t frames)
{
    std::copy_n(in, frames, m_in.Phase(0));
    for (std::size_t phase = 0; phase < kFactor; ++phase) {
        Run(m_quadruple.Phase(phase), m_in, AllFilters().toQuadruple[phase], frames);
    }
    m_in.Advance(frames);
}

void Oversampler::Down(float* out, std::size_t frames)
{
    for (std::size_t phase = 0; phase < 2; ++phase) {
        Run(m_double.Phase(phase), m_quadruple, AllFilters().toDouble[phase], frames);
    }
    m_quadruple.Advance(frames);
    Run(out, m_double, AllFilters().toSingle, frames);
    m_double.Advance(frames);
}

} // namespace velmora::soundlayer
