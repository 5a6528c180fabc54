#include "app/MainPanel.h"

#include "controls/ChannelFrame.h"
#include "controls/Combo.h"
#include "controls/CoolToolBar.h"
#include "controls/Drawing.h"
#include "controls/LCDDisplay.h"
#include "controls/MasterPanel.h"
#include "controls/Theme.h"

#include <QLabel>
#include <QPainter>

namespace velmora::app {
namespace {

namespace theme = controls::theme;

constexpr QRect kTimePlace{312, 4, 105, 21};
constexpr QRect kMarksPlace{620, 4, 129, 21};
/// The line that closes the toolbar's band.
constexpr double kBandEnd = 31;
constexpr double kDividerTop = 45;
constexpr double kDividerBottom = 357;

QRect Rect(const Box& box)
{
    return {box.left, box.top, box.width, box.height};
}

/// A caption whose letters stand close under its upper edge.
class Caption final : public QLabel {
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        constexpr double kCapitals = 8;
        QPainter painter(this);
        painter.setFont(theme::Font(11));
        painter.setPen(theme::Text2);
        controls::DrawLine(painter, QRectF(0, 0, width(), kCapitals), Qt::AlignLeft, text());
    }
};

} // namespace

MainPanel::MainPanel(QWidget* parent)
    : QWidget(parent)
    , CoolToolBar1(new controls::MainToolBar(this))
    , LCDLabel(new controls::LCDDisplay(this))
    , MarksCombo(new controls::Combo(this))
    , MusicFrame(new controls::MusicFrame_UserCtrl(this))
    , VoiceFrame(new controls::VoiceFrame_UserCtrl(this))
    , Pic_MasterVol(new controls::MasterPanel(this))
    , Label2(new Caption("Overview", this))
    , EventsSmallView(Reserve("EventsSmallView", theme::Ground))
    , EventsEditor(Reserve("EventsEditor", theme::Ground))
{
    setMinimumSize(kMinimumWidth, kMinimumHeight);
    // A click beside a list or text box gives the window's keys back.
    setFocusPolicy(Qt::ClickFocus);
    CoolToolBar1->setObjectName("CoolToolBar1");
    LCDLabel->setObjectName("LCDLabel");
    MarksCombo->setObjectName("MarksCombo");
    MusicFrame->setObjectName("MusicFrame");
    VoiceFrame->setObjectName("VoiceFrame");
    Pic_MasterVol->setObjectName("Pic_MasterVol");
    Label2->setObjectName("Label2");
    LCDLabel->setGeometry(kTimePlace);
    MarksCombo->setGeometry(kMarksPlace);
    MarksCombo->setToolTip("Marks");
    MarksCombo->setAccessibleName("Marks");
}

QWidget* MainPanel::Reserve(const char* name, const QColor& ground)
{
    auto* place = new QWidget(this);
    place->setObjectName(name);
    QPalette colours = place->palette();
    colours.setColor(QPalette::Window, ground);
    place->setPalette(colours);
    place->setAutoFillBackground(true);
    return place;
}

void MainPanel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const controls::PixelGrid grid(painter);
    controls::FillSharp(painter, rect(), theme::Deck);
    controls::FillSharp(painter, grid.HairlineAlong({0, kBandEnd, static_cast<double>(width()), 1}), theme::Ground);
    for (const int x : ArrangeMain(width(), height()).dividers) {
        controls::FillSharp(painter,
                            grid.HairlineAlong({static_cast<double>(x), kDividerTop, 1, kDividerBottom - kDividerTop}),
                            theme::Line);
    }
}

void MainPanel::resizeEvent(QResizeEvent* /*event*/)
{
    const MainLayout layout = ArrangeMain(width(), height());
    CoolToolBar1->setGeometry(Rect(layout.toolbar));
    MusicFrame->setGeometry(Rect(layout.musicFrame));
    VoiceFrame->setGeometry(Rect(layout.voiceFrame));
    Pic_MasterVol->setGeometry(Rect(layout.masterPanel));
    Label2->setGeometry(Rect(layout.overviewLabel));
    EventsSmallView->setGeometry(Rect(layout.overview));
    EventsEditor->setGeometry(Rect(layout.editor));
    update();
}

} // namespace velmora::app
