// Interlaced and four-tap chroma: every width through three 16-pixel steps
// and past, heights that are and are not whole blocks, padded steps with
// canaries, guards on both sides, against the row reference; the stated
// cases; the check order.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "harness.h"
#include "ref_filtered.h"

using namespace kt;

namespace {

enum class Kind { C2P3Down, P3Down, P3Up, P3C2Up, TapP3, TapYCrCb, TapP2 };
struct Info {
    Kind kind;
    const char* name;
    bool up() const { return kind != Kind::C2P3Down && kind != Kind::P3Down; }
    bool tap() const { return kind == Kind::TapP3 || kind == Kind::TapYCrCb || kind == Kind::TapP2; }
    int usedH(int H) const { return H & (tap() ? ~7 : ~3); }
};
const Info kInfos[] = {{Kind::C2P3Down, "CbYCr422ToYCbCr420_Interlace"}, {Kind::P3Down, "YCbCr422To420_Interlace"},
                       {Kind::P3Up, "YCbCr420To422_Interlace"},        {Kind::P3C2Up, "YCbCr420ToCbYCr422_Interlace"},
                       {Kind::TapP3, "YCbCr420ToYCbCr422_Filter_P3"},   {Kind::TapYCrCb, "YCrCb420ToYCbCr422_Filter"},
                       {Kind::TapP2, "YCbCr420ToYCbCr422_Filter_P2P3"}};

// Source: luma W x H; chroma rows: H (4:2:2) or H / 2 (4:2:0), W / 2 pairs.
struct Images {
    Plane sy, scb, scr, sp;  // sp: packed C2 source or P2 chroma pairs
    Plane dy, dcb, dcr, dp;  // dp: packed C2 destination
};

KroStatus run(const Info& o, Images& m, kroiSize r) {
    const Kro8u* s3[3] = {m.sy.origin(), m.scb.origin(), m.scr.origin()};
    const int ss3[3] = {m.sy.step, m.scb.step, m.scr.step};
    Kro8u* d3[3] = {m.dy.origin(), m.dcb.origin(), m.dcr.origin()};
    const int ds3[3] = {m.dy.step, m.dcb.step, m.dcr.step};
    switch (o.kind) {
        case Kind::C2P3Down: return kroiCbYCr422ToYCbCr420_Interlace_8u_C2P3R(m.sp.origin(), m.sp.step, d3, ds3, r);
        case Kind::P3Down: return kroiYCbCr422To420_Interlace_8u_P3R(s3, ss3, d3, ds3, r);
        case Kind::P3Up: return kroiYCbCr420To422_Interlace_8u_P3R(s3, ss3, d3, ds3, r);
        case Kind::P3C2Up: return kroiYCbCr420ToCbYCr422_Interlace_8u_P3C2R(s3, ss3, m.dp.origin(), m.dp.step, r);
        case Kind::TapP3: return kroiYCbCr420ToYCbCr422_Filter_8u_P3R(s3, ss3, d3, ds3, r);
        case Kind::TapYCrCb: return kroiYCrCb420ToYCbCr422_Filter_8u_P3R(s3, ss3, d3, ds3, r);
        default:
            return kroiYCbCr420ToYCbCr422_Filter_8u_P2P3R(m.sy.origin(), m.sy.step, m.sp.origin(), m.sp.step, d3, ds3,
                                                          r);
    }
}

void check(const Info& o, int W, int H, Guard g) {
    const int w = W & ~1, h = o.usedH(H), pairs = w / 2;
    const int srcChromaRows = o.up() ? h / 2 : h, dstChromaRows = o.up() ? h : h / 2;
    const int pad = W % 3 + 1;
    Images m;
    m.sy = Plane(w, h, pad, g);
    m.scb = Plane(pairs, srcChromaRows, pad + 1, g);
    m.scr = Plane(pairs, srcChromaRows, pad + 2, g);
    m.sp = o.kind == Kind::C2P3Down ? Plane(2 * w, h, pad, g) : Plane(2 * pairs, srcChromaRows, pad + 3, g);
    m.dy = Plane(w, h, pad + 4, g);
    m.dcb = Plane(pairs, dstChromaRows, pad, g);
    m.dcr = Plane(pairs, dstChromaRows, pad + 5, g);
    m.dp = Plane(2 * w, h, pad + 1, g);
    Plane* dsts[4] = {&m.dy, &m.dcb, &m.dcr, &m.dp};
    std::vector<uint8_t> expect[4];
    for (int k = 0; k < 4; ++k) expect[k] = dsts[k]->snapshot();

    // source chroma rows: Cb (c = 0) and Cr (c = 1) by layout
    auto sample = [&](int c, int row, int i) -> int {
        switch (o.kind) {
            case Kind::C2P3Down: return m.sp.row(row)[4 * i + (c ? 2 : 0)];
            case Kind::TapP2: return m.sp.row(row)[2 * i + c];
            case Kind::TapYCrCb: return (c ? m.scb : m.scr).row(row)[i];  // element 1 holds Cr
            default: return (c ? m.scr : m.scb).row(row)[i];
        }
    };
    auto lumaAt = [&](int y, int x) -> int {
        return o.kind == Kind::C2P3Down ? m.sp.row(y)[2 * x + 1] : m.sy.row(y)[x];
    };
    for (int c = 0; c < 2; ++c) {
        ref::ChromaRow S = [&](int row, int i) {
            EXPECT_TRUE(row >= 0 && row < srcChromaRows && i >= 0 && i < pairs);
            return sample(c, row, i);
        };
        for (int d = 0; d < dstChromaRows; ++d)
            for (int i = 0; i < pairs; ++i) {
                const int v = o.tap() ? ref::fourTap(S, h, d, i)
                              : o.up() ? ref::interlaceUp(S, h, d, i)
                                       : ref::interlaceDown(S, d, i);
                if (o.kind == Kind::P3C2Up)
                    m.dp.rowIn(expect[3], d)[4 * i + 2 * c] = uint8_t(v);
                else
                    (c ? m.dcr : m.dcb).rowIn(expect[c ? 2 : 1], d)[i] = uint8_t(v);
            }
    }
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (o.kind == Kind::P3C2Up)
                m.dp.rowIn(expect[3], y)[2 * x + 1] = uint8_t(lumaAt(y, x));
            else
                m.dy.rowIn(expect[0], y)[x] = uint8_t(lumaAt(y, x));
        }
    const KroStatus want = o.tap() ? kroStatusOk : ((W % 2 || H % 4) ? kroStatusOddSize : kroStatusOk);
    ASSERT_EQ(run(o, m, {W, H}), want) << o.name << " " << W << "x" << H;
    for (int k = 0; k < 4; ++k) EXPECT_EQ(diffPlane(*dsts[k], expect[k], 1), "") << o.name << " " << W << "x" << H << " plane " << k;
}

