#include "soundlayer/internal/DriftCompensator.h"

#include <algorithm>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

namespace velmora::soundlayer {

namespace {
/// More than the resampler's filter is long.
constexpr std::size_t kLastFrames = 64;
constexpr std::size_t kRoomFrames = 64;
} // namespace

DriftCompensator::DriftCompensator(std::uint32_t rate)
    : m_rate(rate)
    , m_last(2 * kLastFrames)
{
}

DriftCompensator::~DriftCompensator() = default;

void DriftCompensator::ResamplerDeleter::operator()(SwrContext* resampler) const
{
    swr_free(&resampler);
}

bool DriftCompensator::Compensate(std::int32_t frames, std::int32_t over)
{
    return (m_resampler || Begin()) && swr_set_compensation(m_resampler.get(), frames, over) >= 0;
}

std::span<const std::int16_t> DriftCompensator::Convert(std::span<const std::int16_t> stereo)
{
    if (!m_resampler) {
        const std::size_t kept = std::min(stereo.size(), m_last.size());
        std::shift_left(m_last.begin(), m_last.end(), static_cast<std::ptrdiff_t>(kept));
        std::ranges::copy(stereo.last(kept), m_last.end() - static_cast<std::ptrdiff_t>(kept));
        return stereo;
    }
    // Without a pointer the resampler would take it for the end.
    if (stereo.empty()) {
        return {};
    }
    Resample(stereo.data(), stereo.size() / 2);
    return m_out;
}

std::span<const std::int16_t> DriftCompensator::Flush()
{
    m_out.clear();
    if (m_resampler) {
        Resample(nullptr, 0);
    }
    return m_out;
}

bool DriftCompensator::Begin()
{
    SwrContext* made = nullptr;
    AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
    const auto rate = static_cast<int>(m_rate);
    swr_alloc_set_opts2(&made, &stereo, AV_SAMPLE_FMT_S16, rate, &stereo, AV_SAMPLE_FMT_S16, rate, 0, nullptr);
    std::unique_ptr<SwrContext, ResamplerDeleter> resampler(made);
    if (!resampler) {
        return false;
    }
    // Equal rates would make it pass frames through.
    av_opt_set_int(made, "flags", SWR_FLAG_RESAMPLE, 0);
    av_opt_set_sample_fmt(made, "internal_sample_fmt", AV_SAMPLE_FMT_FLTP, 0);
    av_opt_set_int(made, "linear_interp", 1, 0);
    if (swr_init(made) < 0) {
        return false;
    }
    m_resampler = std::move(resampler);
    m_given = kLastFrames;
    Resample(m_last.data(), kLastFrames);
    return true;
}

void DriftCompensator::Resample(const std::int16_t* stereo, std::size_t frames)
{
    const auto held = static_cast<std::size_t>(swr_get_delay(m_resampler.get(), m_rate));
    m_out.resize(2 * (held + frames + frames / 1000 + kRoomFrames));
    auto* out = reinterpret_cast<std::uint8_t*>(m_out.data());
    const auto* in = reinterpret_cast<const std::uint8_t*>(stereo);
    const int made = swr_convert(m_resampler.get(), &out, static_cast<int>(m_out.size() / 2), stereo ? &in : nullptr,
                                 static_cast<int>(frames));
    m_out.resize(2 * static_cast<std::size_t>(std::max(made, 0)));
    const std::size_t given = std::min(m_given, m_out.size() / 2);
    m_given -= given;
    m_out.erase(m_out.begin(), m_out.begin() + 2 * static_cast<std::ptrdiff_t>(given));
}

} // namespace velmora::soundlayer
