#include "soundlayer/internal/effects/ReverbNetwork.h"

#include "soundlayer/internal/effects/Quad.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace velmora::soundlayer {

namespace {

/// The lines of the largest room in ms; those between lie in equal ratios.
constexpr double kShortest = 11.0;
constexpr double kLongest = 83.0;
constexpr double kCornerHz = 5000.0;
constexpr double kGlideSeconds = 0.05;

/// The rows of the matrix by which the sides hear each group: such that neither is what one line gets, and that they
/// have nothing in common, neither in all lines nor in those that one side feeds.
constexpr std::size_t kHeardLeft[] = {1, 2, 3, 3};
constexpr std::size_t kHeardRight[] = {3, 3, 1, 2};

/// How large a room of that time is, from 1 down in steps of 3 dB, so that few changes of the time move the lines.
double SizeOf(double seconds)
{
    const double step = std::clamp(std::round(-4.0 / 3.0 * std::log2(seconds)), 0.0, 6.0);
    return std::exp2(-step / 2);
}

/// What the coefficients of a filter with that corner are divided by.
double ScaleOf(double corner)
{
    return 1.0 + std::numbers::sqrt2 * corner + corner * corner;
}

/// Whether a line is fed by the left side; the sums of both halves' lengths are alike.
constexpr bool FedByLeft(std::size_t line)
{
    return std::popcount(line) % 2 == 0;
}

} // namespace

ReverbNetwork::ReverbNetwork(std::uint32_t rate)
    : m_rate(rate)
    , m_glideBlocks(static_cast<std::size_t>(std::ceil(kGlideSeconds * rate / kBlock)))
    , m_corner(std::tan(std::numbers::pi * std::min(0.3, kCornerHz / rate)))
    , m_back{static_cast<float>(2.0 * (m_corner * m_corner - 1.0) / ScaleOf(m_corner)),
             static_cast<float>((ScaleOf(m_corner) - 2.0 * std::numbers::sqrt2 * m_corner) / ScaleOf(m_corner))}
    , m_glided(m_glideBlocks)
    , m_diffuseLeft(rate, {1.9, 3.1, 4.7, 7.3})
    , m_diffuseRight(rate, {2.1, 2.9, 5.3, 6.7})
{
    SetRoom({}, true);
    for (const std::size_t delay : m_to.delays) {
        m_lines.emplace_back(delay);
    }
    m_longest = m_to.delays.back() + std::max(m_diffuseLeft.Length(), m_diffuseRight.Length());
}

ReverbNetwork::Shape ReverbNetwork::ShapeOf(const Room& room) const
{
    Shape shape;
    const double size = SizeOf(room.seconds);
    double power = 0.0;
    std::size_t frames = kBlock;
    for (std::size_t line = 0; line < kLines; ++line) {
        const double ms = kShortest * std::pow(kLongest / kShortest, static_cast<double>(line) / (kLines - 1));
        frames = NextPrime(std::max(frames, static_cast<std::size_t>(size * ms / 1000 * m_rate)));
        shape.delays[line] = frames;
        const double fall = -3.0 * static_cast<double>(frames) / (m_rate * room.seconds);
        const double low = std::pow(10.0, fall);
        const double high = std::pow(10.0, fall / room.highShare);
        power += low * low / kLines;
        const double middle = std::sqrt(2.0 * low * high) * m_corner;
        const double corner = low * m_corner * m_corner;
        const double forward[] = {high + middle + corner, 2.0 * (corner - high), high - middle + corner};
        for (std::size_t i = 0; i < 3; ++i) {
            // The matrix is made of sums; its scale stands here.
            shape.forward[i][line] = static_cast<float>(forward[i] / ScaleOf(m_corner) / 4.0);
        }
    }
    shape.inputGain = static_cast<float>(std::sqrt((1.0 - power) / std::max(0.1, power)));
    return shape;
}

void ReverbNetwork::SetRoom(const Room& room, bool atOnce)
{
    m_wanted = room;
    if (atOnce) {
        BeginGlide();
        m_glided = m_glideBlocks;
    }
}

void ReverbNetwork::BeginGlide()
{
    m_from = m_to;
    m_room = m_wanted;
    m_to = ShapeOf(m_room);
    m_glided = 0;
    m_diffuseLeft.SetTime(m_room.seconds / 3);
    m_diffuseRight.SetTime(m_room.seconds / 3);
}

void ReverbNetwork::Process(float* left, float* right)
{
    if (!Gliding() && m_wanted != m_room) {
        BeginGlide();
    }
    Blocks scratch;
    const Rows rows = ReadLines(scratch);
    Feed(left, right);
    Blocks filtered;
    if (Gliding()) {
        Filter<true>(rows, filtered);
        ++m_glided;
    } else {
        Filter<false>(rows, filtered);
    }
    MixLines(filtered, left, right);
}

float ReverbNetwork::Glided(std::size_t blocks) const
{
    // Slowly at both ends, where a ramp's corners would be heard.
    const float way = static_cast<float>(blocks) / static_cast<float>(m_glideBlocks);
    return way * way * (3.0F - 2.0F * way);
}

void ReverbNetwork::Feed(float* left, float* right)
{
    const float way = Gliding() ? Glided(m_glided) : 1.0F;
    const float step = Gliding() ? GlideStep() : 0.0F;
    const float gains = m_to.inputGain - m_from.inputGain;
    for (std::size_t i = 0; i < kBlock; ++i) {
        const float gain =
            m_from.inputGain + gains * (way + step * static_cast<float>(static_cast<std::int32_t>(i + 1)));
        left[i] *= gain;
        right[i] *= gain;
    }
    m_diffuseLeft.Process(left, way, step);
    m_diffuseRight.Process(right, way, step);
}

