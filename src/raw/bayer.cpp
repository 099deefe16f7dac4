// Bayer mosaic to RGB by directional interpolation, 8u and 16u.
//
// Red and blue are averages of the nearest samples of their colour; green at a
// red or blue site follows the smaller of the two same-colour gradients two
// pixels away (the four-way average on a tie). The image border has rules of
// its own so that nothing outside the image is read.
//
// Layers: entry (checks, region cut at the image), region driver (rows), row
// kernel: inner columns of inner rows in vector steps (8 pixels in 16-bit lanes
// for 8u, 4 pixels in 32-bit lanes for 16u), every other pixel by the scalar
// zone rules. Both paths give the same numbers: a pixel's value depends on its
// image position only.
#include "impl_decls.h"
#include "raw/bayer.h"

using namespace kro;
using namespace kro::raw;

namespace {

// (a + b + 1) >> 1 and (a + b + c + d + 2) >> 2, scalar and lanes alike.
template <class N>
inline N avg2(N a, N b) {
    return (a + b + N(1)) >> 1;
}
template <class N>
inline N avg4(N a, N b, N c, N d) {
    return (a + b + c + d + N(2)) >> 2;
}

// Green at a red or blue site of the inner zone: the vertical average where
// the vertical gradient is the smaller, the horizontal one where the
// horizontal is, the four-way average on a tie.
template <class N>
inline N greenByGradient(N u, N d, N l, N r, N u2, N d2, N l2, N r2) {
    const N dV = absN(u2 - d2), dH = absN(l2 - r2);
    return select(lessMask(dV, dH), avg2(u, d), select(lessMask(dH, dV), avg2(l, r), avg4(u, d, l, r)));
}

template <class T>
struct Cfa {
    Image<T> s;
    int W, H, grid;

    // One pixel by the zone rules, in the order edge row, edge column, second
    // ring, inner. out is R, G, B.
    void pixel(int x, int y, int (&out)[3]) const {
        const Colour rc = rowChroma(grid, y), cc = otherChroma(rc);
        const int own = s.at(x, y);
        int g, inRow, inCol;  // green, the row's chroma, the column's chroma
        const bool green = isGreen(grid, x, y);
        const bool edgeCol = x == 0 || x == W - 1;
        const int n = x == 0 ? 1 : W - 2;
        if (y == 0 || y == H - 1) {
            const int ny = y == 0 ? 1 : H - 2;
            if (green) {
                g = own;
                inCol = s.at(x, ny);
                inRow = edgeCol ? s.at(n, y) : avg2(s.at(x - 1, y), s.at(x + 1, y));
            } else if (!edgeCol) {
                inRow = own;
                g = (s.at(x - 1, y) + 2 * s.at(x, ny) + s.at(x + 1, y) + 2) >> 2;
                inCol = avg2(s.at(x - 1, ny), s.at(x + 1, ny));
            } else {
                inRow = own;
                g = avg2(s.at(x, ny), s.at(n, y));
                inCol = s.at(n, ny);
            }
        } else if (edgeCol) {
            if (green) {
                g = own;
                inRow = s.at(n, y);
                inCol = avg2(s.at(x, y - 1), s.at(x, y + 1));
            } else {
                inRow = own;
                g = (s.at(x, y - 1) + 2 * s.at(n, y) + s.at(x, y + 1) + 2) >> 2;
                inCol = avg2(s.at(n, y - 1), s.at(n, y + 1));
            }
        } else {
            const int l = s.at(x - 1, y), r = s.at(x + 1, y), u = s.at(x, y - 1), d = s.at(x, y + 1);
            if (green) {
                g = own;
                inRow = avg2(l, r);
                inCol = avg2(u, d);
            } else {
                inRow = own;
                inCol = avg4(s.at(x - 1, y - 1), s.at(x + 1, y - 1), s.at(x - 1, y + 1), s.at(x + 1, y + 1));
                const bool ring = y == 1 || y == H - 2 || x == 1 || x == W - 2;
                g = ring ? avg4(u, d, l, r)
                         : greenByGradient(u, d, l, r, s.at(x, y - 2), s.at(x, y + 2), s.at(x - 2, y), s.at(x + 2, y));
            }
        }
        out[rc] = inRow;
        out[cc] = inCol;
        out[Green] = g;
    }

