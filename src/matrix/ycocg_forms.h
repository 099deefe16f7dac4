// The YCoCg forms: Y = (R + 2 G + B) / 4, Co = (R - B) / 2, Cg = (2 G - R - B) / 4
// by shifts and adds, and the reversible lifting form whose inverse gives the
// source back exactly.
//
// Each form is written once, as a template over its number type, and runs on
// four kinds of numbers with the same results lane for lane:
//   S16 / I16x8  one pixel / eight pixels, 16-bit wrap-around after every step;
//   S32 / I32x4  one pixel / four pixels, 32-bit wrap-around after every step.
// The width a form runs in belongs to the operation (the width of its source
// plane for the inverse forms, of the sums for the forward ones); where the
// values never leave 16 bits the two widths give the same numbers.
// All divisions are arithmetic shifts right (floor).
#pragma once

#include <cstdint>

#include "frame/forms.h"

namespace kro::ycocg {

// ------------------------------------------------------------ number types
// x reduced to a signed 16-bit number (its low 16 bits), without
// implementation-defined conversions
inline int wrap16(int x) { return ((x & 0xffff) ^ 0x8000) - 0x8000; }
inline int wrap16(int64_t x) { return static_cast<int>(((x & 0xffff) ^ 0x8000) - 0x8000); }

// One pixel in 16 bits: every result is reduced to a signed 16-bit number.
struct S16 {
    int v;
    S16(int k) : v(wrap16(k)) {}  // NOLINT: constants mix in like ints
    friend S16 operator+(S16 a, S16 b) { return S16(a.v + b.v); }
    friend S16 operator-(S16 a, S16 b) { return S16(a.v - b.v); }
    friend S16 operator>>(S16 a, int n) { return S16(a.v >> n); }
    int value() const { return v; }
};

// One pixel in 32 bits: sums wrap modulo 2^32 (computed in unsigned).
struct S32 {
    int32_t v;
    S32(int k) : v(k) {}  // NOLINT
    static S32 of(uint32_t u) { return S32(static_cast<int32_t>(u)); }
    friend S32 operator+(S32 a, S32 b) { return of(static_cast<uint32_t>(a.v) + static_cast<uint32_t>(b.v)); }
    friend S32 operator-(S32 a, S32 b) { return of(static_cast<uint32_t>(a.v) - static_cast<uint32_t>(b.v)); }
    friend S32 operator>>(S32 a, int n) { return S32(a.v >> n); }
    int value() const { return v; }
};

// Eight pixels in 16-bit lanes, wrapping like S16.
struct I16x8 {
    V v;
    I16x8() = default;
    explicit I16x8(V x) : v(x) {}
    I16x8(int k) : v(_mm_set1_epi16(static_cast<short>(wrap16(k)))) {}  // NOLINT
    friend I16x8 operator+(I16x8 a, I16x8 b) { return I16x8(_mm_add_epi16(a.v, b.v)); }
    friend I16x8 operator-(I16x8 a, I16x8 b) { return I16x8(_mm_sub_epi16(a.v, b.v)); }
    friend I16x8 operator>>(I16x8 a, int n) { return I16x8(_mm_srai_epi16(a.v, n)); }
};

// The scalar twin of each lane type, and the pixels one vector holds.
template <class Lane>
struct LaneTraits;
template <>
struct LaneTraits<I16x8> {
    using Scalar = S16;
    static constexpr int kPixels = 8;
};
template <>
struct LaneTraits<I32x4> {
    using Scalar = S32;
    static constexpr int kPixels = 4;
};

// ============================================================ forward forms
// In: R, G, B. Out: Y, Co, Cg.

// Form 1: rounded sums, chroma offset by 128 and limited to 255 (8-bit planes;
// Co and Cg reach 256 only at their top, Y stays below 256, nothing goes below 0).
struct Fwd1 {
    template <class T>
    static void apply(T r, T g, T b, T& y, T& co, T& cg) {
        y = (r + g + g + b + 2) >> 2;
        co = lim255(((r - b + 1) >> 1) + 128);
        cg = lim255(((g + g - r - b + 2) >> 2) + 128);
    }
    static S16 lim255(S16 x) { return x.v > 255 ? S16(255) : x; }
};

// Form 2: rounded sums, chroma centred on 0.
struct Fwd2 {
    template <class T>
    static void apply(T r, T g, T b, T& y, T& co, T& cg) {
        y = (r + g + g + b + 2) >> 2;
        co = (r - b + 1) >> 1;
        cg = (g + g - r - b + 2) >> 2;
    }
};

// Form 3: the lifting steps of the reversible transform (form 5 when run in 16 bits).
struct Fwd3 {
    template <class T>
    static void apply(T r, T g, T b, T& y, T& co, T& cg) {
        co = r - b;
        const T t = b + (co >> 1);
        cg = g - t;
        y = t + (cg >> 1);
    }
};

// ============================================================ inverse forms
// In: Y, Co, Cg. Out: R, G, B (before the destination's saturation or wrap).

// Form 1: offset chroma (8-bit planes; the sums stay within 16 bits).
struct Inv1 {
    template <class T>
    static void apply(T y, T co, T cg, T& r, T& g, T& b) {
        r = y + co - cg;
        g = y + cg - 128;
        b = y - co - cg + 256;
    }
};

// Form 2: inverse of form 2 without its rounding.
struct Inv2 {
    template <class T>
    static void apply(T y, T co, T cg, T& r, T& g, T& b) {
        g = y + cg;
        r = y + co - cg;
        b = y - co - cg;
    }
};

// Form 3: the lifting steps undone in reverse order; exact inverse of form 3
// (and of form 5 in 16 bits).
struct Inv3 {
    template <class T>
    static void apply(T y, T co, T cg, T& r, T& g, T& b) {
        const T t = y - (cg >> 1);
        g = cg + t;
        b = t - (co >> 1);
        r = b + co;
    }
};

}  // namespace kro::ycocg
