#include "audio/MasterVolume_Class.h"
#include "effects/FX_ChainContainer_Class.h"
#include "effects/FX_Module.h"
#include "project/LoadContext.h"
#include "soundlayer/soundlayer.h"
#include "tests/project/ProjectFixture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace velmora::project {
namespace {

/// The same sample on both sides, for ever.
uint32_t Constant(HSTREAM /*stream*/, void* buffer, uint32_t length, SOUND_USER value)
{
    const std::size_t samples = length / sizeof(std::int16_t);
    std::fill_n(static_cast<std::int16_t*>(buffer), samples, static_cast<std::int16_t>(value));
    return length;
}

class Channel : public ProjectTest {
protected:
    Channel() { StartNew(); }

    /// Volume of a channel's output in percent, as the mixer has it.
    static int Heard(const Channel_Class& channel)
    {
        float volume = -1;
        BASS_ChannelGetAttribute(channel.BassOutMix_Handle, BASS_ATTRIB_VOL, &volume);
        return static_cast<int>(std::lround(volume * 100));
    }

    static int PanOf(const Channel_Class& channel)
    {
        float pan = -2;
        BASS_ChannelGetAttribute(channel.BassOutMix_Handle, BASS_ATTRIB_PAN, &pan);
        return static_cast<int>(std::lround(pan * 100));
    }

    /// Both sides of the master mix once all glides have ended.
    std::array<int, 2> Pull() const
    {
        const HSTREAM master = m_project->MasterVolume->BassMixStreamHandle();
        std::vector<std::int16_t> block(2 * 4410);
        BASS_ChannelGetData(master, block.data(), static_cast<uint32_t>(block.size() * sizeof(std::int16_t)));
        return {block[block.size() - 2], block[block.size() - 1]};
    }

