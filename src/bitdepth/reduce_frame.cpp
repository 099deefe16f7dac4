// Bit-depth reduction, the shared frame: the noise generator, the work-buffer
// size query, the plain nearest-level reduction, and the 32 entries with their
// checks (null, size, noise, levels, selector) and the dispatch to the kernels.
#include "bitdepth/reduce_frame.h"

#include <climits>

#include "frame/layout_typed.h"
#include "frame/region.h"
#include "impl_decls.h"

namespace kro::reduce {

// ------------------------------------------------------------ noise generator
// Lagged subtract-with-borrow words (lags 1..3, borrow 0 or -1, 18 taken off a
// negative word) plus a linear congruential word, scaled to low..high.
namespace {
constexpr uint32_t kLcgMul = 69069u;
constexpr uint32_t kLcgAdd = 1013904243u;
constexpr uint32_t kLcgStart = 1131199209u;
constexpr double kTwoToMinus32 = 2.3283064365386963e-10;

void seedLags(NoiseState* s, uint32_t seed) {
    s->seed = seed;
    s->lagA = seed;
    s->lagB = seed * kLcgMul + kLcgAdd;
    s->lagC = s->lagB * kLcgMul + kLcgAdd;
    s->lcg = kLcgStart;
    s->borrow = -1;
}

// Next value of the stream before rounding: w scale + mean.
double nextValue(NoiseState* s) {
    s->lcg = s->lcg * kLcgMul + kLcgAdd;
    uint32_t t = s->lagB - s->lagC + static_cast<uint32_t>(s->borrow);
    const bool negative = static_cast<int32_t>(t) < 0;
    s->borrow = negative ? -1 : 0;
    if (negative) t -= 18u;
    s->lagC = s->lagB;
    s->lagB = s->lagA;
    s->lagA = t;
    const int32_t w = static_cast<int32_t>(t + s->lcg);
    return addF(mulF(static_cast<double>(w), s->scale), s->mean);
}
}  // namespace

KroStatus noiseStateSize(int* pSize) {
    if (pSize == nullptr) return kroStatusNullPointer;
    *pSize = kStateSize;
    return kroStatusOk;
}

KroStatus noiseInitInt16(NoiseState* s, int16_t low, int16_t high, uint32_t seed) {
    if (s == nullptr) return kroStatusNullPointer;
    s->tag = kIntNoiseTag;
    s->bounds.i.low = low;
    s->bounds.i.high = high;
    seedLags(s, seed);
    s->mean = mulF(static_cast<double>(low + high), 0.5);
    s->scale = mulF(static_cast<double>(high - low), kTwoToMinus32);
    return kroStatusOk;
}

KroStatus noiseInitFloat(NoiseState* s, float low, float high, uint32_t seed) {
    if (s == nullptr) return kroStatusNullPointer;
    s->tag = kFloatNoiseTag;
    s->bounds.f.low = low;
    s->bounds.f.high = high;
    seedLags(s, seed);
    s->mean = mulF(static_cast<double>(addF(low, high)), 0.5);
    s->scale = mulF(static_cast<double>(subF(high, low)), kTwoToMinus32);
    return kroStatusOk;
}

KroStatus noiseInt16(int16_t* dst, int count, NoiseState* s) {
    if (dst == nullptr || s == nullptr) return kroStatusNullPointer;
    if (count < 1) return kroStatusBadSize;
    if (s->tag != kIntNoiseTag) return kroStatusBadNoiseState;
    for (int i = 0; i < count; ++i)  // nearest, ties to even; low 16 bits kept
        dst[i] = static_cast<int16_t>(_mm_cvtsd_si32(_mm_set_sd(nextValue(s))));
    return kroStatusOk;
}

KroStatus noiseFloat(float* dst, int count, NoiseState* s) {
    if (dst == nullptr || s == nullptr) return kroStatusNullPointer;
    if (count < 1) return kroStatusBadSize;
    if (s->tag != kFloatNoiseTag) return kroStatusBadNoiseState;
    for (int i = 0; i < count; ++i) dst[i] = static_cast<float>(nextValue(s));
    return kroStatusOk;
}

NoiseTables buildNoiseTables(uint8_t* base, float low, float high) {
    auto* noise = reinterpret_cast<float*>(base + kNoiseTableOffset);
    auto* index = reinterpret_cast<int16_t*>(base + kIndexTableOffset);
    auto* intState = reinterpret_cast<NoiseState*>(base + kIntStateOffset);
    auto* floatState = reinterpret_cast<NoiseState*>(base + kFloatStateOffset);
    // The records are set up just before use, so these cannot fail.
    noiseInitInt16(intState, 0, 1024, 0);
    noiseInt16(index, kNoiseCount, intState);
    noiseInitFloat(floatState, low, high, 0);
    noiseFloat(noise, kNoiseCount, floatState);
    return {noise, reinterpret_cast<const uint16_t*>(index)};
}

// ------------------------------------------------------------ plain reduction (no dithering)
// A row of C1, C3 or C4 is one stream of width x channels samples: eight
// samples a step for 8u sources, four for the others, then single samples;
// AC4 goes pixel by pixel, four lanes with the fourth sample kept.
namespace {
template <Pair P>
struct PlainForm {
    float Lf, qn, hn, M, S;
    explicit PlainForm(int L)
        : Lf(static_cast<float>(L)),
          qn(1.0f / Lf),
          hn(0.5f / Lf),
          M(static_cast<float>(PairT<P>::outMax)),
          S(bitsToFloat(PairT<P>::unitFactorBits)) {}
    static constexpr bool scaled = PairT<P>::unitFactorBits != 0;

