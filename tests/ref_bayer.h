// Plain references for the Bayer reconstructions, written from the rules and
// sharing nothing with the library: a mosaic is a std::vector of ints, every
// output pixel is computed on its own.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdlib>
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

}  // namespace ref
