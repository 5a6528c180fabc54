#include "audio/internal/Take.h"

#include "core/TextUtilities.h"
#include "core/Units.h"

#include <algorithm>
#include <array>
#include <utility>

namespace velmora::audio {
namespace {

/// Looks at a take after which its place in the file is told to the journal: as soon as playback may run, once it does
/// after a seek too, and when the devices' latencies have settled.
constexpr std::array<std::int32_t, 3> kTellingLooks{1, 6, 40};

} // namespace

Take::Take(core::Environment& environment, std::string path, TakeJournal journal)
    : m_environment(environment)
    , m_path(std::move(path))
    , m_journal(std::move(journal))
    , m_live(environment)
    , m_startMS(core::RoundToInt(m_journal.TimePosMS))
{
}

Take::~Take()
{
    End();
}

bool Take::Open(std::int32_t device, std::uint32_t mixer, bool heard)
{
    AudioInput_Class& input = m_live.Input;
    input.SaveToFile = true;
    input.FilePath = m_path;
    input.InputDevice = device;
    input.RecordAsMono = m_environment.config.Global_Rec_RecordAsMono;
    // The file is never there without its journal.
    const bool noted = m_journal.Write(m_environment.files, m_path);
    const bool started = m_live.Start(mixer, heard);
    if (started && noted) {
        return true;
    }
    m_error = started ? "No journal of the recording can be written to the folder:\n" + core::FolderOfPath(m_path)
                      : m_live.LastErrorMessage();
    input.WarnIfEncoderPaused = false;
    m_live.End();
    TakeJournal::Remove(m_environment.files, m_path);
    if (m_environment.files.FileExists(m_path)) {
        // Its name was free, and nothing has been written to it.
        m_environment.files.DeleteFile(m_path);
    }
    return false;
}

void Take::AlignTo(std::int32_t positionMS)
{
    m_live.Input.AlignTo(positionMS);
    m_startMS = positionMS;
    m_journal.TimePosMS = positionMS;
}

void Take::Begin()
{
    m_live.Input.StartEncoder();
    UpdateJournal();
}

bool Take::Watch()
{
    if (Input().FileFailed() || Input().Device() == AudioInput_Class::DeviceState::Lost) {
        return false;
    }
    if (std::ranges::find(kTellingLooks, ++m_looks) != kTellingLooks.end()) {
        m_live.Input.Align();
        UpdateJournal();
    }
    return true;
}

void Take::End()
{
    if (Input().Capturing()) {
        m_live.End();
        UpdateJournal();
    }
}

std::string Take::FileName() const
{
    return core::FileNameOfPath(m_path);
}

std::vector<std::string> Take::Troubles() const
{
    std::vector<std::string> troubles;
    const std::string kept = "\nWhat was recorded until then is on the channel \"" + m_journal.ChannelTitle + "\".\n";
    if (Input().FileFailed()) {
        troubles.push_back("The recording ended because its file could not be written:\n" + m_path + kept +
                           "The disk may be full. Make room, and record on from there.");
    } else if (Input().Device() == AudioInput_Class::DeviceState::Lost) {
        troubles.push_back("The recording ended because the input device is gone." + kept +
                           "Connect it again or choose another one, and record on from there.");
    }
    if (Input().GapMS() > 0) {
        troubles.push_back("The input device left out " + std::to_string(Input().GapMS()) +
                           " ms of the recording.\nSilence stands in their place, so the rest is in time.");
    }
    return troubles;
}

void Take::UpdateJournal()
{
    // A correction of the user's may put the start before the file begins.
    const std::int32_t fileStart = Input().FileStartMS();
    m_journal.StartMS = std::max(fileStart, 0);
    m_journal.TimePosMS = m_startMS + std::clamp(-fileStart, 0, std::max(-m_environment.config.Recording_OffsetMS, 0));
    m_journal.Write(m_environment.files, m_path);
}

} // namespace velmora::audio
