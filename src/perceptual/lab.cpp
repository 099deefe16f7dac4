// RGB / BGR <-> CIE L*a*b* on interleaved pixels, in 32-bit floats for every
// sample type. Each operation is a conversion (forward or inverse, with its
// white scale, series and sample encodings) run over a source and a
// destination row layout: main path of sixteen pixels (four groups of four
// float lanes), then four, scalar tail of the same numbers.
#include "frame/region.h"
#include "impl_decls.h"
#include "perceptual/lab_layout.h"

using namespace kro;
using namespace kro::lab;

namespace {

// ------------------------------------------------------------ conversions
// Forward (RGB to Lab) and Inverse (Lab to RGB): lab_forms.h.
template <class White, class Series, class Out>
using Forward = ToLab<White, Series, Out>;
template <class In, class White, class Out>
using Inverse = FromLab<In, White, Out>;

// ------------------------------------------------------------ row kernel and region driver
template <class Conv, class Src, class Dst>
struct LabKernel {
    // Sixteen pixels a step (four groups of four side by side) while sixteen
    // remain, then four, then pixel by pixel: the same numbers in each.
    // Flattened: the conversions are inlined, no call inside the loops.
    [[gnu::flatten]] static void row(const typename Src::Row& s, const typename Dst::Row& d, int width) {
        int x = 0;
        for (; x + 16 <= width; x += 16) {
            typename Src::Lanes16 in[3];
            typename Dst::Lanes16 out[3];
            s.load16(x, in);
            Conv::apply(in, out);
            d.store16(x, out);
        }
        for (; x + 4 <= width; x += 4) {
            typename Src::Lanes in[3];
            typename Dst::Lanes out[3];
            s.load4(x, in);
            Conv::apply(in, out);
            d.store4(x, out);
        }
        for (; x < width; ++x) {
            typename Src::One in[3];
            typename Dst::One out[3];
            s.get(x, in);
            Conv::apply(in, out);
            d.put(x, out);
        }
    }
    static void region(const Src& src, const Dst& dst, kroiSize roi) {
        for (int y = 0; y < roi.height; ++y) row(src.row(y), dst.row(y), roi.width);
    }
    // Entry: null addresses (-8), then the size (-6); steps stay in bytes.
    template <class SP, class DP>
    static KroStatus entry(const SP* pSrc, int srcStep, DP* pDst, int dstStep, kroiSize roi) {
        if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
        if (badSize(roi)) return kroStatusBadSize;
        region(Src{reinterpret_cast<const uint8_t*>(pSrc), srcStep}, Dst{reinterpret_cast<uint8_t*>(pDst), dstStep},
               roi);
        return kroStatusOk;
    }
};

// ------------------------------------------------------------ operations
using ToLab8 = Forward<White8, Series4, Lab8>;
using ToLab16 = Forward<White8, Series8Short, Lab16>;
using ToLabF = Forward<WhiteF, Series8, LabF>;
using FromLab8 = Inverse<Lab8, White8, Rgb8Out>;
using FromLab16 = Inverse<Lab16, White8, Rgb8Out>;
using FromLabF = Inverse<LabF, WhiteF, RgbFOut>;

template <bool Bgr>
using RgbToLab8 = LabKernel<ToLab8, SrcC3<uint8_t, Bgr>, DstC3<uint8_t, false>>;
template <bool Bgr>
using RgbToLabF = LabKernel<ToLabF, SrcC3<float, Bgr>, DstC3<float, false>>;
template <bool Bgr>
using LabToRgb8 = LabKernel<FromLab8, SrcC3<uint8_t, false>, DstC3<uint8_t, Bgr>>;
template <bool Bgr>
using LabToRgbF = LabKernel<FromLabF, SrcC3<float, false>, DstC3<float, Bgr>>;
using BgrToLab16 = LabKernel<ToLab16, SrcC3<uint8_t, true>, DstC3<uint16_t, false>>;
using Lab16ToBgr = LabKernel<FromLab16, SrcC3<uint16_t, false>, DstC3<uint8_t, true>>;

}  // namespace

KroStatus impl_kroiRGBToLab_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return RgbToLab8<false>::entry(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToLab_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return RgbToLab8<true>::entry(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToLab_8u16u_C3R(const Kro8u* pSrc, int srcStep, Kro16u* pDst, int dstStep,
                                      kroiSize roiSize) {
    return BgrToLab16::entry(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToLab_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return RgbToLabF<false>::entry(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToLab_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return RgbToLabF<true>::entry(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLabToRGB_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return LabToRgb8<false>::entry(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLabToBGR_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return LabToRgb8<true>::entry(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLabToBGR_16u8u_C3R(const Kro16u* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                      kroiSize roiSize) {
    return Lab16ToBgr::entry(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLabToRGB_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return LabToRgbF<false>::entry(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLabToBGR_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return LabToRgbF<true>::entry(pSrc, srcStep, pDst, dstStep, roiSize);
}
