// RGB and BGR <-> studio-range YCbCr at full resolution, 8-bit samples.
// Each operation names its layouts, the forms of its main path and tail, its
// vector steps and its checks.
#include "frame/layout8_aligned.h"
#include "frame/region.h"
#include "impl_decls.h"
#include "matrix/ycbcr_forms.h"
#include "matrix/ycbcr_rows.h"

using namespace kro;
using namespace kro::ycbcr;

namespace {

using Rgb3 = SrcC3Blend<false>;
using Rgb4 = SrcC8<4, false>;  // fourth sample never read by the tail
using Planes3 = SrcP8<3>;
using Planes3A = SrcP8Aligned<3>;
using Out3 = DstC3Blend<false>;
using OutBgr3 = DstC3Blend<true>;
using Out4Keep = DstC8<4, false, Alpha::Keep>;
using Out4Zero = DstC8<4, false, Alpha::ZeroMain>;
using Out4Aval = DstC8<4, false, Alpha::Aval>;
using OutBgr4Aval = DstC8<4, true, Alpha::Aval>;
using OutP3 = DstP8<3>;
using OutP3A = DstP8Aligned<3>;

}  // namespace

// ------------------------------------------------------------ RGB -> YCbCr

KroStatus impl_kroiRGBToYCbCr_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    KernelYcc<16, 16, Fwd2, Fwd1>::region(Rgb3{pSrc, srcStep}, Out3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

// The vector steps write 0 to the fourth sample; the tail leaves it as it was.
KroStatus impl_kroiRGBToYCbCr_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    Kernel8<16, 16, Fwd2, Fwd1>::region(Rgb4{pSrc, srcStep}, Out4Zero{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

// Main path of 8-pixel blocks, run 16 at a time while 16 remain.
KroStatus impl_kroiRGBToYCbCr_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep,
                                        kroiSize roiSize) {
    if (anyNull(pSrc, pDst) || anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    KernelYcc<16, 8, Fwd3, Fwd1>::region(Rgb3{pSrc, srcStep}, OutP3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

KroStatus impl_kroiRGBToYCbCr_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep,
                                         kroiSize roiSize) {
    if (anyNull(pSrc, pDst) || anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    Kernel8<16, 8, Fwd3, Fwd1>::region(Rgb4{pSrc, srcStep}, OutP3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

// Aligned planes and steps: 16 pixels a step on aligned lines; else 8 a step.
KroStatus impl_kroiRGBToYCbCr_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep,
                                      kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (anyPlaneNull(pSrc, 3) || anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    if (planesAligned16(pSrc, 3, srcStep) && planesAligned16(pDst, 3, dstStep))
        Kernel8<16, 8, Fwd3, Fwd1>::region(Planes3A{pSrc, srcStep}, OutP3A{pDst, dstStep}, roiSize);
    else
        Kernel8<8, 8, Fwd3, Fwd1>::region(Planes3{pSrc, srcStep}, OutP3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

// ------------------------------------------------------------ YCbCr -> RGB, BGR

// Main path of 8-pixel blocks: 16 a step, then one step of 8, then the tail.
KroStatus impl_kroiYCbCrToRGB_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    KernelYcc<16, 8, Inv4, Inv2>::region(Rgb3{pSrc, srcStep}, Out3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

// Whole rows through inverse form 1; the fourth sample is left as it was.
KroStatus impl_kroiYCbCrToRGB_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    Kernel8<16, 4, Inv1, Inv1>::region(Rgb4{pSrc, srcStep}, Out4Keep{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

KroStatus impl_kroiYCbCrToRGB_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                        kroiSize roiSize) {
    if (anyNull(pSrc, pDst) || anyPlaneNull(pSrc, 3)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    Kernel8<16, 8, Inv4, Inv2>::region(Planes3{pSrc, srcStep}, Out3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

KroStatus impl_kroiYCbCrToBGR_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                        kroiSize roiSize) {
    if (anyNull(pSrc, pDst) || anyPlaneNull(pSrc, 3)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    Kernel8<16, 8, Inv4, Inv2>::region(Planes3{pSrc, srcStep}, OutBgr3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

// Main path of 8-pixel blocks in inverse form 6, tail in form 2; aval everywhere.
KroStatus impl_kroiYCbCrToRGB_8u_P3C4R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                        kroiSize roiSize, Kro8u aval) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (anyPlaneNull(pSrc, 3)) return kroStatusNullPointer;
    Kernel8<16, 8, Inv6, Inv2>::region(Planes3{pSrc, srcStep}, Out4Aval{pDst, dstStep, aval}, roiSize);
    return kroStatusOk;
}

// Every pixel in inverse form 6: vector steps of 16, 8, 4, then the same form
// one pixel at a time.
KroStatus impl_kroiYCbCrToBGR_8u_P3C4R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                        kroiSize roiSize, Kro8u aval) {
    if (anyNull(pSrc, pDst) || anyPlaneNull(pSrc, 3)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    Kernel8<16, 4, Inv6, Inv6>::region(Planes3{pSrc, srcStep}, OutBgr4Aval{pDst, dstStep, aval}, roiSize);
    return kroStatusOk;
}

// Main path of 4-pixel blocks in inverse form 5, tail in form 3. Aligned planes
// and steps: 16 a step on aligned lines; else 8 a step; then one step of 4.
KroStatus impl_kroiYCbCrToRGB_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep,
                                      kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (anyPlaneNull(pSrc, 3) || anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    if (planesAligned16(pSrc, 3, srcStep) && planesAligned16(pDst, 3, dstStep))
        Kernel8<16, 4, Inv5, Inv3>::region(Planes3A{pSrc, srcStep}, OutP3A{pDst, dstStep}, roiSize);
    else
        Kernel8<8, 4, Inv5, Inv3>::region(Planes3{pSrc, srcStep}, OutP3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

// BT.709: every pixel in inverse form 7 (G by negative weights), vector and scalar.
KroStatus impl_kroiYCbCrToBGR_709CSC_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                               kroiSize roiSize) {
    if (anyNull(pSrc, pDst) || anyPlaneNull(pSrc, 3)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    Kernel8<16, 4, Inv7, Inv7>::region(Planes3{pSrc, srcStep}, OutBgr3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

// BT.709: every pixel in inverse form 8 (G by subtraction); aval everywhere.
KroStatus impl_kroiYCbCrToBGR_709CSC_8u_P3C4R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                               kroiSize roiSize, Kro8u aval) {
    if (anyNull(pSrc, pDst) || anyPlaneNull(pSrc, 3)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    Kernel8<16, 4, Inv8, Inv8>::region(Planes3{pSrc, srcStep}, OutBgr4Aval{pDst, dstStep, aval}, roiSize);
    return kroStatusOk;
}
