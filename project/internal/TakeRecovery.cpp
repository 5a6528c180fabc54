#include "project/internal/TakeRecovery.h"

#include "audio/Recorder_Class.h"
#include "audio/TakeJournal.h"
#include "core/MsgIds.h"
#include "core/ProgramFolders.h"
#include "core/TextUtilities.h"
#include "core/Units.h"
#include "project/CDC_Event_Wave_Class.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"
#include "project/Undo_Class.h"
#include "project/internal/ProjectFolder.h"

#include <algorithm>

namespace velmora::project {
namespace {

constexpr std::string_view kJournals = "*.take";
constexpr std::size_t kMostListed = 10;

} // namespace

struct TakeRecovery::Found {
    std::string wavPath;
    audio::TakeJournal journal;
    /// Recorded in this project, so that its channel's identity says something.
    bool own = false;
};

TakeRecovery::TakeRecovery(ProjectFile_Class& project)
    : m_project(project)
{
}

void TakeRecovery::OfferOwn()
{
    const std::vector<Found> takes = FindIn(m_project.GetAudioPath());
    if (takes.empty()) {
        return;
    }
    const core::Answer answer =
        Ask("The project has recordings that were not saved with it:", takes, "Add them where they belong ?");
    if (answer == core::Answer::Yes) {
        std::ranges::for_each(takes, [this](const Found& take) { Add(take); });
    } else if (answer == core::Answer::No) {
        Refuse(takes);
    }
}

void TakeRecovery::OfferAbandoned()
{
    core::Environment& environment = m_project.Environment();
    if (!m_project.IsNewProject()) {
        return;
    }
    for (const std::string& folder : core::AbandonedProjects(environment)) {
        if (!environment.files.ListFiles(folder, kJournals).empty()) {
            OfferAbandoned(folder);
        }
    }
    core::ClearAbandonedProjects(environment);
}

void TakeRecovery::OfferAbandoned(const std::string& folder)
{
    core::Files& files = m_project.Environment().files;
    const auto lock = files.LockFileCreate(ProjectFolder::LockFileIn(folder));
    if (!lock) {
        return;
    }
    const std::vector<Found> takes = FindIn(folder);
    if (takes.empty()) {
        return;
    }
    const core::Answer answer =
        Ask("Recordings were found of a project that was never saved:", takes, "Add them to this project ?");
    if (answer == core::Answer::Yes) {
        for (const Found& take : takes) {
            if (CopyAndAdd(take)) {
                audio::TakeJournal::Remove(files, take.wavPath);
            }
        }
    } else if (answer == core::Answer::No) {
        Refuse(takes);
    }
}

std::vector<TakeRecovery::Found> TakeRecovery::FindIn(const std::string& folder) const
{
    core::Files& files = m_project.Environment().files;
    const bool own = folder == m_project.GetAudioPath();
    const auto used = m_project.util_AudioFilesInUse();
    std::vector<Found> takes;
    for (const std::string& name : files.ListFiles(folder, kJournals)) {
        const std::string journalPath = std::string(folder).append("\\").append(name);
        const std::string wavPath = audio::TakeJournal::SoundOf(journalPath);
        if (!files.FileExists(wavPath) || (own && used.contains(core::FileNameOfPath(wavPath)))) {
            files.DeleteFile(journalPath);
        } else {
            takes.push_back({wavPath, audio::TakeJournal::Read(files, wavPath), own});
        }
    }
    return takes;
}

core::Answer TakeRecovery::Ask(std::string_view opening, const std::vector<Found>& takes,
                               std::string_view question) const
{
    std::string text(opening);
    for (std::size_t i = 0; i < std::min(takes.size(), kMostListed); ++i) {
        const audio::TakeJournal& journal = takes[i].journal;
        text += "\n" + journal.Title + " (" + core::FormatTimePos(core::RoundToInt(journal.TimePosMS), false);
        text += journal.ChannelTitle.empty() ? ")" : ", " + journal.ChannelTitle + ")";
    }
    if (takes.size() > kMostListed) {
        text += "\nand " + std::to_string(takes.size() - kMostListed) + " more";
    }
    text.append("\n").append(question);
    text += "\n\"No\" moves them to the trash, \"Cancel\" asks again next time.";
    return m_project.Environment().ports.messages.Ask(text, core::Buttons::YesNoCancel, core::Icon::Question,
                                                      "Recordings found");
}

bool TakeRecovery::Add(const Found& take)
{
    const std::string name = core::FileNameOfPath(take.wavPath);
    m_project.Undo->AddUndo("recording", kUndoProject);
    core::MsgParametersClass params;
    params.FilePath = name;
    params.EventTitle = take.journal.Title;
    params.FileStartMS = take.journal.StartMS;
    params.AddTimePosMS = take.journal.TimePosMS;
    params.ChannelID = ChannelFor(take).ClassID();
    m_project.MsgSender->SendMsg(core::RoundToInt(m_project.ClassID()), core::Msg_AddEvent_Wave, params);
    if (!m_project.util_AudioFilesInUse().contains(name)) {
        return false;
    }
    m_project.Recorder->TakeAdded(name, take.journal);
    return true;
}

bool TakeRecovery::CopyAndAdd(const Found& take)
{
    core::Environment& environment = m_project.Environment();
    Found copy = take;
    copy.wavPath = m_project.Recorder->RecordFileName();
    // Until the copy has its journal, the original keeps its own.
    const bool copied = !copy.wavPath.empty() && environment.files.CopyFile(take.wavPath, copy.wavPath) &&
                        copy.journal.Write(environment.files, copy.wavPath);
    if (!copied) {
        environment.ports.messages.Show("Error copying files to new folder: " + m_project.GetAudioPath() +
                                            "\nFile: " + take.wavPath + "\nThe recording stays where it is.",
                                        core::Icon::Exclamation);
        return false;
    }
    return Add(copy);
}

void TakeRecovery::Refuse(const std::vector<Found>& takes)
{
    core::Environment& environment = m_project.Environment();
    for (const Found& take : takes) {
        // What the trash does not take stays, and goes with the next clean-up that it does.
        environment.ports.trash.Move(take.wavPath);
        audio::TakeJournal::Remove(environment.files, take.wavPath);
    }
}

const Channel_Class& TakeRecovery::ChannelFor(const Found& take) const
{
    const audio::TakeJournal& journal = take.journal;
    if (const auto* channel = take.own ? m_project.Chn_GetVoiceChannelObj_by_ID(journal.ChannelID) : nullptr) {
        return *channel;
    }
    for (std::int32_t i = 0; i < m_project.Chn_GetVoiceChannel_TotalN(); ++i) {
        const Channel_Class& channel = *m_project.Chn_GetVoiceChannelObj_by_Index(i);
        if (channel.Title == journal.ChannelTitle) {
            return channel;
        }
    }
    core::MsgParametersClass params;
    m_project.MsgSender->SendMsg(core::RoundToInt(m_project.ClassID()), core::Msg_AddVoiceChannel, params);
    core::MsgParametersClass title;
    title.ChannelID = params.NewChannelID;
    title.Text = journal.ChannelTitle;
    if (!title.Text.empty()) {
        m_project.MsgSender->SendMsg(core::RoundToInt(m_project.ClassID()), core::Msg_Channel_SetTitle, title);
    }
    return *m_project.Chn_GetVoiceChannelObj_by_ID(params.NewChannelID);
}

} // namespace velmora::project
