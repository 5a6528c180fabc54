#pragma once

#include "soundlayer/internal/Library.h"

#include <cstdint>
#include <new>

namespace velmora::soundlayer {

/// Leaves `code` for the caller to ask for, and gives the operation's failed result.
template <typename T>
T Fail(std::int32_t code, T result)
{
    Library::SetError(code);
    return result;
}

/// Runs a C operation's body; nothing is thrown across the boundary.
template <typename T, typename Body>
T Operation(T failed, Body&& body) noexcept
{
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return Fail(BASS_ERROR_MEM, failed);
    } catch (...) {
        return Fail(BASS_ERROR_UNKNOWN, failed);
    }
}

} // namespace velmora::soundlayer
