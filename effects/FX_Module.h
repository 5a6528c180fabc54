#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// The one description of the eight effects: their names, parameters, and their way onto a stream. An effect is known
/// by its index everywhere and by its name in saved texts. Interface thread only.
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

/// The values of an effect's parameters as the sound layer takes them: one slot each, in the order of the parameters. A
/// slot holds the bits of a float or of a whole number; a boolean is 0 or -1. The longest effect has as many as there
/// are slots.
using FX_Block = std::array<std::uint32_t, 8>;

/// Fills the slots of the effect from its parameter text. What the text lacks, or what does not fit, has its default;
/// limits are the sound layer's.
void FX_GenerateStruct(FX_Block& block, std::int32_t index, std::string_view xml);

/// Puts an effect on a stream and returns a handle that only the operations below can read, with the same index; 0 if
/// there is no such stream or effect. The lower priority runs first.
std::uint32_t FX_AddToStream(std::uint32_t stream, std::int32_t index, std::int32_t priority);
void FX_RemoveFromStream(std::uint32_t stream, std::uint32_t fxHandle, std::int32_t index);
/// An effect on a stream and its priority there.
struct FX_Place {
    std::uint32_t fxHandle = 0;
    std::int32_t index = -1;
    std::int32_t priority = 0;
};
/// Gives effects that sound on a stream other priorities, all at once; they keep their tails.
void FX_SetPriorities(std::uint32_t stream, std::span<const FX_Place> places);
void FX_SetParameters(std::uint32_t fxHandle, std::int32_t index, const FX_Block& block);

} // namespace velmora::effects
