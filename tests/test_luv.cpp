// RGB/BGR <-> CIE L*u*v*: every operation against the independent reference
// at every column (bit for bit with this processor's reciprocal estimate, and
// within the interval that any admissible estimate allows), every width
// through three main-path blocks, padded and odd steps, start offsets, guard
// pages on either side, statuses in order, exhaustive sweeps of the 8-bit
// forms and the model's stated values.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "convt_test.h"
#include "harness.h"
#include "ref_luv.h"

using namespace kt;
using ref::luv::InvMain;
using ref::luv::Out3;
using ref::luv::Rc;
using ref::luv::Ty;

namespace {

using Call = std::function<KroStatus(const void*, int, void*, int, kroiSize)>;

struct LuvOp {
    const char* name;
    Ty ty;
    int cn;          // 3 or 4 samples a pixel on both sides
    bool bgr;        // the RGB side stands B, G, R
    bool forward;
    bool hasMain;    // blocks of four pixels; false: tail rules for every pixel
    int stepShift;   // the byte step is shifted right by this at entry (0: rows advance by bytes)
    bool tail16Trunc;  // the 16u AC4 forward tail
    InvMain inv;     // main path of an inverse operation
    Call call;
};

template <class T>
Call callOf(KroStatus (*f)(const T*, int, T*, int, kroiSize)) {
    return [f](const void* s, int ss, void* d, int ds, kroiSize r) {
        return f(static_cast<const T*>(s), ss, static_cast<T*>(d), ds, r);
    };
}

const std::vector<LuvOp>& luvOps() {
    using I = InvMain;
    static const std::vector<LuvOp> ops = {
        {"kroiRGBToLUV_8u_C3R", Ty::U8, 3, false, true, true, 0, false, I::F32, callOf(kroiRGBToLUV_8u_C3R)},
        {"kroiBGRToLUV_8u_C3R", Ty::U8, 3, true, true, true, 0, false, I::F32, callOf(kroiBGRToLUV_8u_C3R)},
        {"kroiRGBToLUV_8u_AC4R", Ty::U8, 4, false, true, false, 0, false, I::F32, callOf(kroiRGBToLUV_8u_AC4R)},
        {"kroiRGBToLUV_16u_C3R", Ty::U16, 3, false, true, true, 1, false, I::F32, callOf(kroiRGBToLUV_16u_C3R)},
        {"kroiRGBToLUV_16u_AC4R", Ty::U16, 4, false, true, true, 1, true, I::F32, callOf(kroiRGBToLUV_16u_AC4R)},
        {"kroiRGBToLUV_16s_C3R", Ty::S16, 3, false, true, true, 1, false, I::F32, callOf(kroiRGBToLUV_16s_C3R)},
        {"kroiRGBToLUV_16s_AC4R", Ty::S16, 4, false, true, true, 1, false, I::F32, callOf(kroiRGBToLUV_16s_AC4R)},
        {"kroiRGBToLUV_32f_C3R", Ty::F32, 3, false, true, true, 0, false, I::F32, callOf(kroiRGBToLUV_32f_C3R)},
        {"kroiBGRToLUV_32f_C3R", Ty::F32, 3, true, true, true, 0, false, I::F32, callOf(kroiBGRToLUV_32f_C3R)},
        {"kroiRGBToLUV_32f_AC4R", Ty::F32, 4, false, true, true, 0, false, I::F32, callOf(kroiRGBToLUV_32f_AC4R)},
        {"kroiLUVToRGB_8u_C3R", Ty::U8, 3, false, false, true, 0, false, I::U8C3, callOf(kroiLUVToRGB_8u_C3R)},
        {"kroiLUVToBGR_8u_C3R", Ty::U8, 3, true, false, true, 0, false, I::U8C3, callOf(kroiLUVToBGR_8u_C3R)},
        {"kroiLUVToRGB_8u_AC4R", Ty::U8, 4, false, false, true, 0, false, I::U8AC4, callOf(kroiLUVToRGB_8u_AC4R)},
        {"kroiLUVToRGB_16u_C3R", Ty::U16, 3, false, false, true, 1, false, I::U16, callOf(kroiLUVToRGB_16u_C3R)},
        {"kroiLUVToRGB_16u_AC4R", Ty::U16, 4, false, false, true, 1, false, I::U16, callOf(kroiLUVToRGB_16u_AC4R)},
        {"kroiLUVToRGB_16s_C3R", Ty::S16, 3, false, false, true, 1, false, I::S16C3, callOf(kroiLUVToRGB_16s_C3R)},
        {"kroiLUVToRGB_16s_AC4R", Ty::S16, 4, false, false, true, 1, false, I::U16, callOf(kroiLUVToRGB_16s_AC4R)},
        {"kroiLUVToRGB_32f_C3R", Ty::F32, 3, false, false, true, 0, false, I::F32, callOf(kroiLUVToRGB_32f_C3R)},
        {"kroiLUVToBGR_32f_C3R", Ty::F32, 3, true, false, true, 0, false, I::F32, callOf(kroiLUVToBGR_32f_C3R)},
        {"kroiLUVToRGB_32f_AC4R", Ty::F32, 4, false, false, false, 2, false, I::F32, callOf(kroiLUVToRGB_32f_AC4R)},
    };
    return ops;
}

const LuvOp& opNamed(const std::string& n) {
    for (auto& o : luvOps())
        if (n == o.name) return o;
    std::abort();
}

int sizeOf(Ty t) { return t == Ty::U8 ? 1 : t == Ty::F32 ? 4 : 2; }

// ------------------------------------------------------------ reference by column
// rcT: the reciprocal of the forward direction, or of 13 L' in the inverse;
// rcD: that of the inverse's v' term.
Out3 reference(const LuvOp& op, bool mainPath, const double (&s)[3], Rc rcT, Rc rcD) {
    using namespace ref::luv;
    mainPath = mainPath && op.hasMain;
    if (op.forward) return toLuv(op.ty, mainPath, op.tail16Trunc, s, rcT);
    if (mainPath) return fromLuvMain(op.inv, op.ty == Ty::S16, s, rcT, rcD);
    return op.ty == Ty::F32 ? fromLuvTailF(s) : fromLuvTailInt(op.ty, s);
}

// ------------------------------------------------------------ samples in memory
double getRaw(Ty t, const uint8_t* p) {
    switch (t) {
        case Ty::U8: return *p;
        case Ty::U16: { uint16_t v; std::memcpy(&v, p, 2); return v; }
        case Ty::S16: { int16_t v; std::memcpy(&v, p, 2); return v; }
        case Ty::F32: { float v; std::memcpy(&v, p, 4); return v; }
    }
    return 0;
}
void putRaw(Ty t, uint8_t* p, double x) {
    switch (t) {
        case Ty::U8: *p = uint8_t(int64_t(x)); break;
        case Ty::U16: { const uint16_t v = uint16_t(int64_t(x)); std::memcpy(p, &v, 2); break; }
        case Ty::S16: { const int16_t v = int16_t(int64_t(x)); std::memcpy(p, &v, 2); break; }
        case Ty::F32: { const float v = float(x); std::memcpy(p, &v, 4); break; }
    }
}
// pixel x of a row in model order (R, G, B or L, u, v)
void getPixel(const LuvOp& op, bool rgbSide, const uint8_t* row, int x, double (&s)[3]) {
    const int e = sizeOf(op.ty);
    for (int k = 0; k < 3; ++k) {
        const int ch = rgbSide && op.bgr ? 2 - k : k;
        s[k] = getRaw(op.ty, row + e * (op.cn * x + ch));
    }
}
void putPixel(const LuvOp& op, bool rgbSide, uint8_t* row, int x, const double (&s)[3]) {
    const int e = sizeOf(op.ty);
    for (int k = 0; k < 3; ++k) {
        const int ch = rgbSide && op.bgr ? 2 - k : k;
        putRaw(op.ty, row + e * (op.cn * x + ch), s[k]);
    }
}

float uniform(float lo, float hi) { return lo + (hi - lo) * float(rng()() >> 8) * (1.0f / 16777216.0f); }

// A random source pixel, in model order.
void randomPixel(const LuvOp& op, double (&s)[3]) {
    auto& r = rng();
    for (int k = 0; k < 3; ++k) {
        const uint32_t pick = r() % 16;
        switch (op.ty) {
            case Ty::U8: s[k] = pick == 0 ? 0 : pick == 1 ? 255 : r() & 255; break;
            case Ty::U16: s[k] = pick == 0 ? 0 : pick == 1 ? 65535 : r() & 65535; break;
            case Ty::S16: s[k] = pick == 0 ? -32768 : pick == 1 ? 32767 : int(r() & 65535) - 32768; break;
            case Ty::F32:
                if (op.forward) {
                    s[k] = pick == 0 ? 0.0f : pick == 1 ? 1.0f : pick == 2 ? float(r() % 256) / 255.0f : uniform(0, 1);
                } else {
                    const float lo[3] = {0, -134, -140}, hi[3] = {100, 220, 122};
                    s[k] = pick == 0 ? 0.0f : pick == 1 && k == 0 ? uniform(0, 9) : uniform(lo[k], hi[k]);
                }
                break;
        }
    }
}

// ------------------------------------------------------------ every operation through the shared driver
// Blocks of four pixels; the step rounded down to whole samples where the entry shifts it.
TCase luvCase(const LuvOp& o) {
    RefFn ref = [&o](const uint8_t* s, uint8_t* d, Path p) {
        double a[3];
        getPixel(o, o.forward, s, 0, a);
        const Out3 r = reference(o, p == Main, a, Rc::Machine, Rc::Machine);
        const double b[3] = {r[0], r[1], r[2]};
        putPixel(o, !o.forward, d, 0, b);
    };
    FillFn fill = [&o](uint8_t* p, int n) {
        for (int x = 0; x < n / o.cn; ++x) {
            double s[3];
            randomPixel(o, s);
            putPixel(o, o.forward, p, x, s);
        }
    };
    const int e = sizeOf(o.ty);
    return {o.name, e, o.cn, e, o.cn, o.stepShift, 4, ref, blockPath(4), fill, o.call};
}

class LuvOpTest : public ::testing::TestWithParam<int> {
protected:
    const LuvOp& op() const { return luvOps()[size_t(GetParam())]; }
};

TEST_P(LuvOpTest, MatchesReferenceAtEveryWidthAndStep) { sweepT(luvCase(op())); }
TEST_P(LuvOpTest, ChecksInOrderAndWritesNothingOnFailure) { checkStatusesT(luvCase(op())); }
TEST_P(LuvOpTest, ZeroStepIsAccepted) { zeroStepT(luvCase(op())); }

// Results that go through a reciprocal estimate lie within what the least and
// greatest admissible reciprocals give (forward: u and v are monotone in the
// one reciprocal; inverse: the four corners of its two reciprocals).
TEST_P(LuvOpTest, WithinAdmissibleReciprocals) {
    const LuvOp& o = op();
    const int w = 8, h = 40, px = o.cn * sizeOf(o.ty);
    Plane src(w * px, h, 0, Guard::After);
    Plane dst(w * px, h, 0, Guard::After);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            double s[3];
            randomPixel(o, s);
            putPixel(o, o.forward, src.row(y), x, s);
        }
    ASSERT_EQ(o.call(src.origin(), src.step, dst.origin(), dst.step, {w, h}), kroStatusOk);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            double s[3], got[3];
            getPixel(o, o.forward, src.row(y), x, s);
            getPixel(o, !o.forward, dst.row(y), x, got);
            Out3 lo, hi;
            lo.fill(INFINITY), hi.fill(-INFINITY);
            for (Rc a : {Rc::Lo, Rc::Hi})
                for (Rc b : {Rc::Lo, Rc::Hi}) {
                    const Out3 r = reference(o, true, s, a, b);
                    for (size_t k = 0; k < 3; ++k) lo[k] = std::min(lo[k], r[k]), hi[k] = std::max(hi[k], r[k]);
                }
            for (int k = 0; k < 3; ++k) {
                const double tol = o.forward ? 0 : (o.ty == Ty::F32 ? 1e-5 * std::max(1.0, std::fabs(hi[size_t(k)])) : 1);
                EXPECT_TRUE(got[k] >= lo[size_t(k)] - tol && got[k] <= hi[size_t(k)] + tol)
                    << o.name << " (" << s[0] << ", " << s[1] << ", " << s[2] << ") channel " << k << ": " << got[k]
                    << " outside [" << lo[size_t(k)] << ", " << hi[size_t(k)] << "]";
            }
        }
}

