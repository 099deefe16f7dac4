// RGB <-> XYZ in 8u, 16u, 16s and 32f, interleaved C3 and AC4 (the fourth
// sample of a source pixel is never read, that of a destination pixel keeps
// its value). Entry: null (-8), then size (-6); no step is tested; 16u and 16s
// steps are shifted right by 1 into samples, 32f steps by 2, 8u kept in bytes.
// One form per type and direction serves both layouts.
#include "frame/region.h"
#include "impl_decls.h"
#include "matrix/xyz_forms.h"

using namespace kro;
using namespace kro::xyz;

namespace {

// The form of a type and direction; Cn picks the 8u main step (8 pixels for C3, 4 for AC4).
template <class T, bool ToXyz, int Cn>
struct FormOf;
template <int Cn>
struct FormOf<Kro8u, true, Cn> {
    using type = Matrix8<ToXyzMain8, ToXyzTail8, Cn == 3 ? 8 : 4>;
};
template <int Cn>
struct FormOf<Kro8u, false, Cn> {
    using type = Matrix8<ToRgbMain8, ToRgbTail8, Cn == 3 ? 8 : 4>;
};
template <int Cn>
struct FormOf<Kro16u, true, Cn> {
    using type = MatrixF<kToXyz, Out::U16>;
};
template <int Cn>
struct FormOf<Kro16u, false, Cn> {
    using type = MatrixF<kToRgb, Out::U16>;
};
template <int Cn>
struct FormOf<Kro16s, true, Cn> {
    using type = MatrixF<kToXyz, Out::S16>;
};
template <int Cn>
struct FormOf<Kro16s, false, Cn> {
    using type = MatrixF<kToRgb, Out::S16>;
};
template <int Cn>
struct FormOf<Kro32f, true, Cn> {
    using type = MatrixF<kToXyz, Out::F32ClampZ>;
};
template <int Cn>
struct FormOf<Kro32f, false, Cn> {
    using type = MatrixF<kToRgb, Out::F32Clamp>;
};

template <class T, int Cn>
using DstOf = std::conditional_t<Cn == 3, DstCT<T, 3>, DstCT<T, 4, Fourth::Keep>>;

template <class T, bool ToXyz, int Cn>
KroStatus convert(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roi) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    runRegion(typename FormOf<T, ToXyz, Cn>::type{}, SrcCT<T, Cn>{pSrc, stepInSamples<T>(srcStep)},
              DstOf<T, Cn>{pDst, stepInSamples<T>(dstStep)}, roi);
    return kroStatusOk;
}

}  // namespace

#define KRO_XYZ_PAIR(TAG, T)                                                                                      \
    KroStatus impl_kroiRGBToXYZ_##TAG##_C3R(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roiSize) {  \
        return convert<T, true, 3>(pSrc, srcStep, pDst, dstStep, roiSize);                                         \
    }                                                                                                             \
    KroStatus impl_kroiRGBToXYZ_##TAG##_AC4R(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roiSize) { \
        return convert<T, true, 4>(pSrc, srcStep, pDst, dstStep, roiSize);                                         \
    }                                                                                                             \
    KroStatus impl_kroiXYZToRGB_##TAG##_C3R(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roiSize) {  \
        return convert<T, false, 3>(pSrc, srcStep, pDst, dstStep, roiSize);                                        \
    }                                                                                                             \
    KroStatus impl_kroiXYZToRGB_##TAG##_AC4R(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roiSize) { \
        return convert<T, false, 4>(pSrc, srcStep, pDst, dstStep, roiSize);                                       \
    }

KRO_XYZ_PAIR(8u, Kro8u)
KRO_XYZ_PAIR(16u, Kro16u)
KRO_XYZ_PAIR(16s, Kro16s)
KRO_XYZ_PAIR(32f, Kro32f)
