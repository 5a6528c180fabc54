#pragma once

#include "controls/ChannelFrame.h"
#include "tests/project/ProjectFixture.h"

#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

namespace velmora::controls {

/// Both strips on a new project, in a window of their own, and all messages that pass the bus.
class StripTest : public project::ProjectTest {
protected:
    StripTest();
    ~StripTest() override;

    struct Passed {
        std::int32_t msgID;
        double channelID;
        double value;
    };
    /// How often `msgID` has passed.
    long Count(std::int32_t msgID) const;
    void SendTo(std::int32_t msgID, const project::Channel_Class& channel, double value)
    {
        SendToChannel(msgID, channel.ClassID(), value);
    }
    void DeleteChannel(core::ClassID id);
    /// The undo steps there are, told by undoing all of them.
    int UndoSteps();

    /// A control of a strip by its given name.
    template <typename Control>
    Control& Find(QWidget& strip, const char* name)
    {
        auto* control = strip.findChild<Control*>(name);
        EXPECT_NE(control, nullptr) << name;
        return *control;
    }

    QWidget m_window;
    MusicFrame_UserCtrl m_music{&m_window};
    VoiceFrame_UserCtrl m_voice{&m_window};
    std::vector<Passed> m_passed;

private:
    std::shared_ptr<core::MsgHandlerClass> m_listener;
};

} // namespace velmora::controls
