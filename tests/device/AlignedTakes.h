#pragma once

#include "audio/AudioInput_Class.h"
#include "audio/SoundSession.h"
#include "tests/device/AudioServer.h"
#include "tests/support/TestEnvironment.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace velmora::audio {

/// Takes of the program's own output, on a sound server of its own: a clip with clicks plays, the input hears it, and
/// the take is looked at for where the clicks lie.
class AlignedTakes {
public:
    AlignedTakes();
    ~AlignedTakes();
    AlignedTakes(const AlignedTakes&) = delete;
    AlignedTakes& operator=(const AlignedTakes&) = delete;

    struct Take {
        /// How much later than the clip that plays the take would play, in ms: of its clicks the middle one.
        double errorMS = 0;
        /// The distances of the clicks in the take are not those of the clip, none were found, or the buffer ran dry:
        /// the machine had no time, so that what was heard was moved in mid-take.
        bool disturbed = false;
        std::int32_t fileStartMS = 0;
        std::int32_t deviceLatencyMS = 0;
        std::int64_t gapMS = 0;
    };
    /// A take that starts with the clock at `startMS`, with a buffer of `bufferMS`.
    Take Record(std::int32_t bufferMS, std::int32_t startMS);

    /// Plays for `ms` and records beside it or not; the time of the processor that this took, in ms.
    std::int64_t CpuTimeMS(std::int32_t ms, bool recording);

private:
    bool Start(AudioInput_Class& input);
    Take LookAt(std::int32_t startMS, const AudioInput_Class& input) const;

    testing::AudioServer m_server;
    testing::TestEnvironment m_environment;
    std::unique_ptr<SoundSession> m_session;
    std::uint32_t m_device = 0;
    std::uint32_t m_channel = 0;
    std::string m_takePath;
};

} // namespace velmora::audio
