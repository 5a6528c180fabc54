#include "audio/ProjectCompression.h"

#include "audio/internal/WmaConversion.h"
#include "core/BassHelpers.h"
#include "core/MsgIds.h"
#include "core/Paths.h"
#include "project/ChannelDataClass.h"
#include "project/Undo_Class.h"
#include "tests/audio/SoundFixture.h"
#include "tests/support/FileSizeLimit.h"

#include <cmath>
#include <filesystem>
#include <random>

namespace velmora::audio {
namespace {

/// Notes what is shown; cancels when told.
class NotedProgress final : public CompressionProgress {
public:
    void ShowFile(std::size_t number, std::size_t total, const std::string& source,
                  const std::string& destination) override
    {
        files.push_back(std::to_string(number) + "/" + std::to_string(total) + " " + source + " " + destination);
    }
    void Update(double file, double run) override
    {
        EXPECT_GE(run, lastRun);
        lastRun = run;
        lastFile = file;
        if (cancel && files.size() == 2 && file > 0.3) {
            cancel();
        }
    }

    std::vector<std::string> files;
    double lastFile = 0;
    double lastRun = 0;
    std::function<void()> cancel;
};

/// A new project with a folder, whose clips are to be compressed.
class Compression : public ExportTest {
protected:
    Compression()
    {
        EXPECT_TRUE(m_project->CreateNewProject());
        m_folder = m_project->GetAudioPath();
        m_compression = std::make_unique<ProjectCompression>(*m_environment, *m_project, m_shown);
    }

    /// Dull noise, another one each time, in the audio folder. Its bytes.
    std::string WriteTake(const std::string& name, std::int32_t rate = 44100, std::int32_t channels = 2,
                          double seconds = 2)
    {
        std::mt19937 random(++m_takesWritten);
        WavSound sound{rate, channels, {}};
        double value = 0;
        for (int i = 0; i < static_cast<int>(seconds * rate); ++i) {
            value = 0.9 * value + static_cast<double>(random() % 2001) - 1000;
            sound.samples.insert(sound.samples.end(), static_cast<std::size_t>(channels),
                                 static_cast<std::int16_t>(value));
        }
        WriteWav(InFolder(name), sound);
        return BytesOf(name);
    }

    std::string InFolder(const std::string& name) const { return m_folder + "\\" + name; }
    std::string BytesOf(const std::string& name) const
    {
        return m_environment.disk.ReadTextFile(InFolder(name), 1 << 24);
    }
    std::vector<std::string> Folder() const
    {
        std::vector<std::string> names = m_environment.disk.ListFiles(m_folder, "*");
        std::erase(names, "accheck.dat");
        return names;
    }

    ProjectCompression::Outcome Compress()
    {
        m_shown.files.clear();
        m_shown.lastRun = 0;
        m_compression->StartCompression();
        return m_compression->Result();
    }

    std::vector<std::string> ClipFiles() const
    {
        std::vector<std::string> files;
        for (const project::EventRow* row : m_channel->ChannelData->InTimeOrder()) {
            files.push_back(row->EventOBJ->FilePath);
        }
        return files;
    }

    std::string Report() const { return m_environment.ports.messages.LastText(); }

