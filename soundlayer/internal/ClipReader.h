#pragma once

#include "soundlayer/internal/AudioFile.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace velmora::soundlayer {

/// A file as 16-bit stereo at a given rate. Frame n is frame n of the file resampled from its start, wherever reading
/// began (to within a step of 16 bits where rates differ, exactly where they are equal). Mono gives both sides.
/// One thread at a time.
class ClipReader {
public:
    ClipReader(std::unique_ptr<AudioFile> file, std::uint32_t rate);
    ~ClipReader();

    std::uint32_t Rate() const;
    /// ceil(length of the file x rate / its rate).
    std::int64_t LengthFrames() const;
    /// The next read begins at `frame`, limited to 0..length.
    void Seek(std::int64_t frame);
    /// Fills `stereo` and returns the frames written, fewer only at the end.
    std::size_t Read(std::span<std::int16_t> stereo);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace velmora::soundlayer
