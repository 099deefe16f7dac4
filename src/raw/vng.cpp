// Bayer mosaic to BGRA by a variable number of gradients, 8u and 16u, with
// their _L twins.
//
// Each inner pixel (two pixels from every image edge) forms eight directional
// gradients over its 5 x 5 neighbourhood, takes the directions below a
// threshold set between the smallest and largest of them, and estimates each
// missing colour as its own sample plus the averaged colour difference of those
// directions. Gains per channel follow. The two-pixel image frame is then
// copied from the nearest computed pixel.
//
// Everything is kept at twice the plain scale so half-weights stay whole: 8u
// data in 16-bit lanes (8 pixels a vector step), 16u data in 32-bit lanes (4
// pixels). The form is written once over its number type: the scalar tail
// runs the same template on int. Green and red/blue sites are formed together
// and chosen per lane by a mask that alternates along the row.
#include "impl_decls.h"
#include "raw/bayer.h"

using namespace kro;
using namespace kro::raw;

namespace {

// ------------------------------------------------------------ forms
// rne(a / b) in single precision (a and b below 2^24, so both convert exactly).
inline int divRound(int a, int b) {
    return _mm_cvtss_si32(_mm_div_ss(_mm_cvtsi32_ss(_mm_setzero_ps(), a), _mm_cvtsi32_ss(_mm_setzero_ps(), b)));
}
inline V divRound4(V a, V b) { return _mm_cvtps_epi32(_mm_div_ps(_mm_cvtepi32_ps(a), _mm_cvtepi32_ps(b))); }
inline L32 divRound(L32 a, L32 b) { return L32(divRound4(a.v, b.v)); }
inline L16 divRound(L16 a, L16 b) {
    const V lo = divRound4(_mm_cvtepi16_epi32(a.v), _mm_cvtepi16_epi32(b.v));
    const V hi = divRound4(_mm_srai_epi32(_mm_unpackhi_epi16(a.v, a.v), 16), _mm_srai_epi32(_mm_unpackhi_epi16(b.v, b.v), 16));
    return L16(_mm_packs_epi32(lo, hi));
}

// rne(v * gain) limited to 0..top; the product is limited before rounding, so
// a huge or negative gain saturates and a NaN gives 0.
inline VF gainLimited(VF f, VF gain, VF top) { return _mm_min_ps(_mm_max_ps(_mm_mul_ps(f, gain), _mm_setzero_ps()), top); }
inline int applyGain(int v, float gain, int top) {
    const VF f = gainLimited(_mm_cvtsi32_ss(_mm_setzero_ps(), v), _mm_set_ss(gain), _mm_set_ss(float(top)));
    return _mm_cvtss_si32(f);
}
inline V applyGain4(V v, float gain, int top) {
    return _mm_cvtps_epi32(gainLimited(_mm_cvtepi32_ps(v), _mm_set1_ps(gain), _mm_set1_ps(float(top))));
}
inline L32 applyGain(L32 v, float gain, int top) { return L32(applyGain4(v.v, gain, top)); }
inline L16 applyGain(L16 v, float gain, int top) {
    const V lo = applyGain4(_mm_cvtepu16_epi32(v.v), gain, top);
    const V hi = applyGain4(_mm_unpackhi_epi16(v.v, _mm_setzero_si128()), gain, top);
    return L16(_mm_packs_epi32(lo, hi));
}

// One inner pixel (or a vector of them) from its 5 x 5 neighbourhood p[dy + 2][dx + 2].
// green: all ones at green sites. Results: the chroma of the pixel's row, the
// chroma of its column, and green, each limited to 0..top.
template <class N>
void vngForm(const N (&p)[5][5], N green, int top, N (&rowC)[1], N (&colC)[1], N (&grn)[1]) {
    auto P = [&p](int dx, int dy) { return p[dy + 2][dx + 2]; };
    auto D = [&P](int ax, int ay, int bx, int by) { return absN(P(ax, ay) - P(bx, by)); };
    const N own = P(0, 0);
    // gradients N, E, S, W, NE, SE, NW, SW
    N g[8];
    g[0] = ((D(0, -1, 0, 1) + D(0, -2, 0, 0)) << 1) + D(-1, -1, -1, 1) + D(1, -1, 1, 1) + D(-1, -2, -1, 0) + D(1, -2, 1, 0);
    g[1] = ((D(1, 0, -1, 0) + D(2, 0, 0, 0)) << 1) + D(1, -1, -1, -1) + D(1, 1, -1, 1) + D(2, -1, 0, -1) + D(2, 1, 0, 1);
    g[2] = ((D(0, 1, 0, -1) + D(0, 2, 0, 0)) << 1) + D(1, 1, 1, -1) + D(-1, 1, -1, -1) + D(1, 2, 1, 0) + D(-1, 2, -1, 0);
    g[3] = ((D(-1, 0, 1, 0) + D(-2, 0, 0, 0)) << 1) + D(-1, -1, 1, -1) + D(-1, 1, 1, 1) + D(-2, -1, 0, -1) + D(-2, 1, 0, 1);
    // diagonals at a red or blue site ...
    const N cNE = ((D(1, -1, -1, 1) + D(2, -2, 0, 0)) << 1) + D(0, -1, -1, 0) + D(1, 0, 0, 1) + D(1, -2, 0, -1) + D(2, -1, 1, 0);
    const N cSE = ((D(1, 1, -1, -1) + D(2, 2, 0, 0)) << 1) + D(1, 0, 0, -1) + D(0, 1, -1, 0) + D(2, 1, 1, 0) + D(1, 2, 0, 1);
    const N cNW = ((D(-1, -1, 1, 1) + D(-2, -2, 0, 0)) << 1) + D(-1, 0, 0, 1) + D(0, -1, 1, 0) + D(-2, -1, -1, 0) + D(-1, -2, 0, -1);
    const N cSW = ((D(-1, 1, 1, -1) + D(-2, 2, 0, 0)) << 1) + D(0, 1, 1, 0) + D(-1, 0, 0, -1) + D(-1, 2, 0, 1) + D(-2, 1, -1, 0);
    // ... and at a green site
    const N gNE = (D(-1, 0, 1, -2) + D(0, 1, 2, -1) + D(-1, 1, 1, -1) + D(0, 0, 2, -2)) << 1;
    const N gSE = (D(-1, 0, 1, 2) + D(0, -1, 2, 1) + D(-1, -1, 1, 1) + D(0, 0, 2, 2)) << 1;
    const N gNW = (D(-1, -2, 1, 0) + D(-2, -1, 0, 1) + D(-2, -2, 0, 0) + D(-1, -1, 1, 1)) << 1;
    const N gSW = (D(-1, 2, 1, 0) + D(0, -1, -2, 1) + D(1, -1, -1, 1) + D(0, 0, -2, 2)) << 1;
    g[4] = select(green, gNE, cNE);
    g[5] = select(green, gSE, cSE);
    g[6] = select(green, gNW, cNW);
    g[7] = select(green, gSW, cSW);

    // Contributions to the own sum and to the sums of the two missing colours:
    // at a red or blue site (own chroma, green, other chroma), at a green site
    // (green, row chroma, column chroma).
    auto two = [&P](int dx, int dy) { return P(dx, dy) << 1; };
    auto pair = [&P](int ax, int ay, int bx, int by) { return P(ax, ay) + P(bx, by); };
    auto quad = [&P](int ax, int ay, int bx, int by, int cx, int cy, int dx, int dy) {
        return (P(ax, ay) + P(bx, by) + P(cx, cy) + P(dx, dy)) >> 1;
    };
    N cs[8][3], gs[8][3];
    cs[0][0] = pair(0, -2, 0, 0), cs[0][1] = two(0, -1), cs[0][2] = pair(-1, -1, 1, -1);
    cs[1][0] = pair(2, 0, 0, 0), cs[1][1] = two(1, 0), cs[1][2] = pair(1, -1, 1, 1);
    cs[2][0] = pair(0, 2, 0, 0), cs[2][1] = two(0, 1), cs[2][2] = pair(-1, 1, 1, 1);
    cs[3][0] = pair(-2, 0, 0, 0), cs[3][1] = two(-1, 0), cs[3][2] = pair(-1, -1, -1, 1);
    cs[4][0] = pair(2, -2, 0, 0), cs[4][1] = quad(1, -2, 0, -1, 2, -1, 1, 0), cs[4][2] = two(1, -1);
    cs[5][0] = pair(2, 2, 0, 0), cs[5][1] = quad(1, 0, 0, 1, 2, 1, 1, 2), cs[5][2] = two(1, 1);
    cs[6][0] = pair(-2, -2, 0, 0), cs[6][1] = quad(-1, -2, -2, -1, 0, -1, -1, 0), cs[6][2] = two(-1, -1);
    cs[7][0] = pair(-2, 2, 0, 0), cs[7][1] = quad(-1, 0, -2, 1, 0, 1, -1, 2), cs[7][2] = two(-1, 1);
    gs[0][0] = cs[0][0], gs[0][1] = pair(-1, -2, 1, -2), gs[0][2] = two(0, -1);
    gs[1][0] = cs[1][0], gs[1][1] = two(1, 0), gs[1][2] = pair(2, -1, 2, 1);
    gs[2][0] = cs[2][0], gs[2][1] = pair(-1, 2, 1, 2), gs[2][2] = two(0, 1);
    gs[3][0] = cs[3][0], gs[3][1] = two(-1, 0), gs[3][2] = pair(-2, -1, -2, 1);
    gs[4][0] = two(1, -1), gs[4][1] = pair(1, -2, 1, 0), gs[4][2] = pair(0, -1, 2, -1);
    gs[5][0] = two(1, 1), gs[5][1] = pair(1, 0, 1, 2), gs[5][2] = pair(0, 1, 2, 1);
    gs[6][0] = two(-1, -1), gs[6][1] = pair(-1, -2, -1, 0), gs[6][2] = pair(-2, -1, 0, -1);
    gs[7][0] = two(-1, 1), gs[7][1] = pair(-1, 0, -1, 2), gs[7][2] = pair(-2, 1, 0, 1);

    // threshold: min + max(max >> 1, 1); directions strictly below it take part
    N lo = g[0], hi = g[0];
    for (int d = 1; d < 8; ++d) lo = minN(lo, g[d]), hi = maxN(hi, g[d]);
    const N t = lo + maxN(hi >> 1, N(1));
    N n(0), sOwn(0), s1(0), s2(0);
    for (int d = 0; d < 8; ++d) {
        const N in = lessMask(g[d], t);
        n = n + countMask(in);
        sOwn = sOwn + (select(green, gs[d][0], cs[d][0]) & in);
        s1 = s1 + (select(green, gs[d][1], cs[d][1]) & in);
        s2 = s2 + (select(green, gs[d][2], cs[d][2]) & in);
    }
    const N n2 = n + n;
    const N m1 = maxN(minN(own + divRound(s1 - sOwn, n2), N(top)), N(0));
    const N m2 = maxN(minN(own + divRound(s2 - sOwn, n2), N(top)), N(0));
    rowC[0] = select(green, m1, own);
    colC[0] = m2;
    grn[0] = select(green, own, m1);
}

template <class T>
struct Vng {
    using L = typename LanesFor<T>::type;
    static constexpr int top = sizeof(T) == 1 ? 255 : 65535;
    Image<T> s;
    int W, H, grid;
    const float* scale;  // B, G, R gains, or null

