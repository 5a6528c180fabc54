#pragma once

#include "core/ClassIds.h"

#include <cstdint>
#include <vector>

namespace velmora::project {
class ProjectFile_Class;
}
namespace velmora::audio {
class OfflineMaster;
}

/// What long work changes around itself. Each puts its part back when it goes, also when a receiver has failed.
namespace velmora::audio {

/// Sets a flag for as long as it lives.
struct FlagScope {
    explicit FlagScope(bool& theFlag)
        : flag(theFlag)
    {
        flag = true;
    }
    ~FlagScope() { flag = false; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

    bool& flag;
};

/// Live monitoring of all channels is off between `Begin` and the end.
class LiveMonitoringPause {
public:
    explicit LiveMonitoringPause(project::ProjectFile_Class& project);
    ~LiveMonitoringPause();
    LiveMonitoringPause(const LiveMonitoringPause&) = delete;
    LiveMonitoringPause& operator=(const LiveMonitoringPause&) = delete;

    void Begin();

private:
    project::ProjectFile_Class& m_project;
    std::vector<core::ClassID> m_live;
};

/// Playback does not stop by itself. The engine's own clips need no care: with the clock held they wait in the mixers,
/// neither heard nor advanced.
class AutoStopPause {
public:
    explicit AutoStopPause(project::ProjectFile_Class& project);
    ~AutoStopPause();
    AutoStopPause(const AutoStopPause&) = delete;
    AutoStopPause& operator=(const AutoStopPause&) = delete;

private:
    project::ProjectFile_Class& m_project;
};

/// Effects begin a mix without a memory of what sounded before it, and go on after it without one of the mix.
class FreshEffects {
public:
    FreshEffects(project::ProjectFile_Class& project, OfflineMaster& master);
    ~FreshEffects();
    FreshEffects(const FreshEffects&) = delete;
    FreshEffects& operator=(const FreshEffects&) = delete;

private:
    /// Between taking effects off and putting them on again, what they had in memory fades away unheard.
    void Forget();

    project::ProjectFile_Class& m_project;
    OfflineMaster& m_master;
};

/// The level of a stream, metered.
class MeteredStream {
public:
    explicit MeteredStream(std::uint32_t stream);
    ~MeteredStream();
    MeteredStream(const MeteredStream&) = delete;
    MeteredStream& operator=(const MeteredStream&) = delete;

    /// The last block's level on the meter's scale of 0..40, where 40 is -0 dB and 0 is -40 dB or less.
    std::int32_t Meter() const;

private:
    std::uint32_t m_stream;
    std::uint32_t m_dsp;
};

} // namespace velmora::audio
