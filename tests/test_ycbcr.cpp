// RGB/BGR <-> YCbCr: every operation against the independent reference at
// every column, statuses in each member's order, the aligned and general paths
// on the same image, exhaustive sweeps of each operation's forms and of both
// versions (scalar, vector) of every form, and the model's known values.
#include <gtest/gtest.h>

#include <cstring>

#include "conv8_test.h"
#include "matrix/ycbcr_forms.h"
#include "ref_ycbcr.h"

using namespace kt;

namespace {

// Operations whose every pixel takes one form list it as main and tail form,
// with a main block of 4: the tail sweep then runs rows of 3 pixels.
const std::vector<Conv8>& yccOps() {
    static const std::vector<Conv8> ops = {
        {"kroiRGBToYCbCr_8u_C3R", L::C3, L::C3, A4::None, false, false, 16, ref::yccFwd2, ref::yccFwd1,
         Order::NullSize, callOf(kroiRGBToYCbCr_8u_C3R)},
        {"kroiRGBToYCbCr_8u_AC4R", L::AC4, L::AC4, A4::ZeroMain, false, false, 16, ref::yccFwd2, ref::yccFwd1,
         Order::NullSize, callOf(kroiRGBToYCbCr_8u_AC4R)},
        {"kroiRGBToYCbCr_8u_C3P3R", L::C3, L::P3, A4::None, false, false, 8, ref::yccFwd3, ref::yccFwd1,
         Order::NullSize, callOf(kroiRGBToYCbCr_8u_C3P3R)},
        {"kroiRGBToYCbCr_8u_AC4P3R", L::AC4, L::P3, A4::None, false, false, 8, ref::yccFwd3, ref::yccFwd1,
         Order::NullSize, callOf(kroiRGBToYCbCr_8u_AC4P3R)},
        {"kroiRGBToYCbCr_8u_P3R", L::P3, L::P3, A4::None, false, false, 8, ref::yccFwd3, ref::yccFwd1,
         Order::NullSizePlanes, callOf(kroiRGBToYCbCr_8u_P3R)},
        {"kroiYCbCrToRGB_8u_C3R", L::C3, L::C3, A4::None, false, false, 8, ref::yccInv4, ref::yccInv2,
         Order::NullSize, callOf(kroiYCbCrToRGB_8u_C3R)},
        {"kroiYCbCrToRGB_8u_AC4R", L::AC4, L::AC4, A4::Keep, false, false, 0, nullptr, ref::yccInv1,
         Order::NullSize, callOf(kroiYCbCrToRGB_8u_AC4R)},
        {"kroiYCbCrToRGB_8u_P3C3R", L::P3, L::C3, A4::None, false, false, 8, ref::yccInv4, ref::yccInv2,
         Order::NullSize, callOf(kroiYCbCrToRGB_8u_P3C3R)},
        {"kroiYCbCrToBGR_8u_P3C3R", L::P3, L::C3, A4::None, false, true, 8, ref::yccInv4, ref::yccInv2,
         Order::NullSize, callOf(kroiYCbCrToBGR_8u_P3C3R)},
        {"kroiYCbCrToRGB_8u_P3C4R", L::P3, L::AC4, A4::Aval, false, false, 8, ref::yccInv6, ref::yccInv2,
         Order::NullSizePlanes, callOf(kroiYCbCrToRGB_8u_P3C4R)},
        {"kroiYCbCrToBGR_8u_P3C4R", L::P3, L::AC4, A4::Aval, false, true, 4, ref::yccInv6, ref::yccInv6,
         Order::NullSize, callOf(kroiYCbCrToBGR_8u_P3C4R)},
        {"kroiYCbCrToRGB_8u_P3R", L::P3, L::P3, A4::None, false, false, 4, ref::yccInv5, ref::yccInv3,
         Order::NullSizePlanes, callOf(kroiYCbCrToRGB_8u_P3R)},
        {"kroiYCbCrToBGR_709CSC_8u_P3C3R", L::P3, L::C3, A4::None, false, true, 4, ref::yccInv7, ref::yccInv7,
         Order::NullSize, callOf(kroiYCbCrToBGR_709CSC_8u_P3C3R)},
        {"kroiYCbCrToBGR_709CSC_8u_P3C4R", L::P3, L::AC4, A4::Aval, false, true, 4, ref::yccInv8, ref::yccInv8,
         Order::NullSize, callOf(kroiYCbCrToBGR_709CSC_8u_P3C4R)},
    };
    return ops;
}

const Conv8& op(const char* name) {
    for (const Conv8& c : yccOps())
        if (std::strcmp(c.name, name) == 0) return c;
    std::abort();
}

class YccOp : public ::testing::TestWithParam<int> {};

TEST_P(YccOp, MatchesReferenceAtEveryColumn) { sweep(yccOps()[GetParam()]); }
TEST_P(YccOp, ChecksInOrderAndWritesNothingOnFailure) { checkStatuses(yccOps()[GetParam()]); }
TEST_P(YccOp, ExhaustiveTriples) { exhaustiveTriples(yccOps()[GetParam()]); }

INSTANTIATE_TEST_SUITE_P(All, YccOp, ::testing::Range(0, 14),
                         [](const ::testing::TestParamInfo<int>& i) { return std::string(yccOps()[i.param].name); });

// ------------------------------------------------------------ aligned and general paths
// One image converted from 16-byte-aligned planes with steps of whole lines and
// from a copy at odd addresses with odd steps: the bytes of every row agree, and
// both match the reference.
void copyImage(const Side& from, Side& to, int rowBytes, int height) {
    for (size_t k = 0; k < from.planes.size(); ++k)
        for (int y = 0; y < height; ++y) std::memcpy(to.planes[k].row(y), from.planes[k].row(y), size_t(rowBytes));
}

void alignedAgainstGeneral(const Conv8& c) {
    for (int w = 1; w <= 80; ++w) {
        const int h = 3, bs = bytesPerPixel(c.src) * w, bd = bytesPerPixel(c.dst) * w;
        // Guard::Before puts a plane's first byte on a page boundary
        Side srcA(c.src, w, h, (16 - bs % 16) % 16 + 16, Guard::Before, false);
        Side dstA(c.dst, w, h, (16 - bd % 16) % 16, Guard::Before, false);
        Side srcU(c.src, w, h, (16 - bs % 16) % 16 + 3, Guard::After, false);
        Side dstU(c.dst, w, h, 7, Guard::After, false);
        copyImage(srcA, srcU, bs, h);
        copyImage(dstA, dstU, bd, h);  // same fourth samples where they are kept
        for (const Side* s : {&srcA, &dstA}) {
            ASSERT_EQ(s->step() % 16, 0);
            for (const Plane& p : s->planes) ASSERT_EQ(reinterpret_cast<uintptr_t>(p.origin()) % 16, 0u);
        }
        const auto want = expected(c, srcA, dstA, w, h, 31);
        auto sa = srcA.origins(), da = dstA.origins(), su = srcU.origins(), du = dstU.origins();
        ASSERT_EQ(c.call(sa.data(), srcA.step(), da.data(), dstA.step(), {w, h}, 31), kroStatusOk);
        ASSERT_EQ(c.call(su.data(), srcU.step(), du.data(), dstU.step(), {w, h}, 31), kroStatusOk);
        for (size_t k = 0; k < dstA.planes.size(); ++k) {
            ASSERT_EQ(diffPlane(dstA.planes[k], want[k], k == 0 ? bytesPerPixel(c.dst) : 1), "")
                << c.name << " aligned, width " << w;
            for (int y = 0; y < h; ++y)
                ASSERT_EQ(0, std::memcmp(dstA.planes[k].row(y), dstU.planes[k].row(y), size_t(k == 0 ? bd : w)))
                    << c.name << " width " << w << " row " << y << " plane " << k;
        }
    }
}

TEST(YccAligned, EveryOperationIgnoresAlignment) {
    for (const Conv8& c : yccOps()) alignedAgainstGeneral(c);
}

// ------------------------------------------------------------ both versions of every form
// Scalar and vector versions of a form, over all 2^24 triples (sampled under
// sanitizers), against the reference.
template <class F>
void formBothVersions(const char* name, ref::Px3 (*want)(int, int, int)) {
    const int64_t total = KROCC_FULL_SWEEPS ? (1 << 24) : (1 << 18);
    auto triple = [](int64_t i, int (&v)[3]) {
        const uint32_t t = KROCC_FULL_SWEEPS ? uint32_t(i) : uint32_t(i * 2654435761u);
        v[0] = int(t >> 16) & 255, v[1] = int(t >> 8) & 255, v[2] = int(t) & 255;
    };
    int64_t badScalar = 0, badVector = 0;
    for (int64_t i = 0; i < total; i += 8) {
        alignas(16) int16_t lanes[3][8];
        int v[8][3];
        for (int j = 0; j < 8; ++j) {
            triple(i + j, v[j]);
            for (int c = 0; c < 3; ++c) lanes[c][j] = int16_t(v[j][c]);
        }
        kro::V in[3], out[3];
        for (int c = 0; c < 3; ++c) in[c] = _mm_load_si128(reinterpret_cast<const kro::V*>(lanes[c]));
        F::apply(in, out);
        alignas(16) uint8_t got[3][16];
        for (int c = 0; c < 3; ++c)
            _mm_store_si128(reinterpret_cast<kro::V*>(got[c]), _mm_packus_epi16(out[c], out[c]));
        for (int j = 0; j < 8; ++j) {
            const ref::Px3 e = want(v[j][0], v[j][1], v[j][2]);
            int s[3];
            F::apply(v[j][0], v[j][1], v[j][2], s[0], s[1], s[2]);
            if (ref::Px3{s[0], s[1], s[2]} != e && badScalar++ < 3)
                ADD_FAILURE() << name << " scalar (" << v[j][0] << "," << v[j][1] << "," << v[j][2] << ") -> (" << s[0]
                              << "," << s[1] << "," << s[2] << ") want (" << e[0] << "," << e[1] << "," << e[2] << ")";
            if (ref::Px3{got[0][j], got[1][j], got[2][j]} != e && badVector++ < 3)
                ADD_FAILURE() << name << " vector (" << v[j][0] << "," << v[j][1] << "," << v[j][2] << ") -> ("
                              << int(got[0][j]) << "," << int(got[1][j]) << "," << int(got[2][j]) << ") want (" << e[0]
                              << "," << e[1] << "," << e[2] << ")";
        }
    }
    EXPECT_EQ(badScalar, 0) << name;
    EXPECT_EQ(badVector, 0) << name;
}

TEST(YccForms, ForwardScalarAndVectorAgreeWithReference) {
    formBothVersions<kro::ycbcr::Fwd1>("forward 1", ref::yccFwd1);
    formBothVersions<kro::ycbcr::Fwd2>("forward 2", ref::yccFwd2);
    formBothVersions<kro::ycbcr::Fwd3>("forward 3", ref::yccFwd3);
}

TEST(YccForms, InverseScalarAndVectorAgreeWithReference) {
    formBothVersions<kro::ycbcr::Inv1>("inverse 1", ref::yccInv1);
    formBothVersions<kro::ycbcr::Inv2>("inverse 2", ref::yccInv2);
    formBothVersions<kro::ycbcr::Inv3>("inverse 3", ref::yccInv3);
    formBothVersions<kro::ycbcr::Inv4>("inverse 4", ref::yccInv4);
    formBothVersions<kro::ycbcr::Inv5>("inverse 5", ref::yccInv5);
    formBothVersions<kro::ycbcr::Inv6>("inverse 6", ref::yccInv6);
    formBothVersions<kro::ycbcr::Inv7>("inverse 7", ref::yccInv7);
    formBothVersions<kro::ycbcr::Inv8>("inverse 8", ref::yccInv8);
}

// ------------------------------------------------------------ known values
// A row of `width` equal pixels through an operation; pixel x read back in the
// model's order (not through the reference).
ref::Px3 at(const char* name, ref::Px3 px, int width, int x, Kro8u aval = 55) {
    const Conv8& c = op(name);
    Side src(c.src, width, 1, 0, Guard::After, false);
    Side dst(c.dst, width, 1, 0, Guard::After, false);
    for (int i = 0; i < width; ++i) {
        int v[3] = {px[0], px[1], px[2]};
        if (c.srcSwap) std::swap(v[0], v[2]);
        for (int k = 0; k < 3; ++k) {
            if (planesOf(c.src) > 1)
                src.planes[k].row(0)[i] = Kro8u(v[k]);
            else
                src.planes[0].row(0)[bytesPerPixel(c.src) * i + k] = Kro8u(v[k]);
        }
    }
    auto so = src.origins(), dO = dst.origins();
    EXPECT_EQ(c.call(so.data(), src.step(), dO.data(), dst.step(), {width, 1}, aval), kroStatusOk);
    int o[4];
    readPixel(dst, c.dst, c.dstSwap, x, 0, o);
    return {o[0], o[1], o[2]};
}

// Columns that reach each form: x 0 of a row of 16 is in every main path, x 16
// of a row of 17 in the tail of the 16-pixel operations, x 2 of a row of 3 in
// every tail.
ref::Px3 fwd1(ref::Px3 p) { return at("kroiRGBToYCbCr_8u_C3R", p, 17, 16); }
ref::Px3 fwd2(ref::Px3 p) { return at("kroiRGBToYCbCr_8u_C3R", p, 16, 0); }
ref::Px3 fwd3(ref::Px3 p) { return at("kroiRGBToYCbCr_8u_P3R", p, 16, 0); }
ref::Px3 inv1(ref::Px3 p) { return at("kroiYCbCrToRGB_8u_AC4R", p, 16, 0); }
ref::Px3 inv2(ref::Px3 p) { return at("kroiYCbCrToRGB_8u_C3R", p, 3, 2); }
ref::Px3 inv3(ref::Px3 p) { return at("kroiYCbCrToRGB_8u_P3R", p, 3, 2); }
ref::Px3 inv4(ref::Px3 p) { return at("kroiYCbCrToRGB_8u_P3C3R", p, 16, 0); }
ref::Px3 inv5(ref::Px3 p) { return at("kroiYCbCrToRGB_8u_P3R", p, 16, 0); }
ref::Px3 inv6(ref::Px3 p) { return at("kroiYCbCrToRGB_8u_P3C4R", p, 16, 0); }

TEST(YccValues, ForwardCorners) {
    for (auto f : {fwd1, fwd2, fwd3}) {
        EXPECT_EQ(f({255, 255, 255}), (ref::Px3{235, 128, 128}));
        EXPECT_EQ(f({0, 0, 0}), (ref::Px3{16, 128, 128}));
    }
    EXPECT_EQ(fwd1({255, 0, 0})[2], 240);
    EXPECT_EQ(fwd3({255, 0, 0})[2], 240);
    EXPECT_EQ(fwd2({255, 0, 0})[2], 239);
    EXPECT_EQ(fwd1({0, 255, 0})[1], 54);
    EXPECT_EQ(fwd3({0, 255, 0})[1], 54);
    EXPECT_EQ(fwd2({0, 255, 0})[1], 53);
    EXPECT_EQ(fwd1({0, 0, 255}), (ref::Px3{41, 240, 110}));
    EXPECT_EQ(fwd3({0, 0, 255}), (ref::Px3{41, 240, 110}));
    EXPECT_EQ(fwd2({0, 0, 255}), (ref::Px3{41, 239, 109}));
}

TEST(YccValues, AlphaOfFourSampleForwardDependsOnColumn) {
    const int w = 37;
    std::vector<Kro8u> src(4 * w), dst(4 * w, 0xA5);
    fillRandom(src.data(), src.size());
    ASSERT_EQ(kroiRGBToYCbCr_8u_AC4R(src.data(), 4 * w, dst.data(), 4 * w, {w, 1}), kroStatusOk);
    for (int x = 0; x < w; ++x) EXPECT_EQ(dst[4 * x + 3], x < 32 ? 0 : 0xA5) << "pixel " << x;
}

TEST(YccValues, InverseCorners) {
    for (auto f : {inv1, inv5}) EXPECT_EQ(f({235, 128, 128}), (ref::Px3{254, 254, 254}));
    for (auto f : {inv2, inv3, inv4, inv6}) EXPECT_EQ(f({235, 128, 128}), (ref::Px3{255, 255, 255}));
    for (auto f : {inv1, inv2, inv3, inv4, inv5, inv6}) EXPECT_EQ(f({16, 128, 128}), (ref::Px3{0, 0, 0}));
    EXPECT_EQ(inv4({128, 0, 255})[1], 78);
    for (auto f : {inv1, inv2, inv3, inv5, inv6}) EXPECT_EQ(f({128, 0, 255})[1], 77);
    for (auto f : {inv1, inv5}) EXPECT_EQ(f({128, 255, 0})[1], 184);
    for (auto f : {inv2, inv3, inv4, inv6}) EXPECT_EQ(f({128, 255, 0})[1], 185);
}

TEST(YccValues, Bt709FormsDifferWhereTheFloorFallsOtherwise) {
    for (int x : {0, 18}) {
        EXPECT_EQ(at("kroiYCbCrToBGR_709CSC_8u_P3C3R", {252, 252, 210}, 19, x)[1], 204) << x;
        EXPECT_EQ(at("kroiYCbCrToBGR_709CSC_8u_P3C4R", {252, 252, 210}, 19, x)[1], 205) << x;
    }
}

TEST(YccValues, BgrHoldsTheRgbValuesSwapped) {
    const ref::Px3 p = {90, 200, 60};
    for (int x : {0, 20}) {
        EXPECT_EQ(at("kroiYCbCrToBGR_8u_P3C3R", p, 21, x), at("kroiYCbCrToRGB_8u_P3C3R", p, 21, x)) << x;
        EXPECT_EQ(at("kroiYCbCrToBGR_8u_P3C4R", p, 21, x), ref::yccInv6(p[0], p[1], p[2])) << x;
    }
}

TEST(YccValues, AvalInEveryColumn) {
    for (const char* name :
         {"kroiYCbCrToRGB_8u_P3C4R", "kroiYCbCrToBGR_8u_P3C4R", "kroiYCbCrToBGR_709CSC_8u_P3C4R"}) {
        const Conv8& c = op(name);
        const int w = 19;
        Side src(c.src, w, 2, 0, Guard::After, false);
        Side dst(c.dst, w, 2, 1, Guard::After, false);
        auto so = src.origins(), dO = dst.origins();
        ASSERT_EQ(c.call(so.data(), src.step(), dO.data(), dst.step(), {w, 2}, 55), kroStatusOk);
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < w; ++x) EXPECT_EQ(dst.planes[0].row(y)[4 * x + 3], 55) << name << " pixel " << x;
    }
}

TEST(YccStatus, NullPlaneWithZeroWidth) {
    Kro8u buf[16] = {};
    Kro8u* dst[3] = {buf, nullptr, buf};
    const Kro8u* src[3] = {buf, nullptr, buf};
    EXPECT_EQ(kroiRGBToYCbCr_8u_C3P3R(buf, 3, dst, 1, {0, 1}), kroStatusNullPointer);
    EXPECT_EQ(kroiRGBToYCbCr_8u_P3R(src, 1, dst, 1, {0, 1}), kroStatusBadSize);
    EXPECT_EQ(kroiYCbCrToRGB_8u_P3C4R(src, 1, buf, 4, {0, 1}, 0), kroStatusBadSize);
    EXPECT_EQ(kroiYCbCrToBGR_8u_P3C4R(src, 1, buf, 4, {0, 1}, 0), kroStatusNullPointer);
}

}  // namespace
