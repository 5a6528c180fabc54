#include "engine/internal/StreamCopier.h"

#include <algorithm>
#include <utility>

namespace velmora::engine {

namespace {

constexpr std::size_t kFrameBytes = 2 * sizeof(std::int16_t);

/// Doubles each of the first `frames` samples in place.
void SpreadMono(std::int16_t* samples, std::size_t frames)
{
    for (std::size_t i = frames; i-- > 0;) {
        samples[2 * i + 1] = samples[i];
        samples[2 * i] = samples[i];
    }
}

} // namespace

bool StreamCopier::AddSource(HSTREAM source)
{
    BASS_CHANNELINFO info{};
    if (!BASS_ChannelGetInfo(source, &info)) {
        return false;
    }
    auto& entry = m_sources[source];
    if (!entry) {
        entry = std::make_shared<Source>();
        entry->stream = source;
        entry->channels = info.chans;
    }
    return true;
}

void StreamCopier::RemoveSource(HSTREAM source)
{
    const auto found = m_sources.find(source);
    if (found != m_sources.end()) {
        auto* kept = new std::shared_ptr<Source>(std::move(found->second));
        m_sources.erase(found);
        Sound_Retire(
            [](SOUND_USER user) {
                const std::unique_ptr<std::shared_ptr<Source>> removed(
                    reinterpret_cast<std::shared_ptr<Source>*>(user));
                (*removed)->stream = 0;
            },
            reinterpret_cast<SOUND_USER>(kept));
    }
}

HSTREAM StreamCopier::AddDestination(HSTREAM source, std::uint32_t freq, std::uint32_t flags)
{
    const auto found = m_sources.find(source);
    if (found == m_sources.end()) {
        return 0;
    }
    auto destination = std::make_unique<Destination>();
    destination->source = found->second;
    destination->read = found->second->written.load();
    const HSTREAM stream =
        BASS_StreamCreate(freq, 2, flags, &StreamCopier::Pull, reinterpret_cast<SOUND_USER>(destination.get()));
    if (stream != 0) {
        m_destinations.emplace(stream, std::move(destination));
    }
    return stream;
}

void StreamCopier::RemoveDestination(HSTREAM destination)
{
    const auto found = m_destinations.find(destination);
    if (found != m_destinations.end()) {
        BASS_StreamFree(destination);
        // Within an edit the old graph still calls the procedure.
        Sound_Retire([](SOUND_USER user) { delete reinterpret_cast<Destination*>(user); },
                     reinterpret_cast<SOUND_USER>(found->second.release()));
        m_destinations.erase(found);
    }
}

std::int32_t StreamCopier::BufferedBytes(HSTREAM source) const
{
    const auto found = m_sources.find(source);
    if (found == m_sources.end()) {
        return 0;
    }
    std::uint64_t waiting = 0;
    for (const auto& [stream, destination] : m_destinations) {
        if (destination->source == found->second) {
            // Nobody reads past what is written, so asked in this order the difference is no less than 0.
            const std::uint64_t read = destination->read;
            waiting = std::max(waiting, std::min<std::uint64_t>(found->second->written - read, kRingFrames));
        }
    }
    return static_cast<std::int32_t>(waiting * kFrameBytes);
}

void StreamCopier::Clear()
{
    while (!m_destinations.empty()) {
        RemoveDestination(m_destinations.begin()->first);
    }
    while (!m_sources.empty()) {
        RemoveSource(m_sources.begin()->first);
    }
}

std::uint32_t StreamCopier::Pull(HSTREAM, void* buffer, std::uint32_t length, SOUND_USER user)
{
    auto& self = *reinterpret_cast<Destination*>(user);
    Source& source = *self.source;
    auto* out = static_cast<std::int16_t*>(buffer);
    const std::size_t wanted = std::min<std::size_t>(length / kFrameBytes, kRingFrames);
    std::uint64_t at = self.read.load(std::memory_order_relaxed);
    const std::uint64_t waiting = source.written.load(std::memory_order_relaxed) - at;
    if (waiting < wanted) {
        source.Read(wanted - static_cast<std::size_t>(waiting));
    }
    const std::uint64_t written = source.written.load(std::memory_order_relaxed);
    at = std::max(at, written > kRingFrames ? written - kRingFrames : 0);
    const auto given = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, written - at));
    for (std::size_t done = 0; done < given;) {
        const std::size_t from = static_cast<std::size_t>(at + done) % kRingFrames;
        const std::size_t piece = std::min(given - done, kRingFrames - from);
        std::copy_n(source.ring.data() + 2 * from, 2 * piece, out + 2 * done);
        done += piece;
    }
    self.read.store(at + given, std::memory_order_relaxed);
    return static_cast<std::uint32_t>(given * kFrameBytes);
}

void StreamCopier::Source::Read(std::size_t frames)
{
    const HSTREAM from = stream.load(std::memory_order_relaxed);
    const std::size_t sourceBytes = channels * sizeof(std::int16_t);
    while (from != 0 && frames > 0) {
        const std::uint64_t at = written.load(std::memory_order_relaxed);
        const std::size_t to = static_cast<std::size_t>(at) % kRingFrames;
        const std::size_t piece = std::min(frames, kRingFrames - to);
        std::int16_t* samples = ring.data() + 2 * to;
        const std::uint32_t bytes = BASS_ChannelGetData(from, samples, static_cast<std::uint32_t>(piece * sourceBytes));
        if (bytes == UINT32_MAX || bytes == 0) {
            break;
        }
        const std::size_t given = bytes / sourceBytes;
        if (channels == 1) {
            SpreadMono(samples, given);
        }
        frames -= given;
        written.store(at + given, std::memory_order_relaxed);
    }
}

} // namespace velmora::engine
