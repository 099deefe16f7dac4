// Vertical filters with strips: semi-planar 4:2:0 to packed YCbCr 4:2:2 and
// to three planes, with luma smoothed between rows and chroma averaged between
// two source rows. An image may be passed whole or in horizontal strips.
//
// Luma row j from rows a = j - 1, b = j, c = j + 1 (a = b at the image's top,
// c = b at its bottom), by one of four forms:
//   M = avg(avg(c, b), avg(b, a))   A = avg(avg(a, c), b)
//   T = (a + 2b + c) >> 2           G = (a + 2b + c + 4) >> 2 (saturated)
// Chroma from two source rows p, q: CM = avg(p, q), CT = (p + q) >> 1.
// avg rounds up. Each row has a main form over its first `span` columns (W AND
// NOT 31, or W AND NOT 7 in the strip-edge rows of the packed form) and a tail
// form after it; rows with one form throughout run it as the main form over
// the whole width. Main path: 16 or 8 pixels a step in byte lanes; tail:
// scalar.
//
// Strips (`layout`): 1 top, 4 center, 16 bottom; any value with all three bits
// set is the whole image; any other value writes nothing and returns 0. A
// center or bottom strip starts two luma rows and one chroma row above its
// addresses (reading one more luma row above those); a top or center strip
// leaves its last two luma rows and last chroma row to the next strip.
//
// Entry, packed form: null (-8), size at least 2 x 2 (-6). Three-plane form:
// null (-8, with the destination array and step array), size at least 1 x 1
// (-6), plane elements (-8), size at least 2 x 2 (-6). Both use W AND NOT 1
// columns and H AND NOT 1 rows and return 0.
#include <cstring>

#include "frame/region.h"
#include "impl_decls.h"
#include "subsampled/catalogue.h"

using namespace kro;
using namespace kro::sub;

namespace {

// ------------------------------------------------------------ forms
inline int avgU8(int p, int q) { return (p + q + 1) >> 1; }

// Three luma rows (a above, b the row, c below); vector forms on 16 bytes.
struct FormM {
    static int at(int a, int b, int c) { return avgU8(avgU8(c, b), avgU8(b, a)); }
    static V at(V a, V b, V c) { return _mm_avg_epu8(_mm_avg_epu8(c, b), _mm_avg_epu8(b, a)); }
};
struct FormA {
    static int at(int a, int b, int c) { return avgU8(avgU8(a, c), b); }
    static V at(V a, V b, V c) { return _mm_avg_epu8(_mm_avg_epu8(a, c), b); }
};
// (a + 2b + c + bias) >> 2 in 16-bit lanes, packed with saturation
template <int Bias>
inline V weigh121(V a, V b, V c) {
    const V z = _mm_setzero_si128(), k = _mm_set1_epi16(Bias);
    auto half = [&](V x, V y, V w) {
        return _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(x, w), _mm_add_epi16(_mm_slli_epi16(y, 1), k)), 2);
    };
    const V lo = half(_mm_unpacklo_epi8(a, z), _mm_unpacklo_epi8(b, z), _mm_unpacklo_epi8(c, z));
    const V hi = half(_mm_unpackhi_epi8(a, z), _mm_unpackhi_epi8(b, z), _mm_unpackhi_epi8(c, z));
    return _mm_packus_epi16(lo, hi);
}
struct FormT {
    static int at(int a, int b, int c) { return (a + 2 * b + c) >> 2; }
    static V at(V a, V b, V c) { return weigh121<0>(a, b, c); }
};
struct FormG {  // 4, not 2: raises a flat row by one; 256 saturates to 255
    static int at(int a, int b, int c) { return clampU8((a + 2 * b + c + 4) >> 2); }
    static V at(V a, V b, V c) { return weigh121<4>(a, b, c); }
};
// Two chroma rows.
struct FormCM {
    static int at(int p, int q) { return avgU8(p, q); }
    static V at(V p, V q) { return _mm_avg_epu8(p, q); }
};
struct FormCT {  // the rounded-up average less the odd bit of the sum
    static int at(int p, int q) { return (p + q) >> 1; }
    static V at(V p, V q) {
        return _mm_sub_epi8(_mm_avg_epu8(p, q), _mm_and_si128(_mm_xor_si128(p, q), _mm_set1_epi8(1)));
    }
};

