#pragma once

#include <cstdint>
#include <string>

namespace velmora::testing {

/// Watches the threads that fill the device's buffer: while they do, they may not allocate or free, take a mutex, sleep
/// or touch a file. A program that links this file has those functions interposed, for its libraries too; under a
/// sanitizer its hooks take the place of the memory functions.
///
/// Not seen: waits for condition variables and semaphores, and system calls that no library function makes.
class RealTimeGuard {
public:
    struct Breaches {
        std::uint64_t memory = 0;
        std::uint64_t waits = 0;
        std::uint64_t files = 0;

        bool operator==(const Breaches&) const = default;
    };

    /// Counts from zero. One at a time.
    RealTimeGuard();
    ~RealTimeGuard();
    RealTimeGuard(const RealTimeGuard&) = delete;
    RealTimeGuard& operator=(const RealTimeGuard&) = delete;

    Breaches Count() const;
    /// The calls that led to the first breach, one a line; empty without one.
    std::string FirstBreach() const;
};

} // namespace velmora::testing
