#include "soundlayer/internal/Output.h"

#include "soundlayer/internal/MixingThread.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace velmora::soundlayer {

Output::Output(std::unique_ptr<AudioDevice> device, std::uint32_t rate, GraphEdits& edits)
    : m_device(std::move(device))
    , m_rate(rate)
    , m_edits(edits)
    , m_root(std::make_shared<MixerStream>(rate, BASS_MIXER_NONSTOP))
    , m_alive(std::make_shared<int>())
    , m_ring(FramesOf(kMaxBufferMS), 2)
    , m_block(2 * kBlockFrames)
{
    m_thread = std::thread([this] { Mix(); });
}

Output::~Output()
{
    m_device->Stop();
    SetMixing(false);
    for (const auto& stream : m_root->Sources()) {
        m_root->RemoveSource(m_edits, *stream);
    }
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_wake.notify_all();
    m_thread.join();
}

bool Output::Start()
{
    return m_device->Start(m_rate, [this](std::int16_t* out, std::size_t frames, SoundClock::time_point heard) {
        OnDevice(out, frames, heard);
    });
}

bool Output::Playing(const Stream& stream) const
{
    return stream.parent == m_root.get();
}

void Output::Play(std::shared_ptr<Stream> stream)
{
    stream->stopped = false;
    if (!Playing(*stream)) {
        m_root->AddSource(m_edits, std::move(stream));
    }
    SetMixing(true);
}

void Output::StopPlaying(Stream& stream)
{
    if (!Playing(stream)) {
        return;
    }
    m_root->RemoveSource(m_edits, stream);
    if (m_root->HasSources()) {
        m_edits.Flush();
    } else {
        SetMixing(false);
    }
}

void Output::SetBuffer(std::uint32_t bufferMS, std::uint32_t periodMS)
{
    m_bufferMS = std::clamp<std::uint32_t>(bufferMS, 1, kMaxBufferMS);
    m_periodMS = std::max<std::uint32_t>(periodMS, 1);
    m_device->SetBufferMS(m_bufferMS);
    m_wake.notify_all();
}

void Output::MixNow()
{
    {
        const std::lock_guard lock(m_mutex);
        m_hurry = true;
    }
    m_wake.notify_all();
}

void Output::SetAwake(bool awake)
{
    m_awake = awake;
    if (awake) {
        m_device->Wake();
    }
}

void Output::SetHeartbeat(SOUND_HEARTBEATPROC* proc, SOUND_USER user)
{
    m_edits.Replace(m_alive, m_heartbeat, proc ? std::make_shared<const Heartbeat>(Heartbeat{proc, user}) : nullptr);
    m_edits.Flush();
}

void Output::OnDevice(std::int16_t* out, std::size_t frames, SoundClock::time_point heard)
{
    const MixingThreadMark mark;
    const std::size_t given = m_ring.Read(out, frames);
    if (given > 0) {
        m_heard->Add({static_cast<std::int64_t>(m_taken), heard, m_breaks});
    }
    m_taken += given;
    m_breaks += given < frames ? 1 : 0;
    std::fill_n(out + 2 * given, 2 * (frames - given), std::int16_t{0});
    if (given < frames && m_primed.load(std::memory_order_acquire)) {
        m_missed.fetch_add(frames - given, std::memory_order_relaxed);
    }
}

void Output::SetMixing(bool mixing)
{
    std::unique_lock lock(m_mutex);
    if (m_mixing == mixing) {
        return;
    }
    m_primed = false;
    if (mixing) {
        m_mixing = true;
        m_wake.notify_all();
        return;
    }
    m_mixing = false;
    m_wake.wait(lock, [this] { return !m_blockUnderWay; });
}

void Output::Mix()
{
    std::unique_lock lock(m_mutex);
    while (true) {
        m_wake.wait(lock, [this] { return m_mixing || m_ending; });
        if (m_ending) {
            return;
        }
        m_blockUnderWay = true;
        const bool hurry = std::exchange(m_hurry, false);
        lock.unlock();
        const std::uint64_t before = MixedFrames();
        const bool filled = m_edits.BeginBlocks();
        if (filled) {
            const MixingThreadMark mark;
            FillRing();
            m_edits.EndBlocks();
        }
        lock.lock();
        m_blockUnderWay = false;
        m_wake.notify_all();
        // A full ring takes what was to come now as soon as the device has asked for more.
        const bool again = !filled || (hurry && MixedFrames() == before);
        m_hurry = m_hurry || (hurry && again);
        const std::chrono::milliseconds pause(again ? 1 : m_periodMS.load());
        m_wake.wait_for(lock, pause, [&] { return !m_mixing || m_ending || (m_hurry && !again); });
    }
}

void Output::FillRing()
{
    m_edits.BetweenBlocks();
    const std::size_t wanted = FramesOf(m_bufferMS.load(std::memory_order_relaxed));
    while (m_ring.Filled() < wanted) {
        m_edits.BetweenBlocks();
        std::size_t frames = std::min(kBlockFrames, wanted - m_ring.Filled());
        if (const auto* heartbeat = m_heartbeat.Get<Heartbeat>()) {
            const std::uint32_t asked = heartbeat->proc(static_cast<std::uint32_t>(frames), heartbeat->user);
            frames = std::clamp<std::size_t>(asked, 1, frames);
        }
        const Block block = m_root->Pull(m_block.data(), frames);
        const bool heard = !block.silent && std::any_of(m_block.data(), m_block.data() + 2 * frames,
                                                        [](std::int16_t sample) { return sample != 0; });
        m_silent = heard || m_awake.load(std::memory_order_relaxed) ? 0 : m_silent + frames;
        if (block.silent) {
            m_ring.WriteSilence(frames);
        } else {
            m_ring.Write(m_block.data(), frames);
        }
        m_mixed.fetch_add(frames, std::memory_order_relaxed);
    }
    m_primed.store(true, std::memory_order_release);
    m_device->SetMayRest(m_silent > FramesOf(kRestAfterMS));
}

} // namespace velmora::soundlayer