// ------------------------------------------------------------ rows
inline V load16(const Kro8u* p) { return _mm_loadu_si128(reinterpret_cast<const V*>(p)); }
inline V load8(const Kro8u* p) { return _mm_loadl_epi64(reinterpret_cast<const V*>(p)); }
inline void store16(Kro8u* p, V v) { _mm_storeu_si128(reinterpret_cast<V*>(p), v); }
inline void store8(Kro8u* p, V v) { _mm_storel_epi64(reinterpret_cast<V*>(p), v); }

// Row kernel: columns below `span` by Main in steps of 16, then 8 (span is a
// multiple of 8); the rest of the `width` columns by Tail, one at a time.
template <class Main, class Tail, class Row>
void runRow(const Row& r, int width, int span) {
    int x = 0;
    for (; x + 16 <= span; x += 16) r.template block<Main, 16>(x);
    for (; x + 8 <= span; x += 8) r.template block<Main, 8>(x);
    for (; x < width; ++x) r.template one<Tail>(x);
}

// A luma plane row.
struct LumaRow {
    const Kro8u *a, *b, *c;
    Kro8u* d;
    template <class F, int N>
    void block(int x) const {
        if constexpr (N == 16)
            store16(d + x, F::at(load16(a + x), load16(b + x), load16(c + x)));
        else
            store8(d + x, F::at(load8(a + x), load8(b + x), load8(c + x)));
    }
    template <class F>
    void one(int x) const { d[x] = Kro8u(F::at(a[x], b[x], c[x])); }
};

// A row of chroma pairs (byte x: Cb for even x, Cr for odd) into two planes.
static_assert(kYCbCr420P2.cb == 0 && kYCbCr420P2.cr == 1, "pairs stand Cb first");
struct PairsToPlanesRow {
    const Kro8u *p, *q;
    Kro8u *first, *second;  // first and second byte of each pair
    template <class F, int N>
    void block(int x) const {
        const V v = N == 16 ? F::at(load16(p + x), load16(q + x)) : F::at(load8(p + x), load8(q + x));
        const V m = _mm_set1_epi16(0xFF);
        const V s = _mm_packus_epi16(_mm_and_si128(v, m), _mm_srli_epi16(v, 8));  // firsts, then seconds
        if constexpr (N == 16) {
            store8(first + x / 2, s);
            store8(second + x / 2, _mm_srli_si128(s, 8));
        } else {
            const int32_t lo = _mm_cvtsi128_si32(s), hi = _mm_cvtsi128_si32(_mm_srli_si128(s, 8));
            std::memcpy(first + x / 2, &lo, 4);
            std::memcpy(second + x / 2, &hi, 4);
        }
    }
    template <class F>
    void one(int x) const {
        Kro8u* d = (x & 1) ? second : first;
        d[x / 2] = Kro8u(F::at(p[x], q[x]));
    }
};

// A packed YCbCr 4:2:2 row: byte 2x is the luma of pixel x, byte 2x + 1 the
// chroma byte x of the pair row (Cb of even pixels, Cr of odd ones).
static_assert(kYCbCr422C2.y0 == 0 && kYCbCr422C2.cb == 1 && kYCbCr422C2.y1 == 2 && kYCbCr422C2.cr == 3,
              "Y0 Cb Y1 Cr");
