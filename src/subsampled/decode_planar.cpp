// Planar 4:2:0 and 4:2:2 YUV and YCbCr images to interleaved RGB and BGR, and
// to RGB planes. Chroma planes have their own steps (srcStep[k] belongs to
// plane k); the stepless forms derive them from the width.
#include <cstdint>

#include "impl_decls.h"
#include "matrix/ycbcr_forms.h"
#include "matrix/ycbcr_rows.h"
#include "subsampled/decode_rows.h"

using namespace kro;
using namespace kro::dec;

namespace {

using P420 = SrcP3Sub<2, 2>;
using P420CrFirst = SrcP3Sub<2, 2, 2, 1>;  // element 1 of the plane array is Cr
using P411 = SrcP3Sub<4, 1>;
using P422 = SrcP3Sub<2, 1>;
template <bool Swap>
using OutC3 = ycbcr::DstC3Blend<Swap>;  // 16 pixels interleaved by blends
template <bool Swap>
using OutC4 = DstC8<4, Swap, Alpha::Aval>;
using OutP3 = DstP8<3>;

// ------------------------------------------------------------ the rows of each operation
using ycbcr::Inv1;
using ycbcr::Inv3;
using ycbcr::Inv4;
using ycbcr::Inv6;
using ycbcr::Inv7;
using Row420 = DecodeRow<Span::S8, Inv4, Inv4, Inv3>;
using Row420CrFirst = DecodeRow<Span::S8, Inv6, Inv6, Inv3>;
using Row420Csc = DecodeRow<Span::S8, Inv7, Inv7, D8>;
using Row422 = DecodeRow<Span::S8, Inv4, Inv4, Inv1>;
using Row411 = DecodeRow<Span::All, Inv4, Inv4, Inv4, Odd::F, Inv4>;
using RowD1All = DecodeRow<Span::All, D1, D1, D1>;
using RowHdtv420 = DecodeRow<Span::S8, H3, H3, H2>;
using RowY1All = DecodeRow<Span::All, Y1, Y1, Y1>;
using RowY2All = DecodeRow<Span::All, Y2, Y2, Y2>;
using RowY4All = DecodeRow<Span::All, Lanes32<Y4>, Y4, Y4>;
using RowYuv420Ac4 = DecodeRow<Span::S4, Y3, Y3, Y5>;
using RowYuv422 = DecodeRow<Span::S16, Y2, Y2, Y4, Odd::Plain, Y6>;
using RowYuv422Ac4 = DecodeRow<Span::S4, Y3, Y3, Y4, Odd::Plain, Y6>;

// ------------------------------------------------------------ entry checks
// null: the plane array and the destination; deep: the plane elements. The
// step array is no image address: it is tested after all of these and the
// size, so a rejected region reports its size, and it is never dereferenced
// when null.
inline bool deepNull(const Kro8u* const* p) { return anyPlaneNull(p, 3); }

// null, size, deep null; then the 4:2:0 row pairs and the odd-size warning.
template <class Row, class Src, class Dst>
KroStatus run420(const Kro8u* const pSrc[3], const int srcStep[3], const void* pDst, const Src& src, const Dst& dst,
                 kroiSize roi, int minW = 1, int minH = 1, Kro8u* const* dstPlanes = nullptr) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi, minW, minH)) return kroStatusBadSize;
    if (deepNull(pSrc) || (dstPlanes && anyPlaneNull(dstPlanes, 3)) || srcStep == nullptr)
        return kroStatusNullPointer;
    Row::rowPairs(src, dst, roi);
    return sub::oddStatus(sub::k420, roi);
}

// null, size, deep null; then every 4:2:2 row.
template <class Row, class Src, class Dst>
KroStatus run422(const Kro8u* const pSrc[3], const int srcStep[3], const void* pDst, const Src& src, const Dst& dst,
                 kroiSize roi, Kro8u* const* dstPlanes = nullptr) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    if (deepNull(pSrc) || (dstPlanes && anyPlaneNull(dstPlanes, 3)) || srcStep == nullptr)
        return kroStatusNullPointer;
    Row::rows(src, dst, roi, 2);
    return kroStatusOk;
}

// Steps of an image without steps: luma by the width, chroma by the chroma width.
struct Derived {
    int src[3];
    Derived(int lumaStep, int chromaStep) : src{lumaStep, chromaStep, chromaStep} {}
};

