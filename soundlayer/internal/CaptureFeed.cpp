#include "soundlayer/internal/CaptureFeed.h"

namespace velmora::soundlayer {

CaptureFeed::CaptureFeed(AudioFormat format)
    : m_channels(format.channels)
    , m_wakeFrames(format.rate / 200)
    , m_ring(std::size_t{kSeconds} * format.rate, format.channels)
{
}

bool CaptureFeed::Put(const CaptureBlock& block)
{
    if (block.frames == 0) {
        return true;
    }
    const std::size_t number = m_put.load(std::memory_order_relaxed);
    const bool room =
        m_ring.Free() >= block.frames && number - m_taken.load(std::memory_order_acquire) < m_arrivals.size();
    if (room) {
        m_ring.Write(block.interleaved, block.frames);
        m_arrivals[number % kBlocks] = {block.frames, m_lost, block.end};
        m_put.store(number + 1, std::memory_order_release);
        m_lost = 0;
    } else if (!block.comesAgain) {
        m_lost += block.frames;
    }
    m_sinceWake += block.frames;
    if (m_sinceWake >= m_wakeFrames) {
        m_sinceWake = 0;
        m_arrived.release();
    }
    return room;
}

bool CaptureFeed::Take(Arrival& arrival, std::vector<std::int16_t>& samples)
{
    const std::size_t number = m_taken.load(std::memory_order_relaxed);
    if (number == m_put.load(std::memory_order_acquire)) {
        return false;
    }
    arrival = m_arrivals[number % kBlocks];
    m_taken.store(number + 1, std::memory_order_release);
    samples.resize(arrival.frames * m_channels);
    m_ring.Read(samples.data(), arrival.frames);
    return true;
}

} // namespace velmora::soundlayer
