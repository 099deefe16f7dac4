// Independent reference of the RGB <-> XYZ forms, written from the arithmetic
// as stated: 64-bit integers with explicit floors for 8u, explicit float
// operations with their NaN rules for the others. Shares no code with the library.
#pragma once

#include <array>
#include <cstdint>

#include "ref_float.h"

namespace ref {

using Tri = std::array<int, 3>;

// integer rows and shifts
inline const int64_t kXyzMain8[3][3] = {{13515, 11717, 5912}, {6969, 23434, 2365}, {634, 3906, 31137}};
inline const int64_t kXyzTail8[3][3] = {{27030, 23434, 11824}, {13937, 46868, 4729}, {1267, 7811, 62274}};
inline const int64_t kRgbMain8[3][3] = {{26546, -12591, -4083}, {-7939, 15368, 340}, {456, -1671, 8661}};
inline const int64_t kRgbTail8[3][3] = {{212368, -100738, -32671}, {-63521, 122944, 2723}, {3646, -13372, 69291}};

inline int64_t floorShift(int64_t v, int sh) {
    const int64_t d = int64_t(1) << sh;
    return v >= 0 ? v / d : -((-v + d - 1) / d);
}
inline int lim8(int64_t v) { return v < 0 ? 0 : v > 255 ? 255 : int(v); }
inline int lim16s(int64_t v) { return v < -32768 ? -32768 : v > 32767 ? 32767 : int(v); }

inline Tri matrix8(const int64_t (&m)[3][3], int sh, bool sat16, int a, int b, int c) {
    Tri o{};
    for (int k = 0; k < 3; ++k) {
        int64_t v = floorShift(m[k][0] * a + m[k][1] * b + m[k][2] * c, sh);
        if (sat16) v = lim16s(v);
        o[k] = lim8(v);
    }
    return o;
}
inline Tri xyz8Main(int r, int g, int b) { return matrix8(kXyzMain8, 15, true, r, g, b); }
inline Tri xyz8Tail(int r, int g, int b) { return matrix8(kXyzTail8, 16, false, r, g, b); }
inline Tri rgb8Main(int x, int y, int z) { return matrix8(kRgbMain8, 13, true, x, y, z); }
inline Tri rgb8Tail(int x, int y, int z) { return matrix8(kRgbTail8, 16, false, x, y, z); }

// float matrices as 32-bit floats
inline const float kXyzF[3][3] = {
    {0.412453f, 0.35758f, 0.180423f}, {0.212671f, 0.71516f, 0.072169f}, {0.019334f, 0.119193f, 0.950227f}};
inline const float kRgbF[3][3] = {
    {3.240479f, -1.53715f, -0.498535f}, {-0.969256f, 1.875991f, 0.041556f}, {0.055648f, -0.204043f, 1.057311f}};

// (m0 a + m1 b) + m2 c, each step rounded, sample first in each product
inline float rowSum(const float (&m)[3], float a, float b, float c) {
    return add(add(mul(a, m[0]), mul(b, m[1])), mul(c, m[2]));
}
// max(x, 0) then min(., 1) with the instruction's choices: NaN gives 0
inline float limit01(float x) {
    const float lo = x > 0.0f ? x : 0.0f;
    return lo < 1.0f ? lo : 1.0f;
}

inline std::array<uint16_t, 3> matrix16u(const float (&m)[3][3], const uint16_t (&s)[3]) {
    std::array<uint16_t, 3> o{};
    for (int k = 0; k < 3; ++k) o[k] = uint16_t(clampInt(truncRef(rowSum(m[k], s[0], s[1], s[2])), 0, 65535));
    return o;
}
inline std::array<int16_t, 3> matrix16s(const float (&m)[3][3], const int16_t (&s)[3]) {
    std::array<int16_t, 3> o{};
    const float a = float(s[0] + 32768), b = float(s[1] + 32768), c = float(s[2] + 32768);
    for (int k = 0; k < 3; ++k) o[k] = int16_t(clampInt(int64_t(truncRef(rowSum(m[k], a, b, c))) - 32768, -32768, 32767));
    return o;
}
// RGB to XYZ: Z limited to 0..1; XYZ to RGB: every result limited
inline std::array<float, 3> matrix32f(const float (&m)[3][3], bool toXyz, const float (&s)[3]) {
    std::array<float, 3> o{};
    for (int k = 0; k < 3; ++k) {
        const float v = rowSum(m[k], s[0], s[1], s[2]);
        o[k] = (!toXyz || k == 2) ? limit01(v) : v;
    }
    return o;
}

}  // namespace ref
