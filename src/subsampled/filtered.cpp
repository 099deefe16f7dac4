// Filtered and interlaced chroma: 4:2:2 <-> 4:2:0 field by field, and 4:2:0 to
// 4:2:2 by a four-tap vertical filter.
//
// Interlaced: a frame is two interleaved fields; chroma row c belongs to field
// c AND 1, and each output row is a weighted sum of two rows of its own field.
// Entry: null, plane elements and step arrays (-8), size at least 2 x 4 (-6);
// rows and columns past W AND NOT 1, H AND NOT 3 stay untouched, and such a
// region warns (+35).
// Four-tap: even output rows copy a source chroma row, odd rows interpolate
// from four (edge rows repeated). Entry as above with at least 2 x 8; uses
// W AND NOT 1, H AND NOT 7, and returns 0.
// Row kernels: 8 chroma pairs (16 pixels) a step in 16-bit lanes, scalar tail.
#include <cstring>

#include "frame/region.h"
#include "impl_decls.h"
#include "subsampled/catalogue.h"

using namespace kro;
using namespace kro::sub;

namespace {

// ------------------------------------------------------------ chroma rows in and out
// A row of chroma pairs: Cb i at cb[i * S], Cr i at cr[i * S]. S = 1: two
// planes; S = 2: interleaved pairs (P2); S = 4: a packed 4:2:2 row (C2).
template <int S>
struct ChromaIn {
    const Kro8u* cb;
    const Kro8u* cr;
    int getCb(int i) const { return cb[i * S]; }
    int getCr(int i) const { return cr[i * S]; }
    // pairs i .. i + 7 in 16-bit lanes; reads only their bytes
    void load8(int i, V& vcb, V& vcr) const {
        if constexpr (S == 1) {
            vcb = _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const V*>(cb + i)));
            vcr = _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const V*>(cr + i)));
        } else if constexpr (S == 2) {  // cr = cb + 1 or cb - 1
            const Kro8u* base = cb < cr ? cb : cr;
            const V w = _mm_loadu_si128(reinterpret_cast<const V*>(base + 2 * i));
            const V lo = _mm_and_si128(w, _mm_set1_epi16(0xFF)), hi = _mm_srli_epi16(w, 8);
            vcb = cb < cr ? lo : hi;
            vcr = cb < cr ? hi : lo;
        } else {  // groups of four bytes, Cb and Cr at two of them
            const Kro8u* base = cb < cr ? cb : cr;
            const V w0 = _mm_loadu_si128(reinterpret_cast<const V*>(base + 4 * i));
            const V w1 = _mm_loadu_si128(reinterpret_cast<const V*>(base + 4 * i + 16));
            const V m = _mm_set1_epi32(0xFF);
            const V first = _mm_packs_epi32(_mm_and_si128(w0, m), _mm_and_si128(w1, m));
            const V second = _mm_packs_epi32(_mm_and_si128(_mm_srli_epi32(w0, 16), m),
                                             _mm_and_si128(_mm_srli_epi32(w1, 16), m));
            vcb = cb < cr ? first : second;
            vcr = cb < cr ? second : first;
        }
    }
};
static_assert(kCbYCr422C2.cr - kCbYCr422C2.cb == 2, "packed chroma two bytes apart");

// Chroma planes out.
struct PlanesOut {
    Kro8u* cb;
    Kro8u* cr;
    void put(int i, int vcb, int vcr) const {
        cb[i] = Kro8u(vcb);
        cr[i] = Kro8u(vcr);
    }
    void store8(int i, V vcb, V vcr) const {  // 16-bit lanes 0..255
        const V b = _mm_packus_epi16(vcb, vcr);
        _mm_storel_epi64(reinterpret_cast<V*>(cb + i), b);
        _mm_storel_epi64(reinterpret_cast<V*>(cr + i), _mm_srli_si128(b, 8));
    }
};
// A packed CbYCr 4:2:2 row, luma taken from a luma row.
struct CbYCrOut {
    Kro8u* row;
    const Kro8u* y;
    void put(int i, int vcb, int vcr) const {
        Kro8u* d = row + 4 * i;
        d[kCbYCr422C2.cb] = Kro8u(vcb);
        d[kCbYCr422C2.y0] = y[2 * i];
        d[kCbYCr422C2.cr] = Kro8u(vcr);
        d[kCbYCr422C2.y1] = y[2 * i + 1];
    }
    void store8(int i, V vcb, V vcr) const {
        const V b = _mm_packus_epi16(vcb, vcr);
        const V c = _mm_unpacklo_epi8(b, _mm_srli_si128(b, 8));  // Cb0 Cr0 Cb1 Cr1 ...
        const V l = _mm_loadu_si128(reinterpret_cast<const V*>(y + 2 * i));
        _mm_storeu_si128(reinterpret_cast<V*>(row + 4 * i), _mm_unpacklo_epi8(c, l));  // Cb Y Cr Y
        _mm_storeu_si128(reinterpret_cast<V*>(row + 4 * i + 16), _mm_unpackhi_epi8(c, l));
    }
};
static_assert(kCbYCr422C2.cb == 0 && kCbYCr422C2.y0 == 1 && kCbYCr422C2.cr == 2 && kCbYCr422C2.y1 == 3,
              "CbYCr order");