    // Inner columns [xa, xb) of inner row y in vector steps; returns where the
    // steps stopped.
    int innerRow(int y, int xa, int xb, const Dest<T, 3>& dst) const {
        using L = typename LanesFor<T>::type;
        const T *r0 = s.row(y), *rU = s.row(y - 1), *rD = s.row(y + 1), *rU2 = s.row(y - 2), *rD2 = s.row(y + 2);
        const Colour rc = rowChroma(grid, y);
        const int phase = isGreen(grid, 0, y) ? 0 : 1;  // green where (x + phase) is even
        int x = xa;
        for (; x + L::N <= xb; x += L::N) {
            const L c = L::load(r0 + x), l = L::load(r0 + x - 1), r = L::load(r0 + x + 1);
            const L u = L::load(rU + x), d = L::load(rD + x);
            const L hAvg = avg2(l, r), vAvg = avg2(u, d);
            const L diag = avg4(L::load(rU + x - 1), L::load(rU + x + 1), L::load(rD + x - 1), L::load(rD + x + 1));
            const L gC = greenByGradient(u, d, l, r, L::load(rU2 + x), L::load(rD2 + x), L::load(r0 + x - 2),
                                         L::load(r0 + x + 2));
            const L gm = alternating<L>(x, phase);
            const L inRow = select(gm, hAvg, c), inCol = select(gm, vAvg, diag);
            const V rgb[3] = {(rc == Red ? inRow : inCol).v, select(gm, c, gC).v, (rc == Red ? inCol : inRow).v};
            typename DstCT<T, 3>::Row{dst.px(x, y)}.template storeLanes<L::N, L::bytes>(0, rgb);
        }
        return x;
    }

    void put(const Dest<T, 3>& dst, int x, int y) const {
        int o[3];
        pixel(x, y, o);
        T* p = dst.px(x, y);
        for (int k = 0; k < 3; ++k) storeSample(p + k, static_cast<T>(o[k]));
    }

    // Region driver: each row of the cut region; inner rows take the vector
    // steps over their inner columns.
    void region(const Span& r, const Dest<T, 3>& dst) const {
        for (int y = r.y0; y < r.y1; ++y) {
            int x = r.x0;
            if (y >= 2 && y <= H - 3) {
                const int xa = x > 2 ? x : 2, xb = r.x1 < W - 2 ? r.x1 : W - 2;
                for (; x < xa && x < r.x1; ++x) put(dst, x, y);
                if (xa < xb) x = innerRow(y, xa, xb, dst);
            }
            for (; x < r.x1; ++x) put(dst, x, y);
        }
    }
};

template <class T>
KroStatus cfaToRGB(const T* pSrc, kroiRect srcRoi, kroiSize srcSize, int srcStep, T* pDst, int dstStep,
                   int grid) {
    if (pSrc == nullptr || pDst == nullptr) return kroStatusNullPointer;
    if (srcSize.width < 2 || srcSize.height < 2) return kroStatusBadSize;
    if (!gridValid(grid)) return kroStatusBadArgument;
    const Span r = clipToImage(srcRoi, srcSize);
    if (r.empty()) return kroStatusOk;
    const Cfa<T> cfa{{reinterpret_cast<const uint8_t*>(pSrc), srcStep}, srcSize.width, srcSize.height, grid};
    cfa.region(r, Dest<T, 3>{reinterpret_cast<uint8_t*>(pDst), dstStep, srcRoi.x, srcRoi.y});
    return kroStatusOk;
}

}  // namespace

KroStatus impl_kroiCFAToRGB_8u_C1C3R(const Kro8u* pSrc, kroiRect srcRoi, kroiSize srcSize, int srcStep, Kro8u* pDst,
                                     int dstStep, KroiBayerGrid grid, int reserved) {
    (void)reserved;
    return cfaToRGB(pSrc, srcRoi, srcSize, srcStep, pDst, dstStep, static_cast<int>(grid));
}
KroStatus impl_kroiCFAToRGB_16u_C1C3R(const Kro16u* pSrc, kroiRect srcRoi, kroiSize srcSize, int srcStep,
                                      Kro16u* pDst, int dstStep, KroiBayerGrid grid, int reserved) {
    (void)reserved;
    return cfaToRGB(pSrc, srcRoi, srcSize, srcStep, pDst, dstStep, static_cast<int>(grid));
}
