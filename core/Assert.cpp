#include "core/Assert.h"

#include <cstdio>
#include <cstdlib>

namespace velmora::core {

void AssertionFailed(const char* condition, const char* file, int line)
{
    std::fprintf(stderr, "%s:%d: assertion failed: %s\n", file, line, condition);
    std::abort();
}

} // namespace velmora::core
