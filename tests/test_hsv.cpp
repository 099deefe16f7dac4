// RGB <-> HSV: every operation against the independent reference at every
// column and start offset (bit for bit with this processor's reciprocal
// estimate, and within the interval any admissible estimate allows),
// statuses in order, exhaustive sweeps of the 8-bit forms, the model's
// identities and the stated values.
#include <cfenv>
#include <gtest/gtest.h>

#include "convt_test.h"
#include "perceptual/reciprocal.h"
#include "ref_hsv.h"

using namespace kt;
using refv::Px;
using refh::Rc;

namespace {

enum class Dir { Fwd8, Fwd16, Inv8, Inv16 };

Px refPixel(Dir dir, int a, int b, int c, Path p, Rc rc = Rc::Machine) {
    switch (dir) {
        case Dir::Fwd8: return p == Main ? refv::fwd8Main(a, b, c, rc) : refv::fwd8Tail(a, b, c, rc);
        case Dir::Fwd16: return refv::fwd16(a, b, c);
        case Dir::Inv8: return refv::inv(a, b, c, false);
        default: return refv::inv(a, b, c, true);
    }
}

template <class T>
RefFn hsvRef(Dir dir) {
    return [dir](const uint8_t* s, uint8_t* d, Path p) {
        const Px o = refPixel(dir, getAt<T>(s, 0), getAt<T>(s, 1), getAt<T>(s, 2), p);
        for (int k = 0; k < 3; ++k) putAt<T>(d, k, T(o[size_t(k)]));
    };
}

template <class T>
TCall callOf(KroStatus (*f)(const T*, int, T*, int, kroiSize)) {
    return [f](const void* s, int ss, void* d, int ds, kroiSize r) {
        return f(static_cast<const T*>(s), ss, static_cast<T*>(d), ds, r);
    };
}

template <class T>
TCase hsvCase(const char* name, Dir dir, int cn, KroStatus (*f)(const T*, int, T*, int, kroiSize)) {
    constexpr int S = sizeof(T);
    const int block = dir == Dir::Fwd16 ? 1 : 4;  // the 16-bit forward form has no main path
    return {name, S, cn, S, cn, S == 2 ? 1 : 0, block == 1 ? 4 : block, hsvRef<T>(dir),
            block == 1 ? PathFn([](int, int, const uint8_t*) { return Tail; }) : blockPath(4),
            S == 1 ? FillFn(fill8u) : FillFn(fill16u), callOf<T>(f)};
}

const std::vector<TCase>& hsvCases() {
    static const std::vector<TCase> cases = {
        hsvCase<Kro8u>("kroiRGBToHSV_8u_C3R", Dir::Fwd8, 3, kroiRGBToHSV_8u_C3R),
        hsvCase<Kro8u>("kroiRGBToHSV_8u_AC4R", Dir::Fwd8, 4, kroiRGBToHSV_8u_AC4R),
        hsvCase<Kro16u>("kroiRGBToHSV_16u_C3R", Dir::Fwd16, 3, kroiRGBToHSV_16u_C3R),
        hsvCase<Kro16u>("kroiRGBToHSV_16u_AC4R", Dir::Fwd16, 4, kroiRGBToHSV_16u_AC4R),
        hsvCase<Kro8u>("kroiHSVToRGB_8u_C3R", Dir::Inv8, 3, kroiHSVToRGB_8u_C3R),
        hsvCase<Kro8u>("kroiHSVToRGB_8u_AC4R", Dir::Inv8, 4, kroiHSVToRGB_8u_AC4R),
        hsvCase<Kro16u>("kroiHSVToRGB_16u_C3R", Dir::Inv16, 3, kroiHSVToRGB_16u_C3R),
        hsvCase<Kro16u>("kroiHSVToRGB_16u_AC4R", Dir::Inv16, 4, kroiHSVToRGB_16u_AC4R),
    };
    return cases;
}

class HsvOp : public ::testing::TestWithParam<int> {};
TEST_P(HsvOp, MatchesReferenceAtEveryColumnAndOffset) { sweepT(hsvCases()[GetParam()]); }
TEST_P(HsvOp, ChecksInOrderAndWritesNothingOnFailure) { checkStatusesT(hsvCases()[GetParam()]); }
INSTANTIATE_TEST_SUITE_P(All, HsvOp, ::testing::Range(0, int(hsvCases().size())),
                         [](const ::testing::TestParamInfo<int>& i) { return hsvCases()[i.param].name; });

// ------------------------------------------------------------ exhaustive 8u
// All 2^24 triples through the main path (width 4096) and the tail (width 3),
// C3 and AC4 (fourth sample kept); sampled under sanitizers. The forward form
// is also checked against the interval of admissible estimates.
void sweep8(bool fwd, int cn) {
    auto f = fwd ? (cn == 3 ? kroiRGBToHSV_8u_C3R : kroiRGBToHSV_8u_AC4R)
                 : (cn == 3 ? kroiHSVToRGB_8u_C3R : kroiHSVToRGB_8u_AC4R);
    const Dir dir = fwd ? Dir::Fwd8 : Dir::Inv8;
    int64_t i = 0;
    exhaustive8(fwd ? "forward" : "inverse", cn, cn, 3, int64_t(1) << 16, f,
                [&](const Kro8u* s, const Kro8u* d, Path p) {
                    const Px e = refPixel(dir, s[0], s[1], s[2], p);
                    bool ok = d[0] == e[0] && d[1] == e[1] && d[2] == e[2] && (cn == 3 || d[3] == 0x5a);
                    if (ok && fwd && (KROCC_FULL_SWEEPS == 0 || (i++ & 7) == 0)) {
                        const Px lo = refPixel(dir, s[0], s[1], s[2], p, Rc::Lo);
                        const Px hi = refPixel(dir, s[0], s[1], s[2], p, Rc::Hi);
                        for (size_t k = 0; k < 2; ++k)
                            ok = ok && d[k] >= std::min(lo[k], hi[k]) && d[k] <= std::max(lo[k], hi[k]);
                    }
                    return ok;
                });
}

TEST(HsvExhaustive, Forward8uC3) { sweep8(true, 3); }
TEST(HsvExhaustive, Forward8uAC4) { sweep8(true, 4); }
TEST(HsvExhaustive, Inverse8uC3) { sweep8(false, 3); }
TEST(HsvExhaustive, Inverse8uAC4) { sweep8(false, 4); }

// ------------------------------------------------------------ the reciprocal estimate
// The library's estimate is within the stated bound for every argument the
// 8-bit forward form can give it.
TEST(HsvEstimate, WithinBoundForEveryArgument) {
    for (int k = 1; k <= 510; ++k) {
        const float x = float(k);
        const float r = kro::recip::estimate(x);
        EXPECT_TRUE(refh::admissible(x, r)) << k;
        EXPECT_EQ(r, kro::recip::estimate(_mm_set1_ps(x))[1]) << k;
    }
}

// ------------------------------------------------------------ known values
using A8 = std::array<Kro8u, 3>;
using A16 = std::array<Kro16u, 3>;

TEST(HsvValues, GreyGivesZeroHueAndSaturationOnEveryPath) {
    for (int g : {0, 1, 77, 128, 255})
        for (int x : {0, 4}) EXPECT_EQ(at3<Kro8u>(kroiRGBToHSV_8u_C3R, x, 5, g, g, g), (A8{0, 0, Kro8u(g)}));
    for (int g : {0, 1, 30000, 65535})
        for (int x : {0, 4})
            EXPECT_EQ(at3<Kro16u>(kroiRGBToHSV_16u_C3R, x, 5, g, g, g), (A16{0, 0, Kro16u(g)}));
}

// Under upward rounding a pure colour's saturation, 255 times the estimate's
// quotient, can round up to 256: the main path's clamp keeps it at 255.
TEST(HsvValues, MainPathSaturationClampedUnderUpwardRounding) {
    const int mode = std::fegetround();
    std::fesetround(FE_UPWARD);
    for (int v = 1; v < 256; ++v) {
        const refv::Px e = refv::fwd8Main(v, 0, 0);
        EXPECT_EQ(at3<Kro8u>(kroiRGBToHSV_8u_C3R, 0, 5, v, 0, 0), (A8{Kro8u(e[0]), Kro8u(e[1]), Kro8u(e[2])})) << v;
    }
    std::fesetround(mode);
}

TEST(HsvValues, TopHueCodeIsHueZero) {
    for (int x : {0, 4}) {
        for (int s : {1, 100, 255})
            for (int v : {1, 90, 255})
                EXPECT_EQ(at3<Kro8u>(kroiHSVToRGB_8u_C3R, x, 5, 255, s, v), at3<Kro8u>(kroiHSVToRGB_8u_C3R, x, 5, 0, s, v));
        for (int s : {1, 40000, 65535})
            EXPECT_EQ(at3<Kro16u>(kroiHSVToRGB_16u_C3R, x, 5, 65535, s, 50000),
                      at3<Kro16u>(kroiHSVToRGB_16u_C3R, x, 5, 0, s, 50000));
    }
}

TEST(HsvValues, ZeroSaturationReturnsValueUnrounded) {
    for (int x : {0, 4}) {
        for (int h = 0; h < 256; h += 5)
            for (int v = 0; v < 256; v += 3)
                EXPECT_EQ(at3<Kro8u>(kroiHSVToRGB_8u_C3R, x, 5, h, 0, v), (A8{Kro8u(v), Kro8u(v), Kro8u(v)}));
        for (int v = 0; v < 65536; v += 257)
            EXPECT_EQ(at3<Kro16u>(kroiHSVToRGB_16u_C3R, x, 5, 12345, 0, v), (A16{Kro16u(v), Kro16u(v), Kro16u(v)}));
    }
}

// Primaries: full S and V, hue in sixths of 255. (Secondaries fall on x.5
// before rounding, so the estimate decides them: left to the reference sweeps.)
TEST(HsvValues, Primaries8u) {
    struct Case {
        A8 rgb;
        int h;
    } cases[] = {{{255, 0, 0}, 0}, {{0, 255, 0}, 85}, {{0, 0, 255}, 170}};
    for (const auto& c : cases)
        for (int x : {0, 4}) {
            const A8 hsv = at3<Kro8u>(kroiRGBToHSV_8u_C3R, x, 5, c.rgb[0], c.rgb[1], c.rgb[2]);
            EXPECT_EQ(hsv, (A8{Kro8u(c.h), 255, 255})) << int(c.rgb[0]) << "," << int(c.rgb[1]) << "," << int(c.rgb[2]);
        }
    for (int x : {0, 4}) {
        EXPECT_EQ(at3<Kro8u>(kroiHSVToRGB_8u_C3R, x, 5, 0, 255, 255), (A8{255, 0, 0}));
        EXPECT_EQ(at3<Kro8u>(kroiHSVToRGB_8u_C3R, x, 5, 0, 255, 200), (A8{200, 0, 0}));
    }
}

// A hue on a sector boundary takes the higher sector: H = 85 is w = 2 exactly
// in 8 bits only if the product lands there; whatever w is, the sector is its
// truncation, checked against the reference at every hue.
TEST(HsvValues, EveryHueOfSixteenBitInverse) {
    std::vector<Kro16u> src(65536 * 3), dst(65536 * 3);
    for (int h = 0; h < 65536; ++h) src[size_t(h) * 3] = Kro16u(h), src[size_t(h) * 3 + 1] = 50000, src[size_t(h) * 3 + 2] = 60000;
    ASSERT_EQ(kroiHSVToRGB_16u_C3R(src.data(), 0, dst.data(), 0, {65536, 1}), kroStatusOk);
    int bad = 0;
    for (int h = 0; h < 65536 && bad < 3; ++h) {
        const Px e = refv::inv(h, 50000, 60000, true);
        for (int k = 0; k < 3; ++k)
            if (dst[size_t(h) * 3 + size_t(k)] != e[size_t(k)]) ++bad;
    }
    EXPECT_EQ(bad, 0);
}

TEST(HsvValues, Primaries16u) {
    EXPECT_EQ(at3<Kro16u>(kroiRGBToHSV_16u_C3R, 0, 1, 65535, 0, 0), (A16{0, 65535, 65535}));
    EXPECT_EQ(at3<Kro16u>(kroiRGBToHSV_16u_C3R, 0, 1, 0, 0, 65535), (A16{43690, 65535, 65535}));
}

}  // namespace
