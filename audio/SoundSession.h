#pragma once

#include "core/Environment.h"

#include <memory>

namespace velmora::audio {

/// The engine library and the output device, from start to end. The settings are read before it starts; projects live
/// inside it. One at a time; another may follow in the same process.
class SoundSession {
public:
    /// Null if the libraries do not fit or no device starts; the reason has been shown then, and the program ends.
    static std::unique_ptr<SoundSession> Start(core::Environment& environment);
    ~SoundSession();
    SoundSession(const SoundSession&) = delete;
    SoundSession& operator=(const SoundSession&) = delete;

private:
    SoundSession() = default;
};

} // namespace velmora::audio