// ------------------------------------------------------------ forms
// Two rows weighted: (p a + q b + half) >> shift (half = 0 for shift 0).
struct Weights {
    int p, q, shift;
};
inline int weighted(int a, int b, Weights w) { return (w.p * a + w.q * b + ((1 << w.shift) >> 1)) >> w.shift; }
inline V weighted(V a, V b, Weights w) {
    const V s = _mm_add_epi16(_mm_add_epi16(_mm_mullo_epi16(a, _mm_set1_epi16(short(w.p))),
                                            _mm_mullo_epi16(b, _mm_set1_epi16(short(w.q)))),
                              _mm_set1_epi16(short((1 << w.shift) >> 1)));
    return _mm_srli_epi16(s, w.shift);
}
// Four taps around the gap between rows s0 and s1:
// clampU8((9 s0 + 9 s1 - sm1 - s2 + 8) >> 4); the 16-bit sum is exact.
inline int fourTap(int sm1, int s0, int s1, int s2) { return clampU8((9 * s0 + 9 * s1 - sm1 - s2 + 8) >> 4); }
inline V fourTap(V sm1, V s0, V s1, V s2) {  // lanes stay signed 16-bit; packing clamps
    const V nine = _mm_set1_epi16(9);
    const V s = _mm_sub_epi16(_mm_add_epi16(_mm_mullo_epi16(_mm_add_epi16(s0, s1), nine), _mm_set1_epi16(8)),
                              _mm_add_epi16(sm1, s2));
    return _mm_max_epi16(_mm_min_epi16(_mm_srai_epi16(s, 4), _mm_set1_epi16(255)), _mm_setzero_si128());
}

// ------------------------------------------------------------ row kernels
template <int S, class Out>
void weightedRow(ChromaIn<S> a, ChromaIn<S> b, const Out& d, int n, Weights w) {
    int i = 0;
    for (; i + 8 <= n; i += 8) {
        V acb, acr, bcb, bcr;
        a.load8(i, acb, acr);
        b.load8(i, bcb, bcr);
        d.store8(i, weighted(acb, bcb, w), weighted(acr, bcr, w));
    }
    for (; i < n; ++i) d.put(i, weighted(a.getCb(i), b.getCb(i), w), weighted(a.getCr(i), b.getCr(i), w));
}

template <int S, class Out>
void copyRow(ChromaIn<S> a, const Out& d, int n) {
    weightedRow(a, a, d, n, Weights{1, 0, 0});
}

template <int S, class Out>
void fourTapRow(ChromaIn<S> sm1, ChromaIn<S> s0, ChromaIn<S> s1, ChromaIn<S> s2, const Out& d, int n) {
    int i = 0;
    for (; i + 8 <= n; i += 8) {
        V c[4], r[4];
        sm1.load8(i, c[0], r[0]);
        s0.load8(i, c[1], r[1]);
        s1.load8(i, c[2], r[2]);
        s2.load8(i, c[3], r[3]);
        d.store8(i, fourTap(c[0], c[1], c[2], c[3]), fourTap(r[0], r[1], r[2], r[3]));
    }
    for (; i < n; ++i)
        d.put(i, fourTap(sm1.getCb(i), s0.getCb(i), s1.getCb(i), s2.getCb(i)),
              fourTap(sm1.getCr(i), s0.getCr(i), s1.getCr(i), s2.getCr(i)));
}

