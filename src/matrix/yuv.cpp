// RGB <-> YUV (analogue model) at full resolution, 8-bit samples.
// Each operation names its layouts and the forms of its main path and tail.
// Main paths of 8 pixels run in steps of 16 while 16 remain, then one of 8:
// the form is the same, so only the boundary width & ~7 decides a value.
// Operations whose whole row is defined by a tail form run that same form four
// pixels at a time in 32-bit lanes (Lanes32): identical numbers at every column.
#include "frame/region.h"
#include "impl_decls.h"
#include "matrix/yuv_forms.h"

using namespace kro;
using namespace kro::yuv;

namespace {

using Rgb3 = SrcC8<3, false>;
using Rgb4 = SrcC8<4, false>;
using Rgba = SrcC8<4, false, true>;
using Planes3 = SrcP8<3>;
using Out3 = DstC8<3, false, Alpha::None>;
using Out4Keep = DstC8<4, false, Alpha::Keep>;
using Out4Aval = DstC8<4, false, Alpha::Aval>;
using OutP3 = DstP8<3>;
using OutP4 = DstP8<4>;

}  // namespace

KroStatus impl_kroiRGBToYUV_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    Kernel8<16, 16, Fwd4, Fwd2>::region(Rgb3{pSrc, srcStep}, Out3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

KroStatus impl_kroiRGBToYUV_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep,
                                      kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    Kernel8<16, 8, Fwd4, Fwd2>::region(Rgb3{pSrc, srcStep}, OutP3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

KroStatus impl_kroiRGBToYUV_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep,
                                    kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (anyPlaneNull(pSrc, 3) || anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    Kernel8<16, 16, Fwd4, Fwd3>::region(Planes3{pSrc, srcStep}, OutP3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

KroStatus impl_kroiRGBToYUV_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    Kernel8<16, 4, Lanes32<Fwd1>, Fwd1>::region(Rgb4{pSrc, srcStep}, Out4Keep{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

// Planes 0..2 are checked; plane 3 receives the alpha, so a null plane 3 is
// refused as well rather than written through.
KroStatus impl_kroiRGBToYUV_8u_AC4P4R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[4], int dstStep,
                                       kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (anyPlaneNull(pDst, 4)) return kroStatusNullPointer;
    Kernel8<16, 8, Fwd5, Fwd1>::region(Rgba{pSrc, srcStep}, OutP4{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

KroStatus impl_kroiYUVToRGB_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    Kernel8<16, 8, Inv4, Inv1>::region(Rgb3{pSrc, srcStep}, Out3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

KroStatus impl_kroiYUVToRGB_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    Kernel8<16, 4, Lanes32<Inv1>, Inv1>::region(Rgb4{pSrc, srcStep}, Out4Keep{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

// Vector steps of 16 then 8 pixels (identical values), then the tail.
KroStatus impl_kroiYUVToRGB_8u_C3C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize,
                                      Kro8u aval) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    Kernel8<16, 8, Inv6, Inv2>::region(Rgb3{pSrc, srcStep}, Out4Aval{pDst, dstStep, aval}, roiSize);
    return kroStatusOk;
}

KroStatus impl_kroiYUVToRGB_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                      kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (anyPlaneNull(pSrc, 3)) return kroStatusNullPointer;
    Kernel8<16, 16, Inv5, Inv3>::region(Planes3{pSrc, srcStep}, Out3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

KroStatus impl_kroiYUVToRGB_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep,
                                    kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (anyPlaneNull(pSrc, 3) || anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    Kernel8<16, 4, Lanes32<Inv3>, Inv3>::region(Planes3{pSrc, srcStep}, OutP3{pDst, dstStep}, roiSize);
    return kroStatusOk;
}
