#include "soundlayer/internal/OwnRecorder.h"

#include <utility>

namespace velmora::soundlayer {

class OwnCapture final : public CaptureDevice {
public:
    explicit OwnCapture(std::shared_ptr<OwnRecorder> recorder)
        : m_recorder(std::move(recorder))
    {
    }
    ~OwnCapture() override { OwnCapture::Stop(); }

    std::optional<AudioFormat> Open(std::uint32_t rate) override
    {
        if (m_recorder->m_refuses) {
            return {};
        }
        const AudioFormat& own = m_recorder->m_format;
        return AudioFormat{own.rate == 0 ? rate : own.rate, own.channels};
    }

    bool Start(Callback callback, LostNotice lost) override
    {
        {
            const std::lock_guard lock(m_recorder->m_mutex);
            m_recorder->m_callback = std::move(callback);
            m_recorder->m_lost = std::move(lost);
        }
        m_recorder->m_started();
        return true;
    }

    void Stop() override
    {
        const std::lock_guard lock(m_recorder->m_mutex);
        m_recorder->m_callback = nullptr;
        m_recorder->m_lost = nullptr;
    }

private:
    const std::shared_ptr<OwnRecorder> m_recorder;
};

OwnRecorder::OwnRecorder(std::string name, AudioFormat format, bool refuses, std::function<void()> started)
    : m_name(std::move(name))
    , m_format(format)
    , m_refuses(refuses)
    , m_started(std::move(started))
{
}

std::unique_ptr<CaptureDevice> OwnRecorder::MakeDevice(std::shared_ptr<OwnRecorder> recorder)
{
    return std::make_unique<OwnCapture>(std::move(recorder));
}

bool OwnRecorder::Deliver(const std::int16_t* interleaved, std::size_t frames, SoundClock::time_point end)
{
    const std::lock_guard lock(m_mutex);
    return m_callback && m_callback({interleaved, frames, end, true});
}

void OwnRecorder::Lose()
{
    const std::lock_guard lock(m_mutex);
    if (m_lost) {
        m_lost();
    }
}

} // namespace velmora::soundlayer
