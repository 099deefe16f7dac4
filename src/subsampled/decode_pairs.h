// The 16-pixel main step of the packed 4:2:2 decoders, in the lanes the packed
// row already has.
//
// Each 16-bit lane of a packed row holds one luma byte and one chroma byte, so
// a multiply-add of byte pairs (pmaddubsw) with a zero weight on one of them
// gives luma, or chroma, in 16-bit lanes straight from the loaded bytes: no
// byte gathering and no widening. Luma comes in pixel order. Chroma comes as
// the groups' pairs, [first, second, first, second, ...], so one product with
// alternating weights gives lane 2k the term of pixel 2k from the first
// chroma of its group and lane 2k+1 the term of pixel 2k+1 from the second;
// swapping neighbouring lanes gives the other two terms. The products are
// taken once a pair, never duplicated, and green's two products are summed
// once a pair the same way.
//
// A form is restated here with the very products of its 16-bit lane version:
// Y << 7 is taken as Y x 64 against a doubled weight (the same product), a
// centred chroma (C - 128) << 7 as the signed byte C ^ 0x80 weighted by 128.
// The forms' saturating sums never bind on samples 0..255, so plain sums in
// another order give the same numbers; the decoders' tests run every (Y, Cb,
// Cr) through this step against the plain references.
#pragma once

#include <cstdint>
#include <type_traits>

#include "matrix/ycbcr_forms.h"
#include "matrix/ycbcr_rows.h"
#include "subsampled/catalogue.h"
#include "subsampled/decode_forms.h"

