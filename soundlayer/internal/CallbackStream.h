#pragma once

#include "soundlayer/internal/Stream.h"

namespace velmora::soundlayer {

/// A stream whose samples a function of the application gives. It never ends; without data it is silent.
class CallbackStream final : public Stream {
public:
    CallbackStream(std::uint32_t rate, std::uint32_t channels, std::uint32_t flags, STREAMPROC* proc, SOUND_USER user)
        : Stream(rate, channels, flags)
        , m_proc(proc)
        , m_user(user)
    {
    }

protected:
    Block Generate(std::int16_t* out, std::size_t frames) override
    {
        const std::size_t frameBytes = Channels() * sizeof(std::int16_t);
        const std::uint32_t bytes = m_proc(Handle(), out, static_cast<std::uint32_t>(frames * frameBytes), m_user);
        const std::size_t given = bytes / frameBytes;
        return {given < frames ? given : frames, given == 0, false};
    }

private:
    STREAMPROC* m_proc;
    SOUND_USER m_user;
};

} // namespace velmora::soundlayer
