// RGB <-> XYZ: every operation against the independent reference at every
// column and start offset, the check order, exhaustive sweeps of the 8u main
// path and tail, extreme float values bit for bit, and the known values.
#include <gtest/gtest.h>

#include <cmath>

#include "convt_test.h"
#include "ref_xyz.h"

using namespace kt;

namespace {

template <class T>
RefFn xyzRef(bool toXyz) {
    return [toXyz](const uint8_t* s, uint8_t* d, Path p) {
        if constexpr (std::is_same_v<T, Kro8u>) {
            const bool m = p == Main;
            const ref::Tri o = toXyz ? (m ? ref::xyz8Main(s[0], s[1], s[2]) : ref::xyz8Tail(s[0], s[1], s[2]))
                                     : (m ? ref::rgb8Main(s[0], s[1], s[2]) : ref::rgb8Tail(s[0], s[1], s[2]));
            for (int k = 0; k < 3; ++k) d[k] = uint8_t(o[k]);
        } else {
            const float(&m)[3][3] = toXyz ? ref::kXyzF : ref::kRgbF;
            const T in[3] = {getAt<T>(s, 0), getAt<T>(s, 1), getAt<T>(s, 2)};
            if constexpr (std::is_same_v<T, Kro16u>) {
                const auto o = ref::matrix16u(m, in);
                for (int k = 0; k < 3; ++k) putAt<T>(d, k, o[size_t(k)]);
            } else if constexpr (std::is_same_v<T, Kro16s>) {
                const auto o = ref::matrix16s(m, in);
                for (int k = 0; k < 3; ++k) putAt<T>(d, k, o[size_t(k)]);
            } else {
                const auto o = ref::matrix32f(m, toXyz, in);
                for (int k = 0; k < 3; ++k) putAt<T>(d, k, o[size_t(k)]);
            }
        }
    };
}

template <class T>
TCall callOf(KroStatus (*f)(const T*, int, T*, int, kroiSize)) {
    return [f](const void* s, int ss, void* d, int ds, kroiSize r) {
        return f(static_cast<const T*>(s), ss, static_cast<T*>(d), ds, r);
    };
}

template <class T>
TCase xyzCase(const char* name, bool toXyz, int cn, KroStatus (*f)(const T*, int, T*, int, kroiSize)) {
    constexpr int S = sizeof(T);
    const int block = S == 1 ? (cn == 3 ? 8 : 4) : 4;
    const int shift = S == 1 ? 0 : S == 2 ? 1 : 2;
    FillFn fill = S == 1 ? FillFn(fill8u)
                         : std::is_same_v<T, Kro16u> ? FillFn(fill16u)
                                                     : std::is_same_v<T, Kro16s> ? FillFn(fill16s) : FillFn(fill32f);
    return {name, S, cn, S, cn, shift, block, xyzRef<T>(toXyz), blockPath(block), fill, callOf<T>(f)};
}

const std::vector<TCase>& xyzCases() {
    static const std::vector<TCase> cases = {
        xyzCase<Kro8u>("kroiRGBToXYZ_8u_C3R", true, 3, kroiRGBToXYZ_8u_C3R),
        xyzCase<Kro8u>("kroiRGBToXYZ_8u_AC4R", true, 4, kroiRGBToXYZ_8u_AC4R),
        xyzCase<Kro16u>("kroiRGBToXYZ_16u_C3R", true, 3, kroiRGBToXYZ_16u_C3R),
        xyzCase<Kro16u>("kroiRGBToXYZ_16u_AC4R", true, 4, kroiRGBToXYZ_16u_AC4R),
        xyzCase<Kro16s>("kroiRGBToXYZ_16s_C3R", true, 3, kroiRGBToXYZ_16s_C3R),
        xyzCase<Kro16s>("kroiRGBToXYZ_16s_AC4R", true, 4, kroiRGBToXYZ_16s_AC4R),
        xyzCase<Kro32f>("kroiRGBToXYZ_32f_C3R", true, 3, kroiRGBToXYZ_32f_C3R),
        xyzCase<Kro32f>("kroiRGBToXYZ_32f_AC4R", true, 4, kroiRGBToXYZ_32f_AC4R),
        xyzCase<Kro8u>("kroiXYZToRGB_8u_C3R", false, 3, kroiXYZToRGB_8u_C3R),
        xyzCase<Kro8u>("kroiXYZToRGB_8u_AC4R", false, 4, kroiXYZToRGB_8u_AC4R),
        xyzCase<Kro16u>("kroiXYZToRGB_16u_C3R", false, 3, kroiXYZToRGB_16u_C3R),
        xyzCase<Kro16u>("kroiXYZToRGB_16u_AC4R", false, 4, kroiXYZToRGB_16u_AC4R),
        xyzCase<Kro16s>("kroiXYZToRGB_16s_C3R", false, 3, kroiXYZToRGB_16s_C3R),
        xyzCase<Kro16s>("kroiXYZToRGB_16s_AC4R", false, 4, kroiXYZToRGB_16s_AC4R),
        xyzCase<Kro32f>("kroiXYZToRGB_32f_C3R", false, 3, kroiXYZToRGB_32f_C3R),
        xyzCase<Kro32f>("kroiXYZToRGB_32f_AC4R", false, 4, kroiXYZToRGB_32f_AC4R),
    };
    return cases;
}

class XyzOp : public ::testing::TestWithParam<int> {};

TEST_P(XyzOp, MatchesReferenceAtEveryColumnAndOffset) { sweepT(xyzCases()[GetParam()]); }
TEST_P(XyzOp, ChecksInOrderAndWritesNothingOnFailure) { checkStatusesT(xyzCases()[GetParam()]); }

INSTANTIATE_TEST_SUITE_P(All, XyzOp, ::testing::Range(0, int(xyzCases().size())),
                         [](const ::testing::TestParamInfo<int>& i) { return xyzCases()[i.param].name; });

// ------------------------------------------------------------ exhaustive 8u
// All 2^24 triples through the main path (C3 width 4096, AC4 width 4096) and
// the tail (width 7 and 3); sampled under sanitizers.
void sweep8(bool toXyz, int cn) {
    auto f = toXyz ? (cn == 3 ? kroiRGBToXYZ_8u_C3R : kroiRGBToXYZ_8u_AC4R)
                   : (cn == 3 ? kroiXYZToRGB_8u_C3R : kroiXYZToRGB_8u_AC4R);
    exhaustive8(toXyz ? "to XYZ" : "to RGB", cn, cn, cn == 3 ? 7 : 3, int64_t(1) << 17, f,
                [&](const Kro8u* s, const Kro8u* d, Path p) {
                    const bool m = p == Main;
                    const ref::Tri e = toXyz ? (m ? ref::xyz8Main(s[0], s[1], s[2]) : ref::xyz8Tail(s[0], s[1], s[2]))
                                             : (m ? ref::rgb8Main(s[0], s[1], s[2]) : ref::rgb8Tail(s[0], s[1], s[2]));
                    return d[0] == e[0] && d[1] == e[1] && d[2] == e[2] && (cn == 3 || d[3] == 0x5a);
                });
}

TEST(XyzExhaustive, ToXyz8uC3) { sweep8(true, 3); }
TEST(XyzExhaustive, ToRgb8uC3) { sweep8(false, 3); }
TEST(XyzExhaustive, ToXyz8uAC4) { sweep8(true, 4); }
TEST(XyzExhaustive, ToRgb8uAC4) { sweep8(false, 4); }

// ------------------------------------------------------------ known values
using A8 = std::array<Kro8u, 3>;

TEST(XyzValues, WhiteDependsOnColumn8u) {
    EXPECT_EQ(at3<Kro8u>(kroiRGBToXYZ_8u_C3R, 0, 9, 255, 255, 255), (A8{242, 255, 255}));
    EXPECT_EQ(at3<Kro8u>(kroiRGBToXYZ_8u_C3R, 8, 9, 255, 255, 255), (A8{242, 254, 255}));
}

TEST(XyzValues, PrimariesInBothPaths8u) {
    for (int x : {0, 8}) {
        EXPECT_EQ(at3<Kro8u>(kroiRGBToXYZ_8u_C3R, x, 9, 255, 0, 0), (A8{105, 54, 4}));
        EXPECT_EQ(at3<Kro8u>(kroiRGBToXYZ_8u_C3R, x, 9, 0, 0, 255), (A8{46, 18, 242}));
    }
}

TEST(XyzValues, Inverse8u) {
    for (int x : {0, 8}) {
        EXPECT_EQ(at3<Kro8u>(kroiXYZToRGB_8u_C3R, x, 9, 242, 255, 255), (A8{255, 254, 231}));
        EXPECT_EQ(at3<Kro8u>(kroiXYZToRGB_8u_C3R, x, 9, 255, 0, 0), (A8{255, 0, 14}));
    }
}

TEST(XyzValues, FullScale16) {
    for (int x : {0, 4}) {
        EXPECT_EQ(at3<Kro16u>(kroiRGBToXYZ_16u_C3R, x, 5, 65535, 65535, 65535),
                  (std::array<Kro16u, 3>{62288, 65535, 65535}));
        EXPECT_EQ(at3<Kro16s>(kroiRGBToXYZ_16s_C3R, x, 5, 32767, 32767, 32767),
                  (std::array<Kro16s, 3>{29520, 32767, 32767}));
        EXPECT_EQ(at3<Kro16u>(kroiXYZToRGB_16u_C3R, x, 5, 65535, 0, 0), (std::array<Kro16u, 3>{65535, 0, 3646}));
        EXPECT_EQ(at3<Kro16s>(kroiRGBToXYZ_16s_C3R, x, 5, -32768, -32768, -32768),
                  (std::array<Kro16s, 3>{-32768, -32768, -32768}));
    }
}

TEST(XyzValues, WhiteFloatGivesZOne) {
    for (int x : {0, 4}) {
        const auto o = at3<Kro32f>(kroiRGBToXYZ_32f_C3R, x, 5, 1.0f, 1.0f, 1.0f);
        EXPECT_EQ(o[1], 1.0f);
        EXPECT_EQ(o[2], 1.0f);  // 1.088754 limited
        EXPECT_EQ(o[0], 0.950456023f);
    }
}

TEST(XyzValues, NaNLimitsToZeroAndPassesUnlimited) {
    const float qnan = bitsF(0x7fc0abcd);
    for (int x : {0, 4}) {
        const auto o = at3<Kro32f>(kroiRGBToXYZ_32f_C3R, x, 5, qnan, 0.5f, 0.5f);
        EXPECT_EQ(ref::bitsOf(o[0]), 0x7fc0abcdu);
        EXPECT_EQ(ref::bitsOf(o[2]), 0u);
        const auto r = at3<Kro32f>(kroiXYZToRGB_32f_C3R, x, 5, qnan, 0.5f, 0.5f);
        for (float v : r) EXPECT_EQ(ref::bitsOf(v), 0u);
    }
}

}  // namespace
