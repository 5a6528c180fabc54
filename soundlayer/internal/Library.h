#pragma once

#include "soundlayer/internal/DeviceList.h"
#include "soundlayer/internal/EncoderSession.h"
#include "soundlayer/internal/GraphEdits.h"
#include "soundlayer/internal/HandleTable.h"
#include "soundlayer/internal/MixerStream.h"
#include "soundlayer/internal/Output.h"
#include "soundlayer/internal/ReadAhead.h"
#include "soundlayer/internal/Recorders.h"

#include <cstdint>
#include <memory>
#include <mutex>

namespace velmora::soundlayer {

/// All that the C operations share. Whoever is not the mixing thread holds `mutex` while it works with it; `Find...`
/// and the error code need no hold.
class Library {
public:
    static Library& Get();
    Library();
    ~Library();

    /// The error code of this thread's last failed operation.
    static void SetError(std::int32_t code);
    static std::int32_t Error();

    std::recursive_mutex mutex;
    HandleTable handles;
    GraphEdits edits;
    ReadAhead readAhead;
    PullHelpers pullHelpers;
    DeviceList outputs{Direction::Output};
    Recorders recorders;
    std::unique_ptr<Output> output;
    std::int32_t deviceNumber = 0;
    std::uint32_t bufferMS = 500;
    std::uint32_t periodMS = 100;
    /// For whom the device is awake, a bit each.
    std::uint32_t awake = 0;
    SOUND_HEARTBEATPROC* heartbeat = nullptr;
    SOUND_USER heartbeatUser = 0;

    /// The object of that kind, or null with SOUND_ERROR_HANDLE set. [RT]
    Stream* FindStream(std::uint32_t handle) const;
    EncoderSession* FindEncoder(std::uint32_t handle) const;
    EffectSlot* FindEffect(std::uint32_t handle) const;
    /// As `FindStream`, for streams that are mixers.
    MixerStream* FindMixer(std::uint32_t handle) const;
    std::shared_ptr<Stream> ShareStream(std::uint32_t handle) const;

    /// The handle of a new object, or 0 with BASS_ERROR_MEM set.
    std::uint32_t Register(std::shared_ptr<Object> object);
    /// Whether the mixing thread may be pulling `stream`.
    bool Sounding(const Stream& stream) const;
    /// Takes a stream out of its mixer or from the device.
    void Unlink(Stream& stream);
    void FreeStream(std::uint32_t handle);
    enum Waker : std::uint32_t { kPlayer = 1, kRecorder = 2 };
    /// The device does not rest as long as anybody is awake.
    void SetAwake(Waker who, bool isAwake);
    /// Closes the file; false when it does not hold all it was given.
    bool FreeEncoder(std::uint32_t handle);
    /// Ends a record channel.
    void StopRecording(std::uint32_t handle);
    void FreeEverything();

private:
    Object* Find(std::uint32_t handle, Object::Kind kind) const;
};

} // namespace velmora::soundlayer
