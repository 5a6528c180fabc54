#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace velmora::render {

enum class OutFormat { Wav, Wma };

/// What the command line asks for. Paths are as typed.
struct Options {
    std::string project;
    std::string out;
    OutFormat format = OutFormat::Wav;
    /// Hz and channels of the file.
    std::int32_t rate = 44100;
    std::int32_t channels = 2;
    /// Bit/s, for WMA.
    std::int32_t bitrate = 128000;
    /// Go on without what the project names and what cannot be had.
    bool ignoreMissing = false;
    bool quiet = false;
    /// 0: one per core.
    std::uint32_t threads = 0;
};

/// Exit codes of the program.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kUsage = 2;

/// The options, or the exit code with which the program ends at once: help and version have been printed to standard
/// output then, a mistake to standard error.
std::variant<Options, int> ParseCommandLine(int argc, char** argv);

} // namespace velmora::render
