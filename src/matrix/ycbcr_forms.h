// The integer forms of studio-range YCbCr (BT.601: Y = 16 + 0.257 R + 0.504 G
// + 0.098 B, Cb = 128 - 0.148 R - 0.291 G + 0.439 B, Cr = 128 + 0.439 R -
// 0.368 G - 0.071 B, and back; BT.709 for the inverse forms 7 and 8).
//
// Every form has a scalar version (one pixel in ints) and a vector version
// (eight pixels, samples 0..255 in 16-bit lanes, results in signed 16-bit
// lanes clamped later by the byte packing), computing the same numbers, so a
// form can serve a main path, a tail or both. The pieces of each form (luma,
// chroma, join) are public for the subsampled encoders and decoders, which
// combine one pixel's luma with a block's chroma.
#pragma once

#include "frame/forms.h"

namespace kro::ycbcr {

// ------------------------------------------------------------ coefficients
// Weights of the forward model in 16, 15 and 14 fractional bits (R, G, B order,
// magnitudes; the signs are the model's), and of the inverse in 16 bits.
namespace k {
// 0.257, 0.504, 0.098 x 65536; -0.148, -0.291, 0.439; 0.439, -0.368, -0.071
constexpr int YR16 = 16843, YG16 = 33030, YB16 = 6423;
constexpr int CbR16 = 9699, CbG16 = 19071, CbB16 = 28770;
constexpr int CrR16 = 28770, CrG16 = 24117, CrB16 = 4653;
// 16.5 x 65536: offset and rounding half of luma
constexpr int YOffset16 = 1081344;
// 128.5 x 65536 modulo 2^24, written as the negative -127.5 x 65536: only the
// low 8 bits of the shifted chroma sum are kept
constexpr int COffset16 = -8355840;
// the same weights x 16384, each rounded on its own
constexpr int YR14 = 4211, YG14 = 8258, YB14 = 1606;
constexpr int CbR14 = 2425, CbG14 = 4768, CbB14 = 7193;
constexpr int CrR14 = 7193, CrG14 = 6029, CrB14 = 1163;
constexpr int YOffset14 = 1056;  // 16.5 x 64
constexpr int COffset14 = 8194;  // 128 x 64 + 2
}  // namespace k

// ------------------------------------------------------------ small vector helpers
namespace detail {
// eight 16-bit lanes to two vectors of four 32-bit lanes (sign-extended)
inline void widen32(V x, V& lo, V& hi) {
    lo = _mm_cvtepi16_epi32(x);
    hi = _mm_cvtepi16_epi32(_mm_srli_si128(x, 8));
}
inline V mul32(V x, int c) { return _mm_mullo_epi32(x, _mm_set1_epi32(c)); }
// two vectors of 32-bit results (already in 16-bit range) back to eight lanes
inline V narrow(V lo, V hi) { return _mm_packs_epi32(lo, hi); }

// One body for both versions of a form: a constant in the lane type, shifts
// and plain 16-bit sums with the same names on ints and on vectors.
template <class T>
inline T cst(int c);
template <>
inline int cst<int>(int c) { return c; }
template <>
inline V cst<V>(int c) { return splat16(c); }
inline int shl(int x, int n) { return x * (1 << n); }
inline V shl(V x, int n) { return _mm_slli_epi16(x, n); }
inline int shrS(int x, int n) { return x >> n; }
inline V shrS(V x, int n) { return _mm_srai_epi16(x, n); }
inline int shrU(int x, int n) { return x >> n; }  // x is 0..65535 where used
inline V shrU(V x, int n) { return _mm_srli_epi16(x, n); }
inline int add16(int a, int b) { return a + b; }  // wrapping sums that never wrap here
inline V add16(V a, V b) { return _mm_add_epi16(a, b); }
inline int sub16(int a, int b) { return a - b; }
inline V sub16(V a, V b) { return _mm_sub_epi16(a, b); }
}  // namespace detail

// ============================================================ forward forms
// Form 1: 16 fractional bits, offsets and rounding halves in one constant; the
// low 8 bits of each shifted sum are the result (Y 16..235, Cb, Cr 16..240).
struct Fwd1 {
    static int sum(int r, int g, int b, int kr, int kg, int kb, int offset) {
        return ((kr * r + kg * g + kb * b + offset) >> 16) & 255;
    }
    static int luma(int r, int g, int b) { return sum(r, g, b, k::YR16, k::YG16, k::YB16, k::YOffset16); }
    static int cb(int r, int g, int b) { return sum(r, g, b, -k::CbR16, -k::CbG16, k::CbB16, k::COffset16); }
    static int cr(int r, int g, int b) { return sum(r, g, b, k::CrR16, -k::CrG16, -k::CrB16, k::COffset16); }
    static void apply(int r, int g, int b, int& y, int& u, int& v) {
        y = luma(r, g, b);
        u = cb(r, g, b);
        v = cr(r, g, b);
    }

