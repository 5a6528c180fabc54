#include "soundlayer/internal/AudioFile.h"

#include "soundlayer/internal/FileEncoder.h"
#include "tests/soundlayer/TestAudio.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <latch>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

using namespace velmora::soundlayer::testing;
using velmora::testing::TemporaryFolder;

constexpr int kUnmarked = 2500;

/// A coded format, by how ffmpeg makes it.
struct Format {
    const char* name;
    const char* ending;
    const char* options;
    std::uint32_t rate = 44100;
    std::uint32_t channels = 2;
    bool lossless = false;
    /// Frames by which its length may miss the source's; kUnmarked if the file does not tell where that begins.
    int slack = 0;
};

std::ostream& operator<<(std::ostream& out, const Format& format)
{
    return out << format.name;
}

constexpr Format kFormats[] = {
    {.name = "Mp3Constant", .ending = "mp3", .options = "-b:a 128k"},
    {.name = "Mp3LowRate", .ending = "mp3", .options = "-b:a 32k", .rate = 22050, .channels = 1, .slack = 26},
    {.name = "Mp3Variable", .ending = "mp3", .options = "-q:a 2", .rate = 48000},
    {.name = "Mp3Untagged", .ending = "mp3", .options = "-q:a 4 -write_xing 0 -id3v2_version 0", .slack = kUnmarked},
    {.name = "WmaStereo", .ending = "wma", .options = "-c:a wmav2 -b:a 128k", .slack = kUnmarked},
    {.name = "WmaMono",
     .ending = "wma",
     .options = "-c:a wmav2 -b:a 48k",
     .rate = 22050,
     .channels = 1,
     .slack = kUnmarked},
    {.name = "WmaVersion1", .ending = "wma", .options = "-c:a wmav1 -b:a 96k", .slack = kUnmarked},
    {.name = "Flac", .ending = "flac", .options = "", .lossless = true},
    {.name = "Flac24", .ending = "flac", .options = "-sample_fmt s32", .rate = 96000, .channels = 1},
    {.name = "Vorbis", .ending = "ogg", .options = "-c:a libvorbis -q:a 4"},
    {.name = "VorbisMono", .ending = "ogg", .options = "-c:a libvorbis -q:a 1", .rate = 22050, .channels = 1},
    {.name = "OggFlac", .ending = "oga", .options = "-c:a flac", .lossless = true},
    {.name = "Opus", .ending = "opus", .options = "-c:a libopus -b:a 64k", .rate = 48000},
    {.name = "OpusShortFrames",
     .ending = "ogg",
     .options = "-c:a libopus -frame_duration 5",
     .rate = 48000,
     .channels = 1},
    {.name = "Aac", .ending = "m4a", .options = "-c:a aac -aac_pns 0 -b:a 128k", .slack = 44},
    {.name = "AacBare", .ending = "aac", .options = "-c:a aac -aac_pns 0 -b:a 96k", .slack = kUnmarked},
    {.name = "Alac", .ending = "m4a", .options = "-c:a alac", .lossless = true},
    {.name = "Aiff", .ending = "aiff", .options = "", .lossless = true},
    {.name = "W64", .ending = "w64", .options = "-c:a pcm_s24le"},
    {.name = "Mp3InAsf", .ending = "asf", .options = "-c:a mp3 -b:a 96k", .slack = kUnmarked},
    {.name = "Adpcm", .ending = "wav", .options = "-c:a adpcm_ima_wav", .slack = kUnmarked},
};

class CodedFormat : public ::testing::TestWithParam<Format> {
protected:
    static constexpr int kSeconds = 6;

    void SetUp() override
    {
        const Format& format = GetParam();
        // No whole number of packets in any format.
        const std::size_t frames = format.rate * kSeconds + 777;
        m_source = Music(format.rate, format.channels, frames);
        WriteFile(m_folder.Posix() / "source.wav", Wav(m_source, format.rate, format.channels));
        m_path = m_folder.Posix() / (std::string("coded.") + format.ending);
        Encode(m_folder.Posix() / "source.wav", format.options, m_path);
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_path;
    Samples m_source;
};

TEST_P(CodedFormat, ReadsTheSameFromAnyPlace)
{
    const std::uint32_t channels = GetParam().channels;
    const auto file = OpenOrThrow(m_path);
    ASSERT_EQ(file->Channels(), channels);
    ASSERT_EQ(file->Rate(), GetParam().rate);
    const Samples all = ReadAll(*file);
    ASSERT_EQ(static_cast<std::int64_t>(all.size()), file->LengthFrames() * channels);

    std::mt19937 random(5);
    for (int i = 0; i < 60; ++i) {
        std::int64_t frame = static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(file->LengthFrames()));
        if (i % 4 == 3) { // near the end, and beyond it
            frame = file->LengthFrames() - static_cast<std::int64_t>(random() % 5000) + 100;
        }
        const std::size_t frames = random() % 4096 + 1;
        const std::int64_t limited = std::min(frame, file->LengthFrames());
        ASSERT_EQ(ReadAt(*file, frame, frames), Cut(all, channels, limited, frames)) << "from " << frame;
        // Reading goes on where it stood.
        Samples next(100 * channels);
        next.resize(file->Read(next) * channels);
        ASSERT_EQ(next, Cut(all, channels, limited + static_cast<std::int64_t>(frames), 100)) << "from " << frame;
    }
    EXPECT_EQ(ReadAll(*OpenOrThrow(m_path)), all) << "another opening reads otherwise";
}

