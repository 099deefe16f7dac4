// RGB and BGR to 4:2:0, 4:2:2 and 4:1:1: every operation against the
// table-driven reference at every column, width and height, with independent
// plane steps and guards; statuses in order; twins, alignment, stepless forms
// and the known values of the model.
#include <gtest/gtest.h>

#include <cstring>

#include "encode_test.h"

using namespace kt;
using ref::Chroma;
using ref::EncDesc;
using ref::Odd;
using ref::Out;
using ref::OutLayout;
using ref::Span;

namespace {

using P3Fn = KroStatus (*)(const Kro8u*, int, Kro8u* const*, const int*, kroiSize);
using PP3Fn = KroStatus (*)(const Kro8u* const*, int, Kro8u* const*, const int*, kroiSize);
using P2Fn = KroStatus (*)(const Kro8u*, int, Kro8u*, int, Kro8u*, int, kroiSize);
using C2Fn = KroStatus (*)(const Kro8u*, int, Kro8u*, int, kroiSize);
using PC2Fn = KroStatus (*)(const Kro8u* const*, int, Kro8u*, int, kroiSize);

EncCall wrap(P3Fn f) {
    return [f](const Kro8u* const* s, int ss, Kro8u* const* d, const int* ds, kroiSize r) {
        return f(s ? s[0] : nullptr, ss, d, ds, r);
    };
}
EncCall wrap(PP3Fn f) {
    return [f](const Kro8u* const* s, int ss, Kro8u* const* d, const int* ds, kroiSize r) { return f(s, ss, d, ds, r); };
}
EncCall wrap(P2Fn f) {
    return [f](const Kro8u* const* s, int ss, Kro8u* const* d, const int* ds, kroiSize r) {
        return f(s ? s[0] : nullptr, ss, d[0], ds[0], d[1], ds[1], r);
    };
}
EncCall wrap(C2Fn f) {
    return [f](const Kro8u* const* s, int ss, Kro8u* const* d, const int* ds, kroiSize r) {
        return f(s ? s[0] : nullptr, ss, d[0], ds[0], r);
    };
}
EncCall wrap(PC2Fn f) {
    return [f](const Kro8u* const* s, int ss, Kro8u* const* d, const int* ds, kroiSize r) {
        return f(s, ss, d[0], ds[0], r);
    };
}

const OutLayout P3cb{Out::P3, 1, 2}, P3cr{Out::P3, 2, 1}, P2cb{Out::P2, 0, 1};
const OutLayout C2ycbcr{Out::C2, 1, 3, 0, 2}, C2cbycr{Out::C2, 0, 2, 1, 3}, C2ycrcb{Out::C2, 3, 1, 0, 2};

// ------------------------------------------------------------ the forms of each encoder
const EncDesc k420L1{2, 2, Span::S8, 1, {1, 8194}, 5, 5, {4, 33587200}, Odd::None};
const EncDesc k420L2{2, 2, Span::S8, 2, {1, 8194}, 5, 5, {4, 33587200}, Odd::None};
const EncDesc k420S4{2, 2, Span::S4, 4, {3}, 5, 5, {4, 33587200}, Odd::None};
const EncDesc k420Csc8{2, 2, Span::S8, 7, {6}, 8, 8, {7}, Odd::None};
const EncDesc k420CscH{2, 2, Span::SH, 7, {6}, 8, 8, {7}, Odd::None};
const EncDesc k420Hdtv{2, 2, Span::SH, 9, {8}, 10, 10, {9, 33587200}, Odd::None};
const EncDesc k420YuvAc4{2, 2, Span::S16, 13, {12}, 15, 15, {14, 131071}, Odd::None};
const EncDesc k420YuvC3{2, 2, Span::S8, 11, {10}, 12, 12, {11}, Odd::None};
const EncDesc k420YuvP3{2, 2, Span::None, 0, {0}, 15, 15, {14, 131071}, Odd::None};
const EncDesc k422Bgr{2, 1, Span::S8, 1, {1, 8224}, 5, 5, {4, 16793600}, Odd::None};
const EncDesc k422Rgb{2, 1, Span::S8, 1, {1, 8224}, 5, 6, {4, 16842752}, Odd::None};
const EncDesc k422CbYCr{2, 1, Span::S8, 4, {5}, 5, 5, {4, 16842752, 16842750}, Odd::E1};
const EncDesc k422HdtvAc4{2, 1, Span::S8, 9, {13}, 10, 10, {9, 16842752, 16842750}, Odd::E2};
const EncDesc k422HdtvC3{2, 1, Span::SX, 9, {8}, 10, 10, {9, 16842752, 16842750}, Odd::E2};
const EncDesc k422Filter{2, 1, Span::S8, 1, {0}, 5, 5, {0}, Odd::E1, true};
const EncDesc k422YuvC2{2, 1, Span::S16, 17, {15, 1}, 16, 16, {14, 32768}, Odd::E3};
const EncDesc k422YuvC3P3{2, 1, Span::S16, 18, {15, 0}, 15, 15, {14, 65535}, Odd::E4};
const EncDesc k422YuvC3P3Aligned{2, 1, Span::S16, 11, {10}, 18, 18, {15, 0}, Odd::E4};
const EncDesc k422YuvP3{2, 1, Span::S16, 14, {16}, 15, 15, {14, 65535}, Odd::E5};
const EncDesc k411Ac4{4, 1, Span::S16, 4, {3}, 5, 5, {4, 33587200}, Odd::LumaL5};
const EncDesc k411C3{4, 1, Span::S16, 3, {2}, 5, 5, {4, 33587200}, Odd::None};

constexpr auto DNS = Checks::DeepNullSize;
constexpr auto NS = Checks::NullSize;
constexpr auto NSD = Checks::NullSizeDeepNull;

#define OP(fn) #fn, wrap(fn)
struct Row {
    const char* name;
    EncCall call;
    SrcL src;
    bool bgr;
    OutLayout out;
    EncDesc desc;
    Checks checks;
    int minW, minH;
    Align align;
};

const std::vector<EncOp>& encOps() {
    static const std::vector<EncOp> ops = [] {
        const std::vector<Row> rows = {
            // 4:2:0
            {OP(kroiBGRToYCbCr420_8u_C3P3R), SrcL::C3, true, P3cb, k420L1, DNS, 2, 2, Align::Any},
            {OP(kroiBGRToYCrCb420_8u_C3P3R), SrcL::C3, true, P3cr, k420L1, DNS, 2, 2, Align::Any},
            {OP(kroiBGRToYCbCr420_8u_C3P2R), SrcL::C3, true, P2cb, k420L2, NS, 1, 1, Align::Any},
            {OP(kroiBGRToYCbCr420_8u_AC4P2R), SrcL::AC4, true, P2cb, k420L2, NS, 1, 1, Align::Any},
            {OP(kroiRGBToYCbCr420_8u_C3P3R), SrcL::C3, false, P3cb, k420L2, NSD, 1, 1, Align::Any},
            {OP(kroiRGBToYCbCr420_8u_C3P2R), SrcL::C3, false, P2cb, k420L2, NS, 1, 1, Align::Any},
            {OP(kroiRGBToYCbCr420_8u_C4P2R), SrcL::AC4, false, P2cb, k420L2, NS, 1, 1, Align::Any},
            {OP(kroiBGRToYCbCr420_8u_AC4P3R), SrcL::AC4, true, P3cb, k420S4, DNS, 2, 2, Align::Any},
            {OP(kroiBGRToYCrCb420_8u_AC4P3R), SrcL::AC4, true, P3cr, k420S4, DNS, 2, 2, Align::Any},
            {OP(kroiRGBToYCrCb420_8u_AC4P3R), SrcL::AC4, false, P3cr, k420S4, DNS, 2, 2, Align::Any},
            {OP(kroiBGRToYCbCr420_709CSC_8u_C3P2R), SrcL::C3, true, P2cb, k420Csc8, DNS, 2, 2, Align::Any},
            {OP(kroiBGRToYCbCr420_709CSC_8u_AC4P2R), SrcL::AC4, true, P2cb, k420Csc8, DNS, 2, 2, Align::Any},
            {OP(kroiBGRToYCbCr420_709CSC_8u_C3P3R), SrcL::C3, true, P3cb, k420CscH, DNS, 2, 2, Align::Any},
            {OP(kroiBGRToYCbCr420_709CSC_8u_AC4P3R), SrcL::AC4, true, P3cb, k420CscH, DNS, 2, 2, Align::Any},
            {OP(kroiBGRToYCrCb420_709CSC_8u_C3P3R), SrcL::C3, true, P3cr, k420CscH, DNS, 2, 2, Align::Any},
            {OP(kroiBGRToYCrCb420_709CSC_8u_AC4P3R), SrcL::AC4, true, P3cr, k420CscH, DNS, 2, 2, Align::Any},
            {OP(kroiBGRToYCbCr420_709HDTV_8u_AC4P3R), SrcL::AC4, true, P3cb, k420Hdtv, DNS, 2, 2, Align::Any},
            {OP(kroiBGRToYUV420_8u_AC4P3R), SrcL::AC4, true, P3cb, k420YuvAc4, NSD, 1, 1, Align::Any},
            {OP(kroiRGBToYUV420_8u_C3P3R), SrcL::C3, false, P3cb, k420YuvC3, NSD, 1, 1, Align::Any},
            {OP(kroiRGBToYUV420_8u_P3R), SrcL::P3, false, P3cb, k420YuvP3, NSD, 1, 1, Align::Any},
            // 4:2:2
            {OP(kroiBGRToYCbCr422_8u_C3C2R), SrcL::C3, true, C2ycbcr, k422Bgr, NS, 2, 1, Align::Any},
            {OP(kroiBGRToYCbCr422_8u_AC4C2R), SrcL::AC4, true, C2ycbcr, k422Bgr, NS, 2, 1, Align::Any},
            {OP(kroiBGRToYCbCr422_8u_C3P3R), SrcL::C3, true, P3cb, k422Bgr, DNS, 2, 1, Align::Any},
            {OP(kroiBGRToYCbCr422_8u_AC4P3R), SrcL::AC4, true, P3cb, k422Bgr, DNS, 2, 1, Align::Any},
            {OP(kroiRGBToYCbCr422_8u_C3P3R), SrcL::C3, false, P3cb, k422Bgr, DNS, 2, 1, Align::Any},
            {OP(kroiRGBToYCbCr422_8u_C3C2R), SrcL::C3, false, C2ycbcr, k422Rgb, NS, 1, 1, Align::Any},
            {OP(kroiRGBToYCrCb422_8u_C3C2R), SrcL::C3, false, C2ycrcb, k422Rgb, NS, 1, 1, Align::Any},
            {OP(kroiRGBToYCbCr422_8u_P3C2R), SrcL::P3, false, C2ycbcr, k422Rgb, NSD, 1, 1, Align::Any},
            {OP(kroiRGBToYCrCb422_8u_P3C2R), SrcL::P3, false, C2ycrcb, k422Rgb, NSD, 1, 1, Align::Any},
            {OP(kroiBGRToCbYCr422_8u_AC4C2R), SrcL::AC4, true, C2cbycr, k422CbYCr, NS, 1, 1, Align::Any},
            {OP(kroiBGRToCbYCr422_709HDTV_8u_AC4C2R), SrcL::AC4, true, C2cbycr, k422HdtvAc4, NS, 1, 1, Align::Any},
            {OP(kroiBGRToCbYCr422_709HDTV_8u_C3C2R), SrcL::C3, true, C2cbycr, k422HdtvC3, NS, 1, 1, Align::Any},
            {OP(kroiRGBToCbYCr422_8u_C3C2R), SrcL::C3, false, C2cbycr, k422Filter, NS, 1, 1, Align::Any},
            {OP(kroiRGBToYUV422_8u_C3C2R), SrcL::C3, false, C2ycbcr, k422YuvC2, NS, 1, 1, Align::Any},
            {OP(kroiRGBToYUV422_8u_C3P3R), SrcL::C3, false, P3cb, k422YuvC3P3, NSD, 1, 1, Align::Unaligned},
            {OP(kroiRGBToYUV422_8u_C3P3R), SrcL::C3, false, P3cb, k422YuvC3P3Aligned, NSD, 1, 1, Align::Aligned},
            {OP(kroiRGBToYUV422_8u_P3R), SrcL::P3, false, P3cb, k422YuvP3, NSD, 1, 1, Align::Any},
            // 4:1:1
            {OP(kroiBGRToYCbCr411_8u_AC4P3R), SrcL::AC4, true, P3cb, k411Ac4, DNS, 4, 1, Align::Any},
            {OP(kroiBGRToYCbCr411_8u_C3P3R), SrcL::C3, true, P3cb, k411C3, DNS, 4, 1, Align::Any},
        };
        std::vector<EncOp> v;
        for (auto& r : rows) {
            std::string name = r.name;
            if (r.align == Align::Aligned) name += "_aligned";
            if (r.align == Align::Unaligned) name += "_unaligned";
            v.push_back({name, r.src, r.bgr, r.out, r.desc, r.checks, r.minW, r.minH, r.call, r.align});
        }
        return v;
    }();
    return ops;
}

class EncodeOp : public ::testing::TestWithParam<int> {};

TEST_P(EncodeOp, MatchesReferenceAtEveryColumn) { sweepEncode(encOps()[GetParam()]); }
TEST_P(EncodeOp, ChecksInOrderAndWritesNothingOnFailure) { checkEncodeStatuses(encOps()[GetParam()]); }

std::vector<int> fourSampleOps() {
    std::vector<int> v;
    for (size_t i = 0; i < encOps().size(); ++i)
        if (encOps()[i].src == SrcL::AC4) v.push_back(int(i));
    return v;
}

class EncodeFourSampleOp : public ::testing::TestWithParam<int> {};

// The fourth sample of an AC4 or C4 source reaches no output.
TEST_P(EncodeFourSampleOp, FourthSourceSampleHasNoInfluence) {
    const EncOp& op = encOps()[GetParam()];
    for (int W : {7, 16, 37, 64}) {
        EncImages a = makeImages(op, W, 4, 3, Guard::After, false);
        EncImages b = makeImages(op, W, 4, 3, Guard::After, false);
        // same colours, same destination contents, different fourth samples
        for (int y = 0; y < 4; ++y) {
            std::memcpy(b.src[0].row(y), a.src[0].row(y), size_t(4 * W));
            for (int x = 0; x < W; ++x) b.src[0].row(y)[4 * x + 3] = Kro8u(~a.src[0].row(y)[4 * x + 3]);
        }
        for (size_t k = 0; k < a.dst.size(); ++k)
            std::memcpy(b.dst[k].buf.data(), a.dst[k].buf.data(), a.dst[k].buf.size());
        callOn(op, a, {W, 4});
        callOn(op, b, {W, 4});
        for (size_t k = 0; k < a.dst.size(); ++k) EXPECT_TRUE(a.dst[k].snapshot() == b.dst[k].snapshot()) << op.name << " width " << W;
    }
}

INSTANTIATE_TEST_SUITE_P(All, EncodeOp, ::testing::Range(0, int(encOps().size())),
                         [](const ::testing::TestParamInfo<int>& i) { return encOps()[i.param].name; });
INSTANTIATE_TEST_SUITE_P(All, EncodeFourSampleOp, ::testing::ValuesIn(fourSampleOps()),
                         [](const ::testing::TestParamInfo<int>& i) { return encOps()[i.param].name; });

}  // namespace