TEST(Filtered, EveryWidthAgainstReference) {
    for (const Info& o : kInfos) {
        const std::vector<int> heights = o.tap() ? std::vector<int>{8, 11, 16, 24} : std::vector<int>{4, 6, 8, 12, 13};
        for (int W : sweepWidths(16))
            if (W >= 2)
                for (int H : heights)
                    for (Guard g : {Guard::After, Guard::Before}) check(o, W, H, g);
    }
}

// Stated cases: H = 6 in the 4:2:0 -> 4:2:2 interlaced form treats 4 rows as
// copies of source rows 0, 1, 0, 1; H = 4 going down takes rows 0, 2 and 1, 3.
TEST(Filtered, StatedCases) {
    uint8_t y[64], dy[64], dcb[16], dcr[16];
    for (int i = 0; i < 64; ++i) y[i] = uint8_t(i);
    std::memset(dcb, 0xEE, sizeof dcb);
    Kro8u* d3[3] = {dy, dcb, dcr};
    // 2 x 6, one chroma column: source chroma rows 1, 11, 21
    const uint8_t c6[3] = {1, 11, 21};
    const Kro8u* s6[3] = {y, c6, c6};
    const int ss6[3] = {2, 1, 1}, ds6[3] = {2, 1, 1};
    EXPECT_EQ(kroiYCbCr420To422_Interlace_8u_P3R(s6, ss6, d3, ds6, {2, 6}), kroStatusOddSize);
    EXPECT_EQ(dcb[0], 1);
    EXPECT_EQ(dcb[1], 11);
    EXPECT_EQ(dcb[2], 1);
    EXPECT_EQ(dcb[3], 11);
    EXPECT_EQ(dcb[4], 0xEE);  // rows 4 and 5 stay unwritten
    // going down, H = 4: row 0 from rows 0 and 2, row 1 from rows 1 and 3
    const uint8_t c4[4] = {0, 40, 80, 120};
    const Kro8u* s4[3] = {y, c4, c4};
    const int ss4[3] = {2, 1, 1};
    EXPECT_EQ(kroiYCbCr422To420_Interlace_8u_P3R(s4, ss4, d3, ds6, {2, 4}), kroStatusOk);
    EXPECT_EQ(dcb[0], (3 * 0 + 80 + 2) / 4);
    EXPECT_EQ(dcb[1], (40 + 3 * 120 + 2) / 4);
}

