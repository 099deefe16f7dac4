// RGB and BGR <-> HLS for 8u, 16u, 16s and 32f samples.
// Each operation names its layouts, its main-path and tail forms, its block
// and its checks; the arithmetic is in hls_forms.h, the layouts in typed_layout.h.
#include <type_traits>

#include "frame/region.h"
#include "impl_decls.h"
#include "perceptual/hls_forms.h"
#include "perceptual/typed_layout.h"

using namespace kro;
using namespace kro::hls;
using namespace kro::typed;

namespace {

using u8 = Kro8u;
using u16 = Kro16u;
using s16 = Kro16s;
using f32 = Kro32f;

// ------------------------------------------------------------ sides
template <class T>
using C3 = SrcC<T, 3, false>;
template <class T>
using AC4 = SrcC<T, 4, false>;
template <class T>
using OutC3 = DstC<T, 3, false, Fourth::None>;
template <class T>
using OutAC4 = DstC<T, 4, false, Fourth::Keep>;  // fourth channel as it was

using BgrC3 = SrcC<u8, 3, true>;
using BgrAC4 = SrcC<u8, 4, true>;
using BgrP3 = SrcP<u8, 3, true>;
using BgrAP4 = SrcP<u8, 4, true>;
using HlsC3 = SrcC<u8, 3, false>;
using HlsAC4 = SrcC<u8, 4, false>;
using HlsP3 = SrcP<u8, 3, false>;
using HlsAP4 = SrcP<u8, 4, false>;

using OutHlsC3 = DstC<u8, 3, false, Fourth::None>;
using OutHlsAC4Keep = DstC<u8, 4, false, Fourth::Keep>;
using OutHlsC4 = DstC<u8, 4, false, Fourth::FromSrc>;
using OutHlsP3 = DstP<u8, 3, false>;
using OutHlsP4 = DstP<u8, 4, false>;
using OutBgrC3 = DstC<u8, 3, true, Fourth::None>;
using OutBgrC4 = DstC<u8, 4, true, Fourth::FromSrc>;
using OutBgrP3 = DstP<u8, 3, true>;
using OutBgrP4 = DstP<u8, 4, true>;

// ------------------------------------------------------------ kernels
using RgbToHls8C3 = KernelF<8, Fwd1Main, Fwd1Tail, false, Fwd1Main16>;
using RgbToHls8AC4 = KernelF<4, Fwd1Main, Fwd1TailNearest, false, Fwd1Main16>;
using RgbToHls16 = KernelF<4, Fwd2Main, Fwd2Tail>;
using RgbToHls32f = KernelF<4, Fwd4, Fwd4>;  // one per-pixel form, four lanes at a time
using BgrToHls8 = KernelF<4, Fwd3Main, Fwd1Tail>;
using BgrToHls8ByAlignment = KernelF<4, Fwd3Main, Fwd1Tail, true>;
using HlsToRgb8C3 = KernelF<8, Inv1Main, Inv1Tail, false, Inv1Main16>;
using HlsToRgb8AC4 = KernelF<4, Inv1Main, Inv1Tail, false, Inv1Main16>;
using HlsToRgb16 = KernelF<4, Inv2Main, Inv2Tail>;
using HlsToRgb32f = KernelF<4, Inv4Main, Inv4Tail>;
using HlsToBgr8 = KernelF<4, Inv3Main, Inv3Tail>;

// ------------------------------------------------------------ entries
// Byte steps become sample steps by an arithmetic shift (16-bit by 1, 32f by 2).
template <class T>
int samples(int step) {
    return step >> (Sample<T>::kSize == 1 ? 0 : Sample<T>::kSize == 2 ? 1 : 2);
}

// An address and, for a planar side, every element of its array.
template <class Side, class P>
bool deepNull(P p) {
    if (p == nullptr) return true;
    if constexpr (Side::kPlanes > 0) return anyPlaneNull(p, Side::kPlanes);
    return false;
}

// RGB forms: null, size; any step is accepted.
template <class K, class S, class D, class PS, class PD>
KroStatus nullSize(PS pSrc, int srcStep, PD pDst, int dstStep, kroiSize roi) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    using TS = std::remove_cv_t<std::remove_pointer_t<PS>>;
    using TD = std::remove_pointer_t<PD>;
    K::region(S{pSrc, samples<TS>(srcStep)}, D{pDst, samples<TD>(dstStep)}, roi);
    return kroStatusOk;
}

// kroiBGRToHLS_8u_AC4R: null, size, step.
template <class K, class S, class D>
KroStatus nullSizeStep(const u8* pSrc, int srcStep, u8* pDst, int dstStep, kroiSize roi) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    if (srcStep < 1 || dstStep < 1) return kroStatusBadStep;
    K::region(S{pSrc, srcStep}, D{pDst, dstStep}, roi);
    return kroStatusOk;
}

