// RGB <-> CIE L*a*b* on planes of floats and doubles: every operation, plain
// and _L, against the plain reference at every width (bit for bit), planes
// with their own padded steps and guard pages, folded and unfolded regions,
// statuses in order, the double cube root against the C library's, and the
// model's stated values.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "harness.h"
#include "perceptual/lab_planar_forms.h"
#include "ref_lab.h"

using namespace kt;
namespace rl = ref::lab;

namespace {

// ------------------------------------------------------------ reference of the double forms
// Plain doubles, the decomposition by frexp, tables from a cube root in
// 113-bit floats (Newton's method at run time).
namespace r64 {
struct Tables {
    double inv[32], hi[3][32], lo[3][32];
};
inline const Tables& tables() {
    static const Tables t = [] {
        Tables r{};
        for (int i = 0; i < 32; ++i) {
            const double c = 1.0 + i / 32.0 + 1.0 / 64.0;
            r.inv[i] = -1.0 / c;
            for (int row = 0; row < 3; ++row) {
                const __float128 x = (__float128)c * (1 << row);
                __float128 y = (__float128)std::cbrt((double)x);  // then Newton to 113 bits
                for (int n = 0; n < 6; ++n) y = y - (y * y * y - x) / (3 * y * y);
                double h = (double)y;
                if ((__float128)h > y) h = std::nextafter(h, 0.0);
                r.hi[row][i] = h;
                r.lo[row][i] = (double)(y - (__float128)h);
            }
        }
        return r;
    }();
    return t;
}
inline double cubeRoot(double x) {
    int ex;
    const double fr = std::frexp(x, &ex);  // x = fr 2^ex, fr in [0.5, 1)
    const double m = fr * 2.0;              // 1..2
    const int e = ex - 1 + 1023;            // biased exponent
    const int q = e / 3, row = e - 3 * q;
    const double s = std::ldexp(1.0, q - 341);
    const int i = int((m - 1.0) * 32.0);
    const double c = 1.0 + i / 32.0 + 1.0 / 64.0;
    const double r = tables().inv[i] * (c - m);
    const double h = tables().hi[row][i] * s;
    static const double k[8] = {-0.01583430710088232, 0.019001168521058782, -0.023472031702484377,
                                0.03017832647462277,  -0.0411522633744856,  0.06172839506172839,
                                -0.1111111111111111,  0.3333333333333333};
    double p = k[0];
    for (int n = 1; n < 8; ++n) p = p * r + k[n];
    return h + ((s * tables().lo[row][i]) + ((r * h) * p));
}
inline void toLab(const double s[3], double d[3]) {
    const rl::K& q = rl::k();
    double xyz[3];
    for (int row = 0; row < 3; ++row) {
        double a = double(q.m[row][0]) * s[0];
        a = a + double(q.m[row][1]) * s[1];
        a = a + double(q.m[row][2]) * s[2];
        xyz[row] = a;
    }
    const double th = q.thresh;
    auto f = [&](double t) {
        const double root = cubeRoot(t > th ? t : th);
        return t <= th ? t * double(q.slope) + 0.13793103448275862 : root;
    };
    const double x = xyz[0] * 1.0521265327391165, y = xyz[1], z = xyz[2] * 0.9184811767477967;
    const double fx = f(x), fy = f(y), fz = f(z);
    d[0] = y <= th ? y * double(q.lowL) : 116.0 * fy - 16.0;
    d[1] = (fx - fy) * 500.0;
    d[2] = (fy - fz) * 200.0;
}
inline void fromLab(const double s[3], double d[3]) {
    const rl::K& q = rl::k();
    const double fy = (s[0] + 16.0) * 0.008620689655172414;
    const double fx = s[1] * 0.002 + fy;
    const double fz = fy - s[2] * 0.005;
    const double X = (fx * (fx * fx)) * double(q.xn), Y = fy * (fy * fy), Z = (fz * (fz * fz)) * double(q.zn);
    for (int row = 0; row < 3; ++row) {
        double a = double(q.inv[row][0]) * X;
        a = a + double(q.inv[row][1]) * Y;
        a = a + double(q.inv[row][2]) * Z;
        d[row] = a;
    }
}
}  // namespace r64

// ------------------------------------------------------------ the operations
using PCall = std::function<KroStatus(const void* const*, const int*, void* const*, const int*, int, int)>;

struct PlanarOp {
    const char* name;
    int e;  // 4 or 8
    bool forward, fold, isL;
    PCall call;
};

template <class T, class Sz>
PCall pcall(KroStatus (*f)(const T* const*, const int*, T* const*, const int*, Sz)) {
    return [f](const void* const* s, const int* ss, void* const* d, const int* ds, int w, int h) {
        return f(reinterpret_cast<const T* const*>(s), ss, reinterpret_cast<T* const*>(d), ds, Sz{w, h});
    };
}

const std::vector<PlanarOp>& planarOps() {
    static const std::vector<PlanarOp> ops = {
        {"kroiRGBToLab_32f_P3R", 4, true, false, false, pcall(kroiRGBToLab_32f_P3R)},
        {"kroiRGBToLab_32f_P3R_L", 4, true, false, true, pcall(kroiRGBToLab_32f_P3R_L)},
        {"kroiLabToRGB_32f_P3R", 4, false, true, false, pcall(kroiLabToRGB_32f_P3R)},
        {"kroiLabToRGB_32f_P3R_L", 4, false, true, true, pcall(kroiLabToRGB_32f_P3R_L)},
        {"kroiRGBToLab_64f_P3R", 8, true, false, false, pcall(kroiRGBToLab_64f_P3R)},
        {"kroiRGBToLab_64f_P3R_L", 8, true, false, true, pcall(kroiRGBToLab_64f_P3R_L)},
        {"kroiLabToRGB_64f_P3R", 8, false, true, false, pcall(kroiLabToRGB_64f_P3R)},
        {"kroiLabToRGB_64f_P3R_L", 8, false, true, true, pcall(kroiLabToRGB_64f_P3R_L)},
    };
    return ops;
}

double getS(const uint8_t* p, int e) {
    if (e == 4) { float v; std::memcpy(&v, p, 4); return v; }
    double v;
    std::memcpy(&v, p, 8);
    return v;
}
void putS(uint8_t* p, int e, double v) {
    if (e == 4) { const float f = float(v); std::memcpy(p, &f, 4); }
    else std::memcpy(p, &v, 8);
}

void refPixel(const PlanarOp& o, const double (&s)[3], double (&d)[3]) {
    if (o.e == 8) {
        if (o.forward) r64::toLab(s, d);
        else r64::fromLab(s, d);
        return;
    }
    const float in[3] = {float(s[0]), float(s[1]), float(s[2])};
    float out[3];
    if (o.forward) rl::rgbFToLabF(in, out);
    else rl::labFToRgbF(in, out);
    for (int k = 0; k < 3; ++k) d[k] = out[k];
}

double randomSample(const PlanarOp& o, int k) {
    auto& r = rng();
    const double u = double(r() >> 5) / 134217728.0;
    if (o.forward) {
        const uint32_t pick = r() % 16;
        return pick == 0 ? 0.0 : pick == 1 ? 1.0 : pick == 2 ? 0.004 * u : u;
    }
    return k == 0 ? 100.0 * u : -128.0 + 255.0 * u;
}

// Three planes of a region, each with its own padding (a multiple of the
// sample size when fold is wanted), one guard side for all.
std::string runOnce(const PlanarOp& o, int w, int h, const int (&srcPad)[3], const int (&dstPad)[3], Guard g) {
    std::vector<Plane> src, dst;
    for (int k = 0; k < 3; ++k) {
        src.emplace_back(w * o.e, h, srcPad[k], g);
        dst.emplace_back(w * o.e, h, dstPad[k], g);
    }
    std::vector<std::vector<uint8_t>> expect;
    for (auto& p : dst) expect.push_back(p.snapshot());
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            double s[3], d[3];
            for (int k = 0; k < 3; ++k) {
                s[k] = randomSample(o, k);
                putS(src[size_t(k)].row(y) + o.e * x, o.e, s[k]);
                s[k] = getS(src[size_t(k)].row(y) + o.e * x, o.e);
            }
            refPixel(o, s, d);
            for (int k = 0; k < 3; ++k) putS(dst[size_t(k)].rowIn(expect[size_t(k)], y) + o.e * x, o.e, d[k]);
        }
    const void* sp[3];
    void* dp[3];
    int ss[3], ds[3];
    for (int k = 0; k < 3; ++k) {
        sp[k] = src[size_t(k)].origin(), dp[k] = dst[size_t(k)].origin();
        ss[k] = src[size_t(k)].step, ds[k] = dst[size_t(k)].step;
    }
    const KroStatus st = o.call(sp, ss, dp, ds, w, h);
    if (st != kroStatusOk) return "status " + std::to_string(st);
    for (int k = 0; k < 3; ++k) {
        const std::string m = diffPlane(dst[size_t(k)], expect[size_t(k)], o.e);
        if (!m.empty()) return "plane " + std::to_string(k) + ": " + m;
    }
    return "";
}

