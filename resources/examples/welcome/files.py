"""Writes takes as audio files, by ffmpeg where they are compressed, and reads them back."""

import math
import os
import subprocess
import tempfile
import wave

import numpy as np

from .synth import RATE, band

# What stands behind a name's ending: options of the encoder.
_OPTIONS = {
    ".wav": ["-c:a", "pcm_s16le"],
    ".flac": ["-c:a", "flac", "-compression_level", "12"],
    ".ogg": ["-c:a", "libvorbis"],
    ".mp3": ["-c:a", "libmp3lame"],
    ".wma": ["-c:a", "wmav2"],
}
_WMA_FRAME = 2048


def write_wav(path, samples, rate=RATE):
    with wave.open(path, "wb") as file:
        file.setnchannels(samples.shape[1])
        file.setsampwidth(2)
        file.setframerate(rate)
        file.writeframes(samples.astype("<i2").tobytes())


def resampled(sound, rate):
    """By its spectrum. ffmpeg's resampler dithers with the time of day, so its files would differ on each run."""
    if rate == RATE:
        return sound
    step = RATE // math.gcd(RATE, rate)
    padded = np.pad(sound, (0, -len(sound) % step + step))
    count = len(padded) * rate // RATE
    spectrum = np.fft.rfft(padded)
    bins = np.zeros(count // 2 + 1, dtype=complex)
    kept = min(len(bins), len(spectrum))
    bins[:kept] = spectrum[:kept]
    return np.fft.irfft(bins, count)[:round(len(sound) * rate / RATE)] * (rate / RATE)


def write(path, sides, level_db, rate=RATE, extra=()):
    """Brings the take's peak to `level_db` dBFS and writes it at `rate`. `extra` goes to the encoder."""
    samples = np.array([resampled(band(side, 22, 20000), rate) for side in sides]).T
    samples *= 10 ** (level_db / 20) / np.max(np.abs(samples))
    samples = np.round(samples * 32767)
    ending = os.path.splitext(path)[1]
    options = list(_OPTIONS[ending])
    if ending == ".wma":
        # The codec swallows its first frame and blurs its last; the tag tells a reader where the sound really is.
        options += ["-metadata", f"SourceSamples={len(samples):012d}"]
        silence = np.zeros((_WMA_FRAME, samples.shape[1]))
        fill = np.zeros((-len(samples) % _WMA_FRAME, samples.shape[1]))
        samples = np.concatenate([silence, samples, fill, silence])
    with tempfile.TemporaryDirectory() as folder:
        source = os.path.join(folder, "take.wav")
        write_wav(source, samples, rate)
        subprocess.run(["ffmpeg", "-y", "-loglevel", "error", "-i", source, "-map_metadata", "-1", *options, *extra,
                        "-fflags", "+bitexact", "-flags:a", "+bitexact", path], check=True)


def read(path):
    """A file as stereo at RATE, full scale 1; mono gives both sides."""
    probe = subprocess.run(["ffprobe", "-loglevel", "error", "-show_entries",
                            "stream=channels:format_tags=SourceSamples", "-of", "default=nw=1", path],
                           check=True, capture_output=True, text=True).stdout
    values = dict(line.split("=", 1) for line in probe.split())
    channels = int(values["channels"])
    raw = subprocess.run(["ffmpeg", "-loglevel", "error", "-i", path, "-f", "f32le", "-af",
                          "aresample=resampler=soxr", "-ar", str(RATE), "-"], check=True, capture_output=True).stdout
    sides = np.frombuffer(raw, "<f4").reshape(-1, channels).T.astype(float)
    if "TAG:SourceSamples" in values:
        sides = sides[:, :int(values["TAG:SourceSamples"])]
    return np.repeat(sides, 2, axis=0) if channels == 1 else sides