// Luma out of a packed CbYCr row: n pixels.
void lumaOfPacked(const Kro8u* s, Kro8u* d, int n) {
    int x = 0;
    for (; x + 16 <= n; x += 16) {
        const V a = _mm_srli_epi16(_mm_loadu_si128(reinterpret_cast<const V*>(s + 2 * x)), 8);
        const V b = _mm_srli_epi16(_mm_loadu_si128(reinterpret_cast<const V*>(s + 2 * x + 16)), 8);
        _mm_storeu_si128(reinterpret_cast<V*>(d + x), _mm_packus_epi16(a, b));
    }
    for (; x < n; ++x) d[x] = s[2 * x + kCbYCr422C2.y0];
}

// Rows of `bytes` bytes copied one after the other (a local plain copy).
void planeCopy(const Kro8u* s, int srcStep, Kro8u* d, int dstStep, int bytes, int rows) {
    for (int y = 0; y < rows; ++y)
        std::memcpy(d + std::ptrdiff_t(y) * dstStep, s + std::ptrdiff_t(y) * srcStep, size_t(bytes));
}

inline const Kro8u* rowOf(const Kro8u* p, int step, int y) { return p + std::ptrdiff_t(y) * step; }
inline Kro8u* rowOf(Kro8u* p, int step, int y) { return p + std::ptrdiff_t(y) * step; }

// ------------------------------------------------------------ chroma sides of a region
// Source chroma rows of each layout, by chroma row index.
struct SrcPlanes {  // P3: Cb and Cr planes (cbPlane, crPlane elements)
    const Kro8u* cb;
    const Kro8u* cr;
    int cbStep, crStep;
    ChromaIn<1> row(int c) const { return {rowOf(cb, cbStep, c), rowOf(cr, crStep, c)}; }
};
struct SrcPairs {  // P2: interleaved Cb Cr pairs
    const Kro8u* p;
    int step;
    ChromaIn<2> row(int c) const {
        return {rowOf(p, step, c) + kYCbCr420P2.cb, rowOf(p, step, c) + kYCbCr420P2.cr};
    }
};
struct SrcPacked {  // C2 CbYCr: one chroma row per pixel row
    const Kro8u* p;
    int step;
    ChromaIn<4> row(int c) const {
        return {rowOf(p, step, c) + kCbYCr422C2.cb, rowOf(p, step, c) + kCbYCr422C2.cr};
    }
};
struct DstPlanes {
    Kro8u* cb;
    Kro8u* cr;
    int cbStep, crStep;
    PlanesOut row(int c) const { return {rowOf(cb, cbStep, c), rowOf(cr, crStep, c)}; }
};
struct DstPacked {  // CbYCr rows with the luma plane's rows
    Kro8u* p;
    int step;
    const Kro8u* y;
    int yStep;
    CbYCrOut row(int c) const { return {rowOf(p, step, c), rowOf(y, yStep, c)}; }
};

// ------------------------------------------------------------ chroma drivers
// Interlaced 4:2:2 -> 4:2:0: rows = H AND NOT 3 source rows, n pairs a row.
template <class Src, class Dst>
void interlaceDown(const Src& s, const Dst& d, int rows, int n) {
    const Weights w{3, 1, 2};
    for (int j = 0; j < rows / 2; ++j) {
        const int m = j / 2;
        if (j % 2 == 0)
            weightedRow(s.row(4 * m), s.row(4 * m + 2), d.row(j), n, w);      // 3 S(4m) + S(4m + 2)
        else
            weightedRow(s.row(4 * m + 3), s.row(4 * m + 1), d.row(j), n, w);  // S(4m + 1) + 3 S(4m + 3)
    }
}

// Interlaced 4:2:0 -> 4:2:2: rows = H AND NOT 3 destination rows.
template <class Src, class Dst>
void interlaceUp(const Src& s, const Dst& d, int rows, int n) {
    const int srcRows = rows / 2;
    for (int r = 0; r < rows; ++r) {
        if (r < 2) {
            copyRow(s.row(r), d.row(r), n);
        } else if (r >= rows - 2) {
            copyRow(s.row(srcRows - 2 + (r - (rows - 2))), d.row(r), n);
        } else {
            const int k = (r - 2) / 4;
            switch ((r - 2) % 4) {
                case 0: weightedRow(s.row(2 * k), s.row(2 * k + 2), d.row(r), n, Weights{5, 3, 3}); break;
                case 1: weightedRow(s.row(2 * k + 1), s.row(2 * k + 3), d.row(r), n, Weights{7, 1, 3}); break;
                case 2: weightedRow(s.row(2 * k), s.row(2 * k + 2), d.row(r), n, Weights{1, 7, 3}); break;
                default: weightedRow(s.row(2 * k + 1), s.row(2 * k + 3), d.row(r), n, Weights{3, 5, 3}); break;
            }
        }
    }
}

