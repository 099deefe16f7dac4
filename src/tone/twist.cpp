// Colour twist on 8u, 16u, 16s and 32f samples, interleaved C3 and AC4 (the
// fourth sample never written), planar P3, each also in place; and the 4 x 4
// form on 32f C4. Entry: null (images, plane elements, matrix) -8, size -6,
// step below 1 -16. Steps stay in bytes. The integer forms run under
// round-to-nearest and give the caller's mode back; the 32f forms run under
// the caller's mode.
#include "frame/region.h"
#include "impl_decls.h"
#include "tone/twist_forms.h"

using namespace kro;
using namespace kro::twist;

namespace {

bool badStep(int a, int b) { return a < 1 || b < 1; }

// A region whose rows are packed end to end (both steps one row's bytes) runs
// as one row; the results are the same either way.
kroiSize folded(kroiSize roi, int srcStep, int dstStep, int pixelBytes) {
    const long long rowBytes = static_cast<long long>(roi.width) * pixelBytes;
    const long long pixels = static_cast<long long>(roi.width) * roi.height;
    if (srcStep == rowBytes && dstStep == rowBytes && pixels <= 0x7fffffff) return {static_cast<int>(pixels), 1};
    return roi;
}

// The region run of a form, under round-to-nearest where the samples are integers.
template <class T, class Src, class Dst>
void runTwist(const Kro32f* twist, const Src& src, const Dst& dst, kroiSize roi) {
    const Affine3<T> form(twist);
    if constexpr (Bounds<T>::clamps) {
        const NearestRounding nearest;
        runRegion(form, src, dst, roi);
    } else {
        runRegion(form, src, dst, roi);
    }
}

template <class T, int Cn>
using DstOf = std::conditional_t<Cn == 3, DstCB<T, 3>, DstCB<T, 4, Fourth::Keep>>;

template <class T, int Cn>
KroStatus twistC(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roi, const Kro32f* twist) {
    if (anyNull(pSrc, pDst, twist)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    if (badStep(srcStep, dstStep)) return kroStatusBadStep;
    if constexpr (std::is_same_v<T, Kro32f> && Cn == 3) roi = folded(roi, srcStep, dstStep, 12);
    runTwist<T>(twist, SrcCB<T, Cn>{pSrc, srcStep}, DstOf<T, Cn>{pDst, dstStep}, roi);
    return kroStatusOk;
}

template <class T>
KroStatus twistP(const T* const* pSrc, int srcStep, T* const* pDst, int dstStep, kroiSize roi,
                 const Kro32f* twist) {
    if (anyNull(pSrc, pDst, twist) || anyPlaneNull(pSrc, 3) || anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    if (badStep(srcStep, dstStep)) return kroStatusBadStep;
    runTwist<T>(twist, SrcPB<T>{pSrc, srcStep}, DstPB<T>{pDst, dstStep}, roi);
    return kroStatusOk;
}

// In place: the plane array serves both sides (checked once as the source).
template <class T>
KroStatus twistIP(T* const* pSrcDst, int step, kroiSize roi, const Kro32f* twist) {
    if (anyNull(pSrcDst, twist) || anyPlaneNull(pSrcDst, 3)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    if (badStep(step, step)) return kroStatusBadStep;
    runTwist<T>(twist, SrcPB<T>{pSrcDst, step}, DstPB<T>{pSrcDst, step}, roi);
    return kroStatusOk;
}

}  // namespace

#define KRO_TWIST(NAME, T)                                                                                          \
    KroStatus impl_##NAME##_C3R(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roiSize,                 \
                                const Kro32f twist[3][4]) {                                                         \
        return twistC<T, 3>(pSrc, srcStep, pDst, dstStep, roiSize, reinterpret_cast<const Kro32f*>(twist));                                   \
    }                                                                                                               \
    KroStatus impl_##NAME##_AC4R(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roiSize,                \
                                 const Kro32f twist[3][4]) {                                                        \
        return twistC<T, 4>(pSrc, srcStep, pDst, dstStep, roiSize, reinterpret_cast<const Kro32f*>(twist));                                   \
    }                                                                                                               \
    KroStatus impl_##NAME##_C3IR(T* pSrcDst, int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]) {          \
        return twistC<T, 3>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, reinterpret_cast<const Kro32f*>(twist));                       \
    }                                                                                                               \
    KroStatus impl_##NAME##_AC4IR(T* pSrcDst, int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]) {         \
        return twistC<T, 4>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, reinterpret_cast<const Kro32f*>(twist));                       \
    }                                                                                                               \
    KroStatus impl_##NAME##_P3R(const T* const pSrc[3], int srcStep, T* const pDst[3], int dstStep, kroiSize roiSize, \
                                const Kro32f twist[3][4]) {                                                         \
        return twistP<T>(pSrc, srcStep, pDst, dstStep, roiSize, reinterpret_cast<const Kro32f*>(twist));                                      \
    }                                                                                                               \
    KroStatus impl_##NAME##_IP3R(T* const pSrcDst[3], int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]) { \
        return twistIP<T>(pSrcDst, srcDstStep, roiSize, reinterpret_cast<const Kro32f*>(twist));                                              \
    }

KRO_TWIST(kroiColorTwist32f_8u, Kro8u)
KRO_TWIST(kroiColorTwist32f_16u, Kro16u)
KRO_TWIST(kroiColorTwist32f_16s, Kro16s)
KRO_TWIST(kroiColorTwist_32f, Kro32f)

// 4 x 4 on four float channels: two pixels a step, the odd last one scalar.
KroStatus impl_kroiColorTwist_32f_C4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize,
                                      const Kro32f twist[4][4]) {
    if (anyNull(pSrc, pDst, twist)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    if (badStep(srcStep, dstStep)) return kroStatusBadStep;
    const Linear4 form(reinterpret_cast<const Kro32f*>(twist));
    const kroiSize roi = folded(roiSize, srcStep, dstStep, 16);
    for (int y = 0; y < roi.height; ++y) linear4Row(form, atByte(pSrc, y, srcStep), atByte(pDst, y, dstStep), roi.width);
    return kroStatusOk;
}
