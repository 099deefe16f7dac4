// The arithmetic of RGB <-> HLS (hue in degrees, lightness and saturation of the
// double cone). Every integer sample goes through 32-bit floats; the order of
// the float operations is part of the result and each form keeps its own.
//
// A form is a template over the lane type X: float for the scalar tail, VF
// (four float lanes) for the main path. Arithmetic is written once with the
// vector extensions' operators; comparisons and selections go through the
// small overloads below, the scalar one beside the vector one.
#pragma once

#include <cstdint>

#include "frame/forms.h"
#include "perceptual/reciprocal.h"

namespace kro::hls {

constexpr float bitsToFloat(uint32_t b) { return __builtin_bit_cast(float, b); }

// ------------------------------------------------------------ constants (stored bit patterns)
inline constexpr float kC60 = bitsToFloat(0x3C888889);      // 1/60
inline constexpr float kHueIn8 = bitsToFloat(0x3FB4B4B5);   // 360/255: 8-bit hue to degrees
inline constexpr float kUnit8 = bitsToFloat(0x3B808081);    // 1/255
inline constexpr float kHueIn16 = bitsToFloat(0x3BB400B4);  // 360/65535
inline constexpr float kUnit16 = bitsToFloat(0x37800080);   // 1/65535
inline constexpr float kHueOut8 = bitsToFloat(0x3F355555);  // 255/360: degrees to 8-bit hue
inline constexpr float kHueOut16 = bitsToFloat(0x43360AAB); // 65535/360
inline constexpr float kEps32 = bitsToFloat(0x34000000);    // 2^-23: achromatic below this spread (32f)

// Full scale of an integer sample: F, F/2, 2F and the hue factor out of degrees.
struct Scale8 {
    static constexpr float F = 255.0f, half = 127.5f, twoF = 510.0f, hueOut = kHueOut8;
};
struct Scale16 {  // 16u, and 16s after its bias
    static constexpr float F = 65535.0f, half = 32767.5f, twoF = 131070.0f, hueOut = kHueOut16;
};

// ------------------------------------------------------------ lane helpers, scalar beside vector
inline VF splat(float v) { return _mm_set1_ps(v); }

inline bool lt(float a, float b) { return a < b; }
inline VF lt(VF a, float b) { return _mm_cmplt_ps(a, splat(b)); }
inline bool le(float a, float b) { return a <= b; }
inline VF le(VF a, float b) { return _mm_cmple_ps(a, splat(b)); }
inline bool gt(float a, float b) { return a > b; }
inline VF gt(VF a, float b) { return _mm_cmpgt_ps(a, splat(b)); }
inline bool eq(float a, float b) { return a == b; }
inline VF eq(VF a, VF b) { return _mm_cmpeq_ps(a, b); }
inline VF eq(VF a, float b) { return _mm_cmpeq_ps(a, splat(b)); }

// a where m holds, else b
inline float pick(bool m, float a, float b) { return m ? a : b; }
inline VF pick(VF m, VF a, VF b) { return _mm_blendv_ps(b, a, m); }
inline VF pick(VF m, float a, VF b) { return _mm_blendv_ps(b, splat(a), m); }
inline VF pick(VF m, VF a, float b) { return _mm_blendv_ps(splat(b), a, m); }
// 0 where m holds, else a
inline float zeroWhere(bool m, float a) { return m ? 0.0f : a; }
inline VF zeroWhere(VF m, VF a) { return _mm_andnot_ps(m, a); }

inline float minOf(float a, float b) { return a < b ? a : b; }
inline VF minOf(VF a, VF b) { return _mm_min_ps(a, b); }  // a < b ? a : b
inline float max3(float a, float b, float c) {
    const float m = a > b ? a : b;
    return m > c ? m : c;
}
inline VF max3(VF a, VF b, VF c) { return _mm_max_ps(_mm_max_ps(a, b), c); }
inline float min3(float a, float b, float c) {
    const float m = a < b ? a : b;
    return m < c ? m : c;
}
inline VF min3(VF a, VF b, VF c) { return _mm_min_ps(_mm_min_ps(a, b), c); }

// ------------------------------------------------------------ reciprocals
// estimate (rcpps) and refined (one Newton step on it): perceptual/reciprocal.h.
using recip::estimate;
using recip::refined;

struct Estimate {
    template <class X>
    static X of(X x) { return estimate(x); }
};
struct Refined {
    template <class X>
    static X of(X x) { return refined(x); }
};

// ------------------------------------------------------------ float to sample word
// Saturation of the main paths is left to the pack steps of the store.
struct Nearest {  // to nearest, ties to even
    using Word = int;
    static int of(float v) { return roundEven(v); }
    static V of(VF v) { return roundEven(v); }
};
struct Trunc {  // toward zero
    using Word = int;
    static int of(float v) { return truncToInt(v); }
    static V of(VF v) { return truncToInt(v); }
};
struct AsFloat {  // 32f: the value itself
    using Word = float;
    static float of(float v) { return v; }
    static V of(VF v) { return _mm_castps_si128(v); }
};

// ------------------------------------------------------------ forward, named pieces
// Common start: mx, mn, d = mx - mn, s = mn + mx, Lf = 0.5 s.
template <class X>
struct Start {
    X mx, d, s, Lf;
};
template <class X>
inline Start<X> start(X R, X G, X B) {
    const X mx = max3(R, G, B), mn = min3(R, G, B);
    const X s = mn + mx;
    return {mx, mx - mn, s, 0.5f * s};
}

// One of three values by the dominant channel: R if mx equals R, else G if
// mx equals G, else B.
template <class X, class A, class B, class C>
inline X byDominant(X mx, X R, X G, A onR, B onG, C onB) {
    return pick(eq(mx, R), onR, pick(eq(mx, G), onG, onB));
}

// Saturation's denominator: the sum, mirrored to 2F - sum above half scale
// (exactly half scale keeps the sum).
template <class Scale, class X>
inline X satDenominator(X lf, X sum) {
    return pick(le(lf, Scale::half), sum, Scale::twoF - sum);
}

// Saturation: (r x d) x F, with r the reciprocal of the denominator.
template <class Scale, class X>
inline X saturation(X r, X d) {
    return (r * d) * Scale::F;
}

// Hue in degrees, main paths of 8u RGB and 16 bits: k = r x 60 first, then
// (G - B) k, ((B - R) k) + 120, ((R - G) k) + 240.
template <class X>
inline X hueScaledReciprocal(X mx, X R, X G, X B, X r) {
    const X k = r * 60.0f;
    return byDominant(mx, R, G, (G - B) * k, ((B - R) * k) + 120.0f, ((R - G) * k) + 240.0f);
}

// Hue in degrees, tails and the 8u BGR main path: the difference times 60
// first, then times r: ((G - B) 60) r, (((B - R) 60) r) + 120, (((R - G) 60) r) + 240.
// (The BGR main path writes offset + (r x n): the same numbers.)
template <class X>
inline X hueDifference60(X mx, X R, X G, X B, X r) {
    return byDominant(mx, R, G, ((G - B) * 60.0f) * r, (((B - R) * 60.0f) * r) + 120.0f,
                      (((R - G) * 60.0f) * r) + 240.0f);
}

// Hue below 0 goes once round the circle.
template <class X>
inline X wrapHue(X hd) {
    return pick(lt(hd, 0.0f), hd + 360.0f, hd);
}

// The same for a hue that ends as an integer sample: 360 or 0 added, so a -0
// becomes +0, which converts to the same 0; no selection step.
inline VF wrapHueToSample(VF hd) {
    return hd + _mm_and_ps(lt(hd, 0.0f), splat(360.0f));
}

// ------------------------------------------------------------ forward, integer main paths
// Paths 1 (Recip = Estimate, 8u RGB) and 2 (Recip = Refined, 16u/16s).
// An achromatic lane has its denominator replaced by 0.5 and its hue
// reciprocal masked to 0 before use; its H and S are 0. On integer samples
// those lanes need no further mask: S is a finite reciprocal times d = 0, and
// with R = G = B the hue is (G - B) x 0 = 0 on the R branch.
template <class Scale, class Recip, class Conv>
struct FwdMain {
    static void apply(const VF (&in)[3], V (&o)[3]) {
        const VF R = in[0], G = in[1], B = in[2];
        const auto st = start(R, G, B);
        const VF z = eq(st.d, 0.0f);
        const VF den = satDenominator<Scale>(st.Lf, pick(z, 0.5f, st.s));
        const VF sf = saturation<Scale>(Recip::of(den), st.d);
        const VF hd = wrapHueToSample(hueScaledReciprocal(st.mx, R, G, B, zeroWhere(z, Recip::of(st.d))));
        o[0] = Conv::of(hd * Scale::hueOut);
        o[1] = Conv::of(st.Lf);
        o[2] = Conv::of(sf);
    }
};

// Bytes of pixels 4j .. 4j + 3 of a 16-byte channel, one a 32-bit lane.
template <int J>
inline V byteLanes(V v) {
    constexpr char o = static_cast<char>(4 * J), z = -1;
    return _mm_shuffle_epi8(v, _mm_setr_epi8(o, z, z, z, o + 1, z, z, z, o + 2, z, z, z, o + 3, z, z, z));
}
template <int J>
inline VF byteFloats(V v) { return _mm_cvtepi32_ps(byteLanes<J>(v)); }

// Path 1 main on 16 pixels of bytes (8u RGB): the numbers of Fwd1Main. What is
// exact on integers is taken in bytes, sixteen pixels an instruction:
//  - mx, mn and d; L = (mx + mn) / 2 converted as the float unit converts
//    Lf under the caller's rounding mode: the average rounded up, less one
//    where the sum is odd and, to nearest, that average is odd (ties to
//    even), downward or toward zero always, upward never;
//  - the saturation's denominator, mx + mn up to 255, else 510 - (mx + mn) =
//    (255 - mx) + (255 - mn): the smaller of the two sums saturated at 255
//    (at least 1 wherever d is not 0);
//  - the hue's difference as its two operands, (G, B) where mx is R, else
//    (B, R) where mx is G, else (R, G), and its offset in steps of 120
//    degrees: 1 for G, 2 for B; for R 3 (the turn added) where G < B, else 0.
// The float lanes then take, four pixels at a time, S = (estimate(den) x d) x 255
// and H = (((a - b) x (estimate(d) x 60)) + offset) x hueOut8, where R's
// offset 0 is exact and 360 is the wrap of a negative hue.
// Achromatic pixels (d = 0) take their reciprocals of at least 1 (den of
// black and white is 0, and d itself): finite numbers times d = 0 and a - b
// = 0 give their S and H of 0, with no infinity or NaN on the way.
struct Fwd1Main16 {
    // Where an odd sum's half goes down, as a mask on the rounded-up average.
    static V halfDown(V up) {
        switch (_mm_getcsr() & 0x6000u) {
            case 0x0000u: return up;                   // nearest: down where up is odd
            case 0x4000u: return zero();               // upward
            default: return _mm_set1_epi8(-1);         // downward, toward zero
        }
    }

