#include "soundlayer/internal/MixerStream.h"

#include "soundlayer/internal/MixingThread.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace velmora::soundlayer {

namespace {

/// Shorter blocks are pulled before another thread is awake.
constexpr std::size_t kLeastShared = 512;

StereoGain WantedGain(const Stream& stream)
{
    const float volume = std::clamp(stream.volume.load(std::memory_order_relaxed), 0.0F, 1.0F);
    const float pan = std::clamp(stream.pan.load(std::memory_order_relaxed), -1.0F, 1.0F);
    return {volume * std::min(1.0F, 1.0F - pan), volume * std::min(1.0F, 1.0F + pan)};
}

} // namespace

/// One source as the pulling thread sees it. Edits replace the list, never this.
struct MixerStream::Source {
    Source(std::shared_ptr<Stream> theStream, std::uint32_t mixerRate)
        : stream(std::move(theStream))
        , glide(mixerRate)
    {
        const auto frequency = static_cast<double>(stream->frequency.load(std::memory_order_relaxed));
        const double rate = frequency > 0 ? frequency : stream->Rate();
        if (std::abs(rate - mixerRate) > 1e-6) {
            resampler = std::make_unique<SourceResampler>(*stream, rate, mixerRate);
        }
    }

    std::shared_ptr<Stream> stream;
    GainGlide glide;
    std::unique_ptr<SourceResampler> resampler;
    std::uint64_t framesToStart = 0;
    std::uint64_t framesToPlay = UINT64_MAX;
    bool ended = false;

    /// What the block under way has of it, after how many frames of nothing.
    struct Part {
        Block block;
        std::size_t delay = 0;
    };
    Part part;
    /// Whether that was pulled already, into `own`.
    bool pulled = false;
    std::vector<std::int16_t> own;
};

MixerStream::MixerStream(std::uint32_t rate, std::uint32_t flags, PullHelpers* helpers)
    : Stream(rate, 2, flags)
    , m_block(2 * kMaxFrames)
    , m_sum(2 * kMaxFrames)
    , m_helpers(helpers)
{
}

MixerStream::~MixerStream() = default;

void MixerStream::AddSource(GraphEdits& edits, std::shared_ptr<Stream> source, std::uint64_t startFrame,
                            std::uint64_t lengthFrames)
{
    source->parent = this;
    auto entry = std::make_shared<Source>(std::move(source), Rate());
    entry->framesToStart = startFrame;
    if (lengthFrames > 0) {
        entry->framesToPlay = lengthFrames;
    }
    m_edited.push_back(std::move(entry));
    Publish(edits);
}

void MixerStream::RemoveSource(GraphEdits& edits, Stream& source)
{
    source.parent = nullptr;
    std::erase_if(m_edited, [&source](const auto& entry) { return entry->stream.get() == &source; });
    Publish(edits);
}

void MixerStream::RenewSource(GraphEdits& edits, Stream& source)
{
    for (auto& entry : m_edited) {
        if (entry->stream.get() == &source) {
            entry = std::make_shared<Source>(entry->stream, Rate());
        }
    }
    Publish(edits);
}

std::vector<std::shared_ptr<Stream>> MixerStream::Sources() const
{
    std::vector<std::shared_ptr<Stream>> streams;
    for (const auto& entry : m_edited) {
        streams.push_back(entry->stream);
    }
    return streams;
}

void MixerStream::Publish(GraphEdits& edits)
{
    edits.Replace(shared_from_this(), m_sources, std::make_shared<const SourceList>(m_edited));
}

