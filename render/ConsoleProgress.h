#pragma once

#include "audio/AudioExport.h"

#include <chrono>

namespace velmora::render {

/// From here on, SIGINT, SIGTERM and SIGHUP ask the export to end at its next report; a second one ends the program
/// at once.
void CatchInterrupts();
bool Interrupted();

/// A line on standard error that tells how far the export is, at most ten times a second.
class ConsoleProgress : public audio::ExportProgress {
public:
    /// Not `visible`: only the interrupts are looked at.
    explicit ConsoleProgress(bool visible);
    ~ConsoleProgress() override;

    bool Update(std::int64_t positionMS, std::int64_t totalMS, std::int32_t meter) override;
    /// Empties the line, so that what follows starts on a clean one.
    void Clear();

private:
    bool m_visible;
    bool m_drawn = false;
    std::chrono::steady_clock::time_point m_next{};
};

} // namespace velmora::render
