#pragma once

#include "core/Ports.h"
#include "soundlayer/soundlayer.h"

#include <cstdint>

namespace velmora::project {

/// The sound of one channel: its two mixers, and what gain, voice removal, volume and pan do to them.
class ChannelStrip {
public:
    /// Joins `masterMixer`; a failure is reported.
    ChannelStrip(core::MessageBoxes& messages, std::int32_t rate, HSTREAM masterMixer);
    ~ChannelStrip();
    ChannelStrip(const ChannelStrip&) = delete;
    ChannelStrip& operator=(const ChannelStrip&) = delete;

    HSTREAM InMix() const { return m_inMix; }
    HSTREAM OutMix() const { return m_outMix; }

    /// -100..100.
    void SetPan(std::int32_t pan);
    /// 0..100.
    void SetOutputVolume(std::int32_t volume);
    /// 0..100; 0 takes the DSP away.
    void SetVoiceRemoval(std::int32_t amount);
    /// dB; the factor is 2 to the power of a sixth of it. A factor of 1 takes the DSP away.
    void SetGain(double gain);

private:
    /// In place of `dsp`; an `address` of null leaves none.
    void ReplaceDSP(HDSP& dsp, void* address, SOUND_USER user, std::int32_t priority);

    HSTREAM m_inMix;
    HSTREAM m_outMix;
    HDSP m_gain = 0;
    HDSP m_voiceRemoval = 0;
};

} // namespace velmora::project
