// Independent reference of every decoding form, written from the arithmetic as
// stated: 64-bit integers, explicit floors, each 16-bit sum saturated where the
// form says so. Shares no code with the library. Inputs are (Y, Cb, Cr) or
// (Y, U, V) samples 0..255; results are the three clamped samples R, G, B.
#pragma once

#include "ref_yuv.h"

namespace ref {

// a + b in a signed 16-bit lane, stopping at its ends
inline int64_t ad(int64_t a, int64_t b) { return sat16(a + b); }
inline int64_t sb(int64_t a, int64_t b) { return sat16(a - b); }
inline int shr(int64_t x, int n) { return clip8(floorDiv(x, int64_t(1) << n)); }

// ------------------------------------------------------------ YCbCr inverse forms 1 to 8
inline Px3 ycbcrInv32(int Y, int Cb, int Cr, int64_t ky, int64_t kr, int64_t kgu, int64_t kgv, int64_t kb,
                      int64_t round) {
    const int64_t y = Y - 16, u = Cb - 128, v = Cr - 128;
    return {shr(ky * y + kr * v + round, 16), shr(ky * y - kgu * u - kgv * v + round, 16),
            shr(ky * y + kb * u + round, 16)};
}
inline Px3 inv1(int Y, int Cb, int Cr) { return ycbcrInv32(Y, Cb, Cr, 76284, 104595, 25690, 53281, 132186, 0); }
inline Px3 inv2(int Y, int Cb, int Cr) {
    return ycbcrInv32(Y, Cb, Cr, 76282, 104593, 25689, 53279, 132184, 32768);
}
inline Px3 inv3(int Y, int Cb, int Cr) {
    return ycbcrInv32(Y, Cb, Cr, 76284, 104595, 25690, 53281, 132186, 32768);
}
inline Px3 inv4(int Y, int Cb, int Cr) {
    const int64_t y = (Y - 16) * 128, u = (Cb - 128) * 128, v = (Cr - 128) * 128;
    const int64_t T = hiS(y, 4769);
    return {shr(ad(ad(T, hiS(v, 6537)), 4), 3), shr(ad(sb(T, ad(hiS(u, 1605), hiS(v, 3330))), 4), 3),
            shr(ad(ad(T, hiS(u, 8263)), 4), 3)};
}
inline Px3 inv5(int Y, int Cb, int Cr) {
    const int64_t y = (Y - 16) * 128, u = (Cb - 128) * 128, v = (Cr - 128) * 128;
    const int64_t T = hiS(y, 9536);
    return {shr(ad(T, hiS(v, 13074)), 4), shr(ad(ad(T, hiS(u, -3203)), hiS(v, -6660)), 4),
            shr(ad(T, hiS(u, 16523)), 4)};
}
inline Px3 inv6(int Y, int Cb, int Cr) {
    const int64_t y = (Y - 16) * 128, u = (Cb - 128) * 128, v = (Cr - 128) * 128;
    const int64_t T = hiS(y, 9535);
    return {shr(ad(ad(T, hiS(v, 13074)), 8), 4), shr(ad(sb(sb(T, hiS(u, 3211)), hiS(v, 6660)), 8), 4),
            shr(ad(ad(T, hiS(u, 16523)), 8), 4)};
}
inline Px3 inv7(int Y, int Cb, int Cr) {
    const int64_t y = (Y - 16) * 128, u = (Cb - 128) * 128, v = (Cr - 128) * 128;
    const int64_t T = hiS(y, 9535);
    return {shr(ad(ad(T, hiS(v, 14688)), 8), 4), shr(ad(ad(ad(T, hiS(u, -1745)), hiS(v, -4375)), 8), 4),
            shr(ad(ad(T, hiS(u, 17326)), 8), 4)};
}
inline Px3 inv8(int Y, int Cb, int Cr) {
    const int64_t y = (Y - 16) * 128, u = (Cb - 128) * 128, v = (Cr - 128) * 128;
    const int64_t T = hiS(y, 9535);
    return {shr(ad(ad(T, hiS(v, 14688)), 8), 4), shr(ad(sb(sb(T, hiS(u, 1745)), hiS(v, 4375)), 8), 4),
            shr(ad(ad(T, hiS(u, 17326)), 8), 4)};
}

// ------------------------------------------------------------ D1 to D3: offsets folded into constants
inline Px3 folded(int Y, int Cb, int Cr, int a, int b, int c, int d, int e, int oR, int oG, int oB) {
    const int64_t T = hiS(Y * 128, a), X = hiS(Cr * 128, c), Z = hiS(Cb * 128, b);
    const int64_t P = hiS(Cb * 128, d), Q = hiS(Cr * 128, e);
    return {shr(ad(T, sb(X, oR)), 3), shr(sb(T, sb(ad(P, Q), oG)), 3), shr(ad(T, sb(Z, oB)), 3)};
}
inline Px3 d1(int Y, int Cb, int Cr) { return folded(Y, Cb, Cr, 4769, 8263, 6537, 1605, 3330, 1779, 1089, 2211); }
inline Px3 d2(int Y, int Cb, int Cr) { return folded(Y, Cb, Cr, 4768, 8262, 6537, 1606, 3330, 1779, 1084, 2210); }
inline Px3 d3(int Y, int Cb, int Cr) { return folded(Y, Cb, Cr, 4768, 8262, 6537, 1606, 3330, 1783, 1085, 2214); }

// ------------------------------------------------------------ D4 to D8
inline Px3 d4(int Y, int Cb, int Cr) {
    const int64_t y = (Y - 16) * 128, u = (Cb - 128) * 128, v = (Cr - 128) * 128;
    const int64_t T = hiS(y, 9535);
    return {shr(ad(ad(T, hiS(v, 13074)), 8), 4), shr(ad(ad(ad(T, hiS(u, -3211)), hiS(v, -6660)), 8), 4),
            shr(ad(ad(T, hiS(u, 16523)), 8), 4)};
}
inline Px3 d5(int Y, int Cb, int Cr) {
    const int64_t y = (Y - 16) * 128, u = (Cb - 128) * 128, v = (Cr - 128) * 128;
    const int64_t T = hiS(y, 4767);
    return {shr(ad(T, hiS(v, 6537)), 3), shr(sb(sb(T, hiS(u, 1605)), hiS(v, 3330)), 3), shr(ad(T, hiS(u, 8261)), 3)};
}
inline Px3 d6(int Y, int Cb, int Cr) {
    return {shr(76284LL * Y + 104595LL * Cr - 14608761, 16), shr(76284LL * Y - 53281LL * Cr - 25690LL * Cb + 8887730, 16),
            shr(76284LL * Y + 132186LL * Cb - 18140365, 16)};
}
inline Px3 d7(int Y, int Cb, int Cr) { return ycbcrInv32(Y, Cb, Cr, 76294, 104595, 25625, 53281, 132186, 32768); }
inline Px3 d8(int Y, int Cb, int Cr) { return ycbcrInv32(Y, Cb, Cr, 76284, 117506, 13959, 34996, 138609, 32768); }

// ------------------------------------------------------------ H1 to H3: full-swing BT.709, Y without offset
inline Px3 h1(int Y, int Cb, int Cr) {
    const int64_t u = (Cb - 128) * 128, v = (Cr - 128) * 128, T = Y * 16;
    return {shr(ad(ad(T, hiS(v, 12616)), 8), 4), shr(ad(ad(ad(T, hiS(u, -1499)), hiS(v, -3760)), 8), 4),
            shr(ad(ad(T, hiS(u, 14877)), 8), 4)};
}
inline Px3 h2(int Y, int Cb, int Cr) {
    const int64_t u = Cb - 128, v = Cr - 128, y = int64_t(Y) << 16;
    return {shr(y + 100925 * v + 32768, 16), shr(y - 11993 * u - 30081 * v + 32768, 16),
            shr(y + 119013 * u + 32768, 16)};
}
inline Px3 h3(int Y, int Cb, int Cr) {
    const int64_t u = (Cb - 128) * 128, v = (Cr - 128) * 128, T = Y * 16;
    return {shr(ad(ad(T, hiS(v, 12616)), 8), 4), shr(ad(sb(sb(T, hiS(v, 3760)), hiS(u, 1499)), 8), 4),
            shr(ad(ad(T, hiS(u, 14877)), 8), 4)};
}

// ------------------------------------------------------------ Y1 to Y6: analogue YUV, Y without offset
inline Px3 yHalf(int Y, int U, int V, int kr, int kgu, int kgv, int kb) {
    const int64_t uc = (U - 128) * 16, vc = (V - 128) * 16, T = Y * 2;
    return {shr(ad(T, hiS(vc, kr)), 1), shr(ad(ad(T, hiS(uc, kgu)), hiS(vc, kgv)), 1), shr(ad(T, hiS(uc, kb)), 1)};
}
inline Px3 y1(int Y, int U, int V) { return yHalf(Y, U, V, 9339, -3228, -4760, 16646); }
inline Px3 y2(int Y, int U, int V) { return yHalf(Y, U, V, 9338, -3227, -4759, 16645); }
inline Px3 y3(int Y, int U, int V) {
    const int64_t u = (U - 128) * 128, v = (V - 128) * 128, T = Y * 16;
    return {shr(ad(ad(T, hiS(v, 9338)), 8), 4), shr(ad(sb(T, ad(hiS(u, 3227), hiS(v, 4759))), 8), 4),
            shr(ad(ad(T, hiS(u, 16646)), 8), 4)};
}
inline Px3 yuv32(int Y, int U, int V, int bits, int64_t round, int64_t kr, int64_t kgu, int64_t kgv, int64_t kb) {
    const int64_t u = U - 128, v = V - 128, y = int64_t(Y) << bits;
    return {shr(y + kr * v + round, bits), shr(y - kgu * u - kgv * v + round, bits), shr(y + kb * u + round, bits)};
}
inline Px3 y4(int Y, int U, int V) { return yuv32(Y, U, V, 16, 0, 74711, 25821, 38076, 133169); }
inline Px3 y5(int Y, int U, int V) { return yuv32(Y, U, V, 16, 32768, 74711, 25821, 38076, 133169); }
inline Px3 y6(int Y, int U, int V) { return yuv32(Y, U, V, 13, 0, 9338, 3227, 4759, 16645); }

}  // namespace ref
