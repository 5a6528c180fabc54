#pragma once

#include <chrono>
#include <thread>

namespace velmora::testing {

/// Waits until `holds()`, which another thread or program brings about; false when that takes too long even for a
/// machine under load.
template <class Condition>
bool Becomes(Condition&& holds)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!holds()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace velmora::testing
