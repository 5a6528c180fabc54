/// The sound layer: streams that are pulled, mixers, DSPs, encoders and devices behind plain C operations.
///
/// Samples are 16-bit, interleaved. Handles are 32 bits, never 0 and never used again within a run; an operation on a
/// stale or foreign handle fails with SOUND_ERROR_HANDLE. A failed operation gives 0 (-1 where a count is given) and
/// leaves its code for `BASS_ErrorGetCode`, which is kept per thread. Texts are UTF-8, file names in the system's form.
///
/// Threads: operations may come from any thread and run one at a time; those marked [RT] wait for nobody. Edits of a
/// graph that the device is playing take effect between two blocks; the mixing thread waits for nobody. Decoding
/// streams may be pulled with `BASS_ChannelGetData` while nothing that plays reaches them.
#ifndef VELMORA_SOUNDLAYER_H
#define VELMORA_SOUNDLAYER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define SOUND_API __attribute__((visibility("default")))

typedef uint32_t HSTREAM;
typedef uint32_t HDSP;
typedef uint32_t HFX;
typedef uint32_t HRECORD;
typedef uint32_t HENCODE;
typedef uint32_t HWMENCODE;
typedef uintptr_t SOUND_USER;

/// Works on `length` bytes of `channel`'s block in place. In an offline pull, those of different sources of a mixer may
/// run on several threads at once. [RT]
typedef void DSPPROC(HDSP dsp, uint32_t channel, void* buffer, uint32_t length, SOUND_USER user);
/// Fills at most `length` bytes and returns how many; 0 is no data now, not the end. [RT]
typedef uint32_t STREAMPROC(HSTREAM stream, void* buffer, uint32_t length, SOUND_USER user);
/// Called before each block of the device; `frames` are wanted. Says how many to mix now, at least 1 and at most
/// `frames`, so that a block ends where something is to happen. [RT]
typedef uint32_t SOUND_HEARTBEATPROC(uint32_t frames, SOUND_USER user);
/// Lets go of what `user` stands for; calls no operation.
typedef void SOUND_RELEASEPROC(SOUND_USER user);

#define BASS_OK 0
#define BASS_ERROR_MEM 1
#define BASS_ERROR_DRIVER 3
#define BASS_ERROR_FORMAT 6
#define BASS_ERROR_INIT 8
#define BASS_ERROR_ALREADY 14
#define BASS_ERROR_DEVICE 23
#define BASS_ERROR_CREATE 33
#define BASS_ERROR_NOTAVAIL 37
#define BASS_ERROR_DX 39
#define BASS_ERROR_WMA 1001
#define BASS_ERROR_UNKNOWN (-1)
#define SOUND_ERROR_HANDLE 2001   /* no such stream, DSP or encoder */
#define SOUND_ERROR_FILEOPEN 2002 /* the file cannot be read */
#define SOUND_ERROR_FILEFORM 2003 /* the file holds no sound that can be decoded */
#define SOUND_ERROR_PARAM 2004    /* an argument is out of its range */
#define SOUND_ERROR_DECODE 2005   /* the stream is not a decoding one, or is pulled by the device */
#define SOUND_ERROR_WRITE 2006    /* not all was written: full disk or the like */

#define BASS_DEVICE_LATENCY 0x100
#define BASS_MIXER_NONSTOP 0x20000
#define BASS_STREAM_PRESCAN 0x20000
#define BASS_STREAM_DECODE 0x200000
#define BASS_SAMPLE_SOFTWARE 0x10
#define BASS_UNICODE 0x80000000u
#define BASS_ENCODE_PAUSE 0x20
#define BASS_WMA_ENCODE_STANDARD 0x2000

#define BASS_CONFIG_BUFFER 0       /* device buffer in ms */
#define BASS_CONFIG_UPDATEPERIOD 1 /* ms between two fillings of it */
#define BASS_CONFIG_CURVE_VOL 7    /* 0: volume attributes are proportional, the only curve there is */

#define BASS_ATTRIB_FREQ 1 /* Hz at which a source is taken to run; 0 is its own */
#define BASS_ATTRIB_VOL 2  /* acts within 0..1 */
#define BASS_ATTRIB_PAN 3  /* balance, -1..1 */

#define BASS_POS_BYTE 0

#define BASS_FX_DX8_CHORUS 0
#define BASS_FX_DX8_COMPRESSOR 1
#define BASS_FX_DX8_DISTORTION 2
#define BASS_FX_DX8_ECHO 3
#define BASS_FX_DX8_FLANGER 4
#define BASS_FX_DX8_PARAMEQ 7
#define BASS_FX_DX8_REVERB 8

