#include "soundlayer/internal/Codecs.h"
#include "soundlayer/soundlayer.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

#include <dlfcn.h>

namespace velmora::soundlayer {

namespace {

constexpr std::chrono::milliseconds kLongestHold{1000};

struct Hold {
    std::mutex mutex;
    std::condition_variable changed;
    bool held = false;
};

Hold& TheHold()
{
    static Hold hold;
    return hold;
}

const Codecs* Load()
{
    {
        Hold& hold = TheHold();
        std::unique_lock lock(hold.mutex);
        hold.changed.wait_for(lock, kLongestHold, [&hold] { return !hold.held; });
    }
    // Found beside this library, and never unloaded: files may be open to the end.
    void* library = dlopen("libvelmora_codecs.so", RTLD_NOW | RTLD_LOCAL);
    void* entry = library != nullptr ? dlsym(library, kCodecsEntry) : nullptr;
    return entry != nullptr ? reinterpret_cast<const Codecs* (*)()>(entry)() : nullptr;
}

} // namespace

const Codecs* GetCodecs()
{
    static const Codecs* const codecs = Load();
    return codecs;
}

} // namespace velmora::soundlayer

void Sound_HoldCodecs(int hold)
{
    auto& held = velmora::soundlayer::TheHold();
    {
        const std::lock_guard lock(held.mutex);
        held.held = hold != 0;
    }
    held.changed.notify_all();
}
