#pragma once

#include "soundlayer/internal/Object.h"
#include "soundlayer/internal/effects/Effect.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace velmora::soundlayer {

/// An effect that was set on a stream; its handle is the HFX. It lives on through edits of the stream, with its tail.
class EffectSlot : public Object {
public:
    EffectSlot(std::unique_ptr<Effect> theEffect, std::uint32_t theStream)
        : Object(Kind::Effect)
        , effect(std::move(theEffect))
        , stream(theStream)
    {
    }

    const std::unique_ptr<Effect> effect;
    /// Handle of the stream.
    const std::uint32_t stream;

private:
    friend class EffectList;
    /// The entry at which the effect runs, 0 before and after; written where the stream is pulled.
    std::atomic<std::uint32_t> m_place{0};
    /// How far it has faded in, in frames. Pulling thread.
    std::size_t m_faded = 0;
};

/// How far a stream's effects have come. Pulling thread.
struct EffectClock {
    /// Where in its grain every effect of the stream stands.
    std::size_t position = 0;
    /// Whether the stream's last block was heard: if not, effects join and leave without fading.
    bool sounded = false;
};

/// The effects of a stream in the order in which they run, of lower priority first.
///
/// The list is a value: an edit changes a copy, and the pulling thread gets the copy. One that leaves stays in the list
/// until it has faded out; one that moves is in it twice, and fades out here before it fades in there. The grains of
/// all effects of a stream begin together.
class EffectList {
public:
    /// Frames over which an effect fades in and out, whole grains.
    static constexpr std::size_t kFade = 256;

    bool Empty() const { return m_entries.empty(); }
    /// The handles of those that are not leaving.
    std::vector<std::uint32_t> Handles() const;
    void Add(std::shared_ptr<EffectSlot> slot, std::int32_t priority);
    /// False when it is not in the list.
    bool Remove(const EffectSlot& slot);
    /// Gives effects new priorities, all at once; one that is not in the list is passed over. Equal ones stay in their
    /// order. As few as can be change their place.
    void Reorder(std::span<const std::pair<const EffectSlot*, std::int32_t>> priorities);
    /// Drops what has left.
    void Prune();

    /// Whether any effect runs or is to. [RT]
    bool Active() const;
    /// Whether silence may be skipped. [RT]
    bool AtRest() const;
    /// Silence passes while `AtRest`. [RT]
    void Skip(std::size_t frames, EffectClock& clock) const;
    /// Works on interleaved samples of 1 or 2 channels. True when it was silence and nothing had to be done. [RT]
    bool Process(std::int16_t* samples, std::size_t frames, std::uint32_t channels, EffectClock& clock) const;

private:
    struct Entry {
        std::shared_ptr<EffectSlot> slot;
        std::int32_t priority = 0;
        std::uint32_t id = 0;
        bool leaving = false;

        bool Runs() const { return slot->m_place.load(std::memory_order_relaxed) == id; }
    };

    template <typename Work>
    void ByGrains(std::size_t frames, EffectClock& clock, bool fade, Work&& work) const;
    void TakePlaces(bool fade) const;
    bool RunsSomewhere(const EffectSlot& slot) const;
    void Run(float* left, float* right, std::size_t frames) const;
    static void RunFading(const Entry& entry, float* left, float* right, std::size_t frames);
    std::vector<Entry>::iterator Find(const EffectSlot& slot);
    /// Behind all that are not leaving and have this priority or a lower one.
    std::vector<Entry>::iterator PlaceFor(std::int32_t priority);

    std::vector<Entry> m_entries;
    std::uint32_t m_lastId = 0;
};

} // namespace velmora::soundlayer
