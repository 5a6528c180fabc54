#include "engine/audioplayer.h"

#include "engine/internal/Dsps.h"
#include "engine/internal/Engine.h"

#include <cstdio>
#include <cstring>
#include <utility>

using velmora::engine::Engine;
using velmora::engine::EngineTables;
using velmora::engine::EventRow;

int32_t GetDLLVersion(void)
{
    constexpr std::uint32_t kSoundGeneration = 0x204;
    constexpr std::int32_t kVersion = 1001;
    return BASS_GetVersion() >> 16 == kSoundGeneration ? kVersion : -1;
}

void initdata(void)
{
    Engine::Get().Start();
}

void freedata(void)
{
    Engine::Get().Stop();
}

void safeRtlCopyMemory(void* dest, const void* src, int32_t length, int32_t)
{
    if (dest && src && length > 0) {
        std::memcpy(dest, src, static_cast<std::size_t>(length));
    }
}

void ClearChannelList(void)
{
    Engine::Get().planner.Edit([](EngineTables& tables) { tables.ClearChannels(); });
    velmora::engine::Levels().Clear();
}

void ClearEventList(void)
{
    Engine::Get().planner.Edit([](EngineTables& tables) { tables.ClearEvents(); });
}

void addCC(int32_t channelId, uint32_t mixerHandle)
{
    Engine::Get().planner.Edit([=](EngineTables& tables) { tables.AddChannel(channelId, mixerHandle); });
}

void removeCC(int32_t channelId)
{
    Engine::Get().planner.Edit([=](EngineTables& tables) { tables.RemoveChannel(channelId); });
}

void addEvent(int32_t channelId, int32_t eventId, double gainFactor, const char* filePath, int32_t timePosMS,
              int32_t startMS, int32_t endMS, int32_t fadeInEndMS, int32_t fadeOutStartMS)
{
    EventRow row{gainFactor, filePath ? filePath : "", timePosMS, startMS, endMS, fadeInEndMS, fadeOutStartMS};
    Engine::Get().planner.Edit([&](EngineTables& tables) { tables.PutEvent({channelId, eventId}, std::move(row)); });
}

void updateEvent(int32_t channelId, int32_t eventId, double gainFactor, const char* filePath, int32_t timePosMS,
                 int32_t startMS, int32_t endMS, int32_t fadeInEndMS, int32_t fadeOutStartMS)
{
    addEvent(channelId, eventId, gainFactor, filePath, timePosMS, startMS, endMS, fadeInEndMS, fadeOutStartMS);
}

void removeEvent(int32_t channelId, int32_t eventId)
{
    Engine::Get().planner.Edit([=](EngineTables& tables) { tables.RemoveEvent({channelId, eventId}); });
}

void player_Play(void)
{
    Engine::Get().Play();
}

void player_Pause(void)
{
    Engine::Get().Pause();
}

int32_t player_IsPlaying(void)
{
    return Engine::Get().mixSide.clock.Playing() ? 1 : 0;
}

int32_t player_GetTimePos(void)
{
    return Engine::Get().TimePos();
}

void player_SetTimePos(int32_t positionMS)
{
    Engine::Get().SetTimePos(positionMS);
}

void player_ArmStamp(void)
{
    Engine::Get().mixSide.ArmStamp();
}

int32_t player_GetStamp(int32_t* positionMS, uint64_t* mixedFrame)
{
    return Engine::Get().MixedFrameOf(*positionMS, *mixedFrame) ? 1 : 0;
}

void player_SetMetronome(int32_t enabled, double periodMS, uint32_t streamHandle)
{
    Engine::Get().SetMetronome(enabled != 0, periodMS, streamHandle);
}

void* get_GainDSP_memaddress(void)
{
    return reinterpret_cast<void*>(&velmora::engine::GainDsp);
}

void* get_GetLevelDSP_memaddress(void)
{
    return reinterpret_cast<void*>(&velmora::engine::LevelDsp);
}

void* get_RemoveVocalsDSP_memaddress(void)
{
    return reinterpret_cast<void*>(&velmora::engine::RemoveVocalsDsp);
}

void* get_WMAEncoderFillDSP_memaddress(void)
{
    return reinterpret_cast<void*>(&velmora::engine::EncoderFeedDsp);
}

void* rec_GetCallbackAddress(void)
{
    return reinterpret_cast<void*>(&velmora::engine::RecordStream);
}

void* get_StreamCopyCallback_memaddress(void)
{
    return reinterpret_cast<void*>(&velmora::engine::StreamCopier::Pull);
}

void GetRMSLevel(uint32_t channelHandle, int32_t* leftOut, int32_t* rightOut)
{
    const auto level = velmora::engine::Levels().Read(channelHandle);
    *leftOut = level.left;
    *rightOut = level.right;
}

int32_t StreamCopy_AddSourceStream(uint32_t sourceStream, int32_t)
{
    return Engine::Get().copier.AddSource(sourceStream) ? 1 : 0;
}

uint32_t StreamCopy_AddDestStream(uint32_t sourceStream, int32_t freq, uint32_t flags)
{
    return Engine::Get().copier.AddDestination(sourceStream, static_cast<std::uint32_t>(freq), flags);
}

void StreamCopy_RemoveDestStream(uint32_t destStream)
{
    Engine::Get().copier.RemoveDestination(destStream);
}

void StreamCopy_RemoveSourceStream(uint32_t sourceStream)
{
    Engine::Get().copier.RemoveSource(sourceStream);
}

void StreamCopy_SetInterpolationSamples(int32_t) {}

void StreamCopy_GetBufferSize(uint32_t sourceStream, int32_t* sizeOut)
{
    *sizeOut = Engine::Get().copier.BufferedBytes(sourceStream);
}

void dbg_PrintEventList(void)
{
    for (const auto& [key, row] : Engine::Get().planner.Events()) {
        std::fprintf(stderr, "%d %d at %d ms: %d..%d of %s, gain %g, fades %d and %d\n", key.channelId, key.eventId,
                     row.timePosMS, row.startMS, row.endMS, row.filePath.c_str(), row.gainFactor, row.fadeInEndMS,
                     row.fadeOutStartMS);
    }
}

int32_t player_GetDebugCounter(void)
{
    return static_cast<std::int32_t>(Engine::Get().mixSide.MissedVoices());
}
