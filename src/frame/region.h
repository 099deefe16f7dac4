// The two lower layers of every operation: the region driver (rows) and the
// row kernel (vector main path, scalar tail), plus the entry checks.
#pragma once

#include "frame/layout8.h"
#include "krocc.h"

namespace kro {

// ------------------------------------------------------------ entry checks
template <class... P>
inline bool anyNull(const P*... p) {
    return ((p == nullptr) || ...);
}

// Every element of a plane-pointer array (the first k).
template <class T>
inline bool anyPlaneNull(T* const* planes, int k) {
    for (int i = 0; i < k; ++i)
        if (planes[i] == nullptr) return true;
    return false;
}

inline bool badSize(kroiSize r, int minWidth = 1, int minHeight = 1) {
    return r.width < minWidth || r.height < minHeight;
}

// ------------------------------------------------------------ 8-bit three-channel kernels
// A vector form maps three channels of eight pixels in 16-bit lanes (values
// 0..255) to three results in signed 16-bit lanes; packing clamps them to bytes.
// A scalar form maps one pixel's three samples to three results 0..255.
//
// Row kernel: pixels 0 .. (width & ~(NMin - 1)) - 1 in vector steps of NMax,
// then of smaller powers of two down to NMin (the same form: the step size
// never changes a value); the rest through the scalar tail. NMax = 0: the whole
// row goes through the tail.
template <int NMax, int NMin, class VecForm, class TailForm>
struct Kernel8 {
    static_assert(NMax == 0 || (NMin >= 4 && NMin <= NMax && NMax <= 16), "steps of 4, 8 or 16 pixels");

    template <int N, class SRow, class DRow>
    static void step(const SRow& s, const DRow& d, int x) {
        Px px;
        s.template load<N>(x, px);
        V lo[3], hi[3], r[3];
        for (int k = 0; k < 3; ++k) lo[k] = widenLo(px.c[k]);
        VecForm::apply(lo, r);
        if constexpr (N == 16) {
            for (int k = 0; k < 3; ++k) hi[k] = widenHi(px.c[k]);
            V rh[3];
            VecForm::apply(hi, rh);
            for (int k = 0; k < 3; ++k) px.c[k] = clampU8(r[k], rh[k]);
        } else {
            for (int k = 0; k < 3; ++k) px.c[k] = clampU8(r[k], r[k]);
        }
        d.template store<N>(x, px);
    }

    template <class SRow, class DRow>
    static void row(const SRow& s, const DRow& d, int width) {
        int x = 0;
        if constexpr (NMax > 0) {
            const int n = width & ~(NMin - 1);
            if constexpr (NMax >= 16)
                for (; x + 16 <= n; x += 16) step<16>(s, d, x);
            if constexpr (NMax >= 8 && NMin <= 8)
                for (; x + 8 <= n; x += 8) step<8>(s, d, x);
            if constexpr (NMin <= 4)
                for (; x + 4 <= n; x += 4) step<4>(s, d, x);
        }
        tail(s, d, x, width);
    }

    // Scalar tail: pixels x to width - 1, one at a time.
    template <class SRow, class DRow>
    static void tail(const SRow& s, const DRow& d, int x, int width) {
        for (; x < width; ++x) {
            int in[4];
            s.get(x, in);
            int o[3];
            TailForm::apply(in[0], in[1], in[2], o[0], o[1], o[2]);
            d.put(x, o[0], o[1], o[2], in[3]);
        }
    }

    // Region driver: every row from 0 to height - 1, each side advanced by its step.
    template <class Src, class Dst>
    static void region(const Src& src, const Dst& dst, kroiSize roi) {
        for (int y = 0; y < roi.height; ++y) row(src.row(y), dst.row(y), roi.width);
    }
};

}  // namespace kro