// 4:2:2 planes without steps: a region of fewer than 256 pixels or of odd width
// runs as the R form with the derived steps; any other is one row of W x H
// pixels (the planes are contiguous), so the main span and the tail fall on the
// whole image, not on each row. Pieces of 2^30 pixels, a multiple of the main
// step, keep the pixel count within int and give the same numbers as one row.
template <class Row, class MakeDst>
void yuv422Whole(const Kro8u* const pSrc[3], kroiSize roi, int dstBytesPerPixel, MakeDst makeDst) {
    const int64_t n = int64_t(roi.width) * roi.height;
    if (n < 256 || (roi.width & 1)) {
        const Derived st(sub::steplessLumaStep(roi.width), sub::stepless422ChromaStep(roi.width));
        Row::rows(P422{pSrc, st.src}, makeDst(0, roi.width * dstBytesPerPixel), roi, 2);
        return;
    }
    constexpr int64_t kPiece = int64_t(1) << 30;
    const int zeroSteps[3] = {0, 0, 0};
    for (int64_t at = 0; at < n; at += kPiece) {
        const int len = static_cast<int>(n - at < kPiece ? n - at : kPiece);
        const Kro8u* planes[3] = {pSrc[0] + at, pSrc[1] + at / 2, pSrc[2] + at / 2};
        Row::rows(P422{planes, zeroSteps}, makeDst(at, 0), kroiSize{len, 1}, 2);
    }
}

}  // namespace

// ------------------------------------------------------------ 4:2:0 YCbCr
KroStatus impl_kroiYCbCr420ToBGR_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    return run420<Row420>(pSrc, srcStep, pDst, P420{pSrc, srcStep}, OutC3<true>{pDst, dstStep}, roiSize);
}

KroStatus impl_kroiYCbCr420ToRGB_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    return run420<Row420>(pSrc, srcStep, pDst, P420{pSrc, srcStep}, OutC3<false>{pDst, dstStep}, roiSize);
}

KroStatus impl_kroiYCrCb420ToRGB_8u_P3C4R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep,
                                          kroiSize roiSize, Kro8u aval) {
    return run420<Row420CrFirst>(pSrc, srcStep, pDst, P420CrFirst{pSrc, srcStep}, OutC4<false>{pDst, dstStep, aval},
                                 roiSize);
}

KroStatus impl_kroiYCbCr420ToBGR_709CSC_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst,
                                                 int dstStep, kroiSize roiSize) {
    return run420<Row420Csc>(pSrc, srcStep, pDst, P420{pSrc, srcStep}, OutC3<true>{pDst, dstStep}, roiSize);
}

KroStatus impl_kroiYCbCr420ToBGR_8u_P3C4R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep,
                                          kroiSize roiSize, Kro8u aval) {
    return run420<RowD1All>(pSrc, srcStep, pDst, P420{pSrc, srcStep}, OutC4<true>{pDst, dstStep, aval}, roiSize);
}

KroStatus impl_kroiYCbCr420ToBGR_709HDTV_8u_P3C4R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst,
                                                  int dstStep, kroiSize roiSize, Kro8u aval) {
    return run420<RowHdtv420>(pSrc, srcStep, pDst, P420{pSrc, srcStep}, OutC4<true>{pDst, dstStep, aval}, roiSize);
}

// ------------------------------------------------------------ 4:2:0 YUV
KroStatus impl_kroiYUV420ToBGR_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep,
                                        kroiSize roiSize) {
    return run420<RowY1All>(pSrc, srcStep, pDst, P420{pSrc, srcStep}, OutC3<true>{pDst, dstStep}, roiSize, 2, 2);
}

KroStatus impl_kroiYUV420ToRGB_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep,
                                        kroiSize roiSize) {
    return run420<RowY2All>(pSrc, srcStep, pDst, P420{pSrc, srcStep}, OutC3<false>{pDst, dstStep}, roiSize);
}

KroStatus impl_kroiYUV420ToRGB_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3],
                                      int dstStep, kroiSize roiSize) {
    return run420<RowY4All>(pSrc, srcStep, pDst, P420{pSrc, srcStep}, OutP3{pDst, dstStep}, roiSize, 1, 1, pDst);
}

KroStatus impl_kroiYUV420ToRGB_8u_P3AC4R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep,
                                         kroiSize roiSize) {
    return run420<RowYuv420Ac4>(pSrc, srcStep, pDst, P420{pSrc, srcStep}, OutC4<false>{pDst, dstStep, 0}, roiSize);
}

// Steps derived from the width; a width that the size check refuses derives none.
static int steplessWidth(kroiSize roi) { return roi.width > 0 ? roi.width : 0; }

KroStatus impl_kroiYUV420ToRGB_8u_P3C3(const Kro8u* const pSrc[3], Kro8u* pDst, kroiSize roiSize) {
    const int w = steplessWidth(roiSize);
    const Derived st(sub::steplessLumaStep(w), sub::stepless420ChromaStep(w));
    return run420<RowY2All>(pSrc, st.src, pDst, P420{pSrc, st.src}, OutC3<false>{pDst, sub::steplessC3Step(w)},
                            roiSize);
}

