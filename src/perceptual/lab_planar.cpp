// RGB <-> CIE L*a*b* on three planes of floats or doubles, each plane with
// its own byte step; plain forms (kroiSize) and _L forms (kroiSizeL). The
// float kernels are the interleaved family's forms (lab_forms.h) on planar
// rows; the double kernels are their own design (lab_planar_forms.h). Main
// path of 4 (float) or 2 (double) pixels, scalar tail of the same numbers.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "frame/region.h"
#include "impl_decls.h"
#include "perceptual/lab_forms.h"
#include "perceptual/lab_planar_forms.h"

using namespace kro;

namespace {

// ------------------------------------------------------------ lanes of a sample type
template <class T>
struct PlanarLanes;
template <>
struct PlanarLanes<float> {  // four pixels of one plane
    static constexpr int N = 4;
    using L = lab::F32x4;
    static L load(const uint8_t* p) { return L(_mm_loadu_ps(reinterpret_cast<const float*>(p))); }
    static void store(uint8_t* p, L v) { _mm_storeu_ps(reinterpret_cast<float*>(p), v.v); }
};
template <>
struct PlanarLanes<double> {  // two pixels of one plane
    static constexpr int N = 2;
    using L = lab64::D2;
    static L load(const uint8_t* p) { return L(_mm_loadu_pd(reinterpret_cast<const double*>(p))); }
    static void store(uint8_t* p, L v) { _mm_storeu_pd(reinterpret_cast<double*>(p), v.v); }
};

// ------------------------------------------------------------ row kernel and region driver
template <class T, class Form>
struct PlanarKernel {
    using PL = PlanarLanes<T>;
    static constexpr int N = PL::N;
    static constexpr std::ptrdiff_t S = sizeof(T);

    // Pixels 0 .. (width AND NOT (N - 1)) - 1 in vector steps, the rest one by one.
    static void row(const uint8_t* const (&s)[3], uint8_t* const (&d)[3], std::ptrdiff_t width) {
        const std::ptrdiff_t n = width & ~static_cast<std::ptrdiff_t>(N - 1);
        std::ptrdiff_t x = 0;
        for (; x < n; x += N) {
            typename PL::L in[3], out[3];
            for (int k = 0; k < 3; ++k) in[k] = PL::load(s[k] + S * x);
            Form::apply(in, out);
            for (int k = 0; k < 3; ++k) PL::store(d[k] + S * x, out[k]);
        }
        for (; x < width; ++x) {
            T in[3], out[3];
            for (int k = 0; k < 3; ++k) std::memcpy(&in[k], s[k] + S * x, sizeof(T));
            Form::apply(in, out);
            for (int k = 0; k < 3; ++k) std::memcpy(d[k] + S * x, &out[k], sizeof(T));
        }
    }

