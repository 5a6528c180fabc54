#include "soundlayer/internal/ClockDrift.h"

#include <algorithm>
#include <cmath>

namespace velmora::soundlayer {

namespace {
constexpr std::int64_t kEnough = 20;
/// Of the slope's standard error.
constexpr double kBeyondDoubt = 5;
/// Sound hardware keeps within some 100 ppm.
constexpr double kGreatestRate = 0.001;
} // namespace

void ClockDrift::Add(double time, double apart, bool moved)
{
    if (moved && m_found > 0) {
        m_sumsBefore = {m_sumsBefore.tt + m_sums.tt, m_sumsBefore.ta + m_sums.ta, m_sumsBefore.aa + m_sums.aa};
        m_sums = {};
        m_found = 0;
    }
    // Welford, "Note on a method for calculating corrected sums of squares and products", Technometrics 4 (1962).
    ++m_found;
    const double fromTime = time - m_meanTime;
    const double fromApart = apart - m_meanApart;
    if (m_found == 1) {
        m_meanTime = time;
        m_meanApart = apart;
        --m_freedom;
    } else {
        m_meanTime += fromTime / static_cast<double>(m_found);
        m_meanApart += fromApart / static_cast<double>(m_found);
        m_sums.tt += fromTime * (time - m_meanTime);
        m_sums.ta += fromTime * (apart - m_meanApart);
        m_sums.aa += fromApart * (apart - m_meanApart);
    }
    ++m_freedom;
}

double ClockDrift::Rate() const
{
    if (m_freedom < kEnough) {
        return 0;
    }
    const double tt = m_sums.tt + m_sumsBefore.tt;
    const double ta = m_sums.ta + m_sumsBefore.ta;
    const double aa = m_sums.aa + m_sumsBefore.aa;
    const double rate = ta / tt;
    const double scatter = std::max(aa - rate * ta, 0.0);
    const double error = std::sqrt(scatter / static_cast<double>(m_freedom - 1) / tt);
    return std::abs(rate) > kBeyondDoubt * error && std::abs(rate) <= kGreatestRate ? rate : 0;
}

} // namespace velmora::soundlayer
