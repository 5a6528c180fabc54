#pragma once

#include "audio/TakeJournal.h"
#include "audio/internal/LiveInput.h"
#include "core/ClassIds.h"
#include "core/Environment.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace velmora::audio {

/// A take from its start to its end: the capture, the file that grows, and the journal beside it.
///
/// Order of calls: `Open`, `AlignTo`, `Begin` once playback has been asked for, `Watch` now and then, `End`. Destroyed
/// before its end, it leaves a whole file and its journal.
class Take {
public:
    /// `path` is a free name for the file, `journal` what is known before the start.
    Take(core::Environment& environment, std::string path, TakeJournal journal);
    ~Take();
    Take(const Take&) = delete;
    Take& operator=(const Take&) = delete;

    /// Starts the capture into the file and joins `mixer`. False, with nothing left behind, when that fails; `Error`
    /// says why.
    bool Open(std::int32_t device, std::uint32_t mixer, bool heard);
    const std::string& Error() const { return m_error; }
    /// Where on the timeline it begins, ms.
    void AlignTo(std::int32_t positionMS);
    /// Lets the file begin.
    void Begin();
    /// False when it cannot go on: the file cannot be written, or the device is gone. Brings the journal up to date.
    /// To be called each `kWatchEach`.
    bool Watch();
    static constexpr std::chrono::milliseconds kWatchEach{50};
    /// The file is whole, and the journal says where it lies to the ms.
    void End();

    void SetHeard(bool heard) { m_live.SetHeard(heard); }
    const AudioInput_Class& Input() const { return m_live.Input; }
    const std::string& Path() const { return m_path; }
    std::string FileName() const;
    const TakeJournal& Journal() const { return m_journal; }
    core::ClassID ChannelID() const { return m_journal.ChannelID; }
    /// What went wrong, a message each, for the user.
    std::vector<std::string> Troubles() const;

    /// The undo step that takes it back.
    std::int32_t undoStep = 0;
    /// It ends because its channel is deleted.
    bool channelGoes = false;

private:
    void UpdateJournal();

    core::Environment& m_environment;
    std::string m_path;
    TakeJournal m_journal;
    LiveInput m_live;
    std::string m_error;
    std::int32_t m_startMS;
    std::int32_t m_looks = 0;
};

} // namespace velmora::audio
