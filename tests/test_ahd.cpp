// Bayer mosaic to RGB by adaptive homogeneity-directed demosaicing, against a
// plain reference written from the rules: every grid, both sample types, the
// minimum and odd image sizes, sizes past the inner block's bounds, regions
// (negative offsets, cut at the edges, split into blocks), padded steps with
// canaries, guarded source, destination and work buffer (whose row padding
// must stay untouched), 16-bit colour distances that wrap, statuses and check
// order, and the worked examples.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "bayer_test.h"

using namespace kt;

namespace {

// ------------------------------------------------------------ reference
// Every plane over the image and a margin of 8 around it; positions past the
// edge read the mosaic through the mirror.
struct AhdRef {
    static constexpr int M = 8;
    int W, H, grid, top;
    int XW;  // extended width
    bool wrapped = false;  // some colour distance passed 2^31 - 1
    std::vector<int> S, G[2], R[2], B[2], Y[2], U[2], V[2], D;

    int id(int x, int y) const { return (y + M) * XW + (x + M); }
    char colour(int x, int y) const {
        static const char* names[4] = {"BGGR", "RGGB", "GBRG", "GRBG"};
        return names[grid][(y & 1) * 2 + (x & 1)];
    }
    static int mirror(int i, int n) {
        while (i < 0 || i > n - 1) i = i < 0 ? -i : 2 * (n - 1) - i;
        return i;
    }

    AhdRef(const ref::Mosaic& m, int top_) : W(m.W), H(m.H), grid(m.grid), top(top_), XW(m.W + 2 * M) {
        const size_t n = static_cast<size_t>(XW) * (H + 2 * M);
        S.assign(n, 0);
        D.assign(n, 0);
        for (int d = 0; d < 2; ++d) G[d] = R[d] = B[d] = Y[d] = U[d] = V[d] = S;
        for (int y = -M; y < H + M; ++y)
            for (int x = -M; x < W + M; ++x) S[id(x, y)] = m(mirror(x, W), mirror(y, H));
        auto s = [&](int x, int y) { return S[id(x, y)]; };
        auto lim = [&](int v) { return std::min(std::max(v, 0), top); };
        for (int y = -M + 2; y < H + M - 2; ++y)
            for (int x = -M + 2; x < W + M - 2; ++x) {
                if (colour(x, y) == 'G') {
                    G[0][id(x, y)] = G[1][id(x, y)] = s(x, y);
                    continue;
                }
                const int c = s(x, y);
                auto dirG = [&](int a, int b, int f1, int f2) {
                    const int g = ((a + b) >> 1) + ((2 * c - f1 - f2) >> 2);
                    return std::min(std::max(g, std::min(a, b)), std::max(a, b));
                };
                G[0][id(x, y)] = dirG(s(x - 1, y), s(x + 1, y), s(x - 2, y), s(x + 2, y));
                G[1][id(x, y)] = dirG(s(x, y - 1), s(x, y + 1), s(x, y - 2), s(x, y + 2));
            }
        for (int d = 0; d < 2; ++d)
            for (int y = -M + 3; y < H + M - 3; ++y)
                for (int x = -M + 3; x < W + M - 3; ++x) {
                    auto g = [&](int xx, int yy) { return G[d][id(xx, yy)]; };
                    const char me = colour(x, y);
                    int rv, bv;
                    if (me == 'G') {
                        const int inRow = lim(g(x, y) + (((s(x - 1, y) - g(x - 1, y)) + (s(x + 1, y) - g(x + 1, y))) >> 1));
                        const int inCol = lim(g(x, y) + (((s(x, y - 1) - g(x, y - 1)) + (s(x, y + 1) - g(x, y + 1))) >> 1));
                        rv = colour(x + 1, y) == 'R' ? inRow : inCol;
                        bv = colour(x + 1, y) == 'B' ? inRow : inCol;
                    } else {
                        const int sd = s(x - 1, y - 1) + s(x + 1, y - 1) + s(x - 1, y + 1) + s(x + 1, y + 1);
                        const int gd = g(x - 1, y - 1) + g(x + 1, y - 1) + g(x - 1, y + 1) + g(x + 1, y + 1);
                        const int other = lim(g(x, y) + ((sd - gd) >> 2));
                        rv = me == 'R' ? s(x, y) : other;
                        bv = me == 'B' ? s(x, y) : other;
                    }
                    const int gv = g(x, y), i = id(x, y);
                    R[d][i] = rv;
                    B[d][i] = bv;
                    Y[d][i] = (66 * rv + 129 * gv + 25 * bv + 128) >> 8;
                    U[d][i] = (-38 * rv - 74 * gv + 112 * bv + 128) >> 8;
                    V[d][i] = (112 * rv - 94 * gv - 18 * bv + 128) >> 8;
                }
        for (int y = -M + 4; y < H + M - 4; ++y)
            for (int x = -M + 4; x < W + M - 4; ++x) {
                const int nx[4] = {x - 1, x + 1, x, x}, ny[4] = {y, y, y - 1, y + 1};
                int dY[2][4], dC[2][4];
                for (int d = 0; d < 2; ++d)
                    for (int k = 0; k < 4; ++k) {
                        const int a = id(nx[k], ny[k]), o = id(x, y);
                        dY[d][k] = std::abs(Y[d][a] - Y[d][o]);
                        const int64_t du = U[d][a] - U[d][o], dv = V[d][a] - V[d][o];
                        const int64_t c = du * du + dv * dv;
                        if (c > INT32_MAX) wrapped = true;
                        dC[d][k] = static_cast<int32_t>(static_cast<uint32_t>(c));
                    }
                const int eY = std::min(std::max(dY[0][0], dY[0][1]), std::max(dY[1][2], dY[1][3]));
                const int eC = std::min(std::max(dC[0][0], dC[0][1]), std::max(dC[1][2], dC[1][3]));
                int count[2] = {0, 0};
                for (int d = 0; d < 2; ++d)
                    for (int k = 0; k < 4; ++k)
                        if (dY[d][k] <= eY && dC[d][k] <= eC) ++count[d];
                D[id(x, y)] = count[0] - count[1];
            }
    }
    int T(int x, int y) const {
        int t = 0;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) t += D[id(x + dx, y + dy)];
        return t;
    }
};