ReverbNetwork::Rows ReverbNetwork::ReadLines(Blocks& scratch) const
{
    Rows rows;
    for (std::size_t line = 0; line < kLines; ++line) {
        rows[line] = m_lines[line].Read(m_to.delays[line]);
    }
    if (!Gliding() || m_from.delays == m_to.delays) {
        return rows;
    }
    const float step = GlideStep();
    for (std::size_t line = 0; line < kLines; ++line) {
        const float* before = m_lines[line].Read(m_from.delays[line]);
        for (std::size_t i = 0; i < kBlock; ++i) {
            const float share = Glided(m_glided) + step * static_cast<float>(static_cast<std::int32_t>(i + 1));
            scratch[line][i] = before[i] + share * (rows[line][i] - before[i]);
        }
        rows[line] = scratch[line].data();
    }
    return rows;
}

template <bool Gliding>
void ReverbNetwork::Filter(const Rows& rows, Blocks& filtered)
{
    const Quad back1 = m_back[0] + Quad{};
    const Quad back2 = m_back[1] + Quad{};
    // The lanes are lines, so that four filters turn at once; and as each waits for its own last result, two quads of
    // them go side by side.
    for (std::size_t first = 0; first < kLines; first += 8) {
        Quad forward[2][3];
        Quad step[2][3];
        Quad state[2][2];
        for (std::size_t quad = 0; quad < 2; ++quad) {
            const std::size_t line = first + quad * 4;
            state[quad][0] = LoadQuad(&m_states[0][line]);
            state[quad][1] = LoadQuad(&m_states[1][line]);
            for (std::size_t k = 0; k < 3; ++k) {
                forward[quad][k] = LoadQuad(&m_to.forward[k][line]);
                if constexpr (Gliding) {
                    const Quad from = LoadQuad(&m_from.forward[k][line]);
                    const Quad way = forward[quad][k] - from;
                    step[quad][k] = way * GlideStep();
                    forward[quad][k] = from + way * Glided(m_glided);
                }
            }
        }
        for (std::size_t i = 0; i < kBlock; i += 4) {
            Quad frames[2][4];
            for (std::size_t line = 0; line < 8; ++line) {
                frames[line / 4][line % 4] = LoadQuad(rows[first + line] + i);
            }
            Transpose(frames[0]);
            Transpose(frames[1]);
            for (std::size_t frame = 0; frame < 4; ++frame) {
                for (std::size_t quad = 0; quad < 2; ++quad) {
                    if constexpr (Gliding) {
                        for (std::size_t k = 0; k < 3; ++k) {
                            forward[quad][k] += step[quad][k];
                        }
                    }
                    const Quad in = frames[quad][frame];
                    const Quad result = forward[quad][0] * in + state[quad][0];
                    state[quad][0] = (forward[quad][1] * in + state[quad][1]) - back1 * result;
                    state[quad][1] = forward[quad][2] * in - back2 * result;
                    frames[quad][frame] = result;
                }
            }
            Transpose(frames[0]);
            Transpose(frames[1]);
            for (std::size_t line = 0; line < 8; ++line) {
                StoreQuad(filtered[first + line].data() + i, frames[line / 4][line % 4]);
            }
        }
        for (std::size_t quad = 0; quad < 2; ++quad) {
            StoreQuad(&m_states[0][first + quad * 4], state[quad][0]);
            StoreQuad(&m_states[1][first + quad * 4], state[quad][1]);
        }
    }
}

void ReverbNetwork::MixLines(Blocks& rows, float* left, float* right)
{
    std::array<float*, kLines> written;
    for (std::size_t line = 0; line < kLines; ++line) {
        written[line] = m_lines[line].Next();
    }
    // The lanes are frames, so that the matrix is a row of sums.
    for (std::size_t i = 0; i < kBlock; i += 4) {
        const Quad fed[] = {LoadQuad(left + i), LoadQuad(right + i)};
        Quad heardLeft{};
        Quad heardRight{};
        for (std::size_t group = 0; group < 4; ++group) {
            Quad mixed[4];
            for (std::size_t k = 0; k < 4; ++k) {
                mixed[k] = LoadQuad(rows[4 * group + k].data() + i);
            }
            MixFour(mixed);
            for (std::size_t k = 0; k < 4; ++k) {
                StoreQuad(rows[4 * group + k].data() + i, mixed[k]);
            }
            heardLeft += mixed[kHeardLeft[group]];
            heardRight += mixed[kHeardRight[group]];
        }
        for (std::size_t group = 0; group < 4; ++group) {
            Quad mixed[4];
            for (std::size_t k = 0; k < 4; ++k) {
                mixed[k] = LoadQuad(rows[group + 4 * k].data() + i);
            }
            MixFour(mixed);
            for (std::size_t k = 0; k < 4; ++k) {
                const std::size_t line = group + 4 * k;
                StoreQuad(written[line] + i, mixed[k] + fed[FedByLeft(line) ? 0 : 1]);
            }
        }
        StoreQuad(left + i, heardLeft);
        StoreQuad(right + i, heardRight);
    }
    for (BlockLine& line : m_lines) {
        line.Advance();
    }
}

void ReverbNetwork::Clear()
{
    for (BlockLine& line : m_lines) {
        line.Clear();
    }
    m_states = {};
    m_diffuseLeft.Clear();
    m_diffuseRight.Clear();
}

} // namespace velmora::soundlayer
