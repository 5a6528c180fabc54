#pragma once

#include "soundlayer/internal/Capture.h"
#include "soundlayer/internal/EncoderSession.h"
#include "soundlayer/internal/Stream.h"

#include <atomic>
#include <memory>
#include <utility>

namespace velmora::soundlayer {

/// A record channel: a capture as a stream to be heard.
class CaptureStream final : public Stream {
public:
    CaptureStream(std::uint32_t rate, std::shared_ptr<Capture> capture)
        : Stream(rate, 2, BASS_STREAM_DECODE)
        , m_capture(std::move(capture))
    {
    }

    const std::shared_ptr<Capture>& Device() const { return m_capture; }

protected:
    Block Generate(std::int16_t* out, std::size_t frames) override
    {
        const std::size_t given = m_capture->Hear(out, frames);
        return {given, given == 0, false};
    }

private:
    const std::shared_ptr<Capture> m_capture;
};

/// What an encoder writes of a capture: everything from half a second before it began to write.
class CaptureTake final : public EncoderSource {
public:
    explicit CaptureTake(std::shared_ptr<Capture> capture)
        : m_capture(std::move(capture))
    {
    }

    /// -1 until it begins.
    std::int64_t FirstFrame() const { return m_first; }
    Capture& Device() const { return *m_capture; }

    void Begin() override;
    std::size_t Read(std::int16_t* interleaved, std::size_t frames, bool& lost) override;
    void End() override { m_capture->Settle(); }

private:
    const std::shared_ptr<Capture> m_capture;
    std::atomic<std::int64_t> m_first{-1};
    std::int64_t m_next = 0;
};

} // namespace velmora::soundlayer
