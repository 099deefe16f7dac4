// Known values and properties of the subsampled encoders: the worked block,
// the smallest regions, where the main span ends, the limits of full-swing
// BT.709, the filtered CbYCr chroma, YCrCb against YCbCr twins, and the
// aligned and unaligned forms of the YUV 4:2:2 planes.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "harness.h"
#include "krocc.h"
#include "ref_encode.h"

using namespace kt;

namespace {

// A W x H interleaved image of one colour (channel order as stored), cn samples a pixel.
std::vector<Kro8u> uniform(int W, int H, int cn, int s0, int s1, int s2) {
    std::vector<Kro8u> v(size_t(W) * H * cn, 0x5a);
    for (size_t i = 0; i < size_t(W) * H; ++i)
        v[cn * i] = Kro8u(s0), v[cn * i + 1] = Kro8u(s1), v[cn * i + 2] = Kro8u(s2);
    return v;
}

TEST(EncodeValues, WorkedBlockOfRed) {
    const int W = 8, H = 2;
    auto src = uniform(W, H, 3, 0, 0, 255);  // BGR: R = 255
    std::vector<Kro8u> y(W * H), cb(W / 2), cr(W / 2);
    Kro8u* dst[3] = {y.data(), cb.data(), cr.data()};
    const int steps[3] = {W, W / 2, W / 2};
    ASSERT_EQ(kroiBGRToYCbCr420_8u_C3P3R(src.data(), 3 * W, dst, steps, {W, H}), kroStatusOk);
    for (Kro8u v : y) EXPECT_EQ(v, 82);
    for (Kro8u v : cr) EXPECT_EQ(v, 239);
    for (Kro8u v : cb) EXPECT_EQ(v, 90);
}

TEST(EncodeValues, SmallestRegions) {
    Kro8u src[16] = {10, 200, 30, 40, 50, 60}, y[8], c[8], p1[8], p2[8];
    std::memset(y, 7, sizeof y), std::memset(c, 7, sizeof c);
    // one pixel of 4:2:0 to chroma pairs: a warning and nothing written
    EXPECT_EQ(kroiBGRToYCbCr420_8u_C3P2R(src, 3, y, 1, c, 2, {1, 1}), kroStatusOddSize);
    EXPECT_EQ(y[0], 7);
    EXPECT_EQ(c[0], 7);
    Kro8u* planes[3] = {y, p1, p2};
    const int steps[3] = {1, 1, 1};
    EXPECT_EQ(kroiBGRToYCbCr420_8u_C3P3R(src, 3, planes, steps, {1, 1}), kroStatusBadSize);
    // one pixel of 4:2:2: unwritten, refused, or Cb and Y by the odd-column rule
    Kro8u out[4] = {7, 7, 7, 7};
    EXPECT_EQ(kroiRGBToYCbCr422_8u_C3C2R(src, 3, out, 4, {1, 1}), kroStatusOk);
    EXPECT_EQ(out[0], 7);
    EXPECT_EQ(out[1], 7);
    EXPECT_EQ(kroiBGRToYCbCr422_8u_C3C2R(src, 3, out, 4, {1, 1}), kroStatusBadSize);
    EXPECT_EQ(kroiRGBToCbYCr422_8u_C3C2R(src, 3, out, 4, {1, 1}), kroStatusOk);
    const auto e1 = ref::oddColumn(1, {10, 200, 30});
    EXPECT_EQ(out[0], e1[1]);  // Cb
    EXPECT_EQ(out[1], e1[0]);  // Y
    EXPECT_EQ(out[2], 7);
    EXPECT_EQ(out[3], 7);
}

// First column of a uniform row whose luma is not the main-path value.
template <class F>
int lumaSwitch(int W, F yAt) {
    for (int x = 1; x < W; ++x)
        if (yAt(x) != yAt(0)) return x;
    return W;
}

TEST(EncodeValues, MainSpanEndsWhereTheRuleSays) {
    // a colour whose L2 and L5 differ: pixels 8 and 9 of a 10-pixel row take L5
    ref::Rgb c{0, 0, 0};
    for (int v = 0; v < 256 && ref::luma(2, c) == ref::luma(5, c); ++v) c = {v, (v * 7) % 256, (v * 13) % 256};
    ASSERT_NE(ref::luma(2, c), ref::luma(5, c));
    for (int W : {8, 10}) {
        auto src = uniform(W, 2, 3, c.b, c.g, c.r);
        std::vector<Kro8u> y(W * 2), cbcr(W);
        ASSERT_EQ(kroiBGRToYCbCr420_8u_C3P2R(src.data(), 3 * W, y.data(), W, cbcr.data(), W, {W, 2}), kroStatusOk);
        EXPECT_EQ(lumaSwitch(W, [&](int x) { return y[x]; }), 8) << W;
        if (W == 10) EXPECT_EQ(std::abs(int(y[8]) - int(y[0])), 1);
    }
    // full-swing BT.709 CbYCr from BGR: S X span; a colour whose L9 and L10 differ
    c = {0, 0, 0};
    for (int v = 0; v < 256 && ref::luma(9, c) == ref::luma(10, c); ++v) c = {(v * 5) % 256, v, (v * 11) % 256};
    ASSERT_NE(ref::luma(9, c), ref::luma(10, c));
    for (auto [W, span] : std::vector<std::pair<int, int>>{{24, 8}, {48, 32}, {40, 40}, {56, 40}, {16, 0}}) {
        auto src = uniform(W, 1, 3, c.b, c.g, c.r);
        std::vector<Kro8u> out(2 * W);
        ASSERT_EQ(kroiBGRToCbYCr422_709HDTV_8u_C3C2R(src.data(), 3 * W, out.data(), 2 * W, {W, 1}), kroStatusOk);
        const int sw = lumaSwitch(W, [&](int x) { return out[2 * x + 1]; });
        EXPECT_EQ(sw, span == 0 ? W : span) << W;
        EXPECT_EQ(out[1], span == 0 ? ref::luma(10, c) : ref::luma(9, c)) << W;
        EXPECT_EQ(out[2 * W - 1], span == W ? ref::luma(9, c) : ref::luma(10, c)) << W;
    }
}

TEST(EncodeValues, Width7In411) {
    const int W = 7, H = 2;
    auto src4 = uniform(W, H, 4, 20, 120, 220);
    auto src3 = uniform(W, H, 3, 20, 120, 220);
    for (bool ac4 : {true, false}) {
        std::vector<Kro8u> y(W * H, 3), cb(2 * H, 3), cr(2 * H, 3);
        Kro8u* dst[3] = {y.data(), cb.data(), cr.data()};
        const int steps[3] = {W, 2, 2};
        const KroStatus st = ac4 ? kroiBGRToYCbCr411_8u_AC4P3R(src4.data(), 4 * W, dst, steps, {W, H})
                                 : kroiBGRToYCbCr411_8u_C3P3R(src3.data(), 3 * W, dst, steps, {W, H});
        EXPECT_EQ(st, kroStatusOddSize);
        for (int r = 0; r < H; ++r) {
            for (int x = 0; x < W; ++x) EXPECT_EQ(y[r * W + x] != 3, ac4 || x < 4) << ac4 << " x " << x;
            EXPECT_NE(cb[2 * r], 3);
            EXPECT_EQ(cb[2 * r + 1], 3);
            EXPECT_NE(cr[2 * r], 3);
            EXPECT_EQ(cr[2 * r + 1], 3);
        }
    }
}

// Black, white, yellow and blue through every full-swing BT.709 form, at every
// column (main, tail, odd last) and row.
TEST(EncodeValues, FullSwingLimits) {
    struct Case {
        int r, g, b;
        int y, cb;  // -1: not checked
    };
    const Case cases[] = {{0, 0, 0, 1, -1}, {255, 255, 255, 254, -1}, {255, 255, 0, -1, 1}, {0, 0, 255, -1, 254}};
    for (const Case& k : cases)
        for (int W : {37, 38, 64, 75}) {
            const int H = 4;
            auto s4 = uniform(W, H, 4, k.b, k.g, k.r);
            auto s3 = uniform(W, H, 3, k.b, k.g, k.r);
            std::vector<Kro8u> out(2 * W * H);
            for (int form = 0; form < 2; ++form) {
                const KroStatus st = form == 0
                                         ? kroiBGRToCbYCr422_709HDTV_8u_AC4C2R(s4.data(), 4 * W, out.data(), 2 * W, {W, H})
                                         : kroiBGRToCbYCr422_709HDTV_8u_C3C2R(s3.data(), 3 * W, out.data(), 2 * W, {W, H});
                ASSERT_EQ(st, kroStatusOk);
                for (int i = 0; i < W * H; ++i) {
                    if (k.y >= 0) EXPECT_EQ(out[2 * i + 1], k.y) << "pixel " << i << " form " << form;
                    if (k.cb >= 0 && (i % W) % 2 == 0) EXPECT_EQ(out[2 * i], k.cb) << "pixel " << i << " form " << form;
                }
            }
            std::vector<Kro8u> y(W * H), cb(W / 2 * H / 2), cr(W / 2 * H / 2);
            Kro8u* dst[3] = {y.data(), cb.data(), cr.data()};
            const int steps[3] = {W, W / 2, W / 2};
            kroiBGRToYCbCr420_709HDTV_8u_AC4P3R(s4.data(), 4 * W, dst, steps, {W, H});
            for (int i = 0; i < H * W; ++i)
                if (k.y >= 0 && i % W < W - W % 2) EXPECT_EQ(y[i], k.y) << "4:2:0 pixel " << i;
            if (k.cb >= 0)
                for (Kro8u v : cb) EXPECT_EQ(v, k.cb) << "4:2:0";
        }
}

TEST(EncodeValues, FilteredChromaLeansTowardMidAtRowStart) {
    for (int W : {6, 32, 33}) {  // without and with a main span
        auto src = uniform(W, 1, 3, 200, 30, 60);
        std::vector<Kro8u> out(2 * W);
        ASSERT_EQ(kroiRGBToCbYCr422_8u_C3C2R(src.data(), 3 * W, out.data(), 2 * W, {W, 1}), kroStatusOk);
        for (int k : {0, 2}) {  // Cb, Cr
            const int first = out[k], second = out[4 + k];
            EXPECT_NE(first, second) << W;
            EXPECT_LT(std::abs(first - 128), std::abs(second - 128)) << W;
            for (int i = 2; i < W / 2; ++i) EXPECT_LE(std::abs(out[4 * i + k] - second), 1) << W << " pair " << i;
        }
    }
}

// ------------------------------------------------------------ YCrCb twins
using P3Fn = KroStatus (*)(const Kro8u*, int, Kro8u* const*, const int*, kroiSize);

void planarTwins(P3Fn cbFirst, P3Fn crFirst, int cn, bool swapSource) {
    for (int W : {2, 13, 16, 30, 67}) {
        const int H = 6;
        std::vector<Kro8u> src(size_t(cn) * W * H), src2;
        fillRandom(src.data(), src.size());
        src2 = src;
        if (swapSource)
            for (size_t i = 0; i + 2 < src2.size(); i += cn) std::swap(src2[i], src2[i + 2]);
        std::vector<Kro8u> a[3], b[3];
        const int steps[3] = {W, W / 2, W / 2};
        for (int k = 0; k < 3; ++k) a[k].assign(size_t(W) * H, 1), b[k].assign(size_t(W) * H, 1);
        Kro8u* pa[3] = {a[0].data(), a[1].data(), a[2].data()};
        Kro8u* pb[3] = {b[0].data(), b[1].data(), b[2].data()};
        EXPECT_EQ(cbFirst(src.data(), cn * W, pa, steps, {W, H}), crFirst(src2.data(), cn * W, pb, steps, {W, H}));
        EXPECT_EQ(a[0], b[0]) << W;
        EXPECT_EQ(a[1], b[2]) << W;
        EXPECT_EQ(a[2], b[1]) << W;
    }
}

TEST(EncodeValues, YCrCbTwinsExchangeChroma) {
    planarTwins(kroiBGRToYCbCr420_8u_C3P3R, kroiBGRToYCrCb420_8u_C3P3R, 3, false);
    planarTwins(kroiBGRToYCbCr420_8u_AC4P3R, kroiBGRToYCrCb420_8u_AC4P3R, 4, false);
    planarTwins(kroiBGRToYCbCr420_709CSC_8u_C3P3R, kroiBGRToYCrCb420_709CSC_8u_C3P3R, 3, false);
    planarTwins(kroiBGRToYCbCr420_709CSC_8u_AC4P3R, kroiBGRToYCrCb420_709CSC_8u_AC4P3R, 4, false);
    // RGB against BGR on the same colours
    planarTwins(kroiBGRToYCbCr420_8u_AC4P3R, kroiRGBToYCrCb420_8u_AC4P3R, 4, true);

    for (int W : {1, 2, 9, 16, 31, 48}) {
        const int H = 3;
        std::vector<Kro8u> src(size_t(3) * W * H);
        fillRandom(src.data(), src.size());
        std::vector<Kro8u> pl[3];
        for (int k = 0; k < 3; ++k) {
            pl[k].resize(size_t(W) * H);
            for (int i = 0; i < W * H; ++i) pl[k][i] = src[3 * i + k];
        }
        const Kro8u* planes[3] = {pl[0].data(), pl[1].data(), pl[2].data()};
        std::vector<Kro8u> a(size_t(2) * W * H, 9), b(a), c(a), d(a);
        kroiRGBToYCbCr422_8u_C3C2R(src.data(), 3 * W, a.data(), 2 * W, {W, H});
        kroiRGBToYCrCb422_8u_C3C2R(src.data(), 3 * W, b.data(), 2 * W, {W, H});
        kroiRGBToYCbCr422_8u_P3C2R(planes, W, c.data(), 2 * W, {W, H});
        kroiRGBToYCrCb422_8u_P3C2R(planes, W, d.data(), 2 * W, {W, H});
        for (int r = 0; r < H; ++r)
            for (int g = 0; g < W / 2; ++g) {
                const size_t i = size_t(2) * W * r + 4 * g;
                std::swap(b[i + 1], b[i + 3]);
                std::swap(d[i + 1], d[i + 3]);
            }
        EXPECT_EQ(a, b) << W;
        EXPECT_EQ(c, d) << W;
        EXPECT_EQ(a, c) << W;  // interleaved and planar sources give the same bytes
    }
}

// The aligned forms of the YUV 4:2:2 planes give other numbers than the
// unaligned ones for the same image: the choice is the buffers', not the caller's.
TEST(EncodeValues, YuvPlanesDependOnAlignment) {
    const int W = 64, H = 4;
    GuardedBuf srcA(3 * W * H + 16, Guard::Before), y(W * H + 16, Guard::Before), u(W * H / 2 + 16, Guard::Before),
        v(W * H / 2 + 16, Guard::Before);
    fillRandom(srcA.data(), 3 * W * H);
    std::memmove(srcA.data() + 1, srcA.data(), 3 * W * H);
    const int steps[3] = {W, W / 2, W / 2};
    Kro8u* al[3] = {y.data(), u.data(), v.data()};
    ASSERT_EQ(kroiRGBToYUV422_8u_C3P3R(srcA.data() + 1, 3 * W, al, steps, {W, H}), kroStatusOk);  // unaligned source
    std::vector<Kro8u> un[3] = {{y.data(), y.data() + W * H}, {u.data(), u.data() + W * H / 2},
                                {v.data(), v.data() + W * H / 2}};
    std::memmove(srcA.data(), srcA.data() + 1, 3 * W * H);
    ASSERT_EQ(kroiRGBToYUV422_8u_C3P3R(srcA.data(), 3 * W, al, steps, {W, H}), kroStatusOk);  // all aligned
    int differ = 0;
    for (int i = 0; i < W * H; ++i) differ += un[0][i] != y.data()[i];
    for (int i = 0; i < W * H / 2; ++i) differ += (un[1][i] != u.data()[i]) + (un[2][i] != v.data()[i]);
    EXPECT_GT(differ, 0);
}

}  // namespace
