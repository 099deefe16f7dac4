// The integer forms of the decoders from subsampled formats: the YCbCr forms
// D1 to D8 (BT.601 studio range, and D8 for BT.709), the full-swing BT.709
// forms H1 to H3 and the analogue YUV forms Y1 to Y6. The BT.601 inverse forms
// shared with the full-resolution YCbCr family live in matrix/ycbcr_forms.h.
//
// Two kinds of form:
//  - 16-bit lane forms (D1-D5, H1, H3, Y1-Y3) are written once, in pieces
//    (luma, chroma, join), over T = int (one pixel) and T = V (eight pixels
//    in 16-bit lanes) with the same saturating operations, so the scalar and
//    the vector version give the same numbers; Lanes16 composes them.
//  - 32-bit forms (D6-D8, H2, Y4-Y6) are apply<T> over int and I32x4 and carry
//    their clamp; Lanes32 runs them on eight pixels at a time.
// Every input is a sample 0..255: Y the pixel's luma, Cb and Cr (U and V) its
// block's chroma.
#pragma once

#include "frame/forms.h"

namespace kro::dec {

// ------------------------------------------------------------ lane vocabulary
// Constants and shifts that read the same on one pixel (int) and on 16-bit lanes (V).
template <class T>
inline T lit(int k);
template <>
inline int lit<int>(int k) {
    return k;
}
template <>
inline V lit<V>(int k) {
    return splat16(k);
}
template <int N>
inline int shl(int x) {
    return x * (1 << N);
}
template <int N>
inline V shl(V x) {
    return _mm_slli_epi16(x, N);
}
template <int N>
inline int sar(int x) {
    return x >> N;
}
template <int N>
inline V sar(V x) {
    return _mm_srai_epi16(x, N);
}

// A 16-bit lane form in three pieces: luma(Y) the pixel's term, chroma(Cb, Cr)
// the three terms of its block (shared by the block's pixels), and each result
// sar(t + d) by Shift, the sums saturating. Lanes16 makes of it a scalar form
// (clamped to 0..255) and a vector form on eight pixels (left to the byte
// packing to clamp); the 4:2:0 row pairs use the pieces themselves.
template <class F>
struct Lanes16 : F {
    template <class T>
    static T join(T t, T d) {
        return sar<F::Shift>(addSatS16(t, d));
    }
    template <class T>
    static void rgb(T y, T cb, T cr, T& r, T& g, T& b) {
        const T t = F::luma(y);
        T dr, dg, db;
        F::chroma(cb, cr, dr, dg, db);
        r = join(t, dr);
        g = join(t, dg);
        b = join(t, db);
    }
    static void apply(int y, int cb, int cr, int& r, int& g, int& b) {
        rgb(y, cb, cr, r, g, b);
        r = clampU8(r);
        g = clampU8(g);
        b = clampU8(b);
    }
    static void apply(const V (&in)[3], V (&out)[3]) { rgb(in[0], in[1], in[2], out[0], out[1], out[2]); }
};

// Chroma with its offset taken off, << 7: u' = (Cb - 128) << 7.
template <class T>
inline T centred(T c) {
    return shl<7>(subSatS16(c, lit<T>(128)));
}

// ------------------------------------------------------------ D1, D2, D3: offsets folded into one constant
// Products of the unshifted samples << 7, floored each: T = Y'a, X = Cr'c,
// Z = Cb'b, P = Cb'd, Q = Cr'e; R = (T + (X - oR)) >> 3, G = (T - (P + Q - oG))
// >> 3, B = (T + (Z - oB)) >> 3.
template <int A, int Bc, int C, int D, int E, int OR, int OG, int OB>
struct FoldedRaw {
    static constexpr int Shift = 3;
    template <class T>
    static T luma(T y) {
        return mulHighS16(shl<7>(y), lit<T>(A));
    }
    template <class T>
    static void chroma(T cb, T cr, T& dr, T& dg, T& db) {
        const T cb7 = shl<7>(cb), cr7 = shl<7>(cr);
        dr = subSatS16(mulHighS16(cr7, lit<T>(C)), lit<T>(OR));
        dg = subSatS16(lit<T>(OG), addSatS16(mulHighS16(cb7, lit<T>(D)), mulHighS16(cr7, lit<T>(E))));
        db = subSatS16(mulHighS16(cb7, lit<T>(Bc)), lit<T>(OB));
    }
};
using D1 = Lanes16<FoldedRaw<4769, 8263, 6537, 1605, 3330, 1779, 1089, 2211>>;
using D2 = Lanes16<FoldedRaw<4768, 8262, 6537, 1606, 3330, 1779, 1084, 2210>>;
using D3 = Lanes16<FoldedRaw<4768, 8262, 6537, 1606, 3330, 1783, 1085, 2214>>;

// ------------------------------------------------------------ D4: 13 fractional bits, negative weights on chroma
// y' = (Y - 16) << 7; 4 fractional bits in the sums, rounded by 8.
struct D4Raw {
    static constexpr int Shift = 4;
    static constexpr int kY = 9535, kRound = 8, kR = 13074, kGb = -3211, kGr = -6660, kB = 16523;
    template <class T>
    static T luma(T y) {
        return addSatS16(mulHighS16(shl<7>(subSatS16(y, lit<T>(16))), lit<T>(kY)), lit<T>(kRound));
    }
    template <class T>
    static void chroma(T cb, T cr, T& dr, T& dg, T& db) {
        const T u = centred(cb), v = centred(cr);
        dr = mulHighS16(v, lit<T>(kR));
        dg = addSatS16(mulHighS16(u, lit<T>(kGb)), mulHighS16(v, lit<T>(kGr)));
        db = mulHighS16(u, lit<T>(kB));
    }
};
using D4 = Lanes16<D4Raw>;

// ------------------------------------------------------------ D5: 12 fractional bits, 3 in the sums, no rounding
struct D5Raw {
    static constexpr int Shift = 3;
    static constexpr int kY = 4767, kR = 6537, kGb = 1605, kGr = 3330, kB = 8261;
    template <class T>
    static T luma(T y) {
        return mulHighS16(shl<7>(subSatS16(y, lit<T>(16))), lit<T>(kY));
    }
    template <class T>
    static void chroma(T cb, T cr, T& dr, T& dg, T& db) {
        const T u = centred(cb), v = centred(cr);
        dr = mulHighS16(v, lit<T>(kR));
        dg = subSatS16(subSatS16(lit<T>(0), mulHighS16(u, lit<T>(kGb))), mulHighS16(v, lit<T>(kGr)));
        db = mulHighS16(u, lit<T>(kB));
    }
};
using D5 = Lanes16<D5Raw>;

// ------------------------------------------------------------ D6, D7, D8: 16 fractional bits in 32-bit sums
// D6 on the samples as they stand, offsets and rounding in one constant (no rounding half).
struct D6 {
    template <class T>
    static void apply(T y, T cb, T cr, T& r, T& g, T& b) {
        const T yy = 76284 * y;
        r = clampU8((yy + 104595 * cr - 14608761) >> 16);
        g = clampU8((yy - 53281 * cr - 25690 * cb + 8887730) >> 16);
        b = clampU8((yy + 132186 * cb - 18140365) >> 16);
    }
};

// y = Y - 16, u = Cb - 128, v = Cr - 128; rounded by 32768.
template <int KY, int KR, int KGU, int KGV, int KB>
struct Studio32 {
    template <class T>
    static void apply(T y8, T cb, T cr, T& r, T& g, T& b) {
        const T y = KY * (y8 - 16) + 32768, u = cb - 128, v = cr - 128;
        r = clampU8((y + KR * v) >> 16);
        g = clampU8((y - KGU * u - KGV * v) >> 16);
        b = clampU8((y + KB * u) >> 16);
    }
};
using D7 = Studio32<76294, 104595, 25625, 53281, 132186>;  // the leftover 4:1:1 pixels
using D8 = Studio32<76284, 117506, 13959, 34996, 138609>;  // BT.709

// ------------------------------------------------------------ H1, H3: full-swing BT.709 in 16-bit lanes
// T = Y << 4 (no luma offset) + 8 for the rounding, chroma u' and v' << 7, 4
// fractional bits. H1 adds negative green weights, H3 subtracts positive ones
// (the floor falls on the other side).
template <bool SubtractGreen>
struct FullSwingRaw {
    static constexpr int Shift = 4;
    // green's weights as magnitudes: H1 adds their negatives, H3 subtracts them
    static constexpr int kR = 12616, kGb = 1499, kGr = 3760, kB = 14877;
    template <class T>
    static T luma(T y) {
        return addSatS16(shl<4>(y), lit<T>(8));
    }
    template <class T>
    static void chroma(T cb, T cr, T& dr, T& dg, T& db) {
        const T u = centred(cb), v = centred(cr);
        dr = mulHighS16(v, lit<T>(kR));
        if constexpr (SubtractGreen)
            dg = subSatS16(subSatS16(lit<T>(0), mulHighS16(v, lit<T>(kGr))), mulHighS16(u, lit<T>(kGb)));
        else
            dg = addSatS16(mulHighS16(u, lit<T>(-kGb)), mulHighS16(v, lit<T>(-kGr)));
        db = mulHighS16(u, lit<T>(kB));
    }
};
using H1 = Lanes16<FullSwingRaw<false>>;
using H3 = Lanes16<FullSwingRaw<true>>;

// H2: the same model in 16 fractional bits, rounded by 32768.
struct H2 {
    template <class T>
    static void apply(T y8, T cb, T cr, T& r, T& g, T& b) {
        const T y = (y8 << 16) + 32768, u = cb - 128, v = cr - 128;
        r = clampU8((y + 100925 * v) >> 16);
        g = clampU8((y - 11993 * u - 30081 * v) >> 16);
        b = clampU8((y + 119013 * u) >> 16);
    }
};

// ------------------------------------------------------------ Y1, Y2: analogue YUV, 1 fractional bit
// T = Y << 1, chroma (U - 128) << 4 and (V - 128) << 4, 13-bit weights, no rounding.
template <int KR, int KGU, int KGV, int KB>
struct YuvHalfRaw {
    static constexpr int Shift = 1;
    template <class T>
    static T luma(T y) {
        return shl<1>(y);
    }
    template <class T>
    static void chroma(T cu, T cv, T& dr, T& dg, T& db) {
        const T u = shl<4>(subSatS16(cu, lit<T>(128))), v = shl<4>(subSatS16(cv, lit<T>(128)));
        dr = mulHighS16(v, lit<T>(KR));
        dg = addSatS16(mulHighS16(u, lit<T>(KGU)), mulHighS16(v, lit<T>(KGV)));
        db = mulHighS16(u, lit<T>(KB));
    }
};
using Y1 = Lanes16<YuvHalfRaw<9339, -3228, -4760, 16646>>;
using Y2 = Lanes16<YuvHalfRaw<9338, -3227, -4759, 16645>>;

// ------------------------------------------------------------ Y3: analogue YUV, 4 fractional bits rounded by 8
struct Y3Raw {
    static constexpr int Shift = 4;
    template <class T>
    static T luma(T y) {
        return addSatS16(shl<4>(y), lit<T>(8));
    }
    template <class T>
    static void chroma(T cu, T cv, T& dr, T& dg, T& db) {
        const T u = centred(cu), v = centred(cv);
        dr = mulHighS16(v, lit<T>(9338));
        dg = subSatS16(lit<T>(0), addSatS16(mulHighS16(u, lit<T>(3227)), mulHighS16(v, lit<T>(4759))));
        db = mulHighS16(u, lit<T>(16646));
    }
};
using Y3 = Lanes16<Y3Raw>;

// ------------------------------------------------------------ Y4, Y5, Y6: analogue YUV in 32-bit sums
// Y << Bits plus weighted chroma, an optional rounding term, >> Bits.
template <int Bits, int Round, int KR, int KGU, int KGV, int KB>
struct Yuv32 {
    template <class T>
    static void apply(T y8, T cu, T cv, T& r, T& g, T& b) {
        const T y = (y8 << Bits) + Round, u = cu - 128, v = cv - 128;
        r = clampU8((y + KR * v) >> Bits);
        g = clampU8((y - KGU * u - KGV * v) >> Bits);
        b = clampU8((y + KB * u) >> Bits);
    }
};
using Y4 = Yuv32<16, 0, 74711, 25821, 38076, 133169>;
using Y5 = Yuv32<16, 32768, 74711, 25821, 38076, 133169>;
using Y6 = Yuv32<13, 0, 9338, 3227, 4759, 16645>;  // an odd last pixel of the planar 4:2:2 forms

}  // namespace kro::dec
