"""Projects for tests and benchmarks: audio files from our own synthesis, and the `.audioproj` text that names them.

Times are in ms, samples are numpy int16 arrays of shape (frames, channels). Everything follows from the seeds given.
"""

import dataclasses
import os
import subprocess
import wave

import numpy as np

UNSET = -2147483648

# How the `ffmpeg` command writes each format that a project can hold.
ENCODERS = {
    "wav": ["-c:a", "pcm_s16le"],
    "flac": ["-c:a", "flac"],
    "mp3": ["-c:a", "libmp3lame", "-b:a", "192k"],
    "wma": ["-c:a", "wmav2", "-b:a", "128k"],
    "ogg": ["-c:a", "libvorbis", "-q:a", "6"],
    "opus": ["-c:a", "libopus", "-b:a", "160k"],
    # Without noise in place of bands: a decoder makes that up, each time anew.
    "m4a": ["-c:a", "aac", "-b:a", "192k", "-aac_pns", "0"],
}


# Audio

def synthesize(seed, seconds, rate, channels, peak=0.3):
    """Notes with overtones over soft noise, wide in stereo. Nothing repeats, so a shift of one frame shows. Nearly
    nothing sounds above a third of the rate, where resamplers may differ."""
    random = np.random.default_rng(seed)
    frames = int(round(seconds * rate))
    signal = np.zeros((frames, channels))
    time = np.arange(frames) / rate
    note = max(1, int(0.4 * rate))
    for voice in range(3):
        for start in range(0, frames, note):
            end = min(start + note, frames)
            local = time[: end - start]
            pitch = 55 * 2 ** (random.integers(0, 40) / 12)
            envelope = np.minimum(1, local * 200) * np.exp(-3 * local) * np.minimum(1, (note / rate - local) * 200)
            tone = sum(np.sin(2 * np.pi * pitch * k * local + random.uniform(0, 6)) / k for k in (1, 2, 3, 5))
            place = random.uniform(0.3, 1, channels)
            signal[start:end] += (envelope * tone)[:, None] * place
    spectrum = np.fft.rfft(random.standard_normal(signal.shape), axis=0)
    spectrum[int(len(spectrum) * 0.66) :] = 0
    signal += 0.05 * np.fft.irfft(spectrum, frames, axis=0)
    return np.rint(signal / np.abs(signal).max(initial=1e-9) * peak * 32767).astype(np.int16)


def write_wav(path, samples, rate):
    with wave.open(str(path), "wb") as file:
        file.setnchannels(samples.shape[1])
        file.setsampwidth(2)
        file.setframerate(rate)
        file.writeframes(samples.astype("<i2").tobytes())


def read_wav(path):
    """Samples and rate of a 16-bit WAV file."""
    with wave.open(str(path), "rb") as file:
        assert file.getsampwidth() == 2, path
        samples = np.frombuffer(file.readframes(file.getnframes()), "<i2")
        return samples.reshape(-1, file.getnchannels()), file.getframerate()


def write_audio(path, samples, rate):
    """Writes in the format of the ending; all but WAV through the `ffmpeg` command."""
    path = str(path)
    ending = path.rsplit(".", 1)[1]
    if ending == "wav":
        write_wav(path, samples, rate)
        return
    command = ["ffmpeg", "-v", "error", "-y", "-f", "s16le", "-ar", str(rate), "-ac", str(samples.shape[1]), "-i", "-",
               *ENCODERS[ending], "-map_metadata", "-1", "-fflags", "+bitexact", "-flags:a", "+bitexact", path]
    subprocess.run(command, input=samples.astype("<i2").tobytes(), check=True)


def decode(path):
    """Samples of any file through the `ffmpeg` command, at the file's own rate and channels."""
    channels = int(probe(path, "channels"))
    command = ["ffmpeg", "-v", "error", "-i", str(path), "-f", "s16le", "-c:a", "pcm_s16le", "-"]
    raw = subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout
    return np.frombuffer(raw, "<i2").reshape(-1, channels)


