// Repacking between subsampled layouts: every output byte is a copy of one
// input byte. Row kernels (16 or 32 samples a step with byte shuffles and
// unpacks, byte-by-byte tails), the region driver that chains them through
// small stack buffers, and the entry checks. An operation is one descriptor:
// its source and destination sides (from the catalogue), its chroma rule and
// its checks.
#pragma once

#include <smmintrin.h>

#include <cstddef>

#include "frame/region.h"
#include "subsampled/catalogue.h"
#include "subsampled/copy.h"

namespace kro::sub::rep {

using std::ptrdiff_t;

// ------------------------------------------------------------ descriptors
enum class Kind { C2, P3, P2 };

// One side of a repacker. C2: packed 4:2:2 in `packed` order. P3: cb and cr
// are the plane-array elements of the two chroma planes. P2: cb and cr are the
// byte offsets of the two samples within a chroma pair.
struct Side {
    Kind kind;
    Block block;
    Packed422 packed;
    int cb, cr;
};
constexpr Side c2(Packed422 o) { return {Kind::C2, k422, o, 0, 0}; }
constexpr Side p3(Planar f) { return {Kind::P3, f.block, {}, f.cbPlane, f.crPlane}; }
constexpr Side p2(SemiPlanar f) { return {Kind::P2, f.block, {}, f.cb, f.cr}; }

// Where destination chroma sample (i, j) comes from.
//   Keep        Src(i, j)
//   DropRows    Src(i, 2j)          4:2:2 -> 4:2:0
//   DoubleRows  Src(i, j / 2)       4:2:0 -> 4:2:2
//   DropCols    Src(2i, j)          4:2:2 -> 4:1:1
//   DoubleCols  Src(i / 2, j)       4:1:1 -> 4:2:2
//   Fold        Src(i / 2, 2j + (i & 1))   4:1:1 -> 4:2:0
//   Unfold      Src(2i + (j & 1), j / 2)   4:2:0 -> 4:1:1
enum class Rule { Keep, DropRows, DoubleRows, DropCols, DoubleCols, Fold, Unfold };

// When luma rows copied plane to plane use cache-bypassing stores, on the
// rounded region's W x H.
enum class Bypass { Never, From348603, Above524288 };

struct Op {
    Rule rule;
    Side src, dst;
    int minW, minH;  // smallest region; minH 0: the height is not tested
    Bypass bypass;
    bool warnOddWidth;        // +35 for an odd width, after the whole pairs
    bool sizeBeforeElements;  // null, width/height at least 1, plane elements, then the smallest region
    bool stepArrayIsAddress = false;  // a null step array fails with the addresses, not after the size
};

// ------------------------------------------------------------ row kernels
// 16-byte shuffle masks built from a packed order: split takes four pixel
// pairs to Y0..Y7 | Cb0..Cb3 | Cr0..Cr3, merge takes Y0 Cb0 Y1 Cr0 groups to
// the order.
struct Mask {
    char b[16];
};
constexpr Mask splitMask(Packed422 o) {
    Mask m{};
    for (int g = 0; g < 4; ++g) {
        m.b[2 * g] = static_cast<char>(4 * g + o.y0);
        m.b[2 * g + 1] = static_cast<char>(4 * g + o.y1);
        m.b[8 + g] = static_cast<char>(4 * g + o.cb);
        m.b[12 + g] = static_cast<char>(4 * g + o.cr);
    }
    return m;
}
constexpr Mask mergeMask(Packed422 o) {
    Mask m{};
    for (int g = 0; g < 4; ++g) {
        m.b[4 * g + o.y0] = static_cast<char>(4 * g);
        m.b[4 * g + o.cb] = static_cast<char>(4 * g + 1);
        m.b[4 * g + o.y1] = static_cast<char>(4 * g + 2);
        m.b[4 * g + o.cr] = static_cast<char>(4 * g + 3);
    }
    return m;
}
// Group permutation from one packed order to another.
constexpr Mask reorderMask(Packed422 from, Packed422 to) {
    Mask m{};
    for (int g = 0; g < 4; ++g) {
        m.b[4 * g + to.y0] = static_cast<char>(4 * g + from.y0);
        m.b[4 * g + to.y1] = static_cast<char>(4 * g + from.y1);
        m.b[4 * g + to.cb] = static_cast<char>(4 * g + from.cb);
        m.b[4 * g + to.cr] = static_cast<char>(4 * g + from.cr);
    }
    return m;
}
// A packed order as one number, so that kernels can take it as a template argument.
constexpr int orderCode(Packed422 o) { return o.y0 | o.y1 << 2 | o.cb << 4 | o.cr << 6; }
constexpr Packed422 orderOf(int c) { return {c & 3, (c >> 2) & 3, (c >> 4) & 3, (c >> 6) & 3}; }

inline __m128i loadMask(const Mask& m) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(m.b)); }

