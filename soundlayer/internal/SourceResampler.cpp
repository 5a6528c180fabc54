#include "soundlayer/internal/SourceResampler.h"

#include <algorithm>

#include <soxr.h>

namespace velmora::soundlayer {

namespace {
constexpr std::size_t kFeedFrames = 512;
}

SourceResampler::SourceResampler(Stream& source, double sourceRate, double mixerRate)
    : m_source(source)
    , m_input(kFeedFrames * source.Channels())
{
    soxr_io_spec_t io = soxr_io_spec(SOXR_INT16_I, SOXR_INT16_I);
    io.flags |= SOXR_NO_DITHER;
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    m_soxr = soxr_create(sourceRate, mixerRate, source.Channels(), nullptr, &io, &quality, nullptr);
    if (m_soxr) {
        soxr_set_input_fn(m_soxr, &SourceResampler::Feed, this, kFeedFrames);
    }
}

SourceResampler::~SourceResampler()
{
    soxr_delete(m_soxr);
}

Block SourceResampler::Pull(std::int16_t* out, std::size_t frames)
{
    Block block;
    if (m_soxr) {
        block.frames = soxr_output(m_soxr, out, frames);
    }
    block.ended = block.frames < frames;
    return block;
}

std::size_t SourceResampler::Feed(void* self, const void** data, std::size_t wanted)
{
    auto& resampler = *static_cast<SourceResampler*>(self);
    *data = resampler.m_input.data();
    if (resampler.m_ended) {
        return 0;
    }
    const std::size_t frames = std::min(wanted, kFeedFrames);
    const std::size_t channels = resampler.m_source.Channels();
    const Block block = resampler.m_source.Pull(resampler.m_input.data(), frames);
    resampler.m_ended = block.ended;
    const std::size_t given = block.silent ? 0 : block.frames;
    const std::size_t used = block.ended ? block.frames : frames;
    std::fill(resampler.m_input.begin() + static_cast<std::ptrdiff_t>(given * channels),
              resampler.m_input.begin() + static_cast<std::ptrdiff_t>(used * channels), std::int16_t{0});
    return used;
}

} // namespace velmora::soundlayer
