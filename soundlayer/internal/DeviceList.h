#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <future>
#include <string>
#include <thread>
#include <vector>

namespace velmora::soundlayer {

/// A real output device as it was found last.
struct OutputDevice {
    std::string id;
    std::string name;
    std::string backend;
    bool present = false;
    bool isDefault = false;
};

/// The real output devices by number, from 1 in the system's order. A number once given stands for the same device as
/// long as the process lives: what is new comes at the end, what is gone stays as absent.
///
/// Used by one thread at a time. Asking is done by a worker, since a server that hangs may take half a minute.
class DeviceList {
public:
    DeviceList() = default;
    ~DeviceList() { EndWorker(); }
    DeviceList(const DeviceList&) = delete;
    DeviceList& operator=(const DeviceList&) = delete;

    /// Asks the system. When it does not answer within `kPatience`, what was known stands.
    void Refresh();
    /// As `Refresh`, if the last answer is older than `kFresh`.
    void RefreshIfOld();
    /// Null for a number that was never given, 0 included. The device lives as long as the list.
    const OutputDevice* Find(std::int64_t number) const;
    /// The system's default device, or 0 where there is no server nor hardware.
    std::int32_t DefaultNumber() const;
    void EndWorker();

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::seconds kPatience{2};
    static constexpr std::chrono::seconds kFresh{1};

    static std::vector<OutputDevice> AskSystem();
    void Take(std::vector<OutputDevice> found);

    std::deque<OutputDevice> m_devices;
    std::future<std::vector<OutputDevice>> m_answer;
    std::thread m_worker;
    Clock::time_point m_answered;
};

} // namespace velmora::soundlayer
