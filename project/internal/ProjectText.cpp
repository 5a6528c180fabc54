#include "project/internal/ProjectText.h"

#include "audio/Metronome_Class.h"
#include "audio/Recorder_Class.h"
#include "core/SoundEdit.h"
#include "persistence/ItemNumbers.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/LoadContext.h"
#include "project/MarkList_Class.h"
#include "project/ProjectFile_Class.h"
#include "project/internal/ChannelRegistry.h"

#include <algorithm>
#include <string>
#include <utility>

namespace velmora::project {
namespace {

std::string_view ItemsOf(std::int32_t mode)
{
    return mode == Channel_Class::kVoice ? "VoiceChannel" : "MusicChannel";
}

std::string CountOf(std::int32_t mode)
{
    return std::string(ItemsOf(mode)) + "Array_C";
}

} // namespace

ProjectText::ProjectText(ProjectFile_Class& project, ChannelRegistry& channels)
    : m_project(project)
    , m_channels(channels)
{
}

persistence::SharedText ProjectText::GetSharedXML() const
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("ProjectFile_Class");
    writer.Add_Element("ID", m_project.ClassID());
    writer.Add_Element("Counter_MarkN", m_project.Counter_MarkN);
    writer.Add_Element("chn_Music_ChannelCounter", m_project.chn_Music_ChannelCounter);
    writer.Add_Element("chn_Voice_ChannelCounter", m_project.chn_Voice_ChannelCounter);
    writer.Add_RawElement("Marks", persistence::SharedText(m_project.Marks->GetXMLData()));
    writer.Add_RawElement("Recorder", persistence::SharedText(m_project.Recorder->GetXMLData()));
    writer.Add_RawElement("Metronome", persistence::SharedText(m_project.Metronome->GetXMLData()));
    WriteChannels(writer, Channel_Class::kMusic);
    WriteChannels(writer, Channel_Class::kVoice);
    return writer.GetSharedXML();
}

void ProjectText::WriteChannels(persistence::UTIL_XMLWrite& writer, std::int32_t mode) const
{
    const auto& table = mode == Channel_Class::kVoice ? m_channels.Voice() : m_channels.Music();
    writer.Add_Element(CountOf(mode), static_cast<std::int32_t>(table.size()));
    std::int32_t i = 0;
    for (const auto& channel : table) {
        writer.Add_RawElement(persistence::ItemName(ItemsOf(mode), i++), channel->GetSharedXML());
    }
}

bool ProjectText::LoadXMLData(std::string_view xml, bool loadIDs, bool loadRecorder, LoadContext& load,
                              core::ClassID& id)
{
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(xml);
    if (!reader.MasterTagIs("projectfile_class")) {
        return false;
    }
    // A channel that stays keeps its mixers, and nothing is heard of it.
    const core::SoundEdit edit;
    ChannelRegistry::Table earlier = m_channels.TakeOut();
    if (loadIDs) {
        core::ClassID stated = -1;
        reader.ReadElement("ID", stated, -1);
        id = load.Adopt(stated);
    }
    LoadParts(reader, loadRecorder, load);
    persistence::RowBudget budget(xml);
    const Count music = LoadChannels(reader, Channel_Class::kMusic, earlier, budget, load);
    const Count voice = LoadChannels(reader, Channel_Class::kVoice, earlier, budget, load);
    const std::int64_t total = music.stated + voice.stated;
    const std::int64_t failed = total - music.loaded - voice.loaded;
    if (failed > 0) {
        load.CountLoss();
        m_project.Environment().ports.messages.Show("Error loading " + std::to_string(failed) + " of " +
                                                        std::to_string(total) + " channel(s)",
                                                    core::Icon::Exclamation);
    }
    return true;
}

void ProjectText::LoadParts(persistence::UTIL_XMLRead& reader, bool loadRecorder, LoadContext& load)
{
    const auto readCounter = [&reader](const char* name, std::int32_t& counter) {
        reader.ReadElement(name, counter, 1);
        counter = std::clamp(counter, 1, 1'000'000'000);
    };
    readCounter("Counter_MarkN", m_project.Counter_MarkN);
    readCounter("chn_Music_ChannelCounter", m_project.chn_Music_ChannelCounter);
    readCounter("chn_Voice_ChannelCounter", m_project.chn_Voice_ChannelCounter);
    bool wholeMarks = false;
    if (!m_project.Marks->LoadXMLData(reader.ReadRaw("Marks").value_or(std::string_view()), true, &wholeMarks)) {
        m_project.Environment().ports.messages.Show("Error loading marks", core::Icon::Exclamation);
    }
    bool whole = wholeMarks;
    if (loadRecorder) {
        whole &= m_project.Recorder->LoadXMLData(reader.ReadRaw("Recorder").value_or(std::string_view()));
    }
    whole &= m_project.Metronome->LoadXMLData(reader.ReadRaw("Metronome").value_or(std::string_view()));
    if (!whole) {
        load.CountLoss();
    }
}

ProjectText::Count ProjectText::LoadChannels(persistence::UTIL_XMLRead& reader, std::int32_t mode,
                                             ChannelRegistry::Table& earlier, persistence::RowBudget& budget,
                                             LoadContext& load)
{
    std::int32_t stated = 0;
    bool whole = reader.ReadElement(CountOf(mode), stated, 0);
    stated = std::max(stated, 0);
    Count count{stated, 0};
    for (std::int32_t i = 0; i < std::min(stated, kMostChannels); ++i) {
        const auto text = budget.Take(reader.ReadRaw(persistence::ItemName(ItemsOf(mode), i)));
        if (!text || text->empty()) {
            continue;
        }
        auto channelReader = persistence::UTIL_XMLRead::WithMasterTag(*text);
        Channel_Class& channel = ChannelFor(Channel_Class::StatedID(channelReader), mode, earlier);
        if (channel.LoadXMLData(channelReader, false, true, load) && channel.ChannelMode() == mode) {
            ++count.loaded;
        } else {
            m_channels.RemoveLast(mode);
        }
    }
    // A count that is too small would hide channels.
    if (!whole || reader.ReadRaw(persistence::ItemName(ItemsOf(mode), stated))) {
        load.CountLoss();
    }
    return count;
}

Channel_Class& ProjectText::ChannelFor(core::ClassID id, std::int32_t mode, ChannelRegistry::Table& earlier)
{
    const auto found = std::ranges::find_if(earlier, [id, mode](const auto& channel) {
        return channel && channel->ClassID() == id && channel->ChannelMode() == mode;
    });
    return found == earlier.end() ? m_channels.Add(mode) : m_channels.PutBack(std::move(*found));
}

} // namespace velmora::project
