// The float forms of CIE L*a*b*: RGB to XYZ, the cube root by table and
// binomial series, f(t) with its linear segment, XYZ to Lab and back, and the
// sample encodings of each type.
//
// Forms are templates over their number type: float for the scalar tail,
// F32x4 for four pixels of the main path, Pair<Pair<F32x4>> for sixteen. Every product and sum rounds to a
// float in the order written, so a pixel gets the same numbers in either path.
// The few steps that are not plain arithmetic (table lookup, choice by mask,
// conversions) stand below as scalar and vector overloads side by side.
#pragma once

#include <utility>

#include "frame/forms.h"
#include "perceptual/lab_tables.h"

namespace kro::lab {

using kro::clampU8;
using kro::roundEven;

// ------------------------------------------------------------ four float lanes as a number
struct F32x4 {
    VF v;
    F32x4() = default;
    explicit F32x4(VF x) : v(x) {}
    F32x4(float k) : v(_mm_set1_ps(k)) {}  // NOLINT: constants mix in like floats
    friend F32x4 operator+(F32x4 a, F32x4 b) { return F32x4(_mm_add_ps(a.v, b.v)); }
    friend F32x4 operator-(F32x4 a, F32x4 b) { return F32x4(_mm_sub_ps(a.v, b.v)); }
    friend F32x4 operator*(F32x4 a, F32x4 b) { return F32x4(_mm_mul_ps(a.v, b.v)); }
};

// ------------------------------------------------------------ conversions
// integer samples to float (float samples pass)
inline float toFloat(int v) { return static_cast<float>(v); }
inline float toFloat(float v) { return v; }
inline F32x4 toFloat(I32x4 v) { return F32x4(_mm_cvtepi32_ps(v.v)); }
inline F32x4 toFloat(F32x4 v) { return v; }

// nearest, ties to even
inline I32x4 roundEven(F32x4 x) { return I32x4(kro::roundEven(x.v)); }

// limited to 0..65535 (clampU8 of I32x4 comes from the frame)
inline I32x4 clampU16(I32x4 x) {
    return I32x4(_mm_min_epi32(_mm_max_epi32(x.v, _mm_setzero_si128()), _mm_set1_epi32(65535)));
}

template <class T>
using FloatOf = decltype(toFloat(std::declval<T>()));
template <class T>
using IntOf = decltype(roundEven(std::declval<T>()));

// ------------------------------------------------------------ choice by mask
// t <= lim ? a : b; both a and b are computed beforehand in every lane.
inline float pickAtMost(float t, float lim, float a, float b) { return t <= lim ? a : b; }
inline F32x4 pickAtMost(F32x4 t, float lim, F32x4 a, F32x4 b) {
    return F32x4(_mm_blendv_ps(b.v, a.v, _mm_cmple_ps(t.v, _mm_set1_ps(lim))));
}

// ------------------------------------------------------------ cube-root segment
// Segment truncToInt(127.998047 x x) of the table, kept within 0..127: inputs
// beyond 1.0000153, negative or NaN read the nearest end segment (their value
// below thresh is replaced by the linear segment anyway).
inline int cubeIndex(float x) {
    const int i = truncToInt(c::cubeIndexScale * x);
    return i < 0 ? 0 : (i > 127 ? 127 : i);
}
inline I32x4 cubeIndex(F32x4 x) {
    const V i = truncToInt(_mm_mul_ps(_mm_set1_ps(c::cubeIndexScale), x.v));
    return I32x4(_mm_min_epi32(_mm_max_epi32(i, _mm_setzero_si128()), _mm_set1_epi32(127)));
}
// The same for x known to lie in 0..1.0000153 (x, y, z of 0..255 samples
// reach 1.0000012 at most): the index is inside the table as it comes.
inline int cubeIndexInTable(float x) { return truncToInt(c::cubeIndexScale * x); }
inline I32x4 cubeIndexInTable(F32x4 x) {
    return I32x4(truncToInt(_mm_mul_ps(_mm_set1_ps(c::cubeIndexScale), x.v)));
}
// (c, k) of segment i (0..127) of a table
inline void cubeSegmentAt(const CubeTable& tab, int i, float& cc, float& k) {
    const CubeSeg& s = tab.seg[i];
    cc = s.c;
    k = s.k;
}
// four lanes: one 8-byte (c, k) load per lane, then c and k regrouped
inline void cubeSegmentAt(const CubeTable& tab, I32x4 idx, F32x4& cc, F32x4& k) {
    // indices are 0..127: extracted as unsigned, they address without a sign extension
    const V i = idx.v;
    const CubeSeg* t = tab.seg;
    const auto at = [t](unsigned n) { return reinterpret_cast<const __m64*>(&t[n]); };
    const VF p01 = _mm_loadh_pi(_mm_loadl_pi(_mm_setzero_ps(), at(unsigned(_mm_cvtsi128_si32(i)))),
                                at(unsigned(_mm_extract_epi32(i, 1))));
    const VF p23 = _mm_loadh_pi(_mm_loadl_pi(_mm_setzero_ps(), at(unsigned(_mm_extract_epi32(i, 2)))),
                                at(unsigned(_mm_extract_epi32(i, 3))));
    cc = F32x4(_mm_shuffle_ps(p01, p23, _MM_SHUFFLE(2, 0, 2, 0)));
    k = F32x4(_mm_shuffle_ps(p01, p23, _MM_SHUFFLE(3, 1, 3, 1)));
}
template <class T>
inline void cubeSegment(T x, T& cc, T& k) {
    cubeSegmentAt(kCubeTable, cubeIndex(x), cc, k);
}

// ------------------------------------------------------------ groups of four side by side
// The main path runs four groups of four pixels side by side (a pair of pairs):
// each step of one group sits next to the same step of the others, so the
// table lookups and long product chains of one overlap those of the others.
// Every lane gets exactly the numbers of a lone group of four.
template <class Q>
struct Pair {
    Q lo, hi;
    Pair() = default;
    Pair(Q l, Q h) : lo(l), hi(h) {}
    Pair(float k) : lo(k), hi(k) {}  // NOLINT: constants mix in like floats
    friend Pair operator+(Pair a, Pair b) { return {a.lo + b.lo, a.hi + b.hi}; }
    friend Pair operator-(Pair a, Pair b) { return {a.lo - b.lo, a.hi - b.hi}; }
    friend Pair operator*(Pair a, Pair b) { return {a.lo * b.lo, a.hi * b.hi}; }
};

template <class Q>
inline auto toFloat(Pair<Q> v) -> Pair<decltype(toFloat(v.lo))> { return {toFloat(v.lo), toFloat(v.hi)}; }
template <class Q>
inline auto roundEven(Pair<Q> x) -> Pair<decltype(roundEven(x.lo))> { return {roundEven(x.lo), roundEven(x.hi)}; }
template <class Q>
inline Pair<Q> clampU8(Pair<Q> x) { return {clampU8(x.lo), clampU8(x.hi)}; }
template <class Q>
inline Pair<Q> clampU16(Pair<Q> x) { return {clampU16(x.lo), clampU16(x.hi)}; }
template <class Q>
inline Pair<Q> pickAtMost(Pair<Q> t, float lim, Pair<Q> a, Pair<Q> b) {
    return {pickAtMost(t.lo, lim, a.lo, b.lo), pickAtMost(t.hi, lim, a.hi, b.hi)};
}
template <class Q>
inline auto cubeIndex(Pair<Q> x) -> Pair<decltype(cubeIndex(x.lo))> { return {cubeIndex(x.lo), cubeIndex(x.hi)}; }
template <class Q>
inline auto cubeIndexInTable(Pair<Q> x) -> Pair<decltype(cubeIndexInTable(x.lo))> {
    return {cubeIndexInTable(x.lo), cubeIndexInTable(x.hi)};
}
template <class I, class Q>
inline void cubeSegmentAt(const CubeTable& tab, Pair<I> idx, Pair<Q>& cc, Pair<Q>& k) {
    cubeSegmentAt(tab, idx.lo, cc.lo, k.lo);
    cubeSegmentAt(tab, idx.hi, cc.hi, k.hi);
}

// ------------------------------------------------------------ forms
// The alternating binomial series of (1 + e)^(1/3) in S::terms terms (4, 6
// or 8); a four-term series names its fourth coefficient S::a4.
template <class S, class T>
inline T cubeSeries(T e) {
    // each power is made just before its term: few values alive at once
    T en = e * e;  // e^2
    T p = ((c::a1 * e) + 1.0f) - (c::a2 * en);
    en = en * e;  // e^3
    p = p + (c::a3 * en);
    en = en * e;  // e^4
    if constexpr (S::terms == 4) {
        return p - (S::a4 * en);
    } else {
        static_assert(S::terms == 6 || S::terms == 8, "series of 4, 6 or 8 terms");
        p = p - (c::a4 * en);
        en = en * e;  // e^5
        p = p + (c::a5 * en);
        en = en * e;  // e^6
        p = p - (c::a6 * en);
        if constexpr (S::terms == 8) {
            en = en * e;  // e^7
            p = p + (S::a7 * en);
            en = e * en;  // e^8
            p = p - (S::a8 * en);
        }
        return p;
    }
}

// Cube root of x from segment i of a table: c times the series of
// e = k (x - c^3).
template <class S, class T, class I>
inline T cubeRootAt(const CubeTable& tab, I i, T x) {
    T cc, k;
    cubeSegmentAt(tab, i, cc, k);
    const T e = k * (x - ((cc * cc) * cc));
    return cc * cubeSeries<S>(e);
}

// Cube root of x: c of x's segment times (1 + e)^(1/3), e = k (x - c^3), by
// the alternating binomial series of S::terms terms (4 or 8).
template <class S, class T>
inline T cubeRoot(T x) {
    return cubeRootAt<S>(kCubeTable, cubeIndex(x), x);
}

// f(t): the cube root above thresh, slope t + 16/116 at and below it.
// InTable: t is known to lie in 0..1.0000153, its segment needs no limits.
template <class S, bool InTable = false, class T>
inline T labF(T t) {
    const T line = (c::slope * t) + c::offs;
    T root;
    if constexpr (InTable)
        root = cubeRootAt<S>(kCubeTable, cubeIndexInTable(t), t);
    else
        root = cubeRoot<S>(t);
    return pickAtMost(t, c::thresh, line, root);
}

// One row of a 3 x 3 matrix: products summed left to right.
template <class T>
inline T rowSum(const float (&m)[3], T a, T b, T d) {
    return ((m[0] * a) + (m[1] * b)) + (m[2] * d);
}

// X/Xn, Y/Yn, Z/Zn to L, a, b. L is linear (903.3 y) at and below thresh.
template <class S, bool InTable = false, class T>
inline void relXyzToLab(T x, T y, T z, T& L, T& a, T& b) {
    // in this order, few values are alive at once: L and a are made before fz
    const T fy = labF<S, InTable>(y);
    L = pickAtMost(y, c::thresh, y * c::lowL, (116.0f * fy) - 16.0f);
    a = (labF<S, InTable>(x) - fy) * 500.0f;
    b = (fy - labF<S, InTable>(z)) * 200.0f;
}

// L, a, b to the cube roots fx, fy, fz of X/Xn, Y/Yn, Z/Zn.
template <class T>
inline void labToRoots(T L, T a, T b, T& fx, T& fy, T& fz) {
    fy = (L + 16.0f) * c::inv116;
    fx = (a * c::inv500) + fy;
    fz = fy - (b * c::inv200);
}

// ------------------------------------------------------------ white and sample scales
// XYZ of 0..255 samples to X/Xn, Y/Yn, Z/Zn; cubes back to XYZ x 255.
// Relative values of such samples stay within 0..1.0000012 (white gives the
// most, every matrix entry being positive): cube-root segments inside the table.
struct White8 {
    static constexpr bool inTable = true;
    template <class T>
    static void relative(T X, T Y, T Z, T& x, T& y, T& z) {
        x = X * c::xScale8;
        y = Y * c::yScale8;
        z = Z * c::zScale8;
    }
    template <class T>
    static void absolute(T fx, T fy, T fz, T& X, T& Y, T& Z) {
        X = ((fx * fx) * fx) * c::xn255;
        Y = ((fy * fy) * fy) * 255.0f;
        Z = ((fz * fz) * fz) * c::zn255;
    }
};
// XYZ of 0..1 samples (Yn = 1); any float may come, segments are limited.
struct WhiteF {
    static constexpr bool inTable = false;
    template <class T>
    static void relative(T X, T Y, T Z, T& x, T& y, T& z) {
        x = X * c::xScaleF;
        y = Y;
        z = Z * c::zScaleF;
    }
    template <class T>
    static void absolute(T fx, T fy, T fz, T& X, T& Y, T& Z) {
        X = ((fx * fx) * fx) * c::xn;
        Y = (fy * fy) * fy;
        Z = ((fz * fz) * fz) * c::zn;
    }
};

// ------------------------------------------------------------ Lab sample encodings
// Each encoding turns three Lab samples into floats L, a, b (decode) and back
// (encode, nearest even; the destination's store limits the lanes of the main
// path to the sample range).

// 8 bits: L x 2.55, a + 128, b + 128.
struct Lab8 {
    template <class I, class T = FloatOf<I>>
    static void decode(const I (&s)[3], T& L, T& a, T& b) {
        L = toFloat(s[0]) * c::inL8;
        a = toFloat(s[1]) - 128.0f;
        b = toFloat(s[2]) - 128.0f;
    }
    template <class T, class I = IntOf<T>>
    static void encode(T L, T a, T b, I (&s)[3]) {
        s[0] = roundEven(L * c::outL8);
        s[1] = roundEven(a + 128.0f);
        s[2] = roundEven(b + 128.0f);
    }
};
// 16 bits: L x 655.35, (a + 128) x 255, (b + 128) x 255.
struct Lab16 {
    template <class I, class T = FloatOf<I>>
    static void decode(const I (&s)[3], T& L, T& a, T& b) {
        L = toFloat(s[0]) * c::inL16;
        a = (toFloat(s[1]) * c::inAB16) - 128.0f;
        b = (toFloat(s[2]) * c::inAB16) - 128.0f;
    }
    template <class T, class I = IntOf<T>>
    static void encode(T L, T a, T b, I (&s)[3]) {
        s[0] = roundEven(L * c::outL16);
        s[1] = roundEven((a + 128.0f) * 255.0f);
        s[2] = roundEven((b + 128.0f) * 255.0f);
    }
};
// float: L, a, b themselves.
struct LabF {
    template <class T>
    static void decode(const T (&s)[3], T& L, T& a, T& b) {
        L = s[0];
        a = s[1];
        b = s[2];
    }
    template <class T>
    static void encode(T L, T a, T b, T (&s)[3]) {
        s[0] = L;
        s[1] = a;
        s[2] = b;
    }
};

// RGB of the inverse direction: 8 bits nearest even and limited to 0..255 in
// both paths; float as computed, unclamped.
struct Rgb8Out {
    template <class T, class I = IntOf<T>>
    static void encode(T r, T g, T b, I (&s)[3]) {
        s[0] = clampU8(roundEven(r));
        s[1] = clampU8(roundEven(g));
        s[2] = clampU8(roundEven(b));
    }
};
struct RgbFOut {
    template <class T>
    static void encode(T r, T g, T b, T (&s)[3]) {
        s[0] = r;
        s[1] = g;
        s[2] = b;
    }
};

// ------------------------------------------------------------ whole conversions
// RGB samples to Lab samples: XYZ by the matrix, relative to the white, f of
// each, then L, a, b into the destination's encoding.
template <class White, class Series, class Out>
struct ToLab {
    template <class I, class O>
    static void apply(const I (&s)[3], O (&d)[3]) {
        using T = FloatOf<I>;
        const T r = toFloat(s[0]), g = toFloat(s[1]), b = toFloat(s[2]);
        const T X = rowSum(kRgbToXyz[0], r, g, b);
        const T Y = rowSum(kRgbToXyz[1], r, g, b);
        const T Z = rowSum(kRgbToXyz[2], r, g, b);
        T x, y, z;
        White::relative(X, Y, Z, x, y, z);
        T L, a, bb;
        relXyzToLab<Series, White::inTable>(x, y, z, L, a, bb);
        Out::encode(L, a, bb, d);
    }
};

// Lab samples to RGB samples: cube roots, cubes times the white (no linear
// segment), then RGB by the inverse matrix.
template <class In, class White, class Out>
struct FromLab {
    template <class I, class O>
    static void apply(const I (&s)[3], O (&d)[3]) {
        using T = FloatOf<I>;
        T L, a, b;
        In::decode(s, L, a, b);
        T fx, fy, fz;
        labToRoots(L, a, b, fx, fy, fz);
        T X, Y, Z;
        White::absolute(fx, fy, fz, X, Y, Z);
        const T r = rowSum(kXyzToRgb[0], X, Y, Z);
        const T g = rowSum(kXyzToRgb[1], X, Y, Z);
        const T bl = rowSum(kXyzToRgb[2], X, Y, Z);
        Out::encode(r, g, bl, d);
    }
};

}  // namespace kro::lab
