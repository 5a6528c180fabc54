#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace velmora::soundlayer {

/// True while the present thread works on a part of a shared pull: on behalf of the thread that pulls, which waits for
/// it and holds the library.
bool InSharedPull();

/// Threads that take parts of an offline pull off the thread that pulls. They sleep while there are none.
///
/// Not for the mixing thread, which waits for nobody. One pull at a time.
class PullHelpers {
public:
    PullHelpers();
    ~PullHelpers();

    /// How many threads share a pull, the puller among them; 0 is one per core.
    void SetThreads(std::uint32_t threads);
    /// Nobody but the puller pulls.
    bool Alone() const { return m_threads == 1; }
    /// Ends the threads; the next `Share` brings them back.
    void Stop();
    /// Runs `part` for 0 .. `count` - 1, each once, on this thread and the helpers, and comes back when all are done.
    /// An exception of a part is thrown here, after the others.
    void Share(std::size_t count, const std::function<void(std::size_t)>& part);

private:
    void Help();
    /// Runs parts until all are taken.
    void Take(std::unique_lock<std::mutex>& lock);

    std::uint32_t m_threads = 1;
    std::mutex m_mutex;
    std::condition_variable m_work;
    std::condition_variable m_done;
    const std::function<void(std::size_t)>* m_part = nullptr;
    std::size_t m_count = 0;
    std::size_t m_next = 0;
    std::size_t m_left = 0;
    std::exception_ptr m_failure;
    bool m_stopping = false;
    std::vector<std::thread> m_helpers;
};

} // namespace velmora::soundlayer
