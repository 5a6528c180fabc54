#include "soundlayer/internal/DeviceList.h"

#include <algorithm>
#include <utility>

namespace velmora::soundlayer {

void DeviceList::Refresh()
{
    if (!m_answer.valid()) {
        std::packaged_task<std::vector<KnownDevice>()> task([direction = m_direction] { return AskSystem(direction); });
        m_answer = task.get_future();
        m_worker = std::thread(std::move(task));
    }
    if (m_answer.wait_for(kPatience) != std::future_status::ready) {
        return;
    }
    m_worker.join();
    Take(m_answer.get());
    m_answered = Clock::now();
}

void DeviceList::RefreshIfOld()
{
    if (m_answered == Clock::time_point{} || Clock::now() - m_answered > kFresh) {
        Refresh();
    }
}

const KnownDevice* DeviceList::Find(std::int64_t number) const
{
    const bool known = number >= 1 && number <= static_cast<std::int64_t>(m_devices.size());
    return known ? &m_devices[static_cast<std::size_t>(number - 1)] : nullptr;
}

std::int32_t DeviceList::DefaultNumber() const
{
    const auto present =
        std::ranges::find_if(m_devices, [](const KnownDevice& device) { return device.present && device.isDefault; });
    const auto first = present != m_devices.end() ? present : std::ranges::find_if(m_devices, &KnownDevice::present);
    return first == m_devices.end() ? 0 : static_cast<std::int32_t>(first - m_devices.begin()) + 1;
}

void DeviceList::EndWorker()
{
    if (m_worker.joinable()) {
        m_worker.join();
        m_answer = {};
    }
}

std::vector<KnownDevice> DeviceList::AskSystem(Direction direction)
{
    const CubebContext context = OpenCubeb({});
    if (!context) {
        return {};
    }
    std::vector<KnownDevice> found;
    for (SystemDevice& device : ListDevices(*context, direction)) {
        found.push_back({std::move(device.id), std::move(device.name), BackendOf(*context), true, device.isDefault});
    }
    if (direction == Direction::Input) {
        std::stable_partition(found.begin(), found.end(), [](const KnownDevice& device) { return device.isDefault; });
    }
    return found;
}

void DeviceList::Take(std::vector<KnownDevice> found)
{
    for (KnownDevice& known : m_devices) {
        known.present = false;
        known.isDefault = false;
    }
    for (KnownDevice& device : found) {
        const auto known = std::ranges::find_if(m_devices, [&](const KnownDevice& other) {
            return other.id == device.id && other.backend == device.backend;
        });
        if (known == m_devices.end()) {
            m_devices.push_back(std::move(device));
        } else {
            // Its texts may be in a caller's hands.
            known->present = true;
            known->isDefault = device.isDefault;
        }
    }
}

} // namespace velmora::soundlayer
