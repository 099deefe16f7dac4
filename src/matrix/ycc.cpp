// RGB <-> YCC in 8u, 16u, 16s and 32f, interleaved C3 and AC4. 8u: main paths
// of 8 pixels (C3) and 4 pixels (AC4), tails in 16 fractional bits. 16u, 16s,
// 32f: main paths of 4 float lanes and scalar tails; 16-bit steps are shifted
// right by 1 into samples, 32f steps by 2. Entry: null (-8), then size (-6); no
// step is tested. AC4 rows never read the source's fourth sample and keep the
// destination's, in every type and path. One form per type and direction
// serves both layouts.
#include "frame/region.h"
#include "impl_decls.h"
#include "matrix/ycc_forms.h"

using namespace kro;
using namespace kro::ycc;

namespace {

template <class Kernel, int Cn>
KroStatus run(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    constexpr Alpha A = Cn == 3 ? Alpha::None : Alpha::Keep;
    Kernel::region(SrcC8<Cn, false>{pSrc, srcStep}, DstC8<Cn, false, A>{pDst, dstStep}, roiSize);
    return kroStatusOk;
}

}  // namespace

KroStatus impl_kroiRGBToYCC_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return run<Kernel8<8, 8, FwdVec, FwdScalar>, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToYCC_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return run<Kernel8<8, 4, FwdVec, FwdScalar>, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiYCCToRGB_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return run<Kernel8<8, 8, InvVec, InvScalar>, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiYCCToRGB_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return run<Kernel8<8, 4, InvVec, InvScalar>, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}

namespace {

template <class T, int Cn>
using DstOf = std::conditional_t<Cn == 3, DstCT<T, 3>, DstCT<T, 4, Fourth::Keep>>;

template <class Form, class T, int Cn>
KroStatus runTyped(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roi) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    runRegion(Form{}, SrcCT<T, Cn>{pSrc, stepInSamples<T>(srcStep)}, DstOf<T, Cn>{pDst, stepInSamples<T>(dstStep)},
              roi);
    return kroStatusOk;
}

}  // namespace

#define KRO_YCC_TYPED(TAG, T, FWD, INV)                                                                            \
    KroStatus impl_kroiRGBToYCC_##TAG##_C3R(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roiSize) {  \
        return runTyped<FWD, T, 3>(pSrc, srcStep, pDst, dstStep, roiSize);                                        \
    }                                                                                                             \
    KroStatus impl_kroiRGBToYCC_##TAG##_AC4R(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roiSize) { \
        return runTyped<FWD, T, 4>(pSrc, srcStep, pDst, dstStep, roiSize);                                        \
    }                                                                                                             \
    KroStatus impl_kroiYCCToRGB_##TAG##_C3R(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roiSize) {  \
        return runTyped<INV, T, 3>(pSrc, srcStep, pDst, dstStep, roiSize);                                        \
    }                                                                                                             \
    KroStatus impl_kroiYCCToRGB_##TAG##_AC4R(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roiSize) { \
        return runTyped<INV, T, 4>(pSrc, srcStep, pDst, dstStep, roiSize);                                        \
    }

KRO_YCC_TYPED(16u, Kro16u, Fwd16u, Inv16u)
KRO_YCC_TYPED(16s, Kro16s, Fwd16s, Inv16s)
KRO_YCC_TYPED(32f, Kro32f, Fwd32f, Inv32f)
