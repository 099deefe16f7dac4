// Plain reference of the colour twist, written from the arithmetic with
// ordinary float expressions (no intrinsics, nothing shared with the kernels).
#pragma once

#include <cmath>
#include <cstdint>
#include <type_traits>

#include "krocc.h"

namespace ref {

// (t3 + s0 t0) + (s2 t2 + s1 t1), every operation a 32-bit float one.
inline float twistSum(const float (&t)[4], float s0, float s1, float s2) {
    const float a = t[3] + s0 * t[0];
    const float b = s2 * t[2] + s1 * t[1];
    return a + b;
}

// ((s0 t0 + s1 t1) + s2 t2) + s3 t3.
inline float twistSum4(const float (&t)[4], const float (&s)[4]) {
    float v = s[0] * t[0] + s[1] * t[1];
    v = v + s[2] * t[2];
    return v + s[3] * t[3];
}

// Nearest, ties to even, without the processor's rounding mode (|v| < 2^23).
inline int roundHalfEven(float v) {
    const double f = std::floor(static_cast<double>(v));
    const double frac = static_cast<double>(v) - f;
    long long r = static_cast<long long>(f);
    if (frac > 0.5 || (frac == 0.5 && (r & 1))) ++r;
    return static_cast<int>(r);
}

template <class T>
inline T saturateTwist(float d) {
    float lo, hi;
    if constexpr (std::is_same_v<T, Kro8u>) lo = 0, hi = 255;
    else if constexpr (std::is_same_v<T, Kro16u>) lo = 0, hi = 65535;
    else lo = -32768, hi = 32767;
    float v = d < hi ? d : hi;  // NaN: the upper bound
    v = v > lo ? v : lo;
    return static_cast<T>(roundHalfEven(v));
}

// One pixel of a 3 x 4 twist on samples of type T.
template <class T>
inline void twistPixel(const float (&m)[3][4], const T (&s)[3], T (&o)[3]) {
    const float f0 = static_cast<float>(s[0]), f1 = static_cast<float>(s[1]), f2 = static_cast<float>(s[2]);
    for (int i = 0; i < 3; ++i) {
        const float d = twistSum(m[i], f0, f1, f2);
        if constexpr (std::is_same_v<T, Kro32f>) o[i] = d;
        else o[i] = saturateTwist<T>(d);
    }
}

}  // namespace ref
