#include "tests/soundlayer/TestAudio.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <numbers>
#include <random>
#include <stdexcept>

#include <gtest/gtest.h>

namespace velmora::soundlayer::testing {

Samples Music(std::uint32_t rate, std::uint32_t channels, std::size_t frames)
{
    Samples samples(frames * channels);
    std::minstd_rand random(1);
    for (std::size_t n = 0; n < frames; ++n) {
        const double t = static_cast<double>(n) / rate;
        const double noise =
            0.15 * std::exp(-6 * std::fmod(t, 0.37)) * (static_cast<double>(random()) / std::minstd_rand::max() - 0.5);
        for (std::uint32_t channel = 0; channel < channels; ++channel) {
            // A tone that climbs all the time has no period to be mistaken in.
            const double base = (180.0 + 70 * channel + 25 * t) * 2 * std::numbers::pi * t;
            const double chord = std::sin(base) + 0.5 * std::sin(2.51 * base + 1) + 0.25 * std::sin(7.3 * base);
            samples[n * channels + channel] =
                static_cast<std::int16_t>(std::lrint(32767 * (0.3 * chord * (0.6 + 0.4 * std::sin(5 * t)) + noise)));
        }
    }
    return samples;
}

void WriteFile(const std::filesystem::path& path, std::string_view bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string ReadFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Little(std::uint64_t value, std::size_t bytes)
{
    std::string text;
    for (std::size_t i = 0; i < bytes; ++i) {
        text += static_cast<char>(value >> (8 * i) & 0xFF);
    }
    return text;
}

std::string Chunk(std::string_view tag, std::string_view body)
{
    std::string chunk = std::string(tag) + Little(body.size(), 4) + std::string(body);
    return body.size() % 2 == 0 ? chunk : chunk + '\0';
}

std::string WavFormat(std::uint32_t tag, std::uint32_t channels, std::uint32_t rate, std::uint32_t bits)
{
    const std::uint32_t block = channels * ((bits + 7) / 8);
    return Little(tag, 2) + Little(channels, 2) + Little(rate, 4) + Little(std::uint64_t{rate} * block, 4) +
           Little(block, 2) + Little(bits, 2);
}

std::string Bytes(const Samples& samples)
{
    return {reinterpret_cast<const char*>(samples.data()), samples.size() * sizeof(samples[0])};
}

std::string Wav(const Samples& samples, std::uint32_t rate, std::uint32_t channels)
{
    return Chunk("RIFF", "WAVE" + Chunk("fmt ", WavFormat(1, channels, rate, 16)) + Chunk("data", Bytes(samples)));
}

void Encode(const std::filesystem::path& from, const std::string& options, const std::filesystem::path& to)
{
    const std::string command = "ffmpeg -nostdin -loglevel error -y -bitexact -i '" + from.native() + "' " + options +
                                " -flags:a +bitexact '" + to.native() + "'";
    if (std::system(command.c_str()) != 0) {
        throw std::runtime_error("failed: " + command);
    }
}

std::unique_ptr<AudioFile> OpenOrThrow(const std::filesystem::path& path)
{
    OpenResult result = OpenResult::Ok;
    auto file = AudioFile::Open(path.native(), result);
    if (!file) {
        throw std::runtime_error("does not open: " + path.native());
    }
    EXPECT_EQ(result, OpenResult::Ok);
    return file;
}

Samples ReadAll(AudioFile& file)
{
    file.Seek(0);
    Samples all;
    Samples piece(3 * 1009 * file.Channels());
    for (std::size_t frames = 1;; frames = frames * 7 % 3001 + 1) {
        const std::size_t got = file.Read(std::span(piece).first(frames * file.Channels()));
        all.insert(all.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(got * file.Channels()));
        if (got < frames) {
            return all;
        }
    }
}

Samples ReadAll(const std::filesystem::path& path)
{
    return ReadAll(*OpenOrThrow(path));
}

Samples ReadAt(AudioFile& file, std::int64_t frame, std::size_t frames)
{
    Samples piece(frames * file.Channels());
    file.Seek(frame);
    piece.resize(file.Read(piece) * file.Channels());
    return piece;
}

Samples Cut(const Samples& samples, std::uint32_t channels, std::int64_t frame, std::size_t frames)
{
    const std::size_t first = std::min(static_cast<std::size_t>(frame) * channels, samples.size());
    const std::size_t last = std::min(first + frames * channels, samples.size());
    return {samples.begin() + static_cast<std::ptrdiff_t>(first), samples.begin() + static_cast<std::ptrdiff_t>(last)};
}

int LagOf(const Samples& late, const Samples& source, std::uint32_t channels, int most)
{
    const auto frames = static_cast<int>(std::min(late.size(), source.size()) / channels);
    int best = 0;
    double bestSum = -1;
    for (int lag = -most; lag <= most; ++lag) {
        double sum = 0;
        for (int n = std::max(0, lag); n < std::min(frames, frames + lag); ++n) {
            const auto at = static_cast<std::size_t>(n) * channels;
            const auto from = static_cast<std::size_t>(n - lag) * channels;
            sum += static_cast<double>(late[at]) * source[from];
        }
        if (sum > bestSum) {
            bestSum = sum;
            best = lag;
        }
    }
    return best;
}

double SignalToNoise(const Samples& samples, const Samples& other)
{
    double signal = 0;
    double noise = 1e-9;
    for (std::size_t i = 0; i < samples.size() && i < other.size(); ++i) {
        signal += static_cast<double>(samples[i]) * samples[i];
        noise += std::pow(static_cast<double>(samples[i]) - other[i], 2);
    }
    return 10 * std::log10(signal / noise);
}

} // namespace velmora::soundlayer::testing
