#include "effects/FX_Module.h"

#include "core/TextUtilities.h"
#include "effects/FXwrp_GraphicEQ_Class.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <map>
#include <tuple>
#include <vector>

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

/// Stands in place of a type of the sound layer: an effect that is made of several.
constexpr std::uint32_t kComposite = ~std::uint32_t{0};

struct Effect {
    std::string_view name;
    std::uint32_t bassType;
    std::span<const FX_Parameter> parameters;
};

constexpr std::array<Effect, kEffectCount> kEffects{{
    {"Chorus", BASS_FX_DX8_CHORUS, kChorus},
    {"Compressor", BASS_FX_DX8_COMPRESSOR, kCompressor},
    {"Distortion", BASS_FX_DX8_DISTORTION, kDistortion},
    {"Echo", BASS_FX_DX8_ECHO, kEcho},
    {"Flanger", BASS_FX_DX8_FLANGER, kFlanger},
    {"Graphic EQ", kComposite, kGraphicEQ},
    {"Parametric EQ", BASS_FX_DX8_PARAMEQ, kParametricEQ},
    {"Reverb", BASS_FX_DX8_REVERB, kReverb},
}};

static_assert(std::ranges::all_of(kEffects, [](const Effect& effect) {
    return effect.parameters.size() <= std::tuple_size_v<FX_Block>;
}));

const Effect* Find(std::int32_t index)
{
    return index >= 0 && index < kEffectCount ? &kEffects[static_cast<std::size_t>(index)] : nullptr;
}

bool IsComposite(std::int32_t index)
{
    const Effect* effect = Find(index);
    return effect && effect->bassType == kComposite;
}

/// The handle of the last Graphic EQ; it never goes back.
std::uint32_t FX_GraphicEQ_Counter = 0;

std::map<std::uint32_t, FXwrp_GraphicEQ_Class>& FX_GraphicEQ_Instances()
{
    static std::map<std::uint32_t, FXwrp_GraphicEQ_Class> instances;
    return instances;
}

FXwrp_GraphicEQ_Class* FindGraphicEQ(std::uint32_t handle)
{
    const auto found = FX_GraphicEQ_Instances().find(handle);
    return found == FX_GraphicEQ_Instances().end() ? nullptr : &found->second;
}

template <class Value>
Value Read(persistence::UTIL_XMLRead& reader, std::string_view field, Value initial)
{
    Value value = initial;
    reader.ReadElement(field, value, initial);
    return value;
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

void FX_GenerateStruct(FX_Block& block, std::int32_t index, std::string_view xml)
{
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(xml);
    std::size_t slot = 0;
    for (const FX_Parameter& parameter : FX_ParameterDefinitions(index)) {
        const float initial = parameter.defaultValue;
        switch (parameter.stored) {
        case FX_ValueType::Float:
            block[slot++] = std::bit_cast<std::uint32_t>(Read(reader, parameter.field, initial));
            break;
        case FX_ValueType::Int:
            block[slot++] =
                static_cast<std::uint32_t>(Read(reader, parameter.field, static_cast<std::int32_t>(initial)));
            break;
        case FX_ValueType::Bool:
            block[slot++] = Read(reader, parameter.field, initial != 0) ? ~std::uint32_t{0} : 0;
            break;
        }
    }
}

std::uint32_t FX_AddToStream(std::uint32_t stream, std::int32_t index, std::int32_t priority)
{
    if (IsComposite(index)) {
        FX_GraphicEQ_Instances()[++FX_GraphicEQ_Counter].StartFX(stream, priority);
        return FX_GraphicEQ_Counter;
    }
    const Effect* effect = Find(index);
    return effect ? BASS_ChannelSetFX(stream, effect->bassType, priority) : 0;
}

void FX_RemoveFromStream(std::uint32_t stream, std::uint32_t fxHandle, std::int32_t index)
{
    if (IsComposite(index)) {
        FX_GraphicEQ_Instances().erase(fxHandle);
    } else if (Find(index)) {
        BASS_ChannelRemoveFX(stream, fxHandle);
    }
}

void FX_SetPriorities(std::uint32_t stream, std::span<const FX_Place> places)
{
    std::vector<HFX> handles;
    std::vector<std::int32_t> priorities;
    for (const FX_Place& place : places) {
        if (!IsComposite(place.index)) {
            handles.push_back(place.fxHandle);
        } else if (FXwrp_GraphicEQ_Class* equalizer = FindGraphicEQ(place.fxHandle)) {
            equalizer->SetPriority(place.priority, handles);
        }
        priorities.resize(handles.size(), place.priority);
    }
    Sound_FXSetPriorities(stream, handles.data(), priorities.data(), static_cast<std::uint32_t>(handles.size()));
}

void FX_SetParameters(std::uint32_t fxHandle, std::int32_t index, const FX_Block& block)
{
    if (!IsComposite(index)) {
        BASS_FXSetParameters(fxHandle, block.data());
    } else if (FXwrp_GraphicEQ_Class* equalizer = FindGraphicEQ(fxHandle)) {
        equalizer->SetFX_Parameters(block);
    }
}

} // namespace velmora::effects
