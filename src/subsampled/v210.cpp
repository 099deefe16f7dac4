// 10-bit packed 4:2:2 video (v210) to 5-6-5 colour samples and to 16-bit grey,
// and 8-bit RGB through the forward transfer curve to packed CbYCr 4:2:2.
//
// v210 decoders: steps count 32-bit words (source) and 16-bit samples
// (destination). Entry: null (-8), then width, height and both steps at least
// 1 together (-6). Row kernel: whole groups of 6 pixels, fields extracted with
// shifts and byte shuffles and converted four pixels at a time in float lanes;
// a partial last group of 1 to 5 pixels in straight-line scalar code that
// reads only the words its pixels reach. Same arithmetic in both.
//
// Gamma encoder: steps in bytes. Entry: null (-8), size (-6). Row kernel: four
// pixels a step in 32-bit lanes, then a pair, then an odd last column; the odd
// chroma term of each pair is carried to the next, so the grouping never shows.
#include <cstring>

#include "frame/region.h"
#include "impl_decls.h"
#include "subsampled/catalogue.h"
#include "subsampled/v210_forms.h"

using namespace kro;
using namespace kro::sub;
using namespace kro::v210;

namespace {

// ------------------------------------------------------------ v210 group fields, SSE
// One group's fields in 16-bit lanes 0..5: luma of each pixel, and the Cb and
// Cr of each pixel's pair. Fields f0, f1, f2 of the four words (bits 0, 10, 20)
// are packed to [f0 w0..w3 | f1 w0..w3] and [f2 w0..w3 | ...], then shuffled.
struct GroupLanes {
    V y, cb, cr;
};
inline GroupLanes groupFields(const Kro32u* s) {
    const V w = _mm_loadu_si128(reinterpret_cast<const V*>(s));
    const V m = _mm_set1_epi32(0x3FF);
    const V f01 = _mm_packs_epi32(_mm_and_si128(w, m), _mm_and_si128(_mm_srli_epi32(w, 10), m));
    const V f2 = _mm_packs_epi32(_mm_and_si128(_mm_srli_epi32(w, 20), m), _mm_setzero_si128());
    // word k of f01 (bytes 2k, 2k+1): f0 of word k for k < 4, f1 of word k - 4 above
    GroupLanes g;
    g.y = _mm_or_si128(_mm_shuffle_epi8(f01, _mm_setr_epi8(8, 9, 2, 3, -1, -1, 12, 13, 6, 7, -1, -1, -1, -1, -1, -1)),
                       _mm_shuffle_epi8(f2, _mm_setr_epi8(-1, -1, -1, -1, 2, 3, -1, -1, -1, -1, 6, 7, -1, -1, -1, -1)));
    g.cb = _mm_or_si128(_mm_shuffle_epi8(f01, _mm_setr_epi8(0, 1, 0, 1, 10, 11, 10, 11, -1, -1, -1, -1, -1, -1, -1, -1)),
                        _mm_shuffle_epi8(f2, _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, 4, 5, 4, 5, -1, -1, -1, -1)));
    g.cr = _mm_or_si128(_mm_shuffle_epi8(f01, _mm_setr_epi8(-1, -1, -1, -1, 4, 5, 4, 5, 14, 15, 14, 15, -1, -1, -1, -1)),
                        _mm_shuffle_epi8(f2, _mm_setr_epi8(0, 1, 0, 1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1)));
    return g;
}
// Store the first six 16-bit lanes.
inline void store6(Kro16u* d, V v) {
    _mm_storel_epi64(reinterpret_cast<V*>(d), v);
    const int32_t hi = _mm_extract_epi32(v, 2);
    std::memcpy(d + 4, &hi, 4);
}

// A partial group: the words its first `pixels` pixels reach, the rest zero.
inline void partialGroup(const Kro32u* s, int pixels, bool chroma, Kro32u (&w)[4]) {
    w[0] = w[1] = w[2] = w[3] = 0;
    // words reached by 0..5 pixels, luma only and with chroma, fixed at compile time
    static constexpr int kWords[2][6] = {
        {v210WordsFor(0, false), v210WordsFor(1, false), v210WordsFor(2, false), v210WordsFor(3, false),
         v210WordsFor(4, false), v210WordsFor(5, false)},
        {v210WordsFor(0, true), v210WordsFor(1, true), v210WordsFor(2, true), v210WordsFor(3, true),
         v210WordsFor(4, true), v210WordsFor(5, true)}};
    const int n = kWords[chroma ? 1 : 0][pixels];
    std::memcpy(w, s, sizeof(Kro32u) * static_cast<size_t>(n));
}

