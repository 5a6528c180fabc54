#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace velmora::soundlayer {

/// Monotonic; what sounds and what is heard is told by it.
using SoundClock = std::chrono::steady_clock;

inline SoundClock::duration TimeOfFrames(std::int64_t frames, std::uint32_t rate)
{
    const std::int64_t hz = rate;
    return std::chrono::seconds(frames / hz) + std::chrono::nanoseconds(frames % hz * 1'000'000'000 / hz);
}

/// Whole frames, those of a part of a frame less.
inline std::int64_t FramesIn(SoundClock::duration time, std::uint32_t rate)
{
    const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(time).count();
    const std::int64_t seconds = ns / 1'000'000'000;
    return seconds * rate + (ns - seconds * 1'000'000'000) * rate / 1'000'000'000;
}

/// Numbers are those of `Sound_DeviceState`.
enum class DeviceState : std::uint8_t { None = 0, Sounding = 1, Lost = 2 };

/// Where the sound goes. Adapters differ, nothing above knows which one it has.
class AudioDevice {
public:
    /// Asks for `frames` stereo frames at `out`, the first of which will be heard at `heard`; called on the device's
    /// own thread. [RT]
    using Callback = std::function<void(std::int16_t* out, std::size_t frames, SoundClock::time_point heard)>;

    virtual ~AudioDevice() = default;
    /// Calls back from now on, at `rate` Hz. False when the device refuses.
    virtual bool Start(std::uint32_t rate, Callback callback) = 0;
    /// No call comes after it has returned.
    virtual void Stop() = 0;
    /// ms from the callback to the ear.
    virtual std::uint32_t LatencyMS() const = 0;
    /// Smallest buffer in ms that the device runs with.
    virtual std::uint32_t MinBufferMS() const = 0;
    /// How much lies ready for the callbacks, in ms; a device may suit its own buffer to it.
    virtual void SetBufferMS(std::uint32_t) {}
    virtual DeviceState State() const { return DeviceState::None; }
    /// A device that is paused calls nobody back.
    virtual void SetPaused(bool) {}
    /// While it may, a device rests: it stops and lets a clock take its place, so that it costs next to nothing. It
    /// begins to, and ends, within some 200 ms. [RT]
    virtual void SetMayRest(bool) {}
    /// Ends a rest at once; what has not been asked for yet waits for the device. Not [RT].
    virtual void Wake() {}
};

/// "No sound": asks for frames by the monotonic clock and drops them. Those of the time `owed`, which has passed
/// already, it asks for beside, at half the pace again.
std::unique_ptr<AudioDevice> MakeNoSoundDevice(std::chrono::nanoseconds owed = {});

} // namespace velmora::soundlayer
