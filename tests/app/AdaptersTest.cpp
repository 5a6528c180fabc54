#include "app/NamedMutex.h"
#include "app/QtMessageBoxes.h"
#include "app/QtSystem.h"
#include "app/UTIL_OpenSaveDialog_Class.h"
#include "app/frmFileNotFound_DIALOG.h"
#include "core/Paths.h"
#include "core/PosixFiles.h"
#include "tests/support/ScriptedPorts.h"
#include "tests/support/TemporaryFolder.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace velmora::app {
namespace {

/// Does `action` to the next modal window.
void WithModal(std::function<void(QWidget&)> action)
{
    QTimer::singleShot(0, qApp, [action = std::move(action)] {
        QWidget* window = QApplication::activeModalWidget();
        ASSERT_NE(window, nullptr);
        action(*window);
    });
}

void PressIn(QWidget& window, Qt::Key key)
{
    QWidget* target = window.focusWidget() != nullptr ? window.focusWidget() : &window;
    QTest::keyClick(target, key);
}

TEST(QtMessageBoxes, EscapeIsTheAnswerThatChangesNothing)
{
    QtMessageBoxes boxes;
    const auto answer = [&boxes](core::Buttons buttons, Qt::Key key) {
        WithModal([key](QWidget& box) { PressIn(box, key); });
        return boxes.Ask("Sure ?", buttons, core::Icon::Question, "Velmora");
    };
    EXPECT_EQ(answer(core::Buttons::YesNo, Qt::Key_Escape), core::Answer::No);
    EXPECT_EQ(answer(core::Buttons::YesNo, Qt::Key_Return), core::Answer::Yes);
    EXPECT_EQ(answer(core::Buttons::YesNoCancel, Qt::Key_Escape), core::Answer::Cancel);
    EXPECT_EQ(answer(core::Buttons::YesNoCancel, Qt::Key_N), core::Answer::No);
    EXPECT_EQ(answer(core::Buttons::OkCancel, Qt::Key_Escape), core::Answer::Cancel);
    EXPECT_EQ(answer(core::Buttons::OkCancel, Qt::Key_Return), core::Answer::Ok);
}

TEST(QtMessageBoxes, TextsArePlainAndPathsTheSystems)
{
    QtMessageBoxes boxes;
    boxes.SetNotes({"Below:\nZ:\\tmp\\b.wav", "Trouble"});
    WithModal([](QWidget& window) {
        const auto& box = dynamic_cast<QMessageBox&>(window);
        EXPECT_EQ(box.text(), "<b>Done</b>\n/tmp/a.wav");
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.informativeText(), "Below:\n/tmp/b.wav");
        EXPECT_EQ(box.windowTitle(), "Export project");
        PressIn(window, Qt::Key_Escape);
    });
    boxes.Show("<b>Done</b>\nZ:\\tmp\\a.wav", core::Icon::Information, "Export project");
    WithModal([](QWidget& window) {
        EXPECT_EQ(dynamic_cast<QMessageBox&>(window).informativeText(), "Trouble");
        PressIn(window, Qt::Key_Return);
    });
    boxes.Show("Error", core::Icon::Critical, "Velmora");
}

TEST(QtInputBox, TellsAnEmptyTextFromACancel)
{
    QtInputBox box;
    WithModal([](QWidget& window) {
        EXPECT_EQ(window.findChild<QLineEdit*>()->text(), "Mark 3");
        PressIn(window, Qt::Key_Escape);
    });
    EXPECT_EQ(box.Ask("Add mark", "Insert the mark title: ", "Mark 3"), std::nullopt);
    WithModal([](QWidget& window) {
        window.findChild<QLineEdit*>()->clear();
        PressIn(window, Qt::Key_Return);
    });
    EXPECT_EQ(box.Ask("Add mark", "Insert the mark title: ", "Mark 3"), "");
    WithModal([](QWidget& window) { PressIn(window, Qt::Key_Return); });
    EXPECT_EQ(box.Ask("Change name", "Insert the channel's name:", "Gesang & Bläser"), "Gesang & Bläser");
}

TEST(QtFileDialogs, RememberTheFolderAndAddTheEnding)
{
    const testing::TemporaryFolder folder;
    QtFileDialogs dialogs;
    dialogs.lastFolder = folder.Path();
    const std::vector<core::FileType> types{{"Audio Project", "*.audioproj"}, {"All files", "*.*"}};
    WithModal([](QWidget& window) {
        auto& dialog = dynamic_cast<QFileDialog&>(window);
        EXPECT_EQ(dialog.nameFilters(), (QStringList{"Audio Project (*.audioproj)", "All files (*)"}));
        dialog.findChild<QLineEdit*>()->setText("Song");
        PressIn(dialog, Qt::Key_Return);
    });
    EXPECT_EQ(dialogs.Save("Save project", types, ""), folder.Path("Song.audioproj"));

    std::filesystem::create_directory(folder.Posix() / "sub");
    std::ofstream(folder.Posix() / "sub" / "there.audioproj") << "x";
    const std::string inside = (folder.Posix() / "sub" / "there.audioproj").string();
    WithModal([&inside](QWidget& window) {
        window.findChild<QLineEdit*>()->setText(QString::fromStdString(inside));
        PressIn(window, Qt::Key_Return);
    });
    EXPECT_EQ(dialogs.Open("Load project", types), core::InternalPath(inside));
    EXPECT_EQ(dialogs.lastFolder, folder.Path("sub"));
    WithModal([](QWidget& window) { PressIn(window, Qt::Key_Escape); });
    EXPECT_EQ(dialogs.Open("Load project", types), std::nullopt);
    EXPECT_EQ(dialogs.lastFolder, folder.Path("sub"));
}