    // B, G, R of an inner pixel, or of the vector of L::N pixels from x on.
    template <class N>
    void bgr(int x, int y, N green, N (&out)[3]) const {
        N p[5][5];
        for (int dy = -2; dy <= 2; ++dy) {
            const T* r = s.row(y + dy) + x;
            for (int dx = -2; dx <= 2; ++dx) {
                if constexpr (std::is_same_v<N, int>)
                    p[dy + 2][dx + 2] = loadSample(r + dx);
                else
                    p[dy + 2][dx + 2] = N::load(r + dx);
            }
        }
        N rowC[1], colC[1], grn[1];
        vngForm(p, green, top, rowC, colC, grn);
        const bool redRow = rowChroma(grid, y) == Red;
        out[0] = redRow ? colC[0] : rowC[0];
        out[1] = grn[0];
        out[2] = redRow ? rowC[0] : colC[0];
        if (scale)
            for (int k = 0; k < 3; ++k) out[k] = applyGain(out[k], scale[k], top);
    }

    // Inner columns [xa, xb) of inner row y: vector steps, then single pixels.
    // The fourth sample is not written.
    void innerRow(int y, int xa, int xb, const Dest<T, 4>& dst) const {
        const int phase = isGreen(grid, 0, y) ? 0 : 1;
        int x = xa;
        for (; x + L::N <= xb; x += L::N) {
            L o[3];
            bgr(x, y, alternating<L>(x, phase), o);
            const V c[3] = {o[0].v, o[1].v, o[2].v};
            typename DstCT<T, 4, Fourth::Keep>::Row{dst.px(x, y)}.template storeLanes<L::N, L::bytes>(0, c);
        }
        for (; x < xb; ++x) putOne(dst, x, y, x, y);
    }

