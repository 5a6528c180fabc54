#include "soundlayer/internal/Library.h"

#include "soundlayer/internal/CaptureStream.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace velmora::soundlayer {

namespace {
thread_local std::int32_t t_error = BASS_OK;
}

Library& Library::Get()
{
    static Library library;
    return library;
}

Library::Library()
{
    // Looking for a device must not bring a sound server up.
    setenv("JACK_NO_START_SERVER", "1", 1);
}

Library::~Library()
{
    FreeEverything();
}

void Library::SetError(std::int32_t code)
{
    t_error = code;
}

std::int32_t Library::Error()
{
    return t_error;
}

Stream* Library::FindStream(std::uint32_t handle) const
{
    return static_cast<Stream*>(Find(handle, Object::Kind::Stream));
}

EncoderSession* Library::FindEncoder(std::uint32_t handle) const
{
    return static_cast<EncoderSession*>(Find(handle, Object::Kind::Encoder));
}

EffectSlot* Library::FindEffect(std::uint32_t handle) const
{
    return static_cast<EffectSlot*>(Find(handle, Object::Kind::Effect));
}

Object* Library::Find(std::uint32_t handle, Object::Kind kind) const
{
    Object* object = handles.Find(handle);
    if (!object || object->ObjectKind() != kind) {
        SetError(SOUND_ERROR_HANDLE);
        return nullptr;
    }
    return object;
}

MixerStream* Library::FindMixer(std::uint32_t handle) const
{
    auto* mixer = dynamic_cast<MixerStream*>(FindStream(handle));
    if (!mixer) {
        SetError(SOUND_ERROR_HANDLE);
    }
    return mixer;
}

std::shared_ptr<Stream> Library::ShareStream(std::uint32_t handle) const
{
    return FindStream(handle) ? std::static_pointer_cast<Stream>(handles.Share(handle)) : nullptr;
}

std::uint32_t Library::Register(std::shared_ptr<Object> object)
{
    const std::uint32_t handle = handles.Add(std::move(object));
    if (handle == 0) {
        SetError(BASS_ERROR_MEM);
    }
    return handle;
}

bool Library::Sounding(const Stream& stream) const
{
    for (const Stream* at = &stream; at; at = at->parent) {
        if (output && output->Playing(*at)) {
            return true;
        }
    }
    return false;
}

void Library::Unlink(Stream& stream)
{
    if (output && output->Playing(stream)) {
        output->StopPlaying(stream);
    } else if (stream.parent) {
        stream.parent->RemoveSource(edits, stream);
    }
}

void Library::FreeStream(std::uint32_t handle)
{
    auto stream = std::static_pointer_cast<Stream>(handles.Share(handle));
    if (!stream) {
        return;
    }
    const EditScope scope(edits);
    Unlink(*stream);
    if (auto* mixer = dynamic_cast<MixerStream*>(stream.get())) {
        for (const auto& source : mixer->Sources()) {
            mixer->RemoveSource(edits, *source);
        }
    }
    for (const std::uint32_t effect : stream->EffectHandles()) {
        handles.Remove(effect);
    }
    handles.Remove(handle);
    edits.Retire(std::move(stream));
}

void Library::SetAwake(Waker who, bool isAwake)
{
    awake = isAwake ? awake | who : awake & ~who;
    if (output) {
        output->SetAwake(awake != 0);
    }
}

bool Library::FreeEncoder(std::uint32_t handle)
{
    auto encoder = std::static_pointer_cast<EncoderSession>(handles.Share(handle));
    if (!encoder) {
        return false;
    }
    if (const auto stream = encoder->stream.lock()) {
        stream->RemoveTap(edits, encoder.get());
        edits.Flush();
    }
    handles.Remove(handle);
    const bool complete = encoder->Finish();
    edits.Retire(std::move(encoder));
    return complete;
}

void Library::StopRecording(std::uint32_t handle)
{
    if (const auto* stream = dynamic_cast<const CaptureStream*>(FindStream(handle))) {
        stream->Device()->Stop();
        FreeStream(handle);
        SetAwake(kRecorder, std::ranges::any_of(recorders.ready, [this](const auto& ready) {
                     return handles.Find(ready.second) != nullptr;
                 }));
    }
}

void Library::FreeEverything()
{
    for (const auto& object : handles.All()) {
        if (dynamic_cast<const CaptureStream*>(object.get())) {
            StopRecording(object->Handle());
        }
    }
    output.reset();
    outputs.EndWorker();
    for (const auto& object : handles.All()) {
        if (object->ObjectKind() == Object::Kind::Encoder) {
            FreeEncoder(object->Handle());
        }
    }
    for (const auto& object : handles.All()) {
        if (object->ObjectKind() == Object::Kind::Stream) {
            FreeStream(object->Handle());
        }
    }
    recorders.FreeAll();
    readAhead.Stop();
    pullHelpers.Stop();
}

} // namespace velmora::soundlayer
