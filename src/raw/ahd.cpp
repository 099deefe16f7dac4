// Bayer mosaic to RGB by adaptive homogeneity-directed demosaicing, 8u and 16u.
//
// Two full colour images are built, green interpolated along rows (H) and
// along columns (V); both are measured for local homogeneity in an integer
// YUV space and every pixel is taken whole from the more homogeneous one (3 x 3
// sum of the per-pixel vote D, ties follow the pixel to the left in the same
// row of the same work block). Positions past the image edge read mirrored
// samples, so the border runs the same arithmetic as the inside.
//
// Layers: entry (checks, region clip), block split (inner block starting on a
// red site plus four strips; rows of each block start their tie rule afresh),
// and a pipeline that runs down each block over row rings in the caller's work
// buffer: green of both directions, chroma one row behind, D one row behind
// that, selection one more. No full-size plane exists; 30 rows of at most
// ((width + 1) & ~1) + 6 samples are used:
//
//   rows  0..4   GH ring     rows 10..13  RH ring    rows 18..21  RV ring
//   rows  5..9   GV ring     rows 14..17  BH ring    rows 22..25  BV ring
//   rows 26..29  D ring (D stored as a signed sample)
//
// Column j of a ring row holds image column (block left - 3 + j).
//
// Row kernels: 8u data runs 8 pixels a vector step in 16-bit lanes (colour
// distances in 32-bit lanes, the selection 16 pixels in byte lanes), 16u data
// 4 pixels in 32-bit lanes (the selection 8 in 16-bit lanes); a scalar tail
// follows, and columns whose stencil reaches past the image run the scalar form
// through the mirror. Every path gives the same numbers.
#include <type_traits>

#include "impl_decls.h"
#include "raw/bayer.h"

using namespace kro;
using namespace kro::raw;

