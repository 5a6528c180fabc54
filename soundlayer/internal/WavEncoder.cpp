#include "soundlayer/internal/WavEncoder.h"

#include "soundlayer/internal/FormatConverter.h"

#include <bit>
#include <cerrno>
#include <cstring>
#include <limits>

#include <fcntl.h>
#include <unistd.h>

namespace velmora::soundlayer {

namespace {

static_assert(std::endian::native == std::endian::little, "samples and sizes are written as they stand in memory");

/// Puts texts and little-endian numbers one after the other.
class HeaderText {
public:
    explicit HeaderText(WavEncoder::Header& header)
        : m_header(header)
    {
    }

    HeaderText& Name(const char (&name)[5])
    {
        Append(name, 4);
        return *this;
    }

    template <typename Number>
    HeaderText& Value(Number value)
    {
        Append(&value, sizeof(value));
        return *this;
    }

private:
    void Append(const void* bytes, std::size_t count)
    {
        std::memcpy(m_header.data() + m_end, bytes, count);
        m_end += count;
    }

    WavEncoder::Header& m_header;
    std::size_t m_end = 0;
};

} // namespace

WavEncoder::Header WavEncoder::HeaderFor(AudioFormat format, std::uint64_t dataBytes)
{
    constexpr std::uint64_t kMax32 = std::numeric_limits<std::uint32_t>::max();
    constexpr std::uint16_t kPcm = 1;
    constexpr std::uint16_t kBits = 16;
    const auto frameBytes = static_cast<std::uint16_t>(format.channels * sizeof(std::int16_t));
    const std::uint64_t riffBytes = kHeaderBytes - 8 + dataBytes;
    const bool large = riffBytes > kMax32;
    const auto size32 = [large](std::uint64_t size) { return static_cast<std::uint32_t>(large ? kMax32 : size); };
    const auto size64 = [large](std::uint64_t size) { return large ? size : 0; };

    Header header{};
    HeaderText text(header);
    if (large) {
        text.Name("RF64").Value(size32(riffBytes)).Name("WAVE").Name("ds64");
    } else {
        text.Name("RIFF").Value(size32(riffBytes)).Name("WAVE").Name("JUNK");
    }
    text.Value(std::uint32_t{28}).Value(size64(riffBytes)).Value(size64(dataBytes));
    text.Value(size64(dataBytes / frameBytes)).Value(std::uint32_t{0});
    text.Name("fmt ").Value(std::uint32_t{16}).Value(kPcm).Value(static_cast<std::uint16_t>(format.channels));
    text.Value(format.rate).Value(format.rate * frameBytes).Value(frameBytes).Value(kBits);
    text.Name("data").Value(size32(dataBytes));
    return header;
}

std::unique_ptr<FileEncoder> WavEncoder::Open(const std::string& file, AudioFormat format, EncoderError& error)
{
    if (!FormatConverter::Takes(format)) {
        error = EncoderError::InvalidFormat;
        return nullptr;
    }
    error = EncoderError::CannotCreate;
    const int descriptor = ::open(file.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0666);
    if (descriptor < 0) {
        return nullptr;
    }
    std::unique_ptr<WavEncoder> encoder(new WavEncoder(descriptor, format));
    const Header header = HeaderFor(format, 0);
    if (!encoder->WriteAt(0, header.data(), header.size())) {
        return nullptr;
    }
    error = EncoderError::None;
    return encoder;
}

WavEncoder::WavEncoder(int file, AudioFormat format)
    : FileEncoder(format)
    , m_file(file)
{
}

WavEncoder::~WavEncoder()
{
    Close();
}

bool WavEncoder::Encode(std::span<const std::int16_t> interleaved)
{
    // The samples land before the header counts them.
    if (!WriteAt(kHeaderBytes + m_dataBytes, interleaved.data(), interleaved.size_bytes())) {
        return false;
    }
    m_dataBytes += interleaved.size_bytes();
    const Header header = HeaderFor(Format(), m_dataBytes);
    return WriteAt(0, header.data(), header.size());
}

bool WavEncoder::Close()
{
    if (m_file < 0) {
        return true;
    }
    // Network file systems report a write that failed only here.
    const bool closed = ::close(m_file) == 0;
    m_file = -1;
    return closed;
}

bool WavEncoder::WriteAt(std::uint64_t position, const void* bytes, std::size_t count)
{
    const char* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t written = pwrite(m_file, next, count, static_cast<off_t>(position));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        next += written;
        position += static_cast<std::uint64_t>(written);
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

} // namespace velmora::soundlayer
