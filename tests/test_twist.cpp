// Colour twist: every operation against the plain reference at every width
// past three blocks, odd heights, start offsets (also off the sample size:
// steps are bytes), padded steps with canaries, guarded buffers; in-place
// forms against their out-of-place twins; the caller's rounding mode under all
// four modes; the check order; the stated examples.
#include <gtest/gtest.h>

#include <xmmintrin.h>

#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <type_traits>

#include "convt_test.h"
#include "harness.h"
#include "ref_twist.h"

using namespace kt;

namespace {

enum class Lay { C3, AC4, P3 };

// Type-erased call: plane arrays (interleaved forms use element 0).
using Call = std::function<KroStatus(void* const* src, int srcStep, void* const* dst, int dstStep, kroiSize,
                                     const float* twist)>;

struct Op {
    const char* name;
    int S;  // sample bytes
    Lay lay;
    bool inPlace;
    bool isFloat;
    Call call;
    // reference of one pixel: three samples in, three out (bytes of type T)
    std::function<void(const float (&m)[3][4], const uint8_t* const* s, uint8_t* const* d)> ref;
};

template <class T>
void refPixel(const float (&m)[3][4], const uint8_t* const* s, uint8_t* const* d) {
    T in[3], out[3];
    for (int c = 0; c < 3; ++c) std::memcpy(&in[c], s[c], sizeof(T));
    ref::twistPixel<T>(m, in, out);
    for (int c = 0; c < 3; ++c) std::memcpy(d[c], &out[c], sizeof(T));
}

using M34 = const Kro32f (*)[4];

// One adapter for the four entry shapes: interleaved or planes, in place or not.
template <class T, class F>
Op opOf(const char* name, Lay lay, F f) {
    using P = T* const*;
    using CP = const T* const*;
    constexpr bool inPlace = std::is_invocable_v<F, T*, int, kroiSize, M34> || std::is_invocable_v<F, P, int, kroiSize, M34>;
    return {name, int(sizeof(T)), lay, inPlace, std::is_same_v<T, Kro32f>,
            [f](void* const* s, int ss, void* const* d, int ds, kroiSize r, const float* t) {
                const M34 m = reinterpret_cast<M34>(t);
                if constexpr (std::is_invocable_v<F, const T*, int, T*, int, kroiSize, M34>)
                    return f(static_cast<const T*>(s[0]), ss, static_cast<T*>(d[0]), ds, r, m);
                else if constexpr (std::is_invocable_v<F, T*, int, kroiSize, M34>)
                    return f(static_cast<T*>(s[0]), ss, r, m);
                else if constexpr (std::is_invocable_v<F, CP, int, P, int, kroiSize, M34>)
                    return f(reinterpret_cast<CP>(s), ss, reinterpret_cast<P>(d), ds, r, m);
                else
                    return f(reinterpret_cast<P>(s), ss, r, m);
            },
            refPixel<T>};
}

#define TW_SET(NAME, T)                                                                                      \
    opOf<T>(#NAME "_C3R", Lay::C3, NAME##_C3R), opOf<T>(#NAME "_AC4R", Lay::AC4, NAME##_AC4R),               \
        opOf<T>(#NAME "_C3IR", Lay::C3, NAME##_C3IR), opOf<T>(#NAME "_AC4IR", Lay::AC4, NAME##_AC4IR),       \
        opOf<T>(#NAME "_P3R", Lay::P3, NAME##_P3R), opOf<T>(#NAME "_IP3R", Lay::P3, NAME##_IP3R)

const std::vector<Op>& ops() {
    static const std::vector<Op> v = {TW_SET(kroiColorTwist32f_8u, Kro8u), TW_SET(kroiColorTwist32f_16u, Kro16u),
                                      TW_SET(kroiColorTwist32f_16s, Kro16s), TW_SET(kroiColorTwist_32f, Kro32f)};
    return v;
}

// Random float samples, pixelFloats to a pixel: mostly ordinary values, now
// and then one special in a pixel, never two (so no result meets two NaNs,
// whose order the reference does not pin).
void randomPixel(float* v, int pixelFloats) {
    auto& r = rng();
    std::uniform_real_distribution<float> u(-2.0f, 2.0f);
    const float specials[] = {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::quiet_NaN(), -0.0f, 1e-40f, 3e38f};
    for (int i = 0; i < pixelFloats; ++i) v[i] = u(r);
    if (r() % 16 == 0) v[r() % unsigned(pixelFloats)] = specials[r() % 6];
}
void fillFloats(uint8_t* p, size_t bytes, int pixelFloats) {
    for (size_t i = 0; i + 4 * size_t(pixelFloats) <= bytes; i += 4 * size_t(pixelFloats)) {
        float v[4];
        randomPixel(v, pixelFloats);
        std::memcpy(p + i, v, 4 * size_t(pixelFloats));
    }
}

void randomMatrix(float (&m)[3][4], const Op& op) {
    auto& r = rng();
    std::uniform_real_distribution<float> w(-1.5f, 1.5f);
    const float range = op.isFloat ? 1.0f : op.S == 1 ? 300.0f : 70000.0f;
    std::uniform_real_distribution<float> c(-range, range);
    for (auto& row : m) {
        for (int j = 0; j < 3; ++j) row[j] = w(r);
        row[3] = c(r);
        if (r() % 4 == 0) row[3] = std::round(row[3]) + 0.5f;  // ties, when the weights allow
    }
}

// One run of an operation on a fresh image: returns "" or the first difference.
// csr, if not 0: the control register in force for the call, which must be
// handed back with its control bits unchanged.
std::string runCase(const Op& op, int width, int height, int off, int pad, Guard g, const float (&m)[3][4],
                    unsigned csr = 0) {
    const int planes = op.lay == Lay::P3 ? 3 : 1;
    const int ch = op.lay == Lay::P3 ? 1 : op.lay == Lay::C3 ? 3 : 4;
    const int rowBytes = width * ch * op.S + off;
    std::vector<Plane> src, dst;
    for (int p = 0; p < planes; ++p) {
        src.emplace_back(rowBytes, height, pad, g);
        if (!op.inPlace) dst.emplace_back(rowBytes, height, (pad * 3 + 1) % 19, g == Guard::After ? Guard::Before : Guard::After);
    }
    std::vector<Plane>& out = op.inPlace ? src : dst;
    // float samples pixel by pixel where the region puts them (any offset, planes or not)
    if (op.isFloat)
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                float v[3];
                randomPixel(v, 3);
                for (int c = 0; c < 3; ++c)
                    std::memcpy(src[size_t(planes == 3 ? c : 0)].row(y) + off + (planes == 3 ? x : x * ch + c) * 4,
                                &v[c], 4);
            }
    std::vector<std::vector<uint8_t>> sSnap, expect;
    for (auto& p : src) sSnap.push_back(p.snapshot());
    for (auto& p : out) expect.push_back(p.snapshot());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const uint8_t* s[3];
            uint8_t* d[3];
            for (int c = 0; c < 3; ++c) {
                const int p = planes == 3 ? c : 0;
                const int at = off + (planes == 3 ? x * op.S : (x * ch + c) * op.S);
                s[c] = src[size_t(p)].rowIn(sSnap[size_t(p)], y) + at;
                d[c] = out[size_t(p)].rowIn(expect[size_t(p)], y) + at;
            }
            op.ref(m, s, d);
        }
    void* sp[3];
    void* dp[3];
    for (int p = 0; p < planes; ++p) {
        sp[p] = src[size_t(p)].origin() + off;
        dp[p] = out[size_t(p)].origin() + off;
    }
    const unsigned saved = _mm_getcsr();
    if (csr) _mm_setcsr(csr);
    const KroStatus st = op.call(sp, src[0].step, dp, out[0].step, {width, height}, &m[0][0]);
    const unsigned after = _mm_getcsr();
    _mm_setcsr(saved);
    if (csr && (after & ~0x3fu) != (csr & ~0x3fu)) return "control bits changed";  // flags are sticky
    if (st != kroStatusOk) return "status " + std::to_string(st);
    for (int p = 0; p < planes; ++p) {
        const std::string e = diffPlane(out[size_t(p)], expect[size_t(p)], ch * op.S);
        if (!e.empty()) return "plane " + std::to_string(p) + ": " + e;
    }
    return {};
}

class TwistOp : public ::testing::TestWithParam<int> {
protected:
    const Op& op() const { return ops()[size_t(GetParam())]; }
};

TEST_P(TwistOp, EveryWidthAgainstReference) {
    float m[3][4];
    for (int w : sweepWidths(4)) {
        randomMatrix(m, op());
        const int h = 1 + w % 3;
        ASSERT_EQ(runCase(op(), w, h, 0, 0, Guard::After, m), "") << op().name << " width " << w;
        ASSERT_EQ(runCase(op(), w, h, 0, 5, Guard::Before, m), "") << op().name << " width " << w;
    }
}

TEST_P(TwistOp, StartOffsetsAndPaddedSteps) {
    float m[3][4];
    for (int off = 0; off < 16; ++off)
        for (int pad : {0, 1, 3, 16}) {
            randomMatrix(m, op());
            ASSERT_EQ(runCase(op(), 13 + off % 5, 3, off, pad, Guard::After, m), "")
                << op().name << " offset " << off << " pad " << pad;
        }
}

// Status table: null (every address, plane elements, matrix) before size
// before step; a failing call writes nothing.
TEST_P(TwistOp, CheckOrder) {
    const Op& o = op();
    std::vector<uint8_t> a(4096, 0x5a), b(4096, 0xa5);
    const auto a0 = a, b0 = b;
    float m[3][4] = {};
    void* s3[3] = {a.data(), a.data() + 1024, a.data() + 2048};
    void* d3[3] = {b.data(), b.data() + 1024, b.data() + 2048};
    const kroiSize ok{2, 2}, zero{0, 2}, zeroH{2, 0};
    auto call = [&](void* const* s, int ss, void* const* d, int ds, kroiSize r, const float* t) {
        return o.call(s, ss, d, ds, r, t);
    };
    // null matrix even with a bad size and a bad step
    EXPECT_EQ(call(s3, 0, d3, 0, zero, nullptr), kroStatusNullPointer) << o.name;
    void* nul[3] = {nullptr, nullptr, nullptr};
    EXPECT_EQ(call(nul, 0, d3, 0, zero, &m[0][0]), kroStatusNullPointer) << o.name;
    if (!o.inPlace) EXPECT_EQ(call(s3, 0, nul, 0, zero, &m[0][0]), kroStatusNullPointer) << o.name;
    if (o.lay == Lay::P3) {
        EXPECT_EQ(call(nullptr, 0, d3, 0, zero, &m[0][0]), kroStatusNullPointer) << o.name;
        if (!o.inPlace) EXPECT_EQ(call(s3, 0, nullptr, 0, zero, &m[0][0]), kroStatusNullPointer) << o.name;
        for (int k = 0; k < 3; ++k) {
            void* s[3] = {s3[0], s3[1], s3[2]};
            void* d[3] = {d3[0], d3[1], d3[2]};
            s[k] = nullptr;
            EXPECT_EQ(call(s, 0, d3, 0, zero, &m[0][0]), kroStatusNullPointer) << o.name << " plane " << k;
            if (!o.inPlace) {
                d[k] = nullptr;
                EXPECT_EQ(call(s3, 0, d, 0, zero, &m[0][0]), kroStatusNullPointer) << o.name << " plane " << k;
            }
        }
    }
    EXPECT_EQ(call(s3, 0, d3, 0, zero, &m[0][0]), kroStatusBadSize) << o.name;
    EXPECT_EQ(call(s3, -4, d3, -4, zeroH, &m[0][0]), kroStatusBadSize) << o.name;
    EXPECT_EQ(call(s3, 64, d3, 64, {-1, -1}, &m[0][0]), kroStatusBadSize) << o.name;
    EXPECT_EQ(call(s3, 0, d3, 64, ok, &m[0][0]), kroStatusBadStep) << o.name;
    EXPECT_EQ(call(s3, -64, d3, 64, ok, &m[0][0]), kroStatusBadStep) << o.name;
    if (!o.inPlace) EXPECT_EQ(call(s3, 64, d3, 0, ok, &m[0][0]), kroStatusBadStep) << o.name;
    EXPECT_EQ(a, a0);
    EXPECT_EQ(b, b0);
    // a step of 1 byte is accepted (rows overlap: the caller's affair)
    EXPECT_EQ(call(s3, 1, d3, 1, {1, 1}, &m[0][0]), kroStatusOk) << o.name;
}

// Under each of the four rounding modes (with flush-to-zero set, which must
// stay): integer forms give the round-to-nearest results, 32f forms round by
// the caller's mode (their reference runs under it too).
TEST_P(TwistOp, CallersRoundingMode) {
    const Op& o = op();
    const unsigned saved = _mm_getcsr();
    for (unsigned mode : {0x0000u, 0x2000u, 0x4000u, 0x6000u}) {
        float m[3][4];
        randomMatrix(m, o);
        const unsigned csr = (saved & ~0x6000u) | mode | 0x8000u;
        if (o.isFloat) _mm_setcsr(csr);
        const std::string e = runCase(o, 19, 2, 1, 3, Guard::After, m, csr);
        _mm_setcsr(saved);
        EXPECT_EQ(e, "") << o.name << " mode " << mode;
    }
}

std::string opName(const ::testing::TestParamInfo<int>& i) { return ops()[size_t(i.param)].name; }
INSTANTIATE_TEST_SUITE_P(All, TwistOp, ::testing::Range(0, 24), opName);

// ------------------------------------------------------------ stated examples
const float kIdentity[3][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};

TEST(TwistExamples, IdentityKeepsIntegerSamples) {
    std::vector<Kro8u> a8(256 * 3), d8(256 * 3);
    for (int i = 0; i < 768; ++i) a8[size_t(i)] = Kro8u(i / 3 + i % 3);
    ASSERT_EQ(kroiColorTwist32f_8u_C3R(a8.data(), 768, d8.data(), 768, {256, 1}, kIdentity), kroStatusOk);
    EXPECT_EQ(a8, d8);
    std::vector<Kro16u> a16(65536 * 3), d16(a16.size());
    for (size_t i = 0; i < a16.size(); ++i) a16[i] = Kro16u(i / 3 + i % 3 * 7);
    ASSERT_EQ(kroiColorTwist32f_16u_C3R(a16.data(), 65536 * 6, d16.data(), 65536 * 6, {65536, 1}, kIdentity),
              kroStatusOk);
    EXPECT_EQ(a16, d16);
    std::vector<Kro16s> s16(65536 * 3), e16(s16.size());
    for (size_t i = 0; i < s16.size(); ++i) s16[i] = Kro16s(int(i / 3) - 32768);
    ASSERT_EQ(kroiColorTwist32f_16s_C3R(s16.data(), 65536 * 6, e16.data(), 65536 * 6, {65536, 1}, kIdentity),
              kroStatusOk);
    EXPECT_EQ(s16, e16);
}

// One pixel repeated over 1, 4 and 5 columns of a C3 form: every column gives the same result.
template <class T>
std::array<T, 3> twist1(KroStatus (*f)(const T*, int, T*, int, kroiSize, const Kro32f[3][4]),
                        const float (&m)[3][4], T a, T b, T c) {
    std::array<T, 3> r{};
    for (int w : {1, 4, 5}) {
        std::vector<T> s, d(size_t(3 * w));
        for (int x = 0; x < w; ++x) s.insert(s.end(), {a, b, c});
        const int step = int(sizeof(T)) * 3 * w;
        EXPECT_EQ(f(s.data(), step, d.data(), step, {w, 1}, m), kroStatusOk);
        if (w == 1) r = {d[0], d[1], d[2]};
        for (int x = 0; x < w; ++x) EXPECT_EQ((std::array<T, 3>{d[3 * x], d[3 * x + 1], d[3 * x + 2]}), r) << x;
    }
    return r;
}
struct M34f {
    float m[3][4];
};
M34f offset(float c) { return {{{1, 0, 0, c}, {0, 1, 0, c}, {0, 0, 1, c}}}; }

TEST(TwistExamples, TiesSaturationAndUnclampedFloats) {
    using A8 = std::array<Kro8u, 3>;
    using A16 = std::array<Kro16s, 3>;
    const float ties[3][4] = {{1, 0, 0, 0.5f}, {0, 1, 0, 0.5f}, {0, 0, 1, 1.5f}};
    EXPECT_EQ(twist1<Kro8u>(kroiColorTwist32f_8u_C3R, ties, 10, 10, 10), (A8{10, 10, 12}));
    EXPECT_EQ(twist1<Kro8u>(kroiColorTwist32f_8u_C3R, offset(300).m, 200, 200, 200), (A8{255, 255, 255}));
    EXPECT_EQ(twist1<Kro8u>(kroiColorTwist32f_8u_C3R, offset(-300).m, 200, 200, 200), (A8{0, 0, 0}));
    EXPECT_EQ(twist1<Kro16s>(kroiColorTwist32f_16s_C3R, offset(1).m, 32767, 32767, 32767), (A16{32767, 32767, 32767}));
    EXPECT_EQ(twist1<Kro16s>(kroiColorTwist32f_16s_C3R, offset(-1).m, -32768, -32768, -32768),
              (A16{-32768, -32768, -32768}));
    EXPECT_EQ(twist1<Kro16u>(kroiColorTwist32f_16u_C3R, offset(69000).m, 1000, 1000, 1000),
              (std::array<Kro16u, 3>{65535, 65535, 65535}));
    // NaN takes the upper bound, infinities clamp
    const float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
    const float sp[3][4] = {{nan, 0, 0, 0}, {0, 0, 0, inf}, {0, 0, 0, -inf}};
    EXPECT_EQ(twist1<Kro8u>(kroiColorTwist32f_8u_C3R, sp, 200, 200, 200), (A8{255, 255, 0}));
    EXPECT_EQ(twist1<Kro16s>(kroiColorTwist32f_16s_C3R, sp, -32768, -32768, -32768), (A16{32767, 32767, -32768}));
    const float fm[3][4] = {{2, 0, 0, 0}, {0, 1, 0, -3}, {0, 0, 1, 0.25f}};
    EXPECT_EQ(twist1<Kro32f>(kroiColorTwist_32f_C3R, fm, 0.75f, 0.75f, 0.75f),
              (std::array<Kro32f, 3>{1.5f, -2.25f, 1.0f}));
}

// The 32f C3 form: same samples for images just below and above 34993
// samples, packed rows (one long row) and padded rows.
TEST(TwistExamples, FloatC3SizesAndFolding) {
    float m[3][4] = {{0.3f, 0.59f, 0.11f, 0.01f}, {-0.2f, 1.1f, 0.05f, 0}, {0.7f, 0.7f, -0.4f, -0.5f}};
    for (int w : {3887, 3888, 3889}) {  // x 3 x 3 rows: 34983, 34992, 35001 samples
        const int h = 3;
        std::vector<Kro32f> s(size_t(3 * w * h)), d(s.size()), want(s.size());
        fillFloats(reinterpret_cast<uint8_t*>(s.data()), s.size() * 4, 3);
        for (size_t p = 0; p < s.size() / 3; ++p) {
            const Kro32f in[3] = {s[3 * p], s[3 * p + 1], s[3 * p + 2]};
            Kro32f o[3];
            ref::twistPixel<Kro32f>(m, in, o);
            std::memcpy(&want[3 * p], o, sizeof o);
        }
        ASSERT_EQ(kroiColorTwist_32f_C3R(s.data(), 12 * w, d.data(), 12 * w, {w, h}, m), kroStatusOk);
        EXPECT_EQ(std::memcmp(d.data(), want.data(), d.size() * 4), 0) << w;
        // padded destination rows
        std::vector<Kro32f> pd(size_t((3 * w + 4) * h), 9.0f);
        ASSERT_EQ(kroiColorTwist_32f_C3R(s.data(), 12 * w, pd.data(), 12 * w + 16, {w, h}, m), kroStatusOk);
        for (int y = 0; y < h; ++y) {
            EXPECT_EQ(std::memcmp(&pd[size_t((3 * w + 4) * y)], &want[size_t(3 * w * y)], size_t(12 * w)), 0);
            EXPECT_EQ(pd[size_t((3 * w + 4) * y + 3 * w)], 9.0f);
        }
    }
}

// ------------------------------------------------------------ 4 x 4
// The 4 x 4 form through the shared typed driver with three random matrices.
TEST(TwistC4, AgainstReferenceEveryWidth) {
    static float ms[3][4][4];
    std::uniform_real_distribution<float> u(-1.5f, 1.5f);
    for (auto& m : ms)
        for (auto& r : m)
            for (auto& v : r) v = u(rng());
    for (const auto& m : ms) {
        const TCase c{"kroiColorTwist_32f_C4R", 4, 4, 4, 4, 0, 2,
                      [&m](const uint8_t* s, uint8_t* d, Path) {
                          float in[4], o[4];
                          std::memcpy(in, s, 16);
                          for (int i = 0; i < 4; ++i) o[i] = ref::twistSum4(m[i], in);
                          std::memcpy(d, o, 16);
                      },
                      blockPath(2),
                      // at most one special value a pixel: where two NaNs meet, which one
                      // comes out depends on operand order, which the reference does not pin
                      [](uint8_t* p, int n) { fillFloats(p, size_t(n) * 4, 4); },
                      [&m](const void* s, int ss, void* d, int ds, kroiSize r) {
                          return kroiColorTwist_32f_C4R(static_cast<const Kro32f*>(s), ss, static_cast<Kro32f*>(d),
                                                        ds, r, m);
                      }};
        sweepT(c, 1, false);  // steps must be positive
    }
}

TEST(TwistC4, CheckOrder) {
    std::vector<Kro32f> a(64, 1.0f), b(64, 2.0f);
    const auto b0 = b;
    const float m[4][4] = {};
    EXPECT_EQ(kroiColorTwist_32f_C4R(a.data(), 0, b.data(), 0, {0, 0}, nullptr), kroStatusNullPointer);
    EXPECT_EQ(kroiColorTwist_32f_C4R(nullptr, 0, b.data(), 0, {0, 0}, m), kroStatusNullPointer);
    EXPECT_EQ(kroiColorTwist_32f_C4R(a.data(), 0, nullptr, 0, {0, 0}, m), kroStatusNullPointer);
    EXPECT_EQ(kroiColorTwist_32f_C4R(a.data(), 0, b.data(), 0, {0, 1}, m), kroStatusBadSize);
    EXPECT_EQ(kroiColorTwist_32f_C4R(a.data(), 0, b.data(), 0, {1, 0}, m), kroStatusBadSize);
    EXPECT_EQ(kroiColorTwist_32f_C4R(a.data(), 0, b.data(), 64, {1, 1}, m), kroStatusBadStep);
    EXPECT_EQ(kroiColorTwist_32f_C4R(a.data(), 64, b.data(), -1, {1, 1}, m), kroStatusBadStep);
    EXPECT_EQ(b, b0);
}

}  // namespace
