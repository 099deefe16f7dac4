// The arithmetic of RGB <-> HSV (the hexcone; hue held in sixths of a turn).
// 8-bit forward: 32-bit floats with unrefined reciprocal estimates, a masked
// main path of four lanes and a branching scalar tail that differ in how they
// pick the hue sector and in saturation. 16-bit forward: integers for max,
// min and spread, then true float divisions; scalar only. Inverse: one form
// for main path and tail, written once over the lane type (float or VF).
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/forms_typed.h"
#include "frame/kernel_typed.h"
#include "perceptual/reciprocal.h"

namespace kro::hsv {

using recip::estimate;

constexpr float bitsToFloat(uint32_t b) { return __builtin_bit_cast(float, b); }

// ------------------------------------------------------------ constants (stored bit patterns)
inline constexpr float kC60 = bitsToFloat(0x3C888889);      // first factor of the inverse hue scale
inline constexpr float kHueIn8 = bitsToFloat(0x3FB4B4B5);   // second factor, 8-bit (360/255)
inline constexpr float kUnit8 = bitsToFloat(0x3B808081);    // 8-bit S to 0..1
inline constexpr float kHueIn16 = bitsToFloat(0x3BB400B4);  // second factor, 16-bit (360/65535)
inline constexpr float kUnit16 = bitsToFloat(0x37800080);   // 16-bit S to 0..1
inline constexpr float kEps32 = bitsToFloat(0x34000000);    // tolerance of the 16-bit hue wrap

// Integer results from four float lanes, or one float.
struct FloatToInt {
    static constexpr int N = 4, K = 3;
    static constexpr Lanes lanes = Lanes::Float;
    static constexpr bool floatOut = false;
    using VOut = V;
    using SIn = float;
    using SOut = int;
};

inline VF splat(float v) { return _mm_set1_ps(v); }

// ------------------------------------------------------------ forward, 8-bit
// Main path: achromatic lanes (mx = 0 or d = 0) get a = 255 added to the
// reciprocals' arguments (m = mx + a, e = a + d) and their H, S masked to 0.
// Sector: blue when B equals m (unless green holds), green when G equals m and
// R does not, red otherwise; S and H to nearest, clamped to 0..255.
// Tail: achromatic pixels leave early; sector by B, then G, equal to mx; S and
// H to nearest with no clamp (the low byte is stored).
struct Fwd8 : FloatToInt {
    void vec(const VF (&in)[3], V (&o)[3]) const {
        const VF R = in[0], G = in[1], B = in[2];
        const VF mx = _mm_max_ps(_mm_max_ps(R, G), B), mn = _mm_min_ps(_mm_min_ps(R, G), B);
        const VF d = _mm_sub_ps(mx, mn);
        const VF achro = _mm_or_ps(_mm_cmpeq_ps(mx, _mm_setzero_ps()), _mm_cmpeq_ps(d, _mm_setzero_ps()));
        const VF a = _mm_and_ps(achro, splat(255.0f));
        const VF m = addF(mx, a), e = addF(a, d);
        const VF s = mulF(mulF(estimate(m), e), splat(255.0f));
        const VF r = estimate(e);
        const VF tR = mulF(_mm_sub_ps(m, R), r), tG = mulF(_mm_sub_ps(m, G), r), tB = mulF(_mm_sub_ps(m, B), r);
        const VF gCase = _mm_andnot_ps(_mm_cmpeq_ps(R, m), _mm_cmpeq_ps(G, m));
        const VF bCase = _mm_andnot_ps(gCase, _mm_cmpeq_ps(B, m));
        const VF hR = _mm_sub_ps(tB, tG), hG = addF(_mm_sub_ps(tR, tB), splat(2.0f));
        const VF hB = addF(_mm_sub_ps(tG, tR), splat(4.0f));
        VF h = _mm_blendv_ps(_mm_blendv_ps(hR, hG, gCase), hB, bCase);
        h = mulF(h, splat(42.5f));
        h = _mm_blendv_ps(h, addF(splat(255.0f), h), _mm_cmplt_ps(h, _mm_setzero_ps()));
        // Of the clamps to 0..255 only S's upper one can bind: e <= m, so with
        // the estimate's error s stays below 255.1, which rounds to 256 under an
        // upward rounding mode; every sector keeps h x 42.5 (after the wrap)
        // within 0..255 in every mode.
        const V grey = _mm_castps_si128(achro);
        o[0] = _mm_andnot_si128(grey, roundEven(h));
        o[1] = _mm_andnot_si128(grey, _mm_min_epi32(roundEven(s), _mm_set1_epi32(255)));
        o[2] = truncToInt(mx);
    }
    void one(const float (&in)[3], int (&o)[3]) const {
        const float R = in[0], G = in[1], B = in[2];
        const float mx = R > G ? (R > B ? R : B) : (G > B ? G : B);
        const float mn = R < G ? (R < B ? R : B) : (G < B ? G : B);
        const float d = mx - mn;
        o[2] = truncToInt(mx);
        if (mx == 0.0f || d == 0.0f) {
            o[0] = o[1] = 0;
            return;
        }
        o[1] = roundEven(mulF(mulF(estimate(mx), d), 255.0f));
        const float r = estimate(d);
        const float tR = mulF(mx - R, r), tG = mulF(mx - G, r), tB = mulF(mx - B, r);
        float h = B == mx ? addF(tG - tR, 4.0f) : G == mx ? addF(tR - tB, 2.0f) : tB - tG;
        h = mulF(h, 42.5f);
        if (h < 0.0f) h = addF(h, 255.0f);
        o[0] = roundEven(h);
    }
};

// ------------------------------------------------------------ forward, 16-bit
// One pixel: max, min and spread, S and H by true divisions, truncated after
// + 0.5; V is the maximum. A hue within eps32 below 0 is not wrapped (it then
// gives H = 0). Samples below 2^24 are exact as floats, so four float lanes give
// the scalar numbers; achromatic lanes divide by 1 and are masked to 0, so no
// division by zero is raised.
struct Fwd16 : FloatToInt {
    void vec(const VF (&in)[3], V (&o)[3]) const {
        const VF R = in[0], G = in[1], B = in[2];
        const VF mx = _mm_max_ps(_mm_max_ps(R, G), B), mn = _mm_min_ps(_mm_min_ps(R, G), B);
        const VF d = _mm_sub_ps(mx, mn);
        const VF zero = _mm_setzero_ps(), one = splat(1.0f);
        const VF chroma = _mm_andnot_ps(_mm_cmpeq_ps(mx, zero), _mm_cmpneq_ps(d, zero));
        const VF fd = _mm_blendv_ps(one, d, chroma), fm = _mm_blendv_ps(one, mx, chroma);
        const VF s = addF(mulF(_mm_div_ps(fd, fm), splat(65535.0f)), splat(0.5f));
        const VF inv = _mm_div_ps(one, fd);
        const VF tR = mulF(_mm_sub_ps(mx, R), inv), tG = mulF(_mm_sub_ps(mx, G), inv);
        const VF tB = mulF(_mm_sub_ps(mx, B), inv);
        const VF vB = addF(_mm_sub_ps(splat(4.0f), tR), tG);
        const VF vG = _mm_sub_ps(addF(tR, splat(2.0f)), tB), vR = _mm_sub_ps(tB, tG);
        VF v = _mm_blendv_ps(_mm_blendv_ps(vR, vG, _mm_cmpeq_ps(G, mx)), vB, _mm_cmpeq_ps(B, mx));
        v = _mm_blendv_ps(v, addF(splat(6.0f), v), _mm_cmplt_ps(addF(splat(kEps32), v), zero));
        v = _mm_and_ps(v, chroma);
        o[0] = truncToInt(addF(_mm_div_ps(mulF(v, splat(65535.0f)), splat(6.0f)), splat(0.5f)));
        o[1] = _mm_and_si128(_mm_castps_si128(chroma), truncToInt(s));
        o[2] = truncToInt(mx);
    }
    void one(const float (&in)[3], int (&o)[3]) const {
        const int R = int(in[0]), G = int(in[1]), B = int(in[2]);
        const int mx = R > G ? (R > B ? R : B) : (G > B ? G : B);
        const int mn = R < G ? (R < B ? R : B) : (G < B ? G : B);
        const int d = mx - mn;
        float v = 0.0f;
        o[1] = 0;
        if (mx != 0 && d != 0) {
            const float fd = float(d);
            o[1] = truncToInt(addF(mulF(fd / float(mx), 65535.0f), 0.5f));
            const float inv = 1.0f / fd;
            const float tR = mulF(float(mx - R), inv), tG = mulF(float(mx - G), inv), tB = mulF(float(mx - B), inv);
            v = B == mx ? addF(4.0f - tR, tG) : G == mx ? addF(tR, 2.0f) - tB : tB - tG;
            if (addF(kEps32, v) < 0.0f) v = addF(6.0f, v);
        }
        o[0] = truncToInt(addF(mulF(v, 65535.0f) / 6.0f, 0.5f));
        o[2] = mx;
    }
};

// ------------------------------------------------------------ inverse
// Z: the top hue code (equal to hue 0); hueIn and unit scale H and S.
struct Inv8Scale {
    static constexpr float Z = 255.0f, hueIn = kHueIn8, unit = kUnit8;
};
struct Inv16Scale {
    static constexpr float Z = 65535.0f, hueIn = kHueIn16, unit = kUnit16;
};

// w = (0 if H = Z, else H x c60) x hueIn, i = truncToInt(w) (sector 0..5);
// a = V (S unit), b = (w - i) a; p = V - a, q = V - b, t = p + b; each to
// nearest; S = 0 gives the sample V in every channel. Main path and tail alike.
template <class Scale>
struct Inv : FloatToInt {
    // sector rows: R, G, B of sectors 0..5 from (V, p, q, t)
    void vec(const VF (&in)[3], V (&o)[3]) const {
        const VF H = in[0], S = in[1], Vf = in[2];
        const VF w = mulF(_mm_andnot_ps(_mm_cmpeq_ps(H, splat(Scale::Z)), mulF(H, splat(kC60))), splat(Scale::hueIn));
        const V i = truncToInt(w);
        const VF a = mulF(Vf, mulF(S, splat(Scale::unit)));
        const VF b = mulF(_mm_sub_ps(w, _mm_cvtepi32_ps(i)), a);
        const VF p = _mm_sub_ps(Vf, a), q = _mm_sub_ps(Vf, b), t = addF(p, b);
        VF sel[6];
        for (int k = 0; k < 6; ++k) sel[k] = _mm_castsi128_ps(_mm_cmpeq_epi32(i, _mm_set1_epi32(k)));
        auto pick = [&](VF s0, VF s1, VF s2, VF s3, VF s4, VF s5) {
            const VF c[6] = {s0, s1, s2, s3, s4, s5};
            VF r = c[0];
            for (int k = 1; k < 6; ++k) r = _mm_blendv_ps(r, c[k], sel[k]);
            return r;
        };
        // S = 0 needs no case of its own: a and b are then exactly 0, so p, q
        // and t all equal V, whatever the sector and the rounding mode
        const VF R = pick(Vf, q, p, p, t, Vf);
        const VF G = pick(t, Vf, Vf, q, p, p);
        const VF B = pick(p, p, t, Vf, Vf, q);
        o[0] = roundEven(R), o[1] = roundEven(G), o[2] = roundEven(B);
    }
    void one(const float (&in)[3], int (&o)[3]) const {
        const float H = in[0], S = in[1], Vf = in[2];
        if (S == 0.0f) {
            o[0] = o[1] = o[2] = int(Vf);
            return;
        }
        const float w = mulF(H == Scale::Z ? 0.0f : mulF(H, kC60), Scale::hueIn);
        const int i = truncToInt(w);
        const float a = mulF(Vf, mulF(S, Scale::unit));
        const float b = mulF(w - float(i), a);
        const float p = Vf - a, q = Vf - b, t = addF(p, b);
        const int v = int(Vf), P = roundEven(p), Q = roundEven(q), T = roundEven(t);
        switch (i) {
            case 0: o[0] = v, o[1] = T, o[2] = P; break;
            case 1: o[0] = Q, o[1] = v, o[2] = P; break;
            case 2: o[0] = P, o[1] = v, o[2] = T; break;
            case 3: o[0] = P, o[1] = Q, o[2] = v; break;
            case 4: o[0] = T, o[1] = P, o[2] = v; break;
            default: o[0] = v, o[1] = P, o[2] = Q; break;
        }
    }
};

}  // namespace kro::hsv
