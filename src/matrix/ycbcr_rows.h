// Row machinery of the full-resolution YCbCr operations: interleaved
// three-sample sides that move 16 pixels with three byte shuffles each way
// (blends do the rest), and a row kernel that takes such a source's channels
// straight into 16-bit lanes. The values are those of the general sides and of
// Kernel8: only the way bytes reach and leave the lanes differs.
#pragma once

#include <type_traits>

#include "frame/region.h"

namespace kro::ycbcr {

// Interleaved source of three samples a pixel.
template <bool Swap>
struct SrcC3Blend {
    const uint8_t* base;
    int step;
    struct Row : SrcC8<3, Swap>::Row {
        static constexpr bool kWords = true;
        template <int N>
        void load(int x, Px& px) const {
            if constexpr (N == 16) {
                V in[3];
                loadBytes<3, 16>(this->p + 3 * x, in);
                V c[3];
                deinterleave3(in, c);
                for (int k = 0; k < 3; ++k) px.c[Swap ? 2 - k : k] = c[k];
            } else {
                SrcC8<3, Swap>::Row::template load<N>(x, px);
            }
        }
        // 16 pixels as 16-bit lanes: lo[k] pixels 0..7, hi[k] pixels 8..15 of channel k
        void loadWords(int x, V (&lo)[3], V (&hi)[3]) const {
            V in[3];
            loadBytes<3, 16>(this->p + 3 * x, in);
            V c[3];
            deinterleave3<2>(in, c);
            for (int k = 0; k < 3; ++k) splitWords(c[k], lo[Swap ? 2 - k : k], hi[Swap ? 2 - k : k]);
        }
    };
    Row row(int y) const { return {{rowAt(base, step, y)}}; }
};

// Interleaved destination of three samples a pixel.
template <bool Swap>
struct DstC3Blend {
    uint8_t* base;
    int step;
    struct Row : DstC8<3, Swap, Alpha::None>::Row {
        template <int N>
        void store(int x, const Px& px) const {
            if constexpr (N == 16) {
                const V c[3] = {px.c[Swap ? 2 : 0], px.c[1], px.c[Swap ? 0 : 2]};
                V out[3];
                interleave3(c, out);
                storeBytes<3, 16>(this->p + 3 * x, out);
            } else {
                DstC8<3, Swap, Alpha::None>::Row::template store<N>(x, px);
            }
        }
    };
    Row row(int y) const { return {{rowAt(base, step, y), 0}}; }
};

template <class R, class = void>
struct HasWords : std::false_type {};
template <class R>
struct HasWords<R, std::void_t<decltype(R::kWords)>> : std::true_type {};

// Kernel8 with its 16-pixel steps fed by loadWords where the source has it.
template <int NMax, int NMin, class VecForm, class TailForm>
struct KernelYcc {
    using Base = Kernel8<NMax, NMin, VecForm, TailForm>;

    template <class SRow, class DRow>
    static void step16(const SRow& s, const DRow& d, int x) {
        if constexpr (HasWords<SRow>::value) {
            V lo[3], hi[3], rl[3], rh[3];
            s.loadWords(x, lo, hi);
            VecForm::apply(lo, rl);
            VecForm::apply(hi, rh);
            Px px;
            for (int k = 0; k < 3; ++k) px.c[k] = clampU8(rl[k], rh[k]);
            d.template store<16>(x, px);
        } else {
            Base::template step<16>(s, d, x);
        }
    }

    template <class SRow, class DRow>
    static void row(const SRow& s, const DRow& d, int width) {
        static_assert(NMax == 16 && NMin >= 4, "16-pixel steps, then 8 and 4");
        int x = 0;
        const int n = width & ~(NMin - 1);
        for (; x + 16 <= n; x += 16) step16(s, d, x);
        if constexpr (NMin <= 8)
            for (; x + 8 <= n; x += 8) Base::template step<8>(s, d, x);
        if constexpr (NMin <= 4)
            for (; x + 4 <= n; x += 4) Base::template step<4>(s, d, x);
        Base::tail(s, d, x, width);
    }

    template <class Src, class Dst>
    static void region(const Src& src, const Dst& dst, kroiSize roi) {
        for (int y = 0; y < roi.height; ++y) row(src.row(y), dst.row(y), roi.width);
    }
};

}  // namespace kro::ycbcr
