// Gamma: 36 operations, forward and inverse, 8u / 16u / 32f, C3, AC4 and P3
// sides, each also in place.
// Entry checks: 32f forms first the value range (vMax - vMin not above 0:
// -49); then null addresses and plane-array elements (-8), width and height
// below 1 (-6), any step below 1 (-16). Steps stay in bytes for every type.
//
// Row kernels work on runs of samples: a C3 row is one run of 3 x width
// samples, a plane row one run of width, an AC4 row a run of 4 x width of which
// every fourth sample is left as it was.
//   integer: vector blocks of 16 bytes through the table, the rest sample by sample
//   float:   blocks of up to 384 samples (128 AC4 pixels gathered into three
//            floats each): t and the power argument in four-lane vectors,
//            the power routine over the block, the result in four-lane
//            vectors; the last one to three samples of each stage by the
//            scalar twin of its form.
#include "frame/region.h"
#include "impl_decls.h"
#include "tone/gamma_forms.h"

using namespace kro;
using namespace kro::gamma;

namespace {

// ------------------------------------------------------------ byte-addressed rows
template <class T>
inline const uint8_t* rowOf(const T* base, int step, int y) {
    return reinterpret_cast<const uint8_t*>(base) + static_cast<std::ptrdiff_t>(y) * step;
}
template <class T>
inline uint8_t* rowOf(T* base, int step, int y) {
    return reinterpret_cast<uint8_t*>(base) + static_cast<std::ptrdiff_t>(y) * step;
}
template <class T>
inline T getAt(const uint8_t* p, int i) {
    T v;
    std::memcpy(&v, p + sizeof(T) * static_cast<size_t>(i), sizeof v);
    return v;
}
template <class T>
inline void putAt(uint8_t* p, int i, T v) {
    std::memcpy(p + sizeof(T) * static_cast<size_t>(i), &v, sizeof v);
}

// The fourth sample of every pixel in a 16-byte block of four-sample pixels.
template <class T>
inline V fourthMask() {
    return sizeof(T) == 1 ? _mm_set1_epi32(static_cast<int>(0xFF000000u))
                          : _mm_set1_epi64x(static_cast<long long>(0xFFFF000000000000ull));
}

// ------------------------------------------------------------ integer row kernel
// dst = table[src] for each sample of a run; Cn = 4 keeps every fourth sample.
template <class T, Dir D>
struct TableRun {
    static constexpr int perVec = 16 / static_cast<int>(sizeof(T));

    template <int Cn>
    static void run(const uint8_t* s, uint8_t* d, int count) {
        const T* table = kTable<T, D>.v;
        int i = 0;
        for (; i + perVec <= count; i += perVec) {
            const V in = _mm_loadu_si128(reinterpret_cast<const V*>(s + sizeof(T) * i));
            V out = lookup(table, in);
            if constexpr (Cn == 4)
                out = _mm_blendv_epi8(out, _mm_loadu_si128(reinterpret_cast<const V*>(d + sizeof(T) * i)), fourthMask<T>());
            _mm_storeu_si128(reinterpret_cast<V*>(d + sizeof(T) * i), out);
        }
        for (; i < count; ++i)
            if (Cn != 4 || i % 4 != 3) putAt<T>(d, i, lookup(table, getAt<T>(s, i)));
    }
};

// ------------------------------------------------------------ float row kernel
constexpr int kBlock = 384;  // samples a block (128 AC4 pixels)

template <Dir D, Prec P>
struct CurveRun {
    using C = Curve<D, P>;
    const Range g;