namespace kro::dec {

// A 16-bit lane form on packed lanes:
//   T = mulHighS16(Y x yW + yAdd, kY) + tAdd   (kY = 0: T = Y x yW + yAdd + tAdd)
//   c = centred ? (C - 128) x cW : C x cW      for Cb and Cr
//   R = (T + mulHighS16(cr, kR) + cR) >> shift
//   B = (T + mulHighS16(cb, kB) + cB) >> shift
//   s = mulHighS16(cb, kGb) + mulHighS16(cr, kGr) + cG, G = (gSub ? T - s : T + s) >> shift
struct PairTerms {
    int yW, yAdd, kY, tAdd;
    bool centred;
    int cW;
    int kB, kR, kGb, kGr;
    int cB, cR, cG;
    bool gSub;
    int shift;
};

template <class F>
struct PairTermsOf {
    static constexpr bool kHas = false;
};
// Inverse forms in 16-bit lanes: y' = (Y - 16) << 7 as (Y x 64 - 1024) against 2 KY.
template <int KY, int KRV, int KGU, int KGV, int KBU, bool GSub, int Round, int Shift>
struct PairTermsOf<ycbcr::InvLanes<KY, KRV, KGU, KGV, KBU, GSub, Round, Shift>> {
    static constexpr bool kHas = true;
    static constexpr PairTerms k{64, -1024, 2 * KY, Round, true, 128, KBU, KRV, KGU, KGV, 0, 0, 0, GSub, Shift};
};
// Offsets folded into one constant: the samples as they stand, << 7 as x 64 against doubled weights.
template <int A, int Bc, int C, int D, int E, int OR, int OG, int OB>
struct PairTermsOf<Lanes16<FoldedRaw<A, Bc, C, D, E, OR, OG, OB>>> {
    static constexpr bool kHas = true;
    static constexpr PairTerms k{64, 0, 2 * A, 0, false, 64, 2 * Bc, 2 * C, 2 * D, 2 * E, -OB, -OR, -OG, true, 3};
};
template <>
struct PairTermsOf<D4> {
    using F = D4Raw;
    static constexpr bool kHas = true;
    static constexpr PairTerms k{64, -1024, 2 * F::kY, F::kRound, true, 128, F::kB, F::kR, F::kGb, F::kGr,
                                 0,  0,     0,          false,     4};
};
template <>
struct PairTermsOf<D5> {
    using F = D5Raw;
    static constexpr bool kHas = true;
    static constexpr PairTerms k{64, -1024, 2 * F::kY, 0, true, 128, F::kB, F::kR, F::kGb, F::kGr, 0, 0, 0, true, 3};
};
template <bool SubtractGreen>
struct PairTermsOf<Lanes16<FullSwingRaw<SubtractGreen>>> {
    using F = FullSwingRaw<SubtractGreen>;
    static constexpr bool kHas = true;
    static constexpr int g = SubtractGreen ? 1 : -1;  // weights of green as the form applies them
    static constexpr PairTerms k{16,           0,           0, 8, true, 128, F::kB, F::kR, g * F::kGb, g * F::kGr,
                                 0,            0,           0, SubtractGreen, 4};
};
template <int KR, int KGU, int KGV, int KB>
struct PairTermsOf<Lanes16<YuvHalfRaw<KR, KGU, KGV, KB>>> {
    static constexpr bool kHas = true;
    static constexpr PairTerms k{2, 0, 0, 0, true, 16, KB, KR, KGU, KGV, 0, 0, 0, false, 1};
};

// ------------------------------------------------------------ three-sample destination
// As ycbcr::DstC3Blend, marked so that the pair step writes its 48 bytes itself.
template <bool Swap>
struct DstC3Pairs {
    using Base = ycbcr::DstC3Blend<Swap>;
    uint8_t* base;
    int step;
    struct Row : Base::Row {
        static constexpr bool kPairBytes = true;
        static constexpr bool kSwap = Swap;
    };
    Row row(int y) const { return {Base{base, step}.row(y)}; }
};

template <class R, class = void>
struct WritesPairBytes : std::false_type {};
template <class R>
struct WritesPairBytes<R, std::void_t<decltype(R::kPairBytes)>> : std::true_type {};

// ------------------------------------------------------------ byte tables
// Lane roles of the step's results: X holds in lane 2k pixel 2k's term of the
// group's first chroma and in lane 2k+1 pixel 2k+1's term of the second; Y the
// other two; G green.
enum class Role { X, Y, G };

// Channel (0 R, 1 G, 2 B) of role r at pixel i when Cb comes first in a group.
constexpr int channelOf(Role r, int i, bool cbFirst) {
    if (r == Role::G) return 1;
    const bool first = (r == Role::X) == (i % 2 == 0);  // the term of the group's first chroma
    return first == cbFirst ? 2 : 0;
}

// Three 16-byte results packed from the 16-bit lanes: A = X, Y of pixels 0..7,
// B = G of 0..15, C = X, Y of pixels 8..15. Where does channel ch of pixel i
// sit (vector, byte)?
struct At {
    int vec, byte;
};
constexpr At packedAt(int ch, int i, bool cbFirst) {
    if (ch == 1) return {1, i};
    const bool isX = channelOf(Role::X, i, cbFirst) == ch;
    return i < 8 ? At{0, isX ? i : 8 + i} : At{2, isX ? i - 8 : i};
}

// pshufb masks from each packed vector to each of the three output vectors of
// 16 three-sample pixels (Swap: B, G, R order); use[v][s] if any byte comes.
struct C3PairMasks {
    Mask16 m[3][3];  // [output vector][packed vector]
    bool use[3][3];
};
constexpr C3PairMasks makeC3PairMasks(bool cbFirst, bool swap) {
    C3PairMasks t{};
    for (int v = 0; v < 3; ++v)
        for (int s = 0; s < 3; ++s) {
            t.use[v][s] = false;
            for (int b = 0; b < 16; ++b) t.m[v][s].b[b] = -128;
        }
    for (int v = 0; v < 3; ++v)
        for (int b = 0; b < 16; ++b) {
            const int k = 16 * v + b, i = k / 3, slot = k % 3;
            const int ch = swap ? 2 - slot : slot;
            const At a = packedAt(ch, i, cbFirst);
            t.m[v][a.vec].b[b] = static_cast<int8_t>(a.byte);
            t.use[v][a.vec] = true;
        }
    return t;
}
template <bool CbFirst, bool Swap>
inline constexpr C3PairMasks kC3PairMasks = makeC3PairMasks(CbFirst, Swap);

// Lane 2k <-> lane 2k + 1.
inline constexpr Mask16 kSwapWords = {{2, 3, 0, 1, 6, 7, 4, 5, 10, 11, 8, 9, 14, 15, 12, 13}};

// ------------------------------------------------------------ the step
// Form: a 16-bit lane form with PairTermsOf. The source row gives its 32 bytes
// (bytes32) and where luma and the first chroma of a group stand (kLumaLow: in
// the low byte of each 16-bit lane; kCbFirst: Cb before Cr).
template <class Form>
struct PairStep {
    static constexpr PairTerms k = PairTermsOf<Form>::k;