namespace {

// ------------------------------------------------------------ mirror
// Reflection at 0 and n - 1 without repeating the edge sample, as often as needed.
inline int reflect(int i, int n) {
    for (;;) {
        if (i < 0)
            i = -i;
        else if (i > n - 1)
            i = 2 * (n - 1) - i;
        else
            return i;
    }
}

// ------------------------------------------------------------ forms (int and 16-bit lanes)
// Green at a red or blue site along one line: the neighbours' mean corrected by
// the second difference of the own colour, limited to the neighbours' range.
template <class N>
inline N greenAlong(N a, N b, N own, N far1, N far2) {
    const N g = ((a + b) >> 1) + (((own << 1) - far1 - far2) >> 2);
    return maxN(minN(g, maxN(a, b)), minN(a, b));
}
// Chroma at a green site from the two chroma sites beside it on one line.
template <class N>
inline N chromaPair(N g, N s1, N g1, N s2, N g2) {
    return g + (((s1 - g1) + (s2 - g2)) >> 1);
}
// The other chroma at a red or blue site from its four diagonal neighbours.
template <class N>
inline N chromaDiag(N g, N sSum, N gSum) {
    return g + ((sSum - gSum) >> 2);
}

// Y, U, V without offsets.
struct Yuv {
    int y, u, v;
};
inline Yuv yuvOf(int r, int g, int b) {
    return {(66 * r + 129 * g + 25 * b + 128) >> 8, (-38 * r - 74 * g + 112 * b + 128) >> 8,
            (112 * r - 94 * g - 18 * b + 128) >> 8};
}
struct YuvLanes {
    V y, u, v;
};
// 8u samples in 16-bit lanes, written on the differences from green to save
// products: Y = 220 G + 66 (R - G) + 25 (B - G), U = 112 (B - G) - 38 (R - G),
// V = 112 (R - G) - 18 (B - G). The lanes wrap, but every result fits: Y
// reaches 56228 before its shift and is shifted unsigned, U and V stay within
// +-28688.
inline YuvLanes yuvOf(V r, V g, V b) {
    auto mul = [](V a, int k) { return _mm_mullo_epi16(a, _mm_set1_epi16(static_cast<short>(k))); };
    const V half = _mm_set1_epi16(128), dr = _mm_sub_epi16(r, g), db = _mm_sub_epi16(b, g);
    const V y = _mm_add_epi16(_mm_add_epi16(_mm_add_epi16(mul(g, 220), mul(dr, 66)), mul(db, 25)), half);
    const V u = _mm_add_epi16(_mm_sub_epi16(mul(db, 112), mul(dr, 38)), half);
    const V v = _mm_add_epi16(_mm_sub_epi16(mul(dr, 112), mul(db, 18)), half);
    return {_mm_srli_epi16(y, 8), _mm_srai_epi16(u, 8), _mm_srai_epi16(v, 8)};
}

// Homogeneity vote D = count(H) - count(V) from the Y, U, V of the centre (0)
// and of the neighbours left, right, up, down (1..4) in each direction.
// The colour distance is a 32-bit signed number that wraps on 16u data.
inline int colourDistance(const Yuv& a, const Yuv& b) {
    const uint32_t du = static_cast<uint32_t>(a.u - b.u), dv = static_cast<uint32_t>(a.v - b.v);
    return static_cast<int32_t>(du * du + dv * dv);
}
inline int homogeneity(const Yuv (&h)[5], const Yuv (&v)[5]) {
    int dy[2][4], dc[2][4];
    for (int n = 0; n < 4; ++n) {
        dy[0][n] = absN(h[n + 1].y - h[0].y), dc[0][n] = colourDistance(h[n + 1], h[0]);
        dy[1][n] = absN(v[n + 1].y - v[0].y), dc[1][n] = colourDistance(v[n + 1], v[0]);
    }
    const int eY = minN(maxN(dy[0][0], dy[0][1]), maxN(dy[1][2], dy[1][3]));
    const int eC = minN(maxN(dc[0][0], dc[0][1]), maxN(dc[1][2], dc[1][3]));
    int count[2] = {0, 0};
    for (int d = 0; d < 2; ++d)
        for (int n = 0; n < 4; ++n) count[d] += (dy[d][n] <= eY && dc[d][n] <= eC) ? 1 : 0;
    return count[0] - count[1];
}
// The same on 8 pixels of 8u data: Y, U, V in 16-bit lanes, distances in 32.
inline V homogeneity(const YuvLanes (&h)[5], const YuvLanes (&v)[5]) {
    V dy[2][4], dcLo[2][4], dcHi[2][4];
    const YuvLanes* s[2] = {h, v};
    for (int d = 0; d < 2; ++d)
        for (int n = 0; n < 4; ++n) {
            const YuvLanes &a = s[d][n + 1], &o = s[d][0];
            dy[d][n] = _mm_abs_epi16(_mm_sub_epi16(a.y, o.y));
            const V du = _mm_sub_epi16(a.u, o.u), dv = _mm_sub_epi16(a.v, o.v);
            const V lo = _mm_unpacklo_epi16(du, dv), hi = _mm_unpackhi_epi16(du, dv);
            dcLo[d][n] = _mm_madd_epi16(lo, lo);
            dcHi[d][n] = _mm_madd_epi16(hi, hi);
        }
    const V eY = _mm_min_epi16(_mm_max_epi16(dy[0][0], dy[0][1]), _mm_max_epi16(dy[1][2], dy[1][3]));
    const V eLo = _mm_min_epi32(_mm_max_epi32(dcLo[0][0], dcLo[0][1]), _mm_max_epi32(dcLo[1][2], dcLo[1][3]));
    const V eHi = _mm_min_epi32(_mm_max_epi32(dcHi[0][0], dcHi[0][1]), _mm_max_epi32(dcHi[1][2], dcHi[1][3]));
    // Sum of "fails" masks (-1 each) per direction: D = fails(V) - fails(H).
    V fails[2] = {_mm_setzero_si128(), _mm_setzero_si128()};
    for (int d = 0; d < 2; ++d)
        for (int n = 0; n < 4; ++n) {
            const V cFail = _mm_packs_epi32(_mm_cmpgt_epi32(dcLo[d][n], eLo), _mm_cmpgt_epi32(dcHi[d][n], eHi));
            fails[d] = _mm_add_epi16(fails[d], _mm_or_si128(_mm_cmpgt_epi16(dy[d][n], eY), cFail));
        }
    return _mm_sub_epi16(fails[0], fails[1]);
}

// 16u samples in 32-bit lanes: Y, U, V as the scalar form; the colour
// distance wraps as a 32-bit number.
inline YuvLanes yuvOf32(V r, V g, V b) {
    auto mul = [](V a, int k) { return _mm_mullo_epi32(a, _mm_set1_epi32(k)); };
    const V half = _mm_set1_epi32(128);
    const V y = _mm_add_epi32(_mm_add_epi32(_mm_add_epi32(mul(r, 66), mul(g, 129)), mul(b, 25)), half);
    const V u = _mm_add_epi32(_mm_add_epi32(_mm_add_epi32(mul(r, -38), mul(g, -74)), mul(b, 112)), half);
    const V v = _mm_add_epi32(_mm_add_epi32(_mm_add_epi32(mul(r, 112), mul(g, -94)), mul(b, -18)), half);
    return {_mm_srai_epi32(y, 8), _mm_srai_epi32(u, 8), _mm_srai_epi32(v, 8)};
}
inline V homogeneity32(const YuvLanes (&h)[5], const YuvLanes (&v)[5]) {
    V dy[2][4], dc[2][4];
    const YuvLanes* s[2] = {h, v};
    for (int d = 0; d < 2; ++d)
        for (int n = 0; n < 4; ++n) {
            const YuvLanes &a = s[d][n + 1], &o = s[d][0];
            dy[d][n] = _mm_abs_epi32(_mm_sub_epi32(a.y, o.y));
            const V du = _mm_sub_epi32(a.u, o.u), dv = _mm_sub_epi32(a.v, o.v);
            dc[d][n] = _mm_add_epi32(_mm_mullo_epi32(du, du), _mm_mullo_epi32(dv, dv));
        }
    const V eY = _mm_min_epi32(_mm_max_epi32(dy[0][0], dy[0][1]), _mm_max_epi32(dy[1][2], dy[1][3]));
    const V eC = _mm_min_epi32(_mm_max_epi32(dc[0][0], dc[0][1]), _mm_max_epi32(dc[1][2], dc[1][3]));
    V fails[2] = {_mm_setzero_si128(), _mm_setzero_si128()};
    for (int d = 0; d < 2; ++d)
        for (int n = 0; n < 4; ++n)
            fails[d] = _mm_add_epi32(fails[d], _mm_or_si128(_mm_cmpgt_epi32(dy[d][n], eY), _mm_cmpgt_epi32(dc[d][n], eC)));
    return _mm_sub_epi32(fails[0], fails[1]);
}

// Lanes of a sample type: one pixel a lane, loaded from samples and stored
// back limited to the sample range; votes stored as signed samples.
template <class T>
struct Lanes;
template <>
struct Lanes<Kro8u> {
    using N = L16;
    static constexpr int n = 8, bytes = 2;
    static V load(const Kro8u* p) { return _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const V*>(p))); }
    static void store(Kro8u* p, V x) { _mm_storel_epi64(reinterpret_cast<V*>(p), _mm_packus_epi16(x, x)); }
    static void storeVote(Kro8u* p, V x) { _mm_storel_epi64(reinterpret_cast<V*>(p), _mm_packs_epi16(x, x)); }
    static YuvLanes yuv(V r, V g, V b) { return yuvOf(r, g, b); }
    static V vote(const YuvLanes (&h)[5], const YuvLanes (&v)[5]) { return homogeneity(h, v); }
};
template <>
struct Lanes<Kro16u> {
    using N = L32;
    static constexpr int n = 4, bytes = 4;
    static V load(const Kro16u* p) { return _mm_cvtepu16_epi32(_mm_loadl_epi64(reinterpret_cast<const V*>(p))); }
    static void store(Kro16u* p, V x) { _mm_storel_epi64(reinterpret_cast<V*>(p), _mm_packus_epi32(x, x)); }
    static void storeVote(Kro16u* p, V x) { _mm_storel_epi64(reinterpret_cast<V*>(p), _mm_packs_epi32(x, x)); }
    static YuvLanes yuv(V r, V g, V b) { return yuvOf32(r, g, b); }
    static V vote(const YuvLanes (&h)[5], const YuvLanes (&v)[5]) { return homogeneity32(h, v); }
};

