#include "soundlayer/internal/PacketSource.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace velmora::soundlayer {

namespace {

using Access = PacketIndex::Access;

/// Packets that lie in one piece: read by position, without any container.
class DirectPackets final : public PacketSource {
public:
    DirectPackets(std::shared_ptr<const FileBytes> file, std::shared_ptr<const PacketIndex> index)
        : m_window(std::move(file))
        , m_index(std::move(index))
    {
    }

    bool GoTo(std::int64_t sample) override
    {
        m_next = m_index->FirstPacketFor(sample);
        return m_next == 0;
    }

    bool Next(AVPacket& packet, Span& span) override
    {
        av_packet_unref(&packet);
        while (m_next < m_index->packets.size()) {
            const PacketIndex::Packet& entry = m_index->packets[m_next++];
            if (Load(entry, packet)) {
                span = {entry.start, entry.start + entry.count};
                return true;
            }
        }
        return false;
    }

private:
    bool Load(const PacketIndex::Packet& entry, AVPacket& packet)
    {
        const std::size_t needed = std::size_t{entry.size} + AV_INPUT_BUFFER_PADDING_SIZE;
        // A buffer that the decoder still holds is not written over.
        if (!m_buffer || m_buffer->size < needed || !av_buffer_is_writable(m_buffer.get())) {
            m_buffer.reset(av_buffer_alloc(std::max<std::size_t>(needed, 4096)));
        }
        AVBufferRef* reference = m_buffer ? av_buffer_ref(m_buffer.get()) : nullptr;
        if (!reference) {
            return false;
        }
        packet.buf = reference;
        packet.data = reference->data;
        packet.size = static_cast<int>(entry.size);
        for (std::size_t done = 0; done < entry.size;) {
            const auto piece = m_window.View(entry.position + static_cast<std::int64_t>(done), entry.size - done);
            if (piece.empty()) {
                av_packet_unref(&packet);
                return false;
            }
            std::memcpy(packet.data + done, piece.data(), piece.size());
            done += piece.size();
        }
        std::memset(packet.data + entry.size, 0, AV_INPUT_BUFFER_PADDING_SIZE);
        return true;
    }

    FileWindow m_window;
    std::shared_ptr<const PacketIndex> m_index;
    BufferPtr m_buffer;
    std::size_t m_next = 0;
};

/// Packets that only the container can put together. After a seek in it, what comes is compared with the index until
/// it is known where the container stands.
class ContainerPackets final : public PacketSource {
public:
    ContainerPackets(std::shared_ptr<const FileBytes> file, std::shared_ptr<const PacketIndex> index,
                     std::unique_ptr<MediaInput> input)
        : m_file(std::move(file))
        , m_index(std::move(index))
        , m_input(std::move(input))
    {
    }

    bool GoTo(std::int64_t sample) override
    {
        m_next = m_index->FirstPacketFor(sample);
        m_mustSeek = true;
        return m_next == 0;
    }

    bool Next(AVPacket& packet, Span& span) override
    {
        av_packet_unref(&packet);
        if (m_mustSeek) {
            m_mustSeek = false;
            if (!SeekBefore(m_next, packet)) {
                return false;
            }
        } else if (!m_input || !m_input->Read(packet)) {
            return false;
        }
        // The packet at hand may stand before the one that is wanted, and some may be missing.
        do {
            if (const auto found = Find(packet); found < m_index->packets.size() && found >= m_next) {
                const PacketIndex::Packet& entry = m_index->packets[found];
                m_next = found + 1;
                span = {entry.start, entry.start + entry.count};
                return true;
            }
        } while (m_input->Read(packet));
        return false;
    }

private:
    /// Makes `packet` one at or before the entry `wanted`; false if even the start of the file does not give one.
    bool SeekBefore(std::size_t wanted, AVPacket& packet)
    {
        for (std::size_t back = 0; back <= wanted && wanted > 0; back = back * 8 + 4) {
            if (m_input && Seek(wanted - back) && m_input->Read(packet) && Find(packet) <= wanted) {
                return true;
            }
        }
        m_input = MediaInput::Open(m_file);
        return m_input && m_input->ChooseStream(m_index->streamIndex) && m_input->Read(packet);
    }

