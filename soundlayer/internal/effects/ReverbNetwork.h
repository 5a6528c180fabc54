#pragma once

#include "soundlayer/internal/effects/BlockLine.h"
#include "soundlayer/internal/effects/Diffuser.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace velmora::soundlayer {

/// The sound of a room without the way straight to the ear: a feedback delay network.
///
/// Sixteen delay lines of lengths without a common divisor feed each other through a Hadamard matrix, which keeps all
/// power (J. Stautner, M. Puckette, "Designing Multi-Channel Reverberators", 1982). Behind each line a filter takes
/// what its length of time costs, at low and at high frequencies (J.-M. Jot, A. Chaigne, "Digital Delay Networks for
/// Designing Artificial Reverberators", 1991); between them it passes as a Butterworth shelf of second order around
/// 5 kHz, so that what lies well below that keeps its time. Smaller rooms have shorter lines and are as dense.
/// Diffusers stand in front. Each side feeds one half of the lines and hears all of them, with signs that have nothing
/// in common with those of the other.
///
/// The room's power does not depend on its time: steady noise on both sides gives noise of about the same level, less
/// what the high frequencies lose. Only below some 60 ms it falls, since hardly anything is left when the first echo
/// comes.
///
/// All but the making is [RT].
class ReverbNetwork {
public:
    static constexpr std::size_t kBlock = BlockLine::kBlock;

    /// How long sound takes to fall by 60 dB, and the share of that time at high frequencies, up to 1.
    struct Room {
        double seconds = 1.0;
        double highShare = 1.0;
        bool operator==(const Room&) const = default;
    };

    explicit ReverbNetwork(std::uint32_t rate);

    /// The room to glide to within some 50 ms; one that is under way is reached first.
    void SetRoom(const Room& room, bool atOnce);
    /// A block of `kBlock` frames of both sides in place: what came in becomes what the room makes of all so far.
    void Process(float* left, float* right);
    /// Forgets all sound.
    void Clear();
    /// When that many frames of silence have come in and nothing but silence out, nothing more will come.
    std::size_t LongestFrames() const { return m_longest; }

private:
    static constexpr std::size_t kLines = 16;

    /// A value of each line.
    using PerLine = std::array<float, kLines>;
    /// What a room makes of the lines.
    struct Shape {
        std::array<std::size_t, kLines> delays{};
        /// The forward coefficients of the filters; those backward are the same for all lines and rooms.
        std::array<PerLine, 3> forward{};
        float inputGain = 0.0F;
    };
    using Block = std::array<float, kBlock>;
    using Rows = std::array<const float*, kLines>;
    using Blocks = std::array<Block, kLines>;

    Shape ShapeOf(const Room& room) const;
    void BeginGlide();
    void Feed(float* left, float* right);
    Rows ReadLines(Blocks& scratch) const;
    template <bool Gliding>
    void Filter(const Rows& rows, Blocks& filtered);
    void MixLines(Blocks& rows, float* left, float* right);
    bool Gliding() const { return m_glided < m_glideBlocks; }
    /// How far the glide is after so many blocks, 0..1, and how much further with each frame of this block.
    float Glided(std::size_t blocks) const;
    float GlideStep() const { return (Glided(m_glided + 1) - Glided(m_glided)) / kBlock; }

    const double m_rate;
    const std::size_t m_glideBlocks;
    /// The filters' corner, as a share of the rate on the bilinear transform's scale.
    const double m_corner;
    const std::array<float, 2> m_back;
    Room m_wanted;
    Room m_room;
    Shape m_from;
    Shape m_to;
    std::size_t m_glided;
    std::size_t m_longest = 0;
    std::array<PerLine, 2> m_states{};
    std::vector<BlockLine> m_lines;
    Diffuser m_diffuseLeft;
    Diffuser m_diffuseRight;
};

} // namespace velmora::soundlayer