// Four-tap 4:2:0 -> 4:2:2: rows = H AND NOT 7 destination rows.
template <class Src, class Dst>
void fourTapUp(const Src& s, const Dst& d, int rows, int n) {
    const int srcRows = rows / 2;
    auto at = [&](int k) { return s.row(k < 0 ? 0 : (k > srcRows - 1 ? srcRows - 1 : k)); };
    for (int k = 0; k < srcRows; ++k) {
        copyRow(s.row(k), d.row(2 * k), n);
        fourTapRow(at(k - 1), at(k), at(k + 1), at(k + 2), d.row(2 * k + 1), n);
    }
}

// ------------------------------------------------------------ entry checks
inline bool nullPlanes(const Kro8u* const p[3]) { return p == nullptr || anyPlaneNull(p, 3); }
inline bool nullPlanes(Kro8u* const p[3]) { return p == nullptr || anyPlaneNull(p, 3); }
inline KroStatus interlaceStatus(kroiSize r) {
    return (r.width % 2 || r.height % 4) ? kroStatusOddSize : kroStatusOk;
}

}  // namespace

// ------------------------------------------------------------ interlaced
KroStatus impl_kroiCbYCr422ToYCbCr420_Interlace_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                                         const int dstStep[3], kroiSize roiSize) {
    if (pSrc == nullptr || nullPlanes(pDst) || dstStep == nullptr) return kroStatusNullPointer;
    if (badSize(roiSize, 2, 4)) return kroStatusBadSize;
    const int w = roiSize.width & ~1, h = roiSize.height & ~3;
    for (int y = 0; y < h; ++y) lumaOfPacked(rowOf(pSrc, srcStep, y), rowOf(pDst[0], dstStep[0], y), w);
    interlaceDown(SrcPacked{pSrc, srcStep}, DstPlanes{pDst[1], pDst[2], dstStep[1], dstStep[2]}, h, w / 2);
    return interlaceStatus(roiSize);
}

KroStatus impl_kroiYCbCr422To420_Interlace_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3],
                                                  Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    if (nullPlanes(pSrc) || nullPlanes(pDst) || anyNull(srcStep, dstStep)) return kroStatusNullPointer;
    if (badSize(roiSize, 2, 4)) return kroStatusBadSize;
    const int w = roiSize.width & ~1, h = roiSize.height & ~3;
    planeCopy(pSrc[0], srcStep[0], pDst[0], dstStep[0], w, h);
    interlaceDown(SrcPlanes{pSrc[1], pSrc[2], srcStep[1], srcStep[2]},
                  DstPlanes{pDst[1], pDst[2], dstStep[1], dstStep[2]}, h, w / 2);
    return interlaceStatus(roiSize);
}

KroStatus impl_kroiYCbCr420To422_Interlace_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3],
                                                  Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    if (nullPlanes(pSrc) || nullPlanes(pDst) || anyNull(srcStep, dstStep)) return kroStatusNullPointer;
    if (badSize(roiSize, 2, 4)) return kroStatusBadSize;
    const int w = roiSize.width & ~1, h = roiSize.height & ~3;
    planeCopy(pSrc[0], srcStep[0], pDst[0], dstStep[0], w, h);
    interlaceUp(SrcPlanes{pSrc[1], pSrc[2], srcStep[1], srcStep[2]},
                DstPlanes{pDst[1], pDst[2], dstStep[1], dstStep[2]}, h, w / 2);
    return interlaceStatus(roiSize);
}

KroStatus impl_kroiYCbCr420ToCbYCr422_Interlace_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3],
                                                         Kro8u* pDst, int dstStep, kroiSize roiSize) {
    if (nullPlanes(pSrc) || pDst == nullptr || srcStep == nullptr) return kroStatusNullPointer;
    if (badSize(roiSize, 2, 4)) return kroStatusBadSize;
    const int w = roiSize.width & ~1, h = roiSize.height & ~3;
    interlaceUp(SrcPlanes{pSrc[1], pSrc[2], srcStep[1], srcStep[2]}, DstPacked{pDst, dstStep, pSrc[0], srcStep[0]},
                h, w / 2);
    return interlaceStatus(roiSize);
}

