#include "soundlayer/internal/ClipReader.h"

#include "soundlayer/internal/SampleConverter.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

#include <soxr.h>

namespace velmora::soundlayer {

namespace {

constexpr std::size_t kBlock = 1024;
/// The resampler's filter reaches this far at either side, in frames of the lower of the two rates.
constexpr std::int64_t kPrerollFrames = 320;

struct ResamplerDeleter {
    void operator()(soxr* resampler) const { soxr_delete(resampler); }
};
using ResamplerPtr = std::unique_ptr<soxr, ResamplerDeleter>;
using Block = std::array<float, kBlock>;

ResamplerPtr MakeResampler(std::uint32_t from, std::uint32_t to, std::uint32_t channels)
{
    const soxr_io_spec_t samples = soxr_io_spec(SOXR_FLOAT32_S, SOXR_FLOAT32_S);
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, SOXR_HI_PREC_CLOCK);
    const soxr_runtime_spec_t oneThread = soxr_runtime_spec(1);
    return ResamplerPtr(soxr_create(from, to, channels, nullptr, &samples, &quality, &oneThread));
}

/// The two sides of `frames` frames in steps of 16 bits.
void Split(const std::int16_t* in, std::size_t frames, float* left, float* right)
{
    for (std::size_t i = 0; i < frames; ++i) {
        left[i] = in[2 * i];
        right[i] = in[2 * i + 1];
    }
}

void Widen(const std::int16_t* in, std::size_t frames, float* out)
{
    for (std::size_t i = 0; i < frames; ++i) {
        out[i] = in[i];
    }
}

void Double(const std::int16_t* mono, std::size_t frames, std::int16_t* stereo)
{
    for (std::size_t i = 0; i < frames; ++i) {
        stereo[2 * i] = mono[i];
        stereo[2 * i + 1] = mono[i];
    }
}

} // namespace

/// Reading at another rate begins where an output frame falls exactly on an input frame, which it does every
/// `inPeriod` input frames, at the latest after a second; and so far before the wanted frame that the filter has
/// settled. What comes before the wanted frame is dropped.
struct ClipReader::State {
    std::unique_ptr<AudioFile> file;
    std::uint32_t rate = 0;
    std::int64_t length = 0;
    std::int64_t position = 0;
    /// Frames of the file, and of the output, in which the two rates meet again.
    std::int64_t inPeriod = 1;
    std::int64_t outPeriod = 1;

    ResamplerPtr resampler;
    /// Output frames until `position`.
    std::int64_t toDrop = 0;
    /// One block of the file, `inCount` frames from `inFirst` on.
    std::array<Block, 2> in{};
    std::size_t inFirst = 0;
    std::size_t inCount = 0;

    bool SameRate() const { return rate == file->Rate(); }
    void ReadSameRate(std::span<std::int16_t> stereo);
    void ReadResampled(std::span<std::int16_t> stereo);
    bool Start();
    void FillInput();
    std::size_t Resample(std::array<Block, 2>& out, std::size_t frames);
};

ClipReader::ClipReader(std::unique_ptr<AudioFile> file, std::uint32_t rate)
    : m_state(std::make_unique<State>())
{
    const std::int64_t fileRate = file->Rate();
    const std::int64_t common = std::gcd(fileRate, std::int64_t{rate});
    m_state->inPeriod = fileRate / common;
    m_state->outPeriod = rate / common;
    // Whole periods first: the product of a length and a rate may be too large.
    const std::int64_t periods = file->LengthFrames() / m_state->inPeriod;
    const std::int64_t rest = file->LengthFrames() % m_state->inPeriod;
    m_state->length =
        periods * m_state->outPeriod + (rest * m_state->outPeriod + m_state->inPeriod - 1) / m_state->inPeriod;
    m_state->rate = rate;
    m_state->file = std::move(file);
    m_state->file->Seek(0);
}

ClipReader::~ClipReader() = default;

std::uint32_t ClipReader::Rate() const
{
    return m_state->rate;
}

std::int64_t ClipReader::LengthFrames() const
{
    return m_state->length;
}

void ClipReader::Seek(std::int64_t frame)
{
    frame = std::clamp<std::int64_t>(frame, 0, m_state->length);
    if (frame == m_state->position) {
        return;
    }
    m_state->position = frame;
    m_state->resampler.reset();
    if (m_state->SameRate()) {
        m_state->file->Seek(frame);
    }
}

