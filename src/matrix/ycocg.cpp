// RGB-type images <-> YCoCg planes: the lossy transform and the reversible
// (lifting) one, on 8-bit, 16-bit and 32-bit samples. Each operation names its
// two sides, the lanes its form runs in, its vector steps and its checks.
#include "frame/region.h"
#include "impl_decls.h"
#include "matrix/ycocg_forms.h"
#include "matrix/ycocg_layout.h"

using namespace kro;
using namespace kro::ycocg;

namespace {

// ------------------------------------------------------------ row kernel and region driver
// Pixels 0 .. (width & ~3) - 1 in vector steps of NMax, then of smaller powers
// of two down to 4 (the step size never changes a value); the rest, one pixel
// at a time, through the same form in the scalar twin of the lanes. NMax = 0:
// the whole row one pixel at a time.
template <class Lane, int NMax, class Form>
struct Kernel {
    using Scalar = typename LaneTraits<Lane>::Scalar;
    static_assert(NMax == 0 || NMax == 4 || NMax == 8 || NMax == 16, "steps of 4, 8 or 16 pixels");

    template <int N, class SRow, class DRow>
    static void step(const SRow& s, const DRow& d, int x) {
        constexpr int K = kVecs<Lane, N>;
        Lane in[3][K], out[3][K];
        s.template load<N, Lane>(x, in);
        for (int j = 0; j < K; ++j) Form::apply(in[0][j], in[1][j], in[2][j], out[0][j], out[1][j], out[2][j]);
        d.template store<N, Lane>(x, out);
    }

    template <class SRow, class DRow>
    static void row(const SRow& s, const DRow& d, int width) {
        int x = 0;
        if constexpr (NMax > 0) {
            const int n = width & ~3;
            if constexpr (NMax >= 16)
                for (; x + 16 <= n; x += 16) step<16>(s, d, x);
            if constexpr (NMax >= 8)
                for (; x + 8 <= n; x += 8) step<8>(s, d, x);
            for (; x + 4 <= n; x += 4) step<4>(s, d, x);
        }
        for (; x < width; ++x) {
            int v[3];
            s.get(x, v);
            Scalar o0 = 0, o1 = 0, o2 = 0;
            Form::apply(Scalar(v[0]), Scalar(v[1]), Scalar(v[2]), o0, o1, o2);
            d.put(x, o0.value(), o1.value(), o2.value());
        }
    }

    // Region driver: rows 0 .. height - 1, each side advanced by its step in bytes.
    template <class Src, class Dst>
    static void region(const Src& src, const Dst& dst, kroiSize roi) {
        for (int y = 0; y < roi.height; ++y) row(src.row(y), dst.row(y), roi.width);
    }
};

// ------------------------------------------------------------ entries
// Null addresses (the image, the plane array and its three elements) first; then
// the size where the operation checks it. Without a size check an empty region
// converts nothing.
enum class SizeCheck { Yes, No };

template <class K, SizeCheck C, class Src, class Dst, class SP, class DP>
KroStatus run(const SP* pSrc, const DP* pDst, const Src& src, const Dst& dst, kroiSize roi) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if constexpr (std::is_pointer_v<SP>) {
        if (anyPlaneNull(pSrc, 3)) return kroStatusNullPointer;
    }
    if constexpr (std::is_pointer_v<DP>) {
        if (anyPlaneNull(pDst, 3)) return kroStatusNullPointer;
    }
    if (badSize(roi)) return C == SizeCheck::Yes ? kroStatusBadSize : kroStatusOk;
    K::region(src, dst, roi);
    return kroStatusOk;
}

// Forward: interleaved source of sample type S (Cn samples, BGR order if Swap) to planes of type D.
template <class Lane, int NMax, class Form, SizeCheck C, class S, int Cn, bool Swap, class D>
KroStatus forward(const S* pSrc, int srcStep, D* const pDst[3], int dstStep, kroiSize roi) {
    return run<Kernel<Lane, NMax, Form>, C>(pSrc, pDst, SrcC<S, Cn, Swap>{pSrc, srcStep}, DstP3<D>{pDst, dstStep}, roi);
}

