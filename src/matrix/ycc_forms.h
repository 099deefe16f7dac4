// The forms of the photographic YCC model: luma scaled by 0.7132668, chroma
// offset to 156 and 137 (of 255). 8-bit samples go through integers: vector
// forms on eight pixels in 16-bit lanes, scalar forms on one pixel (templates
// over the number type). 16u, 16s and 32f go through 32-bit floats (below).
#pragma once

#include <type_traits>

#include "frame/forms.h"
#include "frame/forms_typed.h"
#include "frame/kernel_typed.h"

namespace kro::ycc {

// Forward, main path: a luma sum S with 6 fractional bits, differences against it.
struct FwdVec {
    static void apply(const V (&in)[3], V (&out)[3]) {
        const V s = _mm_add_epi16(_mm_add_epi16(mulHighU16(splat16(4898), _mm_slli_epi16(in[0], 8)),
                                                mulHighU16(splat16(9617), _mm_slli_epi16(in[1], 8))),
                                  mulHighU16(splat16(1867), _mm_slli_epi16(in[2], 8)));
        const V db = subSatS16(_mm_slli_epi16(in[2], 6), s);
        const V dr = subSatS16(_mm_slli_epi16(in[0], 6), s);
        out[0] = _mm_srai_epi16(mulHighS16(s, splat16(2921)), 2);
        out[1] = _mm_srai_epi16(addSatS16(mulHighS16(db, splat16(1789)), splat16(624)), 2);
        out[2] = _mm_srai_epi16(addSatS16(mulHighS16(dr, splat16(2178)), splat16(548)), 2);
    }
};

// Forward, tail: the same model in 16 fractional bits; results need no clamp.
struct FwdScalar {
    template <class T>
    static void apply(T r, T g, T b, T& y, T& c1, T& c2) {
        const T s = 4898 * r + 9617 * g + 1867 * b;
        y = ((s >> 10) * 2921) >> 16;
        c1 = (((((b << 14) - s) >> 10) * 1789) >> 16) + 156;
        c2 = (((((r << 14) - s) >> 10) * 2178) >> 16) + 137;
    }
};

// Inverse, main path: luma weight 5563 (the tail has 5564), chroma << 7.
struct InvVec {
    static void apply(const V (&in)[3], V (&out)[3]) {
        const V yq = mulHighU16(_mm_slli_epi16(in[0], 8), splat16(5563));
        const V p = mulHighS16(_mm_slli_epi16(_mm_sub_epi16(in[1], splat16(156)), 7), splat16(18168));
        const V q = mulHighS16(_mm_slli_epi16(_mm_sub_epi16(in[2], splat16(137)), 7), splat16(14921));
        out[0] = _mm_srai_epi16(addSatS16(yq, q), 4);
        out[2] = _mm_srai_epi16(addSatS16(yq, p), 4);
        out[1] = _mm_srai_epi16(
            addSatS16(addSatS16(_mm_srai_epi16(yq, 1), mulHighS16(p, splat16(-6357))), mulHighS16(q, splat16(-16679))),
            3);
    }
};

// Inverse, tail: 12 fractional bits for R and B, G from the chroma terms >> 8.
struct InvScalar {
    template <class T>
    static void apply(T y, T c1, T c2, T& r, T& g, T& b) {
        const T t = 5564 * y, p = 9084 * c1 - 1417104, q = 7460 * c2 - 1022020;
        r = clampU8((t + q) >> 12);
        b = clampU8((t + p) >> 12);
        g = clampU8((16 * t - 794 * (p >> 8) - 2084 * (q >> 8)) >> 16);
    }
};

}  // namespace kro::ycc

