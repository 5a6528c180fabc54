#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace velmora::soundlayer {

/// A filter without memory but of its last inputs, whose input stands in phases: sample p + n x phases is frame n of
/// phase p. So a rate is raised or lowered without ever interleaving samples. All but the making is [RT].
class PhaseBuffer {
public:
    /// Keeps `history` frames before those that are worked on.
    PhaseBuffer(std::size_t phases, std::size_t history, std::size_t longest);

    /// Where frame 0 of a phase stands; up to `history` frames before it may be read.
    float* Phase(std::size_t phase) { return m_frames.data() + phase * m_stride + m_history; }
    const float* Phase(std::size_t phase) const { return m_frames.data() + phase * m_stride + m_history; }
    /// `frames` frames have been worked on: the last ones become history.
    void Advance(std::size_t frames);
    bool Silent() const;

private:
    std::size_t m_phases;
    std::size_t m_history;
    std::size_t m_stride;
    std::vector<float> m_frames;
};

/// One side at four times its rate, and back again, so that what bends waves does not fold its overtones back.
///
/// Linear-phase filters: windowed sinc, Kaiser window (A. Oppenheim, R. Schafer, "Discrete-Time Signal Processing",
/// 7.5.3), 72 dB. On the way up, up to 0.34 of the rate passes; on the way down up to 0.43, and from 0.5 on nothing.
class Oversampler {
public:
    static constexpr std::size_t kFactor = 4;

    explicit Oversampler(std::size_t longest);

    /// The side at four times its rate; `Phase(p)` has samples p, p + 4 ... [RT]
    void Up(const float* in, std::size_t frames);
    float* Phase(std::size_t phase) { return m_quadruple.Phase(phase); }
    /// Those samples, as they are now, back at the side's rate. [RT]
    void Down(float* out, std::size_t frames);
    /// Nothing but zeros is kept. [RT]
    bool Silent() const { return m_in.Silent() && m_quadruple.Silent() && m_double.Silent(); }

private:
    PhaseBuffer m_in;
    PhaseBuffer m_quadruple;
    PhaseBuffer m_double;
};

} // namespace velmora::soundlayer