INSTANTIATE_TEST_SUITE_P(All, LuvOpTest, ::testing::Range(0, 20),
                         [](const ::testing::TestParamInfo<int>& i) { return std::string(luvOps()[size_t(i.param)].name); });

// ------------------------------------------------------------ exhaustive 8-bit sweeps
// All 2^24 triples (a scattered 2^18 under sanitizers) through the main path
// and through the tail (rows of 3), each against the reference.
class LuvExhaustive : public ::testing::TestWithParam<const char*> {};
TEST_P(LuvExhaustive, AllTriples) {
    const LuvOp& o = opNamed(GetParam());
    exhaustive8(o.name, o.cn, o.cn, 3, int64_t(1) << 18,
                [&o](const Kro8u* s, int ss, Kro8u* d, int ds, kroiSize r) { return o.call(s, ss, d, ds, r); },
                [&o](const Kro8u* s, const Kro8u* d, Path p) {
                    double in[3], got[3];
                    getPixel(o, o.forward, s, 0, in);
                    getPixel(o, !o.forward, d, 0, got);
                    const Out3 want = reference(o, p == Main, in, Rc::Machine, Rc::Machine);
                    return got[0] == want[0] && got[1] == want[1] && got[2] == want[2];
                });
}
INSTANTIATE_TEST_SUITE_P(Luv8, LuvExhaustive,
                         ::testing::Values("kroiRGBToLUV_8u_C3R", "kroiBGRToLUV_8u_C3R", "kroiRGBToLUV_8u_AC4R",
                                           "kroiLUVToRGB_8u_C3R", "kroiLUVToRGB_8u_AC4R"),
                         [](const ::testing::TestParamInfo<const char*>& i) { return std::string(i.param).substr(4); });