#define SOUND_FIRST_OWN_RECORDER 1000
#define SOUND_INPUT_SILENT 1
#define SOUND_INPUT_CLIPPED 2

typedef struct {
    uint32_t minbuf;  /* smallest buffer in ms that the device runs with */
    uint32_t latency; /* ms from the device's callback to the ear */
    uint32_t freq;    /* Hz */
} BASS_INFO;

typedef struct {
    const char* name;
    const char* driver;
    uint32_t flags; /* 1 enabled, 2 the default, 4 in use */
} BASS_DEVICEINFO;

typedef struct {
    uint32_t freq;
    uint32_t chans;
    uint32_t flags;
    const char* filename; /* "" without a file; lives as long as the stream */
} BASS_CHANNELINFO;

/// The format block of a PCM file.
typedef struct {
    uint16_t wFormatTag;
    uint16_t nChannels;
    uint32_t nSamplesPerSec;
    uint32_t nAvgBytesPerSec;
    uint16_t nBlockAlign;
    uint16_t wBitsPerSample;
    uint16_t cbSize;
} WAVEFORMATEX;

/* The parameter blocks of effects: four bytes a field. A value outside its range counts as the range's nearer end, one
 * that is no number as its default, which a new effect has: here as smallest..largest (default). */

typedef struct {
    float fWetDryMix;  /* share of the effect, %: 0..100 (50) */
    float fDepth;      /* share of the delay that swings, %: 0..100 (25) */
    float fFeedback;   /* %: -99..99 (0) */
    float fFrecuency;  /* of the swing, Hz: 0..10 (0) */
    int32_t fWaveform; /* 0 triangle, 1 sine: (0) */
    float fDelay;      /* ms: 0..20 (0) */
    int32_t fPhase;    /* right swing against left, 0..4 for -180, -90, 0, 90, 180 degrees: (3) */
} BASS_DX8_CHORUS;

typedef struct {
    float fGain;      /* after it, dB: -60..60 (0) */
    float fAttack;    /* ms: 0.01..500 (0.2) */
    float fRelease;   /* ms: 50..3000 (50) */
    float fThreshold; /* dB: -60..0 (-10) */
    float fRatio;     /* n to 1: 1..100 (10) */
    float fPreDelay;  /* how far it looks ahead, ms: 0..4 (0) */
} BASS_DX8_COMPRESSOR;

typedef struct {
    float fGain;                  /* after it, dB: -60..0 (0) */
    float fEdge;                  /* %: 0..100 (50) */
    float fPostEQCenterFrecuency; /* Hz: 100..8000 (4000) */
    float fPostEQBandwidth;       /* Hz: 100..4000 (100) */
    float fPreLowpassCutoff;      /* Hz: 100..8000 (4000) */
} BASS_DX8_DISTORTION;

typedef struct {
    float fWetDryMix;  /* share of the effect, %: 0..100 (50) */
    float fFeedback;   /* %: 0..100 (0) */
    float fLeftDelay;  /* ms: 1..2000 (350) */
    float fRightDelay; /* ms: 1..2000 (350) */
    int32_t lPanDelay; /* not 0: the sides swap with each repeat (0) */
} BASS_DX8_ECHO;

typedef struct {
    float fWetDryMix;  /* as for the chorus */
    float fDepth;      /* as for the chorus */
    float fFeedback;   /* as for the chorus */
    float fFrecuency;  /* as for the chorus */
    int32_t fWaveform; /* as for the chorus */
    float fDelay;      /* ms: 0..4 (0) */
    int32_t fPhase;    /* as for the chorus: (2) */
} BASS_DX8_FLANGER;

typedef struct {
    float fCenter;    /* Hz: 80..16000 (1000) */
    float fBandwidth; /* semitones: 1..36 (12) */
    float fGain;      /* dB: -15..15 (3) */
} BASS_DX8_PARAMEQ;

typedef struct {
    float finGain;          /* dB: -96..0 (0) */
    float fReverbMix;       /* dB: -96..0 (-10) */
    float fReverbTime;      /* to -60 dB, ms: 1..3000 (1000) */
    float fHighFreqRTRatio; /* time of high frequencies by that of low ones: 0.001..0.999 (0.001) */
} BASS_DX8_REVERB;

/// Called each time a record device of the application's own was started; it may deliver from here on.
typedef void SOUND_STARTEDPROC(SOUND_USER user);

