#include "app/frmEvEd_LoadMusicFile.h"

#include "controls/Combo.h"
#include "tests/app/AppFixture.h"

#include <QRadioButton>

namespace velmora::app {
namespace {

TEST_F(CommandsFixture, AMusicFileGoesToTheStartTheCursorOrBehindAClip)
{
    core::MsgParametersClass clip;
    clip.ChannelID = Music(0).ClassID();
    clip.FilePath = WriteSound("Band.wav");
    clip.EventTitle = "Band";
    clip.AddTimePosMS = 2000;
    m_commands.Send(core::Msg_AddEvent_Wave, clip);

    frmEvEd_LoadMusicFile dialog(Project(), Music(0).ClassID(), nullptr);
    dialog.accept();
    EXPECT_EQ(dialog.Position(), 0);

    const auto options = dialog.findChildren<QRadioButton*>();
    ASSERT_EQ(options.size(), 3);
    EXPECT_EQ(options[1]->text(), "Current (00:00.00)");
    frmEvEd_LoadMusicFile after(Project(), Music(0).ClassID(), nullptr);
    after.findChildren<QRadioButton*>()[2]->setChecked(true);
    after.accept();
    EXPECT_EQ(Messages().LastText(), "Please select an event from the list");
    EXPECT_EQ(after.Position(), std::nullopt);

    auto* list = after.findChild<controls::Combo*>("Combo1");
    EXPECT_EQ(list->itemText(0), "Band (00:02.00)");
    list->setCurrentIndex(0);
    after.accept();
    EXPECT_EQ(after.Position(), 3000);
}

} // namespace
} // namespace velmora::app
