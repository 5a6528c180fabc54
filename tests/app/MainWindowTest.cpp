#include "app/MainPanel.h"
#include "audio/AudioExport.h"
#include "audio/AudioPlayer_Class.h"
#include "audio/Metronome_Class.h"
#include "audio/Recorder_Class.h"
#include "controls/ChannelFrame.h"
#include "controls/Combo.h"
#include "controls/CoolToolBar.h"
#include "controls/LCDDisplay.h"
#include "controls/MasterPanel.h"
#include "controls/imgButton.h"
#include "core/Paths.h"
#include "tests/app/AppFixture.h"
#include "tests/audio/ScriptedCapture.h"
#include "tests/audio/SoundFixture.h"

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <QUrl>

namespace velmora::app {
namespace {

using controls::MainToolBar;

class MainWindowTest : public MainWindowFixture {
protected:
    MainWindowTest() { Start(); }

    std::string WriteSound(const std::string& name, std::size_t seconds = 10)
    {
        audio::WriteWav(Path(name), {44100, 2, std::vector<std::int16_t>(2 * 44100 * seconds)});
        return Path(name);
    }
    void Drop(const QPoint& at, const std::vector<std::string>& files)
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const std::string& file : files) {
            urls << QUrl::fromLocalFile(QString::fromStdString(core::PosixPath(file)));
        }
        data.setUrls(urls);
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_window.get(), &enter);
        QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_window.get(), &drop);
        QCoreApplication::processEvents();
    }
    QPoint Middle(const QWidget* part) const { return part->mapTo(m_window.get(), part->rect().center()); }
    bool Playing() { return Project().Player->isPlaying(); }
    void Press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWidget* target = QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : m_window.get();
        QTest::keyClick(target, static_cast<Qt::Key>(key), modifiers);
    }
    MainPanel& Panel() { return m_window->Panel(); }
};

TEST_F(MainWindowTest, KeysAndToolbarDriveThePlayer)
{
    Drop(Middle(Panel().EventsEditor), {WriteSound("a.wav")});
    Press(Qt::Key_P);
    EXPECT_TRUE(Playing());
    EXPECT_TRUE(Panel().CoolToolBar1->GetButton(MainToolBar::Play)->Value());
    Press(Qt::Key_P, Qt::ShiftModifier);
    EXPECT_TRUE(Playing());
    ClickTool(MainToolBar::Stop);
    EXPECT_FALSE(Playing());
    EXPECT_FALSE(Panel().CoolToolBar1->GetButton(MainToolBar::Play)->Value());
    ClickTool(MainToolBar::Ahead);
    EXPECT_EQ(Panel().LCDLabel->text(), "00:05");
    EXPECT_TRUE(Panel().CoolToolBar1->ButtonEnabled(MainToolBar::Undo));
    EXPECT_FALSE(Panel().CoolToolBar1->ButtonEnabled(MainToolBar::Repeat)) << "there is no take to repeat";
    ClickTool(MainToolBar::Undo);
    EXPECT_FALSE(Panel().CoolToolBar1->ButtonEnabled(MainToolBar::Undo));
    EXPECT_TRUE(Panel().CoolToolBar1->ButtonEnabled(MainToolBar::Redo));
    Press(Qt::Key_T, Qt::ControlModifier);
    EXPECT_TRUE(Project().Metronome->Metronome_Enabled());
}

TEST_F(MainWindowTest, ABoxWithTheFocusHoldsTheKeyboard)
{
    Drop(Middle(Panel().MusicFrame), {WriteSound("a.wav")});
    Panel().MarksCombo->setFocus();
    ASSERT_EQ(QApplication::focusWidget(), Panel().MarksCombo);
    Press(Qt::Key_P);
    EXPECT_FALSE(Playing());
    // A new project does not forget who holds it.
    m_ports.messages.Expect(core::Answer::No);
    Press(Qt::Key_N, Qt::ControlModifier);
    ASSERT_EQ(QApplication::focusWidget(), Panel().MarksCombo);
    Drop(Middle(Panel().MusicFrame), {Path("a.wav")});
    Press(Qt::Key_P);
    EXPECT_FALSE(Playing());
    QTest::mouseClick(Panel().EventsEditor, Qt::LeftButton);
    Press(Qt::Key_P);
    EXPECT_TRUE(Playing()) << "a click beside it takes the keyboard back";
}

