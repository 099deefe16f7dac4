// BGR to 4:1:1 planes: chroma from four pixels of one row.
#include "impl_decls.h"
#include "subsampled/encode_entry.h"

using namespace kro;
using namespace kro::sub;

namespace {

// Columns past the last whole block: luma by L5 (AC4), or left alone (C3).
using Studio411Ac4 = Encoder<4, 1, spanS16, L4, C3, L5, L5, C4<33587200>, OddLuma<L5>>;
using Studio411C3 = Encoder<4, 1, spanS16, L3, C2, L5, L5, C4<33587200>, OddNone>;

constexpr auto kDeep = CheckOrder::DeepNullSize;

}  // namespace

KroStatus impl_kroiBGRToYCbCr411_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                           const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Studio411Ac4, SrcBGRx, kYCbCr411P3, kDeep, 4, 1>(pSrc, srcStep, pDst, dstStep,
                                                                              roiSize);
}
KroStatus impl_kroiBGRToYCbCr411_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3],
                                          const int dstStep[3], kroiSize roiSize) {
    return interleavedToPlanes<Studio411C3, SrcBGR, kYCbCr411P3, kDeep, 4, 1>(pSrc, srcStep, pDst, dstStep, roiSize);
}
