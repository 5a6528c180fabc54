#include "engine/internal/MixSide.h"

#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <utility>

namespace velmora::engine {

namespace {
/// The planner frees what came back before it publishes once more, so few plans are ever on their way.
constexpr std::size_t kQueueLength = 64;
} // namespace

MixSide::MixSide()
    : m_retired(kQueueLength)
{
}

MixSide::~MixSide()
{
    Clear();
}

void MixSide::Play(std::uint64_t seek)
{
    m_playAfterSeek.store(seek, std::memory_order_release);
    clock.Play();
}

void MixSide::Publish(std::unique_ptr<PlaybackPlan> plan)
{
    FreeRetired();
    const std::unique_ptr<PlaybackPlan> untaken(m_next.exchange(nullptr, std::memory_order_acq_rel));
    if (untaken && plan->jumpTo < 0) {
        plan->jumpTo = untaken->jumpTo;
        plan->seek = untaken->seek;
    }
    m_next.store(plan.release(), std::memory_order_release);
}

void MixSide::FreeRetired()
{
    const std::uint64_t retired = m_retiredCount.load(std::memory_order_acquire);
    PlaybackPlan* plan = nullptr;
    for (; m_freedCount < retired; ++m_freedCount) {
        m_retired.try_dequeue(plan);
        delete plan;
    }
}

void MixSide::Clear()
{
    FreeRetired();
    delete m_next.exchange(nullptr);
    delete std::exchange(m_plan, nullptr);
    m_wasPlaying = false;
    m_blockStart = -1;
}

void MixSide::TakePlan()
{
    PlaybackPlan* plan = m_next.exchange(nullptr, std::memory_order_acq_rel);
    if (!plan) {
        return;
    }
    ++m_planNumber;
    for (const auto& voice : plan->voices) {
        voice->plan = m_planNumber;
    }
    if (m_plan) {
        for (const auto& voice : m_plan->voices) {
            if (voice->plan != m_planNumber) {
                voice->End();
            }
        }
        m_retired.try_enqueue(m_plan);
        m_retiredCount.fetch_add(1, std::memory_order_release);
    }
    m_plan = plan;
    if (plan->jumpTo >= 0) {
        // A voice that sounds on was meant for a clock that stands there already; a block may have come between.
        for (const auto& voice : plan->voices) {
            if (plan->jumpTo != clock.Frames() && voice->Started()) {
                voice->Miss();
                m_missedVoices.fetch_add(1, std::memory_order_relaxed);
            }
        }
        clock.SetFrames(plan->jumpTo);
        m_seeksDone.store(plan->seek, std::memory_order_release);
    }
}

std::optional<MixSide::Stamp> MixSide::LastStamp() const
{
    if (m_stamping.load(std::memory_order_acquire) != Stamping::Done) {
        return {};
    }
    return Stamp{m_stampClock.load(std::memory_order_acquire), m_stampMixed.load(std::memory_order_acquire)};
}

void MixSide::TakeStamp(std::int64_t now)
{
    if (m_stamping.load(std::memory_order_acquire) == Stamping::Armed) {
        m_stampClock.store(now, std::memory_order_release);
        m_stampMixed.store(Sound_MixedFrames(), std::memory_order_release);
        m_stamping.store(Stamping::Done, std::memory_order_release);
    }
}

std::uint32_t MixSide::BeforeBlock(std::uint32_t wanted)
{
    TakePlan();
    const bool playing = clock.Playing() &&
                         m_seeksDone.load(std::memory_order_relaxed) >= m_playAfterSeek.load(std::memory_order_acquire);
    if (m_plan && playing != m_wasPlaying) {
        for (const auto& voice : m_plan->voices) {
            playing ? voice->Resume() : voice->Hold();
        }
    }
    m_wasPlaying = playing;
    if (!playing) {
        m_blockStart = -1;
        return wanted;
    }
    const std::int64_t now = clock.Frames();
    TakeStamp(now);
    std::int64_t next = now + wanted;
    if (m_plan) {
        for (const auto& voice : m_plan->voices) {
            if (!voice->Advance(now)) {
                m_missedVoices.fetch_add(1, std::memory_order_relaxed);
            }
            next = std::min(next, voice->NextChange(now));
        }
    }
    const auto frames = static_cast<std::uint32_t>(std::max<std::int64_t>(next - now, 1));
    m_blockStart = now;
    clock.Advance(frames);
    return frames;
}

} // namespace velmora::engine
