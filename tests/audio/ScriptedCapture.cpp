#include "tests/audio/ScriptedCapture.h"

#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <thread>

namespace velmora::audio {

ScriptedCapture::ScriptedCapture(Format format, bool refuses)
    : m_format(format)
{
    SOUND_RECORDER recorder{"Scripted", format.rate, format.channels,
                            refuses,    nullptr,     reinterpret_cast<SOUND_USER>(this)};
    recorder.started = [](SOUND_USER self) { reinterpret_cast<ScriptedCapture*>(self)->Started(); };
    m_number = Sound_RecordAddDevice(&recorder);
}

ScriptedCapture::~ScriptedCapture()
{
    Sound_RecordRemoveDevice(m_number);
}

void ScriptedCapture::Started()
{
    ++starts;
    m_end = std::chrono::steady_clock::now() - latency;
    Deliver(std::vector<std::int16_t>(firstFrames * m_format.channels));
}

bool ScriptedCapture::Deliver(std::span<const std::int16_t> interleaved)
{
    using std::chrono::nanoseconds;
    const std::size_t block = std::size_t{Rate()} / 100 * m_format.channels;
    while (!interleaved.empty()) {
        const auto now = interleaved.first(std::min(block, interleaved.size()));
        const std::size_t frames = now.size() / m_format.channels;
        m_end += nanoseconds(frames * 1'000'000'000 / Rate());
        const auto endNS = std::chrono::duration_cast<nanoseconds>(m_end.time_since_epoch()).count();
        const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!Sound_RecordDeliver(m_number, now.data(), static_cast<std::uint32_t>(frames), endNS)) {
            if (std::chrono::steady_clock::now() > giveUp) {
                return false;
            }
            std::this_thread::yield();
        }
        interleaved = interleaved.subspan(now.size());
    }
    return true;
}

bool ScriptedCapture::Deliver(std::int32_t ms, std::int16_t sample)
{
    const std::size_t frames = std::size_t{Rate()} * static_cast<std::size_t>(ms) / 1000;
    return Deliver(std::vector<std::int16_t>(frames * m_format.channels, sample));
}

void ScriptedCapture::Lose()
{
    Sound_RecordLose(m_number);
}

std::uint32_t ScriptedCapture::Rate() const
{
    constexpr std::uint32_t kWanted = 44100;
    return m_format.rate == 0 ? kWanted : m_format.rate;
}

} // namespace velmora::audio