    // The pixel computed at (cx, cy), written at (x, y) without its fourth sample.
    void putOne(const Dest<T, 4>& dst, int x, int y, int cx, int cy) const {
        int o[3];
        bgr(cx, cy, isGreen(grid, cx, cy) ? -1 : 0, o);
        T* q = dst.px(x, y);
        for (int k = 0; k < 3; ++k) storeSample(q + k, static_cast<T>(o[k]));
    }

    static void copyPixel(const Dest<T, 4>& dst, int fx, int fy, int tx, int ty) {
        std::memmove(dst.px(tx, ty), dst.px(fx, fy), 4 * sizeof(T));
    }

    // Region driver: inner rows, then the frame copies column by column and row
    // by row, so corners repeat the corner inner pixels.
    void region(const Span& r, const Dest<T, 4>& dst) const {
        const int ix0 = r.x0 > 2 ? r.x0 : 2, ix1 = r.x1 < W - 2 ? r.x1 : W - 2;
        const int iy0 = r.y0 > 2 ? r.y0 : 2, iy1 = r.y1 < H - 2 ? r.y1 : H - 2;
        if (ix0 >= ix1 || iy0 >= iy1) {
            // Only frame pixels: each takes the value of its nearest inner
            // pixel, computed here, and keeps its fourth sample.
            for (int y = r.y0; y < r.y1; ++y)
                for (int x = r.x0; x < r.x1; ++x)
                    putOne(dst, x, y, x < 2 ? 2 : (x > W - 3 ? W - 3 : x), y < 2 ? 2 : (y > H - 3 ? H - 3 : y));
            return;
        }
        for (int y = iy0; y < iy1; ++y) innerRow(y, ix0, ix1, dst);
        for (int y = iy0; y < iy1; ++y) {
            if (r.x0 == 0) copyPixel(dst, ix0, y, 0, y);
            if (r.x0 < 2) copyPixel(dst, ix0, y, 1, y);
            if (r.x1 > W - 2) copyPixel(dst, ix1 - 1, y, W - 2, y);
            if (r.x1 > W - 1) copyPixel(dst, ix1 - 1, y, W - 1, y);
        }
        auto copyRow = [&](int from, int to) {
            std::memmove(dst.px(r.x0, to), dst.px(r.x0, from), static_cast<size_t>(r.x1 - r.x0) * 4 * sizeof(T));
        };
        if (r.y0 == 0) copyRow(iy0, 0);
        if (r.y0 < 2) copyRow(iy0, 1);
        if (r.y1 > H - 2) copyRow(iy1 - 1, H - 2);
        if (r.y1 > H - 1) copyRow(iy1 - 1, H - 1);
    }
};

template <class T>
KroStatus cfaToBGRA(const T* pSrc, kroiRect srcRoi, int W, int H, int srcStep, const Kro32f* scale, T* pDst,
                    int dstStep, int grid) {
    if (pSrc == nullptr) return kroStatusNullPointer;
    if (pDst == nullptr) return kroStatusNullPointer;
    if (W < 5) return kroStatusBadSize;
    if (H < 5) return kroStatusBadSize;
    if (!gridValid(grid)) return kroStatusBadArgument;
    if (srcRoi.width < 1 || srcRoi.height < 1) return kroStatusOk;
    const Span r = clipToImage(srcRoi, {W, H});
    if (r.empty()) return kroStatusOk;
    const Vng<T> vng{{reinterpret_cast<const uint8_t*>(pSrc), srcStep}, W, H, grid, scale};
    vng.region(r, Dest<T, 4>{reinterpret_cast<uint8_t*>(pDst), dstStep, srcRoi.x, srcRoi.y});
    return kroStatusOk;
}

}  // namespace

