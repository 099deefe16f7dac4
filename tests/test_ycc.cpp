// RGB <-> YCC (8u): every operation against the reference at every column,
// statuses, exhaustive sweeps, and the model's known values.
#include <gtest/gtest.h>

#include "conv8_test.h"
#include "ref_ycc.h"

using namespace kt;

namespace {

const std::vector<Conv8>& photoPhotoYccOps() {
    static const std::vector<Conv8> ops = {
        {"kroiRGBToYCC_8u_C3R", L::C3, L::C3, A4::None, false, false, 8, ref::yccFwdMain, ref::yccFwdTail,
         Order::NullSize, callOf(kroiRGBToYCC_8u_C3R)},
        {"kroiRGBToYCC_8u_AC4R", L::AC4, L::AC4, A4::Keep, false, false, 4, ref::yccFwdMain, ref::yccFwdTail,
         Order::NullSize, callOf(kroiRGBToYCC_8u_AC4R)},
        {"kroiYCCToRGB_8u_C3R", L::C3, L::C3, A4::None, false, false, 8, ref::yccInvMain, ref::yccInvTail,
         Order::NullSize, callOf(kroiYCCToRGB_8u_C3R)},
        {"kroiYCCToRGB_8u_AC4R", L::AC4, L::AC4, A4::Keep, false, false, 4, ref::yccInvMain, ref::yccInvTail,
         Order::NullSize, callOf(kroiYCCToRGB_8u_AC4R)},
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

// ------------------------------------------------------------ 16u, 16s, 32f
#include "convt_test.h"

namespace {

template <class T>
kt::TCall callT(KroStatus (*f)(const T*, int, T*, int, kroiSize)) {
    return [f](const void* s, int ss, void* d, int ds, kroiSize r) {
        return f(static_cast<const T*>(s), ss, static_cast<T*>(d), ds, r);
    };
}

template <class T>
kt::RefFn yccRefT(bool fwd) {
    return [fwd](const uint8_t* s, uint8_t* d, kt::Path p) {
        const T a = kt::getAt<T>(s, 0), b = kt::getAt<T>(s, 1), c = kt::getAt<T>(s, 2);
        std::array<T, 3> o{};
        if constexpr (std::is_same_v<T, Kro16u>)
            o = fwd ? (p == kt::Main ? ref::ycc16uFwdMain(a, b, c) : ref::ycc16uFwdTail(a, b, c))
                    : (p == kt::Main ? ref::ycc16uInvMain(a, b, c) : ref::ycc16uInvTail(a, b, c));
        else if constexpr (std::is_same_v<T, Kro16s>)
            o = fwd ? (p == kt::Main ? ref::ycc16sFwdMain(a, b, c) : ref::ycc16sFwdTail(a, b, c)) : ref::ycc16sInv(a, b, c);
        else
            o = fwd ? ref::ycc32fFwd(a, b, c) : ref::ycc32fInv(a, b, c);
        for (int k = 0; k < 3; ++k) kt::putAt<T>(d, k, o[size_t(k)]);
    };
}

template <class T>
kt::TCase yccCase(const char* name, bool fwd, int cn, KroStatus (*f)(const T*, int, T*, int, kroiSize)) {
    constexpr int S = sizeof(T);
    kt::FillFn fill = std::is_same_v<T, Kro16u>   ? kt::FillFn(kt::fill16u)
                      : std::is_same_v<T, Kro16s> ? kt::FillFn(kt::fill16s)
                                                  : kt::FillFn(kt::fill32f);
    return {name, S, cn, S, cn, S == 2 ? 1 : 2, 4, yccRefT<T>(fwd), kt::blockPath(4), fill, callT<T>(f)};
}

const std::vector<kt::TCase>& yccTypedCases() {
    static const std::vector<kt::TCase> cases = {
        yccCase<Kro16u>("kroiRGBToYCC_16u_C3R", true, 3, kroiRGBToYCC_16u_C3R),
        yccCase<Kro16u>("kroiRGBToYCC_16u_AC4R", true, 4, kroiRGBToYCC_16u_AC4R),
        yccCase<Kro16s>("kroiRGBToYCC_16s_C3R", true, 3, kroiRGBToYCC_16s_C3R),
        yccCase<Kro16s>("kroiRGBToYCC_16s_AC4R", true, 4, kroiRGBToYCC_16s_AC4R),
        yccCase<Kro32f>("kroiRGBToYCC_32f_C3R", true, 3, kroiRGBToYCC_32f_C3R),
        yccCase<Kro32f>("kroiRGBToYCC_32f_AC4R", true, 4, kroiRGBToYCC_32f_AC4R),
        yccCase<Kro16u>("kroiYCCToRGB_16u_C3R", false, 3, kroiYCCToRGB_16u_C3R),
        yccCase<Kro16u>("kroiYCCToRGB_16u_AC4R", false, 4, kroiYCCToRGB_16u_AC4R),
        yccCase<Kro16s>("kroiYCCToRGB_16s_C3R", false, 3, kroiYCCToRGB_16s_C3R),
        yccCase<Kro16s>("kroiYCCToRGB_16s_AC4R", false, 4, kroiYCCToRGB_16s_AC4R),
        yccCase<Kro32f>("kroiYCCToRGB_32f_C3R", false, 3, kroiYCCToRGB_32f_C3R),
        yccCase<Kro32f>("kroiYCCToRGB_32f_AC4R", false, 4, kroiYCCToRGB_32f_AC4R),
    };
    return cases;
}

class PhotoYccTyped : public ::testing::TestWithParam<int> {};
TEST_P(PhotoYccTyped, MatchesReferenceAtEveryColumnAndOffset) { kt::sweepT(yccTypedCases()[GetParam()]); }
TEST_P(PhotoYccTyped, ChecksInOrderAndWritesNothingOnFailure) { kt::checkStatusesT(yccTypedCases()[GetParam()]); }
INSTANTIATE_TEST_SUITE_P(All, PhotoYccTyped, ::testing::Range(0, int(yccTypedCases().size())),
                         [](const ::testing::TestParamInfo<int>& i) { return yccTypedCases()[i.param].name; });

// Every 16-bit value of each channel, the other two random, through the main
// path (width 4096) and the tail (width 3) of each 16-bit operation.
template <class T>
void channelSweep(KroStatus (*f)(const T*, int, T*, int, kroiSize), bool fwd) {
    const int n = 65536;
    for (int ch = 0; ch < 3; ++ch)
        for (int width : {4096, 3}) {
            const int height = (n + width - 1) / width;
            const size_t pixels = size_t(width) * size_t(height);
            std::vector<T> src(pixels * 3), dst(pixels * 3);
            for (size_t i = 0; i < pixels; ++i)
                for (int k = 0; k < 3; ++k)
                    src[i * 3 + size_t(k)] = T(k == ch ? uint16_t(i) : uint16_t(kt::rnd() >> 7));
            ASSERT_EQ(f(src.data(), width * 3 * 2, dst.data(), width * 3 * 2, {width, height}), kroStatusOk);
            const auto ref = yccRefT<T>(fwd);
            int bad = 0;
            for (size_t i = 0; i < pixels && bad < 3; ++i) {
                T want[3];
                ref(reinterpret_cast<const uint8_t*>(&src[i * 3]), reinterpret_cast<uint8_t*>(want),
                    width == 4096 ? kt::Main : kt::Tail);
                if (std::memcmp(want, &dst[i * 3], sizeof want) != 0) {
                    ++bad;
                    ADD_FAILURE() << "channel " << ch << " width " << width << " pixel " << i << ": " << dst[i * 3]
                                  << "," << dst[i * 3 + 1] << "," << dst[i * 3 + 2] << " want " << want[0] << ","
                                  << want[1] << "," << want[2];
                }
            }
        }
}
TEST(PhotoYccTypedSweep, EveryValueOfEachChannel16u) {
    channelSweep<Kro16u>(kroiRGBToYCC_16u_C3R, true);
    channelSweep<Kro16u>(kroiYCCToRGB_16u_C3R, false);
}
TEST(PhotoYccTypedSweep, EveryValueOfEachChannel16s) {
    channelSweep<Kro16s>(kroiRGBToYCC_16s_C3R, true);
    channelSweep<Kro16s>(kroiYCCToRGB_16s_C3R, false);
}

TEST(PhotoYccValues, FullScale16uInBothPaths) {
    using A = std::array<Kro16u, 3>;
    for (int x : {0, 4}) {
        EXPECT_EQ(at3<Kro16u>(kroiRGBToYCC_16u_C3R, x, 5, 65535, 65535, 65535), (A{46744, 40092, 35209}));
        EXPECT_EQ(at3<Kro16u>(kroiYCCToRGB_16u_C3R, x, 5, 46744, 40092, 35209), (A{63497, 63497, 63497}));
    }
}

TEST(PhotoYccValues, Inverse16sFloorGivesMinimum) {
    for (int x : {0, 4})
        EXPECT_EQ(at3<Kro16s>(kroiYCCToRGB_16s_C3R, x, 5, -32768, 7324, 2441),
                  (std::array<Kro16s, 3>{-32768, -32768, -32768}));
}

// 16s is 16u shifted by 32768 in the main path (the tail keeps the Y0 form
// where 16u changes to the direct matrix, so only the main path is compared).
TEST(PhotoYccValues, Forward16sIsShifted16uInMainPath) {
    for (int v : {0, 1000, 30000, 65535}) {
        const auto u = at3<Kro16u>(kroiRGBToYCC_16u_C3R, 0, 4, Kro16u(v), Kro16u(65535 - v), Kro16u(v / 3));
        const auto s = at3<Kro16s>(kroiRGBToYCC_16s_C3R, 0, 4, Kro16s(v - 32768), Kro16s(32767 - v),
                                     Kro16s(v / 3 - 32768));
        for (int k = 0; k < 3; ++k) EXPECT_EQ(int(s[size_t(k)]) + 32768, int(u[size_t(k)])) << v << " " << k;
    }
}

TEST(PhotoYccValues, Float32WhiteAndClamp) {
    for (int x : {0, 4}) {
        const auto w = at3<Kro32f>(kroiRGBToYCC_32f_C3R, x, 5, 1.0f, 1.0f, 1.0f);
        EXPECT_FLOAT_EQ(w[0], 0.7132668f);
        EXPECT_FLOAT_EQ(w[1], 0.6117647f);
        EXPECT_FLOAT_EQ(w[2], 0.5372549f);
        // far above white: every result limited to 1; far below: 0
        for (float v : at3<Kro32f>(kroiYCCToRGB_32f_C3R, x, 5, 5.0f, 0.6117647f, 0.5372549f)) EXPECT_EQ(v, 1.0f);
        for (float v : at3<Kro32f>(kroiYCCToRGB_32f_C3R, x, 5, -5.0f, 0.6117647f, 0.5372549f)) EXPECT_EQ(v, 0.0f);
    }
}

}  // namespace
