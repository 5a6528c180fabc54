#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"
#include "tests/support/ScriptedPorts.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::core {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MsgSender : public ::testing::Test {
protected:
    using Action = std::function<void(std::int32_t MsgID, MsgParametersClass& Params)>;

    /// An endpoint that notes its name for each message, then acts.
    std::shared_ptr<MsgHandlerClass> Add(std::int32_t priority, std::string name, Action action = nullptr)
    {
        auto handler = std::make_shared<MsgHandlerClass>(
            ids, [this, name, action](std::int32_t, std::int32_t MsgID, MsgParametersClass& Params) {
                heard.push_back(name);
                if (action) {
                    action(MsgID, Params);
                }
            });
        bus->Add_MsgHandlerOBJ(priority, handler);
        return handler;
    }

    MsgParametersClass Send(std::int32_t msgID = Msg_Refresh, bool DoEvents = true)
    {
        MsgParametersClass params;
        bus->SendMsg(-1, msgID, params, DoEvents);
        return params;
    }

    ClassIdCounter ids;
    testing::ScriptedPendingEvents events;
    std::shared_ptr<MsgSenderClass> bus = std::make_shared<MsgSenderClass>(ids, events);
    std::vector<std::string> heard;
};

TEST_F(MsgSender, DeliversByPriorityThenByRow)
{
    Send();
    EXPECT_EQ(events.runs, 0) << "a message with no endpoint returns at once";

    Add(20, "view");
    Add(100, "project", [](std::int32_t, MsgParametersClass& params) { params.NewChannelID = 7; });
    Add(20, "second view");
    Add(-1, "never");
    const auto moved = Add(0, "last");
    EXPECT_EQ(Send().NewChannelID, 7);
    EXPECT_THAT(heard, ElementsAre("project", "view", "second view", "last"));

    heard.clear();
    bus->Set_OBJ_Priority(static_cast<std::int32_t>(moved->ClassID()), 30);
    Send();
    EXPECT_THAT(heard, ElementsAre("project", "last", "view", "second view"));
}

TEST_F(MsgSender, StopsAtACancelAndAtAFailure)
{
    Add(90, "recorder", [](std::int32_t msgID, MsgParametersClass& params) {
        params.CancelDelivery = msgID == Msg_Player_Play;
        if (msgID == Msg_Player_Stop) {
            throw std::runtime_error("receiver");
        }
    });
    Add(80, "channel");
    EXPECT_TRUE(Send(Msg_Player_Play).CancelDelivery);
    EXPECT_THROW(Send(Msg_Player_Stop), std::runtime_error);
    EXPECT_THAT(heard, ElementsAre("recorder", "recorder"));
    EXPECT_FALSE(bus->Delivering());

    heard.clear();
    Send();
    EXPECT_THAT(heard, ElementsAre("recorder", "channel")) << "a failed delivery leaves no marks";
}

TEST_F(MsgSender, GrowsDuringADelivery)
{
    bool added = false;
    Add(100, "project", [&](std::int32_t, MsgParametersClass&) {
        if (!std::exchange(added, true)) {
            for (int i = 0; i < 60; ++i) {
                Add(i == 0 ? 100 : 80, "channel");
            }
        }
    });
    Add(10, "strip", [&](std::int32_t, MsgParametersClass&) { Add(10, "new strip"); });
    Send();
    ASSERT_EQ(heard.size(), 63u);
    EXPECT_EQ(heard[0], "project");
    EXPECT_EQ(heard[61], "strip");
    EXPECT_EQ(heard[62], "new strip") << "of equal priority, registered while its turn was";
}

TEST_F(MsgSender, DeliversNestedMessagesToTheirEndFirst)
{
    std::shared_ptr<MsgHandlerClass> outer;
    std::vector<std::int32_t> busyCounts;
    outer = Add(50, "outer", [&](std::int32_t msgID, MsgParametersClass&) {
        if (msgID == Msg_Refresh) {
            Send(Msg_Player_Tick);
        }
        busyCounts.push_back(outer->BusyCount());
        EXPECT_TRUE(outer->Busy());
    });
    Add(20, "view");
    Send();
    EXPECT_THAT(heard, ElementsAre("outer", "outer", "view", "view"));
    EXPECT_THAT(busyCounts, ElementsAre(2, 1));
    EXPECT_FALSE(outer->Busy());

    // A timer's tick runs inside the yield of a delivery, before the endpoint whose turn it is.
    heard.clear();
    events.Post([&] { Send(Msg_Player_Tick); });
    Send(Msg_Channel_SetPan);
    EXPECT_THAT(heard, ElementsAre("outer", "view", "outer", "view"));
    heard.clear();
    events.runs = 0;
    Send(Msg_EvEd_ShowEventLabel, false);
    EXPECT_EQ(events.runs, 0);
}

