// RGB <-> YCC (8u): every operation against the reference at every column,
// statuses, exhaustive sweeps, and the model's known values.
#include <gtest/gtest.h>

#include "conv8_test.h"
#include "ref_ycc.h"

using namespace kt;

namespace {

Call plain(KroStatus (*f)(const Kro8u*, int, Kro8u*, int, kroiSize)) {
    return [f](const Kro8u* const* s, int ss, Kro8u* const* d, int ds, kroiSize r, Kro8u) {
        return f(s ? s[0] : nullptr, ss, d ? d[0] : nullptr, ds, r);
    };
}

const std::vector<Conv8>& photoPhotoYccOps() {
    static const std::vector<Conv8> ops = {
        {"kroiRGBToYCC_8u_C3R", L::C3, L::C3, A4::None, false, false, 8, ref::yccFwdMain, ref::yccFwdTail,
         Order::NullSize, plain(kroiRGBToYCC_8u_C3R)},
        {"kroiRGBToYCC_8u_AC4R", L::AC4, L::AC4, A4::Keep, false, false, 4, ref::yccFwdMain, ref::yccFwdTail,
         Order::NullSize, plain(kroiRGBToYCC_8u_AC4R)},
        {"kroiYCCToRGB_8u_C3R", L::C3, L::C3, A4::None, false, false, 8, ref::yccInvMain, ref::yccInvTail,
         Order::NullSize, plain(kroiYCCToRGB_8u_C3R)},
        {"kroiYCCToRGB_8u_AC4R", L::AC4, L::AC4, A4::Keep, false, false, 4, ref::yccInvMain, ref::yccInvTail,
         Order::NullSize, plain(kroiYCCToRGB_8u_AC4R)},
    };
    return ops;
}

class PhotoYccOp : public ::testing::TestWithParam<int> {};
TEST_P(PhotoYccOp, MatchesReferenceAtEveryColumn) { sweep(photoPhotoYccOps()[GetParam()]); }
TEST_P(PhotoYccOp, ChecksInOrderAndWritesNothingOnFailure) { checkStatuses(photoPhotoYccOps()[GetParam()]); }
TEST_P(PhotoYccOp, ExhaustiveTriples) { exhaustiveTriples(photoPhotoYccOps()[GetParam()]); }
INSTANTIATE_TEST_SUITE_P(All, PhotoYccOp, ::testing::Range(0, 4),
                         [](const ::testing::TestParamInfo<int>& i) { return std::string(photoPhotoYccOps()[i.param].name); });

// Known values: both paths agree on the corners of the model.
TEST(PhotoYccValues, CornersInMainPathAndTail) {
    struct Case {
        Kro8u in[3], out[3];
    } fwd[] = {{{255, 255, 255}, {181, 156, 137}}, {{0, 0, 0}, {0, 156, 137}}, {{255, 0, 0}, {54, 122, 232}},
               {{0, 0, 255}, {20, 254, 121}}};
    for (auto& c : fwd) {
        Kro8u src[3 * 9], dst[3 * 9];
        for (int i = 0; i < 9; ++i) std::memcpy(src + 3 * i, c.in, 3);
        ASSERT_EQ(kroiRGBToYCC_8u_C3R(src, 27, dst, 27, {9, 1}), kroStatusOk);
        for (int x : {0, 8})
            for (int k = 0; k < 3; ++k) EXPECT_EQ(dst[3 * x + k], c.out[k]) << "pixel " << x << " sample " << k;
    }
    struct Inv {
        Kro8u in[3];
        int out;
    } inv[] = {{{181, 156, 137}, 245}, {{182, 156, 137}, 247}, {{255, 156, 137}, 255}};
    for (auto& c : inv) {
        Kro8u src[3 * 9], dst[3 * 9];
        for (int i = 0; i < 9; ++i) std::memcpy(src + 3 * i, c.in, 3);
        ASSERT_EQ(kroiYCCToRGB_8u_C3R(src, 27, dst, 27, {9, 1}), kroStatusOk);
        for (int x : {0, 8})
            for (int k = 0; k < 3; ++k) EXPECT_EQ(dst[3 * x + k], c.out) << "pixel " << x << " sample " << k;
    }
}

}  // namespace
