#include "engine/internal/Planner.h"

#include "core/Units.h"
#include "soundlayer/soundlayer.h"

#include <algorithm>
#include <map>
#include <utility>

namespace velmora::engine {

namespace {

constexpr std::int64_t kHorizonMS = 10'000;
constexpr std::size_t kMostVoices = 256;
constexpr std::chrono::milliseconds kSeekTime{250};
/// Edits come in bursts; the voices are made once the burst is over.
constexpr std::chrono::milliseconds kQuiet{4};
constexpr std::chrono::milliseconds kPollPlaying{20};
constexpr std::chrono::milliseconds kPollHeld{250};
/// Room for opening a file, beyond what the mixing thread may mix in one go.
constexpr std::int32_t kLeadMS = 60;

} // namespace

std::int32_t DeviceRate()
{
    constexpr std::int32_t kDefaultRate = 44100;
    BASS_INFO info{};
    return BASS_GetInfo(&info) ? static_cast<std::int32_t>(info.freq) : kDefaultRate;
}

Planner::Planner(MixSide& mixSide)
    : m_mixSide(mixSide)
{
}

Planner::~Planner()
{
    Stop();
}

void Planner::Start()
{
    if (!m_thread.joinable()) {
        m_ending = false;
        m_thread = std::thread([this] { Run(); });
    }
}

void Planner::Stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
        m_tables.ClearEvents();
        m_tables.ClearChannels();
        m_seek.reset();
        m_seekFrame = 0;
        m_wake.notify_all();
    }
    if (m_thread.joinable()) {
        m_thread.join();
    }
    m_mixSide.Clear();
    m_voices.clear();
    m_published.reset();
}

std::vector<std::pair<EventKey, EventRow>> Planner::Events() const
{
    const std::lock_guard lock(m_mutex);
    return {m_tables.Events().begin(), m_tables.Events().end()};
}

std::uint64_t Planner::Seek(std::int64_t frame)
{
    const std::lock_guard lock(m_mutex);
    m_seekFrame = frame;
    m_seek = SeekRequest{frame, ++m_seeks, Clock::now() + kSeekTime};
    m_wake.notify_all();
    return m_seeks;
}

std::int64_t Planner::Frames() const
{
    const std::lock_guard lock(m_mutex);
    return m_mixSide.SeeksDone() < m_seeks ? m_seekFrame : m_mixSide.clock.Frames();
}

void Planner::Settle()
{
    std::unique_lock lock(m_mutex);
    m_edited = true;
    m_wake.notify_all();
    m_settled.wait(lock, [this] { return !m_edited && !m_seek && !m_working; });
}

void Planner::Run()
{
    std::unique_lock lock(m_mutex);
    while (Wait(lock)) {
        m_working = true;
        Task task = TakeTask();
        lock.unlock();
        Work(std::move(task));
        lock.lock();
        m_working = false;
        m_settled.notify_all();
    }
}

bool Planner::Wait(std::unique_lock<std::mutex>& lock)
{
    const auto poll = m_mixSide.clock.Playing() ? kPollPlaying : kPollHeld;
    m_wake.wait_for(lock, poll, [this] { return m_ending || m_edited || m_seek; });
    while (!m_ending && m_edited && !m_seek && Clock::now() < m_lastEdit + kQuiet) {
        m_wake.wait_until(lock, m_lastEdit + kQuiet);
    }
    return !m_ending;
}

Planner::Task Planner::TakeTask()
{
    Task task;
    task.rate = DeviceRate();
    task.seek = std::exchange(m_seek, std::nullopt);
    m_edited = false;
    const std::int64_t base = task.seek ? task.seek->frame : Position();
    const std::int64_t baseMS = PlaybackClock::TimeOf(base, task.rate);
    task.clips = m_tables.Between(baseMS, baseMS + kHorizonMS, kMostVoices);
    return task;
}

std::int64_t Planner::Position() const
{
    const bool jumpWaits = m_published && m_mixSide.SeeksDone() < m_published->number;
    return jumpWaits ? m_published->frame : m_mixSide.clock.Frames();
}

