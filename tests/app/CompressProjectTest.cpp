#include "app/MainPanel.h"
#include "controls/VUMeter_UserCtrl.h"
#include "project/ChannelDataClass.h"
#include "tests/app/AppFixture.h"
#include "tests/audio/SoundFixture.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>

namespace velmora::app {
namespace {

class CompressProject : public MainWindowFixture {
protected:
    CompressProject()
    {
        Start();
        m_channel = Project().Chn_GetVoiceChannelObj_by_Index(0);
        for (const char* name : {"take 1.wav", "take 2.wav"}) {
            audio::WriteWav(InFolder(name), {44100, 2, std::vector<std::int16_t>(20U * 2 * 44100)});
            core::MsgParametersClass params;
            params.ChannelID = m_channel->ClassID();
            params.FilePath = name;
            Project().MsgSender->SendMsg(-1, core::Msg_AddEvent_Wave, params);
        }
    }

    std::string InFolder(const std::string& name) { return Project().GetAudioPath() + "\\" + name; }
    std::vector<std::string> Takes()
    {
        std::vector<std::string> names;
        for (const project::EventRow* row : m_channel->ChannelData->InTimeOrder()) {
            names.push_back(row->EventOBJ->FilePath);
        }
        return names;
    }
    /// Runs the command; `watch` sees the window of it at each yield, until it answers true.
    void Compress(const std::function<bool(QWidget&)>& watch)
    {
        bool seen = false;
        const std::function<void()> look = [&] {
            QWidget* window = QApplication::activeModalWidget();
            seen = window && window->windowTitle() == "Compress project" && watch(*window);
            if (!seen) {
                m_ports.pendingEvents.Post(look);
            }
        };
        look();
        m_ports.messages.Expect(core::Answer::Yes);
        Entry("File/Compress project...")->trigger();
        EXPECT_TRUE(seen);
    }

    project::Channel_Class* m_channel = nullptr;
};

QStringList Texts(const QWidget& window)
{
    QStringList texts;
    for (const QLabel* label : window.findChildren<QLabel*>()) {
        texts << label->text();
    }
    return texts;
}

TEST_F(CompressProject, ItsWindowTellsHowFarItIs)
{
    Compress([this](QWidget& window) {
        const QStringList texts = Texts(window);
        if (!texts.contains("2/2") || window.findChild<controls::VUMeter_UserCtrl*>()->Value() < 50) {
            return false;
        }
        EXPECT_FALSE(m_window->Panel().isEnabled());
        EXPECT_TRUE(texts.contains("take 2.wav") && texts.contains("take 2.wma"));
        EXPECT_TRUE(texts.filter(" %").first().section(' ', 0, 0).toInt() >= 75) << texts.join('/').toStdString();
        return true;
    });
    EXPECT_EQ(m_ports.messages.LastText(), "Done !");
    EXPECT_THAT(Takes(), ::testing::ElementsAre("take 1.wma", "take 2.wma"));
    EXPECT_TRUE(m_window->Panel().isEnabled());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(CompressProject, EscapeCancels)
{
    Compress([](QWidget& window) {
        if (!Texts(window).contains("2/2")) {
            return false;
        }
        EXPECT_TRUE(window.findChild<QPushButton*>("Command1")->isVisible());
        QTest::keyClick(&window, Qt::Key_Escape);
        return true;
    });
    EXPECT_EQ(m_ports.messages.LastText(), "Compression cancelled");
    EXPECT_THAT(Takes(), ::testing::ElementsAre("take 1.wav", "take 2.wav"));
    EXPECT_THAT(m_disk.ListFiles(Project().GetAudioPath(), "*.wma"), ::testing::IsEmpty());
    EXPECT_TRUE(m_window->Panel().isEnabled());
}

} // namespace
} // namespace velmora::app
