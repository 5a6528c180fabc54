#include "soundlayer/internal/effects/Diffuser.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace velmora::soundlayer {

namespace {
constexpr std::size_t kBlock = BlockLine::kBlock;
/// Above, single stages are heard as tones.
constexpr double kMostGain = 0.62;

/// One stage; frame k has the gain `gain` + (k + 1) x `step`.
void Pass(float* __restrict block, float* __restrict written, const float* __restrict delayed, float gain, float step)
{
    for (std::size_t i = 0; i < kBlock; ++i) {
        const float now = gain + step * static_cast<float>(static_cast<int>(i) + 1);
        const float into = block[i] + now * delayed[i];
        written[i] = into;
        block[i] = delayed[i] - now * into;
    }
}

} // namespace

Diffuser::Diffuser(std::uint32_t rate, const std::array<double, kStages>& delays)
    : m_rate(rate)
{
    for (const double delay : delays) {
        m_stages.emplace_back(NextPrime(std::max(kBlock, static_cast<std::size_t>(delay * rate / 1000))));
    }
}

void Diffuser::SetTime(double seconds)
{
    for (Stage& stage : m_stages) {
        const double fall = std::pow(10.0, -3.0 * static_cast<double>(stage.delay) / (m_rate * seconds));
        stage.from = stage.to;
        stage.to = static_cast<float>(std::min(kMostGain, fall));
    }
}

void Diffuser::Process(float* block, float way, float step)
{
    for (Stage& stage : m_stages) {
        const float gains = stage.to - stage.from;
        Pass(block, stage.line.Next(), stage.line.Read(stage.delay), stage.from + gains * way, gains * step);
        stage.line.Advance();
    }
}

std::size_t Diffuser::Length() const
{
    return std::accumulate(m_stages.begin(), m_stages.end(), std::size_t{0},
                           [](std::size_t sum, const Stage& stage) { return sum + stage.delay; });
}

void Diffuser::Clear()
{
    for (Stage& stage : m_stages) {
        stage.line.Clear();
    }
}

} // namespace velmora::soundlayer
