#include "effects/FX_Chain_Class.h"

#include "effects/FX_Module.h"
#include "tests/support/TestEnvironment.h"

#include <cmath>
#include <map>

#include <gtest/gtest.h>

namespace velmora::effects {
namespace {

/// Effect index and priority.
using ItemList = std::vector<std::pair<std::int32_t, std::int32_t>>;

class FX_Chain : public ::testing::Test {
protected:
    std::shared_ptr<FX_Data_Class> Effect(std::int32_t index)
    {
        auto data = std::make_shared<FX_Data_Class>(m_environment.ports.messages);
        data->LoadXMLData(FX_GetDefaultXML(index));
        return data;
    }

    static ItemList Items(const FX_Chain_Class& chain)
    {
        ItemList items;
        for (std::int32_t i = 0; i <= chain.FX_TotalN(); ++i) {
            const FxItem* item = chain.GetFxClass_by_Index(i);
            items.emplace_back(item->FxDataOBJ->FxType(), item->Priority);
        }
        return items;
    }

    static std::string ItemText(const std::string& id, const std::string& data)
    {
        return "<Enabled>bool: True</Enabled>" + (id.empty() ? "" : "<ID>float: " + id + "</ID>") +
               "<Priority>int: 10</Priority><Data>" + data + "</Data>";
    }

    static std::string ChainText(const std::string& total, const std::vector<std::string>& items)
    {
        std::string text = "<FX_Chain_Class><ID>float: 1</ID><TotalFx>int: " + total + "</TotalFx>";
        for (std::size_t i = 0; i < items.size(); ++i) {
            text += "<Fx item=\"" + std::to_string(i) + "\">" + items[i] + "</Fx>";
        }
        return text + "</FX_Chain_Class>";
    }

