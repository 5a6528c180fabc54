#include "app/MainPanel.h"
#include "audio/AudioExport.h"
#include "bench/WindowSession.h"
#include "controls/Combo.h"
#include "controls/CoolToolBar.h"
#include "core/Paths.h"
#include "project/Channel_Class.h"
#include "project/ProjectFile_Class.h"

#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <thread>

namespace velmora::bench {
namespace {

using controls::MainToolBar;
using namespace std::chrono_literals;

/// Of the project that is used.
constexpr std::size_t kClips = 1000;
constexpr int kChannels = 10;

} // namespace

void WindowSession::Use()
{
    // What the watch must notice.
    Add("nothing, for 80 ms", [] { std::this_thread::sleep_for(80ms); });
    Add(
        "open", [this] { Open(m_subject); }, [this] { return Clips() == kClips; }, 1500ms);
    Add(
        "play", [this] { Press(Qt::Key_P); }, [this] { return Playing(); }, 3000ms);
    Add(
        "seek while it plays",
        [this] {
            Tool(MainToolBar::Ahead);
            Tool(MainToolBar::Ahead);
            Tool(MainToolBar::Back);
        },
        [this] { return TimeMS() > 8000; }, 1000ms);
    Add(
        "mute and solo",
        [this] {
            for (const auto modifier : {Qt::NoModifier, Qt::ShiftModifier}) {
                Press(Qt::Key_M, modifier);
                Press(Qt::Key_S, modifier);
            }
        },
        [this] { return Project().Chn_GetVoiceChannelObj_by_Index(0)->Solo != 0; });
    Add("select ten channels", [this] {
        for (int i = 0; i < 10; ++i) {
            Press(Qt::Key_0 + i);
            Press(Qt::Key_0 + i, Qt::ShiftModifier);
        }
    });
    Add(
        "drag the volume", [this] { Drag("Voice_Vol_VScroll"); }, [this] { return !UndoTitle().empty(); });
    Add("drag the pan", [this] { Drag("voice_Pan_HScroll"); });
    Add(
        "undo while it plays", [this] { Tool(MainToolBar::Undo); }, [this] { return !Playing(); });
    Add(
        "rewind", [this] { Tool(MainToolBar::Rewind); }, [this] { return TimeMS() == 0; });
    for (const int width : {760, 1320, 1087}) {
        Add(
            "resize", [this, width] { m_window->resize(width, width > 1087 ? 786 : 556); },
            [this, width] { return m_window->width() == width; });
    }
    Edit();
    Record();
    Add(
        "save", [this] { Tool(MainToolBar::Save); }, [this] { return !Project().Modified; }, 1000ms);
    Add(
        "save in another folder", [this] { Project().SaveProject(core::InternalPath(m_subject + "-copy.audioproj")); },
        [this] { return QFile::exists(QString::fromStdString(m_subject + "-copy.audioproj")); }, 2000ms);
    Add(
        "new", [this] { Choose("File/New"); }, [this] { return Clips() == 0; }, 1500ms);
}

void WindowSession::Edit()
{
    Add(
        "add a mark", [this] { Tool(MainToolBar::AddMark); }, [this] { return UndoTitle() == "Undo add mark"; },
        1000ms);
    Add("jump to a mark", [this] { emit m_window->Panel().MarksCombo->activated(0); });
    Add(
        "delete the mark", [this] { Choose("Marks/Delete mark/*"); },
        [this] { return UndoTitle() == "Undo delete mark"; });
    for (QAction* action : m_window->menuBar()->actions()) {
        QMenu* menu = action->menu();
        Add(
            "open a menu",
            [menu] {
                menu->popup({20, 60});
            },
            [menu] { return menu->isVisible(); });
        Add(
            "close it", [menu] { menu->close(); }, {}, 100ms);
    }
    Add(
        "rename a channel", [this] { Choose("Channels/Change name/*"); },
        [this] { return UndoTitle() == "Undo change name"; }, 1000ms);
    const auto undo = [this] { Tool(MainToolBar::Undo); };
    const auto redo = [this] { Tool(MainToolBar::Redo); };
    const auto allClips = [this] { return Clips() == kClips; };
    Add(
        "delete a clip", [this] { DeleteClip(); }, [this] { return Clips() == kClips - 1; });
    Add("undo it", undo, allClips);
    Add("redo it", redo, [this] { return Clips() == kClips - 1; });
    Add("undo it", undo, allClips);
    Add(
        "add a channel", [this] { Choose("Channels/Add channel/Voice"); },
        [this] { return Channels() == kChannels + 1; });
    Add("undo it", undo, [this] { return Channels() == kChannels; });
    Add(
        "clear a channel", [this] { Choose("Edit/Clear channel/*"); },
        [this] { return Clips() == kClips - kClips / kChannels; });
    Add("undo it", undo, allClips);
    Add(
        "delete a channel", [this] { Choose("Channels/Delete channel/*"); },
        [this] { return Channels() == kChannels - 1; });
    Add("undo it", undo, allClips);
    Add("redo it", redo, [this] { return Channels() == kChannels - 1; });
    Add("undo it", undo, allClips);
    Add("metronome on and off", [this] {
        Choose("Metronome/Enabled");
        Choose("Metronome/Enabled");
    });
    const QString beside = QFileInfo(QString::fromStdString(m_subject)).path();
    const QString own = beside + "/big - Audio files";
    Add(
        "drop a WAV file of 3 minutes", [this, own] { DropFile(own + "/wav 44100 stereo.wav"); },
        [this] { return Clips() == kClips + 1; });
    Add(
        "drop an MP3 file of an hour", [this, beside] { DropFile(beside + "/an hour.mp3"); },
        [this] { return Clips() == kClips + 2; }, 1000ms);
}

void WindowSession::Record()
{
    const auto recording = [this] { return Recording(); };
    const auto ended = [this] { return !Recording() && Clips() == kClips + 3; };
    Add(
        "record", [this] { Press(Qt::Key_R); }, recording, 3000ms);
    Add(
        "end the take", [this] { Press(Qt::Key_R); }, ended, 1000ms);
    Add(
        "repeat it", [this] { Press(Qt::Key_R, Qt::ControlModifier); }, recording, 2000ms);
    Add(
        "end the take", [this] { Press(Qt::Key_R); }, ended, 1000ms);
}

void WindowSession::Write()
{
    Add(
        "open", [this] { Open(m_subject); }, [this] { return Clips() > 0; }, 1500ms);
    const auto exportTo = [this](std::int32_t format, const char* ending) {
        const std::string file = m_subject + ending;
        Add(
            ending, [this, format, file] { m_window->ExportProject(format, core::InternalPath(file)); },
            [file] { return QFile::exists(QString::fromStdString(file)); });
    };
    exportTo(audio::AudioExport::kWav, " exported.wav");
    exportTo(audio::AudioExport::kWma, " exported.wma");
    Add(
        "compress", [this] { m_window->CompressProject(); }, [this] { return UndoTitle() == "Undo compress project"; });
}

} // namespace velmora::bench