// 8u BGR forms with plane arrays: deep null, step, size.
template <class K, class S, class D, class PS, class PD>
KroStatus deepNullStepSize(PS pSrc, int srcStep, PD pDst, int dstStep, kroiSize roi) {
    if (deepNull<S>(pSrc) || deepNull<D>(pDst)) return kroStatusNullPointer;
    if (srcStep < 1 || dstStep < 1) return kroStatusBadStep;
    if (badSize(roi)) return kroStatusBadSize;
    K::region(S{pSrc, srcStep}, D{pDst, dstStep}, roi);
    return kroStatusOk;
}

}  // namespace

// ------------------------------------------------------------ RGB -> HLS
KroStatus impl_kroiRGBToHLS_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<RgbToHls8C3, C3<u8>, OutC3<u8>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToHLS_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<RgbToHls8AC4, AC4<u8>, OutAC4<u8>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToHLS_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<RgbToHls16, C3<u16>, OutC3<u16>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToHLS_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<RgbToHls16, AC4<u16>, OutAC4<u16>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToHLS_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<RgbToHls16, C3<s16>, OutC3<s16>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToHLS_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<RgbToHls16, AC4<s16>, OutAC4<s16>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToHLS_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<RgbToHls32f, C3<f32>, OutC3<f32>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToHLS_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<RgbToHls32f, AC4<f32>, OutAC4<f32>>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// ------------------------------------------------------------ BGR -> HLS (8u)
// Rows whose destination is 16-byte aligned store with aligned stores.
KroStatus impl_kroiBGRToHLS_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return nullSizeStep<BgrToHls8ByAlignment, BgrAC4, OutHlsAC4Keep>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToHLS_8u_AC4P4R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[4], int dstStep,
                                       kroiSize roiSize) {
    return deepNullStepSize<BgrToHls8, BgrAC4, OutHlsP4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToHLS_8u_AP4C4R(const Kro8u* const pSrc[4], int srcStep, Kro8u* pDst, int dstStep,
                                       kroiSize roiSize) {
    return deepNullStepSize<BgrToHls8, BgrAP4, OutHlsC4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToHLS_8u_AP4R(const Kro8u* const pSrc[4], int srcStep, Kro8u* const pDst[4], int dstStep,
                                     kroiSize roiSize) {
    return deepNullStepSize<BgrToHls8, BgrAP4, OutHlsP4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToHLS_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep,
                                      kroiSize roiSize) {
    return deepNullStepSize<BgrToHls8, BgrC3, OutHlsP3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToHLS_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                      kroiSize roiSize) {
    return deepNullStepSize<BgrToHls8, BgrP3, OutHlsC3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToHLS_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep,
                                    kroiSize roiSize) {
    return deepNullStepSize<BgrToHls8, BgrP3, OutHlsP3>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// ------------------------------------------------------------ HLS -> RGB
KroStatus impl_kroiHLSToRGB_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<HlsToRgb8C3, C3<u8>, OutC3<u8>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiHLSToRGB_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<HlsToRgb8AC4, AC4<u8>, OutAC4<u8>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiHLSToRGB_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<HlsToRgb16, C3<u16>, OutC3<u16>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiHLSToRGB_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<HlsToRgb16, AC4<u16>, OutAC4<u16>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiHLSToRGB_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<HlsToRgb16, C3<s16>, OutC3<s16>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiHLSToRGB_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<HlsToRgb16, AC4<s16>, OutAC4<s16>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiHLSToRGB_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<HlsToRgb32f, C3<f32>, OutC3<f32>>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiHLSToRGB_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return nullSize<HlsToRgb32f, AC4<f32>, OutAC4<f32>>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// ------------------------------------------------------------ HLS -> BGR (8u)
KroStatus impl_kroiHLSToBGR_8u_AC4P4R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[4], int dstStep,
                                       kroiSize roiSize) {
    return deepNullStepSize<HlsToBgr8, HlsAC4, OutBgrP4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiHLSToBGR_8u_AP4C4R(const Kro8u* const pSrc[4], int srcStep, Kro8u* pDst, int dstStep,
                                       kroiSize roiSize) {
    return deepNullStepSize<HlsToBgr8, HlsAP4, OutBgrC4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiHLSToBGR_8u_AP4R(const Kro8u* const pSrc[4], int srcStep, Kro8u* const pDst[4], int dstStep,
                                     kroiSize roiSize) {
    return deepNullStepSize<HlsToBgr8, HlsAP4, OutBgrP4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiHLSToBGR_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep,
                                      kroiSize roiSize) {
    return deepNullStepSize<HlsToBgr8, HlsC3, OutBgrP3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiHLSToBGR_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                      kroiSize roiSize) {
    return deepNullStepSize<HlsToBgr8, HlsP3, OutBgrC3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiHLSToBGR_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep,
                                    kroiSize roiSize) {
    return deepNullStepSize<HlsToBgr8, HlsP3, OutBgrP3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
