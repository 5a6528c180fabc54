#include "project/Undo_Class.h"

#include "audio/Metronome_Class.h"
#include "audio/Recorder_Class.h"
#include "core/MsgIds.h"
#include "effects/FX_ChainContainer_Class.h"
#include "engine/audioplayer.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/LoadContext.h"
#include "project/MarkList_Class.h"
#include "project/ProjectFile_Class.h"

#include <unordered_set>
#include <utility>

namespace velmora::project {
namespace {

constexpr std::int32_t kNoTag = -1;
constexpr core::ClassID kNoChannel = -1;

bool CoversEditor(std::int32_t type)
{
    return type == kUndoEvents || type == kUndoProject;
}

} // namespace

Undo_Class::Undo_Class(ProjectFile_Class& project)
    : m_project(project)
{
}

void Undo_Class::AddUndo(std::string_view Title, std::int32_t UndoDataType, core::ClassID ChannelID,
                         std::int32_t SpecialID)
{
    TakeSnapshot(UndoData_Class::kUndo, Title, UndoDataType, ChannelID, SpecialID);
    m_redo.entries.clear();
    while (m_undo.entries.size() > kMostSteps) {
        m_undo.entries.pop_front();
    }
    Send(core::Msg_UndoListChanged);
    m_project.Modified = true;
}

void Undo_Class::Forget(std::int32_t SeqID)
{
    if (std::erase_if(m_undo.entries, [SeqID](const UndoData_Class& entry) { return entry.SeqID == SeqID; }) > 0) {
        Send(core::Msg_UndoListChanged);
    }
}

void Undo_Class::ClearUndoRedoList()
{
    m_undo.entries.clear();
    m_redo.entries.clear();
}

void Undo_Class::Undo()
{
    StepWhenIdle(UndoData_Class::kUndo);
}

void Undo_Class::Redo()
{
    StepWhenIdle(UndoData_Class::kRedo);
}

std::string Undo_Class::CurUndo_Title() const
{
    return m_undo.entries.empty() ? std::string() : "Undo " + m_undo.entries.back().Title;
}

std::string Undo_Class::CurRedo_Title() const
{
    return m_redo.entries.empty() ? std::string() : "Redo " + m_redo.entries.back().Title;
}

std::int32_t Undo_Class::CurUndo_SeqID() const
{
    return m_undo.entries.empty() ? kNoTag : m_undo.entries.back().SeqID;
}

std::int32_t Undo_Class::CurUndo_SpecialID() const
{
    return m_undo.entries.empty() ? kNoTag : m_undo.entries.back().SpecialID;
}

core::ClassID Undo_Class::CurUndo_ChannelID() const
{
    return m_undo.entries.empty() ? kNoChannel : m_undo.entries.back().wChannelClassID;
}

std::size_t Undo_Class::BytesHeld() const
{
    std::unordered_set<const void*> counted;
    std::size_t bytes = 0;
    for (const List* list : {&m_undo, &m_redo}) {
        for (const UndoData_Class& entry : list->entries) {
            bytes += sizeof(entry) + entry.Title.capacity() + entry.XMLData.BytesHeld(counted) +
                     entry.EventsEditorXMLData.BytesHeld(counted);
        }
    }
    return bytes;
}

void Undo_Class::TakeSnapshot(UndoData_Class::Kind kind, std::string_view title, std::int32_t type,
                              core::ClassID channelID, std::int32_t specialID)
{
    List& list = ListOf(kind);
    UndoData_Class entry;
    entry.ListKind = kind;
    entry.SeqID = static_cast<std::int32_t>(list.nextSeqID++);
    entry.SpecialID = specialID;
    entry.wChannelClassID = channelID;
    entry.Title = title;
    entry.UndoDataType = type;
    entry.XMLData = StateText(type, channelID);
    if (CoversEditor(type)) {
        entry.EventsEditorXMLData = persistence::SharedText(m_project.Environment().ports.views.EditorXML());
    }
    list.entries.push_back(std::move(entry));
}

persistence::SharedText Undo_Class::StateText(std::int32_t type, core::ClassID channelID) const
{
    const Channel_Class* channel = m_project.Chn_GetChannelClassObj_by_ID(channelID);
    switch (type) {
    case kUndoEvents:
        return channel ? channel->ChannelData->GetSharedXML() : persistence::SharedText();
    case kUndoChannel:
        return channel ? channel->GetSharedXML() : persistence::SharedText();
    case kUndoMarks:
        return persistence::SharedText(m_project.Marks->GetXMLData());
    case kUndoEffects:
        return channel ? channel->FX->GetSharedXML() : persistence::SharedText();
    case kUndoProject:
        return m_project.GetSharedXML();
    case kUndoMetronome:
        return persistence::SharedText(m_project.Metronome->GetXMLData());
    default:
        return {};
    }
}

void Undo_Class::StepWhenIdle(UndoData_Class::Kind from)
{
    m_project.MsgSender->WhenIdle([this, from, alive = std::weak_ptr(m_alive)] {
        if (!alive.expired()) {
            Step(from);
        }
    });
}

void Undo_Class::Step(UndoData_Class::Kind from)
{
    if (m_project.Recorder->isRecording()) {
        return;
    }
    if (player_IsPlaying() != 0) {
        Send(core::Msg_Player_Stop);
    }
    m_project.Modified = true;
    List& list = ListOf(from);
    if (list.entries.empty()) {
        return;
    }
    const UndoData_Class entry = list.entries.back();
    TakeSnapshot(from == UndoData_Class::kUndo ? UndoData_Class::kRedo : UndoData_Class::kUndo, entry.Title,
                 entry.UndoDataType, entry.wChannelClassID, entry.SpecialID);
    Restore(entry);
    std::erase_if(list.entries, [&entry](const UndoData_Class& other) { return other.SeqID == entry.SeqID; });
    Send(core::Msg_UndoListChanged);
}

void Undo_Class::Restore(const UndoData_Class& entry)
{
    if (!LoadState(entry)) {
        m_project.Environment().ports.messages.Show("Error restoring state", core::Icon::Exclamation);
    }
    core::MsgParametersClass params;
    params.ChannelID = entry.wChannelClassID;
    params.UndoDataType = entry.UndoDataType;
    m_project.MsgSender->SendMsg(core::kNoSender, core::Msg_UndoRestored, params);
}

bool Undo_Class::LoadState(const UndoData_Class& entry)
{
    const std::string text = entry.XMLData.Text();
    Channel_Class* channel = m_project.Chn_GetChannelClassObj_by_ID(entry.wChannelClassID);
    LoadContext load(m_project.Environment().ids);
    bool loaded = false;
    switch (entry.UndoDataType) {
    case kUndoEvents:
        loaded = channel && channel->ChannelData->LoadXMLData(text, false, load);
        break;
    case kUndoChannel:
        loaded = channel && channel->LoadXMLData(text, false, false, load);
        break;
    case kUndoMarks:
        loaded = m_project.Marks->LoadXMLData(text, true);
        break;
    case kUndoEffects:
        loaded = channel && channel->FX->LoadXMLData(text, false);
        break;
    case kUndoProject:
        loaded = m_project.LoadXMLData(text, false, false, false);
        break;
    case kUndoMetronome:
        loaded = m_project.Metronome->LoadXMLData(text);
        break;
    default:
        break;
    }
    if (CoversEditor(entry.UndoDataType)) {
        loaded &= m_project.Environment().ports.views.LoadEditorXML(entry.EventsEditorXMLData.Text());
    }
    return loaded;
}

void Undo_Class::Send(std::int32_t msgID) const
{
    core::MsgParametersClass params;
    m_project.MsgSender->SendMsg(core::kNoSender, msgID, params);
}

} // namespace velmora::project