def probe(path, entry):
    """One property of the first audio stream, as text: "sample_rate", "channels", ..."""
    command = ["ffprobe", "-v", "error", "-select_streams", "a:0", "-show_entries", "stream=" + entry,
               "-of", "default=noprint_wrappers=1:nokey=1", str(path)]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout.strip()


# The project

@dataclasses.dataclass
class Clip:
    file: str  # a name in the audio folder, or an absolute path
    time: int  # start on the timeline
    start: int  # first ms of the file
    end: int  # ms of the file where the clip ends, exclusive
    gain: float = 1.0
    fade_in: int = UNSET  # ms after the clip's start where the fade-in ends
    fade_out: int = UNSET  # ms after the clip's start where the fade-out begins
    title: str = "clip"

    @property
    def length(self):
        return self.end - self.start

    def split(self, at):
        """The two clips that a split `at` ms after the clip's start leaves; fades stay on their sides."""
        fade_out = self.fade_out - at if self.fade_out >= 0 else UNSET
        first = dataclasses.replace(self, end=self.start + at, fade_out=UNSET)
        return [first, dataclasses.replace(self, time=self.time + at, start=self.start + at, fade_in=UNSET,
                                           fade_out=fade_out)]


@dataclasses.dataclass
class Effect:
    kind: str  # as in files, "Graphic EQ"
    values: dict = dataclasses.field(default_factory=dict)  # by element name; what is left out has its default
    enabled: bool = True


@dataclasses.dataclass
class Channel:
    clips: list
    music: bool = True
    title: str = "Music"
    volume: int = 100
    pan: int = 0
    mute: bool = False
    solo: bool = False
    gain: float = 0.0  # dB, 6 dB a factor of 2
    voice_removal: int = 0
    effects: list = dataclasses.field(default_factory=list)  # the first acts first
    pack: str = ""  # the text of a pack, in place of effects


@dataclasses.dataclass
class Project:
    channels: list
    marks: list = dataclasses.field(default_factory=lambda: [(0, "Start")])
    version: str = "1.0"

    @property
    def length(self):
        """ms from 0 to the end of the last clip."""
        return max((clip.time + clip.length for channel in self.channels for clip in channel.clips), default=0)

    def write(self, path):
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.write(self.text())

    def text(self):
        ids = iter(range(1, 1 << 31))
        project = Element("ProjectFile_Class")
        project.add("ID", float(next(ids)))
        project.add("Counter_MarkN", len(self.marks) + 1)
        music = [channel for channel in self.channels if channel.music]
        voice = [channel for channel in self.channels if not channel.music]
        project.add("chn_Music_ChannelCounter", len(music) + 1)
        project.add("chn_Voice_ChannelCounter", len(voice) + 1)
        project.nest("Marks", self._marks())
        project.nest("Recorder", Element("Recorder_Class").add("recordCounter", 1))
        project.nest("Metronome", self._metronome())
        for name, channels in (("Music", music), ("Voice", voice)):
            project.add(name + "ChannelArray_C", len(channels))
            for index, channel in enumerate(channels):
                project.nest(f'{name}Channel item="{index}"', _channel_element(channel, ids))
        file = Element("AudioProject").add("FileVersion", self.version).nest("Data", project)
        return '<?xml version="1.0" encoding="UTF-8"?>\r\n' + file.text()

    def _marks(self):
        marks = Element("MarkList_Class").add("TotalN", len(self.marks) - 1).add("IDCounter", len(self.marks))
        for index, (time, title) in enumerate(self.marks):
            marks.nest(f'List item="{index}"',
                       Element().add("ID", index).add("TimePos", float(time)).add("Title", title))
        return marks

    def _metronome(self):
        metronome = Element("Metronome_Class")
        metronome.add("wMetronome_Enabled", False).add("wMetronome_PlayerEnabled", False)
        metronome.add("wMetronome_RecorderEnabled", True).add("wMetronome_TimeMs", 750.0)
        return metronome.add("wMetronome_Volume", 100).add("wMetronome_FilePath", "")