KroStatus impl_kroiCFAToBGRA_VNG_8u_C1C4R_L(const Kro8u* pSrc, kroiRect srcRoi, kroiSizeL srcSize, int srcStep,
                                            const Kro32f* scale, Kro8u* pDst, int dstStep, KroiBayerGrid grid) {
    return cfaToBGRA(pSrc, srcRoi, srcSize.width, srcSize.height, srcStep, scale, pDst, dstStep, static_cast<int>(grid));
}
KroStatus impl_kroiCFAToBGRA_VNG_16u_C1C4R_L(const Kro16u* pSrc, kroiRect srcRoi, kroiSizeL srcSize, int srcStep,
                                             const Kro32f* scale, Kro16u* pDst, int dstStep, KroiBayerGrid grid) {
    return cfaToBGRA(pSrc, srcRoi, srcSize.width, srcSize.height, srcStep, scale, pDst, dstStep, static_cast<int>(grid));
}
// The forms without _L forward to their twins.
KroStatus impl_kroiCFAToBGRA_VNG_8u_C1C4R(const Kro8u* pSrc, kroiRect srcRoi, kroiSize srcSize, int srcStep,
                                          const Kro32f* scale, Kro8u* pDst, int dstStep, KroiBayerGrid grid) {
    return impl_kroiCFAToBGRA_VNG_8u_C1C4R_L(pSrc, srcRoi, {srcSize.width, srcSize.height}, srcStep, scale, pDst,
                                             dstStep, grid);
}
KroStatus impl_kroiCFAToBGRA_VNG_16u_C1C4R(const Kro16u* pSrc, kroiRect srcRoi, kroiSize srcSize, int srcStep,
                                           const Kro32f* scale, Kro16u* pDst, int dstStep, KroiBayerGrid grid) {
    return impl_kroiCFAToBGRA_VNG_16u_C1C4R_L(pSrc, srcRoi, {srcSize.width, srcSize.height}, srcStep, scale, pDst,
                                              dstStep, grid);
}
