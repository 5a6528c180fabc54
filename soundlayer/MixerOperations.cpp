#include "soundlayer/internal/Library.h"
#include "soundlayer/internal/MixerStream.h"
#include "soundlayer/internal/Operation.h"
#include "soundlayer/soundlayer.h"

#include <memory>

using namespace velmora::soundlayer;

namespace {

/// Whether `mixer` is `stream` itself or runs into it, so that adding it there would close a circle.
bool RunsInto(const Stream& mixer, const Stream& stream)
{
    for (const Stream* at = &mixer; at; at = at->parent) {
        if (at == &stream) {
            return true;
        }
    }
    return false;
}

} // namespace

HSTREAM BASS_Mixer_StreamCreate(uint32_t freq, uint32_t chans, uint32_t flags)
{
    return Operation(HSTREAM{0}, [&] {
        if (freq == 0 || chans != 2) {
            return Fail(SOUND_ERROR_PARAM, HSTREAM{0});
        }
        return Library::Get().Register(std::make_shared<MixerStream>(freq, flags, &Library::Get().pullHelpers));
    });
}

int BASS_Mixer_StreamAddChannel(HSTREAM mixer, HSTREAM channel, uint32_t flags)
{
    return BASS_Mixer_StreamAddChannelEx(mixer, channel, flags, 0, 0);
}

int BASS_Mixer_StreamAddChannelEx(HSTREAM mixer, HSTREAM channel, uint32_t, uint64_t start, uint64_t length)
{
    return Operation(0, [&] {
        Library& library = Library::Get();
        MixerStream* to = library.FindMixer(mixer);
        auto source = library.ShareStream(channel);
        if (!to || !source) {
            return 0;
        }
        if (!source->IsDecoding()) {
            return Fail(SOUND_ERROR_DECODE, 0);
        }
        if (source->parent) {
            return Fail(BASS_ERROR_ALREADY, 0);
        }
        if (RunsInto(*to, *source)) {
            return Fail(SOUND_ERROR_PARAM, 0);
        }
        constexpr std::uint64_t frameBytes = 2 * sizeof(std::int16_t);
        to->AddSource(library.edits, std::move(source), start / frameBytes, length / frameBytes);
        return 1;
    });
}

int BASS_Mixer_ChannelRemove(HSTREAM channel)
{
    return Operation(0, [&] {
        Library& library = Library::Get();
        Stream* source = library.FindStream(channel);
        if (!source) {
            return 0;
        }
        if (!source->parent) {
            return Fail(SOUND_ERROR_PARAM, 0);
        }
        library.Unlink(*source);
        library.edits.Flush();
        return 1;
    });
}

void Sound_BeginEdit(void)
{
    Operation(0, [] {
        Library::Get().edits.Begin();
        return 0;
    });
}

void Sound_EndEdit(void)
{
    Operation(0, [] {
        Library::Get().edits.End();
        return 0;
    });
}

void Sound_Retire(SOUND_RELEASEPROC* release, SOUND_USER user)
{
    Operation(0, [&] {
        // The edits keep it alive; what it points at is not looked at.
        const void* const nothing = nullptr;
        Library::Get().edits.Retire(
            std::shared_ptr<const void>(nothing, [release, user](const void*) { release(user); }));
        return 0;
    });
}
