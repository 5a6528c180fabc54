#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace velmora::audio {

/// A clip as an export needs it. Times are ms; fades count from the clip's start and act if above 0.
struct ExportClip {
    /// The mixer that it plays into.
    std::uint32_t mixer = 0;
    /// Absolute, in the internal form.
    std::string filePath;
    double gainFactor = 1;
    std::int64_t beginMS = 0;
    std::int64_t endMS = 0;
    std::int32_t fileStartMS = 0;
    std::int32_t fadeInEndMS = 0;
    std::int32_t fadeOutStartMS = 0;
};

/// Starts, fades and ends the clips of an export as its time goes on.
///
/// Clips begin and end at their own frame. A fade moves each 10 ms of the timeline, and acts over the 10 ms after each
/// step. Streams are opened up to 2 s ahead, so that their decoding can run ahead of the mix, and freed when their
/// clip ends or with this object; a clip whose file cannot be opened is silent. Cost of a step: the clips that sound.
class ClipSchedule {
public:
    /// `rate`: that of the mixers, in Hz.
    ClipSchedule(std::vector<ExportClip> clips, std::int32_t rate);
    ~ClipSchedule();
    ClipSchedule(const ClipSchedule&) = delete;
    ClipSchedule& operator=(const ClipSchedule&) = delete;

    /// End of the last clip; 0 without any.
    std::int64_t EndMS() const { return m_endMS; }

    /// Brings the mixers to time `timeMS`, which rises from call to call and passes over no `NextChangeMS`.
    void Advance(std::int64_t timeMS);

    /// The next time at which a clip begins, ends or fades; until then the mix may be pulled in one piece.
    std::int64_t NextChangeMS() const { return m_nextChangeMS; }

    /// Files that could not be opened, each once.
    const std::set<std::string>& UnreadableFiles() const { return m_unreadableFiles; }

private:
    struct Sounding {
        const ExportClip* clip;
        std::uint32_t stream;
        float volume;
    };

    void OpenAhead(std::int64_t timeMS);
    void Open(std::size_t index);
    void Start(std::size_t index, std::int64_t timeMS);
    void EndOrFade(std::int64_t timeMS);
    void FindNextChange(std::int64_t timeMS);

    const std::int32_t m_rate;
    /// By start.
    std::vector<ExportClip> m_clips;
    /// One of each clip; 0 before it is opened and once it sounds.
    std::vector<std::uint32_t> m_streams;
    std::vector<Sounding> m_sounding;
    std::size_t m_nextToOpen = 0;
    std::size_t m_nextToStart = 0;
    std::int64_t m_endMS = 0;
    std::int64_t m_nextChangeMS = 0;
    std::set<std::string> m_unreadableFiles;
};

} // namespace velmora::audio