    // Rows 0 .. height - 1; row y of plane p at plane address + y x step of p.
    // Fold: a region whose six steps all equal the row's length in bytes is
    // one row of width x height pixels (its tail at the region's end).
    template <bool Fold>
    static void region(const T* const pSrc[3], const int srcStep[3], T* const pDst[3], const int dstStep[3],
                       int width, int height) {
        const uint8_t* s[3];
        uint8_t* d[3];
        bool packed = true;
        for (int k = 0; k < 3; ++k) {
            s[k] = reinterpret_cast<const uint8_t*>(pSrc[k]);
            d[k] = reinterpret_cast<uint8_t*>(pDst[k]);
            packed = packed && srcStep[k] == S * width && dstStep[k] == S * width;
        }
        if (Fold && packed) {
            row(s, d, static_cast<std::ptrdiff_t>(width) * height);
            return;
        }
        for (int y = 0; y < height; ++y) {
            const uint8_t* sr[3];
            uint8_t* dr[3];
            for (int k = 0; k < 3; ++k) {
                sr[k] = s[k] + static_cast<std::ptrdiff_t>(y) * srcStep[k];
                dr[k] = d[k] + static_cast<std::ptrdiff_t>(y) * dstStep[k];
            }
            row(sr, dr, width);
        }
    }
};

// ------------------------------------------------------------ entries
// _L forms: pSrc, pDst, the source planes, srcStep, the destination planes,
// dstStep (each -8), then width and height (-6).
template <class T, class Form, bool Fold>
KroStatus entryL(const T* const pSrc[3], const int srcStep[3], T* const pDst[3], const int dstStep[3],
                 kroiSizeL roi) {
    if (pSrc == nullptr || pDst == nullptr) return kroStatusNullPointer;
    if (anyPlaneNull(pSrc, 3) || srcStep == nullptr) return kroStatusNullPointer;
    if (anyPlaneNull(pDst, 3) || dstStep == nullptr) return kroStatusNullPointer;
    if (roi.width < 1 || roi.height < 1) return kroStatusBadSize;
    PlanarKernel<T, Form>::template region<Fold>(pSrc, srcStep, pDst, dstStep, roi.width, roi.height);
    return kroStatusOk;
}
// Plain forms: the step arrays (-8), copied into _L form; the rest is the _L form's.
template <class T, class Form, bool Fold>
KroStatus entry(const T* const pSrc[3], const int srcStep[3], T* const pDst[3], const int dstStep[3], kroiSize roi) {
    if (srcStep == nullptr || dstStep == nullptr) return kroStatusNullPointer;
    const int s[3] = {srcStep[0], srcStep[1], srcStep[2]};
    const int d[3] = {dstStep[0], dstStep[1], dstStep[2]};
    return entryL<T, Form, Fold>(pSrc, s, pDst, d, kroiSizeL{roi.width, roi.height});
}

using ToLab32f = lab::ToLab<lab::WhiteF, lab::Series8, lab::LabF>;
using FromLab32f = lab::FromLab<lab::LabF, lab::WhiteF, lab::RgbFOut>;
using ToLab64f = lab64::ToLab;
using FromLab64f = lab64::FromLab;

}  // namespace

KroStatus impl_kroiRGBToLab_32f_P3R(const Kro32f* const pSrc[3], const int srcStep[3], Kro32f* const pDst[3],
                                    const int dstStep[3], kroiSize roiSize) {
    return entry<float, ToLab32f, false>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToLab_32f_P3R_L(const Kro32f* const pSrc[3], const int srcStep[3], Kro32f* const pDst[3],
                                      const int dstStep[3], kroiSizeL roiSize) {
    return entryL<float, ToLab32f, false>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLabToRGB_32f_P3R(const Kro32f* const pSrc[3], const int srcStep[3], Kro32f* const pDst[3],
                                    const int dstStep[3], kroiSize roiSize) {
    return entry<float, FromLab32f, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLabToRGB_32f_P3R_L(const Kro32f* const pSrc[3], const int srcStep[3], Kro32f* const pDst[3],
                                      const int dstStep[3], kroiSizeL roiSize) {
    return entryL<float, FromLab32f, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToLab_64f_P3R(const Kro64f* const pSrc[3], const int srcStep[3], Kro64f* const pDst[3],
                                    const int dstStep[3], kroiSize roiSize) {
    return entry<double, ToLab64f, false>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToLab_64f_P3R_L(const Kro64f* const pSrc[3], const int srcStep[3], Kro64f* const pDst[3],
                                      const int dstStep[3], kroiSizeL roiSize) {
    return entryL<double, ToLab64f, false>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLabToRGB_64f_P3R(const Kro64f* const pSrc[3], const int srcStep[3], Kro64f* const pDst[3],
                                    const int dstStep[3], kroiSize roiSize) {
    return entry<double, FromLab64f, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLabToRGB_64f_P3R_L(const Kro64f* const pSrc[3], const int srcStep[3], Kro64f* const pDst[3],
                                      const int dstStep[3], kroiSizeL roiSize) {
    return entryL<double, FromLab64f, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
