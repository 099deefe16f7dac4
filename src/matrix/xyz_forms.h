// RGB <-> XYZ forms: linear RGB of the BT.709 primaries and CIE XYZ with the
// D65 white point. 8u goes through integer matrices (one set for the main path,
// one for the tail); 16u, 16s and 32f through the float matrices below.
#pragma once

#include "frame/forms_typed.h"
#include "frame/kernel_typed.h"

namespace kro::xyz {

// ------------------------------------------------------------ float matrices
// As stored in 32-bit floats (rows X, Y, Z of R, G, B; and back). The Z row
// sums to 1.088754: a white RGB gives Z above 1.
inline constexpr float kToXyz[3][3] = {
    {0.412453f, 0.35758f, 0.180423f},
    {0.212671f, 0.71516f, 0.072169f},
    {0.019334f, 0.119193f, 0.950227f},
};
inline constexpr float kToRgb[3][3] = {
    {3.240479f, -1.53715f, -0.498535f},
    {-0.969256f, 1.875991f, 0.041556f},
    {0.055648f, -0.204043f, 1.057311f},
};

// ------------------------------------------------------------ 8u integer matrices
// Main path: 16-bit coefficients for pair-wise multiply-and-add on 16-bit
// lanes; tail: 32-bit coefficients. No rounding term: every sum is floored by
// the shift. Products and sums are exact in 32 bits.
struct ToXyzMain8 {  // 15 fractional bits; the Y row sums to 32768
    static constexpr int m[3][3] = {{13515, 11717, 5912}, {6969, 23434, 2365}, {634, 3906, 31137}};
    static constexpr int shift = 15;
};
struct ToXyzTail8 {  // 16 fractional bits; the Y row sums to 65534
    static constexpr int m[3][3] = {{27030, 23434, 11824}, {13937, 46868, 4729}, {1267, 7811, 62274}};
    static constexpr int shift = 16;
};
struct ToRgbMain8 {  // 13 fractional bits
    static constexpr int m[3][3] = {{26546, -12591, -4083}, {-7939, 15368, 340}, {456, -1671, 8661}};
    static constexpr int shift = 13;
};
struct ToRgbTail8 {  // 16 fractional bits
    static constexpr int m[3][3] = {{212368, -100738, -32671}, {-63521, 122944, 2723}, {3646, -13372, 69291}};
    static constexpr int shift = 16;
};

// Main path: N pixels (8 for C3, 4 for AC4) in 16-bit lanes; per result
// (m0 a + m1 b) and (m2 c + 0) by pair-wise multiply-and-add into 32-bit sums,
// added, shifted arithmetically, saturated to 16 bits (never binds), clampU8.
// Tail: (m0 a + m1 b + m2 c) >> shift in 32 bits, clampU8. For RGB to XYZ
// only Z can leave 0..255; the clamp of X and Y never binds.
template <class Main, class Tail, int NPix>
struct Matrix8 {
    static constexpr int N = NPix, K = 3;
    static constexpr Lanes lanes = Lanes::Int16;
    static constexpr bool floatOut = false;
    using VOut = V;
    using SIn = int;
    using SOut = int;
    V pairAB[3], pairC0[3];

