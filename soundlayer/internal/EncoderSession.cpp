#include "soundlayer/internal/EncoderSession.h"

#include "soundlayer/internal/MixingThread.h"

#include <chrono>
#include <utility>

namespace velmora::soundlayer {

namespace {
constexpr std::size_t kPieceFrames = 4096;
/// How far a file may be behind its source.
constexpr std::chrono::milliseconds kSourceLook{100};
} // namespace

EncoderSession::EncoderSession(std::unique_ptr<FileEncoder> encoder, AudioFormat input, bool paused,
                               std::shared_ptr<EncoderSource> source)
    : Object(Kind::Encoder)
    , m_encoder(std::move(encoder))
    , m_source(std::move(source))
    , m_paused(true)
{
    SetInput(input);
    SetPaused(paused);
    m_writer = std::thread([this] { WriteLoop(); });
}

EncoderSession::~EncoderSession()
{
    Finish();
}

void EncoderSession::SetPaused(bool paused)
{
    if (m_source && !paused && m_paused) {
        const std::lock_guard lock(m_writing);
        m_source->Begin();
        m_paused = false;
        return;
    }
    m_paused.store(paused, std::memory_order_release);
}

void EncoderSession::SetInput(AudioFormat input)
{
    const std::lock_guard lock(m_writing);
    m_input = input;
    m_encoder->SetInput(input);
    m_ring = std::make_unique<SampleRing>(kRingSeconds * input.rate, input.channels);
    m_piece.resize(kPieceFrames * input.channels);
}

void EncoderSession::Take(const std::int16_t* interleaved, std::size_t frames)
{
    if (m_paused.load(std::memory_order_acquire)) {
        return;
    }
    if (OnMixingThread()) {
        if (m_ring->Write(interleaved, frames) < frames) {
            m_lost.store(true, std::memory_order_relaxed);
        }
        m_waiting.release();
        return;
    }
    const std::lock_guard lock(m_writing);
    Drain();
    Write(interleaved, frames);
}

void EncoderSession::Write(const std::int16_t* interleaved, std::size_t frames)
{
    if (!m_encoder->Write({interleaved, frames * m_input.channels})) {
        m_lost.store(true, std::memory_order_relaxed);
    }
}

void EncoderSession::Drain()
{
    while (m_source && !m_paused) {
        bool lost = false;
        const std::size_t frames = m_source->Read(m_piece.data(), kPieceFrames, lost);
        if (lost) {
            m_lost.store(true, std::memory_order_relaxed);
        }
        if (frames == 0) {
            break;
        }
        Write(m_piece.data(), frames);
    }
    while (const std::size_t frames = m_ring->Read(m_piece.data(), kPieceFrames)) {
        Write(m_piece.data(), frames);
    }
}

void EncoderSession::WriteLoop()
{
    while (!m_ending) {
        if (m_source) {
            static_cast<void>(m_waiting.try_acquire_for(kSourceLook));
        } else {
            m_waiting.acquire();
        }
        const std::lock_guard lock(m_writing);
        Drain();
    }
}

bool EncoderSession::Finish()
{
    if (m_writer.joinable()) {
        m_ending = true;
        m_waiting.release();
        m_writer.join();
    }
    const std::lock_guard lock(m_writing);
    if (m_source) {
        m_source->End();
    }
    Drain();
    return m_encoder->Finish() && !m_lost;
}

} // namespace velmora::soundlayer