// ------------------------------------------------------------ four-tap
KroStatus impl_kroiYCbCr420ToYCbCr422_Filter_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3],
                                                    Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    if (nullPlanes(pSrc) || nullPlanes(pDst) || anyNull(srcStep, dstStep)) return kroStatusNullPointer;
    if (badSize(roiSize, 2, 8)) return kroStatusBadSize;
    const int w = roiSize.width & ~1, h = roiSize.height & ~7;
    planeCopy(pSrc[0], srcStep[0], pDst[0], dstStep[0], w, h);
    fourTapUp(SrcPlanes{pSrc[1], pSrc[2], srcStep[1], srcStep[2]}, DstPlanes{pDst[1], pDst[2], dstStep[1], dstStep[2]},
              h, w / 2);
    return kroStatusOk;
}

KroStatus impl_kroiYCrCb420ToYCbCr422_Filter_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3],
                                                    Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize) {
    if (nullPlanes(pSrc) || nullPlanes(pDst) || anyNull(srcStep, dstStep)) return kroStatusNullPointer;
    if (badSize(roiSize, 2, 8)) return kroStatusBadSize;
    const int w = roiSize.width & ~1, h = roiSize.height & ~7;
    planeCopy(pSrc[0], srcStep[0], pDst[0], dstStep[0], w, h);
    // source element 1 holds Cr, element 2 Cb
    fourTapUp(SrcPlanes{pSrc[kYCrCb420P3.cbPlane], pSrc[kYCrCb420P3.crPlane], srcStep[kYCrCb420P3.cbPlane],
                        srcStep[kYCrCb420P3.crPlane]},
              DstPlanes{pDst[1], pDst[2], dstStep[1], dstStep[2]}, h, w / 2);
    return kroStatusOk;
}

KroStatus impl_kroiYCbCr420ToYCbCr422_Filter_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr,
                                                      int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3],
                                                      kroiSize roiSize) {
    if (anyNull(pSrcY, pSrcCbCr) || nullPlanes(pDst) || dstStep == nullptr) return kroStatusNullPointer;
    if (badSize(roiSize, 2, 8)) return kroStatusBadSize;
    const int w = roiSize.width & ~1, h = roiSize.height & ~7;
    planeCopy(pSrcY, srcYStep, pDst[0], dstStep[0], w, h);
    fourTapUp(SrcPairs{pSrcCbCr, srcCbCrStep}, DstPlanes{pDst[1], pDst[2], dstStep[1], dstStep[2]}, h, w / 2);
    return kroStatusOk;
}

