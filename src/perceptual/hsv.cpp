// RGB <-> HSV in 8u and 16u, interleaved C3 and AC4 (the source's fourth
// sample is never read, the destination's keeps its value). Entry: null (-8),
// then size (-6); no step is tested; 16u steps are shifted right by 1 into
// samples. Main path of 4 float lanes and a scalar tail; the 16u forward form
// divides in both.
#include "frame/region.h"
#include "impl_decls.h"
#include "perceptual/hsv_forms.h"

using namespace kro;
using namespace kro::hsv;

namespace {

template <class T, int Cn>
using DstOf = std::conditional_t<Cn == 3, DstCT<T, 3>, DstCT<T, 4, Fourth::Keep>>;

template <class Form, class T, int Cn>
KroStatus convert(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roi) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    const SrcCT<T, Cn> src{pSrc, stepInSamples<T>(srcStep)};
    const DstOf<T, Cn> dst{pDst, stepInSamples<T>(dstStep)};
    runRegion(Form{}, src, dst, roi);
    return kroStatusOk;
}

}  // namespace

#define KRO_HSV(TAG, T, FWD, INV)                                                                                  \
    KroStatus impl_kroiRGBToHSV_##TAG##_C3R(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roiSize) {  \
        return convert<FWD, T, 3>(pSrc, srcStep, pDst, dstStep, roiSize);                                         \
    }                                                                                                             \
    KroStatus impl_kroiRGBToHSV_##TAG##_AC4R(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roiSize) { \
        return convert<FWD, T, 4>(pSrc, srcStep, pDst, dstStep, roiSize);                                         \
    }                                                                                                             \
    KroStatus impl_kroiHSVToRGB_##TAG##_C3R(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roiSize) {  \
        return convert<INV, T, 3>(pSrc, srcStep, pDst, dstStep, roiSize);                                         \
    }                                                                                                             \
    KroStatus impl_kroiHSVToRGB_##TAG##_AC4R(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roiSize) { \
        return convert<INV, T, 4>(pSrc, srcStep, pDst, dstStep, roiSize);                                         \
    }

KRO_HSV(8u, Kro8u, Fwd8, Inv<Inv8Scale>)
KRO_HSV(16u, Kro16u, Fwd16, Inv<Inv16Scale>)
