// Independent reference of the grey forms, written from the arithmetic as
// stated: 64-bit integers for the 8u forms, explicit float operations with
// their NaN rules for the others. Shares no code with the library.
#pragma once

#include <cmath>
#include <cstdint>

#include "ref_float.h"

namespace ref {

// ------------------------------------------------------------ weights
inline const uint16_t kGrayFixed8[3] = {9798, 19235, 3736};
inline const float kGrayFixedF[3] = {0.299f, 0.587f, 0.114f};

// The caller's float weight as the 8u kernel's integer: double(w) * 32768 + 0.5,
// truncated toward zero as a 64-bit integer (NaN and out-of-range give the
// 64-bit indefinite value, low bits 0), low 16 bits.
inline uint16_t grayWeight8(float w) {
    const double d = double(w) * 32768.0 + 0.5;
    if (std::isnan(d) || d >= 9223372036854775808.0 || d < -9223372036854775808.0) return 0;
    return uint16_t(uint64_t(int64_t(std::trunc(d))) & 0xffff);
}

// ------------------------------------------------------------ 8u
// Main: S = satU16(satU16(satU16(hi(c0, R<<8) + hi(c1, G<<8)) + hi(c2, B<<8)) + 64),
// read as signed 16-bit, >> 7 (floor), limited to 0..255.
inline int gray8Main(const uint16_t (&c)[3], int R, int G, int B) {
    auto hi = [](int64_t w, int64_t s) { return (w * ((s << 8) & 0xffff)) >> 16; };
    auto sat = [](int64_t v) { return v > 65535 ? int64_t(65535) : v; };
    int64_t S = sat(sat(sat(hi(c[0], R) + hi(c[1], G)) + hi(c[2], B)) + 64);
    if (S >= 32768) S -= 65536;
    int64_t q = S >= 0 ? S / 128 : -((-S + 127) / 128);
    return q < 0 ? 0 : q > 255 ? 255 : int(q);
}
// Tail: (c0 R + c1 G + c2 B + 16384) >> 15, low 8 bits.
inline int gray8Tail(const uint16_t (&c)[3], int R, int G, int B) {
    const int64_t s = int64_t(c[0]) * R + int64_t(c[1]) * G + int64_t(c[2]) * B + 16384;
    return int((s / 32768) & 255);
}

// ------------------------------------------------------------ float sums
template <class F>
inline F graySum(F R, F G, F B, F c0, F c1, F c2) {
    return add(add(mul(R, c0), mul(G, c1)), mul(B, c2));
}
// The 64f pair path's second pixel: R c0 added to (G c1 + B c2), after it.
inline double graySumSecond(double R, double G, double B, double c0, double c1, double c2) {
    return add(add(mul(G, c1), mul(B, c2)), mul(R, c0));
}

// 16u: roundEven(V), low 16 bits, both paths.
inline uint16_t gray16u(const float (&c)[3], uint16_t R, uint16_t G, uint16_t B) {
    const float v = graySum<float>(R, G, B, c[0], c[1], c[2]);
    return uint16_t(uint32_t(roundEvenRef(v)) & 0xffff);
}
// 16s: on samples + 32768; roundEven(V) - 32768 (32-bit wrap), main clampS16, tail low 16 bits.
inline int16_t gray16s(const float (&c)[3], int16_t R, int16_t G, int16_t B, bool mainPath) {
    const float v = graySum<float>(float(R + 32768), float(G + 32768), float(B + 32768), c[0], c[1], c[2]);
    const int32_t r = int32_t(uint32_t(roundEvenRef(v)) - 32768u);
    if (mainPath) return int16_t(clampInt(r, -32768, 32767));
    return int16_t(uint16_t(uint32_t(r) & 0xffff));
}
inline float gray32f(const float (&c)[3], float R, float G, float B) { return graySum<float>(R, G, B, c[0], c[1], c[2]); }

}  // namespace ref
