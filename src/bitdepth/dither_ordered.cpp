// Ordered dithering by the 4x4 Bayer matrix (selector 4): each sample picks
// between the levels below and above it by the pixel's threshold, (m) q, or
// (noise + m) q with noise. No memory between samples: rows and pixels are
// independent. Main path: four pixels a step, their four thresholds in one
// vector spread over the pixels' samples by lane shuffles; tail: one pixel at
// a time with the same instructions on single floats.
#include "bitdepth/reduce_frame.h"

namespace kro::reduce {

namespace {
// k / 15 with k by row y & 3 and column x & 3, counted from the region's corner
constexpr int kBayer[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};

// One sample: u on the source scale, T the threshold; the stored value. A
// float sample is limited to -1..2 first, which changes no level but keeps
// u r within the integer range.
template <Pair P, bool Half, class F>
inline auto orderedSample(F u, F T, F q, F r) {
    if constexpr (std::is_same_v<typename PairT<P>::Src, Kro32f>) u = limitFar(u);
    const auto t = truncToInt(mulF(u, r));
    F f = mulF(toFloat(t), q);
    const F d = subF(u, f);
    f = addWhereBelow(f, q, T, d);
    return mapLevel<P, Half>(f);
}

template <Pair P, int Layout, bool Noisy>
void orderedRegion(const Job& job, const NoiseTables& nt) {
    constexpr int cn = channelsOf(Layout), stride = strideOf(Layout);
    // the noisy level maps round by a half, C4 excepted
    constexpr bool half = Noisy && Layout != 5 && PairT<P>::roundHalf;
    // 8u C3 with noise runs groups of eight pixels whose last four repeat the
    // first four's noise
    constexpr bool pairedNoise = Noisy && P == Pair::P8u && Layout == 3;
    const float q = stepOf<P>(job.L), r = inverseStepOf<P>(job.L);
    const VF qv = _mm_set1_ps(q), rv = _mm_set1_ps(r);
    const int width = job.roi.width;
    const int main4 = width & ~3;
    const int paired = width & ~7;
    auto noiseColumn = [&](int x) { return pairedNoise && x < paired ? (x & ~7) | (x & 3) : x; };

    for (int y = 0; y < job.roi.height; ++y) {
        const uint8_t* s = job.srcRow(y);
        uint8_t* d = job.dstRow(y);
        float m[4];
        for (int k = 0; k < 4; ++k) m[k] = static_cast<float>(kBayer[y & 3][k]) / 15.0f;
        const VF mv = _mm_loadu_ps(m);
        int x = 0;
        for (; x < main4; x += 4) {
            VF T;
            if constexpr (Noisy) {
                const VF nz = _mm_setr_ps(nt.at(noiseColumn(x), y), nt.at(noiseColumn(x + 1), y),
                                          nt.at(noiseColumn(x + 2), y), nt.at(noiseColumn(x + 3), y));
                T = mulF(addF(nz, mv), qv);
            } else {
                T = mulF(mv, qv);
            }
            if constexpr (Layout == 1) {
                storeValues4<P>(d, x, orderedSample<P, half>(sourceValues4<P>(s, x), T, qv, rv));
            } else if constexpr (Layout == 3) {
                // t0 t0 t0 t1 | t1 t1 t2 t2 | t2 t3 t3 t3: the samples of four pixels
                const VF t3[3] = {_mm_shuffle_ps(T, T, _MM_SHUFFLE(1, 0, 0, 0)),
                                  _mm_shuffle_ps(T, T, _MM_SHUFFLE(2, 2, 1, 1)),
                                  _mm_shuffle_ps(T, T, _MM_SHUFFLE(3, 3, 3, 2))};
                for (int k = 0; k < 3; ++k) {
                    const int i = 3 * x + 4 * k;
                    storeValues4<P>(d, i, orderedSample<P, half>(sourceValues4<P>(s, i), t3[k], qv, rv));
                }
            } else {
                const VF tp[4] = {_mm_shuffle_ps(T, T, 0x00), _mm_shuffle_ps(T, T, 0x55), _mm_shuffle_ps(T, T, 0xAA),
                                  _mm_shuffle_ps(T, T, 0xFF)};
                for (int k = 0; k < 4; ++k) {
                    const int i = 4 * (x + k);
                    V n = orderedSample<P, half>(sourceValues4<P>(s, i), tp[k], qv, rv);
                    if constexpr (Layout == 4) n = keepFourth<P>(d, i, n);
                    storeValues4<P>(d, i, n);
                }
            }
        }
        for (; x < width; ++x) {
            const float mx = m[x & 3];
            const float T = Noisy ? mulF(addF(nt.at(noiseColumn(x), y), mx), q) : mulF(mx, q);
            for (int c = 0; c < cn; ++c) {
                const int i = x * stride + c;
                storeValue<P>(d, i, orderedSample<P, half>(sourceValue<P>(s, i), T, q, r));
            }
        }
    }
}
}  // namespace

template <Pair P, int Layout>
KroStatus reduceOrdered(const Job& job) {
    if (job.noise == 0) {
        orderedRegion<P, Layout, false>(job, NoiseTables{nullptr, nullptr});
        return kroStatusOk;
    }
    if (job.buffer == nullptr) return kroStatusNullPointer;
    const float n = toFloat(job.noise);
    const NoiseTables nt = buildNoiseTables(alignedBase(job.buffer), toFloat(-job.noise) / 100.0f, n / 100.0f);
    orderedRegion<P, Layout, true>(job, nt);
    return kroStatusOk;
}

#define KRO_INSTANTIATE(P, layout) template KroStatus reduceOrdered<Pair::P, layout>(const Job&);
KRO_REDUCE_FOR_EACH_PAIR_LAYOUT(KRO_INSTANTIATE)
#undef KRO_INSTANTIATE

}  // namespace kro::reduce
