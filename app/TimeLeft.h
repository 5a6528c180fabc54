#pragma once

#include <QString>
#include <cstdint>

namespace velmora::app {

/// How far long work has come, `done` of 0..1, and how long it will still take at the speed so far.
QString TimeLeftText(std::int64_t elapsedMS, double done);

} // namespace velmora::app
