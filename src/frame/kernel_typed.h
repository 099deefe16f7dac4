// Typed row kernel and region driver: a vector main path over whole blocks of
// N pixels and a scalar tail of single pixels, for any pair of sides from
// layout_typed.h (or layout-compatible ones) and any form.
//
// A form is a small object (it may carry per-call constants such as weights,
// prepared once by the entry and handed to every row) with:
//   static constexpr int N;          pixels a vector step (4 for float lanes)
//   static constexpr int K;          results a pixel
//   static constexpr Lanes lanes;    what the vector step works on:
//     Lanes::Float    loadFloats<4> -> vec(const VF (&)[3], VF or V (&)[K])
//     Lanes::Int16    loadLanes<N, 2> -> vec(const V (&)[3], V (&)[K])
//     Lanes::Int16High  loadLanesHigh<N, 2>: samples in the high bytes
//     Lanes::Int32    loadLanes<N, 4> -> vec(const V (&)[3], V (&)[K])
//   static constexpr bool floatOut;  float results, or integer lanes (of
//                                   Lanes::Int16 width when the input is Int16,
//                                   32-bit lanes otherwise)
//   using VOut = VecOut<floatOut>::type;
//   using SIn, SOut;                 scalar sample and result types (int/float)
//   void vec(...) const;             the main-path form
//   void one(const SIn (&)[3], SOut (&)[K]) const;   the tail form
// Integer results are stored by their low bits: a form that clamps does so
// itself, so "clamp" against "low bits kept" is visible in the form.
//
// Pixels 0 .. (width AND NOT (N - 1)) - 1 take the main path, the rest the tail.
// A one-sample source (SrcCT<T, 1>) fills in[0] only.
//
// Building a family on these layers, e.g. a 16u conversion computed in floats:
//   struct MyForm { N = 4, K = 3, lanes = Lanes::Float, floatOut = false,
//                   SIn = float, SOut = int; vec() and one() side by side };
//   entry:  null and size checks, then
//           runRegion(MyForm{...}, SrcCT<Kro16u, 3>{pSrc, stepInSamples<Kro16u>(srcStep)},
//                     DstCT<Kro16u, 4, Fourth::Keep>{pDst, stepInSamples<Kro16u>(dstStep)}, roi);
// 8u data can run through float forms too (Lanes::Float on SrcCT<Kro8u, Cn>;
// integer results stored from 32-bit lanes by their low byte), and 16s data
// through 16-bit lanes (Lanes::Int16, sign-extended). Grey (matrix/gray_forms.h)
// and XYZ (matrix/xyz_forms.h) are the worked examples; a kernel whose row
// structure is its own (the 64f grey pairs) keeps the form object and writes
// its own row loop beside it.
#pragma once

#include "frame/layout_typed.h"

namespace kro {

enum class Lanes { Float, Int16, Int16High, Int32 };

// Result vectors of a form: float lanes or integer lanes.
template <bool FloatOut>
struct VecOut {
    using type = V;
};
template <>
struct VecOut<true> {
    using type = VF;
};

template <class Form>
struct KernelT {
    static constexpr int N = Form::N;
    static_assert(N == 4 || N == 8, "blocks of 4 or 8 pixels");

    template <class SRow, class DRow>
    static void step(const Form& f, const SRow& s, const DRow& d, int x) {
        typename Form::VOut o[Form::K];
        if constexpr (Form::lanes == Lanes::Float) {
            VF in[3];
            s.template loadFloats<N>(x, in);
            f.vec(in, o);
        } else if constexpr (Form::lanes == Lanes::Int16High) {
            V in[3];
            s.template loadLanesHigh<N, 2>(x, in);
            f.vec(in, o);
        } else {
            V in[3];
            s.template loadLanes<N, Form::lanes == Lanes::Int16 ? 2 : 4>(x, in);
            f.vec(in, o);
        }
        if constexpr (Form::floatOut)
            d.template storeFloats<N>(x, o);
        else
            d.template storeLanes<N, Form::lanes == Lanes::Int16 || Form::lanes == Lanes::Int16High ? 2 : 4>(x, o);
    }

    template <class SRow, class DRow>
    static void row(const Form& f, const SRow& s, const DRow& d, int width) {
        const int n = width & ~(N - 1);
        int x = 0;
        for (; x < n; x += N) step(f, s, d, x);
        for (; x < width; ++x) {
            typename Form::SIn in[3];
            s.get(x, in);
            typename Form::SOut o[Form::K];
            f.one(in, o);
            d.put(x, o);
        }
    }

    // Region driver: rows 0 .. height - 1, each side advanced by its own step.
    template <class Src, class Dst>
    static void region(const Form& f, const Src& src, const Dst& dst, kroiSize roi) {
        for (int y = 0; y < roi.height; ++y) row(f, src.row(y), dst.row(y), roi.width);
    }
};

// Entry shorthand: the form's kernel over the region.
template <class Form, class Src, class Dst>
inline void runRegion(const Form& f, const Src& src, const Dst& dst, kroiSize roi) {
    KernelT<Form>::region(f, src, dst, roi);
}

}  // namespace kro
