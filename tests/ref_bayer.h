// Plain references for the Bayer reconstructions, written from the rules and
// sharing nothing with the library: a mosaic is a std::vector of ints, every
// output pixel is computed on its own.
#pragma once

#include <cmath>
#include <cstdint>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace ref {

// A whole mosaic, W x H samples, row after row.
struct Mosaic {
    int W = 0, H = 0, grid = 0;
    std::vector<int> v;
    int operator()(int x, int y) const { return v[static_cast<size_t>(y) * W + x]; }
    // 'R', 'G' or 'B' at (x, y): the grid's name spells the 2x2 cell.
    char colour(int x, int y) const {
        static const char* names[4] = {"BGGR", "RGGB", "GBRG", "GRBG"};
        return names[grid][(y % 2) * 2 + (x % 2)];
    }
};

struct RGB {
    int r, g, b;
    bool operator==(const RGB& o) const { return r == o.r && g == o.g && b == o.b; }
};

// ------------------------------------------------------------ directional interpolation
inline int half(int a, int b) { return (a + b + 1) / 2; }
inline int quarter(int a, int b, int c, int d) { return (a + b + c + d + 2) / 4; }

inline RGB cfaToRGB(const Mosaic& m, int x, int y) {
    const int W = m.W, H = m.H;
    const char me = m.colour(x, y);
    const int s = m(x, y);
    // the chroma letters that sit beside a site in its row and in its column
    char rowC, colC;
    if (me == 'G') {
        rowC = m.colour(x == 0 ? 1 : x - 1, y);
        colC = m.colour(x, y == 0 ? 1 : y - 1);
    } else {
        rowC = me;
        colC = me == 'R' ? 'B' : 'R';
    }
    int g, vr, vc;  // green, row chroma, column chroma
    if (y == 0 || y == H - 1) {
        const int N = y == 0 ? 1 : H - 2;
        const bool corner = x == 0 || x == W - 1;
        const int n = x == 0 ? 1 : W - 2;
        if (me == 'G') {
            g = s;
            vc = m(x, N);
            vr = corner ? m(n, y) : half(m(x - 1, y), m(x + 1, y));
        } else if (!corner) {
            vr = s;
            g = (m(x - 1, y) + 2 * m(x, N) + m(x + 1, y) + 2) / 4;
            vc = half(m(x - 1, N), m(x + 1, N));
        } else {
            vr = s;
            g = half(m(x, N), m(n, y));
            vc = m(n, N);
        }
    } else if (x == 0 || x == W - 1) {
        const int n = x == 0 ? 1 : W - 2;
        if (me == 'G') {
            g = s;
            vr = m(n, y);
            vc = half(m(x, y - 1), m(x, y + 1));
        } else {
            vr = s;
            g = (m(x, y - 1) + 2 * m(n, y) + m(x, y + 1) + 2) / 4;
            vc = half(m(n, y - 1), m(n, y + 1));
        }
    } else if (me == 'G') {
        g = s;
        vr = half(m(x - 1, y), m(x + 1, y));
        vc = half(m(x, y - 1), m(x, y + 1));
    } else {
        vr = s;
        vc = quarter(m(x - 1, y - 1), m(x + 1, y - 1), m(x - 1, y + 1), m(x + 1, y + 1));
        const bool ring = y == 1 || y == H - 2 || x == 1 || x == W - 2;
        const int four = quarter(m(x, y - 1), m(x, y + 1), m(x - 1, y), m(x + 1, y));
        if (ring) {
            g = four;
        } else {
            const int dV = std::abs(m(x, y - 2) - m(x, y + 2));
            const int dH = std::abs(m(x - 2, y) - m(x + 2, y));
            if (dV < dH)
                g = half(m(x, y - 1), m(x, y + 1));
            else if (dH < dV)
                g = half(m(x - 1, y), m(x + 1, y));
            else
                g = four;
        }
    }
    RGB o{0, g, 0};
    (rowC == 'R' ? o.r : o.b) = vr;
    (colC == 'R' ? o.r : o.b) = vc;
    return o;
}


