#include "soundlayer/internal/FileEncoder.h"

#include "soundlayer/internal/Codecs.h"
#include "soundlayer/internal/FormatConverter.h"
#include "soundlayer/internal/WavEncoder.h"

#include <algorithm>
#include <array>

namespace velmora::soundlayer {

namespace {

constexpr std::array<std::uint32_t, 15> kWmaRates{24'000,  32'000,  40'000,  48'000,  56'000,  64'000,  80'000, 96'000,
                                                  112'000, 128'000, 160'000, 192'000, 224'000, 256'000, 320'000};

/// More bits than this bring nothing, by measurement.
std::uint32_t HighestUsefulWmaRate(AudioFormat format)
{
    const std::uint32_t mono = format.rate <= 16'000 ? 64'000 : format.rate <= 22'050 ? 128'000 : 192'000;
    return std::min(mono * format.channels, kWmaRates.back());
}

} // namespace

std::unique_ptr<FileEncoder> FileEncoder::OpenWav(const std::string& file, AudioFormat format, EncoderError& error)
{
    return WavEncoder::Open(file, format, error);
}

std::unique_ptr<FileEncoder> FileEncoder::OpenWma(const std::string& file, AudioFormat format, std::uint32_t bitrate,
                                                  EncoderError& error)
{
    const auto rates = WmaRates(format);
    const Codecs* codecs = GetCodecs();
    if (rates.empty() || codecs == nullptr) {
        error = EncoderError::InvalidFormat;
        return nullptr;
    }
    const auto distance = [bitrate](std::uint32_t rate) { return rate > bitrate ? rate - bitrate : bitrate - rate; };
    const std::uint32_t nearest = *std::ranges::min_element(rates, {}, distance);
    return codecs->openWma(file, format, nearest, error);
}

FileEncoder::FileEncoder(AudioFormat format)
    : m_format(format)
    , m_input(format)
{
}

FileEncoder::~FileEncoder() = default;

void FileEncoder::SetInput(AudioFormat input)
{
    m_input = input;
    m_converter.reset();
    if (input != m_format) {
        m_converter = std::make_unique<FormatConverter>(input, m_format);
        m_failed = m_failed || !m_converter->IsValid();
    }
}

bool FileEncoder::Write(std::span<const std::int16_t> interleaved)
{
    if (m_failed || m_finished) {
        return false;
    }
    m_failed = !Encode(m_converter ? m_converter->Convert(interleaved) : interleaved);
    return !m_failed;
}

bool FileEncoder::Finish()
{
    if (!m_finished) {
        if (m_converter && !m_failed) {
            m_failed = !Encode(m_converter->Flush());
        }
        m_finished = true;
        // The file is closed in any case.
        m_failed = !Close() || m_failed;
    }
    return !m_failed;
}

std::span<const std::uint32_t> WmaRates(AudioFormat format)
{
    constexpr std::uint32_t kLowest = 8'000;
    constexpr std::uint32_t kHighest = 48'000;
    if (format.rate < kLowest || format.rate > kHighest || format.channels < 1 || format.channels > 2) {
        return {};
    }
    const std::uint32_t highest = HighestUsefulWmaRate(format);
    const auto end = std::ranges::upper_bound(kWmaRates, highest);
    return {kWmaRates.begin(), end};
}

} // namespace velmora::soundlayer
