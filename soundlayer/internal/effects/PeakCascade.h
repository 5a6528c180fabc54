#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace velmora::soundlayer {

/// The coefficients of a second-order filter whose state stays sound while they change.
///
/// The state-variable filter by trapezoidal integration (V. Zavalishin, "The Art of VA Filter Design", ch. 4), solved
/// for u, twice the band-pass: u = a x (s1 + g x (in - s2)) with a = 2 / (1 + g x (g + k)), s1 <- u - s1,
/// s2 <- s2 + g x u, out = in + m x u. Its response is that of the biquad made by the bilinear transform; and since
/// s1^2 + s2^2 grows only by what comes in, whatever g and k > 0 do meanwhile, no change makes it unstable.
struct PeakCoefficients {
    float g = 1.0F;
    float k = 1.0F;
    float m = 0.0F;

    /// A peak of `gainDB` at `centre` Hz, on the circle of `rate` Hz, with the quality of the Audio EQ Cookbook by
    /// R. Bristow-Johnson (peakingEQ).
    static PeakCoefficients Peak(double rate, double centre, double quality, double gainDB);
    /// The cookbook's quality for a bandwidth in octaves between the points of half the gain in dB.
    static double QualityOfOctaves(double rate, double centre, double octaves);
    /// The centre that is used for `centre`: below the Nyquist frequency.
    static double Centre(double rate, double centre);
};

/// One peak filter for both sides: what it is over a grain, and its state.
struct PeakSection {
    /// Frame i of the grain has `start` + (i + 1) x `step`.
    PeakCoefficients start;
    PeakCoefficients step;
    bool gliding = false;
    std::array<float, 2> s1{};
    std::array<float, 2> s2{};

    /// Takes the way from where the last grain ended (or from `end` itself with `atOnce`) to `end`.
    void Aim(const PeakCoefficients& end, bool atOnce);
    /// Sets a state to zero that has become too quiet.
    void Settle();
    bool AtRest() const { return s1[0] == 0 && s1[1] == 0 && s2[0] == 0 && s2[1] == 0; }

private:
    PeakCoefficients m_end;
};

/// How many sections are run at once.
inline constexpr std::size_t kCascadeSections = 8;

/// Runs sections (at most `kCascadeSections`) one behind the other over the grain's frames `at`, `at` + 1 ...
///
/// A recursion waits for itself, frame by frame; so the sections work side by side in the lanes of vectors, each one
/// frame behind the one before it. The result is that of one section after the other, to the bit. [RT]
void RunPeaks(std::span<PeakSection* const> sections, float* left, float* right, std::size_t frames, std::size_t at);

} // namespace velmora::soundlayer
