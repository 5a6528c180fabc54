#pragma once

#include <memory>
#include <string>
#include <vector>

struct cubeb;
struct cubeb_stream;

namespace velmora::soundlayer {

struct CubebDeleter {
    void operator()(cubeb* context) const;
    void operator()(cubeb_stream* stream) const;
};
/// A connection to the sound server or hardware, with a thread of its own.
using CubebContext = std::unique_ptr<cubeb, CubebDeleter>;
using CubebStream = std::unique_ptr<cubeb_stream, CubebDeleter>;

/// An output that can be opened. `handle` is valid while the context lives, `id` from run to run.
struct SystemOutput {
    const void* handle = nullptr;
    std::string id;
    std::string name;
    bool isDefault = false;
};

/// Connects through `backend`, or through the first that works when it is empty; null when none does. May wait long for
/// a server that hangs.
CubebContext OpenCubeb(const std::string& backend);
std::string BackendOf(cubeb& context);
/// What can be played on, in the library's order; nothing where there is no hardware.
std::vector<SystemOutput> ListOutputs(cubeb& context);

} // namespace velmora::soundlayer
