#pragma once

#include "controls/StripView.h"
#include "core/Ports.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace velmora::controls {

/// The two meters of a strip: the channel's output while playing, the input while its channel is being recorded. A
/// meter that does not run stands at 0.
class StripMeters {
public:
    /// The streams to be read at each tick; 0 for none.
    using Stream = std::function<std::uint32_t()>;

    /// `view` outlives this.
    StripMeters(core::Timers& timers, StripView& view, const Stream& output, const Stream& input);

    void RunOutput(bool run);
    void RunInput(bool run);

private:
    std::unique_ptr<core::Timer> m_output;
    std::unique_ptr<core::Timer> m_input;
    StripView& m_view;
};

} // namespace velmora::controls