    unsigned m_takesWritten = 0;
    NotedProgress m_shown;
    std::string m_folder;
    std::unique_ptr<ProjectCompression> m_compression;
};

/// How alike two mixes are when `b` is taken `lag` samples later: 1 for the same.
double Likeness(const WavSound& a, const WavSound& b, std::int64_t lag)
{
    double ab = 0;
    double aa = 0;
    double bb = 0;
    for (std::size_t i = 1000; i + 1000 < std::min(a.samples.size(), b.samples.size()); ++i) {
        const double x = a.samples[i];
        const double y = b.samples[static_cast<std::size_t>(static_cast<std::int64_t>(i) + lag)];
        ab += x * y;
        aa += x * x;
        bb += y * y;
    }
    return ab / std::sqrt(aa * bb);
}

TEST_F(Compression, ClipsKeepTheirPlaceToTheSampleAndUndoBringsTheTakesBack)
{
    const std::string first = WriteTake("take 1.wav");
    const std::string second = WriteTake("b.WAV", 48000, 1);
    const auto& clip = AddClip(*m_channel, "take 1.wav", 0, 0, 700);
    AddClip(*m_channel, "b.WAV", 700, 123, 1900);
    AddClip(*m_channel, "\\take 1.wav", 2477, 777, 2000);
    ASSERT_EQ(Export(), AudioExport::Outcome::Done);
    const WavSound before = Mix();

    bool refreshed = false;
    Listen(25, [&](std::int32_t msgID) { refreshed = refreshed || msgID == core::Msg_Refresh; });
    ASSERT_EQ(Compress(), ProjectCompression::Outcome::Done);
    EXPECT_EQ(Report(), "Done !");
    EXPECT_EQ(m_environment.ports.messages.shown.back().title, "Compress project");
    EXPECT_TRUE(refreshed) << "the engine plays the new files";
    EXPECT_EQ(m_shown.files, (std::vector<std::string>{"1/2 take 1.wav take 1.wma", "2/2 b.WAV b.wma"}));
    EXPECT_DOUBLE_EQ(m_shown.lastRun, 1);
    EXPECT_GE(m_environment.ports.pendingEvents.runs, 10) << "the window lives";
    EXPECT_EQ(ClipFiles(), (std::vector<std::string>{"take 1.wma", "b.wma", "take 1.wma"}));
    EXPECT_EQ(clip.EndMS, 700);
    EXPECT_EQ(Folder(), (std::vector<std::string>{"b.WAV", "b.wma", "take 1.wav", "take 1.wma"}));
    EXPECT_LT(BytesOf("take 1.wma").size(), first.size() / 5);
    EXPECT_EQ(core::GetAudioFileLengthMS(InFolder("b.wma")), 2000);

    ASSERT_EQ(Export(), AudioExport::Outcome::Done);
    const WavSound after = Mix();
    ASSERT_EQ(after.samples.size(), before.samples.size());
    EXPECT_GT(Likeness(before, after, 0), 0.97);
    for (const std::int64_t frames : {-2, -1, 1, 2}) {
        EXPECT_LT(Likeness(before, after, 2 * frames), Likeness(before, after, 0) - 0.05) << frames;
    }

    m_project->Undo->Undo();
    EXPECT_EQ(ClipFiles(), (std::vector<std::string>{"take 1.wav", "b.WAV", "\\take 1.wav"}));
    EXPECT_TRUE(BytesOf("take 1.wav") == first);
    EXPECT_TRUE(BytesOf("b.WAV") == second);
    ASSERT_EQ(Export(), AudioExport::Outcome::Done);
    EXPECT_EQ(Mix().samples, before.samples);
    EXPECT_EQ(m_project->Undo->CurRedo_Title(), "Redo compress project");
}

TEST_F(Compression, CancelledInTheMiddleLeavesAllAsItWas)
{
    WriteTake("a.wav");
    WriteTake("b.wav");
    AddClip(*m_channel, "a.wav", 0, 0, 2000);
    AddClip(*m_channel, "b.wav", 2000, 0, 2000);
    const std::string before = m_project->GetXMLData();
    m_shown.cancel = [this] { m_compression->Cancel(); };
    EXPECT_EQ(Compress(), ProjectCompression::Outcome::Cancelled);
    EXPECT_EQ(Report(), "Compression cancelled");
    EXPECT_LT(m_shown.lastFile, 0.6) << "it stopped at once";
    EXPECT_EQ(m_project->GetXMLData(), before);
    EXPECT_EQ(Folder(), (std::vector<std::string>{"a.wav", "b.wav"}));
    EXPECT_EQ(m_project->Undo->CurUndo_Title(), "");
    EXPECT_EQ(m_environment.ports.views.calls.back(), "EnableMainWindow true");

    m_shown.cancel = nullptr;
    EXPECT_EQ(Compress(), ProjectCompression::Outcome::Done);
    EXPECT_EQ(ClipFiles(), (std::vector<std::string>{"a.wma", "b.wma"}));
}

TEST_F(Compression, FilesThatFailAreNamedAndStayInUse)
{
    WriteTake("fine.wav");
    WriteTake("fast.wav", 96000);
    WriteTake("cut.wav");
    std::filesystem::resize_file(core::PosixPath(InFolder("cut.wav")), 100'000);
    m_environment.disk.WriteTextFile(InFolder("broken.wav"), "not a sound");
    for (const char* name : {"gone.wav", "broken.wav", "fast.wav", "..\\out.wav", "fine.wav", "cut.wav"}) {
        AddClip(*m_channel, name, static_cast<double>(1000 * ClipFiles().size()), 0, 1000);
    }
    EXPECT_EQ(Compress(), ProjectCompression::Outcome::Done);
    EXPECT_EQ(Report(), "Done !\nError: 4 file(s) were not compressed\nErrors:\n" + InFolder("gone.wav") +
                            " [Error loading file]\n" + InFolder("broken.wav") + " [Error loading file]\n" +
                            InFolder("fast.wma") + " [Invalid format]\n..\\out.wav [Error loading file]");
    EXPECT_EQ(ClipFiles(),
              (std::vector<std::string>{"gone.wav", "broken.wav", "fast.wav", "..\\out.wav", "fine.wma", "cut.wma"}));
    EXPECT_EQ(Folder(),
              (std::vector<std::string>{"broken.wav", "cut.wav", "cut.wma", "fast.wav", "fine.wav", "fine.wma"}));
    EXPECT_EQ(core::GetAudioFileLengthMS(InFolder("cut.wma")), core::GetAudioFileLengthMS(InFolder("cut.wav")));
}

TEST_F(Compression, FullDiskKeepsTheTakes)
{
    const std::string take = WriteTake("long.wav");
    WriteTake("short.wav", 44100, 1, 0.1);
    AddClip(*m_channel, "long.wav", 0, 0, 2000);
    AddClip(*m_channel, "short.wav", 2000, 0, 100);
    {
        const testing::FileSizeLimit limit(10'000);
        EXPECT_EQ(Compress(), ProjectCompression::Outcome::Done);
    }
    EXPECT_EQ(Report(), "Done !\nError: 1 file(s) were not compressed\nErrors:\n" + InFolder("long.wma") +
                            " [Error writing file, the disk may be full]");
    EXPECT_EQ(ClipFiles(), (std::vector<std::string>{"long.wav", "short.wma"}));
    EXPECT_EQ(Folder(), (std::vector<std::string>{"long.wav", "short.wav", "short.wma"}));
    EXPECT_TRUE(BytesOf("long.wav") == take);

    m_environment.files.FailEach(testing::FileOperation::Replace);
    EXPECT_EQ(Compress(), ProjectCompression::Outcome::Done);
    EXPECT_EQ(ClipFiles().front(), "long.wav");
    EXPECT_EQ(Folder(), (std::vector<std::string>{"long.wav", "short.wav", "short.wma"}));
}

TEST_F(Compression, NoFileThatIsInUseIsOverwritten)
{
    WriteTake("a.wav");
    WriteTake("a.WAV");
    WriteTake("b.wav");
    WriteTake("c.wav");
    m_environment.disk.WriteTextFile(InFolder("a.wma"), "another sound");
    m_environment.disk.WriteTextFile(InFolder("b.wma"), "left over");
    m_environment.disk.WriteTextFile(InFolder("c.wma"), "used by another name");
    const auto posix = [this](const char* name) { return core::PosixPath(InFolder(name)); };
    std::filesystem::create_symlink(posix("c.wma"), m_environment.folder.Posix() / "link.wma");
    for (const std::string& name : {std::string("a.wav"), std::string("a.WAV"), std::string("a.wma"),
                                    std::string("b.wav"), std::string("c.wav"), m_environment.Path("link.wma")}) {
        AddClip(*m_channel, name, static_cast<double>(1000 * ClipFiles().size()), 0, 1000);
    }
    EXPECT_EQ(Compress(), ProjectCompression::Outcome::Done);
    EXPECT_EQ(Report(), "Done !");
    EXPECT_EQ(ClipFiles(), (std::vector<std::string>{"a1.wma", "a2.wma", "a.wma", "b.wma", "c1.wma",
                                                     m_environment.Path("link.wma")}));
    EXPECT_EQ(BytesOf("a.wma"), "another sound");
    EXPECT_EQ(BytesOf("c.wma"), "used by another name");
    EXPECT_TRUE(BytesOf("a1.wma") != BytesOf("a2.wma"));
    EXPECT_EQ(m_environment.ports.trash.moved, (std::vector<std::string>{InFolder("b.wma")}));
}

TEST_F(Compression, NothingToCompressIsSaid)
{
    const std::string outside = m_environment.Path("sounds\\outside.wav");
    WriteWav(outside, {44100, 1, std::vector<std::int16_t>(44100, 100)});
    AddClip(*m_channel, outside, 0, 0, 1000);
    AddClip(*m_channel, "song.mp3", 1000, 0, 1000);
    EXPECT_EQ(Compress(), ProjectCompression::Outcome::NothingToDo);
    EXPECT_EQ(m_environment.ports.messages.Texts(), (std::vector<std::string>{"There are no files to compress"}));
    EXPECT_EQ(m_project->Undo->CurUndo_Title(), "");
    EXPECT_EQ(Folder(), (std::vector<std::string>{}));
}

TEST_F(Compression, MonoGetsHalfTheRateAndTheNearestOffered)
{
    EXPECT_EQ(GetNearestBitrate(44100, 2, 127'000), 128'000);
    EXPECT_EQ(GetNearestBitrate(44100, 2, 104'000), 96'000) << "the earlier of two equally near";
    EXPECT_EQ(GetNearestBitrate(96000, 2, 128'000), 0);

    WriteTake("stereo.wav", 44100, 2, 10);
    WriteTake("mono.wav", 44100, 1, 10);
    AddClip(*m_channel, "stereo.wav", 0, 0, 10'000);
    AddClip(*m_channel, "mono.wav", 10'000, 0, 10'000);
    ASSERT_EQ(Compress(), ProjectCompression::Outcome::Done);
    EXPECT_NEAR(static_cast<double>(BytesOf("stereo.wma").size()), 10 * 128'000 / 8.0, 16'000);
    EXPECT_NEAR(static_cast<double>(BytesOf("mono.wma").size()), 10 * 64'000 / 8.0, 16'000);
}

} // namespace
} // namespace velmora::audio
