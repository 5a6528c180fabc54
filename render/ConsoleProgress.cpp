#include "render/ConsoleProgress.h"

#include <atomic>
#include <csignal>
#include <cstdio>

namespace velmora::render {

namespace {

std::atomic<bool> g_interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set in a signal handler");

void NoteInterrupt(int)
{
    g_interrupted = true;
}

} // namespace

void CatchInterrupts()
{
    struct sigaction action = {};
    action.sa_handler = NoteInterrupt;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(signal, &action, nullptr);
    }
}

bool Interrupted()
{
    return g_interrupted;
}

ConsoleProgress::ConsoleProgress(bool visible)
    : m_visible(visible)
{
}

ConsoleProgress::~ConsoleProgress()
{
    Clear();
}

bool ConsoleProgress::Update(std::int64_t positionMS, std::int64_t totalMS, std::int32_t /*meter*/)
{
    const auto now = std::chrono::steady_clock::now();
    if (m_visible && now >= m_next) {
        m_next = now + std::chrono::milliseconds(100);
        const auto percent = totalMS > 0 ? 100 * positionMS / totalMS : 100;
        std::fprintf(stderr, "\r%3d %%  %d:%02d", static_cast<int>(percent), static_cast<int>(positionMS / 60000),
                     static_cast<int>(positionMS / 1000 % 60));
        m_drawn = true;
    }
    return !Interrupted();
}

void ConsoleProgress::Clear()
{
    if (m_drawn) {
        std::fputs("\r\033[K", stderr);
        m_drawn = false;
    }
}

} // namespace velmora::render