/// A record device of the application's own: nothing but a name and what it delivers by `Sound_RecordDeliver`.
typedef struct {
    const char* name;
    uint32_t freq;              /* Hz at which it runs whatever is wanted; 0: at any */
    uint32_t chans;             /* 1 or 2 */
    int refuses;                /* not 0: it cannot be started */
    SOUND_STARTEDPROC* started; /* may be null */
    SOUND_USER user;
} SOUND_RECORDER;

/* Library and device. Device 0 is "No sound", a clock without ears; real ones follow from 1 and keep their number while
 * the process lives; -1 is the system's default, which is "No sound" where there is no server nor hardware. */

/// 0x0204 in the high word.
SOUND_API uint32_t BASS_GetVersion(void);
SOUND_API int32_t BASS_ErrorGetCode(void);
SOUND_API int BASS_Init(int32_t device, uint32_t freq, uint32_t flags, void* window, const void* unused);
/// Frees every stream, encoder and the device.
SOUND_API int BASS_Free(void);
SOUND_API int32_t BASS_GetDevice(void);
/// The latency is 0 for some ms after `BASS_Init`, until the device has told one.
SOUND_API int BASS_GetInfo(BASS_INFO* info);
SOUND_API int BASS_GetDeviceInfo(uint32_t device, BASS_DEVICEINFO* info);
SOUND_API int BASS_SetConfig(uint32_t option, uint32_t value);
SOUND_API uint32_t BASS_GetConfig(uint32_t option);

/* Streams */

/// While held, but for a second at most, whoever opens the first file that is no WAV waits: what decodes it is being
/// loaded only then, which would slow a program's start.
SOUND_API void Sound_HoldCodecs(int hold);
/// A whole file: `mem`, `offset` and `length` are 0. WMA is left to `BASS_WMA_StreamCreateFile`.
SOUND_API HSTREAM BASS_StreamCreateFile(int mem, const void* file, uint64_t offset, uint64_t length, uint32_t flags);
SOUND_API HSTREAM BASS_WMA_StreamCreateFile(int mem, const void* file, uint64_t offset, uint64_t length,
                                            uint32_t flags);
SOUND_API HSTREAM BASS_StreamCreate(uint32_t freq, uint32_t chans, uint32_t flags, STREAMPROC* proc, SOUND_USER user);
SOUND_API int BASS_StreamFree(HSTREAM handle);

SOUND_API int BASS_ChannelPlay(uint32_t handle, int restart);
SOUND_API int BASS_ChannelStop(uint32_t handle);
/// Pulls up to `length` bytes; the count pulled, or -1. [RT] within a callback.
SOUND_API uint32_t BASS_ChannelGetData(uint32_t handle, void* buffer, uint32_t length);
SOUND_API int BASS_ChannelGetInfo(uint32_t handle, BASS_CHANNELINFO* info);
/// Exact to the sample, for every format; -1 for a stream without an end.
SOUND_API uint64_t BASS_ChannelGetLength(uint32_t handle, uint32_t mode);
SOUND_API double BASS_ChannelBytes2Seconds(uint32_t handle, uint64_t position);
/// The byte of floor(`position` x rate) frames.
SOUND_API uint64_t BASS_ChannelSeconds2Bytes(uint32_t handle, double position);
SOUND_API int BASS_ChannelSetPosition(uint32_t handle, uint64_t position, uint32_t mode);
/// Volume and pan are [RT].
SOUND_API int BASS_ChannelSetAttribute(uint32_t handle, uint32_t attribute, float value);
SOUND_API int BASS_ChannelGetAttribute(uint32_t handle, uint32_t attribute, float* value);
/// Of higher `priority` runs earlier; equal ones in the order they were set.
SOUND_API HDSP BASS_ChannelSetDSP(uint32_t handle, DSPPROC* proc, SOUND_USER user, int32_t priority);
SOUND_API int BASS_ChannelRemoveDSP(uint32_t handle, HDSP dsp);

/* Effects. A block passes the DSPs of priority 0 and more, then the effects, of lower `priority` first and equal ones
 * in the order they were set, then the DSPs of negative priority. Sound is 32-bit float from the first effect to the
 * last, rounded and limited once behind it. What joins, leaves or moves while a stream sounds fades within a few ms. */

/// An effect of one of the BASS_FX_DX8 types at its default parameters; BASS_ERROR_NOTAVAIL for another type.
SOUND_API HFX BASS_ChannelSetFX(uint32_t handle, uint32_t type, int32_t priority);
SOUND_API int BASS_ChannelRemoveFX(uint32_t handle, HFX fx);
/// `block` is the BASS_DX8 block of the effect's type; what sounds glides there.
SOUND_API int BASS_FXSetParameters(HFX fx, const void* block);

