// RGB / BGR <-> CIE L*u*v* for 8u, 16u, 16s and 32f samples, C3 and AC4.
// Each operation names its sides (sample type, layout, channel order, step
// unit), its main-path form and its tail form; the arithmetic is in
// luv_forms.h, the row kernel and region driver in frame/kernel_typed.h.
#include <cstddef>
#include <type_traits>

#include "frame/kernel_typed.h"
#include "frame/region.h"
#include "impl_decls.h"
#include "perceptual/luv_forms.h"

using namespace kro;
using namespace kro::luv;

namespace {

using u8 = Kro8u;
using u16 = Kro16u;
using s16 = Kro16s;
using f32 = Kro32f;

// ------------------------------------------------------------ the row form of an operation
// Main: the form of pixels 0 .. (width AND NOT 3) - 1, four float lanes at a
// time; Tail: the form of the rest, pixel by pixel. Bgr: the RGB side stands
// B, G, R (source of the forward, destination of the inverse direction).
template <class Main, class Tail, bool Forward, bool Bgr>
struct LuvRow {
    static_assert(Main::floatOut == Tail::floatOut, "one result type a row");
    static constexpr int N = 4, K = 3;
    static constexpr Lanes lanes = Lanes::Float;
    static constexpr bool floatOut = Main::floatOut;
    using VOut = typename VecOut<floatOut>::type;
    using SIn = float;
    using SOut = std::conditional_t<floatOut, float, int>;

    static constexpr bool swapIn = Forward && Bgr, swapOut = !Forward && Bgr;

    void vec(const VF (&in)[3], VOut (&o)[3]) const {
        const F32x4 s[3] = {F32x4(in[swapIn ? 2 : 0]), F32x4(in[1]), F32x4(in[swapIn ? 0 : 2])};
        std::conditional_t<floatOut, F32x4, I32x4> r[3];
        Main::apply(s, r);
        for (int k = 0; k < 3; ++k) o[k] = r[swapOut ? 2 - k : k].v;
    }
    void one(const float (&in)[3], SOut (&o)[3]) const {
        const float s[3] = {in[swapIn ? 2 : 0], in[1], in[swapIn ? 0 : 2]};
        SOut r[3];
        Tail::apply(s, r);
        for (int k = 0; k < 3; ++k) o[k] = r[swapOut ? 2 - k : k];
    }
};

// ------------------------------------------------------------ sides
// Rows that advance by a step in bytes whatever the sample size (8u, and the
// 32f forms that keep byte steps); the row views are the frame's.
template <class Side, class T>
struct ByteRows {
    const void* base;
    int step;
    typename Side::Row row(int y) const {
        const auto* p = static_cast<const uint8_t*>(base) + static_cast<std::ptrdiff_t>(y) * step;
        return {reinterpret_cast<const T*>(p)};
    }
};
template <class Side, class T>
struct ByteRowsOut {
    void* base;
    int step;
    typename Side::Row row(int y) const {
        auto* p = static_cast<uint8_t*>(base) + static_cast<std::ptrdiff_t>(y) * step;
        return {reinterpret_cast<T*>(p)};
    }
};

template <class T, int Cn>
using Src = SrcCT<T, Cn>;
template <class T, int Cn>
using Dst = DstCT<T, Cn, Cn == 4 ? Fourth::Keep : Fourth::None>;

enum class Step { Bytes, Samples };  // a row advances by the step in bytes, or by step >> log2(size) samples

// Entry: null addresses (-8), then the size (-6); steps are not tested.
template <class Form, Step St, int Cn, class TS, class TD>
KroStatus run(const TS* pSrc, int srcStep, TD* pDst, int dstStep, kroiSize roi) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    if constexpr (St == Step::Bytes) {
        runRegion(Form{}, ByteRows<Src<TS, Cn>, TS>{pSrc, srcStep}, ByteRowsOut<Dst<TD, Cn>, TD>{pDst, dstStep}, roi);
    } else {
        runRegion(Form{}, Src<TS, Cn>{pSrc, stepInSamples<TS>(srcStep)}, Dst<TD, Cn>{pDst, stepInSamples<TD>(dstStep)},
                  roi);
    }
    return kroStatusOk;
}

// ------------------------------------------------------------ forward forms
using Light8 = LightUnit<kCubeTable, Series4a5>;
using LightF = LightUnit<kCubeTable128, Series8>;

using Fwd8Main = ToLuv<InUnit8, Light8, ChromaGuarded, OutLuv8>;
using Fwd8Tail = ToLuv<InUnit8, Light8, ChromaZeroZ, OutLuv8>;
using FwdFMain = ToLuv<InRaw, LightF, ChromaGuarded, OutLuvF>;
using FwdFTail = ToLuv<InRaw, LightF, ChromaZeroZ, OutLuvF>;
// 16 bits: main paths truncate L and take truncToInt(Y) for the segment; the
// tails round both, but for the 16u AC4 tail, which truncates everything.
template <class In, int Bias>
using Fwd16Main = ToLuv<In, Light16<Trunc>, ChromaGuarded, OutLuv16<Trunc, Nearest, Bias>>;
template <class In, int Bias>
using Fwd16Tail = ToLuv<In, Light16<Nearest>, ChromaGuarded, OutLuv16<Nearest, Nearest, Bias>>;
using Fwd16uAC4Tail = ToLuv<InRaw, Light16<Trunc>, ChromaGuarded, OutLuv16<Trunc, Trunc, 0>>;

