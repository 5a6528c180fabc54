#pragma once

#include "soundlayer/internal/FrameSource.h"
#include "soundlayer/internal/SampleRing.h"
#include "soundlayer/internal/Stream.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <semaphore>
#include <thread>
#include <vector>

#include <readerwriterqueue/readerwriterqueue.h>

namespace velmora::soundlayer {

class ReadAhead;

/// A file's frames, decoded ahead of whoever reads them.
///
/// Workers fill a ring; the reader takes from it. On the mixing thread a read never touches the file: what is not
/// decoded yet is missing, and dropped when it comes, so that the rest keeps its place. Elsewhere a read waits for the
/// decoding, or does it itself, so that the frames read never depend on who decoded them.
class ReadBuffer : public std::enable_shared_from_this<ReadBuffer> {
public:
    /// Some 740 ms at 44.1 kHz.
    static constexpr std::size_t kRingFrames = 32768;

    ReadBuffer(std::unique_ptr<FrameSource> source, ReadAhead& workers);

    const FrameSource& Source() const { return *m_source; }
    /// The next read begins at `frame`. Not while somebody reads.
    void Seek(std::int64_t frame);
    /// Decodes until `frames` frames wait to be read, the ring is full or the file is over. Not on the mixing thread.
    void Fill(std::size_t frames);
    /// Asks the workers to decode ahead. [RT]
    void Request();
    /// Up to `frames` frames from where the last read ended; `ended` with or behind the file's last frame. [RT] on the
    /// mixing thread.
    Block Read(std::int16_t* out, std::size_t frames);

private:
    friend class ReadAhead;

    void DropOwed(std::int16_t* scratch, std::size_t frames);
    /// Decodes one piece into the ring; false when it is full enough, the file is over or a reader takes over.
    bool Service();

    std::mutex m_decoding;
    std::unique_ptr<FrameSource> m_source;
    SampleRing m_ring;
    std::vector<std::int16_t> m_piece;
    std::atomic<bool> m_sourceOver{false};
    std::atomic<bool> m_requested{false};
    /// A reader wants to decode itself.
    std::atomic<bool> m_awaited{false};
    ReadAhead& m_workers;
    // Of the reader.
    bool m_begun = false;
    std::size_t m_owed = 0;
};

/// The workers that decode ahead. Requests come from the threads that pull and from the interface thread.
class ReadAhead {
public:
    ReadAhead();
    ~ReadAhead();

    /// How many threads work together in an offline pull, the puller among them; at least 1.
    void SetThreads(std::uint32_t threads);
    /// Nobody but the puller decodes for an offline pull.
    bool Alone() const { return m_threads.load(std::memory_order_relaxed) == 1; }
    /// Ends the workers; the next request from elsewhere than the mixing thread brings them back.
    void Stop();
    /// [RT] on the mixing thread, where a full queue drops the request; the next read asks again.
    bool Request(std::shared_ptr<ReadBuffer> buffer);
    /// Frames that the mixing thread found missing. [RT]
    void AddLate(std::size_t frames) { m_late.fetch_add(frames, std::memory_order_relaxed); }
    std::uint64_t LateFrames() const { return m_late.load(std::memory_order_relaxed); }

private:
    void Start();
    void Work();
    std::shared_ptr<ReadBuffer> Next();

    std::atomic<std::uint32_t> m_threads{1};
    std::atomic<bool> m_stopping{false};
    std::atomic<std::uint64_t> m_late{0};
    std::counting_semaphore<> m_waiting{0};
    moodycamel::ReaderWriterQueue<std::shared_ptr<ReadBuffer>> m_fromMixer;
    moodycamel::ReaderWriterQueue<std::shared_ptr<ReadBuffer>> m_fromInterface;
    /// The threads of a shared pull ask at once.
    std::mutex m_asking;
    std::mutex m_taking;
    std::vector<std::thread> m_workers;
};

} // namespace velmora::soundlayer
