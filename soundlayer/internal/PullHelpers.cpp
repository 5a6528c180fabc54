#include "soundlayer/internal/PullHelpers.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace velmora::soundlayer {

namespace {
/// As `OnMixingThread`'s mark, for it is asked in the same places.
[[gnu::tls_model("initial-exec")]] thread_local bool t_sharing = false;
} // namespace

bool InSharedPull()
{
    return t_sharing;
}

PullHelpers::PullHelpers()
{
    SetThreads(0);
}

PullHelpers::~PullHelpers()
{
    Stop();
}

void PullHelpers::SetThreads(std::uint32_t threads)
{
    Stop();
    m_threads = threads > 0 ? threads : std::max(1U, std::thread::hardware_concurrency());
}

void PullHelpers::Stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_work.notify_all();
    for (std::thread& helper : m_helpers) {
        helper.join();
    }
    m_helpers.clear();
    m_stopping = false;
}

void PullHelpers::Share(std::size_t count, const std::function<void(std::size_t)>& part)
{
    try {
        while (m_helpers.size() + 1 < m_threads) {
            m_helpers.emplace_back([this] { Help(); });
        }
    } catch (const std::system_error&) {
        // No more threads are to be had; those that are do.
        m_threads = static_cast<std::uint32_t>(m_helpers.size()) + 1;
    }
    std::unique_lock lock(m_mutex);
    m_part = &part;
    m_count = count;
    m_next = 0;
    m_left = count;
    m_failure = nullptr;
    m_work.notify_all();
    t_sharing = true;
    Take(lock);
    t_sharing = false;
    m_done.wait(lock, [this] { return m_left == 0; });
    if (m_failure) {
        std::rethrow_exception(std::exchange(m_failure, nullptr));
    }
}

void PullHelpers::Help()
{
    t_sharing = true;
    std::unique_lock lock(m_mutex);
    while (true) {
        m_work.wait(lock, [this] { return m_stopping || m_next < m_count; });
        if (m_stopping) {
            return;
        }
        Take(lock);
    }
}

void PullHelpers::Take(std::unique_lock<std::mutex>& lock)
{
    while (m_next < m_count) {
        const std::size_t taken = m_next++;
        std::exception_ptr failure;
        lock.unlock();
        try {
            (*m_part)(taken);
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
        if (failure) {
            m_failure = failure;
        }
        if (--m_left == 0) {
            m_done.notify_one();
        }
    }
}

} // namespace velmora::soundlayer