struct Box {
    int x, y, w, h;
};
// The work blocks of a cut region, as the rules state them.
std::vector<Box> blocksOf(Box r, int W, int H, int grid) {
    auto red = [grid](int x, int y) {
        static const char* names[4] = {"BGGR", "RGGB", "GBRG", "GRBG"};
        return names[grid][(y & 1) * 2 + (x & 1)] == 'R';
    };
    int xs = std::max(r.x, 5), ys = std::max(r.y, 5);
    int wi = std::max(std::min(W - 5, r.x + r.w) - xs, 0), hi = std::max(std::min(H - 5, r.y + r.h) - ys, 0);
    if (!red(xs, 0) && !red(xs, 1)) xs += 1, wi -= 1;
    if (!red(0, ys) && !red(1, ys)) ys += 1, hi -= 1;
    wi = wi >= 0 ? wi / 2 * 2 : -1;
    hi = hi >= 0 ? hi / 2 * 2 : -1;
    if (wi < 1 || hi < 1) return {r};
    std::vector<Box> out;
    for (Box b : {Box{xs, ys, wi, hi}, Box{r.x, r.y, r.w, ys - r.y}, Box{r.x, ys + hi, r.w, r.y + r.h - ys - hi},
                  Box{r.x, ys, xs - r.x, hi}, Box{xs + wi, ys, r.x + r.w - xs - wi, hi}})
        if (b.w > 0 && b.h > 0) out.push_back(b);
    return out;
}

