#include "soundlayer/internal/CubebDevice.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <cubeb/cubeb.h>

namespace velmora::soundlayer {

namespace {
constexpr std::uint32_t kLeastBufferMS = 20;
constexpr std::uint32_t kReadingsOfMS = 1000;
} // namespace

CubebDevice::CubebDevice(Choice choice, std::function<void()> lost)
    : m_choice(std::move(choice))
    , m_lost(std::move(lost))
{
}

bool CubebDevice::Start(std::uint32_t rate, Callback callback)
{
    m_context = OpenCubeb(m_choice.backend);
    if (!m_context) {
        return false;
    }
    const auto outputs = ListDevices(*m_context, Direction::Output);
    const SystemDevice* output = FindDevice(outputs, m_choice.id);
    if (!output) {
        return false;
    }
    m_callback = std::move(callback);
    m_rate = rate;
    cubeb_stream_params params{CUBEB_SAMPLE_S16NE, rate, 2, CUBEB_LAYOUT_STEREO, CUBEB_STREAM_PREF_NONE};
    std::uint32_t least = 0;
    cubeb_get_min_latency(m_context.get(), &params, &least);
    m_minBufferMS = std::max(kLeastBufferMS, 2 * ((1000 * least + rate - 1) / rate));
    m_started = Clock::now();

    cubeb_stream* stream = nullptr;
    const int made = cubeb_stream_init(
        m_context.get(), &stream, "Playback", nullptr, nullptr, m_choice.id.empty() ? nullptr : output->handle, &params,
        std::max<std::uint32_t>(1, rate * m_choice.deviceMS / 1000),
        [](cubeb_stream* from, void* self, const void*, void* out, long frames) {
            return static_cast<CubebDevice*>(self)->OnData(from, static_cast<std::int16_t*>(out), frames);
        },
        [](cubeb_stream*, void* self, cubeb_state state) {
            if (state == CUBEB_STATE_ERROR) {
                static_cast<CubebDevice*>(self)->m_lost();
            }
        },
        this);
    if (made != CUBEB_OK) {
        return false;
    }
    m_stream.reset(stream);
    if (cubeb_stream_start(stream) != CUBEB_OK) {
        Stop();
        return false;
    }
    return true;
}

void CubebDevice::Stop()
{
    if (m_stream) {
        cubeb_stream_stop(m_stream.get());
        m_stream.reset();
    }
    m_context.reset();
}

void CubebDevice::SetPaused(bool paused)
{
    // One that does not go on is noticed by its silence.
    paused ? cubeb_stream_stop(m_stream.get()) : cubeb_stream_start(m_stream.get());
}

std::uint32_t CubebDevice::LatencyMS() const
{
    const std::size_t count = m_readingCount.load(std::memory_order_acquire);
    const std::uint32_t now = SinceStartMS();
    std::vector<std::uint32_t> recent;
    for (std::size_t i = 0; i < std::min(count, kReadings); ++i) {
        const Reading reading = m_readings[i].load(std::memory_order_relaxed);
        if (now - reading.atMS <= kReadingsOfMS) {
            recent.push_back(reading.frames);
        }
    }
    if (recent.empty()) {
        return 0;
    }
    const auto median = recent.begin() + static_cast<std::ptrdiff_t>(recent.size() / 2);
    std::ranges::nth_element(recent, median);
    return static_cast<std::uint32_t>((1000ULL * *median + m_rate / 2) / m_rate);
}

long CubebDevice::OnData(cubeb_stream* stream, std::int16_t* out, long frames)
{
    // Asked elsewhere, the figure jumps by a block.
    std::uint32_t latency = 0;
    const auto called = Clock::now();
    if (cubeb_stream_get_latency(stream, &latency) == CUBEB_OK) {
        const std::size_t count = m_readingCount.load(std::memory_order_relaxed);
        m_readings[count % kReadings].store({SinceStartMS(), latency}, std::memory_order_relaxed);
        m_readingCount.store(count + 1, std::memory_order_release);
    }
    m_callback(out, static_cast<std::size_t>(frames), called + TimeOfFrames(latency, m_rate));
    return frames;
}

std::uint32_t CubebDevice::SinceStartMS() const
{
    const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_started);
    return static_cast<std::uint32_t>(passed.count());
}

} // namespace velmora::soundlayer