class PlanarOpTest : public ::testing::TestWithParam<int> {
protected:
    const PlanarOp& op() const { return planarOps()[size_t(GetParam())]; }
};

TEST_P(PlanarOpTest, MatchesReferenceAtEveryWidthAndStep) {
    const PlanarOp& o = op();
    for (int w : sweepWidths(4))
        for (int h : {1, 3}) {
            ASSERT_EQ(runOnce(o, w, h, {0, 0, 0}, {0, 0, 0}, Guard::After), "") << o.name << " w " << w << " h " << h;
            ASSERT_EQ(runOnce(o, w, h, {o.e, 3 * o.e, 0}, {2 * o.e, 0, 5 * o.e}, Guard::Before), "")
                << o.name << " w " << w << " h " << h << " padded";
            ASSERT_EQ(runOnce(o, w, h, {1, 7, 13}, {5, 2, 11}, Guard::After), "")
                << o.name << " w " << w << " h " << h << " byte padding";
        }
}

// deep null, step-array null, size; nothing written on failure.
TEST_P(PlanarOpTest, ChecksInOrder) {
    const PlanarOp& o = op();
    const int w = 5, h = 2;
    std::vector<Plane> src, dst;
    for (int k = 0; k < 3; ++k) src.emplace_back(w * o.e, h, 0, Guard::After), dst.emplace_back(w * o.e, h, 0, Guard::After);
    const void* sp[3];
    void* dp[3];
    int ss[3], ds[3];
    for (int k = 0; k < 3; ++k)
        sp[k] = src[size_t(k)].origin(), dp[k] = dst[size_t(k)].origin(), ss[k] = src[size_t(k)].step,
        ds[k] = dst[size_t(k)].step;
    std::vector<std::vector<uint8_t>> before;
    for (auto& p : dst) before.push_back(p.snapshot());
    EXPECT_EQ(o.call(nullptr, ss, dp, ds, 0, 0), kroStatusNullPointer);
    EXPECT_EQ(o.call(sp, ss, nullptr, ds, 0, 0), kroStatusNullPointer);
    for (int k = 0; k < 3; ++k) {
        const void* s2[3] = {sp[0], sp[1], sp[2]};
        void* d2[3] = {dp[0], dp[1], dp[2]};
        s2[k] = nullptr;
        EXPECT_EQ(o.call(s2, ss, dp, ds, 0, 0), kroStatusNullPointer) << o.name;
        d2[k] = nullptr;
        EXPECT_EQ(o.call(sp, ss, d2, ds, -1, 0), kroStatusNullPointer) << o.name;
    }
    EXPECT_EQ(o.call(sp, nullptr, dp, ds, 0, 0), kroStatusNullPointer);
    EXPECT_EQ(o.call(sp, ss, dp, nullptr, 0, 0), kroStatusNullPointer);
    for (auto wh : {std::pair<int, int>{0, h}, {w, 0}, {-1, h}, {w, -3}, {INT32_MIN, 1}})
        EXPECT_EQ(o.call(sp, ss, dp, ds, wh.first, wh.second), kroStatusBadSize) << o.name;
    // steps are not tested: zero steps convert every row in the same place
    const int zero[3] = {0, 0, 0};
    EXPECT_EQ(o.call(sp, zero, dp, zero, w, 3), kroStatusOk);
    for (int k = 0; k < 3; ++k) {
        const auto now = dst[size_t(k)].snapshot();
        EXPECT_TRUE(std::equal(now.begin() + w * o.e, now.end(), before[size_t(k)].begin() + w * o.e))
            << o.name << ": rows past the first written with zero steps";
    }
}

