// Grey conversions: every operation, type and weight set against the
// independent reference at every column and start offset, the check order,
// exhaustive sweeps of the 8u main path and tail, and the known values.
#include <gtest/gtest.h>

#include <cmath>

#include "convt_test.h"
#include "ref_gray.h"

using namespace kt;

namespace {

template <class T>
struct Info;
template <>
struct Info<Kro8u> {
    static constexpr const char* tag = "8u";
    static constexpr int shift = 0;  // 8u keeps byte steps
    static void fill(uint8_t* p, int n) { fill8u(p, n); }
};
template <>
struct Info<Kro16u> {
    static constexpr const char* tag = "16u";
    static constexpr int shift = 1;
    static void fill(uint8_t* p, int n) { fill16u(p, n); }
};
template <>
struct Info<Kro16s> {
    static constexpr const char* tag = "16s";
    static constexpr int shift = 1;
    static void fill(uint8_t* p, int n) { fill16s(p, n); }
};
template <>
struct Info<Kro32f> {
    static constexpr const char* tag = "32f";
    static constexpr int shift = 2;
    static void fill(uint8_t* p, int n) { fill32f(p, n); }
};
template <>
struct Info<Kro64f> {
    static constexpr const char* tag = "64f";
    static constexpr int shift = 0;  // 64f keeps byte steps
    static void fill(uint8_t* p, int n) { fill64f(p, n); }
};

// Weight sets handed to kroiColorToGray_*: the fixed ones spelled out, a sum
// above 1, exact binary fractions, a negative weight, weights that overflow
// 16-bit results, and a NaN weight.
struct WeightSet {
    const char* label;
    float w[3];
};
const WeightSet kWeightSets[] = {
    {"Fixed", {0.299f, 0.587f, 0.114f}},   {"Heavy", {0.7f, 0.7f, 0.7f}},
    {"Binary", {0.25f, 0.5f, 0.125f}},     {"Negative", {-0.25f, 1.5f, 0.3f}},
    {"Huge", {1.0e6f, -3.0f, 2.0f}},       {"NaN", {NAN, 0.5f, 0.5f}},
};

template <class T>
RefFn grayRef(const float (&w)[3], int cn) {
    (void)cn;
    const float c0 = w[0], c1 = w[1], c2 = w[2];
    if constexpr (std::is_same_v<T, Kro8u>) {
        const uint16_t c[3] = {ref::grayWeight8(c0), ref::grayWeight8(c1), ref::grayWeight8(c2)};
        return [c0 = c[0], c1i = c[1], c2i = c[2]](const uint8_t* s, uint8_t* d, Path p) {
            const uint16_t cc[3] = {c0, c1i, c2i};
            d[0] = uint8_t(p == Main ? ref::gray8Main(cc, s[0], s[1], s[2]) : ref::gray8Tail(cc, s[0], s[1], s[2]));
        };
    } else {
        return [c0, c1, c2](const uint8_t* s, uint8_t* d, Path p) {
            const float c[3] = {c0, c1, c2};
            if constexpr (std::is_same_v<T, Kro16u>)
                putAt<uint16_t>(d, 0, ref::gray16u(c, getAt<uint16_t>(s, 0), getAt<uint16_t>(s, 1), getAt<uint16_t>(s, 2)));
            else if constexpr (std::is_same_v<T, Kro16s>)
                putAt<int16_t>(d, 0, ref::gray16s(c, getAt<int16_t>(s, 0), getAt<int16_t>(s, 1), getAt<int16_t>(s, 2),
                                                  p == Main));
            else
                putAt<float>(d, 0, ref::gray32f(c, getAt<float>(s, 0), getAt<float>(s, 1), getAt<float>(s, 2)));
        };
    }
}

using FixedFn = KroStatus (*)(const void*, int, void*, int, kroiSize);

template <class T>
TCase toGrayCase(const std::string& name, int cn, const float (&w)[3], TCall call) {
    constexpr int S = sizeof(T);
    const int block = S == 1 ? 8 : 4;
    return {name, S, cn, S, 1, Info<T>::shift, block, grayRef<T>(w, cn), blockPath(block), Info<T>::fill, call};
}

template <class T, class F>
TCall fixedCall(F f) {
    return [f](const void* s, int ss, void* d, int ds, kroiSize r) {
        return f(static_cast<const T*>(s), ss, static_cast<T*>(d), ds, r);
    };
}
template <class T, class C, class F>
TCall weightedCall(F f, const C* coeffs) {
    return [f, coeffs](const void* s, int ss, void* d, int ds, kroiSize r) {
        return f(static_cast<const T*>(s), ss, static_cast<T*>(d), ds, r, coeffs);
    };
}

// 64f: which pixels are single, first or second of a pair depends on the
// destination row's address.
PathFn pairPath() {
    return [](int x, int width, const uint8_t* row) {
        const int first = (reinterpret_cast<uintptr_t>(row) & 15) == 8 ? 1 : 0;
        if (x < first) return Tail;
        const int pairsEnd = first + (width - first) / 2 * 2;
        if (x >= pairsEnd) return Tail;
        return (x - first) % 2 == 0 ? PairFirst : PairSecond;
    };
}
RefFn gray64Ref(const double (&w)[3], int cn) {
    const double c0 = w[0], c1 = w[1], c2 = w[2];
    return [c0, c1, c2, cn](const uint8_t* s, uint8_t* d, Path p) {
        const double R = getAt<double>(s, 0), G = getAt<double>(s, 1), B = getAt<double>(s, 2);
        const double v = (cn == 3 && p == PairSecond) ? ref::graySumSecond(R, G, B, c0, c1, c2)
                                                      : ref::graySum<double>(R, G, B, c0, c1, c2);
        putAt<double>(d, 0, v);
    };
}

struct Weights64 {
    const char* label;
    double w[3];
};
const Weights64 kWeights64[] = {
    {"Null", {0.29899999499320984, 0.58700001239776611, 0.11400000005960464}},
    {"Exact", {0.299, 0.587, 0.114}},
    {"Heavy", {0.7, 0.7, 0.7}},
    {"Negative", {-0.25, 1.5, 0.3}},
};

template <class T>
RefFn replicateRef(int cn, T aval) {
    return [cn, aval](const uint8_t* s, uint8_t* d, Path) {
        for (int k = 0; k < 3; ++k) std::memcpy(d + k * sizeof(T), s, sizeof(T));
        if (cn == 4) std::memcpy(d + 3 * sizeof(T), &aval, sizeof(T));
    };
}
template <class T>
TCase replicateCase(const std::string& name, int cn, TCall call, T aval) {
    constexpr int S = sizeof(T);
    const int block = S == 4 ? 4 : 8;
    return {name, S, 1, S, cn, 0, block, replicateRef<T>(cn, aval), blockPath(block), Info<T>::fill, call};
}

const std::vector<TCase>& grayCases() {
    static const std::vector<TCase> cases = [] {
        std::vector<TCase> v;
        const float(&fixedW)[3] = kWeightSets[0].w;
        // fixed weights; the caller's weights, and a null pCoeffs (the fixed weights)
#define GRAY_OPS(T, tag)                                                                                            \
    for (int cn : {3, 4}) {                                                                                         \
        const std::string lay = cn == 3 ? "_C3C1R" : "_AC4C1R";                                                     \
        v.push_back(toGrayCase<T>("kroiRGBToGray_" #tag + lay, cn, fixedW,                                          \
                                  fixedCall<T>(cn == 3 ? kroiRGBToGray_##tag##_C3C1R : kroiRGBToGray_##tag##_AC4C1R))); \
        for (int i = -1; i < int(std::size(kWeightSets)); ++i)                                                      \
            v.push_back(toGrayCase<T>(                                                                              \
                "kroiColorToGray_" #tag + lay + "_" + (i < 0 ? "Null" : kWeightSets[i].label), cn,                  \
                i < 0 ? fixedW : kWeightSets[i].w,                                                                  \
                weightedCall<T>(cn == 3 ? kroiColorToGray_##tag##_C3C1R : kroiColorToGray_##tag##_AC4C1R,           \
                                i < 0 ? nullptr : kWeightSets[i].w)));                                              \
    }
        GRAY_OPS(Kro8u, 8u)
        GRAY_OPS(Kro16u, 16u)
        GRAY_OPS(Kro16s, 16s)
        GRAY_OPS(Kro32f, 32f)
#undef GRAY_OPS
        for (const auto& ws : kWeights64) {
            const Kro64f* pc = std::string(ws.label) == "Null" ? nullptr : ws.w;
            for (int cn : {3, 4}) {
                TCase c{std::string(cn == 3 ? "kroiColorToGray_64f_C3C1R_" : "kroiColorToGray_64f_AC4C1R_") + ws.label,
                        8, cn, 8, 1, 0, 8, gray64Ref(ws.w, cn), pairPath(), fill64f,
                        weightedCall<Kro64f>(cn == 3 ? kroiColorToGray_64f_C3C1R : kroiColorToGray_64f_AC4C1R, pc)};
                v.push_back(c);
            }
        }
        v.push_back(replicateCase<Kro8u>("kroiGrayToRGB_8u_C1C3R", 3, fixedCall<Kro8u>(kroiGrayToRGB_8u_C1C3R), 0));
        v.push_back(replicateCase<Kro8u>(
            "kroiGrayToRGB_8u_C1C4R", 4,
            [](const void* s, int ss, void* d, int ds, kroiSize r) {
                return kroiGrayToRGB_8u_C1C4R(static_cast<const Kro8u*>(s), ss, static_cast<Kro8u*>(d), ds, r, 0xa5);
            },
            Kro8u(0xa5)));
        v.push_back(replicateCase<Kro16u>("kroiGrayToRGB_16u_C1C3R", 3, fixedCall<Kro16u>(kroiGrayToRGB_16u_C1C3R), 0));
        v.push_back(replicateCase<Kro16u>(
            "kroiGrayToRGB_16u_C1C4R", 4,
            [](const void* s, int ss, void* d, int ds, kroiSize r) {
                return kroiGrayToRGB_16u_C1C4R(static_cast<const Kro16u*>(s), ss, static_cast<Kro16u*>(d), ds, r,
                                               0xbeef);
            },
            Kro16u(0xbeef)));
        v.push_back(replicateCase<Kro32f>("kroiGrayToRGB_32f_C1C3R", 3, fixedCall<Kro32f>(kroiGrayToRGB_32f_C1C3R), 0));
        const float avalNaN = bitsF(0x7fa00001);  // a signalling NaN is copied bit for bit
        v.push_back(replicateCase<Kro32f>(
            "kroiGrayToRGB_32f_C1C4R", 4,
            [avalNaN](const void* s, int ss, void* d, int ds, kroiSize r) {
                return kroiGrayToRGB_32f_C1C4R(static_cast<const Kro32f*>(s), ss, static_cast<Kro32f*>(d), ds, r,
                                               avalNaN);
            },
            avalNaN));
        return v;
    }();
    return cases;
}

class GrayOp : public ::testing::TestWithParam<int> {};

TEST_P(GrayOp, MatchesReferenceAtEveryColumnAndOffset) { sweepT(grayCases()[GetParam()]); }
TEST_P(GrayOp, ChecksInOrderAndWritesNothingOnFailure) { checkStatusesT(grayCases()[GetParam()]); }

INSTANTIATE_TEST_SUITE_P(All, GrayOp, ::testing::Range(0, int(grayCases().size())),
                         [](const ::testing::TestParamInfo<int>& i) { return grayCases()[i.param].name; });

// ------------------------------------------------------------ exhaustive 8u
// All 2^24 triples through the main path (width 4096) and through the tail
// (width 7), for the fixed weights and for weights summing above 1; sampled
// under sanitizers.
void sweep8(const char* label, const Kro32f* pc, bool ac4) {
    const uint16_t c[3] = {pc ? ref::grayWeight8(pc[0]) : ref::kGrayFixed8[0],
                           pc ? ref::grayWeight8(pc[1]) : ref::kGrayFixed8[1],
                           pc ? ref::grayWeight8(pc[2]) : ref::kGrayFixed8[2]};
    exhaustive8(
        label, ac4 ? 4 : 3, 1, 7, int64_t(1) << 17,
        [&](const Kro8u* s, int ss, Kro8u* d, int ds, kroiSize r) {
            return ac4 ? kroiColorToGray_8u_AC4C1R(s, ss, d, ds, r, pc) : kroiColorToGray_8u_C3C1R(s, ss, d, ds, r, pc);
        },
        [&](const Kro8u* s, const Kro8u* d, Path p) {
            return d[0] == (p == Main ? ref::gray8Main(c, s[0], s[1], s[2]) : ref::gray8Tail(c, s[0], s[1], s[2]));
        });
}

TEST(GrayExhaustive, FixedWeights8u) { sweep8("fixed", nullptr, false); }
TEST(GrayExhaustive, HeavyWeights8u) { sweep8("0.7 x 3", kWeightSets[1].w, false); }
TEST(GrayExhaustive, NegativeWeight8uAC4) { sweep8("negative", kWeightSets[3].w, true); }

// ------------------------------------------------------------ known values
template <class T, class F>
T oneAt(F f, int x, int width, const T (&px)[3]) {
    std::vector<T> src(static_cast<size_t>(width) * 3), dst(static_cast<size_t>(width));
    for (int i = 0; i < width; ++i)
        for (int k = 0; k < 3; ++k) src[size_t(i) * 3 + k] = px[k];
    EXPECT_EQ(f(src.data(), int(sizeof(T)) * 3 * width, dst.data(), int(sizeof(T)) * width, kroiSize{width, 1}),
              kroStatusOk);
    return dst[size_t(x)];
}

TEST(GrayValues, WhiteIs255InBothPaths) {
    const Kro8u white[3] = {255, 255, 255};
    EXPECT_EQ(oneAt<Kro8u>(kroiRGBToGray_8u_C3C1R, 0, 9, white), 255);
    EXPECT_EQ(oneAt<Kro8u>(kroiRGBToGray_8u_C3C1R, 8, 9, white), 255);
}

TEST(GrayValues, HeavyWeightsOverflow8u) {
    const Kro32f w[3] = {0.7f, 0.7f, 0.7f};
    auto f = [&](const Kro8u* s, int ss, Kro8u* d, int ds, kroiSize r) { return kroiColorToGray_8u_C3C1R(s, ss, d, ds, r, w); };
    const Kro8u white[3] = {255, 255, 255}, green[3] = {0, 255, 0};
    EXPECT_EQ(oneAt<Kro8u>(f, 0, 8, white), 0);  // the 16-bit sum reads as negative
    EXPECT_EQ(oneAt<Kro8u>(f, 0, 8, green), 179);
    EXPECT_EQ(oneAt<Kro8u>(f, 0, 1, green), 179);
    // the tail keeps the low 8 bits of (3 * 22938 * 255 + 16384) >> 15 = 536
    EXPECT_EQ(oneAt<Kro8u>(f, 0, 1, white), 536 & 255);
}

TEST(GrayValues, BinaryWeightsAreExactIntegers) {
    EXPECT_EQ(ref::grayWeight8(0.25f), 8192);
    EXPECT_EQ(ref::grayWeight8(0.5f), 16384);
    EXPECT_EQ(ref::grayWeight8(0.125f), 4096);
    EXPECT_EQ(ref::grayWeight8(-0.25f), 65536 - 8192 + 1);  // -8191.5 truncates to -8191
    // (the operations with these weights run in the sweep)
}

TEST(GrayValues, BlackStaysBlack16s) {
    const Kro16s black[3] = {-32768, -32768, -32768};
    auto f = [](const Kro16s* s, int ss, Kro16s* d, int ds, kroiSize r) {
        return kroiColorToGray_16s_C3C1R(s, ss, d, ds, r, nullptr);
    };
    EXPECT_EQ(oneAt<Kro16s>(f, 0, 5, black), -32768);
    EXPECT_EQ(oneAt<Kro16s>(f, 4, 5, black), -32768);
}

TEST(GrayValues, HeavyWeights16uKeepLowBits) {
    const Kro32f w[3] = {0.7f, 0.7f, 0.7f};
    auto f = [&](const Kro16u* s, int ss, Kro16u* d, int ds, kroiSize r) {
        return kroiColorToGray_16u_C3C1R(s, ss, d, ds, r, w);
    };
    const Kro16u full[3] = {65535, 65535, 65535};
    // (45874.5 + 45874.5) + 45874.5 = 137623.5 rounds to 137624, whose low 16 bits are 6552
    EXPECT_EQ(oneAt<Kro16u>(f, 0, 5, full), 6552);
    EXPECT_EQ(oneAt<Kro16u>(f, 4, 5, full), 6552);
}

TEST(GrayValues, HeavyWeights16sSaturateInMainPathOnly) {
    const Kro32f w[3] = {0.7f, 0.7f, 0.7f};
    auto f = [&](const Kro16s* s, int ss, Kro16s* d, int ds, kroiSize r) {
        return kroiColorToGray_16s_C3C1R(s, ss, d, ds, r, w);
    };
    const Kro16s full[3] = {32767, 32767, 32767};
    EXPECT_EQ(oneAt<Kro16s>(f, 0, 5, full), 32767);
    EXPECT_EQ(oneAt<Kro16s>(f, 4, 5, full), Kro16s(104856 - 65536 - 65536));  // low 16 bits of 137624 - 32768
}

TEST(GrayValues, Fixed64fWeightsAreTheFloats) {
    // a null pCoeffs takes 0.299f widened, not 0.299
    const Kro64f px[3] = {1.0, 0.0, 0.0};
    auto f = [](const Kro64f* s, int ss, Kro64f* d, int ds, kroiSize r) {
        return kroiColorToGray_64f_C3C1R(s, ss, d, ds, r, nullptr);
    };
    EXPECT_EQ(oneAt<Kro64f>(f, 0, 1, px), 0.29899999499320984);
    EXPECT_EQ(oneAt<Kro64f>(f, 1, 2, px), 0.29899999499320984);
}

TEST(GrayValues, PairOrderShowsInTheLastBit) {
    // R c0 + (G c1 + B c2) against (R c0 + G c1) + B c2: 1 + (1e-16 + 1e-16) != (1 + 1e-16) + 1e-16
    const Kro64f w[3] = {1.0, 1.0e-16, 1.0e-16};
    alignas(16) Kro64f src[6] = {1.0, 1.0, 1.0, 1.0, 1.0, 1.0};
    alignas(16) Kro64f dst[2];
    ASSERT_EQ(kroiColorToGray_64f_C3C1R(src, 48, dst, 16, {2, 1}, w), kroStatusOk);
    EXPECT_EQ(dst[0], 1.0);
    EXPECT_EQ(dst[1], 1.0 + 2.220446049250313e-16);
    ASSERT_EQ(kroiColorToGray_64f_AC4C1R(src, 64, dst, 16, {1, 1}, w), kroStatusOk);
    EXPECT_EQ(dst[0], 1.0);
}

}  // namespace
