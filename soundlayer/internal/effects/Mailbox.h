#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace velmora::soundlayer {

/// Hands the latest of one thread's values to another; neither ever waits, and no value is seen half.
///
/// Of three places the writer holds one, the reader one, and the third lies between them: each side works on its own
/// and exchanges it for the one between in one step.
template <typename T>
class Mailbox {
public:
    /// Writer.
    void Put(const T& value)
    {
        m_places[m_written] = value;
        m_written = m_between.exchange(m_written | kNew, std::memory_order_acq_rel) & kPlace;
    }

    /// Reader: nothing new has come. [RT]
    bool Empty() const { return (m_between.load(std::memory_order_relaxed) & kNew) == 0; }

    /// Reader: the latest value into `value`, or false without one since the last time. [RT]
    bool Take(T& value)
    {
        if (Empty()) {
            return false;
        }
        m_read = m_between.exchange(m_read, std::memory_order_acq_rel) & kPlace;
        value = m_places[m_read];
        return true;
    }

private:
    static constexpr std::uint32_t kNew = 4;
    static constexpr std::uint32_t kPlace = 3;

    std::array<T, 3> m_places{};
    std::uint32_t m_written = 0;
    std::atomic<std::uint32_t> m_between{1};
    std::uint32_t m_read = 2;
};

} // namespace velmora::soundlayer
