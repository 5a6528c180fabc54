#include "soundlayer/internal/Stream.h"

#include <algorithm>
#include <utility>

namespace velmora::soundlayer {

Stream::Stream(std::uint32_t rate, std::uint32_t channels, std::uint32_t flags)
    : Object(Kind::Stream)
    , m_rate(rate)
    , m_channels(channels)
    , m_flags(flags)
{
}

Block Stream::Pull(std::int16_t* out, std::size_t frames)
{
    Block block = Generate(out, frames);
    const auto* chain = m_chain.Get<Chain>();
    if (chain && block.frames > 0) {
        RunChain(*chain, out, block);
    }
    m_effectClock.sounded = !block.silent;
    return block;
}

void Stream::RunChain(const Chain& chain, std::int16_t* out, Block& block)
{
    if (block.silent && chain.dsps.empty() && chain.taps.empty() && chain.effects.AtRest()) {
        chain.effects.Skip(block.frames, m_effectClock);
        return;
    }
    const std::size_t samples = block.frames * m_channels;
    if (block.silent) {
        std::fill_n(out, samples, std::int16_t{0});
        // A DSP may well sound after its input has fallen silent.
        block.silent = chain.dsps.empty();
    }
    const auto run = [&](const Dsp& dsp) {
        dsp.proc(dsp.handle, Handle(), out, static_cast<std::uint32_t>(samples * sizeof(std::int16_t)), dsp.user);
    };
    const auto late = std::ranges::find_if(chain.dsps, [](const Dsp& dsp) { return dsp.priority < 0; });
    std::for_each(chain.dsps.begin(), late, run);
    if (chain.effects.Active() && !chain.effects.Process(out, block.frames, m_channels, m_effectClock)) {
        block.silent = false;
    }
    std::for_each(late, chain.dsps.end(), run);
    for (const auto& tap : chain.taps) {
        tap->Take(out, block.frames);
    }
}

bool Stream::Laborious() const
{
    const auto* chain = m_chain.Get<Chain>();
    return chain && !chain->effects.Empty();
}

HDSP Stream::AddDsp(GraphEdits& edits, DSPPROC* proc, SOUND_USER user, std::int32_t priority)
{
    const Dsp dsp{++s_lastDsp, proc, user, priority};
    const auto place =
        std::ranges::find_if(m_edited.dsps, [priority](const Dsp& other) { return other.priority < priority; });
    m_edited.dsps.insert(place, dsp);
    Publish(edits);
    return dsp.handle;
}

bool Stream::RemoveDsp(GraphEdits& edits, HDSP dsp)
{
    if (std::erase_if(m_edited.dsps, [dsp](const Dsp& other) { return other.handle == dsp; }) == 0) {
        return false;
    }
    Publish(edits);
    return true;
}

void Stream::AddEffect(GraphEdits& edits, std::shared_ptr<EffectSlot> slot, std::int32_t priority)
{
    m_edited.effects.Add(std::move(slot), priority);
    Publish(edits);
}

bool Stream::RemoveEffect(GraphEdits& edits, const EffectSlot& slot)
{
    if (!m_edited.effects.Remove(slot)) {
        return false;
    }
    Publish(edits);
    return true;
}

void Stream::ReorderEffects(GraphEdits& edits, std::span<const std::pair<const EffectSlot*, std::int32_t>> priorities)
{
    m_edited.effects.Reorder(priorities);
    Publish(edits);
}

void Stream::AddTap(GraphEdits& edits, std::shared_ptr<BlockTap> tap)
{
    m_edited.taps.push_back(std::move(tap));
    Publish(edits);
}

void Stream::RemoveTap(GraphEdits& edits, const BlockTap* tap)
{
    std::erase_if(m_edited.taps, [tap](const auto& other) { return other.get() == tap; });
    Publish(edits);
}

void Stream::Publish(GraphEdits& edits)
{
    m_edited.effects.Prune();
    const bool empty = m_edited.dsps.empty() && m_edited.effects.Empty() && m_edited.taps.empty();
    edits.Replace(shared_from_this(), m_chain, empty ? nullptr : std::make_shared<const Chain>(m_edited));
}

} // namespace velmora::soundlayer
