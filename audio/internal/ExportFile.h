#pragma once

#include "core/Files.h"
#include "core/Ports.h"

#include <cstdint>
#include <string>

namespace velmora::audio {

struct ExportFormat {
    bool wma = false;
    std::int32_t sampleRate = 44100;
    std::int32_t channels = 2;
    /// Bit/s, for WMA.
    std::int32_t bitrate = 0;
};

/// The file of an export: grows under a temporary name beside its target, fed by an encoder on the master mixer, and
/// takes the target's name only when it is whole. Destroyed before that, it leaves nothing behind.
class ExportFile {
public:
    /// `target` is in the internal form; `stream` is a stereo stream at `streamRate`.
    ExportFile(core::Files& files, std::string target, std::uint32_t stream, std::int32_t streamRate);
    ~ExportFile();
    ExportFile(const ExportFile&) = delete;
    ExportFile& operator=(const ExportFile&) = delete;

    /// Creates the file; what is pulled goes into it from `Begin` on. False leaves a code in the sound layer.
    bool Open(const ExportFormat& format);
    bool Begin();
    /// The file no longer holds all that was pulled, so it is of no use to go on.
    bool Failed() const;
    /// Closes the file and gives it its name, while the interface lives. False if not all was written; an earlier file
    /// still stands then.
    bool Finish(core::PendingEvents& events);

private:
    bool Close();

    core::Files& m_files;
    std::string m_target;
    std::uint32_t m_stream;
    std::int32_t m_streamRate;
    std::string m_temporary;
    std::uint32_t m_wavEncoder = 0;
    std::uint32_t m_wmaEncoder = 0;
    std::uint32_t m_wmaDsp = 0;
};

} // namespace velmora::audio
