#pragma once

#include "audio/AudioInput_Class.h"
#include "core/Environment.h"

#include <cstdint>
#include <string>

namespace velmora::audio {

/// One capture session that is heard, or at least could be, through a channel's input mixer. Ends with this object.
class LiveInput {
public:
    explicit LiveInput(core::Environment& environment)
        : Input(environment)
    {
    }
    ~LiveInput() { End(); }
    LiveInput(const LiveInput&) = delete;
    LiveInput& operator=(const LiveInput&) = delete;

    AudioInput_Class Input;

    /// Starts the capture and joins `mixer`. False, with everything freed, when one of them fails; why stands in
    /// `Input.LastErrorMessage` or here.
    bool Start(std::uint32_t mixer, bool heard);
    void SetHeard(bool heard);
    /// Leaves the mixer it is in, if that still stands, and joins this one.
    bool Join(std::uint32_t mixer);
    /// What `Input` tells stays.
    void End();

    const std::string& LastErrorMessage() const { return m_error; }

private:
    std::string m_error;
};

} // namespace velmora::audio
