#include "soundlayer/internal/AudioDevice.h"

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
    using Clock = std::chrono::steady_clock;

    static constexpr std::uint32_t kMinBufferMS = 20;
    static constexpr std::size_t kPeriodMS = 5;
    static constexpr std::size_t kBlockFrames = 256;

    void Run(std::uint32_t rate, const Callback& callback)
    {
        std::array<std::int16_t, 2 * kBlockFrames> block{};
        const auto start = Clock::now();
        std::uint64_t asked = 0;
        std::unique_lock lock(m_mutex);
        while (!m_wake.wait_for(lock, std::chrono::milliseconds(kPeriodMS), [this] { return m_stopping; })) {
            const auto us = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start).count();
            const auto due = static_cast<std::uint64_t>(us) * rate / 1'000'000;
            while (asked < due) {
                const std::size_t frames = std::min<std::uint64_t>(due - asked, kBlockFrames);
                callback(block.data(), frames);
                asked += frames;
            }
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace

std::unique_ptr<AudioDevice> MakeNoSoundDevice()
{
    return std::make_unique<NoSoundDevice>();
}

} // namespace velmora::soundlayer
