// Grey conversions: a colour image to one grey plane by fixed or caller's
// weights, and a grey plane widened to three or four samples a pixel.
// Entry: null (-8), then size (-6); no step is tested. The 16u, 16s and 32f
// colour-to-grey forms count steps in samples (arithmetic shift at entry); the
// 8u and 64f forms and grey-to-colour keep bytes.
#include "frame/region.h"
#include "impl_decls.h"
#include "matrix/gray_forms.h"

using namespace kro;
using namespace kro::gray;

namespace {

// ------------------------------------------------------------ weights for one call
struct Weights8 {
    uint16_t w[3];
    explicit Weights8(const Kro32f* given) {
        for (int k = 0; k < 3; ++k) w[k] = given ? weight8(given[k]) : kFixed8[k];
    }
};
struct Weights32 {
    float w[3];
    explicit Weights32(const Kro32f* given) {
        for (int k = 0; k < 3; ++k) w[k] = given ? given[k] : kFixed32[k];
    }
};
struct Weights64 {
    double w[3];
    explicit Weights64(const Kro64f* given) {
        for (int k = 0; k < 3; ++k) w[k] = given ? given[k] : static_cast<double>(kFixed32[k]);
    }
};

// ------------------------------------------------------------ colour to grey
template <class T>
struct FormOf;
template <>
struct FormOf<Kro8u> {
    using type = Weighted8;
    static type make(const Kro32f* c) { return type(Weights8(c).w); }
};
template <>
struct FormOf<Kro16u> {
    using type = WeightedF<Out::U16>;
    static type make(const Kro32f* c) { return type(Weights32(c).w); }
};
template <>
struct FormOf<Kro16s> {
    using type = WeightedF<Out::S16>;
    static type make(const Kro32f* c) { return type(Weights32(c).w); }
};
template <>
struct FormOf<Kro32f> {
    using type = WeightedF<Out::F32>;
    static type make(const Kro32f* c) { return type(Weights32(c).w); }
};

// Cn = 3 (C3C1R) or 4 (AC4C1R); pCoeffs null: the fixed weights.
template <class T, int Cn>
KroStatus toGray(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roi, const Kro32f* pCoeffs) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    runRegion(FormOf<T>::make(pCoeffs), SrcCT<T, Cn>{pSrc, stepInSamples<T>(srcStep)},
              DstCT<T, 1>{pDst, stepInSamples<T>(dstStep)}, roi);
    return kroStatusOk;
}

template <int Cn>
KroStatus toGray64(const Kro64f* pSrc, int srcStep, Kro64f* pDst, int dstStep, kroiSize roi, const Kro64f* pCoeffs) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    Weighted64<Cn>(Weights64(pCoeffs).w).region(pSrc, srcStep, pDst, dstStep, roi);
    return kroStatusOk;
}

// ------------------------------------------------------------ grey to colour
template <class T, int Cn>
KroStatus fromGray(const T* pSrc, int srcStep, T* pDst, int dstStep, kroiSize roi, T aval = T()) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    Replicate<T, Cn>(aval).region(pSrc, srcStep, pDst, dstStep, roi);
    return kroStatusOk;
}

}  // namespace

// ------------------------------------------------------------ fixed weights
KroStatus impl_kroiRGBToGray_8u_C3C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return toGray<Kro8u, 3>(pSrc, srcStep, pDst, dstStep, roiSize, nullptr);
}
KroStatus impl_kroiRGBToGray_8u_AC4C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return toGray<Kro8u, 4>(pSrc, srcStep, pDst, dstStep, roiSize, nullptr);
}
KroStatus impl_kroiRGBToGray_16u_C3C1R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return toGray<Kro16u, 3>(pSrc, srcStep, pDst, dstStep, roiSize, nullptr);
}
KroStatus impl_kroiRGBToGray_16u_AC4C1R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return toGray<Kro16u, 4>(pSrc, srcStep, pDst, dstStep, roiSize, nullptr);
}
KroStatus impl_kroiRGBToGray_16s_C3C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize) {
    return toGray<Kro16s, 3>(pSrc, srcStep, pDst, dstStep, roiSize, nullptr);
}
KroStatus impl_kroiRGBToGray_16s_AC4C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize) {
    return toGray<Kro16s, 4>(pSrc, srcStep, pDst, dstStep, roiSize, nullptr);
}
KroStatus impl_kroiRGBToGray_32f_C3C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return toGray<Kro32f, 3>(pSrc, srcStep, pDst, dstStep, roiSize, nullptr);
}
KroStatus impl_kroiRGBToGray_32f_AC4C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return toGray<Kro32f, 4>(pSrc, srcStep, pDst, dstStep, roiSize, nullptr);
}

