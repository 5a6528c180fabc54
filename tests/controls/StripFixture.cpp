#include "tests/controls/StripFixture.h"

#include "core/MsgHandlerClass.h"
#include "core/MsgSenderClass.h"
#include "project/Undo_Class.h"

#include <algorithm>

namespace velmora::controls {

StripTest::StripTest()
{
    m_window.resize(700, 340);
    m_music.setGeometry(0, 0, 327, 333);
    m_voice.setGeometry(355, 0, 327, 332);
    project::ProjectFile_Class& project = Restart();
    m_listener = std::make_shared<core::MsgHandlerClass>(
        m_environment->ids,
        [this](std::int32_t /*senderID*/, std::int32_t msgID, const core::MsgParametersClass& params) {
            m_passed.push_back({msgID, params.ChannelID, params.Value});
        });
    project.MsgSender->Add_MsgHandlerOBJ(20, m_listener);
    m_music.Initialize_Class(project);
    m_voice.Initialize_Class(project);
    EXPECT_TRUE(project.CreateNewProject());
    m_window.show();
    m_window.activateWindow();
    m_passed.clear();
}

StripTest::~StripTest()
{
    m_window.hide();
    m_music.Release();
    m_voice.Release();
}

long StripTest::Count(std::int32_t msgID) const
{
    return std::count_if(m_passed.begin(), m_passed.end(), [msgID](const Passed& one) { return one.msgID == msgID; });
}

void StripTest::DeleteChannel(core::ClassID id)
{
    core::MsgParametersClass params;
    params.ChannelID = id;
    Send(core::Msg_DeleteChannel, params);
}

int StripTest::UndoSteps()
{
    int steps = 0;
    while (!m_project->Undo->CurUndo_Title().empty()) {
        m_project->Undo->Undo();
        ++steps;
    }
    return steps;
}

} // namespace velmora::controls
