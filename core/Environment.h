#pragma once

#include "core/AppPaths_Class.h"
#include "core/ClassIds.h"
#include "core/Configuration.h"
#include "core/Files.h"
#include "core/LRU_Class.h"
#include "core/Ports.h"

namespace velmora::core {

/// What every object of the program may reach: the outside through its ports, the disk, the settings, and the counter
/// of ids. Made once at the program's start; outlives every project.
struct Environment {
    Environment(const Ports& thePorts, Files& theFiles);

    Ports ports;
    Files& files;
    ClassIdCounter ids;
    AppPaths_Class paths;
    Configuration config;
    LRU_Class recent;
};

} // namespace velmora::core
