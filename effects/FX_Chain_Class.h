#pragma once

#include "core/ClassIds.h"
#include "core/Environment.h"
#include "effects/FX_Data_Class.h"
#include "persistence/SharedText.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::effects {

/// One effect of a chain.
struct FxItem {
    core::ClassID FxID = 0;
    /// Has a meaning only beside the other priorities of the chain: the lower runs first.
    std::int32_t Priority = 10;
    /// Shared with whoever edits the effect.
    std::shared_ptr<FX_Data_Class> FxDataOBJ;
    /// False keeps the effect without letting it act.
    bool Enable = false;
    /// What `FX_AddToStream` gave while the effect is on the stream, else 0; and the effect that it stands for.
    std::uint32_t FxHandle = 0;
    std::int32_t AttachedType = -1;
};

/// The effects on one stream, with the stream's pan and volume.
///
/// Items stand in no particular order; `Priority` alone orders the effects. Operations on an unknown effect do nothing.
/// Membership and order change only while the container is stopped. Interface thread only.
class FX_Chain_Class {
public:
    explicit FX_Chain_Class(core::Environment& environment);

    /// The stream that the chain works on, set by the container that starts it; 0 while stopped.
    std::uint32_t BassStream_Handle = 0;

    core::ClassID ClassID() const { return m_classID; }

    /// Appends an effect and returns its id.
    core::ClassID AddFX(std::int32_t Priority, bool Enable, std::shared_ptr<FX_Data_Class> FxDataOBJ);
    /// The last item takes the removed one's place; priorities stay.
    void RemoveFX(core::ClassID FxID);
    void SetFX_Status(core::ClassID FxID, bool Enable);
    bool GetFx_Status(core::ClassID FxID) const;
    /// Null for an index outside 0..`FX_TotalN`().
    const FxItem* GetFxClass_by_Index(std::int32_t Index) const;
    /// Null for an unknown id.
    const FxItem* GetFxClass_by_ID(core::ClassID FxID) const;
    /// Sets the priority, then renumbers the chain to 10, 20, 30, ...
    void ChangeFX_Priority(core::ClassID FxID, std::int32_t NewPriority);
    /// Index of the last item, so -1 for an empty chain.
    std::int32_t FX_TotalN() const { return static_cast<std::int32_t>(m_items.size()) - 1; }

    /// -100..100. A setter also sets the stream's, if there is one.
    std::int32_t pan() const { return m_pan; }
    void pan(std::int32_t value);
    /// 0..100.
    std::int32_t volume() const { return m_volume; }
    void volume(std::int32_t value);

    /// Puts an effect on the stream with its parameters, anew if it is there.
    void AddFxToStream(core::ClassID FxID);
    /// The stream must still be the one that the effect was put on.
    void RemoveFxFromStream(core::ClassID FxID);
    /// Brings a sounding effect to its present parameters.
    void UpdateFX_Pars_onStream(core::ClassID FxID);

    std::string GetXMLData() const { return GetSharedXML().Text(); }
    persistence::SharedText GetSharedXML() const;
    /// For a chain that is stopped. False leaves it as it was. An effect that has no id or whose text is of another
    /// kind is dropped; `whole` tells whether all that the text announces was read.
    bool LoadXMLData(std::string_view XMLData, bool AssignNewIDs, bool* whole = nullptr);

private:
    friend class FX_ChainContainer_Class;
    const FxItem* Find(core::ClassID FxID) const;
    FxItem* Find(core::ClassID FxID);
    static void RenumberPriorities(std::vector<FxItem>& items);
    void Attach(FxItem& item) const;
    void Detach(FxItem& item) const;
    static void SendParameters(const FxItem& item);
    /// Gives the chain and its effects the ids of their text, fresh ones where these cannot be used or stand twice.
    void AdoptIds(core::ClassID chainID, bool assignNewIDs);

    core::Environment& m_environment;
    core::ClassID m_classID;
    std::int32_t m_pan = 0;
    std::int32_t m_volume = 100;
    std::vector<FxItem> m_items;
};

} // namespace velmora::effects
