// Plain reference of RGB <-> CIE L*a*b*, one pixel at a time, written from
// the model's rules and sharing nothing with the library: its own constants
// (from their bit patterns), its own cube-root table (from the C library's
// cube root and decimal printing), its own rounding (nearbyint).
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace ref::lab {

inline float f32(uint32_t bits) {
    float f;
    std::memcpy(&f, &bits, 4);
    return f;
}
inline uint32_t bitsOf(float f) {
    uint32_t b;
    std::memcpy(&b, &f, 4);
    return b;
}

// ------------------------------------------------------------ table
struct Table {
    float c[128], k[128];
    long ruleC[128], ruleK[128];  // the rule's decimals, in millionths
};

// Entries stored one unit of the sixth decimal away from the rule: c (0) or k (1), index, millionths.
struct Stored {
    int which, index;
    long units;
};
inline constexpr Stored kStored[6] = {{0, 16, 510337}, {0, 18, 529599}, {1, 6, 18252060},
                                      {1, 7, 15974197}, {1, 17, 7105949}, {1, 28, 4411778}};

// v with six decimals, as text and as millionths
inline long decimal6(double v, char (&buf)[64]) {
    std::snprintf(buf, sizeof buf, "%.6f", v);
    long whole = 0, frac = 0;
    std::sscanf(buf, "%ld.%ld", &whole, &frac);
    return whole * 1000000 + frac;
}
// millionths to the nearest float, by reading the decimal text
inline float fromUnits(long units) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%ld.%06ld", units / 1000000, units % 1000000);
    return std::strtof(buf, nullptr);
}

inline const Table& table() {
    static const Table t = [] {
        Table r{};
        for (int i = 0; i < 128; ++i) {
            const double x = double(i + 1) / 127.998046875 + 0.0001;
            char buf[64];
            r.ruleC[i] = decimal6(std::cbrt(x), buf);
            r.c[i] = std::strtof(buf, nullptr);
            r.ruleK[i] = decimal6(1.0 / x, buf);
            r.k[i] = std::strtof(buf, nullptr);
        }
        for (const Stored& e : kStored) (e.which ? r.k : r.c)[e.index] = fromUnits(e.units);
        return r;
    }();
    return t;
}

// ------------------------------------------------------------ constants
struct K {
    float m[3][3] = {{f32(0x3ED32D0A), f32(0x3EB714BA), f32(0x3E38C0CF)},
                     {f32(0x3E59C66D), f32(0x3F3714BA), f32(0x3D93CD57)},
                     {f32(0x3C9E6256), f32(0x3DF41B76), f32(0x3F734214)}};
    float inv[3][3] = {{f32(0x404F6402), f32(0xBFC4C155), f32(0xBEFF3FFB)},
                       {f32(0xBF782129), f32(0x3FF02079), f32(0x3D2A36A0)},
                       {f32(0x3D63EF28), f32(0xBE50F0A6), f32(0x3F8755F8)}};
    float xScale8 = f32(0x3B873353), yScale8 = f32(0x3B808081), zScale8 = f32(0x3B6C0DB2);
    float xScaleF = f32(0x3F86AC15), zScaleF = f32(0x3F6B2195);
    float thresh = f32(0x3C1118C2), slope = f32(0x40F92F1B), offs = f32(0x3E0D3DCB), lowL = f32(0x4461D333);
    float outL8 = f32(0x40233333), outL16 = f32(0x4423D666);
    float inv116 = f32(0x3C0D3DCB), inv500 = f32(0x3B03126F), inv200 = f32(0x3BA3D70A);
    float inL8 = f32(0x3EC8C8C9), inL16 = f32(0x3AC800C8), inAB16 = f32(0x3B808081);
    float xn = f32(0x3F735116), zn = f32(0x3F8B5C4A), xn255 = f32(0x43725DB2), zn255 = f32(0x438AD0E5);
    float a[9] = {0,
                  f32(0x3EAAAAAB),
                  f32(0x3DE38E39),
                  f32(0x3D7CD6EA),
                  f32(0x3D288F47),
                  f32(0x3CF7388A),
                  f32(0x3CC0486B),
                  0,
                  0};
    float a7f = f32(0x3C9BA857), a8f = f32(0x3C81B6F3);  // float forms
    float a7w = f32(0x3C9BA868), a8w = f32(0x3C81B6EF);  // 8u -> 16u form
    float indexScale = f32(0x42FFFF00);
};
inline const K& k() {
    static const K kk;
    return kk;
}

// Which sample encoding and which series an operation uses.
enum class Kind { U8, U16, F32 };

