#pragma once

#include "core/Environment.h"
#include "core/PosixFiles.h"
#include "tests/support/FaultyFiles.h"
#include "tests/support/ScriptedPorts.h"
#include "tests/support/TemporaryFolder.h"

#include <memory>

namespace velmora::testing {

/// A whole environment in a fresh temporary folder: scripted ports, a disk that can be told to fail, a path table whose
/// "newprojects", "config", "presets" and "examples" folders exist.
class TestEnvironment {
public:
    TestEnvironment();

    core::Environment& operator*() { return *m_environment; }
    core::Environment* operator->() { return m_environment.get(); }

    /// A path inside the folder, in the internal form.
    std::string Path(std::string_view name) const { return folder.Path(name); }

    TemporaryFolder folder;
    ScriptedPorts ports;
    core::PosixFiles disk;
    FaultyFiles files{disk};

private:
    std::unique_ptr<core::Environment> m_environment;
};

} // namespace velmora::testing
