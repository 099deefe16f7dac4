// Independent reference of the YUV forms, written from the arithmetic as stated:
// 64-bit integers, explicit floors, no shared code with the library.
#pragma once

#include <array>
#include <cstdint>

namespace ref {

using Px3 = std::array<int, 3>;

inline int64_t floorDiv(int64_t n, int64_t d) {
    int64_t q = n / d;
    if ((n % d != 0) && ((n < 0) != (d < 0))) --q;
    return q;
}
inline int clip8(int64_t x) { return x < 0 ? 0 : x > 255 ? 255 : static_cast<int>(x); }
inline int s16(int64_t x) { return static_cast<int16_t>(static_cast<uint16_t>(x & 0xffff)); }
// floor(a * b / 2^16) on the 16-bit patterns of a and b
inline int hiU(int64_t a, int64_t b) { return static_cast<int>(floorDiv((a & 0xffff) * (b & 0xffff), 65536)); }
inline int hiS(int64_t a, int64_t b) { return static_cast<int>(floorDiv(int64_t(s16(a)) * s16(b), 65536)); }
inline int sat16(int64_t x) { return x < -32768 ? -32768 : x > 32767 ? 32767 : static_cast<int>(x); }

// ------------------------------------------------------------ RGB -> YUV
inline Px3 yuvFwd1(int R, int G, int B) {
    int64_t Y16 = 19595LL * R + 38470LL * G + 7471LL * B;
    int64_t Y = floorDiv(Y16 + 32768, 65536);
    int64_t DB = floorDiv(B * 65536LL - Y16 + 32768, 65536);
    int64_t DR = floorDiv(R * 65536LL - Y16 + 32768, 65536);
    return {int(Y), int(floorDiv(DB * 32244, 65536) + 128), clip8(floorDiv(DR * 57475, 65536) + 128)};
}
inline Px3 yuvFwd2(int R, int G, int B) {
    int64_t Y16 = 19595LL * R + 38470LL * G + 7471LL * B;
    int64_t DB = floorDiv(B * 65536LL - Y16 + 32767, 65536);
    int64_t DR = floorDiv(R * 65536LL - Y16 + 32767, 65536);
    return {int(floorDiv(Y16, 65536)), int(floorDiv(DB * 32244, 65536) + 128),
            clip8(floorDiv(DR * 57475, 65536) + 128)};
}
inline Px3 yuvFwd3(int R, int G, int B) {
    return {int(floorDiv(19595LL * R + 38469LL * G + 7471LL * B, 65536)),
            int(floorDiv(-4816LL * R - 9469LL * G + 14286LL * B, 32768) + 128),
            clip8(floorDiv(20152LL * R - 16875LL * G - 3276LL * B, 32768) + 128)};
}
inline Px3 yuvFwd4(int R, int G, int B) {
    int Y = (hiU(19595, R * 256) + hiU(38469, G * 256) + hiU(7471, B * 256)) / 256;
    int64_t SU = sat16(sat16(hiS(-4816, R * 128) + hiS(-9469, G * 128)) + hiS(14286, B * 128));
    int64_t SV = sat16(sat16(hiS(20152, R * 128) + hiS(-16875, G * 128)) + hiS(-3276, B * 128));
    return {Y, clip8(floorDiv(SU, 64) + 128), clip8(floorDiv(SV, 64) + 128)};
}
inline Px3 yuvFwd5(int R, int G, int B) {
    int64_t S = hiS(9798, R * 4) + hiS(19235, G * 4) + hiS(3736, B * 4) + 1;
    return {int(floorDiv(S, 2)), clip8(hiS(2 * B - S, 16121) + 128), clip8(hiS(2 * R - S, 28737) + 128)};
}

// ------------------------------------------------------------ YUV -> RGB
inline Px3 yuvInv1(int Y, int U, int V) {
    int64_t u = U - 128, v = V - 128, y = int64_t(Y) * 65536;
    return {clip8(floorDiv(y + 74711 * v + 32768, 65536)), clip8(floorDiv(y - 25821 * u - 38076 * v, 65536)),
            clip8(floorDiv(y + 133169 * u + 32768, 65536))};
}
inline Px3 yuvInv2(int Y, int U, int V) {
    int64_t u = U - 128, v = V - 128, y = int64_t(Y) * 65536;
    return {clip8(floorDiv(y + 74711 * v + 32768, 65536)),
            clip8(floorDiv(y - 25821 * u - 38076 * v + 32768, 65536)),
            clip8(floorDiv(y + 133169 * u + 32768, 65536))};
}
inline Px3 yuvInv3(int Y, int U, int V) {
    int64_t u = U - 128, v = V - 128, y = int64_t(Y) * 65536;
    return {clip8(floorDiv(y + 74710 * v, 65536)), clip8(floorDiv(y - 25820 * u - 38075 * v, 65536)),
            clip8(floorDiv(y + 133168 * u, 65536))};
}
inline Px3 yuvInv4(int Y, int U, int V) {
    int u = (U - 128) * 8, v = (V - 128) * 8;
    return {clip8(Y + hiS(v, 9339)), clip8(Y + hiS(u, -3228) + hiS(v, -4760)), clip8(Y + hiS(u, 16646))};
}
inline Px3 yuvInv5(int Y, int U, int V) {
    int u = (U - 128) * 16, v = (V - 128) * 16;
    return {clip8(floorDiv(2 * Y + hiS(v, 9338), 2)), clip8(floorDiv(2 * Y + hiS(u, -3227) + hiS(v, -4759), 2)),
            clip8(floorDiv(2 * Y + hiS(u, 16645), 2))};
}
inline Px3 yuvInv6(int Y, int U, int V) {
    int u = (U - 128) * 128, v = (V - 128) * 128;
    return {clip8(floorDiv(8 * Y + hiS(v, 4669) + 4, 8)), clip8(floorDiv(8 * Y - hiS(v, 2380) - hiS(u, 1614) + 4, 8)),
            clip8(floorDiv(8 * Y + hiS(u, 8323) + 4, 8))};
}

}  // namespace ref
