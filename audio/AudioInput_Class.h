#pragma once

#include "core/Environment.h"

#include <cstdint>
#include <string>

namespace velmora::audio {

/// One session with a recording device: what it delivers as a stream for a mixer, and as a file if wanted.
///
/// The file grows while the session runs, whether the stream is pulled or not, and is whole at every moment. When the
/// device goes away or the disk fills up, the session stays open with what it has until its owner ends it; what the
/// device lost is silence of its length, so that the rest stays in time.
///
/// The file begins no later than what was to be heard at the start of the take: see `FileStartMS`. Interface thread
/// only. What can be asked for holds after `EndCapture` too, until the next `StartCapture`.
class AudioInput_Class {
public:
    /// As `InputDevice`: the one of the settings.
    static constexpr std::int32_t kConfiguredDevice = -1000;

    enum class DeviceState { Idle, Delivering, Silent, Lost };
    /// The guard: what is wrong with the input itself.
    struct InputState {
        /// Nothing but zeros for 3 s, or a device that delivers nothing.
        bool silent = false;
        /// At the limit of the samples within the last 3 s.
        bool clipped = false;
    };

    explicit AudioInput_Class(core::Environment& environment);
    /// Ends the capture.
    ~AudioInput_Class();
    AudioInput_Class(const AudioInput_Class&) = delete;
    AudioInput_Class& operator=(const AudioInput_Class&) = delete;

    /// At the end of a capture, complain if the encoder never started.
    bool WarnIfEncoderPaused = true;
    bool SaveToFile = false;
    /// In the internal form.
    std::string FilePath;
    /// The file has one channel, the mean of both sides; the stream stays stereo.
    bool RecordAsMono = false;
    std::int32_t InputDevice = 1;

    /// Waits for the device's first data, 3 s at most. False: `LastErrorMessage` says why, and everything is freed.
    bool StartCapture();
    /// The file begins with what sounds about now. Called once playback has been asked for.
    void StartEncoder();
    void EndCapture();
    bool Capturing() const { return m_capturing; }

    /// What the take's start on the timeline is, in ms. Where it is not told, it is where the clock stands when it
    /// starts after `StartCapture`.
    void AlignTo(std::int32_t positionMS) { m_positionMS = positionMS; }
    /// `FileStartMS` less the output's latency and buffer; may be negative. -1 before a capture, while one runs the
    /// time that the device took for its first data.
    std::int32_t DeviceLatencyMS() const { return m_deviceLatencyMS; }
    /// How far into the file, in ms, lies what sounded when the take's start was heard, `Recording_OffsetMS` included.
    /// Known after `EndCapture`; where playback never started, that is a guess.
    std::int32_t FileStartMS() const;
    /// Brings `FileStartMS` up to what is known by now, while the file grows.
    void Align();
    std::uint32_t OutStream() const { return m_outStream; }
    const std::string& LastErrorMessage() const { return m_lastErrorMessage; }

    DeviceState Device() const;
    InputState Input() const;
    /// Silence that stands for what the device has not delivered.
    std::int64_t GapMS() const;
    /// The file does not hold all that was recorded: full disk or the like.
    bool FileFailed() const;

private:
    std::int32_t ResolveInputDevice() const;
    bool InitDevice();
    bool StartDevice();
    void WaitForData();
    bool OpenStream();
    bool OpenFile();
    /// The take's start is heard with that frame of the output.
    void AlignWith(std::uint64_t mixed);
    void FreeDevice();
    bool Fail(std::string message);
    void Note();

    core::Environment& m_environment;
    std::uint32_t m_outStream = 0;
    std::uint32_t m_recHandle = 0;
    std::uint32_t m_encoderHandle = 0;
    std::int32_t m_device = 0;
    std::int32_t m_deviceLatencyMS = -1;
    std::int32_t m_outputLatencyMS = 0;
    std::int32_t m_bufferMS = 0;
    std::int32_t m_positionMS;
    bool m_encoderPaused = false;
    bool m_capturing = false;
    std::string m_lastErrorMessage;
    // As last seen.
    DeviceState m_deviceState = DeviceState::Idle;
    InputState m_inputState;
    std::int64_t m_gapMS = 0;
    bool m_fileFailed = false;
};

} // namespace velmora::audio