    template <int J>
    static void block(V d, V den, V a, V b, V turn, V& h, V& s) {
        const VF df = byteFloats<J>(d);
        s = roundEven((estimate(byteFloats<J>(den)) * df) * 255.0f);
        const VF k = estimate(_mm_max_ps(df, splat(1.0f))) * 60.0f;
        const VF diff = _mm_cvtepi32_ps(_mm_sub_epi32(byteLanes<J>(a), byteLanes<J>(b)));
        h = roundEven(((diff * k) + byteFloats<J>(turn) * 120.0f) * kHueOut8);
    }

    static void apply(const V (&in)[3], V (&o)[3]) {
        const V R = in[0], G = in[1], B = in[2];
        const V mx = _mm_max_epu8(_mm_max_epu8(R, G), B), mn = _mm_min_epu8(_mm_min_epu8(R, G), B);
        const V d = _mm_sub_epi8(mx, mn);
        const V one = _mm_set1_epi8(1), ones = _mm_set1_epi8(-1);
        const V up = _mm_avg_epu8(mx, mn);
        const V L = _mm_sub_epi8(up, _mm_and_si128(_mm_and_si128(_mm_xor_si128(mx, mn), halfDown(up)), one));
        const V den = _mm_max_epu8(_mm_min_epu8(_mm_adds_epu8(mx, mn),
                                                _mm_adds_epu8(_mm_xor_si128(mx, ones), _mm_xor_si128(mn, ones))),
                                   one);
        const V isR = _mm_cmpeq_epi8(mx, R), isG = _mm_cmpeq_epi8(mx, G);
        const V a = _mm_blendv_epi8(_mm_blendv_epi8(R, B, isG), G, isR);
        const V b = _mm_blendv_epi8(_mm_blendv_epi8(G, R, isG), B, isR);
        const V aNotBelow = _mm_cmpeq_epi8(_mm_subs_epu8(b, a), zero());
        const V turn = _mm_blendv_epi8(_mm_blendv_epi8(_mm_set1_epi8(2), one, isG),
                                       _mm_andnot_si128(aNotBelow, _mm_set1_epi8(3)), isR);
        V h[4], s[4];
        block<0>(d, den, a, b, turn, h[0], s[0]);
        block<1>(d, den, a, b, turn, h[1], s[1]);
        block<2>(d, den, a, b, turn, h[2], s[2]);
        block<3>(d, den, a, b, turn, h[3], s[3]);
        o[0] = _mm_packus_epi16(_mm_packs_epi32(h[0], h[1]), _mm_packs_epi32(h[2], h[3]));
        o[1] = L;
        o[2] = _mm_packus_epi16(_mm_packs_epi32(s[0], s[1]), _mm_packs_epi32(s[2], s[3]));
    }
};

// Path 3 main (8u BGR): an achromatic lane has 0.5 added to d and s before
// the (unrefined) reciprocals; truncated.
struct FwdMainBgr {
    static void apply(const VF (&in)[3], V (&o)[3]) {
        using S = Scale8;
        const VF R = in[0], G = in[1], B = in[2];
        const auto st = start(R, G, B);
        const VF z = eq(st.d, 0.0f);
        const VF a = _mm_and_ps(z, splat(0.5f));
        const VF d2 = st.d + a, s2 = st.s + a;
        const VF den = satDenominator<S>(st.Lf, s2);
        const VF sf = zeroWhere(z, saturation<S>(estimate(den), d2));
        const VF hd = zeroWhere(z, wrapHue(hueDifference60(st.mx, R, G, B, estimate(d2))));
        o[0] = Trunc::of(hd * S::hueOut);
        o[1] = Trunc::of(st.Lf);
        o[2] = Trunc::of(sf);
    }
};

// ------------------------------------------------------------ forward, integer tail
// Refined reciprocals. Conv: truncation with no saturation step, or nearest
// for the 8u RGB AC4 tail.
template <class Scale, class Conv>
struct FwdTail {
    static void apply(const float (&in)[3], int (&o)[3]) {
        const float R = in[0], G = in[1], B = in[2];
        const auto st = start(R, G, B);
        o[1] = Conv::of(st.Lf);
        if (st.d == 0.0f) {
            o[0] = o[2] = 0;
            return;
        }
        o[2] = Conv::of(saturation<Scale>(refined(satDenominator<Scale>(st.Lf, st.s)), st.d));
        o[0] = Conv::of(wrapHue(hueDifference60(st.mx, R, G, B, refined(st.d))) * Scale::hueOut);
    }
};

// ------------------------------------------------------------ forward, 32f
// True division; achromatic when d is at most 2^-23; no clamp. The row is one
// loop of this per-pixel form; four pixels go through the vector version at
// once, which takes the same divisions of the same operands, so every lane
// holds the scalar form's bits, NaN and signed zeros included:
//  - S's denominator is min(s, 2 - s): s where Lf = 0.5 s is at most 0.5
//    (s at most 1, where 2 - s is at least s), else 2 - s, which is then
//    below s, or is the NaN or -inf that the comparisons leave to it;
//  - the branch's operands are chosen first, (G, B) where mx is R, else
//    (B, R) where mx is G, else (R, G), and ((a - b) x 60) / d divided once;
//  - one sum adds the offset and the turn: 120 for G, 240 for B; for R 360
//    where q is below 0, else -0, which leaves every number as it is (a -0
//    stays -0: R adds nothing). 120 + q and q + 240 are below 0 only where
//    q is -inf (|a - b| is at most d), where the turn leaves -inf as it is.
struct FwdFloat {
    static void apply(const VF (&in)[3], V (&o)[3]) {
        const VF R = in[0], G = in[1], B = in[2];
        const auto st = start(R, G, B);
        const VF grey = le(st.d, kEps32);
        const VF sf = st.d / minOf(st.s, 2.0f - st.s);
        const VF isR = eq(st.mx, R), isG = eq(st.mx, G);
        const VF a = pick(isR, G, pick(isG, B, R)), b = pick(isR, B, pick(isG, R, G));
        const VF q = ((a - b) * 60.0f) / st.d;
        const VF turn = pick(lt(q, 0.0f), splat(360.0f), splat(-0.0f));
        const VF hd = q + pick(isR, turn, pick(isG, splat(120.0f), splat(240.0f)));
        o[0] = AsFloat::of(zeroWhere(grey, hd / 360.0f));
        o[1] = AsFloat::of(st.Lf);
        o[2] = AsFloat::of(zeroWhere(grey, sf));
    }

