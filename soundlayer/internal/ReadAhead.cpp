#include "soundlayer/internal/ReadAhead.h"

#include "soundlayer/internal/MixingThread.h"

#include <algorithm>
#include <utility>

namespace velmora::soundlayer {

namespace {
/// Decoded in one go: enough to be worth the lock, little enough that a reader who waits does not wait long.
constexpr std::size_t kPieceFrames = 4096;
constexpr std::size_t kQueueLength = 1024;
} // namespace

ReadBuffer::ReadBuffer(std::unique_ptr<FrameSource> source, ReadAhead& workers)
    : m_source(std::move(source))
    , m_ring(kRingFrames, m_source->Channels())
    , m_piece(kPieceFrames * m_source->Channels())
    , m_workers(workers)
{
}

void ReadBuffer::Seek(std::int64_t frame)
{
    const std::lock_guard lock(m_decoding);
    m_source->Seek(frame);
    m_ring.Clear();
    m_sourceOver = false;
    m_begun = false;
    m_owed = 0;
}

void ReadBuffer::Fill(std::size_t frames)
{
    while (m_ring.Filled() < frames && Service()) {
    }
}

void ReadBuffer::Request()
{
    if (!m_requested.exchange(true, std::memory_order_acq_rel) && !m_workers.Request(shared_from_this())) {
        m_requested.store(false, std::memory_order_release);
    }
}

Block ReadBuffer::Read(std::int16_t* out, std::size_t frames)
{
    const std::size_t channels = m_source->Channels();
    const bool live = OnMixingThread();
    DropOwed(out, frames);
    Block block;
    while (block.frames < frames) {
        // Asked before the ring is read: over and empty afterwards means that nothing comes any more.
        const bool over = m_sourceOver.load(std::memory_order_acquire);
        const std::size_t got = m_ring.Read(out + block.frames * channels, frames - block.frames);
        block.frames += got;
        if (got > 0) {
            continue;
        }
        if (over) {
            block.ended = true;
            break;
        }
        if (live) {
            break;
        }
        // A worker in mid-piece gives way after it; asleep for a whole ring, the puller would cost the other core.
        m_awaited.store(true, std::memory_order_relaxed);
        const std::lock_guard lock(m_decoding);
        m_awaited.store(false, std::memory_order_relaxed);
        if (m_ring.Filled() == 0 && !m_sourceOver) {
            const std::size_t wanted = frames - block.frames;
            const std::size_t read = m_source->Read({out + block.frames * channels, wanted * channels});
            block.frames += read;
            m_sourceOver = read < wanted;
        }
    }
    m_begun = m_begun || block.frames > 0;
    // What plays from the start on its own may start late; what was under way must not be shifted.
    if (live && m_begun && !block.ended && block.frames < frames) {
        m_owed += frames - block.frames;
        m_workers.AddLate(frames - block.frames);
    }
    if (!block.ended && m_ring.Free() > m_ring.Capacity() / 4 && !m_sourceOver.load(std::memory_order_relaxed) &&
        (live || !m_workers.Alone())) {
        Request();
    }
    block.silent = block.frames == 0;
    return block;
}

void ReadBuffer::DropOwed(std::int16_t* scratch, std::size_t frames)
{
    std::size_t dropped = 1;
    while (m_owed > 0 && dropped > 0) {
        dropped = m_ring.Read(scratch, std::min(m_owed, frames));
        m_owed -= dropped;
    }
}

bool ReadBuffer::Service()
{
    const std::lock_guard lock(m_decoding);
    if (m_sourceOver || m_ring.Free() < kPieceFrames) {
        return false;
    }
    const std::size_t read = m_source->Read(m_piece);
    m_ring.Write(m_piece.data(), read);
    m_sourceOver.store(read < kPieceFrames, std::memory_order_release);
    return read == kPieceFrames && !m_awaited.load(std::memory_order_relaxed);
}

ReadAhead::ReadAhead()
    : m_fromMixer(kQueueLength)
    , m_fromInterface(kQueueLength)
{
    SetThreads(0);
}

ReadAhead::~ReadAhead()
{
    Stop();
}

void ReadAhead::SetThreads(std::uint32_t threads)
{
    Stop();
    m_threads = threads > 0 ? threads : std::max(1U, std::thread::hardware_concurrency());
}

bool ReadAhead::Request(std::shared_ptr<ReadBuffer> buffer)
{
    if (OnMixingThread()) {
        if (!m_fromMixer.try_enqueue(std::move(buffer))) {
            return false;
        }
    } else {
        const std::lock_guard lock(m_asking);
        if (m_workers.empty()) {
            Start();
        }
        m_fromInterface.enqueue(std::move(buffer));
    }
    m_waiting.release();
    return true;
}

void ReadAhead::Start()
{
    m_stopping = false;
    const std::uint32_t workers = std::max(1U, m_threads - 1);
    for (std::uint32_t i = 0; i < workers; ++i) {
        m_workers.emplace_back([this] { Work(); });
    }
}

void ReadAhead::Stop()
{
    m_stopping = true;
    m_waiting.release(static_cast<std::ptrdiff_t>(m_workers.size()));
    for (std::thread& worker : m_workers) {
        worker.join();
    }
    m_workers.clear();
    // Requests without a worker are forgotten; the next read asks again.
    while (const auto buffer = Next()) {
        buffer->m_requested = false;
    }
    while (m_waiting.try_acquire()) {
    }
}

void ReadAhead::Work()
{
    while (true) {
        m_waiting.acquire();
        if (m_stopping) {
            return;
        }
        if (const auto buffer = Next()) {
            // A request that comes while the last piece is decoded must not be lost.
            buffer->m_requested = false;
            while (!m_stopping && buffer->Service()) {
            }
        }
    }
}

std::shared_ptr<ReadBuffer> ReadAhead::Next()
{
    const std::lock_guard lock(m_taking);
    std::shared_ptr<ReadBuffer> buffer;
    if (!m_fromMixer.try_dequeue(buffer)) {
        m_fromInterface.try_dequeue(buffer);
    }
    return buffer;
}

} // namespace velmora::soundlayer
