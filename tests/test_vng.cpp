// Bayer mosaic to BGRA by a variable number of gradients: every grid, the
// minimum and odd image sizes, regions, gains, the kept fourth sample, the
// frame copies, padded steps with canaries, guarded buffers, statuses and
// check order, the _L twins and the worked examples.
#include <gtest/gtest.h>

#include "bayer_test.h"

using namespace kt;

namespace {

template <class T>
KroStatus vng(const T* s, kroiRect roi, kroiSize size, int sStep, const float* scale, T* d, int dStep, int grid,
              bool L = false) {
    const auto g = static_cast<KroiBayerGrid>(grid);
    const kroiSizeL sl{size.width, size.height};
    if constexpr (sizeof(T) == 1)
        return L ? kroiCFAToBGRA_VNG_8u_C1C4R_L(s, roi, sl, sStep, scale, d, dStep, g)
                 : kroiCFAToBGRA_VNG_8u_C1C4R(s, roi, size, sStep, scale, d, dStep, g);
    else
        return L ? kroiCFAToBGRA_VNG_16u_C1C4R_L(s, roi, sl, sStep, scale, d, dStep, g)
                 : kroiCFAToBGRA_VNG_16u_C1C4R(s, roi, size, sStep, scale, d, dStep, g);
}

// The plain entry or its _L twin; gains for the 8-bit calls (unless `plain`), none for the 16-bit ones.
template <bool L, bool plain = false>
KroStatus vngAny(int e, const void* s, kroiRect roi, kroiSize size, int sStep, void* d, int dStep, int grid) {
    static const float g[3] = {0.5f, 1.0f, 2.0f};
    return e == 1 ? vng(static_cast<const Kro8u*>(s), roi, size, sStep, plain ? nullptr : g, static_cast<Kro8u*>(d), dStep,
                        grid, L)
                  : vng(static_cast<const Kro16u*>(s), roi, size, sStep, nullptr, static_cast<Kro16u*>(d), dStep, grid, L);
}

// The expected destination, written as the rules say: inner pixels of the
// region (fourth sample kept), then the frame copies in their order.
template <class T>
void expectVng(const Src<T>& src, kroiRect roi, const float* scale, const Plane& dst, std::vector<uint8_t>& ex) {
    const int W = src.m.W, H = src.m.H, top = kMax<T>;
    const int x0 = roi.x, y0 = roi.y;
    const int x1 = std::min(W, roi.x + roi.width), y1 = std::min(H, roi.y + roi.height);
    auto at = [&](int x, int y) { return dst.rowIn(ex, y - y0) + (x - x0) * 4 * sizeof(T); };
    const int ix0 = std::max(x0, 2), ix1 = std::min(x1, W - 2), iy0 = std::max(y0, 2), iy1 = std::min(y1, H - 2);
    for (int y = iy0; y < iy1; ++y)
        for (int x = ix0; x < ix1; ++x) {
            const ref::RGB o = ref::vngInner(src.m, x, y, scale, top);
            setS<T>(at(x, y), T(o.b));
            setS<T>(at(x, y) + sizeof(T), T(o.g));
            setS<T>(at(x, y) + 2 * sizeof(T), T(o.r));
        }
    auto copy = [&](int fx, int fy, int tx, int ty) { std::memmove(at(tx, ty), at(fx, fy), 4 * sizeof(T)); };
    for (int y = iy0; y < iy1; ++y) {
        if (roi.x == 0) copy(ix0, y, 0, y);
        if (roi.x < 2) copy(ix0, y, 1, y);
        if (x0 <= W - 2 && W - 2 < x1) copy(ix1 - 1, y, W - 2, y);
        if (x0 <= W - 1 && W - 1 < x1) copy(ix1 - 1, y, W - 1, y);
    }
    for (int x = x0; x < x1; ++x) {
        if (roi.y == 0) copy(x, iy0, x, 0);
        if (roi.y < 2) copy(x, iy0, x, 1);
        if (y0 <= H - 2 && H - 2 < y1) copy(x, iy1 - 1, x, H - 2);
        if (y0 <= H - 1 && H - 1 < y1) copy(x, iy1 - 1, x, H - 1);
    }
}

template <class T>
std::string check(const Src<T>& src, kroiRect roi, const float* scale, int dw, int dh, int dPad, Guard g,
                  bool L = false) {
    Plane dst(dw * 4 * int(sizeof(T)), dh, dPad, g);
    auto ex = dst.snapshot();
    expectVng(src, roi, scale, dst, ex);
    const KroStatus st = vng<T>(src.ptr(), roi, {src.m.W, src.m.H}, src.plane.step, scale,
                                reinterpret_cast<T*>(dst.origin()), dst.step, src.m.grid, L);
    if (st != kroStatusOk) return "status " + std::to_string(st);
    return diffPlane(dst, ex, 4 * int(sizeof(T)));
}

const float kGains[][3] = {{1.0f, 1.0f, 1.0f}, {0.5f, 1.0f, 2.0f}, {1.37f, 0.81f, 1.03f}, {3.0f, 0.0f, 0.999f}};

template <class T>
void wholeImages() {
    const int widths[] = {5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 27, 28, 29, 30, 31, 37};
    const int heights[] = {5, 6, 7, 8, 11};
    int i = 0;
    for (int grid = 0; grid < 4; ++grid)
        for (int W : widths)
            for (int H : heights) {
                ++i;
                Src<T> src(W, H, grid, i % 4 * 3, (i & 1) ? Guard::After : Guard::Before);
                const float* scale = (i % 3 == 0) ? nullptr : kGains[i % 4];
                const std::string e = check(src, {0, 0, W, H}, scale, W, H, i % 5, (i & 2) ? Guard::Before : Guard::After);
                ASSERT_EQ(e, "") << "grid " << grid << " " << W << "x" << H;
            }
}
TEST(CFAToBGRA_VNG, WholeImages8u) { wholeImages<Kro8u>(); }
TEST(CFAToBGRA_VNG, WholeImages16u) { wholeImages<Kro16u>(); }

// Regions holding at least one inner pixel, anywhere in the image, also cut at
// the right and bottom edges, through both entries.
template <class T>
void regions() {
    std::mt19937 r(11);
    for (int i = 0; i < 500; ++i) {
        const int W = 5 + int(r() % 36), H = 5 + int(r() % 9), grid = int(r() % 4);
        const int x = int(r() % (W - 2)), y = int(r() % (H - 2));
        const int xmin = x < 2 ? 3 - x : 1, ymin = y < 2 ? 3 - y : 1;  // reach an inner pixel
        const int w = xmin + int(r() % (W + 4 - x - xmin + 1)), h = ymin + int(r() % (H + 3 - y - ymin + 1));
        const int cw = std::min(w, W - x), ch = std::min(h, H - y);
        Src<T> src(W, H, grid, int(r() % 7), Guard::After);
        const float* scale = (i % 4 == 0) ? nullptr : kGains[i % 4];
        const std::string e = check(src, {x, y, w, h}, scale, cw, ch, int(r() % 5), (i & 1) ? Guard::Before : Guard::After, i & 2);
        ASSERT_EQ(e, "") << "grid " << grid << " image " << W << "x" << H << " region " << x << "," << y << " " << w << "x" << h;
    }
}
TEST(CFAToBGRA_VNG, Regions8u) { regions<Kro8u>(); }
TEST(CFAToBGRA_VNG, Regions16u) { regions<Kro16u>(); }

// Ramps and steps in the whole 16-bit range; results reach 0 and 65535.
TEST(CFAToBGRA_VNG, FullRange16u) {
    for (int grid = 0; grid < 4; ++grid) {
        Src<Kro16u> src(26, 9, grid, 0, Guard::After);
        src.fill([](int x, int y) { return (x * 5 + y * 3) % 7 < 3 ? 65535 : ((x ^ y) & 1 ? 0 : 60000); });
        ASSERT_EQ(check(src, {0, 0, 26, 9}, nullptr, 26, 9, 0, Guard::After), "");
        const float g[3] = {4.0f, 1.5f, 100.0f};
        ASSERT_EQ(check(src, {0, 0, 26, 9}, g, 26, 9, 2, Guard::Before), "");
    }
}

TEST(CFAToBGRA_VNG, ConstantImageAllDirections) {
    for (int grid = 0; grid < 4; ++grid) {
        Src<Kro8u> src(21, 8, grid, 0, Guard::After);
        src.fill([](int, int) { return 131; });
        std::vector<Kro8u> d(21 * 8 * 4, 17);
        ASSERT_EQ(vng<Kro8u>(src.ptr(), {0, 0, 21, 8}, {21, 8}, src.plane.step, nullptr, d.data(), 84, grid), kroStatusOk);
        for (size_t i = 0; i < d.size(); ++i) ASSERT_EQ(d[i], i % 4 == 3 ? 17 : 131) << i;
    }
}

// S(x, y) = 3 x^2 + 5 y + x y on 5 x 5: only the centre is computed.
TEST(CFAToBGRA_VNG, ExampleFiveByFive) {
    for (int grid : {1, 0}) {
        Src<Kro8u> src(5, 5, grid, 0, Guard::After);
        src.fill([](int x, int y) { return 3 * x * x + 5 * y + x * y; });
        Kro8u d[5][5][4];
        std::memset(d, 17, sizeof d);
        ASSERT_EQ(vng<Kro8u>(src.ptr(), {0, 0, 5, 5}, {5, 5}, src.plane.step, nullptr, &d[0][0][0], 20, grid), kroStatusOk);
        const int wantR = grid == 1 ? 26 : 25, wantB = grid == 1 ? 25 : 26;
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 5; ++x) {
                EXPECT_EQ(d[y][x][0], wantB) << x << "," << y;
                EXPECT_EQ(d[y][x][1], 25);
                EXPECT_EQ(d[y][x][2], wantR);
                EXPECT_EQ(d[y][x][3], 17);
            }
    }
}

