#include "app/frmMain.h"

#include "app/HelpWindow.h"
#include "app/KeyPressOfEvent.h"
#include "app/MainPanel.h"
#include "app/MenuBar.h"
#include "app/QtText.h"
#include "app/ShownText.h"
#include "app/frmCompressProject.h"
#include "app/frmEvEd_LoadMusicFile.h"
#include "app/frmExportAudio.h"
#include "controls/ChannelFrame.h"
#include "controls/Combo.h"
#include "controls/CoolToolBar.h"
#include "controls/LCDDisplay.h"
#include "controls/MasterPanel.h"
#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"
#include "core/Paths.h"
#include "core/Units.h"
#include "project/ProjectFile_Class.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QUrl>
#include <utility>
#include <vector>

namespace velmora::app {
namespace {

Box BoxOf(const QRect& rect)
{
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

/// The desktop's screens without their panels, the first one first.
std::vector<Box> UsableScreens()
{
    std::vector<Box> boxes;
    for (const QScreen* screen : QGuiApplication::screens()) {
        boxes.push_back(BoxOf(screen->availableGeometry()));
    }
    return boxes;
}

std::vector<std::string> LocalFiles(const QMimeData& data)
{
    std::vector<std::string> paths;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) {
            paths.push_back(core::InternalPath(FromQt(url.toLocalFile())));
        }
    }
    return paths;
}

} // namespace

frmMain::frmMain(core::Environment& environment)
    : m_environment(environment)
    , m_workspace(environment, *this)
    , m_commands(environment, m_workspace, *this)
    , m_keys(m_commands)
    , m_menus(m_commands)
    , m_panel(new MainPanel(this))
{
    setObjectName("frmMain");
    setWindowTitle("Velmora");
    setCentralWidget(m_panel);
    setAcceptDrops(true);
    connect(m_panel->CoolToolBar1, &controls::CoolToolBar::ButtonClicked, this,
            [this](int button) { m_commands.Toolbar(static_cast<ToolbarButton>(button)); });
    connect(m_panel->MarksCombo, &controls::Combo::activated, this,
            [this](int index) { m_commands.JumpToMark(index); });
    connect(m_panel->MarksCombo, &controls::Combo::KeyboardFocus, this, [this](bool got) {
        if (m_model) {
            m_commands.Send(got ? core::Msg_KeyboardFocusGot : core::Msg_KeyboardFocusLost);
        }
    });
    connect(m_panel->Pic_MasterVol, &controls::MasterPanel::VolumeChosen, this,
            [this](int volume) { m_commands.SetMasterVolume(volume); });
    connect(m_panel->Pic_MasterVol, &controls::MasterPanel::MuteChosen, this,
            [this](bool mute) { m_commands.SetMasterMute(mute); });
    m_panel->MusicFrame->Presenter().SetPlaceQuestion([this](core::ClassID channel, const std::string& /*path*/) {
        frmEvEd_LoadMusicFile dialog(m_commands.Project(), channel, this);
        dialog.exec();
        return dialog.Position();
    });
    QApplication::instance()->installEventFilter(this);
}

frmMain::~frmMain()
{
    m_workspace.End();
}

void frmMain::InitializeMainWindow()
{
    m_model = std::make_unique<MainWindowModel>(m_commands.Project(), static_cast<MainWindowView&>(*this));
    m_commands.SetSender(m_model->ClassID());
    if (m_menuBar == nullptr) {
        m_menuBar = new MenuBar(m_menus, this);
    }
    if (m_panel->MarksCombo->hasFocus()) {
        m_commands.Send(core::Msg_KeyboardFocusGot);
    }
    m_panel->MarksCombo->SetText({});
    MarksChanged();
    ToolbarChanged();
    TimeChanged();
    MasterChanged();
    PathsChanged();
}

void frmMain::InitializeMusicFrame()
{
    m_panel->MusicFrame->Initialize_Class(m_commands.Project());
}

void frmMain::InitializeVoiceFrame()
{
    m_panel->VoiceFrame->Initialize_Class(m_commands.Project());
}

void frmMain::ProjectEnds()
{
    m_panel->MusicFrame->Release();
    m_panel->VoiceFrame->Release();
    m_model.reset();
}

void frmMain::PathsChanged()
{
    setWindowTitle(ToQt(m_workspace.Title()));
}

void frmMain::MarksChanged()
{
    QStringList marks;
    for (const std::string& mark : m_model->MarkTexts()) {
        marks << ToQt(mark);
    }
    m_panel->MarksCombo->SetEmptyText(marks.isEmpty() ? "No marks yet" : "Go to a mark");
    m_panel->MarksCombo->SetItems(marks);
}

void frmMain::ToolbarChanged()
{
    using controls::MainToolBar;
    MainToolBar& toolbar = *m_panel->CoolToolBar1;
    toolbar.SetButtonEnabled(MainToolBar::Undo, m_model->CanUndo());
    toolbar.SetButtonEnabled(MainToolBar::Redo, m_model->CanRedo());
    toolbar.SetButtonEnabled(MainToolBar::Repeat, m_model->CanRepeatRecording());
    toolbar.SetButtonOn(MainToolBar::Play, m_model->Playing());
    toolbar.SetButtonOn(MainToolBar::Record, m_model->Recording());
    using State = controls::LCDDisplay::State;
    m_panel->LCDLabel->SetState(m_model->Recording() ? State::Recording
                                : m_model->Playing() ? State::Playing
                                                     : State::Stopped);
}

void frmMain::TimeChanged()
{
    m_panel->LCDLabel->SetTime(ToQt(ShownTime(m_model->TimePos())));
}

void frmMain::MasterChanged()
{
    m_panel->Pic_MasterVol->SetVolume(m_model->MasterVolume());
    m_panel->Pic_MasterVol->SetMute(m_model->MasterMute());
}