Block MixerStream::Generate(std::int16_t* out, std::size_t frames)
{
    const auto* sources = m_sources.Get<SourceList>();
    if (!sources || sources->empty()) {
        return {frames, true, false};
    }
    if (sources->size() == 1) {
        Source& only = *sources->front();
        if (Held(only)) {
            return {frames, true, false};
        }
        only.glide.SetTarget(WantedGain(*only.stream));
        if (only.glide.Unity() && only.framesToStart == 0) {
            Block block = PullSource(only, out, frames);
            if (!block.silent) {
                std::fill(out + 2 * block.frames, out + 2 * frames, std::int16_t{0});
            }
            return {frames, block.silent || block.frames == 0, false};
        }
    }
    if (WorthSharing(*sources, frames)) {
        PullShared(frames);
    }
    bool first = true;
    for (const auto& entry : *sources) {
        Source& source = *entry;
        if (Held(source)) {
            continue;
        }
        std::int16_t* const samples = source.pulled ? source.own.data() : m_block.data();
        if (!source.pulled) {
            PullPart(source, samples, frames);
        }
        source.pulled = false;
        const auto [block, delay] = source.part;
        const bool unheard = block.silent || block.frames == 0 || source.glide.Silent();
        if (unheard) {
            source.glide.Skip(frames);
            continue;
        }
        if (first && (delay > 0 || block.frames < frames - delay)) {
            std::fill_n(m_sum.data(), 2 * frames, 0.0F);
            first = false;
        }
        source.glide.Mix(m_sum.data() + 2 * delay, samples, block.frames, first);
        source.glide.Skip(frames - delay - block.frames);
        first = false;
    }
    if (first) {
        return {frames, true, false};
    }
    RoundToInt16(out, m_sum.data(), 2 * frames);
    return {frames, false, false};
}

bool MixerStream::PullsAlone() const
{
    const auto* sources = m_sources.Get<SourceList>();
    return sources && std::ranges::any_of(*sources, [](const auto& source) { return source->stream->PullsAlone(); });
}

bool MixerStream::Laborious() const
{
    const auto* sources = m_sources.Get<SourceList>();
    return Stream::Laborious() ||
           (sources && std::ranges::any_of(*sources, [](const auto& source) { return source->stream->Laborious(); }));
}

bool MixerStream::WorthSharing(const SourceList& sources, std::size_t frames)
{
    if (!m_helpers || frames < kLeastShared || OnMixingThread() || InSharedPull() || m_helpers->Alone()) {
        return false;
    }
    m_shared.clear();
    for (const auto& source : sources) {
        if (!Held(*source) && source->stream->Laborious() && !source->stream->PullsAlone()) {
            m_shared.push_back(source.get());
        }
    }
    return m_shared.size() > 1;
}

void MixerStream::PullShared(std::size_t frames)
{
    for (Source* source : m_shared) {
        source->own.resize(2 * kMaxFrames);
    }
    m_helpers->Share(m_shared.size(), [this, frames](std::size_t i) {
        PullPart(*m_shared[i], m_shared[i]->own.data(), frames);
        m_shared[i]->pulled = true;
    });
}

void MixerStream::PullPart(Source& source, std::int16_t* out, std::size_t frames)
{
    source.glide.SetTarget(WantedGain(*source.stream));
    const auto delay = static_cast<std::size_t>(std::min<std::uint64_t>(source.framesToStart, frames));
    source.framesToStart -= delay;
    source.part = {PullSource(source, out, frames - delay), delay};
}

bool MixerStream::Held(const Source& source)
{
    return source.stream->stopped.load(std::memory_order_relaxed);
}

Block MixerStream::PullSource(Source& source, std::int16_t* out, std::size_t frames)
{
    if (source.ended || frames == 0) {
        return {0, true, false};
    }
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(source.framesToPlay, frames));
    Block block = source.resampler ? source.resampler->Pull(out, wanted) : source.stream->Pull(out, wanted);
    if (source.framesToPlay != UINT64_MAX) {
        source.framesToPlay -= block.frames;
    }
    source.ended = block.ended || source.framesToPlay == 0;
    if (source.stream->Channels() == 1 && !block.silent) {
        MonoToStereo(out, out, block.frames);
    }
    return block;
}

} // namespace velmora::soundlayer