    // vector: the same sums in 32-bit lanes
    static V sum32(V r, V g, V b, int kr, int kg, int kb, int offset) {
        using namespace detail;
        const V s = _mm_add_epi32(_mm_add_epi32(mul32(r, kr), mul32(g, kg)), mul32(b, kb));
        return _mm_and_si128(_mm_srai_epi32(_mm_add_epi32(s, _mm_set1_epi32(offset)), 16), _mm_set1_epi32(255));
    }
    static V lanes(const V (&in)[3], int kr, int kg, int kb, int offset) {
        V rl, rh, gl, gh, bl, bh;
        detail::widen32(in[0], rl, rh);
        detail::widen32(in[1], gl, gh);
        detail::widen32(in[2], bl, bh);
        return detail::narrow(sum32(rl, gl, bl, kr, kg, kb, offset), sum32(rh, gh, bh, kr, kg, kb, offset));
    }
    static void apply(const V (&in)[3], V (&out)[3]) {
        out[0] = lanes(in, k::YR16, k::YG16, k::YB16, k::YOffset16);
        out[1] = lanes(in, -k::CbR16, -k::CbG16, k::CbB16, k::COffset16);
        out[2] = lanes(in, k::CrR16, -k::CrG16, -k::CrB16, k::COffset16);
    }
};

// Form 2: 14-bit weights on samples << 7, each product rounded by itself
// (6 fractional bits left); plain 16-bit sums, offset, >> 6.
struct Fwd2 {
    // A14 sums: Y, Cb and Cr x 64 without their offsets, from samples << 7
    template <class T>
    static T luma14(T r7, T g7, T b7) {
        using namespace detail;
        return add16(add16(mulRoundS15(cst<T>(k::YR14), r7), mulRoundS15(cst<T>(k::YG14), g7)),
                     mulRoundS15(cst<T>(k::YB14), b7));
    }
    template <class T>
    static T cb14(T r7, T g7, T b7) {
        using namespace detail;
        return sub16(sub16(mulRoundS15(cst<T>(k::CbB14), b7), mulRoundS15(cst<T>(k::CbR14), r7)),
                     mulRoundS15(cst<T>(k::CbG14), g7));
    }
    template <class T>
    static T cr14(T r7, T g7, T b7) {
        using namespace detail;
        return sub16(sub16(mulRoundS15(cst<T>(k::CrR14), r7), mulRoundS15(cst<T>(k::CrG14), g7)),
                     mulRoundS15(cst<T>(k::CrB14), b7));
    }
    // the three results before the clamp
    template <class T>
    static void sums(T r, T g, T b, T& y, T& u, T& v) {
        using namespace detail;
        const T r7 = shl(r, 7), g7 = shl(g, 7), b7 = shl(b, 7);
        y = shrS(add16(luma14(r7, g7, b7), cst<T>(k::YOffset14)), 6);
        u = shrS(add16(cb14(r7, g7, b7), cst<T>(k::COffset14)), 6);
        v = shrS(add16(cr14(r7, g7, b7), cst<T>(k::COffset14)), 6);
    }

