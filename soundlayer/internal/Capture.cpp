#include "soundlayer/internal/Capture.h"

#include <algorithm>
#include <future>
#include <type_traits>
#include <utility>

namespace velmora::soundlayer {

namespace {
constexpr std::chrono::milliseconds kLook{100};
constexpr std::uint32_t kNewestMS = 1000;
/// A server that hangs keeps nobody longer.
constexpr std::chrono::seconds kServerPatience{3};
/// What stays ready for a hearer, so that a block that comes a little late is not missed.
constexpr std::uint32_t kHearingSlackMS = 5;
constexpr std::size_t kSilentPiece = 4096;

/// The capture is brought to the output's pace once a second, by no more than one frame in so many.
constexpr std::int32_t kGentle = 2000;

/// What `work` gives, from a thread of its own that nobody has to wait for.
template <typename Work>
auto AtWork(Work work)
{
    std::packaged_task<std::invoke_result_t<Work&>()> task(std::move(work));
    auto result = task.get_future();
    std::thread(std::move(task)).detach();
    return result;
}
} // namespace

Capture::Capture(std::unique_ptr<CaptureDevice> device, std::uint32_t rate, std::shared_ptr<const ReadingLog> heard,
                 std::uint32_t heardRate, Times times)
    : m_device(std::move(device))
    , m_rate(rate)
    , m_heardRate(heardRate)
    , m_heardLog(std::move(heard))
    , m_limits(times)
    , m_newest(std::size_t{rate} * kNewestMS / 1000, 2)
    , m_history(std::size_t{kHistorySeconds} * rate)
    , m_guard(rate)
    , m_compensator(rate)
{
}

bool Capture::Start()
{
    auto opened = AtWork([device = m_device, rate = m_rate] { return device->Open(rate); });
    if (opened.wait_for(kServerPatience) != std::future_status::ready) {
        return false;
    }
    const std::optional<AudioFormat> format = opened.get();
    if (!format || !FormatConverter::Takes(*format)) {
        return false;
    }
    m_format = *format;
    m_converter = std::make_unique<FormatConverter>(m_format, AudioFormat{m_rate, 2});
    m_feed = std::make_shared<CaptureFeed>(m_format);
    m_times.emplace(m_rate, m_format.rate, m_heardLog, m_heardRate);
    m_started = SoundClock::now();
    m_lastArrival = m_started;
    // A device that hangs may outlive this object.
    const auto put = [feed = m_feed](const CaptureBlock& block) { return feed->Put(block); };
    if (!m_device->Start(put, [feed = m_feed] { feed->Lose(); })) {
        m_device->Stop();
        return false;
    }
    m_thread = std::thread([this] { Run(); });
    return true;
}

void Capture::Stop()
{
    if (!m_thread.joinable()) {
        return;
    }
    auto stopped = AtWork([device = std::exchange(m_device, nullptr)]() mutable {
        device->Stop();
        device.reset();
    });
    stopped.wait_for(kServerPatience);
    m_ending = true;
    m_feed->Wake();
    m_thread.join();
    Settle();
    const std::lock_guard lock(m_mutex);
    Store(m_converter->Flush());
    Keep(m_compensator.Flush());
}

void Capture::Settle()
{
    const std::lock_guard lock(m_mutex);
    Collect();
    SettleDoubt(DoubtfulTime() >= m_limits.doubt / 3 ? Doubt::Gap : Doubt::Late);
}

bool Capture::InputSilent() const
{
    const std::lock_guard lock(m_mutex);
    return m_guard.Silent();
}

bool Capture::InputClipped() const
{
    const std::lock_guard lock(m_mutex);
    return m_guard.Clipped();
}

std::size_t Capture::Ready() const
{
    return m_newest.Filled();
}

std::size_t Capture::Hear(std::int16_t* interleaved, std::size_t frames)
{
    const std::size_t ready = m_newest.Filled();
    if (!m_hearing || ready == m_newest.Capacity()) {
        // A full ring holds what is old.
        m_newest.Skip(m_hearing || ready == m_newest.Capacity() ? ready : ready - std::min(ready, frames));
        m_hearing = true;
    }
    const std::size_t given = m_newest.Read(interleaved, frames);
    m_leastLeft = std::min(m_leastLeft, m_newest.Filled());
    m_sinceSkip += frames;
    if (m_sinceSkip >= m_rate / 2) {
        const std::size_t slack = std::size_t{m_rate} * kHearingSlackMS / 1000;
        m_newest.Skip(m_leastLeft - std::min(m_leastLeft, slack));
        m_leastLeft = m_newest.Capacity();
        m_sinceSkip = 0;
    }
    return given;
}

std::int64_t Capture::FrameBefore(std::chrono::milliseconds back)
{
    const std::lock_guard lock(m_mutex);
    Collect();
    m_keepFrom = std::max(m_history.First(), m_history.End() - back.count() * m_rate / 1000);
    m_times->BeginPace(m_history.End());
    m_nextPace = m_history.End() + m_rate;
    return *m_keepFrom;
}

std::size_t Capture::Read(std::int64_t from, std::int16_t* interleaved, std::size_t frames, bool& lost)
{
    const std::lock_guard lock(m_mutex);
    Collect();
    if (from >= m_history.First()) {
        const std::size_t given = m_history.Read(from, interleaved, frames);
        m_keepFrom = from + static_cast<std::int64_t>(given);
        return given;
    }
    lost = true;
    const auto missing = std::min(frames, static_cast<std::size_t>(m_history.First() - from));
    std::fill_n(interleaved, 2 * missing, std::int16_t{0});
    return missing;
}

std::optional<SoundClock::duration> Capture::OffsetOf(std::int64_t frame, std::int64_t mixed)
{
    const std::lock_guard lock(m_mutex);
    Collect();
    return m_times->OffsetOf(frame, mixed);
}

void Capture::Run()
{
    while (!m_ending) {
        m_feed->Wait(kLook);
        const std::lock_guard lock(m_mutex);
        Collect();
        StandIn();
    }
}

bool Capture::HasRoom() const
{
    return !m_keepFrom || m_history.End() - *m_keepFrom < std::int64_t{kHistorySeconds - 1} * m_rate;
}

void Capture::Collect()
{
    const bool lost = m_feed->DeviceLost();
    Block block;
    while (HasRoom() && m_feed->Take(block.arrival, block.samples)) {
        Arrive(std::exchange(block, {}));
    }
    if (lost && State() != CaptureState::Lost) {
        SettleDoubt(Doubt::Gap);
        m_state = CaptureState::Lost;
    }
    m_times->ReadHeard();
    KeepPace();
}

void Capture::KeepPace()
{
    const std::int64_t end = m_history.End();
    if (!m_keepFrom || end < m_nextPace) {
        return;
    }
    const auto second = static_cast<std::int32_t>(m_rate);
    m_nextPace = end + second;
    const std::int32_t frames = std::clamp(m_times->FramesBehind(end), -second / kGentle, second / kGentle);
    if (frames != 0 && m_compensator.Compensate(frames, second)) {
        m_times->Stretched(end, frames, second);
    }
}

void Capture::Arrive(Block block)
{
    m_lastArrival = SoundClock::now();
    const CaptureFeed::Arrival& arrival = block.arrival;
    const auto frames = static_cast<std::int64_t>(arrival.lost + arrival.frames);
    if (std::exchange(m_standingIn, false)) {
        // Silence was put up to some time ago, or a little beyond where this block begins.
        m_state = CaptureState::Delivering;
        const std::int64_t missing = FramesIn(Lateness(frames, arrival.end));
        const auto twice =
            static_cast<std::size_t>(std::clamp<std::int64_t>(-missing, 0, static_cast<std::int64_t>(arrival.frames)));
        block.samples.erase(block.samples.begin(),
                            block.samples.begin() + static_cast<std::ptrdiff_t>(twice * m_format.channels));
        block.arrival.frames -= twice;
        AppendSilence(missing);
        Append(block);
        return;
    }
    const auto late = Lateness(m_doubtfulFrames + frames, arrival.end);
    m_doubtful.push_back(std::move(block));
    m_doubtfulFrames += frames;
    if (late <= m_limits.late) {
        SettleDoubt(Doubt::Late);
    } else if (DoubtfulTime() >= m_limits.doubt) {
        SettleDoubt(Doubt::Gap);
    }
}

void Capture::SettleDoubt(Doubt is)
{
    if (is == Doubt::Gap && !m_doubtful.empty()) {
        auto gap = SoundClock::duration::max();
        std::int64_t frames = 0;
        for (const Block& block : m_doubtful) {
            frames += static_cast<std::int64_t>(block.arrival.lost + block.arrival.frames);
            gap = std::min(gap, Lateness(frames, block.arrival.end));
        }
        AppendSilence(FramesIn(gap));
    }
    for (const Block& block : m_doubtful) {
        Append(block);
    }
    m_doubtful.clear();
    m_doubtfulFrames = 0;
}

SoundClock::duration Capture::DoubtfulTime() const
{
    return m_doubtful.empty() ? SoundClock::duration::zero()
                              : m_doubtful.back().arrival.end - m_doubtful.front().arrival.end;
}

void Capture::StandIn()
{
    const auto now = SoundClock::now();
    if (State() == CaptureState::Lost || now - m_lastArrival < m_limits.patience) {
        return;
    }
    SettleDoubt(Doubt::Gap);
    m_standingIn = true;
    m_state = CaptureState::Silent;
    const auto begin = m_times->ExpectedAt(0);
    if (!begin) {
        m_times->Sounded(0, m_started);
    }
    AppendSilence(FramesIn(now - begin.value_or(m_started)) - m_frames);
}

void Capture::Append(const Block& block)
{
    AppendSilence(static_cast<std::int64_t>(block.arrival.lost));
    Store(m_converter->Convert(block.samples));
    m_frames += static_cast<std::int64_t>(block.arrival.frames);
    m_times->Sounded(m_frames, block.arrival.end);
}

void Capture::AppendSilence(std::int64_t frames)
{
    if (frames <= 0) {
        return;
    }
    m_gapFrames.fetch_add(static_cast<std::uint64_t>(frames * m_rate / m_format.rate), std::memory_order_relaxed);
    m_frames += frames;
    const std::vector<std::int16_t> zeros(kSilentPiece * m_format.channels);
    while (frames > 0) {
        const std::int64_t piece = std::min<std::int64_t>(frames, kSilentPiece);
        Store(m_converter->Convert(std::span(zeros).first(static_cast<std::size_t>(piece) * m_format.channels)));
        frames -= piece;
    }
}

void Capture::Store(std::span<const std::int16_t> stereo)
{
    Keep(m_compensator.Convert(stereo));
}

void Capture::Keep(std::span<const std::int16_t> stereo)
{
    m_history.Append(stereo);
    m_guard.Look(stereo);
    m_newest.Write(stereo.data(), stereo.size() / 2);
}

SoundClock::duration Capture::Lateness(std::int64_t frames, SoundClock::time_point end) const
{
    const auto expected = m_times->ExpectedAt(m_frames + frames);
    return expected ? end - *expected : SoundClock::duration::zero();
}

std::int64_t Capture::FramesIn(SoundClock::duration time) const
{
    return soundlayer::FramesIn(time, m_format.rate);
}

} // namespace velmora::soundlayer
