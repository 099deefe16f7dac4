// The integer forms of the subsampled encoders: luma per pixel, chroma per
// block from the block's sums, the rules for an odd last column, and the
// horizontal chroma filter of the CbYCr encoder. Each form once, the scalar
// version (one pixel or one block, 32-bit ints) beside the vector version
// (eight pixels or blocks in 16-bit lanes) where a main path uses it.
//
// Vector luma forms take R, G, B as 16-bit lanes holding 0..255 and leave the
// final clamp to 0..255 to the byte packing; forms limited to 1..254
// (clampVideo) apply that limit themselves.
#pragma once

#include <type_traits>
#include "frame/forms.h"
#include "matrix/ycbcr_forms.h"

namespace kro::sub {

// ------------------------------------------------------------ limits
// Full-swing BT.709 samples stay within 1..254, in every path.
inline int clampVideo(int x) { return x < 1 ? 1 : (x > 254 ? 254 : x); }
inline V clampVideo(V x) { return _mm_min_epi16(_mm_max_epi16(x, splat16(1)), splat16(254)); }

// Vector lane helpers local to the encoders.
inline V add16(V a, V b) { return _mm_add_epi16(a, b); }
inline V sub16(V a, V b) { return _mm_sub_epi16(a, b); }
template <int N>
inline V shl16(V a) { return _mm_slli_epi16(a, N); }
template <int N>
inline V sar16(V a) { return _mm_srai_epi16(a, N); }
template <int N>
inline V shr16(V a) { return _mm_srli_epi16(a, N); }

// ============================================================ luma forms
// Each: one(r, g, b) -> Y; vec(r, g, b) -> Y in 16-bit lanes. The YUV forms
// also expose their unshifted luma term P (term / vterm), which the YUV
// chroma forms sum over a block.

// Samples straight from bytes: pmaddubsw of a channel's bytes by -128 on one
// byte of each pair and 0 on the other gives -(x << 7) of the even (or odd)
// pixels in one step, with neither widening nor shift. mulRoundS15(-w, -(x << 7))
// is the very product of mulRoundS15(w, x << 7), so the forms on samples << 7
// take these with their weights negated and give the same numbers.
struct Neg7 {
    V v;
};
inline V evenNeg7(V bytes) { return _mm_maddubs_epi16(bytes, _mm_set1_epi16(0x0080)); }
inline V oddNeg7(V bytes) { return _mm_maddubs_epi16(bytes, _mm_set1_epi16(static_cast<short>(0x8000))); }
// The sums of adjacent pixels, shifted left by E, also in one step (exact: 2 x 255 << 6 fits).
template <int E>
inline V pairSumsShl(V bytes) { return _mm_maddubs_epi16(bytes, _mm_set1_epi8(1 << E)); }
template <int W>
inline V mulRound7(Neg7 x) { return mulRoundS15(splat16(-W), x.v); }

// A14: BT.601 studio weights in 14 fraction bits on samples << 7, each product
// rounded by itself; the sum carries 6 fraction bits. The sum of forward form 2
// of full-resolution YCbCr.
inline int a14(int r, int g, int b) { return ycbcr::Fwd2::luma14<int>(r << 7, g << 7, b << 7); }
inline V a14(V r, V g, V b) { return ycbcr::Fwd2::luma14<V>(shl16<7>(r), shl16<7>(g), shl16<7>(b)); }
inline V a14(Neg7 r, Neg7 g, Neg7 b) {
    namespace k = ycbcr::k;
    return add16(add16(mulRound7<k::YR14>(r), mulRound7<k::YG14>(g)), mulRound7<k::YB14>(b));
}

// The luma forms on A14 take it whichever way it was computed (fromA14).
// L1: A14 rounded with the offset 16.5 x 64 (Y of full-resolution forward form 2).
struct L1 {
    static int one(int r, int g, int b) { return clampU8((a14(r, g, b) + 1056) >> 6); }
    static V fromA14(V a) { return sar16<6>(add16(a, splat16(1056))); }
    static V vec(V r, V g, V b) { return fromA14(a14(r, g, b)); }
};

// L2: A14 with 16 x 64 + 2 (not 16.5 x 64).
struct L2 {
    static int one(int r, int g, int b) { return clampU8((a14(r, g, b) + 1026) >> 6); }
    static V fromA14(V a) { return sar16<6>(add16(a, splat16(1026))); }
    static V vec(V r, V g, V b) { return fromA14(a14(r, g, b)); }
};

// L3: A14 floored, then the offset 16.
struct L3 {
    static int one(int r, int g, int b) { return clampU8((a14(r, g, b) >> 6) + 16); }
    static V fromA14(V a) { return add16(sar16<6>(a), splat16(16)); }
    static V vec(V r, V g, V b) { return fromA14(a14(r, g, b)); }
};

// Unsigned products of samples << 8 by 15-bit weights, summed: 7 fraction bits.
template <int WR, int WG, int WB>
inline int u15(int r, int g, int b) {
    return mulHighU16(WR, r << 8) + mulHighU16(WG, g << 8) + mulHighU16(WB, b << 8);
}
template <int WR, int WG, int WB>
inline V u15(V r, V g, V b) {
    return add16(add16(mulHighU16(splat16(WR), shl16<8>(r)), mulHighU16(splat16(WG), shl16<8>(g))),
                 mulHighU16(splat16(WB), shl16<8>(b)));
}

// L4: BT.601 studio in 15 fraction bits, offset 16.5 x 128.
struct L4 {
    static int one(int r, int g, int b) { return clampU8((u15<8422, 16515, 3212>(r, g, b) + 2112) >> 7); }
    static V vec(V r, V g, V b) { return shr16<7>(add16(u15<8422, 16515, 3212>(r, g, b), splat16(2112))); }
};

// L5: BT.601 studio in 16 fraction bits, offset and rounding half at once
// (Y of full-resolution forward form 1).
struct L5 {
    static int one(int r, int g, int b) { return ycbcr::Fwd1::luma(r, g, b); }
};

// L6: L5 without the rounding half.
struct L6 {
    static int one(int r, int g, int b) { return (16843 * r + 33030 * g + 6423 * b + 1048576) >> 16; }
};

// L7: BT.709 studio in 15 fraction bits, offset 16.5 x 128.
struct L7 {
    static int one(int r, int g, int b) { return clampU8((u15<5997, 20120, 2032>(r, g, b) + 2112) >> 7); }
    static V vec(V r, V g, V b) { return shr16<7>(add16(u15<5997, 20120, 2032>(r, g, b), splat16(2112))); }
};

// L8: BT.709 studio in 16 fraction bits.
struct L8 {
    static int one(int r, int g, int b) { return (11993 * r + 40239 * g + 4063 * b + 1081344) >> 16; }
};

// L9: full-swing BT.709 in 15 fraction bits, rounded, limited to 1..254.
struct L9 {
    static int one(int r, int g, int b) { return clampVideo((u15<6980, 23429, 2359>(r, g, b) + 64) >> 7); }
    static V vec(V r, V g, V b) { return clampVideo(shr16<7>(add16(u15<6980, 23429, 2359>(r, g, b), splat16(64)))); }
};

// L10: full-swing BT.709 in 16 fraction bits, rounded, limited to 1..254.
struct L10 {
    static int one(int r, int g, int b) { return clampVideo((13959 * r + 46858 * g + 4719 * b + 32768) >> 16); }
};

// L11: YUV weights in 14 fraction bits on samples << 7; P carries 6 fraction
// bits and is floored, with no rounding constant.
struct L11 {
    static int term(int r, int g, int b) {
        return mulRoundS15(4899, r << 7) + mulRoundS15(9617, g << 7) + mulRoundS15(1868, b << 7);
    }
    static V vterm(V r, V g, V b) {
        return add16(add16(mulRoundS15(splat16(4899), shl16<7>(r)), mulRoundS15(splat16(9617), shl16<7>(g))),
                     mulRoundS15(splat16(1868), shl16<7>(b)));
    }
    static int one(int r, int g, int b) { return clampU8(term(r, g, b) >> 6); }
    static V vec(V r, V g, V b) { return shr16<6>(vterm(r, g, b)); }
};

// L12: YUV weights in 14 fraction bits, plain products, + 2.
struct L12 {
    static int one(int r, int g, int b) { return (4899 * r + 9617 * g + 1868 * b + 2) >> 14; }
};

// L13: YUV weights in 15 fraction bits on samples << 2; P has one fraction bit.
struct L13 {
    static int term(int r, int g, int b) {
        return mulHighS16(9798, r << 2) + mulHighS16(19235, g << 2) + mulHighS16(3736, b << 2);
    }
    static V vterm(V r, V g, V b) {
        return add16(add16(mulHighS16(splat16(9798), shl16<2>(r)), mulHighS16(splat16(19235), shl16<2>(g))),
                     mulHighS16(splat16(3736), shl16<2>(b)));
    }
    static int one(int r, int g, int b) { return clampU8(term(r, g, b) >> 1); }
    static V vec(V r, V g, V b) { return sar16<1>(vterm(r, g, b)); }
};

// x(c) = (257 c) >> 6: a sample stretched to 10 bits.
inline int stretch10(int c) { return (257 * c) >> 6; }
inline V stretch10(V c) { return shr16<6>(_mm_mullo_epi16(c, splat16(257))); }

// L14: YUV weights in 15 fraction bits on stretched samples; P has one fraction bit.
struct L14 {
    static int term(int r, int g, int b) {
        return mulHighS16(9798, stretch10(r)) + mulHighS16(19235, stretch10(g)) + mulHighS16(3736, stretch10(b));
    }
    static V vterm(V r, V g, V b) {
        return add16(add16(mulHighS16(splat16(9798), stretch10(r)), mulHighS16(splat16(19235), stretch10(g))),
                     mulHighS16(splat16(3736), stretch10(b)));
    }
    static int one(int r, int g, int b) { return clampU8(term(r, g, b) >> 1); }
    static V vec(V r, V g, V b) { return sar16<1>(vterm(r, g, b)); }
};

// Eight 16-bit lanes through a form written over its number type, in two
// halves of 32-bit lanes: exactly the scalar numbers.
template <class F>
inline V inLanes32(V a, V b, V c, F f) {
    auto lo = [](V x) { return I32x4(_mm_cvtepu16_epi32(x)); };
    auto hi = [](V x) { return I32x4(_mm_unpackhi_epi16(x, zero())); };
    return _mm_packs_epi32(f(lo(a), lo(b), lo(c)).v, f(hi(a), hi(b), hi(c)).v);
}

// L15: YUV weights in 16 fraction bits, truncated. Where a whole row takes it,
// it runs in 32-bit lanes (vec) with the same numbers.
struct L15 {
    template <class T>
    static T form(T r, T g, T b) {
        return (19595 * r + 38470 * g + 7471 * b) >> 16;
    }
    static int one(int r, int g, int b) { return form<int>(r, g, b); }
    static V vec(V r, V g, V b) { return inLanes32(r, g, b, [](auto x, auto y, auto z) { return form(x, y, z); }); }
};

// L16: YUV weights in 16 fraction bits, rounded.
struct L16 {
    static int one(int r, int g, int b) { return (19595 * r + 38470 * g + 7471 * b + 32768) >> 16; }
};

// P of L17 and L18: YUV weights in 15 fraction bits, R and G truncated
// together, B by itself; one fraction bit left.
struct P17 {
    static int term(int r, int g, int b) { return ((9798 * r + 19235 * g) >> 14) + ((3736 * b) >> 14); }
    static V vterm(V r, V g, V b) {
        const V w = _mm_set1_epi32((19235 << 16) | 9798), wb = _mm_set1_epi32(3736);
        const V rgLo = _mm_srai_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(r, g), w), 14);
        const V rgHi = _mm_srai_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(r, g), w), 14);
        const V bLo = _mm_srai_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(b, zero()), wb), 14);
        const V bHi = _mm_srai_epi32(_mm_madd_epi16(_mm_unpackhi_epi16(b, zero()), wb), 14);
        return _mm_packs_epi32(_mm_add_epi32(rgLo, bLo), _mm_add_epi32(rgHi, bHi));
    }
};