TEST_F(MainWindowTest, KeysWorkWhileTheHelpThatTellsOfThemIsRead)
{
    for (const char* folder : {"help", "help\\html"}) {
        m_disk.MakeFolderIfMissing(Path(folder));
    }
    m_disk.WriteTextFile(Path("help\\html\\shortcut keys.html"), "<p>P plays</p>");
    Drop(Middle(Panel().EventsEditor), {WriteSound("a.wav")});
    Entry("Help/Shortcut keys")->trigger();
    auto* page = m_window->findChild<QTextBrowser*>();
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->toPlainText(), "P plays");
    QApplication::setActiveWindow(page->window());
    page->setFocus();
    Press(Qt::Key_P);
    EXPECT_TRUE(Playing());
}

TEST_F(MainWindowTest, TheMarksComboFollowsTheListAndLeadsTheCursor)
{
    Drop(Middle(Panel().EventsEditor), {WriteSound("a.wav")});
    ClickTool(MainToolBar::Ahead);
    m_ports.input.Expect("Chorus");
    Press(Qt::Key_M, Qt::ControlModifier);
    ASSERT_EQ(Panel().MarksCombo->count(), 2);
    EXPECT_EQ(Panel().MarksCombo->itemText(1), "Chorus  (00:05)");
    emit Panel().MarksCombo->activated(0);
    EXPECT_EQ(Panel().LCDLabel->text(), "00:00");
    EXPECT_EQ(Panel().MarksCombo->Text(), "Start  (00:00)");
    Entry("Marks/Delete mark/Chorus  (00:05)")->trigger();
    EXPECT_EQ(Panel().MarksCombo->count(), 1);
    EXPECT_EQ(Panel().MarksCombo->Text(), "Start  (00:00)");
}

TEST_F(MainWindowTest, MenusAreFreshWheneverTheyOpen)
{
    EXPECT_FALSE(Entry("Edit/Undo")->isEnabled());
    Entry("Channels/Add channel/Voice")->trigger();
    ASSERT_NE(Entry("Edit/Undo add voice channel"), nullptr);
    EXPECT_NE(Entry("Channels/Delete channel/Voice 5"), nullptr);
    Entry("Edit/Undo add voice channel")->trigger();
    EXPECT_EQ(Entry("Channels/Delete channel/Voice 5"), nullptr);
    EXPECT_TRUE(Entry("Playback/Jump back to original position")->isChecked());
    Entry("Help/About...")->trigger();
    EXPECT_EQ(m_ports.messages.shown.back().text, "Velmora\nVersion: 1.0.5");
    Entry("Help/Contents...")->trigger();
    EXPECT_NE(m_ports.messages.LastText().find("This help page is missing"), std::string::npos);
}

TEST_F(MainWindowTest, FilesLandOnTheStripThatTheyAreDroppedOn)
{
    core::MsgParametersClass params;
    params.SelectChannelID = Project().Chn_GetVoiceChannelObj_by_Index(2)->ClassID();
    Project().MsgSender->SendMsg(-1, core::Msg_SelectVoiceChannel, params);
    Drop(Middle(Panel().VoiceFrame), {WriteSound("a.wav")});
    EXPECT_GT(Project().Chn_GetVoiceChannelObj_by_Index(2)->Length(), 0);
    m_disk.WriteTextFile(Path("notes.txt"), "no sound");
    Drop(Middle(Panel().MusicFrame), {Path("notes.txt")});
    EXPECT_EQ(m_ports.messages.LastText(), "Invalid sound file: " + Path("notes.txt"));
    EXPECT_TRUE(m_window->isEnabled());
}

TEST_F(MainWindowTest, ClosingAsksAndMayBeCancelled)
{
    Project().Modified = true;
    m_ports.messages.Expect(core::Answer::Cancel);
    m_window->close();
    EXPECT_TRUE(m_window->isVisible());
    Drop(Middle(Panel().EventsEditor), {WriteSound("a.wav")});
    Press(Qt::Key_P);
    m_ports.messages.Expect(core::Answer::No);
    m_window->close();
    EXPECT_FALSE(Playing());
    EXPECT_FALSE(m_window->isVisible());
}

