#pragma once

#include "soundlayer/internal/CaptureDevice.h"
#include "soundlayer/internal/CubebContext.h"

#include <string>

namespace velmora::soundlayer {

/// A record device of the sound server or of the hardware. Opening and stopping may take long when the server hangs.
class CubebCapture final : public CaptureDevice {
public:
    /// As `KnownDevice` tells.
    CubebCapture(std::string backend, std::string id);
    ~CubebCapture() override { CubebCapture::Stop(); }

    std::optional<AudioFormat> Open(std::uint32_t rate) override;
    bool Start(Callback callback, LostNotice lost) override;
    void Stop() override;

private:
    bool TryOpen(const SystemDevice& device, AudioFormat format);
    /// [RT]
    void OnData(cubeb_stream* stream, const std::int16_t* in, long frames);

    const std::string m_backend;
    const std::string m_id;
    const bool m_isMonitor;
    /// Of a monitor: when the block under way began to come, and how much of it has. Of the device's thread.
    SoundClock::time_point m_block;
    SoundClock::time_point m_lastPiece;
    std::int64_t m_blockFrames = 0;
    Callback m_callback;
    LostNotice m_lost;
    AudioFormat m_format;
    CubebContext m_context;
    CubebStream m_stream;
};

} // namespace velmora::soundlayer