// Inverse: planes of type S to an interleaved destination of type D (aval fills a fourth sample).
template <class Lane, int NMax, class Form, SizeCheck C, class S, int Cn, bool Swap, class D>
KroStatus inverse(const S* const pSrc[3], int srcStep, D* pDst, int dstStep, kroiSize roi, D aval = 0) {
    return run<Kernel<Lane, NMax, Form>, C>(pSrc, pDst, SrcP3<S>{pSrc, srcStep}, DstC<D, Cn, Swap>{pDst, dstStep, aval},
                                            roi);
}

constexpr SizeCheck kYes = SizeCheck::Yes, kNo = SizeCheck::No;

}  // namespace

// ============================================================ forward
// A plain loop over the pixels: 8-bit planes with offset chroma.
KroStatus impl_kroiRGBToYCoCg_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep,
                                       kroiSize roiSize) {
    return forward<I16x8, 0, Fwd1, kYes, Kro8u, 3, false>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// 8-bit BGR to 16-bit planes: 16 pixels a step in 16-bit lanes (the sums never
// leave 16 bits), then 8, then 4, then single pixels.
KroStatus impl_kroiBGRToYCoCg_8u16s_C3P3R(const Kro8u* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep,
                                          kroiSize roiSize) {
    return forward<I16x8, 16, Fwd2, kYes, Kro8u, 3, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToYCoCg_8u16s_C4P3R(const Kro8u* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep,
                                          kroiSize roiSize) {
    return forward<I16x8, 16, Fwd2, kYes, Kro8u, 4, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToYCoCg_Rev_8u16s_C3P3R(const Kro8u* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep,
                                              kroiSize roiSize) {
    return forward<I16x8, 16, Fwd3, kYes, Kro8u, 3, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiBGRToYCoCg_Rev_8u16s_C4P3R(const Kro8u* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep,
                                              kroiSize roiSize) {
    return forward<I16x8, 16, Fwd3, kYes, Kro8u, 4, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// 16-bit to 16-bit planes, sums in 32 bits: the vector steps (8, then 4 pixels)
// saturate each result to 16 bits, the tail keeps its low 16 bits.
KroStatus impl_kroiSBGRToYCoCg_16s_C3P3R(const Kro16s* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep,
                                         kroiSize roiSize) {
    return forward<I32x4, 8, Fwd2, kYes, Kro16s, 3, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiSBGRToYCoCg_16s_C4P3R(const Kro16s* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep,
                                         kroiSize roiSize) {
    return forward<I32x4, 8, Fwd2, kYes, Kro16s, 4, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// 16-bit to 32-bit planes: 8, then 4 pixels a step in 32-bit lanes.
KroStatus impl_kroiSBGRToYCoCg_16s32s_C3P3R(const Kro16s* pSrc, int srcStep, Kro32s* const pDst[3], int dstStep,
                                            kroiSize roiSize) {
    return forward<I32x4, 8, Fwd2, kYes, Kro16s, 3, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiSBGRToYCoCg_16s32s_C4P3R(const Kro16s* pSrc, int srcStep, Kro32s* const pDst[3], int dstStep,
                                            kroiSize roiSize) {
    return forward<I32x4, 8, Fwd2, kNo, Kro16s, 4, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// Reversible, 16-bit planes: the lifting steps in 16-bit wrap-around lanes.
KroStatus impl_kroiSBGRToYCoCg_Rev_16s_C3P3R(const Kro16s* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep,
                                             kroiSize roiSize) {
    return forward<I16x8, 8, Fwd3, kNo, Kro16s, 3, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiSBGRToYCoCg_Rev_16s_C4P3R(const Kro16s* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep,
                                             kroiSize roiSize) {
    return forward<I16x8, 8, Fwd3, kNo, Kro16s, 4, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// Reversible, 32-bit planes: the lifting steps in 32-bit lanes, Co and Cg of 17 bits.
KroStatus impl_kroiSBGRToYCoCg_Rev_16s32s_C3P3R(const Kro16s* pSrc, int srcStep, Kro32s* const pDst[3], int dstStep,
                                                kroiSize roiSize) {
    return forward<I32x4, 8, Fwd3, kYes, Kro16s, 3, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiSBGRToYCoCg_Rev_16s32s_C4P3R(const Kro16s* pSrc, int srcStep, Kro32s* const pDst[3], int dstStep,
                                                kroiSize roiSize) {
    return forward<I32x4, 8, Fwd3, kNo, Kro16s, 4, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// ============================================================ inverse
// 8-bit planes with offset chroma to RGB: 16 pixels a step, then 8, then 4.
KroStatus impl_kroiYCoCgToRGB_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                       kroiSize roiSize) {
    return inverse<I16x8, 16, Inv1, kNo, Kro8u, 3, false>(pSrc, srcStep, pDst, dstStep, roiSize);
}

// 16-bit planes to 8-bit BGR: sums in 16-bit wrap-around lanes, each result
// saturated to 0..255 as a signed 16-bit number; 8, then 4 pixels a step.
KroStatus impl_kroiYCoCgToBGR_16s8u_P3C3R(const Kro16s* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                          kroiSize roiSize) {
    return inverse<I16x8, 8, Inv2, kNo, Kro16s, 3, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiYCoCgToBGR_16s8u_P3C4R(const Kro16s* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                          kroiSize roiSize, Kro8u aval) {
    return inverse<I16x8, 8, Inv2, kNo, Kro16s, 4, true>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}
KroStatus impl_kroiYCoCgToBGR_Rev_16s8u_P3C3R(const Kro16s* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                              kroiSize roiSize) {
    return inverse<I16x8, 8, Inv3, kNo, Kro16s, 3, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiYCoCgToBGR_Rev_16s8u_P3C4R(const Kro16s* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep,
                                              kroiSize roiSize, Kro8u aval) {
    return inverse<I16x8, 8, Inv3, kNo, Kro16s, 4, true>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}

// 16-bit planes to signed BGR: 16-bit wrap-around lanes, low 16 bits stored.
KroStatus impl_kroiYCoCgToSBGR_16s_P3C3R(const Kro16s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep,
                                         kroiSize roiSize) {
    return inverse<I16x8, 8, Inv2, kNo, Kro16s, 3, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiYCoCgToSBGR_16s_P3C4R(const Kro16s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep,
                                         kroiSize roiSize, Kro16s aval) {
    return inverse<I16x8, 8, Inv2, kYes, Kro16s, 4, true>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}
KroStatus impl_kroiYCoCgToSBGR_Rev_16s_P3C3R(const Kro16s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep,
                                             kroiSize roiSize) {
    return inverse<I16x8, 8, Inv3, kNo, Kro16s, 3, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiYCoCgToSBGR_Rev_16s_P3C4R(const Kro16s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep,
                                             kroiSize roiSize, Kro16s aval) {
    return inverse<I16x8, 8, Inv3, kNo, Kro16s, 4, true>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}

// 32-bit planes to signed BGR: 32-bit wrap-around lanes, low 16 bits stored.
KroStatus impl_kroiYCoCgToSBGR_32s16s_P3C3R(const Kro32s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep,
                                            kroiSize roiSize) {
    return inverse<I32x4, 8, Inv2, kYes, Kro32s, 3, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiYCoCgToSBGR_32s16s_P3C4R(const Kro32s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep,
                                            kroiSize roiSize, Kro16s aval) {
    return inverse<I32x4, 8, Inv2, kYes, Kro32s, 4, true>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}
KroStatus impl_kroiYCoCgToSBGR_Rev_32s16s_P3C3R(const Kro32s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep,
                                                kroiSize roiSize) {
    return inverse<I32x4, 8, Inv3, kNo, Kro32s, 3, true>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiYCoCgToSBGR_Rev_32s16s_P3C4R(const Kro32s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep,
                                                kroiSize roiSize, Kro16s aval) {
    return inverse<I32x4, 8, Inv3, kNo, Kro32s, 4, true>(pSrc, srcStep, pDst, dstStep, roiSize, aval);
}