def _channel_element(channel, ids):
    element = Element("Channel_Class").add("ID", float(next(ids))).add("Title", channel.title)
    element.add("FXPack_Name", "").add("Volume", channel.volume).add("Pan", channel.pan).add("Mute", channel.mute)
    element.add("Solo", channel.solo).add("Gain", float(channel.gain)).add("Voice_Removal", channel.voice_removal)
    element.add("Pitch", 0).add("LiveStatus", False).add("ChannelMode", 0 if channel.music else 1)
    if channel.pack:
        element.put("FX", channel.pack)
    else:
        element.nest("FX", chain_list(channel.effects, ids))
    return element.nest("Events", _events_element(channel.clips, float(next(ids))))


def chain_list(effects, ids):
    """One chain of effects, as channels and packs hold it."""
    chain = Element("FX_Chain_Class").add("ID", float(next(ids))).add("Pan", 0).add("Volume", 100)
    chain.add("TotalFx", len(effects))
    for index, effect in enumerate(effects):
        item = Element().add("Enabled", effect.enabled).add("ID", float(next(ids))).add("Priority", 10 * (index + 1))
        chain.nest(f'Fx item="{index}"', item.put("Data", effect_text(effect)))
    return Element("FX_ChainList").add("TotalN", 1).add("ID", float(next(ids))).nest('FxChain item="1"', chain)


def effect_text(effect):
    element = Element("Fx_Data_Class").add("FxType", effect.kind)
    for name, value in effect.values.items():
        whole = name in ("fWaveform", "fPhase") or isinstance(value, bool)
        element.add(name, value if whole else float(value))
    return element.text().replace("\r\n", "")


def _events_element(clips, class_id):
    last = max(10, (len(clips) + 9) // 10 * 10)  # tables have rows 0..10 and grow by 10
    events = Element("ChannelData_Class").add("ClassID", class_id).add("EventsA_Size", last)
    order = sorted(range(len(clips)), key=lambda row: clips[row].time)
    events.add("EventIDCounter", 10 + len(clips)).add("List_FirstItem", order[0] if order else -1)
    before = dict(zip(order[1:], order))
    after = dict(zip(order, order[1:]))
    for row, clip in enumerate(clips):
        wave_event = Element("Event_Wave_Class").add("FilePath", clip.file).add("GainFactor", float(clip.gain))
        wave_event.add("StartMS", clip.start).add("EndMS", clip.end).add("FadeIn_EndMS", clip.fade_in)
        wave_event.add("FadeOut_StartMS", clip.fade_out).add("Title", clip.title)
        record = Element().add("ID", 10 + row).add("EventType", 0).add("TimePos", float(clip.time))
        record.add("PrevItemI", before.get(row, -1)).add("NextItemI", after.get(row, -1))
        events.nest(f'EventData item="{row}"', record.nest("EventOBJData", wave_event))
    return events


class Element:
    """One object of the tag language: typed values and nested objects, with or without a tag around them."""

    def __init__(self, tag=""):
        self.tag = tag
        self.lines = []

    def add(self, name, value):
        if isinstance(value, bool):
            text = "bool: " + str(value)
        elif isinstance(value, int):
            text = f"int: {value}"
        elif isinstance(value, float):
            text = "float: " + (str(int(value)) if value.is_integer() and abs(value) < 1e15 else repr(value))
        else:
            text = "str: " + value
            for plain, escaped in (("&", "&amp;"), ("<", "&lt;"), (">", "&gt;"), ("'", "&apos;"), ('"', "&quot;")):
                text = text.replace(plain, escaped)
        return self._line(name, text)

    def nest(self, name, element):
        return self.put(name, element.text() + "\r\n")

    def put(self, name, text):
        return self._line(name, text)

    def text(self):
        body = "".join(line + "\r\n" for line in self.lines)
        return f"<{self.tag}>\r\n{body}</{self.tag}>\r\n" if self.tag else body

    def _line(self, name, value):
        self.lines.append(f"<{name}>{value}</{name.split()[0]}>")
        return self


def audio_folder(project_path):
    """The folder of a project's own audio; made when missing."""
    folder = os.path.splitext(str(project_path))[0] + " - Audio files"
    os.makedirs(folder, exist_ok=True)
    return folder