TEST(FileNotFoundDialog, AnswersAsItsButtonsSay)
{
    testing::ScriptedFileDialogs files;
    QtFileNotFoundQuestion question(files);
    const auto press = [&](const char* name) {
        WithModal([name](QWidget& window) {
            EXPECT_EQ(window.findChild<QLabel*>("Label2")->text(), "/music/gone.wav");
            window.findChild<QPushButton*>(name)->click();
            // Replace without a choice leaves it open.
            if (window.isVisible()) {
                PressIn(window, Qt::Key_Escape);
            }
        });
        std::string replacement;
        const auto answer = question.Ask("Z:\\music\\gone.wav", replacement);
        return std::pair(answer, replacement);
    };
    using enum core::FileNotFoundAnswer;
    EXPECT_EQ(press("RetryButton").first, Retry);
    EXPECT_EQ(press("IgnoreButton").first, Ignore);
    files.Expect(std::nullopt);
    EXPECT_EQ(press("ReplaceButton").first, Ignore);
    files.Expect("Z:\\music\\other.wav");
    EXPECT_EQ(press("ReplaceButton"), std::pair(Replace, std::string("Z:\\music\\other.wav")));
    EXPECT_EQ(files.asked[0].caption, "Load audio file");
    EXPECT_EQ(files.asked[0].types.size(), 5U);
}

TEST(QtTimers, TickAndMayGoInTheirTick)
{
    QtTimers timers;
    int ticks = 0;
    std::unique_ptr<core::Timer> once = timers.Create(std::chrono::milliseconds(1), true, [&] { ++ticks; });
    std::unique_ptr<core::Timer> ends;
    bool ended = false;
    ends = timers.Create(std::chrono::milliseconds(1), false, [&] {
        ends.reset();
        ended = true;
    });
    once->Start();
    ends->Start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ended && ticks > 0; }));
    EXPECT_FALSE(once->Running());
    QTest::qWait(10);
    EXPECT_EQ(ticks, 1);
    once->Start();
    once->Stop();
    QTest::qWait(10);
    EXPECT_EQ(ticks, 1);
}

TEST(QtPendingEvents, RunAtMostOnceInTenMilliseconds)
{
    QtPendingEvents events;
    int ran = 0;
    const auto post = [&ran, &events] {
        QMetaObject::invokeMethod(
            qApp,
            [&ran, &events] {
                ++ran;
                events.Run(); // not again inside
            },
            Qt::QueuedConnection);
    };
    post();
    events.Run();
    EXPECT_EQ(ran, 1);
    QElapsedTimer time;
    time.start();
    int rounds = 0;
    int runs = 0;
    while (time.elapsed() < 55) {
        const int before = ran;
        post();
        events.Run();
        ++rounds;
        runs += ran > before ? 1 : 0;
    }
    EXPECT_LE(runs, time.elapsed() / 10);
    QCoreApplication::processEvents();
    EXPECT_EQ(ran, rounds + 1) << "all ran in the end";
}

TEST(NamedMutex, IsHeldByAllThatRunUntilTheLastEnds)
{
    const testing::TemporaryFolder folder;
    const QByteArray earlier = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(folder.Posix().string()));
    auto first = std::make_unique<NamedMutex>("VelmoraMUTEX");
    auto second = std::make_unique<NamedMutex>("VelmoraMUTEX");
    earlier.isNull() ? qunsetenv("XDG_RUNTIME_DIR") : qputenv("XDG_RUNTIME_DIR", earlier);
    core::PosixFiles disk;
    first.reset();
    EXPECT_EQ(disk.LockFileCreate(folder.Path("VelmoraMUTEX")), nullptr);
    second.reset();
    EXPECT_NE(disk.LockFileCreate(folder.Path("VelmoraMUTEX")), nullptr);
}

class TrashTest : public ::testing::Test {
protected:
    TrashTest()
        : m_earlier(qgetenv("XDG_DATA_HOME"))
    {
        qputenv("XDG_DATA_HOME", QByteArray::fromStdString((m_folder.Posix() / "share").string()));
        std::ofstream(m_folder.Posix() / "take.wav") << "sound";
    }
    ~TrashTest() override { m_earlier.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", m_earlier); }

    bool StillThere() const { return std::filesystem::exists(m_folder.Posix() / "take.wav"); }

    testing::TemporaryFolder m_folder;
    DesktopTrash m_trash;

private:
    QByteArray m_earlier;
};

TEST_F(TrashTest, MakesItsFolderAndTakesFiles)
{
    EXPECT_TRUE(m_trash.Move(m_folder.Path("take.wav")));
    EXPECT_FALSE(StillThere());
    EXPECT_TRUE(std::filesystem::exists(m_folder.Posix() / "share/Trash/files/take.wav"));
    EXPECT_FALSE(m_trash.Move(m_folder.Path("gone.wav")));
    EXPECT_FALSE(m_trash.Move("C:\\elsewhere.wav"));
}

TEST_F(TrashTest, LeavesFilesWhereThereCannotBeATrash)
{
    std::filesystem::create_directory(m_folder.Posix() / "share");
    std::ofstream(m_folder.Posix() / "share/Trash") << "a file";
    EXPECT_FALSE(m_trash.Move(m_folder.Path("take.wav")));
    EXPECT_TRUE(StillThere());
    EXPECT_FALSE(QDir("files").exists());
}

} // namespace
} // namespace velmora::app
