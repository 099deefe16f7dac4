// Independent reference of the YCoCg forms, written from the arithmetic as
// stated: 64-bit integers, floors spelt out, every wrap-around explicit.
// Each function takes one pixel in the model's order (R, G, B or Y, Co, Cg)
// and gives the three numbers the destination holds.
#pragma once

#include <array>
#include <cstdint>

namespace refycocg {

using T3 = std::array<int64_t, 3>;

// floor(n / 2^k), without relying on the shift of negative numbers
inline int64_t floorShift(int64_t n, int k) {
    const int64_t d = int64_t(1) << k;
    return n >= 0 ? n / d : -((-n + d - 1) / d);
}
// n reduced to a signed number of `bits` bits
inline int64_t wrapTo(int64_t n, int bits) {
    const int64_t m = int64_t(1) << bits;
    int64_t r = n % m;
    if (r < 0) r += m;
    return r >= m / 2 ? r - m : r;
}
inline int64_t low16(int64_t n) { return wrapTo(n, 16); }
inline int64_t sat(int64_t x, int64_t lo, int64_t hi) { return x < lo ? lo : x > hi ? hi : x; }
inline int64_t satU8(int64_t x) { return sat(x, 0, 255); }
inline int64_t satS16(int64_t x) { return sat(x, -32768, 32767); }

// ------------------------------------------------------------ forward
// offset chroma, limited to 255
inline T3 fwd1(int64_t R, int64_t G, int64_t B) {
    const int64_t co = floorShift(R - B + 1, 1) + 128, cg = floorShift(2 * G - R - B + 2, 2) + 128;
    return {floorShift(R + 2 * G + B + 2, 2), co < 255 ? co : 255, cg < 255 ? cg : 255};
}
// rounded sums, exact
inline T3 fwd2(int64_t R, int64_t G, int64_t B) {
    return {floorShift(R + 2 * G + B + 2, 2), floorShift(R - B + 1, 1), floorShift(2 * G - R - B + 2, 2)};
}
// lifting, exact
inline T3 fwd3(int64_t R, int64_t G, int64_t B) {
    const int64_t Co = R - B, T = B + floorShift(Co, 1), Cg = G - T, Y = T + floorShift(Cg, 1);
    return {Y, Co, Cg};
}
// form 2 into 16-bit planes: saturated in the main path, low 16 bits in the tail
inline T3 fwd4Main(int64_t R, int64_t G, int64_t B) {
    const T3 v = fwd2(R, G, B);
    return {satS16(v[0]), satS16(v[1]), satS16(v[2])};
}
inline T3 fwd4Tail(int64_t R, int64_t G, int64_t B) {
    const T3 v = fwd2(R, G, B);
    return {low16(v[0]), low16(v[1]), low16(v[2])};
}
// lifting with every step reduced to 16 bits
inline T3 fwd5(int64_t R, int64_t G, int64_t B) {
    const int64_t Co = low16(R - B);
    const int64_t T = low16(B + floorShift(Co, 1));
    const int64_t Cg = low16(G - T);
    const int64_t Y = low16(T + floorShift(Cg, 1));
    return {Y, Co, Cg};
}

// ------------------------------------------------------------ inverse
// In R, G, B order.
inline T3 inv1(int64_t Y, int64_t Co, int64_t Cg) {
    return {satU8(Y + Co - Cg), satU8(Y + Cg - 128), satU8(Y - Co - Cg + 256)};
}
// sums in `bits` bits with wrap-around after every operation
inline T3 inv2(int64_t Y, int64_t Co, int64_t Cg, int bits) {
    const int64_t G = wrapTo(Y + Cg, bits);
    const int64_t R = wrapTo(wrapTo(Y + Co, bits) - Cg, bits);
    const int64_t B = wrapTo(wrapTo(Y - Co, bits) - Cg, bits);
    return {R, G, B};
}
inline T3 inv3(int64_t Y, int64_t Co, int64_t Cg, int bits) {
    const int64_t T = wrapTo(Y - floorShift(Cg, 1), bits);
    const int64_t G = wrapTo(Cg + T, bits);
    const int64_t B = wrapTo(T - floorShift(Co, 1), bits);
    const int64_t R = wrapTo(B + Co, bits);
    return {R, G, B};
}
// the destination's rule: saturated (as a signed 16-bit number, to 0..255) or wrapped (low 16 bits)
inline T3 saturated(T3 v) { return {satU8(low16(v[0])), satU8(low16(v[1])), satU8(low16(v[2]))}; }
inline T3 wrapped(T3 v) { return {low16(v[0]), low16(v[1]), low16(v[2])}; }

inline T3 inv2Sat16(int64_t Y, int64_t Co, int64_t Cg) { return saturated(inv2(Y, Co, Cg, 16)); }
inline T3 inv3Sat16(int64_t Y, int64_t Co, int64_t Cg) { return saturated(inv3(Y, Co, Cg, 16)); }
inline T3 inv2Wrap16(int64_t Y, int64_t Co, int64_t Cg) { return wrapped(inv2(Y, Co, Cg, 16)); }
inline T3 inv3Wrap16(int64_t Y, int64_t Co, int64_t Cg) { return wrapped(inv3(Y, Co, Cg, 16)); }
inline T3 inv2Wrap32(int64_t Y, int64_t Co, int64_t Cg) { return wrapped(inv2(Y, Co, Cg, 32)); }
inline T3 inv3Wrap32(int64_t Y, int64_t Co, int64_t Cg) { return wrapped(inv3(Y, Co, Cg, 32)); }

}  // namespace refycocg
