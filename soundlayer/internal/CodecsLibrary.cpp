#include "soundlayer/internal/Codecs.h"

#include <dlfcn.h>

namespace velmora::soundlayer {

const Codecs* GetCodecs()
{
    // Found beside this library, and never unloaded: files may be open to the end.
    static const Codecs* const codecs = []() -> const Codecs* {
        void* library = dlopen("libvelmora_codecs.so", RTLD_NOW | RTLD_LOCAL);
        void* entry = library != nullptr ? dlsym(library, kCodecsEntry) : nullptr;
        return entry != nullptr ? reinterpret_cast<const Codecs* (*)()>(entry)() : nullptr;
    }();
    return codecs;
}

} // namespace velmora::soundlayer
