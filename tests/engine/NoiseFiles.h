#pragma once

#include "engine/internal/EngineTables.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace velmora::engine {

/// WAV files of ten seconds of soft noise at 44.1 kHz, each its own, so that no two places sound alike. They are made
/// when first asked for and go with this.
class NoiseFiles {
public:
    static constexpr std::int32_t kRate = 44'100;
    using Rows = std::map<EventKey, EventRow>;

    NoiseFiles();
    ~NoiseFiles();
    NoiseFiles(const NoiseFiles&) = delete;
    NoiseFiles& operator=(const NoiseFiles&) = delete;

    /// The path of a file, in the internal form.
    std::string Path(std::uint32_t seed) const;
    /// What clips of these files, without gain and fades, sum up to at a frame of the timeline.
    static std::int16_t Sum(const Rows& rows, std::int64_t frame, std::uint32_t side);

private:
    std::filesystem::path m_folder;
};

} // namespace velmora::engine