// L17: P rounded away its fraction bit.
struct L17 : P17 {
    static int one(int r, int g, int b) { return clampU8((term(r, g, b) + 1) >> 1); }
    static V vec(V r, V g, V b) { return sar16<1>(add16(vterm(r, g, b), splat16(1))); }
};

// L18: P floored.
struct L18 : P17 {
    static int one(int r, int g, int b) { return clampU8(term(r, g, b) >> 1); }
    static V vec(V r, V g, V b) { return sar16<1>(vterm(r, g, b)); }
};

// ============================================================ chroma forms
// A chroma form maps one block's sums to its Cb and Cr (U and V). Pix is the
// block's pixel count: 2 (4:2:2) or 4 (4:2:0, 4:1:1). Scaled sums R' = SR << e
// (e = 6 for 2 pixels, 5 for 4) are the block mean x 128, exact in 16 bits.
//
// yq is the sum over the block of the luma term that the form names (YTerm),
// xr / xb the sums of the stretched samples x(R), x(B) (forms with NeedsX).
struct BlockSums {
    int sr, sg, sb, yq, xr, xb;
};
struct BlockSumsV {
    V sr, sg, sb, yq, xr, xb;
};

struct NoTerm {
    static int term(int, int, int) { return 0; }
    static V vterm(V, V, V) { return zero(); }
};

