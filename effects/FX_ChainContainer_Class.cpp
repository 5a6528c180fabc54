#include "effects/FX_ChainContainer_Class.h"

#include "core/SoundEdit.h"
#include "effects/FX_Module.h"
#include "engine/audioplayer.h"
#include "persistence/ItemNumbers.h"
#include "persistence/UTIL_XMLRead.h"
#include "persistence/UTIL_XMLWrite.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace velmora::effects {
namespace {

/// Each takes a copy of the stream. The interface makes one; a text with more than these is damage.
constexpr std::int32_t kMostChains = 100;
constexpr std::string_view kItem = "FxChain";

} // namespace

FX_ChainContainer_Class::FX_ChainContainer_Class(core::Environment& environment)
    : m_environment(environment)
    , m_classID(environment.ids.Draw())
{
}

FX_ChainContainer_Class::~FX_ChainContainer_Class()
{
    FX_Stop();
}

core::ClassID FX_ChainContainer_Class::AddChannel()
{
    m_chains.push_back(std::make_shared<FX_Chain_Class>(m_environment));
    return m_chains.back()->ClassID();
}

void FX_ChainContainer_Class::RemoveChannel(core::ClassID FxChainID)
{
    std::erase_if(m_chains, [FxChainID](const auto& chain) { return chain->ClassID() == FxChainID; });
}

std::shared_ptr<FX_Chain_Class> FX_ChainContainer_Class::Get_FXChainObj_by_ID(core::ClassID FxChainID) const
{
    const auto chain = std::ranges::find(m_chains, FxChainID, &FX_Chain_Class::ClassID);
    return chain == m_chains.end() ? nullptr : *chain;
}

std::shared_ptr<FX_Chain_Class> FX_ChainContainer_Class::Get_FXChainObj_by_Index(std::int32_t Index) const
{
    return Index >= 1 && Index <= TotalChannels() ? m_chains[static_cast<std::size_t>(Index) - 1] : nullptr;
}

void FX_ChainContainer_Class::FX_Start()
{
    Restart([] {});
}

void FX_ChainContainer_Class::FX_Stop()
{
    const core::SoundEdit edit;
    Release(Halt());
}

void FX_ChainContainer_Class::Restart(const std::function<void()>& change)
{
    const core::SoundEdit edit;
    Sounding sounding = Halt();
    change();
    Begin(sounding);
    Release(sounding);
}

void FX_ChainContainer_Class::Bypass(bool bypassed)
{
    const core::SoundEdit edit;
    m_bypassed = bypassed;
    for (const auto& chain : m_chains) {
        for (FxItem& item : chain->m_items) {
            chain->Detach(item);
            if (!bypassed && item.Enable && chain->BassStream_Handle != 0) {
                chain->Attach(item);
            }
        }
    }
}

void FX_ChainContainer_Class::Begin(Sounding& sounding)
{
    m_startedChannels = TotalChannels();
    if (m_startedChannels > 1) {
        StartCopies();
    } else if (m_startedChannels == 1) {
        FX_Chain_Class& chain = *m_chains.front();
        chain.BassStream_Handle = BassInStream_Handle;
        BASS_Mixer_StreamAddChannel(BassOutStream_Handle, BassInStream_Handle, 0);
        AttachEffects(chain, sounding);
        // The chain works on the channel's own stream, whose level and pan belong to the channel.
        chain.pan(0);
        chain.volume(100);
    }
}

void FX_ChainContainer_Class::AttachEffects(FX_Chain_Class& chain, Sounding& sounding) const
{
    std::vector<FxItem*> fresh;
    std::vector<FX_Place> kept;
    for (FxItem& item : chain.m_items) {
        const auto before = sounding.items.find(item.FxID);
        if (!item.Enable || m_bypassed) {
            continue;
        }
        if (before == sounding.items.end() || before->second.AttachedType != item.FxDataOBJ->FxType()) {
            fresh.push_back(&item);
            continue;
        }
        item.FxHandle = before->second.FxHandle;
        item.AttachedType = before->second.AttachedType;
        kept.push_back({item.FxHandle, item.AttachedType, item.Priority});
        sounding.items.erase(before);
    }
    FX_SetPriorities(chain.BassStream_Handle, kept);
    for (const FxItem& item : chain.m_items) {
        FX_Chain_Class::SendParameters(item);
    }
    for (FxItem* item : fresh) {
        chain.Attach(*item);
    }
}

void FX_ChainContainer_Class::Release(const Sounding& sounding)
{
    for (const auto& [id, item] : sounding.items) {
        FX_RemoveFromStream(sounding.stream, item.FxHandle, item.AttachedType);
    }
}

