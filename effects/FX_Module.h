#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// The one description of the eight effects: their names and parameters. An effect is known by its index everywhere and
/// by its name in saved texts.
namespace velmora::effects {

inline constexpr std::int32_t kEffectCount = 8;

/// How a value is saved, and how it is shown.
enum class FX_ValueType { Float, Int, Bool };

/// One parameter of an effect. Fields are the vocabulary of saved projects and packs, so their spelling stays.
struct FX_Parameter {
    FX_ValueType stored;
    /// Int is shown rounded to a whole number, Float with two decimals, Bool as a word.
    FX_ValueType treatAs;
    std::string_view field;
    std::string_view label;
    float min;
    float max;
    /// A boolean is true if this is not 0.
    float defaultValue;
    std::string_view unit;
    /// False keeps the value without a slider.
    bool visible;
    float smallStep;
    float largeStep;
};

/// The parameters of an effect in the order of its parameter block; none for an index outside 0..7.
std::span<const FX_Parameter> FX_ParameterDefinitions(std::int32_t index);

/// "" for an index outside 0..7.
std::string_view FX_GetName(std::int32_t index);

/// The index of a name, without regard to case and to blanks around it; -1 for an unknown one. An empty name is index
/// 8, an effect of no known type.
std::int32_t FX_GetIndexByName(std::string_view name);

/// The parameter text of a newly added effect.
std::string FX_GetDefaultXML(std::int32_t index);

} // namespace velmora::effects
