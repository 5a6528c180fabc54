#pragma once

#include "app/MainLayout.h"

#include <QWidget>

class QLabel;

namespace velmora::controls {
class Combo;
class LCDDisplay;
class MainToolBar;
class MasterPanel;
class MusicFrame_UserCtrl;
class VoiceFrame_UserCtrl;
} // namespace velmora::controls

namespace velmora::app {

/// The client area of the main window: its parts at their places, the ground and the hairlines between them.
class MainPanel final : public QWidget {
public:
    explicit MainPanel(QWidget* parent);

    QSize sizeHint() const override { return {kFirstWidth, kMinimumHeight}; }

    controls::MainToolBar* CoolToolBar1;
    controls::LCDDisplay* LCDLabel;
    controls::Combo* MarksCombo;
    controls::MusicFrame_UserCtrl* MusicFrame;
    controls::VoiceFrame_UserCtrl* VoiceFrame;
    controls::MasterPanel* Pic_MasterVol;
    QLabel* Label2;
    QWidget* EventsSmallView;
    QWidget* EventsEditor;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// A plain place in one colour, for a part that is still to come.
    QWidget* Reserve(const char* name, const QColor& ground);
};

} // namespace velmora::app