INSTANTIATE_TEST_SUITE_P(All, PlanarOpTest, ::testing::Range(0, 8),
                         [](const ::testing::TestParamInfo<int>& i) { return std::string(planarOps()[size_t(i.param)].name); });

// ------------------------------------------------------------ values
double one64(KroStatus (*f)(const Kro64f* const*, const int*, Kro64f* const*, const int*, kroiSize),
             const double (&in)[3], double (&out)[3]) {
    double s[3] = {in[0], in[1], in[2]}, d[3];
    const Kro64f* sp[3] = {&s[0], &s[1], &s[2]};
    Kro64f* dp[3] = {&d[0], &d[1], &d[2]};
    const int st[3] = {8, 8, 8};
    EXPECT_EQ(f(sp, st, dp, st, {1, 1}), kroStatusOk);
    for (int k = 0; k < 3; ++k) out[k] = d[k];
    return 0;
}

TEST(LabPlanarValues, Double) {
    double o[3];
    // white: the float matrix rows sum a little above the white point, so L is
    // 100.0000003 and a, b are some 4e-6 from 0
    one64(kroiRGBToLab_64f_P3R, {1, 1, 1}, o);
    EXPECT_NEAR(o[0], 100.0, 1e-6);
    EXPECT_NEAR(o[1], 0.0, 1e-5);
    EXPECT_NEAR(o[2], 0.0, 1e-5);
    one64(kroiRGBToLab_64f_P3R, {0, 0, 0}, o);
    EXPECT_EQ(o[0], 0.0);
    EXPECT_EQ(o[1], 0.0);
    EXPECT_EQ(o[2], 0.0);
    one64(kroiLabToRGB_64f_P3R, {0, 0, 0}, o);
    for (double v : o) EXPECT_NEAR(v, 0.00262413, 2e-8);
}