    template <class F>
    auto apply(F u) const {  // u: the sample (signed 16-bit biased; a float limited to -1..2)
        const F x = scaled ? mulF(u, splatF<F>(S)) : limitFar(u);
        auto n = nearestLevel(x, splatF<F>(Lf), splatF<F>(qn), splatF<F>(hn), splatF<F>(M));
        n = clampTo(n, PairT<P>::outMax);
        if constexpr (PairT<P>::outBias != 0) n = subI(n, PairT<P>::outBias);
        return n;
    }
};

template <Pair P, int Layout>
void reducePlain(const Job& job) {
    const PlainForm<P> form(job.L);
    const int64_t width = job.roi.width;
    for (int y = 0; y < job.roi.height; ++y) {
        const uint8_t* s = job.srcRow(y);
        uint8_t* d = job.dstRow(y);
        if constexpr (Layout == 4) {
            for (int64_t x = 0; x < width; ++x) {
                const int i = static_cast<int>(4 * x);
                storeValues4<P>(d, i, keepFourth<P>(d, i, form.apply(sourceValues4<P>(s, i))));
            }
        } else {
            const int64_t count = width * channelsOf(Layout);
            int64_t i = 0;
            constexpr int block = std::is_same_v<typename PairT<P>::Src, Kro8u> ? 8 : 4;
            for (; i + block <= count; i += block)
                for (int h = 0; h < block; h += 4)
                    storeValues4<P>(d, static_cast<int>(i + h), form.apply(sourceValues4<P>(s, static_cast<int>(i + h))));
            for (; i < count; ++i)
                storeValue<P>(d, static_cast<int>(i), form.apply(sourceValue<P>(s, static_cast<int>(i))));
        }
    }
}

// ------------------------------------------------------------ entry
template <Pair P, int Layout>
KroStatus reduceEntry(const void* pSrc, int srcStep, void* pDst, int dstStep, kroiSize roi, int noise,
                      int ditherType, int levels, Kro8u* pBuffer) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    if (static_cast<unsigned>(noise) > 100u) return kroStatusBadNoise;
    if (levels < 2 || levels > PairT<P>::maxLevels) return kroStatusBadLevels;
    using S = typename PairT<P>::Src;
    using D = typename PairT<P>::Dst;
    Job job{static_cast<const uint8_t*>(pSrc), srcStep, static_cast<uint8_t*>(pDst), dstStep, roi, noise,
            ditherType, levels - 1, pBuffer};
    if (ditherType == kroiDitherNone) {
        reducePlain<P, Layout>(job);
        return kroStatusOk;
    }
    if (ditherType < kroiDitherFloydSteinberg || ditherType > kroiDitherBayer) return kroStatusBadDitherType;
    // the dithering kernels count steps in whole samples
    job.srcStep = stepInSamples<S>(srcStep) * static_cast<int>(sizeof(S));
    job.dstStep = stepInSamples<D>(dstStep) * static_cast<int>(sizeof(D));
    if (ditherType == kroiDitherBayer) return reduceOrdered<P, Layout>(job);
    if (ditherType == kroiDitherFloydSteinberg) return reduceFloydSteinberg<P, Layout>(job);
    return reduceTwoRow<P, Layout>(job);
}

// The selector argument read as the 32-bit number it is.
inline int selectorValue(const KroDitherType& t) {
    int v;
    std::memcpy(&v, &t, sizeof v);
    return v;
}
}  // namespace

}  // namespace kro::reduce