// ------------------------------------------------------------ region and blocks
struct Rect {
    int x, y, w, h;
};

// The region split into work blocks: an inner block that starts on a red site
// and has even size, and the strips around it; or the whole region.
inline int splitBlocks(const Rect& r, int W, int H, int grid, Rect (&out)[5]) {
    auto hasRedColumn = [grid](int x) { return siteColour(grid, x, 0) == Red || siteColour(grid, x, 1) == Red; };
    auto hasRedRow = [grid](int y) { return siteColour(grid, 0, y) == Red || siteColour(grid, 1, y) == Red; };
    int xs = maxN(r.x, 5), ys = maxN(r.y, 5);
    int wi = maxN(minN(W - 5, r.x + r.w) - xs, 0), hi = maxN(minN(H - 5, r.y + r.h) - ys, 0);
    if (!hasRedColumn(xs)) ++xs, --wi;
    if (!hasRedRow(ys)) ++ys, --hi;
    if (wi < 2 || hi < 2) {  // nothing left once rounded down to even
        out[0] = r;
        return 1;
    }
    wi &= ~1;
    hi &= ~1;
    const Rect all[5] = {{xs, ys, wi, hi},
                         {r.x, r.y, r.w, ys - r.y},
                         {r.x, ys + hi, r.w, r.y + r.h - ys - hi},
                         {r.x, ys, xs - r.x, hi},
                         {xs + wi, ys, r.x + r.w - xs - wi, hi}};
    int n = 0;
    for (const Rect& b : all)
        if (b.w > 0 && b.h > 0) out[n++] = b;
    return n;
}