// The double cube root: within 0.51 units in the last place of the true root
// from 0.008856 to 1.2, against the long-double root; and its tables against
// the reference's.
TEST(LabPlanarRoot, WithinHalfAnUlpAndTablesAgree) {
    double worst = 0;
    for (int n = 0; n <= 200000; ++n) {
        const double x = 0.008856 + (1.2 - 0.008856) * n / 200000.0;
        const double got = kro::lab64::cubeRootD(x);
        const long double want = cbrtl((long double)x);
        const double ulp = std::nextafter(double(want), 2.0) - double(want);
        worst = std::max(worst, double(std::fabs((long double)got - want) / ulp));
        ASSERT_EQ(got, r64::cubeRoot(x)) << x;
    }
    EXPECT_LT(worst, 0.52);  // about 0.51
    const auto& t = kro::lab64::kRoots;
    for (int i = 0; i < 32; ++i) {
        EXPECT_EQ(t.invCentre[i], r64::tables().inv[i]);
        for (int row = 0; row < 3; ++row) {
            EXPECT_EQ(t.rootHigh[row][i], r64::tables().hi[row][i]) << row << " " << i;
            EXPECT_GE(t.rootLow[row][i], 0.0);  // 0 where the root is exact
            EXPECT_NEAR(t.rootLow[row][i], r64::tables().lo[row][i], 0x1p-63) << row << " " << i;
        }
    }
    EXPECT_NEAR(t.invCentre[0], -0.984615385, 1e-9);
    EXPECT_NEAR(t.invCentre[1], -0.955223881, 1e-9);
    EXPECT_EQ(t.rootHigh[0][0], 1.0051814396472645);
    EXPECT_EQ(t.rootHigh[0][1], 1.0153870251114199);
    // the stated low parts, from a 64-bit root, agree to about 2^-64 of the root
    EXPECT_NEAR(t.rootLow[0][0], 1.9889060768381057e-17, 0x1p-64);
    EXPECT_NEAR(t.rootLow[0][1], 7.532734248677368e-17, 0x1p-64);
}

}  // namespace
