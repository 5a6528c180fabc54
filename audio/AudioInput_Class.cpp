#include "audio/AudioInput_Class.h"

#include "audio/DeviceStart.h"
#include "audio/internal/EncodedFile.h"
#include "core/Paths.h"
#include "core/Units.h"
#include "engine/audioplayer.h"
#include "soundlayer/soundlayer.h"

#include <chrono>
#include <cmath>
#include <thread>
#include <utility>

namespace velmora::audio {
namespace {

using Clock = std::chrono::steady_clock;

std::string WhyNoDevice(std::int32_t code)
{
    switch (code) {
    case BASS_ERROR_DRIVER:
        return "There is no available device driver.";
    case BASS_ERROR_ALREADY:
        return "The device has already been initialized. Call BASS_RecordFree first.";
    case BASS_ERROR_DEVICE:
        return "The device number specified is invalid.";
    case BASS_ERROR_DX:
        return "A sufficient version of DirectX is not installed.";
    default:
        return "";
    }
}

std::string WhyNoStart(std::int32_t code, std::int32_t rate)
{
    switch (code) {
    case BASS_ERROR_UNKNOWN:
        return "BASS_ERROR_UNKNOWN";
    case BASS_ERROR_MEM:
        return " BASS_ERROR_MEM: There is insufficent memory.";
    case BASS_ERROR_FORMAT:
        return "BASS_ERROR_FORMAT: The specified format is not supported. \n" + std::to_string(rate) + " Hz 16 bits";
    case BASS_ERROR_INIT:
        return "BASS_ERROR_INIT: BASS_RecordInit has not been successfully called.";
    case BASS_ERROR_ALREADY:
        return "BASS_ERROR_ALREADY: Recording is already in progress.";
    case BASS_ERROR_NOTAVAIL:
        return "BASS_ERROR_NOTAVAIL: The recording device is not available. \n"
               "Another application may already be recording with it, or it could be a half-duplex device\n"
               "and is currently being used for playback.";
    default:
        return "";
    }
}

} // namespace

AudioInput_Class::AudioInput_Class(core::Environment& environment)
    : m_environment(environment)
    , m_positionMS(core::kUnset)
{
}

AudioInput_Class::~AudioInput_Class()
{
    EndCapture();
}

bool AudioInput_Class::StartCapture()
{
    if (m_capturing) {
        return Fail("AudioInput_Class::StartCaptureAlready recording");
    }
    m_gapMS = 0;
    m_fileFailed = false;
    m_inputState = {};
    m_deviceLatencyMS = -1;
    BassReadLatency(m_environment.config);
    m_outputLatencyMS = m_environment.config.OutputLatencyMS;
    m_bufferMS = m_environment.config.BassBuffer_LengthMS;
    m_device = ResolveInputDevice();
    if (!InitDevice() || !StartDevice()) {
        return false;
    }
    WaitForData();
    if (!OpenStream() || (SaveToFile && !OpenFile())) {
        return false;
    }
    player_ArmStamp();
    m_capturing = true;
    return true;
}

void AudioInput_Class::StartEncoder()
{
    if (m_encoderHandle != 0) {
        BASS_Encode_SetPaused(m_encoderHandle, 0);
        m_encoderPaused = false;
        // Where playback goes on with the next frame that is mixed; what it does is told later.
        AlignWith(Sound_MixedFrames());
        Align();
    }
}

void AudioInput_Class::EndCapture()
{
    if (!m_capturing) {
        return;
    }
    BASS_RecordSetDevice(static_cast<std::uint32_t>(m_device));
    if (m_encoderHandle != 0) {
        if (m_encoderPaused && WarnIfEncoderPaused) {
            m_environment.ports.messages.Show("AudioInput_Class::Endcapture\nEncoder paused");
        }
        Align();
        m_fileFailed = BASS_Encode_Stop(m_encoderHandle) == 0;
        m_encoderHandle = 0;
    }
    Note();
    m_capturing = false;
    FreeDevice();
}

std::int32_t AudioInput_Class::FileStartMS() const
{
    return m_deviceLatencyMS + m_outputLatencyMS + m_bufferMS;
}

AudioInput_Class::DeviceState AudioInput_Class::Device() const
{
    constexpr std::int32_t kSilent = 2;
    constexpr std::int32_t kLost = 3;
    if (!m_capturing) {
        return m_deviceState;
    }
    switch (Sound_RecordState(m_recHandle)) {
    case kSilent:
        return DeviceState::Silent;
    case kLost:
        return DeviceState::Lost;
    default:
        return DeviceState::Delivering;
    }
}

AudioInput_Class::InputState AudioInput_Class::Input() const
{
    if (!m_capturing) {
        return m_inputState;
    }
    const std::uint32_t input = Sound_RecordInput(m_recHandle);
    return {(input & SOUND_INPUT_SILENT) != 0, (input & SOUND_INPUT_CLIPPED) != 0};
}

std::int64_t AudioInput_Class::GapMS() const
{
    if (!m_capturing) {
        return m_gapMS;
    }
    return static_cast<std::int64_t>(Sound_RecordGapFrames(m_recHandle)) * 1000 /
           m_environment.config.BassRecDevice_Freq;
}

bool AudioInput_Class::FileFailed() const
{
    return m_encoderHandle != 0 ? Sound_EncodeFailed(m_encoderHandle) != 0 : m_fileFailed;
}

std::int32_t AudioInput_Class::ResolveInputDevice() const
{
    return InputDevice == kConfiguredDevice ? m_environment.config.Global_InputDevice : InputDevice;
}

bool AudioInput_Class::InitDevice()
{
    if (!BASS_RecordInit(m_device)) {
        return Fail("RecordInit: " + WhyNoDevice(BASS_ErrorGetCode()));
    }
    BASS_RecordSetDevice(static_cast<std::uint32_t>(m_device));
    return true;
}

bool AudioInput_Class::StartDevice()
{
    const std::int32_t rate = m_environment.config.BassRecDevice_Freq;
    m_recHandle = BASS_RecordStart(static_cast<std::uint32_t>(rate), 2, 0, nullptr, 0);
    if (m_recHandle == 0) {
        std::string why = "RecordStart: \n" + WhyNoStart(BASS_ErrorGetCode(), rate);
        FreeDevice();
        return Fail(std::move(why));
    }
    return true;
}

void AudioInput_Class::WaitForData()
{
    constexpr std::chrono::milliseconds kLook{1};
    // Silence comes before that from a device that gives nothing.
    constexpr std::chrono::seconds kPatience{5};
    const auto start = Clock::now();
    while (BASS_ChannelGetData(m_recHandle, nullptr, 0) == 0 && Clock::now() - start < kPatience &&
           Sound_RecordState(m_recHandle) == 1) {
        std::this_thread::sleep_for(kLook);
    }
    const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
    m_deviceLatencyMS = static_cast<std::int32_t>(passed.count());
}

bool AudioInput_Class::OpenStream()
{
    m_outStream =
        BASS_StreamCreate(static_cast<std::uint32_t>(m_environment.config.BassRecDevice_Freq), 2, BASS_STREAM_DECODE,
                          reinterpret_cast<STREAMPROC*>(rec_GetCallbackAddress()), m_recHandle);
    if (m_outStream == 0) {
        std::string why = "BASS_StreamCreate: " + std::to_string(BASS_ErrorGetCode());
        FreeDevice();
        return Fail(std::move(why));
    }
    if (!BASS_ChannelSetDSP(m_outStream, reinterpret_cast<DSPPROC*>(get_GetLevelDSP_memaddress()), 0, 0)) {
        m_environment.ports.messages.Beep();
    }
    return true;
}

bool AudioInput_Class::OpenFile()
{
    const WAVEFORMATEX format = WaveFormat(m_environment.config.BassRecDevice_Freq, RecordAsMono ? 1 : 2);
    // On the record channel itself: so no state of the graph keeps a take from its file.
    m_encoderHandle =
        BASS_Encode_StartACMFile(m_recHandle, &format, BASS_ENCODE_PAUSE, core::PosixPath(FilePath).c_str());
    if (m_encoderHandle == 0) {
        std::string why =
            "AudioInput_Class::StartCapture\nError starting encoder" + EncoderErrorSuffix(BASS_ErrorGetCode());
        FreeDevice();
        return Fail(std::move(why));
    }
    m_encoderPaused = true;
    return true;
}

void AudioInput_Class::Align()
{
    if (m_encoderHandle == 0) {
        return;
    }
    std::uint64_t mixed = 0;
    std::int32_t position = m_positionMS;
    if (player_GetStamp(&position, &mixed)) {
        AlignWith(mixed);
    }
}

void AudioInput_Class::AlignWith(std::uint64_t mixed)
{
    double seconds = 0;
    if (Sound_RecordOffset(m_encoderHandle, mixed, &seconds)) {
        const std::int32_t fileStart = core::RoundToInt(seconds * 1000 + m_environment.config.Recording_OffsetMS);
        m_deviceLatencyMS = fileStart - m_outputLatencyMS - m_bufferMS;
    }
}

void AudioInput_Class::FreeDevice()
{
    BASS_StreamFree(std::exchange(m_outStream, 0));
    BASS_ChannelStop(std::exchange(m_recHandle, 0));
    BASS_RecordFree();
}

bool AudioInput_Class::Fail(std::string message)
{
    m_lastErrorMessage = std::move(message);
    return false;
}

void AudioInput_Class::Note()
{
    m_deviceState = Device();
    m_inputState = Input();
    m_gapMS = GapMS();
}

} // namespace velmora::audio
