#pragma once

#include "engine/ClipFades.h"
#include "engine/internal/EngineTables.h"

#include <atomic>
#include <cstdint>
#include <limits>

namespace velmora::engine {

/// A clip's sound from one frame of the timeline on: its stream waits in the channel's mixer, held, decoded ahead and
/// positioned so that it is right when the clock comes to `FirstFrame`.
///
/// Threads: made and destroyed off the mixing thread, which alone starts, fades and ends it. A voice that the clock
/// passes before it was started is missed and never sounds.
class Voice {
public:
    static constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

    /// Opens the clip's file and decodes its beginning; this may take long. A file that cannot be read gives a silent
    /// voice. `firstFrame` is not before the clip's start.
    Voice(ClipToPlay clip, std::int64_t firstFrame, std::int32_t rate);
    ~Voice();
    Voice(const Voice&) = delete;
    Voice& operator=(const Voice&) = delete;

    const ClipToPlay& Clip() const { return m_clip; }
    std::int64_t FirstFrame() const { return m_firstFrame; }
    bool Started() const { return m_started.load(std::memory_order_acquire); }
    bool Missed() const { return m_missed.load(std::memory_order_acquire); }
    /// Ends the voice at `frame` at the latest.
    void CutAt(std::int64_t frame) { m_cutFrame.store(frame, std::memory_order_release); }
    std::int64_t CutFrame() const { return m_cutFrame.load(std::memory_order_acquire); }
    bool OverAt(std::int64_t frame) const { return frame >= EndFrame(); }

    /// Starts, fades or ends what is due at `frame`, the present position. False when the voice was missed just now.
    /// [RT]
    bool Advance(std::int64_t frame);
    /// The next frame after `frame` at which something is due. [RT]
    std::int64_t NextChange(std::int64_t frame) const;
    /// The clock was held or goes on. [RT]
    void Hold();
    void Resume();
    /// Silent for good. [RT]
    void End();
    /// Silent, because it is not where the clock is; a new one is made in its place. [RT]
    void Miss();

    /// The plan that last held it; of the mixing thread.
    std::uint64_t plan = 0;

private:
    std::int64_t EndFrame() const;
    /// Fades count in whole ms: the last one that has begun at `frame`.
    std::int64_t TimeOf(std::int64_t frame) const { return ((frame + 1) * 1000 - 1) / m_rate; }
    void ApplyVolume(std::int64_t frame);

    const ClipToPlay m_clip;
    const ClipFades m_fades;
    const std::int32_t m_rate;
    const std::int64_t m_firstFrame;
    const std::int64_t m_endFrame;
    std::uint32_t m_stream = 0;
    std::atomic<std::int64_t> m_cutFrame{kNever};
    std::atomic<bool> m_started{false};
    std::atomic<bool> m_missed{false};
    bool m_ended = false;
    float m_volume = 1.0F;
};

} // namespace velmora::engine