    testing::TestEnvironment m_environment;
    FX_Chain_Class m_chain{*m_environment};
};

TEST_F(FX_Chain, MovingAnEffectRenumbersTheChain)
{
    EXPECT_EQ(m_chain.FX_TotalN(), -1);
    const auto chorus = m_chain.AddFX(10, true, Effect(0));
    const auto echo = m_chain.AddFX(20, true, Effect(3));
    const auto reverb = m_chain.AddFX(30, false, Effect(7));

    // The first of two equal priorities in the array comes first.
    m_chain.ChangeFX_Priority(reverb, 20);
    EXPECT_EQ(Items(m_chain), (ItemList{{0, 10}, {3, 20}, {7, 30}}));
    // "Up" and "down" send 11 less and 11 more.
    m_chain.ChangeFX_Priority(echo, 20 - 11);
    EXPECT_EQ(Items(m_chain), (ItemList{{0, 20}, {3, 10}, {7, 30}}));
    m_chain.ChangeFX_Priority(echo, 10 - 11);
    EXPECT_EQ(Items(m_chain), (ItemList{{0, 20}, {3, 10}, {7, 30}}));
    m_chain.ChangeFX_Priority(chorus, 100'000'000);
    EXPECT_EQ(Items(m_chain), (ItemList{{0, 100'000'000}, {3, 10}, {7, 20}}));

    // The last takes the place of the removed one; numbers stay until the next move.
    m_chain.RemoveFX(chorus);
    EXPECT_EQ(Items(m_chain), (ItemList{{7, 20}, {3, 10}}));
    m_chain.SetFX_Status(reverb, true);
    EXPECT_TRUE(m_chain.GetFx_Status(reverb));
    EXPECT_EQ(m_chain.GetFxClass_by_ID(chorus), nullptr);

    m_chain.ChangeFX_Priority(12345, 1);
    m_chain.SetFX_Status(12345, true);
    m_chain.RemoveFX(12345);
    EXPECT_FALSE(m_chain.GetFx_Status(12345));
    EXPECT_EQ(m_chain.GetFxClass_by_Index(2), nullptr);
    EXPECT_EQ(Items(m_chain), (ItemList{{7, 20}, {3, 10}}));
}

TEST_F(FX_Chain, TextComesBackWithTheSameBytesAndIds)
{
    m_chain.AddFX(20, true, Effect(3));
    m_chain.AddFX(10, false, Effect(7));
    m_chain.pan(-30);
    m_chain.volume(45);
    m_chain.ChangeFX_Priority(-5, 0);
    const std::string saved = m_chain.GetXMLData();

    FX_Chain_Class loaded(*m_environment);
    bool whole = false;
    ASSERT_TRUE(loaded.LoadXMLData(saved, false, &whole));
    EXPECT_TRUE(whole);
    EXPECT_EQ(loaded.GetXMLData(), saved);

    // As new: other ids, all else the same.
    FX_Chain_Class copy(*m_environment);
    ASSERT_TRUE(copy.LoadXMLData(saved, true));
    EXPECT_NE(copy.ClassID(), m_chain.ClassID());
    EXPECT_EQ(m_chain.GetFxClass_by_ID(copy.GetFxClass_by_Index(0)->FxID), nullptr);
    EXPECT_EQ(Items(copy), Items(m_chain));
    EXPECT_EQ(copy.pan(), -30);
}

TEST_F(FX_Chain, LoadedIdsAreAdoptedAndNeverDrawnAgain)
{
    const std::string reverb = FX_GetDefaultXML(7);
    const core::ClassID soon = m_environment->ids.Draw() + 5;
    const std::string soonText = std::to_string(static_cast<int>(soon));
    const std::vector<std::string> items = {ItemText(soonText, reverb), ItemText(soonText, reverb),
                                            ItemText("nan", reverb), ItemText("1e300", reverb)};
    ASSERT_TRUE(m_chain.LoadXMLData(ChainText("4", items), false));
    EXPECT_EQ(m_chain.ClassID(), 1);
    ASSERT_EQ(m_chain.FX_TotalN(), 3);
    EXPECT_EQ(m_chain.GetFxClass_by_Index(0)->FxID, soon);
    std::map<core::ClassID, int> seen;
    for (std::int32_t i = 0; i <= m_chain.FX_TotalN(); ++i) {
        const core::ClassID id = m_chain.GetFxClass_by_Index(i)->FxID;
        EXPECT_TRUE(std::isfinite(id));
        EXPECT_EQ(++seen[id], 1);
    }
    for (int drawn = 0; drawn < 10; ++drawn) {
        EXPECT_EQ(++seen[m_environment->ids.Draw()], 1);
    }
}

TEST_F(FX_Chain, WhatCannotBeReadIsDropped)
{
    const std::string reverb = FX_GetDefaultXML(7);
    bool whole = true;
    ASSERT_TRUE(m_chain.LoadXMLData(ChainText("4", {ItemText("", reverb), ItemText("1", "<Events>x</Events>"),
                                                    ItemText("2", "garbage"), ItemText("3", reverb)}),
                                    false, &whole));
    EXPECT_FALSE(whole);
    EXPECT_EQ(Items(m_chain), (ItemList{{7, 10}}));
    EXPECT_EQ(m_chain.volume(), 100);
    // One box for the chain, however many of its effects are bad.
    EXPECT_EQ(m_environment.ports.messages.Texts(),
              (std::vector<std::string>{"FX_Data_Class::LoadXMLData\nInvalid data"}));

    ASSERT_TRUE(m_chain.LoadXMLData(ChainText("2", {ItemText("", reverb), ItemText("", reverb)}), true, &whole));
    EXPECT_TRUE(whole);
    EXPECT_EQ(Items(m_chain), (ItemList{{7, 10}, {7, 20}}));

    // A number that the text has no room for is not believed.
    ASSERT_TRUE(m_chain.LoadXMLData(ChainText("2147483647", {ItemText("5", reverb)}), false, &whole));
    EXPECT_FALSE(whole);
    ASSERT_TRUE(m_chain.LoadXMLData(ChainText("-3", {ItemText("5", reverb)}), false, &whole));
    EXPECT_EQ(m_chain.FX_TotalN(), -1);

    m_chain.AddFX(10, true, Effect(1));
    const std::string before = m_chain.GetXMLData();
    EXPECT_FALSE(m_chain.LoadXMLData("<FX_ChainList></FX_ChainList>", false));
    EXPECT_EQ(m_chain.GetXMLData(), before);
}

} // namespace
} // namespace velmora::effects
