// RGB and BGR to 4:2:0 planes and chroma-pair planes. Each encoder names its
// main span, its main luma and chroma forms and its tail forms; a pass reads
// two source rows and writes two luma rows and one chroma row.
#include "impl_decls.h"
#include "subsampled/encode_entry.h"

using namespace kro;
using namespace kro::sub;

namespace {

template <int (*Span)(int), class MY, class MC, class TY, class TC>
using Enc420 = Encoder<2, 2, Span, MY, MC, TY, TY, TC, OddNone>;

using Studio420L1 = Enc420<spanS8, L1, C1<8194>, L5, C4<33587200>>;
using Studio420L2 = Enc420<spanS8, L2, C1<8194>, L5, C4<33587200>>;
using Studio420S4 = Enc420<spanS4, L4, C3, L5, C4<33587200>>;
using Csc420S8 = Enc420<spanS8, L7, C6, L8, C7>;
using Csc420SH = Enc420<spanSH, L7, C6, L8, C7>;
using Hdtv420 = Enc420<spanSH, L9, C8, L10, C9<33587200>>;
using Yuv420Ac4 = Enc420<spanS16, L13, C12, L15, C14Quad>;
using Yuv420C3 = Enc420<spanS8, L11, C10, L12, C11>;
// No main forms: every block takes the tail forms, run in 32-bit lanes over
// the blocks of each 4-pixel group (identical numbers), the rest one by one.
using Yuv420P3 = Enc420<spanS4, L15, C14Quad, L15, C14Quad>;

constexpr auto kDeep = CheckOrder::DeepNullSize;
constexpr auto kNull = CheckOrder::NullSize;
constexpr auto kLate = CheckOrder::NullSizeDeepNull;

}  // namespace

// ------------------------------------------------------------ BT.601 studio
KroStatus impl_kroiBGRToYCbCr420_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                          const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Studio420L1, SrcBGR, kYCbCr420P3, kDeep, 2, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToYCrCb420_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                          const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Studio420L1, SrcBGR, kYCrCb420P3, kDeep, 2, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToYCbCr420_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                          const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Studio420L2, SrcRGB, kYCbCr420P3, kLate, 1, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToYCbCr420_8u_C3P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep,
                                          Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return interleavedToSemi<Studio420L2, SrcBGR, kYCbCr420P2, kNull, 1, 1>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr,
                                                                           dstCbCrStep, roiSize);
}
KroStatus impl_kroiBGRToYCbCr420_8u_AC4P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep,
                                           Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return interleavedToSemi<Studio420L2, SrcBGRx, kYCbCr420P2, kNull, 1, 1>(pSrc, srcStep, pDstY, dstYStep,
                                                                            pDstCbCr, dstCbCrStep, roiSize);
}
KroStatus impl_kroiRGBToYCbCr420_8u_C3P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep,
                                          Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return interleavedToSemi<Studio420L2, SrcRGB, kYCbCr420P2, kNull, 1, 1>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr,
                                                                           dstCbCrStep, roiSize);
}
KroStatus impl_kroiRGBToYCbCr420_8u_C4P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep,
                                          Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return interleavedToSemi<Studio420L2, SrcRGBx, kYCbCr420P2, kNull, 1, 1>(pSrc, srcStep, pDstY, dstYStep,
                                                                            pDstCbCr, dstCbCrStep, roiSize);
}
KroStatus impl_kroiBGRToYCbCr420_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                           const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Studio420S4, SrcBGRx, kYCbCr420P3, kDeep, 2, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToYCrCb420_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                           const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Studio420S4, SrcBGRx, kYCrCb420P3, kDeep, 2, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToYCrCb420_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                           const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Studio420S4, SrcRGBx, kYCrCb420P3, kDeep, 2, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// ------------------------------------------------------------ BT.709 studio
KroStatus impl_kroiBGRToYCbCr420_709CSC_8u_C3P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep,
                                                 Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return interleavedToSemi<Csc420S8, SrcBGR, kYCbCr420P2, kDeep, 2, 2>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr,
                                                                        dstCbCrStep, roiSize);
}
KroStatus impl_kroiBGRToYCbCr420_709CSC_8u_AC4P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep,
                                                  Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize) {
    return interleavedToSemi<Csc420S8, SrcBGRx, kYCbCr420P2, kDeep, 2, 2>(pSrc, srcStep, pDstY, dstYStep, pDstCbCr,
                                                                         dstCbCrStep, roiSize);
}
KroStatus impl_kroiBGRToYCbCr420_709CSC_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                                 const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Csc420SH, SrcBGR, kYCbCr420P3, kDeep, 2, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToYCbCr420_709CSC_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                                  const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Csc420SH, SrcBGRx, kYCbCr420P3, kDeep, 2, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToYCrCb420_709CSC_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                                 const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Csc420SH, SrcBGR, kYCrCb420P3, kDeep, 2, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToYCrCb420_709CSC_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                                  const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Csc420SH, SrcBGRx, kYCrCb420P3, kDeep, 2, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// ------------------------------------------------------------ full-swing BT.709
KroStatus impl_kroiBGRToYCbCr420_709HDTV_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                                   const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Hdtv420, SrcBGRx, kYCbCr420P3, kDeep, 2, 2>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// ------------------------------------------------------------ YUV
KroStatus impl_kroiBGRToYUV420_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3],
                                         kroiSize roiSize) {
    return interleavedToPlanes<Yuv420Ac4, SrcBGRx, kYUV420P3, kLate, 1, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToYUV420_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3],
                                        kroiSize roiSize) {
    return interleavedToPlanes<Yuv420C3, SrcRGB, kYUV420P3, kLate, 1, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToYUV420_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3],
                                      const int dstStep[3], kroiSize roiSize) {
    return planesToPlanes<Yuv420P3, kYUV420P3, kLate, 1, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// Without steps: the region forms on rows packed one after the other. The
// steps are derived only after the checks, from a width known to be positive.
KroStatus impl_kroiRGBToYUV420_8u_C3P3(const Kro8u* pSrc, Kro8u* const pDst[3], kroiSize roiSize) {
    const int w = roiSize.width > 0 ? roiSize.width : 1;
    const int steps[3] = {steplessLumaStep(w), stepless420ChromaStep(w), stepless420ChromaStep(w)};
    return interleavedToPlanes<Yuv420C3, SrcRGB, kYUV420P3, kLate, 1, 1>(pSrc, steplessC3Step(w), pDst, steps,
                                                                         roiSize);
}
KroStatus impl_kroiRGBToYUV420_8u_P3(const Kro8u* const pSrc[3], Kro8u* const pDst[3], kroiSize roiSize) {
    const int w = roiSize.width > 0 ? roiSize.width : 1;
    const int steps[3] = {steplessLumaStep(w), stepless420ChromaStep(w), stepless420ChromaStep(w)};
    return planesToPlanes<Yuv420P3, kYUV420P3, kLate, 1, 1>(pSrc, steplessLumaStep(w), pDst, steps, roiSize);
}
