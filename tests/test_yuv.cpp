// RGB <-> YUV: every operation against the independent reference at every
// column, statuses in order, exhaustive sweeps of each form, and the known
// values of the model's corners.
#include <gtest/gtest.h>

#include "conv8_test.h"

using namespace kt;

namespace {

const std::vector<Conv8>& yuvOps() {
    static const std::vector<Conv8> ops = {
        {"kroiRGBToYUV_8u_C3R", L::C3, L::C3, A4::None, false, false, 16, ref::yuvFwd4, ref::yuvFwd2,
         Order::NullSize, callOf(kroiRGBToYUV_8u_C3R)},
        {"kroiRGBToYUV_8u_C3P3R", L::C3, L::P3, A4::None, false, false, 8, ref::yuvFwd4, ref::yuvFwd2,
         Order::NullSizePlanes, callOf(kroiRGBToYUV_8u_C3P3R)},
        {"kroiRGBToYUV_8u_P3R", L::P3, L::P3, A4::None, false, false, 16, ref::yuvFwd4, ref::yuvFwd3,
         Order::NullSizePlanes, callOf(kroiRGBToYUV_8u_P3R)},
        {"kroiRGBToYUV_8u_AC4R", L::AC4, L::AC4, A4::Keep, false, false, 0, nullptr, ref::yuvFwd1, Order::NullSize,
         callOf(kroiRGBToYUV_8u_AC4R)},
        {"kroiRGBToYUV_8u_AC4P4R", L::AC4, L::P4, A4::FromSrc, false, false, 8, ref::yuvFwd5, ref::yuvFwd1,
         Order::NullSizePlanes, callOf(kroiRGBToYUV_8u_AC4P4R)},
        {"kroiYUVToRGB_8u_C3R", L::C3, L::C3, A4::None, false, false, 8, ref::yuvInv4, ref::yuvInv1,
         Order::NullSize, callOf(kroiYUVToRGB_8u_C3R)},
        {"kroiYUVToRGB_8u_AC4R", L::AC4, L::AC4, A4::Keep, false, false, 0, nullptr, ref::yuvInv1, Order::NullSize,
         callOf(kroiYUVToRGB_8u_AC4R)},
        {"kroiYUVToRGB_8u_C3C4R", L::C3, L::AC4, A4::Aval, false, false, 8, ref::yuvInv6, ref::yuvInv2,
         Order::NullSize, callOf(kroiYUVToRGB_8u_C3C4R)},
        {"kroiYUVToRGB_8u_P3C3R", L::P3, L::C3, A4::None, false, false, 16, ref::yuvInv5, ref::yuvInv3,
         Order::NullSizePlanes, callOf(kroiYUVToRGB_8u_P3C3R)},
        {"kroiYUVToRGB_8u_P3R", L::P3, L::P3, A4::None, false, false, 0, nullptr, ref::yuvInv3,
         Order::NullSizePlanes, callOf(kroiYUVToRGB_8u_P3R)},
    };
    return ops;
}

class YuvOp : public ::testing::TestWithParam<int> {};

TEST_P(YuvOp, MatchesReferenceAtEveryColumn) { sweep(yuvOps()[GetParam()]); }
TEST_P(YuvOp, ChecksInOrderAndWritesNothingOnFailure) { checkStatuses(yuvOps()[GetParam()]); }

// All 2^24 triples through the main path and through the tail (sampled under sanitizers).
TEST_P(YuvOp, ExhaustiveTriples) { exhaustiveTriples(yuvOps()[GetParam()]); }

INSTANTIATE_TEST_SUITE_P(All, YuvOp, ::testing::Range(0, 10),
                         [](const ::testing::TestParamInfo<int>& i) { return std::string(yuvOps()[i.param].name); });

// ------------------------------------------------------------ known values
// Corners of the model, as the forms give them (not through the reference).
ref::Px3 rgbToYuvAt(int x, int width, int r, int g, int b) {
    std::vector<Kro8u> src(size_t(width) * 3), dst(size_t(width) * 3);
    for (int i = 0; i < width; ++i) src[3 * i] = Kro8u(r), src[3 * i + 1] = Kro8u(g), src[3 * i + 2] = Kro8u(b);
    EXPECT_EQ(kroiRGBToYUV_8u_C3R(src.data(), 0, dst.data(), 0, {width, 1}), kroStatusOk);
    return {dst[3 * x], dst[3 * x + 1], dst[3 * x + 2]};
}

TEST(YuvValues, WhiteDependsOnColumn) {
    EXPECT_EQ(rgbToYuvAt(0, 17, 255, 255, 255), (ref::Px3{254, 127, 127}));
    EXPECT_EQ(rgbToYuvAt(16, 17, 255, 255, 255), (ref::Px3{255, 128, 128}));
    EXPECT_EQ(rgbToYuvAt(3, 17, 255, 0, 0), (ref::Px3{76, 90, 255}));
    EXPECT_EQ(rgbToYuvAt(16, 17, 255, 0, 0), (ref::Px3{76, 90, 255}));
    EXPECT_EQ(rgbToYuvAt(0, 16, 0, 255, 0)[0], 149);
    EXPECT_EQ(rgbToYuvAt(0, 16, 128, 128, 128)[0], 127);
}

TEST(YuvValues, BlackThroughFourPlanesHasOneUnitOffset) {
    Kro8u src[4 * 8] = {}, p0[8], p1[8], p2[8], p3[8];
    for (int i = 0; i < 8; ++i) src[4 * i + 3] = Kro8u(200 + i);
    Kro8u* planes[4] = {p0, p1, p2, p3};
    ASSERT_EQ(kroiRGBToYUV_8u_AC4P4R(src, 0, planes, 0, {8, 1}), kroStatusOk);
    EXPECT_EQ(p0[0], 0);
    EXPECT_EQ(p1[0], 127);
    EXPECT_EQ(p2[0], 127);
    EXPECT_EQ(p3[5], 205);
}

TEST(YuvValues, InverseCorners) {
    // (76, 84, 255): form 4 in the main path gives (220, 19, 0); C3C4R form 6 gives (221, 20, 0)
    Kro8u src[3 * 8], dst[4 * 8];
    for (int i = 0; i < 8; ++i) src[3 * i] = 76, src[3 * i + 1] = 84, src[3 * i + 2] = 255;
    ASSERT_EQ(kroiYUVToRGB_8u_C3R(src, 0, dst, 0, {8, 1}), kroStatusOk);
    EXPECT_EQ(dst[0], 220);
    EXPECT_EQ(dst[1], 19);
    EXPECT_EQ(dst[2], 0);
    ASSERT_EQ(kroiYUVToRGB_8u_C3C4R(src, 0, dst, 0, {8, 1}, 77), kroStatusOk);
    EXPECT_EQ(dst[4 * 7 + 0], 221);
    EXPECT_EQ(dst[4 * 7 + 1], 20);
    EXPECT_EQ(dst[4 * 7 + 3], 77);
}

TEST(YuvValues, ZeroStepRewritesOneRow) {
    Kro8u src[3 * 5] = {10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120, 130, 140, 150}, dst[3 * 5] = {};
    ASSERT_EQ(kroiRGBToYUV_8u_C3R(src, 0, dst, 0, {5, 7}), kroStatusOk);
    Kro8u once[3 * 5] = {};
    ASSERT_EQ(kroiRGBToYUV_8u_C3R(src, 15, once, 15, {5, 1}), kroStatusOk);
    EXPECT_EQ(0, std::memcmp(dst, once, sizeof dst));
}

}  // namespace
