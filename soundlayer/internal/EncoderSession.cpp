#include "soundlayer/internal/EncoderSession.h"

#include "soundlayer/internal/MixingThread.h"

#include <utility>

namespace velmora::soundlayer {

namespace {
constexpr std::size_t kPieceFrames = 4096;
}

EncoderSession::EncoderSession(std::unique_ptr<FileEncoder> encoder, AudioFormat input, bool paused)
    : Object(Kind::Encoder)
    , m_encoder(std::move(encoder))
    , m_paused(paused)
{
    SetInput(input);
    m_writer = std::thread([this] { WriteLoop(); });
}

EncoderSession::~EncoderSession()
{
    Finish();
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
    while (const std::size_t frames = m_ring->Read(m_piece.data(), kPieceFrames)) {
        Write(m_piece.data(), frames);
    }
}

void EncoderSession::WriteLoop()
{
    while (!m_ending) {
        m_waiting.acquire();
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
    Drain();
    return m_encoder->Finish() && !m_lost;
}

} // namespace velmora::soundlayer
