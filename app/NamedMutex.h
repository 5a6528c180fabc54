#pragma once

#include <string_view>

namespace velmora::app {

/// A name that every running program holds as long as it lives, so that others, an installer for one, can tell that it
/// runs: `flock -n FILE true` fails then, with a file of this name in the user's runtime folder. Any number hold it
/// together, and nothing here asks for it. Without such a folder there is none.
class NamedMutex {
public:
    explicit NamedMutex(std::string_view name);
    ~NamedMutex();
    NamedMutex(const NamedMutex&) = delete;
    NamedMutex& operator=(const NamedMutex&) = delete;

private:
    int m_file = -1;
};

} // namespace velmora::app
