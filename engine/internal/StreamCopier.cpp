#include "engine/internal/StreamCopier.h"

#include <algorithm>

namespace velmora::engine {

namespace {
constexpr std::size_t kFrameBytes = 2 * sizeof(std::int16_t);
}

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
    }
    return true;
}

void StreamCopier::RemoveSource(HSTREAM source)
{
    const auto found = m_sources.find(source);
    if (found != m_sources.end()) {
        found->second->stream = 0;
        m_sources.erase(found);
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
        // Once the stream is freed its procedure is called no more.
        BASS_StreamFree(destination);
        m_destinations.erase(found);
    }
}

std::int32_t StreamCopier::BufferedBytes(HSTREAM source) const
{
    const auto found = m_sources.find(source);
    if (found == m_sources.end()) {
        return 0;
    }
    const std::uint64_t written = found->second->written;
    std::uint64_t waiting = 0;
    for (const auto& [stream, destination] : m_destinations) {
        if (destination->source == found->second) {
            waiting = std::max(waiting, std::min<std::uint64_t>(written - destination->read, kRingFrames));
        }
    }
    return static_cast<std::int32_t>(waiting * kFrameBytes);
}

void StreamCopier::Clear()
{
    while (!m_destinations.empty()) {
        RemoveDestination(m_destinations.begin()->first);
    }
    m_sources.clear();
}

std::uint32_t StreamCopier::Pull(HSTREAM, void* buffer, std::uint32_t length, SOUND_USER user)
{
    auto& self = *reinterpret_cast<Destination*>(user);
    Source& source = *self.source;
    auto* out = static_cast<std::int16_t*>(buffer);
    const std::size_t wanted = std::min<std::size_t>(length / kFrameBytes, kRingFrames);
    std::uint64_t at = self.read.load(std::memory_order_relaxed);
    std::uint64_t written = source.written.load(std::memory_order_relaxed);
    if (written - at < wanted) {
        written += source.Read(wanted - static_cast<std::size_t>(written - at));
    }
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

std::size_t StreamCopier::Source::Read(std::size_t frames)
{
    const HSTREAM from = stream.load(std::memory_order_relaxed);
    std::size_t done = 0;
    while (from != 0 && done < frames) {
        const std::uint64_t at = written.load(std::memory_order_relaxed);
        const std::size_t to = static_cast<std::size_t>(at) % kRingFrames;
        const std::size_t piece = std::min(frames - done, kRingFrames - to);
        const std::uint32_t bytes =
            BASS_ChannelGetData(from, ring.data() + 2 * to, static_cast<std::uint32_t>(piece * kFrameBytes));
        if (bytes == UINT32_MAX || bytes == 0) {
            break;
        }
        done += bytes / kFrameBytes;
        written.store(at + bytes / kFrameBytes, std::memory_order_relaxed);
    }
    return done;
}

} // namespace velmora::engine