// ------------------------------------------------------------ the pipeline
enum Slot : int { kGH = 0, kGV = 5, kRH = 10, kBH = 14, kRV = 18, kBV = 22, kD = 26 };

template <class T>
struct Ahd {
    static constexpr int top = sizeof(T) == 1 ? 255 : 65535;
    using DT = std::conditional_t<sizeof(T) == 1, int8_t, int16_t>;  // D as a signed sample
    using Ln = Lanes<T>;

    const uint8_t* src;
    int srcStep, W, H, grid;
    uint8_t* buf;
    int bufStep;
    uint8_t* dst;
    int dstStep, rx, ry;  // region origin in the image
    // the block being run
    int bx0 = 0, bx1 = 0, col0 = 0;

    const T* srow(int y) const { return reinterpret_cast<const T*>(src + static_cast<std::ptrdiff_t>(y) * srcStep); }
    T* ring(int base, int n, int k) const {
        return reinterpret_cast<T*>(buf + static_cast<std::ptrdiff_t>(base + (k + 20) % n) * bufStep);
    }
    T* gRing(int dir, int k) const { return ring(dir ? kGV : kGH, 5, k); }
    T* rRing(int dir, int k) const { return ring(dir ? kRV : kRH, 4, k); }
    T* bRing(int dir, int k) const { return ring(dir ? kBV : kBH, 4, k); }
    T* dRing(int k) const { return ring(kD, 4, k); }
    static int at(const T* row, int j) { return loadSample(row + j); }
    static void put(T* row, int j, int v) { storeSample(row + j, static_cast<T>(v)); }
    static int atD(const T* row, int j) { return static_cast<DT>(loadSample(row + j)); }
    // Source sample of a row at column x, through the mirror where asked.
    int sAt(const T* row, int x, bool mirror) const { return loadSample(row + (mirror ? reflect(x, W) : x)); }

    // ---------------- green of both directions, row k, columns [col0, bx1 + 3)
    void greenPixel(const T* const (&r)[5], T* gh, T* gv, bool greenFirst, int c, bool mirror) const {
        const int j = c - col0, own = sAt(r[2], c, mirror);
        int h = own, v = own;
        if (((c & 1) == 0) != greenFirst) {
            h = greenAlong(sAt(r[2], c - 1, mirror), sAt(r[2], c + 1, mirror), own, sAt(r[2], c - 2, mirror),
                           sAt(r[2], c + 2, mirror));
            v = greenAlong(sAt(r[1], c, mirror), sAt(r[3], c, mirror), own, sAt(r[0], c, mirror),
                           sAt(r[4], c, mirror));
        }
        put(gh, j, h);
        put(gv, j, v);
    }
    int greenVector(const T* const (&r)[5], int k, int c, int end) const {
        using N = typename Ln::N;
        T *gh = gRing(0, k), *gv = gRing(1, k);
        const int phase = isGreen(grid, 0, k) ? 0 : 1;
        for (; c + Ln::n <= end && c + Ln::n + 2 <= W; c += Ln::n) {
            auto ld = [&](int row, int dx) { return N(Ln::load(r[row] + c + dx)); };
            const N own = ld(2, 0);
            const N m = alternating<N>(c, phase);
            const N h = select(m, own, greenAlong(ld(2, -1), ld(2, 1), own, ld(2, -2), ld(2, 2)));
            const N v = select(m, own, greenAlong(ld(1, 0), ld(3, 0), own, ld(0, 0), ld(4, 0)));
            Ln::store(gh + (c - col0), h.v);
            Ln::store(gv + (c - col0), v.v);
        }
        return c;
    }
    void greenRow(int k) const {
        const T* r[5];
        for (int d = 0; d < 5; ++d) r[d] = srow(reflect(k + d - 2, H));
        T *gh = gRing(0, k), *gv = gRing(1, k);
        const bool greenFirst = isGreen(grid, 0, k);  // green at even columns
        const int end = bx1 + 3;
        int c = col0;
        for (; c < end && c < 2; ++c) greenPixel(r, gh, gv, greenFirst, c, true);
        c = greenVector(r, k, c, end);
        for (; c < end; ++c) greenPixel(r, gh, gv, greenFirst, c, c + 2 >= W);
    }

