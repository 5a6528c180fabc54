#include "soundlayer/internal/PacketScan.h"

#include "soundlayer/internal/AudioFile.h"
#include "soundlayer/internal/SampleCounter.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

extern "C" {
#include <libavutil/dict.h>
#include <libavutil/intreadwrite.h>
}

namespace velmora::soundlayer {

namespace {

/// Two days of the shortest common packets; a file of more is heard up to here.
constexpr std::size_t kMostPackets = std::size_t{1} << 23;
constexpr std::uint32_t kMostChannels = 64;

struct Trim {
    std::int64_t start = 0;
    std::int64_t end = 0;
};

/// What the container cuts from a packet, in samples.
Trim TrimOf(const AVPacket& packet)
{
    std::size_t size = 0;
    const std::uint8_t* data = av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &size);
    if (!data || size < 8) {
        return {};
    }
    return {AV_RL32(data), AV_RL32(data + 4)};
}

class PacketScan {
public:
    PacketScan(std::shared_ptr<const FileBytes> file, MediaInput& input)
        : m_file(std::move(file))
        , m_window(m_file)
        , m_input(input)
        , m_packet(av_packet_alloc())
        , m_index(std::make_shared<PacketIndex>())
    {
    }

    std::shared_ptr<const PacketIndex> Run();

private:
    using Access = PacketIndex::Access;

    bool ReadFacts();
    void MeasureByStamps();
    /// The end of the last packet from `stamp` on, in samples; nothing if there is none.
    std::optional<std::int64_t> EndFrom(std::int64_t stamp);
    void WalkPackets();
    bool AddPacket(SampleCounter& counter);
    bool HasNewHeaders() const;
    std::int64_t LostBefore(const PacketIndex::Packet& packet);
    std::int64_t LostByStamp(const PacketIndex::Packet& packet);
    std::int64_t LostByBytes(const PacketIndex::Packet& packet);
    bool LiesInOnePiece(const PacketIndex::Packet& packet);
    void CutToSource();

    std::int64_t ToSamples(std::int64_t stamp)
    {
        return av_rescale_q(stamp, m_input.Stream().time_base, {1, static_cast<int>(m_index->rate)});
    }

