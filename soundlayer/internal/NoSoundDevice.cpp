#include "soundlayer/internal/AudioDevice.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace velmora::soundlayer {

namespace {

class NoSoundDevice final : public AudioDevice {
public:
    explicit NoSoundDevice(std::chrono::nanoseconds owed)
        : m_owed(owed)
    {
    }
    ~NoSoundDevice() override { Stop(); }

    bool Start(std::uint32_t rate, Callback callback) override
    {
        Stop();
        m_stopping = false;
        m_thread = std::thread([this, rate, callback = std::move(callback)] { Run(rate, callback); });
        return true;
    }

    void Stop() override
    {
        if (!m_thread.joinable()) {
            return;
        }
        {
            const std::lock_guard lock(m_mutex);
            m_stopping = true;
        }
        m_wake.notify_all();
        m_thread.join();
    }

    std::uint32_t LatencyMS() const override { return 0; }
    std::uint32_t MinBufferMS() const override { return kMinBufferMS; }

private:
    using Clock = SoundClock;

    static constexpr std::uint32_t kMinBufferMS = 20;
    static constexpr std::size_t kPeriodMS = 5;
    static constexpr std::size_t kBlockFrames = 256;

    void Run(std::uint32_t rate, const Callback& callback)
    {
        std::array<std::int16_t, 2 * kBlockFrames> block{};
        const auto framesIn = [rate](Clock::duration time) {
            const auto us = std::chrono::duration_cast<std::chrono::microseconds>(time).count();
            return static_cast<std::uint64_t>(us) * rate / 1'000'000;
        };
        auto last = Clock::now();
        const auto start = last - m_owed;
        std::uint64_t asked = 0;
        std::unique_lock lock(m_mutex);
        while (!m_wake.wait_for(lock, std::chrono::milliseconds(kPeriodMS), [this] { return m_stopping; })) {
            const auto now = Clock::now();
            std::uint64_t wanted = std::min(framesIn(now - start) - asked, framesIn((now - last) * 3 / 2));
            last = now;
            auto due = start + TimeOfFrames(static_cast<std::int64_t>(asked), rate);
            asked += wanted;
            while (wanted > 0) {
                const std::size_t frames = std::min<std::uint64_t>(wanted, kBlockFrames);
                callback(block.data(), frames, due);
                wanted -= frames;
                due += TimeOfFrames(static_cast<std::int64_t>(frames), rate);
            }
        }
    }

    const std::chrono::nanoseconds m_owed;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace

std::unique_ptr<AudioDevice> MakeNoSoundDevice(std::chrono::nanoseconds owed)
{
    return std::make_unique<NoSoundDevice>(owed);
}

} // namespace velmora::soundlayer