inline __m128i ld(const Kro8u* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline __m128i ld8(const Kro8u* p) { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)); }
inline void st(Kro8u* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
inline void st8(Kro8u* p, __m128i v) { _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v); }

// Packed row of n pixels (n even) to luma and the two chroma rows: 16 pixels a step.
template <int Code>
void splitPacked(const Kro8u* s, int n, Kro8u* y, Kro8u* cb, Kro8u* cr) {
    static constexpr Packed422 O = orderOf(Code);
    static constexpr Mask kSplit = splitMask(O);
    const __m128i m = loadMask(kSplit);
    int x = 0;
    for (; x + 16 <= n; x += 16) {
        const __m128i a = _mm_shuffle_epi8(ld(s + 2 * x), m);
        const __m128i b = _mm_shuffle_epi8(ld(s + 2 * x + 16), m);
        st(y + x, _mm_unpacklo_epi64(a, b));
        const __m128i c = _mm_unpackhi_epi32(a, b);  // Cb0..7 | Cr0..7
        st8(cb + x / 2, c);
        st8(cr + x / 2, _mm_srli_si128(c, 8));
    }
    for (; x + 2 <= n; x += 2) {
        const Kro8u* g = s + 2 * x;
        y[x] = g[O.y0];
        y[x + 1] = g[O.y1];
        cb[x / 2] = g[O.cb];
        cr[x / 2] = g[O.cr];
    }
}

// Luma and the two chroma rows to a packed row of n pixels (n even): 16 pixels a step.
template <int Code>
void mergePacked(const Kro8u* y, const Kro8u* cb, const Kro8u* cr, int n, Kro8u* d) {
    static constexpr Packed422 O = orderOf(Code);
    static constexpr Mask kMerge = mergeMask(O);
    const __m128i m = loadMask(kMerge);
    int x = 0;
    for (; x + 16 <= n; x += 16) {
        const __m128i l = ld(y + x);
        const __m128i p = _mm_unpacklo_epi8(ld8(cb + x / 2), ld8(cr + x / 2));
        st(d + 2 * x, _mm_shuffle_epi8(_mm_unpacklo_epi8(l, p), m));
        st(d + 2 * x + 16, _mm_shuffle_epi8(_mm_unpackhi_epi8(l, p), m));
    }
    for (; x + 2 <= n; x += 2) {
        Kro8u* g = d + 2 * x;
        g[O.y0] = y[x];
        g[O.y1] = y[x + 1];
        g[O.cb] = cb[x / 2];
        g[O.cr] = cr[x / 2];
    }
}

// Packed row to packed row in another order, n pixels (n even): 8 pixels a step.
template <int FromCode, int ToCode>
void reorderPacked(const Kro8u* s, int n, Kro8u* d) {
    static constexpr Packed422 From = orderOf(FromCode), To = orderOf(ToCode);
    static constexpr Mask kReorder = reorderMask(From, To);
    const __m128i m = loadMask(kReorder);
    int x = 0;
    for (; x + 8 <= n; x += 8) st(d + 2 * x, _mm_shuffle_epi8(ld(s + 2 * x), m));
    for (; x + 2 <= n; x += 2) {
        const Kro8u* g = s + 2 * x;
        Kro8u* h = d + 2 * x;
        h[To.y0] = g[From.y0];
        h[To.y1] = g[From.y1];
        h[To.cb] = g[From.cb];
        h[To.cr] = g[From.cr];
    }
}

// m pairs to the row of first bytes and the row of second bytes: 16 pairs a step.
inline void splitPairs(const Kro8u* s, int m, Kro8u* first, Kro8u* second) {
    const __m128i k = _mm_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15);
    int i = 0;
    for (; i + 16 <= m; i += 16) {
        const __m128i a = _mm_shuffle_epi8(ld(s + 2 * i), k);
        const __m128i b = _mm_shuffle_epi8(ld(s + 2 * i + 16), k);
        st(first + i, _mm_unpacklo_epi64(a, b));
        st(second + i, _mm_unpackhi_epi64(a, b));
    }
    for (; i < m; ++i) {
        first[i] = s[2 * i];
        second[i] = s[2 * i + 1];
    }
}

