#pragma once

#include "core/ClassIds.h"
#include "persistence/SharedText.h"
#include "project/UndoData_Class.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>

namespace velmora::project {

class ProjectFile_Class;

/// Undo and redo by snapshots: whoever edits takes one first, and a step back or forth puts one back.
///
/// Snapshots are the texts of what they cover, in pieces that all of them share, so a step costs what it changed. A
/// restore brings back the ids of the text, and so steps taken before it still find their channels.
/// The project owns it. Interface thread only.
class Undo_Class {
public:
    static constexpr std::size_t kMostSteps = 100;

    explicit Undo_Class(ProjectFile_Class& project);

    /// Keeps the present state as a step. Steps undone so far can no longer be redone; of more than `kMostSteps`, the
    /// oldest goes. `ChannelID` and `SpecialID` are -1 for none.
    void AddUndo(std::string_view Title, std::int32_t UndoDataType, core::ClassID ChannelID = -1,
                 std::int32_t SpecialID = -1);
    /// Forgets the step of this number without restoring it: its edit goes with the step before.
    void Forget(std::int32_t SeqID);
    /// Forgets all steps.
    void ClearUndoRedoList();

    /// A step back or forth; stops the player first. While recording, neither does anything. Inside a delivery of the
    /// bus they wait until the outermost one has ended. A step that cannot be restored is told by message and is gone
    /// all the same; the way back stands.
    void Undo();
    void Redo();

    /// "Undo " or "Redo " with the title of the step next in line; "" without one.
    std::string CurUndo_Title() const;
    std::string CurRedo_Title() const;
    /// Number, tag and channel of the step that `Undo` would take back; -1 without one.
    std::int32_t CurUndo_SeqID() const;
    std::int32_t CurUndo_SpecialID() const;
    core::ClassID CurUndo_ChannelID() const;

    /// Memory behind all steps, what they share counted once.
    std::size_t BytesHeld() const;

private:
    /// In the order of their numbers.
    struct List {
        std::deque<UndoData_Class> entries;
        double nextSeqID = 0;
    };

    List& ListOf(UndoData_Class::Kind kind) { return kind == UndoData_Class::kUndo ? m_undo : m_redo; }
    void TakeSnapshot(UndoData_Class::Kind kind, std::string_view title, std::int32_t type, core::ClassID channelID,
                      std::int32_t specialID);
    persistence::SharedText StateText(std::int32_t type, core::ClassID channelID) const;
    void StepWhenIdle(UndoData_Class::Kind from);
    void Step(UndoData_Class::Kind from);
    void Restore(const UndoData_Class& entry);
    bool LoadState(const UndoData_Class& entry);
    void Send(std::int32_t msgID) const;

    ProjectFile_Class& m_project;
    List m_undo;
    List m_redo;
    /// Gone with this object: a step that still waits then does nothing.
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};

} // namespace velmora::project
