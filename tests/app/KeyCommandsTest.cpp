#include "app/KeyCommands.h"

#include "app/KeyPressOfEvent.h"
#include "audio/AudioPlayer_Class.h"
#include "tests/app/AppFixture.h"

#include <QKeyEvent>

namespace velmora::app {
namespace {

constexpr KeyPress Key(char key)
{
    return {key};
}

constexpr KeyPress Shift(char key)
{
    return {key, false, true};
}

constexpr KeyPress Numpad(char key, bool shift = false)
{
    return {key, true, shift};
}

class KeyCommandsTest : public CommandsFixture {
protected:
    KeyCommandsTest()
    {
        Select(Voice(0), core::Msg_SelectVoiceChannel);
        Select(Music(0), core::Msg_SelectMusicChannel);
    }

    KeyCommands m_keys{m_commands};
};

KeyPress Event(int key, quint32 code, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    return KeyPressOfEvent(QKeyEvent(QEvent::KeyPress, key, modifiers, code, 0, 0), true);
}

TEST(KeyPressOfEvent, FindsTheKeysOnAnyLayout)
{
    // The P of a Latin layout is where it writes P; that of another script at P's place.
    EXPECT_EQ(Event(Qt::Key_P, 27).key, 'P');
    EXPECT_EQ(Event(0x417, 33).key, 'P') << "Cyrillic";
    EXPECT_EQ(Event(0x422, 57).key, 'N');
    EXPECT_EQ(Event(0x0e37, 57).key, 'N') << "Thai, a sign above the letter";
    EXPECT_TRUE(Event(0x41a, 27, Qt::ControlModifier).otherScript);
    EXPECT_EQ(Event(0x424, 48).key, 0) << "beside the letters";
    // Where Latin layouts write something else, the letter lies elsewhere.
    EXPECT_EQ(Event(Qt::Key_Comma, 58).key, 0);
    EXPECT_EQ(Event(0xd6, 33).key, 0);
    EXPECT_EQ(Event(Qt::Key_Ampersand, 10).key, '1') << "French";
    EXPECT_EQ(Event(Qt::Key_Exclam, 10, Qt::ShiftModifier).key, '1');
    const KeyPress zero = Event(Qt::Key_Insert, 90, Qt::KeypadModifier | Qt::ShiftModifier);
    EXPECT_TRUE(zero.key == '0' && zero.numpad && zero.shift);
    EXPECT_EQ(Event(Qt::Key_End, 87, Qt::KeypadModifier).key, 0);
    EXPECT_EQ(Event(Qt::Key_F1, 67).key, 0);
}

TEST_F(KeyCommandsTest, DriveTheTransport)
{
    WriteSound("a.wav");
    m_commands.AddFiles({Path("a.wav")}, core::kUnsetFloat);
    EXPECT_TRUE(m_keys.Press(Key('P')));
    EXPECT_TRUE(Project().Player->isPlaying());
    // A held key does not stop and start in turn.
    m_keys.Press({'P', false, false, false, false, true});
    EXPECT_TRUE(Project().Player->isPlaying());
    EXPECT_FALSE(m_keys.Press(Shift('P')));
    EXPECT_FALSE(m_keys.Press({'P', false, false, true}));
    EXPECT_TRUE(Project().Player->isPlaying());
    m_keys.Press(Key('P'));
    EXPECT_FALSE(Project().Player->isPlaying());

    m_keys.Press(Key('N'));
    EXPECT_EQ(Project().Player_LTimePos(), 5000);
    m_keys.Press(Key('N'));
    m_keys.Press(Key('B'));
    EXPECT_EQ(Project().Player_LTimePos(), 5000);
    m_keys.Press(Key('W'));
    EXPECT_EQ(Project().Player_LTimePos(), 0);
}

TEST_F(KeyCommandsTest, ChangeTheSelectedChannelsStrips)
{
    m_keys.Press(Numpad('+'));
    m_keys.Press(Numpad('+'));
    EXPECT_EQ(Voice(0).Volume, 100);
    m_keys.Press(Numpad('-', true));
    EXPECT_EQ(Music(0).Volume, 70);
    m_keys.Press(Numpad('/'));
    EXPECT_EQ(Voice(0).Pan, -10);
    m_keys.Press(Key('C'));
    EXPECT_EQ(Voice(0).Pan, 0);
    m_keys.Press(Key('M'));
    m_keys.Press(Shift('S'));
    EXPECT_TRUE(Voice(0).Mute && Music(0).Solo && !Voice(0).Solo && !Music(0).Mute);
    m_keys.Press(Key('L'));
    // The signs of the upper row are no keys of the strips, nor is anything with Ctrl or Alt.
    EXPECT_FALSE(m_keys.Press(Key('+')));
    EXPECT_FALSE(m_keys.Press({'M', false, false, true}));
    EXPECT_FALSE(m_keys.Press({'M', false, false, false, true}));
    EXPECT_TRUE(Voice(0).Mute);
}

TEST_F(KeyCommandsTest, VolumeStopsAtItsEndsButIsStillSent)
{
    int sent = 0;
    const auto listener = std::make_shared<core::MsgHandlerClass>(
        m_environment->ids, [&sent](std::int32_t, std::int32_t msgID, core::MsgParametersClass&) {
            sent += msgID == core::Msg_Channel_SetVolume ? 1 : 0;
        });
    Project().MsgSender->Add_MsgHandlerOBJ(15, listener);
    for (int i = 0; i < 4; ++i) {
        m_keys.Press(Numpad('+'));
    }
    EXPECT_EQ(Voice(0).Volume, 100);
    EXPECT_EQ(sent, 4);
    // All of it is one step; another channel begins another.
    m_keys.Press(Numpad('+', true));
    m_commands.Undo();
    EXPECT_EQ(Voice(0).Volume, 100);
    m_commands.Undo();
    EXPECT_EQ(Voice(0).Volume, 80);
    EXPECT_EQ(Project().Undo->CurUndo_Title(), "");
}

TEST_F(KeyCommandsTest, DigitsSelectChannels)
{
    m_keys.Press(Key('3'));
    EXPECT_EQ(Project().Selected_VoiceChannel(), Voice(2).ClassID());
    EXPECT_FALSE(m_keys.Press(Numpad('1'))) << "the other digits of the numpad are no keys";
    m_keys.Press(Key('9'));
    EXPECT_EQ(Project().Selected_VoiceChannel(), Voice(2).ClassID()) << "there is no ninth channel";
    for (int i = 0; i < 6; ++i) {
        m_commands.AddVoiceChannel();
    }
    m_keys.Press(Numpad('0'));
    EXPECT_EQ(Project().Selected_VoiceChannel(), Voice(9).ClassID());
    m_commands.AddMusicChannel();
    m_keys.Press(Shift('2'));
    EXPECT_EQ(Project().Selected_MusicChannel(), Music(1).ClassID());
    m_commands.DeleteChannel(Music(1).ClassID());
    EXPECT_TRUE(m_keys.Press(Shift('M'))) << "without a channel the key does nothing";
}

} // namespace
} // namespace velmora::app
