// RGB <-> YCC, 8-bit samples. Main paths of 8 pixels (C3) and 4 pixels (AC4),
// tails in 16 fractional bits; AC4 rows keep the destination's fourth sample.
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
