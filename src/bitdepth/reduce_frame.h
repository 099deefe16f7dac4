// Bit-depth reduction: what every ReduceBits form shares. The sample pairs and
// their constants, the layout codes, the job handed from an entry to its
// kernels, the work-buffer layout, the noise generator with its state record,
// and the float vocabulary of the kernels (one template per form, run on a
// scalar float or on four float lanes with the same instructions).
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "frame/forms_typed.h"
#include "krocc.h"

namespace kro::reduce {

// ------------------------------------------------------------ sample pairs
enum class Pair { P8u, P16u8u, P16s8u, P32f8u, P16u, P16s, P32f16u, P32f16s };

template <Pair P>
struct PairT;
// Src/Dst: sample types. maxLevels: largest level count. unitFactor: source
// sample to 0..1 for the plain reduction (0: the sample is already a float).
// bias: added to a signed 16-bit source. outMax: top of the stored scale
// (stored values are 0..outMax, minus outBias). roundHalf: the pairs whose
// diffusion and noisy ordered maps round by 0.5 and whose Floyd-Steinberg sum
// takes 5 P[x] before P[x-1].
#define KRO_PAIR(P_, S_, D_, levels_, factor_, bias_, outMax_, outBias_, half_)            \
    template <>                                                                            \
    struct PairT<Pair::P_> {                                                               \
        using Src = S_;                                                                    \
        using Dst = D_;                                                                    \
        static constexpr int maxLevels = levels_;                                          \
        static constexpr uint32_t unitFactorBits = factor_;                                \
        static constexpr int bias = bias_;                                                 \
        static constexpr int outMax = outMax_;                                             \
        static constexpr int outBias = outBias_;                                           \
        static constexpr bool roundHalf = half_;                                           \
    };
// 0x3B808081 = 1/255 and 0x37800080 = 1/65535, as stored floats
KRO_PAIR(P8u, Kro8u, Kro8u, 256, 0x3B808081u, 0, 255, 0, false)
KRO_PAIR(P16u8u, Kro16u, Kro8u, 256, 0x37800080u, 0, 255, 0, false)
KRO_PAIR(P16s8u, Kro16s, Kro8u, 256, 0x37800080u, 32768, 255, 0, true)
KRO_PAIR(P32f8u, Kro32f, Kro8u, 256, 0u, 0, 255, 0, true)
KRO_PAIR(P16u, Kro16u, Kro16u, 65536, 0x37800080u, 0, 65535, 0, false)
KRO_PAIR(P16s, Kro16s, Kro16s, 65536, 0x37800080u, 32768, 65535, 32768, false)
KRO_PAIR(P32f16u, Kro32f, Kro16u, 65536, 0u, 0, 65535, 0, true)
KRO_PAIR(P32f16s, Kro32f, Kro16s, 65536, 0u, 0, 65535, 32768, true)
#undef KRO_PAIR

inline float bitsToFloat(uint32_t b) {
    float f;
    std::memcpy(&f, &b, 4);
    return f;
}

// ------------------------------------------------------------ layouts
// Layout codes handed from an entry to its kernels: 1 C1, 3 C3, 4 AC4, 5 C4.
constexpr int channelsOf(int layout) { return layout == 1 ? 1 : layout == 5 ? 4 : 3; }
constexpr int strideOf(int layout) { return layout == 1 ? 1 : layout == 3 ? 3 : 4; }

// ------------------------------------------------------------ one call
struct Job {
    const uint8_t* src;
    int srcStep;  // bytes (the plain reduction) or bytes of whole samples (the dithering kernels)
    uint8_t* dst;
    int dstStep;
    kroiSize roi;
    int noise;  // 0..100
    int selector;
    int L;  // levels - 1
    uint8_t* buffer;
    const uint8_t* srcRow(int y) const { return src + static_cast<std::ptrdiff_t>(y) * srcStep; }
    uint8_t* dstRow(int y) const { return dst + static_cast<std::ptrdiff_t>(y) * dstStep; }
};

// ------------------------------------------------------------ work buffer
// From the buffer's address rounded up to 64: noise table, index table, the
// two generator records, then the error rows.
constexpr int kNoiseCount = 1024;
constexpr int kNoiseTableOffset = 0;
constexpr int kIndexTableOffset = 4 * kNoiseCount;
constexpr int kStateSize = 56;
constexpr int kIntStateOffset = kIndexTableOffset + 2 * kNoiseCount;
constexpr int kFloatStateOffset = kIntStateOffset + kStateSize;
constexpr int kNoiseBlockSize = kFloatStateOffset + kStateSize;

inline uint8_t* alignedBase(uint8_t* p) {
    const uintptr_t a = reinterpret_cast<uintptr_t>(p);
    return p + ((64 - (a & 63)) & 63);
}

// ------------------------------------------------------------ noise generator
constexpr int32_t kIntNoiseTag = 38;
constexpr int32_t kFloatNoiseTag = 39;

// The generator's state record (56 bytes).
struct NoiseState {
    int32_t tag;
    uint32_t seed;
    union {
        struct {
            int16_t low, high;
        } i;
        struct {
            float low, high;
        } f;
    } bounds;
    double mean;
    double scale;
    uint32_t lcg;
    uint32_t lagA, lagB, lagC;
    int32_t borrow;
};
static_assert(sizeof(NoiseState) == kStateSize, "the state record is 56 bytes");

KroStatus noiseStateSize(int* pSize);
KroStatus noiseInitInt16(NoiseState* s, int16_t low, int16_t high, uint32_t seed);
KroStatus noiseInitFloat(NoiseState* s, float low, float high, uint32_t seed);
KroStatus noiseInt16(int16_t* dst, int count, NoiseState* s);
KroStatus noiseFloat(float* dst, int count, NoiseState* s);

// The two tables a noisy kernel reads, built in its buffer from seed 0.
struct NoiseTables {
    const float* noise;
    const uint16_t* index;
    // noise at column x of row y
    float at(int x, int y) const { return noise[(index[x & 1023] + x + 2 * y) & 1023]; }
};
NoiseTables buildNoiseTables(uint8_t* base, float low, float high);

// ------------------------------------------------------------ float vocabulary
// The same instruction on one float or four lanes.
inline float subF(float a, float b) { return _mm_cvtss_f32(_mm_sub_ss(_mm_set_ss(a), _mm_set_ss(b))); }
inline VF subF(VF a, VF b) { return _mm_sub_ps(a, b); }
inline float toFloat(int t) { return _mm_cvtss_f32(_mm_cvtsi32_ss(_mm_setzero_ps(), t)); }
inline VF toFloat(V t) { return _mm_cvtepi32_ps(t); }
// a + b where a is strictly below... : f + q where below(T, d), i.e. T < d
inline float addWhereBelow(float f, float q, float T, float d) { return T < d ? addF(f, q) : f; }
inline VF addWhereBelow(VF f, VF q, VF T, VF d) {
    return _mm_blendv_ps(f, addF(f, q), _mm_cmplt_ps(T, d));
}
inline int shr8(int n) { return n >> 8; }
inline V shr8(V n) { return _mm_srai_epi32(n, 8); }
inline int clampTo(int n, int hi) { return n < 0 ? 0 : (n > hi ? hi : n); }
inline V clampTo(V n, int hi) { return _mm_min_epi32(_mm_max_epi32(n, _mm_setzero_si128()), _mm_set1_epi32(hi)); }
inline int subI(int a, int b) { return a - b; }
inline V subI(V a, int b) { return _mm_sub_epi32(a, _mm_set1_epi32(b)); }
template <class F>
F splatF(float v);
template <>
inline float splatF<float>(float v) { return v; }
template <>
inline VF splatF<VF>(float v) { return _mm_set1_ps(v); }

// A float sample limited to -1..2 before its level is taken: a sample far
// outside 0..1 then saturates like one just outside it, where the integer
// conversion of L x would otherwise overflow. Inside -1..2 nothing changes; a
// NaN gives -1 (max then min, as the instructions do it).
inline float limitFar(float x) {
    return _mm_cvtss_f32(_mm_min_ss(_mm_max_ss(_mm_set_ss(x), _mm_set_ss(-1.0f)), _mm_set_ss(2.0f)));
}
inline VF limitFar(VF x) { return _mm_min_ps(_mm_max_ps(x, _mm_set1_ps(-1.0f)), _mm_set1_ps(2.0f)); }

// Plain nearest level of x on the unit scale (no dithering): the stored value
// before saturation, on 0..M. qn = 1/L, hn = 0.5/L.
template <class F>
inline auto nearestLevel(F x, F Lf, F qn, F hn, F M) {
    const auto t = truncToInt(mulF(Lf, x));
    F f = mulF(toFloat(t), qn);
    f = addWhereBelow(f, qn, hn, subF(x, f));
    return truncToInt(mulF(f, M));
}

// Level kinds of the dithering paths, by source and destination (trunc(f),
// trunc(f) >> 8, trunc(f M)), with or without a half added before the trunc.
enum class LevelMap { Plain, Shift8, Scale };
template <Pair P>
constexpr LevelMap levelMapOf() {
    using S = typename PairT<P>::Src;
    using D = typename PairT<P>::Dst;
    if constexpr (std::is_same_v<S, Kro32f>) return LevelMap::Scale;
    else if constexpr (sizeof(S) == 2 && sizeof(D) == 1) return LevelMap::Shift8;
    else return LevelMap::Plain;
}

// The chosen level f on the source scale to the stored value (saturated,
// offset for a signed destination).
template <Pair P, bool Half, class F>
inline auto mapLevel(F f) {
    using T = PairT<P>;
    constexpr LevelMap kind = levelMapOf<P>();
    auto n = [&] {
        if constexpr (kind == LevelMap::Scale) {
            const F m = mulF(f, splatF<F>(static_cast<float>(T::outMax)));
            if constexpr (Half) return truncToInt(addF(m, splatF<F>(0.5f)));
            else return truncToInt(m);
        } else {
            if constexpr (Half) return truncToInt(addF(f, splatF<F>(0.5f)));
            else return truncToInt(f);
        }
    }();
    if constexpr (kind == LevelMap::Shift8) n = shr8(n);
    n = clampTo(n, T::outMax);
    if constexpr (T::outBias != 0) n = subI(n, T::outBias);
    return n;
}

// ------------------------------------------------------------ sample loads and stores
// One sample on the source scale (a signed 16-bit sample biased by 32768).
template <Pair P>
inline float sourceValue(const uint8_t* row, int i) {
    using S = typename PairT<P>::Src;
    S s;
    std::memcpy(&s, row + i * sizeof(S), sizeof(S));
    if constexpr (std::is_same_v<S, Kro32f>) return s;
    else return toFloat(static_cast<int>(s) + PairT<P>::bias);
}
// Four samples from sample i on.
template <Pair P>
inline VF sourceValues4(const uint8_t* row, int i) {
    using S = typename PairT<P>::Src;
    const uint8_t* p = row + i * sizeof(S);
    if constexpr (std::is_same_v<S, Kro32f>) {
        return _mm_loadu_ps(reinterpret_cast<const float*>(p));
    } else if constexpr (std::is_same_v<S, Kro8u>) {
        int32_t w;
        std::memcpy(&w, p, 4);
        return _mm_cvtepi32_ps(_mm_cvtepu8_epi32(_mm_cvtsi32_si128(w)));
    } else {
        const V w = _mm_loadl_epi64(reinterpret_cast<const V*>(p));
        if constexpr (std::is_same_v<S, Kro16u>) return _mm_cvtepi32_ps(_mm_cvtepu16_epi32(w));
        else return _mm_cvtepi32_ps(_mm_add_epi32(_mm_cvtepi16_epi32(w), _mm_set1_epi32(32768)));
    }
}
// Stored values are already in the destination's range.
template <Pair P>
inline void storeValue(uint8_t* row, int i, int n) {
    using D = typename PairT<P>::Dst;
    const D d = static_cast<D>(n);
    std::memcpy(row + i * sizeof(D), &d, sizeof(D));
}
template <Pair P>
inline int storedValueAt(const uint8_t* row, int i) {
    using D = typename PairT<P>::Dst;
    D d;
    std::memcpy(&d, row + i * sizeof(D), sizeof(D));
    return d;
}
template <Pair P>
inline void storeValues4(uint8_t* row, int i, V n) {
    using D = typename PairT<P>::Dst;
    uint8_t* p = row + i * sizeof(D);
    if constexpr (std::is_same_v<D, Kro8u>) {
        const int32_t w = _mm_cvtsi128_si32(_mm_packus_epi16(_mm_packs_epi32(n, n), n));
        std::memcpy(p, &w, 4);
    } else if constexpr (std::is_same_v<D, Kro16u>) {
        _mm_storel_epi64(reinterpret_cast<V*>(p), _mm_packus_epi32(n, n));
    } else {
        _mm_storel_epi64(reinterpret_cast<V*>(p), _mm_packs_epi32(n, n));
    }
}
// AC4: the fourth lane takes the destination's own fourth sample back.
template <Pair P>
inline V keepFourth(const uint8_t* row, int i, V n) {
    return _mm_insert_epi32(n, storedValueAt<P>(row, i + 3), 3);
}

// ------------------------------------------------------------ dithering kernels
// q, the step between levels on the source scale, and r, its inverse.
template <Pair P>
inline float stepOf(int L) {
    using S = typename PairT<P>::Src;
    const float Lf = static_cast<float>(L);
    if constexpr (std::is_same_v<S, Kro8u>) return mulF(65280.0f / Lf, 0.00390625f);
    else if constexpr (std::is_same_v<S, Kro32f>) return 1.0f / Lf;
    else return 65535.0f / Lf;
}
template <Pair P>
inline float inverseStepOf(int L) {
    using S = typename PairT<P>::Src;
    const float Lf = static_cast<float>(L);
    if constexpr (std::is_same_v<S, Kro8u>) return Lf / 255.0f;
    else if constexpr (std::is_same_v<S, Kro32f>) return Lf;
    else return Lf / 65535.0f;
}

// Kernel groups, one instantiation per pair and layout. Each returns
// kroStatusNullPointer for a missing buffer it needs, else kroStatusOk.
template <Pair P, int Layout>
KroStatus reduceOrdered(const Job& job);
template <Pair P, int Layout>
KroStatus reduceFloydSteinberg(const Job& job);
template <Pair P, int Layout>
KroStatus reduceTwoRow(const Job& job);

}  // namespace kro::reduce

// Every pair with every layout code, for the kernels' explicit instantiations.
#define KRO_REDUCE_FOR_EACH_PAIR_LAYOUT(X)                                                       \
    X(P8u, 1) X(P8u, 3) X(P8u, 4) X(P8u, 5) X(P16u8u, 1) X(P16u8u, 3) X(P16u8u, 4) X(P16u8u, 5)   \
    X(P16s8u, 1) X(P16s8u, 3) X(P16s8u, 4) X(P16s8u, 5) X(P32f8u, 1) X(P32f8u, 3) X(P32f8u, 4)   \
    X(P32f8u, 5) X(P16u, 1) X(P16u, 3) X(P16u, 4) X(P16u, 5) X(P16s, 1) X(P16s, 3) X(P16s, 4)     \
    X(P16s, 5) X(P32f16u, 1) X(P32f16u, 3) X(P32f16u, 4) X(P32f16u, 5) X(P32f16s, 1)             \
    X(P32f16s, 3) X(P32f16s, 4) X(P32f16s, 5)
