#include "soundlayer/internal/FileEncoder.h"

#include "soundlayer/internal/WavEncoder.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>
#include <optional>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sndfile.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace velmora::soundlayer {
namespace {

using Samples = std::vector<std::int16_t>;
using ::testing::ElementsAre;

struct Sound {
    AudioFormat format;
    Samples samples;
};

/// A sweep that fades in, whose sides differ in level: each stretch of it lines up with itself only.
Samples Sweep(AudioFormat format, std::int64_t frames)
{
    Samples samples;
    for (std::int64_t i = 0; i < frames; ++i) {
        const double t = static_cast<double>(i) / format.rate;
        const double level = 12000 * std::min(1.0, t * 20);
        const double value = level * std::sin(2 * std::numbers::pi * (200 * t + 700 * t * t));
        for (std::uint32_t channel = 0; channel < format.channels; ++channel) {
            samples.push_back(static_cast<std::int16_t>(std::lround(value / (channel + 1))));
        }
    }
    return samples;
}

Sound ReadWav(const std::string& file)
{
    SF_INFO info{};
    SNDFILE* wav = sf_open(file.c_str(), SFM_READ, &info);
    EXPECT_NE(wav, nullptr) << sf_strerror(nullptr);
    if (!wav) {
        return {};
    }
    Sound sound{{static_cast<std::uint32_t>(info.samplerate), static_cast<std::uint32_t>(info.channels)}, {}};
    sound.samples.resize(static_cast<std::size_t>(info.frames * info.channels));
    EXPECT_EQ(sf_readf_short(wav, sound.samples.data(), info.frames), info.frames);
    sf_close(wav);
    return sound;
}

/// What a WMA file holds when it is cut to its tag, as any decoder that knows the tag would.
struct Wma {
    AudioFormat format;
    std::int64_t bitrate = 0;
    std::int64_t taggedFrames = 0;
    std::vector<float> left;
};

Wma ReadWma(const std::string& file)
{
    Wma wma;
    AVFormatContext* container = nullptr;
    if (avformat_open_input(&container, file.c_str(), nullptr, nullptr) < 0) {
        ADD_FAILURE() << file << " does not open";
        return wma;
    }
    const AVCodecParameters* parameters = container->streams[0]->codecpar;
    wma.format = {static_cast<std::uint32_t>(parameters->sample_rate),
                  static_cast<std::uint32_t>(parameters->ch_layout.nb_channels)};
    wma.bitrate = parameters->bit_rate;
    const AVDictionaryEntry* tag = av_dict_get(container->metadata, "SourceSamples", nullptr, 0);
    wma.taggedFrames = tag ? std::stoll(tag->value) : -1;
    AVCodecContext* codec = avcodec_alloc_context3(avcodec_find_decoder(parameters->codec_id));
    avcodec_parameters_to_context(codec, parameters);
    codec->pkt_timebase = {1, parameters->sample_rate};
    EXPECT_GE(avcodec_open2(codec, nullptr, nullptr), 0);
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    bool more = true;
    while (more) {
        more = av_read_frame(container, packet) >= 0;
        EXPECT_GE(avcodec_send_packet(codec, more ? packet : nullptr), 0);
        while (avcodec_receive_frame(codec, frame) >= 0) {
            const float* plane = reinterpret_cast<const float*>(frame->extended_data[0]);
            wma.left.insert(wma.left.end(), plane, plane + frame->nb_samples);
        }
        av_packet_unref(packet);
    }
    av_frame_free(&frame);
    av_packet_free(&packet);
    avcodec_free_context(&codec);
    avformat_close_input(&container);
    EXPECT_GE(static_cast<std::int64_t>(wma.left.size()), wma.taggedFrames);
    wma.left.resize(static_cast<std::size_t>(std::max<std::int64_t>(wma.taggedFrames, 0)));
    return wma;
}

std::string BytesOf(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Gives `samples` in blocks of `block` frames.
bool WriteAll(FileEncoder& encoder, AudioFormat input, const Samples& samples, std::size_t block = 441)
{
    encoder.SetInput(input);
    for (std::size_t at = 0; at < samples.size(); at += block * input.channels) {
        const std::size_t count = std::min(block * input.channels, samples.size() - at);
        if (!encoder.Write(std::span(samples).subspan(at, count))) {
            return false;
        }
    }
    return true;
}

class FileEncoderTest : public ::testing::Test {
protected:
    std::string Name(const std::string& name) const { return (m_folder.Posix() / name).string(); }

    Sound ThroughWav(AudioFormat input, AudioFormat file, const Samples& samples, std::size_t block = 441)
    {
        EncoderError error = EncoderError::CannotCreate;
        const auto encoder = FileEncoder::OpenWav(Name("x.wav"), file, error);
        EXPECT_EQ(error, EncoderError::None);
        EXPECT_TRUE(WriteAll(*encoder, input, samples, block));
        EXPECT_TRUE(encoder->Finish());
        return ReadWav(Name("x.wav"));
    }

    velmora::testing::TemporaryFolder m_folder;
};

TEST_F(FileEncoderTest, WavIsWholeOnDiskAfterEveryWrite)
{
    for (const std::uint32_t channels : {1u, 2u}) {
        const AudioFormat format{22050, channels};
        const Samples samples = Sweep(format, 1000);
        EncoderError error = EncoderError::None;
        const auto encoder = FileEncoder::OpenWav(Name("take.wav"), format, error);
        ASSERT_TRUE(encoder);
        for (std::size_t frames = 0; frames <= 1000; frames += 125) {
            const Sound onDisk = ReadWav(Name("take.wav"));
            EXPECT_EQ(onDisk.format.rate, 22050u);
            EXPECT_EQ(onDisk.format.channels, channels);
            EXPECT_EQ(onDisk.samples, Samples(samples.begin(), samples.begin() + std::ssize(onDisk.samples)));
            EXPECT_EQ(onDisk.samples.size(), frames * channels);
            if (frames < 1000) {
                EXPECT_TRUE(encoder->Write(std::span(samples).subspan(frames * channels, 125 * channels)));
            }
        }
        EXPECT_TRUE(encoder->Finish());
        EXPECT_FALSE(encoder->Write(samples));
        EXPECT_EQ(BytesOf(Name("take.wav")).substr(52, 8), std::string("\x10\0\0\0\x01\0", 6) + char(channels) + '\0');
    }
}

TEST_F(FileEncoderTest, WavBeyondFourGigabytesKeepsItsLength)
{
    constexpr std::uint64_t kLimit = 0xFFFFFFFFu - (WavEncoder::kHeaderBytes - 8);
    for (const std::uint64_t dataBytes : {kLimit / 4 * 4, kLimit / 4 * 4 + 4, std::uint64_t{5} << 30}) {
        const WavEncoder::Header header = WavEncoder::HeaderFor({48000, 2}, dataBytes);
        {
            std::ofstream file(Name("long.wav"), std::ios::binary | std::ios::trunc);
            file.write(reinterpret_cast<const char*>(header.data()), header.size());
        }
        std::filesystem::resize_file(Name("long.wav"), header.size() + dataBytes); // sparse
        EXPECT_EQ(std::string(header.begin(), header.begin() + 4), dataBytes > kLimit ? "RF64" : "RIFF");
        SF_INFO info{};
        SNDFILE* wav = sf_open(Name("long.wav").c_str(), SFM_READ, &info);
        ASSERT_NE(wav, nullptr) << sf_strerror(nullptr);
        EXPECT_EQ(info.frames, static_cast<sf_count_t>(dataBytes / 4));
        sf_close(wav);
    }
}

TEST_F(FileEncoderTest, ChannelsAreMeanedAndSpread)
{
    const Samples stereo = {1, 2, 2, 3, -1, -2, -1, 0, 32767, 32767, -32768, -32768, -32768, 32767, 7, 9};
    EXPECT_THAT(ThroughWav({44100, 2}, {44100, 1}, stereo).samples, ElementsAre(2, 2, -2, 0, 32767, -32768, 0, 8));
    EXPECT_THAT(ThroughWav({44100, 1}, {44100, 2}, {5, -6, 7}).samples, ElementsAre(5, 5, -6, -6, 7, 7));
}

TEST_F(FileEncoderTest, RatesAreConvertedInPlaceAndInLength)
{
    struct Case {
        AudioFormat from;
        AudioFormat to;
        std::int64_t frames;
        std::int64_t expected;
    };
    for (const Case& c : {Case{{48000, 2}, {44100, 2}, 96001, 88201}, Case{{44100, 1}, {48000, 2}, 44100, 48000},
                          Case{{44100, 2}, {22050, 1}, 50001, 25001}, Case{{8000, 1}, {44100, 1}, 3, 17},
                          Case{{96000, 2}, {8000, 2}, 1, 0}, Case{{44100, 2}, {48000, 2}, 0, 0}}) {
        const Samples given = Sweep(c.from, c.frames);
        const Sound result = ThroughWav(c.from, c.to, given);
        ASSERT_EQ(std::ssize(result.samples), c.expected * c.to.channels) << c.from.rate << " to " << c.to.rate;
        EXPECT_EQ(result.samples, ThroughWav(c.from, c.to, given, 5000).samples);
        // The sweep at the new rate is the answer; its ends ring.
        const Samples ideal = Sweep({c.to.rate, 2}, c.expected);
        const double share = c.from.channels == 2 && c.to.channels == 1 ? 0.75 : 1;
        for (std::int64_t i = 500; i < c.expected - 500; ++i) {
            const auto at = static_cast<std::size_t>(i);
            ASSERT_NEAR(result.samples[at * c.to.channels], share * ideal[at * 2], 2) << "frame " << i;
        }
    }
}

/// The shift in -range..range at which `b` is most like `a`, over frames that both have.
std::int64_t BestShift(const Samples& a, std::uint32_t stride, const std::vector<float>& b, std::int64_t range)
{
    double best = -1;
    std::int64_t shift = 0;
    const std::int64_t middle = std::ssize(b) / 2;
    for (std::int64_t lag = -range; lag <= range; ++lag) {
        double product = 0;
        for (std::int64_t i = std::max<std::int64_t>(middle - 2000, range);
             i < std::min<std::int64_t>(middle + 2000, std::ssize(b) - range); ++i) {
            product += a[static_cast<std::size_t>(i) * stride] * b[static_cast<std::size_t>(i + lag)];
        }
        if (product > best) {
            best = product;
            shift = lag;
        }
    }
    return shift;
}

TEST_F(FileEncoderTest, WmaLinesUpWithItsSourceAtEveryRate)
{
    struct Case {
        AudioFormat format;
        std::int64_t frames;
        std::uint32_t bitrate;
    };
    for (const Case& c :
         {Case{{44100, 2}, 44100, 128000}, Case{{44100, 1}, 2048 * 6, 64000}, Case{{48000, 2}, 30011, 320000},
          Case{{22050, 1}, 20479, 64000}, Case{{16000, 2}, 12345, 96000}, Case{{8000, 1}, 9001, 24000}}) {
        SCOPED_TRACE(std::to_string(c.format.rate) + " Hz, " + std::to_string(c.frames) + " frames");
        const Samples given = Sweep(c.format, c.frames);
        EncoderError error = EncoderError::CannotCreate;
        const auto encoder = FileEncoder::OpenWma(Name("x.wma"), c.format, c.bitrate, error);
        ASSERT_TRUE(encoder);
        ASSERT_TRUE(WriteAll(*encoder, c.format, given));
        ASSERT_TRUE(encoder->Finish());
        const Wma wma = ReadWma(Name("x.wma"));
        EXPECT_EQ(wma.format.rate, c.format.rate);
        EXPECT_EQ(wma.format.channels, c.format.channels);
        EXPECT_EQ(wma.bitrate, c.bitrate);
        EXPECT_EQ(wma.taggedFrames, c.frames);
        EXPECT_EQ(BestShift(given, c.format.channels, wma.left, 2500), 0);
        // The tail is as true as the rest.
        double error2 = 0;
        double power = 0;
        for (std::int64_t i = c.frames - 500; i < c.frames; ++i) {
            const double source = given[static_cast<std::size_t>(i) * c.format.channels] / 32768.0;
            error2 += std::pow(wma.left[static_cast<std::size_t>(i)] - source, 2);
            power += source * source;
        }
        EXPECT_LT(error2, power * 0.02);
    }
}

TEST_F(FileEncoderTest, SameInputGivesSameBytes)
{
    const Samples given = Sweep({48000, 2}, 60000);
    std::vector<std::string> wav;
    std::vector<std::string> wma;
    for (int run = 0; run < 2; ++run) {
        EncoderError error = EncoderError::None;
        const std::string name = Name(std::to_string(run)); // the name leaves no trace
        const auto wavEncoder = FileEncoder::OpenWav(name, {44100, 1}, error);
        WriteAll(*wavEncoder, {48000, 2}, given);
        EXPECT_TRUE(wavEncoder->Finish());
        wav.push_back(BytesOf(name));
        const auto wmaEncoder = FileEncoder::OpenWma(name, {44100, 2}, 96000, error);
        WriteAll(*wmaEncoder, {48000, 2}, given, 1000);
        EXPECT_TRUE(wmaEncoder->Finish());
        wma.push_back(BytesOf(name));
    }
    EXPECT_TRUE(wav[0] == wav[1]);
    EXPECT_TRUE(wma[0] == wma[1]);
    // File id and date of creation, which two runs within a second could share: none, and the year 1970.
    EXPECT_EQ(wma[0].substr(54, 16), std::string(16, '\0'));
    EXPECT_EQ(wma[0].substr(78, 8), std::string("\x00\x80\x3e\xd5\xde\xb1\x9d\x01", 8));
}

TEST_F(FileEncoderTest, WmaOffersRatesUpToWhereTheyStopToHelp)
{
    EXPECT_EQ(WmaRates({44100, 2}).size(), 15u);
    EXPECT_EQ(WmaRates({44100, 2}).front(), 24000u);
    EXPECT_EQ(WmaRates({44100, 2}).back(), 320000u);
    EXPECT_EQ(WmaRates({48000, 1}).back(), 192000u);
    EXPECT_EQ(WmaRates({22050, 1}).back(), 128000u);
    EXPECT_EQ(WmaRates({16000, 2}).back(), 128000u);
    EXPECT_TRUE(WmaRates({96000, 2}).empty());
    EXPECT_TRUE(WmaRates({44100, 3}).empty());
    // Every offered rate is taken, also by the noisiest sound; what is asked for goes to the nearest, or the lower.
    Samples noise;
    for (std::uint32_t i = 0, seed = 1; i < 12000; ++i) {
        seed = seed * 1664525 + 1013904223;
        noise.push_back(static_cast<std::int16_t>(seed >> 16));
    }
    for (const AudioFormat format : {AudioFormat{44100, 2}, {48000, 1}, {22050, 2}, {11025, 1}, {8000, 2}}) {
        for (const std::uint32_t rate : WmaRates(format)) {
            EncoderError error = EncoderError::None;
            const auto encoder = FileEncoder::OpenWma(Name("x.wma"), format, rate + 4000, error);
            ASSERT_TRUE(encoder) << format.rate << ' ' << rate;
            EXPECT_TRUE(encoder->Write(noise));
            EXPECT_TRUE(encoder->Finish());
            const Wma wma = ReadWma(Name("x.wma"));
            EXPECT_EQ(wma.bitrate, rate);
            EXPECT_EQ(wma.taggedFrames, 12000 / format.channels);
        }
    }
}

TEST_F(FileEncoderTest, RefusalsTellTheFormatFromTheFile)
{
    EncoderError error = EncoderError::None;
    for (const AudioFormat format : {AudioFormat{0, 2}, {44100, 0}, {44100, 3}, {4000000000u, 2}}) {
        EXPECT_EQ(FileEncoder::OpenWav(Name("x"), format, error), nullptr);
        EXPECT_EQ(error, EncoderError::InvalidFormat);
        EXPECT_EQ(FileEncoder::OpenWma(Name("x"), format, 128000, error), nullptr);
        EXPECT_EQ(error, EncoderError::InvalidFormat);
    }
    EXPECT_FALSE(std::filesystem::exists(Name("x")));
    for (const std::string& file : {Name("no folder/x"), m_folder.Posix().string(), std::string("/dev/full")}) {
        EXPECT_EQ(FileEncoder::OpenWav(file, {}, error), nullptr) << file;
        EXPECT_EQ(error, EncoderError::CannotCreate);
        EXPECT_EQ(FileEncoder::OpenWma(file, {}, 128000, error), nullptr) << file;
        EXPECT_EQ(error, EncoderError::CannotCreate);
    }
}

TEST_F(FileEncoderTest, FullDiskIsToldAndWhatLandedStays)
{
    // Room for the headers only, and for some sound: the first fails as late as at the end.
    for (const rlim_t room : {rlim_t{6000}, rlim_t{100000}}) {
        auto limit = std::make_optional<velmora::testing::FileSizeLimit>(room);
        EncoderError error = EncoderError::None;
        const auto wav = FileEncoder::OpenWav(Name("x.wav"), {}, error);
        const bool wavWritten = wav && WriteAll(*wav, {}, Sweep({}, 44100));
        const bool wavFinished = wav && wav->Finish();
        const auto wma = FileEncoder::OpenWma(Name("x.wma"), {}, 320000, error);
        const bool wmaWritten = wma && WriteAll(*wma, {}, Sweep({}, room == 6000 ? 1000 : 441000));
        const bool wmaFinished = wma && wma->Finish();
        limit.reset();

        ASSERT_TRUE(wav && wma);
        EXPECT_FALSE(wavWritten);
        EXPECT_FALSE(wavFinished);
        EXPECT_FALSE(wav->Finish());
        const std::size_t landed = (room - WavEncoder::kHeaderBytes) / (4 * 441) * 441 * 2;
        EXPECT_EQ(ReadWav(Name("x.wav")).samples.size(), landed);
        EXPECT_EQ(wmaWritten, room == 6000);
        EXPECT_FALSE(wmaFinished);
    }
}

} // namespace
} // namespace velmora::soundlayer
