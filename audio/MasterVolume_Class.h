#pragma once

#include "core/ClassIds.h"
#include "core/Environment.h"
#include "core/MsgSenderClass.h"

#include <cstdint>
#include <memory>

namespace velmora::audio {

/// The two last stages of the audio graph: the master mixer, a decoding stream that every channel's output joins, and
/// the mixer that plays on the device. The master mixer can leave the device and be pulled by hand. Master volume and
/// mute act on it as a source of the device mixer.
///
/// Made after the device has started and before any channel; owns both mixers. Interface thread only.
class MasterVolume_Class {
public:
    MasterVolume_Class(core::Environment& environment, core::MsgSenderClass& bus);
    ~MasterVolume_Class();
    MasterVolume_Class(const MasterVolume_Class&) = delete;
    MasterVolume_Class& operator=(const MasterVolume_Class&) = delete;

    core::ClassID ClassID() const { return m_classID; }
    std::uint32_t BassMixStreamHandle() const { return m_masterMixer; }
    std::uint32_t RealMixHandle() const { return m_deviceMixer; }
    /// The volume set, 0..100, also while muted.
    std::int32_t GetVolume() const { return m_volume; }

private:
    void MsgHandler_MsgReceived(std::int32_t MsgID, const core::MsgParametersClass& Params);

    core::ClassID m_classID;
    std::uint32_t m_deviceMixer = 0;
    std::uint32_t m_masterMixer = 0;
    std::int32_t m_volume = 100;
    bool m_muted = false;
    std::shared_ptr<core::MsgHandlerClass> m_msgHandler;
};

} // namespace velmora::audio