void frmMain::EnableMainWindow(bool enable)
{
    if (m_enabled && !enable) {
        m_focusBefore = focusWidget();
    }
    m_enabled = enable;
    m_panel->setEnabled(enable);
    m_menuBar->Enable(enable);
    if (enable && m_focusBefore != nullptr) {
        m_focusBefore->setFocus();
        m_focusBefore.clear();
    }
}

void frmMain::Place(const WindowState& state)
{
    resize(kFirstWidth, kMinimumHeight + menuBar()->sizeHint().height());
    const Box first{x(), y(), width(), height()};
    const Box place = BringOnScreen(state.place.value_or(first), UsableScreens());
    resize(place.width, place.height);
    if (state.place) {
        move(place.left, place.top);
    }
    if (state.maximized) {
        showMaximized();
    } else {
        show();
    }
}

void frmMain::NotePlace(WindowState& state) const
{
    state.maximized = isMaximized();
    if (!state.maximized) {
        state.place = Box{x(), y(), width(), height()};
    }
}

void frmMain::ExportProject(std::int32_t format, const std::string& path)
{
    m_workspace.WhenIdle([this, format, path] {
        frmExportAudio window(
            m_environment, m_commands.Project(), [this](bool mute) { m_commands.SetMasterMute(mute); }, this);
        const core::NotesScope notes(m_environment.ports.messages,
                                     {"The file is here:\n" + path, path + "\nChoose another name or folder."});
        window.StartExport(format, path);
        ExportForm_Closed();
    });
}

void frmMain::CompressProject()
{
    m_workspace.WhenIdle([this] {
        m_commands.Project().util_StopIfPlayingOrRecording();
        frmCompressProject window(m_environment, m_commands.Project(), this);
        window.StartCompression();
        ExportForm_Closed();
    });
}

void frmMain::ExportForm_Closed()
{
    activateWindow();
    ToolbarChanged();
}

void frmMain::ShowHelpTopic(std::string_view topic)
{
    if (m_help == nullptr) {
        m_help = new HelpWindow(this);
    }
    const std::string page = m_environment.ports.shellFolders.AppExe() + "\\help\\" + std::string(topic);
    if (!m_help->ShowPage(ToQt(core::PosixPath(page)))) {
        m_environment.ports.messages.Show("This help page is missing. Install the program again:\n" + page,
                                          core::Icon::Exclamation);
    }
}

void frmMain::CloseMainWindow()
{
    close();
}

bool frmMain::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const QWidget* target = QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : this;
        // A key that nobody takes travels on to the parents; it is looked at once, before it is given to anybody. The
        // help tells of keys, so they work while it is read.
        const bool first = object == target && (target->window() == this || target->window() == m_help);
        if (first && QApplication::activePopupWidget() == nullptr && PressKey(static_cast<QKeyEvent&>(*event))) {
            return true;
        }
    }
    return QMainWindow::eventFilter(object, event);
}

bool frmMain::PressKey(const QKeyEvent& event)
{
    if (!m_enabled || !m_model) {
        return false;
    }
    const KeyPress press = KeyPressOfEvent(event);
    // Of the menus' keys, only those that write Latin letters are found before.
    if (press.otherScript && press.ctrl && !press.shift && !press.alt &&
        m_menus.Press(std::string("Ctrl+") + press.key)) {
        return true;
    }
    return press.key != 0 && m_model->KeyboardLockCount() == 0 && m_keys.Press(press);
}

void frmMain::closeEvent(QCloseEvent* event)
{
    event->ignore();
    if (!m_enabled) {
        return;
    }
    const project::ProjectFile_Class* project = m_workspace.Project();
    if (project != nullptr && project->MsgSender->Delivering()) {
        m_workspace.WhenIdle([this] { QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection); });
        return;
    }
    if (m_workspace.MayClose()) {
        event->accept();
        QApplication::quit();
    }
}

void frmMain::dragEnterEvent(QDragEnterEvent* event)
{
    if (m_enabled && !LocalFiles(*event->mimeData()).empty()) {
        event->acceptProposedAction();
    }
}

void frmMain::dropEvent(QDropEvent* event)
{
    const auto files = LocalFiles(*event->mimeData());
    const core::ClassID channel = ChannelAt(event->position().toPoint());
    event->acceptProposedAction();
    // Whoever drags must not wait for the messages that this may show.
    QMetaObject::invokeMethod(
        this,
        [this, files, channel] {
            m_workspace.WhenIdle([this, files, channel] { m_commands.AddFiles(files, channel); });
        },
        Qt::QueuedConnection);
}

core::ClassID frmMain::ChannelAt(const QPoint& place) const
{
    const QPoint inPanel = m_panel->mapFrom(this, place);
    if (m_panel->MusicFrame->geometry().contains(inPanel)) {
        return m_commands.Project().Selected_MusicChannel();
    }
    if (m_panel->VoiceFrame->geometry().contains(inPanel)) {
        return m_commands.Project().Selected_VoiceChannel();
    }
    return core::kUnsetFloat;
}

void WindowViews::InitializeMainWindow()
{
    if (m_window != nullptr) {
        m_window->InitializeMainWindow();
    }
}

void WindowViews::InitializeMusicFrame()
{
    if (m_window != nullptr) {
        m_window->InitializeMusicFrame();
    }
}

void WindowViews::InitializeVoiceFrame()
{
    if (m_window != nullptr) {
        m_window->InitializeVoiceFrame();
    }
}

void WindowViews::EnableMainWindow(bool enable)
{
    if (m_window != nullptr) {
        m_window->EnableMainWindow(enable);
    }
}

} // namespace velmora::app