// ------------------------------------------------------------ forms without steps
namespace {

// One stepless call on packed rows in guarded buffers, against the reference
// of the region form (derived steps) or of one row of W x H pixels.
void steplessCase(bool planar, bool is422, int W, int H, Guard g) {
    const int cw = is422 ? (W + 1) / 2 : W / 2, ch = is422 ? H : H / 2;
    const size_t n = size_t(W) * H;
    std::vector<GuardedBuf> src;
    for (int k = 0; k < (planar ? 3 : 1); ++k) {
        src.emplace_back(planar ? n : 3 * n, g);
        fillRandom(src.back().data(), src.back().size());
    }
    GuardedBuf dst[3] = {GuardedBuf(n, g), GuardedBuf(size_t(cw) * ch, g), GuardedBuf(size_t(cw) * ch, g)};
    std::vector<std::vector<uint8_t>> want;
    for (auto& d : dst) {
        fillRandom(d.data(), d.size());
        want.emplace_back(d.data(), d.data() + d.size());
    }
    const Kro8u* sp[3] = {src[0].data(), planar ? src[1].data() : nullptr, planar ? src[2].data() : nullptr};
    Kro8u* dp[3] = {dst[0].data(), dst[1].data(), dst[2].data()};

    // which forms the image takes
    const bool flat = is422 && !(n < 256 || W % 2);
    auto a16 = [](const void* p) { return (reinterpret_cast<uintptr_t>(p) & 15) == 0; };
    const bool aligned = a16(sp[0]) && a16(dp[0]) && a16(dp[1]) && a16(dp[2]) && (3 * W) % 16 == 0 &&
                         W % 16 == 0 && cw % 16 == 0;
    EncDesc desc = planar ? (is422 ? k422YuvP3 : k420YuvP3) : (is422 ? k422YuvC3P3 : k420YuvC3);
    if (!planar && is422 && !flat && aligned) desc = k422YuvC3P3Aligned;

    ref::Image img;
    for (auto* p : sp)
        if (p) img.planes.push_back(p);
    img.step = planar ? W : 3 * W;
    img.bytesPerPixel = 3;
    img.bgr = false;
    ref::Dest d{P3cb, {want[0].data(), want[1].data(), want[2].data()}, {W, cw, cw}};
    if (flat)
        ref::refEncode(desc, img, d, int(n), 1);
    else
        ref::refEncode(desc, img, d, W, H);

    const KroStatus st = planar ? (is422 ? kroiRGBToYUV422_8u_P3(sp, dp, {W, H}) : kroiRGBToYUV420_8u_P3(sp, dp, {W, H}))
                                : (is422 ? kroiRGBToYUV422_8u_C3P3(sp[0], dp, {W, H})
                                         : kroiRGBToYUV420_8u_C3P3(sp[0], dp, {W, H}));
    const KroStatus wantSt = !is422 && (W % 2 || H % 2) ? kroStatusOddSize : kroStatusOk;
    const std::string what = std::string(planar ? "P3" : "C3P3") + (is422 ? " 4:2:2 " : " 4:2:0 ") +
                             std::to_string(W) + " x " + std::to_string(H) + (flat ? " as one row" : "") +
                             (desc.mainY == 11 && is422 ? " aligned" : "");
    EXPECT_EQ(st, wantSt) << what;
    for (int k = 0; k < 3; ++k)
        ASSERT_TRUE(std::equal(want[k].begin(), want[k].end(), dst[k].data())) << what << " plane " << k;
}

TEST(EncodeStepless, RegionFormsOnPackedRows420) {
    for (bool planar : {false, true})
        for (int W : {1, 2, 3, 7, 16, 17, 31, 32, 33, 50})
            for (int H : {1, 2, 3, 6})
                for (Guard g : {Guard::After, Guard::Before}) steplessCase(planar, false, W, H, g);
}

// Below 256 pixels or of odd width: row by row (the aligned forms for C3P3 where
// every address and derived step allows); otherwise one row of W x H pixels.
TEST(EncodeStepless, RowsOrOneRow422) {
    for (bool planar : {false, true})
        for (auto [W, H] : std::vector<std::pair<int, int>>{{1, 1},  {3, 5},  {15, 17}, {17, 16}, {33, 9}, {32, 4},
                                                             {32, 7}, {64, 3}, {16, 16}, {18, 15}, {14, 19}, {40, 9},
                                                             {2, 200}, {6, 43}, {100, 3}})
            for (Guard g : {Guard::After, Guard::Before}) steplessCase(planar, true, W, H, g);
}

TEST(EncodeStepless, ChecksInOrder) {
    Kro8u buf[64] = {};
    const Kro8u* sp[3] = {buf, buf, buf};
    Kro8u* dp[3] = {buf, buf, buf};
    const Kro8u* sNull[3] = {buf, nullptr, buf};
    Kro8u* dNull[3] = {buf, buf, nullptr};
    for (auto f : {kroiRGBToYUV420_8u_C3P3, kroiRGBToYUV422_8u_C3P3}) {
        EXPECT_EQ(f(nullptr, dp, {2, 2}), kroStatusNullPointer);
        EXPECT_EQ(f(buf, nullptr, {0, 2}), kroStatusNullPointer);
        EXPECT_EQ(f(buf, dNull, {0, 2}), kroStatusBadSize);  // size before the planes
        EXPECT_EQ(f(buf, dNull, {2, 2}), kroStatusNullPointer);
        EXPECT_EQ(f(buf, dp, {2, -2}), kroStatusBadSize);
    }
    for (auto f : {kroiRGBToYUV420_8u_P3, kroiRGBToYUV422_8u_P3}) {
        EXPECT_EQ(f(nullptr, dp, {2, 2}), kroStatusNullPointer);
        EXPECT_EQ(f(sp, nullptr, {2, 2}), kroStatusNullPointer);
        EXPECT_EQ(f(sNull, dp, {-1, 2}), kroStatusBadSize);
        EXPECT_EQ(f(sNull, dp, {2, 2}), kroStatusNullPointer);
        EXPECT_EQ(f(sp, dNull, {2, 2}), kroStatusNullPointer);
    }
    for (Kro8u b : buf) EXPECT_EQ(b, 0);
}

}  // namespace
