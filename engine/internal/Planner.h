#pragma once

#include "engine/internal/EngineTables.h"
#include "engine/internal/MixSide.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace velmora::engine {

/// The device's rate in Hz; 44100 while there is none.
std::int32_t DeviceRate();

/// The planning half of playback: a thread of its own opens clips ahead of the clock and publishes plans.
///
/// Clips that come within 10 s are opened, 256 at most. An edit replaces the voice of its clip a moment ahead of the
/// clock, and the old one sounds until then. A seek prepares its voices first and takes effect with all of them, after
/// 250 ms at the latest; what was not ready joins later. Calls come from the interface thread and wait for no file.
class Planner {
public:
    explicit Planner(MixSide& mixSide);
    ~Planner();

    void Start();
    /// Ends the thread and forgets all voices; the mixing thread must have stopped calling.
    void Stop();

    /// Changes the tables through `change`, a function of `EngineTables&`.
    template <typename Change>
    void Edit(Change&& change)
    {
        const std::lock_guard lock(m_mutex);
        change(m_tables);
        m_edited = true;
        m_lastEdit = Clock::now();
        m_wake.notify_all();
    }
    /// A copy of the clips.
    std::vector<std::pair<EventKey, EventRow>> Events() const;

    /// Asks for the clock to stand at `frame`; the number of this seek.
    std::uint64_t Seek(std::int64_t frame);
    /// The position asked for last, or that of the clock once it is there.
    std::int64_t Frames() const;

    /// Waits until every edit and seek so far is published and the voices due within `aheadMS` are ready. For tests
    /// that drive the mix themselves.
    void Settle();

private:
    using Clock = std::chrono::steady_clock;
    using Voices = std::vector<std::shared_ptr<Voice>>;

    struct SeekRequest {
        std::int64_t frame = 0;
        std::uint64_t number = 0;
        Clock::time_point deadline;
    };
    /// What the thread works on, taken under the lock.
    struct Task {
        std::vector<ClipToPlay> clips;
        std::optional<SeekRequest> seek;
        std::int32_t rate = 44100;
    };

    void Run();
    bool Wait(std::unique_lock<std::mutex>& lock);
    /// Where the clock stands, or will stand once the plan with the last jump is taken.
    std::int64_t Position() const;
    Task TakeTask();
    void Work(Task task);
    bool StillRight(const Voice& voice, const ClipToPlay& clip, const Task& task) const;
    std::int64_t FirstFrame(const ClipToPlay& clip, const Task& task, bool jumpIsDue, std::int32_t attempt) const;
    void Publish(Task& task, bool& jumpIsDue);

    MixSide& m_mixSide;
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_settled;
    EngineTables m_tables;
    bool m_edited = false;
    bool m_working = false;
    bool m_ending = false;
    Clock::time_point m_lastEdit;
    std::optional<SeekRequest> m_seek;
    std::int64_t m_seekFrame = 0;
    std::uint64_t m_seeks = 0;
    std::thread m_thread;
    // Of the thread.
    Voices m_voices;
    std::optional<SeekRequest> m_published;
};

} // namespace velmora::engine
