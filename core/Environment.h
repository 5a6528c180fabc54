#pragma once

#include "core/AppPaths_Class.h"
#include "core/ClassIds.h"
#include "core/Configuration.h"
#include "core/Files.h"
#include "core/LRU_Class.h"
#include "core/Ports.h"
#include "persistence/Faults.h"

namespace velmora::core {

/// What every object of the program may reach: the outside through its ports, the disk, the settings, and the counter
/// of ids. Made once at the program's start; outlives every project.
struct Environment {
    /// Until the end of the environment, faults of the tag language's classes go to its message boxes.
    Environment(const Ports& thePorts, Files& theFiles);
    ~Environment();
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

    /// Reads `config.xml` and `lru.xml` from the "config" folder; what is not there takes its defaults.
    void LoadSettings();
    /// Writes both; false when one could not be written.
    bool SaveSettings();

    Ports ports;
    Files& files;
    ClassIdCounter ids;
    AppPaths_Class paths;
    Configuration config;
    LRU_Class recent;

private:
    persistence::FaultHandler m_earlierFaultHandler;
};

} // namespace velmora::core
