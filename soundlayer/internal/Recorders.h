#pragma once

#include "soundlayer/internal/DeviceList.h"
#include "soundlayer/internal/OwnRecorder.h"

#include <cstdint>
#include <map>
#include <memory>

namespace velmora::soundlayer {

/// The record devices by the numbers of the operations: the system's from 0, the application's own from
/// SOUND_FIRST_OWN_RECORDER. One thread at a time.
class Recorders {
public:
    /// Whether there is anything to record from.
    bool Any() const;
    /// Null for a number that is not there now. Real ones as of the last `Refresh` of `System`.
    std::unique_ptr<CaptureDevice> MakeDevice(std::int32_t number) const;
    bool IsThere(std::int32_t number) const;
    /// The device that a number was given to, there or not; null for an own one.
    const KnownDevice* Known(std::int64_t number) const { return m_system.Find(number + 1); }
    DeviceList& System() { return m_system; }

    std::int32_t AddOwn(std::shared_ptr<OwnRecorder> recorder);
    bool RemoveOwn(std::int32_t number) { return m_own.erase(number) > 0; }
    std::shared_ptr<OwnRecorder> Own(std::int32_t number) const;

    /// Devices that are ready, with their record channel or 0.
    std::map<std::int32_t, std::uint32_t> ready;
    /// One of those, or -1.
    std::int32_t current = -1;
    void FreeAll();

private:
    DeviceList m_system{Direction::Input};
    std::map<std::int32_t, std::shared_ptr<OwnRecorder>> m_own;
    std::int32_t m_ownCount = 0;
};

} // namespace velmora::soundlayer
