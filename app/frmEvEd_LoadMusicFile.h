#pragma once

#include "core/ClassIds.h"

#include <QDialog>
#include <optional>
#include <vector>

class QRadioButton;

namespace velmora::controls {
class Combo;
}
namespace velmora::project {
class ProjectFile_Class;
}

namespace velmora::app {

/// Asks where a music file goes into a channel that holds clips: at the start, at the cursor, or behind a clip.
class frmEvEd_LoadMusicFile final : public QDialog {
public:
    /// `project` outlives this and keeps the channel meanwhile.
    frmEvEd_LoadMusicFile(project::ProjectFile_Class& project, core::ClassID channel, QWidget* parent);

    /// After `exec`: the place, in ms; nothing on a cancel.
    std::optional<double> Position() const { return m_position; }

    void accept() override;

private:
    void ListEvents(core::ClassID channel);

    project::ProjectFile_Class& m_project;
    QRadioButton* m_start;
    QRadioButton* m_cursor;
    QRadioButton* m_after;
    controls::Combo* m_events;
    /// Where the clips of the list end, ms.
    std::vector<double> m_ends;
    std::optional<double> m_position;
};

} // namespace velmora::app