    static void apply(int r, int g, int b, int& y, int& u, int& v) {
        sums(r, g, b, y, u, v);
        y = clampU8(y), u = clampU8(u), v = clampU8(v);
    }
    static void apply(const V (&in)[3], V (&out)[3]) { sums(in[0], in[1], in[2], out[0], out[1], out[2]); }
};

// Form 3: luma from unsigned products of samples << 8, rounded by 128 before
// >> 8, then + 16; chroma from signed products of samples << 7, rounded by 64
// before >> 7, then + 128. Saturating sums that never bind.
struct Fwd3 {
    template <class T>
    static T luma(T r, T g, T b) {
        using namespace detail;
        const T s = addSatU16(addSatU16(addSatU16(mulHighU16(cst<T>(k::YR16), shl(r, 8)),
                                                  mulHighU16(cst<T>(k::YG16), shl(g, 8))),
                                        mulHighU16(cst<T>(k::YB16), shl(b, 8))),
                              cst<T>(128));
        return add16(shrU(s, 8), cst<T>(16));
    }
    template <class T>
    static T chroma(T r, T g, T b, int kr, int kg, int kb) {
        using namespace detail;
        const T s = addSatS16(addSatS16(addSatS16(mulHighS16(cst<T>(kr), shl(r, 7)), mulHighS16(cst<T>(kg), shl(g, 7))),
                                        mulHighS16(cst<T>(kb), shl(b, 7))),
                              cst<T>(64));
        return add16(shrS(s, 7), cst<T>(128));
    }
    template <class T>
    static T cb(T r, T g, T b) {
        return chroma(r, g, b, -k::CbR16, -k::CbG16, k::CbB16);
    }
    template <class T>
    static T cr(T r, T g, T b) {
        return chroma(r, g, b, k::CrR16, -k::CrG16, -k::CrB16);
    }

    static void apply(int r, int g, int b, int& y, int& u, int& v) {
        y = clampU8(luma(r, g, b));
        u = clampU8(cb(r, g, b));
        v = clampU8(cr(r, g, b));
    }
    static void apply(const V (&in)[3], V (&out)[3]) {
        out[0] = luma(in[0], in[1], in[2]);
        out[1] = cb(in[0], in[1], in[2]);
        out[2] = cr(in[0], in[1], in[2]);
    }
};

// ============================================================ inverse forms, 32-bit
// Forms 1 to 3: y = Y - 16, u = Cb - 128, v = Cr - 128 times 16-bit-fraction
// weights in 32 bits, a rounding term, >> 16, clamp. The forms differ in the
// last place of the weights and in the rounding term.
template <int KY, int KRV, int KGU, int KGV, int KBU, int Round>
struct Inv32 {
    static void apply(int yy, int cb, int cr, int& r, int& g, int& b) {
        const int y = KY * (yy - 16), u = cb - 128, v = cr - 128;
        r = clampU8((y + KRV * v + Round) >> 16);
        g = clampU8((y - KGU * u - KGV * v + Round) >> 16);
        b = clampU8((y + KBU * u + Round) >> 16);
    }

