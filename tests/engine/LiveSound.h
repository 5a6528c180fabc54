#pragma once

#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"
#include "tests/engine/NoiseFiles.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace velmora::engine {

/// The engine as it lives: three channels that play on the device without ears, with what a user does at random, and
/// an ear on the mix. One at a time.
class LiveSound {
public:
    static constexpr std::int32_t kBufferMS = 100;

    explicit LiveSound(std::uint32_t seed);
    ~LiveSound();
    LiveSound(const LiveSound&) = delete;
    LiveSound& operator=(const LiveSound&) = delete;

    /// One act: a clip comes, goes, moves or changes its sound, a seek, play, pause, the metronome.
    void Act();
    /// Everything plain, playing from a random place, and every edit heard.
    void Settle();

    /// Returns when that many frames more were mixed, whether the clock runs or not.
    void Wait(std::int64_t frames) const;
    std::int64_t MixedFrames() const { return m_mixed.load(std::memory_order_acquire); }

    /// How many of the next `frames` frames of the timeline differ from what the clips sum up to; -1 when the clock
    /// did not run through.
    std::int64_t WrongFrames(std::size_t frames);

    HSTREAM DeviceMixer() const { return m_device; }
    /// A click for the metronome, and a clip of another rate.
    HSTREAM Click() const { return m_click; }

private:
    static DSPPROC Listen;

    EventRow RandomRow();
    void Put(EventKey key, const EventRow& row);

    NoiseFiles m_files;
    std::mt19937 m_random;
    NoiseFiles::Rows m_rows;
    HSTREAM m_device = 0;
    std::array<HSTREAM, 3> m_channels{};
    HSTREAM m_click = 0;
    // Written on the mixing thread while `m_wanted` is above 0.
    std::vector<std::int16_t> m_heard;
    std::atomic<std::size_t> m_wanted{0};
    std::size_t m_filled = 0;
    std::int64_t m_from = -1;
    bool m_broken = false;
    std::atomic<std::int64_t> m_mixed{0};
};

} // namespace velmora::engine
