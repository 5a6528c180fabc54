#pragma once

#include "soundlayer/internal/CubebContext.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <future>
#include <string>
#include <thread>
#include <vector>

namespace velmora::soundlayer {

/// A real device as it was found last.
struct KnownDevice {
    std::string id;
    std::string name;
    std::string backend;
    bool present = false;
    bool isDefault = false;
};

/// The real devices of one direction by number, from 1: outputs in the system's order, inputs with the system's default
/// before the others. A number once given stands for the same device as
/// long as the process lives: what is new comes at the end, what is gone stays as absent.
///
/// Used by one thread at a time. Asking is done by a worker, since a server that hangs may take half a minute.
class DeviceList {
public:
    explicit DeviceList(Direction direction)
        : m_direction(direction)
    {
    }
    ~DeviceList() { EndWorker(); }
    DeviceList(const DeviceList&) = delete;
    DeviceList& operator=(const DeviceList&) = delete;

    /// Asks the system. When it does not answer within `kPatience`, what was known stands.
    void Refresh();
    /// As `Refresh`, if the last answer is older than `kFresh`.
    void RefreshIfOld();
    /// Null for a number that was never given, 0 included. The device lives as long as the list.
    const KnownDevice* Find(std::int64_t number) const;
    /// The system's default device, or 0 where there is no server nor hardware.
    std::int32_t DefaultNumber() const;
    void EndWorker();

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::seconds kPatience{2};
    static constexpr std::chrono::seconds kFresh{1};

    static std::vector<KnownDevice> AskSystem(Direction direction);
    void Take(std::vector<KnownDevice> found);

    const Direction m_direction;
    std::deque<KnownDevice> m_devices;
    std::future<std::vector<KnownDevice>> m_answer;
    std::thread m_worker;
    Clock::time_point m_answered;
};

} // namespace velmora::soundlayer
