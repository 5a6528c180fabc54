#pragma once

#include "soundlayer/internal/CaptureDevice.h"
#include "soundlayer/internal/CaptureFeed.h"
#include "soundlayer/internal/CaptureGuard.h"
#include "soundlayer/internal/CaptureHistory.h"
#include "soundlayer/internal/CaptureTimes.h"
#include "soundlayer/internal/DriftCompensator.h"
#include "soundlayer/internal/FormatConverter.h"
#include "soundlayer/internal/SampleRing.h"

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

namespace velmora::soundlayer {

/// Numbers are those of `Sound_RecordState`.
enum class CaptureState : std::int32_t { Delivering = 1, Silent = 2, Lost = 3 };

/// A record device at work: brings what it delivers to stereo at the wanted rate, fills what it lost with silence, and
/// keeps the newest for whoever hears it and the last seconds for whoever writes it.
///
/// Frames are counted at the wanted rate from the first on. A gap is what the times of the blocks tell: the earliest of
/// some blocks in a row comes much later than those before let expect. Threads: the device's callback feeds a thread of
/// this object's own; the mixing thread hears; anybody else may ask. Nothing here touches a file.
class Capture {
public:
    struct Times {
        /// Nothing for so long, and silence stands for it.
        std::chrono::milliseconds patience{3000};
        /// A block later than this may stand behind a gap,
        std::chrono::milliseconds late{20};
        /// if all that comes for so long is as late. When it is to be settled, a third will do; when the device goes
        /// or falls silent, anything.
        std::chrono::milliseconds doubt{300};
    };

    /// `heard` may be null: then nothing can be lined up with what is heard.
    Capture(std::unique_ptr<CaptureDevice> device, std::uint32_t rate, std::shared_ptr<const ReadingLog> heard,
            std::uint32_t heardRate, Times times);
    Capture(std::unique_ptr<CaptureDevice> device, std::uint32_t rate, std::shared_ptr<const ReadingLog> heard,
            std::uint32_t heardRate)
        : Capture(std::move(device), rate, std::move(heard), heardRate, Times{})
    {
    }
    ~Capture() { Stop(); }
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    /// False when the device refuses.
    bool Start();
    /// What has arrived until then is kept.
    void Stop();

    CaptureState State() const { return m_state.load(std::memory_order_relaxed); }
    std::uint64_t GapFrames() const { return m_gapFrames.load(std::memory_order_relaxed); }
    bool InputSilent() const;
    bool InputClipped() const;

    /// Frames that can be heard now. [RT]
    std::size_t Ready() const;
    /// The newest frames; what had piled up before them is dropped. [RT]
    std::size_t Hear(std::int16_t* interleaved, std::size_t frames);

    /// The number of the frame that came `back` before the newest, or the oldest that is kept; `Read` begins there.
    std::int64_t FrameBefore(std::chrono::milliseconds back);
    /// Frames from number `from` on that have arrived; from there on they are kept, as long as there is room to wait
    /// for the next call. Those that are kept no more are zeros, and `lost` is set.
    std::size_t Read(std::int64_t from, std::int16_t* interleaved, std::size_t frames, bool& lost);
    /// Decides on what is doubtful, so that all that has arrived can be read.
    void Settle();
    /// How long after frame `frame` sounded, frame `mixed` of the output was heard, going by both and by what came in
    /// the seconds after them; nothing while it is not known.
    std::optional<SoundClock::duration> OffsetOf(std::int64_t frame, std::int64_t mixed);

private:
    struct Block {
        CaptureFeed::Arrival arrival;
        std::vector<std::int16_t> samples;
    };

    void Run();
    bool HasRoom() const;
    void Collect();
    void Arrive(Block block);
    enum class Doubt { Late, Gap };
    /// Takes what is doubtful, behind silence of the gap before it if there is one.
    void SettleDoubt(Doubt is);
    SoundClock::duration DoubtfulTime() const;
    void StandIn();
    void Append(const Block& block);
    void AppendSilence(std::int64_t frames);
    void Store(std::span<const std::int16_t> stereo);
    void Keep(std::span<const std::int16_t> stereo);
    /// Stretches what comes when the device's clock and the output's have run apart in a take.
    void KeepPace();
    SoundClock::duration Lateness(std::int64_t frames, SoundClock::time_point end) const;
    /// At the device's rate.
    std::int64_t FramesIn(SoundClock::duration time) const;

    static constexpr std::uint32_t kHistorySeconds = 16;

    std::shared_ptr<CaptureDevice> m_device;
    const std::uint32_t m_rate;
    const std::uint32_t m_heardRate;
    const std::shared_ptr<const ReadingLog> m_heardLog;
    const Times m_limits;
    AudioFormat m_format;
    std::shared_ptr<CaptureFeed> m_feed;
    SampleRing m_newest;
    // Of who hears.
    bool m_hearing = false;
    std::size_t m_sinceSkip = 0;
    std::size_t m_leastLeft = SIZE_MAX;

    std::atomic<CaptureState> m_state{CaptureState::Delivering};
    std::atomic<std::uint64_t> m_gapFrames{0};
    std::atomic<bool> m_ending{false};

    mutable std::mutex m_mutex;
    CaptureHistory m_history;
    /// The first frame that is to be read yet, if anybody reads.
    std::optional<std::int64_t> m_keepFrom;
    CaptureGuard m_guard;
    std::unique_ptr<FormatConverter> m_converter;
    /// Of the device's own frames, those of silence included.
    std::int64_t m_frames = 0;
    std::optional<CaptureTimes> m_times;
    DriftCompensator m_compensator;
    std::int64_t m_nextPace = 0;
    /// Blocks that may stand behind a gap.
    std::deque<Block> m_doubtful;
    std::int64_t m_doubtfulFrames = 0;
    SoundClock::time_point m_lastArrival;
    SoundClock::time_point m_started;
    bool m_standingIn = false;
    std::thread m_thread;
};

} // namespace velmora::soundlayer
