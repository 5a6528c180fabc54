#include "controls/StripMeters.h"

#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"

#include <chrono>

namespace velmora::controls {
namespace {

constexpr std::chrono::milliseconds kInterval{40};

std::int32_t LevelOf(std::uint32_t stream, bool afterFader)
{
    if (stream == 0) {
        return 0;
    }
    std::int32_t left = 0;
    std::int32_t right = 0;
    GetRMSLevel(stream, &left, &right);
    float volume = 1;
    if (afterFader) {
        BASS_ChannelGetAttribute(stream, BASS_ATTRIB_VOL, &volume);
    }
    return MeterValue(left, right, volume);
}

} // namespace

StripMeters::StripMeters(core::Timers& timers, StripView& view, const Stream& output, const Stream& input)
    : m_output(timers.Create(kInterval, false, [&view, output] { view.ShowLevel(LevelOf(output(), true)); }))
    , m_input(timers.Create(kInterval, false,
                            [&view, input] {
                                // What is not heard is recorded all the same.
                                view.ShowInputLevel(LevelOf(input(), false));
                            }))
    , m_view(view)
{
}

void StripMeters::RunOutput(bool run)
{
    if (run) {
        m_output->Start();
    } else {
        m_output->Stop();
        m_view.ShowLevel(0);
    }
}

void StripMeters::RunInput(bool run)
{
    if (run) {
        m_input->Start();
    } else {
        m_input->Stop();
        m_view.ShowInputLevel(0);
    }
}

} // namespace velmora::controls
