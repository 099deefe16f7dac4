// RGB and BGR to 4:2:2: packed rows (C2) and planes. Each encoder names its
// main span, its main forms, its tail luma for even and odd columns, its tail
// chroma and what becomes of an odd last column. The CbYCr encoder of RGB
// filters chroma across pairs and has a row kernel of its own.
#include <cstdint>

#include "impl_decls.h"
#include "subsampled/encode_entry.h"

using namespace kro;
using namespace kro::sub;

namespace {

template <int (*Span)(int), class MY, class MC, class TYE, class TYO, class TC, class Odd>
using Enc422 = Encoder<2, 1, Span, MY, MC, TYE, TYO, TC, Odd>;

// Tail luma L5 on both columns and chroma rounded at 128.125, or L6 on odd
// columns and chroma rounded at 128.5.
using Studio422 = Enc422<spanS8, L1, C1<8224>, L5, L5, C4<16793600>, OddNone>;
using Studio422L6 = Enc422<spanS8, L1, C1<8224>, L5, L6, C4<16842752>, OddNone>;
using StudioCbYCr = Enc422<spanS8, L4, C5, L5, L5, C4<16842752, 16842750>, OddRule<E1>>;
using HdtvCbYCrAc4 = Enc422<spanS8, L9, C13, L10, L10, C9<16842752, 16842750>, OddRule<E2>>;
using HdtvCbYCrC3 = Enc422<spanSX, L9, C8, L10, L10, C9<16842752, 16842750>, OddRule<E2>>;
using YuvPacked = Enc422<spanS16, L17, C15<1>, L16, L16, C14<32768>, OddRule<E3>>;
using YuvPlanes = Enc422<spanS16, L18, C15<0>, L15, L15, C14<65535>, OddRule<E4>>;
using YuvPlanesAligned = Enc422<spanS16, L11, C10, L18, L18, C15<0>, OddRule<E4>>;
using YuvFromPlanes = Enc422<spanS16, L14, C16, L15, L15, C14<65535>, OddRule<E5>>;

constexpr auto kDeep = CheckOrder::DeepNullSize;
constexpr auto kLate = CheckOrder::NullSizeDeepNull;

// ------------------------------------------------------------ CbYCr with filtered chroma
// Luma: L1 in the main span (S8), L5 after it. Chroma pair i: the even pixel
// at weight 1/2, both odd neighbours at 1/4; the left neighbour of pixel 0 is 0.
struct FilteredCbYCr {
    using Dst = DstPacked<kCbYCr422C2>;

    // A main-path pair from e(2i), o(2i + 1) and o(2i - 1): the odd terms of
    // the step in lanes 0-3 (eight pixels) or 0-7 (sixteen), and carry holding
    // o(x - 1) in lane 7, which receives the step's last odd term.
    template <int N>
    static V pairs(V e, V oNext, V& carry) {
        const V oPrev = _mm_alignr_epi8(oNext, carry, 14);
        carry = N == 16 ? oNext : _mm_slli_si128(oNext, 8);
        return filterMain(e, oNext, oPrev);
    }

    // Sixteen pixels straight from the channel bytes: the even pixels' terms
    // (luma and e) and the odd pixels' (luma and o) each on their own lanes.
    static void step16(const SrcRGB::Row& s, const Dst::View& d, int x, V& carryCb, V& carryCr) {
        const SrcRGB::Row rows[1] = {s};
        Px pxs[1];
        load16(rows, x, pxs);
        const Px& px = pxs[0];
        readAhead(s, x);
        const Neg7 er{evenNeg7(px.c[0])}, eg{evenNeg7(px.c[1])}, eb{evenNeg7(px.c[2])};
        const Neg7 orr{oddNeg7(px.c[0])}, og{oddNeg7(px.c[1])}, ob{oddNeg7(px.c[2])};
        const V yeo[1] = {clampU8(L1::fromA14(a14(er, eg, eb)), L1::fromA14(a14(orr, og, ob)))};
        const V cb = pairs<16>(EvenTerm::cb(er, eg, eb), OddTerm::cb(orr, og, ob), carryCb);
        const V cr = pairs<16>(EvenTerm::cr(er, eg, eb), OddTerm::cr(orr, og, ob), carryCr);
        d.storeEvenOdd16(x, yeo, clampU8(cb, cr));
    }

