// Error diffusion (selectors 1, 2, 3): each sample takes the nearest level
// after adding the weighted errors of samples already visited, and leaves its
// own error in the current error row. Channels are whole passes over the
// image, rows top to bottom, pixels left to right; the error rows are cleared
// once a call, so a channel's first rows gather the last rows' errors of the
// channel before. A sample at or past a clip stores the end value and passes
// no error on.
//
// Floyd-Steinberg is a plain loop, one sample a step. Jarvis-Judice-Ninke and
// Stucki gather the four columns x-2..x+1 of the three rows in one 4-lane
// product sum, the fifth column after; groups of four pixels share one noise
// value. Every sample's arithmetic depends on the previous sample's error, so
// there is no wider vector path; instead both run rows in pairs, the second
// row two columns behind the first, so that two chains of errors are in
// flight at once.
#include <utility>

#include "bitdepth/reduce_frame.h"

namespace kro::reduce {

namespace {
// Floyd-Steinberg gathers 1 5 3 from the row above and 7 from the left.
constexpr float kFloydMultiplier = 0.0625f;  // 1/16

// The three-row masks read from the receiving side: lanes x-2..x+1 of rows
// y-2 (wa), y-1 (wb) and y (wc); column x+2 weighs 1 in row y-2 and wb[0] in
// row y-1.
struct TwoRowWeights {
    float wa[4], wb[4], wc[4];
    float multiplier;
};
const TwoRowWeights kJarvis = {{1, 3, 5, 3}, {3, 5, 7, 5}, {5, 7, 0, 0}, 1.0f / 48.0f};
const TwoRowWeights kStucki = {{1, 2, 4, 2}, {2, 4, 8, 4}, {4, 8, 0, 0}, 1.0f / 42.0f};

// The clip and the decision shared by every method, on the source scale.
template <Pair P>
struct Quantiser {
    float q, r, H, lowClip;
    // stored ends of the range
    static constexpr int high = PairT<P>::outMax - PairT<P>::outBias;
    static constexpr int low = -PairT<P>::outBias;

