#include "effects/FX_Chain_Class.h"

#include "core/Assert.h"
#include "core/BassHelpers.h"
#include "effects/FX_Module.h"
#include "persistence/ItemNumbers.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace velmora::effects {
namespace {

constexpr core::ClassID kNoId = -1;
/// Effects of this priority and above keep it when the others are renumbered.
constexpr std::int32_t kPriorityBound = 100'000'000;
constexpr std::string_view kItem = "Fx";

} // namespace

FX_Chain_Class::FX_Chain_Class(core::Environment& environment)
    : m_environment(environment)
    , m_classID(environment.ids.Draw())
{
}

core::ClassID FX_Chain_Class::AddFX(std::int32_t Priority, bool Enable, std::shared_ptr<FX_Data_Class> FxDataOBJ)
{
    VERIFY_OR(FxDataOBJ, return kNoId);
    m_items.push_back({m_environment.ids.Draw(), Priority, std::move(FxDataOBJ), Enable});
    return m_items.back().FxID;
}

void FX_Chain_Class::RemoveFX(core::ClassID FxID)
{
    if (FxItem* item = Find(FxID)) {
        std::swap(*item, m_items.back());
        m_items.pop_back();
    }
}

void FX_Chain_Class::SetFX_Status(core::ClassID FxID, bool Enable)
{
    if (FxItem* item = Find(FxID)) {
        item->Enable = Enable;
    }
}

bool FX_Chain_Class::GetFx_Status(core::ClassID FxID) const
{
    const FxItem* item = Find(FxID);
    return item && item->Enable;
}

const FxItem* FX_Chain_Class::GetFxClass_by_Index(std::int32_t Index) const
{
    return Index >= 0 && Index <= FX_TotalN() ? &m_items[static_cast<std::size_t>(Index)] : nullptr;
}

const FxItem* FX_Chain_Class::GetFxClass_by_ID(core::ClassID FxID) const
{
    return Find(FxID);
}

void FX_Chain_Class::ChangeFX_Priority(core::ClassID FxID, std::int32_t NewPriority)
{
    if (FxItem* item = Find(FxID)) {
        item->Priority = NewPriority;
        RenumberPriorities(m_items);
    }
}

void FX_Chain_Class::pan(std::int32_t value)
{
    m_pan = value;
    if (BassStream_Handle != 0) {
        core::BassSetAttributes(BassStream_Handle, -1, -1, value);
    }
}

void FX_Chain_Class::volume(std::int32_t value)
{
    m_volume = value;
    if (BassStream_Handle != 0) {
        core::BassSetAttributes(BassStream_Handle, -1, value, -101);
    }
}

void FX_Chain_Class::AddFxToStream(core::ClassID FxID)
{
    if (FxItem* item = Find(FxID)) {
        Detach(*item);
        Attach(*item);
    }
}

void FX_Chain_Class::RemoveFxFromStream(core::ClassID FxID)
{
    if (FxItem* item = Find(FxID)) {
        Detach(*item);
    }
}

void FX_Chain_Class::UpdateFX_Pars_onStream(core::ClassID FxID)
{
    FxItem* item = Find(FxID);
    if (!item || item->FxHandle == 0) {
        return;
    }
    if (item->AttachedType != item->FxDataOBJ->FxType()) {
        Detach(*item);
        Attach(*item);
    } else {
        SendParameters(*item);
    }
}

void FX_Chain_Class::Attach(FxItem& item) const
{
    item.AttachedType = item.FxDataOBJ->FxType();
    item.FxHandle = FX_AddToStream(BassStream_Handle, item.AttachedType, item.Priority);
    SendParameters(item);
}

void FX_Chain_Class::Detach(FxItem& item) const
{
    if (item.FxHandle != 0) {
        FX_RemoveFromStream(BassStream_Handle, std::exchange(item.FxHandle, 0), item.AttachedType);
    }
}

void FX_Chain_Class::SendParameters(const FxItem& item)
{
    if (item.FxHandle != 0) {
        FX_Block block{};
        FX_GenerateStruct(block, item.AttachedType, item.FxDataOBJ->GetXMLData());
        FX_SetParameters(item.FxHandle, item.AttachedType, block);
    }
}