// ------------------------------------------------------------ driver
template <class T>
KroStatus ahd(const T* s, kroiRect roi, kroiSize size, int sStep, T* d, int dStep, int grid, T* buf, int bStep) {
    const auto g = static_cast<KroiBayerGrid>(grid);
    if constexpr (sizeof(T) == 1)
        return kroiDemosaicAHD_8u_C1C3R(s, roi, size, sStep, d, dStep, g, buf, bStep);
    else
        return kroiDemosaicAHD_16u_C1C3R(s, roi, size, sStep, d, dStep, g, buf, bStep);
}

// With a work buffer of 30 rows of 16 samples (the 8-bit calls take its first half).
Kro16u gWork[30 * 16];
KroStatus ahdAny(int e, const void* s, kroiRect roi, kroiSize size, int sStep, void* d, int dStep, int grid) {
    return e == 1 ? ahd(static_cast<const Kro8u*>(s), roi, size, sStep, static_cast<Kro8u*>(d), dStep, grid,
                        reinterpret_cast<Kro8u*>(gWork), 16)
                  : ahd(static_cast<const Kro16u*>(s), roi, size, sStep, static_cast<Kro16u*>(d), dStep, grid, gWork, 32);
}

// A work buffer of exactly 30 rows of the smallest length, `pad` canary bytes
// between rows, guarded at one end.
template <class T>
struct WorkBuf {
    int rowBytes, step;
    GuardedBuf b;
    std::vector<uint8_t> before;
    WorkBuf(int width, int pad, Guard g)
        : rowBytes((((width + 1) & ~1) + 6) * int(sizeof(T))), step(rowBytes + pad), b(size_t(step) * 29 + rowBytes, g) {
        fillRandom(b.data(), b.size());
        before.assign(b.data(), b.data() + b.size());
    }
    T* ptr() const { return reinterpret_cast<T*>(b.data()); }
    // first canary byte changed, or -1
    long paddingTouched() const {
        for (size_t i = 0; i < b.size(); ++i)
            if (int(i % step) >= rowBytes && b.data()[i] != before[i]) return long(i);
        return -1;
    }
};

// Runs one call and compares the whole destination mapping with the
// reference's pixels over the region (canaries and the rest unchanged), and
// the work buffer's padding.
template <class T>
std::string check(const Src<T>& src, kroiRect roi, int dPad, Guard dg, int bPad, Guard bg, bool* wrapped = nullptr) {
    const int W = src.m.W, H = src.m.H;
    const int x = std::max(roi.x, 0), y = std::max(roi.y, 0);
    const int w = std::min<int64_t>(roi.width, W - x), h = std::min<int64_t>(roi.height, H - y);
    if (w < 1 || h < 1) return "empty region in test";
    Plane dst(w * 3 * int(sizeof(T)), h, dPad, dg);
    auto ex = dst.snapshot();
    const AhdRef ref(src.m, kMax<T>);
    if (wrapped) *wrapped = *wrapped || ref.wrapped;
    for (const Box& b : blocksOf({x, y, w, h}, W, H, src.m.grid))
        for (int yy = b.y; yy < b.y + b.h; ++yy) {
            int dir = 0;  // 0 H, 1 V
            for (int xx = b.x; xx < b.x + b.w; ++xx) {
                const int t = ref.T(xx, yy);
                dir = t > 0 ? 0 : t < 0 ? 1 : dir;
                uint8_t* p = dst.rowIn(ex, yy - y) + size_t(xx - x) * 3 * sizeof(T);
                const int i = ref.id(xx, yy);
                setS<T>(p, T(ref.R[dir][i]));
                setS<T>(p + sizeof(T), T(ref.G[dir][i]));
                setS<T>(p + 2 * sizeof(T), T(ref.B[dir][i]));
            }
        }
    WorkBuf<T> wb(w, bPad, bg);
    const KroStatus st = ahd<T>(src.ptr(), roi, {W, H}, src.plane.step, reinterpret_cast<T*>(dst.origin()), dst.step,
                                src.m.grid, wb.ptr(), wb.step);
    if (st != kroStatusOk) return "status " + std::to_string(st);
    if (wb.paddingTouched() >= 0) return "work buffer padding written at " + std::to_string(wb.paddingTouched());
    return diffPlane(dst, ex, 3 * int(sizeof(T)));
}