// ------------------------------------------------------------ stated values
// One colour in every pixel of a row of 5: pixel 0 takes the main path,
// pixel 4 the tail. Results in model order.
struct MainTail {
    Out3 main, tail;
};
MainTail convert(const LuvOp& o, double a, double b, double c) {
    const int px = o.cn * sizeOf(o.ty);
    Plane src(5 * px, 1, 0, Guard::After);
    Plane dst(5 * px, 1, 0, Guard::After);
    const double s[3] = {a, b, c};
    for (int x = 0; x < 5; ++x) putPixel(o, o.forward, src.row(0), x, s);
    EXPECT_EQ(o.call(src.origin(), src.step, dst.origin(), dst.step, {5, 1}), kroStatusOk);
    double m[3], t[3];
    getPixel(o, !o.forward, dst.row(0), 0, m);
    getPixel(o, !o.forward, dst.row(0), 4, t);
    return {{m[0], m[1], m[2]}, {t[0], t[1], t[2]}};
}
void expect3(const Out3& got, double a, double b, double c, const char* what) {
    EXPECT_EQ(got[0], a) << what;
    EXPECT_EQ(got[1], b) << what;
    EXPECT_EQ(got[2], c) << what;
}
void both3(const MainTail& got, double a, double b, double c, const char* what) {
    expect3(got.main, a, b, c, what);
    expect3(got.tail, a, b, c, what);
}
void near3(const Out3& got, double a, double b, double c, double tol, const char* what) {
    EXPECT_NEAR(got[0], a, tol) << what;
    EXPECT_NEAR(got[1], b, tol) << what;
    EXPECT_NEAR(got[2], c, tol) << what;
}

