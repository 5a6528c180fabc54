#pragma once

#include <atomic>
#include <cstdint>

namespace velmora::engine {

/// The position of playback, counted in frames of the device. It moves only by the frames that were mixed.
///
/// Threads: the mixing thread advances and sets it, any thread reads it.
class PlaybackClock {
public:
    void Play() { m_playing.store(true, std::memory_order_release); }
    void Pause() { m_playing.store(false, std::memory_order_release); }
    bool Playing() const { return m_playing.load(std::memory_order_acquire); }

    /// Counts frames that were mixed while it ran; a pause in mid-block is one after the block. [RT]
    void Advance(std::uint32_t frames) { m_frames.fetch_add(frames, std::memory_order_acq_rel); }
    std::int64_t Frames() const { return m_frames.load(std::memory_order_acquire); }
    /// [RT]
    void SetFrames(std::int64_t frames) { m_frames.store(frames, std::memory_order_release); }

    /// The last millisecond whose frame is not behind the position, so that a time that was set reads back as it was.
    static std::int32_t TimeOf(std::int64_t frame, std::int32_t rate);

private:
    std::atomic<std::int64_t> m_frames{0};
    std::atomic<bool> m_playing{false};
};

} // namespace velmora::engine