    bool Seek(std::size_t entry)
    {
        const PacketIndex::Packet& to = m_index->packets[entry];
        return m_index->access == Access::ByPage ? m_input->SeekToByte(to.position) : m_input->SeekToStamp(to.mark);
    }

    /// The number of the entry that is this packet, from the wanted one on or else the first; past the end if there
    /// is none.
    std::size_t Find(const AVPacket& packet) const
    {
        const auto& packets = m_index->packets;
        const std::int64_t mark = m_index->access == Access::ByStamp
                                      ? packet.pts
                                      : PacketIndex::Fingerprint({packet.data, static_cast<std::size_t>(packet.size)});
        const auto isThis = [&](const PacketIndex::Packet& entry) {
            return entry.position == packet.pos && entry.mark == mark &&
                   entry.size == static_cast<std::uint32_t>(packet.size);
        };
        if (m_next < packets.size() && isThis(packets[m_next])) {
            return m_next;
        }
        auto entry = std::ranges::lower_bound(packets, packet.pos, {}, &PacketIndex::Packet::position);
        for (; entry != packets.end() && entry->position == packet.pos; ++entry) {
            if (isThis(*entry)) {
                return static_cast<std::size_t>(entry - packets.begin());
            }
        }
        return packets.size();
    }

    std::shared_ptr<const FileBytes> m_file;
    std::shared_ptr<const PacketIndex> m_index;
    std::unique_ptr<MediaInput> m_input;
    std::size_t m_next = 0;
    bool m_mustSeek = false;
};

/// Packets whose time stamps are exact.
class StampedPackets final : public PacketSource {
public:
    StampedPackets(std::shared_ptr<const FileBytes> file, std::shared_ptr<const PacketIndex> index,
                   std::unique_ptr<MediaInput> input)
        : m_file(std::move(file))
        , m_index(std::move(index))
        , m_input(std::move(input))
    {
    }

    bool GoTo(std::int64_t sample) override
    {
        if (!m_input || !m_input->SeekToStamp(sample)) {
            m_input = MediaInput::Open(m_file);
            if (m_input && !m_input->ChooseStream(m_index->streamIndex)) {
                m_input.reset();
            }
        }
        m_end = sample;
        return false; // each packet stands alone
    }

    bool Next(AVPacket& packet, Span& span) override
    {
        if (!m_input || !m_input->Read(packet)) {
            return false;
        }
        const AVRational base = m_input->Stream().time_base;
        const AVRational samples{1, static_cast<int>(m_index->rate)};
        span.start = packet.pts == AV_NOPTS_VALUE ? m_end : av_rescale_q(packet.pts, base, samples);
        span.end = m_end = span.start + av_rescale_q(packet.duration, base, samples);
        return true;
    }

private:
    std::shared_ptr<const FileBytes> m_file;
    std::shared_ptr<const PacketIndex> m_index;
    std::unique_ptr<MediaInput> m_input;
    std::int64_t m_end = 0;
};

} // namespace

std::unique_ptr<PacketSource> PacketSource::Open(std::shared_ptr<const FileBytes> file,
                                                 std::shared_ptr<const PacketIndex> index)
{
    if (index->access == Access::Direct) {
        return std::make_unique<DirectPackets>(std::move(file), std::move(index));
    }
    auto input = MediaInput::Open(file);
    if (!input || !input->ChooseStream(index->streamIndex)) {
        return nullptr;
    }
    if (index->access == Access::NoIndex) {
        return std::make_unique<StampedPackets>(std::move(file), std::move(index), std::move(input));
    }
    return std::make_unique<ContainerPackets>(std::move(file), std::move(index), std::move(input));
}

} // namespace velmora::soundlayer
