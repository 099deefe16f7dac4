// Independent reference of the studio-range YCbCr forms, written from the
// arithmetic as stated: 64-bit integers, explicit floors, saturation only where
// the form names it, no shared code with the library.
#pragma once

#include "ref_yuv.h"  // Px3, floorDiv, clip8, hiU, hiS, s16

namespace ref {

// (a * b + 16384) >> 15 on the 16-bit patterns, low 16 bits kept
inline int mrS15(int64_t a, int64_t b) { return s16(floorDiv(int64_t(s16(a)) * s16(b) + 16384, 32768)); }

// ------------------------------------------------------------ RGB -> YCbCr
inline Px3 yccFwd1(int R, int G, int B) {
    auto low8 = [](int64_t sum) { return int(floorDiv(sum, 65536) & 255); };
    return {low8(16843LL * R + 33030LL * G + 6423LL * B + 1081344),
            low8(-9699LL * R - 19071LL * G + 28770LL * B - 8355840),
            low8(28770LL * R - 24117LL * G - 4653LL * B - 8355840)};
}
inline Px3 yccFwd2(int R, int G, int B) {
    const int r = R * 128, g = G * 128, b = B * 128;
    const int64_t y = mrS15(4211, r) + mrS15(8258, g) + mrS15(1606, b) + 1056;
    const int64_t cb = mrS15(7193, b) - mrS15(2425, r) - mrS15(4768, g) + 8194;
    const int64_t cr = mrS15(7193, r) - mrS15(6029, g) - mrS15(1163, b) + 8194;
    return {clip8(floorDiv(y, 64)), clip8(floorDiv(cb, 64)), clip8(floorDiv(cr, 64))};
}
inline Px3 yccFwd3(int R, int G, int B) {
    const int64_t y = floorDiv(hiU(16843, R * 256) + hiU(33030, G * 256) + hiU(6423, B * 256) + 128, 256) + 16;
    const int r = R * 128, g = G * 128, b = B * 128;
    const int64_t cb = hiS(-9699, r) + hiS(-19071, g) + hiS(28770, b) + 64;
    const int64_t cr = hiS(28770, r) + hiS(-24117, g) + hiS(-4653, b) + 64;
    return {clip8(y), clip8(floorDiv(cb, 128) + 128), clip8(floorDiv(cr, 128) + 128)};
}

// ------------------------------------------------------------ YCbCr -> RGB
inline Px3 yccInv1(int Y, int Cb, int Cr) {
    const int64_t y = Y - 16, u = Cb - 128, v = Cr - 128;
    return {clip8(floorDiv(76284 * y + 104595 * v, 65536)), clip8(floorDiv(76284 * y - 25690 * u - 53281 * v, 65536)),
            clip8(floorDiv(76284 * y + 132186 * u, 65536))};
}
inline Px3 yccInv2(int Y, int Cb, int Cr) {
    const int64_t y = Y - 16, u = Cb - 128, v = Cr - 128;
    return {clip8(floorDiv(76282 * y + 104593 * v + 32768, 65536)),
            clip8(floorDiv(76282 * y - 25689 * u - 53279 * v + 32768, 65536)),
            clip8(floorDiv(76282 * y + 132184 * u + 32768, 65536))};
}
inline Px3 yccInv3(int Y, int Cb, int Cr) {
    const int64_t y = Y - 16, u = Cb - 128, v = Cr - 128;
    return {clip8(floorDiv(76284 * y + 104595 * v + 32768, 65536)),
            clip8(floorDiv(76284 * y - 25690 * u - 53281 * v + 32768, 65536)),
            clip8(floorDiv(76284 * y + 132186 * u + 32768, 65536))};
}

// Forms in 16-bit lanes: y' = y << 7 and so on, each product floored by itself.
struct Lanes {
    int64_t y, u, v;
    Lanes(int Y, int Cb, int Cr) : y((Y - 16) * 128), u((Cb - 128) * 128), v((Cr - 128) * 128) {}
};
inline Px3 yccInv4(int Y, int Cb, int Cr) {
    const Lanes l(Y, Cb, Cr);
    const int64_t t = hiS(l.y, 4769);
    return {clip8(floorDiv(t + hiS(l.v, 6537) + 4, 8)),
            clip8(floorDiv(t - (hiS(l.u, 1605) + hiS(l.v, 3330)) + 4, 8)),
            clip8(floorDiv(t + hiS(l.u, 8263) + 4, 8))};
}
inline Px3 yccInv5(int Y, int Cb, int Cr) {
    const Lanes l(Y, Cb, Cr);
    const int64_t t = hiS(l.y, 9536);
    return {clip8(floorDiv(t + hiS(l.v, 13074), 16)), clip8(floorDiv(t + hiS(l.u, -3203) + hiS(l.v, -6660), 16)),
            clip8(floorDiv(t + hiS(l.u, 16523), 16))};
}
inline Px3 yccInv6(int Y, int Cb, int Cr) {
    const Lanes l(Y, Cb, Cr);
    const int64_t t = hiS(l.y, 9535);
    return {clip8(floorDiv(t + hiS(l.v, 13074) + 8, 16)),
            clip8(floorDiv(t - hiS(l.u, 3211) - hiS(l.v, 6660) + 8, 16)),
            clip8(floorDiv(t + hiS(l.u, 16523) + 8, 16))};
}
inline Px3 yccInv7(int Y, int Cb, int Cr) {
    const Lanes l(Y, Cb, Cr);
    const int64_t t = hiS(l.y, 9535);
    return {clip8(floorDiv(t + hiS(l.v, 14688) + 8, 16)),
            clip8(floorDiv(t + hiS(l.u, -1745) + hiS(l.v, -4375) + 8, 16)),
            clip8(floorDiv(t + hiS(l.u, 17326) + 8, 16))};
}
inline Px3 yccInv8(int Y, int Cb, int Cr) {
    const Lanes l(Y, Cb, Cr);
    const int64_t t = hiS(l.y, 9535);
    return {clip8(floorDiv(t + hiS(l.v, 14688) + 8, 16)),
            clip8(floorDiv(t - hiS(l.u, 1745) - hiS(l.v, 4375) + 8, 16)),
            clip8(floorDiv(t + hiS(l.u, 17326) + 8, 16))};
}

}  // namespace ref
