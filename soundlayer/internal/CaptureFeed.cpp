#include "soundlayer/internal/CaptureFeed.h"

namespace velmora::soundlayer {

CaptureFeed::CaptureFeed(AudioFormat format)
    : m_channels(format.channels)
    , m_wakeFrames(format.rate / 200)
    , m_ring(std::size_t{kSeconds} * format.rate, format.channels)
    , m_arrivals(kBlocks)
{
}

bool CaptureFeed::Put(const CaptureBlock& block)
{
    if (block.frames == 0) {
        return true;
    }
    const bool room = m_ring.Free() >= block.frames && m_arrivals.size_approx() < kBlocks;
    if (room) {
        m_ring.Write(block.interleaved, block.frames);
        m_arrivals.try_enqueue({block.frames, m_lost, block.end});
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
    if (!m_arrivals.try_dequeue(arrival)) {
        return false;
    }
    samples.resize(arrival.frames * m_channels);
    m_ring.Read(samples.data(), arrival.frames);
    return true;
}

} // namespace velmora::soundlayer