template <int Pix>
inline constexpr int kMeanShift = Pix == 2 ? 6 : 5;  // e
template <int Pix>
inline constexpr int kSumShift = Pix == 2 ? 17 : 18;  // s of the 16-fraction-bit block forms

// Differences of the 14-bit studio weights on the scaled sums (D14b, D14r).
template <int WBb, int WGb, int WRb, int WRr, int WGr, int WBr>
struct Diff14 {
    static int cb(int r, int g, int b) { return mulRoundS15(WBb, b) - mulRoundS15(WGb, g) - mulRoundS15(WRb, r); }
    static int cr(int r, int g, int b) { return mulRoundS15(WRr, r) - mulRoundS15(WGr, g) - mulRoundS15(WBr, b); }
    static V cb(V r, V g, V b) {
        return sub16(sub16(mulRoundS15(splat16(WBb), b), mulRoundS15(splat16(WGb), g)), mulRoundS15(splat16(WRb), r));
    }
    static V cr(V r, V g, V b) {
        return sub16(sub16(mulRoundS15(splat16(WRr), r), mulRoundS15(splat16(WGr), g)), mulRoundS15(splat16(WBr), b));
    }
    static V cb(Neg7 r, Neg7 g, Neg7 b) { return sub16(sub16(mulRound7<WBb>(b), mulRound7<WGb>(g)), mulRound7<WRb>(r)); }
    static V cr(Neg7 r, Neg7 g, Neg7 b) { return sub16(sub16(mulRound7<WRr>(r), mulRound7<WGr>(g)), mulRound7<WBr>(b)); }
};
// D14b, D14r: the chroma sums of full-resolution forward form 2, here on
// scaled block sums (or on samples << 7 in the CbYCr filter).
struct D14 {
    static int cb(int r, int g, int b) { return ycbcr::Fwd2::cb14<int>(r, g, b); }
    static int cr(int r, int g, int b) { return ycbcr::Fwd2::cr14<int>(r, g, b); }
    static V cb(V r, V g, V b) { return ycbcr::Fwd2::cb14<V>(r, g, b); }
    static V cr(V r, V g, V b) { return ycbcr::Fwd2::cr14<V>(r, g, b); }
    static V cb(Neg7 r, Neg7 g, Neg7 b) {
        namespace k = ycbcr::k;
        return Diff14<k::CbB14, k::CbG14, k::CbR14, 0, 0, 0>::cb(r, g, b);
    }
    static V cr(Neg7 r, Neg7 g, Neg7 b) {
        namespace k = ycbcr::k;
        return Diff14<0, 0, 0, k::CrR14, k::CrG14, k::CrB14>::cr(r, g, b);
    }
};

