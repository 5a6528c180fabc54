#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace velmora::soundlayer {

struct AudioFormat {
    std::uint32_t rate = 44100;
    std::uint32_t channels = 2;
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
    virtual ~FileEncoder() = default;

    /// The format of what is written from now on; until then the file's own. Before the first write only.
    virtual void SetInput(AudioFormat input) = 0;
    /// 16-bit interleaved samples in the input's format. False once a write has failed.
    virtual bool Write(std::span<const std::int16_t> interleaved) = 0;
    /// Drains and closes the file. False when it does not hold all it was given. Later calls repeat the answer.
    virtual bool Finish() = 0;
    virtual bool Failed() const = 0;
};

/// Bit rates that WMA is offered at for a format, rising; empty for one that it does not take.
std::span<const std::uint32_t> WmaRates(AudioFormat format);

} // namespace velmora::soundlayer
