#include "core/RunBeside.h"

#include <chrono>
#include <future>

namespace velmora::core {

bool RunBeside(PendingEvents& events, const std::function<bool()>& work)
{
    constexpr std::chrono::milliseconds kLook{10};
    std::future<bool> done = std::async(std::launch::async, work);
    while (done.wait_for(kLook) != std::future_status::ready) {
        events.Run();
    }
    return done.get();
}

} // namespace velmora::core