// Differences of unsigned high products (16-bit weights on the scaled sums).
template <int WB, int WG, int WR>
inline int hiDiffU(int r, int g, int b) {
    return mulHighU16(WB, b) - mulHighU16(WG, g) - mulHighU16(WR, r);
}
template <int WB, int WG, int WR>
inline V hiDiffU(V r, V g, V b) {
    return sub16(sub16(mulHighU16(splat16(WB), b), mulHighU16(splat16(WG), g)), mulHighU16(splat16(WR), r));
}
// Sums of signed high products with the weights' signs folded in.
template <int WB, int WG, int WR>
inline int hiSumS(int r, int g, int b) {
    return mulHighS16(WB, b) + mulHighS16(WG, g) + mulHighS16(WR, r);
}
template <int WB, int WG, int WR>
inline V hiSumS(V r, V g, V b) {
    return add16(add16(mulHighS16(splat16(WB), b), mulHighS16(splat16(WG), g)), mulHighS16(splat16(WR), r));
}

// Shared shape of the scaled-sum forms: a body computes Cb and Cr from R', G', B'
// (scaled: from sums already shifted left by e, as pairSumsShl gives them).
template <class Body>
struct ScaledForm {
    using YTerm = NoTerm;
    static constexpr bool NeedsX = false;
    template <int Pix>
    static void one(const BlockSums& s, int& cb, int& cr) {
        constexpr int e = kMeanShift<Pix>;
        Body::one(s.sr << e, s.sg << e, s.sb << e, cb, cr);
    }
    static void scaled(V r, V g, V b, V& cb, V& cr) { Body::vec(r, g, b, cb, cr); }
    template <int Pix>
    static void vec(const BlockSumsV& s, V& cb, V& cr) {
        constexpr int e = kMeanShift<Pix>;
        scaled(shl16<e>(s.sr), shl16<e>(s.sg), shl16<e>(s.sb), cb, cr);
    }
};