    // Eight pixels.
    static void step8(const SrcRGB::Row& s, const Dst::View& d, int x, V& carryCb, V& carryCr) {
        Px px;
        s.load<8>(x, px);
        const V r = widenLo(px.c[0]), g = widenLo(px.c[1]), b = widenLo(px.c[2]);
        const V yv[1] = {clampU8(L1::vec(r, g, b), zero())};
        const V r7 = shl16<7>(r), g7 = shl16<7>(g), b7 = shl16<7>(b);
        const V evenLanes = _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, -1, -1, -1, -1, -1, -1, -1, -1);
        const V oddLanes = _mm_setr_epi8(2, 3, 6, 7, 10, 11, 14, 15, -1, -1, -1, -1, -1, -1, -1, -1);
        auto chroma = [&](V e, V o, V& carry) {
            return clampU8(pairs<8>(_mm_shuffle_epi8(e, evenLanes), _mm_shuffle_epi8(o, oddLanes), carry), zero());
        };
        const V cb = chroma(EvenTerm::cb(r7, g7, b7), OddTerm::cb(r7, g7, b7), carryCb);
        const V cr = chroma(EvenTerm::cr(r7, g7, b7), OddTerm::cr(r7, g7, b7), carryCr);
        d.store<8>(x, yv, cb, cr);
    }

    static void row(const SrcRGB::Row& s, const Dst::View& d, int width) {
        const int span = spanS8(width);
        const int whole = spanAll(k422, width);
        V carryCb = zero(), carryCr = zero();
        int x = 0;
        for (; x + 16 <= span; x += 16) step16(s, d, x, carryCb, carryCr);
        for (; x < span; x += 8) step8(s, d, x, carryCb, carryCr);
        // the left quarter of the first tail pair: o of the last main pixel, in 16 fraction bits
        int pCb = 0, pCr = 0;
        if (span > 0) {
            int px[4];
            s.get(span - 1, px);
            pCb = OddTerm::cb(px[0] << 7, px[1] << 7, px[2] << 7) * 512;
            pCr = OddTerm::cr(px[0] << 7, px[1] << 7, px[2] << 7) * 512;
        }
        for (x = span; x < whole; x += 2) {
            int e[4], o[4];
            s.get(x, e);
            s.get(x + 1, o);
            d.putY(0, x, L5::one(e[0], e[1], e[2]));
            d.putY(0, x + 1, L5::one(o[0], o[1], o[2]));
            const int oCb = fullTermCb(o[0], o[1], o[2]), oCr = fullTermCr(o[0], o[1], o[2]);
            d.putC(x, filterTail(fullTermCb(e[0], e[1], e[2]), pCb, oCb),
                   filterTail(fullTermCr(e[0], e[1], e[2]), pCr, oCr));
            pCb = oCb >> 2;
            pCr = oCr >> 2;
        }
        OddRule<E1>::apply(s, d, whole, width);
    }

    static void region(const SrcRGB& src, const Dst& dst, kroiSize roi) {
        for (int y = 0; y < roi.height; ++y) row(src.row(y), dst.pass(y), roi.width);
    }
};

// ------------------------------------------------------------ YUV planes
inline bool aligned16(const void* p) { return (reinterpret_cast<uintptr_t>(p) & 15) == 0; }

// The aligned forms: source, all three planes and all four steps multiples of 16.
bool yuvPlanesAligned(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3]) {
    return aligned16(pSrc) && aligned16(pDst[0]) && aligned16(pDst[1]) && aligned16(pDst[2]) && srcStep % 16 == 0 &&
           dstStep[0] % 16 == 0 && dstStep[1] % 16 == 0 && dstStep[2] % 16 == 0;
}

KroStatus yuvC3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roi) {
    KroStatus st = checkEntry<kLate>(anyNull(pSrc, pDst), [&] { return anyPlaneNull(pDst, 3); }, roi, 1, 1);
    if (st == kroStatusOk) st = stepArraysNull(dstStep);
    if (st != kroStatusOk) return st;
    if (yuvPlanesAligned(pSrc, srcStep, pDst, dstStep))
        YuvPlanesAligned::region(SrcRGB{pSrc, srcStep}, DstPlanes<kYUV422P3>{pDst, dstStep}, roi);
    else
        YuvPlanes::region(SrcRGB{pSrc, srcStep}, DstPlanes<kYUV422P3>{pDst, dstStep}, roi);
    return kroStatusOk;
}

// A whole image of n pixels (n even) as one row: no row boundary anywhere.
// Pieces of 2^28 pixels are whole main spans, so cutting there changes nothing
// (and keeps byte offsets within a row below 2^31).
template <class Enc, class MakeSrc>
void oneRow(const MakeSrc& srcAt, Kro8u* const pDst[3], int64_t n) {
    constexpr int64_t piece = int64_t(1) << 28;
    for (int64_t off = 0; off < n; off += piece) {
        const int len = static_cast<int>(n - off < piece ? n - off : piece);
        Kro8u* planes[3] = {pDst[0] + off, pDst[1] + off / 2, pDst[2] + off / 2};
        const int steps[3] = {0, 0, 0};
        Enc::region(srcAt(off), DstPlanes<kYUV422P3>{planes, steps}, kroiSize{len, 1});
    }
}

// Whole images below 256 pixels or of odd width go row by row.
bool rowByRow(kroiSize roi) { return int64_t(roi.width) * roi.height < 256 || (roi.width & 1); }

}  // namespace

