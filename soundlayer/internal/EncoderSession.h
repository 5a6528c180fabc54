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
#include <vector>

namespace velmora::soundlayer {

/// An encoder behind a handle: takes blocks on whatever thread pulls them.
///
/// What the mixing thread gives goes through a ring to a writer thread, so that the mixing thread writes no file; other
/// threads write in place. A ring that overflows counts as lost data.
class EncoderSession final : public Object, public BlockTap {
public:
    /// `input` is the format of the blocks. Paused, blocks are dropped until `SetPaused(false)`.
    EncoderSession(std::unique_ptr<FileEncoder> encoder, AudioFormat input, bool paused);
    ~EncoderSession() override;

    void SetPaused(bool paused) { m_paused.store(paused, std::memory_order_release); }
    /// Before the first block only.
    void SetInput(AudioFormat input);
    const AudioFormat& Input() const { return m_input; }
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

    std::unique_ptr<FileEncoder> m_encoder;
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
