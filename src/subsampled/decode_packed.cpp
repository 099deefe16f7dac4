// Packed 4:2:2 rows (two bytes a pixel: luma and alternately one chroma sample)
// to interleaved RGB, BGR, RGB planes and grey. Every row by itself; the last
// pixel of an odd width is decoded from its luma, its own chroma byte and the
// other chroma of the group before (rules O and O').
#include "impl_decls.h"
#include "matrix/ycbcr_forms.h"
#include "matrix/ycbcr_rows.h"
#include "subsampled/decode_rows.h"

using namespace kro;
using namespace kro::dec;

namespace {

using CbYCr = SrcC2<sub::kCbYCr422C2>;
using YCbCr = SrcC2<sub::kYCbCr422C2>;
using YCrCb = SrcC2<sub::kYCrCb422C2>;
using YUV = SrcC2<sub::kYUV422C2>;
template <bool Swap>
using OutC3 = DstC3Pairs<Swap>;  // the main step writes its 48 bytes itself
template <bool Swap>
using OutC4 = DstC8<4, Swap, Alpha::Aval>;
using OutP3 = DstP8<3>;

// ------------------------------------------------------------ the rows of each operation
using ycbcr::Inv2;
using ycbcr::Inv3;
using ycbcr::Inv4;
using ycbcr::Inv5;
using RowHdtv = DecodeRow<Span::S8, H1, H1, H2, Odd::O, H2>;
using RowCbYCrC4 = DecodeRow<Span::S8, D4, D4, Inv2, Odd::O, Inv2>;
using RowC3 = DecodeRow<Span::S8, Inv4, Inv4, Inv2, Odd::OPrime, Inv2>;
using RowBgrC4 = DecodeRow<Span::S8, D5, D5, D6, Odd::O, D6>;
using RowD3 = DecodeRow<Span::S8, D3, D3, Inv3, Odd::O, Inv3>;
using RowPlanes = DecodeRow<Span::S4, Inv5, Inv5, D6, Odd::O, D6>;
using RowYuv = DecodeRow<Span::S16, Y2, Y2, Y5, Odd::O, Y5>;

// null, size (minimum width minW), then every row.
template <class Row, class Src, class Dst>
KroStatus run(const Kro8u* pSrc, const void* pDst, const Src& src, const Dst& dst, kroiSize roi, int minW = 1) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi, minW, 1)) return kroStatusBadSize;
    Row::rows(src, dst, roi, 2);
    return kroStatusOk;
}

// Four-sample destinations with an aligned twin: both addresses and both steps
// multiples of 16 take aligned loads and stores, with the same values.
template <class Row, const sub::Packed422& L, bool Swap>
KroStatus runTwins(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roi, Kro8u aval) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    if (aligned16(pSrc) && aligned16(pDst) && aligned16(srcStep) && aligned16(dstStep))
        Row::rows(SrcC2<L, true>{pSrc, srcStep}, DstC4Aligned<Swap>{pDst, dstStep, aval}, roi, 2);
    else
        Row::rows(SrcC2<L>{pSrc, srcStep}, OutC4<Swap>{pDst, dstStep, aval}, roi, 2);
    return kroStatusOk;
}

// ------------------------------------------------------------ grey: the luma bytes of the row
// main path: 16 pixels from 32 bytes, even bytes kept by masking and packing
struct GreyRow {
    static void row(const uint8_t* s, uint8_t* d, int w) {
        int x = 0;
        const V lowBytes = _mm_set1_epi16(0x00ff);
        for (; x + 16 <= w; x += 16) {
            const V a = _mm_and_si128(loadLow<16>(s + 2 * x), lowBytes);
            const V b = _mm_and_si128(loadLow<16>(s + 2 * x + 16), lowBytes);
            _mm_storeu_si128(reinterpret_cast<V*>(d + x), _mm_packus_epi16(a, b));
        }
        for (; x < w; ++x) d[x] = s[2 * x];
    }
};

}  // namespace

// ------------------------------------------------------------ Cb Y Cr Y
KroStatus impl_kroiCbYCr422ToBGR_709HDTV_8u_C2C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                                  kroiSize roiSize) {
    return run<RowHdtv>(pSrc, pDst, CbYCr{pSrc, srcStep}, OutC3<true>{pDst, dstStep}, roiSize);
}