// ------------------------------------------------------------ v210 row kernels
// Colour: Order::pack(r, g, b) places the fields of the operation's order.
struct OrderRGB {  // B high, R low
    static int pack(int r, int g, int b) { return pack565(b, g, r); }
    static V pack(V r, V g, V b) { return pack565(b, g, r); }
};
struct OrderBGR {  // R high, B low
    static int pack(int r, int g, int b) { return pack565(r, g, b); }
    static V pack(V r, V g, V b) { return pack565(r, g, b); }
};

template <class Order>
struct ColourRow {
    static void row(const Kro32u* s, Kro16u* d, int width) {
        int x = 0;
        for (; x + kV210GroupPixels <= width; x += kV210GroupPixels, s += kV210GroupWords, d += kV210GroupPixels) {
            const GroupLanes g = groupFields(s);
            V r, gg, b;
            colour709(_mm_cvtepu16_epi32(g.y), _mm_cvtepu16_epi32(g.cb), _mm_cvtepu16_epi32(g.cr), r, gg, b);
            const V lo = Order::pack(r, gg, b);
            colour709(_mm_cvtepu16_epi32(_mm_srli_si128(g.y, 8)), _mm_cvtepu16_epi32(_mm_srli_si128(g.cb, 8)),
                      _mm_cvtepu16_epi32(_mm_srli_si128(g.cr, 8)), r, gg, b);
            store6(d, _mm_packus_epi32(lo, Order::pack(r, gg, b)));
        }
        const int rest = width - x;
        if (rest == 0) return;
        Kro32u w[4];
        partialGroup(s, rest, true, w);
        for (int p = 0; p < rest; ++p) {
            int r, g, b;
            colour709(int(v210Field(w, kV210Y[p])), int(v210Field(w, kV210Cb[p / 2])), int(v210Field(w, kV210Cr[p / 2])),
                      r, g, b);
            d[p] = Kro16u(Order::pack(r, g, b));
        }
    }
};

struct GrayRow {
    static void row(const Kro32u* s, Kro16u* d, int width) {
        int x = 0;
        for (; x + kV210GroupPixels <= width; x += kV210GroupPixels, s += kV210GroupWords, d += kV210GroupPixels)
            store6(d, groupFields(s).y);
        const int rest = width - x;
        if (rest == 0) return;
        Kro32u w[4];
        partialGroup(s, rest, false, w);
        for (int p = 0; p < rest; ++p) d[p] = Kro16u(v210Field(w, kV210Y[p]));
    }
};

// Region driver and entry: steps in words and samples.
template <class Row>
KroStatus v210Entry(const Kro32u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roi) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi) || srcStep < 1 || dstStep < 1) return kroStatusBadSize;
    for (int y = 0; y < roi.height; ++y)
        Row::row(pSrc + std::ptrdiff_t(y) * srcStep, pDst + std::ptrdiff_t(y) * dstStep, roi.width);
    return kroStatusOk;
}

// ------------------------------------------------------------ gamma-encoded CbYCr 4:2:2
static_assert(kCbYCr422C2.cb == 0 && kCbYCr422C2.y0 == 1 && kCbYCr422C2.cr == 2 && kCbYCr422C2.y1 == 3,
              "the four-pixel step stores Cb Y Cr Y");

