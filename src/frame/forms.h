// Arithmetic vocabulary shared by every family: each term once, the scalar
// version (on int) beside the vector version (on 16-byte registers).
// Kernels compose these; no family spells the instructions out again.
#pragma once

#include <nmmintrin.h>  // SSE4.2 and everything below it
#include <cstdint>

namespace kro {

using V = __m128i;  // integer lanes
using VF = __m128;  // four float lanes

// ------------------------------------------------------------ clamps (scalar)
inline int clampU8(int x) { return x < 0 ? 0 : (x > 255 ? 255 : x); }
inline int clampS16(int x) { return x < -32768 ? -32768 : (x > 32767 ? 32767 : x); }
inline int clampU16(int x) { return x < 0 ? 0 : (x > 65535 ? 65535 : x); }

// ------------------------------------------------------------ 16-bit products
// floor(a * b / 65536), unsigned 16-bit operands
inline int mulHighU16(int a, int b) {
    return static_cast<int>((static_cast<uint32_t>(static_cast<uint16_t>(a)) * static_cast<uint16_t>(b)) >> 16);
}
inline V mulHighU16(V a, V b) { return _mm_mulhi_epu16(a, b); }

// floor(a * b / 65536), signed 16-bit operands
inline int mulHighS16(int a, int b) {
    return (static_cast<int16_t>(a) * static_cast<int16_t>(b)) >> 16;
}
inline V mulHighS16(V a, V b) { return _mm_mulhi_epi16(a, b); }

// (a * b + 16384) >> 15, low 16 bits kept
inline int mulRoundS15(int a, int b) {
    return static_cast<int16_t>((static_cast<int16_t>(a) * static_cast<int16_t>(b) + 16384) >> 15);
}
inline V mulRoundS15(V a, V b) { return _mm_mulhrs_epi16(a, b); }

// ------------------------------------------------------------ saturating 16-bit sums
inline int addSatS16(int a, int b) { return clampS16(a + b); }
inline V addSatS16(V a, V b) { return _mm_adds_epi16(a, b); }
inline int subSatS16(int a, int b) { return clampS16(a - b); }
inline V subSatS16(V a, V b) { return _mm_subs_epi16(a, b); }
inline int addSatU16(int a, int b) { return clampU16(a + b); }
inline V addSatU16(V a, V b) { return _mm_adds_epu16(a, b); }
inline int subSatU16(int a, int b) { return clampU16(a - b); }
inline V subSatU16(V a, V b) { return _mm_subs_epu16(a, b); }

// ------------------------------------------------------------ vector clamps by packing
// two vectors of signed 16-bit lanes to 16 bytes, each lane limited to 0..255
inline V clampU8(V lo, V hi) { return _mm_packus_epi16(lo, hi); }
// two vectors of 32-bit lanes to eight signed / unsigned 16-bit lanes
inline V clampS16(V lo, V hi) { return _mm_packs_epi32(lo, hi); }
inline V clampU16(V lo, V hi) { return _mm_packus_epi32(lo, hi); }

// ------------------------------------------------------------ float to integer
// nearest, ties to even (under the caller's rounding mode, as the instruction does)
inline int roundEven(float x) { return _mm_cvtss_si32(_mm_set_ss(x)); }
inline V roundEven(VF x) { return _mm_cvtps_epi32(x); }
// toward zero
inline int truncToInt(float x) { return _mm_cvttss_si32(_mm_set_ss(x)); }
inline V truncToInt(VF x) { return _mm_cvttps_epi32(x); }

// ------------------------------------------------------------ small vector helpers
inline V splat16(int v) { return _mm_set1_epi16(static_cast<short>(v)); }
inline V zero() { return _mm_setzero_si128(); }
// bytes to 16-bit lanes: low eight and high eight
inline V widenLo(V b) { return _mm_cvtepu8_epi16(b); }
inline V widenHi(V b) { return _mm_unpackhi_epi8(b, _mm_setzero_si128()); }

}  // namespace kro

