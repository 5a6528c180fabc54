"""The same mix as command lines of other programs, each in the fastest form that we found for it."""

import functools
import math
import os

import velmora_project

probe = functools.lru_cache(maxsize=None)(velmora_project.probe)

RATE = 44100


def ffmpeg_command(project, folder, out):
    """One seeking input per clip; each channel is one chain of clips and gaps, so that nothing is summed but the ten
    channels. Each clip is cut to its frames, or what a seek misses would shift all that follows."""
    command = ["ffmpeg", "-v", "error", "-nostdin", "-y"]
    graph = []
    names = []
    source = 0
    for number, channel in enumerate(project.channels):
        parts = []
        position = 0
        for clip in sorted(channel.clips, key=lambda one: one.time):
            path = os.path.join(folder, clip.file)
            command += ["-ss", f"{clip.start / 1000:.3f}", "-t", f"{clip.length / 1000:.3f}", "-i", path]
            first, end = clip.time * RATE // 1000, (clip.time + clip.length) * RATE // 1000
            mono = probe(path, "channels") == "1"
            steps = [f"aresample={RATE}", "pan=stereo|c0=c0|c1=c0" if mono else "aformat=sample_fmts=fltp"]
            if clip.gain != 1:
                steps.append(f"volume={clip.gain}")
            if clip.fade_in > 0:
                steps.append(f"afade=t=in:d={clip.fade_in / 1000}")
            if clip.fade_out > 0:
                steps.append(f"afade=t=out:st={clip.fade_out / 1000}:d={(clip.length - clip.fade_out) / 1000}")
            steps.append(f"apad=whole_len={end - first},atrim=end_sample={end - first}")
            if first > position:
                steps.append(f"adelay={first - position}S:all=1")
            graph.append(f"[{source}:a]{','.join(steps)}[c{source}]")
            parts.append(f"[c{source}]")
            position = end
            source += 1
        left, right = pan_factors(channel)
        graph.append(f"{''.join(parts)}concat=n={len(parts)}:v=0:a=1,"
                     f"pan=stereo|c0={left:.6f}*c0|c1={right:.6f}*c1[m{number}]")
        names.append(f"[m{number}]")
    graph.append(f"{''.join(names)}amix=inputs={len(names)}:normalize=0:duration=longest[out]")
    return command + ["-filter_complex", ";".join(graph), "-map", "[out]", "-c:a", "pcm_s16le", out]


def pan_factors(channel):
    """What the channel's volume and balance make of the left and of the right side."""
    volume = channel.volume / 100 * 2 ** (channel.gain / 6)
    pan = channel.pan / 100
    return volume * (1 - max(pan, 0)), volume * (1 + min(pan, 0))


def ecasound_files(folder, into):
    """The files as ecasound reads them, which takes no WMA: those as WAV. The conversion of all of them as a shell
    command."""
    os.makedirs(into, exist_ok=True)
    convert = "set -e"
    for name in sorted(os.listdir(folder)):
        path = os.path.join(folder, name)
        if name.endswith(".wma"):
            convert += f"; ffmpeg -v error -nostdin -y -i '{path}' '{os.path.join(into, name)}.wav'"
        elif name.endswith((".wav", ".mp3")) and not os.path.exists(os.path.join(into, name)):
            os.link(path, os.path.join(into, name))
    return ["sh", "-c", convert]


def ecasound_command(project, folder, out, resampler="resample", buffer=1024, reverb="tap"):
    """One chain per clip, which carries all factors of its clip and, where that has no effects, of its channel
    multiplied beforehand. The clips of a channel with effects meet in a loop, which a chain of plugins reads."""
    command = ["ecasound", "-q", "-D", f"-b:{buffer}", "-z:nodb", "-z:mixmode,sum", f"-f:s16_le,2,{RATE}"]
    chains = []
    outputs = []
    for number, channel in enumerate(project.channels):
        left, right = (1, 1) if channel.effects else pan_factors(channel)
        into = []
        for clip in channel.clips:
            name = clip.file + ".wav" if clip.file.endswith(".wma") else clip.file
            path = os.path.join(folder, name)
            rate, channels = int(probe(path, "sample_rate")), int(probe(path, "channels"))
            # Its own MP3 object runs an external program and seeks by guess; the type of another ending makes it
            # read through libsndfile.
            source = f"typeselect,.flac,{path}" if name.endswith(".mp3") else path
            if rate != RATE:
                source = f"{resampler},auto,{source}"
            source = f"playat,{clip.time / 1000},select,{clip.start / 1000},{clip.length / 1000},{source}"
            chain = f"c{len(chains)}"
            chains.append(chain)
            into.append(chain)
            command += [f"-a:{chain}", f"-i:{source}"]
            if channels == 1:
                command.append("-chcopy:1,2")
            faded = [(f"{100 * clip.gain * left}", "1"), (f"{100 * clip.gain * right}", "2")]
            command += [f"-eac:{factor},{side}" for factor, side in faded]
            start, end = clip.time / 1000, (clip.time + clip.length) / 1000
            if clip.fade_in > 0:
                command += ["-ea:100", f"-kl2:1,0,100,{start},{clip.fade_in / 1000}"]
            if clip.fade_out > 0:
                command += ["-ea:100",
                            f"-kl2:1,100,0,{start + clip.fade_out / 1000},{(clip.length - clip.fade_out) / 1000}"]
        if channel.effects:
            loop = f"loop,{number + 1}"
            command += [f"-a:{','.join(into)}", f"-o:{loop}", f"-a:m{number}", f"-i:{loop}"]
            command += [plugin for effect in channel.effects for plugin in PLUGINS[effect.kind](effect.values, reverb)]
            command += [f"-eac:{100 * factor},{side}" for side, factor in enumerate(pan_factors(channel), 1)]
            outputs.append(f"m{number}")
        else:
            outputs += into
    return command + [f"-a:{','.join(outputs)}", f"-o:{out}"]


def equalizer(values, _reverb):
    """Seven bands of the same centres and widths, and the eighth that the plugin has, flat."""
    gains = [values[f"freq{i + 1}"] for i in range(len(BANDS))] + [0]
    centres = [centre for centre, _ in BANDS] + [18000]
    widths = [semitones / 12 for _, semitones in BANDS] + [1]
    return ["-el:tap_equalizer_bw," + ",".join(f"{value:g}" for value in gains + centres + widths)]


def compressor(values, _reverb):
    return [f"-el:sc4,0,{values['fAttack']},{values['fRelease']},{values['fThreshold']},{values['fRatio']},1,"
            f"{values['fGain']}"]


def reverberation(values, reverb):
    """Of two plugins: one of many combs and allpasses, and a cheap one, a plate."""
    if reverb == "tap":
        return [f"-el:tap_reverb,{values['fReverbTime']},0,{values['fReverbMix']},1,1,1,1,0"]
    return ["-el:PlateX2,0.75,0.5,0.25,0.25"]


def echo(values, _reverb):
    return [f"-el:tap_stereo_echo,{values['fLeftDelay']},{values['fFeedback']},{values['fRightDelay']},"
            f"{values['fFeedback']},{20 * math.log10(values['fWetDryMix'] / 100):.2f},0,0,0,0,0"]


# Centre in Hz and width in semitones, as the program's graphic equalizer has them.
BANDS = [(80, 6), (200, 12), (600, 12), (2000, 13), (4600, 9), (8200, 6), (16000, 9)]
PLUGINS = {"Graphic EQ": equalizer, "Compressor": compressor, "Reverb": reverberation, "Echo": echo}
