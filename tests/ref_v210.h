// Plain reference of the 10-bit packed video decoders and of the
// gamma-encoded 4:2:2 encoder, pixel by pixel.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace ref {

// Fields of pixel p (0..5) of a v210 group: luma, and its pair's Cb and Cr.
// Words: 0 = Cb0 Y0 Cr0, 1 = Y1 Cb1 Y2, 2 = Cr1 Y3 Cb2, 3 = Y4 Cr2 Y5.
inline unsigned v210Field(const uint32_t* g, int word, int slot) { return (g[word] >> (10 * slot)) & 1023u; }
inline unsigned v210Y(const uint32_t* g, int p) {
    static const int pos[6][2] = {{0, 1}, {1, 0}, {1, 2}, {2, 1}, {3, 0}, {3, 2}};
    return v210Field(g, pos[p][0], pos[p][1]);
}
inline unsigned v210Cb(const uint32_t* g, int p) {
    static const int pos[3][2] = {{0, 0}, {1, 1}, {2, 2}};
    return v210Field(g, pos[p / 2][0], pos[p / 2][1]);
}
inline unsigned v210Cr(const uint32_t* g, int p) {
    static const int pos[3][2] = {{0, 2}, {2, 0}, {3, 1}};
    return v210Field(g, pos[p / 2][0], pos[p / 2][1]);
}

// One pixel to R, G, B (limited 31, 63, 31), floats in the written order.
inline void v210Colour(unsigned y, unsigned cb, unsigned cr, int& r, int& g, int& b) {
    volatile float fy = float(y), u = float(int(cb) - 512), v = float(int(cr) - 512);
    volatile float pr = 1.54f * v;
    volatile float sr = pr + fy;
    volatile float pgv = -0.459f * v;
    volatile float sg1 = pgv + fy;
    volatile float pgu = -0.183f * u;
    volatile float sg = sg1 + pgu;
    volatile float pb = 1.816f * u;
    volatile float sb = pb + fy;
    auto lim = [](float x, int m) {
        const int i = int(std::nearbyint(x));
        return i < 0 ? 0 : (i > m ? m : i);
    };
    r = lim(sr, 31);
    g = lim(sg, 63);
    b = lim(sb, 31);
}
inline uint16_t v210Rgb(int r, int g, int b) { return uint16_t(b * 2048 + g * 32 + r); }
inline uint16_t v210Bgr(int r, int g, int b) { return uint16_t(r * 2048 + g * 32 + b); }

// The transfer curve as 8-bit integers, from std::pow in double.
inline int gammaT(int c) {
    const double x = c / 255.0;
    const double v = x < 0.018 ? 4.5 * c : 255.0 * (1.099 * std::pow(x, 0.45) - 0.099);
    return int(std::nearbyint(v));
}

// One row of the gamma encoder: RGB bytes (3 a pixel) to Cb Y Cr Y bytes.
inline std::vector<uint8_t> gammaRow(const uint8_t* rgb, int w) {
    const size_t n = static_cast<size_t>(w);
    std::vector<int> R(n), G(n), B(n);
    for (int x = 0; x < w; ++x) {
        R[size_t(x)] = gammaT(rgb[3 * x]);
        G[size_t(x)] = gammaT(rgb[3 * x + 1]);
        B[size_t(x)] = gammaT(rgb[3 * x + 2]);
    }
    std::vector<uint8_t> out(size_t(2 * w));
    auto cbTerm = [&](int x, bool odd) {
        const long r = R[size_t(x)], g = G[size_t(x)], b = B[size_t(x)];
        return odd ? 3596 * b - 2385 * g - 1213 * r : 7193 * b - 4769 * g - 2426 * r;
    };
    auto crTerm = [&](int x, bool odd) {
        const long r = R[size_t(x)], g = G[size_t(x)], b = B[size_t(x)];
        return odd ? 3596 * r - 3015 * g - 582 * b : 7193 * r - 6030 * g - 1164 * b;
    };
    const int pairs = w / 2;
    for (int i = 0; i < pairs; ++i) {
        const int e = 2 * i;
        const long cb = cbTerm(e, false) + cbTerm(e + 1, true) + (i > 0 ? cbTerm(e - 1, true) : 0) + 4210687;
        const long cr = crTerm(e, false) + crTerm(e + 1, true) + (i > 0 ? crTerm(e - 1, true) : 0) + 4210687;
        out[size_t(4 * i)] = uint8_t(std::floor(cb / 32768.0));
        out[size_t(4 * i + 2)] = uint8_t(std::floor(cr / 32768.0));
        for (int k = 0; k < 2; ++k) {
            const long y = 8422L * R[size_t(e + k)] + 16515L * G[size_t(e + k)] + 3212L * B[size_t(e + k)] + 540672;
            out[size_t(4 * i + 1 + 2 * k)] = uint8_t(std::floor(y / 32768.0));
        }
    }
    if (w % 2) {
        const long r = R[size_t(w - 1)], g = G[size_t(w - 1)], b = B[size_t(w - 1)];
        out[size_t(2 * w - 2)] = uint8_t(std::floor((28770 * b - 19071 * g - 9699 * r + 8421376) / 65536.0));
        out[size_t(2 * w - 1)] = uint8_t(std::floor((16843 * r + 33030 * g + 6423 * b + 1081344) / 65536.0));
    }
    return out;
}

}  // namespace ref
