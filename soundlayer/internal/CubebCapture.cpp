#include "soundlayer/internal/CubebCapture.h"

#include <string_view>
#include <utility>

#include <cubeb/cubeb.h>

namespace velmora::soundlayer {

namespace {
/// What the device is asked to hold. PulseAudio delivers a quarter of it at once, and no more than a sink takes at
/// once, so that a monitor's blocks are the sink's.
constexpr std::uint32_t kDeviceMS = 10;
/// So PulseAudio calls what a sink plays. A block of it comes when the sink takes it, that is when its first frame is
/// heard; it may come in pieces, one right behind the other.
constexpr std::string_view kMonitor = ".monitor";
constexpr std::chrono::milliseconds kBetweenPieces{1};

std::uint32_t DeviceFrames(std::uint32_t rate)
{
    return rate * kDeviceMS / 1000;
}
} // namespace

CubebCapture::CubebCapture(std::string backend, std::string id)
    : m_backend(std::move(backend))
    , m_id(std::move(id))
    , m_isMonitor(m_id.ends_with(kMonitor))
{
}

std::optional<AudioFormat> CubebCapture::Open(std::uint32_t rate)
{
    m_context = OpenCubeb(m_backend);
    if (!m_context) {
        return {};
    }
    const auto inputs = ListDevices(*m_context, Direction::Input);
    const SystemDevice* device = FindDevice(inputs, m_id);
    if (!device) {
        return {};
    }
    for (const std::uint32_t tried : {rate, device->rate}) {
        for (const std::uint32_t channels : {2U, 1U}) {
            if (tried > 0 && TryOpen(*device, {tried, channels})) {
                return m_format;
            }
        }
    }
    return {};
}

bool CubebCapture::TryOpen(const SystemDevice& device, AudioFormat format)
{
    cubeb_stream_params params{CUBEB_SAMPLE_S16NE, format.rate, format.channels,
                               format.channels == 2 ? CUBEB_LAYOUT_STEREO : CUBEB_LAYOUT_MONO, CUBEB_STREAM_PREF_NONE};
    cubeb_stream* stream = nullptr;
    const int made = cubeb_stream_init(
        m_context.get(), &stream, "Recording", device.handle, &params, nullptr, nullptr, DeviceFrames(format.rate),
        [](cubeb_stream* from, void* self, const void* in, void*, long frames) {
            static_cast<CubebCapture*>(self)->OnData(from, static_cast<const std::int16_t*>(in), frames);
            return frames;
        },
        [](cubeb_stream*, void* self, cubeb_state state) {
            const auto& lost = static_cast<CubebCapture*>(self)->m_lost;
            if (state == CUBEB_STATE_ERROR && lost) {
                lost();
            }
        },
        this);
    m_stream.reset(made == CUBEB_OK ? stream : nullptr);
    m_format = format;
    return m_stream != nullptr;
}

bool CubebCapture::Start(Callback callback, LostNotice lost)
{
    m_callback = std::move(callback);
    m_lost = std::move(lost);
    return m_stream && cubeb_stream_start(m_stream.get()) == CUBEB_OK;
}

void CubebCapture::Stop()
{
    if (m_stream) {
        cubeb_stream_stop(m_stream.get());
        m_stream.reset();
    }
    m_context.reset();
}

void CubebCapture::OnData(cubeb_stream* stream, const std::int16_t* in, long frames)
{
    const auto called = SoundClock::now();
    // Not every backend tells it; then what was delivered just now counts as just sounded.
    std::uint32_t latency = 0;
    if (cubeb_stream_get_input_latency(stream, &latency) != CUBEB_OK) {
        latency = 0;
    }
    auto end = called - TimeOfFrames(latency, m_format.rate);
    if (m_isMonitor) {
        if (called - m_lastPiece > kBetweenPieces) {
            m_block = called;
            m_blockFrames = 0;
        }
        m_lastPiece = called;
        m_blockFrames += frames;
        end = m_block + TimeOfFrames(m_blockFrames, m_format.rate);
    }
    m_callback({in, static_cast<std::size_t>(frames), end});
}

} // namespace velmora::soundlayer