// C1(k): D14 with the offset k in 6 fraction bits.
template <int K>
struct C1Body {
    static void one(int r, int g, int b, int& cb, int& cr) {
        cb = clampU8((D14::cb(r, g, b) + K) >> 6);
        cr = clampU8((D14::cr(r, g, b) + K) >> 6);
    }
    static void vec(V r, V g, V b, V& cb, V& cr) {
        cb = sar16<6>(add16(D14::cb(r, g, b), splat16(K)));
        cr = sar16<6>(add16(D14::cr(r, g, b), splat16(K)));
    }
};
template <int K>
using C1 = ScaledForm<C1Body<K>>;

// C2: D14 floored, then 128.
struct C2Body {
    static void one(int r, int g, int b, int& cb, int& cr) {
        cb = clampU8((D14::cb(r, g, b) >> 6) + 128);
        cr = clampU8((D14::cr(r, g, b) >> 6) + 128);
    }
    static void vec(V r, V g, V b, V& cb, V& cr) {
        cb = add16(sar16<6>(D14::cb(r, g, b)), splat16(128));
        cr = add16(sar16<6>(D14::cr(r, g, b)), splat16(128));
    }
};
using C2 = ScaledForm<C2Body>;

// Unsigned 16-bit weights, offset in 7 fraction bits (C3: BT.601, C6: BT.709).
template <int BB, int BG, int BR, int RR, int RG, int RB, int Off>
struct HiUBody {
    static void one(int r, int g, int b, int& cb, int& cr) {
        cb = clampU8((hiDiffU<BB, BG, BR>(r, g, b) + Off) >> 7);
        cr = clampU8((hiDiffU<RR, RG, RB>(b, g, r) + Off) >> 7);
    }
    static void vec(V r, V g, V b, V& cb, V& cr) {
        cb = sar16<7>(add16(hiDiffU<BB, BG, BR>(r, g, b), splat16(Off)));
        cr = sar16<7>(add16(hiDiffU<RR, RG, RB>(b, g, r), splat16(Off)));
    }
};
using C3 = ScaledForm<HiUBody<28770, 19071, 9699, 28770, 24117, 4653, 16400>>;
using C6 = ScaledForm<HiUBody<28770, 22151, 6619, 28770, 26149, 2621, 16400>>;

// C5: signed 16-bit weights with their signs, offset 128.5 x 128.
struct C5Body {
    static void one(int r, int g, int b, int& cb, int& cr) {
        cb = clampU8((hiSumS<28770, -19071, -9699>(r, g, b) + 16448) >> 7);
        cr = clampU8((hiSumS<28770, -24117, -4653>(b, g, r) + 16448) >> 7);
    }
    static void vec(V r, V g, V b, V& cb, V& cr) {
        cb = sar16<7>(add16(hiSumS<28770, -19071, -9699>(r, g, b), splat16(16448)));
        cr = sar16<7>(add16(hiSumS<28770, -24117, -4653>(b, g, r), splat16(16448)));
    }
};
using C5 = ScaledForm<C5Body>;

// C8: full-swing BT.709, unsigned weights, offset 128.5 x 64, limited to 1..254.
struct C8Body {
    static void one(int r, int g, int b, int& cb, int& cr) {
        cb = clampVideo((hiDiffU<16744, 12911, 3834>(r, g, b) + 8224) >> 6);
        cr = clampVideo((hiDiffU<16744, 15204, 1540>(b, g, r) + 8224) >> 6);
    }
    static void vec(V r, V g, V b, V& cb, V& cr) {
        cb = clampVideo(sar16<6>(add16(hiDiffU<16744, 12911, 3834>(r, g, b), splat16(8224))));
        cr = clampVideo(sar16<6>(add16(hiDiffU<16744, 15204, 1540>(b, g, r), splat16(8224))));
    }
};
using C8 = ScaledForm<C8Body>;