persistence::SharedText FX_Chain_Class::GetSharedXML() const
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("FX_Chain_Class");
    writer.Add_Element("ID", m_classID);
    writer.Add_Element("Pan", m_pan);
    writer.Add_Element("Volume", m_volume);
    writer.Add_Element("TotalFx", static_cast<std::int32_t>(m_items.size()));
    // As loading will number them, so that a text that was loaded is saved as it was.
    std::vector<FxItem> items = m_items;
    RenumberPriorities(items);
    for (std::int32_t i = 0; i <= FX_TotalN(); ++i) {
        const FxItem& item = items[static_cast<std::size_t>(i)];
        persistence::UTIL_XMLWrite nested;
        nested.Add_Element("Enabled", item.Enable);
        nested.Add_Element("ID", item.FxID);
        nested.Add_Element("Priority", item.Priority);
        nested.Add_RawElement("Data", persistence::SharedText(item.FxDataOBJ->GetXMLData()));
        writer.Add_RawElement(persistence::ItemName(kItem, i), nested.GetSharedXML());
    }
    return writer.GetSharedXML();
}

bool FX_Chain_Class::LoadXMLData(std::string_view XMLData, bool AssignNewIDs, bool* whole)
{
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(XMLData);
    if (!reader.MasterTagIs("fx_chain_class")) {
        return false;
    }
    core::ClassID id = 0;
    std::int32_t announced = 0;
    reader.ReadElement("ID", id, 0.0);
    reader.ReadElement("Pan", m_pan, 0);
    reader.ReadElement("Volume", m_volume, 100);
    reader.ReadElement("TotalFx", announced, 0);

    bool invalidData = false;
    std::vector<FxItem> items;
    persistence::RowBudget budget(XMLData);
    for (const std::int32_t i : persistence::ItemNumbers(XMLData, kItem, std::max(announced, 0) - 1)) {
        const auto text = budget.Take(reader.ReadRaw(persistence::ItemName(kItem, i)));
        if (!text) {
            continue;
        }
        auto nested = persistence::UTIL_XMLRead::Plain(*text);
        FxItem item;
        nested.ReadElement("Enabled", item.Enable, false);
        nested.ReadElement("ID", item.FxID, kNoId);
        nested.ReadElement("Priority", item.Priority, 10);
        if (item.FxID == kNoId && !AssignNewIDs) {
            continue;
        }
        item.FxDataOBJ = std::make_shared<FX_Data_Class>(m_environment.ports.messages);
        if (!item.FxDataOBJ->Read(nested.ReadRaw("Data").value_or(""))) {
            invalidData = true;
            continue;
        }
        items.push_back(std::move(item));
    }
    if (whole) {
        *whole = std::cmp_equal(items.size(), std::max(announced, 0));
    }
    m_items = std::move(items);
    AdoptIds(id, AssignNewIDs);
    RenumberPriorities(m_items);
    if (invalidData) {
        FX_Data_Class::ReportInvalidData(m_environment.ports.messages);
    }
    return true;
}

void FX_Chain_Class::AdoptIds(core::ClassID chainID, bool assignNewIDs)
{
    // The counter rises above all ids of the text before the first fresh one is drawn.
    core::ClassIdCounter& ids = m_environment.ids;
    std::unordered_set<core::ClassID> seen;
    std::vector<FxItem*> withoutId;
    for (FxItem& item : m_items) {
        if (assignNewIDs || !core::CanAdoptID(item.FxID) || !seen.insert(item.FxID).second) {
            withoutId.push_back(&item);
        } else {
            ids.RiseAbove(item.FxID);
        }
    }
    const bool adopt = !assignNewIDs && core::CanAdoptID(chainID);
    if (adopt) {
        ids.RiseAbove(chainID);
    }
    m_classID = adopt ? chainID : ids.Draw();
    for (FxItem* item : withoutId) {
        item->FxID = ids.Draw();
    }
}

const FxItem* FX_Chain_Class::Find(core::ClassID FxID) const
{
    const auto item = std::ranges::find(m_items, FxID, &FxItem::FxID);
    return item == m_items.end() ? nullptr : &*item;
}

FxItem* FX_Chain_Class::Find(core::ClassID FxID)
{
    return const_cast<FxItem*>(std::as_const(*this).Find(FxID));
}

void FX_Chain_Class::RenumberPriorities(std::vector<FxItem>& items)
{
    std::vector<FxItem*> ordered;
    for (FxItem& item : items) {
        if (item.Priority < kPriorityBound) {
            ordered.push_back(&item);
        }
    }
    std::ranges::stable_sort(ordered, {}, &FxItem::Priority);
    std::int32_t number = 0;
    for (FxItem* item : ordered) {
        item->Priority = number += 10;
    }
}

} // namespace velmora::effects
