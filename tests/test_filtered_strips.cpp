// Vertical filters with strips: every width through three 32-pixel steps and
// past, even and odd heights, each strip position against a plain reference
// with guarded buffers sized to exactly the rows a strip may read and write;
// strips against a whole-image call; flat planes; layout values; check order.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "harness.h"

using namespace kt;

namespace {

// ------------------------------------------------------------ reference, pixel by pixel
int avg(int p, int q) { return (p + q + 1) / 2; }
int formM(int a, int b, int c) { return avg(avg(c, b), avg(b, a)); }
int formA(int a, int b, int c) { return avg(avg(a, c), b); }
int formT(int a, int b, int c) { return (a + 2 * b + c) / 4; }
int formG(int a, int b, int c) { return std::min(255, (a + 2 * b + c + 4) / 4); }
int formCM(int p, int q) { return avg(p, q); }
int formCT(int p, int q) { return (p + q) / 2; }

enum class Pos { Whole, Top, Center, Bottom };
const int kLayout[4] = {21, 1, 4, 16};
bool wholeOrTop(Pos s) { return s == Pos::Whole || s == Pos::Top; }
bool wholeOrBottom(Pos s) { return s == Pos::Whole || s == Pos::Bottom; }

// Rows relative to the strip's addresses, for a region of H rows (Hu = H AND NOT 1).
struct Span {
    int lo, hi;  // inclusive; lo > hi: none
    int rows() const { return hi - lo + 1; }
};
Span lumaWritten(Pos s, int Hu) { return {wholeOrTop(s) ? 0 : -2, wholeOrBottom(s) ? Hu - 1 : Hu - 3}; }
Span lumaRead(Pos s, int Hu) { return {wholeOrTop(s) ? 0 : -3, wholeOrBottom(s) ? Hu - 1 : Hu - 2}; }
Span chromaRead(Pos s, int Hu) { return {wholeOrTop(s) ? 0 : -1, Hu / 2 - 1}; }
Span planesChromaWritten(Pos s, int Hu) { return {wholeOrTop(s) ? 0 : -1, wholeOrBottom(s) ? Hu / 2 - 1 : Hu / 2 - 2}; }

using Sample = std::function<int(int row, int x)>;

// Luma row j, column x, of the three-plane form.
int planesLuma(Pos s, int Hu, int s32, const Sample& Y, int j, int x) {
    const int a = Y(wholeOrTop(s) && j == 0 ? j : j - 1, x), b = Y(j, x);
    const int c = Y(wholeOrBottom(s) && j == Hu - 1 ? j : j + 1, x);
    switch (s) {
        case Pos::Whole: return (j == 0 || j == Hu - 1 || x >= s32) ? formT(a, b, c) : formM(a, b, c);
        case Pos::Top: return x < s32 ? formA(a, b, c) : formT(a, b, c);
        case Pos::Center: return x < s32 ? formM(a, b, c) : formT(a, b, c);
        default: return formT(a, b, c);
    }
}
// Chroma row j, byte x of the pair row (x even: first of a pair), three-plane form.
int planesChroma(Pos s, int Hu, int s32, const Sample& C, int j, int x) {
    const int n = Hu / 2;
    const bool last = wholeOrBottom(s) && j == n - 1;
    const int p = C(last ? (s == Pos::Whole ? std::max(n - 2, 0) : n - 2) : j, x), q = C(last ? n - 1 : j + 1, x);
    if (s == Pos::Bottom || last || x >= s32) return formCT(p, q);
    return formCM(p, q);
}
// Packed form: luma of row j, column x, and the chroma byte x of row j.
int packedLuma(Pos s, int Hu, int s8, int s32, const Sample& Y, int j, int x) {
    const int a = Y(wholeOrTop(s) && j == 0 ? j : j - 1, x), b = Y(j, x);
    const int c = Y(wholeOrBottom(s) && j == Hu - 1 ? j : j + 1, x);
    switch (s) {
        case Pos::Whole:
            if (j < 2 || j >= Hu - 2 || x >= s32) return formG(a, b, c);
            return formM(a, b, c);
        case Pos::Top:
            if (j == 0) return x < s8 ? formA(a, b, c) : formT(a, b, c);
            if (j == 1) return x < s8 ? formM(a, b, c) : formT(a, b, c);
            return x < s32 ? formM(a, b, c) : formT(a, b, c);
        case Pos::Center: return x < s32 ? formM(a, b, c) : formT(a, b, c);
        default:
            if (j == Hu - 1) return x < s8 ? formA(a, b, c) : formT(a, b, c);
            if (j == Hu - 2) return x < s8 ? formM(a, b, c) : formT(a, b, c);
            return x < s32 ? formM(a, b, c) : formT(a, b, c);
    }
}
int packedChroma(Pos s, int Hu, int s8, int s32, const Sample& C, int j, int x) {
    const int n = Hu / 2;
    const int k = j >= 0 ? j / 2 : -1;  // rows -2 and -1 take chroma row -1
    int p = k, q = k + 1;
    if (wholeOrBottom(s) && j >= Hu - 2) p = n - 2, q = n - 1;
    if (s == Pos::Whole) p = std::max(p, 0), q = std::min(q, n - 1);
    const int P = C(p, x), Q = C(q, x);
    // the image's first and last two rows: CT in the whole image, S8 in strips
    const bool edge = (wholeOrTop(s) && j < 2) || (wholeOrBottom(s) && j >= Hu - 2);
    if (s == Pos::Whole && edge) return formCT(P, Q);
    return x < (edge ? s8 : s32) ? formCM(P, Q) : formCT(P, Q);
}

// ------------------------------------------------------------ the driver
// A plane whose row 0 is `first` rows into its buffer.
struct Rows {
    Plane p;
    int first = 0;
    Rows(int rowBytes, Span s, int pad, Guard g) : p(rowBytes, std::max(s.rows(), 1), pad, g), first(-s.lo) {}
    uint8_t* at(int row) const { return p.row(row + first); }
    uint8_t* atIn(std::vector<uint8_t>& snap, int row) const { return p.rowIn(snap, row + first); }
};

void check(bool packed, Pos s, int W, int H, Guard g) {
    const int w = W & ~1, Hu = H & ~1, s8 = W & ~7, s32 = W & ~31, pad = W % 3 + 1;
    Rows y(w, lumaRead(s, Hu), pad, g), c(w, chromaRead(s, Hu), pad + 1, g);
    const Sample Y = [&](int r, int x) {
        EXPECT_TRUE(r >= lumaRead(s, Hu).lo && r <= lumaRead(s, Hu).hi && x < w) << "luma " << r << "," << x;
        return int(y.at(r)[x]);
    };
    const Sample C = [&](int r, int x) {
        EXPECT_TRUE(r >= chromaRead(s, Hu).lo && r <= chromaRead(s, Hu).hi && x < w) << "chroma " << r << "," << x;
        return int(c.at(r)[x]);
    };
    const Span lw = lumaWritten(s, Hu), cw = planesChromaWritten(s, Hu);
    std::string tag = std::string(packed ? "P2C2R" : "P2P3R") + " layout " + std::to_string(kLayout[int(s)]) + " " +
                      std::to_string(W) + "x" + std::to_string(H);
    if (packed) {
        Rows d(2 * w, lw, pad + 2, g);
        auto expect = d.p.snapshot();
        for (int j = lw.lo; j <= lw.hi; ++j)
            for (int x = 0; x < w; ++x) {
                d.atIn(expect, j)[2 * x] = uint8_t(packedLuma(s, Hu, s8, s32, Y, j, x));
                d.atIn(expect, j)[2 * x + 1] = uint8_t(packedChroma(s, Hu, s8, s32, C, j, x));
            }
        ASSERT_EQ(kroiYCbCr420ToYCbCr422_Filter_8u_P2C2R(y.at(0), y.p.step, c.at(0), c.p.step, d.at(0), d.p.step,
                                                         {W, H}, kLayout[int(s)]),
                  kroStatusOk)
            << tag;
        EXPECT_EQ(diffPlane(d.p, expect, 2), "") << tag;
        return;
    }
    Rows dy(w, lw, pad + 2, g), d1(w / 2, cw, pad + 3, g), d2(w / 2, cw, pad, g);
    auto ey = dy.p.snapshot(), e1 = d1.p.snapshot(), e2 = d2.p.snapshot();
    for (int j = lw.lo; j <= lw.hi; ++j)
        for (int x = 0; x < w; ++x) dy.atIn(ey, j)[x] = uint8_t(planesLuma(s, Hu, s32, Y, j, x));
    for (int j = cw.lo; j <= cw.hi; ++j)
        for (int x = 0; x < w; ++x) {  // the first byte of each pair to element 1
            // Two statements, not (x % 2 ? a : b)[i]: GCC 12 with -fsanitize=undefined
            // drops the index from the second branch of that form.
            const uint8_t v = uint8_t(planesChroma(s, Hu, s32, C, j, x));
            if (x % 2)
                d2.atIn(e2, j)[x / 2] = v;
            else
                d1.atIn(e1, j)[x / 2] = v;
        }
    Kro8u* d3[3] = {dy.at(0), d1.at(0), d2.at(0)};
    const int ds[3] = {dy.p.step, d1.p.step, d2.p.step};
    ASSERT_EQ(kroiYCbCr420ToYCrCb420_Filter_8u_P2P3R(y.at(0), y.p.step, c.at(0), c.p.step, d3, ds, {W, H},
                                                     kLayout[int(s)]),
              kroStatusOk)
        << tag;
    EXPECT_EQ(diffPlane(dy.p, ey, 1), "") << tag << " luma";
    EXPECT_EQ(diffPlane(d1.p, e1, 1), "") << tag << " element 1";
    EXPECT_EQ(diffPlane(d2.p, e2, 1), "") << tag << " element 2";
}

TEST(FilteredStrips, EveryWidthAgainstReference) {
    for (bool packed : {true, false})
        for (Pos s : {Pos::Whole, Pos::Top, Pos::Center, Pos::Bottom})
            for (int W : sweepWidths(32))
                if (W >= 2)
                    for (int H : {2, 5, 10})
                        for (Guard g : {Guard::After, Guard::Before}) check(packed, s, W, H, g);
}

// Strips 1, 4, 16 of one image with the same steps as a whole-image call: the
// center strip's rows match the whole image in the main-span columns, and
// every row is written.
TEST(FilteredStrips, StripsOfOneImage) {
    const int W = 70, H = 24, s32 = 64;
    std::vector<uint8_t> y(size_t(W * H)), c(size_t(W * H / 2));
    fillRandom(y.data(), y.size());
    fillRandom(c.data(), c.size());
    for (bool packed : {true, false}) {
        const int rowBytes = packed ? 2 * W : W;
        std::vector<uint8_t> whole(size_t(rowBytes * H), 0), strips(whole.size(), 0);
        std::vector<uint8_t> wc1(size_t(W / 2 * H / 2), 0), wc2(wc1.size(), 0), sc1(wc1.size(), 0), sc2(wc1.size(), 0);
        auto call = [&](int row0, int rows, int layout, std::vector<uint8_t>& d, std::vector<uint8_t>& d1,
                        std::vector<uint8_t>& d2) {
            const uint8_t* sy = y.data() + row0 * W;
            const uint8_t* sc = c.data() + row0 / 2 * W;
            if (packed)
                return kroiYCbCr420ToYCbCr422_Filter_8u_P2C2R(sy, W, sc, W, d.data() + row0 * rowBytes, rowBytes,
                                                              {W, rows}, layout);
            Kro8u* d3[3] = {d.data() + row0 * W, d1.data() + row0 / 2 * (W / 2), d2.data() + row0 / 2 * (W / 2)};
            const int ds[3] = {W, W / 2, W / 2};
            return kroiYCbCr420ToYCrCb420_Filter_8u_P2P3R(sy, W, sc, W, d3, ds, {W, rows}, layout);
        };
        ASSERT_EQ(call(0, H, kroiStripTop | kroiStripCenter | kroiStripBottom, whole, wc1, wc2), kroStatusOk);
        std::vector<uint8_t> mark(strips.size(), 0);
        ASSERT_EQ(call(0, 8, kroiStripTop, strips, sc1, sc2), kroStatusOk);
        ASSERT_EQ(call(8, 8, kroiStripCenter, strips, sc1, sc2), kroStatusOk);
        ASSERT_EQ(call(16, 8, kroiStripBottom, strips, sc1, sc2), kroStatusOk);
        // the center strip writes luma rows 6 to 13 and chroma rows 3 to 6
        for (int r = 6; r <= 13; ++r)
            for (int x = 0; x < s32; ++x) {
                const int b = packed ? 2 * x : x;
                ASSERT_EQ(strips[size_t(r * rowBytes + b)], whole[size_t(r * rowBytes + b)]) << packed << " row " << r;
                if (packed)
                    ASSERT_EQ(strips[size_t(r * rowBytes + b + 1)], whole[size_t(r * rowBytes + b + 1)]) << r;
            }
        if (!packed)
            for (int r = 3; r <= 6; ++r)
                for (int i = 0; i < s32 / 2; ++i) {
                    ASSERT_EQ(sc1[size_t(r * W / 2 + i)], wc1[size_t(r * W / 2 + i)]) << r;
                    ASSERT_EQ(sc2[size_t(r * W / 2 + i)], wc2[size_t(r * W / 2 + i)]) << r;
                }
    }
}

// A flat image stays flat, but for G, which raises luma by one (and stops at 255).
TEST(FilteredStrips, FlatPlanes) {
    const int W = 40, H = 6;
    for (int v : {100, 255}) {
        std::vector<uint8_t> y(size_t(W * H), uint8_t(v)), c(size_t(W * H / 2), 77), d(size_t(2 * W * H));
        ASSERT_EQ(kroiYCbCr420ToYCbCr422_Filter_8u_P2C2R(y.data(), W, c.data(), W, d.data(), 2 * W, {W, H}, 21),
                  kroStatusOk);
        for (int r = 0; r < H; ++r)
            for (int x = 0; x < W; ++x) {
                const bool g = r < 2 || r >= H - 2 || x >= 32;
                ASSERT_EQ(d[size_t(r * 2 * W + 2 * x)], g ? std::min(v + 1, 255) : v) << r << "," << x;
                ASSERT_EQ(d[size_t(r * 2 * W + 2 * x + 1)], 77);
            }
        std::vector<uint8_t> dy(size_t(W * H)), d1(size_t(W / 2 * H / 2)), d2(d1.size());
        Kro8u* d3[3] = {dy.data(), d1.data(), d2.data()};
        const int ds[3] = {W, W / 2, W / 2};
        ASSERT_EQ(kroiYCbCr420ToYCrCb420_Filter_8u_P2P3R(y.data(), W, c.data(), W, d3, ds, {W, H}, 21), kroStatusOk);
        for (uint8_t b : dy) ASSERT_EQ(b, v);
        for (uint8_t b : d1) ASSERT_EQ(b, 77);
    }
}

// Layout values: all three bits set is the whole image; any other value but
// 1, 4 and 16 writes nothing and returns 0.
TEST(FilteredStrips, LayoutValues) {
    const int W = 4, H = 4;
    std::vector<uint8_t> y(size_t(W * H), 50), c(size_t(W * H / 2), 60);
    for (int layout : {21, 23, 0x7FFFFFFF, -1, 0, 2, 5, 17, 20, 32, -16}) {
        const bool whole = (layout & 21) == 21;
        std::vector<uint8_t> d(size_t(2 * W * H), 9), dy(size_t(W * H), 9), d1(4, 9), d2(4, 9);
        Kro8u* d3[3] = {dy.data(), d1.data(), d2.data()};
        const int ds[3] = {W, W / 2, W / 2};
        EXPECT_EQ(kroiYCbCr420ToYCbCr422_Filter_8u_P2C2R(y.data(), W, c.data(), W, d.data(), 2 * W, {W, H}, layout),
                  kroStatusOk);
        EXPECT_EQ(kroiYCbCr420ToYCrCb420_Filter_8u_P2P3R(y.data(), W, c.data(), W, d3, ds, {W, H}, layout),
                  kroStatusOk);
        EXPECT_EQ(d[0], whole ? 51 : 9) << layout;  // G on the first row
        EXPECT_EQ(dy[0], whole ? 50 : 9) << layout;
        EXPECT_EQ(d1[0], whole ? 60 : 9) << layout;
    }
}

// Check order. Packed form: null (-8), size at least 2 x 2 (-6). Three-plane
// form: null with the destination and step arrays (-8), size at least 1 x 1
// (-6), plane elements (-8), size at least 2 x 2 (-6). Checks come before the
// layout.
TEST(FilteredStrips, CheckOrder) {
    uint8_t y[64], c[32], d[128], dy[64], d1[16], d2[16];
    std::memset(y, 1, sizeof y);
    std::memset(c, 1, sizeof c);
    const int ds[3] = {8, 4, 4};
    struct Case {
        int nullAt;  // -1 none; 0 Y, 1 CbCr, 2 destination (array), 3 step array, 4..6 plane elements
        int w, h, layout;
        KroStatus packed, planes;
    };
    const Case cases[] = {
        {0, 0, 0, 21, kroStatusNullPointer, kroStatusNullPointer},
        {1, 2, 2, 0, kroStatusNullPointer, kroStatusNullPointer},
        {2, 0, 0, 21, kroStatusNullPointer, kroStatusNullPointer},
        {3, 0, 0, 21, kroStatusOk, kroStatusNullPointer},  // the packed form has no step array
        {5, 0, 2, 21, kroStatusOk, kroStatusBadSize},      // size at least 1 x 1 before elements
        {5, 1, 1, 21, kroStatusOk, kroStatusNullPointer},  // elements before the 2 x 2 rule
        {-1, 1, 2, 21, kroStatusBadSize, kroStatusBadSize},
        {-1, 2, 1, 21, kroStatusBadSize, kroStatusBadSize},
        {-1, 2, -2, 3, kroStatusBadSize, kroStatusBadSize},
        {-1, 2, 2, 21, kroStatusOk, kroStatusOk},
        {-1, 3, 3, 21, kroStatusOk, kroStatusOk},
    };
    for (const Case& k : cases) {
        std::memset(d, 9, sizeof d);
        std::memset(dy, 9, sizeof dy);
        std::memset(d1, 9, sizeof d1);
        std::memset(d2, 9, sizeof d2);
        Kro8u* d3[3] = {dy, d1, d2};
        if (k.nullAt >= 4) d3[k.nullAt - 4] = nullptr;
        const Kro8u* sy = k.nullAt == 0 ? nullptr : y;
        const Kro8u* sc = k.nullAt == 1 ? nullptr : c;
        const kroiSize r{k.w, k.h};
        if (k.nullAt != 3 && k.nullAt < 4)
            EXPECT_EQ(kroiYCbCr420ToYCbCr422_Filter_8u_P2C2R(sy, 8, sc, 8, k.nullAt == 2 ? nullptr : d, 16, r, k.layout),
                      k.packed)
                << k.nullAt << " " << k.w << "x" << k.h;
        EXPECT_EQ(kroiYCbCr420ToYCrCb420_Filter_8u_P2P3R(sy, 8, sc, 8, k.nullAt == 2 ? nullptr : d3,
                                                         k.nullAt == 3 ? nullptr : ds, r, k.layout),
                  k.planes)
            << k.nullAt << " " << k.w << "x" << k.h;
        if (k.packed < 0 || k.planes < 0) {
            for (uint8_t b : dy) ASSERT_EQ(b, 9);
            for (uint8_t b : d1) ASSERT_EQ(b, 9);
            if (k.packed < 0)
                for (uint8_t b : d) ASSERT_EQ(b, 9);
        }
    }
}

}  // namespace