// ------------------------------------------------------------ caller's weights
KroStatus impl_kroiColorToGray_8u_C3C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize,
                                        const Kro32f* pCoeffs) {
    return toGray<Kro8u, 3>(pSrc, srcStep, pDst, dstStep, roiSize, pCoeffs);
}
KroStatus impl_kroiColorToGray_8u_AC4C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize,
                                         const Kro32f* pCoeffs) {
    return toGray<Kro8u, 4>(pSrc, srcStep, pDst, dstStep, roiSize, pCoeffs);
}
KroStatus impl_kroiColorToGray_16u_C3C1R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize,
                                         const Kro32f* pCoeffs) {
    return toGray<Kro16u, 3>(pSrc, srcStep, pDst, dstStep, roiSize, pCoeffs);
}
KroStatus impl_kroiColorToGray_16u_AC4C1R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep,
                                          kroiSize roiSize, const Kro32f* pCoeffs) {
    return toGray<Kro16u, 4>(pSrc, srcStep, pDst, dstStep, roiSize, pCoeffs);
}
KroStatus impl_kroiColorToGray_16s_C3C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize,
                                         const Kro32f* pCoeffs) {
    return toGray<Kro16s, 3>(pSrc, srcStep, pDst, dstStep, roiSize, pCoeffs);
}
KroStatus impl_kroiColorToGray_16s_AC4C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep,
                                          kroiSize roiSize, const Kro32f* pCoeffs) {
    return toGray<Kro16s, 4>(pSrc, srcStep, pDst, dstStep, roiSize, pCoeffs);
}
KroStatus impl_kroiColorToGray_32f_C3C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize,
                                         const Kro32f* pCoeffs) {
    return toGray<Kro32f, 3>(pSrc, srcStep, pDst, dstStep, roiSize, pCoeffs);
}
KroStatus impl_kroiColorToGray_32f_AC4C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep,
                                          kroiSize roiSize, const Kro32f* pCoeffs) {
    return toGray<Kro32f, 4>(pSrc, srcStep, pDst, dstStep, roiSize, pCoeffs);
}
KroStatus impl_kroiColorToGray_64f_C3C1R(const Kro64f* pSrc, int srcStep, Kro64f* pDst, int dstStep, kroiSize roiSize,
                                         const Kro64f* pCoeffs) {
    return toGray64<3>(pSrc, srcStep, pDst, dstStep, roiSize, pCoeffs);
}
KroStatus impl_kroiColorToGray_64f_AC4C1R(const Kro64f* pSrc, int srcStep, Kro64f* pDst, int dstStep,
                                          kroiSize roiSize, const Kro64f* pCoeffs) {
    return toGray64<4>(pSrc, srcStep, pDst, dstStep, roiSize, pCoeffs);
}

// ------------------------------------------------------------ grey to colour
KroStatus impl_kroiGrayToRGB_8u_C1C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return fromGray<Kro8u, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGrayToRGB_8u_C1C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize,
                                      Kro8u aval) {
    return fromGray<Kro8u, 4>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}
KroStatus impl_kroiGrayToRGB_16u_C1C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return fromGray<Kro16u, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGrayToRGB_16u_C1C4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize,
                                       Kro16u aval) {
    return fromGray<Kro16u, 4>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}
KroStatus impl_kroiGrayToRGB_32f_C1C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return fromGray<Kro32f, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiGrayToRGB_32f_C1C4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize,
                                       Kro32f aval) {
    return fromGray<Kro32f, 4>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}
