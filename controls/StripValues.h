#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace velmora::project {
class Channel_Class;
}

/// What a strip shows of a channel, and how it reads.
namespace velmora::controls {

enum class StripKind { Music, Voice };
enum class StripValue { Volume, Pan, Pitch, VoiceRemoval, Gain };
enum class StripSwitch { Mute, Solo, Live };

/// A value that a slider sets.
struct StripValueInfo {
    StripValue value;
    std::int32_t msgID; ///< what changes it
    double minimum;
    double maximum;
    double standard; ///< of a new channel
    const char* caption;
    bool centred; ///< the range runs from -n to n
    double (*of)(const project::Channel_Class&);
};

const StripValueInfo& InfoOf(StripValue value);
/// Volume, then those that have a row of their own, from above.
std::span<const StripValue> ValuesOf(StripKind kind);
/// "+0%", "5dB".
std::string ValueText(StripValue value, double number);

std::int32_t MsgIDOf(StripSwitch which);
bool StateOf(const project::Channel_Class& channel, StripSwitch which);

/// Each word with a capital, the rest in small letters.
std::string ProperCase(std::string_view text);
/// A pack's name as the strip shows it; "(Custom)" without one.
std::string ShownPackName(std::string_view name);

/// Of the meters: the mean of both sides, after the fader, from 0 (-40 dB or less) to 40. Levels are 0..32768; where
/// both are below a gate, the meter stays dark. `volume` is 0..1.
std::int32_t MeterValue(std::int32_t left, std::int32_t right, double volume);

} // namespace velmora::controls
