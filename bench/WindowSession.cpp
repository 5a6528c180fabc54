#include "bench/WindowSession.h"

#include "app/MainPanel.h"
#include "audio/AudioPlayer_Class.h"
#include "audio/Recorder_Class.h"
#include "controls/ChannelFrame.h"
#include "controls/Combo.h"
#include "controls/CoolToolBar.h"
#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"
#include "core/Paths.h"
#include "project/ChannelDataClass.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"
#include "project/UndoData_Class.h"
#include "project/Undo_Class.h"

#include <QDropEvent>
#include <QFile>
#include <QInputDialog>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QMouseEvent>
#include <QPushButton>
#include <QUrl>
#include <cstdio>
#include <utility>

namespace velmora::bench {
namespace {

using namespace std::chrono_literals;

} // namespace

WindowSession::WindowSession(WatchedApplication& application, bool use, std::string subject)
    : m_application(application)
    , m_use(use)
    , m_subject(std::move(subject))
{
    QObject::connect(&m_box, &QTimer::timeout, &m_box, [this] { AnswerBox(); });
}

void WindowSession::Start()
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* found = dynamic_cast<app::frmMain*>(window)) {
            m_window = found;
        }
    }
    if (m_use) {
        Use();
    } else {
        Write();
    }
    m_box.start(300ms);
    m_application.StartWatch();
    QTimer::singleShot(1000ms, &m_box, [this] {
        m_application.TakeReport();
        Next();
    });
}

void WindowSession::Add(const char* name, std::function<void()> act, std::function<bool()> happened,
                        std::chrono::milliseconds rest)
{
    m_steps.push_back({name, std::move(act), rest, std::move(happened)});
}

void WindowSession::Next()
{
    if (m_next > 0) {
        const WatchedApplication::Report report = m_application.TakeReport();
        const Step& done = m_steps[m_next - 1];
        const char* name = done.name;
        if (done.happened && !done.happened()) {
            std::fprintf(stderr, "%s: it came to nothing\n", name);
        }
        std::printf("%s\t%.1f\t%.1f\n", name, report.held.count(), report.unpainted.count());
        std::fflush(stdout);
        for (const std::string& event : report.longEvents) {
            std::fprintf(stderr, "%s: %s\n", name, event.c_str());
        }
    }
    if (m_next == m_steps.size()) {
        m_window->Workspace().Project()->Modified = false;
        m_window->close();
        return;
    }
    const Step& step = m_steps[m_next++];
    step.act();
    QTimer::singleShot(step.rest, &m_box, [this] { Next(); });
}

void WindowSession::AnswerBox() const
{
    QWidget* box = QApplication::activeModalWidget();
    if (auto* input = qobject_cast<QInputDialog*>(box)) {
        input->accept();
    } else if (auto* message = qobject_cast<QMessageBox*>(box)) {
        QAbstractButton* no = message->button(QMessageBox::No);
        QAbstractButton* button = no != nullptr ? no : message->defaultButton();
        std::fprintf(stderr, "said: %s\n", message->text().toUtf8().constData());
        (button != nullptr ? button : message->buttons().first())->click();
    }
}

void WindowSession::Open(const std::string& path) const
{
    m_window->Workspace().OpenFile(core::InternalPath(path));
}

void WindowSession::Press(int key, Qt::KeyboardModifiers modifiers, const QString& text) const
{
    QWidget* target = QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : m_window;
    QCoreApplication::postEvent(target, new QKeyEvent(QEvent::KeyPress, key, modifiers, text));
    QCoreApplication::postEvent(target, new QKeyEvent(QEvent::KeyRelease, key, modifiers, text));
}

void WindowSession::Tool(int index) const
{
    emit m_window->Panel().CoolToolBar1->ButtonClicked(index);
}

void WindowSession::Choose(const QString& path) const
{
    QList<QAction*> actions = m_window->menuBar()->actions();
    QAction* found = nullptr;
    for (const QString& name : path.split('/')) {
        for (QAction* action : actions) {
            if (name == "*" || action->text().section('\t', 0, 0).remove('&') == name) {
                found = action; // of all, the last
            }
        }
        if (found != nullptr && found->menu() != nullptr) {
            emit found->menu()->aboutToShow();
            actions = found->menu()->actions();
        }
    }
    if (found != nullptr) {
        found->trigger();
    }
}

void WindowSession::Drag(const char* slider) const
{
    auto* widget = m_window->Panel().VoiceFrame->findChild<QWidget*>(slider);
    const auto post = [widget](QEvent::Type type, const QPointF& at) {
        const bool release = type == QEvent::MouseButtonRelease;
        QCoreApplication::postEvent(widget, new QMouseEvent(type, at, widget->mapToGlobal(at),
                                                            type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                                                            release ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier));
    };
    const QPointF from(6, 6);
    const QPointF way(widget->width() - 12, widget->height() - 12);
    post(QEvent::MouseButtonPress, from);
    constexpr int kMoves = 50;
    for (int i = 1; i <= kMoves; ++i) {
        post(QEvent::MouseMove, from + way * i / kMoves);
    }
    post(QEvent::MouseButtonRelease, from + way);
}

void WindowSession::DropFile(const QString& file) const
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file)});
    const QPoint at(20, 500);
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_window, &enter);
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_window, &drop);
}

void WindowSession::DeleteClip() const
{
    const project::Channel_Class& channel = *Project().Chn_GetChannelObj_by_Index(0);
    Project().Undo->AddUndo("delete", project::kUndoEvents, channel.ClassID());
    core::MsgParametersClass params;
    params.ChannelID = channel.ClassID();
    params.EventID = channel.ChannelData->InTimeOrder().front()->ID;
    Project().MsgSender->SendMsg(-1, core::Msg_DeleteEvent, params);
}

std::int32_t WindowSession::Channels() const
{
    return Project().Chn_GetChannelClass_TotalN();
}

std::size_t WindowSession::Clips() const
{
    std::size_t clips = 0;
    for (std::int32_t i = 0; i < Channels(); ++i) {
        clips += Project().Chn_GetChannelObj_by_Index(i)->ChannelData->InTimeOrder().size();
    }
    return clips;
}

bool WindowSession::Playing() const
{
    return Project().Player->isPlaying();
}

bool WindowSession::Recording() const
{
    return Project().Recorder->isRecording();
}

std::int32_t WindowSession::TimeMS() const
{
    return Project().Player_LTimePos();
}

std::string WindowSession::UndoTitle() const
{
    return Project().Undo->CurUndo_Title();
}

} // namespace velmora::bench
