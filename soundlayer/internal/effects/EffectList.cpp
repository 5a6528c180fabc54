#include "soundlayer/internal/effects/EffectList.h"

#include "soundlayer/internal/SampleLoops.h"
#include "soundlayer/internal/effects/FlushDenormals.h"
#include "soundlayer/internal/effects/GrainEffect.h"

#include <algorithm>
#include <array>

namespace velmora::soundlayer {

namespace {

constexpr std::size_t kGrain = GrainEffect::kGrain;
/// 120 dB above full scale: effects in a row never leave the range of their numbers.
constexpr float kLimit = 0x1p20F;

/// Elements of `numbers` that rise from each to the next, as many as there can be.
std::vector<std::size_t> LongestRisingPart(const std::vector<std::size_t>& numbers)
{
    std::vector<std::size_t> length(numbers.size(), 1);
    for (std::size_t i = numbers.size(); i-- > 0;) {
        for (std::size_t j = i + 1; j < numbers.size(); ++j) {
            length[i] = numbers[j] > numbers[i] ? std::max(length[i], length[j] + 1) : length[i];
        }
    }
    std::vector<std::size_t> rising;
    std::size_t wanted = length.empty() ? 0 : std::ranges::max(length);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (length[i] == wanted && (rising.empty() || numbers[i] > rising.back())) {
            rising.push_back(numbers[i]);
            --wanted;
        }
    }
    return rising;
}

} // namespace

std::vector<std::uint32_t> EffectList::Handles() const
{
    std::vector<std::uint32_t> handles;
    for (const Entry& entry : m_entries) {
        if (!entry.leaving) {
            handles.push_back(entry.slot->Handle());
        }
    }
    return handles;
}

void EffectList::Add(std::shared_ptr<EffectSlot> slot, std::int32_t priority)
{
    m_entries.insert(PlaceFor(priority), {std::move(slot), priority, ++m_lastId, false});
}

std::vector<EffectList::Entry>::iterator EffectList::PlaceFor(std::int32_t priority)
{
    return std::ranges::find_if(m_entries,
                                [priority](const Entry& other) { return !other.leaving && other.priority > priority; });
}

std::vector<EffectList::Entry>::iterator EffectList::Find(const EffectSlot& slot)
{
    return std::ranges::find_if(m_entries,
                                [&slot](const Entry& entry) { return entry.slot.get() == &slot && !entry.leaving; });
}

bool EffectList::Remove(const EffectSlot& slot)
{
    const auto entry = Find(slot);
    if (entry == m_entries.end()) {
        return false;
    }
    entry->leaving = true;
    return true;
}

void EffectList::Reorder(std::span<const std::pair<const EffectSlot*, std::int32_t>> priorities)
{
    for (const auto& [slot, priority] : priorities) {
        if (const auto entry = Find(*slot); entry != m_entries.end()) {
            entry->priority = priority;
        }
    }
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        if (!m_entries[i].leaving) {
            order.push_back(i);
        }
    }
    std::ranges::stable_sort(order, {}, [this](std::size_t i) { return m_entries[i].priority; });
    const std::vector<std::size_t> staying = LongestRisingPart(order);
    std::vector<std::pair<std::shared_ptr<EffectSlot>, bool>> ordered;
    ordered.reserve(order.size());
    for (const std::size_t i : order) {
        ordered.emplace_back(m_entries[i].slot, std::ranges::binary_search(staying, i));
    }
    auto place = m_entries.begin();
    for (auto& [slot, stays] : ordered) {
        auto entry = Find(*slot);
        if (!stays) {
            entry->leaving = true;
            const std::int32_t priority = entry->priority;
            entry = m_entries.insert(place, {std::move(slot), priority, ++m_lastId, false});
        }
        place = entry + 1;
    }
}

void EffectList::Prune()
{
    std::erase_if(m_entries, [](const Entry& entry) { return entry.leaving && !entry.Runs(); });
}

bool EffectList::Active() const
{
    return std::ranges::any_of(m_entries, [](const Entry& entry) { return !entry.leaving || entry.Runs(); });
}

bool EffectList::AtRest() const
{
    return std::ranges::all_of(m_entries,
                               [](const Entry& entry) { return !entry.Runs() || entry.slot->effect->AtRest(); });
}

bool EffectList::RunsSomewhere(const EffectSlot& slot) const
{
    return std::ranges::any_of(m_entries,
                               [&slot](const Entry& entry) { return entry.slot.get() == &slot && entry.Runs(); });
}

