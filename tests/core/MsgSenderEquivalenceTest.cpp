#include "core/MsgIds.h"
#include "core/MsgSenderClass.h"
#include "tests/support/ScriptedPorts.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::core {
namespace {

/// A bus as a script sees it. Endpoints have the ids 1, 2, 3, ... and call `receive` when they are served.
class Bus {
public:
    virtual ~Bus() = default;
    virtual void Add(int priority) = 0;
    virtual void Remove(int id) = 0;
    virtual void SetPriority(int id, int priority) = 0;
    virtual void Send() = 0;

    std::function<void(int id)> receive;
};

/// The delivery in its plainest form: the table is walked for each endpoint, what was served stands in a list of ids.
class NaiveBus final : public Bus {
public:
    void Add(int priority) override
    {
        auto row = std::ranges::find(m_rows, false, &Row::active);
        if (row == m_rows.end()) {
            row = m_rows.insert(m_rows.end(), Row{});
        }
        *row = {true, m_nextID++, priority};
    }
    void Remove(int id) override
    {
        for (Row& row : m_rows) {
            row.active = row.active && row.id != id;
        }
    }
    void SetPriority(int id, int priority) override
    {
        for (Row& row : m_rows) {
            row.priority = row.id == id ? priority : row.priority;
        }
    }
    void Send() override
    {
        std::vector<int> delivered;
        for (;;) {
            int best = 0;
            int bestPriority = -1;
            for (const Row& row : m_rows) {
                if (row.active && std::ranges::count(delivered, row.id) == 0 && row.priority > bestPriority) {
                    best = row.id;
                    bestPriority = row.priority;
                }
            }
            if (best == 0) {
                return;
            }
            delivered.push_back(best);
            receive(best);
        }
    }

private:
    struct Row {
        bool active = false;
        int id = 0;
        int priority = 0;
    };
    std::vector<Row> m_rows;
    int m_nextID = 1;
};

class RealBus final : public Bus {
public:
    void Add(int priority) override
    {
        const int id = m_nextID++;
        auto handler = std::make_shared<MsgHandlerClass>(
            m_ids, [this, id](std::int32_t, std::int32_t, MsgParametersClass&) { receive(id); });
        ASSERT_EQ(handler->ClassID(), id);
        m_bus->Add_MsgHandlerOBJ(priority, std::move(handler));
    }
    void Remove(int id) override { m_bus->Remove_MsgHandleOBJ(id); }
    void SetPriority(int id, int priority) override { m_bus->Set_OBJ_Priority(id, priority); }
    void Send() override
    {
        MsgParametersClass params;
        m_bus->SendMsg(-1, Msg_Refresh, params);
    }

private:
    ClassIdCounter m_ids;
    testing::ScriptedPendingEvents m_events;
    std::shared_ptr<MsgSenderClass> m_bus = std::make_shared<MsgSenderClass>(m_ids, m_events);
    int m_nextID = 1;
};

/// Whom a bus serves, in order, when receivers register, remove, move and send as `seed` tells.
std::vector<int> Play(Bus& bus, unsigned seed)
{
    constexpr std::size_t kMostServed = 400;
    constexpr int kDeepest = 4;
    std::minstd_rand random(seed);
    const auto below = [&random](unsigned limit) { return static_cast<int>(random() % limit); };
    std::vector<int> served;
    int depth = 0;
    bus.receive = [&](int id) {
        served.push_back(id);
        if (served.size() > kMostServed) {
            return;
        }
        switch (below(8)) {
        case 0:
            bus.Add(below(6) - 1);
            break;
        case 1:
            bus.Remove(1 + below(40));
            break;
        case 2: {
            const int moved = 1 + below(40);
            bus.SetPriority(moved, below(6));
            break;
        }
        case 3:
            if (depth < kDeepest) {
                ++depth;
                bus.Send();
                --depth;
            }
            break;
        default:
            break;
        }
    };
    for (int i = 0; i < 25; ++i) {
        bus.Add(below(6) - 1);
    }
    bus.Send();
    bus.Send();
    return served;
}

TEST(MsgSenderEquivalence, ServesAsWalkingTheTableAfreshDoes)
{
    std::size_t served = 0;
    for (unsigned seed = 1; seed <= 500; ++seed) {
        NaiveBus naive;
        RealBus real;
        const std::vector<int> expected = Play(naive, seed);
        ASSERT_EQ(Play(real, seed), expected) << "seed " << seed;
        served += expected.size();
    }
    EXPECT_GT(served, 20'000u);
}

} // namespace
} // namespace velmora::core
