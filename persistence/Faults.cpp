#include "persistence/Faults.h"

#include <cstdio>
#include <utility>

namespace velmora::persistence {
namespace {

FaultHandler& Handler()
{
    static FaultHandler handler;
    return handler;
}

} // namespace

FaultHandler SetFaultHandler(FaultHandler handler)
{
    return std::exchange(Handler(), std::move(handler));
}

void ReportFault(std::string_view text)
{
    if (Handler()) {
        Handler()(text);
        return;
    }
    std::fprintf(stderr, "%.*s\n", static_cast<int>(text.size()), text.data());
}

} // namespace velmora::persistence
