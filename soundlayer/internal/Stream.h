#pragma once

#include "soundlayer/internal/GraphEdits.h"
#include "soundlayer/internal/Object.h"
#include "soundlayer/internal/effects/EffectList.h"
#include "soundlayer/soundlayer.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace velmora::soundlayer {

class MixerStream;

/// What one pull gave. A silent block's samples are not written: whoever needs zeros writes them.
struct Block {
    std::size_t frames = 0;
    bool silent = false;
    /// No more comes after this block.
    bool ended = false;
};

/// Takes every block of a stream after its DSPs.
class BlockTap {
public:
    virtual ~BlockTap() = default;
    /// [RT]
    virtual void Take(const std::int16_t* interleaved, std::size_t frames) = 0;
};

/// A stream of 16-bit interleaved samples that is pulled: `Generate` of its kind, then its DSPs from the highest
/// priority to 0, its effects, its DSPs of negative priority, and last its taps.
///
/// Threads: one thread pulls at a time, the mixing thread while the stream reaches the device. The interface thread
/// sets attributes and edits the chain of DSPs and effects through `GraphEdits`.
class Stream : public Object, public std::enable_shared_from_this<Stream> {
public:
    /// The longest block that is pulled in one piece.
    static constexpr std::size_t kMaxFrames = 4096;

    struct Dsp {
        HDSP handle = 0;
        DSPPROC* proc = nullptr;
        SOUND_USER user = 0;
        std::int32_t priority = 0;
    };

    Stream(std::uint32_t rate, std::uint32_t channels, std::uint32_t flags);

    std::uint32_t Rate() const { return m_rate; }
    std::uint32_t Channels() const { return m_channels; }
    std::uint32_t Flags() const { return m_flags; }
    bool IsDecoding() const { return (m_flags & BASS_STREAM_DECODE) != 0; }

    /// Gives up to `frames` (at most `kMaxFrames`) frames at `out`. [RT]
    Block Pull(std::int16_t* out, std::size_t frames);

    /// Length in frames, or -1 for a stream without an end.
    virtual std::int64_t LengthFrames() const { return -1; }
    /// The next pull begins at `frame`; `sounding` tells that the mixing thread may be pulling. False when the stream
    /// has no position, or its file cannot be read any more.
    virtual bool SetPosition(GraphEdits&, std::int64_t /*frame*/, bool /*sounding*/) { return false; }
    /// The file's name in the system's form; "" for a stream without one.
    virtual const char* FileName() const { return ""; }

    /// Whether pulling it runs what may not run beside other pulls: procedures of the application that give samples,
    /// and what they share, or devices. [RT]
    virtual bool PullsAlone() const { return true; }
    /// Whether pulling it is work that is worth another thread. [RT]
    virtual bool Laborious() const;

    HDSP AddDsp(GraphEdits& edits, DSPPROC* proc, SOUND_USER user, std::int32_t priority);
    bool RemoveDsp(GraphEdits& edits, HDSP dsp);
    void AddEffect(GraphEdits& edits, std::shared_ptr<EffectSlot> slot, std::int32_t priority);
    bool RemoveEffect(GraphEdits& edits, const EffectSlot& slot);
    void ReorderEffects(GraphEdits& edits, std::span<const std::pair<const EffectSlot*, std::int32_t>> priorities);
    std::vector<std::uint32_t> EffectHandles() const { return m_edited.effects.Handles(); }
    void AddTap(GraphEdits& edits, std::shared_ptr<BlockTap> tap);
    void RemoveTap(GraphEdits& edits, const BlockTap* tap);

    /// Attributes as a source: volume acts within 0..1, pan is a balance, frequency 0 is the stream's own rate.
    std::atomic<float> volume{1.0F};
    std::atomic<float> pan{0.0F};
    std::atomic<float> frequency{0.0F};
    /// A stopped source is neither heard nor advanced.
    std::atomic<bool> stopped{false};

    /// The mixer that the stream is a source of. Interface thread.
    MixerStream* parent = nullptr;

protected:
    /// [RT]
    virtual Block Generate(std::int16_t* out, std::size_t frames) = 0;

private:
    struct Chain {
        std::vector<Dsp> dsps;
        EffectList effects;
        std::vector<std::shared_ptr<BlockTap>> taps;
    };

    void Publish(GraphEdits& edits);
    void RunChain(const Chain& chain, std::int16_t* out, Block& block);

    const std::uint32_t m_rate;
    const std::uint32_t m_channels;
    const std::uint32_t m_flags;
    Chain m_edited;
    Published m_chain;
    EffectClock m_effectClock;
    static inline HDSP s_lastDsp = 0;
};

} // namespace velmora::soundlayer
