// The integer forms of the photographic YCC model on 8-bit samples: luma scaled
// by 0.7132668, chroma offset to 156 and 137. Vector forms on eight pixels in
// 16-bit lanes, scalar forms on one pixel (templates over the number type).
#pragma once

#include "frame/forms.h"

namespace kro::ycc {

// Forward, main path: a luma sum S with 6 fractional bits, differences against it.
struct FwdVec {
    static void apply(const V (&in)[3], V (&out)[3]) {
        const V s = _mm_add_epi16(_mm_add_epi16(mulHighU16(splat16(4898), _mm_slli_epi16(in[0], 8)),
                                                mulHighU16(splat16(9617), _mm_slli_epi16(in[1], 8))),
                                  mulHighU16(splat16(1867), _mm_slli_epi16(in[2], 8)));
        const V db = subSatS16(_mm_slli_epi16(in[2], 6), s);
        const V dr = subSatS16(_mm_slli_epi16(in[0], 6), s);
        out[0] = _mm_srai_epi16(mulHighS16(s, splat16(2921)), 2);
        out[1] = _mm_srai_epi16(addSatS16(mulHighS16(db, splat16(1789)), splat16(624)), 2);
        out[2] = _mm_srai_epi16(addSatS16(mulHighS16(dr, splat16(2178)), splat16(548)), 2);
    }
};

// Forward, tail: the same model in 16 fractional bits; results need no clamp.
struct FwdScalar {
    template <class T>
    static void apply(T r, T g, T b, T& y, T& c1, T& c2) {
        const T s = 4898 * r + 9617 * g + 1867 * b;
        y = ((s >> 10) * 2921) >> 16;
        c1 = (((((b << 14) - s) >> 10) * 1789) >> 16) + 156;
        c2 = (((((r << 14) - s) >> 10) * 2178) >> 16) + 137;
    }
};

// Inverse, main path: luma weight 5563 (the tail has 5564), chroma << 7.
struct InvVec {
    static void apply(const V (&in)[3], V (&out)[3]) {
        const V yq = mulHighU16(_mm_slli_epi16(in[0], 8), splat16(5563));
        const V p = mulHighS16(_mm_slli_epi16(_mm_sub_epi16(in[1], splat16(156)), 7), splat16(18168));
        const V q = mulHighS16(_mm_slli_epi16(_mm_sub_epi16(in[2], splat16(137)), 7), splat16(14921));
        out[0] = _mm_srai_epi16(addSatS16(yq, q), 4);
        out[2] = _mm_srai_epi16(addSatS16(yq, p), 4);
        out[1] = _mm_srai_epi16(
            addSatS16(addSatS16(_mm_srai_epi16(yq, 1), mulHighS16(p, splat16(-6357))), mulHighS16(q, splat16(-16679))),
            3);
    }
};

// Inverse, tail: 12 fractional bits for R and B, G from the chroma terms >> 8.
struct InvScalar {
    template <class T>
    static void apply(T y, T c1, T c2, T& r, T& g, T& b) {
        const T t = 5564 * y, p = 9084 * c1 - 1417104, q = 7460 * c2 - 1022020;
        r = clampU8((t + q) >> 12);
        b = clampU8((t + p) >> 12);
        g = clampU8((16 * t - 794 * (p >> 8) - 2084 * (q >> 8)) >> 16);
    }
};

}  // namespace kro::ycc