// Sample patterns: full-range noise, a smooth ramp with noise (many ties),
// stripes, and extremes that make 16-bit colour distances wrap.
template <class T>
void fillPattern(Src<T>& src, int kind, std::mt19937& r) {
    const int top = kMax<T>;
    switch (kind % 4) {
        case 0: src.fill([&](int, int) { return int(r() % (top + 1)); }); break;
        case 1: src.fill([&](int x, int y) { return (x * 9 + y * 5) % 600 * (top - 2) / 600 + int(r() % 3); }); break;
        case 2: src.fill([&](int x, int y) { return ((x / 2 + y / 3) % 3) * (top / 2) + int(r() % 2); }); break;
        default: {
            // cells of saturated colours, complementary or random, as a
            // sensor would record them
            const int n = 2 + int(r() % 3), base = 1 + int(r() % 6);
            std::vector<int> cells(size_t(src.m.W / n + 1) * (src.m.H / n + 1));
            for (size_t i = 0; i < cells.size(); ++i) cells[i] = r() % 4 ? int(r() % 8) : (i & 1) ? base : 7 - base;
            src.fill([&](int x, int y) {
                const int cx = x / n, cy = y / n;
                const int c = (n & 1) ? ((cx + cy) & 1 ? base : 7 - base) : cells[size_t(cy) * (src.m.W / n + 1) + cx];
                const char k = src.m.colour(x, y);
                return (c >> (k == 'R' ? 0 : k == 'G' ? 1 : 2) & 1) ? top : 0;
            });
        }
    }
}

template <class T>
void wholeImages() {
    const int widths[] = {5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 29, 31, 37, 44, 53};
    const int heights[] = {5, 6, 7, 9, 12, 13, 16};
    std::mt19937 r(7);
    int i = 0;
    for (int grid = 0; grid < 4; ++grid)
        for (int W : widths)
            for (int H : heights) {
                ++i;
                Src<T> src(W, H, grid, i % 4 * 3, (i & 1) ? Guard::After : Guard::Before);
                fillPattern(src, i, r);
                const std::string e = check(src, {0, 0, W, H}, i % 5, (i & 2) ? Guard::Before : Guard::After, i % 3 * 2 + (i & 1),
                                            (i & 4) ? Guard::Before : Guard::After);
                ASSERT_EQ(e, "") << "grid " << grid << " " << W << "x" << H;
            }
}
TEST(DemosaicAHD, WholeImages8u) { wholeImages<Kro8u>(); }
TEST(DemosaicAHD, WholeImages16u) { wholeImages<Kro16u>(); }

// Regions anywhere, with negative offsets and ends past the image.
template <class T>
void regions() {
    std::mt19937 r(31);
    for (int i = 0; i < 600; ++i) {
        const int W = 5 + int(r() % 50), H = 5 + int(r() % 20), grid = int(r() % 4);
        const int x = int(r() % (W + 3)) - 3, y = int(r() % (H + 3)) - 3;
        const int w = 1 + int(r() % (W + 4)), h = 1 + int(r() % (H + 4));
        if (std::max(x, 0) >= W || std::max(y, 0) >= H) continue;
        Src<T> src(W, H, grid, int(r() % 7) * int(sizeof(T)), Guard::After);
        fillPattern(src, i, r);
        const std::string e = check(src, {x, y, w, h}, int(r() % 5), (i & 1) ? Guard::Before : Guard::After, int(r() % 4),
                                    (i & 2) ? Guard::Before : Guard::After);
        ASSERT_EQ(e, "") << "grid " << grid << " image " << W << "x" << H << " region " << x << "," << y << " " << w << "x" << h;
    }
}
TEST(DemosaicAHD, Regions8u) { regions<Kro8u>(); }
TEST(DemosaicAHD, Regions16u) { regions<Kro16u>(); }

