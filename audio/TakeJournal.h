#pragma once

#include "core/ClassIds.h"
#include "core/Files.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velmora::audio {

/// Where a take belongs: what has to be known to make a clip of its file after a crash.
///
/// It stands as a small file beside the take's sound, under the same name with the ending ".take", from before the
/// first sample until the project's own file holds the clip. docs/formats/take-journal.md has the format.
struct TakeJournal {
    core::ClassID ChannelID = -1;
    std::string ChannelTitle;
    /// Where the take began on the timeline, ms.
    double TimePosMS = 0;
    /// What the latencies put in front of the sound, ms: the clip's `StartMS`.
    std::int32_t StartMS = 0;
    std::string Title;

    /// The journal's path for the sound file `wavPath`, and back.
    static std::string PathFor(std::string_view wavPath);
    static std::string SoundOf(std::string_view journalPath);

    /// Beside the sound file, in one step: after a crash either the earlier journal stands there or this one.
    bool Write(core::Files& files, std::string_view wavPath) const;
    /// What cannot be read, or makes no sense, takes its default; without a title, the sound file's name is it.
    static TakeJournal Read(const core::Files& files, std::string_view wavPath);
    /// True when no journal stands beside the sound file afterwards.
    static bool Remove(core::Files& files, std::string_view wavPath);
};

} // namespace velmora::audio
