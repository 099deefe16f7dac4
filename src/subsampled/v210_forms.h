// Forms of the 10-bit packed video decoders and of the gamma-encoded 4:2:2
// encoder, scalar and SSE side by side.
#pragma once

#include <cstdint>

#include "frame/forms.h"

namespace kro::v210 {

// ------------------------------------------------------------ decoding 10-bit fields to colour
// Full-swing BT.709 in 32-bit floats with 512 for the chroma offset and no
// luma offset or gain; each step rounded to float in the written order:
//   R = (1.54 v) + Y,  G = ((-0.459 v) + Y) + (-0.183 u),  B = (1.816 u) + Y
// (u = Cb - 512, v = Cr - 512, exact), then roundEven, R and B limited to 0..31
// and G to 0..63 as they stand. Constants: the floats nearest the decimals.
inline constexpr float kRV = 1.54f;     // 0x3FC51EB8
inline constexpr float kBU = 1.816f;    // 0x3FE872B0
inline constexpr float kGU = -0.183f;   // 0xBE3B645A
inline constexpr float kGV = -0.459f;   // 0xBEEB020C

// one pixel: R, G, B before the field limits
inline void colour709(int y, int cb, int cr, int& r, int& g, int& b) {
    const float fy = float(y), u = float(cb - 512), v = float(cr - 512);
    r = roundEven(kRV * v + fy);
    g = roundEven((kGV * v + fy) + kGU * u);
    b = roundEven(kBU * u + fy);
}
// four pixels in 32-bit lanes
inline void colour709(V y, V cb, V cr, V& r, V& g, V& b) {
    const VF fy = _mm_cvtepi32_ps(y);
    const VF u = _mm_cvtepi32_ps(_mm_sub_epi32(cb, _mm_set1_epi32(512)));
    const VF v = _mm_cvtepi32_ps(_mm_sub_epi32(cr, _mm_set1_epi32(512)));
    r = roundEven(_mm_add_ps(_mm_mul_ps(_mm_set1_ps(kRV), v), fy));
    g = roundEven(_mm_add_ps(_mm_add_ps(_mm_mul_ps(_mm_set1_ps(kGV), v), fy), _mm_mul_ps(_mm_set1_ps(kGU), u)));
    b = roundEven(_mm_add_ps(_mm_mul_ps(_mm_set1_ps(kBU), u), fy));
}

// 5-6-5 sample: `hi` in bits 11..15 (limited to 0..31), G in bits 5..10
// (0..63), `lo` in bits 0..4 (0..31).
inline int pack565(int hi, int g, int lo) {
    auto lim = [](int x, int m) { return x < 0 ? 0 : (x > m ? m : x); };
    return (lim(hi, 31) << 11) | (lim(g, 63) << 5) | lim(lo, 31);
}
inline V pack565(V hi, V g, V lo) {
    const V z = _mm_setzero_si128(), m5 = _mm_set1_epi32(31), m6 = _mm_set1_epi32(63);
    hi = _mm_min_epi32(_mm_max_epi32(hi, z), m5);
    g = _mm_min_epi32(_mm_max_epi32(g, z), m6);
    lo = _mm_min_epi32(_mm_max_epi32(lo, z), m5);
    return _mm_or_si128(_mm_or_si128(_mm_slli_epi32(hi, 11), _mm_slli_epi32(g, 5)), lo);
}

// ------------------------------------------------------------ the transfer curve as integers
// T(c) = roundEven(255 f(c / 255)), f(x) = 4.5 x below 0.018, else
// 1.099 x^0.45 - 0.099: the forward BT.709 curve on 8-bit samples. Generated
// at build time in double precision (the linear branch is 4.5 c exactly; the
// power is exp(0.45 ln x) by series, good to about 1e-15, and no entry of the
// power branch lies near a half).
namespace curve {
constexpr double expSeries(double y) {  // e^y for |y| <= 1/16
    double term = 1, sum = 1;
    for (int k = 1; k < 30; ++k) {
        term = term * y / k;
        sum += term;
    }
    return sum;
}
constexpr double exp(double y) {  // y <= 0 here
    int halvings = 0;
    while (y < -1.0 / 16) {
        y /= 2;
        ++halvings;
    }
    double r = expSeries(y);
    for (int i = 0; i < halvings; ++i) r *= r;
    return r;
}
constexpr double ln(double x) {  // 0 < x <= 1
    constexpr double kLn2 = 0.69314718055994530942;
    int e = 0;
    while (x < 0.70710678118654752440) {
        x *= 2;
        --e;
    }
    const double z = (x - 1) / (x + 1), z2 = z * z;  // ln x = 2 atanh z
    double term = z, sum = 0;
    for (int k = 1; k < 80; k += 2) {
        sum += term / k;
        term *= z2;
    }
    return 2 * sum + e * kLn2;
}
constexpr int roundHalfEven(double v) {
    const int f = int(v);  // v >= 0
    const double frac = v - f;
    if (frac > 0.5) return f + 1;
    if (frac < 0.5) return f;
    return (f & 1) ? f + 1 : f;
}
constexpr int entry(int c) {
    const double x = c / 255.0;
    if (x < 0.018) return roundHalfEven(4.5 * c);
    return roundHalfEven(255 * (1.099 * exp(0.45 * ln(x)) - 0.099));
}
struct Table {
    int32_t t[256];
};
constexpr Table make() {
    Table r{};
    for (int c = 0; c < 256; ++c) r.t[c] = entry(c);
    return r;
}
}  // namespace curve
inline constexpr curve::Table kGamma = curve::make();
static_assert(kGamma.t[1] == 4 && kGamma.t[3] == 14 && kGamma.t[255] == 255, "transfer curve table");

// ------------------------------------------------------------ encoding to 4:2:2 (15 fraction bits)
// Written once over the number type: int for single pixels, I32x4 for four.
// luma of every pixel but an odd last column: 540672 = 16.5 x 32768
template <class N>
inline N luma(N r, N g, N b) { return (8422 * r + 16515 * g + 3212 * b + 540672) >> 15; }
// per-pixel chroma terms: e of an even pixel, o (half weight) of an odd one
template <class N>
inline N cbEven(N r, N g, N b) { return 7193 * b - 4769 * g - 2426 * r; }
template <class N>
inline N cbOdd(N r, N g, N b) { return 3596 * b - 2385 * g - 1213 * r; }
template <class N>
inline N crEven(N r, N g, N b) { return 7193 * r - 6030 * g - 1164 * b; }
template <class N>
inline N crOdd(N r, N g, N b) { return 3596 * r - 3015 * g - 582 * b; }
// chroma of pair i: e(2i) + o(2i + 1) + o(2i - 1); 4210687 = 128.5 x 32768 - 1
template <class N>
inline N pairChroma(N e, N o, N oBefore) { return (e + o + oBefore + 4210687) >> 15; }
// an odd last column, alone: 16 fraction bits, the full-resolution form
template <class N>
inline N lumaLast(N r, N g, N b) { return (16843 * r + 33030 * g + 6423 * b + 1081344) >> 16; }
template <class N>
inline N cbLast(N r, N g, N b) { return (28770 * b - 19071 * g - 9699 * r + 8421376) >> 16; }

}  // namespace kro::v210