// Gains 0.5, 1, 2: blue halved, red doubled, saturating at the top.
TEST(CFAToBGRA_VNG, GainsRunBlueFirst) {
    Src<Kro8u> src(16, 9, 1, 0, Guard::After);
    std::vector<Kro8u> plain(16 * 9 * 4), scaled(16 * 9 * 4);
    const float g[3] = {0.5f, 1.0f, 2.0f};
    ASSERT_EQ(vng<Kro8u>(src.ptr(), {0, 0, 16, 9}, {16, 9}, src.plane.step, nullptr, plain.data(), 64, 1), kroStatusOk);
    ASSERT_EQ(vng<Kro8u>(src.ptr(), {0, 0, 16, 9}, {16, 9}, src.plane.step, g, scaled.data(), 64, 1), kroStatusOk);
    bool saturated = false;
    for (size_t i = 0; i < plain.size(); i += 4) {
        EXPECT_EQ(scaled[i], int(std::nearbyint(plain[i] * 0.5f)));
        EXPECT_EQ(scaled[i + 1], plain[i + 1]);
        EXPECT_EQ(scaled[i + 2], std::min(255, 2 * plain[i + 2]));
        saturated |= 2 * plain[i + 2] > 255;
    }
    EXPECT_TRUE(saturated);
    const float ones[3] = {1.0f, 1.0f, 1.0f};
    ASSERT_EQ(vng<Kro8u>(src.ptr(), {0, 0, 16, 9}, {16, 9}, src.plane.step, ones, scaled.data(), 64, 1), kroStatusOk);
    EXPECT_EQ(scaled, plain);
}

