#include "soundlayer/internal/Codecs.h"
#include "soundlayer/soundlayer.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>

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

/// By its full path: a search would go by the library that calls, and that may be a checker which stands in between.
std::string BesideThisLibrary(const char* name)
{
    Dl_info self{};
    const bool found = dladdr(reinterpret_cast<const void*>(&TheHold), &self) != 0;
    const std::string path = found ? self.dli_fname : "";
    return path.substr(0, path.find_last_of('/') + 1) + name;
}

const Codecs* Load()
{
    {
        Hold& hold = TheHold();
        std::unique_lock lock(hold.mutex);
        hold.changed.wait_for(lock, kLongestHold, [&hold] { return !hold.held; });
    }
    // Never unloaded: files may be open to the end.
    void* library = dlopen(BesideThisLibrary("libvelmora_codecs.so").c_str(), RTLD_NOW | RTLD_LOCAL);
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
