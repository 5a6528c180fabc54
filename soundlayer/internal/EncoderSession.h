#pragma once

#include "soundlayer/internal/FileEncoder.h"
#include "soundlayer/internal/Object.h"
#include "soundlayer/internal/SampleRing.h"
#include "soundlayer/internal/Stream.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <semaphore>
#include <thread>
#include <utility>
#include <vector>

namespace velmora::soundlayer {

/// Gives an encoder what it writes, in place of blocks that it takes. Called by one thread at a time.
class EncoderSource {
public:
    virtual ~EncoderSource() = default;
    /// The encoder writes from now on.
    virtual void Begin() = 0;
    /// Up to `frames` frames that wait; sets `lost` when some were there no more.
    virtual std::size_t Read(std::int16_t* interleaved, std::size_t frames, bool& lost) = 0;
    /// The encoder takes what waits now, and then no more.
    virtual void End() = 0;
};

/// An encoder behind a handle: takes blocks on whatever thread pulls them.
///
/// What the mixing thread gives goes through a ring to a writer thread, so that the mixing thread writes no file; other
/// threads write in place. A ring that overflows counts as lost data. With a source, the writer thread asks that one
/// instead.
class EncoderSession final : public Object, public BlockTap {
public:
    /// `input` is the format of the blocks. Paused, blocks are dropped until `SetPaused(false)`.
    EncoderSession(std::unique_ptr<FileEncoder> encoder, AudioFormat input, bool paused)
        : EncoderSession(std::move(encoder), input, paused, nullptr)
    {
    }
    EncoderSession(std::unique_ptr<FileEncoder> encoder, AudioFormat input, bool paused,
                   std::shared_ptr<EncoderSource> source);
    ~EncoderSession() override;

    void SetPaused(bool paused);
    /// Before the first block only.
    void SetInput(AudioFormat input);
    const AudioFormat& Input() const { return m_input; }
    EncoderSource* Source() const { return m_source.get(); }
    /// Something was lost on its way to the file. Any thread.
    bool Failed() const { return m_lost.load(std::memory_order_relaxed); }
    void Take(const std::int16_t* interleaved, std::size_t frames) override;
    /// Writes what waits and closes the file. False when the file does not hold all it was given.
    bool Finish();

    /// The stream it listens to, null for one that is given its blocks. Interface thread.
    std::weak_ptr<Stream> stream;

private:
    void Write(const std::int16_t* interleaved, std::size_t frames);
    void Drain();
    void WriteLoop();

    static constexpr std::size_t kRingSeconds = 4;

    const std::unique_ptr<FileEncoder> m_encoder;
    const std::shared_ptr<EncoderSource> m_source;
    AudioFormat m_input;
    std::atomic<bool> m_paused;
    std::atomic<bool> m_lost{false};
    std::atomic<bool> m_ending{false};
    std::mutex m_writing;
    std::unique_ptr<SampleRing> m_ring;
    std::vector<std::int16_t> m_piece;
    std::counting_semaphore<> m_waiting{0};
    std::thread m_writer;
};

} // namespace velmora::soundlayer