TEST(LuvValues, Forward8u) {
    for (const char* n : {"kroiRGBToLUV_8u_C3R", "kroiBGRToLUV_8u_C3R", "kroiRGBToLUV_8u_AC4R"}) {
        const LuvOp& o = opNamed(n);
        both3(convert(o, 255, 255, 255), 255, 97, 136, n);
        both3(convert(o, 0, 0, 0), 0, 97, 136, n);
        expect3(convert(o, 255, 0, 0).main, 136, 223, 173, n);
        expect3(convert(o, 0, 255, 0).main, 224, 37, 241, n);
        expect3(convert(o, 0, 0, 255).main, 82, 90, 9, n);
    }
}

TEST(LuvValues, Forward16) {
    const auto w = convert(opNamed("kroiRGBToLUV_16u_C3R"), 65535, 65535, 65535);
    expect3(w.main, 65534, 24807, 35019, "white, main path");
    expect3(w.tail, 65535, 24807, 35019, "white, tail");
    both3(convert(opNamed("kroiRGBToLUV_16u_C3R"), 0, 0, 0), 0, 24807, 35019, "black");
    both3(convert(opNamed("kroiRGBToLUV_16s_C3R"), -32768, -32768, -32768), -32768, -7961, 2251, "16s black");
}

TEST(LuvValues, Forward32f) {
    const LuvOp& o = opNamed("kroiRGBToLUV_32f_C3R");
    for (bool tail : {false, true}) {
        auto pick = [&](const MainTail& r) { return tail ? r.tail : r.main; };
        const Out3 w = pick(convert(o, 1, 1, 1));
        EXPECT_EQ(w[0], 100.0f);
        EXPECT_NEAR(w[1], 0.0005, 0.0003);
        EXPECT_NEAR(w[2], 0.0002, 0.0002);
        expect3(pick(convert(o, 0, 0, 0)), 0, 0, 0, "black");
        const Out3 r = pick(convert(o, 1, 0, 0)), g = pick(convert(o, 0, 1, 0)), b = pick(convert(o, 0, 0, 1));
        EXPECT_EQ(float(r[0]), 53.240593f);
        EXPECT_EQ(float(g[0]), 87.7351074f);
        EXPECT_EQ(float(b[0]), 32.2956734f);
        near3(r, 53.240593, 175.015, 37.752, 0.002, "red");
        near3(g, 87.7351074, -83.077, 107.393, 0.002, "green");
        near3(b, 32.2956734, -9.405, -130.339, 0.002, "blue");
    }
}

