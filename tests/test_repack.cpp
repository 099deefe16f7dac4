// Repackers between subsampled layouts: every operation against the plain
// reference at every width around the 16-sample steps and the 128-pixel
// chunks, odd and even heights, independent plane steps (also negative),
// guarded planes and canaries; the statuses and their order; the examples of
// the rules (odd-row chroma vanishing, fold and unfold as inverses).
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "harness.h"
#include "krocc.h"
#include "ref_repack.h"

using namespace kt;
using namespace kt::rep;

namespace {

// ------------------------------------------------------------ calls
// Plane addresses and steps of both sides (one used for C2, Y and pairs for P2,
// three for P3); the flags pass a null plane array or step array instead.
struct Args {
    Kro8u* sp[3] = {};
    int ss[3] = {};
    Kro8u* dp[3] = {};
    int ds[3] = {};
    kroiSize roi{};
    bool srcArrNull = false, srcStepNull = false, dstArrNull = false, dstStepNull = false;
};
using Call = KroStatus (*)(const Args&);

template <auto F>
KroStatus callC2R(const Args& a) { return F(a.sp[0], a.ss[0], a.dp[0], a.ds[0], a.roi); }
template <auto F>
KroStatus callC2P3R(const Args& a) {
    return F(a.sp[0], a.ss[0], a.dstArrNull ? nullptr : a.dp, a.dstStepNull ? nullptr : a.ds, a.roi);
}
template <auto F>
KroStatus callC2P2R(const Args& a) { return F(a.sp[0], a.ss[0], a.dp[0], a.ds[0], a.dp[1], a.ds[1], a.roi); }
template <auto F>
KroStatus callP3C2R(const Args& a) {
    return F(a.srcArrNull ? nullptr : a.sp, a.srcStepNull ? nullptr : a.ss, a.dp[0], a.ds[0], a.roi);
}
template <auto F>
KroStatus callP3P2R(const Args& a) {
    return F(a.srcArrNull ? nullptr : a.sp, a.srcStepNull ? nullptr : a.ss, a.dp[0], a.ds[0], a.dp[1], a.ds[1],
             a.roi);
}
template <auto F>
KroStatus callP3R(const Args& a) {
    return F(a.srcArrNull ? nullptr : a.sp, a.srcStepNull ? nullptr : a.ss, a.dstArrNull ? nullptr : a.dp,
             a.dstStepNull ? nullptr : a.ds, a.roi);
}
template <auto F>
KroStatus callP2C2R(const Args& a) { return F(a.sp[0], a.ss[0], a.sp[1], a.ss[1], a.dp[0], a.ds[0], a.roi); }
template <auto F>
KroStatus callP2P3R(const Args& a) {
    return F(a.sp[0], a.ss[0], a.sp[1], a.ss[1], a.dstArrNull ? nullptr : a.dp, a.dstStepNull ? nullptr : a.ds,
             a.roi);
}

// ------------------------------------------------------------ layouts
constexpr Fmt C2YCbCr{K::C2, 2, 1, Pk::YCbCr, false};
constexpr Fmt C2CbYCr{K::C2, 2, 1, Pk::CbYCr, false};
constexpr Fmt C2YCrCb{K::C2, 2, 1, Pk::YCrCb, false};
constexpr Fmt P3_422{K::P3, 2, 1, Pk::YCbCr, false};
constexpr Fmt P3_422Cr{K::P3, 2, 1, Pk::YCbCr, true};
constexpr Fmt P3_420{K::P3, 2, 2, Pk::YCbCr, false};
constexpr Fmt P3_420Cr{K::P3, 2, 2, Pk::YCbCr, true};
constexpr Fmt P3_411{K::P3, 4, 1, Pk::YCbCr, false};
constexpr Fmt P2_420{K::P2, 2, 2, Pk::YCbCr, false};
constexpr Fmt P2_420Cr{K::P2, 2, 2, Pk::YCbCr, true};
constexpr Fmt P2_411{K::P2, 4, 1, Pk::YCbCr, false};

struct RepOp {
    const char* name;
    Rule rule;
    Fmt src, dst;
    int minW, minH;          // minH 0: the height is not tested
    bool warnOddWidth;       // +35 for an odd width
    bool sizeBeforeElements; // null, width and height at least 1, plane elements, smallest region
    Call call;
};

// kroiYCbCr420ToYCrCb420_8u_P2P3R sends the first byte of each pair to element 1
// and the second to element 2: with Cb-first pairs, element 1 holds Cb.
const std::vector<RepOp>& ops() {
    static const std::vector<RepOp> v = {
    {"kroiCbYCr422ToYCbCr422_8u_C2R", Rule::Keep, C2CbYCr, C2YCbCr, 2, 1, false, false, callC2R<kroiCbYCr422ToYCbCr422_8u_C2R>},
    {"kroiCbYCr422ToYCbCr422_8u_C2P3R", Rule::Keep, C2CbYCr, P3_422, 2, 1, false, false, callC2P3R<kroiCbYCr422ToYCbCr422_8u_C2P3R>},
    {"kroiYCbCr422ToCbYCr422_8u_C2R", Rule::Keep, C2YCbCr, C2CbYCr, 2, 1, false, false, callC2R<kroiYCbCr422ToCbYCr422_8u_C2R>},
    {"kroiYCbCr422ToCbYCr422_8u_P3C2R", Rule::Keep, P3_422, C2CbYCr, 2, 1, true, false, callP3C2R<kroiYCbCr422ToCbYCr422_8u_P3C2R>},
    {"kroiYCbCr422ToYCrCb422_8u_C2R", Rule::Keep, C2YCbCr, C2YCrCb, 2, 0, false, false, callC2R<kroiYCbCr422ToYCrCb422_8u_C2R>},
    {"kroiYCbCr422ToYCrCb422_8u_P3C2R", Rule::Keep, P3_422, C2YCrCb, 2, 0, false, false, callP3C2R<kroiYCbCr422ToYCrCb422_8u_P3C2R>},
    {"kroiYCrCb422ToYCbCr422_8u_C2P3R", Rule::Keep, C2YCrCb, P3_422, 2, 1, false, false, callC2P3R<kroiYCrCb422ToYCbCr422_8u_C2P3R>},
    {"kroiYCbCr422_8u_C2P3R", Rule::Keep, C2YCbCr, P3_422, 2, 1, false, false, callC2P3R<kroiYCbCr422_8u_C2P3R>},
    {"kroiYCbCr422_8u_P3C2R", Rule::Keep, P3_422, C2YCbCr, 2, 1, false, false, callP3C2R<kroiYCbCr422_8u_P3C2R>},
    {"kroiYCbCr420_8u_P2P3R", Rule::Keep, P2_420, P3_420, 2, 2, false, false, callP2P3R<kroiYCbCr420_8u_P2P3R>},
    {"kroiYCbCr420_8u_P3P2R", Rule::Keep, P3_420, P2_420, 2, 2, false, false, callP3P2R<kroiYCbCr420_8u_P3P2R>},
    {"kroiYCbCr420ToYCrCb420_8u_P2P3R", Rule::Keep, P2_420, P3_420, 2, 2, false, true, callP2P3R<kroiYCbCr420ToYCrCb420_8u_P2P3R>},
    {"kroiYCrCb420ToYCbCr420_8u_P3P2R", Rule::Keep, P3_420Cr, P2_420, 2, 2, false, false, callP3P2R<kroiYCrCb420ToYCbCr420_8u_P3P2R>},
    {"kroiYCbCr411_8u_P2P3R", Rule::Keep, P2_411, P3_411, 4, 0, false, false, callP2P3R<kroiYCbCr411_8u_P2P3R>},
    {"kroiYCbCr411_8u_P3P2R", Rule::Keep, P3_411, P2_411, 4, 0, false, false, callP3P2R<kroiYCbCr411_8u_P3P2R>},
    {"kroiCbYCr422ToYCbCr420_8u_C2P2R", Rule::DropRows, C2CbYCr, P2_420, 2, 2, false, false, callC2P2R<kroiCbYCr422ToYCbCr420_8u_C2P2R>},
    {"kroiCbYCr422ToYCbCr420_8u_C2P3R", Rule::DropRows, C2CbYCr, P3_420, 2, 2, false, false, callC2P3R<kroiCbYCr422ToYCbCr420_8u_C2P3R>},
    {"kroiCbYCr422ToYCrCb420_8u_C2P3R", Rule::DropRows, C2CbYCr, P3_420Cr, 2, 2, false, false, callC2P3R<kroiCbYCr422ToYCrCb420_8u_C2P3R>},
    {"kroiYCbCr422ToYCbCr420_8u_C2P2R", Rule::DropRows, C2YCbCr, P2_420, 2, 2, false, false, callC2P2R<kroiYCbCr422ToYCbCr420_8u_C2P2R>},
    {"kroiYCbCr422ToYCbCr420_8u_C2P3R", Rule::DropRows, C2YCbCr, P3_420, 2, 2, false, false, callC2P3R<kroiYCbCr422ToYCbCr420_8u_C2P3R>},
    {"kroiYCbCr422ToYCbCr420_8u_P3P2R", Rule::DropRows, P3_422, P2_420, 2, 2, false, false, callP3P2R<kroiYCbCr422ToYCbCr420_8u_P3P2R>},
    {"kroiYCbCr422ToYCbCr420_8u_P3R", Rule::DropRows, P3_422, P3_420, 2, 2, false, false, callP3R<kroiYCbCr422ToYCbCr420_8u_P3R>},
    {"kroiYCbCr422ToYCrCb420_8u_C2P2R", Rule::DropRows, C2YCbCr, P2_420Cr, 2, 2, false, false, callC2P2R<kroiYCbCr422ToYCrCb420_8u_C2P2R>},
    {"kroiYCbCr422ToYCrCb420_8u_C2P3R", Rule::DropRows, C2YCbCr, P3_420Cr, 2, 2, false, false, callC2P3R<kroiYCbCr422ToYCrCb420_8u_C2P3R>},
    {"kroiYCrCb422ToYCbCr420_8u_C2P3R", Rule::DropRows, C2YCrCb, P3_420, 2, 2, false, false, callC2P3R<kroiYCrCb422ToYCbCr420_8u_C2P3R>},
    {"kroiYCbCr420ToCbYCr422_8u_P2C2R", Rule::DoubleRows, P2_420, C2CbYCr, 2, 2, false, false, callP2C2R<kroiYCbCr420ToCbYCr422_8u_P2C2R>},
    {"kroiYCbCr420ToYCbCr422_8u_P2C2R", Rule::DoubleRows, P2_420, C2YCbCr, 2, 2, false, false, callP2C2R<kroiYCbCr420ToYCbCr422_8u_P2C2R>},
    {"kroiYCbCr420ToYCbCr422_8u_P2P3R", Rule::DoubleRows, P2_420, P3_422, 2, 2, false, false, callP2P3R<kroiYCbCr420ToYCbCr422_8u_P2P3R>},
    {"kroiYCbCr420ToYCbCr422_8u_P3R", Rule::DoubleRows, P3_420, P3_422, 2, 2, false, false, callP3R<kroiYCbCr420ToYCbCr422_8u_P3R>},
    {"kroiYCrCb420ToCbYCr422_8u_P3C2R", Rule::DoubleRows, P3_420Cr, C2CbYCr, 2, 2, false, false, callP3C2R<kroiYCrCb420ToCbYCr422_8u_P3C2R>},
    {"kroiYCrCb420ToYCbCr422_8u_P3C2R", Rule::DoubleRows, P3_420Cr, C2YCbCr, 2, 2, false, false, callP3C2R<kroiYCrCb420ToYCbCr422_8u_P3C2R>},
    {"kroiYCrCb420ToYCbCr422_8u_P3R", Rule::DoubleRows, P3_420Cr, P3_422, 2, 2, false, false, callP3R<kroiYCrCb420ToYCbCr422_8u_P3R>},
    {"kroiCbYCr422ToYCbCr411_8u_C2P3R", Rule::DropCols, C2CbYCr, P3_411, 4, 0, false, false, callC2P3R<kroiCbYCr422ToYCbCr411_8u_C2P3R>},
    {"kroiYCbCr422ToYCbCr411_8u_C2P2R", Rule::DropCols, C2YCbCr, P2_411, 4, 0, false, false, callC2P2R<kroiYCbCr422ToYCbCr411_8u_C2P2R>},
    {"kroiYCbCr422ToYCbCr411_8u_C2P3R", Rule::DropCols, C2YCbCr, P3_411, 4, 1, false, false, callC2P3R<kroiYCbCr422ToYCbCr411_8u_C2P3R>},
    {"kroiYCbCr422ToYCbCr411_8u_P3P2R", Rule::DropCols, P3_422, P2_411, 4, 0, false, false, callP3P2R<kroiYCbCr422ToYCbCr411_8u_P3P2R>},
    {"kroiYCbCr422ToYCbCr411_8u_P3R", Rule::DropCols, P3_422, P3_411, 4, 0, false, false, callP3R<kroiYCbCr422ToYCbCr411_8u_P3R>},
    {"kroiYCrCb422ToYCbCr411_8u_C2P3R", Rule::DropCols, C2YCrCb, P3_411, 4, 0, false, false, callC2P3R<kroiYCrCb422ToYCbCr411_8u_C2P3R>},
    {"kroiYCbCr411ToYCbCr422_8u_P2C2R", Rule::DoubleCols, P2_411, C2YCbCr, 4, 0, false, false, callP2C2R<kroiYCbCr411ToYCbCr422_8u_P2C2R>},
    {"kroiYCbCr411ToYCbCr422_8u_P2P3R", Rule::DoubleCols, P2_411, P3_422, 4, 0, false, false, callP2P3R<kroiYCbCr411ToYCbCr422_8u_P2P3R>},
    {"kroiYCbCr411ToYCbCr422_8u_P3C2R", Rule::DoubleCols, P3_411, C2YCbCr, 4, 0, false, false, callP3C2R<kroiYCbCr411ToYCbCr422_8u_P3C2R>},
    {"kroiYCbCr411ToYCbCr422_8u_P3R", Rule::DoubleCols, P3_411, P3_422, 4, 0, false, false, callP3R<kroiYCbCr411ToYCbCr422_8u_P3R>},
    {"kroiYCbCr411ToYCrCb422_8u_P3C2R", Rule::DoubleCols, P3_411, C2YCrCb, 4, 0, false, false, callP3C2R<kroiYCbCr411ToYCrCb422_8u_P3C2R>},
    {"kroiYCbCr411ToYCrCb422_8u_P3R", Rule::DoubleCols, P3_411, P3_422Cr, 4, 0, false, false, callP3R<kroiYCbCr411ToYCrCb422_8u_P3R>},
    {"kroiYCbCr411ToYCbCr420_8u_P2P3R", Rule::Fold, P2_411, P3_420, 4, 2, false, false, callP2P3R<kroiYCbCr411ToYCbCr420_8u_P2P3R>},
    {"kroiYCbCr411ToYCbCr420_8u_P3P2R", Rule::Fold, P3_411, P2_420, 4, 2, false, false, callP3P2R<kroiYCbCr411ToYCbCr420_8u_P3P2R>},
    {"kroiYCbCr411ToYCbCr420_8u_P3R", Rule::Fold, P3_411, P3_420, 4, 2, false, false, callP3R<kroiYCbCr411ToYCbCr420_8u_P3R>},
    {"kroiYCbCr411ToYCrCb420_8u_P2P3R", Rule::Fold, P2_411, P3_420Cr, 4, 2, false, false, callP2P3R<kroiYCbCr411ToYCrCb420_8u_P2P3R>},
    {"kroiYCbCr420ToYCbCr411_8u_P2P3R", Rule::Unfold, P2_420, P3_411, 4, 2, false, false, callP2P3R<kroiYCbCr420ToYCbCr411_8u_P2P3R>},
    {"kroiYCbCr420ToYCbCr411_8u_P3P2R", Rule::Unfold, P3_420, P2_411, 4, 2, false, false, callP3P2R<kroiYCbCr420ToYCbCr411_8u_P3P2R>},
    {"kroiYCrCb420ToYCbCr411_8u_P3P2R", Rule::Unfold, P3_420Cr, P2_411, 4, 2, false, false, callP3P2R<kroiYCrCb420ToYCbCr411_8u_P3P2R>},
    };
    return v;
}

int planeCount(const Fmt& f) { return f.k == K::C2 ? 1 : f.k == K::P3 ? 3 : 2; }

void planeDims(const Fmt& f, int k, int W, int H, int& bytes, int& rows) {
    if (f.k == K::C2) {
        bytes = 2 * W, rows = H;
    } else if (k == 0) {
        bytes = W, rows = H;
    } else {
        bytes = (f.k == K::P3 ? 1 : 2) * (W / f.bw), rows = H / f.bh;
    }
}

// One side's planes, each with its own padding (so its own step) and guard.
struct Img {
    std::vector<Plane> planes;
    Img(const Fmt& f, int W, int H, int seed) {
        for (int k = 0; k < planeCount(f); ++k) {
            int bytes, rows;
            planeDims(f, k, W, H, bytes, rows);
            if (rows < 1) rows = 1;
            const int pad = (seed * 7 + k * 5) % 23;
            planes.emplace_back(bytes, rows, pad, (seed + k) % 2 ? Guard::Before : Guard::After, (seed + k) % 5 == 3);
        }
    }
    std::vector<std::vector<uint8_t>> snap() const {
        std::vector<std::vector<uint8_t>> s;
        for (auto& p : planes) s.push_back(p.snapshot());
        return s;
    }
    Side side() const {
        Side s{};
        for (size_t k = 0; k < planes.size(); ++k) s.p[k] = planes[k].origin(), s.s[k] = planes[k].step;
        return s;
    }
    Side sideIn(std::vector<std::vector<uint8_t>>& snaps) const {
        Side s{};
        for (size_t k = 0; k < planes.size(); ++k) s.p[k] = planes[k].rowIn(snaps[k], 0), s.s[k] = planes[k].step;
        return s;
    }
    std::string diff(const std::vector<std::vector<uint8_t>>& want) const {
        for (size_t k = 0; k < planes.size(); ++k) {
            const std::string d = diffPlane(planes[k], want[k], 1);
            if (!d.empty()) return "plane " + std::to_string(k) + ": " + d;
        }
        return {};
    }
};

Args argsOf(const Img& s, const Img& d, kroiSize roi) {
    Args a;
    const Side ss = s.side(), ds = d.side();
    for (int k = 0; k < 3; ++k) a.sp[k] = ss.p[k], a.ss[k] = ss.s[k], a.dp[k] = ds.p[k], a.ds[k] = ds.s[k];
    a.roi = roi;
    return a;
}

int wholeWidth(const RepOp& op, int W) {
    const int bw = op.src.bw > op.dst.bw ? op.src.bw : op.dst.bw;
    return W / bw * bw;
}
int wholeHeight(const RepOp& op, int H) {
    const int bh = op.src.bh > op.dst.bh ? op.src.bh : op.dst.bh;
    return H / bh * bh;
}

// One call against the reference. The source holds only the whole blocks, so
// reading a column or row past them faults; the destination spans the whole
// region, and what lies past the whole blocks must stay as it was.
void checkOne(const RepOp& op, int W, int H, int seed) {
    const int Wr = wholeWidth(op, W), Hr = wholeHeight(op, H);
    Img src(op.src, Wr, Hr, seed), dst(op.dst, W, H, seed + 1);
    auto srcWant = src.snap();
    auto dstWant = dst.snap();
    repack(op.rule, op.src, src.side(), op.dst, dst.sideIn(dstWant), Wr, Hr);
    const KroStatus want = op.warnOddWidth && (W & 1) ? kroStatusOddSize : kroStatusOk;
    ASSERT_EQ(op.call(argsOf(src, dst, {W, H})), want) << op.name << " " << W << "x" << H;
    const std::string d = dst.diff(dstWant);
    ASSERT_TRUE(d.empty()) << op.name << " " << W << "x" << H << " destination " << d;
    ASSERT_TRUE(src.diff(srcWant).empty()) << op.name << " source changed";
}

std::vector<int> widths() {
    std::vector<int> w;
    for (int i = 1; i <= 140; ++i) w.push_back(i);
    for (int i : {190, 191, 192, 193, 194, 196, 254, 255, 256, 257, 258, 260, 387, 388, 389}) w.push_back(i);
    return w;
}

class Repack : public ::testing::TestWithParam<int> {};

TEST_P(Repack, MatchesReferenceAtEveryWidth) {
    const RepOp& op = ops()[GetParam()];
    int seed = 0;
    for (int W : widths()) {
        if (W < op.minW) continue;
        for (int H : {1, 2, 3, 4, 5}) {
            if (H < op.minH) continue;
            if (W > 140 && H > 3) continue;
            checkOne(op, W, H, ++seed);
            if (::testing::Test::HasFatalFailure()) return;
        }
    }
}

// Taller regions: many chroma rows, in the rules that pick rows by parity.
TEST_P(Repack, TallRegions) {
    const RepOp& op = ops()[GetParam()];
    for (int H : {6, 7, 8, 9, 16, 17})
        for (int W : {4, 36, 70, 133}) {
            checkOne(op, W, H, H * W);
            if (::testing::Test::HasFatalFailure()) return;
        }
}

TEST_P(Repack, ChecksInOrderAndWritesNothingOnFailure) {
    const RepOp& op = ops()[GetParam()];
    Img src(op.src, 8, 4, 1), dst(op.dst, 8, 4, 2);
    const auto want = dst.snap();
    const Args good = argsOf(src, dst, {8, 4});
    auto expect = [&](Args a, KroStatus st, const char* what) {
        EXPECT_EQ(op.call(a), st) << op.name << ": " << what;
        EXPECT_TRUE(dst.diff(want).empty()) << op.name << ": " << what << " wrote";
    };
    auto withRoi = [&](Args a, int w, int h) {
        a.roi = {w, h};
        return a;
    };
    ASSERT_EQ(op.call(good), kroStatusOk);
    // restore the destination written by the good call
    for (size_t k = 0; k < dst.planes.size(); ++k) std::copy(want[k].begin(), want[k].end(), dst.planes[k].buf.data());

    // every address and the plane arrays: -8, also with a zero width
    std::vector<std::pair<Args, const char*>> nulls, steps;
    {
        Args a = good;
        if (op.src.k == K::P3) {
            a.srcArrNull = true, nulls.push_back({a, "source array"}), a = good;
            a.srcStepNull = true, steps.push_back({a, "source steps"}), a = good;
        } else {
            for (int k = 0; k < planeCount(op.src); ++k) a.sp[k] = nullptr, nulls.push_back({a, "source"}), a = good;
        }
        if (op.dst.k == K::P3) {
            a.dstArrNull = true, nulls.push_back({a, "destination array"}), a = good;
            a.dstStepNull = true, steps.push_back({a, "destination steps"}), a = good;
        } else {
            for (int k = 0; k < planeCount(op.dst); ++k)
                a.dp[k] = nullptr, nulls.push_back({a, "destination"}), a = good;
        }
    }
    for (auto& [a, what] : nulls) {
        expect(a, kroStatusNullPointer, what);
        expect(withRoi(a, 0, 4), kroStatusNullPointer, what);
        expect(withRoi(a, 8, -1), kroStatusNullPointer, what);
    }
    // a step array is no address: null fails after the size, but in the two
    // forms that test their step array with the addresses
    const std::string name = op.name;
    const bool stepsFirst = name == "kroiYCbCr422_8u_C2P3R" || name == "kroiYCrCb422ToYCbCr422_8u_C2P3R";
    for (auto& [a, what] : steps) {
        expect(a, kroStatusNullPointer, what);
        expect(withRoi(a, 0, 4), stepsFirst ? kroStatusNullPointer : kroStatusBadSize, what);
        expect(withRoi(a, 8, -1), stepsFirst || op.minH == 0 ? kroStatusNullPointer : kroStatusBadSize, what);
    }
    // plane elements: before the size, but for the one form that tests width and height first
    std::vector<Args> elements;
    for (int k = 0; k < 3; ++k) {
        if (op.src.k == K::P3) {
            Args a = good;
            a.sp[k] = nullptr;
            elements.push_back(a);
        }
        if (op.dst.k == K::P3) {
            Args a = good;
            a.dp[k] = nullptr;
            elements.push_back(a);
        }
    }
    for (const Args& a : elements) {
        expect(a, kroStatusNullPointer, "plane element");
        expect(withRoi(a, 0, 4), op.sizeBeforeElements ? kroStatusBadSize : kroStatusNullPointer,
               "plane element, zero width");
        expect(withRoi(a, 1, 1), kroStatusNullPointer, "plane element, 1 x 1");
    }
    if (op.sizeBeforeElements) expect(withRoi(good, 1, 1), kroStatusBadSize, "1 x 1");
    // the smallest region
    expect(withRoi(good, op.minW - 1, 4), kroStatusBadSize, "width below the smallest");
    expect(withRoi(good, 0, 4), kroStatusBadSize, "zero width");
    expect(withRoi(good, -5, 4), kroStatusBadSize, "negative width");
    if (op.minH > 0) {
        expect(withRoi(good, 8, op.minH - 1), kroStatusBadSize, "height below the smallest");
        expect(withRoi(good, 8, -2), kroStatusBadSize, "negative height");
    } else {
        expect(withRoi(good, 8, 0), kroStatusOk, "zero height");
        expect(withRoi(good, 8, -3), kroStatusOk, "negative height");
    }
}

INSTANTIATE_TEST_SUITE_P(All, Repack, ::testing::Range(0, int(ops().size())),
                         [](const ::testing::TestParamInfo<int>& i) { return std::string(ops()[i.param].name); });

// ------------------------------------------------------------ examples
// A 4:2:2 image whose odd rows hold other chroma: Drop rows loses them without
// trace, and Double rows gives the even rows' chroma to every row.
TEST(RepackExamples, OddRowChromaVanishes) {
    const int W = 8, H = 4;
    std::vector<Kro8u> y(W * H), cb(W / 2 * H), cr(W / 2 * H);
    for (int r = 0; r < H; ++r)
        for (int i = 0; i < W / 2; ++i) {
            cb[r * W / 2 + i] = static_cast<Kro8u>(r % 2 ? 200 : 10 + i);
            cr[r * W / 2 + i] = static_cast<Kro8u>(r % 2 ? 220 : 50 + i);
        }
    for (int k = 0; k < W * H; ++k) y[k] = static_cast<Kro8u>(k);
    const Kro8u* src[3] = {y.data(), cb.data(), cr.data()};
    const int srcStep[3] = {W, W / 2, W / 2};
    std::vector<Kro8u> y2(W * H), cb2(W / 2 * H / 2), cr2(W / 2 * H / 2);
    Kro8u* mid[3] = {y2.data(), cb2.data(), cr2.data()};
    const int midStep[3] = {W, W / 2, W / 2};
    ASSERT_EQ(kroiYCbCr422ToYCbCr420_8u_P3R(src, srcStep, mid, midStep, {W, H}), kroStatusOk);
    for (Kro8u v : cb2) EXPECT_LT(v, 200);
    for (Kro8u v : cr2) EXPECT_LT(v, 200);
    std::vector<Kro8u> y3(W * H), cb3(W / 2 * H), cr3(W / 2 * H);
    Kro8u* back[3] = {y3.data(), cb3.data(), cr3.data()};
    const Kro8u* midC[3] = {y2.data(), cb2.data(), cr2.data()};
    ASSERT_EQ(kroiYCbCr420ToYCbCr422_8u_P3R(midC, midStep, back, srcStep, {W, H}), kroStatusOk);
    EXPECT_EQ(y3, y);
    for (int r = 0; r < H; ++r)
        for (int i = 0; i < W / 2; ++i) {
            EXPECT_EQ(cb3[r * W / 2 + i], 10 + i);
            EXPECT_EQ(cr3[r * W / 2 + i], 50 + i);
        }
    EXPECT_NE(cb3, cb);  // not a round trip
}

// Fold then Unfold restores a 4:1:1 image with an even height byte for byte.
TEST(RepackExamples, FoldThenUnfoldRestores) {
    for (int W : {4, 8, 20, 64, 132, 260})
        for (int H : {2, 4, 6}) {
            std::vector<Kro8u> y(W * H), c(W / 2 * H);  // pairs
            fillRandom(y.data(), y.size());
            fillRandom(c.data(), c.size());
            std::vector<Kro8u> py(W * H), pcb(W / 2 * H / 2), pcr(W / 2 * H / 2);
            Kro8u* mid[3] = {py.data(), pcb.data(), pcr.data()};
            const int midStep[3] = {W, W / 2, W / 2};
            ASSERT_EQ(kroiYCbCr411ToYCbCr420_8u_P2P3R(y.data(), W, c.data(), W / 2, mid, midStep, {W, H}),
                      kroStatusOk);
            std::vector<Kro8u> y2(W * H), c2(W / 2 * H);
            const Kro8u* midC[3] = {py.data(), pcb.data(), pcr.data()};
            ASSERT_EQ(kroiYCbCr420ToYCbCr411_8u_P3P2R(midC, midStep, y2.data(), W, c2.data(), W / 2, {W, H}),
                      kroStatusOk);
            EXPECT_EQ(y2, y) << W << "x" << H;
            EXPECT_EQ(c2, c) << W << "x" << H;
        }
}

// W = 6 in the planar 4:2:2 to 4:1:1 form: four luma columns and one chroma
// sample a row; a zero height writes nothing and returns 0.
TEST(RepackExamples, DropColumnsWidthSix) {
    Kro8u y[12], cb[6], cr[6];
    for (int i = 0; i < 12; ++i) y[i] = static_cast<Kro8u>(i + 1);
    for (int i = 0; i < 6; ++i) cb[i] = static_cast<Kro8u>(100 + i), cr[i] = static_cast<Kro8u>(200 + i);
    const Kro8u* src[3] = {y, cb, cr};
    const int srcStep[3] = {6, 3, 3};
    Kro8u dy[12], dcb[4], dcr[4];
    std::fill(std::begin(dy), std::end(dy), 0);
    std::fill(std::begin(dcb), std::end(dcb), 0);
    std::fill(std::begin(dcr), std::end(dcr), 0);
    Kro8u* dst[3] = {dy, dcb, dcr};
    const int dstStep[3] = {6, 2, 2};
    ASSERT_EQ(kroiYCbCr422ToYCbCr411_8u_P3R(src, srcStep, dst, dstStep, {6, 0}), kroStatusOk);
    for (Kro8u v : dy) EXPECT_EQ(v, 0);
    ASSERT_EQ(kroiYCbCr422ToYCbCr411_8u_P3R(src, srcStep, dst, dstStep, {6, 2}), kroStatusOk);
    const Kro8u wantY[12] = {1, 2, 3, 4, 0, 0, 7, 8, 9, 10, 0, 0};
    for (int i = 0; i < 12; ++i) EXPECT_EQ(dy[i], wantY[i]) << i;
    EXPECT_EQ(dcb[0], 100);
    EXPECT_EQ(dcb[1], 0);
    EXPECT_EQ(dcb[2], 103);
    EXPECT_EQ(dcr[0], 200);
    EXPECT_EQ(dcr[2], 203);
}

// Pairs split into planes in the order they stand: element 1 receives the first byte.
TEST(RepackExamples, PairsFirstByteToElementOne) {
    Kro8u y[8] = {}, c[4] = {11, 22, 33, 44};
    Kro8u dy[8], d1[2], d2[2];
    Kro8u* dst[3] = {dy, d1, d2};
    const int steps[3] = {4, 2, 2};
    ASSERT_EQ(kroiYCbCr420ToYCrCb420_8u_P2P3R(y, 4, c, 4, dst, steps, {4, 2}), kroStatusOk);
    EXPECT_EQ(d1[0], 11);
    EXPECT_EQ(d1[1], 33);
    EXPECT_EQ(d2[0], 22);
    EXPECT_EQ(d2[1], 44);
}

// The only warning: planar 4:2:2 to packed Cb Y Cr Y with an odd width, after
// converting the whole pairs.
TEST(RepackExamples, OddWidthWarning) {
    Kro8u y[3] = {1, 2, 3}, cb[1] = {4}, cr[1] = {5}, dst[6] = {0, 0, 0, 0, 0xEE, 0xEE};
    const Kro8u* src[3] = {y, cb, cr};
    const int steps[3] = {3, 1, 1};
    EXPECT_EQ(kroiYCbCr422ToCbYCr422_8u_P3C2R(src, steps, dst, 6, {3, 1}), kroStatusOddSize);
    const Kro8u want[6] = {4, 1, 5, 2, 0xEE, 0xEE};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(dst[i], want[i]) << i;
    EXPECT_EQ(kroiYCbCr422_8u_P3C2R(src, steps, dst, 6, {3, 1}), kroStatusOk);
}

// Luma copies through the cache-bypassing path above the thresholds give the same bytes.
TEST(RepackExamples, LargeRegionsBypassingTheCache) {
    struct Case {
        int W, H;
    };
    const std::string names[] = {"kroiYCbCr422ToYCbCr420_8u_P3R", "kroiYCbCr422ToYCbCr411_8u_P3R",
                                 "kroiYCbCr411_8u_P3P2R", "kroiYCbCr411ToYCbCr420_8u_P3P2R",
                                 "kroiYCbCr411ToYCbCr422_8u_P2P3R"};
    for (Case c : {Case{700, 498}, Case{701, 500}, Case{1024, 514}, Case{1028, 512}})
        for (const RepOp& op : ops())
            if (std::find(std::begin(names), std::end(names), op.name) != std::end(names))
                checkOne(op, c.W, c.H, c.W + c.H);
}

}  // namespace
