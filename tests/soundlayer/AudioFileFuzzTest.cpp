#include "soundlayer/internal/AudioFile.h"
#include "tests/soundlayer/TestAudio.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <random>

#include <gtest/gtest.h>

namespace velmora::soundlayer {
namespace {

using namespace velmora::soundlayer::testing;
using velmora::testing::TemporaryFolder;
using Clock = std::chrono::steady_clock;

/// Changes valid files at random, in the ways that reach deep: single bits, numbers of the extreme sort, pieces that
/// are gone, doubled or from another file.
class Mutator {
public:
    explicit Mutator(std::uint32_t seed)
        : m_random(seed)
    {
    }

    std::string Mutate(std::string bytes, const std::string& other)
    {
        for (std::size_t changes = 1 + Below(4); changes > 0 && bytes.size() > 16; --changes) {
            const std::size_t at = Place(bytes.size());
            const std::size_t count = std::min<std::size_t>(1 + Below(200), bytes.size() - at);
            switch (Below(7)) {
            case 0:
                bytes[at] = static_cast<char>(bytes[at] ^ (1 << Below(8)));
                break;
            case 1:
                std::generate_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), count,
                                [this] { return static_cast<char>(Below(256)); });
                break;
            case 2: {
                constexpr std::uint32_t kNumbers[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0x00FFFFFF, 0xFF};
                const std::string number = Little(kNumbers[Below(std::size(kNumbers))], 4);
                bytes.replace(at, std::min<std::size_t>(4, bytes.size() - at), number);
                break;
            }
            case 3:
                bytes.resize(at);
                break;
            case 4:
                bytes.erase(at, count);
                break;
            case 5:
                bytes.insert(at, bytes.substr(at, count));
                break;
            default:
                bytes.replace(at, count, other, Below(other.size()), count);
                break;
            }
        }
        return bytes;
    }

    std::size_t Below(std::size_t limit) { return m_random() % limit; }

private:
    /// Half of all changes fall into the header.
    std::size_t Place(std::size_t size)
    {
        return Below(2) == 0 ? Below(std::min<std::size_t>(size, 600)) : Below(size);
    }

    std::mt19937 m_random;
};

/// Opens a file and reads here and there; whatever it holds, the reader keeps to its own word.
void Try(const std::filesystem::path& path, std::size_t fileBytes, Mutator& random)
{
    OpenResult result = OpenResult::Ok;
    const auto file = AudioFile::Open(path.native(), result);
    ASSERT_EQ(file != nullptr, result == OpenResult::Ok);
    if (!file) {
        return;
    }
    const std::uint32_t channels = file->Channels();
    const std::int64_t length = file->LengthFrames();
    ASSERT_TRUE(IsRate(file->Rate()) && (channels == 1 || channels == 2));
    ASSERT_GE(length, 0);
    // A second of silence takes a hundred bytes at the very least, so no length is out of all proportion.
    ASSERT_LE(length, static_cast<std::int64_t>(fileBytes + 100) * 70000);
    Samples piece(20000);
    for (int reads = 0; reads < 12; ++reads) {
        std::int64_t frame = 0;
        if (reads > 3 && length > 0) {
            frame = static_cast<std::int64_t>(random.Below(static_cast<std::size_t>(length) + 100));
            file->Seek(frame);
        } else {
            frame = reads * std::int64_t{10000};
            file->Seek(frame);
        }
        const std::int64_t left = std::max<std::int64_t>(length - frame, 0);
        const auto expected = std::min<std::int64_t>(static_cast<std::int64_t>(piece.size() / channels), left);
        ASSERT_EQ(static_cast<std::int64_t>(file->Read(piece)), expected);
    }
}

/// Short by default; VELMORA_FUZZ_SECONDS makes it search longer, and then elsewhere each time it is set otherwise.
TEST(AudioFileFuzz, NoFileBreaksTheReader)
{
    const TemporaryFolder folder;
    const auto source = folder.Posix() / "source.wav";
    const Samples music = Music(44100, 2, 40000);
    WriteFile(source, Wav(music, 44100, 2));
    const std::pair<const char*, const char*> kSeeds[] = {{"a.mp3", "-b:a 96k"},
                                                          {"b.mp3", "-q:a 5 -write_xing 0 -id3v2_version 0"},
                                                          {"a.wma", "-b:a 96k"},
                                                          {"a.flac", ""},
                                                          {"a.ogg", "-c:a libvorbis"},
                                                          {"a.opus", "-c:a libopus"},
                                                          {"a.m4a", "-c:a aac"},
                                                          {"a.aac", "-c:a aac"},
                                                          {"b.m4a", "-c:a alac"},
                                                          {"a.aiff", ""},
                                                          {"a.w64", ""},
                                                          {"b.wav", "-c:a adpcm_ms"},
                                                          {"c.wav", "-c:a pcm_f32le -ac 6"}};
    std::vector<std::string> seeds{ReadFile(source)};
    for (const auto& [name, options] : kSeeds) {
        Encode(source, options, folder.Posix() / name);
        seeds.push_back(ReadFile(folder.Posix() / name));
    }

    const char* asked = std::getenv("VELMORA_FUZZ_SECONDS");
    const double seconds = asked ? std::atof(asked) : 3;
    const auto first = static_cast<std::uint32_t>(asked ? seconds * 1000 : 0);
    const Clock::time_point end =
        Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    std::uint32_t turn = 0;
    for (; Clock::now() < end; ++turn) {
        const std::uint32_t seed = first + turn;
        SCOPED_TRACE("seed " + std::to_string(seed));
        Mutator random(seed);
        const std::string bytes = random.Mutate(seeds[turn % seeds.size()], seeds[random.Below(seeds.size())]);
        // A name of its own, since files of one name, size and time are taken for the same.
        const auto path = folder.Posix() / std::to_string(seed);
        WriteFile(path, bytes);
        Try(path, bytes.size(), random);
        std::filesystem::remove(path);
        if (HasFatalFailure()) {
            break;
        }
    }
    std::printf("%u files tried\n", turn);
    EXPECT_GT(turn, seeds.size()) << "not even one file of each kind";
}

} // namespace
} // namespace velmora::soundlayer