struct GammaRow {
    // Four pixels (two pairs) in 32-bit lanes; carry[k]: the odd chroma term
    // of the previous pair, Cb then Cr.
    static void step4(const Kro8u* s, Kro8u* d, int (&carry)[2]) {
        const auto& T = kGamma.t;
        const I32x4 r(_mm_setr_epi32(T[s[0]], T[s[3]], T[s[6]], T[s[9]]));
        const I32x4 g(_mm_setr_epi32(T[s[1]], T[s[4]], T[s[7]], T[s[10]]));
        const I32x4 b(_mm_setr_epi32(T[s[2]], T[s[5]], T[s[8]], T[s[11]]));
        const I32x4 y = luma(r, g, b);
        V c[2];
        const V terms[2] = {_mm_blend_epi16(cbEven(r, g, b).v, cbOdd(r, g, b).v, 0xCC),
                            _mm_blend_epi16(crEven(r, g, b).v, crOdd(r, g, b).v, 0xCC)};
        for (int k = 0; k < 2; ++k) {
            const V t = terms[k];                                  // e0 o1 e2 o3
            const V o = _mm_shuffle_epi32(t, _MM_SHUFFLE(3, 3, 1, 1));  // o1 o1 o3 o3
            const V before = _mm_blend_epi16(_mm_set1_epi32(carry[k]), _mm_shuffle_epi32(t, _MM_SHUFFLE(1, 1, 1, 1)),
                                             0xF0);                 // carry carry o1 o1
            c[k] = pairChroma(I32x4(t), I32x4(o), I32x4(before)).v;  // pairs in lanes 0 and 2
            carry[k] = _mm_extract_epi32(t, 3);
        }
        const V cbcr = _mm_blend_epi16(c[0], _mm_slli_si128(c[1], 4), 0xCC);  // Cb0 Cr0 Cb1 Cr1
        const V w16 = _mm_packs_epi32(_mm_unpacklo_epi32(cbcr, y.v), _mm_unpackhi_epi32(cbcr, y.v));
        _mm_storel_epi64(reinterpret_cast<V*>(d), _mm_packus_epi16(w16, w16));
    }
    static void stepPair(const Kro8u* s, Kro8u* d, int (&carry)[2]) {
        const auto& T = kGamma.t;
        const int r0 = T[s[0]], g0 = T[s[1]], b0 = T[s[2]], r1 = T[s[3]], g1 = T[s[4]], b1 = T[s[5]];
        const int cbO = cbOdd(r1, g1, b1), crO = crOdd(r1, g1, b1);
        d[kCbYCr422C2.cb] = Kro8u(pairChroma(cbEven(r0, g0, b0), cbO, carry[0]));
        d[kCbYCr422C2.cr] = Kro8u(pairChroma(crEven(r0, g0, b0), crO, carry[1]));
        d[kCbYCr422C2.y0] = Kro8u(luma(r0, g0, b0));
        d[kCbYCr422C2.y1] = Kro8u(luma(r1, g1, b1));
        carry[0] = cbO;
        carry[1] = crO;
    }
    static void stepLast(const Kro8u* s, Kro8u* d) {
        const auto& T = kGamma.t;
        const int r = T[s[0]], g = T[s[1]], b = T[s[2]];
        d[kCbYCr422C2.cb] = Kro8u(cbLast(r, g, b));
        d[kCbYCr422C2.y0] = Kro8u(lumaLast(r, g, b));
    }
    static void row(const Kro8u* s, Kro8u* d, int width) {
        int carry[2] = {0, 0};  // o(-1) = 0: nothing before the row's first pair
        int x = 0;
        for (; x + 4 <= width; x += 4) step4(s + 3 * x, d + 2 * x, carry);
        for (; x + 2 <= width; x += 2) stepPair(s + 3 * x, d + 2 * x, carry);
        if (x < width) stepLast(s + 3 * x, d + 2 * x);
    }
};

}  // namespace

KroStatus impl_kroiYUV422v210ToRGB_709HDTV_32u16u_C3(const Kro32u* pSrc, int srcStep, Kro16u* pDst, int dstStep,
                                                     kroiSize roiSize) {
    return v210Entry<ColourRow<OrderRGB>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiYUV422v210ToBGR_709HDTV_32u16u_C3(const Kro32u* pSrc, int srcStep, Kro16u* pDst, int dstStep,
                                                     kroiSize roiSize) {
    return v210Entry<ColourRow<OrderBGR>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiYUV422v210ToGray_709HDTV_32u16u_C3C1(const Kro32u* pSrc, int srcStep, Kro16u* pDst, int dstStep,
                                                        kroiSize roiSize) {
    return v210Entry<GrayRow>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToCbYCr422Gamma_8u_C3C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                               kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    for (int y = 0; y < roiSize.height; ++y)
        GammaRow::row(pSrc + std::ptrdiff_t(y) * srcStep, pDst + std::ptrdiff_t(y) * dstStep, roiSize.width);
    return kroStatusOk;
}
