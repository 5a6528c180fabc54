#pragma once

#include "soundlayer/internal/CaptureDevice.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace velmora::soundlayer {

/// A record device whose sound the application itself gives. Any thread.
class OwnRecorder {
public:
    /// A rate of 0 runs at any. `started` is called each time the device was started.
    OwnRecorder(std::string name, AudioFormat format, bool refuses, std::function<void()> started);

    const std::string& Name() const { return m_name; }
    /// The device of one capture from it; one at a time.
    static std::unique_ptr<CaptureDevice> MakeDevice(std::shared_ptr<OwnRecorder> recorder);

    /// False while there is no room or it is not started.
    bool Deliver(const std::int16_t* interleaved, std::size_t frames, SoundClock::time_point end);
    void Lose();

private:
    friend class OwnCapture;

    const std::string m_name;
    const AudioFormat m_format;
    const bool m_refuses;
    const std::function<void()> m_started;
    std::mutex m_mutex;
    CaptureDevice::Callback m_callback;
    CaptureDevice::LostNotice m_lost;
};

} // namespace velmora::soundlayer
