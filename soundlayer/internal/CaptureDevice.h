#pragma once

#include "soundlayer/internal/AudioDevice.h"
#include "soundlayer/internal/FileEncoder.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

namespace velmora::soundlayer {

/// What a device delivers at once.
struct CaptureBlock {
    const std::int16_t* interleaved = nullptr;
    std::size_t frames = 0;
    /// When the frame behind the last one sounds.
    SoundClock::time_point end;
    /// A block that finds no room is not lost, since it is offered again.
    bool comesAgain = false;
};

/// Where sound comes from. Adapters differ, nothing above knows which one it has. Lasts for one start.
class CaptureDevice {
public:
    /// On the device's own thread; false when there is no room for it. [RT]
    using Callback = std::function<bool(const CaptureBlock&)>;
    /// On any thread, once the device has gone for good.
    using LostNotice = std::function<void()>;

    virtual ~CaptureDevice() = default;
    /// Prepares the device to run as near to `rate` Hz in stereo as it can, and says how it will; nothing when it
    /// refuses.
    virtual std::optional<AudioFormat> Open(std::uint32_t rate) = 0;
    /// Delivers from now on. False when the device refuses.
    virtual bool Start(Callback callback, LostNotice lost) = 0;
    /// No call comes after it has returned.
    virtual void Stop() = 0;
};

} // namespace velmora::soundlayer