// ------------------------------------------------------------ 16u, 16s, 32f
// The same model in 32-bit floats, every product and sum rounded in the order
// written. Forms are templates over the lane type X: float for a scalar tail,
// VF (four float lanes) for the main path; results that become samples go
// through the conversions below, scalar beside vector.
namespace kro::ycc {

template <class X>
inline X cst(float v) {
    if constexpr (std::is_same_v<X, float>) return v;
    else return _mm_set1_ps(v);
}
inline float subF(float a, float b) { return a - b; }
inline VF subF(VF a, VF b) { return _mm_sub_ps(a, b); }

// Model constants as stored in 32-bit floats.
struct K {
    static constexpr float wR = 0.299f, wG = 0.587f, wB = 0.114f;  // Y0
    static constexpr float yScale = 0.7132668f, c1Scale = 0.4368627f, c2Scale = 0.5319216f;
    static constexpr float c2Scale32f = 0.53192f;                   // the 32f forms' C2 factor
    static constexpr float c1Off32f = 0.6117647f, c2Off32f = 0.5372549f;  // 156/255, 137/255
    static constexpr float half = 0.49999f;                         // truncating forms' rounding term
    // inverse
    static constexpr float yIn = 1.3584f, c1In = 2.2179f, c2In = 1.8215f, gP = 0.194f, gQ = 0.509f;
    static constexpr float gPTail = 0.4302726f, gQTail = 0.92714345f;  // 0.194 x 2.2179, 0.509 x 1.8215
};
// Chroma offsets of the 16-bit scale (156 x 257, 137 x 257) and, for 16s, less 32768.
constexpr int kC1Off16 = 40092, kC2Off16 = 35209, kC1Off16s = kC1Off16 - 32768, kC2Off16s = kC2Off16 - 32768;

// Y0 = (0.299 R + 0.587 G) + 0.114 B
template <class X>
inline X luma0(X r, X g, X b) {
    return sum3(r, g, b, cst<X>(K::wR), cst<X>(K::wG), cst<X>(K::wB));
}

// ---- float to sample word, scalar beside vector (the layout stores low bits)
inline int u16Nearest(float v) { return clampU16(roundEven(v)); }
inline V u16Nearest(VF v) { return clampU16Lanes32(roundEven(v)); }
inline int u16Trunc(float v) { return clampU16(truncToInt(v)); }
inline V u16Trunc(VF v) { return clampU16Lanes32(truncToInt(v)); }
inline int s16NearestBias(float v) { return clampS16(roundEven(v) - 32768); }
inline V s16NearestBias(VF v) { return clampS16Lanes32(_mm_sub_epi32(roundEven(v), _mm_set1_epi32(32768))); }
inline int s16TruncBias(float v) { return clampS16(truncToInt(v) - 32768); }
inline V s16TruncBias(VF v) { return clampS16Lanes32(_mm_sub_epi32(truncToInt(v), _mm_set1_epi32(32768))); }
inline int lowTrunc(float v) { return truncToInt(v); }  // low 16 bits stored
inline int lowTruncBias(float v) { return static_cast<int>(static_cast<uint32_t>(truncToInt(v)) - 32768u); }

// Base of the float forms: four float lanes in, integer or float lanes out.
template <bool FloatOut>
struct FloatForm {
    static constexpr int N = 4, K = 3;
    static constexpr Lanes lanes = Lanes::Float;
    static constexpr bool floatOut = FloatOut;
    using VOut = typename VecOut<FloatOut>::type;
    using SIn = float;
    using SOut = std::conditional_t<FloatOut, float, int>;
};

// RGB to YCC, 16u. Main path: the Y0 form, to nearest, clamped.
// Tail: a direct matrix, truncated after a rounding term of 0.49999, low bits kept.
struct Fwd16u : FloatForm<false> {
    void vec(const VF (&in)[3], V (&o)[3]) const {
        const VF y0 = luma0(in[0], in[1], in[2]);
        o[0] = u16Nearest(mulF(cst<VF>(K::yScale), y0));
        o[1] = u16Nearest(addF(mulF(subF(in[2], y0), cst<VF>(K::c1Scale)), cst<VF>(float(kC1Off16))));
        o[2] = u16Nearest(addF(mulF(subF(in[0], y0), cst<VF>(K::c2Scale)), cst<VF>(float(kC2Off16))));
    }
    void one(const float (&in)[3], int (&o)[3]) const {
        const float r = in[0], g = in[1], b = in[2];
        o[0] = lowTrunc(addF(addF(addF(mulF(0.213267f, r), K::half), mulF(0.418688f, g)), mulF(0.0813124f, b)));
        o[1] = lowTrunc(addF(subF(addF(mulF(-0.130621f, r), 40092.5f), mulF(0.256437f, g)), mulF(0.387058f, b)));
        o[2] = lowTrunc(subF(subF(addF(mulF(0.372876f, r), 35209.5f), mulF(0.312237f, g)), mulF(0.0606389f, b)));
    }
};

// RGB to YCC, 16s: samples + 32768. Main path: the 16u main form, then
// clampS16(value - 32768). Tail: the Y0 form kept, truncated after 0.49999 /
// x.5 offsets, less 32768, low bits kept.
struct Fwd16s : FloatForm<false> {
    void vec(const VF (&in)[3], V (&o)[3]) const {
        const VF bias = cst<VF>(32768.0f);
        const VF r = addF(in[0], bias), g = addF(in[1], bias), b = addF(in[2], bias);
        const VF y0 = luma0(r, g, b);
        o[0] = s16NearestBias(mulF(cst<VF>(K::yScale), y0));
        o[1] = s16NearestBias(addF(mulF(subF(b, y0), cst<VF>(K::c1Scale)), cst<VF>(float(kC1Off16))));
        o[2] = s16NearestBias(addF(mulF(subF(r, y0), cst<VF>(K::c2Scale)), cst<VF>(float(kC2Off16))));
    }
    void one(const float (&in)[3], int (&o)[3]) const {
        const float r = addF(in[0], 32768.0f), g = addF(in[1], 32768.0f), b = addF(in[2], 32768.0f);
        const float y0 = luma0(r, g, b);
        o[0] = lowTruncBias(addF(mulF(K::yScale, y0), K::half));
        o[1] = lowTruncBias(addF(mulF(subF(b, y0), K::c1Scale), 40092.5f));
        o[2] = lowTruncBias(addF(mulF(subF(r, y0), K::c2Scale), 35209.5f));
    }
};

// RGB to YCC, 32f: one form for the whole row, C2 factor 0.53192, no clamp.
struct Fwd32f : FloatForm<true> {
    template <class X>
    static void form(X r, X g, X b, X (&o)[3]) {
        const X y0 = luma0(r, g, b);
        o[0] = mulF(y0, cst<X>(K::yScale));
        o[1] = addF(mulF(subF(b, y0), cst<X>(K::c1Scale)), cst<X>(K::c1Off32f));
        o[2] = addF(mulF(subF(r, y0), cst<X>(K::c2Scale32f)), cst<X>(K::c2Off32f));
    }
    void vec(const VF (&in)[3], VF (&o)[3]) const { form(in[0], in[1], in[2], o); }
    void one(const float (&in)[3], float (&o)[3]) const { form(in[0], in[1], in[2], o); }
};

// YCC to RGB, 16u. Main path: chroma offsets taken off in float, to nearest,
// clamped. Tail: offsets taken off as integers, 0.49999 in T, the G weights
// folded (0.4302726, 0.92714345), truncated, clamped.
struct Inv16u : FloatForm<false> {
    void vec(const VF (&in)[3], V (&o)[3]) const {
        const VF t = mulF(cst<VF>(K::yIn), in[0]);
        const VF p = mulF(subF(in[1], cst<VF>(float(kC1Off16))), cst<VF>(K::c1In));
        const VF q = mulF(subF(in[2], cst<VF>(float(kC2Off16))), cst<VF>(K::c2In));
        o[0] = u16Nearest(addF(t, q));
        o[1] = u16Nearest(subF(subF(t, mulF(cst<VF>(K::gP), p)), mulF(cst<VF>(K::gQ), q)));
        o[2] = u16Nearest(addF(t, p));
    }
    void one(const float (&in)[3], int (&o)[3]) const {
        const float t = addF(mulF(K::yIn, in[0]), K::half);
        const float p = float(int(in[1]) - kC1Off16), q = float(int(in[2]) - kC2Off16);
        o[0] = u16Trunc(addF(mulF(K::c2In, q), t));
        o[1] = u16Trunc(subF(subF(t, mulF(K::gPTail, p)), mulF(K::gQTail, q)));
        o[2] = u16Trunc(addF(t, mulF(K::c1In, p)));
    }
};

// YCC to RGB, 16s: one form for the whole row; Y + 32768 and the chroma
// offsets less 32768 (7324, 2441) taken off as integers; truncated, less 32768, clamped.
struct Inv16s : FloatForm<false> {
    template <class X, class W>
    static void form(X y, X c1, X c2, W (&o)[3]) {
        const X t = mulF(addF(y, cst<X>(32768.0f)), cst<X>(K::yIn));
        const X p = mulF(subF(c1, cst<X>(float(kC1Off16s))), cst<X>(K::c1In));
        const X q = mulF(subF(c2, cst<X>(float(kC2Off16s))), cst<X>(K::c2In));
        o[0] = s16TruncBias(addF(t, q));
        o[1] = s16TruncBias(subF(subF(t, mulF(cst<X>(K::gP), p)), mulF(cst<X>(K::gQ), q)));
        o[2] = s16TruncBias(addF(t, p));
    }
    void vec(const VF (&in)[3], V (&o)[3]) const { form(in[0], in[1], in[2], o); }
    void one(const float (&in)[3], int (&o)[3]) const { form(in[0], in[1], in[2], o); }
};

// YCC to RGB, 32f: one form for the whole row, each result limited to 0..1.
struct Inv32f : FloatForm<true> {
    template <class X>
    static void form(X y, X c1, X c2, X (&o)[3]) {
        const X t = mulF(cst<X>(K::yIn), y);
        const X p = mulF(subF(c1, cst<X>(K::c1Off32f)), cst<X>(K::c1In));
        const X q = mulF(subF(c2, cst<X>(K::c2Off32f)), cst<X>(K::c2In));
        o[0] = clamp01(addF(t, q));
        o[1] = clamp01(subF(subF(t, mulF(cst<X>(K::gP), p)), mulF(cst<X>(K::gQ), q)));
        o[2] = clamp01(addF(t, p));
    }
    void vec(const VF (&in)[3], VF (&o)[3]) const { form(in[0], in[1], in[2], o); }
    void one(const float (&in)[3], float (&o)[3]) const { form(in[0], in[1], in[2], o); }
};

}  // namespace kro::ycc