TEST(Filtered, FlatStaysFlat) {
    std::vector<uint8_t> y(40 * 16, 100), c(40 * 16, 77), dy(y.size()), dc(c.size()), dr(c.size()), dp(80 * 16);
    const Kro8u* s3[3] = {y.data(), c.data(), c.data()};
    Kro8u* d3[3] = {dy.data(), dc.data(), dr.data()};
    const int st[3] = {40, 20, 20};
    for (auto fn : {kroiYCbCr420ToYCbCr422_Filter_8u_P3R, kroiYCrCb420ToYCbCr422_Filter_8u_P3R,
                    kroiYCbCr420To422_Interlace_8u_P3R, kroiYCbCr422To420_Interlace_8u_P3R}) {
        std::fill(dc.begin(), dc.end(), 0);
        ASSERT_GE(fn(s3, st, d3, st, {40, 16}), 0);
        for (int i = 0; i < 20 * 8; ++i) ASSERT_EQ(dc[size_t(i)], 77);
        for (int i = 0; i < 40 * 16; ++i) ASSERT_EQ(dy[size_t(i)], 100);
    }
}

// Check order: deep null (-8, including the step arrays), then the size (-6).
TEST(Filtered, CheckOrder) {
    static uint8_t mem[8 * 256];
    uint8_t* b[8];
    for (int k = 0; k < 8; ++k) b[k] = mem + 256 * k;
    const int st[3] = {16, 8, 8};
    for (const Info& o : kInfos) {
        const int minH = o.tap() ? 8 : 4;
        struct Case {
            int nullAt;  // -1: none; 0..2 source planes (P3) / 0 Y, 1 CbCr (P2) / 0 packed (C2); 10.. destination
            bool nullSteps;
            int w, h;
            KroStatus want;
        };
        const Case cases[] = {
            {0, false, 0, 0, kroStatusNullPointer},   {1, false, 2, minH, kroStatusNullPointer},
            {10, false, 2, minH, kroStatusNullPointer}, {12, false, 0, 0, kroStatusNullPointer},
            {-1, true, 2, minH, kroStatusNullPointer}, {-1, false, 1, minH, kroStatusBadSize},
            {-1, false, 2, minH - 1, kroStatusBadSize}, {-1, false, 0, 0, kroStatusBadSize},
            {-1, false, -2, minH, kroStatusBadSize},   {-1, false, 2, minH, kroStatusOk},
            {-1, false, 3, minH + 1, o.tap() ? kroStatusOk : kroStatusOddSize},
        };
        for (const Case& c : cases) {
            std::memset(mem, 9, sizeof mem);
            const Kro8u* s3[3] = {b[0], b[1], b[2]};
            Kro8u* d3[3] = {b[4], b[5], b[6]};
            const Kro8u* sY = b[0];
            const Kro8u* sP = b[3];
            Kro8u* dP = b[7];
            if (c.nullAt >= 0 && c.nullAt < 3) {
                if (o.kind == Kind::C2P3Down || o.kind == Kind::TapP2) {
                    if (c.nullAt == 0) (o.kind == Kind::C2P3Down ? sP : sY) = nullptr;
                    if (c.nullAt == 1) (o.kind == Kind::TapP2 ? sP : sP) = nullptr;
                } else {
                    s3[c.nullAt] = nullptr;
                }
            }
            if (c.nullAt >= 10) {
                if (o.kind == Kind::P3C2Up)
                    dP = nullptr;
                else
                    d3[c.nullAt - 10] = nullptr;
            }
            const int* sst = c.nullSteps ? nullptr : st;
            const int* dst = c.nullSteps ? nullptr : st;
            const kroiSize r{c.w, c.h};
            KroStatus got;
            switch (o.kind) {
                case Kind::C2P3Down: got = kroiCbYCr422ToYCbCr420_Interlace_8u_C2P3R(sP, 32, d3, dst, r); break;
                case Kind::P3Down: got = kroiYCbCr422To420_Interlace_8u_P3R(s3, sst, d3, dst, r); break;
                case Kind::P3Up: got = kroiYCbCr420To422_Interlace_8u_P3R(s3, sst, d3, dst, r); break;
                case Kind::P3C2Up: got = kroiYCbCr420ToCbYCr422_Interlace_8u_P3C2R(s3, sst, dP, 32, r); break;
                case Kind::TapP3: got = kroiYCbCr420ToYCbCr422_Filter_8u_P3R(s3, sst, d3, dst, r); break;
                case Kind::TapYCrCb: got = kroiYCrCb420ToYCbCr422_Filter_8u_P3R(s3, sst, d3, dst, r); break;
                default: got = kroiYCbCr420ToYCbCr422_Filter_8u_P2P3R(sY, 16, sP, 16, d3, dst, r); break;
            }
            EXPECT_EQ(got, c.want) << o.name << " case null " << c.nullAt << " " << c.w << "x" << c.h;
            if (c.want < 0)
                for (int i = 4 * 256; i < 8 * 256; ++i) ASSERT_EQ(mem[i], 9) << o.name;
        }
    }
}

