#include "soundlayer/internal/PacketLoss.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <utility>

namespace velmora::soundlayer {

namespace {

/// No sound is coded with fewer bytes a second: a file of few bytes cannot claim days of silence.
constexpr std::int64_t kLeastByteRate = 125;

} // namespace

PacketLoss::PacketLoss(PacketIndex& index, std::shared_ptr<const FileBytes> file, std::int64_t declared,
                       std::int64_t wholeFrames)
    : m_index(index)
    , m_window(file)
    , m_declared(declared)
    , m_most(file->Size() / kLeastByteRate * index.rate)
    , m_wholeFrames(wholeFrames)
{
    if (declared > 0) {
        m_most = std::min(m_most, std::min(declared, m_most) + index.rate);
    }
}

std::int64_t PacketLoss::Before(const PacketIndex::Packet& packet, std::optional<std::int64_t> stamp, std::int64_t& end)
{
    std::int64_t lost = 0;
    if (m_index.packets.empty()) {
        lost = 0; // and its stamp is not trusted: the first packet may give less than a packet does
    } else if (m_index.access == PacketIndex::Access::Direct) {
        lost = ByBytes(packet);
    } else if (stamp && !m_origin) {
        m_origin = *stamp - end;
    } else if (stamp && m_index.access == PacketIndex::Access::ByPage) {
        lost = ByPage(packet, *stamp - *m_origin - end, end);
    } else if (stamp && IsLoss(*stamp - *m_origin - end, end, packet)) {
        // Stamps may be coarse, but whole packets are lost, and those of most formats are alike.
        const PacketIndex::Packet& last = m_index.packets.back();
        const std::int64_t alike = last.count > 0 && last.count == packet.count ? last.count : 1;
        const std::int64_t unit = m_wholeFrames > 1 ? m_wholeFrames : alike;
        lost = (*stamp - *m_origin - end + unit / 2) / unit * unit;
    }
    m_bytes += packet.size;
    return lost;
}

bool PacketLoss::IsLoss(std::int64_t ahead, std::int64_t end, const PacketIndex::Packet& packet) const
{
    // Which of its frames a packet's stamp means is anybody's guess, hence the half frames.
    const std::int64_t least =
        std::max({std::int64_t{packet.count} * 3 / 4, std::int64_t{m_index.rate} / 25, m_wholeFrames * 5 / 2});
    return ahead >= least && ahead <= m_most - end;
}

/// Stamps count on from the page before, so a lost page shows only at the second page after it.
std::int64_t PacketLoss::ByPage(const PacketIndex::Packet& packet, std::int64_t ahead, std::int64_t& end)
{
    auto& packets = m_index.packets;
    if (packets.back().position == packet.position) {
        return 0;
    }
    std::int64_t hole = packet.position - packets.back().position;
    for (std::size_t i = m_pageFirst; i < packets.size(); ++i) {
        hole -= packets[i].size;
    }
    const std::size_t first = std::exchange(m_pageFirst, packets.size());
    const std::int64_t holeBefore = std::exchange(m_pageHole, hole);
    if (IsLoss(ahead, end, packet)) {
        m_afterLoss = true;
        if (holeBefore <= hole) {
            return ahead;
        }
        for (std::size_t i = first; i < packets.size(); ++i) {
            packets[i].start += ahead;
        }
        end += ahead;
        return 0;
    }
    // What the packets beside a loss would have given together with the lost ones shows in the stamps too.
    const bool settles = m_afterLoss && ahead != 0 && std::abs(ahead) < packets.back().count;
    m_afterLoss = m_afterLoss && ahead == 0;
    return settles ? ahead : 0;
}

std::int64_t PacketLoss::ByBytes(const PacketIndex::Packet& packet)
{
    const PacketIndex::Packet& last = m_index.packets.back();
    const std::int64_t hole = last.position + last.size;
    const auto packets = static_cast<std::int64_t>(m_index.packets.size());
    const std::int64_t lost = (2 * (packet.position - hole) * packets + m_bytes) / (2 * m_bytes);
    if (lost <= 0) {
        return 0;
    }
    constexpr std::array<std::string_view, 4> kTags{"ID3", "TAG", "APETAGEX", "LYRICSBEGIN"};
    const auto bytes = m_window.View(hole, 16);
    const std::string_view head(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (std::ranges::any_of(kTags, [head](std::string_view tag) { return head.starts_with(tag); })) {
        return 0;
    }
    if (lost * last.count > m_guess) {
        m_guess = lost * last.count;
        m_guessedBefore = m_index.packets.size();
    }
    return lost * last.count;
}

void PacketLoss::Settle(std::int64_t& end)
{
    const std::int64_t missing = m_declared - end;
    if (m_guess == 0 || m_declared <= 0 || std::abs(missing) > m_guess) {
        return;
    }
    for (std::size_t i = m_guessedBefore; i < m_index.packets.size(); ++i) {
        m_index.packets[i].start += missing;
    }
    end += missing;
}

} // namespace velmora::soundlayer