std::size_t ClipReader::Read(std::span<std::int16_t> stereo)
{
    const auto left = static_cast<std::uint64_t>(m_state->length - m_state->position);
    const auto frames = static_cast<std::size_t>(std::min<std::uint64_t>(stereo.size() / 2, left));
    if (frames == 0) {
        return 0;
    }
    if (m_state->SameRate()) {
        m_state->ReadSameRate(stereo.first(2 * frames));
    } else {
        m_state->ReadResampled(stereo.first(2 * frames));
    }
    m_state->position += static_cast<std::int64_t>(frames);
    if (m_state->position == m_state->length) {
        m_state->resampler.reset();
    }
    return frames;
}

void ClipReader::State::ReadSameRate(std::span<std::int16_t> stereo)
{
    if (file->Channels() == 2) {
        file->Read(stereo);
        return;
    }
    std::array<std::int16_t, kBlock> mono;
    for (std::size_t done = 0; done < stereo.size();) {
        const std::size_t count = std::min(kBlock, (stereo.size() - done) / 2);
        file->Read({mono.data(), count});
        Double(mono.data(), count, stereo.data() + done);
        done += 2 * count;
    }
}

void ClipReader::State::ReadResampled(std::span<std::int16_t> stereo)
{
    if (!resampler && !Start()) {
        std::ranges::fill(stereo, std::int16_t{0});
        return;
    }
    std::array<Block, 2> out;
    while (toDrop > 0) {
        toDrop -=
            static_cast<std::int64_t>(Resample(out, static_cast<std::size_t>(std::min<std::int64_t>(toDrop, kBlock))));
    }
    for (std::size_t done = 0; done < stereo.size();) {
        const std::size_t frames = Resample(out, std::min(kBlock, (stereo.size() - done) / 2));
        const Block& right = out[file->Channels() - 1];
        RoundStereo(out[0].data(), right.data(), 1.0F, frames, stereo.data() + done);
        done += 2 * frames;
    }
}

/// Makes a resampler that begins before `position`; false if there is no memory for one.
bool ClipReader::State::Start()
{
    const std::int64_t fileRate = file->Rate();
    const std::int64_t preroll = kPrerollFrames * std::max<std::int64_t>(1, (fileRate + rate - 1) / rate);
    const std::int64_t wantedIn = position / outPeriod * inPeriod + position % outPeriod * inPeriod / outPeriod;
    const std::int64_t periods = std::max<std::int64_t>(wantedIn - preroll, 0) / inPeriod;
    file->Seek(periods * inPeriod);
    toDrop = position - periods * outPeriod;
    inFirst = inCount = 0;
    resampler = MakeResampler(file->Rate(), rate, file->Channels());
    return resampler != nullptr;
}

/// Reads the next block of the file; behind its end there is silence.
void ClipReader::State::FillInput()
{
    std::array<std::int16_t, 2 * kBlock> samples;
    const std::uint32_t channels = file->Channels();
    const std::size_t got = file->Read({samples.data(), channels * kBlock});
    if (channels == 2) {
        Split(samples.data(), got, in[0].data(), in[1].data());
    } else {
        Widen(samples.data(), got, in[0].data());
    }
    for (std::uint32_t channel = 0; channel < channels; ++channel) {
        std::fill(in[channel].begin() + static_cast<std::ptrdiff_t>(got), in[channel].end(), 0.0F);
    }
    inFirst = 0;
    inCount = kBlock;
}

/// Makes between 1 and `frames` frames of each channel.
std::size_t ClipReader::State::Resample(std::array<Block, 2>& out, std::size_t frames)
{
    for (;;) {
        if (inCount == 0) {
            FillInput();
        }
        const std::array<const float*, 2> from{in[0].data() + inFirst, in[1].data() + inFirst};
        std::array<float*, 2> to{out[0].data(), out[1].data()};
        std::size_t used = 0;
        std::size_t made = 0;
        soxr_process(resampler.get(), from.data(), inCount, &used, to.data(), frames, &made);
        inFirst += used;
        inCount -= used;
        if (made > 0) {
            return made;
        }
        if (used == 0) { // out of memory inside
            std::ranges::fill(out[0], 0.0F);
            std::ranges::fill(out[1], 0.0F);
            return frames;
        }
    }
}

} // namespace velmora::soundlayer
