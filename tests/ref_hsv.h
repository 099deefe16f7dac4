// Independent reference of the HSV forms, written straight from the arithmetic:
// plain scalar floats in the stated order, explicit branches, no code shared
// with the library. The 8-bit forward forms take their reciprocal estimate
// from a provider (refh::est of ref_hls.h): this processor's instruction, or
// the lowest / highest estimate within 1.5 x 2^-12 of the true reciprocal.
#pragma once

#include <array>
#include <cmath>

#include "ref_hls.h"

namespace refv {

using Px = std::array<int, 3>;
using refh::Rc;

inline int nearest(float v) { return int(std::nearbyint(double(v))); }  // ties to even
inline int toward0(float v) { return int(std::trunc(double(v))); }
inline int lim255(int v) { return v < 0 ? 0 : v > 255 ? 255 : v; }

// Forward 8-bit, main path (masked lanes).
inline Px fwd8Main(int r, int g, int b, Rc rc = Rc::Machine) {
    const float R = float(r), G = float(g), B = float(b);
    const float mx = std::max(R, std::max(G, B)), mn = std::min(R, std::min(G, B)), d = mx - mn;
    const bool achro = mx == 0.0f || d == 0.0f;
    const float a = achro ? 255.0f : 0.0f;
    const float m = mx + a, e = a + d;
    const int S = achro ? 0 : lim255(nearest((refh::est(m, rc) * e) * 255.0f));
    const float rr = refh::est(e, rc);
    const float tR = (m - R) * rr, tG = (m - G) * rr, tB = (m - B) * rr;
    const bool gCase = G == m && R != m;
    const bool bCase = B == m && !gCase;
    float h = bCase ? (tG - tR) + 4.0f : gCase ? (tR - tB) + 2.0f : tB - tG;
    h = h * 42.5f;
    if (h < 0.0f) h = 255.0f + h;
    const int H = achro ? 0 : lim255(nearest(h));
    return {H, S, int(mx)};
}

// Forward 8-bit, tail (branches; no clamp, the low byte is what is stored).
inline Px fwd8Tail(int r, int g, int b, Rc rc = Rc::Machine) {
    const float R = float(r), G = float(g), B = float(b);
    const float mx = std::max(R, std::max(G, B)), mn = std::min(R, std::min(G, B)), d = mx - mn;
    if (mx == 0.0f || d == 0.0f) return {0, 0, int(mx)};
    const int S = nearest((refh::est(mx, rc) * d) * 255.0f);
    const float rr = refh::est(d, rc);
    const float tR = (mx - R) * rr, tG = (mx - G) * rr, tB = (mx - B) * rr;
    float h = B == mx ? (tG - tR) + 4.0f : G == mx ? (tR - tB) + 2.0f : tB - tG;
    h = h * 42.5f;
    if (h < 0.0f) h = h + 255.0f;
    return {nearest(h) & 255, S & 255, int(mx)};
}

// Forward 16-bit: integers for max, min, spread; true divisions.
inline Px fwd16(int R, int G, int B) {
    const int mx = std::max(R, std::max(G, B)), mn = std::min(R, std::min(G, B)), d = mx - mn;
    int S = 0;
    float v = 0.0f;
    if (!(mx == 0 || d == 0)) {
        const float fd = float(d);
        S = toward0(((fd / float(mx)) * 65535.0f) + 0.5f);
        const float inv = 1.0f / fd;
        const float tR = float(mx - R) * inv, tG = float(mx - G) * inv, tB = float(mx - B) * inv;
        if (B == mx) v = (4.0f - tR) + tG;
        else if (G == mx) v = (tR + 2.0f) - tB;
        else v = tB - tG;
        if ((refh::fromBits(0x34000000) + v) < 0.0f) v = 6.0f + v;
    }
    const int H = toward0(((v * 65535.0f) / 6.0f) + 0.5f);
    return {H & 0xffff, S & 0xffff, mx};
}

// Inverse, both sample sizes (Z = 255 or 65535).
inline Px inv(int H, int S, int V, bool sixteen) {
    if (S == 0) return {V, V, V};
    const float Z = sixteen ? 65535.0f : 255.0f;
    const float c60 = refh::fromBits(0x3C888889);
    const float hueIn = refh::fromBits(sixteen ? 0x3BB400B4 : 0x3FB4B4B5);
    const float unit = refh::fromBits(sixteen ? 0x37800080 : 0x3B808081);
    const float w = (float(H) == Z ? 0.0f : float(H) * c60) * hueIn;
    const int i = toward0(w);
    const float Vf = float(V);
    const float a = Vf * (float(S) * unit);
    const float b = (w - float(i)) * a;
    const float p = Vf - a, q = Vf - b, t = p + b;
    const int P = nearest(p), Q = nearest(q), T = nearest(t);
    switch (i) {
        case 0: return {V, T, P};
        case 1: return {Q, V, P};
        case 2: return {P, V, T};
        case 3: return {P, Q, V};
        case 4: return {T, P, V};
        default: return {V, P, Q};
    }
}

}  // namespace refv
