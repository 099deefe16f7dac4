// Plane resamplers between 4:2:0 and the 16:2:0 ("1620") and 4:1:1 schemes,
// on P3 images. Luma is copied; each chroma plane is resampled by itself.
// Doubling interpolates by averages of two neighbours, halving drops samples.
//
// Two averages: avgUp (a + b + 1) >> 1 and avgDown (a + b) >> 1. The columns
// below a limit L (whole runs of 16 source or 32 destination columns, counted
// from the left) take avgUp, later columns avgDown, so the same pair of
// samples may average differently at two places in a row.
//
// Entry: pSrc, pDst null, then their elements (-8); then the size rule (-6);
// a null step array last (-8). Order of work: luma, Cb, Cr.
// Row kernels: 16 chroma samples a step in byte vectors, scalar tail.
#include <cstring>

#include "frame/region.h"
#include "impl_decls.h"
#include "subsampled/catalogue.h"

using namespace kro;
using namespace kro::sub;

namespace {

// ------------------------------------------------------------ averages, scalar and SSE
inline int avgUp(int a, int b) { return (a + b + 1) >> 1; }
inline V avgUp(V a, V b) { return _mm_avg_epu8(a, b); }
inline int avgDown(int a, int b) { return (a + b) >> 1; }
inline V avgDown(V a, V b) { return _mm_sub_epi8(_mm_avg_epu8(a, b), _mm_and_si128(_mm_xor_si128(a, b), _mm_set1_epi8(1))); }
template <class T>
inline T avg(bool up, T a, T b) { return up ? avgUp(a, b) : avgDown(a, b); }

inline V load16(const Kro8u* p) { return _mm_loadu_si128(reinterpret_cast<const V*>(p)); }
inline void store16(Kro8u* p, V v) { _mm_storeu_si128(reinterpret_cast<V*>(p), v); }
// samples 2x of 32 bytes: the even bytes
inline V evenBytes(const Kro8u* p) {
    const V m = _mm_set1_epi16(0x00FF);
    return _mm_packus_epi16(_mm_and_si128(load16(p), m), _mm_and_si128(load16(p + 16), m));
}
// a and b interleaved byte by byte into 32 bytes
inline void storeZip(Kro8u* d, V a, V b) {
    store16(d, _mm_unpacklo_epi8(a, b));
    store16(d + 16, _mm_unpackhi_epi8(a, b));
}

// ------------------------------------------------------------ plane copy
// Rows of `bytes` bytes, one after the other (a local plain copy).
void planeCopy(const Kro8u* s, int srcStep, Kro8u* d, int dstStep, int bytes, int rows) {
    for (int y = 0; y < rows; ++y)
        std::memcpy(d + std::ptrdiff_t(y) * dstStep, s + std::ptrdiff_t(y) * srcStep, size_t(bytes));
}

// ------------------------------------------------------------ row kernels
// Horizontal doubling of n source samples: D(2x) = S(x), D(2x + 1) =
// avg(S(x), S(x + 1)); the last column has no right neighbour and repeats.
// Blocks of 16 run while the next sample exists; limitL is a multiple of 16.
void doubleColumns(const Kro8u* s, Kro8u* d, int n, int limitL) {
    int x = 0;
    for (; x + 16 <= n - 1; x += 16) {
        const V a = load16(s + x), a1 = load16(s + x + 1);
        storeZip(d + 2 * x, a, avg(x < limitL, a, a1));
    }
    for (; x < n - 1; ++x) {
        d[2 * x] = s[x];
        d[2 * x + 1] = Kro8u(avg(x < limitL, int(s[x]), int(s[x + 1])));
    }
    d[2 * x] = d[2 * x + 1] = s[x];
}

// Each sample twice: D(2x) = D(2x + 1) = S(x).
void repeatColumns(const Kro8u* s, Kro8u* d, int n) {
    int x = 0;
    for (; x + 16 <= n; x += 16) {
        const V a = load16(s + x);
        storeZip(d + 2 * x, a, a);
    }
    for (; x < n; ++x) d[2 * x] = d[2 * x + 1] = s[x];
}

// Both destination rows of a source row pair of 1620 -> 420:
// d0 = doubled row y; d1 = rows y and y + 1 averaged, the same doubling of
// the averages: D(2x, 2y + 1) = avg(S(x, y), S(x, y + 1)), D(2x + 1, 2y + 1) =
// avg(h0, h1). The last column takes avgDown(S(x, y), S(x, y + 1)) twice.
void doubleBoth(const Kro8u* s0, const Kro8u* s1, Kro8u* d0, Kro8u* d1, int n, int limitL) {
    int x = 0;
    for (; x + 16 <= n - 1; x += 16) {
        const bool up = x < limitL;
        const V a = load16(s0 + x), a1 = load16(s0 + x + 1), b = load16(s1 + x), b1 = load16(s1 + x + 1);
        const V h0 = avg(up, a, a1), h1 = avg(up, b, b1);
        storeZip(d0 + 2 * x, a, h0);
        storeZip(d1 + 2 * x, avg(up, a, b), avg(up, h0, h1));
    }
    for (; x < n - 1; ++x) {
        const bool up = x < limitL;
        const int h0 = avg(up, int(s0[x]), int(s0[x + 1])), h1 = avg(up, int(s1[x]), int(s1[x + 1]));
        d0[2 * x] = s0[x];
        d0[2 * x + 1] = Kro8u(h0);
        d1[2 * x] = Kro8u(avg(up, int(s0[x]), int(s1[x])));
        d1[2 * x + 1] = Kro8u(avg(up, h0, h1));
    }
    d0[2 * x] = d0[2 * x + 1] = s0[x];
    d1[2 * x] = d1[2 * x + 1] = Kro8u(avgDown(s0[x], s1[x]));
}

// Horizontal halving: D(x) = S(2x) for n destination samples.
void dropColumns(const Kro8u* s, Kro8u* d, int n) {
    int x = 0;
    for (; x + 16 <= n; x += 16) store16(d + x, evenBytes(s + 2 * x));
    for (; x < n; ++x) d[x] = s[2 * x];
}

// Halving across, averaging two rows: D(x) = avg(S0(2x), S1(2x)); columns
// below limitL (a multiple of 32) take avgUp.
void dropColumnsAverage(const Kro8u* s0, const Kro8u* s1, Kro8u* d, int n, int limitL) {
    int x = 0;
    for (; x + 16 <= n; x += 16) store16(d + x, avg(x < limitL, evenBytes(s0 + 2 * x), evenBytes(s1 + 2 * x)));
    for (; x < n; ++x) d[x] = Kro8u(avg(x < limitL, int(s0[2 * x]), int(s1[2 * x])));
}

// ------------------------------------------------------------ chroma plane drivers
// W, H: the luma region; each driver derives its chroma plane sizes.
struct Plane1620To420 {
    static bool badSize(kroiSize r) { return r.width < 4 || r.height < 4 || r.width % 4 || r.height % 4; }
    static void chroma(const Kro8u* s, int ss, Kro8u* d, int ds, int W, int H) {
        const int n = chromaWidth(k1620, W), m = chromaHeight(k1620, H), limitL = 16 * ((n - 1) / 16);
        auto srow = [&](int y) { return s + std::ptrdiff_t(y) * ss; };
        auto drow = [&](int y) { return d + std::ptrdiff_t(y) * ds; };
        for (int y = 0; y < m - 1; ++y) doubleBoth(srow(y), srow(y + 1), drow(2 * y), drow(2 * y + 1), n, limitL);
        // last source row: the odd destination row repeats its samples
        doubleColumns(srow(m - 1), drow(2 * m - 2), n, limitL);
        repeatColumns(srow(m - 1), drow(2 * m - 1), n);
    }
};

struct Plane411To420 {
    static bool badSize(kroiSize r) { return Plane1620To420::badSize(r); }
    static void chroma(const Kro8u* s, int ss, Kro8u* d, int ds, int W, int H) {
        const int n = chromaWidth(k411, W), limitL = 16 * ((n - 1) / 16);
        for (int j = 0; j < chromaHeight(k420, H); ++j)
            doubleColumns(s + std::ptrdiff_t(2 * j) * ss, d + std::ptrdiff_t(j) * ds, n, limitL);
    }
};

struct Plane420To1620 {
    static bool badSize(kroiSize r) { return Plane1620To420::badSize(r); }
    static void chroma(const Kro8u* s, int ss, Kro8u* d, int ds, int W, int H) {
        for (int y = 0; y < chromaHeight(k1620, H); ++y)
            dropColumns(s + std::ptrdiff_t(2 * y) * ss, d + std::ptrdiff_t(y) * ds, chromaWidth(k1620, W));
    }
};

struct Plane420To411 {
    static bool badSize(kroiSize r) { return r.width < 4 || r.height < 2 || r.width % 4 || r.height % 2; }
    static void chroma(const Kro8u* s, int ss, Kro8u* d, int ds, int W, int H) {
        const int n = chromaWidth(k411, W), m = chromaHeight(k420, H), limitL = 32 * (n / 32);
        auto srow = [&](int y) { return s + std::ptrdiff_t(y) * ss; };
        auto drow = [&](int y) { return d + std::ptrdiff_t(y) * ds; };
        for (int y = 0; y < m - 1; ++y) {
            dropColumns(srow(y), drow(2 * y), n);
            dropColumnsAverage(srow(y), srow(y + 1), drow(2 * y + 1), n, limitL);
        }
        dropColumns(srow(m - 1), drow(2 * m - 2), n);
        dropColumns(srow(m - 1), drow(2 * m - 1), n);
    }
};

// ------------------------------------------------------------ entry
template <class Op>
KroStatus entry(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3],
                kroiSize roi) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (anyPlaneNull(pSrc, 3) || anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    if (Op::badSize(roi)) return kroStatusBadSize;
    // The step arrays are not among the checked arguments; a null one is
    // still refused rather than read, once the region has passed.
    if (anyNull(srcStep, dstStep)) return kroStatusNullPointer;
    planeCopy(pSrc[0], srcStep[0], pDst[0], dstStep[0], roi.width, roi.height);
    for (int k = 1; k < 3; ++k) Op::chroma(pSrc[k], srcStep[k], pDst[k], dstStep[k], roi.width, roi.height);
    return kroStatusOk;
}

}  // namespace

KroStatus impl_kroiYCbCr1620To420_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3],
                                         const int dstStep[3], kroiSize roiSize) {
    return entry<Plane1620To420>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiYCbCr411To420_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3],
                                        const int dstStep[3], kroiSize roiSize) {
    return entry<Plane411To420>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiYCbCr420To1620_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3],
                                         const int dstStep[3], kroiSize roiSize) {
    return entry<Plane420To1620>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiYCbCr420To411_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3],
                                        const int dstStep[3], kroiSize roiSize) {
    return entry<Plane420To411>(pSrc, srcStep, pDst, dstStep, roiSize);
}
