#pragma once

#include "core/ClassIds.h"
#include "core/MsgHandlerClass.h"
#include "core/MsgParametersClass.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velmora::project {
class ProjectFile_Class;
}

namespace velmora::app {

/// Who draws what `MainWindowModel` holds.
class MainWindowView {
public:
    virtual ~MainWindowView() = default;
    virtual void MarksChanged() = 0;
    virtual void ToolbarChanged() = 0;
    virtual void TimeChanged() = 0;
    virtual void MasterChanged() = 0;
};

/// What the main window hears of one project, and keeps of it: marks, transport, master volume, and how many text
/// controls hold the keyboard. Listens from its construction to its end. Interface thread only.
class MainWindowModel {
public:
    /// Both outlive this. The project's bus must be there.
    MainWindowModel(project::ProjectFile_Class& project, MainWindowView& view);
    ~MainWindowModel();
    MainWindowModel(const MainWindowModel&) = delete;
    MainWindowModel& operator=(const MainWindowModel&) = delete;

    /// The sender of the window's messages.
    core::ClassID ClassID() const { return m_classID; }
    /// The window's keys work only at 0.
    std::int32_t KeyboardLockCount() const { return m_keyboardLockCount; }

    bool Playing() const;
    bool Recording() const;
    bool CanUndo() const;
    bool CanRedo() const;
    bool CanRepeatRecording() const;
    /// The cursor, in ms.
    std::int32_t TimePos() const { return m_timePos; }
    /// Each mark with its time, in the order of the list.
    std::vector<std::string> MarkTexts() const;
    /// 0..100.
    std::int32_t MasterVolume() const { return m_masterVolume; }
    bool MasterMute() const { return m_masterMute; }

private:
    using Received = void (MainWindowModel::*)(std::int32_t msgID, const core::MsgParametersClass& params);
    void Listen(Received received);
    void Keypress_MsgHandle_MsgReceived(std::int32_t msgID, const core::MsgParametersClass& params);
    void Marks_MsgHandler_MsgReceived(std::int32_t msgID, const core::MsgParametersClass& params);
    void MasterVol_MsgHandler_MsgReceived(std::int32_t msgID, const core::MsgParametersClass& params);
    void MISC_MsgHandler_MsgReceived(std::int32_t msgID, const core::MsgParametersClass& params);

    project::ProjectFile_Class& m_project;
    MainWindowView& m_view;
    core::ClassID m_classID;
    std::vector<std::shared_ptr<core::MsgHandlerClass>> m_handlers;
    std::int32_t m_keyboardLockCount = 0;
    std::int32_t m_timePos = 0;
    std::int32_t m_masterVolume = 100;
    bool m_masterMute = false;
};

} // namespace velmora::app
