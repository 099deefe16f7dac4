// Tone mapping: both operations against a plain reference (maximum, the
// address-dependent row sums, the scale and conversion) at every width past
// three 16-pixel blocks and at every start offset, padded steps with canaries,
// the three outcomes, the check order and the stated examples.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>

#include "harness.h"

using namespace kt;

namespace {

// ------------------------------------------------------------ reference
float refMax(const uint8_t* base, int step, int w, int h) {
    float m = -FLT_MAX;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            float v;
            std::memcpy(&v, base + std::ptrdiff_t(y) * step + 4 * x, 4);
            if (v > m) m = v;
        }
    return m;
}

// One row's two float halves, lane by lane as the addition order prescribes.
void refRowSum(const uint8_t* p, int n, float& u, float& v) {
    float A[4] = {}, B[4] = {}, C[4] = {}, D[4] = {};
    auto at = [&](int i) {
        float f;
        std::memcpy(&f, p + 4 * i, 4);
        return f;
    };
    const uintptr_t a = reinterpret_cast<uintptr_t>(p);
    int i = 0, rem = n;
    bool step5 = false;
    if (a % 16 != 0) {
        if (a % 4 != 0) {
            step5 = true;
        } else {
            const int h = 4 - int(a % 16) / 4;
            if (rem >= h) {
                if (h == 2 || h == 3) A[0] += at(i), A[1] += at(i + 1), i += 2, rem -= 2;
                if (h == 1 || h == 3) B[0] += at(i), i += 1, rem -= 1;
            }
        }
    }
    if (!step5) {
        while (rem >= 16) {
            for (int k = 0; k < 4; ++k) A[k] += at(i + k), B[k] += at(i + 4 + k), C[k] += at(i + 8 + k),
                                        D[k] += at(i + 12 + k);
            i += 16, rem -= 16;
        }
        if (rem >= 8) {
            for (int k = 0; k < 4; ++k) A[k] += at(i + k), B[k] += at(i + 4 + k);
            i += 8, rem -= 8;
        }
        if (rem >= 4) {
            for (int k = 0; k < 4; ++k) C[k] += at(i + k);
            i += 4, rem -= 4;
        }
    } else {
        while (rem >= 4) {
            for (int k = 0; k < 4; ++k) A[k] += at(i + k);
            i += 4, rem -= 4;
        }
    }
    if (rem >= 2) D[0] += at(i), D[1] += at(i + 1), i += 2, rem -= 2;
    if (rem == 1) C[0] += at(i);
    float T[4];
    for (int k = 0; k < 4; ++k) T[k] = (A[k] + B[k]) + (C[k] + D[k]);
    u = T[0] + T[2];
    v = T[1] + T[3];
}

double refSum(const uint8_t* base, int step, int w, int h) {
    double s = 0;
    for (int y = 0; y < h; ++y) {
        float u, v;
        refRowSum(base + std::ptrdiff_t(y) * step, w, u, v);
        s += u;
        s += v;
    }
    return s;
}

struct Expect {
    KroStatus st;
    bool fill;
    float s;
};

Expect refLinear(const uint8_t* base, int step, int w, int h) {
    const float m = refMax(base, step, w, h);
    if (m < 0) return {kroStatusNothingDone, false, 0};
    if (!(m > 1.1754944e-38f)) return {kroStatusOk, true, 0};
    return {kroStatusOk, false, 255.0f / m};
}
Expect refMean(const uint8_t* base, int step, int w, int h) {
    const double mean = refSum(base, step, w, h) / double(w * h);
    const double m2 = mean + mean;
    if (m2 < 0) return {kroStatusNothingDone, false, 0};
    if (!(m2 > 1.1754943508222875e-38)) return {kroStatusOk, true, 0};
    return {kroStatusOk, false, float(255.0 / m2)};
}

uint8_t refPixel(bool mean, float x, float s) {
    const float p = x * s;
    long long t = std::isnan(p) || std::fabs(p) >= 2147483648.0f ? INT32_MIN : (long long)std::trunc(p);
    if (mean) return uint8_t(t < 0 ? 0 : t > 255 ? 255 : t);
    return uint8_t(t & 0xff);
}

using ToneFn = KroStatus (*)(const Kro32f*, int, Kro8u*, int, kroiSize);

// One image: source floats from `gen`, start offset `off` bytes, padded rows.
template <class Gen>
void runCase(bool mean, int w, int h, int off, int srcPad, int dstPad, Gen gen) {
    const ToneFn f = mean ? kroiToneMapMean_32f8u_C1R : kroiToneMapLinear_32f8u_C1R;
    Plane s(4 * w + off, h, srcPad, Guard::After), d(w, h, dstPad, Guard::Before);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const float v = gen(x, y);
            std::memcpy(s.row(y) + off + 4 * x, &v, 4);
        }
    const uint8_t* src = s.origin() + off;
    const Expect e = mean ? refMean(src, s.step, w, h) : refLinear(src, s.step, w, h);
    auto want = d.snapshot();
    if (e.st == kroStatusOk)
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                float v;
                std::memcpy(&v, src + ((std::ptrdiff_t(y) * s.step) & ~std::ptrdiff_t(3)) + 4 * x, 4);
                d.rowIn(want, y)[x] = e.fill ? 0 : refPixel(mean, v, e.s);
            }
    ASSERT_EQ(f(reinterpret_cast<const Kro32f*>(src), s.step, d.origin(), d.step, {w, h}), e.st)
        << (mean ? "mean" : "linear") << " width " << w << " offset " << off;
    ASSERT_EQ(diffPlane(d, want, 1), "") << (mean ? "mean" : "linear") << " width " << w << " offset " << off;
}