    std::shared_ptr<const FileBytes> m_file;
    FileWindow m_window;
    MediaInput& m_input;
    PacketPtr m_packet;
    std::shared_ptr<PacketIndex> m_index;
    bool m_isMp3 = false;
    std::int64_t m_end = 0;
    std::int64_t m_discard = 0;
    std::int64_t m_bytes = 0;
    /// Sample 0 in the container's time, once known.
    std::optional<std::int64_t> m_origin;
};

std::shared_ptr<const PacketIndex> PacketScan::Run()
{
    if (!m_packet || !ReadFacts() || !OpenDecoder(*m_index)) {
        return nullptr;
    }
    if (m_input.IsFormat("flac")) {
        MeasureByStamps();
    } else {
        WalkPackets();
        if (m_index->packets.empty()) {
            return nullptr;
        }
        CutToSource();
    }
    return m_index;
}

bool PacketScan::ReadFacts()
{
    if (!m_input.FindAudio()) {
        return false;
    }
    const AVCodecParameters& codec = *m_input.Stream().codecpar;
    const int channels = codec.ch_layout.nb_channels;
    if (!IsRate(codec.sample_rate) || channels < 1 || channels > static_cast<int>(kMostChannels)) {
        return false;
    }
    m_index->parameters.reset(avcodec_parameters_alloc());
    if (!m_index->parameters || avcodec_parameters_copy(m_index->parameters.get(), &codec) < 0) {
        return false;
    }
    m_index->streamIndex = m_input.StreamIndex();
    m_index->isWma = m_input.IsFormat("asf");
    m_index->rate = static_cast<std::uint32_t>(codec.sample_rate);
    m_index->channels = std::min(static_cast<std::uint32_t>(channels), 2U);
    m_isMp3 = codec.codec_id == AV_CODEC_ID_MP3;
    return true;
}

/// A FLAC frame tells its place itself, so only the end has to be found: headers may lie, and files may be cut.
void PacketScan::MeasureByStamps()
{
    m_index->access = Access::NoIndex;
    const std::int64_t declared = m_input.Stream().duration;
    std::optional<std::int64_t> end;
    if (declared > 0) {
        end = EndFrom(declared - 1);
    }
    if (!end) {
        end = EndFrom(0);
    }
    // A frame of at least 8 bytes holds at most 65535 samples: no stamp is believed beyond that.
    const std::int64_t most = (m_file->Size() / 8 + 1) * 65535;
    m_index->length = std::clamp<std::int64_t>(end.value_or(0), 0, most);
}

std::optional<std::int64_t> PacketScan::EndFrom(std::int64_t stamp)
{
    if (!m_input.SeekToStamp(stamp)) {
        return std::nullopt;
    }
    std::optional<std::int64_t> end;
    while (m_input.Read(*m_packet)) {
        if (m_packet->pts != AV_NOPTS_VALUE) {
            end = ToSamples(m_packet->pts) + ToSamples(m_packet->duration);
        }
    }
    return end;
}

void PacketScan::WalkPackets()
{
    const bool inOgg = m_input.IsFormat("ogg");
    m_index->access = inOgg ? Access::ByPage : m_index->isWma ? Access::ByStamp : Access::Direct;
    SampleCounter counter(m_input.Stream(), inOgg);
    while (m_index->packets.size() < kMostPackets && m_input.Read(*m_packet) && AddPacket(counter)) {
    }
    m_index->begin += counter.Lead();
    m_index->length = std::max<std::int64_t>(m_end + counter.Tail() - m_discard - m_index->begin, 0);
    m_index->packets.shrink_to_fit();
}

/// False where the sound that belongs together ends.
bool PacketScan::AddPacket(SampleCounter& counter)
{
    const AVPacket& packet = *m_packet;
    PacketIndex::Packet entry;
    entry.position = packet.pos;
    entry.size = static_cast<std::uint32_t>(packet.size);
    const bool lacksSync = m_isMp3 && (packet.size < 4 || packet.data[0] != 0xFF || (packet.data[1] & 0xE0) != 0xE0);
    if (packet.size <= 0 || packet.pos < 0 || lacksSync ||
        (m_index->access == Access::Direct && !LiesInOnePiece(entry))) {
        return true;
    }
    const bool first = m_index->packets.empty();
    if (!first && HasNewHeaders()) {
        return false;
    }
    const Trim trim = TrimOf(packet);
    if (first) {
        m_index->begin = trim.start;
    }
    const std::int64_t count = counter.Count(packet, trim.end);
    // What is not to be heard at the start is told by the trim as well.
    const bool cutOut = (packet.flags & AV_PKT_FLAG_DISCARD) != 0 && m_end >= m_index->begin;
    entry.count = cutOut ? 0 : static_cast<std::uint32_t>(count);
    if (m_index->access == Access::ByStamp) {
        entry.mark = packet.pts;
    } else if (m_index->access == Access::ByPage) {
        entry.mark = PacketIndex::Fingerprint({packet.data, entry.size});
    }
    entry.start = m_end + LostBefore(entry);
    m_end = entry.start + entry.count;
    m_discard = std::min<std::int64_t>(trim.end, m_end);
    m_bytes += entry.size;
    m_index->packets.push_back(entry);
    return !(m_isMp3 && trim.end > 0);
}

bool PacketScan::LiesInOnePiece(const PacketIndex::Packet& packet)
{
    for (std::size_t done = 0; done < packet.size;) {
        const auto piece = m_window.View(packet.position + static_cast<std::int64_t>(done), packet.size - done);
        if (piece.empty() || std::memcmp(piece.data(), m_packet->data + done, piece.size()) != 0) {
            return false;
        }
        done += piece.size();
    }
    return true;
}

/// What follows with headers of its own is another sound: it cannot be decoded from its middle by those of the first.
bool PacketScan::HasNewHeaders() const
{
    std::size_t size = 0;
    const std::uint8_t* headers = av_packet_get_side_data(m_packet.get(), AV_PKT_DATA_NEW_EXTRADATA, &size);
    const AVCodecParameters& codec = *m_index->parameters;
    return headers &&
           (size != static_cast<std::size_t>(codec.extradata_size) || std::memcmp(headers, codec.extradata, size) != 0);
}

std::int64_t PacketScan::LostBefore(const PacketIndex::Packet& packet)
{
    return m_index->access == Access::Direct ? LostByBytes(packet) : LostByStamp(packet);
}

/// The samples by which the container's time runs ahead of the packets that are there.
std::int64_t PacketScan::LostByStamp(const PacketIndex::Packet& packet)
{
    if (m_packet->pts == AV_NOPTS_VALUE) {
        return 0;
    }
    const std::int64_t stamp = ToSamples(m_packet->pts);
    if (!m_origin) {
        m_origin = stamp - m_end;
        return 0;
    }
    const std::int64_t ahead = stamp - *m_origin - m_end;
    // Time stamps may be coarse: only what a lost packet explains is taken for a loss, and only as much as the bytes
    // between the packets explain.
    const std::int64_t least = std::max<std::int64_t>(packet.count * 3 / 4, m_index->rate / 25);
    const std::int64_t missingBytes = packet.position - m_index->packets.back().position;
    const double explained = 4.0 * static_cast<double>(missingBytes) * static_cast<double>(m_end) /
                             static_cast<double>(std::max<std::int64_t>(m_bytes, 1));
    return ahead >= least && static_cast<double>(ahead) <= explained ? ahead : 0;
}

/// The samples that the bytes since the last packet stand for, if these are no tag.
std::int64_t PacketScan::LostByBytes(const PacketIndex::Packet& packet)
{
    const bool isStream = m_input.IsFormat("mp3") || m_input.IsFormat("aac");
    if (!isStream || m_index->packets.empty()) {
        return 0;
    }
    const PacketIndex::Packet& last = m_index->packets.back();
    const std::int64_t hole = last.position + last.size;
    const auto packets = static_cast<std::int64_t>(m_index->packets.size());
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
    return lost * last.count;
}

/// Our own encoder notes the length of what it was given: the rest is the format's padding.
void PacketScan::CutToSource()
{
    const AVDictionaryEntry* tag = av_dict_get(m_input.Format().metadata, "SourceSamples", nullptr, 0);
    const std::int64_t samples = tag && m_index->isWma ? std::strtoll(tag->value, nullptr, 10) : 0;
    if (samples > 0) {
        m_index->length = std::min(m_index->length, samples);
    }
}

} // namespace

std::shared_ptr<const PacketIndex> ScanPackets(const std::shared_ptr<const FileBytes>& file)
{
    const auto input = MediaInput::Open(file);
    return input ? PacketScan(file, *input).Run() : nullptr;
}

DecoderPtr OpenDecoder(const PacketIndex& index)
{
    const AVCodec* codec = avcodec_find_decoder(index.parameters->codec_id);
    DecoderPtr decoder(codec ? avcodec_alloc_context3(codec) : nullptr);
    if (!decoder || avcodec_parameters_to_context(decoder.get(), index.parameters.get()) < 0) {
        return nullptr;
    }
    decoder->thread_count = 1;
    decoder->pkt_timebase = {1, static_cast<int>(index.rate)};
    // What is cut at the start and the end is counted here, once and for seeks too.
    decoder->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    return avcodec_open2(decoder.get(), codec, nullptr) >= 0 ? std::move(decoder) : nullptr;
}

} // namespace velmora::soundlayer
