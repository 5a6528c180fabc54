/// The audioplayer library: what must run at audio rate. It keeps the tables of channels and clips, the playback clock,
/// the DSP and stream callbacks, and the stream copier.
///
/// Times are whole milliseconds on the project's timeline; -2147483648 stands for no fade. Calls come from the
/// interface thread, the callbacks from the mixing thread. No entry point reports a failure but as told here; unknown
/// ids and handles are no error.
#ifndef VELMORA_AUDIOPLAYER_H
#define VELMORA_AUDIOPLAYER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define ENGINE_API __attribute__((visibility("default")))

/// 1001, or -1 when the sound layer is of another generation.
ENGINE_API int32_t GetDLLVersion(void);
ENGINE_API void initdata(void);
/// Frees the tables and every clip stream. Before `BASS_Free`.
ENGINE_API void freedata(void);
ENGINE_API void safeRtlCopyMemory(void* dest, const void* src, int32_t length, int32_t siteId);

ENGINE_API void ClearChannelList(void);
ENGINE_API void ClearEventList(void);
/// `mixerHandle`: the channel's input mixer, stereo at the device's rate; it is not owned.
ENGINE_API void addCC(int32_t channelId, uint32_t mixerHandle);
/// Also drops the channel's clips.
ENGINE_API void removeCC(int32_t channelId);
/// Adds a clip or replaces the one of the same ids. `filePath` is absolute, in the internal form; a file that cannot
/// be read leaves the clip silent.
ENGINE_API void addEvent(int32_t channelId, int32_t eventId, double gainFactor, const char* filePath, int32_t timePosMS,
                         int32_t startMS, int32_t endMS, int32_t fadeInEndMS, int32_t fadeOutStartMS);
ENGINE_API void updateEvent(int32_t channelId, int32_t eventId, double gainFactor, const char* filePath,
                            int32_t timePosMS, int32_t startMS, int32_t endMS, int32_t fadeInEndMS,
                            int32_t fadeOutStartMS);
ENGINE_API void removeEvent(int32_t channelId, int32_t eventId);

ENGINE_API void player_Play(void);
ENGINE_API void player_Pause(void);
ENGINE_API int32_t player_IsPlaying(void);
/// Position of the audio last handed to the output buffer.
ENGINE_API int32_t player_GetTimePos(void);
ENGINE_API void player_SetTimePos(int32_t positionMS);
/// From now on, the first block in which the clock runs is noted.
ENGINE_API void player_ArmStamp(void);
/// The number, among all frames mixed for the device, of the frame at which the clock stood at `positionMS`, by the
/// block that was noted; `positionMS` of -2147483648 is where it stood then, which is told back. 0 when there is none.
ENGINE_API int32_t player_GetStamp(int32_t* positionMS, uint64_t* mixedFrame);
ENGINE_API void player_SetMetronome(int32_t enabled, double periodMS, uint32_t streamHandle);

/// Addresses of DSPPROC functions. The gain's user value is its factor x 10000, cut; the voice removal's the amount
/// 0.01..1.00 x 10000; the encoder feed's the encoder's handle; the level's is 0.
ENGINE_API void* get_GainDSP_memaddress(void);
ENGINE_API void* get_GetLevelDSP_memaddress(void);
ENGINE_API void* get_RemoveVocalsDSP_memaddress(void);
ENGINE_API void* get_WMAEncoderFillDSP_memaddress(void);
/// Addresses of STREAMPROC functions.
ENGINE_API void* rec_GetCallbackAddress(void);
ENGINE_API void* get_StreamCopyCallback_memaddress(void);

/// RMS of the last block of a stream that carries the level DSP, 0..32768; zeros without one.
ENGINE_API void GetRMSLevel(uint32_t channelHandle, int32_t* leftOut, int32_t* rightOut);

/// Non-zero on success; 0 leaves an error code in the sound layer.
ENGINE_API int32_t StreamCopy_AddSourceStream(uint32_t sourceStream, int32_t freq);
/// A stereo stream at `freq` that gives every block of the source once, whichever destination reads first.
ENGINE_API uint32_t StreamCopy_AddDestStream(uint32_t sourceStream, int32_t freq, uint32_t flags);
ENGINE_API void StreamCopy_RemoveDestStream(uint32_t destStream);
ENGINE_API void StreamCopy_RemoveSourceStream(uint32_t sourceStream);
ENGINE_API void StreamCopy_SetInterpolationSamples(int32_t samples);
/// Bytes that wait in the copier's buffer.
ENGINE_API void StreamCopy_GetBufferSize(uint32_t sourceStream, int32_t* sizeOut);

ENGINE_API void dbg_PrintEventList(void);
/// Clips that were not ready when the clock came to them, since `initdata`.
ENGINE_API int32_t player_GetDebugCounter(void);

#ifdef __cplusplus
}
#endif

#endif