TEST_F(MsgSender, LetsStructuralCommandsWaitForTheEndOfTheDelivery)
{
    Add(50, "recorder", [&](std::int32_t msgID, MsgParametersClass&) {
        if (msgID == Msg_Player_Tick) {
            MsgParametersClass params;
            params.ChannelID = 5;
            bus->SendMsg(-1, Msg_DeleteChannel, params);
            params.ChannelID = 6;
            bus->WhenIdle([&] { heard.push_back(bus->Delivering() ? "undo inside" : "undo"); });
            bus->SendMsg(-1, Msg_Recorder_Start, params);
            EXPECT_THAT(heard, ElementsAre("recorder"));
        }
    });
    Add(20, "view", [&](std::int32_t msgID, MsgParametersClass& params) {
        heard.push_back(std::to_string(msgID) + ' ' + std::to_string(static_cast<int>(params.ChannelID)));
    });
    Send(Msg_Player_Tick);
    EXPECT_THAT(heard, ElementsAre("recorder", "view", "7010 0", "recorder", "view", "2200 5", "undo", "recorder",
                                   "view", "7700 6"));
    heard.clear();
    bus->WhenIdle([&] { heard.push_back("at once"); });
    EXPECT_THAT(heard, ElementsAre("at once"));
}

TEST_F(MsgSender, RunsWaitingCommandsAfterAFailureToo)
{
    Add(50, "receiver", [&](std::int32_t, MsgParametersClass&) {
        bus->WhenIdle([] { throw std::logic_error("first command"); });
        bus->WhenIdle([&] { heard.push_back("second command"); });
        throw std::runtime_error("receiver");
    });
    EXPECT_THROW(Send(), std::logic_error);
    EXPECT_THAT(heard, ElementsAre("receiver", "second command"));
}

TEST_F(MsgSender, DropsEndpointsWhoseOwnersGo)
{
    std::shared_ptr<MsgHandlerClass> second;
    std::weak_ptr<MsgHandlerClass> first =
        Add(50, "first", [&](std::int32_t, MsgParametersClass&) { second->Detach(); });
    second = Add(40, "second");
    Send();
    EXPECT_THAT(heard, ElementsAre("first"));
    EXPECT_EQ(second.use_count(), 1) << "the row is let go once nothing is being delivered";

    heard.clear();
    const auto firstID = static_cast<std::int32_t>(first.lock()->ClassID());
    Add(45, "in the free row");
    Add(60, "remover", [&](std::int32_t, MsgParametersClass&) { bus->Remove_MsgHandleOBJ(firstID); });
    second = Add(30, "leaver", [&](std::int32_t, MsgParametersClass&) {
        second->Detach();
        heard.push_back("and goes on");
    });
    Send();
    EXPECT_TRUE(first.expired());
    Send();
    EXPECT_THAT(heard,
                ElementsAre("remover", "in the free row", "leaver", "and goes on", "remover", "in the free row"));
}

TEST_F(MsgSender, OutlivesItsProjectForTheDeliveryThatEndsIt)
{
    std::weak_ptr<MsgSenderClass> watched = bus;
    Add(50, "project", [&](std::int32_t, MsgParametersClass&) {
        bus->WhenIdle([&] { heard.push_back("dropped"); });
        bus->Close();
        bus.reset();
    });
    Add(40, "view");
    MsgParametersClass params;
    bus->SendMsg(-1, Msg_Refresh, params);
    EXPECT_THAT(heard, ElementsAre("project"));
    EXPECT_TRUE(watched.expired());
}

TEST_F(MsgSender, IgnoresOneSenderWhereTold)
{
    const auto handler = Add(50, "view");
    handler->IgnoreSender(3);
    MsgParametersClass params;
    bus->SendMsg(3, Msg_Refresh, params);
    EXPECT_THAT(heard, IsEmpty());
    bus->SendMsg(4, Msg_Refresh, params);
    EXPECT_THAT(heard, ElementsAre("view"));
}

} // namespace
} // namespace velmora::core
