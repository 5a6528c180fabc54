#include "soundlayer/internal/effects/Compressor.h"
#include "soundlayer/internal/effects/Distortion.h"
#include "soundlayer/internal/effects/Echo.h"
#include "soundlayer/internal/effects/Effect.h"
#include "soundlayer/internal/effects/ModulatedDelay.h"
#include "soundlayer/internal/effects/ParametricEq.h"
#include "soundlayer/internal/effects/Reverb.h"
#include "soundlayer/soundlayer.h"

namespace velmora::soundlayer {

std::unique_ptr<Effect> MakeEffect(std::uint32_t type, std::uint32_t rate)
{
    switch (type) {
    case BASS_FX_DX8_CHORUS:
        return std::make_unique<Chorus>(rate);
    case BASS_FX_DX8_COMPRESSOR:
        return std::make_unique<Compressor>(rate);
    case BASS_FX_DX8_DISTORTION:
        return std::make_unique<Distortion>(rate);
    case BASS_FX_DX8_ECHO:
        return std::make_unique<Echo>(rate);
    case BASS_FX_DX8_FLANGER:
        return std::make_unique<Flanger>(rate);
    case BASS_FX_DX8_PARAMEQ:
        return std::make_unique<ParametricEq>(rate);
    case BASS_FX_DX8_REVERB:
        return std::make_unique<Reverb>(rate);
    default:
        return nullptr;
    }
}

} // namespace velmora::soundlayer