bool Planner::StillRight(const Voice& voice, const ClipToPlay& clip, const Task& task) const
{
    if (voice.Missed() || voice.CutFrame() != Voice::kNever || voice.Clip().mixer != clip.mixer ||
        !(voice.Clip().row == clip.row)) {
        return false;
    }
    if (!task.seek || task.seek->frame == Position()) {
        return true;
    }
    // Only a voice that waits for its clip's start is right at another position, and it must not start meanwhile.
    const std::int64_t soon = m_mixSide.clock.Playing() ? Position() + 2 * std::int64_t{task.rate} : -1;
    return !voice.Started() && voice.FirstFrame() >= task.seek->frame && voice.FirstFrame() > soon &&
           voice.FirstFrame() == core::FrameOfMS(clip.row.timePosMS, task.rate);
}

std::int64_t Planner::FirstFrame(const ClipToPlay& clip, const Task& task, bool jumpIsDue, std::int32_t attempt) const
{
    const std::int64_t start = core::FrameOfMS(clip.row.timePosMS, task.rate);
    if (jumpIsDue) {
        return std::max(start, task.seek->frame);
    }
    std::int64_t soonest = Position();
    if (m_mixSide.clock.Playing()) {
        const auto bufferMS = static_cast<std::int32_t>(BASS_GetConfig(BASS_CONFIG_BUFFER));
        soonest += core::FrameOfMS((bufferMS + kLeadMS) * (1 + attempt), task.rate);
    }
    return std::max(start, soonest);
}

void Planner::Work(Task task)
{
    m_mixSide.FreeRetired();
    std::map<EventKey, const ClipToPlay*> wanted;
    for (const ClipToPlay& clip : task.clips) {
        wanted[clip.key] = &clip;
    }
    bool changed = task.seek.has_value();
    std::map<EventKey, std::shared_ptr<Voice>> replaced;
    std::map<EventKey, std::int32_t> attempts;
    const std::int64_t now = Position();
    std::erase_if(m_voices, [&](const std::shared_ptr<Voice>& voice) {
        const EventKey key = voice->Clip().key;
        const auto found = wanted.find(key);
        if (found != wanted.end() && found->second && StillRight(*voice, *found->second, task)) {
            found->second = nullptr;
            return false;
        }
        // One that was replaced before still sounds for a moment.
        const bool fadesOut = !task.seek && voice->CutFrame() != Voice::kNever && !voice->OverAt(now);
        if (fadesOut && found != wanted.end()) {
            return false;
        }
        changed = true;
        attempts[key] = voice->Missed() ? 1 : 0;
        if (found != wanted.end() && !task.seek && voice->Started() && !voice->OverAt(now)) {
            replaced[key] = voice;
            return false;
        }
        return true;
    });
    bool jumpIsDue = task.seek.has_value();
    for (const ClipToPlay& clip : task.clips) {
        if (!wanted[clip.key]) {
            continue;
        }
        if (jumpIsDue && Clock::now() >= task.seek->deadline) {
            Publish(task, jumpIsDue);
        }
        const std::int64_t first = FirstFrame(clip, task, jumpIsDue, attempts[clip.key]);
        if (const auto old = replaced.find(clip.key); old != replaced.end()) {
            // The clip's new shape may lie elsewhere: then the old one ends at once.
            const bool joins = first > core::FrameOfMS(clip.row.timePosMS, task.rate) &&
                               first < core::FrameOfMS(clip.row.EndPosMS(), task.rate);
            old->second->CutAt(joins ? first : 0);
        }
        if (first < core::FrameOfMS(clip.row.EndPosMS(), task.rate)) {
            m_voices.push_back(std::make_shared<Voice>(clip, first, task.rate));
        }
        changed = true;
    }
    if (changed) {
        Publish(task, jumpIsDue);
    }
}

void Planner::Publish(Task& task, bool& jumpIsDue)
{
    auto plan = std::make_unique<PlaybackPlan>();
    plan->voices = m_voices;
    const bool jumps = jumpIsDue;
    if (jumpIsDue) {
        plan->jumpTo = task.seek->frame;
        plan->seek = task.seek->number;
        m_published = task.seek;
        jumpIsDue = false;
    }
    m_mixSide.Publish(std::move(plan));
    if (jumps) {
        Sound_MixNow();
    }
}

} // namespace velmora::engine
