// Plane resamplers: every whole-block width through three 16-sample runs and
// past against the per-sample reference, several heights, padded steps with
// canaries, guards on both sides, the stated values, and the check order.
#include <gtest/gtest.h>

#include <cstring>

#include "harness.h"
#include "ref_resample.h"

using namespace kt;

namespace {

using Fn = KroStatus (*)(const Kro8u* const[3], const int[3], Kro8u* const[3], const int[3], kroiSize);

enum class Op { From1620, From411, To1620, To411 };

struct Info {
    Fn fn;
    const char* name;
    // chroma plane sizes (columns, rows) of source and destination for W x H
    int sw(int W) const { return op == Op::From1620 || op == Op::From411 ? W / 4 : W / 2; }
    int sh(int H) const { return op == Op::From1620 ? H / 4 : op == Op::From411 ? H : H / 2; }
    int dw(int W) const { return op == Op::From1620 || op == Op::From411 ? W / 2 : W / 4; }
    int dh(int H) const { return op == Op::To1620 ? H / 4 : op == Op::To411 ? H : H / 2; }
    Op op;
};
const Info kOps[] = {
    {kroiYCbCr1620To420_8u_P3R, "1620To420", Op::From1620},
    {kroiYCbCr411To420_8u_P3R, "411To420", Op::From411},
    {kroiYCbCr420To1620_8u_P3R, "420To1620", Op::To1620},
    {kroiYCbCr420To411_8u_P3R, "420To411", Op::To411},
};

int refSample(const Info& o, const ref::Sample& S, int W, int H, int x, int y) {
    switch (o.op) {
        case Op::From1620: return ref::r1620To420(S, W / 4, H / 4, x, y);
        case Op::From411: return ref::r411To420(S, W / 4, x, y);
        case Op::To1620: return ref::r420To1620(S, x, y);
        default: return ref::r420To411(S, W / 4, H / 2, x, y);
    }
}

void check(const Info& o, int W, int H, Guard g, int pad) {
    Plane src[3] = {Plane(W, H, pad, g), Plane(o.sw(W), o.sh(H), pad + 1, g), Plane(o.sw(W), o.sh(H), pad + 3, g)};
    Plane dst[3] = {Plane(W, H, pad + 2, g), Plane(o.dw(W), o.dh(H), pad + 5, g), Plane(o.dw(W), o.dh(H), pad, g)};
    std::vector<uint8_t> expect[3], before[3];
    for (int k = 0; k < 3; ++k) {
        expect[k] = dst[k].snapshot();
        before[k] = src[k].snapshot();
    }
    for (int y = 0; y < H; ++y) std::memcpy(dst[0].rowIn(expect[0], y), src[0].row(y), size_t(W));
    for (int k = 1; k < 3; ++k) {
        const Plane& s = src[k];
        ref::Sample S = [&](int x, int y) {
            EXPECT_TRUE(x >= 0 && x < s.rowBytes && y >= 0 && y < s.height);
            return int(s.row(y)[x]);
        };
        for (int y = 0; y < o.dh(H); ++y)
            for (int x = 0; x < o.dw(W); ++x) dst[k].rowIn(expect[k], y)[x] = uint8_t(refSample(o, S, W, H, x, y));
    }
    const Kro8u* sp[3] = {src[0].origin(), src[1].origin(), src[2].origin()};
    Kro8u* dp[3] = {dst[0].origin(), dst[1].origin(), dst[2].origin()};
    const int ss[3] = {src[0].step, src[1].step, src[2].step}, ds[3] = {dst[0].step, dst[1].step, dst[2].step};
    ASSERT_EQ(o.fn(sp, ss, dp, ds, {W, H}), kroStatusOk) << o.name << " " << W << "x" << H;
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(diffPlane(dst[k], expect[k], 1), "") << o.name << " " << W << "x" << H << " plane " << k;
        EXPECT_EQ(diffPlane(src[k], before[k], 1), "");
    }
}

TEST(Resample, EveryWidthAgainstReference) {
    for (const Info& o : kOps) {
        std::vector<int> heights = o.op == Op::To411 ? std::vector<int>{2, 4, 6, 10} : std::vector<int>{4, 8, 12};
        std::vector<int> widths;
        for (int w = 4; w <= 4 * (3 * 16 + 5); w += 4) widths.push_back(w);
        for (int w : {256, 260, 508, 512, 516}) widths.push_back(w);
        for (int W : widths)
            for (int H : heights)
                for (Guard g : {Guard::After, Guard::Before}) check(o, W, H, g, (W / 4) % 3);
    }
}

// The stated example: W = 8, H = 6 gives n = 2 and L = 0.
TEST(Resample, WorkedValue420To411) {
    uint8_t y[48] = {}, cb[12] = {211, 182, 0, 169, 14, 90, 92, 130, 0, 0, 143, 0}, cr[12];
    std::memcpy(cr, cb, 12);
    uint8_t dy[48], dcb[12], dcr[12];
    const Kro8u* sp[3] = {y, cb, cr};
    Kro8u* dp[3] = {dy, dcb, dcr};
    const int ss[3] = {8, 4, 4}, ds[3] = {8, 2, 2};
    ASSERT_EQ(kroiYCbCr420To411_8u_P3R(sp, ss, dp, ds, {8, 6}), kroStatusOk);
    const uint8_t want[12] = {211, 0, 112, 46, 14, 92, 7, 117, 0, 143, 0, 143};
    EXPECT_EQ(std::memcmp(dcb, want, 12), 0);
    EXPECT_EQ(std::memcmp(dcr, want, 12), 0);
}