// Two rows of m bytes to m pairs: 16 pairs a step. Also the Fold of two 4:1:1
// chroma rows into one 4:2:0 row.
inline void mergePairs(const Kro8u* first, const Kro8u* second, int m, Kro8u* d) {
    int i = 0;
    for (; i + 16 <= m; i += 16) {
        const __m128i a = ld(first + i), b = ld(second + i);
        st(d + 2 * i, _mm_unpacklo_epi8(a, b));
        st(d + 2 * i + 16, _mm_unpackhi_epi8(a, b));
    }
    for (; i < m; ++i) {
        d[2 * i] = first[i];
        d[2 * i + 1] = second[i];
    }
}

// d[i] = s[2i + P] for m outputs: 16 a step. Drop columns (P = 0) and Unfold.
template <int P>
void pickEvery2(const Kro8u* s, int m, Kro8u* d) {
    const __m128i lo = _mm_set1_epi16(0x00FF);
    auto pick = [&](__m128i v) { return P == 0 ? _mm_and_si128(v, lo) : _mm_srli_epi16(v, 8); };
    int i = 0;
    for (; i + 16 <= m; i += 16) st(d + i, _mm_packus_epi16(pick(ld(s + 2 * i)), pick(ld(s + 2 * i + 16))));
    for (; i < m; ++i) d[i] = s[2 * i + P];
}

// d[2i] = d[2i + 1] = s[i] for m inputs: 16 a step. Double columns.
inline void doubleEach(const Kro8u* s, int m, Kro8u* d) {
    int i = 0;
    for (; i + 16 <= m; i += 16) {
        const __m128i v = ld(s + i);
        st(d + 2 * i, _mm_unpacklo_epi8(v, v));
        st(d + 2 * i + 16, _mm_unpackhi_epi8(v, v));
    }
    for (; i < m; ++i) d[2 * i] = d[2 * i + 1] = s[i];
}

// ------------------------------------------------------------ region driver
// Plane addresses and steps of one side: C2 uses element 0; P3 elements 0..2
// as the plane array; P2 element 0 luma and element 1 the pairs.
template <class T>
struct Frame {
    T* p[3];
    int s[3];
    T* at(int k, int row, ptrdiff_t col) const { return p[k] + static_cast<ptrdiff_t>(row) * s[k] + col; }
};

inline constexpr int kChunk = 128;  // luma pixels a row is carried through the stack buffers in

template <const Op& O>
struct Repack {
    static constexpr Side S = O.src, D = O.dst;
    static constexpr int bwS = S.block.w, bwD = D.block.w, bhD = D.block.h;

    // Source chroma row js, samples [xc, xc + m): Cb and Cr addresses, in place
    // for planes, through buffers for pairs.
    static void fetch(const Frame<const Kro8u>& s, int js, int xc, int m, Kro8u* bufCb, Kro8u* bufCr,
                      const Kro8u*& cb, const Kro8u*& cr) {
        if constexpr (S.kind == Kind::P3) {
            cb = s.at(S.cb, js, xc);
            cr = s.at(S.cr, js, xc);
        } else {
            if (S.cb == 0)
                splitPairs(s.at(1, js, 2 * xc), m, bufCb, bufCr);
            else
                splitPairs(s.at(1, js, 2 * xc), m, bufCr, bufCb);
            cb = bufCb;
            cr = bufCr;
        }
    }

