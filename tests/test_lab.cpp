// RGB / BGR <-> CIE L*a*b*: the cube-root table against an independent
// generation, every operation against the plain reference at every width and
// step (bit-exact, floats included), statuses in order, exhaustive sweeps of
// the 8-bit forms and a dense grid of the 16-bit Lab form, inputs outside the
// float range, the model's known values, and round trips on a photograph.
#include <gtest/gtest.h>

#include "photo.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "convt_test.h"
#include "harness.h"
#include "perceptual/lab_forms.h"
#include "ref_lab.h"

using namespace kt;
namespace rl = ref::lab;

namespace {

// ------------------------------------------------------------ operations as table rows
enum class Dom { Rgb8, RgbF, Lab8, Lab16, LabF };  // what a source holds

struct LabOp {
    const char* name;
    int srcE, dstE;          // bytes per sample
    bool srcSwap, dstSwap;   // BGR order on that side
    Dom dom;
    // one pixel in model order; float samples travel as their bit patterns
    void (*ref)(const uint32_t (&s)[3], uint32_t (&d)[3]);
    KroStatus (*call)(const void*, int, void*, int, kroiSize);
};

template <void (*F)(const int[3], int[3])>
void intRef(const uint32_t (&s)[3], uint32_t (&d)[3]) {
    const int in[3] = {int(s[0]), int(s[1]), int(s[2])};
    int out[3];
    F(in, out);
    for (int i = 0; i < 3; ++i) d[i] = uint32_t(out[i]);
}
template <void (*F)(const float[3], float[3])>
void floatRef(const uint32_t (&s)[3], uint32_t (&d)[3]) {
    const float in[3] = {rl::f32(s[0]), rl::f32(s[1]), rl::f32(s[2])};
    float out[3];
    F(in, out);
    for (int i = 0; i < 3; ++i) d[i] = rl::bitsOf(out[i]);
}

#define LAB_CALL(fn, S, D)                                                             \
    [](const void* s, int ss, void* d, int ds, kroiSize r) {                          \
        return fn(static_cast<const S*>(s), ss, static_cast<D*>(d), ds, r);           \
    }

const std::vector<LabOp>& labOps() {
    static const std::vector<LabOp> ops = {
        {"kroiRGBToLab_8u_C3R", 1, 1, false, false, Dom::Rgb8, intRef<rl::rgb8ToLab8>,
         LAB_CALL(kroiRGBToLab_8u_C3R, Kro8u, Kro8u)},
        {"kroiBGRToLab_8u_C3R", 1, 1, true, false, Dom::Rgb8, intRef<rl::rgb8ToLab8>,
         LAB_CALL(kroiBGRToLab_8u_C3R, Kro8u, Kro8u)},
        {"kroiBGRToLab_8u16u_C3R", 1, 2, true, false, Dom::Rgb8, intRef<rl::rgb8ToLab16>,
         LAB_CALL(kroiBGRToLab_8u16u_C3R, Kro8u, Kro16u)},
        {"kroiRGBToLab_32f_C3R", 4, 4, false, false, Dom::RgbF, floatRef<rl::rgbFToLabF>,
         LAB_CALL(kroiRGBToLab_32f_C3R, Kro32f, Kro32f)},
        {"kroiBGRToLab_32f_C3R", 4, 4, true, false, Dom::RgbF, floatRef<rl::rgbFToLabF>,
         LAB_CALL(kroiBGRToLab_32f_C3R, Kro32f, Kro32f)},
        {"kroiLabToRGB_8u_C3R", 1, 1, false, false, Dom::Lab8, intRef<rl::lab8ToRgb8>,
         LAB_CALL(kroiLabToRGB_8u_C3R, Kro8u, Kro8u)},
        {"kroiLabToBGR_8u_C3R", 1, 1, false, true, Dom::Lab8, intRef<rl::lab8ToRgb8>,
         LAB_CALL(kroiLabToBGR_8u_C3R, Kro8u, Kro8u)},
        {"kroiLabToBGR_16u8u_C3R", 2, 1, false, true, Dom::Lab16, intRef<rl::lab16ToRgb8>,
         LAB_CALL(kroiLabToBGR_16u8u_C3R, Kro16u, Kro8u)},
        {"kroiLabToRGB_32f_C3R", 4, 4, false, false, Dom::LabF, floatRef<rl::labFToRgbF>,
         LAB_CALL(kroiLabToRGB_32f_C3R, Kro32f, Kro32f)},
        {"kroiLabToBGR_32f_C3R", 4, 4, false, true, Dom::LabF, floatRef<rl::labFToRgbF>,
         LAB_CALL(kroiLabToBGR_32f_C3R, Kro32f, Kro32f)},
    };
    return ops;
}

const LabOp& opNamed(const std::string& n) {
    for (auto& o : labOps())
        if (n == o.name) return o;
    std::abort();
}

// ------------------------------------------------------------ samples in memory
uint32_t getSample(const uint8_t* p, int e) {
    if (e == 1) return *p;
    if (e == 2) {
        uint16_t v;
        std::memcpy(&v, p, 2);
        return v;
    }
    uint32_t v;
    std::memcpy(&v, p, 4);
    return v;
}
void putSample(uint8_t* p, int e, uint32_t v) {
    if (e == 1) *p = uint8_t(v);
    if (e == 2) {
        const uint16_t w = uint16_t(v);
        std::memcpy(p, &w, 2);
    }
    if (e == 4) std::memcpy(p, &v, 4);
}
// pixel x of a row, in model order
void getPixel(const uint8_t* row, int e, bool swap, int x, uint32_t (&s)[3]) {
    for (int ch = 0; ch < 3; ++ch) s[swap ? 2 - ch : ch] = getSample(row + e * (3 * x + ch), e);
}
void putPixel(uint8_t* row, int e, bool swap, int x, const uint32_t (&s)[3]) {
    for (int ch = 0; ch < 3; ++ch) putSample(row + e * (3 * x + ch), e, s[swap ? 2 - ch : ch]);
}

float uniform(float lo, float hi) {
    return lo + (hi - lo) * float(rng()() >> 8) * (1.0f / 16777216.0f);
}

// a random source sample of channel ch, mostly in the nominal range
uint32_t randomSample(Dom d, int ch) {
    auto& r = rng();
    switch (d) {
        case Dom::Rgb8:
        case Dom::Lab8:
            return r() & 255;
        case Dom::Lab16:
            return r() & 65535;
        case Dom::RgbF: {
            const uint32_t pick = r() % 10;
            if (pick < 7) return rl::bitsOf(uniform(0.0f, 1.0f));
            if (pick < 9) return rl::bitsOf(float(r() % 256) / 255.0f);
            return rl::bitsOf(uniform(-0.3f, 1.4f));
        }
        case Dom::LabF:
            return rl::bitsOf(ch == 0 ? uniform(-10.0f, 110.0f) : uniform(-150.0f, 150.0f));
    }
    return 0;
}

// ------------------------------------------------------------ every operation through the shared driver
TCase labCase(const LabOp& o) {
    RefFn ref = [&o](const uint8_t* s, uint8_t* d, Path) {
        uint32_t a[3], b[3];
        getPixel(s, o.srcE, o.srcSwap, 0, a);
        o.ref(a, b);
        putPixel(d, o.dstE, o.dstSwap, 0, b);
    };
    FillFn fill = [&o](uint8_t* p, int n) {
        for (int i = 0; i < n; ++i) putSample(p + o.srcE * i, o.srcE, randomSample(o.dom, o.srcSwap ? 2 - i % 3 : i % 3));
    };
    return {o.name, o.srcE, 3, o.dstE, 3, 0, 16, ref, blockPath(16), fill, o.call};
}

class LabOpTest : public ::testing::TestWithParam<int> {
protected:
    TCase c() const { return labCase(labOps()[size_t(GetParam())]); }
};

TEST_P(LabOpTest, MatchesReferenceAtEveryWidthAndStep) { sweepT(c()); }
TEST_P(LabOpTest, ChecksInOrderAndWritesNothingOnFailure) { checkStatusesT(c()); }
TEST_P(LabOpTest, ZeroStepIsAccepted) { zeroStepT(c()); }

INSTANTIATE_TEST_SUITE_P(All, LabOpTest, ::testing::Range(0, 10),
                         [](const ::testing::TestParamInfo<int>& i) { return std::string(labOps()[size_t(i.param)].name); });

// ------------------------------------------------------------ sweeps
// Equal samples; float results also when both are NaN.
bool same(const LabOp& o, uint32_t a, uint32_t b) {
    return a == b || (o.dstE == 4 && std::isnan(rl::f32(a)) && std::isnan(rl::f32(b)));
}

// `count` source pixels made by gen(i) (model order), through the main path
// (rows of 4096) or through the tail alone (rows of 3), each against the reference.
void sweepPixels(const LabOp& o, int64_t count, const std::function<void(int64_t, uint32_t (&)[3])>& gen,
                 bool mainPath) {
    const int width = mainPath ? 4096 : 3;
    const int height = int((count + width - 1) / width);
    Plane src(width * 3 * o.srcE, height, 0, Guard::After);
    Plane dst(width * 3 * o.dstE, height, 0, Guard::After);
    for (int64_t i = 0; i < int64_t(width) * height; ++i) {
        uint32_t s[3];
        gen(std::min(i, count - 1), s);
        putPixel(src.row(int(i / width)), o.srcE, o.srcSwap, int(i % width), s);
    }
    ASSERT_EQ(o.call(src.origin(), src.step, dst.origin(), dst.step, {width, height}), kroStatusOk);
    int64_t bad = 0;
    for (int64_t i = 0; i < int64_t(width) * height; ++i) {
        const int x = int(i % width), y = int(i / width);
        uint32_t s[3], d[3], got[3];
        getPixel(src.row(y), o.srcE, o.srcSwap, x, s);
        getPixel(dst.row(y), o.dstE, o.dstSwap, x, got);
        o.ref(s, d);
        if (!same(o, got[0], d[0]) || !same(o, got[1], d[1]) || !same(o, got[2], d[2])) {
            if (bad++ < 3)
                ADD_FAILURE() << o.name << (mainPath ? " main" : " tail") << " (" << s[0] << "," << s[1] << ","
                              << s[2] << ") -> (" << got[0] << "," << got[1] << "," << got[2] << ") want (" << d[0]
                              << "," << d[1] << "," << d[2] << ") (float results as bit patterns)";
        }
    }
    EXPECT_EQ(bad, 0) << o.name;
}

// All 2^24 triples (a scattered 2^18 under sanitizers) through the main path
// and through the tail (rows of 3); a 16-bit destination pixel counts as six bytes.
class LabExhaustive : public ::testing::TestWithParam<const char*> {};
TEST_P(LabExhaustive, AllTriples) {
    const LabOp& o = opNamed(GetParam());
    exhaustive8(o.name, 3, 3 * o.dstE, 3, int64_t(1) << 18,
                [&o](const Kro8u* s, int ss, Kro8u* d, int ds, kroiSize r) { return o.call(s, ss, d, ds, r); },
                [&o](const Kro8u* s, const Kro8u* d, Path) {
                    uint32_t in[3], got[3], want[3];
                    getPixel(s, 1, o.srcSwap, 0, in);
                    getPixel(d, o.dstE, o.dstSwap, 0, got);
                    o.ref(in, want);
                    return got[0] == want[0] && got[1] == want[1] && got[2] == want[2];
                });
}
INSTANTIATE_TEST_SUITE_P(Lab8, LabExhaustive,
                         ::testing::Values("kroiRGBToLab_8u_C3R", "kroiBGRToLab_8u_C3R", "kroiBGRToLab_8u16u_C3R",
                                           "kroiLabToRGB_8u_C3R", "kroiLabToBGR_8u_C3R"),
                         [](const ::testing::TestParamInfo<const char*>& i) { return std::string(i.param).substr(4); });

// 16-bit Lab on a dense grid: every combination of the three high bytes, each
// sample's low byte scattered.
TEST(Lab16Grid, EveryHighByteCombination) {
    const LabOp& o = opNamed("kroiLabToBGR_16u8u_C3R");
    const int64_t count = KROCC_FULL_SWEEPS ? (int64_t(1) << 24) : (int64_t(1) << 18);
    auto gen = [](int64_t i, uint32_t (&s)[3]) {
        const uint32_t t = KROCC_FULL_SWEEPS ? uint32_t(i) : uint32_t(i) * 2654435761u;
        const uint32_t h = uint32_t(i) * 0x9E3779B1u;
        s[0] = (((t >> 16) & 255) << 8) | (h >> 24);
        s[1] = (((t >> 8) & 255) << 8) | ((h >> 16) & 255);
        s[2] = ((t & 255) << 8) | ((h >> 8) & 255);
    };
    sweepPixels(o, count, gen, true);
    sweepPixels(o, count, gen, false);
}

// ------------------------------------------------------------ the cube-root table
TEST(LabTable, SixStoredEntriesAreOneSixthDecimalFromTheRule) {
    const auto& r = rl::table();
    for (const auto& e : rl::kStored) {
        const long rule = e.which ? r.ruleK[e.index] : r.ruleC[e.index];
        EXPECT_EQ(std::labs(rule - e.units), 1) << (e.which ? "k " : "c ") << e.index;
    }
    int differ = 0;
    for (int i = 0; i < 128; ++i) {
        differ += r.c[i] != rl::fromUnits(r.ruleC[i]);
        differ += r.k[i] != rl::fromUnits(r.ruleK[i]);
    }
    EXPECT_EQ(differ, 6);
}

TEST(LabTable, FirstAndLastEntries) {
    const auto& t = kro::lab::kCubeTable;
    const float want[5][2] = {{0.199269f, 126.380402f}, {0.250533f, 63.592041f}, {0.286586f, 42.484749f},
                              {0.997428f, 1.007757f},   {1.000038f, 0.999885f}};
    const int at[5] = {0, 1, 2, 126, 127};
    for (int n = 0; n < 5; ++n) {
        EXPECT_EQ(t.seg[at[n]].c, want[n][0]) << at[n];
        EXPECT_EQ(t.seg[at[n]].k, want[n][1]) << at[n];
    }
}

// The series against the C library's cube root above thresh. The worst case
// is the lowest segment in use, where |e| reaches 0.44 and the dropped terms
// all have the sign of the last kept one: 8 terms stay within 2e-5, 4 within 1e-3.
TEST(LabCubeRoot, CloseToTheTrueCubeRoot) {
    double worst4 = 0, worst8 = 0;
    for (int n = 0; n <= 200000; ++n) {
        const float x = kro::lab::c::thresh + (1.0f - kro::lab::c::thresh) * float(n) / 200000.0f;
        const double want = std::cbrt(double(x));
        worst4 = std::max(worst4, std::fabs(kro::lab::cubeRoot<kro::lab::Series4>(x) - want) / want);
        worst8 = std::max(worst8, std::fabs(kro::lab::cubeRoot<kro::lab::Series8>(x) - want) / want);
    }
    EXPECT_LT(worst8, 2e-5);
    EXPECT_LT(worst4, 1e-3);
    std::printf("cube root, worst relative error above thresh: 4 terms %.3g, 8 terms %.3g\n", worst4, worst8);
}

// ------------------------------------------------------------ float inputs outside the model
// Every triple of awkward values through the main path and the tail: the
// table index stays in the table (guard pages and sanitizers would see a
// stray read), and each result is the reference's (NaN for NaN).
void awkwardTriples(const LabOp& o, const std::vector<float>& vals) {
    const int n = int(vals.size());
    auto gen = [&](int64_t j, uint32_t (&s)[3]) {
        s[0] = rl::bitsOf(vals[size_t(j / (n * n))]), s[1] = rl::bitsOf(vals[size_t(j / n % n)]);
        s[2] = rl::bitsOf(vals[size_t(j % n)]);
    };
    sweepPixels(o, int64_t(n) * n * n, gen, true);
    sweepPixels(o, int64_t(n) * n * n, gen, false);
}

TEST(LabFloat, ForwardInputsOutsideZeroToOne) {
    const float inf = INFINITY;
    const std::vector<float> vals = {-inf, -1e30f, -2.0f, -0.5f, -1e-3f, -0.0f, 0.0f, 1e-40f, 0.008f, 0.0089f,
                                     0.5f, 1.0f,   1.0000153f, 1.00002f, 1.2f, 2.0f, 1e3f, 1e30f, inf, NAN};
    awkwardTriples(opNamed("kroiRGBToLab_32f_C3R"), vals);
    awkwardTriples(opNamed("kroiBGRToLab_32f_C3R"), vals);
}

TEST(LabFloat, InverseInputsOutsideTheModel) {
    const float inf = INFINITY;
    const std::vector<float> vals = {-inf, -1e20f, -300.0f, -16.0f, 0.0f, 50.0f, 100.0f, 300.0f, 1e20f, inf, NAN};
    awkwardTriples(opNamed("kroiLabToRGB_32f_C3R"), vals);
    awkwardTriples(opNamed("kroiLabToBGR_32f_C3R"), vals);
}

// At and below thresh f is the line, whatever segment the index falls on.
TEST(LabFloat, LinearSegmentAtAndBelowThresh) {
    namespace l = kro::lab;
    for (float t : {-1e30f, -5.0f, -1.0f, -0.25f, -1e-6f, 0.0f, 1e-6f, 0.004f, l::c::thresh}) {
        const float line = rl::k().slope * t + rl::k().offs;
        EXPECT_EQ(l::labF<l::Series8>(t), line) << t;
        EXPECT_EQ(l::labF<l::Series4>(t), line) << t;
        float out[4];
        _mm_storeu_ps(out, l::labF<l::Series8>(l::F32x4(t)).v);
        for (float v : out) EXPECT_EQ(v, line) << t;
    }
}

// ------------------------------------------------------------ known values
// One colour repeated across a row: the main path (pixel 0 of 4) and the tail
// (pixel 0 of 3) give the same numbers.
template <class S, class D, class F>
std::vector<D> convertRepeated(F fn, std::vector<S> px, int width) {
    std::vector<S> src;
    for (int i = 0; i < width; ++i) src.insert(src.end(), px.begin(), px.end());
    std::vector<D> dst(src.size());
    EXPECT_EQ(fn(src.data(), 0, dst.data(), 0, kroiSize{width, 1}), kroStatusOk);
    return {dst.begin(), dst.begin() + 3};
}

template <class S, class D, class F>
void expectBoth(F fn, std::vector<S> px, std::vector<D> want, const char* what) {
    for (int w : {4, 3, 1}) EXPECT_EQ((convertRepeated<S, D>(fn, px, w)), want) << what << " width " << w;
}

TEST(LabKnown, Forward8) {
    using B = std::vector<Kro8u>;
    expectBoth<Kro8u, Kro8u>(kroiRGBToLab_8u_C3R, {255, 255, 255}, B{255, 128, 128}, "white");
    expectBoth<Kro8u, Kro8u>(kroiRGBToLab_8u_C3R, {0, 0, 0}, B{0, 128, 128}, "black");
    expectBoth<Kro8u, Kro8u>(kroiRGBToLab_8u_C3R, {255, 0, 0}, B{136, 208, 195}, "red");
    expectBoth<Kro8u, Kro8u>(kroiRGBToLab_8u_C3R, {0, 255, 0}, B{224, 42, 211}, "green");
    expectBoth<Kro8u, Kro8u>(kroiRGBToLab_8u_C3R, {0, 0, 255}, B{82, 207, 20}, "blue");
    expectBoth<Kro8u, Kro8u>(kroiBGRToLab_8u_C3R, {255, 0, 0}, B{82, 207, 20}, "blue in BGR");
    expectBoth<Kro8u, Kro8u>(kroiRGBToLab_8u_C3R, {100, 100, 100}, B{176, 128, 128}, "grey 100");
    expectBoth<Kro8u, Kro8u>(kroiRGBToLab_8u_C3R, {200, 200, 200}, B{232, 128, 128}, "grey 200");
}

TEST(LabKnown, Forward16) {
    using W = std::vector<Kro16u>;
    expectBoth<Kro8u, Kro16u>(kroiBGRToLab_8u16u_C3R, {255, 255, 255}, W{65535, 32640, 32640}, "white");
    expectBoth<Kro8u, Kro16u>(kroiBGRToLab_8u16u_C3R, {0, 0, 0}, W{0, 32640, 32640}, "black");
    expectBoth<Kro8u, Kro16u>(kroiBGRToLab_8u16u_C3R, {0, 0, 255}, W{34891, 53064, 49776}, "red");
    expectBoth<Kro8u, Kro16u>(kroiBGRToLab_8u16u_C3R, {0, 255, 0}, W{57497, 10664, 53850}, "green");
    expectBoth<Kro8u, Kro16u>(kroiBGRToLab_8u16u_C3R, {255, 0, 0}, W{21165, 52833, 5135}, "blue");
}

TEST(LabKnown, ForwardFloat) {
    using F = std::vector<Kro32f>;
    expectBoth<Kro32f, Kro32f>(kroiRGBToLab_32f_C3R, {1, 1, 1}, F{100, 0, 0}, "white");
    expectBoth<Kro32f, Kro32f>(kroiRGBToLab_32f_C3R, {0, 0, 0}, F{0, 0, 0}, "black");
}

TEST(LabKnown, Inverse) {
    using B = std::vector<Kro8u>;
    expectBoth<Kro8u, Kro8u>(kroiLabToRGB_8u_C3R, {0, 128, 128}, B{1, 1, 1}, "black has no linear segment");
    expectBoth<Kro8u, Kro8u>(kroiLabToRGB_8u_C3R, {255, 128, 128}, B{255, 255, 255}, "white");
    expectBoth<Kro16u, Kro8u>(kroiLabToBGR_16u8u_C3R, {65535, 32640, 32640}, B{255, 255, 255}, "16-bit white");
    expectBoth<Kro16u, Kro8u>(kroiLabToBGR_16u8u_C3R, {0, 32640, 32640}, B{1, 1, 1}, "16-bit black");
    // grey comes back as grey, and as itself where the 8-bit L step allows (100 and 200 among them)
    std::vector<int> notBack;
    std::string list;
    for (int g = 0; g < 256; ++g) {
        const Kro8u v = Kro8u(g);
        const auto lab = convertRepeated<Kro8u, Kro8u>(kroiRGBToLab_8u_C3R, {v, v, v}, 4);
        EXPECT_EQ(lab[1], 128) << g;
        EXPECT_EQ(lab[2], 128) << g;
        const auto back = convertRepeated<Kro8u, Kro8u>(kroiLabToRGB_8u_C3R, lab, 4);
        EXPECT_TRUE(back[0] == back[1] && back[1] == back[2]) << g;
        if (back[0] != v) notBack.push_back(g), list += " " + std::to_string(g);
    }
    std::printf("grey levels that 8-bit Lab brings back as a neighbour:%s\n", list.c_str());
    for (int g : {100, 200}) EXPECT_EQ(std::count(notBack.begin(), notBack.end(), g), 0) << g;
    for (int w : {4, 1}) {
        const auto black = convertRepeated<Kro32f, Kro32f>(kroiLabToRGB_32f_C3R, {0, 0, 0}, w);
        for (float v : black) EXPECT_NEAR(v, 0.00262413, 1e-8);
        const auto white = convertRepeated<Kro32f, Kro32f>(kroiLabToRGB_32f_C3R, {100, 0, 0}, w);
        EXPECT_EQ(white, (std::vector<Kro32f>{1.00000072f, 1.0f, 0.999999523f}));
    }
}

// ------------------------------------------------------------ round trips
using Image = kt::Photo;

struct TripErrors {
    int rgb8 = 0, bgr16 = 0;
    double f32 = 0, f32Lit = 0;  // all pixels; pixels with every channel at least 0.1
};

TripErrors roundTrips(const Image& im) {
    TripErrors e;
    const int w = im.width, h = im.height, step = 3 * w;
    const kroiSize r{w, h};
    std::vector<Kro8u> lab8(im.rgb.size()), back(im.rgb.size());
    EXPECT_EQ(kroiRGBToLab_8u_C3R(im.rgb.data(), step, lab8.data(), step, r), kroStatusOk);
    EXPECT_EQ(kroiLabToRGB_8u_C3R(lab8.data(), step, back.data(), step, r), kroStatusOk);
    for (size_t i = 0; i < back.size(); ++i) e.rgb8 = std::max(e.rgb8, std::abs(back[i] - im.rgb[i]));

    std::vector<Kro16u> lab16(im.rgb.size());
    EXPECT_EQ(kroiBGRToLab_8u16u_C3R(im.rgb.data(), step, lab16.data(), 2 * step, r), kroStatusOk);
    EXPECT_EQ(kroiLabToBGR_16u8u_C3R(lab16.data(), 2 * step, back.data(), step, r), kroStatusOk);
    for (size_t i = 0; i < back.size(); ++i) e.bgr16 = std::max(e.bgr16, std::abs(back[i] - im.rgb[i]));

    std::vector<Kro32f> f(im.rgb.size()), labF(im.rgb.size()), backF(im.rgb.size());
    for (size_t i = 0; i < f.size(); ++i) f[i] = float(im.rgb[i]) / 255.0f;
    EXPECT_EQ(kroiRGBToLab_32f_C3R(f.data(), 4 * step, labF.data(), 4 * step, r), kroStatusOk);
    EXPECT_EQ(kroiLabToRGB_32f_C3R(labF.data(), 4 * step, backF.data(), 4 * step, r), kroStatusOk);
    for (size_t i = 0; i < f.size(); ++i) {
        const double d = std::fabs(double(backF[i]) - double(f[i]));
        e.f32 = std::max(e.f32, d);
        const size_t p = i - i % 3;
        if (std::min({f[p], f[p + 1], f[p + 2]}) >= 0.1f) e.f32Lit = std::max(e.f32Lit, d);
    }
    return e;
}

// Bounds: 8-bit Lab quantises a and b to whole units and the way back has no
// linear segment near black; 16-bit Lab is fine enough for the 8-bit grid;
// floats lose only the last places, but near black the way back cubes what
// the way in took off a line: black comes back as 0.00262.
void checkTrips(const TripErrors& e, const char* what) {
    std::printf("%s round trips, largest error: RGB 8u via Lab 8u %d, BGR 8u via Lab 16u %d, RGB 32f via Lab "
                "32f %.3g (%.3g where every channel is at least 0.1)\n",
                what, e.rgb8, e.bgr16, e.f32, e.f32Lit);
    EXPECT_LE(e.rgb8, 6) << what;
    EXPECT_LE(e.bgr16, 1) << what;
    EXPECT_LT(e.f32, 0.0027) << what;
    EXPECT_LT(e.f32Lit, 4e-6) << what;
}

TEST(LabRoundTrip, SyntheticImage) { checkTrips(roundTrips(kt::syntheticPhoto()), "synthetic 451x300"); }

#if KROCC_HAVE_PNG
TEST(LabRoundTrip, Photograph) {
    const Image im = kt::readPhoto("chelsea.png");
    ASSERT_GT(im.width, 0) << "cannot read chelsea.png";
    checkTrips(roundTrips(im), "chelsea.png 451x300");
}
#endif

}  // namespace
