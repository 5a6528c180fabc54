"""The text of a project file, written as the program writes it: CR LF, typed values, nested texts indented."""

UNSET = -2147483648


def _number(value):
    """The shortest decimal that reads back as the same 64-bit float, without an exponent."""
    text = repr(float(value))
    return text[:-2] if text.endswith(".0") else text


class Writer:
    """Elements in order; `indent` blanks before each."""

    def __init__(self, master=None):
        self._master = master
        self._indent = 2 if master else 0
        self._body = ""

    def _element(self, name, value):
        self._body += f"{' ' * self._indent}<{name}>{value}</{name.split(' ')[0]}>\r\n"

    def text(self, name, value):
        for plain, escaped in (("&", "&amp;"), ("<", "&lt;"), (">", "&gt;"), ("'", "&apos;"), ('"', "&quot;")):
            value = value.replace(plain, escaped)
        self._element(name, "str: " + value)

    def int(self, name, value):
        self._element(name, f"int: {value}")

    def float(self, name, value):
        self._element(name, "float: " + _number(value))

    def bool(self, name, value):
        self._element(name, "bool: " + ("True" if value else "False"))

    def raw(self, name, nested):
        margin = " " * (2 * self._indent)
        self._element(name, (nested + "\r\n").replace("\r\n", "\r\n" + margin))

    def string(self):
        return self._body if self._master is None else f"<{self._master}>\r\n{self._body}</{self._master}>\r\n"


class Clip:
    """A stretch of a file on the time line; times in ms, fades counted from the clip's start."""

    def __init__(self, at, file, start, end, fade_in=UNSET, fade_out=UNSET, gain=1.0, title=None):
        self.at, self.file, self.start, self.end = at, file, start, end
        self.fade_in, self.fade_out, self.gain = fade_in, fade_out, gain
        self.title = title or file

    def string(self):
        w = Writer("Event_Wave_Class")
        w.text("FilePath", self.file)
        w.float("GainFactor", self.gain)
        w.int("StartMS", self.start)
        w.int("EndMS", self.end)
        w.int("FadeIn_EndMS", self.fade_in)
        w.int("FadeOut_StartMS", self.fade_out)
        w.text("Title", self.title)
        return w.string()


class Channel:
    """A strip with its clips. `voice` tells a voice channel from a music channel; `gain` is in dB."""

    def __init__(self, title, voice, clips, volume=80, pan=0, gain=0.0, mute=False):
        self.title, self.voice, self.clips = title, voice, clips
        self.volume, self.pan, self.gain, self.mute = volume, pan, gain, mute

    def string(self, first_id):
        """Takes the ids `first_id` to `first_id` + 3: channel, clips, effects and their one chain."""
        w = Writer("Channel_Class")
        w.float("ID", first_id)
        w.text("Title", self.title)
        w.text("FXPack_Name", "")
        w.int("Volume", self.volume)
        w.int("Pan", self.pan)
        w.bool("Mute", self.mute)
        w.bool("Solo", False)
        w.float("Gain", self.gain)
        w.int("Voice_Removal", 0)
        w.int("Pitch", 0)
        w.bool("LiveStatus", False)
        w.int("ChannelMode", 1 if self.voice else 0)
        w.raw("FX", self._effects(first_id + 2, first_id + 3))
        w.raw("Events", self._events(first_id + 1))
        return w.string()

    @staticmethod
    def _effects(container_id, chain_id):
        chain = Writer("FX_Chain_Class")
        chain.float("ID", chain_id)
        chain.int("Pan", 0)
        chain.int("Volume", 100)
        chain.int("TotalFx", 0)
        w = Writer("FX_ChainList")
        w.int("TotalN", 1)
        w.float("ID", container_id)
        w.raw('FxChain item="1"', chain.string())
        return w.string()

    def _events(self, list_id):
        rows = sorted(self.clips, key=lambda clip: clip.at)
        w = Writer("ChannelData_Class")
        w.float("ClassID", list_id)
        # A table has rows 0 to 10 and grows by 10; ids count from 10.
        last_row = 10
        while last_row < len(rows) - 1:
            last_row += 10
        w.int("EventsA_Size", last_row)
        w.int("EventIDCounter", 10 + len(rows))
        w.int("List_FirstItem", 0 if rows else -1)
        for i, clip in enumerate(rows):
            row = Writer()
            row.int("ID", 10 + i)
            row.int("EventType", 0)
            row.float("TimePos", clip.at)
            row.int("PrevItemI", i - 1)
            row.int("NextItemI", i + 1 if i + 1 < len(rows) else -1)
            row.raw("EventOBJData", clip.string())
            w.raw(f'EventData item="{i}"', row.string())
        return w.string()


def _marks(marks):
    w = Writer("MarkList_Class")
    w.int("TotalN", len(marks) - 1)
    w.int("IDCounter", len(marks))
    for i, (at, title) in enumerate(marks):
        row = Writer()
        row.int("ID", i)
        row.float("TimePos", at)
        row.text("Title", title)
        w.raw(f'List item="{i}"', row.string())
    return w.string()


def _metronome(beat_ms):
    w = Writer("Metronome_Class")
    w.bool("wMetronome_Enabled", False)
    w.bool("wMetronome_PlayerEnabled", False)
    w.bool("wMetronome_RecorderEnabled", True)
    w.float("wMetronome_TimeMs", beat_ms)
    w.int("wMetronome_Volume", 100)
    w.text("wMetronome_FilePath", "sounds\\hihat.wav")
    return w.string()


def project_text(channels, marks, beat_ms):
    """The whole file. Marks are (ms, title); music channels come before voice channels."""
    recorder = Writer("Recorder_Class")
    recorder.int("recordCounter", 1)
    w = Writer("ProjectFile_Class")
    w.float("ID", 0)
    w.int("Counter_MarkN", len(marks) + 1)
    for kind, voice in (("Music", False), ("Voice", True)):
        w.int(f"chn_{kind}_ChannelCounter", 1 + sum(channel.voice == voice for channel in channels))
    w.raw("Marks", _marks(marks))
    w.raw("Recorder", recorder.string())
    w.raw("Metronome", _metronome(beat_ms))
    next_id = 100
    for kind, voice in (("Music", False), ("Voice", True)):
        own = [channel for channel in channels if channel.voice == voice]
        w.int(f"{kind}ChannelArray_C", len(own))
        for i, channel in enumerate(own):
            w.raw(f'{kind}Channel item="{i}"', channel.string(next_id))
            next_id += 10
    file = Writer("AudioProject")
    file.text("FileVersion", "1.0")
    file.raw("Data", w.string())
    return '<?xml version="1.0" encoding="UTF-8"?>\r\n' + file.string()
