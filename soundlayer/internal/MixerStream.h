#pragma once

#include "soundlayer/internal/GainGlide.h"
#include "soundlayer/internal/PullHelpers.h"
#include "soundlayer/internal/SourceResampler.h"
#include "soundlayer/internal/Stream.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace velmora::soundlayer {

/// A stereo stream that sums its sources and gives silence without any; it never ends.
///
/// Sources join and leave at any time. A source at another rate is resampled, a mono one is heard on both sides; its
/// volume and pan glide over 10 ms. The sum is 32-bit float, rounded and limited once. A single source at full volume
/// is handed through as it is. A source that has ended stays, silent, until it is removed or its position is set.
///
/// Offline, sources that are mixers with effects behind them are pulled side by side, into blocks of their own; the sum
/// keeps its order, so that it does not depend on who pulled what. All others are pulled one after the other.
class MixerStream : public Stream {
public:
    /// With `helpers`, offline pulls are shared with them.
    MixerStream(std::uint32_t rate, std::uint32_t flags, PullHelpers* helpers = nullptr);
    ~MixerStream() override;

    /// Adds a source, which must not have a parent, from `startFrame` of this mixer on (counted from now) for
    /// `lengthFrames` (0: to its end).
    void AddSource(GraphEdits& edits, std::shared_ptr<Stream> source, std::uint64_t startFrame = 0,
                   std::uint64_t lengthFrames = 0);
    void RemoveSource(GraphEdits& edits, Stream& source);
    /// Makes the resampler of `source` anew, after its frequency was set or its position changed.
    void RenewSource(GraphEdits& edits, Stream& source);
    bool HasSources() const { return !m_edited.empty(); }
    std::vector<std::shared_ptr<Stream>> Sources() const;
    bool PullsAlone() const override;
    bool Laborious() const override;

protected:
    Block Generate(std::int16_t* out, std::size_t frames) override;

private:
    struct Source;
    using SourceList = std::vector<std::shared_ptr<Source>>;

    void Publish(GraphEdits& edits);
    static bool Held(const Source& source);
    /// What the other threads are to pull, into `m_shared`, is more than one source. [RT]
    bool WorthSharing(const SourceList& sources, std::size_t frames);
    void PullShared(std::size_t frames);
    /// A block of a source that is not held, as far as it plays within the next `frames` frames.
    static void PullPart(Source& source, std::int16_t* out, std::size_t frames);
    static Block PullSource(Source& source, std::int16_t* out, std::size_t frames);

    SourceList m_edited;
    Published m_sources;
    std::vector<std::int16_t> m_block;
    std::vector<float> m_sum;
    PullHelpers* const m_helpers;
    std::vector<Source*> m_shared;
};

} // namespace velmora::soundlayer
