#include "controls/LCDDisplay.h"
#include "controls/MasterPanel.h"
#include "controls/VUMeter_UserCtrl.h"
#include "controls/imgButton.h"
#include "controls/imgScroll.h"
#include "tests/controls/StripFixture.h"

#include <QAccessible>
#include <QtTest>

namespace velmora::controls {
namespace {

QAccessibleInterface& InterfaceOf(QWidget& widget)
{
    return *QAccessible::queryAccessibleInterface(&widget);
}

TEST_F(StripTest, EveryControlHasANameARoleAToolTipAndAPlaceInTheTabOrder)
{
    MasterPanel master(&m_window);
    for (QWidget* panel :
         {static_cast<QWidget*>(&m_music), static_cast<QWidget*>(&m_voice), static_cast<QWidget*>(&master)}) {
        int controls = 0;
        for (QWidget* widget : panel->findChildren<QWidget*>()) {
            if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisibleTo(panel)) {
                continue;
            }
            ++controls;
            const std::string name = widget->objectName().toStdString();
            EXPECT_FALSE(InterfaceOf(*widget).text(QAccessible::Name).isEmpty()) << name;
            EXPECT_NE(InterfaceOf(*widget).role(), QAccessible::NoRole) << name;
            EXPECT_NE(InterfaceOf(*widget).role(), QAccessible::Client) << name;
            EXPECT_FALSE(widget->toolTip().isEmpty()) << name;
            EXPECT_TRUE(widget->focusPolicy() & Qt::TabFocus) << name;
        }
        EXPECT_GE(controls, 4);
    }
}

TEST_F(StripTest, TabWalksAStripFromAbove)
{
    QStringList order;
    const QWidget* widget = m_voice.findChild<QWidget*>("Label_ChannelTitle");
    for (int i = 0; i < 40 && m_voice.isAncestorOf(widget); ++i) {
        if (widget->focusPolicy() & Qt::TabFocus) {
            order.append(widget->objectName());
        }
        widget = widget->nextInFocusChain();
    }
    EXPECT_EQ(order, QStringList({"Label_ChannelTitle",
                                  "ChnlN_Button0",
                                  "ChnlN_Button1",
                                  "ChnlN_Button2",
                                  "ChnlN_Button3",
                                  "ChnlN_Button4",
                                  "Voice_Vol_VScroll",
                                  "voice_VolButton0",
                                  "voice_VolButton1",
                                  "voice_PanValue_Button1",
                                  "voice_Pan_HScroll",
                                  "voice_PanValue_Button0",
                                  "voice_GainValue_Button1",
                                  "voice_Gain_HScroll",
                                  "voice_GainValue_Button0",
                                  "imgButton1",
                                  "MuteButton",
                                  "soloButton",
                                  "Combo2",
                                  "button_SetupFX",
                                  "button_SaveFX"}));
}

TEST_F(StripTest, AssistiveToolsReadAndSetSliders)
{
    auto& pan = Find<imgScroll>(m_voice, "voice_Pan_HScroll");
    QAccessibleInterface& reads = InterfaceOf(pan);
    EXPECT_EQ(reads.role(), QAccessible::Slider);
    EXPECT_EQ(reads.text(QAccessible::Name), "Pan");
    EXPECT_EQ(reads.text(QAccessible::Value), "+0%");
    QAccessibleValueInterface* value = reads.valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->minimumValue().toDouble(), -100);
    EXPECT_EQ(value->maximumValue().toDouble(), 100);
    value->setCurrentValue(40);
    EXPECT_EQ(Voice(0).Pan, 40);
    EXPECT_EQ(reads.text(QAccessible::Value), "+40%");
}

TEST_F(StripTest, AssistiveToolsReadSwitchesMetersAndTexts)
{
    QAccessibleInterface& mute = InterfaceOf(Find<imgButton>(m_voice, "MuteButton"));
    EXPECT_EQ(mute.text(QAccessible::Name), "Mute");
    EXPECT_TRUE(mute.state().checkable);
    EXPECT_FALSE(mute.state().checked);
    mute.actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(mute.state().checked);
    EXPECT_TRUE(Voice(0).Mute);

    auto& meter = Find<VUMeter_UserCtrl>(m_voice, "VUMeter");
    meter.SetValue(12);
    EXPECT_EQ(InterfaceOf(meter).valueInterface()->currentValue().toInt(), 12);
    EXPECT_TRUE(InterfaceOf(meter).state().readOnly);
    LCDDisplay time;
    time.SetTime("01:02");
    EXPECT_EQ(InterfaceOf(time).text(QAccessible::Name), "01:02");
    EXPECT_EQ(InterfaceOf(Find<QWidget>(m_voice, "Label_ChannelTitle")).text(QAccessible::Name),
              QString::fromStdString(Voice(0).Title));
}

} // namespace
} // namespace velmora::controls
