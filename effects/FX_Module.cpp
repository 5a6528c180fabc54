#include "effects/FX_Module.h"

#include "core/TextUtilities.h"
#include "persistence/UTIL_XMLWrite.h"

#include <array>

namespace velmora::effects {
namespace {

constexpr auto kFloat = FX_ValueType::Float;
constexpr auto kInt = FX_ValueType::Int;
constexpr auto kBool = FX_ValueType::Bool;

// clang-format off
constexpr std::array kChorus{
    FX_Parameter{kFloat, kInt, "fWetDryMix", "Wet-Dry Mix",   0, 100, 50, "%",  true, 1,    10},
    FX_Parameter{kFloat, kInt, "fDepth",     "Depth",         0, 100, 25, "%",  true, 1,    10},
    FX_Parameter{kFloat, kInt, "fFeedback",  "FeedBack",    -99,  99,  0, "%",  true, 1,    20},
    FX_Parameter{kFloat, kInt, "fFrecuency", "Frecuency",     0,  10,  0, "Hz", true, 1,    3},
    FX_Parameter{kInt,   kInt, "fWaveform",  "Waveform",      0,   1,  0, "",   true, 0.2F, 0.5F},
    FX_Parameter{kFloat, kInt, "fDelay",     "Delay",         0,  20,  0, "ms", true, 1,    5},
    FX_Parameter{kInt,   kInt, "fPhase",     "Phase",         0,   4,  3, "",   true, 1,    2},
};

constexpr std::array kCompressor{
    FX_Parameter{kFloat, kInt,   "fGain",      "Output Gain", -60,     60,   0,    "dB", true,  1,    6},
    FX_Parameter{kFloat, kFloat, "fAttack",    "Attack",      0.01F,  500,   0.2F, "ms", true,  0.1F, 10},
    FX_Parameter{kFloat, kInt,   "fRelease",   "Release",      50,   3000,  50,    "ms", true,  1,    40},
    FX_Parameter{kFloat, kInt,   "fThreshold", "Threshold",   -60,      0, -10,    "dB", true,  1,    6},
    FX_Parameter{kFloat, kInt,   "fRatio",     "Ratio",         1,    100,  10,    ":1", true,  1,    10},
    FX_Parameter{kFloat, kInt,   "fPreDelay",  "PreDelay",      0,      4,   0,    "ms", false, 1,    2},
};

constexpr std::array kDistortion{
    FX_Parameter{kFloat, kInt, "fGain",                  "Gain",            -60,    0,    0, "dB", true,  1, 6},
    FX_Parameter{kFloat, kInt, "fEdge",                  "Edge",              0,  100,   50, "%",  true,  1, 20},
    FX_Parameter{kFloat, kInt, "fPostEQCenterFrecuency", "EQ Center Freq.", 100, 8000, 4000, "Hz", true, 10, 100},
    FX_Parameter{kFloat, kInt, "fPostEQBandwidth",       "EQ Bandwidth",    100, 4000,  100, "Hz", true, 10, 100},
    FX_Parameter{kFloat, kInt, "fPreLowpassCutoff",      "LowPass Freq.",   100, 8000, 4000, "Hz", true, 10, 100},
};

constexpr std::array kEcho{
    FX_Parameter{kFloat, kInt,  "fWetDryMix",  "Wet-Dry Mix", 0,  100,  50, "%",  true,  1, 10},
    FX_Parameter{kFloat, kInt,  "fFeedback",   "Feedback",    0,  100,   0, "%",  true,  1, 10},
    FX_Parameter{kFloat, kInt,  "fLeftDelay",  "Left delay",  1, 2000, 350, "ms", true, 10, 40},
    FX_Parameter{kFloat, kInt,  "fRightDelay", "Right delay", 1, 2000, 350, "ms", true, 10, 40},
    FX_Parameter{kBool,  kBool, "lPanDelay",   "Pan swap",    0,    0,   0, "",   true,  1, 20},
};

constexpr std::array kFlanger{
    FX_Parameter{kFloat, kInt, "fWetDryMix", "Wet-Dry Mix",   0, 100, 50, "%",  true, 1,    10},
    FX_Parameter{kFloat, kInt, "fDepth",     "Depth",         0, 100, 25, "%",  true, 1,    10},
    FX_Parameter{kFloat, kInt, "fFeedback",  "FeedBack",    -99,  99,  0, "%",  true, 1,    20},
    FX_Parameter{kFloat, kInt, "fFrecuency", "Frecuency",     0,  10,  0, "Hz", true, 1,    3},
    FX_Parameter{kInt,   kInt, "fWaveform",  "Waveform",      0,   1,  0, "",   true, 0.2F, 0.5F},
    FX_Parameter{kFloat, kInt, "fDelay",     "Delay",         0,   4,  0, "ms", true, 1,    2},
    FX_Parameter{kInt,   kInt, "fPhase",     "Phase",         0,   4,  2, "",   true, 1,    2},
};

constexpr std::array kGraphicEQ{
    FX_Parameter{kFloat, kInt, "freq1", "80 Hz.",    -15, 15, 0, "dB", true,  1, 3},
    FX_Parameter{kFloat, kInt, "freq2", "200 Hz.",   -15, 15, 0, "dB", true,  1, 3},
    FX_Parameter{kFloat, kInt, "freq3", "600 Hz.",   -15, 15, 0, "dB", true,  1, 3},
    FX_Parameter{kFloat, kInt, "freq4", "2000 Hz.",  -15, 15, 0, "dB", true,  1, 3},
    FX_Parameter{kFloat, kInt, "freq5", "4600 Hz.",  -15, 15, 0, "dB", true,  1, 3},
    FX_Parameter{kFloat, kInt, "freq6", "8200 Hz.",  -15, 15, 0, "dB", true,  1, 3},
    FX_Parameter{kFloat, kInt, "freq7", "16000 Hz.", -15, 15, 0, "dB", true,  1, 3},
    FX_Parameter{kFloat, kInt, "freq8", "--   Hz.",  -15, 15, 0, "dB", false, 1, 3},
};

constexpr std::array kParametricEQ{
    FX_Parameter{kFloat, kInt, "fCenter",    "Center Freq.", 80, 16000, 1000, "Hz",        true, 2, 100},
    FX_Parameter{kFloat, kInt, "fBandwidth", "Bandwidth",     1,    36,   12, "semitones", true, 1, 4},
    FX_Parameter{kFloat, kInt, "fGain",      "Gain",        -15,    15,    3, "dB",        true, 1, 3},
};

constexpr std::array kReverb{
    FX_Parameter{kFloat, kInt,   "finGain",          "In Gain",         -96,     0,        0,      "dB", true,  1,    6},
    FX_Parameter{kFloat, kInt,   "fReverbMix",       "Mix",             -96,     0,      -10,      "dB", true,  1,    6},
    FX_Parameter{kFloat, kInt,   "fReverbTime",      "Reverb time",       1,  3000,     1000,      "ms", true, 10,    100},
    FX_Parameter{kFloat, kFloat, "fHighFreqRTRatio", "High Freq Ratio", 0.001F,  0.999F,   0.001F, "",   true,  0.01F, 0.1F},
};
// clang-format on

struct Effect {
    std::string_view name;
    std::span<const FX_Parameter> parameters;
};

constexpr std::array<Effect, kEffectCount> kEffects{{
    {"Chorus", kChorus},
    {"Compressor", kCompressor},
    {"Distortion", kDistortion},
    {"Echo", kEcho},
    {"Flanger", kFlanger},
    {"Graphic EQ", kGraphicEQ},
    {"Parametric EQ", kParametricEQ},
    {"Reverb", kReverb},
}};

const Effect* Find(std::int32_t index)
{
    return index >= 0 && index < kEffectCount ? &kEffects[static_cast<std::size_t>(index)] : nullptr;
}

} // namespace

std::span<const FX_Parameter> FX_ParameterDefinitions(std::int32_t index)
{
    const Effect* effect = Find(index);
    return effect ? effect->parameters : std::span<const FX_Parameter>{};
}

std::string_view FX_GetName(std::int32_t index)
{
    const Effect* effect = Find(index);
    return effect ? effect->name : "";
}

std::int32_t FX_GetIndexByName(std::string_view name)
{
    const std::string wanted = core::LowerCase(core::Trim(name));
    // The last round is that of the empty name.
    for (std::int32_t index = 0; index <= kEffectCount; ++index) {
        if (wanted == core::LowerCase(FX_GetName(index))) {
            return index;
        }
    }
    return -1;
}

std::string FX_GetDefaultXML(std::int32_t index)
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("Fx_Data_Class");
    writer.Add_Element("FxType", FX_GetName(index));
    for (const FX_Parameter& parameter : FX_ParameterDefinitions(index)) {
        switch (parameter.stored) {
        case FX_ValueType::Float:
            writer.Add_Element(parameter.field, parameter.defaultValue);
            break;
        case FX_ValueType::Int:
            writer.Add_Element(parameter.field, static_cast<std::int32_t>(parameter.defaultValue));
            break;
        case FX_ValueType::Bool:
            writer.Add_Element(parameter.field, parameter.defaultValue != 0);
            break;
        }
    }
    return writer.GetXMLString();
}

} // namespace velmora::effects
