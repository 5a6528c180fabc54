#pragma once

#include "soundlayer/internal/AudioDevice.h"
#include "soundlayer/internal/MixerStream.h"
#include "soundlayer/internal/ReadingLog.h"
#include "soundlayer/internal/SampleRing.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace velmora::soundlayer {

/// The way to the device: a mixing thread keeps a ring filled, the device's callback empties it.
///
/// What plays is a source of `Root`. The mixing thread runs while there is one; otherwise the ring runs dry and the
/// device gets silence. What the callback finds missing while something plays is counted.
class Output {
public:
    static constexpr std::uint32_t kMaxBufferMS = 5000;

    Output(std::unique_ptr<AudioDevice> device, std::uint32_t rate, GraphEdits& edits);
    ~Output();

    /// False when the device refuses.
    bool Start();
    const AudioDevice& Device() const { return *m_device; }
    std::uint32_t Rate() const { return m_rate; }

    bool Playing(const Stream& stream) const;
    void Play(std::shared_ptr<Stream> stream);
    /// Returns when the mixing thread pulls the stream no more.
    void StopPlaying(Stream& stream);

    /// Fill of the ring and time between two fillings, in ms; at once.
    void SetBuffer(std::uint32_t bufferMS, std::uint32_t periodMS);
    /// The next block is mixed as soon as the ring has room, and not only when the period is over.
    void MixNow();
    /// While somebody is awake, or something was heard in the last seconds, the device does not rest.
    void SetAwake(bool awake);
    /// Called before each block; waits until the former one is called no more.
    void SetHeartbeat(SOUND_HEARTBEATPROC* proc, SOUND_USER user);
    std::uint64_t MissedFrames() const { return m_missed.load(std::memory_order_relaxed); }
    /// Frames that went into the ring since the beginning. [RT]
    std::uint64_t MixedFrames() const { return m_mixed.load(std::memory_order_relaxed); }
    /// When they were heard; of use beyond this object's life.
    const std::shared_ptr<ReadingLog>& HeardLog() const { return m_heard; }

private:
    struct Heartbeat {
        SOUND_HEARTBEATPROC* proc = nullptr;
        SOUND_USER user = 0;
    };

    void OnDevice(std::int16_t* out, std::size_t frames, SoundClock::time_point heard);
    void Mix();
    void FillRing();
    void SetMixing(bool mixing);
    std::size_t FramesOf(std::uint32_t ms) const { return static_cast<std::size_t>(m_rate) * ms / 1000; }

    static constexpr std::size_t kBlockFrames = 512;
    static constexpr std::uint32_t kRestAfterMS = 10'000;

    std::unique_ptr<AudioDevice> m_device;
    const std::uint32_t m_rate;
    GraphEdits& m_edits;
    std::shared_ptr<MixerStream> m_root;
    Published m_heartbeat;
    std::shared_ptr<void> m_alive;
    SampleRing m_ring;
    std::vector<std::int16_t> m_block;
    std::atomic<std::uint32_t> m_bufferMS{100};
    std::atomic<std::uint32_t> m_periodMS{50};
    std::atomic<std::uint64_t> m_missed{0};
    std::atomic<std::uint64_t> m_mixed{0};
    const std::shared_ptr<ReadingLog> m_heard = std::make_shared<ReadingLog>();
    /// Of the device's thread.
    std::uint64_t m_taken = 0;
    std::uint32_t m_breaks = 0;
    std::atomic<bool> m_primed{false};
    std::atomic<bool> m_awake{false};
    /// Of the mixing thread: frames since something was last heard.
    std::size_t m_silent = 0;

    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_mixing = false;
    bool m_blockUnderWay = false;
    bool m_hurry = false;
    bool m_ending = false;
    std::thread m_thread;
};

} // namespace velmora::soundlayer
