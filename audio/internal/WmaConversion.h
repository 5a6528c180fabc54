#pragma once

#include "core/Files.h"
#include "core/Ports.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velmora::audio {

/// The rate in bit/s that WMA offers for a format and that is nearest to `wanted`, the first of two equally near; 0 for
/// a format that WMA does not take.
std::int32_t GetNearestBitrate(std::int32_t freq, std::int32_t channels, std::int32_t wanted);

/// One audio file on its way to a WMA file of the same rate, channels and length, piece by piece: `Open`, `Step` until
/// it answers false, `Finish`.
///
/// The new file grows under a temporary name and takes its own when it is whole; destroyed before that, nothing of it
/// stays. The temporary name is one that the clean-up of unused files knows, for what a crash leaves. A failed call
/// leaves a text in `Error`. Paths are absolute, in the internal form.
class WmaConversion {
public:
    WmaConversion(core::Files& files, std::string source, std::string destination);
    ~WmaConversion();
    WmaConversion(const WmaConversion&) = delete;
    WmaConversion& operator=(const WmaConversion&) = delete;

    /// `stereoBitrate` in bit/s; a mono file gets half of it.
    bool Open(std::int32_t stereoBitrate);
    /// Converts some 0.2 s of sound, in well under a millisecond. False when there is no more, or after a failure.
    bool Step();
    /// An earlier file of that name goes to the trash, or is overwritten where there is none. False when the new file
    /// does not hold the whole of its source, or cannot take its name. The interface lives meanwhile.
    bool Finish(core::Trash& trash, core::PendingEvents& events);

    /// 0..1.
    double Done() const;
    /// The file and what is wrong with it.
    const std::string& Error() const { return m_error; }

private:
    bool Fail(const std::string& file, const std::string& why);
    bool CloseEncoder();

    core::Files& m_files;
    const std::string m_source;
    const std::string m_destination;
    std::string m_temporary;
    std::uint32_t m_stream = 0;
    std::uint32_t m_encoder = 0;
    std::uint64_t m_length = 0; // bytes of 16-bit samples, as is what follows
    std::uint64_t m_done = 0;
    std::vector<std::int16_t> m_piece;
    std::string m_error;
};

} // namespace velmora::audio
