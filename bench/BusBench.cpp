#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"

#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

namespace velmora::core {
namespace {

class NoPendingEvents : public PendingEvents {
public:
    void Run() override {}
};

/// One message past `state.range(0)` endpoints: record, delivery and all.
void SendMessage(benchmark::State& state)
{
    ClassIdCounter ids;
    NoPendingEvents pendingEvents;
    const auto bus = std::make_shared<MsgSenderClass>(ids, pendingEvents);
    std::int64_t received = 0;
    for (std::int32_t i = 0; i < state.range(0); ++i) {
        bus->Add_MsgHandlerOBJ(100 - i,
                               std::make_shared<MsgHandlerClass>(
                                   ids, [&received](std::int32_t, std::int32_t, MsgParametersClass&) { ++received; }));
    }
    for ([[maybe_unused]] auto _ : state) {
        MsgParametersClass params;
        params.ChannelID = 3;
        params.Value = 80;
        bus->SendMsg(0, Msg_Channel_SetVolume, params);
    }
    state.counters["received"] = static_cast<double>(received) / static_cast<double>(state.iterations());
}
BENCHMARK(SendMessage)->Arg(1)->Arg(20)->Arg(80);

} // namespace
} // namespace velmora::core