// C13: C8 with signed weights carrying their signs.
struct C13Body {
    static void one(int r, int g, int b, int& cb, int& cr) {
        cb = clampVideo((hiSumS<16744, -12911, -3834>(r, g, b) + 8224) >> 6);
        cr = clampVideo((hiSumS<16744, -15204, -1540>(b, g, r) + 8224) >> 6);
    }
    static void vec(V r, V g, V b, V& cb, V& cr) {
        cb = clampVideo(sar16<6>(add16(hiSumS<16744, -12911, -3834>(r, g, b), splat16(8224))));
        cr = clampVideo(sar16<6>(add16(hiSumS<16744, -15204, -1540>(b, g, r), splat16(8224))));
    }
};
using C13 = ScaledForm<C13Body>;

// Block forms in 16 fraction bits on the plain sums (tails): weights
// (own, G, other) for Cb and Cr, offsets KB and KR, shift s by block size.
template <int BB, int BG, int BR, int RR, int RG, int RB, int KB, int KR, int Shift = 0>
struct Sum16Body {
    template <int Pix>
    static int shift() {
        return Shift ? Shift : kSumShift<Pix>;
    }
    template <int Pix>
    static void raw(const BlockSums& s, int& cb, int& cr) {
        cb = (BB * s.sb - BG * s.sg - BR * s.sr + KB) >> shift<Pix>();
        cr = (RR * s.sr - RG * s.sg - RB * s.sb + KR) >> shift<Pix>();
    }
};

// C4(KB, KR): BT.601 studio; never leaves the byte range.
template <int KB, int KR = KB>
struct C4 {
    using YTerm = NoTerm;
    static constexpr bool NeedsX = false;
    template <int Pix>
    static void one(const BlockSums& s, int& cb, int& cr) {
        Sum16Body<28770, 19071, 9699, 28770, 24117, 4653, KB, KR>::template raw<Pix>(s, cb, cr);
    }
};

// C7: BT.709 studio, blocks of four (>> 18); never leaves the byte range.
struct C7 {
    using YTerm = NoTerm;
    static constexpr bool NeedsX = false;
    template <int Pix>
    static void one(const BlockSums& s, int& cb, int& cr) {
        static_assert(Pix == 4, "blocks of four");
        Sum16Body<28770, 22151, 6619, 28770, 26149, 2621, 33587200, 33587200, 18>::template raw<Pix>(s, cb, cr);
    }
};

// C9(KB, KR): full-swing BT.709, limited to 1..254.
template <int KB, int KR = KB>
struct C9 {
    using YTerm = NoTerm;
    static constexpr bool NeedsX = false;
    template <int Pix>
    static void one(const BlockSums& s, int& cb, int& cr) {
        Sum16Body<33489, 25821, 7668, 33489, 30409, 3080, KB, KR>::template raw<Pix>(s, cb, cr);
        cb = clampVideo(cb);
        cr = clampVideo(cr);
    }
};

// ------------------------------------------------------------ YUV chroma forms
// C10: differences against the summed L11 term, 14-bit weights, 6 fraction bits.
// The term sum is unsigned (up to 65284 for four pixels).
struct C10 {
    using YTerm = L11;
    static constexpr bool NeedsX = false;
    template <int Pix>
    static void one(const BlockSums& s, int& u, int& v) {
        constexpr int e = kMeanShift<Pix>;
        const int t = Pix == 4 ? (s.yq >> 1) : s.yq;
        u = clampU8((mulRoundS15(8061, (s.sb << e) - t) >> 6) + 128);
        v = clampU8((mulRoundS15(14369, (s.sr << e) - t) >> 6) + 128);
    }
    template <int Pix>
    static void vec(const BlockSumsV& s, V& u, V& v) {
        constexpr int e = kMeanShift<Pix>;
        const V t = Pix == 4 ? shr16<1>(s.yq) : s.yq;
        u = add16(sar16<6>(mulRoundS15(splat16(8061), sub16(shl16<e>(s.sb), t))), splat16(128));
        v = add16(sar16<6>(mulRoundS15(splat16(14369), sub16(shl16<e>(s.sr), t))), splat16(128));
    }
};