TEST_F(MainWindowTest, ATakeIsShownKeptAndRepeated)
{
    audio::ScriptedCapture device;
    Project().Recorder->InputDeviceOverride = device.Number();
    const project::Channel_Class& voice = *Project().Chn_GetVoiceChannelObj_by_Index(0);
    const QWidget* button = Panel().CoolToolBar1->GetButton(MainToolBar::Record);
    ClickTool(MainToolBar::Record);
    ASSERT_TRUE(Project().Recorder->isRecording()) << m_ports.messages.LastText();
    EXPECT_TRUE(Panel().CoolToolBar1->GetButton(MainToolBar::Record)->Value());
    device.Deliver(500, 1000);

    // Closing ends the take, asks, and loses nothing when the user thinks again.
    m_ports.messages.Expect(core::Answer::Cancel);
    m_window->close();
    EXPECT_TRUE(m_window->isVisible());
    EXPECT_FALSE(Project().Recorder->isRecording());
    EXPECT_FALSE(Panel().CoolToolBar1->GetButton(MainToolBar::Record)->Value());
    EXPECT_GT(voice.Length(), 0);
    EXPECT_TRUE(button->hasFocus()) << "Space records again";

    ASSERT_TRUE(Panel().CoolToolBar1->ButtonEnabled(MainToolBar::Repeat));
    Press(Qt::Key_R, Qt::ControlModifier);
    EXPECT_TRUE(Project().Recorder->isRecording());
    EXPECT_EQ(voice.Length(), 0) << "the take before is gone";
    device.Deliver(500, 1000);
    Press(Qt::Key_R, Qt::ShiftModifier);
    EXPECT_FALSE(Project().Recorder->isRecording()) << "R stops with any other key held";
    EXPECT_GT(voice.Length(), 0);
    m_startup->ShutDown();
}

TEST_F(MainWindowTest, ExportSaysWhereTheFileIs)
{
    Drop(Middle(Panel().EventsEditor), {WriteSound("a.wav")});
    m_ports.fileDialogs.Expect(Path("mix.wav"));
    Entry("File/Export to/Wave file...")->trigger();
    EXPECT_EQ(m_ports.messages.LastText(), "Done");
    EXPECT_EQ(m_ports.messages.shown.back().title, "Export project");
    EXPECT_EQ(m_ports.messages.shown.back().note, "The file is here:\n" + Path("mix.wav"));
    EXPECT_EQ(audio::ReadWav(Path("mix.wav")).Frames(), 441000U);
    EXPECT_TRUE(Panel().isEnabled());
}

TEST_F(MainWindowTest, AnExportIsCancelledByItsWindowAndHoldsTheOthers)
{
    Drop(Middle(Panel().EventsEditor), {WriteSound("long.wav", 60)});
    bool cancelled = false;
    // Each report of progress yields. Before the user cancels, the main window is tried.
    std::function<void()> watch = [&] {
        QWidget* window = QApplication::activeModalWidget();
        if (window == nullptr || window->windowTitle() != "Exporting audio" || Panel().isEnabled()) {
            m_ports.pendingEvents.Post(watch);
            return;
        }
        m_window->close();
        EXPECT_TRUE(m_window->isVisible());
        QTest::keyClick(m_window.get(), Qt::Key_N, Qt::ControlModifier);
        QTest::keyClick(m_window.get(), Qt::Key_P);
        EXPECT_FALSE(Playing());
        window->findChild<QPushButton*>("button_Cancel")->click();
        cancelled = true;
    };
    watch();
    m_ports.fileDialogs.Expect(Path("mix.wav"));
    Entry("File/Export to/Wave file...")->trigger();
    EXPECT_TRUE(cancelled);
    EXPECT_TRUE(m_ports.messages.shown.empty()) << m_ports.messages.LastText();
    EXPECT_LT(audio::ReadWav(Path("mix.wav")).Frames(), 60U * 44100);
    EXPECT_TRUE(Panel().isEnabled());
    Press(Qt::Key_P);
    EXPECT_TRUE(Playing());
}

TEST_F(MainWindowTest, CompressionWithNothingToDoSaysSo)
{
    m_ports.messages.Expect(core::Answer::Yes);
    Entry("File/Compress project...")->trigger();
    EXPECT_EQ(m_ports.messages.LastText(), "There are no files to compress");
    EXPECT_TRUE(Panel().isEnabled());
}

} // namespace
} // namespace velmora::app