// Wide images: the vector steps run many times in every stage.
TEST(DemosaicAHD, WideImages) {
    std::mt19937 r(5);
    for (int grid = 0; grid < 4; ++grid)
        for (int W : {127, 128, 131}) {
            Src<Kro8u> s8(W, 11, grid, 3, Guard::After);
            fillPattern(s8, grid, r);
            ASSERT_EQ(check(s8, {0, 0, W, 11}, 2, Guard::After, 1, Guard::After), "") << W;
            ASSERT_EQ(check(s8, {17, 3, W - 20, 7}, 0, Guard::Before, 0, Guard::Before), "") << W;
            Src<Kro16u> s16(W, 9, grid, 2, Guard::Before);
            fillPattern(s16, grid + 1, r);
            ASSERT_EQ(check(s16, {0, 0, W, 9}, 4, Guard::After, 3, Guard::Before), "") << W;
        }
}

// Extremes on 16-bit data: colour distances pass 2^31 and wrap.
TEST(DemosaicAHD, ColourDistanceWraps16u) {
    std::mt19937 r(3);
    bool wrapped = false;
    for (int grid = 0; grid < 4; ++grid) {
        Src<Kro16u> src(30, 14, grid, 0, Guard::After);
        fillPattern(src, 3, r);
        ASSERT_EQ(check(src, {0, 0, 30, 14}, 0, Guard::After, 0, Guard::After, &wrapped), "");
    }
    EXPECT_TRUE(wrapped);
}

TEST(DemosaicAHD, ConstantImage) {
    for (int grid = 0; grid < 4; ++grid)
        for (int v : {0, 77, 255}) {
            Src<Kro8u> src(19, 13, grid, 0, Guard::After);
            src.fill([v](int, int) { return v; });
            std::vector<Kro8u> d(19 * 13 * 3, 9), buf(30 * 26);
            ASSERT_EQ(ahd<Kro8u>(src.ptr(), {0, 0, 19, 13}, {19, 13}, src.plane.step, d.data(), 57, grid, buf.data(), 26),
                      kroStatusOk);
            for (Kro8u o : d) ASSERT_EQ(o, v);
        }
}

// Grid 1, 16 x 16, S = (7x + 13y) & 255.
TEST(DemosaicAHD, WorkedExample) {
    Src<Kro8u> src(16, 16, 1, 0, Guard::After);
    src.fill([](int x, int y) { return (7 * x + 13 * y) & 255; });
    Kro8u d[16][16][3], buf[30][22];
    ASSERT_EQ(ahd<Kro8u>(src.ptr(), {0, 0, 16, 16}, {16, 16}, src.plane.step, &d[0][0][0], 48, 1, &buf[0][0], 22),
              kroStatusOk);
    const int grey[5] = {146, 153, 160, 167, 174};
    for (int i = 0; i < 5; ++i)
        for (int k = 0; k < 3; ++k) EXPECT_EQ(d[8][6 + i][k], grey[i]) << i;
    const int corner[3][3] = {{0, 7, 11}, {3, 7, 11}, {14, 14, 16}};
    for (int x = 0; x < 3; ++x)
        for (int k = 0; k < 3; ++k) EXPECT_EQ(d[0][x][k], corner[x][k]) << x << " " << k;
}

TEST(DemosaicAHD, EmptyRegionWritesNothing) {
    emptyRegionsWriteNothing(ahdAny, {8, 8},
                             {{0, 0, 0, 8}, {0, 0, 8, 0}, {2, 2, -1, 3}, {8, 0, 4, 4}, {0, 9, 4, 4}, {-3, 0, 0, 4}});
}