    static void apply(const float (&in)[3], float (&o)[3]) {
        const float R = in[0], G = in[1], B = in[2];
        const auto st = start(R, G, B);
        o[1] = st.Lf;
        if (st.d <= kEps32) {
            o[0] = o[2] = 0.0f;
            return;
        }
        o[2] = st.Lf <= 0.5f ? st.d / st.s : st.d / (2.0f - st.s);
        float hd;
        if (st.mx == R)
            hd = ((G - B) * 60.0f) / st.d;
        else if (st.mx == G)
            hd = 120.0f + (((B - R) * 60.0f) / st.d);
        else
            hd = (((R - G) * 60.0f) / st.d) + 240.0f;
        o[0] = wrapHue(hd) / 360.0f;
    }
};

// ------------------------------------------------------------ inverse, named pieces
// Sample to degrees and to 0..1.
template <const float& K>
struct MulBy {  // x times one of the constants above
    template <class X>
    static X of(X x) { return x * K; }
};
struct HueDiv8 {  // (H x 360) / 255
    template <class X>
    static X of(X h) { return (h * 360.0f) / 255.0f; }
};
struct Hue32f {  // H x 360
    template <class X>
    static X of(X h) { return h * 360.0f; }
};
struct UnitDiv8 {  // x / 255
    template <class X>
    static X of(X x) { return x / 255.0f; }
};
struct AsIs {
    template <class X>
    static X of(X x) { return x; }
};
using HueMul8 = MulBy<kHueIn8>;
using HueMul16 = MulBy<kHueIn16>;
using UnitMul8 = MulBy<kUnit8>;
using UnitMul16 = MulBy<kUnit16>;

// Upper level m2 for L at most 0.5.
struct M2LowProduct {  // (L x S) + L; the same numbers as L + (L x S) and (S x L) + L
    template <class X>
    static X of(X L, X S) { return (L * S) + L; }
};
struct M2LowScaled {  // (S + 1) x L
    template <class X>
    static X of(X L, X S) { return (S + 1.0f) * L; }
};
// Upper level m2 for L above 0.5.
struct M2HighDiff {  // (S - (L x S)) + L
    template <class X>
    static X of(X L, X S) { return (S - (L * S)) + L; }
};
struct M2HighSum {  // (L + S) - (S x L); the same numbers as (S + L) - (L x S)
    template <class X>
    static X of(X L, X S) { return (L + S) - (S * L); }
};

// Rising and falling edges of the ramp between m1 and m2 (d = m2 - m1), as
// one function of the distance u from the ramp's foot: u = t on the rising
// edge, u = 240 - t on the falling one.
struct EdgeTD {  // ((u x d) x c60) + m1
    template <class X>
    static X at(X u, X d, X m1) { return ((u * d) * kC60) + m1; }
};
struct EdgeDiv {  // ((d x u) / 60) + m1
    template <class X>
    static X at(X u, X d, X m1) { return ((d * u) / 60.0f) + m1; }
};
struct EdgeTC {  // ((u x c60) x d) + m1; c60 x t is the same
    template <class X>
    static X at(X u, X d, X m1) { return ((u * kC60) * d) + m1; }
};

// ramp(t): below 60 rising, below 180 m2, below 240 falling, else m1;
// exactly 60, 180 and 240 belong to the branch above. min(t, 240 - t) is t
// below 60 and 240 - t from 180 to 240, so one edge serves both branches.
// The lanes below 60 are among those below 180, so m2's are those below 180
// and not below 60 (a NaN t is below nothing and takes m1).
inline bool exceptIn(bool wide, bool narrow) { return wide != narrow; }
inline VF exceptIn(VF wide, VF narrow) { return _mm_xor_ps(wide, narrow); }

template <class Edge, class X>
inline X ramp(X t, X m1, X m2, X d) {
    const X e = Edge::at(minOf(t, 240.0f - t), d, m1);
    return pick(exceptIn(lt(t, 180.0f), lt(t, 60.0f)), m2, pick(lt(t, 240.0f), e, m1));
}

// Hue positions of the three channels: R one third ahead (wrapped above 360),
// G at the hue, B one third behind (wrapped below 0).
template <class X>
inline X posR(X hd) {
    const X t = hd + 120.0f;
    return pick(gt(t, 360.0f), t - 360.0f, t);
}
template <class X>
inline X posB(X hd) {
    const X t = hd - 120.0f;
    return pick(lt(t, 0.0f), t + 360.0f, t);
}

// What S equal to 0 gives.
enum class Grey {
    Ramp,    // nothing special: the levels meet at L
    Level,   // every channel L (on 0..1), converted like any value
    Sample,  // every channel the L sample itself, copied
};

// To a sample: value x F, then Conv; or the float itself.
template <int F, class Conv>
struct ToSample {
    using Word = typename Conv::Word;
    template <class X>
    static auto of(X v) { return Conv::of(v * static_cast<float>(F)); }
};
struct ToFloat {
    using Word = float;
    template <class X>
    static auto of(X v) { return AsFloat::of(v); }
};

// ------------------------------------------------------------ inverse, one form
template <class HueIn, class UnitIn, class M2Low, class M2High, class Edge, Grey G, class Out>
struct Inv {
    using Word = typename Out::Word;

