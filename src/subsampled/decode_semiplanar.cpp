// Semi-planar 4:2:0 (a luma plane and a plane of chroma pairs) to interleaved
// RGB and BGR. Every whole block goes through one form: D1 for Cb-first pairs,
// D2 for Cr-first pairs; the odd last column and row are not written.
#include "impl_decls.h"
#include "matrix/ycbcr_rows.h"
#include "subsampled/decode_rows.h"

using namespace kro;
using namespace kro::dec;

namespace {

using CbFirst = SrcP2<0>;
using CrFirst = SrcP2<1>;
using RowD1 = DecodeRow<Span::All, D1, D1, D1>;
using RowD2 = DecodeRow<Span::All, D2, D2, D2>;

template <class Row, class Src, class Dst>
KroStatus run(const Src& src, const Dst& dst, kroiSize roi) {
    Row::rowPairs(src, dst, roi);
    return sub::oddStatus(sub::k420, roi);
}

// Entry of the Cb-first forms and the Cr-first three-sample forms: null, then size.
template <class Row, class Src, class Dst>
KroStatus nullThenSize(const Kro8u* pY, const Kro8u* pC, const Kro8u* pDst, const Src& src, const Dst& dst,
                       kroiSize roi) {
    if (anyNull(pY, pC, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    return run<Row>(src, dst, roi);
}

}  // namespace

KroStatus impl_kroiYCbCr420ToBGR_8u_P2C3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr,
                                          int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return nullThenSize<RowD1>(pSrcY, pSrcCbCr, pDst, CbFirst{pSrcY, srcYStep, pSrcCbCr, srcCbCrStep},
                               ycbcr::DstC3Blend<true>{pDst, dstStep}, roiSize);
}

KroStatus impl_kroiYCbCr420ToRGB_8u_P2C3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr,
                                          int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return nullThenSize<RowD1>(pSrcY, pSrcCbCr, pDst, CbFirst{pSrcY, srcYStep, pSrcCbCr, srcCbCrStep},
                               ycbcr::DstC3Blend<false>{pDst, dstStep}, roiSize);
}

KroStatus impl_kroiYCbCr420ToBGR_8u_P2C4R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr,
                                          int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval) {
    return nullThenSize<RowD1>(pSrcY, pSrcCbCr, pDst, CbFirst{pSrcY, srcYStep, pSrcCbCr, srcCbCrStep},
                               DstC8<4, true, Alpha::Aval>{pDst, dstStep, aval}, roiSize);
}

KroStatus impl_kroiYCbCr420ToRGB_8u_P2C4R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr,
                                          int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval) {
    return nullThenSize<RowD1>(pSrcY, pSrcCbCr, pDst, CbFirst{pSrcY, srcYStep, pSrcCbCr, srcCbCrStep},
                               DstC8<4, false, Alpha::Aval>{pDst, dstStep, aval}, roiSize);
}

KroStatus impl_kroiYCrCb420ToBGR_8u_P2C3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr,
                                          int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return nullThenSize<RowD2>(pSrcY, pSrcCbCr, pDst, CrFirst{pSrcY, srcYStep, pSrcCbCr, srcCbCrStep},
                               ycbcr::DstC3Blend<true>{pDst, dstStep}, roiSize);
}

KroStatus impl_kroiYCrCb420ToRGB_8u_P2C3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr,
                                          int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return nullThenSize<RowD2>(pSrcY, pSrcCbCr, pDst, CrFirst{pSrcY, srcYStep, pSrcCbCr, srcCbCrStep},
                               ycbcr::DstC3Blend<false>{pDst, dstStep}, roiSize);
}

// The two Cr-first four-sample forms test the size before the addresses.
KroStatus impl_kroiYCrCb420ToBGR_8u_P2C4R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr,
                                          int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval) {
    if (badSize(roiSize)) return kroStatusBadSize;
    if (anyNull(pSrcY, pSrcCbCr, pDst)) return kroStatusNullPointer;
    return run<RowD2>(CrFirst{pSrcY, srcYStep, pSrcCbCr, srcCbCrStep},
                      DstC8<4, true, Alpha::Aval>{pDst, dstStep, aval}, roiSize);
}

KroStatus impl_kroiYCrCb420ToRGB_8u_P2C4R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr,
                                          int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval) {
    if (badSize(roiSize)) return kroStatusBadSize;
    if (anyNull(pSrcY, pSrcCbCr, pDst)) return kroStatusNullPointer;
    return run<RowD2>(CrFirst{pSrcY, srcYStep, pSrcCbCr, srcCbCrStep},
                      DstC8<4, false, Alpha::Aval>{pDst, dstStep, aval}, roiSize);
}
