#include "audio/TakeJournal.h"

#include "core/TextUtilities.h"
#include "core/Units.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"

#include <algorithm>
#include <limits>

namespace velmora::audio {
namespace {

constexpr std::string_view kEnding = ".take";
constexpr std::string_view kSoundEnding = ".wav";
constexpr std::int64_t kMaxBytes = 1 << 16;

} // namespace

std::string TakeJournal::PathFor(std::string_view wavPath)
{
    return core::FileExtensionCut(wavPath).append(kEnding);
}

std::string TakeJournal::SoundOf(std::string_view journalPath)
{
    return core::FileExtensionCut(journalPath).append(kSoundEnding);
}

bool TakeJournal::Write(core::Files& files, std::string_view wavPath) const
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("Take");
    writer.Add_Element("ChannelID", ChannelID);
    writer.Add_Element("ChannelTitle", std::string_view(ChannelTitle));
    writer.Add_Element("TimePosMS", TimePosMS);
    writer.Add_Element("StartMS", StartMS);
    writer.Add_Element("Title", std::string_view(Title));
    return files.WriteTextFile(PathFor(wavPath), writer.GetXMLString());
}

TakeJournal TakeJournal::Read(const core::Files& files, std::string_view wavPath)
{
    const std::string text = files.ReadTextFile(PathFor(wavPath), kMaxBytes);
    TakeJournal journal;
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(text);
    if (reader.MasterTagIs("take")) {
        reader.ReadElement("ChannelID", journal.ChannelID, -1);
        reader.ReadElement("ChannelTitle", journal.ChannelTitle, "");
        reader.ReadElement("TimePosMS", journal.TimePosMS, 0);
        reader.ReadElement("StartMS", journal.StartMS, 0);
        reader.ReadElement("Title", journal.Title, "");
    }
    // Written so that a value that is no number gives 0 too.
    constexpr double kLatest = std::numeric_limits<std::int32_t>::max();
    journal.TimePosMS = journal.TimePosMS > 0 ? std::min(journal.TimePosMS, kLatest) : 0;
    journal.StartMS = std::max(journal.StartMS, 0);
    if (journal.Title.empty()) {
        journal.Title = core::FileExtensionCut(core::FileNameOfPath(wavPath));
    }
    return journal;
}

bool TakeJournal::Remove(core::Files& files, std::string_view wavPath)
{
    const std::string path = PathFor(wavPath);
    return !files.FileExists(path) || files.DeleteFile(path);
}

} // namespace velmora::audio
