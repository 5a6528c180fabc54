#pragma once

namespace velmora::soundlayer {

/// Four floats fill a vector register of every x86-64, eight one of a machine with AVX2. A loop is written once, for
/// either, and inlined into a function for each kind of machine; the results are the same to the bit.
template <unsigned Lanes>
struct VectorOf;

template <>
struct VectorOf<4> {
    using Floats = float __attribute__((vector_size(16)));
    using Integers = int __attribute__((vector_size(16)));
};

template <>
struct VectorOf<8> {
    using Floats = float __attribute__((vector_size(32)));
    using Integers = int __attribute__((vector_size(32)));
};

/// Whether eight at once go through this machine.
inline bool IsWide()
{
    static const bool wide = __builtin_cpu_supports("avx2") != 0;
    return wide;
}

/// Calls `work`, a lambda of plain loops that is always inlined, so that they are made for either width.
template <typename Work>
[[gnu::target("avx2")]] void CallWide(const Work& work)
{
    work();
}

template <typename Work>
void AtBestWidth(const Work& work)
{
    if (IsWide()) {
        CallWide(work);
    } else {
        work();
    }
}

} // namespace velmora::soundlayer