void EffectList::TakePlaces(bool fade) const
{
    for (const Entry& entry : m_entries) {
        if (entry.leaving && entry.Runs() && (!fade || entry.slot->m_faded == 0)) {
            entry.slot->m_place.store(0, std::memory_order_relaxed);
        }
    }
    for (const Entry& entry : m_entries) {
        if (!entry.leaving && !entry.Runs() && !RunsSomewhere(*entry.slot)) {
            entry.slot->m_place.store(entry.id, std::memory_order_relaxed);
            entry.slot->m_faded = 0;
        }
        if (!fade) {
            entry.slot->m_faded = kFade;
        }
    }
}

template <typename Work>
void EffectList::ByGrains(std::size_t frames, EffectClock& clock, bool fade, Work&& work) const
{
    if (std::ranges::none_of(m_entries, &Entry::Runs)) {
        clock.position = 0;
    }
    for (std::size_t done = 0; done < frames;) {
        if (clock.position == 0) {
            TakePlaces(fade);
        }
        const std::size_t now = std::min(frames - done, kGrain - clock.position);
        work(done, now);
        done += now;
        clock.position = (clock.position + now) % kGrain;
    }
}

void EffectList::Skip(std::size_t frames, EffectClock& clock) const
{
    if (std::ranges::all_of(m_entries, [](const Entry& entry) { return entry.Runs() && !entry.leaving; })) {
        for (const Entry& entry : m_entries) {
            entry.slot->m_faded = kFade;
            entry.slot->effect->Skip(frames);
        }
        clock.position = (clock.position + frames) % kGrain;
        return;
    }
    ByGrains(frames, clock, false, [this](std::size_t, std::size_t now) {
        for (const Entry& entry : m_entries) {
            if (entry.Runs()) {
                entry.slot->effect->Skip(now);
            }
        }
    });
}

bool EffectList::Process(std::int16_t* samples, std::size_t frames, std::uint32_t channels, EffectClock& clock) const
{
    if (AtRest() && std::all_of(samples, samples + frames * channels, [](std::int16_t s) { return s == 0; })) {
        Skip(frames, clock);
        return true;
    }
    const FlushDenormals flush;
    ByGrains(frames, clock, clock.sounded, [&](std::size_t done, std::size_t now) {
        std::array<float, kGrain> left;
        std::array<float, kGrain> right;
        std::int16_t* block = samples + done * channels;
        if (channels == 1) {
            MonoToSides(left.data(), right.data(), block, now);
            Run(left.data(), right.data(), now);
            SidesToMono(block, left.data(), right.data(), now);
        } else {
            StereoToSides(left.data(), right.data(), block, now);
            Run(left.data(), right.data(), now);
            SidesToStereo(block, left.data(), right.data(), now);
        }
    });
    return false;
}

void EffectList::Run(float* left, float* right, std::size_t frames) const
{
    // Effects that neither fade in nor out wait in a row for one that does, or for the end.
    std::array<Effect*, 32> row{};
    std::size_t waiting = 0;
    const auto runRow = [&] {
        for (std::size_t done = 0; done < waiting;) {
            done += row[done]->ProcessRow({row.data() + done, waiting - done}, left, right, frames);
            LimitSides(left, right, frames, kLimit);
        }
        waiting = 0;
    };
    for (const Entry& entry : m_entries) {
        if (!entry.Runs()) {
            continue;
        }
        if (entry.leaving || entry.slot->m_faded < kFade) {
            runRow();
            RunFading(entry, left, right, frames);
            LimitSides(left, right, frames, kLimit);
            continue;
        }
        row[waiting++] = entry.slot->effect.get();
        if (waiting == row.size()) {
            runRow();
        }
    }
    runRow();
}

void EffectList::RunFading(const Entry& entry, float* left, float* right, std::size_t frames)
{
    // What goes in fades like what comes out: else an echo would repeat how abruptly it was set.
    std::array<float, kGrain> share;
    std::size_t& faded = entry.slot->m_faded;
    for (std::size_t i = 0; i < frames; ++i) {
        if (entry.leaving) {
            faded -= faded > 0 ? 1 : 0;
        } else {
            faded += faded < kFade ? 1 : 0;
        }
        const float t = static_cast<float>(faded) / kFade;
        share[i] = t * t * (3.0F - 2.0F * t);
    }
    std::array<float, kGrain> leftOut{};
    std::array<float, kGrain> rightOut{};
    for (std::size_t i = 0; i < frames; ++i) {
        leftOut[i] = share[i] * left[i];
        rightOut[i] = share[i] * right[i];
    }
    const auto leftIn = leftOut;
    const auto rightIn = rightOut;
    entry.slot->effect->Process(leftOut.data(), rightOut.data(), frames);
    for (std::size_t i = 0; i < frames; ++i) {
        left[i] += share[i] * (leftOut[i] - leftIn[i]);
        right[i] += share[i] * (rightOut[i] - rightIn[i]);
    }
}

} // namespace velmora::soundlayer
