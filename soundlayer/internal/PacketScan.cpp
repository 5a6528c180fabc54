#include "soundlayer/internal/PacketScan.h"

#include "soundlayer/internal/AudioFile.h"
#include "soundlayer/internal/PacketLoss.h"
#include "soundlayer/internal/SampleCounter.h"

#include <algorithm>
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
    /// The end, in samples, of the last packet that `input` still gives; nothing if there is none.
    std::optional<std::int64_t> EndOf(MediaInput& input);
    void WalkPackets();
    bool AddPacket(SampleCounter& counter, std::optional<PacketLoss>& loss);
    bool HasNewHeaders() const;
    bool Locate(PacketIndex::Packet& packet);
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
    bool m_isBare = false;
    /// How many bytes may still be searched for packets that lie elsewhere than told.
    std::size_t m_searchBytes = std::size_t{4} << 20;
    std::int64_t m_end = 0;
    std::int64_t m_discard = 0;
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
    if (declared > 0 && m_input.SeekToStamp(declared - 1)) {
        end = EndOf(m_input);
    }
    if (!end) {
        // Very short files cannot be sought in, and a failed seek leaves nothing to read.
        const auto fresh = MediaInput::Open(m_file);
        if (fresh && fresh->ChooseStream(m_index->streamIndex)) {
            end = EndOf(*fresh);
        }
    }
    // A frame of at least 8 bytes holds at most 65535 samples: no stamp is believed beyond that.
    const std::int64_t most = (m_file->Size() / 8 + 1) * 65535;
    m_index->length = std::clamp<std::int64_t>(end.value_or(0), 0, most);
}

std::optional<std::int64_t> PacketScan::EndOf(MediaInput& input)
{
    std::optional<std::int64_t> end;
    while (input.Read(*m_packet)) {
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
    const AVStream& stream = m_input.Stream();
    const bool coarse = av_cmp_q(stream.time_base, {1, static_cast<int>(m_index->rate)}) > 0;
    SampleCounter counter(stream, inOgg, coarse ? OpenDecoder(*m_index) : nullptr);
    const bool guessed = m_input.Format().duration_estimation_method == AVFMT_DURATION_FROM_BITRATE;
    const std::int64_t declared = stream.duration == AV_NOPTS_VALUE || guessed ? 0 : ToSamples(stream.duration);
    // A container whose tables place the packets has no holes: what lies between them is something else.
    m_isBare = m_input.IsFormat("mp3") || m_input.IsFormat("aac");
    const bool mayLose = inOgg || m_index->isWma || m_isBare;
    std::optional<PacketLoss> loss;
    if (mayLose) {
        loss.emplace(*m_index, m_file, declared, counter.Unit());
    }
    while (m_index->packets.size() < kMostPackets && m_input.Read(*m_packet) && AddPacket(counter, loss)) {
    }
    if (loss) {
        loss->Settle(m_end);
    }
    m_index->begin += counter.Lead();
    m_index->length = std::max<std::int64_t>(m_end + counter.Tail() - m_discard - m_index->begin, 0);
    m_index->packets.shrink_to_fit();
}

/// False where the sound that belongs together ends.
bool PacketScan::AddPacket(SampleCounter& counter, std::optional<PacketLoss>& loss)
{
    const AVPacket& packet = *m_packet;
    PacketIndex::Packet entry;
    entry.position = packet.pos;
    entry.size = static_cast<std::uint32_t>(packet.size);
    const bool lacksSync = m_isMp3 && (packet.size < 4 || packet.data[0] != 0xFF || (packet.data[1] & 0xE0) != 0xE0);
    if (packet.size <= 0 || packet.pos < 0 || lacksSync || (m_index->access == Access::Direct && !Locate(entry))) {
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
    if (loss) {
        const bool stamped = packet.pts != AV_NOPTS_VALUE;
        m_end += loss->Before(entry, stamped ? std::optional(ToSamples(packet.pts)) : std::nullopt, m_end);
    }
    entry.start = m_end;
    m_end = entry.start + entry.count;
    m_discard = std::min<std::int64_t>(trim.end, m_end);
    m_index->packets.push_back(entry);
    return !(m_isMp3 && trim.end > 0);
}

/// Corrects the position of `packet`, which behind damage the container may tell wrongly; false if it is in no place.
bool PacketScan::Locate(PacketIndex::Packet& packet)
{
    if (LiesInOnePiece(packet)) {
        return true;
    }
    if (!m_isBare || m_index->packets.empty()) {
        return false;
    }
    const std::string_view key(reinterpret_cast<const char*>(m_packet->data), std::min(packet.size, 16U));
    packet.position = m_index->packets.back().position + m_index->packets.back().size;
    while (!LiesInOnePiece(packet)) {
        const auto bytes = m_window.View(packet.position, std::min(FileWindow::kBytes, m_searchBytes));
        if (bytes.size() <= key.size()) {
            return false;
        }
        const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        const std::size_t step = std::min(text.find(key, 1), text.size() - key.size());
        packet.position += static_cast<std::int64_t>(step);
        m_searchBytes -= step;
    }
    return true;
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