    // Ring rows around row k: [direction][k - 1, k, k + 1], and D rows.
    struct Rows {
        T *g[2][3], *r[2][3], *b[2][3], *d[3];
    };
    Rows rowsAround(int k) const {
        Rows o;
        for (int i = 0; i < 3; ++i) {
            for (int d = 0; d < 2; ++d) {
                o.g[d][i] = gRing(d, k + i - 1);
                o.r[d][i] = rRing(d, k + i - 1);
                o.b[d][i] = bRing(d, k + i - 1);
            }
            o.d[i] = dRing(k + i - 1);
        }
        return o;
    }

    // ---------------- chroma of both directions, row k, columns [bx0 - 2, bx1 + 2)
    void chromaPixel(const T* const (&r)[3], const Rows& q, int k, int c, bool mirror) const {
        const int j = c - col0, own = sAt(r[1], c, mirror);
        const bool green = isGreen(grid, c, k), redRow = rowChroma(grid, k) == Red;
        for (int d = 0; d < 2; ++d) {
            const T *g0 = q.g[d][0], *g1 = q.g[d][1], *g2 = q.g[d][2];
            const int g = at(g1, j);
            int rowC, colC;
            if (green) {
                rowC = chromaPair(g, sAt(r[1], c - 1, mirror), at(g1, j - 1), sAt(r[1], c + 1, mirror), at(g1, j + 1));
                colC = chromaPair(g, sAt(r[0], c, mirror), at(g0, j), sAt(r[2], c, mirror), at(g2, j));
            } else {
                rowC = own;
                const int sSum = sAt(r[0], c - 1, mirror) + sAt(r[0], c + 1, mirror) + sAt(r[2], c - 1, mirror) +
                                 sAt(r[2], c + 1, mirror);
                const int gSum = at(g0, j - 1) + at(g0, j + 1) + at(g2, j - 1) + at(g2, j + 1);
                colC = chromaDiag(g, sSum, gSum);
            }
            rowC = maxN(minN(rowC, top), 0);
            colC = maxN(minN(colC, top), 0);
            put(q.r[d][1], j, redRow ? rowC : colC);
            put(q.b[d][1], j, redRow ? colC : rowC);
        }
    }
    int chromaVector(const T* const (&r)[3], const Rows& q, int k, int c, int end) const {
        using N = typename Ln::N;
        const bool redRow = rowChroma(grid, k) == Red;
        const int phase = isGreen(grid, 0, k) ? 0 : 1;
        for (; c + Ln::n <= end && c + Ln::n + 1 <= W; c += Ln::n) {
            const int j = c - col0;
            auto s = [&](int row, int dx) { return N(Ln::load(r[row] + c + dx)); };
            const N green = alternating<N>(c, phase);
            const N own = s(1, 0), sl = s(1, -1), sr = s(1, 1), su = s(0, 0), sd = s(2, 0);
            const N sSum = s(0, -1) + s(0, 1) + s(2, -1) + s(2, 1);
            for (int d = 0; d < 2; ++d) {
                const T *g0 = q.g[d][0], *g1 = q.g[d][1], *g2 = q.g[d][2];
                auto g = [&](const T* row, int dj) { return N(Ln::load(row + j + dj)); };
                const N gc = g(g1, 0);
                const N rowC = select(green, chromaPair(gc, sl, g(g1, -1), sr, g(g1, 1)), own);
                const N colC = select(green, chromaPair(gc, su, g(g0, 0), sd, g(g2, 0)),
                                      chromaDiag(gc, sSum, g(g0, -1) + g(g0, 1) + g(g2, -1) + g(g2, 1)));
                Ln::store(q.r[d][1] + j, (redRow ? rowC : colC).v);
                Ln::store(q.b[d][1] + j, (redRow ? colC : rowC).v);
            }
        }
        return c;
    }
    void chromaRow(int k) const {
        const T* r[3];
        for (int d = 0; d < 3; ++d) r[d] = srow(reflect(k + d - 1, H));
        const Rows q = rowsAround(k);
        const int end = bx1 + 2;
        int c = bx0 - 2;
        for (; c < end && c < 1; ++c) chromaPixel(r, q, k, c, true);
        c = chromaVector(r, q, k, c, end);
        for (; c < end; ++c) chromaPixel(r, q, k, c, c + 1 >= W);
    }

