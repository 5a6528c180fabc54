#include "soundlayer/internal/AudioFile.h"
#include "tests/soundlayer/TestAudio.h"
#include "tests/support/TemporaryFolder.h"

#include <cmath>
#include <cstring>
#include <filesystem>
#include <random>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace velmora::soundlayer {
namespace {

using namespace velmora::soundlayer::testing;
using velmora::testing::TemporaryFolder;

constexpr std::uint32_t kPcm = 1;
constexpr std::uint32_t kFloat = 3;

template <typename T>
std::string Packed(std::initializer_list<T> values)
{
    std::string bytes;
    for (const T value : values) {
        bytes.append(reinterpret_cast<const char*>(&value), sizeof(value));
    }
    return bytes;
}

std::string WavOf(const std::string& format, const std::string& data)
{
    return Chunk("RIFF", "WAVE" + Chunk("fmt ", format) + Chunk("data", data));
}

class WavFile : public ::testing::Test {
protected:
    /// The samples of a file of these bytes.
    Samples Read(const std::string& bytes)
    {
        WriteFile(m_path, bytes);
        return ReadAll(m_path);
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder.Posix() / "a.wav";
};

TEST_F(WavFile, RoundsEverySampleFormatToTheNearestStep)
{
    const auto mono = [](std::uint32_t tag, std::uint32_t bits) { return WavFormat(tag, 1, 44100, bits); };
    EXPECT_EQ(Read(WavOf(mono(kPcm, 8), std::string("\x00\x7F\x80\xFF", 4))), (Samples{-32768, -256, 0, 32512}));
    EXPECT_EQ(Read(WavOf(mono(kPcm, 16), Packed<std::int16_t>({-32768, -1, 1, 32767}))),
              (Samples{-32768, -1, 1, 32767}));
    // In 24 bits: -1, half a step (to the even 0), a bit more, one and a half (to the even 2), and beyond full scale.
    EXPECT_EQ(Read(WavOf(mono(kPcm, 24), std::string("\x00\xFF\xFF"
                                                     "\x80\x00\x00"
                                                     "\x81\x00\x00"
                                                     "\x80\x01\x00"
                                                     "\xFF\xFF\x7F",
                                                     15))),
              (Samples{-1, 0, 1, 2, 32767}));
    EXPECT_EQ(Read(WavOf(mono(kPcm, 32), Packed<std::int32_t>({INT32_MIN, -65536, 32768, 98304, INT32_MAX}))),
              (Samples{-32768, -1, 0, 2, 32767}));
    EXPECT_EQ(
        Read(WavOf(mono(kFloat, 32), Packed<float>({-1.5F, -1, 0.5F / 32768, 1.5F / 32768, 0.25F, 1, HUGE_VALF}))),
        (Samples{-32768, -32768, 0, 2, 8192, 32767, 32767}));
    EXPECT_EQ(Read(WavOf(mono(kFloat, 64), Packed<double>({-0.5, 0.5, 2}))), (Samples{-16384, 16384, 32767}));
}

TEST_F(WavFile, MixesManyChannelsDownByTheirPlaces)
{
    // A frame for each channel of 5.1, which alone sounds.
    Samples single;
    for (int frame = 0; frame < 6; ++frame) {
        for (int channel = 0; channel < 6; ++channel) {
            single.push_back(channel == frame ? 20000 : 0);
        }
    }
    const double whole = 20000 / (1 + std::sqrt(2)); // front, centre, back: 1 + 2 x sqrt(1/2)
    const auto front = static_cast<std::int16_t>(std::lrint(whole));
    const auto rest = static_cast<std::int16_t>(std::lrint(whole * std::sqrt(0.5)));
    const Samples expected{front, 0, 0, front, rest, rest, 0, 0, rest, 0, 0, rest};
    EXPECT_EQ(Read(WavOf(WavFormat(kPcm, 6, 48000, 16), Bytes(single))), expected);

    // The same by a mask of other places: side speakers in the place of those at the back.
    const std::string guid("\x01\x00\x00\x00\x00\x00\x10\x00\x80\x00\x00\xAA\x00\x38\x9B\x71", 16);
    const std::string extensible =
        WavFormat(0xFFFE, 6, 48000, 16) + Little(22, 2) + Little(16, 2) + Little(0x60F, 4) + guid;
    EXPECT_EQ(Read(WavOf(extensible, Bytes(single))), expected);

    // And so do coded files of more than 2 channels.
    Encode(m_path, "", m_folder.Posix() / "a.flac");
    EXPECT_EQ(ReadAll(m_folder.Posix() / "a.flac"), expected);

    // All at full scale together stay within it.
    const Samples loud = Read(WavOf(WavFormat(kPcm, 6, 48000, 16), Bytes(Samples(60, -32768))));
    EXPECT_EQ(loud, Samples(20, -32768));
}

TEST_F(WavFile, TakesTheLengthThatTheFileBearsOut)
{
    const Samples music = Music(44100, 2, 9001);
    const std::string data = Bytes(music);
    const std::string format = Chunk("fmt ", WavFormat(kPcm, 2, 44100, 16));
    const auto riff = [&](std::uint32_t riffSize, std::uint32_t dataSize, const std::string& rest) {
        return "RIFF" + Little(riffSize, 4) + "WAVE" + format + "data" + Little(dataSize, 4) + rest;
    };
    const auto size = static_cast<std::uint32_t>(data.size());
    EXPECT_EQ(Read(riff(36 + size, size, data)), music);
    EXPECT_EQ(Read(riff(36 + size, size, data + Chunk("LIST", "not a sound"))), music);
    EXPECT_EQ(Read(riff(0xFFFFFFFF, 0xFFFFFFFF, data)), music) << "written to a pipe";
    EXPECT_EQ(Read(riff(0x7FFFFFFF, 0x7FFFFFDB, data)), music) << "header too big";
    EXPECT_EQ(Read(riff(36, 0, data)), music) << "header never completed";
    EXPECT_EQ(Read(riff(0, 0, data)), music) << "header never completed";
    EXPECT_EQ(Read(riff(44, 0, Chunk("LIST", ""))), Samples{}) << "no sound, but another chunk";
    EXPECT_EQ(Read(riff(36, 0, "")), Samples{});
    EXPECT_EQ(Read(riff(36 + size, size, data.substr(0, 4 * 5000 + 3))), Cut(music, 2, 0, 5000)) << "cut in a frame";
    EXPECT_EQ(Read(riff(36 + 4 * 100, 4 * 100, data)), Cut(music, 2, 0, 100));

    // Chunks of odd sizes before, and a size that only the 64-bit chunk tells.
    const std::string before = Chunk("JUNK", "odd") + format + Chunk("fact", "1");
    EXPECT_EQ(Read(Chunk("RIFF", "WAVE" + before + Chunk("data", data))), music);
    const std::string ds64 =
        Chunk("ds64", Little(size + 100, 8) + Little(4 * 7000, 8) + Little(7000, 8) + Little(0, 4));
    const std::string large = Little(0xFFFFFFFF, 4) + "WAVE" + ds64 + format + "data" + Little(0xFFFFFFFF, 4) + data;
    EXPECT_EQ(Read("RF64" + large), Cut(music, 2, 0, 7000));
    EXPECT_EQ(Read("BW64" + large), Cut(music, 2, 0, 7000));
}

TEST_F(WavFile, SeeksAndReadsAcrossItsWindow)
{
    const Samples music = Music(48000, 2, 60000);
    for (const std::uint32_t channels : {1U, 2U}) {
        WriteFile(m_path, Wav(music, 48000, channels));
        const auto file = OpenOrThrow(m_path);
        std::mt19937 random(3);
        for (int i = 0; i < 200; ++i) {
            const auto frame = static_cast<std::int64_t>(random() % 61000);
            const std::size_t frames = random() % (i % 10 == 0 ? 30000 : 700);
            ASSERT_EQ(ReadAt(*file, frame, frames), Cut(music, channels, frame, frames)) << frame << " " << frames;
        }
        file->Seek(-5);
        Samples start(20 * channels);
        file->Read(start);
        EXPECT_EQ(start, Cut(music, channels, 0, 20));
    }
}

TEST_F(WavFile, KeepsItsLengthWhenTheFileShrinks)
{
    WriteFile(m_path, Wav(Samples(2 * 50000, 7), 44100, 2));
    const auto file = OpenOrThrow(m_path);
    std::filesystem::resize_file(m_path, 44 + 4 * 20000);
    for (const std::size_t pieces : {100U, 50000U}) {
        Samples all;
        while (all.size() < 2 * 50000) {
            const Samples piece = ReadAt(*file, static_cast<std::int64_t>(all.size() / 2), pieces);
            ASSERT_FALSE(piece.empty());
            all.insert(all.end(), piece.begin(), piece.end());
        }
        EXPECT_EQ(all[2 * 19999], 7);
        EXPECT_EQ(all[2 * 20000], 0);
        EXPECT_EQ(all.back(), 0);
    }
}

/// What is refused, and with which reason.
TEST(AudioFile, RefusesWhatHoldsNoSound)
{
    const TemporaryFolder folder;
    const auto at = [&](const char* name) { return folder.Posix() / name; };
    std::string noise(200'000, '\0');
    std::mt19937 random(11);
    for (char& byte : noise) {
        byte = static_cast<char>(random());
    }
    const std::string sound = Bytes(Music(44100, 2, 5000));
    WriteFile(at("sound.wav"), Wav(Music(44100, 2, 5000), 44100, 2));
    WriteFile(at("empty.wav"), "");
    WriteFile(at("random.mp3"), noise);
    WriteFile(at("text.wma"), "Once upon a time there was a file that held no sound.\n");
    WriteFile(at("list.m3u8"), "#EXTM3U\n#EXTINF:1,\nsound.wav\n#EXT-X-ENDLIST\n");
    WriteFile(at("list.ffconcat"), "ffconcat version 1.0\nfile sound.wav\n");
    WriteFile(at("norate.wav"), WavOf(WavFormat(kPcm, 2, 0, 16), sound));
    WriteFile(at("nochannels.wav"), WavOf(WavFormat(kPcm, 0, 44100, 16), sound));
    WriteFile(at("channels.wav"), WavOf(WavFormat(kPcm, 65535, 44100, 16), sound));
    WriteFile(at("fast.wav"), WavOf(WavFormat(kPcm, 2, 0xFFFFFFFF, 16), sound));
    WriteFile(at("nodata.wav"), Chunk("RIFF", "WAVE" + Chunk("fmt ", WavFormat(kPcm, 2, 44100, 16))));
    WriteFile(at("cut.wav"), Wav(Music(44100, 2, 5000), 44100, 2).substr(0, 30));
    WriteFile(at("tag.mp3"), std::string("ID3\x04\x00\x00\x00\x00\x10\x00", 10) + std::string(3000, '\0'));
    for (const char* media : {"image.png", "video.mp4", "video.wma"}) {
        const std::string command = "ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc=duration=0.1 -frames:v 1 " +
                                    std::string(media == std::string("video.wma") ? "-f asf '" : "'") +
                                    at(media).native() + "'";
        ASSERT_EQ(std::system(command.c_str()), 0);
    }
    std::filesystem::rename(at("list.m3u8"), at("list.wav"));
    std::filesystem::create_directory(at("folder.wav"));
    ASSERT_EQ(::mkfifo(at("pipe.wav").c_str(), 0600), 0);

    for (const auto& entry : std::filesystem::directory_iterator(folder.Posix())) {
        const bool good = entry.path().filename() == "sound.wav";
        OpenResult result = OpenResult::CannotRead;
        const auto file = AudioFile::Open(entry.path().native(), result);
        EXPECT_EQ(file != nullptr, good) << entry.path();
        const OpenResult reason = entry.is_regular_file() ? OpenResult::NoSound : OpenResult::CannotRead;
        EXPECT_EQ(result, good ? OpenResult::Ok : reason) << entry.path();
    }
    OpenResult result = OpenResult::Ok;
    EXPECT_EQ(AudioFile::Open(at("nobody.wav").native(), result), nullptr);
    EXPECT_EQ(result, OpenResult::CannotRead);
}

} // namespace
} // namespace velmora::soundlayer
