#include "controls/Combo.h"
#include "controls/Labels.h"
#include "project/Undo_Class.h"
#include "tests/controls/StripFixture.h"

namespace velmora::controls {
namespace {

TEST_F(StripTest, PacksAreSavedListedAndLoaded)
{
    const std::string folder = m_environment.Path("presets\\FxPacks-Voice");
    ASSERT_TRUE(m_environment.disk.MakeFolderIfMissing(folder));
    auto& combo = Find<Combo>(m_voice, "Combo2");
    EXPECT_EQ(combo.Text(), "(Custom)");

    m_environment.ports.input.Expect("Warm: hall");
    m_voice.Presenter().SavePack();
    EXPECT_EQ(m_environment.ports.input.asked.back().suggestion, "New preset");
    EXPECT_TRUE(m_environment.disk.FileExists(folder + "\\Warm  hall.pack"));
    EXPECT_EQ(combo.Text(), "Warm  Hall");
    EXPECT_EQ(combo.count(), 1);
    EXPECT_EQ(combo.currentIndex(), 0);

    m_environment.ports.input.Expect("(CUSTOM)");
    m_voice.Presenter().SavePack();
    EXPECT_EQ(Messages().LastText(), "Invalid name");

    m_voice.Presenter().SelectChannel(1);
    EXPECT_EQ(combo.Text(), "(Custom)");
    emit combo.activated(0);
    EXPECT_EQ(Voice(1).FXPack_Name, "Warm  hall");
    EXPECT_EQ(combo.Text(), "Warm  Hall");

    // A pack that cannot be read changes nothing, and the combo says so.
    ASSERT_TRUE(m_environment.disk.DeleteFile(folder + "\\Warm  hall.pack"));
    m_voice.Presenter().SelectChannel(2);
    emit combo.activated(0);
    EXPECT_EQ(Messages().LastText(), "FXPack: Error loading file");
    EXPECT_EQ(combo.Text(), "(Custom)");
}

TEST_F(StripTest, AMissingFolderOfPacksIsToldOncePerStrip)
{
    const auto told = [this] {
        long count = 0;
        for (const std::string& text : Messages().Texts()) {
            count += text.starts_with("Folder does not exist: ") ? 1 : 0;
        }
        return count;
    };
    EXPECT_EQ(told(), 2);
    m_voice.Initialize_Class(*m_project);
    EXPECT_EQ(told(), 2);
}

TEST_F(StripTest, LoadsAMusicFileWhereTheUserWants)
{
    const std::string file = WriteSound(m_environment.Path("Band.wav"));
    auto& dialogs = m_environment.ports.fileDialogs;
    auto& field = Find<ReadOnlyField>(m_music, "Text1");
    EXPECT_EQ(field.text(), "(none)");

    dialogs.Expect(m_environment.Path("gone.wav"));
    m_music.Presenter().LoadMusicFile();
    EXPECT_EQ(Messages().shown.back().icon, core::Icon::Exclamation);
    EXPECT_EQ(m_project->Undo->CurUndo_Title(), "");

    m_environment.disk.WriteTextFile(m_environment.Path("notes.wav"), "no sound");
    dialogs.Expect(m_environment.Path("notes.wav"));
    m_music.Presenter().LoadMusicFile();
    EXPECT_EQ(Messages().LastText(), "Invalid sound file: " + m_environment.Path("notes.wav"));
    EXPECT_EQ(m_project->Undo->CurUndo_Title(), "") << "there is nothing to undo";

    // What comes from a drive that may vanish is kept with the project.
    m_environment.files.driveKind = core::DriveKind::Removable;
    dialogs.Expect(file);
    m_music.Presenter().LoadMusicFile();
    ASSERT_EQ(Music(0).ChannelData->EventCount(), 1U);
    EXPECT_EQ(Music(0).ChannelData->InTimeOrder()[0]->EventOBJ->FilePath, "Band.wav");
    EXPECT_TRUE(m_environment.disk.FileExists(m_project->GetAudioPath() + "\\Band.wav"));
    EXPECT_EQ(field.text(), "Band");
    EXPECT_EQ(m_project->Undo->CurUndo_Title(), "Undo load music file");

    // A channel with music asks where; a cancel changes nothing.
    std::optional<double> place;
    m_music.Presenter().SetPlaceQuestion([&place](core::ClassID, const std::string&) { return place; });
    dialogs.Expect(file);
    m_music.Presenter().LoadMusicFile();
    EXPECT_EQ(Music(0).ChannelData->EventCount(), 1U);
    place = 5000;
    dialogs.Expect(file);
    m_music.Presenter().LoadMusicFile();
    ASSERT_EQ(Music(0).ChannelData->EventCount(), 2U);
    EXPECT_EQ(Music(0).ChannelData->Length(), 6000);
    EXPECT_EQ(UndoSteps(), 2);
    EXPECT_EQ(field.text(), "(none)");
}

TEST_F(StripTest, TheEffectsWindowIsAskedForByTheChannelShown)
{
    m_voice.Presenter().SetupFX();
    ASSERT_FALSE(m_environment.ports.views.calls.empty());
    EXPECT_NE(m_environment.ports.views.calls.back().find(Voice(0).Title), std::string::npos);
}

} // namespace
} // namespace velmora::controls