// C11: differences in 14 fraction bits on the plain sums, floored (blocks of four).
struct C11 {
    using YTerm = NoTerm;
    static constexpr bool NeedsX = false;
    template <int Pix>
    static void one(const BlockSums& s, int& u, int& v) {
        const int q = 4899 * s.sr + 9617 * s.sg + 1868 * s.sb;
        u = ((((s.sb << 14) - q) >> 14) * 8061 >> 16) + 128;
        v = clampU8(((((s.sr << 14) - q) >> 14) * 14369 >> 16) + 128);
    }
};

// C12: differences against the summed L13 term, one fraction bit.
struct C12 {
    using YTerm = L13;
    static constexpr bool NeedsX = false;
    template <int Pix>
    static void one(const BlockSums& s, int& u, int& v) {
        const int t = s.yq >> 2;
        u = clampU8(mulHighS16(16121, ((s.sb << 2) >> 3) - t) + 128);
        v = clampU8(mulHighS16(28737, ((s.sr << 2) >> 3) - t) + 128);
    }
    template <int Pix>
    static void vec(const BlockSumsV& s, V& u, V& v) {
        const V t = sar16<2>(s.yq);
        u = add16(mulHighS16(splat16(16121), sub16(sar16<3>(shl16<2>(s.sb)), t)), splat16(128));
        v = add16(mulHighS16(splat16(28737), sub16(sar16<3>(shl16<2>(s.sr)), t)), splat16(128));
    }
};

// C14(k): differences in 16 fraction bits on the plain sums, rounded by k.
// U never leaves the byte range; V is clamped.
// Where a whole row takes it, it runs in 32-bit lanes (vec) with the same numbers.
template <int K>
struct C14 {
    using YTerm = NoTerm;
    static constexpr bool NeedsX = false;
    template <int Pix, class T>
    static T u(T sr, T sg, T sb) {
        const T q = 19595 * sr + 38470 * sg + 7471 * sb;
        return (((((sb << 16) - q + K) >> 16) * 32244) >> kSumShift<Pix>) + 128;
    }
    template <int Pix, class T>
    static T v(T sr, T sg, T sb) {
        const T q = 19595 * sr + 38470 * sg + 7471 * sb;
        return clampU8((((((sr << 16) - q + K) >> 16) * 57475) >> kSumShift<Pix>) + 128);
    }
    template <int Pix>
    static void one(const BlockSums& s, int& uo, int& vo) {
        uo = u<Pix>(s.sr, s.sg, s.sb);
        vo = v<Pix>(s.sr, s.sg, s.sb);
    }
    template <int Pix>
    static void vec(const BlockSumsV& s, V& uo, V& vo) {
        uo = inLanes32(s.sr, s.sg, s.sb, [](auto r, auto g, auto b) { return u<Pix>(r, g, b); });
        vo = inLanes32(s.sr, s.sg, s.sb, [](auto r, auto g, auto b) { return v<Pix>(r, g, b); });
    }
};
using C14Quad = C14<131071>;  // "C14" of the 4:2:0 YUV forms

// C15(k): differences of the pair's sums against the mean P17 term (blocks of two).
template <int K>
struct C15 {
    using YTerm = P17;
    static constexpr bool NeedsX = false;
    template <int Pix>
    static void one(const BlockSums& s, int& u, int& v) {
        const int t = (s.yq + 2 * K) >> 1;
        u = clampU8(mulHighS16(16121, s.sb - t) + 128);
        v = clampU8(mulHighS16(28737, s.sr - t) + 128);
    }
    template <int Pix>
    static void vec(const BlockSumsV& s, V& u, V& v) {
        const V t = sar16<1>(add16(s.yq, splat16(2 * K)));
        u = add16(mulHighS16(splat16(16121), sub16(s.sb, t)), splat16(128));
        v = add16(mulHighS16(splat16(28737), sub16(s.sr, t)), splat16(128));
    }
};

