#include "app/TimeLeft.h"

#include <algorithm>
#include <cmath>

namespace velmora::app {
namespace {

/// Before that, the speed says nothing.
constexpr std::int64_t kLeastMS = 500;

} // namespace

QString TimeLeftText(std::int64_t elapsedMS, double done)
{
    const double part = std::clamp(done, 0.0, 1.0);
    QString text = QString::number(static_cast<int>(part * 100)) + " %";
    if (elapsedMS >= kLeastMS && part > 0) {
        const auto seconds = static_cast<int>(std::ceil(static_cast<double>(elapsedMS) * (1 - part) / part / 1000));
        text += seconds < 60 ? QString(", %1 s left").arg(seconds)
                             : QString(", %1:%2 min left").arg(seconds / 60).arg(seconds % 60, 2, 10, QChar('0'));
    }
    return text;
}

} // namespace velmora::app