    // ---------------- homogeneity vote, row k, columns [bx0 - 1, bx1 + 1)
    static Yuv yuvAt(const Rows& q, int d, int i, int j) { return yuvOf(at(q.r[d][i], j), at(q.g[d][i], j), at(q.b[d][i], j)); }
    static void votePixel(const Rows& q, int j) {
        Yuv h[5], v[5];
        Yuv* s[2] = {h, v};
        for (int d = 0; d < 2; ++d) {
            s[d][0] = yuvAt(q, d, 1, j);
            s[d][1] = yuvAt(q, d, 1, j - 1);
            s[d][2] = yuvAt(q, d, 1, j + 1);
            s[d][3] = yuvAt(q, d, 0, j);
            s[d][4] = yuvAt(q, d, 2, j);
        }
        put(q.d[1], j, homogeneity(h, v));
    }
    // Ln::n pixels a step; the centre row's Y, U, V slide along the row, so
    // its left and right neighbours come from the steps before and after.
    static YuvLanes yuvLanes(const Rows& q, int d, int i, int j) {
        return Ln::yuv(Ln::load(q.r[d][i] + j), Ln::load(q.g[d][i] + j), Ln::load(q.b[d][i] + j));
    }
    template <int by>
    static YuvLanes shifted(const YuvLanes& lo, const YuvLanes& hi) {  // lanes from lo's lane by / lane bytes on
        return {_mm_alignr_epi8(hi.y, lo.y, by), _mm_alignr_epi8(hi.u, lo.u, by), _mm_alignr_epi8(hi.v, lo.v, by)};
    }
    static int voteVector(const Rows& q, int j, int end) {
        constexpr int n = Ln::n;
        if (j + n > end) return j;
        YuvLanes cur[2], left[2];
        for (int d = 0; d < 2; ++d) cur[d] = yuvLanes(q, d, 1, j), left[d] = yuvLanes(q, d, 1, j - 1);
        for (; j + n <= end; j += n) {
            YuvLanes h[5], v[5], next[2];
            YuvLanes* s[2] = {h, v};
            const bool more = j + 2 * n <= end;
            for (int d = 0; d < 2; ++d) {
                s[d][0] = cur[d];
                s[d][1] = left[d];
                if (more) {
                    next[d] = yuvLanes(q, d, 1, j + n);
                    s[d][2] = shifted<Ln::bytes>(cur[d], next[d]);
                } else {
                    s[d][2] = yuvLanes(q, d, 1, j + 1);
                }
                s[d][3] = yuvLanes(q, d, 0, j);
                s[d][4] = yuvLanes(q, d, 2, j);
            }
            Ln::storeVote(q.d[1] + j, Ln::vote(h, v));
            if (more)
                for (int d = 0; d < 2; ++d) {
                    left[d] = shifted<16 - Ln::bytes>(cur[d], next[d]);
                    cur[d] = next[d];
                }
        }
        return j;
    }
    void voteRow(int k) const {
        const Rows q = rowsAround(k);
        const int end = bx1 + 1 - col0;
        int j = voteVector(q, bx0 - 1 - col0, end);
        for (; j < end; ++j) votePixel(q, j);
    }

