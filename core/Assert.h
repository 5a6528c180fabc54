#pragma once

/// Checks for our own bugs.
namespace velmora::core {

/// Says which check failed, and ends the process.
[[noreturn]] void AssertionFailed(const char* condition, const char* file, int line);

} // namespace velmora::core

#ifdef VELMORA_ASSERTIONS
#define VELMORA_ASSERTION_FAILED(condition) ::velmora::core::AssertionFailed(condition, __FILE__, __LINE__)
#else
#define VELMORA_ASSERTION_FAILED(condition) static_cast<void>(0)
#endif

/// Ends the process when `condition` is false and assertions are on; is not evaluated otherwise.
#ifdef VELMORA_ASSERTIONS
#define ASSERT(condition) ((condition) ? static_cast<void>(0) : VELMORA_ASSERTION_FAILED(#condition))
#else
#define ASSERT(condition) static_cast<void>(sizeof(!(condition)))
#endif

/// As `ASSERT`, but where assertions are off the condition is evaluated, and the statement `fallback` runs when it is
/// false: `VERIFY_OR(channel != nullptr, return)`.
#define VERIFY_OR(condition, fallback)                                                                                 \
    if (!(condition)) {                                                                                                \
        VELMORA_ASSERTION_FAILED(#condition);                                                                          \
        fallback;                                                                                                      \
    } else                                                                                                             \
        static_cast<void>(0)
