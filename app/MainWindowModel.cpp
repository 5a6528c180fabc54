#include "app/MainWindowModel.h"

#include "app/ShownText.h"
#include "audio/AudioPlayer_Class.h"
#include "audio/Recorder_Class.h"
#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"
#include "core/Units.h"
#include "project/MarkList_Class.h"
#include "project/ProjectFile_Class.h"
#include "project/UndoData_Class.h"
#include "project/Undo_Class.h"

#include <algorithm>

namespace velmora::app {
namespace {

constexpr std::int32_t kBusPriority = 20;

} // namespace

MainWindowModel::MainWindowModel(project::ProjectFile_Class& project, MainWindowView& view)
    : m_project(project)
    , m_view(view)
    , m_classID(project.Environment().ids.Draw())
{
    Listen(&MainWindowModel::Keypress_MsgHandle_MsgReceived);
    Listen(&MainWindowModel::Marks_MsgHandler_MsgReceived);
    Listen(&MainWindowModel::MasterVol_MsgHandler_MsgReceived);
    Listen(&MainWindowModel::MISC_MsgHandler_MsgReceived);
}

MainWindowModel::~MainWindowModel()
{
    for (const auto& handler : m_handlers) {
        handler->Detach();
    }
}

void MainWindowModel::Listen(Received received)
{
    m_handlers.push_back(std::make_shared<core::MsgHandlerClass>(
        m_project.Environment().ids,
        [this, received](std::int32_t /*senderID*/, std::int32_t msgID, core::MsgParametersClass& params) {
            (this->*received)(msgID, params);
        }));
    m_project.MsgSender->Add_MsgHandlerOBJ(kBusPriority, m_handlers.back());
}

bool MainWindowModel::Playing() const
{
    return m_project.Player && m_project.Player->isPlaying();
}

bool MainWindowModel::Recording() const
{
    return m_project.Recorder->isRecording();
}

bool MainWindowModel::CanUndo() const
{
    return !m_project.Undo->CurUndo_Title().empty();
}

bool MainWindowModel::CanRedo() const
{
    return !m_project.Undo->CurRedo_Title().empty();
}

bool MainWindowModel::CanRepeatRecording() const
{
    return m_project.LastRecTimePos != core::kUnset;
}

std::vector<std::string> MainWindowModel::MarkTexts() const
{
    std::vector<std::string> texts;
    for (std::int32_t i = 0; i <= m_project.Marks->GetTotalMarks(); ++i) {
        std::int32_t id = 0;
        double time = 0;
        std::string title;
        m_project.Marks->GetMark_by_Index(i, id, time, title);
        texts.push_back(ShownWithTime(title, core::RoundToInt(time)));
    }
    return texts;
}

void MainWindowModel::Keypress_MsgHandle_MsgReceived(std::int32_t msgID, const core::MsgParametersClass& /*params*/)
{
    if (msgID == core::Msg_KeyboardFocusGot) {
        ++m_keyboardLockCount;
    } else if (msgID == core::Msg_KeyboardFocusLost) {
        m_keyboardLockCount = std::max(m_keyboardLockCount - 1, 0);
    }
}

void MainWindowModel::Marks_MsgHandler_MsgReceived(std::int32_t msgID, const core::MsgParametersClass& params)
{
    switch (msgID) {
    case core::Msg_UndoRestored:
        if (params.UndoDataType != project::kUndoMarks && params.UndoDataType != project::kUndoProject) {
            break;
        }
        [[fallthrough]];
    case core::Msg_Refresh:
    case core::Msg_AddMark:
    case core::Msg_DeleteMark:
    case core::Msg_MarkChanged:
        m_view.MarksChanged();
        break;
    default:
        break;
    }
}

void MainWindowModel::MasterVol_MsgHandler_MsgReceived(std::int32_t msgID, const core::MsgParametersClass& params)
{
    if (msgID == core::Msg_Master_SetVolume) {
        m_masterVolume = core::RoundToInt(params.Value);
        m_view.MasterChanged();
    } else if (msgID == core::Msg_Master_SetMute) {
        m_masterMute = params.Value == core::kTrue;
        m_view.MasterChanged();
    }
}

void MainWindowModel::MISC_MsgHandler_MsgReceived(std::int32_t msgID, const core::MsgParametersClass& params)
{
    switch (msgID) {
    case core::Msg_Player_Tick:
        m_timePos = params.PlayerPosMS;
        m_view.TimeChanged();
        break;
    case core::Msg_Refresh:
    case core::Msg_UndoListChanged:
    case core::Msg_Recorder_Start:
    case core::Msg_Recorder_Stop:
    case core::Msg_Player_Play:
    case core::Msg_Player_Stop:
        m_view.ToolbarChanged();
        break;
    default:
        break;
    }
}

} // namespace velmora::app