    // How chroma reaches its lanes. A centred chroma weighted by 128 is taken as
    // C x 64 - 8192 against doubled weights where they fit in 16 bits (the same
    // products), one weighted below 128 as C x cW - 128 cW; otherwise as the
    // signed byte C ^ 0x80 weighted by 128.
    static constexpr bool fits2(int w) { return w >= -16384 && w <= 16383; }
    static constexpr bool kHalveW = k.centred && k.cW == 128 && fits2(k.kB) && fits2(k.kR) && fits2(k.kGb) &&
                                    fits2(k.kGr);
    static constexpr bool kSignedBytes = k.centred && k.cW == 128 && !kHalveW;
    static constexpr int kCW = kHalveW ? 64 : k.cW;               // the byte weight
    static constexpr int kCOff = k.centred ? -128 * kCW : 0;      // added to C x kCW
    static constexpr int kMul = kHalveW ? 2 : 1;                  // on the chroma weights

    // A rounding term of half the shift's unit goes with the shift: (s + 2^(n-1))
    // >> n is the rounded product of s and 2^(15-n) (pmulhrsw), exactly.
    static constexpr bool kRoundedShift = k.tAdd != 0 && k.tAdd == 1 << (k.shift - 1);
    static constexpr int kTAdd = kRoundedShift ? 0 : k.tAdd;
    static V shifted(V s) {
        if constexpr (kRoundedShift) return mulRoundS15(s, splat16(1 << (15 - k.shift)));
        return _mm_srai_epi16(s, k.shift);
    }

    // Eight pixels from one 16-byte vector: X, Y and G lanes after the shift.
    template <bool LumaLow, bool CbFirst>
    static void half(V a, V& x, V& y, V& g) {
        V t = _mm_maddubs_epi16(a, splat16(LumaLow ? k.yW : k.yW << 8));
        if constexpr (k.kY != 0) {
            if constexpr (k.yAdd != 0) t = _mm_add_epi16(t, splat16(k.yAdd));
            t = mulHighS16(t, splat16(k.kY));
            if constexpr (kTAdd != 0) t = _mm_add_epi16(t, splat16(kTAdd));
        } else if constexpr (k.yAdd + kTAdd != 0) {
            t = _mm_add_epi16(t, splat16(k.yAdd + kTAdd));
        }
        const int cw = LumaLow ? kCW << 8 : kCW;  // the weight on each lane's chroma byte
        V c;
        if constexpr (kSignedBytes) {
            c = _mm_maddubs_epi16(splat16(cw), _mm_xor_si128(a, _mm_set1_epi8(-128)));
        } else {
            c = _mm_maddubs_epi16(a, splat16(cw));
            if constexpr (kCOff != 0) c = _mm_add_epi16(c, splat16(kCOff));
        }
        // weights and constants of the first and the second chroma of a group
        constexpr int k1 = kMul * (CbFirst ? k.kB : k.kR), k2 = kMul * (CbFirst ? k.kR : k.kB);
        constexpr int c1 = CbFirst ? k.cB : k.cR, c2 = CbFirst ? k.cR : k.cB;
        constexpr int g1 = kMul * (CbFirst ? k.kGb : k.kGr), g2 = kMul * (CbFirst ? k.kGr : k.kGb);
        V x1 = mulHighS16(c, _mm_setr_epi16(k1, k2, k1, k2, k1, k2, k1, k2));
        if constexpr (c1 != 0 || c2 != 0) x1 = _mm_add_epi16(x1, _mm_setr_epi16(c1, c2, c1, c2, c1, c2, c1, c2));
        V x2 = mulHighS16(c, _mm_setr_epi16(g1, g2, g1, g2, g1, g2, g1, g2));
        if constexpr (k.cG != 0) x2 = _mm_add_epi16(x2, _mm_setr_epi16(k.cG, 0, k.cG, 0, k.cG, 0, k.cG, 0));
        const V swap = loadMask(kSwapWords);
        x = shifted(_mm_add_epi16(t, x1));
        y = shifted(_mm_add_epi16(t, _mm_shuffle_epi8(x1, swap)));
        // green: both products of the pair, the own lane's, then the neighbour's
        if constexpr (k.gSub)
            g = _mm_sub_epi16(_mm_sub_epi16(t, x2), _mm_shuffle_epi8(x2, swap));
        else
            g = _mm_add_epi16(_mm_add_epi16(t, x2), _mm_shuffle_epi8(x2, swap));
        g = shifted(g);
    }