template <class L, class C>
struct Forms {
    using Luma = L;
    using Chroma = C;
};
struct PackedRow {
    const Kro8u *a, *b, *c, *p, *q;
    Kro8u* d;
    template <class F, int N>
    void block(int x) const {
        if constexpr (N == 16) {
            const V l = F::Luma::at(load16(a + x), load16(b + x), load16(c + x));
            const V ch = F::Chroma::at(load16(p + x), load16(q + x));
            store16(d + 2 * x, _mm_unpacklo_epi8(l, ch));
            store16(d + 2 * x + 16, _mm_unpackhi_epi8(l, ch));
        } else {
            const V l = F::Luma::at(load8(a + x), load8(b + x), load8(c + x));
            const V ch = F::Chroma::at(load8(p + x), load8(q + x));
            store16(d + 2 * x, _mm_unpacklo_epi8(l, ch));
        }
    }
    template <class F>
    void one(int x) const {
        d[2 * x] = Kro8u(F::Luma::at(a[x], b[x], c[x]));
        d[2 * x + 1] = Kro8u(F::Chroma::at(p[x], q[x]));
    }
};

inline const Kro8u* rowOf(const Kro8u* p, int step, int y) { return p + std::ptrdiff_t(y) * step; }
inline Kro8u* rowOf(Kro8u* p, int step, int y) { return p + std::ptrdiff_t(y) * step; }

// ------------------------------------------------------------ strips
enum class Strip { Whole, Top, Center, Bottom, None };
inline Strip stripOf(int layout) {
    if ((layout & (kroiStripTop | kroiStripCenter | kroiStripBottom)) == (kroiStripTop | kroiStripCenter | kroiStripBottom))
        return Strip::Whole;
    switch (layout) {
        case kroiStripTop: return Strip::Top;
        case kroiStripCenter: return Strip::Center;
        case kroiStripBottom: return Strip::Bottom;
        default: return Strip::None;
    }
}
// Rows of a strip of h rows (h even): luma rows written run [lumaFirst,
// lumaLast]; the image's top (a = b) is row 0 in the whole image and the top
// strip, its bottom (c = b) row h - 1 in the whole image and the bottom strip.
struct StripRows {
    int lumaFirst, lumaLast;
    bool top, bottom;
};
inline StripRows stripRows(Strip s, int h) {
    switch (s) {
        case Strip::Whole: return {0, h - 1, true, true};
        case Strip::Top: return {0, h - 3, true, false};
        case Strip::Center: return {-2, h - 3, false, false};
        default: return {-2, h - 1, false, true};
    }
}
// Luma rows a, b, c of row j.
struct Three {
    int a, b, c;
};
inline Three neighbours(const StripRows& s, int j) {
    return {s.top && j == s.lumaFirst ? j : j - 1, j, s.bottom && j == s.lumaLast ? j : j + 1};
}
inline int floorHalf(int j) { return j >= 0 ? j / 2 : -((1 - j) / 2); }

}  // namespace

