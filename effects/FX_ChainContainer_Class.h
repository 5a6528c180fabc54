#pragma once

#include "core/ClassIds.h"
#include "core/Environment.h"
#include "core/Units.h"
#include "effects/FX_Chain_Class.h"
#include "persistence/SharedText.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::effects {

/// The effects of a channel: leads the channel's input stream through its chains into the channel's output mixer.
///
/// With one chain the input stream itself is a source of the output mixer. Several chains get copies of it; the
/// interface cannot make more than one, and the texts shown on that road mark it. Without a chain nothing reaches the
/// output. Interface thread only; membership, order and state of effects change inside `Restart`.
class FX_ChainContainer_Class {
public:
    explicit FX_ChainContainer_Class(core::Environment& environment);
    /// Stops.
    ~FX_ChainContainer_Class();
    FX_ChainContainer_Class(const FX_ChainContainer_Class&) = delete;
    FX_ChainContainer_Class& operator=(const FX_ChainContainer_Class&) = delete;

    /// The channel's input and output mixer; not owned, set before `FX_Start`.
    std::uint32_t BassInStream_Handle = 0;
    std::uint32_t BassOutStream_Handle = 0;

    core::ClassID ClassID() const { return m_classID; }

    std::int32_t TotalChannels() const { return static_cast<std::int32_t>(m_chains.size()); }
    /// Adds an empty chain and returns its id.
    core::ClassID AddChannel();
    void RemoveChannel(core::ClassID FxChainID);
    /// Null for an unknown id.
    std::shared_ptr<FX_Chain_Class> Get_FXChainObj_by_ID(core::ClassID FxChainID) const;
    /// `Index` from 1; null outside.
    std::shared_ptr<FX_Chain_Class> Get_FXChainObj_by_Index(std::int32_t Index) const;

    /// Joins the streams as told above and puts the enabled effects on them; a single chain becomes neutral in pan and
    /// volume.
    void FX_Start();
    void FX_Stop();
    /// Stops, calls `change` and starts, in one edit of the sound: an effect that is there before and after, by its id
    /// and kind, sounds on with its tail, and nobody else notices. Chains that work on copies of the input lose their
    /// tails with the copies.
    void Restart(const std::function<void()>& change);
    /// Takes all effects off their streams, or puts them there anew, without what they had in memory.
    void Bypass(bool bypassed);

    std::string GetXMLData() const { return GetSharedXML().Text(); }
    persistence::SharedText GetSharedXML() const;
    /// Replaces the chains by those of the text and starts. Text of another kind gives false and leaves no chain.
    bool LoadXMLData(std::string_view XMLData, bool AssignNewIDs);
    /// Takes the chains of a pack, with new ids, and starts. False, with everything as it was, if the pack is not whole
    /// or holds no chain.
    bool LoadPack(std::string_view XMLData);

private:
    using Chains = std::vector<std::shared_ptr<FX_Chain_Class>>;

    /// What a text holds; `whole` tells whether all that it announces was read.
    struct ChainList {
        core::ClassID id = 0;
        Chains chains;
        bool whole = true;
    };

    /// Effects that are still on the input stream while the container is stopped, by their id.
    struct Sounding {
        std::uint32_t stream = 0;
        std::map<core::ClassID, FxItem> items;
    };

    Sounding Halt();
    void Begin(Sounding& sounding);
    static void Release(const Sounding& sounding);
    void StartCopies();
    void AttachEffects(FX_Chain_Class& chain, Sounding& sounding) const;
    std::optional<ChainList> ReadChains(std::string_view xml, bool assignNewIDs) const;
    void TakeChains(Chains chains, core::ClassID id);

    core::Environment& m_environment;
    core::ClassID m_classID;
    std::int32_t m_startedChannels = core::kUnset;
    Chains m_chains;
    bool m_bypassed = false;
};

} // namespace velmora::effects
