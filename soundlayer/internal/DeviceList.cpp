#include "soundlayer/internal/DeviceList.h"

#include "soundlayer/internal/CubebContext.h"

#include <algorithm>
#include <utility>

namespace velmora::soundlayer {

void DeviceList::Refresh()
{
    if (!m_answer.valid()) {
        std::packaged_task<std::vector<OutputDevice>()> task(&DeviceList::AskSystem);
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

const OutputDevice* DeviceList::Find(std::int64_t number) const
{
    const bool known = number >= 1 && number <= static_cast<std::int64_t>(m_devices.size());
    return known ? &m_devices[static_cast<std::size_t>(number - 1)] : nullptr;
}

std::int32_t DeviceList::DefaultNumber() const
{
    const auto present =
        std::ranges::find_if(m_devices, [](const OutputDevice& device) { return device.present && device.isDefault; });
    const auto first = present != m_devices.end() ? present : std::ranges::find_if(m_devices, &OutputDevice::present);
    return first == m_devices.end() ? 0 : static_cast<std::int32_t>(first - m_devices.begin()) + 1;
}

void DeviceList::EndWorker()
{
    if (m_worker.joinable()) {
        m_worker.join();
        m_answer = {};
    }
}

std::vector<OutputDevice> DeviceList::AskSystem()
{
    const CubebContext context = OpenCubeb({});
    if (!context) {
        return {};
    }
    std::vector<OutputDevice> found;
    for (SystemOutput& output : ListOutputs(*context)) {
        found.push_back({std::move(output.id), std::move(output.name), BackendOf(*context), true, output.isDefault});
    }
    return found;
}

void DeviceList::Take(std::vector<OutputDevice> found)
{
    for (OutputDevice& known : m_devices) {
        known.present = false;
        known.isDefault = false;
    }
    for (OutputDevice& device : found) {
        const auto known = std::ranges::find_if(m_devices, [&](const OutputDevice& other) {
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