// ------------------------------------------------------------ 4:2:0 to BGRA with horizontal chroma interpolation
// Rows 2r and 2r + 1 take chroma row r as it stands; the even pixel 2i takes
// chroma sample i, the odd pixel the average (rounding up) of samples i and
// i + 1, i + 1 limited to the row's last sample. y = Y - 16, u = Cb - 128,
// v = Cr - 128. Columns below (W - 1) AND NOT 15 take the main form, in 16-bit
// lanes without a rounding constant; later columns the tail form, in 12
// fraction bits.
namespace {

// main form: 16-bit lanes, samples shifted left by 7, products floored, >> 3
inline void bgrMain(V y, V u, V v, V& r, V& g, V& b) {
    y = _mm_slli_epi16(_mm_sub_epi16(y, _mm_set1_epi16(16)), 7);
    u = _mm_slli_epi16(_mm_sub_epi16(u, _mm_set1_epi16(128)), 7);
    v = _mm_slli_epi16(_mm_sub_epi16(v, _mm_set1_epi16(128)), 7);
    const V t = mulHighS16(y, splat16(4769));
    r = _mm_srai_epi16(_mm_add_epi16(t, mulHighS16(v, splat16(6537))), 3);
    g = _mm_srai_epi16(_mm_sub_epi16(t, _mm_add_epi16(mulHighS16(u, splat16(1605)), mulHighS16(v, splat16(3330)))), 3);
    b = _mm_srai_epi16(_mm_add_epi16(t, mulHighS16(u, splat16(8263))), 3);
}
// tail form: plain samples, 12 fraction bits
inline void bgrTail(int Y, int Cb, int Cr, int& r, int& g, int& b) {
    const int y = Y - 16, u = Cb - 128, v = Cr - 128;
    r = clampU8((4769 * y + 6537 * v) >> 12);
    g = clampU8((4769 * y - 1605 * u - 3330 * v) >> 12);
    b = clampU8((4769 * y + 8263 * u) >> 12);
}

// Per-pixel chroma of 16 pixels from samples i .. i + 8 (the ninth limited to
// the last of n): c0, avg(c0, c1), c1, avg(c1, c2) ...
inline V chroma16(const Kro8u* c, int i, int n) {
    const V here = _mm_loadl_epi64(reinterpret_cast<const V*>(c + i));
    V next;
    if (i + 8 <= n - 1) {
        next = _mm_loadl_epi64(reinterpret_cast<const V*>(c + i + 1));
    } else {
        alignas(16) Kro8u t[16] = {};
        for (int k = 0; k < 8; ++k) t[k] = c[i + k + 1 < n ? i + k + 1 : n - 1];
        next = _mm_load_si128(reinterpret_cast<const V*>(t));
    }
    return _mm_unpacklo_epi8(here, _mm_avg_epu8(here, next));
}

void bgrFilterRow(const Kro8u* y, const Kro8u* cb, const Kro8u* cr, Kro8u* d, int width, int span, Kro8u aval) {
    const int n = width / 2, used = 2 * n;
    const V a = _mm_set1_epi8(char(aval));
    int x = 0;
    for (; x + 16 <= span; x += 16) {
        const V yy = _mm_loadu_si128(reinterpret_cast<const V*>(y + x));
        const V uu = chroma16(cb, x / 2, n), vv = chroma16(cr, x / 2, n);
        V r[2], g[2], b[2];
        bgrMain(widenLo(yy), widenLo(uu), widenLo(vv), r[0], g[0], b[0]);
        bgrMain(widenHi(yy), widenHi(uu), widenHi(vv), r[1], g[1], b[1]);
        const V B = clampU8(b[0], b[1]), G = clampU8(g[0], g[1]), R = clampU8(r[0], r[1]);
        const V bgLo = _mm_unpacklo_epi8(B, G), bgHi = _mm_unpackhi_epi8(B, G);
        const V raLo = _mm_unpacklo_epi8(R, a), raHi = _mm_unpackhi_epi8(R, a);
        V* o = reinterpret_cast<V*>(d + 4 * x);
        _mm_storeu_si128(o, _mm_unpacklo_epi16(bgLo, raLo));
        _mm_storeu_si128(o + 1, _mm_unpackhi_epi16(bgLo, raLo));
        _mm_storeu_si128(o + 2, _mm_unpacklo_epi16(bgHi, raHi));
        _mm_storeu_si128(o + 3, _mm_unpackhi_epi16(bgHi, raHi));
    }
    for (; x < used; ++x) {
        const int i = x / 2, j = (x & 1) ? (i + 1 < n ? i + 1 : n - 1) : i;
        int r, g, b;
        bgrTail(y[x], (cb[i] + cb[j] + 1) >> 1, (cr[i] + cr[j] + 1) >> 1, r, g, b);
        d[4 * x] = Kro8u(b);
        d[4 * x + 1] = Kro8u(g);
        d[4 * x + 2] = Kro8u(r);
        d[4 * x + 3] = aval;
    }
}

}  // namespace

KroStatus impl_kroiYCrCb420ToBGR_Filter_8u_P3C4R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst,
                                                 int dstStep, kroiSize roiSize, Kro8u aval) {
    if (anyNull(pSrc, srcStep, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (anyPlaneNull(pSrc, 3)) return kroStatusNullPointer;
    const int span = (roiSize.width - 1) & ~15;
    // element 1 is the Cr plane, element 2 the Cb plane
    const int cbP = kYCrCb420P3.cbPlane, crP = kYCrCb420P3.crPlane;
    for (int r = 0; r < roiSize.height / 2; ++r)
        for (int k = 0; k < 2; ++k)
            bgrFilterRow(rowOf(pSrc[0], srcStep[0], 2 * r + k), rowOf(pSrc[cbP], srcStep[cbP], r),
                         rowOf(pSrc[crP], srcStep[crP], r), rowOf(pDst, dstStep, 2 * r + k), roiSize.width, span,
                         aval);
    return oddStatus(k420, roiSize);
}
