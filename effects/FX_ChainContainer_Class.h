#pragma once

#include "core/ClassIds.h"
#include "core/Environment.h"
#include "core/Units.h"
#include "effects/FX_Chain_Class.h"
#include "persistence/SharedText.h"

#include <cstdint>
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
/// output. Interface thread only; whoever edits chains stops the container first and starts it afterwards, inside one
/// edit of the sound layer, so that nothing else is heard of it.
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

    /// Joins the streams as told above; a single chain becomes neutral in pan and volume.
    void FX_Start();
    void FX_Stop();

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

    void StartCopies();
    std::optional<ChainList> ReadChains(std::string_view xml, bool assignNewIDs) const;
    void TakeChains(Chains chains, core::ClassID id);

    core::Environment& m_environment;
    core::ClassID m_classID;
    std::int32_t m_startedChannels = core::kUnset;
    Chains m_chains;
};

} // namespace velmora::effects