    static void region(const Frame<const Kro8u>& s, const Frame<Kro8u>& d, int W, int H, bool bypass) {
        alignas(16) Kro8u srcBuf[2][2][kChunk / 2];  // [row of a Fold pair][Cb, Cr]
        alignas(16) Kro8u dstBuf[2][kChunk / 2];
        for (int y = 0; y < H; ++y) {
            if constexpr (S.kind != Kind::C2 && D.kind != Kind::C2) lineCopy(s.at(0, y, 0), d.at(0, y, 0), W, bypass);
            const bool withChroma = D.kind == Kind::C2 || y % bhD == 0;
            const int jd = D.kind == Kind::C2 ? y : y / bhD;
            if constexpr (S.kind != Kind::C2 && D.kind != Kind::C2)
                if (!withChroma) continue;
            for (int x0 = 0; x0 < W; x0 += kChunk) {
                const int n = W - x0 < kChunk ? W - x0 : kChunk;
                const int mS = n / bwS, mD = n / bwD, xcS = x0 / bwS, xcD = x0 / bwD;
                // source chroma at the rows the rule names
                const Kro8u *cb0, *cr0, *cb1 = nullptr, *cr1 = nullptr;
                if constexpr (S.kind == Kind::C2) {
                    splitPacked<orderCode(S.packed)>(s.at(0, y, 2 * x0), n, d.at(0, y, x0), srcBuf[0][0], srcBuf[0][1]);
                    if (!withChroma) continue;
                    cb0 = srcBuf[0][0];
                    cr0 = srcBuf[0][1];
                } else {
                    int js = jd;
                    if constexpr (O.rule == Rule::DropRows || O.rule == Rule::Fold) js = 2 * jd;
                    if constexpr (O.rule == Rule::DoubleRows || O.rule == Rule::Unfold) js = jd / 2;
                    fetch(s, js, xcS, mS, srcBuf[0][0], srcBuf[0][1], cb0, cr0);
                    if constexpr (O.rule == Rule::Fold)
                        fetch(s, js + 1, xcS, mS, srcBuf[1][0], srcBuf[1][1], cb1, cr1);
                }
                // destination chroma: straight into planes, else into the buffers
                Kro8u* oCb = dstBuf[0];
                Kro8u* oCr = dstBuf[1];
                if constexpr (D.kind == Kind::P3) {
                    oCb = d.at(D.cb, jd, xcD);
                    oCr = d.at(D.cr, jd, xcD);
                }
                const Kro8u* cb = oCb;
                const Kro8u* cr = oCr;
                if constexpr (O.rule == Rule::Keep || O.rule == Rule::DropRows || O.rule == Rule::DoubleRows) {
                    if constexpr (D.kind == Kind::P3) {
                        lineCopy(cb0, oCb, mD, false);
                        lineCopy(cr0, oCr, mD, false);
                    } else {
                        cb = cb0;
                        cr = cr0;
                    }
                } else if constexpr (O.rule == Rule::DropCols) {
                    pickEvery2<0>(cb0, mD, oCb);
                    pickEvery2<0>(cr0, mD, oCr);
                } else if constexpr (O.rule == Rule::DoubleCols) {
                    doubleEach(cb0, mS, oCb);
                    doubleEach(cr0, mS, oCr);
                } else if constexpr (O.rule == Rule::Fold) {
                    mergePairs(cb0, cb1, mS, oCb);
                    mergePairs(cr0, cr1, mS, oCr);
                } else {  // Unfold
                    if (jd & 1) {
                        pickEvery2<1>(cb0, mD, oCb);
                        pickEvery2<1>(cr0, mD, oCr);
                    } else {
                        pickEvery2<0>(cb0, mD, oCb);
                        pickEvery2<0>(cr0, mD, oCr);
                    }
                }
                if constexpr (D.kind == Kind::C2) {
                    mergePacked<orderCode(D.packed)>(s.at(0, y, x0), cb, cr, n, d.at(0, y, 2 * x0));
                } else if constexpr (D.kind == Kind::P2) {
                    if (D.cb == 0)
                        mergePairs(cb, cr, mD, d.at(1, jd, 2 * xcD));
                    else
                        mergePairs(cr, cb, mD, d.at(1, jd, 2 * xcD));
                }
            }
        }
    }
};

// ------------------------------------------------------------ entry
// The checks in the operation's order, the rounding of the region to whole
// blocks, the region driver and the result.
// A null step array is tested last (or with the addresses where the operation
// says so), so a rejected region reports its size; it is never dereferenced.
template <const Op& O>
KroStatus run(bool addressNull, bool elementNull, bool stepNull, const Frame<const Kro8u>& s, const Frame<Kro8u>& d,
              kroiSize roi) {
    if (addressNull || (O.stepArrayIsAddress && stepNull)) return kroStatusNullPointer;
    if constexpr (O.sizeBeforeElements) {
        if (roi.width < 1 || roi.height < 1) return kroStatusBadSize;
        if (elementNull) return kroStatusNullPointer;
    } else {
        if (elementNull) return kroStatusNullPointer;
    }
    if (roi.width < O.minW || (O.minH > 0 && roi.height < O.minH)) return kroStatusBadSize;
    if (stepNull) return kroStatusNullPointer;

    constexpr int bw = O.src.block.w > O.dst.block.w ? O.src.block.w : O.dst.block.w;
    constexpr int bh = O.src.block.h > O.dst.block.h ? O.src.block.h : O.dst.block.h;
    const int W = roi.width / bw * bw;
    const int H = roi.height / bh * bh;
    if (H > 0) {
        const long long n = static_cast<long long>(W) * H;
        const bool bypass = (O.bypass == Bypass::From348603 && n >= 348603) ||
                            (O.bypass == Bypass::Above524288 && n > 524288);
        if constexpr (O.src.kind == Kind::C2 && O.dst.kind == Kind::C2) {
            for (int y = 0; y < H; ++y) reorderPacked<orderCode(O.src.packed), orderCode(O.dst.packed)>(s.at(0, y, 0), W, d.at(0, y, 0));
        } else {
            Repack<O>::region(s, d, W, H, bypass);
        }
    }
    return O.warnOddWidth && (roi.width & 1) ? kroStatusOddSize : kroStatusOk;
}