    // ---------------- selection, row k, columns [bx0, bx1); a tie keeps the
    // direction of the pixel to the left, H at the block's left edge.
    T* dpx(int x, int y) const {
        return reinterpret_cast<T*>(dst + static_cast<std::ptrdiff_t>(y - ry) * dstStep) + 3 * static_cast<std::ptrdiff_t>(x - rx);
    }
    static int voteSum(const Rows& q, int j) {
        int t = 0;
        for (int i = 0; i < 3; ++i) t += atD(q.d[i], j - 1) + atD(q.d[i], j) + atD(q.d[i], j + 1);
        return t;
    }
    void selectPixel(const Rows& q, int k, int j, int& dir) const {
        const int t = voteSum(q, j);
        if (t > 0) dir = 0;
        if (t < 0) dir = 1;
        T* p = dpx(col0 + j, k);
        storeSample(p + 0, static_cast<T>(at(q.r[dir][1], j)));
        storeSample(p + 1, static_cast<T>(at(q.g[dir][1], j)));
        storeSample(p + 2, static_cast<T>(at(q.b[dir][1], j)));
    }
    // Directions of n pixels (8 or 16) from their decided lanes (pos: H, neg:
    // V, as bit masks) and the direction carried in; a lane without a decision
    // takes the nearest decided lane to its left. Returns bit i set where pixel
    // i takes V, and leaves the last pixel's direction in dir.
    template <int n>
    static int fillTies(int pos, int neg, int& dir) {
        constexpr int all = (1 << n) - 1;
        int known = pos | neg, useV = neg;
        for (int s = 1; s < n; s <<= 1) {
            useV |= (useV << s) & ~known & all;
            known |= (known << s) & all;
        }
        useV |= dir ? ~known & all : 0;
        dir = useV >> (n - 1) & 1;
        return useV;
    }
    // 16 pixels a step in byte lanes (a sum of nine votes fits -36..36), then
    // 8 pixels a step in 16-bit lanes.
    int selectVector(const Rows& q, int k, int j, int end, int& dir) const {
        if constexpr (sizeof(T) == 1) {
            const V zero = _mm_setzero_si128();
            auto ld16 = [](const T* row, int at) { return _mm_loadu_si128(reinterpret_cast<const V*>(row + at)); };
            const V bits16 = _mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 1, 2, 4, 8, 16, 32, 64, -128);
            for (; j + 16 <= end; j += 16) {
                V t = zero;
                for (int i = 0; i < 3; ++i)
                    for (int dj = -1; dj <= 1; ++dj) t = _mm_add_epi8(t, ld16(q.d[i], j + dj));
                const int useV = fillTies<16>(_mm_movemask_epi8(_mm_cmpgt_epi8(t, zero)),
                                              _mm_movemask_epi8(_mm_cmplt_epi8(t, zero)), dir);
                const V spread = _mm_unpacklo_epi8(_mm_set1_epi8(static_cast<char>(useV)), _mm_set1_epi8(static_cast<char>(useV >> 8)));
                const V m = _mm_cmpeq_epi8(_mm_and_si128(_mm_shuffle_epi8(spread, _mm_setr_epi8(0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1)), bits16), bits16);
                const V rgb[3] = {_mm_blendv_epi8(ld16(q.r[0][1], j), ld16(q.r[1][1], j), m),
                                  _mm_blendv_epi8(ld16(q.g[0][1], j), ld16(q.g[1][1], j), m),
                                  _mm_blendv_epi8(ld16(q.b[0][1], j), ld16(q.b[1][1], j), m)};
                DstCT<Kro8u, 3>::Row{dpx(col0 + j, k)}.template storeLanes<16, 1>(0, rgb);
            }
            const V bits = _mm_setr_epi16(1, 2, 4, 8, 16, 32, 64, 128);
            auto ld = [](const T* row, int at) { return _mm_loadl_epi64(reinterpret_cast<const V*>(row + at)); };
            for (; j + 8 <= end; j += 8) {
                V t = zero;
                for (int i = 0; i < 3; ++i)
                    for (int dj = -1; dj <= 1; ++dj) t = _mm_add_epi16(t, _mm_cvtepi8_epi16(ld(q.d[i], j + dj)));
                const int pos = _mm_movemask_epi8(_mm_packs_epi16(_mm_cmpgt_epi16(t, zero), zero));
                const int neg = _mm_movemask_epi8(_mm_packs_epi16(_mm_cmplt_epi16(t, zero), zero));
                const int useV = fillTies<8>(pos, neg, dir);
                const V m = _mm_cmpeq_epi16(_mm_and_si128(_mm_set1_epi16(static_cast<short>(useV)), bits), bits);
                auto pick = [&](T* const (&ring)[2][3]) {
                    return _mm_cvtepu8_epi16(_mm_blendv_epi8(ld(ring[0][1], j), ld(ring[1][1], j), _mm_packs_epi16(m, m)));
                };
                const V rgb[3] = {pick(q.r), pick(q.g), pick(q.b)};
                DstCT<Kro8u, 3>::Row{dpx(col0 + j, k)}.template storeLanes<8, 2>(0, rgb);
            }
        } else {
            // 16u: votes and samples are 16-bit, 8 pixels a step
            const V zero = _mm_setzero_si128(), bits = _mm_setr_epi16(1, 2, 4, 8, 16, 32, 64, 128);
            auto ld = [](const T* row, int at) { return _mm_loadu_si128(reinterpret_cast<const V*>(row + at)); };
            for (; j + 8 <= end; j += 8) {
                V t = zero;
                for (int i = 0; i < 3; ++i)
                    for (int dj = -1; dj <= 1; ++dj) t = _mm_add_epi16(t, ld(q.d[i], j + dj));
                const int pos = _mm_movemask_epi8(_mm_packs_epi16(_mm_cmpgt_epi16(t, zero), zero));
                const int neg = _mm_movemask_epi8(_mm_packs_epi16(_mm_cmplt_epi16(t, zero), zero));
                const int useV = fillTies<8>(pos, neg, dir);
                const V m = _mm_cmpeq_epi16(_mm_and_si128(_mm_set1_epi16(static_cast<short>(useV)), bits), bits);
                auto pick = [&](T* const (&ring)[2][3]) { return _mm_blendv_epi8(ld(ring[0][1], j), ld(ring[1][1], j), m); };
                const V rgb[3] = {pick(q.r), pick(q.g), pick(q.b)};
                DstCT<Kro16u, 3>::Row{dpx(col0 + j, k)}.template storeLanes<8, 2>(0, rgb);
            }
        }
        return j;
    }
    void selectRow(int k) const {
        const Rows q = rowsAround(k);
        const int end = bx1 - col0;
        int dir = 0;
        int j = selectVector(q, k, j0(), end, dir);
        for (; j < end; ++j) selectPixel(q, k, j, dir);
    }
    int j0() const { return bx0 - col0; }

    // ---------------- one block: the stages run down it, each a row behind the last
    void block(const Rect& b) {
        bx0 = b.x;
        bx1 = b.x + b.w;
        col0 = bx0 - 3;
        const int y0 = b.y, y1 = b.y + b.h;
        for (int k = y0 - 3; k < y1 + 3; ++k) {
            greenRow(k);
            if (k - 1 >= y0 - 2) chromaRow(k - 1);
            if (k - 2 >= y0 - 1) voteRow(k - 2);
            if (k - 3 >= y0) selectRow(k - 3);
        }
    }
};

