#include "tests/app/AppFixture.h"

#include "app/MainPanel.h"
#include "controls/CoolToolBar.h"
#include "controls/imgButton.h"
#include "tests/audio/SoundFixture.h"

#include <QMenu>
#include <QMenuBar>
#include <QTest>

namespace velmora::app {
namespace {

constexpr char kPaths[] = "newprojects={AppEXE}\\newprojects\nconfig={AppEXE}\\config\npresets={AppEXE}\\presets\n"
                          "examples={AppEXE}\\examples\n";

core::Ports WithViews(core::Ports ports, core::Views& views)
{
    return {ports.messages,     ports.input,  ports.fileDialogs,
            ports.fileNotFound, ports.timers, ports.pendingEvents,
            ports.shellFolders, ports.trash,  views};
}

} // namespace

CommandsFixture::CommandsFixture()
    : m_workspace(*m_environment, *this)
    , m_commands(*m_environment, m_workspace, m_windows)
{
    m_environment->config.Global_OutputDevice = 0;
    m_session = audio::SoundSession::Start(*m_environment);
    m_workspace.Begin();
    EXPECT_TRUE(m_workspace.CreateNewProject());
}

CommandsFixture::~CommandsFixture()
{
    m_workspace.End();
}

std::string CommandsFixture::WriteSound(std::string_view name) const
{
    constexpr std::size_t kSecondOfStereo = 2 * 44100;
    audio::WriteWav(Path(name), {44100, 2, std::vector<std::int16_t>(kSecondOfStereo)});
    return Path(name);
}

std::string CommandsFixture::SaveAs(const std::string& name)
{
    Dialogs().Expect(Path(name));
    EXPECT_TRUE(m_workspace.SaveAs());
    return Path(name);
}

void CommandsFixture::Select(const project::Channel_Class& channel, std::int32_t msgID)
{
    core::MsgParametersClass params;
    params.SelectChannelID = channel.ClassID();
    m_commands.Send(msgID, params);
}

MainWindowFixture::MainWindowFixture()
{
    m_ports.shellFolders.appExe = m_folder.Path();
    m_ports.trash.folder = m_folder.Path("trash");
    m_disk.WriteTextFile(m_folder.Path("paths.cfg"), kPaths);
    m_environment = std::make_unique<core::Environment>(WithViews(m_ports.All(), m_views), m_files);
    m_disk.MakeFolderIfMissing(Path("config"));
    core::Configuration silent;
    silent.Global_OutputDevice = 0;
    silent.Global_FirstRun = false;
    silent.Save(m_disk, Path("config\\config.xml"));
    m_window = std::make_unique<frmMain>(*m_environment);
    m_views.SetWindow(m_window.get());
    m_startup = std::make_unique<Startup>(*m_environment, m_window->Workspace(), *m_window);
}

MainWindowFixture::~MainWindowFixture()
{
    m_startup->ShutDown();
}

void MainWindowFixture::Start(const std::string& project)
{
    ASSERT_TRUE(m_startup->StartEngine());
    ASSERT_TRUE(m_startup->OpenFirstProject(project));
    m_window->Place({});
    QApplication::setActiveWindow(m_window.get());
}

QAction* MainWindowFixture::Entry(const QString& path) const
{
    QList<QAction*> actions = m_window->menuBar()->actions();
    QAction* found = nullptr;
    for (const QString& name : path.split('/')) {
        found = nullptr;
        for (QAction* action : actions) {
            if (action->text().section('\t', 0, 0).remove('&') == name) {
                found = action;
            }
        }
        if (found == nullptr) {
            return nullptr;
        }
        if (found->menu() != nullptr) {
            emit found->menu()->aboutToShow();
            actions = found->menu()->actions();
        }
    }
    return found;
}

void MainWindowFixture::ClickTool(int index)
{
    QTest::mouseClick(m_window->Panel().CoolToolBar1->GetButton(index), Qt::LeftButton);
}

} // namespace velmora::app
