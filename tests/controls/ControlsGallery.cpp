#include "controls/Combo.h"
#include "controls/CoolToolBar.h"
#include "controls/Drawing.h"
#include "controls/Icons.h"
#include "controls/LCDDisplay.h"
#include "controls/LookStyle.h"
#include "controls/Theme.h"
#include "controls/VUMeter_UserCtrl.h"
#include "controls/imgButton.h"
#include "controls/imgScroll.h"
#include "tests/controls/MixerPicture.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QProgressBar>
#include <QScrollBar>
#include <QToolTip>

/// Writes pictures of every control in every state and of the mixer: controls_gallery FOLDER. QT_SCALE_FACTOR sets the
/// scale.
namespace velmora::controls {
namespace {

enum Column {
    Normal = 150,
    Hovered = 244,
    PressedDown = 338,
    On = 432,
    OnHovered = 526,
    Disabled = 620,
    Focused = 714
};
constexpr Column kColumns[] = {Normal, Hovered, PressedDown, On, OnHovered, Disabled, Focused};

class Page : public QWidget {
public:
    Page()
    {
        setFixedSize(1280, 1220);
        Buttons();
        Sliders();
        MetersAndTimes();
    }

    struct Ring {
        QRectF shape;
        double radius;
    };
    QList<Ring> rings;

    void PaintRings(QPainter& painter) const
    {
        for (const Ring& ring : rings) {
            DrawFocusRing(painter, ring.shape, ring.radius);
        }
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), theme::Deck);
        painter.setPen(theme::Text2);
        painter.setFont(theme::Font(11));
        for (const auto& [y, text] : m_captions) {
            painter.drawText(QPointF(32, y), text);
        }
    }

private:
    template <typename Widget>
    void InState(Widget& widget, Column column)
    {
        widget.setEnabled(column != Disabled);
        widget.setAttribute(Qt::WA_UnderMouse, column == Hovered || column == OnHovered);
        if (column == Focused) {
            const auto& shaped = static_cast<const FocusShaped&>(widget);
            rings.append({shaped.FocusShape().translated(widget.pos()), shaped.FocusRadius()});
        }
    }

    void Row(int y, const QString& caption, ButtonLook look, const QString& text, const QString& icon, QSize size,
             bool hasOn)
    {
        m_captions.append({y + 17, caption});
        for (const Column column : kColumns) {
            if (!hasOn && (column == On || column == OnHovered)) {
                continue;
            }
            auto* button = new imgButton(look, this);
            button->SetCaption(text);
            button->SetIcon(icon);
            button->SetShowsValue();
            button->SetValue(column == On || column == OnHovered || (hasOn && caption == "Solo" && column == Focused));
            button->setGeometry(QRect({column + (look == ButtonLook::Step ? 3 : 0), y}, size));
            button->setDown(column == PressedDown);
            InState(*button, column);
        }
    }

    void Buttons()
    {
        Row(76, "imgButton", ButtonLook::Raised, "Setup", "", {78, 26}, false);
        Row(114, "Solo", ButtonLook::Raised, "Solo", "solo", {78, 26}, true);
        Row(152, "Mute", ButtonLook::Mute, "Mute", "mute", {78, 26}, true);
        Row(190, "Live", ButtonLook::Raised, "Live", "monitor", {78, 26}, true);
        Row(228, "Icon button", ButtonLook::Raised, "", "fx", {34, 26}, false);
        Row(266, "Channel number", ButtonLook::Number, "2", "", {26, 24}, true);
        Row(302, "Step button", ButtonLook::Step, "", "right", {20, 20}, false);
        Row(336, "Toolbar button", ButtonLook::Tool, "", "play", {28, 26}, true);
        Row(370, "Record", ButtonLook::Record, "", "record", {28, 26}, true);
        m_captions.append({425, "Combo"});
        m_captions.append({463, "Text field"});
        m_captions.append({498, "Check box"});
        for (const Column column : kColumns) {
            if (column != On && column != OnHovered) {
                auto* combo = new Combo(this);
                combo->SetText("(Custom)");
                combo->setGeometry(column, 408, 84, 26);
                InState(*combo, column);
            }
            if (column == Normal || column == Disabled) {
                auto* field = new QLineEdit(column == Normal ? "Band" : "(none)", this);
                field->setGeometry(column, 446, 84, 26);
                field->setEnabled(column != Disabled);
            }
            auto* box = new QCheckBox(this);
            box->setGeometry(column, 487, 14, 14);
            box->setChecked(column == On || column == OnHovered);
            box->setEnabled(column != Disabled);
            box->setDown(column == PressedDown);
            box->setAttribute(Qt::WA_UnderMouse, column == Hovered || column == OnHovered);
        }
    }

    template <typename Slider>
    void SliderRow(int y, const QString& caption, QSize size, double from, double to,
                   const QList<std::pair<Column, double>>& values, bool centred = false)
    {
        m_captions.append({y + 14, caption});
        for (const auto& [column, value] : values) {
            auto* slider = new Slider(this);
            if constexpr (std::is_same_v<Slider, imgHScroll>) {
                slider->SetCentred(centred);
            }
            slider->setGeometry(QRect({column, y}, size));
            slider->SetRange(from, to);
            slider->SetValue(value);
            InState(*slider, column);
            if (column == PressedDown && !std::is_same_v<Slider, imgHFill>) {
                const QPointF at = slider->FocusShape().center();
                QMouseEvent press(QEvent::MouseButtonPress, at, at, Qt::LeftButton, Qt::LeftButton, {});
                QApplication::sendEvent(slider, &press);
            }
        }
    }

