#include "controls/Combo.h"
#include "controls/CoolToolBar.h"
#include "controls/Drawing.h"
#include "controls/FocusRing.h"
#include "controls/Icons.h"
#include "controls/LCDDisplay.h"
#include "controls/MasterPanel.h"
#include "controls/Theme.h"
#include "controls/VUMeter_UserCtrl.h"
#include "controls/imgButton.h"
#include "controls/imgScroll.h"

#include <QAccessible>
#include <QApplication>
#include <QPainter>
#include <QTimer>
#include <QtTest>
#include <limits>

#include <gtest/gtest.h>

namespace velmora::controls {
namespace {

TEST(Sliders, KeysWheelAndDoubleClick)
{
    imgHScroll slider;
    slider.resize(slider.sizeHint());
    slider.SetRange(-100, 100);
    slider.SetDefaultValue(0);
    QSignalSpy changes(&slider, &imgScroll::Change);
    const auto after = [&](Qt::Key key) {
        QTest::keyClick(&slider, key);
        return slider.Value();
    };
    EXPECT_EQ(after(Qt::Key_Right), 1);
    EXPECT_EQ(after(Qt::Key_PageUp), 11);
    EXPECT_EQ(after(Qt::Key_Down), 10);
    EXPECT_EQ(after(Qt::Key_PageDown), 0);
    EXPECT_EQ(after(Qt::Key_End), 100);
    EXPECT_EQ(after(Qt::Key_Up), 100);
    EXPECT_EQ(after(Qt::Key_Home), -100);
    EXPECT_EQ(changes.count(), 6); // none at the end of the range

    const auto turn = [&slider](int angle) {
        QWheelEvent wheel({92, 10}, {92, 10}, {}, {0, angle}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&slider, &wheel);
    };
    turn(120);
    EXPECT_EQ(slider.Value(), -97);
    for (int i = 0; i < 4; ++i) {
        turn(-30); // a touch pad gives a notch in pieces
    }
    EXPECT_EQ(slider.Value(), -100);
    QTest::mouseDClick(&slider, Qt::LeftButton, {}, {20, 10});
    EXPECT_EQ(slider.Value(), 0);
}

TEST(Sliders, CodeTellsNobodyAndAUserOnlyOfWholeSteps)
{
    imgVScroll fader;
    fader.resize(36, 106);
    QSignalSpy changes(&fader, &imgScroll::Change);
    fader.SetValue(50);
    fader.SetValue(1000);
    EXPECT_EQ(fader.Value(), 100);
    fader.SetRange(0, 4);
    EXPECT_EQ(fader.Value(), 4);
    EXPECT_EQ(changes.count(), 0);
    // 92 pixels of travel over four steps.
    QTest::mousePress(&fader, Qt::LeftButton, {}, {10, 7});
    for (int y = 7; y <= 99; ++y) {
        const QPointF at(10, y);
        QMouseEvent move(QEvent::MouseMove, at, at, Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&fader, &move);
    }
    EXPECT_EQ(fader.Value(), 0);
    EXPECT_EQ(changes.count(), 4);
    QTest::mouseRelease(&fader, Qt::LeftButton, {}, {10, 99});
    QTest::mouseMove(&fader, {10, 7});
    EXPECT_EQ(fader.Value(), 0);

    fader.setEnabled(false);
    QTest::mouseClick(&fader, Qt::LeftButton, {}, {10, 50});
    EXPECT_EQ(changes.count(), 4);
}

TEST(Sliders, KnobAndPointerAgreeAndARangeWithoutWidthStaysLeft)
{
    SliderRange range{-100, 100, 0, true};
    const SliderTrack track{0, 184, 12};
    for (double value = -100; value <= 100; ++value) {
        range.Value = value;
        EXPECT_NEAR(track.ValueAt(track.KnobLeft(range) + 6, range), value, 1);
    }
    EXPECT_EQ(track.ValueAt(-50, range), -100);
    EXPECT_EQ(track.ValueAt(500, range), 100);
    const SliderRange point{5, 5, 5, true};
    EXPECT_EQ(track.KnobLeft(point), 0);
    EXPECT_EQ(track.ValueAt(90, point), 5);
    EXPECT_EQ((SliderTrack{0, 4, 12}.ValueAt(2, range)), -100);
}

TEST(Buttons, ClickOnReleaseInsideAndByKeys)
{
    imgButton button(ButtonLook::Raised);
    button.SetMode(ButtonMode_Switch);
    button.resize(78, 26);
    QSignalSpy clicks(&button, &imgButton::clicked);
    QTest::mousePress(&button, Qt::LeftButton, {}, {10, 10});
    QTest::mouseRelease(&button, Qt::LeftButton, {}, {200, 10});
    EXPECT_EQ(clicks.count(), 0);
    EXPECT_FALSE(button.Value());
    QTest::mouseClick(&button, Qt::LeftButton, {}, {10, 10});
    EXPECT_TRUE(button.Value());
    QTest::mouseClick(&button, Qt::RightButton, {}, {10, 10});
    QTest::keyClick(&button, Qt::Key_Return);
    QTest::keyClick(&button, Qt::Key_Space);
    EXPECT_EQ(clicks.count(), 3);
    button.SetValue(false);
    EXPECT_EQ(clicks.count(), 3);

    // The number of a channel is lit by its owner alone.
    imgButton number(ButtonLook::Number);
    QSignalSpy chosen(&number, &imgButton::clicked);
    QTest::mouseClick(&number, Qt::LeftButton);
    QAccessible::queryAccessibleInterface(&number)->actionInterface()->doAction(
        QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(chosen.count(), 2);
    EXPECT_FALSE(number.Value());
}

TEST(ToolBar, HasItsButtonsInOrderWithTheirToolTips)
{
    MainToolBar bar;
    bar.resize(bar.sizeHint());
    QStringList tips;
    for (int i = 0; i <= MainToolBar::AddMark; ++i) {
        tips.append(bar.GetButton(i)->accessibleName());
        EXPECT_TRUE(bar.GetButton(i)->toolTip().startsWith(tips.back()));
    }
    EXPECT_EQ(tips, QStringList({"New Project", "Open Project", "Save Project", "Undo", "Redo", "Play", "Stop",
                                 "Rewind", "Jump back 5 seconds", "Jump ahead 5 seconds", "Record",
                                 "Repeat last recording", "Add mark"}));
    EXPECT_EQ(bar.GetButton(MainToolBar::Record)->toolTip(), "Record (R)");
    EXPECT_FALSE(bar.ButtonIsUsed(13));

    QSignalSpy clicked(&bar, &CoolToolBar::ButtonClicked);
    EXPECT_FALSE(bar.GetButton(MainToolBar::New)->isCheckable());
    bar.SetButtonOn(MainToolBar::Record, true);
    EXPECT_TRUE(bar.GetButton(MainToolBar::Record)->Value());
    bar.SetButtonEnabled(MainToolBar::Undo, false);
    QTest::mouseClick(bar.GetButton(MainToolBar::Undo), Qt::LeftButton);
    QTest::mouseClick(bar.GetButton(MainToolBar::Play), Qt::LeftButton);
    ASSERT_EQ(clicked.count(), 1);
    EXPECT_EQ(clicked[0][0].toInt(), MainToolBar::Play);

    bar.DeleteButton(MainToolBar::Play);
    EXPECT_FALSE(bar.ButtonIsUsed(MainToolBar::Play));
    EXPECT_EQ(bar.AddButton({"play", "Play", {}, {}}), MainToolBar::Play);
}

TEST(Meter, BarsFollowTheValueAndOnlyTheyAreDrawnAgain)
{
    VUMeter_UserCtrl meter;
    meter.resize(220, 14);
    EXPECT_EQ(meter.BarCount(), 44);
    const QColor last = meter.BarColour(44);
    EXPECT_LT(std::abs(last.red() - theme::Meter2.red()) + std::abs(last.green() - theme::Meter2.green()), 3);
    meter.SetValue(99);
    EXPECT_EQ(meter.Value(), 40);
    EXPECT_EQ(meter.LitBars(), 44);
    meter.SetValue(-3);
    EXPECT_EQ(meter.Value(), 0);
    EXPECT_EQ(meter.LitBars(), 0);

    class Painted : public QObject {
    public:
        QRegion region;
        bool eventFilter(QObject* /*object*/, QEvent* event) override
        {
            if (event->type() == QEvent::Paint) {
                region += static_cast<QPaintEvent*>(event)->region();
            }
            return false;
        }
    } painted;
    meter.show();
    QCoreApplication::processEvents();
    meter.SetValue(20);
    QCoreApplication::processEvents();
    meter.installEventFilter(&painted);
    meter.SetValue(22);
    QCoreApplication::processEvents();
    EXPECT_EQ(painted.region.boundingRect(), QRect(23 * 5, 2, 10, 10));
    painted.region = {};
    meter.SetValue(22);
    QCoreApplication::processEvents();
    EXPECT_TRUE(painted.region.isEmpty());
}

TEST(MasterPanels, TellWhatTheUserDoesAlsoAtTheEndOfTheRange)
{
    MasterPanel panel;
    panel.resize(panel.sizeHint());
    QSignalSpy volume(&panel, &MasterPanel::VolumeChosen);
    QSignalSpy mute(&panel, &MasterPanel::MuteChosen);
    panel.SetVolume(95);
    panel.SetMute(true);
    EXPECT_EQ(volume.count() + mute.count(), 0);
    auto* up = panel.findChild<imgButton*>("Button_MasterVol0");
    QTest::mouseClick(up, Qt::LeftButton);
    QTest::mouseClick(up, Qt::LeftButton);
    ASSERT_EQ(volume.count(), 2);
    EXPECT_EQ(volume[1][0].toInt(), 100);
    QTest::mouseClick(panel.findChild<imgButton*>("master_MuteButton"), Qt::LeftButton);
    ASSERT_EQ(mute.count(), 1);
    EXPECT_FALSE(mute[0][0].toBool());
}

TEST(Focus, RingShowsForKeysAndGoesAtAClickAndWithItsControl)
{
    QWidget window;
    window.resize(200, 100);
    imgButton first(ButtonLook::Raised, &window);
    imgButton second(ButtonLook::Raised, &window);
    second.move(100, 40);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const auto rings = [&window] {
        int count = 0;
        for (const QObject* child : window.children()) {
            const auto* widget = qobject_cast<const QWidget*>(child);
            count += widget && widget->testAttribute(Qt::WA_TransparentForMouseEvents) && widget->isVisible() ? 1 : 0;
        }
        return count;
    };
    EXPECT_EQ(rings(), 0); // the window came with a focus
    second.setFocus(Qt::TabFocusReason);
    EXPECT_EQ(rings(), 1);
    first.setFocus(Qt::BacktabFocusReason);
    EXPECT_EQ(rings(), 1);
    QTest::mouseClick(&second, Qt::LeftButton);
    EXPECT_EQ(rings(), 0);
    auto* third = new imgButton(ButtonLook::Raised, &window);
    third->show();
    third->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(rings(), 1);
    delete third;
    EXPECT_EQ(rings(), 0);
}

TEST(Combos, WhoChoosesWithTheMouseHasDoneWithThem)
{
    QWidget window;
    window.resize(300, 100);
    Combo combo(&window);
    combo.SetItems({"Hall", "Plate"});
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const auto choose = [](std::vector<Qt::Key> keys) {
        QTimer::singleShot(0, [keys] {
            QWidget* menu = QApplication::activePopupWidget();
            ASSERT_NE(menu, nullptr);
            for (const Qt::Key key : keys) {
                QTest::keyClick(menu, key);
            }
        });
    };
    combo.setFocus(Qt::TabFocusReason);
    choose({Qt::Key_Down, Qt::Key_Return});
    QTest::keyClick(&combo, Qt::Key_Space);
    EXPECT_EQ(combo.Text(), "Hall");
    EXPECT_EQ(window.focusWidget(), &combo);
    choose({Qt::Key_Escape});
    QTest::mouseClick(&combo, Qt::LeftButton);
    EXPECT_EQ(window.focusWidget(), &combo);
    choose({Qt::Key_Down, Qt::Key_Return});
    QTest::mouseClick(&combo, Qt::LeftButton);
    EXPECT_EQ(combo.Text(), "Plate");
    EXPECT_EQ(window.focusWidget(), nullptr);
}

TEST(Drawing, EdgesFallOnDevicePixelsWhereverTheWidgetStands)
{
    EXPECT_EQ(Hairline(1), 1);
    EXPECT_EQ(Hairline(1.5) * 1.5, 1);
    EXPECT_EQ(Hairline(2) * 2, 2);
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        QImage image(300, 300, QImage::Format_ARGB32);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::black);
        QPainter painter(&image);
        painter.translate(7, 3); // an odd place, as of a child
        FillRound(painter, {3, 5, 31, 21}, 0, Qt::white);
        painter.end();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QRgb pixel = image.pixel(x, y);
                ASSERT_TRUE(pixel == qRgb(0, 0, 0) || pixel == qRgb(255, 255, 255)) << scale << " " << x << " " << y;
            }
        }
    }
}

TEST(Icons, EachCanBeDrawnAtEachScale)
{
    for (const char* name : {"new", "check", "more", "retake", "velmora", "zoomreset"}) {
        for (const double scale : {1.0, 1.5, 2.0}) {
            const QPixmap pixmap = IconPixmap(name, theme::Text, 16, scale);
            EXPECT_EQ(pixmap.width(), qRound(16 * scale)) << name;
        }
    }
}

} // namespace
} // namespace velmora::controls
