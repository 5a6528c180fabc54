#pragma once

#include <cstring>

namespace velmora::soundlayer {

/// Four floats that are worked on at once, a vector register of every x86-64.
using Quad = float __attribute__((vector_size(16)));

/// From and to any four floats in a row.
inline Quad LoadQuad(const float* from)
{
    Quad quad;
    std::memcpy(&quad, from, sizeof quad);
    return quad;
}

inline void StoreQuad(float* to, Quad quad)
{
    std::memcpy(to, &quad, sizeof quad);
}

/// Four rows become four columns.
inline void Transpose(Quad (&rows)[4])
{
    const Quad low01 = __builtin_shufflevector(rows[0], rows[1], 0, 4, 1, 5);
    const Quad high01 = __builtin_shufflevector(rows[0], rows[1], 2, 6, 3, 7);
    const Quad low23 = __builtin_shufflevector(rows[2], rows[3], 0, 4, 1, 5);
    const Quad high23 = __builtin_shufflevector(rows[2], rows[3], 2, 6, 3, 7);
    rows[0] = __builtin_shufflevector(low01, low23, 0, 1, 4, 5);
    rows[1] = __builtin_shufflevector(low01, low23, 2, 3, 6, 7);
    rows[2] = __builtin_shufflevector(high01, high23, 0, 1, 4, 5);
    rows[3] = __builtin_shufflevector(high01, high23, 2, 3, 6, 7);
}

/// A Hadamard matrix of order four, not scaled.
inline void MixFour(Quad (&rows)[4])
{
    const Quad sum01 = rows[0] + rows[1];
    const Quad difference01 = rows[0] - rows[1];
    const Quad sum23 = rows[2] + rows[3];
    const Quad difference23 = rows[2] - rows[3];
    rows[0] = sum01 + sum23;
    rows[1] = difference01 + difference23;
    rows[2] = sum01 - sum23;
    rows[3] = difference01 - difference23;
}

} // namespace velmora::soundlayer
