#pragma once

#include "soundlayer/internal/Library.h"
#include "soundlayer/internal/MixingThread.h"

#include <cstdint>
#include <mutex>
#include <new>
#include <utility>

namespace velmora::soundlayer {

/// Leaves `code` for the caller to ask for, and gives the operation's failed result.
template <typename T>
T Fail(std::int32_t code, T result)
{
    Library::SetError(code);
    return result;
}

/// Runs what may take long and needs none of what operations share; nothing is thrown across the boundary.
template <typename T, typename Body>
T WithoutHold(T failed, Body&& body) noexcept
{
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return Fail(BASS_ERROR_MEM, std::move(failed));
    } catch (...) {
        return Fail(BASS_ERROR_UNKNOWN, std::move(failed));
    }
}

/// Runs a C operation's body, one at a time but for the mixing thread, which waits for nobody, and the helpers of a
/// pull, whose puller holds the library. Nothing is thrown across the boundary.
template <typename T, typename Body>
T Operation(T failed, Body&& body) noexcept
{
    return WithoutHold(std::move(failed), [&] {
        std::unique_lock lock(Library::Get().mutex, std::defer_lock);
        if (!OnMixingThread() && !InSharedPull()) {
            lock.lock();
        }
        return T(body());
    });
}

} // namespace velmora::soundlayer