/* Recording. Record devices count from 0, the system's default first, and keep their number while the process lives;
 * those of the application's own have numbers from SOUND_FIRST_OWN_RECORDER on and stand in no list. A record channel
 * is a decoding stream of what the device delivers, for hearing: who pulls it late gets the newest, and what piled up
 * before is dropped. An encoder on it misses nothing. Frames that the device lost are silence of their length. */

/// Makes the device ready and the current one. Fails with BASS_ERROR_DRIVER where there is nothing to record from,
/// BASS_ERROR_DEVICE for a number that is not there, BASS_ERROR_ALREADY for a device that is ready.
SOUND_API int BASS_RecordInit(int32_t device);
/// Frees the current record device, and its channel with it.
SOUND_API int BASS_RecordFree(void);
/// Makes one of the ready devices the current one.
SOUND_API int BASS_RecordSetDevice(uint32_t device);
/// Starts the current device in stereo, at `freq` Hz whatever its own rate and channels are; `flags` and `proc` are 0.
SOUND_API HRECORD BASS_RecordStart(uint32_t freq, uint32_t chans, uint32_t flags, const void* proc, SOUND_USER user);
SOUND_API int BASS_RecordGetDeviceInfo(uint32_t device, BASS_DEVICEINFO* info);
/// The inputs of the current device and their level, where the server offers them; else BASS_ERROR_NOTAVAIL and -1.
SOUND_API uint32_t BASS_RecordGetInput(int32_t input, float* volume);
SOUND_API int BASS_RecordSetInput(int32_t input, uint32_t flags, float volume);

/* Mixers: sum their sources, whatever their rate, and give silence without any. */

SOUND_API HSTREAM BASS_Mixer_StreamCreate(uint32_t freq, uint32_t chans, uint32_t flags);
SOUND_API int BASS_Mixer_StreamAddChannel(HSTREAM mixer, HSTREAM channel, uint32_t flags);
/// The source joins after `start` bytes of the mixer and leaves after `length` bytes more (0: at its end).
SOUND_API int BASS_Mixer_StreamAddChannelEx(HSTREAM mixer, HSTREAM channel, uint32_t flags, uint64_t start,
                                            uint64_t length);
SOUND_API int BASS_Mixer_ChannelRemove(HSTREAM channel);

/* Encoders. A file has the rate and channels that its encoder was opened with, whatever the stream's. */

/// Writes what `handle` gives from now on; with BASS_ENCODE_PAUSE, from `BASS_Encode_SetPaused(encoder, 0)` on. On a
/// record channel it writes what the device delivers, whether anybody hears it or not.
SOUND_API HENCODE BASS_Encode_StartACMFile(uint32_t handle, const WAVEFORMATEX* format, uint32_t flags,
                                           const char* file);
SOUND_API int BASS_Encode_SetPaused(HENCODE encoder, int paused);
/// Ends the file. 0 with SOUND_ERROR_WRITE when it does not hold all it was given; it is closed all the same.
SOUND_API int BASS_Encode_Stop(HENCODE encoder);
/// A file of `freq` Hz and `chans` channels at the nearest of the rates that the format takes.
SOUND_API HWMENCODE BASS_WMA_EncodeOpenFile(uint32_t freq, uint32_t chans, uint32_t flags, uint32_t bitrate,
                                            const char* file);
SOUND_API int BASS_WMA_EncodeWrite(HWMENCODE encoder, const void* buffer, uint32_t length);
/// As `BASS_Encode_Stop`.
SOUND_API int BASS_WMA_EncodeClose(HWMENCODE encoder);
/// Rates in bit/s in rising order, ended by 0; null for a format that WMA does not take. Lives until the next call.
SOUND_API const uint32_t* BASS_WMA_EncodeGetRates(uint32_t freq, uint32_t chans, uint32_t flags);

/* Beyond the given operations */

