#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct SwrContext;

namespace velmora::soundlayer {

/// Makes a stream of stereo frames a little longer or shorter under way, so that it keeps pace with another clock.
///
/// Until it is first asked to, frames pass through bit by bit. From then on a resampler holds some frames back, and
/// `Flush` gives them; what comes out stays in step with what went in but for the frames asked for. Blocks that it
/// returns live until the next call. One thread at a time.
class DriftCompensator {
public:
    explicit DriftCompensator(std::uint32_t rate);
    ~DriftCompensator();
    DriftCompensator(const DriftCompensator&) = delete;
    DriftCompensator& operator=(const DriftCompensator&) = delete;

    /// The next `over` frames that come out hold `frames` more, or with a minus fewer, than they would. At most one
    /// frame in a thousand, and not before the last such stretch is over. False when memory is short.
    bool Compensate(std::int32_t frames, std::int32_t over);
    std::span<const std::int16_t> Convert(std::span<const std::int16_t> stereo);
    /// What is held back, once, at the stream's end.
    std::span<const std::int16_t> Flush();

private:
    struct ResamplerDeleter {
        void operator()(SwrContext* resampler) const;
    };

    bool Begin();
    void Resample(const std::int16_t* stereo, std::size_t frames);

    const std::uint32_t m_rate;
    /// The last frames that passed through: the resampler begins with what came before.
    std::vector<std::int16_t> m_last;
    std::unique_ptr<SwrContext, ResamplerDeleter> m_resampler;
    std::vector<std::int16_t> m_out;
    /// Of the resampler's output, to be dropped: they were given already.
    std::size_t m_given = 0;
};

} // namespace velmora::soundlayer
