#pragma once

#include <cstdint>
#include <vector>

namespace velmora::audio {

class MasterVolume_Class;

/// Takes the master mixer off the device for as long as it lives, so that it can be pulled by hand, and sets the
/// device's buffer to what offline work uses; both come back afterwards.
class OfflineMaster {
public:
    explicit OfflineMaster(const MasterVolume_Class& master);
    ~OfflineMaster();
    OfflineMaster(const OfflineMaster&) = delete;
    OfflineMaster& operator=(const OfflineMaster&) = delete;

    std::uint32_t Stream() const { return m_masterMixer; }

    /// Pulls `frames` frames, which whatever sits on the mixer hears; false when the mixer does not give them.
    bool Pull(std::int64_t frames);

private:
    std::uint32_t m_masterMixer;
    std::uint32_t m_deviceMixer;
    std::uint32_t m_bufferMS;
    std::uint32_t m_updateMS;
    std::vector<std::int16_t> m_block;
};

} // namespace velmora::audio
