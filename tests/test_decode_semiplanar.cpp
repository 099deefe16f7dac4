// Semi-planar 4:2:0 decoders: every operation against the reference at every
// column, statuses and their order, and the known values of D1 and D2.
#include "decode_test.h"

using namespace kt::dec;

namespace {

const std::vector<DecOp>& ops() {
    static const std::vector<DecOp> v = {
        {"kroiYCbCr420ToBGR_8u_P2C3R", Src::P2, Pk::YCbCr, 2, 2, false, Dst::C3, true, SpanR::All, ref::d1, ref::d1,
         OddR::Unwritten, nullptr, Chk::NullSize, 1, 1, call(kroiYCbCr420ToBGR_8u_P2C3R)},
        {"kroiYCbCr420ToBGR_8u_P2C4R", Src::P2, Pk::YCbCr, 2, 2, false, Dst::C4, true, SpanR::All, ref::d1, ref::d1,
         OddR::Unwritten, nullptr, Chk::NullSize, 1, 1, call(kroiYCbCr420ToBGR_8u_P2C4R)},
        {"kroiYCbCr420ToRGB_8u_P2C3R", Src::P2, Pk::YCbCr, 2, 2, false, Dst::C3, false, SpanR::All, ref::d1, ref::d1,
         OddR::Unwritten, nullptr, Chk::NullSize, 1, 1, call(kroiYCbCr420ToRGB_8u_P2C3R)},
        {"kroiYCbCr420ToRGB_8u_P2C4R", Src::P2, Pk::YCbCr, 2, 2, false, Dst::C4, false, SpanR::All, ref::d1, ref::d1,
         OddR::Unwritten, nullptr, Chk::NullSize, 1, 1, call(kroiYCbCr420ToRGB_8u_P2C4R)},
        {"kroiYCrCb420ToBGR_8u_P2C3R", Src::P2, Pk::YCbCr, 2, 2, true, Dst::C3, true, SpanR::All, ref::d2, ref::d2,
         OddR::Unwritten, nullptr, Chk::NullSize, 1, 1, call(kroiYCrCb420ToBGR_8u_P2C3R)},
        {"kroiYCrCb420ToBGR_8u_P2C4R", Src::P2, Pk::YCbCr, 2, 2, true, Dst::C4, true, SpanR::All, ref::d2, ref::d2,
         OddR::Unwritten, nullptr, Chk::SizeNull, 1, 1, call(kroiYCrCb420ToBGR_8u_P2C4R)},
        {"kroiYCrCb420ToRGB_8u_P2C3R", Src::P2, Pk::YCbCr, 2, 2, true, Dst::C3, false, SpanR::All, ref::d2, ref::d2,
         OddR::Unwritten, nullptr, Chk::NullSize, 1, 1, call(kroiYCrCb420ToRGB_8u_P2C3R)},
        {"kroiYCrCb420ToRGB_8u_P2C4R", Src::P2, Pk::YCbCr, 2, 2, true, Dst::C4, false, SpanR::All, ref::d2, ref::d2,
         OddR::Unwritten, nullptr, Chk::SizeNull, 1, 1, call(kroiYCrCb420ToRGB_8u_P2C4R)},
    };
    return v;
}

class SemiPlanar : public ::testing::TestWithParam<int> {};
TEST_P(SemiPlanar, MatchesReferenceAtEveryColumn) { sweep(ops()[GetParam()]); }
TEST_P(SemiPlanar, ChecksInOrderAndWritesNothingOnFailure) { checkStatuses(ops()[GetParam()]); }
INSTANTIATE_TEST_SUITE_P(All, SemiPlanar, ::testing::Range(0, int(ops().size())),
                         [](const ::testing::TestParamInfo<int>& i) { return std::string(ops()[i.param].name); });

// (128, 128, 128): D1 gives (130, 131, 130), D2 gives (130, 130, 130), at every column.
TEST(SemiPlanarValues, MidGrey) {
    Kro8u y[2 * 20], c[20], d1[2 * 20 * 3], d2[2 * 20 * 3];
    std::fill(std::begin(y), std::end(y), 128);
    std::fill(std::begin(c), std::end(c), 128);
    ASSERT_EQ(kroiYCbCr420ToRGB_8u_P2C3R(y, 20, c, 20, d1, 60, {20, 2}), kroStatusOk);
    ASSERT_EQ(kroiYCrCb420ToRGB_8u_P2C3R(y, 20, c, 20, d2, 60, {20, 2}), kroStatusOk);
    for (int x = 0; x < 40; ++x) {
        EXPECT_EQ(d1[3 * x], 130);
        EXPECT_EQ(d1[3 * x + 1], 131);
        EXPECT_EQ(d1[3 * x + 2], 130);
        EXPECT_EQ(d2[3 * x], 130);
        EXPECT_EQ(d2[3 * x + 1], 130);
        EXPECT_EQ(d2[3 * x + 2], 130);
    }
}

// A null address with a zero width: -8 where the addresses come first, -6 in the two Cr-first C4 forms.
TEST(SemiPlanarValues, SizeBeforeAddresses) {
    Kro8u buf[64] = {};
    EXPECT_EQ(kroiYCrCb420ToRGB_8u_P2C4R(nullptr, 4, buf, 4, buf, 16, {0, 2}, 0), kroStatusBadSize);
    EXPECT_EQ(kroiYCrCb420ToBGR_8u_P2C4R(buf, 4, nullptr, 4, buf, 16, {2, 0}, 0), kroStatusBadSize);
    EXPECT_EQ(kroiYCrCb420ToRGB_8u_P2C3R(nullptr, 4, buf, 4, buf, 16, {0, 2}), kroStatusNullPointer);
    EXPECT_EQ(kroiYCbCr420ToRGB_8u_P2C4R(nullptr, 4, buf, 4, buf, 16, {0, 2}, 0), kroStatusNullPointer);
}

}  // namespace