    template <class X>
    static void values(X h, X l, X s, X (&v)[3], X& lf) {
        const X hd = HueIn::of(h);
        lf = UnitIn::of(l);
        const X sf = UnitIn::of(s);
        const X m2 = pick(le(lf, 0.5f), M2Low::of(lf, sf), M2High::of(lf, sf));
        const X m1 = (lf + lf) - m2;  // the same numbers as (2 x L) - m2
        const X d = m2 - m1;
        v[0] = ramp<Edge>(posR(hd), m1, m2, d);
        v[1] = ramp<Edge>(hd, m1, m2, d);
        v[2] = ramp<Edge>(posB(hd), m1, m2, d);
        if constexpr (G == Grey::Level) {
            const auto grey = eq(sf, 0.0f);
            for (auto& c : v) c = pick(grey, lf, c);
        }
    }

    static void apply(const VF (&in)[3], V (&o)[3]) {
        static_assert(G != Grey::Sample, "the vector steps have no sample copy");
        VF v[3], lf;
        values(in[0], in[1], in[2], v, lf);
        for (int k = 0; k < 3; ++k) o[k] = Out::of(v[k]);
    }

    static void apply(const float (&in)[3], Word (&o)[3]) {
        if constexpr (G == Grey::Sample) {
            if (UnitIn::of(in[2]) == 0.0f) {
                o[0] = o[1] = o[2] = static_cast<Word>(in[1]);
                return;
            }
        }
        float v[3], lf;
        values(in[0], in[1], in[2], v, lf);
        for (int k = 0; k < 3; ++k) o[k] = Out::of(v[k]);
    }
};

// ------------------------------------------------------------ inverse path 1 main on 16 pixels of bytes
// The numbers of Inv1Main, four pixels at a time out of 16-byte channels.
// Its hue positions come from 8-bit hues: Hd = H x hueIn8 lies on 0..360, and
// no channel's position is exactly 60 or 180 (the nearest are some 0.7 away;
// every hue goes through the exhaustive tests). So with u = min(t, 240 - t):
// u above 60 is exactly the m2 branch; below it, t is on the rising edge (u =
// t) or the falling one (u = 240 - t), and from 240 on u is at most 0, where
// the edge at u = 0, (0 x d) x c60 + m1, is m1 itself (d and m1 are not
// negative). One edge and one selection a channel.
struct Inv1Main16 {
    static VF ramp8(VF t, VF m1, VF m2, VF d) {
        const VF u = minOf(t, 240.0f - t);
        return pick(gt(u, 60.0f), m2, EdgeTD::at(_mm_max_ps(u, _mm_setzero_ps()), d, m1));
    }

