#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace velmora::audio {

/// A record device that a test drives block by block, faster than time or with holes in it; `Number` goes into
/// `InputDevice` or the settings. Its clock stands at the present when it is started and moves by what is delivered.
class ScriptedCapture {
public:
    struct Format {
        /// 0 runs at what is wanted.
        std::uint32_t rate = 0;
        std::uint32_t channels = 2;
    };

    ScriptedCapture()
        : ScriptedCapture(Format{}, false)
    {
    }
    /// One that refuses is listed and cannot be started.
    explicit ScriptedCapture(Format format, bool refuses = false);
    ~ScriptedCapture();
    ScriptedCapture(const ScriptedCapture&) = delete;
    ScriptedCapture& operator=(const ScriptedCapture&) = delete;

    std::int32_t Number() const { return m_number; }
    /// How often it was started.
    int starts = 0;
    /// Frames of silence that it delivers by itself when it is started, so that nobody waits for it.
    std::size_t firstFrames = 441;
    /// How long ago what it delivers sounded.
    std::chrono::milliseconds latency{0};

    /// Delivers interleaved samples in blocks of 10 ms; false when nobody records.
    bool Deliver(std::span<const std::int16_t> interleaved);
    /// `ms` of one sample on all channels.
    bool Deliver(std::int32_t ms, std::int16_t sample);
    /// Time passes without a block.
    void Skip(std::int32_t ms) { m_end += std::chrono::milliseconds(ms); }
    /// Goes away in mid-capture.
    void Lose();
    /// When the frame that is delivered next sounds.
    std::chrono::steady_clock::time_point Now() const { return m_end; }

private:
    void Started();
    std::uint32_t Rate() const;

    const Format m_format;
    std::int32_t m_number = -1;
    std::chrono::steady_clock::time_point m_end;
};

} // namespace velmora::audio
