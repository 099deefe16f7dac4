// The arithmetic of RGB <-> CIE L*u*v* (linear RGB, D65 white): XYZ by the
// matrices of lab_tables.h, L by the cube-root table and binomial series of
// lab_forms.h, u and v from u' and v' of the colour and of the white.
//
// Forms are templates over their number type: float for the scalar tail,
// F32x4 for four pixels of the main path; every product and sum rounds to a
// float in the order written. Main paths and tails are different forms here:
// main paths multiply by reciprocals (estimate, refined: reciprocal.h), tails
// divide, and each keeps its own guards, clamps and rounding. The masks and
// choices below stand scalar beside vector.
#pragma once

#include <type_traits>

#include "frame/forms_typed.h"
#include "perceptual/lab_forms.h"
#include "perceptual/reciprocal.h"

namespace kro::lab {
// four-lane division and estimate, found by argument lookup from the forms
inline F32x4 operator/(F32x4 a, F32x4 b) { return F32x4(_mm_div_ps(a.v, b.v)); }
inline F32x4 estimate(F32x4 x) { return F32x4(recip::estimate(x.v)); }
}  // namespace kro::lab

namespace kro::luv {

using lab::bitsF;
using lab::CubeTable;
using lab::F32x4;
using lab::IntOf;
using lab::kCubeTable;
using lab::kRgbToXyz;
using lab::kXyzToRgb;
using lab::rowSum;
using kro::clampU8;
using lab::clampU16;
using kro::clampU16;
using lab::roundEven;
using kro::truncToInt;
using lab::estimate;
using recip::estimate;
inline I32x4 truncToInt(F32x4 x) { return I32x4(kro::truncToInt(x.v)); }

// ------------------------------------------------------------ constants (stored bit patterns)
namespace c {
using namespace lab::c;  // matrices' scales, thresh, lowL, inv116, outL8/16, inL8/16, series
inline constexpr float unit8 = bitsF(0x3B808081);      // 1/255: 8-bit RGB to 0..1
inline constexpr float un = bitsF(0x3E4A964F);         // u' of white
inline constexpr float vn = bitsF(0x3EEFCA86);         // v' of white
inline constexpr float unTail = bitsF(0x3E4A966A);     // u' of white, inverse tail of integer forms
inline constexpr float vnTail = bitsF(0x3EEFCA8D);     // v' of white, inverse tail of integer forms
inline constexpr float unit16 = bitsF(0x37800080);     // 16-bit Y to 0..1
inline constexpr float thresh16 = bitsF(0x44111831);   // thresh in 16-bit units (580.378)
inline constexpr float outU8 = bitsF(0x3F386823);      // (u + 134) to 8 bits, 255/354
inline constexpr float outV8 = bitsF(0x3F79290A);      // (v + 140) to 8 bits, 255/262
inline constexpr float outU16 = bitsF(0x4339208B);     // (u + 134) to 16 bits
inline constexpr float outV16 = bitsF(0x437A2233);     // (v + 140) to 16 bits
inline constexpr float inU8 = bitsF(0x3FB1B1B2);       // 8-bit u sample to 0..354
inline constexpr float inV8 = bitsF(0x3F838384);       // 8-bit v sample to 0..262
inline constexpr float inU16 = bitsF(0x3BB100B1);      // 16-bit u sample to 0..354
inline constexpr float inV16 = bitsF(0x3B830083);      // 16-bit v sample to 0..262
inline constexpr float lowY = bitsF(0x3A911A80);       // 1/903.3
inline constexpr float lBreak = bitsF(0x40FFFCED);     // L at the end of the linear segment
inline constexpr float nudge = bitsF(0x38BCBE62);      // keeps L and the v' term away from 0
inline constexpr float epsMain = bitsF(0x37480000);    // main-path guard on the v' term
inline constexpr float epsTail = bitsF(0x34000000);    // float tail guard on the v' term
inline constexpr float third = bitsF(0x3EAAAAAB);      // 1/3
inline constexpr double bTailD = 1.057311;             // 0x3FF0EABEF06B3786, B of the integer tails
}  // namespace c

// ------------------------------------------------------------ cube root: tables and series
// The float and 16-bit forms read the table with its last four segments
// built for (i + 1) / 128 + 0.0001 in place of (i + 1) / 127.998046875 + 0.0001.
namespace detail {
constexpr CubeTable makeCubeTable128() {
    CubeTable t = kCubeTable;
    for (int i = 124; i < 128; ++i) {
        const double x = (i + 1) / 128.0 + 0.0001;
        t.seg[i].c = lab::detail::sixDecimals(lab::detail::cubeRootD(x));
        t.seg[i].k = lab::detail::sixDecimals(1.0 / x);
    }
    return t;
}
}  // namespace detail
alignas(16) inline constexpr CubeTable kCubeTable128 = detail::makeCubeTable128();
static_assert(kCubeTable128.seg[124].c == 0.992160f && kCubeTable128.seg[124].k == 1.023895f, "segment 124");
static_assert(kCubeTable128.seg[125].c == 0.994798f && kCubeTable128.seg[125].k == 1.015770f, "segment 125");
static_assert(kCubeTable128.seg[126].c == 0.997423f && kCubeTable128.seg[126].k == 1.007772f, "segment 126");
static_assert(kCubeTable128.seg[127].c == 1.000033f && kCubeTable128.seg[127].k == 0.999900f, "segment 127");
static_assert(kCubeTable128.seg[123].c == kCubeTable.seg[123].c, "segments below 124 as in the Lab table");

struct Series4a5 {  // 8u: four terms, the fourth coefficient a5's 22/729
    static constexpr int terms = 4;
    static constexpr float a4 = c::a5;
};
struct Series6 {  // 16-bit
    static constexpr int terms = 6;
};
using Series8 = lab::Series8;  // float

// ------------------------------------------------------------ masks and choices
inline bool isZero(float x) { return x == 0.0f; }
inline VF isZero(F32x4 x) { return _mm_cmpeq_ps(x.v, _mm_setzero_ps()); }
inline bool atMost(float x, float k) { return x <= k; }
inline VF atMost(F32x4 x, float k) { return _mm_cmple_ps(x.v, _mm_set1_ps(k)); }
inline bool atLeast(float x, float k) { return x >= k; }
inline VF atLeast(F32x4 x, float k) { return _mm_cmpge_ps(x.v, _mm_set1_ps(k)); }
inline bool below(float x, float k) { return x < k; }
inline VF below(F32x4 x, float k) { return _mm_cmplt_ps(x.v, _mm_set1_ps(k)); }
inline float absF(float x) { return _mm_cvtss_f32(_mm_andnot_ps(_mm_set_ss(-0.0f), _mm_set_ss(x))); }
inline F32x4 absF(F32x4 x) { return F32x4(_mm_andnot_ps(_mm_set1_ps(-0.0f), x.v)); }
// a where m holds, else b
inline float pick(bool m, float a, float b) { return m ? a : b; }
inline F32x4 pick(VF m, F32x4 a, F32x4 b) { return F32x4(_mm_blendv_ps(b.v, a.v, m)); }
// 0 where m holds, else a
inline float zeroWhere(bool m, float a) { return m ? 0.0f : a; }
inline F32x4 zeroWhere(VF m, F32x4 a) { return F32x4(_mm_andnot_ps(m, a.v)); }
// limited to 0..1 (max then min, as the instructions do it)
inline float clamp01(float x) { return kro::clamp01(x); }
inline F32x4 clamp01(F32x4 x) { return F32x4(kro::clamp01(x.v)); }

inline int segmentLimit(int i) { return i < 0 ? 0 : (i > 127 ? 127 : i); }
inline I32x4 segmentLimit(I32x4 i) {
    return I32x4(_mm_min_epi32(_mm_max_epi32(i.v, _mm_setzero_si128()), _mm_set1_epi32(127)));
}

// float to integer
struct Nearest {
    template <class T>
    static IntOf<T> of(T x) { return roundEven(x); }
};
struct Trunc {
    template <class T>
    static IntOf<T> of(T x) { return truncToInt(x); }
};

// ============================================================ RGB -> LUV
// RGB samples to the floats the matrix works on.
struct InUnit8 {  // 8u: x 1/255
    template <class T>
    static T of(T s) { return s * c::unit8; }
};
struct InRaw {  // 16u and 32f: as they stand
    template <class T>
    static T of(T s) { return s; }
};
struct InBias16 {  // 16s: plus 32768
    template <class T>
    static T of(T s) { return s + 32768.0f; }
};

// L of Y on 0..1 (8u, 32f): lowL Y at and below thresh, else ((c p) 116) - 16
// with the segment truncToInt(127.998047 Y) of the table.
template <const CubeTable& Tab, class S>
struct LightUnit {
    template <class T>
    static T of(T Y) {
        const T root = lab::cubeRootAt<S>(Tab, lab::cubeIndex(Y), Y);
        return lab::pickAtMost(Y, c::thresh, c::lowL * Y, (root * 116.0f) - 16.0f);
    }
};
// L of Y on 0..65535: y = Y x unit16; lowL y at and below thresh16, else the
// series of y with the segment (integer of Y) >> 9.
template <class IntY>
struct Light16 {
    template <class T>
    static T of(T Y) {
        const T y = Y * c::unit16;
        const auto i = segmentLimit(IntY::of(Y) >> 9);
        const T root = lab::cubeRootAt<Series6>(kCubeTable128, i, y);
        return lab::pickAtMost(Y, c::thresh16, c::lowL * y, (root * 116.0f) - 16.0f);
    }
};

// u' and v' of the colour; den = ((Z 3) + (15 Y)) + X.
struct ChromaGuarded {  // main paths and 16-bit tails: den 0 becomes 3
    template <class T>
    static void of(T X, T Y, T Z, T& up, T& vp) {
        const T den = ((Z * 3.0f) + (15.0f * Y)) + X;
        const T q = recip::refined(pick(isZero(den), den + 3.0f, den));
        up = (X * 4.0f) * q;
        vp = q * (Y * 9.0f);
    }
};
struct ChromaZeroZ {  // tails of 8u and 32f: u' = v' = 0 where Z is 0
    template <class T>
    static void of(T X, T Y, T Z, T& up, T& vp) {
        const T den = ((Z * 3.0f) + (15.0f * Y)) + X;
        const T q = recip::refined(den);
        const auto z = isZero(Z);
        up = zeroWhere(z, (X * 4.0f) * q);
        vp = zeroWhere(z, (Y * 9.0f) * q);
    }
};

// L, u, v to samples.
struct OutLuvF {
    static constexpr bool floatOut = true;
    template <class T>
    static void encode(T L, T u, T v, T (&d)[3]) {
        d[0] = L, d[1] = u, d[2] = v;
    }
};
struct OutLuv8 {  // nearest, limited to 0..255 (never binds for 8-bit sources)
    static constexpr bool floatOut = false;
    template <class T, class I = IntOf<T>>
    static void encode(T L, T u, T v, I (&d)[3]) {
        d[0] = clampU8(roundEven(L * c::outL8));
        d[1] = clampU8(roundEven((u + 134.0f) * c::outU8));
        d[2] = clampU8(roundEven((v + 140.0f) * c::outV8));
    }
};
// 16 bits: L by LConv, u and v by UvConv (v with its extra 0.5 on every
// path); limited to 0..65535, then minus Bias.
template <class LConv, class UvConv, int Bias>
struct OutLuv16 {
    static constexpr bool floatOut = false;
    template <class T, class I = IntOf<T>>
    static void encode(T L, T u, T v, I (&d)[3]) {
        d[0] = clampU16(LConv::of(L * c::outL16)) - Bias;
        d[1] = clampU16(UvConv::of((u + 134.0f) * c::outU16)) - Bias;
        d[2] = clampU16(UvConv::of(((v + 140.0f) * c::outV16) + 0.5f)) - Bias;
    }
};

template <class In, class Light, class Chroma, class Out>
struct ToLuv {
    static constexpr bool floatOut = Out::floatOut;
    template <class T, class R>
    static void apply(const T (&s)[3], R (&d)[3]) {
        const T r = In::of(s[0]), g = In::of(s[1]), b = In::of(s[2]);
        const T X = rowSum(kRgbToXyz[0], r, g, b);
        const T Y = rowSum(kRgbToXyz[1], r, g, b);
        const T Z = rowSum(kRgbToXyz[2], r, g, b);
        const T L = Light::of(Y);
        T up, vp;
        Chroma::of(X, Y, Z, up, vp);
        const T t = 13.0f * L;
        Out::encode(L, (up - c::un) * t, (vp - c::vn) * t, d);
    }
};

// ============================================================ LUV -> RGB, main paths
// Samples to L' (the lightness with the nudge), Du, Dv (signed chroma), the
// linear condition and the scale of Y.
struct DecF {  // 32f: L + nudge where L is at most nudge
    static constexpr float yScale = 1.0f;
    template <class T>
    static T lightness(const T (&s)[3]) { return pick(atMost(s[0], c::nudge), s[0] + c::nudge, s[0]); }
    template <class T>
    static void chroma(const T (&s)[3], T& du, T& dv) { du = s[1], dv = s[2]; }
    template <class T>
    static auto linear(const T (&)[3], T lp) { return atMost(lp, c::lBreak); }
};

struct Scale8 {
    static constexpr float inL = c::inL8, inU = c::inU8, inV = c::inV8;
};
struct Scale16 {
    static constexpr float inL = c::inL16, inU = c::inU16, inV = c::inV16;
};
enum class Nudge {
    ZeroSample,  // (sample, plus nudge if it is 0) x inL
    SmallL,      // (sample x inL), plus nudge if that is at most nudge
};
enum class Linear {
    ZeroSample,  // the L sample is 0
    Break,       // L' at most lBreak
};
template <class Sc, Nudge Nu, Linear Lin, int YScale, int Bias>
struct DecInt {
    static constexpr float yScale = static_cast<float>(YScale);
    template <class T>
    static T sample(T s) {
        if constexpr (Bias != 0) return s + static_cast<float>(Bias);
        return s;
    }
    template <class T>
    static T lightness(const T (&s)[3]) {
        const T l = sample(s[0]);
        if constexpr (Nu == Nudge::ZeroSample) return pick(isZero(l), l + c::nudge, l) * Sc::inL;
        const T lp = l * Sc::inL;
        return pick(atMost(lp, c::nudge), lp + c::nudge, lp);
    }
    template <class T>
    static void chroma(const T (&s)[3], T& du, T& dv) {
        du = (sample(s[1]) * Sc::inU) + -134.0f;
        dv = (sample(s[2]) * Sc::inV) + -140.0f;
    }
    template <class T>
    static auto linear(const T (&s)[3], T lp) {
        if constexpr (Lin == Linear::ZeroSample) return isZero(sample(s[0]));
        else return atMost(lp, c::lBreak);
    }
};

struct ByEstimate {
    template <class T>
    static T of(T x) { return estimate(x); }
};
struct ByRefined {
    template <class T>
    static T of(T x) { return recip::refined(x); }
};

// R, G, B to samples.
struct OutRgbF {  // stored as computed
    static constexpr bool floatOut = true;
    template <class T>
    static void encode(T r, T g, T b, T (&d)[3]) { d[0] = r, d[1] = g, d[2] = b; }
};
struct OutRgb8Scaled {  // value x 255, nearest, limited to 0..255
    static constexpr bool floatOut = false;
    template <class T, class I = IntOf<T>>
    static void encode(T r, T g, T b, I (&d)[3]) {
        d[0] = clampU8(roundEven(r * 255.0f));
        d[1] = clampU8(roundEven(g * 255.0f));
        d[2] = clampU8(roundEven(b * 255.0f));
    }
};
template <int Max, int Bias>
struct OutRgbTrunc {  // toward zero, limited to 0..Max, minus Bias
    static constexpr bool floatOut = false;
    template <class I>
    static I limit(I x) {
        if constexpr (Max == 255) return clampU8(x);
        else return clampU16(x);
    }
    template <class T, class I = IntOf<T>>
    static void encode(T r, T g, T b, I (&d)[3]) {
        d[0] = limit(truncToInt(r)) - Bias;
        d[1] = limit(truncToInt(g)) - Bias;
        d[2] = limit(truncToInt(b)) - Bias;
    }
};

template <class Dec, class Recip, class Out>
struct FromLuvMain {
    static constexpr bool floatOut = Out::floatOut;
    template <class T, class R>
    static void apply(const T (&s)[3], R (&d)[3]) {
        const T lp = Dec::lightness(s);
        T du, dv;
        Dec::chroma(s, du, dv);
        const T fy = (lp + 16.0f) * c::inv116;
        const T r = Recip::of(13.0f * lp);
        const T vv = (dv * r) + c::vn;
        const T uu = (du * r) + c::un;
        T Y = pick(Dec::linear(s, lp), c::lowY * lp, fy * (fy * fy));
        if constexpr (Dec::yScale != 1.0f) Y = Y * Dec::yScale;
        const T den = pick(atMost(absF(vv), c::epsMain), vv + c::nudge, vv);
        const T w = Recip::of(den) * Y;
        const T X = uu * (2.25f * w);
        const T Z = ((w * 3.0f) - (5.0f * Y)) - (c::third * X);
        Out::encode(rowSum(kXyzToRgb[0], X, Y, Z), rowSum(kXyzToRgb[1], X, Y, Z), rowSum(kXyzToRgb[2], X, Y, Z), d);
    }
};

// ============================================================ LUV -> RGB, tails
// 32f (and every pixel of the 32f AC4 form): true divisions, 0 below the
// nudge, each result limited to 0..1.
struct FromLuvTailF {
    static constexpr bool floatOut = true;
    template <class T>
    static void apply(const T (&s)[3], T (&d)[3]) {
        const T L = s[0], u = s[1], v = s[2];
        const auto dark = below(L, c::nudge);
        const T fy = (16.0f + L) / T(116.0f);
        const T Y = pick(atLeast(L, c::lBreak), (fy * fy) * fy, L / T(c::lowL));
        const T l13 = L * 13.0f;
        const T vv = (v / l13) + c::vn;
        const T uu = (u / l13) + c::un;
        const T den = pick(below(absF(vv), c::epsTail), c::nudge + vv, vv);
        const T w = Y / den;
        const T X = (uu * 2.25f) * w;
        const T Z = ((w * 3.0f) - (5.0f * Y)) - (X / T(3.0f));
        for (int k = 0; k < 3; ++k) d[k] = zeroWhere(dark, clamp01(rowSum(kXyzToRgb[k], X, Y, Z)));
    }
};

// Integer tails (scalar only), F = 255 or 65535 after the 16s bias: true
// divisions, the white's u' and v' of the tails, R and G rounded by 0.5 in
// their own orders, B summed in double precision.
template <int F, int Bias>
struct FromLuvTailInt {
    static constexpr bool floatOut = false;
    static constexpr bool is8 = F == 255;
    static void apply(const float (&s)[3], int (&d)[3]) {
        const float Ff = static_cast<float>(F);
        const float lf = ((s[0] + static_cast<float>(Bias)) * 100.0f) / Ff;
        if (lf < c::nudge) {
            d[0] = d[1] = d[2] = -Bias;
            return;
        }
        const float fy = (16.0f + lf) / 116.0f;
        const float Y = (lf >= c::lBreak ? (fy * fy) * fy : lf / c::lowL) * Ff;
        const float du = (((s[1] + static_cast<float>(Bias)) * 354.0f) / Ff) - 134.0f;
        const float dv = (((s[2] + static_cast<float>(Bias)) * 262.0f) / Ff) - 140.0f;
        const float l13 = lf * 13.0f;
        const float vv = (dv / l13) + c::vnTail;
        const float uu = (du / l13) + c::unTail;
        float w, Z;
        const float (&m)[3][3] = kXyzToRgb;
        if constexpr (is8) {
            w = Y / vv;  // no guard: vv of 0 gives an infinite w, stored as 0
        } else {
            w = Y / (absF(vv) < c::epsMain ? c::nudge + vv : vv);
        }
        const float X = (uu * 2.25f) * w;
        float r, g;
        if constexpr (is8) {
            Z = ((w * 3.0f) - (X / 3.0f)) - (5.0f * Y);
            r = (((m[0][0] * X) + 0.5f) + (m[0][1] * Y)) + (m[0][2] * Z);
            g = (((m[1][0] * X) + 0.5f) + (m[1][1] * Y)) + (m[1][2] * Z);
        } else {
            Z = ((w * 3.0f) - (5.0f * Y)) - (X / 3.0f);
            r = ((0.5f + (m[0][1] * Y)) + (m[0][0] * X)) + (m[0][2] * Z);
            g = (((m[1][1] * Y) + 0.5f) + (m[1][0] * X)) + (m[1][2] * Z);
        }
        const float bxy = (X * m[2][0]) + (Y * m[2][1]);
        const double b = (static_cast<double>(bxy) + 0.5) + (static_cast<double>(Z) * c::bTailD);
        const int bi = _mm_cvttsd_si32(_mm_set_sd(b));
        d[0] = limit(truncToInt(r)) - Bias;
        d[1] = limit(truncToInt(g)) - Bias;
        d[2] = limit(bi) - Bias;
    }
    static int limit(int x) { return x < 0 ? 0 : (x > F ? F : x); }
};

}  // namespace kro::luv