    // One block of n <= 384 contiguous samples, src to dst (they may be the same:
    // the block is read whole before any result is written).
    void block(const uint8_t* src, uint8_t* dst, int n) const {
        // t, the power argument (then the power) and the low-branch mask of each sample
        alignas(16) float t[kBlock], p[kBlock], low[kBlock];
        int i = 0;
        for (; i + 4 <= n; i += 4) {
            VF x = _mm_loadu_ps(reinterpret_cast<const float*>(src) + i);
            if (!g.zeroMin) x = start(g, x);
            VF lo;
            _mm_store_ps(t + i, x);
            _mm_store_ps(p + i, C::arg(g, x, lo));
            _mm_store_ps(low + i, lo);
        }
        for (; i < n; ++i) {
            float x = getAt<float>(src, i);
            if (!g.zeroMin) x = start(g, x);
            bool lo;
            t[i] = x;
            p[i] = C::arg(g, x, lo);
            low[i] = lo ? -1.0f : 0.0f;
        }
        power(p, C::exponent, p, n);
        for (i = 0; i + 4 <= n; i += 4) {
            VF y = C::finish(g, _mm_load_ps(t + i), _mm_load_ps(p + i), _mm_load_ps(low + i));
            if (!g.zeroMin) y = end(g, y);
            _mm_storeu_ps(reinterpret_cast<float*>(dst) + i, y);
        }
        for (; i < n; ++i) {
            float y = C::finish(g, t[i], p[i], low[i] != 0.0f);
            if (!g.zeroMin) y = end(g, y);
            putAt<float>(dst, i, y);
        }
    }

    template <int Cn>
    void run(const uint8_t* s, uint8_t* d, int count) const {
        if constexpr (Cn != 4) {
            for (int at = 0; at < count; at += kBlock) {
                const int n = count - at < kBlock ? count - at : kBlock;
                block(s + 4 * static_cast<size_t>(at), d + 4 * static_cast<size_t>(at), n);
            }
        } else {
            // AC4: the colour samples of 128 pixels gathered into 384 floats (each
            // pixel moved as one vector; the fourth lane is overwritten by the next
            // pixel, or lands in the spare float), and put back the same way over
            // the destination's own fourth sample.
            alignas(16) float c[kBlock + 4];
            const int pixels = count / 4;
            for (int at = 0; at < pixels; at += kBlock / 3) {
                const int m = pixels - at < kBlock / 3 ? pixels - at : kBlock / 3;
                const uint8_t* sp = s + 16 * static_cast<size_t>(at);
                uint8_t* dp = d + 16 * static_cast<size_t>(at);
                for (int k = 0; k < m; ++k)
                    _mm_storeu_ps(c + 3 * k, _mm_loadu_ps(reinterpret_cast<const float*>(sp + 16 * k)));
                block(reinterpret_cast<const uint8_t*>(c), reinterpret_cast<uint8_t*>(c), 3 * m);
                for (int k = 0; k < m; ++k) {
                    float* px = reinterpret_cast<float*>(dp + 16 * k);
                    _mm_storeu_ps(px, _mm_blend_ps(_mm_loadu_ps(c + 3 * k), _mm_loadu_ps(px), 0x8));
                }
            }
        }
    }
};

// ------------------------------------------------------------ region drivers
// Interleaved: Cn = 3 or 4 samples a pixel; the run is the whole row.
template <int Cn, class T, class Run>
void regionC(const Run& k, const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roi) {
    for (int y = 0; y < roi.height; ++y)
        k.template run<Cn>(rowOf(pSrc, srcStep, y), rowOf(pDst, dstStep, y), Cn * roi.width);
}
// Planes: three runs a row, one step for every plane.
template <class T, class Run>
void regionP(const Run& k, const T* const* pSrc, int srcStep, T* const* pDst, int dstStep, kroiSize roi) {
    for (int y = 0; y < roi.height; ++y)
        for (int c = 0; c < 3; ++c) k.template run<1>(rowOf(pSrc[c], srcStep, y), rowOf(pDst[c], dstStep, y), roi.width);
}

// ------------------------------------------------------------ entries
// The checks after the value range: null, size, step.
template <class T>
inline KroStatus checkC(const T* pSrc, int srcStep, const T* pDst, int dstStep, kroiSize roi) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    if (srcStep < 1 || dstStep < 1) return kroStatusBadStep;
    return kroStatusOk;
}
template <class S, class T>
inline KroStatus checkP(const S* const* pSrc, int srcStep, T* const* pDst, int dstStep, kroiSize roi) {
    if (anyNull(pSrc, pDst) || anyPlaneNull(pSrc, 3) || anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    if (srcStep < 1 || dstStep < 1) return kroStatusBadStep;
    return kroStatusOk;
}
inline bool badRange(float vMin, float vMax) { return !(vMax - vMin > 0.0f); }

// Integer forms.
template <Dir D, int Cn, class T>
KroStatus tableC(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roi) {
    if (const KroStatus st = checkC(pSrc, srcStep, pDst, dstStep, roi)) return st;
    regionC<Cn>(TableRun<T, D>{}, pSrc, srcStep, pDst, dstStep, roi);
    return kroStatusOk;
}
template <Dir D, class T>
KroStatus tableP(const T* const* pSrc, int srcStep, T* const* pDst, int dstStep, kroiSize roi) {
    if (const KroStatus st = checkP(pSrc, srcStep, pDst, dstStep, roi)) return st;
    regionP(TableRun<T, D>{}, pSrc, srcStep, pDst, dstStep, roi);
    return kroStatusOk;
}

// Float forms.
template <Dir D, Prec P, int Cn>
KroStatus curveC(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roi, Kro32f vMin, Kro32f vMax) {
    if (badRange(vMin, vMax)) return kroStatusBadGammaRange;
    if (const KroStatus st = checkC(pSrc, srcStep, pDst, dstStep, roi)) return st;
    regionC<Cn>(CurveRun<D, P>{Range(vMin, vMax)}, pSrc, srcStep, pDst, dstStep, roi);
    return kroStatusOk;
}
template <Dir D, Prec P>
KroStatus curveP(const Kro32f* const* pSrc, int srcStep, Kro32f* const* pDst, int dstStep, kroiSize roi, Kro32f vMin,
                 Kro32f vMax) {
    if (badRange(vMin, vMax)) return kroStatusBadGammaRange;
    if (const KroStatus st = checkP(pSrc, srcStep, pDst, dstStep, roi)) return st;
    regionP(CurveRun<D, P>{Range(vMin, vMax)}, pSrc, srcStep, pDst, dstStep, roi);
    return kroStatusOk;
}

constexpr Dir F = Dir::Fwd, I = Dir::Inv;
constexpr Prec PF = Prec::Float, PD = Prec::Double;

}  // namespace

