#include "controls/StripValues.h"

#include "core/MsgIds.h"
#include "core/TextUtilities.h"
#include "core/Units.h"
#include "project/Channel_Class.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace velmora::controls {
namespace {

using project::Channel_Class;

constexpr const char* kCustom = "(Custom)";
constexpr std::int32_t kMeterRange = 40;
/// Below this on both sides there is nothing to see.
constexpr std::int32_t kGate = 50;

constexpr std::array kInfos{
    StripValueInfo{StripValue::Volume, core::Msg_Channel_SetVolume, 0, 100, 80, "Volume:", false,
                   [](const Channel_Class& channel) -> double { return channel.Volume; }},
    StripValueInfo{StripValue::Pan, core::Msg_Channel_SetPan, -100, 100, 0, "Pan:", true,
                   [](const Channel_Class& channel) -> double { return channel.Pan; }},
    StripValueInfo{StripValue::Pitch, core::Msg_Channel_SetPitch, -100, 100, 0, "Pitch:", true,
                   [](const Channel_Class& channel) -> double { return channel.Pitch; }},
    StripValueInfo{StripValue::VoiceRemoval, core::Msg_Channel_SetVoiceRemoval, 0, 100, 0, "Voice removal:", false,
                   [](const Channel_Class& channel) -> double { return channel.Voice_Removal; }},
    StripValueInfo{StripValue::Gain, core::Msg_Channel_SetGain, 0, 12, 0, "Gain:", false,
                   [](const Channel_Class& channel) { return channel.Gain; }},
};

} // namespace

const StripValueInfo& InfoOf(StripValue value)
{
    return kInfos.at(static_cast<std::size_t>(value));
}

std::span<const StripValue> ValuesOf(StripKind kind)
{
    static constexpr std::array kMusic{StripValue::Volume, StripValue::Pan, StripValue::Pitch,
                                       StripValue::VoiceRemoval};
    static constexpr std::array kVoice{StripValue::Volume, StripValue::Pan, StripValue::Gain};
    return kind == StripKind::Music ? std::span<const StripValue>(kMusic) : std::span<const StripValue>(kVoice);
}

std::string ValueText(StripValue value, double number)
{
    const std::int32_t whole = core::RoundToInt(number);
    const char* sign = InfoOf(value).centred && whole >= 0 ? "+" : "";
    return sign + std::to_string(whole) + (value == StripValue::Gain ? "dB" : "%");
}

std::int32_t MsgIDOf(StripSwitch which)
{
    switch (which) {
    case StripSwitch::Mute:
        return core::Msg_Channel_SetMute;
    case StripSwitch::Solo:
        return core::Msg_Channel_SetSolo;
    case StripSwitch::Live:
        break;
    }
    return core::Msg_Channel_SetLive;
}

bool StateOf(const project::Channel_Class& channel, StripSwitch which)
{
    switch (which) {
    case StripSwitch::Mute:
        return channel.Mute;
    case StripSwitch::Solo:
        return channel.Solo;
    case StripSwitch::Live:
        break;
    }
    return channel.LiveStatus;
}

std::string ProperCase(std::string_view text)
{
    std::string proper = core::LowerCase(text);
    bool starts = true;
    for (char& letter : proper) {
        if (starts && letter >= 'a' && letter <= 'z') {
            letter = static_cast<char>(letter - 'a' + 'A');
        }
        starts = std::isspace(static_cast<unsigned char>(letter)) != 0;
    }
    return proper;
}

std::string ShownPackName(std::string_view name)
{
    return name.empty() || core::LowerCase(name) == core::LowerCase(kCustom) ? kCustom : ProperCase(name);
}

std::int32_t MeterValue(std::int32_t left, std::int32_t right, double volume)
{
    if (left < kGate && right < kGate) {
        return 0;
    }
    const double level = core::PeakPairToDB(core::RoundToInt(left * volume), core::RoundToInt(right * volume));
    return std::clamp(core::RoundToInt(level) + kMeterRange, 0, kMeterRange);
}

} // namespace velmora::controls