    template <int J>
    static void block(const V (&in)[3], V (&w)[3]) {
        const VF hd = HueMul8::of(byteFloats<J>(in[0]));
        const VF lf = UnitMul8::of(byteFloats<J>(in[1])), sf = UnitMul8::of(byteFloats<J>(in[2]));
        const VF m2 = pick(le(lf, 0.5f), M2LowProduct::of(lf, sf), M2HighDiff::of(lf, sf));
        const VF m1 = (lf + lf) - m2;
        const VF d = m2 - m1;
        w[0] = roundEven(ramp8(posR(hd), m1, m2, d) * 255.0f);
        w[1] = roundEven(ramp8(hd, m1, m2, d) * 255.0f);
        w[2] = roundEven(ramp8(posB(hd), m1, m2, d) * 255.0f);
    }

    static void apply(const V (&in)[3], V (&o)[3]) {
        V w[4][3];
        block<0>(in, w[0]);
        block<1>(in, w[1]);
        block<2>(in, w[2]);
        block<3>(in, w[3]);
        for (int k = 0; k < 3; ++k)
            o[k] = _mm_packus_epi16(_mm_packs_epi32(w[0][k], w[1][k]), _mm_packs_epi32(w[2][k], w[3][k]));
    }
};

// ------------------------------------------------------------ the paths
// Forward (H, L, S out): main path, tail.
using Fwd1Main = FwdMain<Scale8, Estimate, Nearest>;     // 8u RGB (Fwd1Main16: the same numbers on 16 pixels of bytes)
using Fwd1Tail = FwdTail<Scale8, Trunc>;                 // 8u RGB C3, 8u BGR
using Fwd1TailNearest = FwdTail<Scale8, Nearest>;        // 8u RGB AC4
using Fwd2Main = FwdMain<Scale16, Refined, Nearest>;     // 16u, 16s
using Fwd2Tail = FwdTail<Scale16, Trunc>;
using Fwd3Main = FwdMainBgr;                             // 8u BGR
using Fwd4 = FwdFloat;                                   // 32f (vector and scalar the same numbers)

// Inverse (R, G, B out).
using Inv1Main = Inv<HueMul8, UnitMul8, M2LowProduct, M2HighDiff, EdgeTD, Grey::Ramp, ToSample<255, Nearest>>;  // Inv1Main16: 16 pixels
using Inv1Tail = Inv<HueDiv8, UnitDiv8, M2LowScaled, M2HighSum, EdgeDiv, Grey::Level, ToSample<255, Trunc>>;
using Inv2Main = Inv<HueMul16, UnitMul16, M2LowProduct, M2HighDiff, EdgeTC, Grey::Ramp, ToSample<65535, Nearest>>;
using Inv2Tail = Inv<HueMul16, UnitMul16, M2LowProduct, M2HighSum, EdgeTC, Grey::Sample, ToSample<65535, Nearest>>;
using Inv3Main = Inv<HueMul8, UnitMul8, M2LowProduct, M2HighSum, EdgeTC, Grey::Level, ToSample<255, Trunc>>;
using Inv3Tail = Inv<HueMul8, UnitMul8, M2LowProduct, M2HighSum, EdgeTC, Grey::Sample, ToSample<255, Trunc>>;
using Inv4Main = Inv<Hue32f, AsIs, M2LowProduct, M2HighSum, EdgeTC, Grey::Level, ToFloat>;
using Inv4Tail = Inv<Hue32f, AsIs, M2LowScaled, M2HighSum, EdgeDiv, Grey::Level, ToFloat>;

}  // namespace kro::hls