template <bool Bgr>
using RgbToLuv8 = LuvRow<Fwd8Main, Fwd8Tail, true, Bgr>;
using RgbToLuv8AC4 = LuvRow<Fwd8Tail, Fwd8Tail, true, false>;  // tail rules for every pixel
template <bool Bgr>
using RgbToLuvF = LuvRow<FwdFMain, FwdFTail, true, Bgr>;
using RgbToLuv16u = LuvRow<Fwd16Main<InRaw, 0>, Fwd16Tail<InRaw, 0>, true, false>;
using RgbToLuv16uAC4 = LuvRow<Fwd16Main<InRaw, 0>, Fwd16uAC4Tail, true, false>;
using RgbToLuv16s = LuvRow<Fwd16Main<InBias16, 32768>, Fwd16Tail<InBias16, 32768>, true, false>;

// ------------------------------------------------------------ inverse forms
using Inv8Main = FromLuvMain<DecInt<Scale8, Nudge::ZeroSample, Linear::ZeroSample, 1, 0>, ByEstimate, OutRgb8Scaled>;
using Inv8AC4Main = FromLuvMain<DecInt<Scale8, Nudge::SmallL, Linear::Break, 255, 0>, ByEstimate, OutRgbTrunc<255, 0>>;
template <Nudge Nu, int Bias>
using Inv16Main = FromLuvMain<DecInt<Scale16, Nu, Linear::Break, 65535, Bias>, ByRefined, OutRgbTrunc<65535, Bias>>;
using InvFMain = FromLuvMain<DecF, ByRefined, OutRgbF>;

template <bool Bgr>
using LuvToRgb8 = LuvRow<Inv8Main, FromLuvTailInt<255, 0>, false, Bgr>;
using LuvToRgb8AC4 = LuvRow<Inv8AC4Main, FromLuvTailInt<255, 0>, false, false>;
using LuvToRgb16u = LuvRow<Inv16Main<Nudge::ZeroSample, 0>, FromLuvTailInt<65535, 0>, false, false>;
using LuvToRgb16sC3 = LuvRow<Inv16Main<Nudge::SmallL, 32768>, FromLuvTailInt<65535, 32768>, false, false>;
using LuvToRgb16sAC4 = LuvRow<Inv16Main<Nudge::ZeroSample, 32768>, FromLuvTailInt<65535, 32768>, false, false>;
template <bool Bgr>
using LuvToRgbF = LuvRow<InvFMain, FromLuvTailF, false, Bgr>;
using LuvToRgbFAC4 = LuvRow<FromLuvTailF, FromLuvTailF, false, false>;  // tail rules for every pixel

}  // namespace

// ------------------------------------------------------------ RGB -> LUV
KroStatus impl_kroiRGBToLUV_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return run<RgbToLuv8<false>, Step::Bytes, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToLUV_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return run<RgbToLuv8<true>, Step::Bytes, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToLUV_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return run<RgbToLuv8AC4, Step::Bytes, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToLUV_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return run<RgbToLuv16u, Step::Samples, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToLUV_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return run<RgbToLuv16uAC4, Step::Samples, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToLUV_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize) {
    return run<RgbToLuv16s, Step::Samples, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToLUV_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize) {
    return run<RgbToLuv16s, Step::Samples, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToLUV_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return run<RgbToLuvF<false>, Step::Bytes, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToLUV_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return run<RgbToLuvF<true>, Step::Bytes, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiRGBToLUV_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return run<RgbToLuvF<false>, Step::Bytes, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// ------------------------------------------------------------ LUV -> RGB
KroStatus impl_kroiLUVToRGB_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return run<LuvToRgb8<false>, Step::Bytes, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLUVToBGR_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return run<LuvToRgb8<true>, Step::Bytes, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLUVToRGB_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return run<LuvToRgb8AC4, Step::Bytes, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLUVToRGB_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return run<LuvToRgb16u, Step::Samples, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLUVToRGB_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return run<LuvToRgb16u, Step::Samples, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLUVToRGB_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize) {
    return run<LuvToRgb16sC3, Step::Samples, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLUVToRGB_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize) {
    return run<LuvToRgb16sAC4, Step::Samples, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLUVToRGB_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return run<LuvToRgbF<false>, Step::Bytes, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLUVToBGR_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return run<LuvToRgbF<true>, Step::Bytes, 3>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiLUVToRGB_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize) {
    return run<LuvToRgbFAC4, Step::Samples, 4>(pSrc, srcStep, pDst, dstStep, roiSize);
}