using namespace kro::reduce;

// ------------------------------------------------------------ work-buffer size
KroStatus impl_kroiReduceBitsGetBufferSize(int channelCode, kroiSize roiSize, int noise, KroDitherType ditherType,
                                           int* pBufferSize) {
    if (pBufferSize == nullptr) return kroStatusNullPointer;
    if (roiSize.width < 1) return kroStatusBadSize;
    if (channelCode != 1 && channelCode != 3 && channelCode != 4 && channelCode != 9) return kroStatusBadChannelCount;
    if (static_cast<unsigned>(noise) > 100u) return kroStatusBadNoise;
    const int sel = selectorValue(ditherType);
    if (sel == kroiDitherNone) {
        *pBufferSize = 0;
        return kroStatusOk;
    }
    const int64_t w = roiSize.width;
    int64_t n;
    if (sel == kroiDitherBayer) n = 0;
    else if (sel == kroiDitherFloydSteinberg) n = 8 * w + 16;  // two rows of width + 2 floats
    else if (sel == kroiDitherJarvisJudiceNinke || sel == kroiDitherStucki) n = 12 * w + 48;  // three of width + 4
    else return kroStatusBadDitherType;
    // the two tables and two 56-byte records, each rounded up to 16 bytes
    if (noise > 0) n += 4 * kNoiseCount + 2 * kNoiseCount + 64 + 64;
    if (n > 0) n += 64;  // room to align the start to 64
    // a width whose block would not fit the 32-bit answer is refused as a size
    if (n > INT_MAX) return kroStatusBadSize;
    *pBufferSize = static_cast<int>(n);
    return kroStatusOk;
}

// ------------------------------------------------------------ the 32 reductions
#define KRO_REDUCE_ENTRY(tag, P, layoutTag, layout)                                                              \
    KroStatus impl_kroiReduceBits_##tag##_##layoutTag(const PairT<Pair::P>::Src* pSrc, int srcStep,               \
                                                      PairT<Pair::P>::Dst* pDst, int dstStep, kroiSize roiSize,    \
                                                      int noise, KroDitherType ditherType, int levels,             \
                                                      Kro8u* pBuffer) {                                            \
        return reduceEntry<Pair::P, layout>(pSrc, srcStep, pDst, dstStep, roiSize, noise,                          \
                                            selectorValue(ditherType), levels, pBuffer);                           \
    }
#define KRO_REDUCE_PAIR(tag, P)              \
    KRO_REDUCE_ENTRY(tag, P, C1R, 1)         \
    KRO_REDUCE_ENTRY(tag, P, C3R, 3)         \
    KRO_REDUCE_ENTRY(tag, P, AC4R, 4)        \
    KRO_REDUCE_ENTRY(tag, P, C4R, 5)
KRO_REDUCE_PAIR(8u, P8u)
KRO_REDUCE_PAIR(16u8u, P16u8u)
KRO_REDUCE_PAIR(16s8u, P16s8u)
KRO_REDUCE_PAIR(32f8u, P32f8u)
KRO_REDUCE_PAIR(16u, P16u)
KRO_REDUCE_PAIR(16s, P16s)
KRO_REDUCE_PAIR(32f16u, P32f16u)
KRO_REDUCE_PAIR(32f16s, P32f16s)
#undef KRO_REDUCE_PAIR
#undef KRO_REDUCE_ENTRY