TEST(LuvValues, Inverse32f) {
    const LuvOp& o = opNamed("kroiLUVToRGB_32f_C3R");
    const auto w = convert(o, 100, 0, 0);
    near3(w.main, 0.999994, 1.000002, 1.000002, 2e-6, "white, main path");
    EXPECT_EQ(float(w.tail[0]), 0.999994338f);
    EXPECT_EQ(w.tail[1], 1.0);
    EXPECT_EQ(w.tail[2], 1.0);
    const auto k = convert(o, 0, 0, 0);
    near3(k.main, 9.96e-8, 9.96e-8, 9.96e-8, 0.02e-8, "black through the nudge");
    expect3(k.tail, 0, 0, 0, "black, tail");
}

TEST(LuvValues, Inverse8uAnd16u) {
    both3(convert(opNamed("kroiLUVToRGB_8u_C3R"), 255, 97, 136), 255, 254, 255, "white");
    const auto d = convert(opNamed("kroiLUVToRGB_8u_C3R"), 5, 97, 136);
    expect3(d.main, 1, 1, 1, "dark, main path");
    expect3(d.tail, 1, 0, 1, "dark, tail");
    expect3(convert(opNamed("kroiLUVToRGB_8u_AC4R"), 5, 97, 136).main, 0, 0, 0, "dark, AC4 main path");
    const auto w16 = convert(opNamed("kroiLUVToRGB_16u_C3R"), 65535, 24807, 35019);
    expect3(w16.main, 65534, 65535, 65534, "16u white, main path");
    expect3(w16.tail, 65535, 65535, 65534, "16u white, tail");
}

// Sample L of 0 gives black in every integer tail, whatever the chroma.
TEST(LuvValues, ZeroLightnessIsBlackInIntegerTails) {
    for (const auto& o : luvOps()) {
        if (o.forward || o.ty == Ty::F32) continue;
        const double zero = o.ty == Ty::S16 ? -32768 : 0, lo = o.ty == Ty::S16 ? -32768 : 0;
        const double hi = o.ty == Ty::U8 ? 255 : o.ty == Ty::U16 ? 65535 : 32767;
        for (double u : {lo, hi, (lo + hi) / 2})
            for (double v : {lo, hi})
                expect3(convert(o, zero, u, v).tail, zero, zero, zero, o.name);
    }
}

}  // namespace
