// Bayer mosaic to RGB by directional interpolation: every grid, the minimum
// and odd image sizes, regions inside larger images and past their edges,
// padded steps with canaries, guarded buffers, statuses and check order, and
// the worked examples.
#include <gtest/gtest.h>

#include "bayer_test.h"

using namespace kt;

namespace {

template <class T>
KroStatus cfa(const T* s, kroiRect roi, kroiSize size, int sStep, T* d, int dStep, int grid) {
    if constexpr (sizeof(T) == 1)
        return kroiCFAToRGB_8u_C1C3R(s, roi, size, sStep, d, dStep, static_cast<KroiBayerGrid>(grid), 0x5a5a);
    else
        return kroiCFAToRGB_16u_C1C3R(s, roi, size, sStep, d, dStep, static_cast<KroiBayerGrid>(grid), -1);
}

KroStatus cfaAny(int e, const void* s, kroiRect roi, kroiSize size, int sStep, void* d, int dStep, int grid) {
    return e == 1 ? cfa(static_cast<const Kro8u*>(s), roi, size, sStep, static_cast<Kro8u*>(d), dStep, grid)
                  : cfa(static_cast<const Kro16u*>(s), roi, size, sStep, static_cast<Kro16u*>(d), dStep, grid);
}

// Runs one region of one mosaic into a guarded destination of dw x dh pixels
// and compares the whole mapping (pixels, canaries, the unwritten rest).
template <class T>
std::string check(Src<T>& src, kroiRect roi, int dw, int dh, int dPad, Guard g) {
    Plane dst(dw * 3 * int(sizeof(T)), dh, dPad, g);
    auto expect = dst.snapshot();
    const int W = src.m.W, H = src.m.H;
    for (int y = roi.y; y < roi.y + roi.height && y < H; ++y)
        for (int x = roi.x; x < roi.x + roi.width && x < W; ++x) {
            const ref::RGB o = ref::cfaToRGB(src.m, x, y);
            uint8_t* p = dst.rowIn(expect, y - roi.y) + (x - roi.x) * 3 * sizeof(T);
            setS<T>(p, T(o.r));
            setS<T>(p + sizeof(T), T(o.g));
            setS<T>(p + 2 * sizeof(T), T(o.b));
        }
    const KroStatus st = cfa<T>(src.ptr(), roi, {W, H}, src.plane.step, reinterpret_cast<T*>(dst.origin()), dst.step,
                                src.m.grid);
    if (st != kroStatusOk) return "status " + std::to_string(st);
    return diffPlane(dst, expect, 3 * int(sizeof(T)));
}

template <class T>
void wholeImages() {
    const int widths[] = {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 35, 36, 37, 38, 41};
    const int heights[] = {2, 3, 4, 5, 6, 7, 9};
    for (int grid = 0; grid < 4; ++grid)
        for (int W : widths)
            for (int H : heights) {
                const int pad = (W + H) % 3 * 5;
                Src<T> src(W, H, grid, pad, (W & 1) ? Guard::After : Guard::Before);
                const std::string e = check(src, {0, 0, W, H}, W, H, 7 - pad % 7, (H & 1) ? Guard::Before : Guard::After);
                ASSERT_EQ(e, "") << "grid " << grid << " " << W << "x" << H;
            }
}
TEST(CFAToRGB, WholeImages8u) { wholeImages<Kro8u>(); }
TEST(CFAToRGB, WholeImages16u) { wholeImages<Kro16u>(); }

// Regions anywhere in a larger image, including ones cut at the right and
// bottom edges: the pixels are those of the whole image.
template <class T>
void regions() {
    std::mt19937 r(7);
    for (int i = 0; i < 600; ++i) {
        const int W = 2 + int(r() % 40), H = 2 + int(r() % 12), grid = int(r() % 4);
        const int x = int(r() % W), y = int(r() % H);
        const int w = 1 + int(r() % (W + 4 - x)), h = 1 + int(r() % (H + 3 - y));
        const int cw = w < W - x ? w : W - x, ch = h < H - y ? h : H - y;
        Src<T> src(W, H, grid, int(r() % 9), Guard::After);
        const std::string e = check(src, {x, y, w, h}, cw, ch, int(r() % 5), (i & 1) ? Guard::Before : Guard::After);
        ASSERT_EQ(e, "") << "grid " << grid << " image " << W << "x" << H << " region " << x << "," << y << " " << w << "x" << h;
    }
}
TEST(CFAToRGB, Regions8u) { regions<Kro8u>(); }
TEST(CFAToRGB, Regions16u) { regions<Kro16u>(); }

// The whole 16-bit range, with the largest sums of four.
TEST(CFAToRGB, ExtremeSamples16u) {
    for (int grid = 0; grid < 4; ++grid) {
        Src<Kro16u> src(29, 11, grid, 2, Guard::After);
        src.fill([](int x, int y) { return ((x * 7 + y * 3) % 5 < 2) ? 65535 : ((x + y) % 3 == 0 ? 0 : 65534); });
        ASSERT_EQ(check(src, {0, 0, 29, 11}, 29, 11, 0, Guard::After), "");
    }
}

TEST(CFAToRGB, ConstantStaysConstant) {
    for (int grid = 0; grid < 4; ++grid) {
        Src<Kro16u> src(23, 9, grid, 0, Guard::After);
        src.fill([](int, int) { return 40000; });
        std::vector<Kro16u> d(23 * 9 * 3);
        ASSERT_EQ(kroiCFAToRGB_16u_C1C3R(src.ptr(), {0, 0, 23, 9}, {23, 9}, src.plane.step, d.data(), 23 * 6,
                                         static_cast<KroiBayerGrid>(grid), 0),
                  kroStatusOk);
        for (Kro16u v : d) ASSERT_EQ(v, 40000);
    }
}

// S(x, y) = 4 x + 16 y, grid 1: the centre is a red site, dH 16 < dV 64.
TEST(CFAToRGB, ExampleRampCentre) {
    Src<Kro8u> src(5, 5, 1, 0, Guard::After);
    src.fill([](int x, int y) { return 4 * x + 16 * y; });
    Kro8u d[3];
    ASSERT_EQ(kroiCFAToRGB_8u_C1C3R(src.ptr(), {2, 2, 1, 1}, {5, 5}, src.plane.step, d, 3, kroiBayerRGGB, 0),
              kroStatusOk);
    EXPECT_EQ(d[0], 40);
    EXPECT_EQ(d[1], 40);
    EXPECT_EQ(d[2], 40);
}

// A 2 x 2 image of grid 0: B G1 / G2 R.
TEST(CFAToRGB, ExampleTwoByTwo) {
    const int B = 10, G1 = 101, G2 = 50, R = 200;
    const Kro8u s[4] = {B, G1, G2, R};
    Kro8u d[12];
    ASSERT_EQ(kroiCFAToRGB_8u_C1C3R(s, {0, 0, 2, 2}, {2, 2}, 2, d, 6, kroiBayerBGGR, 0), kroStatusOk);
    const int a = (G1 + G2 + 1) / 2;
    const int want[12] = {R, a, B, R, G1, B, R, G2, B, R, a, B};
    for (int i = 0; i < 12; ++i) EXPECT_EQ(d[i], want[i]) << i;
}

// Equal gradients on a flat chroma plane: the four-way average of the greens.
TEST(CFAToRGB, EqualGradientsTakeFourWayAverage) {
    Src<Kro8u> src(7, 7, 1, 0, Guard::After);
    // red sites all 90; greens differ so the three averages differ
    src.fill([](int x, int y) { return (x % 2 == 0 && y % 2 == 0) ? 90 : (y % 2 == 0 ? 10 + 3 * x : 100 + 7 * y); });
    Kro8u d[3];
    ASSERT_EQ(kroiCFAToRGB_8u_C1C3R(src.ptr(), {2, 2, 1, 1}, {7, 7}, src.plane.step, d, 3, kroiBayerRGGB, 0),
              kroStatusOk);
    const int u = src.m(2, 1), dn = src.m(2, 3), l = src.m(1, 2), r = src.m(3, 2);
    EXPECT_EQ(d[1], (u + dn + l + r + 2) / 4);
    EXPECT_NE(d[1], (u + dn + 1) / 2);
    EXPECT_NE(d[1], (l + r + 1) / 2);
}

TEST(CFAToRGB, EmptyRegionWritesNothing) {
    emptyRegionsWriteNothing(cfaAny, {4, 4}, {{0, 0, 0, 2}, {0, 0, 2, 0}, {0, 0, -3, 2}, {4, 0, 2, 2}, {0, 4, 2, 2}});
}

// Null, then whole-image size (width before height), then the grid; nothing written.
TEST(CFAToRGB, StatusesAndCheckOrder) {
    const kroiRect r{0, 0, 4, 4};
    const KroStatus N = kroStatusNullPointer, S = kroStatusBadSize, A = kroStatusBadArgument;
    statusTable(cfaAny, 3,
                {{true, false, {4, 4}, 0, r, N}, {false, true, {4, 4}, 0, r, N}, {true, true, {1, 1}, 9, r, N},
                 {false, false, {1, 4}, 0, r, S}, {false, false, {4, 1}, 0, r, S}, {false, false, {1, 4}, 4, r, S},
                 {false, false, {0, 0}, -1, r, S}, {false, false, {4, 4}, 4, r, A}, {false, false, {4, 4}, -1, r, A},
                 {false, false, {2, 2}, 3, r, kroStatusOk}});
}

// A photograph mosaicked and reconstructed: at least 33.5 dB away from the border.
TEST(CFAToRGB, Photograph) { photographAbove(cfaAny, 3, {0, 1, 2}, 33.5); }

// A region starting left of or above the image is cut there too; the pixel of
// (x, y) stays at (y - srcRoi.y) rows and (x - srcRoi.x) pixels from pDst.
TEST(CFAToRGB, RegionCutAtLeftAndTop) {
    Src<Kro8u> src(9, 5, 0, 0, Guard::After);
    Kro8u d[4][8][3];
    std::memset(d, 5, sizeof d);
    ASSERT_EQ(kroiCFAToRGB_8u_C1C3R(src.ptr(), {-2, -1, 8, 4}, {9, 5}, src.plane.step, &d[0][0][0], 24,
                                    kroiBayerBGGR, 0),
              kroStatusOk);
    for (int ry = 0; ry < 4; ++ry)
        for (int rx = 0; rx < 8; ++rx) {
            const int x = rx - 2, y = ry - 1;
            if (x < 0 || y < 0) {
                for (int k = 0; k < 3; ++k) ASSERT_EQ(d[ry][rx][k], 5);
                continue;
            }
            const ref::RGB o = ref::cfaToRGB(src.m, x, y);
            ASSERT_EQ(d[ry][rx][0], o.r);
            ASSERT_EQ(d[ry][rx][1], o.g);
            ASSERT_EQ(d[ry][rx][2], o.b);
        }
}

}  // namespace