KroStatus impl_kroiYUV420ToRGB_8u_P3(const Kro8u* const pSrc[3], Kro8u* const pDst[3], kroiSize roiSize) {
    const int w = steplessWidth(roiSize);
    const Derived st(sub::steplessLumaStep(w), sub::stepless420ChromaStep(w));
    return run420<RowY4All>(pSrc, st.src, pDst, P420{pSrc, st.src}, OutP3{pDst, sub::steplessLumaStep(w)}, roiSize, 1,
                            1, pDst);
}

// ------------------------------------------------------------ 4:2:2 and 4:1:1 YCbCr
// deep null, size (at least a whole block across); an odd last column is not written.
KroStatus impl_kroiYCbCr422ToBGR_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    if (anyNull(pSrc, pDst) || deepNull(pSrc)) return kroStatusNullPointer;
    if (badSize(roiSize, 2, 1)) return kroStatusBadSize;
    if (srcStep == nullptr) return kroStatusNullPointer;
    Row422::rows(P422{pSrc, srcStep}, OutC3<true>{pDst, dstStep}, roiSize, 2);
    return kroStatusOk;
}

KroStatus impl_kroiYCbCr422ToRGB_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    if (anyNull(pSrc, pDst) || deepNull(pSrc)) return kroStatusNullPointer;
    if (badSize(roiSize, 2, 1)) return kroStatusBadSize;
    if (srcStep == nullptr) return kroStatusNullPointer;
    Row422::rows(P422{pSrc, srcStep}, OutC3<false>{pDst, dstStep}, roiSize, 2);
    return kroStatusOk;
}

// Leftover pixels of a width not a multiple of 4 take the last whole block's
// chroma; no warning.
KroStatus impl_kroiYCbCr411ToBGR_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    if (anyNull(pSrc, pDst) || deepNull(pSrc)) return kroStatusNullPointer;
    if (badSize(roiSize, 4, 1)) return kroStatusBadSize;
    if (srcStep == nullptr) return kroStatusNullPointer;
    Row411::rows(P411{pSrc, srcStep}, OutC3<true>{pDst, dstStep}, roiSize, 4);
    return kroStatusOk;
}

KroStatus impl_kroiYCbCr411ToBGR_8u_P3C4R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep,
                                          kroiSize roiSize, Kro8u aval) {
    if (anyNull(pSrc, pDst) || deepNull(pSrc)) return kroStatusNullPointer;
    if (badSize(roiSize, 4, 1)) return kroStatusBadSize;
    if (srcStep == nullptr) return kroStatusNullPointer;
    Row411::rows(P411{pSrc, srcStep}, OutC4<true>{pDst, dstStep, aval}, roiSize, 4);
    return kroStatusOk;
}

// ------------------------------------------------------------ 4:2:2 YUV
KroStatus impl_kroiYUV422ToRGB_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep,
                                        kroiSize roiSize) {
    return run422<RowYuv422>(pSrc, srcStep, pDst, P422{pSrc, srcStep}, OutC3<false>{pDst, dstStep}, roiSize);
}

KroStatus impl_kroiYUV422ToRGB_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3],
                                      int dstStep, kroiSize roiSize) {
    return run422<RowYuv422>(pSrc, srcStep, pDst, P422{pSrc, srcStep}, OutP3{pDst, dstStep}, roiSize, pDst);
}

// The destination address and step decide between aligned and unaligned
// stores; the values are the same.
KroStatus impl_kroiYUV422ToRGB_8u_P3AC4R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep,
                                         kroiSize roiSize) {
    if (pDst != nullptr && aligned16(pDst) && aligned16(dstStep))
        return run422<RowYuv422Ac4>(pSrc, srcStep, pDst, P422{pSrc, srcStep}, DstC4Aligned<false>{pDst, dstStep, 0},
                                    roiSize);
    return run422<RowYuv422Ac4>(pSrc, srcStep, pDst, P422{pSrc, srcStep}, OutC4<false>{pDst, dstStep, 0}, roiSize);
}

KroStatus impl_kroiYUV422ToRGB_8u_P3C3(const Kro8u* const pSrc[3], Kro8u* pDst, kroiSize roiSize) {
    if (pSrc == nullptr || pDst == nullptr) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (deepNull(pSrc)) return kroStatusNullPointer;
    yuv422Whole<RowYuv422>(pSrc, roiSize, 3,
                           [&](int64_t at, int step) { return OutC3<false>{pDst + 3 * at, step}; });
    return kroStatusOk;
}

KroStatus impl_kroiYUV422ToRGB_8u_P3(const Kro8u* const pSrc[3], Kro8u* const pDst[3], kroiSize roiSize) {
    if (pSrc == nullptr || pDst == nullptr) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (deepNull(pSrc) || anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    Kro8u* planes[3];
    yuv422Whole<RowYuv422>(pSrc, roiSize, 1, [&](int64_t at, int step) {
        for (int k = 0; k < 3; ++k) planes[k] = pDst[k] + at;
        return OutP3{planes, step};
    });
    return kroStatusOk;
}
