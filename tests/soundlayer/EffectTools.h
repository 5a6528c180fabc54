#pragma once

#include "soundlayer/internal/effects/Effect.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <functional>
#include <memory>
#include <numbers>
#include <vector>

namespace velmora::soundlayer {

constexpr std::uint32_t kRate = 44100;

/// Both sides of a piece of sound at full scale 1.
struct Sides {
    std::vector<float> left;
    std::vector<float> right;

    Sides() = default;
    explicit Sides(std::size_t frames)
        : left(frames)
        , right(frames)
    {
    }
    std::size_t Frames() const { return left.size(); }
    bool operator==(const Sides&) const = default;
};

inline Sides Sine(double hertz, double amplitude, std::size_t frames)
{
    Sides sound(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        const double phase = 2 * std::numbers::pi * hertz * static_cast<double>(i) / kRate;
        sound.left[i] = sound.right[i] = static_cast<float>(amplitude * std::sin(phase));
    }
    return sound;
}

inline Sides Impulse(std::size_t frames)
{
    Sides sound(frames);
    sound.left[0] = sound.right[0] = 1.0F;
    return sound;
}

/// Runs `effect` over `sound` in pieces of `blockFrames`; `before` is called with the frame at which each begins.
inline void Play(Effect& effect, Sides& sound, std::size_t blockFrames = 4096,
                 const std::function<void(std::size_t)>& before = {})
{
    for (std::size_t done = 0; done < sound.Frames();) {
        if (before) {
            before(done);
        }
        const std::size_t now = std::min(blockFrames, sound.Frames() - done);
        effect.Process(sound.left.data() + done, sound.right.data() + done, now);
        done += now;
    }
}

/// An effect at given parameters; the block's type tells its kind.
template <typename Block>
std::unique_ptr<Effect> EffectWith(std::uint32_t type, const Block& block, std::uint32_t rate = kRate)
{
    auto effect = MakeEffect(type, rate);
    effect->SetParameters(&block);
    return effect;
}

/// The greatest step that a piece of sound could hold: fourth differences hardly know slow waves, and three times a
/// step.
template <typename Sample>
double GreatestStep(const std::vector<Sample>& sound, std::size_t first, std::size_t frames, std::size_t stride = 1)
{
    double greatest = 0;
    for (std::size_t i = first + 4; i < first + frames; ++i) {
        const auto at = [&](std::size_t back) { return static_cast<double>(sound[(i - back) * stride]); };
        greatest = std::max(greatest, std::abs(at(0) - 4 * at(1) + 6 * at(2) - 4 * at(3) + at(4)) / 3);
    }
    return greatest;
}

/// Amplitude of `hertz` in the frames from `first` on, with a Hann window.
inline double AmplitudeAt(const std::vector<float>& sound, double hertz, std::size_t first, std::size_t frames)
{
    std::complex<double> sum = 0;
    for (std::size_t i = 0; i < frames; ++i) {
        const double at = static_cast<double>(i);
        const double window = 1 - std::cos(2 * std::numbers::pi * at / static_cast<double>(frames));
        sum += window * static_cast<double>(sound[first + i]) *
               std::polar(1.0, -2 * std::numbers::pi * hertz * at / kRate);
    }
    return 2 * std::abs(sum) / static_cast<double>(frames);
}

inline double Decibels(double factor)
{
    return 20 * std::log10(factor);
}

} // namespace velmora::soundlayer
