#include "soundlayer/internal/SurvivingDevice.h"

#include <algorithm>
#include <utility>

namespace velmora::soundlayer {

namespace {
constexpr std::uint32_t kLeastDeviceMS = 6;
constexpr std::uint32_t kGreatestDeviceMS = 25;
constexpr std::chrono::milliseconds kArrivalLook{5};
} // namespace

SurvivingDevice::SurvivingDevice(Make make, MakeStandIn makeStandIn, Times times)
    : m_make(std::move(make))
    , m_makeStandIn(std::move(makeStandIn))
    , m_times(times)
{
}

bool SurvivingDevice::Start(std::uint32_t rate, Callback callback)
{
    Stop();
    m_rate = rate;
    m_callback = std::move(callback);
    m_ending = false;
    m_gone = false;
    m_mayRest = false;
    m_resting = false;
    m_deviceMS = m_wantedMS;
    m_turn = Side::Device;
    std::unique_ptr<AudioDevice> device = MakeDevice();
    if (!StartDevice(*device)) {
        return false;
    }
    m_minBufferMS = device->MinBufferMS();
    m_device = std::move(device);
    m_state = DeviceState::Sounding;
    m_keeper = std::thread([this] { Keep(); });
    return true;
}

void SurvivingDevice::Stop()
{
    if (m_keeper.joinable()) {
        {
            const std::lock_guard lock(m_mutex);
            m_ending = true;
        }
        m_wake.notify_all();
        m_keeper.join();
    }
    if (m_standIn) {
        m_standIn->Stop();
        m_standIn.reset();
    }
    if (m_device) {
        m_device->Stop();
        m_device.reset();
    }
    m_state = DeviceState::None;
}

std::uint32_t SurvivingDevice::LatencyMS() const
{
    const std::lock_guard lock(m_mutex);
    if (m_state == DeviceState::Sounding && m_device && !m_standIn) {
        m_latencyMS = m_device->LatencyMS();
    }
    return m_latencyMS;
}

std::uint32_t SurvivingDevice::MinBufferMS() const
{
    const std::lock_guard lock(m_mutex);
    return m_minBufferMS;
}

void SurvivingDevice::SetBufferMS(std::uint32_t bufferMS)
{
    {
        const std::lock_guard lock(m_mutex);
        m_wantedMS = std::clamp(bufferMS / 2, kLeastDeviceMS, kGreatestDeviceMS);
    }
    m_wake.notify_all();
}

void SurvivingDevice::Wake()
{
    {
        const std::lock_guard lock(m_mutex);
        m_mayRest = false;
    }
    m_wake.notify_all();
}

void SurvivingDevice::OnCall(Side side, std::int16_t* out, std::size_t frames, SoundClock::time_point heard)
{
    if (side == Side::Device) {
        m_lastCall.store(Clock::now().time_since_epoch().count(), std::memory_order_relaxed);
        m_heard.store(true, std::memory_order_relaxed);
    }
    const bool mine = m_turn.load(std::memory_order_acquire) == side;
    if (!mine || m_calling.exchange(true, std::memory_order_acquire)) {
        std::fill_n(out, 2 * frames, std::int16_t{0});
        return;
    }
    m_callback(out, frames, heard);
    m_calling.store(false, std::memory_order_release);
}

AudioDevice::Callback SurvivingDevice::CallbackOf(Side side)
{
    return [this, side](std::int16_t* out, std::size_t frames, SoundClock::time_point heard) {
        OnCall(side, out, frames, heard);
    };
}

std::unique_ptr<AudioDevice> SurvivingDevice::MakeDevice()
{
    return m_make(m_deviceMS, [this] {
        {
            const std::lock_guard lock(m_mutex);
            m_gone = true;
        }
        m_wake.notify_all();
    });
}

bool SurvivingDevice::StartDevice(AudioDevice& device)
{
    m_heard = false;
    m_lastCall = Clock::now().time_since_epoch().count();
    return device.Start(m_rate, CallbackOf(Side::Device));
}

SurvivingDevice::Clock::duration SurvivingDevice::Silence() const
{
    return Clock::now().time_since_epoch() - Clock::duration(m_lastCall.load(std::memory_order_relaxed));
}

void SurvivingDevice::Keep()
{
    std::unique_lock lock(m_mutex);
    while (!m_ending) {
        const bool arriving = m_device && m_standIn && !m_resting;
        const Clock::duration toTry = m_device ? Clock::duration::max() : m_nextTry - Clock::now();
        const auto pause = std::min(toTry, arriving ? Clock::duration(kArrivalLook) : Clock::duration(m_times.look));
        m_wake.wait_for(lock, pause,
                        [this] { return m_ending || m_gone || m_wantedMS != m_deviceMS || (m_resting && !m_mayRest); });
        if (m_ending) {
            return;
        }
        if (!m_device) {
            m_gone = false;
            m_deviceMS = m_wantedMS;
            if (Clock::now() >= m_nextTry) {
                TryAgain(lock);
            }
        } else if (m_gone || m_wantedMS != m_deviceMS || (!m_resting && Silence() > m_times.silence)) {
            Drop(lock);
        } else if (arriving && m_heard) {
            Arrive(lock);
        } else if (m_resting && !m_mayRest) {
            EndRest(lock);
        } else if (!m_resting && !arriving && m_mayRest) {
            BeginRest(lock);
        }
    }
}

void SurvivingDevice::Drop(std::unique_lock<std::mutex>& lock)
{
    const std::unique_ptr<AudioDevice> device = std::move(m_device);
    const bool failedToArrive = m_standIn && m_wantedMS == m_deviceMS && !m_resting;
    m_resting = false;
    m_state = DeviceState::Lost;
    lock.unlock();
    // Another device may have become the default, or only the length changes: then the next try is at once.
    m_nextTry = Clock::now() + (failedToArrive ? m_times.retry : Clock::duration::zero());
    if (!m_standIn) {
        m_standIn = m_makeStandIn(std::max(Silence(), Clock::duration::zero()));
        m_standIn->Start(m_rate, CallbackOf(Side::StandIn));
    }
    m_turn = Side::StandIn;
    device->Stop();
    lock.lock();
    m_gone = false;
    m_deviceMS = m_wantedMS;
}

void SurvivingDevice::TryAgain(std::unique_lock<std::mutex>& lock)
{
    m_deviceMS = m_wantedMS;
    std::unique_ptr<AudioDevice> device = MakeDevice();
    lock.unlock();
    const bool started = StartDevice(*device);
    lock.lock();
    if (started) {
        m_device = std::move(device);
    } else {
        m_gone = false;
        m_nextTry = Clock::now() + m_times.retry;
    }
}

void SurvivingDevice::Arrive(std::unique_lock<std::mutex>& lock)
{
    lock.unlock();
    // The stand-in's last call comes before the device's first.
    m_standIn->Stop();
    m_standIn.reset();
    m_turn = Side::Device;
    lock.lock();
    m_minBufferMS = m_device->MinBufferMS();
    m_state = DeviceState::Sounding;
}

void SurvivingDevice::BeginRest(std::unique_lock<std::mutex>& lock)
{
    m_resting = true;
    lock.unlock();
    auto standIn = m_makeStandIn({});
    m_device->SetPaused(true);
    m_turn = Side::StandIn;
    standIn->Start(m_rate, CallbackOf(Side::StandIn));
    lock.lock();
    m_standIn = std::move(standIn);
}

void SurvivingDevice::EndRest(std::unique_lock<std::mutex>& lock)
{
    m_resting = false;
    m_heard = false;
    m_lastCall = Clock::now().time_since_epoch().count();
    // The stand-in gets nothing any more: what is to be heard now waits for the device, and when that has called back,
    // the stand-in ends.
    m_turn = Side::Device;
    lock.unlock();
    m_device->SetPaused(false);
    lock.lock();
}

} // namespace velmora::soundlayer