// Regions ending at W - 3 / H - 3 get no frame there, at W - 2 / H - 2 one
// column or row; the rest of the destination stays.
TEST(CFAToBGRA_VNG, FrameAtRegionEnds) {
    Src<Kro8u> src(20, 12, 3, 0, Guard::After);
    for (int xe : {17, 18, 19, 20})
        for (int ye : {9, 10, 11, 12}) {
            ASSERT_EQ(check(src, {0, 0, xe, ye}, nullptr, 22, 14, 0, Guard::After), "") << xe << " " << ye;
            ASSERT_EQ(check(src, {1, 1, xe - 1, ye - 1}, nullptr, xe - 1, ye - 1, 3, Guard::After), "") << xe << " " << ye;
            ASSERT_EQ(check(src, {3, 2, xe - 3, ye - 2}, nullptr, xe - 3, ye - 2, 1, Guard::After), "") << xe << " " << ye;
        }
}

// A region wholly inside the frame: each pixel takes the value of its nearest
// inner pixel; nothing outside the region is written.
TEST(CFAToBGRA_VNG, RegionWhollyInFrame) {
    Src<Kro8u> src(12, 9, 2, 0, Guard::After);
    std::vector<Kro8u> whole(12 * 9 * 4, 9);
    ASSERT_EQ(vng<Kro8u>(src.ptr(), {0, 0, 12, 9}, {12, 9}, src.plane.step, nullptr, whole.data(), 48, 2), kroStatusOk);
    for (kroiRect r : {kroiRect{0, 0, 2, 9}, kroiRect{10, 3, 5, 4}, kroiRect{3, 7, 6, 2}, kroiRect{0, 0, 12, 2}}) {
        const int w = std::min(r.width, 12 - r.x), h = std::min(r.height, 9 - r.y);
        Plane dst(w * 4, h, 0, Guard::After);
        std::memset(dst.buf.data(), 9, dst.buf.size());
        ASSERT_EQ(vng<Kro8u>(src.ptr(), r, {12, 9}, src.plane.step, nullptr, dst.origin(), dst.step, 2), kroStatusOk);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w * 4; ++x) ASSERT_EQ(dst.row(y)[x], whole[(r.y + y) * 48 + r.x * 4 + x]);
    }
}