// Mirroring the samples and then computing past the edge gives every plane
// the mirror's symmetry, so reading a mirrored plane position is the same.
TEST(DemosaicAHD, PlanesPastTheEdgeMirror) {
    std::mt19937 r(9);
    for (int grid = 0; grid < 4; ++grid)
        for (int W : {5, 6, 9})
            for (int H : {5, 8}) {
                Src<Kro16u> src(W, H, grid, 0, Guard::After);
                fillPattern(src, grid + W, r);
                const AhdRef ref(src.m, 65535);
                for (int y = -4; y < H + 4; ++y)
                    for (int x = -4; x < W + 4; ++x) {
                        const int a = ref.id(x, y), b = ref.id(AhdRef::mirror(x, W), AhdRef::mirror(y, H));
                        ASSERT_EQ(ref.D[a], ref.D[b]) << x << "," << y;
                        for (int d = 0; d < 2; ++d) {
                            ASSERT_EQ(ref.G[d][a], ref.G[d][b]);
                            ASSERT_EQ(ref.R[d][a], ref.R[d][b]);
                            ASSERT_EQ(ref.B[d][a], ref.B[d][b]);
                        }
                    }
            }
}

// A null work buffer fails only where there is work to do, after every other check.
TEST(DemosaicAHD, NullWorkBuffer) {
    Src<Kro8u> src(9, 9, 1, 0, Guard::After);
    Kro8u d[9 * 27];
    std::memset(d, 5, sizeof d);
    EXPECT_EQ(ahd<Kro8u>(src.ptr(), {0, 0, 9, 9}, {9, 9}, src.plane.step, d, 27, 1, nullptr, 16), kroStatusNullPointer);
    EXPECT_EQ(ahd<Kro8u>(src.ptr(), {0, 0, 9, 9}, {9, 9}, src.plane.step, d, 27, 5, nullptr, 16), kroStatusBadArgument);
    EXPECT_EQ(ahd<Kro8u>(src.ptr(), {0, 0, 9, 9}, {4, 9}, src.plane.step, d, 27, 1, nullptr, 16), kroStatusBadSize);
    EXPECT_EQ(ahd<Kro8u>(src.ptr(), {3, 3, 0, 9}, {9, 9}, src.plane.step, d, 27, 1, nullptr, 16), kroStatusOk);
    for (Kro8u v : d) ASSERT_EQ(v, 5);
}

// Null, whole-image size, grid; nothing written on failure (the work buffer neither).
TEST(DemosaicAHD, StatusesAndCheckOrder) {
    const kroiRect r{0, 0, 8, 8}, none{0, 0, 0, 0};
    const KroStatus N = kroStatusNullPointer, S = kroStatusBadSize, A = kroStatusBadArgument;
    std::fill(std::begin(gWork), std::end(gWork), Kro16u(44));
    statusTable(ahdAny, 3,
                {{true, false, {8, 8}, 0, r, N}, {false, true, {8, 8}, 0, r, N}, {true, true, {1, 1}, 7, none, N},
                 {false, false, {4, 8}, 0, r, S}, {false, false, {8, 4}, 0, r, S}, {false, false, {4, 4}, 4, r, S},
                 {false, false, {-5, 8}, 0, none, S}, {false, false, {8, 8}, 4, r, A}, {false, false, {8, 8}, -1, none, A},
                 {false, false, {8, 8}, 2, {0, 0, 0, 3}, kroStatusOk}, {false, false, {5, 5}, 3, {0, 0, 5, 5}, kroStatusOk}},
                [] { for (Kro16u v : gWork) ASSERT_EQ(v, 44); });
}

// A photograph mosaicked and reconstructed.
TEST(DemosaicAHD, Photograph) {
    std::vector<uint8_t> buf;
    photographAbove(
        [&buf](int, const void* s, kroiRect roi, kroiSize size, int sStep, void* d, int dStep, int grid) {
            buf.resize(30 * size_t(size.width + 8));
            return ahd(static_cast<const Kro8u*>(s), roi, size, sStep, static_cast<Kro8u*>(d), dStep, grid, buf.data(),
                       size.width + 8);
        },
        3, {0, 1, 2}, 38.0);
}

}  // namespace