// Where the rounding average ends: the same pair of samples averages up
// below L and down past it.
TEST(Resample, ColumnLimit) {
    auto run = [](Fn fn, int W, int H, int sw, int sh, int dw, int dh, uint8_t a, uint8_t b) {
        std::vector<uint8_t> y(size_t(W * H)), dy(y.size()), c(size_t(sw * sh)), d(size_t(dw * dh));
        for (int r = 0; r < sh; ++r)
            for (int x = 0; x < sw; ++x) c[size_t(r * sw + x)] = (fn == kroiYCbCr420To411_8u_P3R ? r : x) % 2 ? b : a;
        const Kro8u* sp[3] = {y.data(), c.data(), c.data()};
        Kro8u* dp[3] = {dy.data(), d.data(), d.data()};
        const int ss[3] = {W, sw, sw}, ds[3] = {W, dw, dw};
        EXPECT_EQ(fn(sp, ss, dp, ds, {W, H}), kroStatusOk);
        return d;
    };
    // 411 -> 420, W = 64: n = 16, L = 0, every average down; W = 68: L = 16
    auto d64 = run(kroiYCbCr411To420_8u_P3R, 64, 4, 16, 4, 32, 2, 10, 13);
    EXPECT_EQ(d64[1], 11);
    auto d68 = run(kroiYCbCr411To420_8u_P3R, 68, 4, 17, 4, 34, 2, 10, 13);
    EXPECT_EQ(d68[1], 12);
    EXPECT_EQ(d68[31], 12);
    EXPECT_EQ(d68[33], 10);  // the last column repeats
    // 420 -> 411, W = 124: L = 0; W = 128: L = 32, every average up
    auto d124 = run(kroiYCbCr420To411_8u_P3R, 124, 4, 62, 2, 31, 4, 10, 13);
    EXPECT_EQ(d124[31], 11);
    auto d128 = run(kroiYCbCr420To411_8u_P3R, 128, 4, 64, 2, 32, 4, 10, 13);
    EXPECT_EQ(d128[32], 12);
    EXPECT_EQ(d128[63], 12);
}

// Check order: pSrc, pDst, their elements, the step arrays (-8), then size (-6).
TEST(Resample, CheckOrder) {
    static uint8_t mem[6 * 128];
    std::memset(mem, 7, sizeof mem);
    uint8_t* buf[6];
    for (int k = 0; k < 6; ++k) buf[k] = mem + 128 * k;
    const int st[3] = {8, 4, 4};
    for (const Info& o : kOps) {
        const Kro8u* sp[3] = {buf[0], buf[1], buf[2]};
        Kro8u* dp[3] = {buf[3], buf[4], buf[5]};
        EXPECT_EQ(o.fn(nullptr, st, dp, st, {0, 0}), kroStatusNullPointer);
        EXPECT_EQ(o.fn(sp, st, nullptr, st, {0, 0}), kroStatusNullPointer);
        for (int k = 0; k < 3; ++k) {
            const Kro8u* s2[3] = {buf[0], buf[1], buf[2]};
            Kro8u* d2[3] = {buf[3], buf[4], buf[5]};
            s2[k] = nullptr;
            EXPECT_EQ(o.fn(s2, st, dp, st, {0, 0}), kroStatusNullPointer);
            d2[k] = nullptr;
            EXPECT_EQ(o.fn(sp, st, d2, st, {0, 0}), kroStatusNullPointer);
        }
        // the step arrays are not checked arguments: a rejected region reports
        // its size, an accepted one still refuses a null array
        EXPECT_EQ(o.fn(sp, nullptr, dp, st, {8, 4}), kroStatusNullPointer);
        EXPECT_EQ(o.fn(sp, st, dp, nullptr, {8, 4}), kroStatusNullPointer);
        EXPECT_EQ(o.fn(sp, nullptr, dp, nullptr, {2, 2}), kroStatusBadSize);
        const bool to411 = o.op == Op::To411;
        struct Sz {
            int w, h;
            bool ok;
        };
        const Sz sizes[] = {{0, 4, false},  {2, 4, false}, {3, 4, false}, {6, 4, false},  {4, 2, to411},
                            {4, 6, to411},  {4, 10, to411}, {4, 3, false}, {4, 1, false}, {4, 0, false},
                            {-4, 4, false}, {4, 4, true},   {8, 8, true}};
        for (const Sz& z : sizes) {
            std::memset(mem + 3 * 128, 7, 3 * 128);
            const KroStatus s = o.fn(sp, st, dp, st, {z.w, z.h});
            EXPECT_EQ(s, z.ok ? kroStatusOk : kroStatusBadSize) << o.name << " " << z.w << "x" << z.h;
            if (!z.ok)
                for (int i = 0; i < 3 * 128; ++i) ASSERT_EQ(mem[3 * 128 + i], 7) << o.name << " " << z.w << "x" << z.h << " byte " << i;
        }
    }
}

TEST(Resample, FlatStaysFlat) {
    for (const Info& o : kOps) {
        const int W = 132, H = 12;
        std::vector<uint8_t> y(size_t(W * H), 50), c(size_t(W * H), 201), dy(y.size()), d(c.size(), 0);
        const Kro8u* sp[3] = {y.data(), c.data(), c.data()};
        Kro8u* dp[3] = {dy.data(), d.data(), d.data()};
        const int ss[3] = {W, o.sw(W), o.sw(W)}, ds[3] = {W, o.dw(W), o.dw(W)};
        ASSERT_EQ(o.fn(sp, ss, dp, ds, {W, H}), kroStatusOk);
        for (int i = 0; i < o.dw(W) * o.dh(H); ++i) ASSERT_EQ(d[size_t(i)], 201) << o.name;
        EXPECT_EQ(dy, y);
    }
}

}  // namespace