template <class T>
KroStatus demosaicAHD(const T* pSrc, kroiRect srcRoi, kroiSize srcSize, int srcStep, T* pDst, int dstStep, int grid,
                      T* pBuffer, int bufferStep) {
    if (pSrc == nullptr || pDst == nullptr) return kroStatusNullPointer;
    if (srcSize.width < 5 || srcSize.height < 5) return kroStatusBadSize;
    if (!gridValid(grid)) return kroStatusBadArgument;
    // Negative offsets become 0 with the size kept; then the region is cut at
    // the image's right and bottom edges.
    const int W = srcSize.width, H = srcSize.height;
    const int64_t x = srcRoi.x < 0 ? 0 : srcRoi.x, y = srcRoi.y < 0 ? 0 : srcRoi.y;
    int64_t w = srcRoi.width, h = srcRoi.height;
    if (x + w > W) w = W - x;
    if (y + h > H) h = H - y;
    if (w < 1 || h < 1) return kroStatusOk;
    if (pBuffer == nullptr) return kroStatusNullPointer;
    const Rect r{static_cast<int>(x), static_cast<int>(y), static_cast<int>(w), static_cast<int>(h)};
    Ahd<T> a{reinterpret_cast<const uint8_t*>(pSrc), srcStep, W, H, grid, reinterpret_cast<uint8_t*>(pBuffer),
             bufferStep, reinterpret_cast<uint8_t*>(pDst), dstStep, r.x, r.y};
    Rect blocks[5];
    const int n = splitBlocks(r, W, H, grid, blocks);
    for (int i = 0; i < n; ++i) a.block(blocks[i]);
    return kroStatusOk;
}

}  // namespace

KroStatus impl_kroiDemosaicAHD_8u_C1C3R(const Kro8u* pSrc, kroiRect srcRoi, kroiSize srcSize, int srcStep,
                                        Kro8u* pDst, int dstStep, KroiBayerGrid grid, Kro8u* pBuffer,
                                        int bufferStep) {
    return demosaicAHD(pSrc, srcRoi, srcSize, srcStep, pDst, dstStep, static_cast<int>(grid), pBuffer, bufferStep);
}
KroStatus impl_kroiDemosaicAHD_16u_C1C3R(const Kro16u* pSrc, kroiRect srcRoi, kroiSize srcSize, int srcStep,
                                         Kro16u* pDst, int dstStep, KroiBayerGrid grid, Kro16u* pBuffer,
                                         int bufferStep) {
    return demosaicAHD(pSrc, srcRoi, srcSize, srcStep, pDst, dstStep, static_cast<int>(grid), pBuffer, bufferStep);
}
