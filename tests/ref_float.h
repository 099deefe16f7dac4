// Float arithmetic for the references, spelled out: IEEE round-to-nearest
// results, and the x86 rules for NaNs made explicit (a NaN operand comes out
// quieted, the first operand's if both are NaN; an invalid operation with no
// NaN operand gives the default NaN, sign bit set). Conversions to 32-bit
// integers give 0x80000000 for NaNs and values out of range.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace ref {

template <class F>
struct FBits;
template <>
struct FBits<float> {
    using U = uint32_t;
    static constexpr U quiet = 0x00400000u, dflt = 0xffc00000u;
};
template <>
struct FBits<double> {
    using U = uint64_t;
    static constexpr U quiet = 0x0008000000000000ull, dflt = 0xfff8000000000000ull;
};

template <class F>
inline typename FBits<F>::U bitsOf(F f) {
    typename FBits<F>::U u;
    std::memcpy(&u, &f, sizeof f);
    return u;
}
template <class F>
inline F fromBits(typename FBits<F>::U u) {
    F f;
    std::memcpy(&f, &u, sizeof f);
    return f;
}
template <class F>
inline F quieted(F a) {
    return fromBits<F>(bitsOf(a) | FBits<F>::quiet);
}

template <class F>
inline F nanRule(F a, F b, F r) {
    if (std::isnan(a)) return quieted(a);
    if (std::isnan(b)) return quieted(b);
    if (std::isnan(r)) return fromBits<F>(FBits<F>::dflt);
    return r;
}
template <class F>
inline F add(F a, F b) {
    volatile F r = a + b;
    return nanRule(a, b, F(r));
}
template <class F>
inline F mul(F a, F b) {
    volatile F r = a * b;
    return nanRule(a, b, F(r));
}

// nearest, ties to even
inline int32_t roundEvenRef(double v) {
    if (std::isnan(v) || v >= 2147483647.5 || v < -2147483648.5) return INT32_MIN;
    double fl = std::floor(v), diff = v - fl;
    double r = diff > 0.5 ? fl + 1 : diff < 0.5 ? fl : (std::fmod(fl, 2.0) == 0 ? fl : fl + 1);
    if (r > 2147483647.0) return INT32_MIN;
    return int32_t(r);
}
// toward zero
inline int32_t truncRef(double v) {
    if (std::isnan(v) || v >= 2147483648.0 || v <= -2147483649.0) return INT32_MIN;
    return int32_t(std::trunc(v));
}

inline int clampInt(int64_t v, int lo, int hi) { return v < lo ? lo : v > hi ? hi : int(v); }

}  // namespace ref
