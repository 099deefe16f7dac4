// Entry layer of the subsampled encoders: the checks in the operation's order,
// then the region driver on the operation's sides. Each exported operation is
// one line naming its encoder, its layouts, its check order and its smallest
// region.
#pragma once

#include "subsampled/encode_kernel.h"

namespace kro::sub {

// 4:2:0 and 4:1:1 regions that are not whole blocks warn; 4:2:2 never does.
constexpr KroStatus encodeStatus(Block b, kroiSize roi) {
    return b.h == 1 && b.w == 2 ? kroStatusOk : oddStatus(b, roi);
}

inline bool noPlaneNull() { return false; }

// A step array is no image address: it is tested after every check of the
// operation has passed, so a rejected region still reports its size, and a
// null array is never dereferenced.
template <class... P>
inline KroStatus stepArraysNull(const P*... steps) {
    return anyNull(steps...) ? kroStatusNullPointer : kroStatusOk;
}

// Interleaved source to three planes with a step each.
template <class Enc, class Src, const Planar& F, CheckOrder O, int MinW, int MinH>
KroStatus interleavedToPlanes(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3],
                              kroiSize roi) {
    KroStatus st = checkEntry<O>(anyNull(pSrc, pDst), [&] { return anyPlaneNull(pDst, 3); }, roi, MinW, MinH);
    if (st == kroStatusOk) st = stepArraysNull(dstStep);
    if (st != kroStatusOk) return st;
    Enc::region(Src{pSrc, srcStep}, DstPlanes<F>{pDst, dstStep}, roi);
    return encodeStatus(F.block, roi);
}

// RGB planes (one step) to three planes with a step each.
template <class Enc, const Planar& F, CheckOrder O, int MinW, int MinH>
KroStatus planesToPlanes(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], const int dstStep[3],
                         kroiSize roi) {
    KroStatus st = checkEntry<O>(
        anyNull(pSrc, pDst), [&] { return anyPlaneNull(pSrc, 3) || anyPlaneNull(pDst, 3); }, roi, MinW, MinH);
    if (st == kroStatusOk) st = stepArraysNull(dstStep);
    if (st != kroStatusOk) return st;
    Enc::region(SrcRGBPlanes{pSrc, srcStep}, DstPlanes<F>{pDst, dstStep}, roi);
    return encodeStatus(F.block, roi);
}

// Interleaved source to a luma plane and a chroma-pair plane: three addresses, no array.
template <class Enc, class Src, const SemiPlanar& F, CheckOrder O, int MinW, int MinH>
KroStatus interleavedToSemi(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr,
                            int dstCbCrStep, kroiSize roi) {
    const KroStatus st = checkEntry<O>(anyNull(pSrc, pDstY, pDstCbCr), noPlaneNull, roi, MinW, MinH);
    if (st != kroStatusOk) return st;
    Enc::region(Src{pSrc, srcStep}, DstSemi<F>{pDstY, dstYStep, pDstCbCr, dstCbCrStep}, roi);
    return encodeStatus(F.block, roi);
}

// Interleaved source to packed 4:2:2.
template <class Enc, class Src, const Packed422& F, int MinW>
KroStatus interleavedToPacked(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roi) {
    const KroStatus st = checkEntry<CheckOrder::NullSize>(anyNull(pSrc, pDst), noPlaneNull, roi, MinW, 1);
    if (st != kroStatusOk) return st;
    Enc::region(Src{pSrc, srcStep}, DstPacked<F>{pDst, dstStep}, roi);
    return kroStatusOk;
}

// RGB planes to packed 4:2:2.
template <class Enc, const Packed422& F>
KroStatus planesToPacked(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roi) {
    const KroStatus st = checkEntry<CheckOrder::NullSizeDeepNull>(
        anyNull(pSrc, pDst), [&] { return anyPlaneNull(pSrc, 3); }, roi, 1, 1);
    if (st != kroStatusOk) return st;
    Enc::region(SrcRGBPlanes{pSrc, srcStep}, DstPacked<F>{pDst, dstStep}, roi);
    return kroStatusOk;
}

}  // namespace kro::sub