/// A whole file as a decoding stereo stream at `freq`: frame n of it is frame n of the file resampled from its start,
/// wherever reading begins. Workers decode ahead of the reader; an offline pull waits for them, the device never does.
SOUND_API HSTREAM Sound_ClipCreate(const char* file, uint32_t freq);
/// Decodes up to `frames` frames of a file stream ahead, on the calling thread; before it is heard.
SOUND_API int Sound_ClipPrepare(HSTREAM clip, uint32_t frames);
/// Lets a mixer's source go on or holds it: a held source is neither heard nor advanced. [RT]
SOUND_API int Sound_SetRunning(HSTREAM source, int running);
/// Gives `count` effects of a stream new priorities, all at once. Equal ones stay in their order. An effect that
/// changes its place keeps its tail; the others go on untouched.
SOUND_API int Sound_FXSetPriorities(uint32_t handle, const HFX* fx, const int32_t* priorities, uint32_t count);
/// The format of what `BASS_WMA_EncodeWrite` is given; until this is called, the file's own. Before the first write.
SOUND_API int Sound_WMA_EncodeSetInput(HWMENCODE encoder, uint32_t freq, uint32_t chans);
/// 1 once the encoder's file no longer holds all it was given; what comes after is dropped.
SOUND_API int Sound_EncodeFailed(uint32_t encoder);
/// How many threads share an offline pull and decode ahead, at least 1; 0 is one per core, the default.
SOUND_API void Sound_SetThreads(uint32_t threads);
/// The one heartbeat of the device; null takes it away.
SOUND_API int Sound_SetHeartbeat(SOUND_HEARTBEATPROC* proc, SOUND_USER user);
/// What the heartbeat does next is heard as soon as the device's buffer has room, and not only when the update period
/// is over. Returns at once.
SOUND_API void Sound_MixNow(void);
/// Something is to be heard from now on, or, with 0, need not be any more. While nothing is and nothing records, and
/// ten seconds of silence have passed, the device is let rest: a clock stands in for it, and sound that comes
/// nevertheless begins up to 200 ms late.
SOUND_API void Sound_SetAwake(int awake);
/// Edits between begin and end reach the mixing thread together. Calls may nest.
SOUND_API void Sound_BeginEdit(void);
SOUND_API void Sound_EndEdit(void);
/// Calls `release` once all edits so far are in force and no block under way can still use what they removed; that is
/// after `Sound_EndEdit` when called within an edit. On a thread that operates, never on the mixing thread.
SOUND_API void Sound_Retire(SOUND_RELEASEPROC* release, SOUND_USER user);
/// Whether the calling thread fills the device's buffer just now, and so may not wait, allocate or touch a file. [RT]
SOUND_API int Sound_OnMixingThread(void);
/// Frames that the device asked for in vain since it was started.
SOUND_API uint64_t Sound_MissedFrames(void);
/// Frames of files that were not decoded when the device's mix came to them; they were silent.
SOUND_API uint64_t Sound_LateFrames(void);
/// Frames mixed for the device since it was started; within the heartbeat, the number of the block's first frame. [RT]
SOUND_API uint64_t Sound_MixedFrames(void);
/// 1: the device delivers; 2: it has delivered nothing for 3 s, so silence stands for it; 3: it is lost, and what came
/// until then is all; 0: no such channel.
SOUND_API int32_t Sound_RecordState(HRECORD record);
/// Frames that the device has not delivered and silence stands for.
SOUND_API uint64_t Sound_RecordGapFrames(HRECORD record);
/// SOUND_INPUT_SILENT: nothing but zeros for 3 s; SOUND_INPUT_CLIPPED: at the limit within the last 3 s.
SOUND_API uint32_t Sound_RecordInput(HRECORD record);
/// How long after the first frame of an encoder's file sounded at the record device, mixed frame `mixed` was heard from
/// the output device, in seconds. 0 while that is not known, or the encoder is not on a record channel.
SOUND_API int Sound_RecordOffset(HENCODE encoder, uint64_t mixed, double* seconds);
/// A record device of the application's own; its number, or -1. Until `Sound_RecordRemoveDevice`.
SOUND_API int32_t Sound_RecordAddDevice(const SOUND_RECORDER* recorder);
SOUND_API int Sound_RecordRemoveDevice(int32_t device);
/// Takes a block from an own device that was started, in its format; `endNS` is the time by the system's monotonic
/// clock at which the frame behind the last one sounds. 0, and nothing is taken, while there is no room or it is not
/// started.
SOUND_API int Sound_RecordDeliver(int32_t device, const int16_t* interleaved, uint32_t frames, int64_t endNS);
/// An own device goes away in mid-capture.
SOUND_API int Sound_RecordLose(int32_t device);
/// 0: none, or "No sound"; 1: sounding; 2: lost. The clock of a lost device goes on, and the layer tries each second to
/// bring it back.
SOUND_API int32_t Sound_DeviceState(void);

#ifdef __cplusplus
}
#endif

#endif
