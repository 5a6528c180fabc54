#pragma once

#include "core/Files.h"

#include <sys/types.h>

namespace velmora::core {

/// The kind of drive that a device number of `stat` stands for, by the system's tables of mounts and devices. A device
/// that is not found there is fixed.
DriveKind KindOfDevice(dev_t device);

} // namespace velmora::core
