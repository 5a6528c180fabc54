#pragma once

#include "engine/internal/PlaybackClock.h"
#include "engine/internal/Voice.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <readerwriterqueue/readerwriterqueue.h>

namespace velmora::engine {

/// What is to sound: voices in no particular order, and where the clock goes when they take over.
struct PlaybackPlan {
    std::vector<std::shared_ptr<Voice>> voices;
    /// -1 leaves the clock where it is.
    std::int64_t jumpTo = -1;
    /// With a jump: the number of the seek that it answers, and with it all before.
    std::uint64_t seek = 0;
};

/// The mixing thread's half of playback: moves the clock, and starts, fades and ends voices at their frame.
///
/// A plan takes over between two blocks, whole. Before each block the time to the next change is told, so that changes
/// fall between blocks and the size of blocks is not heard.
class MixSide {
public:
    MixSide();
    ~MixSide();

    PlaybackClock clock;

    /// The clock runs once the plan that answers `seek` is in force.
    void Play(std::uint64_t seek);
    /// Where the clock stood when it ran first after `ArmStamp`, and the number of the frame that was mixed there.
    struct Stamp {
        std::int64_t clockFrame = 0;
        std::uint64_t mixedFrame = 0;
    };
    void ArmStamp() { m_stamping.store(Stamping::Armed, std::memory_order_release); }
    std::optional<Stamp> LastStamp() const;

    /// The last seek that took effect.
    std::uint64_t SeeksDone() const { return m_seeksDone.load(std::memory_order_acquire); }
    /// Voices that were not ready when the clock came to them.
    std::uint64_t MissedVoices() const { return m_missedVoices.load(std::memory_order_relaxed); }

    /// Gives the mixing thread a plan; one that it did not take yet is replaced,
    /// and its jump kept. Planner only.
    void Publish(std::unique_ptr<PlaybackPlan> plan);
    /// Destroys plans that are out of use, and with them voices. Planner only.
    void FreeRetired();
    /// Takes the present plan out of force; the mixing thread must have stopped calling.
    void Clear();

    /// Up to `wanted` frames are about to be mixed: brings the voices to the clock and says how many frames to mix
    /// before the next change. [RT]
    std::uint32_t BeforeBlock(std::uint32_t wanted);
    /// The timeline's frame at which the block under way begins, or -1 while the clock is held. [RT]
    std::int64_t BlockStart() const { return m_blockStart; }

private:
    enum class Stamping { Idle, Armed, Done };

    void TakePlan();
    void TakeStamp(std::int64_t now);

    std::atomic<PlaybackPlan*> m_next{nullptr};
    moodycamel::ReaderWriterQueue<PlaybackPlan*> m_retired;
    std::atomic<std::uint64_t> m_playAfterSeek{0};
    std::atomic<std::uint64_t> m_seeksDone{0};
    std::atomic<std::uint64_t> m_missedVoices{0};
    std::atomic<std::uint64_t> m_retiredCount{0};
    std::uint64_t m_freedCount = 0;
    std::atomic<Stamping> m_stamping{Stamping::Idle};
    std::atomic<std::int64_t> m_stampClock{0};
    std::atomic<std::uint64_t> m_stampMixed{0};
    // Of the mixing thread.
    PlaybackPlan* m_plan = nullptr;
    std::uint64_t m_planNumber = 0;
    std::int64_t m_blockStart = -1;
    bool m_wasPlaying = false;
};

} // namespace velmora::engine