// C16: stretched samples against the summed L14 term (blocks of two).
struct C16 {
    using YTerm = L14;
    static constexpr bool NeedsX = true;
    template <int Pix>
    static void one(const BlockSums& s, int& u, int& v) {
        u = clampU8((mulHighS16(16121, (s.xb >> 1) - s.yq) >> 1) + 128);
        v = clampU8((mulHighS16(28737, (s.xr >> 1) - s.yq) >> 1) + 128);
    }
    template <int Pix>
    static void vec(const BlockSumsV& s, V& u, V& v) {
        u = add16(sar16<1>(mulHighS16(splat16(16121), sub16(shr16<1>(s.xb), s.yq))), splat16(128));
        v = add16(sar16<1>(mulHighS16(splat16(28737), sub16(shr16<1>(s.xr), s.yq))), splat16(128));
    }
};

// ============================================================ odd last column
// The pixel is a block of one. HasCr: the rule gives a Cr (written where the
// destination has room for it).
struct E1 {
    static constexpr bool HasCr = false;
    static void one(int r, int g, int b, int& y, int& cb, int& cr) {
        y = L5::one(r, g, b);
        cb = (28770 * b - 19071 * g - 9699 * r + 8421376) >> 16;
        cr = 0;
    }
};
struct E2 {
    static constexpr bool HasCr = false;
    static void one(int r, int g, int b, int& y, int& cb, int& cr) {
        y = L10::one(r, g, b);
        cb = clampVideo((33489 * b - 25821 * g - 7668 * r + 8421376) >> 16);
        cr = 0;
    }
};
struct E3 {
    static constexpr bool HasCr = false;
    static void one(int r, int g, int b, int& y, int& u, int& v) {
        y = L16::one(r, g, b);
        const int q = 19595 * r + 38470 * g + 7471 * b;
        u = (((((b << 16) - q + 32768) >> 16) * 32244) >> 16) + 128;
        v = 0;
    }
};
// E4 (rounded) and E5 (floored): 15 fraction bits, U and V both.
template <int RoundU, int RoundV>
struct E45 {
    static constexpr bool HasCr = true;
    static void one(int r, int g, int b, int& y, int& u, int& v) {
        const int q = 9798 * r + 19235 * g + 3736 * b;
        y = q >> 15;
        u = (((((b << 15) - q + RoundU) >> 15) * 16121) >> 15) + 128;
        v = clampU8(((((r << 15) - q + RoundV) >> 15) * 28737 >> 15) + 128);
    }
};
using E4 = E45<16383, 32767>;
using E5 = E45<0, 0>;

// ============================================================ CbYCr horizontal filter
// Chroma weights 1/4, 1/2, 1/4 around the even pixel. Main path: per-pixel
// terms in 7 fraction bits, the even pixel at full weight (e) and the odd
// pixels at half of it (o). After it: terms in 16 fraction bits (c).
using EvenTerm = D14;                                          // e(x)
using OddTerm = Diff14<3596, 2384, 1212, 3596, 3015, 582>;     // o(x)

inline int fullTermCb(int r, int g, int b) { return -9699 * r - 19071 * g + 28770 * b; }  // c(x)
inline int fullTermCr(int r, int g, int b) { return 28770 * r - 24117 * g - 4653 * b; }

// A main-path pair: e(2i) + o(2i + 1) + o(2i - 1), 128.5 x 128.
inline int filterMain(int e, int oNext, int oPrev) { return (e + oNext + oPrev + 16448) >> 7; }
inline V filterMain(V e, V oNext, V oPrev) { return sar16<7>(add16(add16(add16(e, oNext), oPrev), splat16(16448))); }
// A pair after the main path: p is the left neighbour's quarter in 16 fraction bits.
inline int filterTail(int cEven, int p, int cOdd) { return ((cEven >> 1) + p + (cOdd >> 2) + 8421375) >> 16; }

// What a form offers: a vector version (none where the main span is none), a
// product from A14 bytes, chroma from pre-scaled pair sums.
template <class F, class = void>
struct HasVec : std::false_type {};
template <class F>
struct HasVec<F, std::void_t<decltype(sizeof(&F::vec))>> : std::true_type {};

template <class F, class = void>
struct HasFromA14 : std::false_type {};
template <class F>
struct HasFromA14<F, std::void_t<decltype(sizeof(&F::fromA14))>> : std::true_type {};
template <class F, class = void>
struct HasScaled : std::false_type {};
template <class F>
struct HasScaled<F, std::void_t<decltype(sizeof(&F::scaled))>> : std::true_type {};

}  // namespace kro::sub
