#include "soundlayer/internal/Recorders.h"

#include "soundlayer/internal/CubebCapture.h"
#include "soundlayer/soundlayer.h"

#include <utility>

namespace velmora::soundlayer {

bool Recorders::Any() const
{
    return m_system.DefaultNumber() > 0 || !m_own.empty();
}

bool Recorders::IsThere(std::int32_t number) const
{
    const KnownDevice* known = Known(number);
    return Own(number) || (known && known->present);
}

std::unique_ptr<CaptureDevice> Recorders::MakeDevice(std::int32_t number) const
{
    if (auto own = Own(number)) {
        return OwnRecorder::MakeDevice(std::move(own));
    }
    const KnownDevice* known = Known(number);
    return known && known->present ? std::make_unique<CubebCapture>(known->backend, known->id) : nullptr;
}

std::int32_t Recorders::AddOwn(std::shared_ptr<OwnRecorder> recorder)
{
    const std::int32_t number = SOUND_FIRST_OWN_RECORDER + m_ownCount++;
    m_own.emplace(number, std::move(recorder));
    return number;
}

std::shared_ptr<OwnRecorder> Recorders::Own(std::int32_t number) const
{
    const auto own = m_own.find(number);
    return own == m_own.end() ? nullptr : own->second;
}

void Recorders::FreeAll()
{
    ready.clear();
    current = -1;
    m_system.EndWorker();
}

} // namespace velmora::soundlayer