TEST(CFAToBGRA_VNG, EmptyRegionWritesNothing) {
    for (auto call : {vngAny<false>, vngAny<true>})
        emptyRegionsWriteNothing(call, {8, 8}, {{0, 0, 0, 8}, {0, 0, 8, 0}, {2, 2, -1, 3}, {9, 0, 4, 4}});
}

// Null source, then null destination, then width, then height (below 5), then grid.
TEST(CFAToBGRA_VNG, StatusesAndCheckOrder) {
    const kroiRect r{0, 0, 8, 8}, none{0, 0, 0, 0};
    const KroStatus N = kroStatusNullPointer, S = kroStatusBadSize, A = kroStatusBadArgument;
    for (auto call : {vngAny<false>, vngAny<true>})
        statusTable(call, 4,
                    {{true, false, {8, 8}, 0, r, N}, {false, true, {8, 8}, 0, r, N}, {true, true, {1, 1}, 7, none, N},
                     {false, false, {4, 8}, 0, r, S}, {false, false, {8, 4}, 0, r, S}, {false, false, {4, 4}, 4, r, S},
                     {false, false, {4, 8}, 0, none, S}, {false, false, {8, 8}, 4, r, A},
                     {false, false, {8, 8}, -2, none, A}, {false, false, {8, 8}, 2, {0, 0, 0, 3}, kroStatusOk},
                     {false, false, {5, 5}, 2, {0, 0, 5, 5}, kroStatusOk}});
}

// A photograph mosaicked and reconstructed: at least 34 dB inside the frame.
TEST(CFAToBGRA_VNG, Photograph) { photographAbove(vngAny<false, true>, 4, {2, 1, 0}, 34.0); }

}  // namespace
