#include "render/CommandLine.h"

#include "soundlayer/soundlayer.h"

#include <charconv>
#include <cstdio>
#include <string_view>

#include <getopt.h>
#include <strings.h>

namespace velmora::render {

namespace {

constexpr char kHelp[] =
    R"(Usage: velmora-render [OPTION]... PROJECT OUT
Mix down a Velmora project (.audioproj) to an audio file. The project stays as it is.

OUT's ending chooses the format: .wav (16-bit PCM) or .wma (Windows media audio).

      --rate HZ          sample rate of OUT, 8000 to 192000, for WMA at most 48000
                         (44100)
      --channels 1|2     mono or stereo (2)
      --bitrate BPS      bits per second, for WMA; the nearest possible is taken
                         (128000)
      --ignore-missing   go on without audio files that are missing or cannot be
                         read, and without parts of the project that are damaged
      --quiet            no progress
      --threads N        threads that mix and decode, 1 to 256 (one per core); the
                         result is the same for each N
      --help             print this help
      --version          print the version

Exit status: 0 done, 1 failed, 2 the command line is wrong. After a failure an
earlier OUT stands as it was.
)";

enum Choice { kRate = 256, kChannels, kBitrate, kIgnoreMissing, kQuiet, kThreads, kHelpChoice, kVersion };

constexpr option kChoices[] = {{"rate", required_argument, nullptr, kRate},
                               {"channels", required_argument, nullptr, kChannels},
                               {"bitrate", required_argument, nullptr, kBitrate},
                               {"ignore-missing", no_argument, nullptr, kIgnoreMissing},
                               {"quiet", no_argument, nullptr, kQuiet},
                               {"threads", required_argument, nullptr, kThreads},
                               {"help", no_argument, nullptr, kHelpChoice},
                               {"version", no_argument, nullptr, kVersion},
                               {nullptr, 0, nullptr, 0}};

int Mistake(const std::string& text)
{
    if (!text.empty()) {
        std::fprintf(stderr, "velmora-render: %s\n", text.c_str());
    }
    std::fputs("Try 'velmora-render --help'.\n", stderr);
    return kUsage;
}

/// A whole number within the limits.
template <typename Number>
bool ReadNumber(std::string_view text, Number least, Number most, Number& value)
{
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc{} && stop == end && value >= least && value <= most;
}

bool EndsWith(std::string_view text, std::string_view ending)
{
    return text.size() > ending.size() &&
           strncasecmp(text.data() + text.size() - ending.size(), ending.data(), ending.size()) == 0;
}

} // namespace

std::variant<Options, int> ParseCommandLine(int argc, char** argv)
{
    Options options;
    bool bitrateGiven = false;
    for (int choice; (choice = getopt_long(argc, argv, "", kChoices, nullptr)) != -1;) {
        const std::string value = optarg ? optarg : "";
        switch (choice) {
        case kRate:
            if (!ReadNumber(value, 8000, 192000, options.rate)) {
                return Mistake("--rate takes 8000 to 192000 Hz, not '" + value + "'");
            }
            break;
        case kChannels:
            if (!ReadNumber(value, 1, 2, options.channels)) {
                return Mistake("--channels takes 1 or 2, not '" + value + "'");
            }
            break;
        case kBitrate:
            if (!ReadNumber(value, 1, 10'000'000, options.bitrate)) {
                return Mistake("--bitrate takes bits per second as 128000, not '" + value + "'");
            }
            bitrateGiven = true;
            break;
        case kIgnoreMissing:
            options.ignoreMissing = true;
            break;
        case kQuiet:
            options.quiet = true;
            break;
        case kThreads:
            if (!ReadNumber(value, 1u, 256u, options.threads)) {
                return Mistake("--threads takes 1 to 256, not '" + value + "'");
            }
            break;
        case kHelpChoice:
            std::fputs(kHelp, stdout);
            return kDone;
        case kVersion:
            std::puts("velmora-render " VELMORA_VERSION);
            return kDone;
        default:
            return Mistake("");
        }
    }
    if (argc - optind != 2) {
        return Mistake("give a project and the file to write");
    }
    options.project = argv[optind];
    options.out = argv[optind + 1];

    if (EndsWith(options.out, ".wma")) {
        options.format = OutFormat::Wma;
        const auto rate = static_cast<std::uint32_t>(options.rate);
        const auto channels = static_cast<std::uint32_t>(options.channels);
        if (BASS_WMA_EncodeGetRates(rate, channels, BASS_WMA_ENCODE_STANDARD) == nullptr) {
            return Mistake("WMA does not take " + std::to_string(rate) + " Hz; 48000 is the most");
        }
    } else if (!EndsWith(options.out, ".wav")) {
        return Mistake("'" + options.out + "' ends neither in .wav nor in .wma, and no other format is written");
    } else if (bitrateGiven) {
        return Mistake("--bitrate is for WMA; the size of a WAV file follows from --rate and --channels");
    }
    return options;
}

} // namespace velmora::render