// ------------------------------------------------------------ BT.601 studio
KroStatus impl_kroiBGRToYCbCr422_8u_C3C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    return interleavedToPacked<Studio422, SrcBGR, kYCbCr422C2, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToYCbCr422_8u_AC4C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                           kroiSize roiSize) {
    return interleavedToPacked<Studio422, SrcBGRx, kYCbCr422C2, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToYCbCr422_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                          const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Studio422, SrcBGR, kYCbCr422P3, kDeep, 2, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToYCbCr422_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                           const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Studio422, SrcBGRx, kYCbCr422P3, kDeep, 2, 1>(pSrc, srcStep, pDst, dstStep,
                                                                              roiSize);
}
KroStatus impl_kroiRGBToYCbCr422_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                          const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Studio422, SrcRGB, kYCbCr422P3, kDeep, 2, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToYCbCr422_8u_C3C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    return interleavedToPacked<Studio422L6, SrcRGB, kYCbCr422C2, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToYCrCb422_8u_C3C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    return interleavedToPacked<Studio422L6, SrcRGB, kYCrCb422C2, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToYCbCr422_8u_P3C2R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    return planesToPacked<Studio422L6, kYCbCr422C2>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToYCrCb422_8u_P3C2R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    return planesToPacked<Studio422L6, kYCrCb422C2>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// ------------------------------------------------------------ CbYCr
KroStatus impl_kroiBGRToCbYCr422_8u_AC4C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                           kroiSize roiSize) {
    return interleavedToPacked<StudioCbYCr, SrcBGRx, kCbYCr422C2, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToCbYCr422_709HDTV_8u_AC4C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                                   kroiSize roiSize) {
    return interleavedToPacked<HdtvCbYCrAc4, SrcBGRx, kCbYCr422C2, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToCbYCr422_709HDTV_8u_C3C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                                  kroiSize roiSize) {
    return interleavedToPacked<HdtvCbYCrC3, SrcBGR, kCbYCr422C2, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToCbYCr422_8u_C3C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    return interleavedToPacked<FilteredCbYCr, SrcRGB, kCbYCr422C2, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// ------------------------------------------------------------ YUV
KroStatus impl_kroiRGBToYUV422_8u_C3C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                        kroiSize roiSize) {
    return interleavedToPacked<YuvPacked, SrcRGB, kYUV422C2, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToYUV422_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3],
                                        kroiSize roiSize) {
    return yuvC3P3R(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToYUV422_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3],
                                      const int dstStep[3], kroiSize roiSize) {
    return planesToPlanes<YuvFromPlanes, kYUV422P3, kLate, 1, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// Without steps. The checks run first, in the region forms' order; the derived
// steps follow from a width known to be positive.
KroStatus impl_kroiRGBToYUV422_8u_C3P3(const Kro8u* pSrc, Kro8u* const pDst[3], kroiSize roiSize) {
    const KroStatus st = checkEntry<kLate>(
        anyNull(pSrc, pDst), [&] { return anyPlaneNull(pDst, 3); }, roiSize, 1, 1);
    if (st != kroStatusOk) return st;
    const int w = roiSize.width;
    if (rowByRow(roiSize)) {
        const int steps[3] = {steplessLumaStep(w), stepless422ChromaStep(w), stepless422ChromaStep(w)};
        return yuvC3P3R(pSrc, steplessC3Step(w), pDst, steps, roiSize);
    }
    oneRow<YuvPlanes>([&](int64_t off) { return SrcRGB{pSrc + 3 * off, 0}; }, pDst, int64_t(w) * roiSize.height);
    return kroStatusOk;
}
KroStatus impl_kroiRGBToYUV422_8u_P3(const Kro8u* const pSrc[3], Kro8u* const pDst[3], kroiSize roiSize) {
    const KroStatus st = checkEntry<kLate>(
        anyNull(pSrc, pDst), [&] { return anyPlaneNull(pSrc, 3) || anyPlaneNull(pDst, 3); }, roiSize, 1, 1);
    if (st != kroStatusOk) return st;
    const int w = roiSize.width;
    if (rowByRow(roiSize)) {
        const int steps[3] = {steplessLumaStep(w), stepless422ChromaStep(w), stepless422ChromaStep(w)};
        YuvFromPlanes::region(SrcRGBPlanes{pSrc, steplessLumaStep(w)}, DstPlanes<kYUV422P3>{pDst, steps}, roiSize);
        return kroStatusOk;
    }
    const Kro8u* planes[3];
    oneRow<YuvFromPlanes>(
        [&](int64_t off) {
            for (int k = 0; k < 3; ++k) planes[k] = pSrc[k] + off;
            return SrcRGBPlanes{planes, 0};
        },
        pDst, int64_t(w) * roiSize.height);
    return kroStatusOk;
}
