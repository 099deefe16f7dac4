// The integer forms of the analogue YUV model (Y = 0.299 R + 0.587 G + 0.114 B,
// U = 0.492 (B - Y) + 128, V = 0.877 (R - Y) + 128, and back).
// Scalar forms work on one pixel in 32-bit ints; vector forms on eight pixels
// in 16-bit lanes and leave the final clamp to the byte packing.
#pragma once

#include "frame/forms.h"

namespace kro::yuv {

// ------------------------------------------------------------ forward, scalar
// Scalar forms are templates over the number type: int for the tails, I32x4
// where a whole row runs through a tail form four pixels at a time.

// Form 1: 16 fractional bits, Y and the differences rounded by 32768.
struct Fwd1 {
    template <class T>
    static void apply(T r, T g, T b, T& y, T& u, T& v) {
        const T y16 = 19595 * r + 38470 * g + 7471 * b;
        y = (y16 + 32768) >> 16;
        const T db = ((b << 16) - y16 + 32768) >> 16;
        const T dr = ((r << 16) - y16 + 32768) >> 16;
        u = ((db * 32244) >> 16) + 128;
        v = clampU8(((dr * 57475) >> 16) + 128);
    }
};

// Form 2: form 1 with Y truncated and the differences rounded by 32767.
struct Fwd2 {
    static void apply(int r, int g, int b, int& y, int& u, int& v) {
        const int y16 = 19595 * r + 38470 * g + 7471 * b;
        y = y16 >> 16;
        const int db = ((b << 16) - y16 + 32767) >> 16;
        const int dr = ((r << 16) - y16 + 32767) >> 16;
        u = ((db * 32244) >> 16) + 128;
        v = clampU8(((dr * 57475) >> 16) + 128);
    }
};

// Form 3: direct weights, no rounding term.
struct Fwd3 {
    static void apply(int r, int g, int b, int& y, int& u, int& v) {
        y = (19595 * r + 38469 * g + 7471 * b) >> 16;
        u = ((-4816 * r - 9469 * g + 14286 * b) >> 15) + 128;
        v = clampU8(((20152 * r - 16875 * g - 3276 * b) >> 15) + 128);
    }
};

// ------------------------------------------------------------ forward, vector
// Form 4: luma from unsigned products of samples << 8 (no rounding: white gives
// 254); chroma from signed products of samples << 7, sums >> 6.
struct Fwd4 {
    static void apply(const V (&in)[3], V (&out)[3]) {
        const V r8 = _mm_slli_epi16(in[0], 8), g8 = _mm_slli_epi16(in[1], 8), b8 = _mm_slli_epi16(in[2], 8);
        const V ys = _mm_add_epi16(_mm_add_epi16(mulHighU16(splat16(19595), r8), mulHighU16(splat16(38469), g8)),
                                   mulHighU16(splat16(7471), b8));
        out[0] = _mm_srli_epi16(ys, 8);
        const V r7 = _mm_slli_epi16(in[0], 7), g7 = _mm_slli_epi16(in[1], 7), b7 = _mm_slli_epi16(in[2], 7);
        const V su = addSatS16(addSatS16(mulHighS16(splat16(-4816), r7), mulHighS16(splat16(-9469), g7)),
                               mulHighS16(splat16(14286), b7));
        const V sv = addSatS16(addSatS16(mulHighS16(splat16(20152), r7), mulHighS16(splat16(-16875), g7)),
                               mulHighS16(splat16(-3276), b7));
        out[1] = _mm_add_epi16(_mm_srai_epi16(su, 6), splat16(128));
        out[2] = _mm_add_epi16(_mm_srai_epi16(sv, 6), splat16(128));
    }
};

// Form 5: 15 fractional bits on samples << 2; S carries one extra bit and a +1.
struct Fwd5 {
    static void apply(const V (&in)[3], V (&out)[3]) {
        const V r2 = _mm_slli_epi16(in[0], 2), g2 = _mm_slli_epi16(in[1], 2), b2 = _mm_slli_epi16(in[2], 2);
        const V s = _mm_add_epi16(
            _mm_add_epi16(_mm_add_epi16(mulHighS16(splat16(9798), r2), mulHighS16(splat16(19235), g2)),
                          mulHighS16(splat16(3736), b2)),
            splat16(1));
        out[0] = _mm_srai_epi16(s, 1);
        const V db = _mm_sub_epi16(_mm_slli_epi16(in[2], 1), s);
        const V dr = _mm_sub_epi16(_mm_slli_epi16(in[0], 1), s);
        out[1] = _mm_add_epi16(mulHighS16(db, splat16(16121)), splat16(128));
        out[2] = _mm_add_epi16(mulHighS16(dr, splat16(28737)), splat16(128));
    }
};

// ------------------------------------------------------------ inverse, scalar
// Forms 1 to 3 differ in rounding terms and in the last place of the weights.
template <int KR, int KGU, int KGV, int KB, int RoundRB, int RoundG>
struct InvScalar {
    template <class T>
    static void apply(T y, T u8, T v8, T& r, T& g, T& b) {
        const T u = u8 - 128, v = v8 - 128, y16 = y << 16;
        r = clampU8((y16 + KR * v + RoundRB) >> 16);
        g = clampU8((y16 - KGU * u - KGV * v + RoundG) >> 16);
        b = clampU8((y16 + KB * u + RoundRB) >> 16);
    }
};
using Inv1 = InvScalar<74711, 25821, 38076, 133169, 32768, 0>;
using Inv2 = InvScalar<74711, 25821, 38076, 133169, 32768, 32768>;
using Inv3 = InvScalar<74710, 25820, 38075, 133168, 0, 0>;

// ------------------------------------------------------------ inverse, vector
// Form 4: 13 fractional bits on chroma << 3, added to Y directly.
struct Inv4 {
    static void apply(const V (&in)[3], V (&out)[3]) {
        const V c128 = splat16(128);
        const V u = _mm_slli_epi16(_mm_sub_epi16(in[1], c128), 3);
        const V v = _mm_slli_epi16(_mm_sub_epi16(in[2], c128), 3);
        out[0] = addSatS16(in[0], mulHighS16(v, splat16(9339)));
        out[1] = addSatS16(addSatS16(in[0], mulHighS16(u, splat16(-3228))), mulHighS16(v, splat16(-4760)));
        out[2] = addSatS16(in[0], mulHighS16(u, splat16(16646)));
    }
};

// Form 5: one more fractional bit in the sum (2 Y + ...) >> 1, chroma << 4.
struct Inv5 {
    static void apply(const V (&in)[3], V (&out)[3]) {
        const V c128 = splat16(128);
        const V y2 = _mm_slli_epi16(in[0], 1);
        const V u = _mm_slli_epi16(_mm_sub_epi16(in[1], c128), 4);
        const V v = _mm_slli_epi16(_mm_sub_epi16(in[2], c128), 4);
        out[0] = _mm_srai_epi16(addSatS16(y2, mulHighS16(v, splat16(9338))), 1);
        out[1] = _mm_srai_epi16(
            addSatS16(addSatS16(y2, mulHighS16(u, splat16(-3227))), mulHighS16(v, splat16(-4759))), 1);
        out[2] = _mm_srai_epi16(addSatS16(y2, mulHighS16(u, splat16(16645))), 1);
    }
};

// Form 6: 12 fractional bits on chroma << 7, sum in 3 fractional bits rounded by 4.
struct Inv6 {
    static void apply(const V (&in)[3], V (&out)[3]) {
        const V c128 = splat16(128), c4 = splat16(4);
        const V y8 = _mm_slli_epi16(in[0], 3);
        const V u = _mm_slli_epi16(_mm_sub_epi16(in[1], c128), 7);
        const V v = _mm_slli_epi16(_mm_sub_epi16(in[2], c128), 7);
        out[0] = _mm_srai_epi16(addSatS16(addSatS16(y8, mulHighS16(v, splat16(4669))), c4), 3);
        out[1] = _mm_srai_epi16(
            addSatS16(subSatS16(subSatS16(y8, mulHighS16(v, splat16(2380))), mulHighS16(u, splat16(1614))), c4), 3);
        out[2] = _mm_srai_epi16(addSatS16(addSatS16(y8, mulHighS16(u, splat16(8323))), c4), 3);
    }
};

}  // namespace kro::yuv