    // vector: the same sums in 32-bit lanes, four pixels at a time
    static void half(V y0, V u, V v, V (&o)[3]) {
        using detail::mul32;
        const V rnd = _mm_set1_epi32(Round);
        const V y = _mm_add_epi32(mul32(y0, KY), rnd);
        o[0] = _mm_srai_epi32(_mm_add_epi32(y, mul32(v, KRV)), 16);
        o[1] = _mm_srai_epi32(_mm_sub_epi32(_mm_sub_epi32(y, mul32(u, KGU)), mul32(v, KGV)), 16);
        o[2] = _mm_srai_epi32(_mm_add_epi32(y, mul32(u, KBU)), 16);
    }
    static void apply(const V (&in)[3], V (&out)[3]) {
        V yl, yh, ul, uh, vl, vh;
        detail::widen32(_mm_sub_epi16(in[0], splat16(16)), yl, yh);
        detail::widen32(_mm_sub_epi16(in[1], splat16(128)), ul, uh);
        detail::widen32(_mm_sub_epi16(in[2], splat16(128)), vl, vh);
        V lo[3], hi[3];
        half(yl, ul, vl, lo);
        half(yh, uh, vh, hi);
        for (int c = 0; c < 3; ++c) out[c] = detail::narrow(lo[c], hi[c]);  // |sums| >> 16 stay below 600
    }
};

// 1.164, 1.596, 0.392, 0.813, 2.017 x 65536 (form 1 without rounding; form 3
// the same weights rounded by 32768; form 2 weights two less, rounded).
using Inv1 = Inv32<76284, 104595, 25690, 53281, 132186, 0>;
using Inv2 = Inv32<76282, 104593, 25689, 53279, 132184, 32768>;
using Inv3 = Inv32<76284, 104595, 25690, 53281, 132186, 32768>;

// ============================================================ inverse forms, 16-bit lanes
// Forms 4 to 8: y' = (Y - 16) << 7, u' = (Cb - 128) << 7, v' = (Cr - 128) << 7;
// each product floored by itself (mulHighS16). T = y' x KY; R = T + v' x KRV,
// B = T + u' x KBU, and G either adds products of negative weights (GSub
// false) or subtracts products of positive ones (GSub true): the floor falls
// on the other side, so the two differ in the last place. Then + Round,
// >> Shift, clamp. Saturating sums that never bind.
template <int KY, int KRV, int KGU, int KGV, int KBU, bool GSub, int Round, int Shift>
struct InvLanes {
    // the luma term T of one pixel
    template <class T>
    static T luma(T y) {
        using namespace detail;
        return mulHighS16(shl(sub16(y, cst<T>(16)), 7), cst<T>(KY));
    }
    // the chroma terms of R, G, B (shared by the pixels of a chroma block)
    template <class T>
    static void chroma(T cb, T cr, T& dr, T& dg, T& db) {
        using namespace detail;
        const T u = shl(sub16(cb, cst<T>(128)), 7), v = shl(sub16(cr, cst<T>(128)), 7);
        dr = mulHighS16(v, cst<T>(KRV));
        if constexpr (GSub)
            dg = subSatS16(subSatS16(cst<T>(0), mulHighS16(u, cst<T>(KGU))), mulHighS16(v, cst<T>(KGV)));
        else
            dg = addSatS16(mulHighS16(u, cst<T>(KGU)), mulHighS16(v, cst<T>(KGV)));
        db = mulHighS16(u, cst<T>(KBU));
    }
    // one channel from T and its chroma term, before the clamp
    template <class T>
    static T join(T t, T d) {
        using namespace detail;
        return shrS(addSatS16(addSatS16(t, d), cst<T>(Round)), Shift);
    }

    static void apply(int y, int cb, int cr, int& r, int& g, int& b) {
        const int t = luma(y);
        int dr, dg, db;
        chroma(cb, cr, dr, dg, db);
        r = clampU8(join(t, dr));
        g = clampU8(join(t, dg));
        b = clampU8(join(t, db));
    }
    static void apply(const V (&in)[3], V (&out)[3]) {
        const V t = luma(in[0]);
        V dr, dg, db;
        chroma(in[1], in[2], dr, dg, db);
        out[0] = join(t, dr);
        out[1] = join(t, dg);
        out[2] = join(t, db);
    }
};

// Form 4: 12 fractional bits (1.164 x 4096 = 4769), sum in 3, rounded by 4.
using Inv4 = InvLanes<4769, 6537, 1605, 3330, 8263, true, 4, 3>;
// Form 5: 13 fractional bits, sum in 4, no rounding term; 9536 and -3203.
using Inv5 = InvLanes<9536, 13074, -3203, -6660, 16523, false, 0, 4>;
// Form 6: 13 fractional bits, G by subtraction, rounded by 8.
using Inv6 = InvLanes<9535, 13074, 3211, 6660, 16523, true, 8, 4>;
// Forms 7 and 8: BT.709 (1.793, 0.213, 0.534, 2.115 x 8192), G by negative
// weights (7) or by subtraction (8).
using Inv7 = InvLanes<9535, 14688, -1745, -4375, 17326, false, 8, 4>;
using Inv8 = InvLanes<9535, 14688, 1745, 4375, 17326, true, 8, 4>;

}  // namespace kro::ycbcr