// ------------------------------------------------------------ 8u
KroStatus impl_kroiGammaFwd_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return tableC<F, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGammaFwd_8u_C3IR(Kro8u* pSrcDst, int srcDstStep, kroiSize roiSize) {
    return tableC<F, 3>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}
KroStatus impl_kroiGammaFwd_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return tableC<F, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGammaFwd_8u_AC4IR(Kro8u* pSrcDst, int srcDstStep, kroiSize roiSize) {
    return tableC<F, 4>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}
KroStatus impl_kroiGammaFwd_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep,
                                   kroiSize roiSize) {
    return tableP<F>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGammaFwd_8u_IP3R(Kro8u* const pSrcDst[3], int srcDstStep, kroiSize roiSize) {
    return tableP<F>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}
KroStatus impl_kroiGammaInv_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return tableC<I, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGammaInv_8u_C3IR(Kro8u* pSrcDst, int srcDstStep, kroiSize roiSize) {
    return tableC<I, 3>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}
KroStatus impl_kroiGammaInv_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return tableC<I, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGammaInv_8u_AC4IR(Kro8u* pSrcDst, int srcDstStep, kroiSize roiSize) {
    return tableC<I, 4>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}
KroStatus impl_kroiGammaInv_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep,
                                   kroiSize roiSize) {
    return tableP<I>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGammaInv_8u_IP3R(Kro8u* const pSrcDst[3], int srcDstStep, kroiSize roiSize) {
    return tableP<I>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}

// ------------------------------------------------------------ 16u
KroStatus impl_kroiGammaFwd_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return tableC<F, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGammaFwd_16u_C3IR(Kro16u* pSrcDst, int srcDstStep, kroiSize roiSize) {
    return tableC<F, 3>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}
KroStatus impl_kroiGammaFwd_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return tableC<F, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGammaFwd_16u_AC4IR(Kro16u* pSrcDst, int srcDstStep, kroiSize roiSize) {
    return tableC<F, 4>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}
KroStatus impl_kroiGammaFwd_16u_P3R(const Kro16u* const pSrc[3], int srcStep, Kro16u* const pDst[3], int dstStep,
                                    kroiSize roiSize) {
    return tableP<F>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGammaFwd_16u_IP3R(Kro16u* const pSrcDst[3], int srcDstStep, kroiSize roiSize) {
    return tableP<F>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}
KroStatus impl_kroiGammaInv_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return tableC<I, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGammaInv_16u_C3IR(Kro16u* pSrcDst, int srcDstStep, kroiSize roiSize) {
    return tableC<I, 3>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}
KroStatus impl_kroiGammaInv_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return tableC<I, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGammaInv_16u_AC4IR(Kro16u* pSrcDst, int srcDstStep, kroiSize roiSize) {
    return tableC<I, 4>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}
KroStatus impl_kroiGammaInv_16u_P3R(const Kro16u* const pSrc[3], int srcStep, Kro16u* const pDst[3], int dstStep,
                                    kroiSize roiSize) {
    return tableP<I>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGammaInv_16u_IP3R(Kro16u* const pSrcDst[3], int srcDstStep, kroiSize roiSize) {
    return tableP<I>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize);
}

// ------------------------------------------------------------ 32f
// The forward AC4IR form and the inverse AC4 and plane forms test the break in
// doubles (and the inverse ones form the power argument in doubles); the rest in floats.
KroStatus impl_kroiGammaFwd_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize,
                                    Kro32f vMin, Kro32f vMax) {
    return curveC<F, PF, 3>(pSrc, srcStep, pDst, dstStep, roiSize, vMin, vMax);
}
KroStatus impl_kroiGammaFwd_32f_C3IR(Kro32f* pSrcDst, int srcDstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax) {
    return curveC<F, PF, 3>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, vMin, vMax);
}
KroStatus impl_kroiGammaFwd_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize,
                                     Kro32f vMin, Kro32f vMax) {
    return curveC<F, PF, 4>(pSrc, srcStep, pDst, dstStep, roiSize, vMin, vMax);
}
KroStatus impl_kroiGammaFwd_32f_AC4IR(Kro32f* pSrcDst, int srcDstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax) {
    return curveC<F, PD, 4>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, vMin, vMax);
}
KroStatus impl_kroiGammaFwd_32f_P3R(const Kro32f* const pSrc[3], int srcStep, Kro32f* const pDst[3], int dstStep,
                                    kroiSize roiSize, Kro32f vMin, Kro32f vMax) {
    return curveP<F, PF>(pSrc, srcStep, pDst, dstStep, roiSize, vMin, vMax);
}
KroStatus impl_kroiGammaFwd_32f_IP3R(Kro32f* const pSrcDst[3], int srcDstStep, kroiSize roiSize, Kro32f vMin,
                                     Kro32f vMax) {
    return curveP<F, PF>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, vMin, vMax);
}
KroStatus impl_kroiGammaInv_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize,
                                    Kro32f vMin, Kro32f vMax) {
    return curveC<I, PF, 3>(pSrc, srcStep, pDst, dstStep, roiSize, vMin, vMax);
}
KroStatus impl_kroiGammaInv_32f_C3IR(Kro32f* pSrcDst, int srcDstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax) {
    return curveC<I, PF, 3>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, vMin, vMax);
}
KroStatus impl_kroiGammaInv_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize,
                                     Kro32f vMin, Kro32f vMax) {
    return curveC<I, PD, 4>(pSrc, srcStep, pDst, dstStep, roiSize, vMin, vMax);
}
KroStatus impl_kroiGammaInv_32f_AC4IR(Kro32f* pSrcDst, int srcDstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax) {
    return curveC<I, PD, 4>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, vMin, vMax);
}
KroStatus impl_kroiGammaInv_32f_P3R(const Kro32f* const pSrc[3], int srcStep, Kro32f* const pDst[3], int dstStep,
                                    kroiSize roiSize, Kro32f vMin, Kro32f vMax) {
    return curveP<I, PD>(pSrc, srcStep, pDst, dstStep, roiSize, vMin, vMax);
}
KroStatus impl_kroiGammaInv_32f_IP3R(Kro32f* const pSrcDst[3], int srcDstStep, kroiSize roiSize, Kro32f vMin,
                                     Kro32f vMax) {
    return curveP<I, PD>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, vMin, vMax);
}