    // v: the sample with its gathered error; T: the decision threshold.
    // Returns the stored value, leaves the error in e.
    template <bool Half>
    int decide(float v, float T, float& e) const {
        if (v >= H) {
            e = 0.0f;
            return high;
        }
        if (v < lowClip) {
            e = 0.0f;
            return low;
        }
        // both candidates, the level below (f0) and the one above (f1), with
        // their errors, then a blend: the choice is as good as random, and a
        // branch on it would be mispredicted half the time
        const float f0 = mulF(toFloat(truncToInt(mulF(v, r))), q);
        const float d = subF(v, f0);
        const float f1 = addF(f0, q);
        const VF above = _mm_cmplt_ss(_mm_set_ss(T), _mm_set_ss(d));  // T < d
        const float f = _mm_cvtss_f32(_mm_blendv_ps(_mm_set_ss(f0), _mm_set_ss(f1), above));
        e = _mm_cvtss_f32(_mm_blendv_ps(_mm_set_ss(d), _mm_set_ss(subF(v, f1)), above));
        return mapLevel<P, Half>(f);
    }
};

template <Pair P>
Quantiser<P> quantiser(int L, bool floydLowClip) {
    using S = typename PairT<P>::Src;
    const bool isFloat = std::is_same_v<S, Kro32f>;
    const float H = isFloat ? 1.0f : sizeof(S) == 1 ? 255.0f : 65535.0f;
    // Floyd-Steinberg counts a float sample below 2^-23 as black
    const float lowClip = isFloat && floydLowClip ? 1.1920929e-07f : 0.0f;
    return {stepOf<P>(L), inverseStepOf<P>(L), H, lowClip};
}

// Error rows and noise tables in the caller's block.
struct Work {
    float* rows;
    NoiseTables noise;
};
Work prepare(const Job& job, int rowCount, int rowLength, float q) {
    uint8_t* base = alignedBase(job.buffer);
    Work w{nullptr, {nullptr, nullptr}};
    if (job.noise > 0) {
        // thresholds spread over (50 -+ noise) percent of a step
        const float n = toFloat(job.noise);
        const float low = mulF(subF(50.0f, n), q) / 100.0f;
        const float high = mulF(addF(50.0f, n), q) / 100.0f;
        w.noise = buildNoiseTables(base, low, high);
        base += kNoiseBlockSize;
    }
    w.rows = reinterpret_cast<float*>(base);
    for (int i = 0; i < rowCount * rowLength; ++i) w.rows[i] = 0.0f;
    return w;
}

template <Pair P, int Layout, bool Noisy>
void floydRegion(const Job& job, const Work& w) {
    constexpr int cn = channelsOf(Layout), stride = strideOf(Layout);
    constexpr bool half = PairT<P>::roundHalf;
    const Quantiser<P> qz = quantiser<P>(job.L, true);
    const float halfStep = mulF(0.5f, qz.q);
    const int width = job.roi.width;
    // One sample of channel c at column x of row y: errors above in `above`,
    // this row's in `own`.
    auto step = [&](int c, int x, int y, const uint8_t* s, uint8_t* d, const float* above, float* own) {
        const int i = x * stride + c;
        float S;
        if constexpr (half)  // ((3 P[x+1] + 5 P[x]) + P[x-1]) + 7 C[x-1]
            S = addF(addF(addF(mulF(3.0f, above[x + 1]), mulF(5.0f, above[x])), above[x - 1]), mulF(7.0f, own[x - 1]));
        else  // ((3 P[x+1] + P[x-1]) + 5 P[x]) + 7 C[x-1]
            S = addF(addF(addF(mulF(3.0f, above[x + 1]), above[x - 1]), mulF(5.0f, above[x])), mulF(7.0f, own[x - 1]));
        const float v = addF(sourceValue<P>(s, i), mulF(S, kFloydMultiplier));
        const float T = Noisy ? w.noise.at(x, y) : halfStep;
        storeValue<P>(d, i, qz.template decide<half>(v, T, own[x]));
    };
    // guards at -1 and width; the roles go on from channel to channel
    float* prev = w.rows + 1;
    float* cur = w.rows + (width + 2) + 1;
    for (int c = 0; c < cn; ++c) {
        int y = 0;
        // Rows two at a time, the second two columns behind the first: its
        // column x needs the first's x + 1, and writes its errors over the row
        // above the first, whose column x the first no longer reads. The two
        // rows' chains of errors then run side by side.
        for (; y + 2 <= job.roi.height; y += 2) {
            const uint8_t *s0 = job.srcRow(y), *s1 = job.srcRow(y + 1);
            uint8_t *d0 = job.dstRow(y), *d1 = job.dstRow(y + 1);
            for (int x = 0; x < width + 2; ++x) {
                if (x < width) step(c, x, y, s0, d0, prev, cur);
                if (x >= 2) step(c, x - 2, y + 1, s1, d1, cur, prev);
            }
        }
        if (y < job.roi.height) {
            const uint8_t* s0 = job.srcRow(y);
            uint8_t* d0 = job.dstRow(y);
            for (int x = 0; x < width; ++x) step(c, x, y, s0, d0, prev, cur);
            std::swap(prev, cur);
        }
    }
}

template <Pair P, int Layout, bool Noisy>
void twoRowRegion(const Job& job, const Work& w, const TwoRowWeights& k) {
    constexpr int cn = channelsOf(Layout), stride = strideOf(Layout);
    const Quantiser<P> qz = quantiser<P>(job.L, false);
    const float halfStep = mulF(0.5f, qz.q);
    const int width = job.roi.width;
    const int len = width + 4;
    const VF wa = _mm_loadu_ps(k.wa), wb = _mm_loadu_ps(k.wb), wc = _mm_loadu_ps(k.wc);
    const float wb0 = k.wb[0];
    const int grouped = width & ~3;
    // One sample of channel c at column x of row y: errors two rows up in A,
    // one row up in B, this row's in C, the two newest of which ride in e1, e2.
    auto step = [&](int c, int x, int y, const uint8_t* s, uint8_t* d, const float* A, const float* B, float* C,
                    float& e1, float& e2) {
        const int i = x * stride + c;
        // l = (wa A + wb B) + wc C over lanes x-2..x+1; C's lanes 2, 3 weigh nothing
        const VF cv = _mm_setr_ps(e2, e1, 0.0f, 0.0f);
        const VF l = addF(addF(mulF(wa, _mm_loadu_ps(A + x - 2)), mulF(wb, _mm_loadu_ps(B + x - 2))), mulF(wc, cv));
        const VF h = addF(l, _mm_movehl_ps(l, l));  // l0 + l2, l1 + l3
        float S = addF(_mm_cvtss_f32(h), _mm_cvtss_f32(_mm_shuffle_ps(h, h, 1)));
        S = addF(S, A[x + 2]);
        S = addF(S, mulF(wb0, B[x + 2]));
        const float v = addF(sourceValue<P>(s, i), mulF(S, k.multiplier));
        const int xn = x < grouped ? (x & ~3) : x;  // groups of four share a noise value
        const float T = Noisy ? w.noise.at(xn, y) : halfStep;
        float e;
        storeValue<P>(d, i, qz.template decide<false>(v, T, e));
        C[x] = e;
        e2 = e1;
        e1 = e;
    };
    float* rowA = w.rows + 2;
    float* rowB = w.rows + len + 2;
    float* rowC = w.rows + 2 * len + 2;
    for (int c = 0; c < cn; ++c) {
        int y = 0;
        // Rows two at a time, the second two columns behind the first: its
        // column x needs the first's x + 2, and writes its errors over the row
        // two above the first, whose column x the first has just read for the
        // last time. The two rows' chains of errors then run side by side.
        for (; y + 2 <= job.roi.height; y += 2) {
            const uint8_t *s0 = job.srcRow(y), *s1 = job.srcRow(y + 1);
            uint8_t *d0 = job.dstRow(y), *d1 = job.dstRow(y + 1);
            float e1 = rowC[-1], e2 = rowC[-2];  // the guards first
            float f1 = rowA[-1], f2 = rowA[-2];
            for (int x = 0; x < width + 2; ++x) {
                if (x < width) step(c, x, y, s0, d0, rowA, rowB, rowC, e1, e2);
                if (x >= 2) step(c, x - 2, y + 1, s1, d1, rowB, rowC, rowA, f1, f2);
            }
            float* oldB = rowB;
            rowB = rowA;
            rowA = rowC;
            rowC = oldB;
        }
        if (y < job.roi.height) {
            const uint8_t* s0 = job.srcRow(y);
            uint8_t* d0 = job.dstRow(y);
            float e1 = rowC[-1], e2 = rowC[-2];
            for (int x = 0; x < width; ++x) step(c, x, y, s0, d0, rowA, rowB, rowC, e1, e2);
            float* oldA = rowA;
            rowA = rowB;
            rowB = rowC;
            rowC = oldA;
        }
    }
}
}  // namespace

template <Pair P, int Layout>
KroStatus reduceFloydSteinberg(const Job& job) {
    if (job.buffer == nullptr) return kroStatusNullPointer;
    const Work w = prepare(job, 2, job.roi.width + 2, stepOf<P>(job.L));
    if (job.noise > 0) floydRegion<P, Layout, true>(job, w);
    else floydRegion<P, Layout, false>(job, w);
    return kroStatusOk;
}

template <Pair P, int Layout>
KroStatus reduceTwoRow(const Job& job) {
    if (job.buffer == nullptr) return kroStatusNullPointer;
    const Work w = prepare(job, 3, job.roi.width + 4, stepOf<P>(job.L));
    const TwoRowWeights& k = job.selector == kroiDitherJarvisJudiceNinke ? kJarvis : kStucki;
    if (job.noise > 0) twoRowRegion<P, Layout, true>(job, w, k);
    else twoRowRegion<P, Layout, false>(job, w, k);
    return kroStatusOk;
}

#define KRO_INSTANTIATE(P, layout)                                                 \
    template KroStatus reduceFloydSteinberg<Pair::P, layout>(const Job&);          \
    template KroStatus reduceTwoRow<Pair::P, layout>(const Job&);
KRO_REDUCE_FOR_EACH_PAIR_LAYOUT(KRO_INSTANTIATE)
#undef KRO_INSTANTIATE

}  // namespace kro::reduce