// ------------------------------------------------------------ 4:2:0 semi-planar to packed 4:2:2
KroStatus impl_kroiYCbCr420ToYCbCr422_Filter_8u_P2C2R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr,
                                                      int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize,
                                                      int layout) {
    if (anyNull(pSrcY, pSrcCbCr, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize, 2, 2)) return kroStatusBadSize;
    const Strip strip = stripOf(layout);
    if (strip == Strip::None) return kroStatusOk;
    const int w = roiSize.width & ~1, h = roiSize.height & ~1, n = h / 2;
    const int s32 = roiSize.width & ~31, s8 = roiSize.width & ~7;
    const StripRows rows = stripRows(strip, h);
    for (int j = rows.lumaFirst; j <= rows.lumaLast; ++j) {
        const Three t = neighbours(rows, j);
        // chroma rows k, k + 1 for rows 2k and 2k + 1; the image's last two
        // rows take n - 2 and n - 1; the whole image keeps them inside it
        int k = floorHalf(j);
        if (rows.bottom && j >= h - 2) k = n - 2;
        int p = k, q = k + 1;
        if (strip == Strip::Whole) {
            p = p < 0 ? 0 : p;
            q = q > n - 1 ? n - 1 : q;
        }
        const PackedRow r{rowOf(pSrcY, srcYStep, t.a),     rowOf(pSrcY, srcYStep, t.b),
                          rowOf(pSrcY, srcYStep, t.c),     rowOf(pSrcCbCr, srcCbCrStep, p),
                          rowOf(pSrcCbCr, srcCbCrStep, q), rowOf(pDst, dstStep, j)};
        using MCM = Forms<FormM, FormCM>;  // main forms
        using ACM = Forms<FormA, FormCM>;
        using GCT = Forms<FormG, FormCT>;  // tail forms: whole image, strips
        using TCT = Forms<FormT, FormCT>;
        switch (strip) {
            case Strip::Whole:
                if (j < 2 || j >= h - 2)
                    runRow<GCT, GCT>(r, w, w);
                else
                    runRow<MCM, GCT>(r, w, s32);
                break;
            case Strip::Top:  // the image's first two rows: main forms over S8
                if (j == 0)
                    runRow<ACM, TCT>(r, w, s8);
                else
                    runRow<MCM, TCT>(r, w, j == 1 ? s8 : s32);
                break;
            case Strip::Center: runRow<MCM, TCT>(r, w, s32); break;
            default:  // the image's last two rows: main forms over S8
                if (j == h - 1)
                    runRow<ACM, TCT>(r, w, s8);
                else
                    runRow<MCM, TCT>(r, w, j == h - 2 ? s8 : s32);
                break;
        }
    }
    return kroStatusOk;
}

// ------------------------------------------------------------ 4:2:0 semi-planar to three planes
KroStatus impl_kroiYCbCr420ToYCrCb420_Filter_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr,
                                                      int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3],
                                                      kroiSize roiSize, int layout) {
    if (anyNull(pSrcY, pSrcCbCr, pDst, dstStep)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    if (badSize(roiSize, 2, 2)) return kroStatusBadSize;
    const Strip strip = stripOf(layout);
    if (strip == Strip::None) return kroStatusOk;
    const int w = roiSize.width & ~1, h = roiSize.height & ~1, n = h / 2;
    const int s32 = roiSize.width & ~31;
    const StripRows rows = stripRows(strip, h);
    // luma: whole image: rows 0 and h - 1 by T, the others M / T; top strip
    // A / T; center M / T; bottom T throughout
    for (int j = rows.lumaFirst; j <= rows.lumaLast; ++j) {
        const Three t = neighbours(rows, j);
        const LumaRow r{rowOf(pSrcY, srcYStep, t.a), rowOf(pSrcY, srcYStep, t.b), rowOf(pSrcY, srcYStep, t.c),
                        rowOf(pDst[0], dstStep[0], j)};
        if (strip == Strip::Bottom || (strip == Strip::Whole && (j == 0 || j == h - 1)))
            runRow<FormT, FormT>(r, w, w);
        else if (strip == Strip::Top)
            runRow<FormA, FormT>(r, w, s32);
        else
            runRow<FormM, FormT>(r, w, s32);
    }
    // chroma row j from source rows j and j + 1; the image's last row from
    // n - 2 and n - 1 by CT, like the bottom strip throughout
    const int first = strip == Strip::Whole || strip == Strip::Top ? 0 : -1;
    const int last = rows.bottom ? n - 1 : n - 2;
    for (int j = first; j <= last; ++j) {
        int p = j, q = j + 1;
        if (rows.bottom && j == n - 1) p = n - 2, q = n - 1;
        if (strip == Strip::Whole && p < 0) p = 0;  // a one-row chroma image
        const PairsToPlanesRow r{rowOf(pSrcCbCr, srcCbCrStep, p), rowOf(pSrcCbCr, srcCbCrStep, q),
                                 rowOf(pDst[1], dstStep[1], j), rowOf(pDst[2], dstStep[2], j)};
        if (strip == Strip::Bottom || (strip == Strip::Whole && j == n - 1))
            runRow<FormCT, FormCT>(r, w, w);
        else
            runRow<FormCM, FormCT>(r, w, s32);
    }
    return kroStatusOk;
}