// One entry per argument layout. A step array's elements are read only
// through stepAt, which a null array leaves at 0 until run rejects it.
inline int stepAt(const int* steps, int k) { return steps != nullptr ? steps[k] : 0; }

template <const Op& O>
KroStatus c2ToC2(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roi) {
    return run<O>(pSrc == nullptr || pDst == nullptr, false, false, {{pSrc, nullptr, nullptr}, {srcStep, 0, 0}},
                  {{pDst, nullptr, nullptr}, {dstStep, 0, 0}}, roi);
}

template <const Op& O>
KroStatus c2ToP3(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roi) {
    if (pSrc == nullptr || pDst == nullptr) return kroStatusNullPointer;
    return run<O>(false, anyPlaneNull(pDst, 3), dstStep == nullptr, {{pSrc, nullptr, nullptr}, {srcStep, 0, 0}},
                  {{pDst[0], pDst[1], pDst[2]}, {stepAt(dstStep, 0), stepAt(dstStep, 1), stepAt(dstStep, 2)}}, roi);
}

template <const Op& O>
KroStatus c2ToP2(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep,
                 kroiSize roi) {
    return run<O>(pSrc == nullptr || pDstY == nullptr || pDstCbCr == nullptr, false, false,
                  {{pSrc, nullptr, nullptr}, {srcStep, 0, 0}}, {{pDstY, pDstCbCr, nullptr}, {dstYStep, dstCbCrStep, 0}},
                  roi);
}

template <const Op& O>
KroStatus p3ToC2(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roi) {
    if (pSrc == nullptr || pDst == nullptr) return kroStatusNullPointer;
    return run<O>(false, anyPlaneNull(pSrc, 3), srcStep == nullptr,
                  {{pSrc[0], pSrc[1], pSrc[2]}, {stepAt(srcStep, 0), stepAt(srcStep, 1), stepAt(srcStep, 2)}},
                  {{pDst, nullptr, nullptr}, {dstStep, 0, 0}}, roi);
}

template <const Op& O>
KroStatus p3ToP2(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr,
                 int dstCbCrStep, kroiSize roi) {
    if (pSrc == nullptr || pDstY == nullptr || pDstCbCr == nullptr) return kroStatusNullPointer;
    return run<O>(false, anyPlaneNull(pSrc, 3), srcStep == nullptr,
                  {{pSrc[0], pSrc[1], pSrc[2]}, {stepAt(srcStep, 0), stepAt(srcStep, 1), stepAt(srcStep, 2)}},
                  {{pDstY, pDstCbCr, nullptr}, {dstYStep, dstCbCrStep, 0}}, roi);
}

template <const Op& O>
KroStatus p3ToP3(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3],
                 kroiSize roi) {
    if (pSrc == nullptr || pDst == nullptr) return kroStatusNullPointer;
    return run<O>(false, anyPlaneNull(pSrc, 3) || anyPlaneNull(pDst, 3), srcStep == nullptr || dstStep == nullptr,
                  {{pSrc[0], pSrc[1], pSrc[2]}, {stepAt(srcStep, 0), stepAt(srcStep, 1), stepAt(srcStep, 2)}},
                  {{pDst[0], pDst[1], pDst[2]}, {stepAt(dstStep, 0), stepAt(dstStep, 1), stepAt(dstStep, 2)}}, roi);
}

template <const Op& O>
KroStatus p2ToC2(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep,
                 kroiSize roi) {
    return run<O>(pSrcY == nullptr || pSrcCbCr == nullptr || pDst == nullptr, false, false,
                  {{pSrcY, pSrcCbCr, nullptr}, {srcYStep, srcCbCrStep, 0}}, {{pDst, nullptr, nullptr}, {dstStep, 0, 0}},
                  roi);
}

template <const Op& O>
KroStatus p2ToP3(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3],
                 const int dstStep[3], kroiSize roi) {
    if (pSrcY == nullptr || pSrcCbCr == nullptr || pDst == nullptr) return kroStatusNullPointer;
    return run<O>(false, anyPlaneNull(pDst, 3), dstStep == nullptr, {{pSrcY, pSrcCbCr, nullptr}, {srcYStep, srcCbCrStep, 0}},
                  {{pDst[0], pDst[1], pDst[2]}, {stepAt(dstStep, 0), stepAt(dstStep, 1), stepAt(dstStep, 2)}}, roi);
}

}  // namespace kro::sub::rep