    Matrix8() {
        for (int k = 0; k < 3; ++k) {
            pairAB[k] = _mm_set1_epi32(static_cast<int>((static_cast<uint32_t>(Main::m[k][1]) << 16) |
                                                        (static_cast<uint32_t>(Main::m[k][0]) & 0xffffu)));
            pairC0[k] = _mm_set1_epi32(Main::m[k][2] & 0xffff);
        }
    }
    void vec(const V (&in)[3], V (&o)[3]) const {
        const V abLo = _mm_unpacklo_epi16(in[0], in[1]), c0Lo = _mm_unpacklo_epi16(in[2], zero());
        V abHi = zero(), c0Hi = zero();
        if constexpr (N == 8) abHi = _mm_unpackhi_epi16(in[0], in[1]), c0Hi = _mm_unpackhi_epi16(in[2], zero());
        for (int k = 0; k < 3; ++k) {
            const V lo = _mm_srai_epi32(
                _mm_add_epi32(_mm_madd_epi16(abLo, pairAB[k]), _mm_madd_epi16(c0Lo, pairC0[k])), Main::shift);
            V hi = zero();
            if constexpr (N == 8)
                hi = _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(abHi, pairAB[k]), _mm_madd_epi16(c0Hi, pairC0[k])),
                                    Main::shift);
            o[k] = clampU8Lanes16(clampS16(lo, hi));
        }
    }
    void one(const int (&in)[3], int (&o)[3]) const {
        for (int k = 0; k < 3; ++k)
            o[k] = clampU8((Tail::m[k][0] * in[0] + Tail::m[k][1] * in[1] + Tail::m[k][2] * in[2]) >> Tail::shift);
    }
};

// ------------------------------------------------------------ 16u, 16s, 32f
// V = (m0 a + m1 b) + m2 c in floats, each product and sum rounded; then:
enum class Out {
    U16,       // clampU16(truncToInt(V))
    S16,       // on samples + 32768: clampS16(truncToInt(V) - 32768)
    F32ClampZ, // X, Y as they are; Z limited to 0..1
    F32Clamp,  // every result limited to 0..1
};

// Main path of 4 pixels and tail give the same value.
template <const float (&M)[3][3], Out O>
struct MatrixF {
    static constexpr int N = 4, K = 3;
    static constexpr Lanes lanes = Lanes::Float;
    static constexpr bool floatOut = O == Out::F32ClampZ || O == Out::F32Clamp;
    using VOut = typename VecOut<floatOut>::type;
    using SIn = float;
    using SOut = std::conditional_t<floatOut, float, int>;
    VF mv[3][3];

    MatrixF() {
        for (int k = 0; k < 3; ++k)
            for (int j = 0; j < 3; ++j) mv[k][j] = _mm_set1_ps(M[k][j]);
    }
    void vec(const VF (&in)[3], VOut (&o)[3]) const {
        VF a = in[0], b = in[1], c = in[2];
        if constexpr (O == Out::S16) {
            const VF bias = _mm_set1_ps(32768.0f);
            a = addF(a, bias), b = addF(b, bias), c = addF(c, bias);
        }
        for (int k = 0; k < 3; ++k) {
            const VF v = sum3(a, b, c, mv[k][0], mv[k][1], mv[k][2]);
            if constexpr (O == Out::U16) o[k] = clampU16Lanes32(truncToInt(v));
            if constexpr (O == Out::S16) o[k] = clampS16Lanes32(_mm_sub_epi32(truncToInt(v), _mm_set1_epi32(32768)));
            if constexpr (O == Out::F32ClampZ) o[k] = k == 2 ? clamp01(v) : v;
            if constexpr (O == Out::F32Clamp) o[k] = clamp01(v);
        }
    }
    void one(const float (&in)[3], SOut (&o)[3]) const {
        float a = in[0], b = in[1], c = in[2];
        if constexpr (O == Out::S16) a = addF(a, 32768.0f), b = addF(b, 32768.0f), c = addF(c, 32768.0f);
        for (int k = 0; k < 3; ++k) {
            const float v = sum3(a, b, c, M[k][0], M[k][1], M[k][2]);
            if constexpr (O == Out::U16) o[k] = clampU16(truncToInt(v));
            if constexpr (O == Out::S16)
                o[k] = clampS16(static_cast<int>(static_cast<uint32_t>(truncToInt(v)) - 32768u));
            if constexpr (O == Out::F32ClampZ) o[k] = k == 2 ? clamp01(v) : v;
            if constexpr (O == Out::F32Clamp) o[k] = clamp01(v);
        }
    }
};

}  // namespace kro::xyz
