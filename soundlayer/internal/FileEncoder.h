#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace velmora::soundlayer {

class FormatConverter;

struct AudioFormat {
    std::uint32_t rate = 44100;
    std::uint32_t channels = 2;

    bool operator==(const AudioFormat&) const = default;
};

enum class EncoderError { None, CannotCreate, InvalidFormat };

/// Writes one audio file. What it is given is converted to the file's rate and channels: mono is the mean of both
/// sides, stereo of mono gives both sides, rates are converted so that a file of n seconds stays one of n seconds.
///
/// A write that fails (full disk) is kept as a state: later writes do nothing, and `Finish` tells. One thread at a
/// time.
class FileEncoder {
public:
    /// A WAV file whose header on disk is valid after every write; beyond 4 GiB it becomes RF64.
    static std::unique_ptr<FileEncoder> OpenWav(const std::string& file, AudioFormat format, EncoderError& error);
    /// A WMA file at the rate of `WmaRates` that is nearest to `bitrate` bit/s, the lower of two equally near.
    static std::unique_ptr<FileEncoder> OpenWma(const std::string& file, AudioFormat format, std::uint32_t bitrate,
                                                EncoderError& error);
    virtual ~FileEncoder();
    FileEncoder(const FileEncoder&) = delete;
    FileEncoder& operator=(const FileEncoder&) = delete;

    /// The format of what is written from now on; until then the file's own. Before the first write only. One that
    /// cannot be converted counts as a write that failed.
    void SetInput(AudioFormat input);
    /// 16-bit interleaved samples in the input's format. False once a write has failed.
    bool Write(std::span<const std::int16_t> interleaved);
    /// Drains and closes the file. False when it does not hold all it was given. Later calls repeat the answer.
    bool Finish();

protected:
    explicit FileEncoder(AudioFormat format);

    const AudioFormat& Format() const { return m_format; }
    /// Takes samples in the file's format; false when they did not all get to the file.
    virtual bool Encode(std::span<const std::int16_t> interleaved) = 0;
    /// Ends the file; called once. False when it lacks anything.
    virtual bool Close() = 0;

private:
    const AudioFormat m_format;
    AudioFormat m_input;
    std::unique_ptr<FormatConverter> m_converter;
    bool m_failed = false;
    bool m_finished = false;
};

/// Bit rates that WMA is offered at for a format, rising; empty for one that it does not take.
std::span<const std::uint32_t> WmaRates(AudioFormat format);

} // namespace velmora::soundlayer