    void Sliders()
    {
        const QList<std::pair<Column, double>> level{
            {Normal, 60}, {Hovered, 60}, {PressedDown, 60}, {Disabled, 60}, {Focused, 60}};
        SliderRow<imgHScroll>(572, "imgHScroll, from 0", {80, 20}, 0, 100, level);
        QList<std::pair<Column, double>> pan = level;
        for (auto& [column, value] : pan) {
            value = -41;
        }
        SliderRow<imgHScroll>(606, "imgHScroll, centred", {80, 20}, -100, 100, pan, true);
        QList<std::pair<Column, double>> fill = level;
        for (auto& [column, value] : fill) {
            value = 62.5;
        }
        SliderRow<imgHFill>(643, "imgHFill", {80, 12}, 0, 100, fill);
        SliderRow<imgVScroll>(676, "imgVScroll", {36, 106}, 0, 100,
                              {{Normal, 78}, {Hovered, 50}, {PressedDown, 30}, {Disabled, 50}, {Focused, 60}});
    }

    void MetersAndTimes()
    {
        int y = 840;
        for (const int value : {0, 14, 28, 40}) {
            auto* meter = new VUMeter_UserCtrl(this);
            meter->setGeometry(146, y, 220, 14);
            meter->SetValue(value);
            m_captions.append({y + 12, QString::number(value)});
            y += 24;
        }
        const std::pair<LCDDisplay::State, const char*> times[] = {{LCDDisplay::State::Stopped, "00:00"},
                                                                   {LCDDisplay::State::Playing, "00:48"},
                                                                   {LCDDisplay::State::Recording, "01:02"}};
        int x = 430;
        for (const auto& [state, text] : times) {
            auto* time = new LCDDisplay(this);
            time->setGeometry(x, 842, 105, 21);
            time->SetState(state);
            time->SetTime(text);
            x += 125;
        }
        auto* bar = new MainToolBar(this);
        bar->setGeometry(20, 980, 1085, 26);
        bar->SetButtonEnabled(MainToolBar::Redo, false);
        bar->SetButtonOn(MainToolBar::Play, true);
        bar->SetButtonOn(MainToolBar::Record, true);
    }

    QList<std::pair<int, QString>> m_captions;
};

/// The default button and another one, progress, scroll bar.
class Dialog : public QWidget {
public:
    Dialog()
    {
        setFixedSize(388, 150);
        auto* ok = new QPushButton("OK", this);
        ok->setDefault(true);
        ok->setGeometry(0, 0, 96, 26);
        auto* cancel = new QPushButton("Cancel", this);
        cancel->setGeometry(104, 0, 80, 26);
        auto* progress = new QProgressBar(this);
        progress->setGeometry(0, 40, 348, 12);
        progress->setValue(64);
        auto* bar = new QScrollBar(Qt::Horizontal, this);
        bar->setGeometry(0, 60, 348, 16);
        bar->setPageStep(30);
        bar->setValue(40);
        auto* mute = new QCheckBox("Mute", this);
        mute->move(0, 90);
    }
};

QPixmap ToolTip()
{
    QToolTip::showText({}, "Jump back 5 seconds (B)");
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->inherits("QTipLabel")) {
            return window->grab();
        }
    }
    return {};
}

QPixmap Menu()
{
    QMenu menu;
    menu.addAction("Cut", QKeySequence("Ctrl+X"), [] {});
    menu.addAction("Copy", QKeySequence("Ctrl+C"), [] {});
    menu.addSeparator();
    menu.addAction("Split");
    QMenu* gain = menu.addMenu("Gain");
    gain->addAction("+1 dB");
    menu.addMenu("Fade in")->addAction("Remove");
    menu.addSeparator();
    QAction* checked = menu.addAction("Delete");
    checked->setCheckable(true);
    checked->setChecked(true);
    menu.setActiveAction(gain->menuAction());
    menu.setMinimumWidth(184);
    menu.ensurePolished();
    menu.resize(menu.sizeHint());
    return menu.grab();
}

bool WriteControls(const QString& path)
{
    Page page;
    page.ensurePolished();
    QPixmap picture = page.grab();
    QPainter painter(&picture);
    page.PaintRings(painter);
    painter.drawPixmap(860, 554, Menu());
    painter.drawPixmap(1064, 564, ToolTip());
    Dialog dialog;
    painter.drawPixmap(1064, 610, dialog.grab());
    painter.end();
    return picture.save(path);
}

} // namespace
} // namespace velmora::controls

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    if (argc != 2) {
        return 2;
    }
    using namespace velmora::controls;
    InstallLook(application);
    const QString folder = QString::fromLocal8Bit(argv[1]);
    const bool written = WriteControls(folder + "/controls.png") && MixerPicture().save(folder + "/mixer.png") &&
                         EmptyMixerPicture().save(folder + "/mixer-empty.png");
    return written ? 0 : 1;
}