    std::string TextOf(const std::string& fields)
    {
        return "<Channel_Class>" + fields + "<FX>" + Voice(0).FX->GetXMLData() + "</FX><Events>" +
               Voice(0).ChannelData->GetXMLData() + "</Events></Channel_Class>";
    }
};

TEST_F(Channel, MuteAndSoloDecideWhoIsHeard)
{
    const std::vector<Channel_Class*> all{&Music(0), &Voice(0), &Voice(1), &Voice(2), &Voice(3)};
    const auto heard = [&] {
        std::vector<int> volumes;
        for (const Channel_Class* channel : all) {
            volumes.push_back(Heard(*channel));
        }
        return volumes;
    };
    EXPECT_EQ(heard(), (std::vector<int>{80, 80, 80, 80, 80}));
    SendToChannel(core::Msg_Channel_SetVolume, Voice(1).ClassID(), 40);
    SendToChannel(core::Msg_Channel_SetSolo, Voice(1).ClassID(), core::kTrue);
    EXPECT_EQ(heard(), (std::vector<int>{0, 0, 40, 0, 0}));
    SendToChannel(core::Msg_Channel_SetSolo, Music(0).ClassID(), core::kTrue);
    SendToChannel(core::Msg_Channel_SetMute, Voice(1).ClassID(), core::kTrue);
    SendToChannel(core::Msg_Channel_SetVolume, Voice(1).ClassID(), 60);
    EXPECT_EQ(heard(), (std::vector<int>{80, 0, 0, 0, 0}));
    // Whoever was soloed goes: all others come back.
    core::MsgParametersClass gone;
    gone.ChannelID = Music(0).ClassID();
    SendToChannel(core::Msg_Channel_SetSolo, Voice(1).ClassID(), core::kFalse);
    SendToChannel(core::Msg_Channel_SetMute, Voice(1).ClassID(), core::kFalse);
    Send(core::Msg_DeleteChannel, gone);
    EXPECT_EQ(Heard(Voice(1)), 60);
    EXPECT_EQ(Heard(Voice(3)), 80);
}

TEST_F(Channel, GainVolumeAndPanReachTheMasterMix)
{
    // The master leaves the device, so that it can be pulled here.
    BASS_ChannelStop(m_project->MasterVolume->RealMixHandle());
    BASS_Mixer_ChannelRemove(m_project->MasterVolume->BassMixStreamHandle());
    const HSTREAM source = BASS_StreamCreate(44100, 2, BASS_STREAM_DECODE, Constant, 1000);
    ASSERT_NE(BASS_Mixer_StreamAddChannel(Voice(0).BassInMix_Handle, source, 0), 0);

    const core::ClassID id = Voice(0).ClassID();
    SendToChannel(core::Msg_Channel_SetVolume, id, 100);
    Pull();
    EXPECT_EQ(Pull(), (std::array{1000, 1000}));
    SendToChannel(core::Msg_Channel_SetGain, id, 6);
    Pull();
    EXPECT_EQ(Pull(), (std::array{2000, 2000}));
    SendToChannel(core::Msg_Channel_SetPan, id, 50);
    SendToChannel(core::Msg_Channel_SetVolume, id, 50);
    Pull();
    EXPECT_EQ(Pull(), (std::array{500, 1000}));
    // Equal sides are what voice removal takes away; 0 dB leaves no gain behind.
    SendToChannel(core::Msg_Channel_SetGain, id, 0);
    SendToChannel(core::Msg_Channel_SetPan, id, 0);
    SendToChannel(core::Msg_Channel_SetVolume, id, 100);
    Pull();
    EXPECT_EQ(Pull(), (std::array{1000, 1000}));
    SendToChannel(core::Msg_Channel_SetVoiceRemoval, id, 100);
    Pull();
    EXPECT_EQ(Pull(), (std::array{0, 0}));
    SendToChannel(core::Msg_Channel_SetVoiceRemoval, id, 0);
    Pull();
    EXPECT_EQ(Pull(), (std::array{1000, 1000}));
    BASS_StreamFree(source);
}

TEST_F(Channel, RefreshAndUndoBringFieldsToTheSound)
{
    Channel_Class& channel = Voice(2);
    channel.Volume = 33;
    channel.Pan = -20;
    Send(core::Msg_Refresh);
    EXPECT_EQ(Heard(channel), 33);
    EXPECT_EQ(PanOf(channel), -20);

    channel.Pan = 44;
    core::MsgParametersClass restored;
    restored.ChannelID = Voice(1).ClassID();
    restored.UndoDataType = 1;
    Send(core::Msg_UndoRestored, restored);
    EXPECT_EQ(PanOf(channel), -20);
    restored.ChannelID = -1;
    restored.UndoDataType = 4;
    Send(core::Msg_UndoRestored, restored);
    EXPECT_EQ(PanOf(channel), 44);
}

TEST_F(Channel, ReadingHasDefaultsOfItsOwnAndLimits)
{
    LoadContext load(m_environment->ids);
    Channel_Class channel(*m_project);
    ASSERT_TRUE(channel.LoadXMLData(TextOf("<ID>float: 500</ID><ChannelMode>int: 0</ChannelMode>"), false, true, load));
    EXPECT_EQ(channel.ClassID(), 500);
    EXPECT_EQ(channel.ChannelMode(), Channel_Class::kMusic);
    EXPECT_EQ(channel.Volume, 100);
    EXPECT_EQ(channel.Gain, 1);
    EXPECT_EQ(channel.Title, "");
    // The id stands twice now.
    ASSERT_TRUE(channel.LoadXMLData(TextOf("<ID>float: 500</ID><ChannelMode>int: 1</ChannelMode>"
                                           "<Volume>int: 2147483647</Volume><Pan>int: -2147483648</Pan>"
                                           "<Gain>float: 1e308</Gain><Voice_Removal>int: -9</Voice_Removal>"),
                                    false, true, load));
    EXPECT_GT(channel.ClassID(), 500);
    Send(core::Msg_Refresh);
    EXPECT_EQ(Heard(channel), 100);
    EXPECT_EQ(PanOf(channel), -100);

    for (const char* fields : {"<ID>float: -1</ID><ChannelMode>int: 1</ChannelMode>", "<ID>float: 9</ID>",
                               "<ID>float: 9</ID><ChannelMode>int: 2</ChannelMode>"}) {
        EXPECT_FALSE(channel.LoadXMLData(TextOf(fields), false, true, load)) << fields;
    }
    for (const char* text : {"<Channel_Class><ID>float: 9</ID><ChannelMode>int: 1</ChannelMode></Channel_Class>",
                             "<Channel_Class><ChannelMode>int: 1</ChannelMode></Channel_Class>"}) {
        EXPECT_FALSE(channel.LoadXMLData(text, false, true, load)) << text;
    }
}

TEST_F(Channel, PacksAreWrittenAndTakenWholeOrNotAtAll)
{
    core::MsgParametersClass add;
    add.ChannelID = Voice(0).ClassID();
    add.FXChannelID = Voice(0).FX->Get_FXChainObj_by_Index(1)->ClassID();
    add.FXPriority = 10;
    add.FXEnabled = true;
    add.FXDataOBJ = std::make_shared<effects::FX_Data_Class>(Messages());
    ASSERT_TRUE(add.FXDataOBJ->LoadXMLData(effects::FX_GetDefaultXML(5)));
    Send(core::Msg_FX_Add, add);
    EXPECT_EQ(Voice(0).FXPack_Name, "(Custom)");

    core::MsgParametersClass pack;
    pack.ChannelID = add.ChannelID;
    pack.FXPackFile = m_environment.Path("presets\\Big hall.v2.pack");
    Send(core::Msg_FXPack_Save, pack);
    EXPECT_EQ(Voice(0).FXPack_Name, "Big hall.v2");
    pack.ChannelID = Voice(1).ClassID();
    EXPECT_FALSE(Send(core::Msg_FXPack_Load, pack).CancelDelivery);
    EXPECT_EQ(Voice(1).FXPack_Name, "Big hall.v2");
    EXPECT_EQ(Voice(1).FX->Get_FXChainObj_by_Index(1)->FX_TotalN(), 0);

    const std::string before = Voice(1).FX->GetXMLData();
    pack.FXPackFile = m_environment.Path("presets\\bad.pack");
    const auto load = [&](const std::string& content) {
        m_environment.disk.WriteTextFile(pack.FXPackFile, content);
        Messages().shown.clear();
        const bool cancelled = Send(core::Msg_FXPack_Load, pack).CancelDelivery;
        EXPECT_EQ(Messages().shown.size(), 1u);
        EXPECT_EQ(cancelled, Messages().LastText() == "FXPack: Error loading file");
        return Messages().LastText();
    };
    for (const std::string& content :
         {std::string("<FX_ChainList></FX_ChainList>"), before.substr(0, before.size() - 40),
          effects::FX_GetDefaultXML(7), m_project->GetXMLData(), std::string(3000, '\0'), std::string("\xFF\xFE <")}) {
        EXPECT_EQ(load(content), "FXPack: Error loading XML data");
    }
    EXPECT_EQ(load(""), "FXPack: Error loading file");
    EXPECT_EQ(load(before + std::string(std::size_t{17} << 20, ' ')), "FXPack: Error loading file");
    for (const char* name : {"presets\\none.pack", "presets", "presets\\bad.pack\\file.pack"}) {
        pack.FXPackFile = m_environment.Path(name);
        EXPECT_TRUE(Send(core::Msg_FXPack_Load, pack).CancelDelivery) << name;
        EXPECT_EQ(Messages().LastText(), "FXPack: Error loading file");
    }
    m_environment.files.FillDisk();
    EXPECT_TRUE(Send(core::Msg_FXPack_Save, pack).CancelDelivery);
    EXPECT_EQ(Messages().LastText(), "FXPack: Error saving file");
    EXPECT_EQ(Voice(1).FX->GetXMLData(), before);
    EXPECT_EQ(Voice(1).FXPack_Name, "Big hall.v2");
}

} // namespace
} // namespace velmora::project