TEST_P(CodedFormat, LinesUpWithItsSource)
{
    const std::uint32_t channels = GetParam().channels;
    const std::uint32_t rate = GetParam().rate;
    const Samples all = ReadAll(m_path);
    const auto frames = static_cast<std::int64_t>(all.size() / channels);
    if (GetParam().lossless) {
        ASSERT_EQ(all, m_source);
    }
    EXPECT_LE(std::abs(frames - static_cast<std::int64_t>(m_source.size() / channels)), GetParam().slack);
    if (GetParam().slack != kUnmarked) {
        for (const std::int64_t second : {0, kSeconds - 1}) {
            EXPECT_EQ(LagOf(Cut(all, channels, second * rate, rate), Cut(m_source, channels, second * rate, rate),
                            channels, 600),
                      0);
        }
    }
}

TEST_P(CodedFormat, SurvivesACutAndAChangeWhileOpen)
{
    const std::uint32_t channels = GetParam().channels;
    const Samples all = ReadAll(m_path);
    const std::string bytes = ReadFile(m_path);

    // While it is open: what is gone is silent, and the length stays.
    const auto file = OpenOrThrow(m_path);
    ReadAt(*file, 100, 100);
    std::filesystem::resize_file(m_path, bytes.size() / 2);
    Samples rest = ReadAt(*file, 200, all.size());
    EXPECT_EQ(static_cast<std::int64_t>(rest.size()), (file->LengthFrames() - 200) * channels);
    EXPECT_EQ(Cut(rest, channels, 0, 1000), Cut(all, channels, 200, 1000));
    const Samples gone = ReadAt(*file, file->LengthFrames() - 1000, 1000);
    EXPECT_TRUE(gone == Samples(1000 * channels) || gone == Cut(all, channels, file->LengthFrames() - 1000, 1000));

    // Opened anew: what is left is there, and no more is promised. Tables at the end of a file are needed, though.
    OpenResult result = OpenResult::Ok;
    const auto half = AudioFile::Open(m_path.native(), result);
    if (!half) {
        EXPECT_EQ(result, OpenResult::NoSound);
        EXPECT_STREQ(GetParam().ending, "m4a");
        return;
    }
    const Samples left = ReadAll(*half);
    const std::size_t sure = left.size() / channels - 12000;
    EXPECT_NEAR(static_cast<double>(left.size()), static_cast<double>(all.size()) / 2,
                static_cast<double>(all.size()) / 5);
    EXPECT_EQ(Cut(left, channels, 0, sure), Cut(all, channels, 0, sure));
}

TEST_P(CodedFormat, KeepsTimeBehindDamage)
{
    const std::uint32_t channels = GetParam().channels;
    const Samples all = ReadAll(m_path);
    std::string bytes = ReadFile(m_path);
    const std::size_t damaged = bytes.size() / 3;
    bytes.replace(damaged, 3000, 3000, '\0');
    WriteFile(m_path, bytes);

    const auto file = OpenOrThrow(m_path);
    const auto frames = static_cast<std::int64_t>(all.size() / channels);
    EXPECT_LE(std::abs(file->LengthFrames() - frames), 1200);
    const std::int64_t behind = std::int64_t{GetParam().rate} * (kSeconds - 1);
    const std::size_t most = GetParam().rate * 9 / 10;
    EXPECT_EQ(ReadAt(*file, behind, most), Cut(all, channels, behind, most));
    EXPECT_EQ(ReadAt(*file, 1000, 1000), Cut(all, channels, 1000, 1000));
}

TEST(AudioFile, LinesUpWithWhatOurOwnWmaEncoderWasGiven)
{
    const TemporaryFolder folder;
    const std::string path = (folder.Posix() / "own.wma").native();
    for (const AudioFormat format : {AudioFormat{44100, 2}, AudioFormat{22050, 1}, AudioFormat{48000, 2}}) {
        const Samples music = Music(format.rate, format.channels, format.rate * 3 / 2 + 1);
        EncoderError error = EncoderError::None;
        auto encoder = FileEncoder::OpenWma(path, format, 128'000, error);
        ASSERT_TRUE(encoder && encoder->Write(music) && encoder->Finish());
        const auto file = OpenOrThrow(path);
        EXPECT_TRUE(file->IsWma());
        const Samples all = ReadAll(*file);
        ASSERT_EQ(all.size(), music.size());
        EXPECT_EQ(LagOf(all, music, format.channels, 600), 0);
        const std::int64_t end = format.rate * 3 / 2 - 2000;
        EXPECT_GT(SignalToNoise(Cut(music, format.channels, end, 2000), Cut(all, format.channels, end, 2000)), 10);
    }
}

TEST(AudioFile, IsReadByManyThreadsAtOnce)
{
    const TemporaryFolder folder;
    WriteFile(folder.Posix() / "a.wav", Wav(Music(44100, 2, 60000), 44100, 2));
    for (const char* name : {"a.mp3", "a.ogg", "a.wma", "a.flac"}) {
        const auto path = folder.Posix() / name;
        Encode(folder.Posix() / "a.wav", "", path);
        std::latch start(4);
        std::vector<Samples> read(4);
        std::vector<std::thread> threads;
        threads.reserve(4);
        for (std::size_t i = 0; i < 4; ++i) {
            threads.emplace_back([&, i] {
                start.arrive_and_wait();
                OpenResult result = OpenResult::Ok;
                const auto file = AudioFile::Open(path.native(), result);
                read[i] = ReadAt(*file, static_cast<std::int64_t>(i) * 10000, 9000);
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        const Samples all = ReadAll(path);
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_EQ(read[i], Cut(all, 2, static_cast<std::int64_t>(i) * 10000, 9000)) << name;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, CodedFormat, ::testing::ValuesIn(kFormats),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace velmora::soundlayer