    // Pixels x, x + 16, ... below end; returns the first pixel not written.
    template <class SRow, class DRow>
    static int run(const SRow& sr, const DRow& dr, int x, int end) {
        constexpr bool kCbFirst = SRow::kCbFirst, kLumaLow = SRow::kLumaLow;
        const SRow s = sr;  // local copies: the stores cannot change them
        const DRow d = dr;
        for (; x + 16 <= end; x += 16) {
            V a0, a1;
            s.bytes32(x, a0, a1);
            V x0, y0, g0, x1, y1, g1;
            half<kLumaLow, kCbFirst>(a0, x0, y0, g0);
            half<kLumaLow, kCbFirst>(a1, x1, y1, g1);
            if constexpr (WritesPairBytes<DRow>::value) {
                // 48 bytes from three packed vectors, two or three of them a vector
                const V p[3] = {_mm_packus_epi16(x0, y0), _mm_packus_epi16(g0, g1), _mm_packus_epi16(x1, y1)};
                const auto& t = kC3PairMasks<kCbFirst, DRow::kSwap>;
                uint8_t* q = d.p + 3 * x;
                for (int v = 0; v < 3; ++v) {
                    V acc = zero();
                    bool any = false;
                    for (int i = 0; i < 3; ++i) {
                        if (!t.use[v][i]) continue;
                        const V part = _mm_shuffle_epi8(p[i], loadMask(t.m[v][i]));
                        acc = any ? _mm_or_si128(acc, part) : part;
                        any = true;
                    }
                    _mm_storeu_si128(reinterpret_cast<V*>(q + 16 * v), acc);
                }
            } else {
                // X holds red at odd pixels when Cb comes first, at even pixels otherwise
                const V px = _mm_packus_epi16(x0, x1), py = _mm_packus_epi16(y0, y1);
                const V odd = splat16(0xff00);
                Px o;
                o.c[0] = kCbFirst ? _mm_blendv_epi8(py, px, odd) : _mm_blendv_epi8(px, py, odd);
                o.c[1] = _mm_packus_epi16(g0, g1);
                o.c[2] = kCbFirst ? _mm_blendv_epi8(px, py, odd) : _mm_blendv_epi8(py, px, odd);
                o.c[3] = zero();
                d.template store<16>(x, o);
            }
        }
        return x;
    }
};

// Sources that give their 32 bytes in packed lanes.
template <class R, class = void>
struct HasPairLanes : std::false_type {};
template <class R>
struct HasPairLanes<R, std::void_t<decltype(R::kCbFirst)>> : std::true_type {};

}  // namespace kro::dec