// ------------------------------------------------------------ forward
inline float cubeRoot(float x, Kind kind) {
    const K& q = k();
    const float m = q.indexScale * x;
    int i;
    if (!(m >= 0.0f))
        i = 0;  // negative or NaN: first segment
    else if (m >= 127.0f)
        i = 127;  // beyond the table: last segment
    else
        i = int(m);
    const float c = table().c[i], kk = table().k[i];
    const float c3 = (c * c) * c;
    const float e = kk * (x - c3);
    float pw[9];
    pw[1] = e;
    for (int n = 2; n <= 8; ++n) pw[n] = pw[n - 1] * e;
    pw[8] = e * pw[7];
    float p = q.a[1] * e;
    p = p + 1.0f;
    p = p - q.a[2] * pw[2];
    p = p + q.a[3] * pw[3];
    p = p - q.a[4] * pw[4];
    if (kind != Kind::U8) {
        const float a7 = kind == Kind::F32 ? q.a7f : q.a7w;
        const float a8 = kind == Kind::F32 ? q.a8f : q.a8w;
        p = p + q.a[5] * pw[5];
        p = p - q.a[6] * pw[6];
        p = p + a7 * pw[7];
        p = p - a8 * pw[8];
    }
    return c * p;
}

inline float f(float t, Kind kind) {
    const float root = cubeRoot(t, kind);
    if (t <= k().thresh) return k().slope * t + k().offs;
    return root;
}

// RGB samples (as floats) to L, a, b before encoding.
inline void toLab(float R, float G, float B, Kind kind, float& L, float& a, float& b) {
    const K& q = k();
    float xyz[3];
    for (int r = 0; r < 3; ++r) {
        float s = q.m[r][0] * R;
        s = s + q.m[r][1] * G;
        s = s + q.m[r][2] * B;
        xyz[r] = s;
    }
    float x, y, z;
    if (kind == Kind::F32) {
        x = xyz[0] * q.xScaleF;
        y = xyz[1];
        z = xyz[2] * q.zScaleF;
    } else {
        x = xyz[0] * q.xScale8;
        y = xyz[1] * q.yScale8;
        z = xyz[2] * q.zScale8;
    }
    const float fx = f(x, kind), fy = f(y, kind), fz = f(z, kind);
    if (y <= q.thresh)
        L = y * q.lowL;
    else
        L = 116.0f * fy - 16.0f;
    a = (fx - fy) * 500.0f;
    b = (fy - fz) * 200.0f;
}

inline long nearestEven(float v) { return std::lrint(v); }  // default rounding mode
inline long limit(long v, long hi) { return v < 0 ? 0 : v > hi ? hi : v; }

// 8-bit R, G, B to 8-bit L, a, b
inline void rgb8ToLab8(const int s[3], int d[3]) {
    float L, a, b;
    toLab(float(s[0]), float(s[1]), float(s[2]), Kind::U8, L, a, b);
    d[0] = int(limit(nearestEven(L * k().outL8), 255));
    d[1] = int(limit(nearestEven(a + 128.0f), 255));
    d[2] = int(limit(nearestEven(b + 128.0f), 255));
}
// 8-bit R, G, B to 16-bit L, a, b
inline void rgb8ToLab16(const int s[3], int d[3]) {
    float L, a, b;
    toLab(float(s[0]), float(s[1]), float(s[2]), Kind::U16, L, a, b);
    d[0] = int(limit(nearestEven(L * k().outL16), 65535));
    d[1] = int(limit(nearestEven((a + 128.0f) * 255.0f), 65535));
    d[2] = int(limit(nearestEven((b + 128.0f) * 255.0f), 65535));
}
inline void rgbFToLabF(const float s[3], float d[3]) { toLab(s[0], s[1], s[2], Kind::F32, d[0], d[1], d[2]); }

// ------------------------------------------------------------ inverse
// L, a, b as floats to R, G, B before encoding; integer forms scale by 255.
inline void fromLab(float L, float a, float b, bool integer, float& R, float& G, float& B) {
    const K& q = k();
    const float fy = (L + 16.0f) * q.inv116;
    const float fx = a * q.inv500 + fy;
    const float fz = fy - b * q.inv200;
    const float cx = (fx * fx) * fx, cy = (fy * fy) * fy, cz = (fz * fz) * fz;
    const float X = cx * (integer ? q.xn255 : q.xn);
    const float Y = integer ? cy * 255.0f : cy;
    const float Z = cz * (integer ? q.zn255 : q.zn);
    float out[3];
    for (int r = 0; r < 3; ++r) {
        float s = q.inv[r][0] * X;
        s = s + q.inv[r][1] * Y;
        s = s + q.inv[r][2] * Z;
        out[r] = s;
    }
    R = out[0], G = out[1], B = out[2];
}
inline void lab8ToRgb8(const int s[3], int d[3]) {
    const K& q = k();
    float o[3];
    fromLab(float(s[0]) * q.inL8, float(s[1] - 128), float(s[2] - 128), true, o[0], o[1], o[2]);
    for (int i = 0; i < 3; ++i) d[i] = int(limit(nearestEven(o[i]), 255));
}
inline void lab16ToRgb8(const int s[3], int d[3]) {
    const K& q = k();
    float o[3];
    fromLab(float(s[0]) * q.inL16, float(s[1]) * q.inAB16 - 128.0f, float(s[2]) * q.inAB16 - 128.0f, true, o[0],
            o[1], o[2]);
    for (int i = 0; i < 3; ++i) d[i] = int(limit(nearestEven(o[i]), 255));
}
inline void labFToRgbF(const float s[3], float d[3]) { fromLab(s[0], s[1], s[2], false, d[0], d[1], d[2]); }

}  // namespace ref::lab
