#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The one form of an effect's parameter text inside the program.
namespace velmora::effects {

struct EffectText {
    /// What `FX_GetIndexByName` makes of the text's name.
    std::int32_t fxType = -1;
    std::string text;
};

/// Brings a parameter text into its one form: no line ends, no header, no blanks between tags. The text will stand
/// inside those of chain, channel and project, which search it by element names. So a text that holds more than
/// parameters of its effect (other elements, nested or unclosed ones) is written anew from the parameters found.
/// False for a text whose master tag is not an effect's.
bool ReadEffectText(std::string_view xml, EffectText& effect);

} // namespace velmora::effects
