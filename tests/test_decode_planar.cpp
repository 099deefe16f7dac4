// Planar 4:2:0 and 4:2:2 decoders (YUV, and YCbCr through D1 and the full-swing
// forms): every operation against the reference at every column, the stepless
// forms, statuses and their order, aligned and unaligned destinations.
#include "decode_test.h"

using namespace kt::dec;

namespace {

const std::vector<DecOp>& ops() {
    static const std::vector<DecOp> v = [] {
        std::vector<DecOp> o = {
            {"kroiYCbCr420ToBGR_8u_P3C3R", Src::P3, Pk::YCbCr, 2, 2, false, Dst::C3, true, SpanR::S8, ref::inv4,
             ref::inv3, OddR::Unwritten, nullptr, Chk::NullSizeDeepNull, 1, 1, call(kroiYCbCr420ToBGR_8u_P3C3R)},
            {"kroiYCbCr420ToRGB_8u_P3C3R", Src::P3, Pk::YCbCr, 2, 2, false, Dst::C3, false, SpanR::S8, ref::inv4,
             ref::inv3, OddR::Unwritten, nullptr, Chk::NullSizeDeepNull, 1, 1, call(kroiYCbCr420ToRGB_8u_P3C3R)},
            {"kroiYCrCb420ToRGB_8u_P3C4R", Src::P3, Pk::YCbCr, 2, 2, true, Dst::C4, false, SpanR::S8, ref::inv6,
             ref::inv3, OddR::Unwritten, nullptr, Chk::NullSizeDeepNull, 1, 1, call(kroiYCrCb420ToRGB_8u_P3C4R)},
            {"kroiYCbCr420ToBGR_709CSC_8u_P3C3R", Src::P3, Pk::YCbCr, 2, 2, false, Dst::C3, true, SpanR::S8, ref::inv7,
             ref::d8, OddR::Unwritten, nullptr, Chk::NullSizeDeepNull, 1, 1, call(kroiYCbCr420ToBGR_709CSC_8u_P3C3R)},
            {"kroiYCbCr422ToBGR_8u_P3C3R", Src::P3, Pk::YCbCr, 2, 1, false, Dst::C3, true, SpanR::S8, ref::inv4,
             ref::inv1, OddR::Unwritten, nullptr, Chk::DeepNullSize, 2, 1, call(kroiYCbCr422ToBGR_8u_P3C3R)},
            {"kroiYCbCr422ToRGB_8u_P3C3R", Src::P3, Pk::YCbCr, 2, 1, false, Dst::C3, false, SpanR::S8, ref::inv4,
             ref::inv1, OddR::Unwritten, nullptr, Chk::DeepNullSize, 2, 1, call(kroiYCbCr422ToRGB_8u_P3C3R)},
            {"kroiYCbCr411ToBGR_8u_P3C3R", Src::P3, Pk::YCbCr, 4, 1, false, Dst::C3, true, SpanR::All, ref::inv4,
             ref::inv4, OddR::F, ref::inv4, Chk::DeepNullSize, 4, 1, call(kroiYCbCr411ToBGR_8u_P3C3R)},
            {"kroiYCbCr411ToBGR_8u_P3C4R", Src::P3, Pk::YCbCr, 4, 1, false, Dst::C4, true, SpanR::All, ref::inv4,
             ref::inv4, OddR::F, ref::inv4, Chk::DeepNullSize, 4, 1, call(kroiYCbCr411ToBGR_8u_P3C4R)},
            {"kroiYCbCr420ToBGR_8u_P3C4R", Src::P3, Pk::YCbCr, 2, 2, false, Dst::C4, true, SpanR::All, ref::d1,
             ref::d1, OddR::Unwritten, nullptr, Chk::NullSizeDeepNull, 1, 1, call(kroiYCbCr420ToBGR_8u_P3C4R)},
            {"kroiYCbCr420ToBGR_709HDTV_8u_P3C4R", Src::P3, Pk::YCbCr, 2, 2, false, Dst::C4, true, SpanR::S8, ref::h3,
             ref::h2, OddR::Unwritten, nullptr, Chk::NullSizeDeepNull, 1, 1,
             call(kroiYCbCr420ToBGR_709HDTV_8u_P3C4R)},
            {"kroiYUV420ToBGR_8u_P3C3R", Src::P3, Pk::YCbCr, 2, 2, false, Dst::C3, true, SpanR::All, ref::y1, ref::y1,
             OddR::Unwritten, nullptr, Chk::NullSizeDeepNull, 2, 2, call(kroiYUV420ToBGR_8u_P3C3R)},
            {"kroiYUV420ToRGB_8u_P3C3R", Src::P3, Pk::YCbCr, 2, 2, false, Dst::C3, false, SpanR::All, ref::y2, ref::y2,
             OddR::Unwritten, nullptr, Chk::NullSizeDeepNull, 1, 1, call(kroiYUV420ToRGB_8u_P3C3R)},
            {"kroiYUV420ToRGB_8u_P3R", Src::P3, Pk::YCbCr, 2, 2, false, Dst::P3, false, SpanR::All, ref::y4, ref::y4,
             OddR::Unwritten, nullptr, Chk::NullSizeDeepNull, 1, 1, call(kroiYUV420ToRGB_8u_P3R)},
            {"kroiYUV420ToRGB_8u_P3AC4R", Src::P3, Pk::YCbCr, 2, 2, false, Dst::AC4Zero, false, SpanR::S4, ref::y3,
             ref::y5, OddR::Unwritten, nullptr, Chk::NullSizeDeepNull, 1, 1, call(kroiYUV420ToRGB_8u_P3AC4R)},
            {"kroiYUV420ToRGB_8u_P3C3", Src::P3, Pk::YCbCr, 2, 2, false, Dst::C3, false, SpanR::All, ref::y2, ref::y2,
             OddR::Unwritten, nullptr, Chk::NullSizeDeepNull, 1, 1, call(kroiYUV420ToRGB_8u_P3C3), true},
            {"kroiYUV420ToRGB_8u_P3", Src::P3, Pk::YCbCr, 2, 2, false, Dst::P3, false, SpanR::All, ref::y4, ref::y4,
             OddR::Unwritten, nullptr, Chk::NullSizeDeepNull, 1, 1, call(kroiYUV420ToRGB_8u_P3), true},
            {"kroiYUV422ToRGB_8u_P3C3R", Src::P3, Pk::YCbCr, 2, 1, false, Dst::C3, false, SpanR::S16, ref::y2, ref::y4,
             OddR::Plain, ref::y6, Chk::NullSizeDeepNull, 1, 1, call(kroiYUV422ToRGB_8u_P3C3R)},
            {"kroiYUV422ToRGB_8u_P3R", Src::P3, Pk::YCbCr, 2, 1, false, Dst::P3, false, SpanR::S16, ref::y2, ref::y4,
             OddR::Plain, ref::y6, Chk::NullSizeDeepNull, 1, 1, call(kroiYUV422ToRGB_8u_P3R)},
            {"kroiYUV422ToRGB_8u_P3AC4R", Src::P3, Pk::YCbCr, 2, 1, false, Dst::AC4Zero, false, SpanR::S4, ref::y3,
             ref::y4, OddR::Plain, ref::y6, Chk::NullSizeDeepNull, 1, 1, call(kroiYUV422ToRGB_8u_P3AC4R)},
            {"kroiYUV422ToRGB_8u_P3C3", Src::P3, Pk::YCbCr, 2, 1, false, Dst::C3, false, SpanR::S16, ref::y2, ref::y4,
             OddR::Plain, ref::y6, Chk::NullSizeDeepNull, 1, 1, call(kroiYUV422ToRGB_8u_P3C3), true, true},
            {"kroiYUV422ToRGB_8u_P3", Src::P3, Pk::YCbCr, 2, 1, false, Dst::P3, false, SpanR::S16, ref::y2, ref::y4,
             OddR::Plain, ref::y6, Chk::NullSizeDeepNull, 1, 1, call(kroiYUV422ToRGB_8u_P3), true, true},
        };
        return o;
    }();
    return v;
}

class Planar : public ::testing::TestWithParam<int> {};
TEST_P(Planar, MatchesReferenceAtEveryColumn) { sweep(ops()[GetParam()]); }
TEST_P(Planar, ChecksInOrderAndWritesNothingOnFailure) { checkStatuses(ops()[GetParam()]); }
INSTANTIATE_TEST_SUITE_P(All, Planar, ::testing::Range(0, int(ops().size())),
                         [](const ::testing::TestParamInfo<int>& i) { return std::string(ops()[i.param].name); });

const DecOp& op(const std::string& name) {
    for (auto& o : ops())
        if (name == o.name) return o;
    throw std::runtime_error(name);
}

TEST(PlanarValues, AlignedDestinationGivesTheSameBytes) {
    for (int w : {4, 8, 16, 37, 64, 67}) alignedTwins(op("kroiYUV422ToRGB_8u_P3AC4R"), w, 3);
}

// Stepless 4:2:2: 16 x 16 runs as one row (no tail); 20 x 13 as one row of 260
// pixels whose last 4 take the tail form; 18 x 14 = 252 runs row by row.
TEST(PlanarValues, SteplessWholeImage) {
    for (kroiSize r : {kroiSize{16, 16}, kroiSize{20, 13}, kroiSize{18, 14}, kroiSize{34, 8}, kroiSize{7, 40}})
        for (const char* n : {"kroiYUV422ToRGB_8u_P3C3", "kroiYUV422ToRGB_8u_P3"})
            ASSERT_EQ(runOnce(op(n), r.width, r.height, 0, kt::Guard::After, false), "") << n << " " << r.width << "x"
                                                                                         << r.height;
}

// The fourth sample of the AC4 destinations is 0 in every written pixel; aval
// stands in every pixel of the C4 ones, main path and tail.
TEST(PlanarValues, FourthSample) {
    const int w = 13, h = 2;
    Kro8u y[w * h], u[8 * h], v[8 * h], d[4 * w * h];
    std::fill(std::begin(y), std::end(y), 100);
    std::fill(std::begin(u), std::end(u), 90);
    std::fill(std::begin(v), std::end(v), 200);
    const Kro8u* src[3] = {y, u, v};
    const int steps[3] = {w, 8, 8};
    std::fill(std::begin(d), std::end(d), 9);
    ASSERT_EQ(kroiYUV422ToRGB_8u_P3AC4R(src, steps, d, 4 * w, {w, h}), kroStatusOk);
    for (int i = 0; i < w * h; ++i) EXPECT_EQ(d[4 * i + 3], 0) << i;
    std::fill(std::begin(d), std::end(d), 9);
    ASSERT_EQ(kroiYUV420ToRGB_8u_P3AC4R(src, steps, d, 4 * w, {w, h}), kroStatusOddSize);
    for (int i = 0; i < w * h; ++i) EXPECT_EQ(d[4 * i + 3], i % w == w - 1 ? 9 : 0) << i;
    std::fill(std::begin(d), std::end(d), 9);
    ASSERT_EQ(kroiYCbCr420ToBGR_709HDTV_8u_P3C4R(src, steps, d, 4 * w, {w, h}, 55), kroStatusOddSize);
    for (int i = 0; i < w * h; ++i) EXPECT_EQ(d[4 * i + 3], i % w == w - 1 ? 9 : 55) << i;
}

// 4:2:2 planes: W = 5 leaves pixel 4 unwritten and returns 0; 4:1:1 with W = 6
// writes all six, pixels 4 and 5 from block 0; 4:2:0 with H = 1 writes nothing.
TEST(PlanarValues, OddWidths) {
    Kro8u y[8] = {40, 80, 120, 160, 200, 240, 30, 60}, cb[4] = {60, 200, 9, 9}, cr[4] = {190, 70, 9, 9};
    const Kro8u* src[3] = {y, cb, cr};
    const int steps[3] = {8, 4, 4};
    Kro8u d[3 * 8];
    std::fill(std::begin(d), std::end(d), 3);
    ASSERT_EQ(kroiYCbCr422ToBGR_8u_P3C3R(src, steps, d, 24, {5, 1}), kroStatusOk);
    for (int k = 12; k < 24; ++k) EXPECT_EQ(d[k], 3) << k;
    std::fill(std::begin(d), std::end(d), 3);
    ASSERT_EQ(kroiYCbCr411ToBGR_8u_P3C3R(src, steps, d, 24, {6, 1}), kroStatusOk);
    for (int x = 4; x < 6; ++x) {
        const ref::Px3 e = ref::d7(y[x], cb[0], cr[0]);
        EXPECT_EQ(d[3 * x], e[2]);
        EXPECT_EQ(d[3 * x + 1], e[1]);
        EXPECT_EQ(d[3 * x + 2], e[0]);
    }
    EXPECT_EQ(d[18], 3);
    std::fill(std::begin(d), std::end(d), 3);
    ASSERT_EQ(kroiYCbCr420ToRGB_8u_P3C3R(src, steps, d, 24, {8, 1}), kroStatusOddSize);
    for (int k = 0; k < 24; ++k) EXPECT_EQ(d[k], 3) << k;
}

// A step array is no image address: null is refused only once the region has
// passed its checks, and before anything is read.
TEST(PlanarValues, NullStepArray) {
    Kro8u b[64] = {};
    const Kro8u* src[3] = {b, b, b};
    EXPECT_EQ(kroiYCbCr420ToRGB_8u_P3C3R(src, nullptr, b, 12, {4, 2}), kroStatusNullPointer);
    EXPECT_EQ(kroiYCbCr420ToRGB_8u_P3C3R(src, nullptr, b, 12, {0, 2}), kroStatusBadSize);
    EXPECT_EQ(kroiYCbCr422ToBGR_8u_P3C3R(src, nullptr, b, 12, {1, 1}), kroStatusBadSize);
    EXPECT_EQ(kroiYCbCr411ToBGR_8u_P3C3R(src, nullptr, b, 12, {3, 1}), kroStatusBadSize);
    EXPECT_EQ(kroiYCbCr422ToRGB_8u_P3C3R(src, nullptr, b, 12, {4, 1}), kroStatusNullPointer);
    EXPECT_EQ(kroiYCbCr411ToBGR_8u_P3C4R(src, nullptr, b, 16, {4, 1}, 0), kroStatusNullPointer);
    EXPECT_EQ(kroiYUV422ToRGB_8u_P3AC4R(src, nullptr, b, 16, {4, 1}), kroStatusNullPointer);
}

TEST(PlanarValues, Yuv420NeedsTwoByTwo) {
    Kro8u b[64] = {};
    const Kro8u* src[3] = {b, b, b};
    const int steps[3] = {4, 2, 2};
    EXPECT_EQ(kroiYUV420ToBGR_8u_P3C3R(src, steps, b, 12, {1, 2}), kroStatusBadSize);
    EXPECT_EQ(kroiYUV420ToBGR_8u_P3C3R(src, steps, b, 12, {2, 1}), kroStatusBadSize);
    EXPECT_EQ(kroiYUV420ToBGR_8u_P3C3R(src, steps, b, 12, {3, 2}), kroStatusOddSize);
    EXPECT_EQ(kroiYUV420ToRGB_8u_P3C3R(src, steps, b, 12, {1, 1}), kroStatusOddSize);
}

}  // namespace
