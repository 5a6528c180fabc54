#pragma once

#include <xmmintrin.h>

namespace velmora::soundlayer {

/// While it lives, this thread's numbers too small for full precision count as zero: they would cost a hundred times as
/// much as others, and nobody hears them. [RT]
class FlushDenormals {
public:
    FlushDenormals()
        : m_before(_mm_getcsr())
    {
        if ((m_before & kFlush) != kFlush) {
            _mm_setcsr(m_before | kFlush);
        }
    }
    ~FlushDenormals()
    {
        if ((m_before & kFlush) != kFlush) {
            _mm_setcsr(m_before);
        }
    }
    FlushDenormals(const FlushDenormals&) = delete;
    FlushDenormals& operator=(const FlushDenormals&) = delete;

private:
    /// Results become zero (bit 15), arguments count as zero (bit 6).
    static constexpr unsigned kFlush = 0x8040;

    const unsigned m_before;
};

} // namespace velmora::soundlayer