KroStatus impl_kroiCbYCr422ToBGR_709HDTV_8u_C2C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                                  kroiSize roiSize, Kro8u aval) {
    return runTwins<RowHdtv, sub::kCbYCr422C2, true>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}

KroStatus impl_kroiCbYCr422ToBGR_8u_C2C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize,
                                          Kro8u aval) {
    return runTwins<RowCbYCrC4, sub::kCbYCr422C2, true>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}

KroStatus impl_kroiCbYCr422ToRGB_8u_C2C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    return run<RowC3>(pSrc, pDst, CbYCr{pSrc, srcStep}, OutC3<false>{pDst, dstStep}, roiSize);
}

// ------------------------------------------------------------ Y Cb Y Cr
KroStatus impl_kroiYCbCr422ToBGR_8u_C2C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    return run<RowC3>(pSrc, pDst, YCbCr{pSrc, srcStep}, OutC3<true>{pDst, dstStep}, roiSize, 2);
}

KroStatus impl_kroiYCbCr422ToRGB_8u_C2C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    return run<RowC3>(pSrc, pDst, YCbCr{pSrc, srcStep}, OutC3<false>{pDst, dstStep}, roiSize);
}

KroStatus impl_kroiYCbCr422ToBGR_8u_C2C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize,
                                          Kro8u aval) {
    return run<RowBgrC4>(pSrc, pDst, YCbCr{pSrc, srcStep}, OutC4<true>{pDst, dstStep, aval}, roiSize, 2);
}

KroStatus impl_kroiYCbCr422ToRGB_8u_C2C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize,
                                          Kro8u aval) {
    return run<RowD3>(pSrc, pDst, YCbCr{pSrc, srcStep}, OutC4<false>{pDst, dstStep, aval}, roiSize);
}

// null, size, deep null; one step for the three destination planes.
KroStatus impl_kroiYCbCr422ToRGB_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep,
                                          kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    RowPlanes::rows(YCbCr{pSrc, srcStep}, OutP3{pDst, dstStep}, roiSize, 2);
    return kroStatusOk;
}

KroStatus impl_kroiYCbCr422ToGray_8u_C2C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                           kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    for (int y = 0; y < roiSize.height; ++y) GreyRow::row(rowAt(pSrc, srcStep, y), rowAt(pDst, dstStep, y), roiSize.width);
    return kroStatusOk;
}

// ------------------------------------------------------------ Y Cr Y Cb
KroStatus impl_kroiYCrCb422ToBGR_8u_C2C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    return run<RowD3>(pSrc, pDst, YCrCb{pSrc, srcStep}, OutC3<true>{pDst, dstStep}, roiSize);
}

KroStatus impl_kroiYCrCb422ToRGB_8u_C2C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    return run<RowD3>(pSrc, pDst, YCrCb{pSrc, srcStep}, OutC3<false>{pDst, dstStep}, roiSize);
}

KroStatus impl_kroiYCrCb422ToBGR_8u_C2C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize,
                                          Kro8u aval) {
    return run<RowD3>(pSrc, pDst, YCrCb{pSrc, srcStep}, OutC4<true>{pDst, dstStep, aval}, roiSize);
}

KroStatus impl_kroiYCrCb422ToRGB_8u_C2C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize,
                                          Kro8u aval) {
    return run<RowD3>(pSrc, pDst, YCrCb{pSrc, srcStep}, OutC4<false>{pDst, dstStep, aval}, roiSize);
}

KroStatus impl_kroiYCrCb422ToRGB_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep,
                                          kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    RowPlanes::rows(YCrCb{pSrc, srcStep}, OutP3{pDst, dstStep}, roiSize, 2);
    return kroStatusOk;
}

// ------------------------------------------------------------ Y U Y V
KroStatus impl_kroiYUV422ToRGB_8u_C2C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return run<RowYuv>(pSrc, pDst, YUV{pSrc, srcStep}, OutC3<false>{pDst, dstStep}, roiSize);
}
