#pragma once

#include "core/ClassIds.h"
#include "persistence/SharedText.h"

#include <cstdint>
#include <string>

namespace velmora::project {

/// What a snapshot covers; the number is what `Msg_UndoRestored` carries.
enum UndoKind : std::int32_t {
    kUndoEvents = 0,    ///< a channel's events, and the editor
    kUndoChannel = 1,   ///< a channel's settings
    kUndoMarks = 2,     ///< the marks
    kUndoEffects = 3,   ///< a channel's effects
    kUndoProject = 4,   ///< all of the project but the recorder's numbers, and the editor
    kUndoMetronome = 5, ///< the metronome
};

/// One step that can be undone or redone: the state to go back to.
struct UndoData_Class {
    enum Kind : std::int32_t { kUndo = 0, kRedo = 1 };

    std::int32_t ListKind = kUndo;
    /// Its number in its list, ascending.
    std::int32_t SeqID = 0;
    /// Tag of the caller by which a stream of changes makes one step; -1 for none.
    std::int32_t SpecialID = -1;
    /// The channel concerned, -1 for none.
    core::ClassID wChannelClassID = -1;
    /// What the user sees.
    std::string Title;
    persistence::SharedText XMLData;
    persistence::SharedText EventsEditorXMLData;
    std::int32_t UndoDataType = kUndoProject;
};

} // namespace velmora::project
