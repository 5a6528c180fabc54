#include "soundlayer/internal/Library.h"
#include "soundlayer/internal/Operation.h"
#include "soundlayer/internal/effects/EffectList.h"
#include "soundlayer/soundlayer.h"

#include <memory>
#include <utility>
#include <vector>

using namespace velmora::soundlayer;

HFX BASS_ChannelSetFX(uint32_t handle, uint32_t type, int32_t priority)
{
    return Operation(HFX{0}, [&] {
        Library& library = Library::Get();
        Stream* stream = library.FindStream(handle);
        if (!stream) {
            return HFX{0};
        }
        auto effect = MakeEffect(type, stream->Rate());
        if (!effect) {
            return Fail(BASS_ERROR_NOTAVAIL, HFX{0});
        }
        auto slot = std::make_shared<EffectSlot>(std::move(effect), handle);
        const HFX fx = library.Register(slot);
        if (fx != 0) {
            stream->AddEffect(library.edits, std::move(slot), priority);
        }
        return fx;
    });
}

int BASS_ChannelRemoveFX(uint32_t handle, HFX fx)
{
    return Operation(0, [&] {
        Library& library = Library::Get();
        Stream* stream = library.FindStream(handle);
        const EffectSlot* slot = stream ? library.FindEffect(fx) : nullptr;
        if (!slot) {
            return 0;
        }
        if (!stream->RemoveEffect(library.edits, *slot)) {
            return Fail(SOUND_ERROR_HANDLE, 0);
        }
        // A stream that never ran it has let go of it by now.
        const auto removed = library.handles.Remove(fx);
        return 1;
    });
}

int BASS_FXSetParameters(HFX fx, const void* block)
{
    return Operation(0, [&] {
        const EffectSlot* slot = Library::Get().FindEffect(fx);
        if (!slot) {
            return 0;
        }
        if (!block) {
            return Fail(SOUND_ERROR_PARAM, 0);
        }
        slot->effect->SetParameters(block);
        return 1;
    });
}

int Sound_FXSetPriorities(uint32_t handle, const HFX* fx, const int32_t* priorities, uint32_t count)
{
    return Operation(0, [&] {
        Library& library = Library::Get();
        Stream* stream = library.FindStream(handle);
        if (!stream) {
            return 0;
        }
        std::vector<std::pair<const EffectSlot*, std::int32_t>> given;
        for (uint32_t i = 0; i < count; ++i) {
            const EffectSlot* slot = library.FindEffect(fx[i]);
            if (!slot) {
                return 0;
            }
            given.emplace_back(slot, priorities[i]);
        }
        stream->ReorderEffects(library.edits, given);
        return 1;
    });
}
