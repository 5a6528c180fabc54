#pragma once

#include <cstdint>
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

enum class Direction { Output, Input };

/// A device that can be opened. `handle` is valid while the context lives, `id` from run to run.
struct SystemDevice {
    const void* handle = nullptr;
    std::string id;
    std::string name;
    /// Hz at which it likes to run.
    std::uint32_t rate = 0;
    bool isDefault = false;
};

/// Connects through `backend`, or through the first that works when it is empty; null when none does. May wait long for
/// a server that hangs.
CubebContext OpenCubeb(const std::string& backend);
std::string BackendOf(cubeb& context);
/// What can be played on or recorded from, in the library's order; nothing where there is no hardware.
std::vector<SystemDevice> ListDevices(cubeb& context, Direction direction);
/// The device of that id, or the first one for an empty id; null when it is not there.
const SystemDevice* FindDevice(const std::vector<SystemDevice>& devices, const std::string& id);

} // namespace velmora::soundlayer