TEST(ToneMap, EveryWidthAndOffset) {
    std::uniform_real_distribution<float> u(0.0f, 100.0f);
    for (bool mean : {false, true})
        for (int w : sweepWidths(16))
            for (int off : {0, 1, 4, 8, 12}) {
                ASSERT_NO_FATAL_FAILURE(runCase(mean, w, 1 + w % 3, off, (w * 4) % 13, w % 5,
                                                [&](int, int) { return u(rng()); }));
            }
}

TEST(ToneMap, SignsAndSpecialMeasures) {
    for (bool mean : {false, true}) {
        runCase(mean, 20, 3, 0, 0, 3, [](int, int) { return 0.0f; });
        runCase(mean, 20, 3, 4, 0, 3, [](int, int) { return -1.0f; });
        runCase(mean, 20, 3, 8, 4, 0, [](int, int) { return 1e-39f; });
        runCase(mean, 20, 1, 0, 0, 0, [](int x, int) { return x % 2 ? 0.0f : -1.0f; });
        runCase(mean, 37, 2, 4, 8, 2, [](int x, int y) { return (x + y) % 7 == 0 ? -3.0f : float(x) * 1.5f; });
        runCase(mean, 33, 2, 0, 0, 1, [](int x, int) { return x == 5 ? 3e9f : 1.0f; });
        // a step off the 4-byte grid: row 2 starts at its own rounded byte offset
        runCase(mean, 9, 3, 0, 6, 0, [](int x, int y) { return float(x + 10 * y); });
    }
}

// The stated values, by hand.
TEST(ToneMap, StatedExamples) {
    std::vector<Kro32f> s(20, 0.0f);
    std::vector<Kro8u> d(20, 9);
    s[7] = 5.0f;
    ASSERT_EQ(kroiToneMapLinear_32f8u_C1R(s.data(), 80, d.data(), 20, {20, 1}), kroStatusOk);
    for (int i = 0; i < 20; ++i) EXPECT_EQ(d[size_t(i)], i == 7 ? 255 : 0);
    std::fill(d.begin(), d.end(), 9);
    ASSERT_EQ(kroiToneMapMean_32f8u_C1R(s.data(), 80, d.data(), 20, {20, 1}), kroStatusOk);
    for (int i = 0; i < 20; ++i) EXPECT_EQ(d[size_t(i)], i == 7 ? 255 : 0);

    s[7] = 7.0f;
    ASSERT_EQ(kroiToneMapLinear_32f8u_C1R(s.data(), 80, d.data(), 20, {20, 1}), kroStatusOk);
    EXPECT_EQ(d[7], 254);

    for (int i = 0; i < 20; ++i) s[size_t(i)] = i % 2 ? 0.0f : -1.0f;
    std::fill(d.begin(), d.end(), 9);
    EXPECT_EQ(kroiToneMapLinear_32f8u_C1R(s.data(), 80, d.data(), 20, {20, 1}), kroStatusOk);
    for (auto v : d) EXPECT_EQ(v, 0);
    std::fill(d.begin(), d.end(), 9);
    EXPECT_EQ(kroiToneMapMean_32f8u_C1R(s.data(), 80, d.data(), 20, {20, 1}), kroStatusNothingDone);
    for (auto v : d) EXPECT_EQ(v, 9);
}

TEST(ToneMap, CheckOrder) {
    std::vector<Kro32f> s(16, 1.0f);
    std::vector<Kro8u> d(16, 7);
    for (ToneFn f : {kroiToneMapLinear_32f8u_C1R, kroiToneMapMean_32f8u_C1R}) {
        std::fill(d.begin(), d.end(), Kro8u(7));
        EXPECT_EQ(f(nullptr, 64, d.data(), 16, {0, 0}), kroStatusNullPointer);
        EXPECT_EQ(f(s.data(), 64, nullptr, 16, {0, 0}), kroStatusNullPointer);
        EXPECT_EQ(f(s.data(), 64, d.data(), 16, {0, 1}), kroStatusBadSize);
        EXPECT_EQ(f(s.data(), 64, d.data(), 16, {1, -1}), kroStatusBadSize);
        for (auto v : d) EXPECT_EQ(v, 7);
        // steps are not tested: a zero step repeats row 0
        EXPECT_EQ(f(s.data(), 0, d.data(), 0, {4, 3}), kroStatusOk);
    }
}

// Large zero fills (one row when the step equals the width, and padded rows)
// keep every byte outside the region.
TEST(ToneMap, LargeZeroFill) {
    for (int pad : {0, 3}) {
        const int w = 1500, h = 800;
        std::vector<Kro32f> s(size_t(w) * h, 0.0f);
        std::vector<Kro8u> d(size_t(w + pad) * h + 64, 0xee);
        ASSERT_EQ(kroiToneMapLinear_32f8u_C1R(s.data(), 4 * w, d.data() + 1, w + pad, {w, h}), kroStatusOk);
        EXPECT_EQ(d[0], 0xee);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w + pad; ++x)
                if (d[1 + size_t(y) * (w + pad) + x] != (x < w ? 0 : 0xee)) FAIL() << y << " " << x;
        EXPECT_EQ(d[1 + size_t(w + pad) * h], 0xee);
    }
}

}  // namespace