// ------------------------------------------------------------ variable number of gradients
// B, G, R of an inner pixel (2 <= x <= W - 3, 2 <= y <= H - 3) before gains,
// or after them when scale is not null.
inline RGB vngInner(const Mosaic& m, int x, int y, const float* scale, int top) {
    auto P = [&](int dx, int dy) { return m(x + dx, y + dy); };
    auto A = [&](int ax, int ay, int bx, int by) { return std::abs(P(ax, ay) - P(bx, by)); };
    const bool green = m.colour(x, y) == 'G';
    int grad[8];
    grad[0] = 2 * (A(0, -1, 0, 1) + A(0, -2, 0, 0)) + A(-1, -1, -1, 1) + A(1, -1, 1, 1) + A(-1, -2, -1, 0) + A(1, -2, 1, 0);
    grad[1] = 2 * (A(1, 0, -1, 0) + A(2, 0, 0, 0)) + A(1, -1, -1, -1) + A(1, 1, -1, 1) + A(2, -1, 0, -1) + A(2, 1, 0, 1);
    grad[2] = 2 * (A(0, 1, 0, -1) + A(0, 2, 0, 0)) + A(1, 1, 1, -1) + A(-1, 1, -1, -1) + A(1, 2, 1, 0) + A(-1, 2, -1, 0);
    grad[3] = 2 * (A(-1, 0, 1, 0) + A(-2, 0, 0, 0)) + A(-1, -1, 1, -1) + A(-1, 1, 1, 1) + A(-2, -1, 0, -1) + A(-2, 1, 0, 1);
    // sums[d] = {own, first missing, second missing}
    int sums[8][3];
    if (!green) {
        grad[4] = 2 * (A(1, -1, -1, 1) + A(2, -2, 0, 0)) + A(0, -1, -1, 0) + A(1, 0, 0, 1) + A(1, -2, 0, -1) + A(2, -1, 1, 0);
        grad[5] = 2 * (A(1, 1, -1, -1) + A(2, 2, 0, 0)) + A(1, 0, 0, -1) + A(0, 1, -1, 0) + A(2, 1, 1, 0) + A(1, 2, 0, 1);
        grad[6] = 2 * (A(-1, -1, 1, 1) + A(-2, -2, 0, 0)) + A(-1, 0, 0, 1) + A(0, -1, 1, 0) + A(-2, -1, -1, 0) + A(-1, -2, 0, -1);
        grad[7] = 2 * (A(-1, 1, 1, -1) + A(-2, 2, 0, 0)) + A(0, 1, 1, 0) + A(-1, 0, 0, -1) + A(-1, 2, 0, 1) + A(-2, 1, -1, 0);
        // own chroma C, green, other chroma O
        const int t[8][3] = {
            {P(0, -2) + P(0, 0), 2 * P(0, -1), P(-1, -1) + P(1, -1)},
            {P(2, 0) + P(0, 0), 2 * P(1, 0), P(1, -1) + P(1, 1)},
            {P(0, 2) + P(0, 0), 2 * P(0, 1), P(-1, 1) + P(1, 1)},
            {P(-2, 0) + P(0, 0), 2 * P(-1, 0), P(-1, -1) + P(-1, 1)},
            {P(2, -2) + P(0, 0), (P(1, -2) + P(0, -1) + P(2, -1) + P(1, 0)) >> 1, 2 * P(1, -1)},
            {P(2, 2) + P(0, 0), (P(1, 0) + P(0, 1) + P(2, 1) + P(1, 2)) >> 1, 2 * P(1, 1)},
            {P(-2, -2) + P(0, 0), (P(-1, -2) + P(-2, -1) + P(0, -1) + P(-1, 0)) >> 1, 2 * P(-1, -1)},
            {P(-2, 2) + P(0, 0), (P(-1, 0) + P(-2, 1) + P(0, 1) + P(-1, 2)) >> 1, 2 * P(-1, 1)},
        };
        std::memcpy(sums, t, sizeof t);
    } else {
        grad[4] = 2 * (A(-1, 0, 1, -2) + A(0, 1, 2, -1) + A(-1, 1, 1, -1) + A(0, 0, 2, -2));
        grad[5] = 2 * (A(-1, 0, 1, 2) + A(0, -1, 2, 1) + A(-1, -1, 1, 1) + A(0, 0, 2, 2));
        grad[6] = 2 * (A(-1, -2, 1, 0) + A(-2, -1, 0, 1) + A(-2, -2, 0, 0) + A(-1, -1, 1, 1));
        grad[7] = 2 * (A(-1, 2, 1, 0) + A(0, -1, -2, 1) + A(1, -1, -1, 1) + A(0, 0, -2, 2));
        // green, the chroma left and right (H), the chroma above and below (V)
        const int t[8][3] = {
            {P(0, -2) + P(0, 0), P(-1, -2) + P(1, -2), 2 * P(0, -1)},
            {P(2, 0) + P(0, 0), 2 * P(1, 0), P(2, -1) + P(2, 1)},
            {P(0, 2) + P(0, 0), P(-1, 2) + P(1, 2), 2 * P(0, 1)},
            {P(-2, 0) + P(0, 0), 2 * P(-1, 0), P(-2, -1) + P(-2, 1)},
            {2 * P(1, -1), P(1, -2) + P(1, 0), P(0, -1) + P(2, -1)},
            {2 * P(1, 1), P(1, 0) + P(1, 2), P(0, 1) + P(2, 1)},
            {2 * P(-1, -1), P(-1, -2) + P(-1, 0), P(-2, -1) + P(0, -1)},
            {2 * P(-1, 1), P(-1, 0) + P(-1, 2), P(-2, 1) + P(0, 1)},
        };
        std::memcpy(sums, t, sizeof t);
    }
    int mn = grad[0], mx = grad[0];
    for (int g : grad) mn = std::min(mn, g), mx = std::max(mx, g);
    const int T = mn + std::max(mx / 2, 1);
    int n = 0, S[3] = {0, 0, 0};
    for (int d = 0; d < 8; ++d)
        if (grad[d] < T) {
            ++n;
            for (int k = 0; k < 3; ++k) S[k] += sums[d][k];
        }
    const int own = P(0, 0);
    auto est = [&](int k) {
        const float q = float(S[k] - S[0]) / float(2 * n);
        return std::min(std::max(own + int(std::nearbyint(q)), 0), top);
    };
    const int m1 = est(1), m2 = est(2);
    int r = 0, g = 0, b = 0;
    char first, second;  // colours of the two missing estimates
    if (green) {
        g = own;
        first = m.colour(x + 1, y);
        second = m.colour(x, y + 1);
        (first == 'R' ? r : b) = m1;
        (second == 'R' ? r : b) = m2;
    } else {
        g = m1;
        (m.colour(x, y) == 'R' ? r : b) = own;
        (m.colour(x, y) == 'R' ? b : r) = m2;
        (void)first, (void)second;
    }
    if (scale) {
        auto gain = [&](int v, float k) {
            const float f = float(v) * k;
            return int(std::min(std::max(std::nearbyint(f), 0.0f), float(top)));
        };
        b = gain(b, scale[0]);
        g = gain(g, scale[1]);
        r = gain(r, scale[2]);
    }
    return {r, g, b};
}

}  // namespace ref