namespace kro {

// ------------------------------------------------------------ 32-bit lanes as numbers
// Four signed 32-bit lanes with the operators of plain int, so a scalar form
// written as a template over its number type runs unchanged on four pixels at
// once, with exactly the results of its scalar instantiation (products and sums
// stay within 32 bits in every form that uses it).
struct I32x4 {
    V v;
    I32x4() = default;
    explicit I32x4(V x) : v(x) {}
    I32x4(int k) : v(_mm_set1_epi32(k)) {}  // NOLINT: constants mix in like ints
    friend I32x4 operator+(I32x4 a, I32x4 b) { return I32x4(_mm_add_epi32(a.v, b.v)); }
    friend I32x4 operator-(I32x4 a, I32x4 b) { return I32x4(_mm_sub_epi32(a.v, b.v)); }
    friend I32x4 operator*(I32x4 a, I32x4 b) { return I32x4(_mm_mullo_epi32(a.v, b.v)); }
    friend I32x4 operator<<(I32x4 a, int n) { return I32x4(_mm_slli_epi32(a.v, n)); }
    friend I32x4 operator>>(I32x4 a, int n) { return I32x4(_mm_srai_epi32(a.v, n)); }
    friend I32x4 operator&(I32x4 a, I32x4 b) { return I32x4(_mm_and_si128(a.v, b.v)); }
};
inline I32x4 clampU8(I32x4 x) {
    return I32x4(_mm_min_epi32(_mm_max_epi32(x.v, _mm_setzero_si128()), _mm_set1_epi32(255)));
}

// A per-pixel scalar form (template apply<T> over int) run on eight pixels of
// 16-bit lanes in two halves of 32-bit lanes: exactly the scalar numbers.
template <class Form>
struct Lanes32 {
    static void apply(const V (&in)[3], V (&out)[3]) {
        I32x4 lo[3], hi[3];
        for (int k = 0; k < 3; ++k) {
            lo[k] = I32x4(_mm_cvtepu16_epi32(in[k]));
            hi[k] = I32x4(_mm_unpackhi_epi16(in[k], _mm_setzero_si128()));
        }
        I32x4 ol[3], oh[3];
        Form::apply(lo[0], lo[1], lo[2], ol[0], ol[1], ol[2]);
        Form::apply(hi[0], hi[1], hi[2], oh[0], oh[1], oh[2]);
        for (int k = 0; k < 3; ++k) out[k] = _mm_packs_epi32(ol[k].v, oh[k].v);
    }
};

// Four pixels of three floats, [a0 b0 c0 a1] [b1 c1 a2 b2] [c2 a3 b3 c3], to the
// three channels in pixel order and back: lane shuffles only, no byte shuffles.
inline void split3(const VF (&in)[3], VF (&c)[3]) {
    const VF bc = _mm_shuffle_ps(in[0], in[1], _MM_SHUFFLE(1, 0, 2, 1));  // b0 c0 b1 c1
    const VF ab = _mm_shuffle_ps(in[1], in[2], _MM_SHUFFLE(2, 1, 3, 2));  // a2 b2 a3 b3
    c[0] = _mm_shuffle_ps(in[0], ab, _MM_SHUFFLE(2, 0, 3, 0));            // a0 a1 a2 a3
    c[1] = _mm_shuffle_ps(bc, ab, _MM_SHUFFLE(3, 1, 2, 0));               // b0 b1 b2 b3
    c[2] = _mm_shuffle_ps(bc, in[2], _MM_SHUFFLE(3, 0, 3, 1));            // c0 c1 c2 c3
}
inline void join3(const VF (&c)[3], VF (&out)[3]) {
    const VF ab = _mm_shuffle_ps(c[0], c[1], _MM_SHUFFLE(2, 0, 2, 0));  // a0 a2 b0 b2
    const VF ca = _mm_shuffle_ps(c[2], c[0], _MM_SHUFFLE(3, 1, 2, 0));  // c0 c2 a1 a3
    const VF bc = _mm_shuffle_ps(c[1], c[2], _MM_SHUFFLE(3, 1, 3, 1));  // b1 b3 c1 c3
    out[0] = _mm_shuffle_ps(ab, ca, _MM_SHUFFLE(2, 0, 2, 0));           // a0 b0 c0 a1
    out[1] = _mm_shuffle_ps(bc, ab, _MM_SHUFFLE(3, 1, 2, 0));           // b1 c1 a2 b2
    out[2] = _mm_shuffle_ps(ca, bc, _MM_SHUFFLE(3, 1, 3, 1));           // c2 a3 b3 c3
}

}  // namespace kro
