#pragma once

#include "soundlayer/internal/effects/Glide.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace velmora::soundlayer {

/// The last frames of one side. What is too quiet to be heard is kept as zero, so that what is fed back ends.
/// `Write` and `Read` are [RT].
class DelayLine {
public:
    /// Keeps `longest` frames, and a grain more.
    explicit DelayLine(std::size_t longest);

    /// The next frames; at most a grain.
    void Write(const float* in, std::size_t frames);
    /// The frames that came `delay` frames before those that will be written next; `frames` is at most `delay`.
    void Read(float* out, std::size_t delay, std::size_t frames) const;
    /// Nothing but zeros is kept.
    bool Silent() const { return m_silentFrames >= m_kept.size(); }

private:
    std::vector<float> m_kept;
    std::size_t m_next = 0;
    std::size_t m_silentFrames;
};

/// Where a delay line is read: exact to the frame. A new place fades in over the old one, so that no pitch bends; one
/// that comes meanwhile waits. All is [RT].
class DelayTap {
public:
    explicit DelayTap(std::uint32_t rate);

    /// Where to read from the next free `Move` on, or at once.
    void SetTarget(std::size_t delay, bool atOnce);
    /// Once before each grain.
    void Move();
    /// How many frames may be read before they are written.
    std::size_t Shortest() const;
    /// Frames `at`, `at` + 1 ... of the grain, of which the line has `written` already; of others at most `Shortest`.
    void Read(const DelayLine& line, float* out, std::size_t frames, std::size_t at, std::size_t written = 0) const;

private:
    Glide m_share;
    std::size_t m_target = 0;
    std::size_t m_from = 0;
    std::size_t m_to = 0;
};

} // namespace velmora::soundlayer
