// Packed 4:2:2 decoders: every operation against the reference at every
// column and odd width (rules O and O'), statuses and their order, aligned
// twins, grey, and the Part's edge cases.
#include "decode_test.h"

using namespace kt::dec;

namespace {

const std::vector<DecOp>& ops() {
    static const std::vector<DecOp> v = {
        {"kroiCbYCr422ToBGR_709HDTV_8u_C2C3R", Src::C2, Pk::CbYCr, 2, 1, false, Dst::C3, true, SpanR::S8, ref::h1,
         ref::h2, OddR::O, ref::h2, Chk::NullSize, 1, 1, call(kroiCbYCr422ToBGR_709HDTV_8u_C2C3R)},
        {"kroiCbYCr422ToBGR_709HDTV_8u_C2C4R", Src::C2, Pk::CbYCr, 2, 1, false, Dst::C4, true, SpanR::S8, ref::h1,
         ref::h2, OddR::O, ref::h2, Chk::NullSize, 1, 1, call(kroiCbYCr422ToBGR_709HDTV_8u_C2C4R)},
        {"kroiCbYCr422ToBGR_8u_C2C4R", Src::C2, Pk::CbYCr, 2, 1, false, Dst::C4, true, SpanR::S8, ref::d4, ref::inv2,
         OddR::O, ref::inv2, Chk::NullSize, 1, 1, call(kroiCbYCr422ToBGR_8u_C2C4R)},
        {"kroiCbYCr422ToRGB_8u_C2C3R", Src::C2, Pk::CbYCr, 2, 1, false, Dst::C3, false, SpanR::S8, ref::inv4,
         ref::inv2, OddR::OPrime, ref::inv2, Chk::NullSize, 1, 1, call(kroiCbYCr422ToRGB_8u_C2C3R)},
        {"kroiYCbCr422ToBGR_8u_C2C3R", Src::C2, Pk::YCbCr, 2, 1, false, Dst::C3, true, SpanR::S8, ref::inv4,
         ref::inv2, OddR::OPrime, ref::inv2, Chk::NullSize, 2, 1, call(kroiYCbCr422ToBGR_8u_C2C3R)},
        {"kroiYCbCr422ToRGB_8u_C2C3R", Src::C2, Pk::YCbCr, 2, 1, false, Dst::C3, false, SpanR::S8, ref::inv4,
         ref::inv2, OddR::OPrime, ref::inv2, Chk::NullSize, 1, 1, call(kroiYCbCr422ToRGB_8u_C2C3R)},
        {"kroiYCbCr422ToBGR_8u_C2C4R", Src::C2, Pk::YCbCr, 2, 1, false, Dst::C4, true, SpanR::S8, ref::d5, ref::d6,
         OddR::O, ref::d6, Chk::NullSize, 2, 1, call(kroiYCbCr422ToBGR_8u_C2C4R)},
        {"kroiYCbCr422ToRGB_8u_C2C4R", Src::C2, Pk::YCbCr, 2, 1, false, Dst::C4, false, SpanR::S8, ref::d3, ref::inv3,
         OddR::O, ref::inv3, Chk::NullSize, 1, 1, call(kroiYCbCr422ToRGB_8u_C2C4R)},
        {"kroiYCrCb422ToBGR_8u_C2C3R", Src::C2, Pk::YCrCb, 2, 1, false, Dst::C3, true, SpanR::S8, ref::d3, ref::inv3,
         OddR::O, ref::inv3, Chk::NullSize, 1, 1, call(kroiYCrCb422ToBGR_8u_C2C3R)},
        {"kroiYCrCb422ToBGR_8u_C2C4R", Src::C2, Pk::YCrCb, 2, 1, false, Dst::C4, true, SpanR::S8, ref::d3, ref::inv3,
         OddR::O, ref::inv3, Chk::NullSize, 1, 1, call(kroiYCrCb422ToBGR_8u_C2C4R)},
        {"kroiYCrCb422ToRGB_8u_C2C3R", Src::C2, Pk::YCrCb, 2, 1, false, Dst::C3, false, SpanR::S8, ref::d3, ref::inv3,
         OddR::O, ref::inv3, Chk::NullSize, 1, 1, call(kroiYCrCb422ToRGB_8u_C2C3R)},
        {"kroiYCrCb422ToRGB_8u_C2C4R", Src::C2, Pk::YCrCb, 2, 1, false, Dst::C4, false, SpanR::S8, ref::d3, ref::inv3,
         OddR::O, ref::inv3, Chk::NullSize, 1, 1, call(kroiYCrCb422ToRGB_8u_C2C4R)},
        {"kroiYCbCr422ToRGB_8u_C2P3R", Src::C2, Pk::YCbCr, 2, 1, false, Dst::P3, false, SpanR::S4, ref::inv5, ref::d6,
         OddR::O, ref::d6, Chk::NullSizeDeepNull, 1, 1, call(kroiYCbCr422ToRGB_8u_C2P3R)},
        {"kroiYCrCb422ToRGB_8u_C2P3R", Src::C2, Pk::YCrCb, 2, 1, false, Dst::P3, false, SpanR::S4, ref::inv5, ref::d6,
         OddR::O, ref::d6, Chk::NullSizeDeepNull, 1, 1, call(kroiYCrCb422ToRGB_8u_C2P3R)},
        {"kroiYUV422ToRGB_8u_C2C3R", Src::C2, Pk::YCbCr, 2, 1, false, Dst::C3, false, SpanR::S16, ref::y2, ref::y5,
         OddR::O, ref::y5, Chk::NullSize, 1, 1, call(kroiYUV422ToRGB_8u_C2C3R)},
    };
    return v;
}

// Every (Y, Cb, Cr) through the main path: a row holds all 65536 chroma pairs,
// pair j of row r the luma pair (r + j) mod 128, so 128 rows give every luma
// with every pair (a few rows under sanitizers).
std::string everyInput(const DecOp& c) {
    const int w = 2 * 65536, h = KROCC_FULL_SWEEPS ? 128 : 3;
    for (int y0 = 0; y0 < h; y0 += 16) {
        const int rows = std::min(16, h - y0);
        Image s = makeSource(c, w, rows, 0, kt::Guard::After, false);
        for (int y = 0; y < rows; ++y) {
            Kro8u* g = s.planes[0].row(y);
            for (int j = 0; j < 65536; ++j, g += 4) {
                const int luma = 2 * ((y0 + y + j) % 128), cb = j >> 8, cr = j & 255;
                switch (c.packed) {
                    case Pk::YCbCr: g[0] = Kro8u(luma), g[1] = Kro8u(cb), g[2] = Kro8u(luma + 1), g[3] = Kro8u(cr); break;
                    case Pk::CbYCr: g[0] = Kro8u(cb), g[1] = Kro8u(luma), g[2] = Kro8u(cr), g[3] = Kro8u(luma + 1); break;
                    case Pk::YCrCb: g[0] = Kro8u(luma), g[1] = Kro8u(cr), g[2] = Kro8u(luma + 1), g[3] = Kro8u(cb); break;
                }
            }
        }
        Image d = makeDest(c, w, rows, 0, kt::Guard::After, false);
        const auto want = expected(c, s, d, w, rows, 9);
        const auto so = origins(s);
        const auto ss = steps(s);
        const auto dO = dstOrigins(d);
        if (c.call(so.data(), ss.data(), dO.data(), d.planes[0].step, {w, rows}, 9) != kroStatusOk) return "status";
        const std::string e = compare(c, d, want);
        if (!e.empty()) return "rows from " + std::to_string(y0) + ": " + e;
    }
    return {};
}

class Packed : public ::testing::TestWithParam<int> {};
TEST_P(Packed, MatchesReferenceAtEveryColumn) { sweep(ops()[GetParam()]); }
TEST_P(Packed, MatchesReferenceOnEveryInput) { EXPECT_EQ(everyInput(ops()[GetParam()]), "") << ops()[GetParam()].name; }
TEST_P(Packed, ChecksInOrderAndWritesNothingOnFailure) { checkStatuses(ops()[GetParam()]); }
INSTANTIATE_TEST_SUITE_P(All, Packed, ::testing::Range(0, int(ops().size())),
                         [](const ::testing::TestParamInfo<int>& i) { return std::string(ops()[i.param].name); });

const DecOp& op(const std::string& name) {
    for (auto& o : ops())
        if (name == o.name) return o;
    throw std::runtime_error(name);
}

TEST(PackedValues, AlignedTwinsGiveTheSameBytes) {
    for (const char* n : {"kroiCbYCr422ToBGR_709HDTV_8u_C2C4R", "kroiCbYCr422ToBGR_8u_C2C4R"})
        for (int w : {8, 16, 24, 40, 41, 64, 77}) alignedTwins(op(n), w, 3);
}

// W = 1: -6 in the BGR form, 0 and one pixel from its Y and its one chroma byte in the RGB form.
TEST(PackedValues, OnePixel) {
    const Kro8u src[2] = {150, 60};
    Kro8u d[3] = {1, 2, 3};
    EXPECT_EQ(kroiYCbCr422ToBGR_8u_C2C3R(src, 2, d, 3, {1, 1}), kroStatusBadSize);
    EXPECT_EQ(d[0], 1);
    ASSERT_EQ(kroiYCbCr422ToRGB_8u_C2C3R(src, 2, d, 3, {1, 1}), kroStatusOk);
    const ref::Px3 e = ref::inv2(150, 60, 60);
    EXPECT_EQ((ref::Px3{d[0], d[1], d[2]}), e);
}

// W = 3 in the BGR C3 form: pixel 2 takes its Cb for both inputs; W = 5: its Cb and the Cr of pair 1.
TEST(PackedValues, OddColumnChroma) {
    const Kro8u src[10] = {100, 50, 110, 200, 120, 70, 130, 180, 140, 90};
    Kro8u d[15];
    ASSERT_EQ(kroiYCbCr422ToBGR_8u_C2C3R(src, 10, d, 15, {3, 1}), kroStatusOk);
    ref::Px3 e = ref::inv2(120, 70, 70);
    EXPECT_EQ((ref::Px3{d[8], d[7], d[6]}), e);
    ASSERT_EQ(kroiYCbCr422ToBGR_8u_C2C3R(src, 10, d, 15, {5, 1}), kroStatusOk);
    e = ref::inv2(140, 90, 180);
    EXPECT_EQ((ref::Px3{d[14], d[13], d[12]}), e);
    // rule O at W = 3: the Cr of pair 0
    ASSERT_EQ(kroiYCbCr422ToRGB_8u_C2C4R(src, 10, d, 12, {3, 1}, 5), kroStatusOk);
    e = ref::inv3(120, 70, 200);
    EXPECT_EQ((ref::Px3{d[8], d[9], d[10]}), e);
    EXPECT_EQ(d[11], 5);
}

TEST(PackedValues, GreyIsTheLumaBytes) {
    for (int w : {1, 2, 15, 16, 17, 31, 33, 50}) {
        kt::Plane s(2 * w, 3, 5, kt::Guard::After), d(w, 3, 2, kt::Guard::After);
        auto want = d.snapshot();
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < w; ++x) d.rowIn(want, y)[x] = s.row(y)[2 * x];
        ASSERT_EQ(kroiYCbCr422ToGray_8u_C2C1R(s.origin(), s.step, d.origin(), d.step, {w, 3}), kroStatusOk);
        EXPECT_EQ(kt::diffPlane(d, want, 1), "") << w;
    }
    Kro8u b[8] = {};
    EXPECT_EQ(kroiYCbCr422ToGray_8u_C2C1R(nullptr, 2, b, 1, {0, 1}), kroStatusNullPointer);
    EXPECT_EQ(kroiYCbCr422ToGray_8u_C2C1R(b, 2, nullptr, 1, {1, 1}), kroStatusNullPointer);
    EXPECT_EQ(kroiYCbCr422ToGray_8u_C2C1R(b, 2, b, 1, {0, 1}), kroStatusBadSize);
    EXPECT_EQ(kroiYCbCr422ToGray_8u_C2C1R(b, 2, b, 1, {1, -1}), kroStatusBadSize);
}

// aval in every pixel of the C4 forms, main path, tail and odd column.
TEST(PackedValues, AvalEverywhere) {
    for (int w : {1, 7, 8, 9, 17, 23}) {
        std::vector<Kro8u> s(2 * w, 128), d(4 * w, 0);
        ASSERT_EQ(kroiCbYCr422ToBGR_8u_C2C4R(s.data(), 2 * w, d.data(), 4 * w, {w, 1}, 55), kroStatusOk);
        for (int x = 0; x < w; ++x) EXPECT_EQ(d[4 * x + 3], 55) << w << " " << x;
    }
}

}  // namespace