// 4:2:0 (YCrCb planes) to BGRA with chroma interpolated across rows' pairs.
TEST(FilteredBGR, EveryWidthAgainstReference) {
    for (int W : sweepWidths(16))
        for (int H : {1, 2, 3, 6})
            for (Guard g : {Guard::After, Guard::Before}) {
                const int n = W / 2, pad = W % 4 + 1;
                Plane y(W, H, pad, g), cr(std::max(n, 1), std::max(H / 2, 1), pad + 1, g),
                    cb(std::max(n, 1), std::max(H / 2, 1), pad + 2, g), d(4 * W, H, pad + 3, g);
                auto expect = d.snapshot();
                const int span = (W - 1) & ~15;
                for (int r = 0; r < H / 2 * 2; ++r) {
                    std::vector<int> vb(size_t(n) + 1), vr(size_t(n) + 1);
                    for (int i = 0; i < n; ++i) vb[size_t(i)] = cb.row(r / 2)[i], vr[size_t(i)] = cr.row(r / 2)[i];
                    for (int x = 0; x < 2 * n; ++x) {
                        int o[3];
                        ref::bgrFilterPixel(y.row(r)[x], vb.data(), vr.data(), n, x, x < span, o);
                        uint8_t* e = d.rowIn(expect, r) + 4 * x;
                        e[0] = uint8_t(o[0]), e[1] = uint8_t(o[1]), e[2] = uint8_t(o[2]), e[3] = 0xA5;
                    }
                }
                const Kro8u* s3[3] = {y.origin(), cr.origin(), cb.origin()};
                const int ss[3] = {y.step, cr.step, cb.step};
                const KroStatus want = (W % 2 || H % 2) ? kroStatusOddSize : kroStatusOk;
                ASSERT_EQ(kroiYCrCb420ToBGR_Filter_8u_P3C4R(s3, ss, d.origin(), d.step, {W, H}, 0xA5), want);
                EXPECT_EQ(diffPlane(d, expect, 4), "") << W << "x" << H;
            }
}

// Check order: null (with the step array), size, then plane elements.
TEST(FilteredBGR, CheckOrder) {
    uint8_t y[64] = {}, c[16] = {}, d[256];
    const Kro8u* s3[3] = {y, c, c};
    const Kro8u* sNull[3] = {y, nullptr, c};
    const int st[3] = {4, 2, 2};
    EXPECT_EQ(kroiYCrCb420ToBGR_Filter_8u_P3C4R(nullptr, st, d, 16, {0, 0}, 0), kroStatusNullPointer);
    EXPECT_EQ(kroiYCrCb420ToBGR_Filter_8u_P3C4R(s3, nullptr, d, 16, {0, 0}, 0), kroStatusNullPointer);
    EXPECT_EQ(kroiYCrCb420ToBGR_Filter_8u_P3C4R(s3, st, nullptr, 16, {0, 0}, 0), kroStatusNullPointer);
    EXPECT_EQ(kroiYCrCb420ToBGR_Filter_8u_P3C4R(sNull, st, d, 16, {0, 2}, 0), kroStatusBadSize);
    EXPECT_EQ(kroiYCrCb420ToBGR_Filter_8u_P3C4R(sNull, st, d, 16, {4, 2}, 0), kroStatusNullPointer);
    EXPECT_EQ(kroiYCrCb420ToBGR_Filter_8u_P3C4R(s3, st, d, 16, {4, 0}, 0), kroStatusBadSize);
    std::memset(d, 7, sizeof d);
    EXPECT_EQ(kroiYCrCb420ToBGR_Filter_8u_P3C4R(s3, st, d, 16, {1, 1}, 0), kroStatusOddSize);
    for (uint8_t v : d) EXPECT_EQ(v, 7);  // no whole pair: nothing written
}

}  // namespace
