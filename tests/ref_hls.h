// Independent reference of the HLS paths, written straight from the arithmetic:
// plain scalar floats in the stated order, explicit branches, no code shared
// with the library.
//
// The unrefined and refined reciprocals depend on the processor. Each is given
// by a provider: Machine (the vector reciprocal instruction of this processor,
// rcpps, and one Newton step on it), or Lo / Hi: the lowest and highest value
// that any estimate within 1.5 x 2^-12 can give (for refined: the least and
// greatest Newton step over every such estimate). Every output sample is
// monotone in the one reciprocal it depends on, so a result lies in the
// interval between the Lo and Hi answers exactly when some admissible
// reciprocal gives it.
#pragma once

#include <nmmintrin.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <unordered_map>

namespace refh {

using Out3 = std::array<double, 3>;  // integer words (before the 16s bias comes off) or floats

inline float fromBits(uint32_t b) {
    float f;
    std::memcpy(&f, &b, 4);
    return f;
}
inline uint32_t bitsOf(float f) {
    uint32_t b;
    std::memcpy(&b, &f, 4);
    return b;
}

// ------------------------------------------------------------ reciprocal providers
enum class Rc { Machine, Lo, Hi };

inline float machineEstimate(float x) {
    float r[4];
    _mm_storeu_ps(r, _mm_rcp_ps(_mm_set1_ps(x)));
    return r[0];
}
inline float newton(float x, float r) { return (r + r) - ((x * r) * r); }

// Is r an estimate of 1/x within 1.5 x 2^-12? (The product of two floats is exact in double.)
inline bool admissible(float x, float r) {
    const double e = static_cast<double>(r) * static_cast<double>(x) - 1.0;
    return std::fabs(e) <= 1.5 / 4096.0;
}

struct Bounds {
    float estLo, estHi, refLo, refHi;
};

// Every admissible estimate of 1/x, walked float by float (x positive and normal).
inline const Bounds& boundsOf(float x) {
    static std::unordered_map<uint32_t, Bounds> cache;
    auto it = cache.find(bitsOf(x));
    if (it != cache.end()) return it->second;
    const float centre = static_cast<float>(1.0 / static_cast<double>(x));
    uint32_t lo = bitsOf(centre), hi = lo;
    while (admissible(x, fromBits(lo - 1))) --lo;
    while (admissible(x, fromBits(hi + 1))) ++hi;
    Bounds b{fromBits(lo), fromBits(hi), INFINITY, -INFINITY};
    for (uint32_t u = lo; u <= hi; ++u) {
        const float n = newton(x, fromBits(u));
        b.refLo = std::min(b.refLo, n);
        b.refHi = std::max(b.refHi, n);
    }
    return cache.emplace(bitsOf(x), b).first->second;
}

inline float est(float x, Rc rc) {
    if (rc == Rc::Machine || !(x > 0.0f) || std::isinf(x)) return machineEstimate(x);
    return rc == Rc::Lo ? boundsOf(x).estLo : boundsOf(x).estHi;
}
inline float refd(float x, Rc rc) {
    if (rc == Rc::Machine || !(x > 0.0f) || std::isinf(x)) return newton(x, machineEstimate(x));
    return rc == Rc::Lo ? boundsOf(x).refLo : boundsOf(x).refHi;
}

// ------------------------------------------------------------ float to sample
inline double nearestSat(float v, double F) {
    const double r = std::nearbyint(static_cast<double>(v));  // ties to even under the default mode
    return r < 0 ? 0 : r > F ? F : r;
}
inline double truncSat(float v, double F) {
    const double r = std::trunc(static_cast<double>(v));
    return r < 0 ? 0 : r > F ? F : r;
}
inline double truncOnly(float v) { return std::trunc(static_cast<double>(v)); }
inline double nearestOnly(float v) { return std::nearbyint(static_cast<double>(v)); }

// ------------------------------------------------------------ forward
struct FwdScale {
    float F, half, twoF, hueOut;
};
inline FwdScale scale8() { return {255.0f, 127.5f, 510.0f, fromBits(0x3F355555)}; }
inline FwdScale scale16() { return {65535.0f, 32767.5f, 131070.0f, fromBits(0x43360AAB)}; }

// Dominant channel: 0 R, 1 G, 2 B, R deciding first.
inline int dominant(float R, float G, float mx) { return mx == R ? 0 : mx == G ? 1 : 2; }

// Paths 1 (8u, estimate) and 2 (16-bit, refined): main path.
inline Out3 fwdMain12(float R, float G, float B, FwdScale sc, bool useRefined, Rc rc) {
    auto rec = [&](float x) { return useRefined ? refd(x, rc) : est(x, rc); };
    const float mx = std::max(std::max(R, G), B), mn = std::min(std::min(R, G), B);
    const float d = mx - mn, s = mn + mx, Lf = 0.5f * s;
    const bool z = d == 0.0f;
    float Sf = 0.0f, Hd = 0.0f;
    if (!z) {
        const float den = Lf <= sc.half ? s : sc.twoF - s;
        Sf = (rec(den) * d) * sc.F;
        const float k = rec(d) * 60.0f;
        const int dom = dominant(R, G, mx);
        Hd = dom == 0 ? (G - B) * k : dom == 1 ? ((B - R) * k) + 120.0f : ((R - G) * k) + 240.0f;
        if (Hd < 0.0f) Hd += 360.0f;
    }
    return {nearestSat(Hd * sc.hueOut, sc.F), nearestSat(Lf, sc.F), nearestSat(Sf, sc.F)};
}

// Path 3 main (8u BGR).
inline Out3 fwdMain3(float R, float G, float B, Rc rc) {
    const FwdScale sc = scale8();
    const float mx = std::max(std::max(R, G), B), mn = std::min(std::min(R, G), B);
    const float d = mx - mn, s = mn + mx, Lf = 0.5f * s;
    float Sf = 0.0f, Hd = 0.0f;
    if (d != 0.0f) {
        const float den = Lf <= 127.5f ? s : 510.0f - s;
        Sf = (est(den, rc) * d) * 255.0f;
        const int dom = dominant(R, G, mx);
        const float n = dom == 0 ? (G - B) * 60.0f : dom == 1 ? (B - R) * 60.0f : (R - G) * 60.0f;
        const float o = dom == 0 ? 0.0f : dom == 1 ? 120.0f : 240.0f;
        Hd = o + (est(d, rc) * n);
        if (Hd < 0.0f) Hd += 360.0f;
    }
    return {truncSat(Hd * sc.hueOut, 255), truncSat(Lf, 255), truncSat(Sf, 255)};
}

// Tail of paths 1, 2 and 3: refined reciprocals; truncated, or to nearest.
inline Out3 fwdTail(float R, float G, float B, FwdScale sc, bool nearest, Rc rc) {
    auto conv = [&](float v) { return nearest ? nearestOnly(v) : truncOnly(v); };
    const float mx = std::max(std::max(R, G), B), mn = std::min(std::min(R, G), B);
    const float d = mx - mn, s = mn + mx, Lf = 0.5f * s;
    if (d == 0.0f) return {0.0, conv(Lf), 0.0};
    const float den = Lf > sc.half ? sc.twoF - s : s;
    const float S = (d * refd(den, rc)) * sc.F;
    const float q = refd(d, rc);
    const int dom = dominant(R, G, mx);
    float Hd = dom == 0   ? ((G - B) * 60.0f) * q
               : dom == 1 ? (((B - R) * 60.0f) * q) + 120.0f
                          : (((R - G) * 60.0f) * q) + 240.0f;
    if (Hd < 0.0f) Hd += 360.0f;
    return {conv(Hd * sc.hueOut), conv(Lf), conv(S)};
}

// Path 4 (32f).
inline Out3 fwdFloat(float R, float G, float B) {
    float mx = R;
    if (G > mx) mx = G;
    if (B > mx) mx = B;
    float mn = R;
    if (G < mn) mn = G;
    if (B < mn) mn = B;
    const float d = mx - mn, s = mn + mx, Lf = 0.5f * s;
    if (d <= fromBits(0x34000000)) return {0.0, Lf, 0.0};
    const float S = Lf <= 0.5f ? d / s : d / (2.0f - s);
    float Hd;
    if (mx == R)
        Hd = ((G - B) * 60.0f) / d;
    else if (mx == G)
        Hd = 120.0f + (((B - R) * 60.0f) / d);
    else
        Hd = (((R - G) * 60.0f) / d) + 240.0f;
    if (Hd < 0.0f) Hd += 360.0f;
    return {Hd / 360.0f, Lf, S};
}

// ------------------------------------------------------------ inverse
// Channel positions on the hue circle.
inline void positions(float Hd, float (&t)[3]) {
    t[0] = Hd + 120.0f;
    if (t[0] > 360.0f) t[0] -= 360.0f;
    t[1] = Hd;
    t[2] = Hd - 120.0f;
    if (t[2] < 0.0f) t[2] += 360.0f;
}

inline const float c60 = fromBits(0x3C888889);

// Path 1 main (8u RGB).
inline Out3 inv1Main(float H, float L, float S) {
    const float Hd = H * fromBits(0x3FB4B4B5), Lf = L * fromBits(0x3B808081), Sf = S * fromBits(0x3B808081);
    const float m2 = Lf <= 0.5f ? (Lf * Sf) + Lf : (Sf - (Lf * Sf)) + Lf;
    const float m1 = (Lf + Lf) - m2, d = m2 - m1;
    float t[3];
    positions(Hd, t);
    Out3 o;
    for (int k = 0; k < 3; ++k) {
        float v;
        if (t[k] < 60.0f)
            v = ((t[k] * d) * c60) + m1;
        else if (t[k] < 180.0f)
            v = m2;
        else if (t[k] < 240.0f)
            v = (((240.0f - t[k]) * d) * c60) + m1;
        else
            v = m1;
        o[k] = nearestSat(v * 255.0f, 255);
    }
    return o;
}

// Path 1 tail.
inline Out3 inv1Tail(float H, float L, float S) {
    const float Hd = (H * 360.0f) / 255.0f, Lf = L / 255.0f, Sf = S / 255.0f;
    if (Sf == 0.0f) {
        const double g = truncOnly(Lf * 255.0f);
        return {g, g, g};
    }
    const float m2 = Lf <= 0.5f ? (Sf + 1.0f) * Lf : (Lf + Sf) - (Sf * Lf);
    const float m1 = (Lf + Lf) - m2, d = m2 - m1;
    float t[3];
    positions(Hd, t);
    Out3 o;
    for (int k = 0; k < 3; ++k) {
        float v;
        if (t[k] < 60.0f)
            v = ((d * t[k]) / 60.0f) + m1;
        else if (t[k] < 180.0f)
            v = m2;
        else if (t[k] < 240.0f)
            v = ((d * (240.0f - t[k])) / 60.0f) + m1;
        else
            v = m1;
        o[k] = truncOnly(v * 255.0f);
    }
    return o;
}

// Paths 2 (16-bit) and 3 (8u BGR): the same edges, different levels and samples.
struct InvStyle {
    float hueIn, unit, F;
    bool m2HighDiff;  // (S - (L S)) + L, else (L + S) - (L S)
    int grey;         // S = 0: 0 nothing special, 1 every channel Lf, 2 the L sample copied
    bool nearest;     // else truncated
    bool saturate;
};
inline Out3 invEdgeC60(float H, float L, float S, InvStyle st) {
    const float Hd = H * st.hueIn, Lf = L * st.unit, Sf = S * st.unit;
    if (Sf == 0.0f && st.grey == 2) return {L, L, L};
    const float m2 = Lf <= 0.5f ? (Lf * Sf) + Lf : st.m2HighDiff ? (Sf - (Lf * Sf)) + Lf : (Lf + Sf) - (Lf * Sf);
    const float m1 = (2.0f * Lf) - m2, d = m2 - m1;
    float t[3];
    positions(Hd, t);
    Out3 o;
    for (int k = 0; k < 3; ++k) {
        float v;
        if (Sf == 0.0f && st.grey == 1)
            v = Lf;
        else if (t[k] < 60.0f)
            v = ((t[k] * c60) * d) + m1;
        else if (t[k] < 180.0f)
            v = m2;
        else if (t[k] < 240.0f)
            v = (((240.0f - t[k]) * c60) * d) + m1;
        else
            v = m1;
        const float x = v * st.F;
        o[k] = st.nearest ? (st.saturate ? nearestSat(x, st.F) : nearestOnly(x))
                          : (st.saturate ? truncSat(x, st.F) : truncOnly(x));
    }
    return o;
}
inline Out3 inv2Main(float H, float L, float S) {
    return invEdgeC60(H, L, S, {fromBits(0x3BB400B4), fromBits(0x37800080), 65535.0f, true, 0, true, true});
}
inline Out3 inv2Tail(float H, float L, float S) {
    return invEdgeC60(H, L, S, {fromBits(0x3BB400B4), fromBits(0x37800080), 65535.0f, false, 2, true, false});
}
inline Out3 inv3Main(float H, float L, float S) {
    return invEdgeC60(H, L, S, {fromBits(0x3FB4B4B5), fromBits(0x3B808081), 255.0f, false, 1, false, true});
}
inline Out3 inv3Tail(float H, float L, float S) {
    return invEdgeC60(H, L, S, {fromBits(0x3FB4B4B5), fromBits(0x3B808081), 255.0f, false, 2, false, true});
}

// Path 4 (32f), main path and tail.
inline Out3 inv4(float H, float L, float S, bool mainPath) {
    const float Hd = H * 360.0f;
    if (S == 0.0f) return {L, L, L};
    float m2, m1;
    if (mainPath) {
        m2 = L <= 0.5f ? (S * L) + L : (S + L) - (S * L);
        m1 = (2.0f * L) - m2;
    } else {
        m2 = L <= 0.5f ? (S + 1.0f) * L : (L + S) - (S * L);
        m1 = (L + L) - m2;
    }
    const float d = m2 - m1;
    float t[3];
    positions(Hd, t);
    Out3 o;
    for (int k = 0; k < 3; ++k) {
        float v;
        if (t[k] < 60.0f)
            v = mainPath ? ((c60 * t[k]) * d) + m1 : ((d * t[k]) / 60.0f) + m1;
        else if (t[k] < 180.0f)
            v = m2;
        else if (t[k] < 240.0f)
            v = mainPath ? (((240.0f - t[k]) * c60) * d) + m1 : ((d * (240.0f - t[k])) / 60.0f) + m1;
        else
            v = m1;
        o[k] = v;
    }
    return o;
}

}  // namespace refh
