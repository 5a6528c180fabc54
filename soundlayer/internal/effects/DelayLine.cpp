#include "soundlayer/internal/effects/DelayLine.h"

#include "soundlayer/internal/effects/GrainEffect.h"

#include <algorithm>
#include <array>
#include <bit>

namespace velmora::soundlayer {

DelayLine::DelayLine(std::size_t longest)
    : m_kept(longest + GrainEffect::kGrain)
    , m_silentFrames(m_kept.size())
{
}

void DelayLine::Write(const float* in, std::size_t frames)
{
    std::uint32_t anyBit = 0;
    for (std::size_t done = 0; done < frames;) {
        const std::size_t now = std::min(frames - done, m_kept.size() - m_next);
        float* __restrict out = m_kept.data() + m_next;
        const float* from = in + done;
        for (std::size_t i = 0; i < now; ++i) {
            out[i] = ZeroIfQuiet(from[i]);
            anyBit |= std::bit_cast<std::uint32_t>(out[i]);
        }
        done += now;
        m_next = m_next + now == m_kept.size() ? 0 : m_next + now;
    }
    m_silentFrames = anyBit == 0 ? std::min(m_silentFrames + frames, m_kept.size()) : 0;
}

void DelayLine::Read(float* out, std::size_t delay, std::size_t frames) const
{
    const std::size_t first = m_next >= delay ? m_next - delay : m_next + m_kept.size() - delay;
    const std::size_t toEnd = std::min(frames, m_kept.size() - first);
    std::copy_n(m_kept.data() + first, toEnd, out);
    std::copy_n(m_kept.data(), frames - toEnd, out + toEnd);
}

DelayTap::DelayTap(std::uint32_t rate)
    : m_share(rate)
{
    m_share.SetTarget(1.0F, true);
}

void DelayTap::SetTarget(std::size_t delay, bool atOnce)
{
    m_target = delay;
    if (atOnce) {
        m_from = m_to = delay;
    }
}

void DelayTap::Move()
{
    if (m_share.End() == 1.0F) {
        m_from = m_to;
        if (m_target != m_to) {
            m_to = m_target;
            m_share.SetTarget(0.0F, true);
            m_share.SetTarget(1.0F, false);
        }
    }
    m_share.Move();
}

std::size_t DelayTap::Shortest() const
{
    return std::min(m_from, m_to);
}

void DelayTap::Read(const DelayLine& line, float* out, std::size_t frames, std::size_t at, std::size_t written) const
{
    line.Read(out, m_to + written, frames);
    if (m_from == m_to) {
        return;
    }
    std::array<float, GrainEffect::kGrain> before;
    line.Read(before.data(), m_from + written, frames);
    const Glide::Line share = m_share.Way();
    for (std::size_t i = 0; i < frames; ++i) {
        out[i] = before[i] + share.At(at + i) * (out[i] - before[i]);
    }
}

} // namespace velmora::soundlayer