void FX_ChainContainer_Class::StartCopies()
{
    core::MessageBoxes& messages = m_environment.ports.messages;
    const std::int32_t rate = m_environment.config.BassDevice_Freq;
    messages.Show("Invalid FXChain arg");
    if (StreamCopy_AddSourceStream(BassInStream_Handle, rate) == 0) {
        messages.Show("StreamCopy_AddSourceStream Error: " + std::to_string(BASS_ErrorGetCode()) +
                      "\nFX_ChainContainerClass::FX_Start");
    }
    for (const auto& chain : m_chains) {
        messages.Show("Error in FXChain: Invalid args");
        chain->BassStream_Handle =
            StreamCopy_AddDestStream(BassInStream_Handle, rate, BASS_STREAM_DECODE | BASS_SAMPLE_SOFTWARE);
        chain->pan(chain->pan());
        chain->volume(chain->volume());
        if (BASS_Mixer_StreamAddChannel(BassOutStream_Handle, chain->BassStream_Handle, 0) == 0) {
            messages.Beep();
        }
        Sounding none;
        AttachEffects(*chain, none);
    }
}

FX_ChainContainer_Class::Sounding FX_ChainContainer_Class::Halt()
{
    Sounding sounding;
    if (m_startedChannels == core::kUnset) {
        return sounding;
    }
    const bool single = std::exchange(m_startedChannels, core::kUnset) == 1;
    core::MessageBoxes& messages = m_environment.ports.messages;
    for (const auto& chain : m_chains) {
        for (FxItem& item : chain->m_items) {
            if (single && item.FxHandle != 0) {
                sounding.items[item.FxID] = item;
                item.FxHandle = 0;
            } else {
                chain->Detach(item);
            }
        }
        const std::uint32_t stream = std::exchange(chain->BassStream_Handle, 0);
        if (single) {
            sounding.stream = stream;
        } else if (stream != 0) {
            messages.Show("Invalid FX Chain args");
            StreamCopy_RemoveDestStream(stream);
        }
    }
    if (single) {
        BASS_Mixer_ChannelRemove(BassInStream_Handle);
    } else {
        messages.Show("Invalid FX Chain args");
        StreamCopy_RemoveSourceStream(BassInStream_Handle);
    }
    return sounding;
}

persistence::SharedText FX_ChainContainer_Class::GetSharedXML() const
{
    persistence::UTIL_XMLWrite writer;
    writer.SetMasterTag("FX_ChainList");
    writer.Add_Element("TotalN", TotalChannels());
    writer.Add_Element("ID", m_classID);
    for (std::int32_t number = 1; number <= TotalChannels(); ++number) {
        writer.Add_RawElement(persistence::ItemName(kItem, number),
                              m_chains[static_cast<std::size_t>(number) - 1]->GetSharedXML());
    }
    return writer.GetSharedXML();
}

bool FX_ChainContainer_Class::LoadXMLData(std::string_view XMLData, bool AssignNewIDs)
{
    const std::optional<ChainList> list = ReadChains(XMLData, AssignNewIDs);
    TakeChains(list ? list->chains : Chains{}, list ? list->id : m_classID);
    return list.has_value();
}

bool FX_ChainContainer_Class::LoadPack(std::string_view XMLData)
{
    const std::optional<ChainList> list = ReadChains(XMLData, true);
    if (!list || !list->whole || list->chains.empty()) {
        return false;
    }
    TakeChains(list->chains, list->id);
    return true;
}

void FX_ChainContainer_Class::TakeChains(Chains chains, core::ClassID id)
{
    Restart([&] {
        m_chains = std::move(chains);
        m_classID = id;
    });
}

std::optional<FX_ChainContainer_Class::ChainList> FX_ChainContainer_Class::ReadChains(std::string_view xml,
                                                                                      bool assignNewIDs) const
{
    auto reader = persistence::UTIL_XMLRead::WithMasterTag(xml);
    if (!reader.MasterTagIs("fx_chainlist")) {
        return std::nullopt;
    }
    ChainList list;
    std::int32_t announced = 0;
    reader.ReadElement("ID", list.id, 0.0);
    reader.ReadElement("TotalN", announced, 0);
    persistence::RowBudget budget(xml);
    for (const std::int32_t number : persistence::ItemNumbers(xml, kItem, std::min(announced, kMostChains))) {
        const auto text = budget.Take(reader.ReadRaw(persistence::ItemName(kItem, number)));
        auto chain = std::make_shared<FX_Chain_Class>(m_environment);
        bool chainWhole = false;
        if (number > 0 && text && chain->LoadXMLData(*text, assignNewIDs, &chainWhole)) {
            list.chains.push_back(std::move(chain));
            list.whole = list.whole && chainWhole;
        }
    }
    list.whole = list.whole && std::cmp_equal(list.chains.size(), announced);

    core::ClassIdCounter& ids = m_environment.ids;
    std::unordered_set<core::ClassID> seen;
    for (const auto& chain : list.chains) {
        if (!seen.insert(chain->ClassID()).second) {
            chain->m_classID = ids.Draw();
        }
    }
    if (assignNewIDs || !core::CanAdoptID(list.id)) {
        list.id = ids.Draw();
    } else {
        ids.RiseAbove(list.id);
    }
    return list;
}

} // namespace velmora::effects
