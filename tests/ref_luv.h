// Plain reference of RGB <-> CIE L*u*v*, one pixel at a time, written from the
// model's rules and sharing nothing with the library: constants from their
// bit patterns, the cube-root table of ref_lab.h with its last four segments
// rebuilt for the 16-bit and float forms, plain scalar floats in the stated
// order, explicit branches. Reciprocals come from the providers of ref_hls.h:
// this processor's estimate, or the least / greatest admissible one.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

#include "ref_hls.h"
#include "ref_lab.h"

namespace ref::luv {

using refh::Rc;
using Out3 = std::array<double, 3>;  // stored sample values (16s signed; floats exactly)
inline float f32(uint32_t b) { return ref::lab::f32(b); }

enum class Ty { U8, U16, S16, F32 };

// ------------------------------------------------------------ constants
struct K {
    float m[3][3] = {{f32(0x3ED32D0A), f32(0x3EB714BA), f32(0x3E38C0CF)},
                     {f32(0x3E59C66D), f32(0x3F3714BA), f32(0x3D93CD57)},
                     {f32(0x3C9E6256), f32(0x3DF41B76), f32(0x3F734214)}};
    float inv[3][3] = {{f32(0x404F6402), f32(0xBFC4C155), f32(0xBEFF3FFB)},
                       {f32(0xBF782129), f32(0x3FF02079), f32(0x3D2A36A0)},
                       {f32(0x3D63EF28), f32(0xBE50F0A6), f32(0x3F8755F8)}};
    float thresh = f32(0x3C1118C2), lowL = f32(0x4461D333), inv116 = f32(0x3C0D3DCB);
    float unit8 = f32(0x3B808081), outL8 = f32(0x40233333), outL16 = f32(0x4423D666);
    float inL8 = f32(0x3EC8C8C9), inL16 = f32(0x3AC800C8), indexScale = f32(0x42FFFF00);
    float a[9] = {0, f32(0x3EAAAAAB), f32(0x3DE38E39), f32(0x3D7CD6EA), f32(0x3D288F47),
                  f32(0x3CF7388A), f32(0x3CC0486B), f32(0x3C9BA857), f32(0x3C81B6F3)};
    float un = f32(0x3E4A964F), vn = f32(0x3EEFCA86), unTail = f32(0x3E4A966A), vnTail = f32(0x3EEFCA8D);
    float unit16 = f32(0x37800080), thresh16 = f32(0x44111831);
    float outU8 = f32(0x3F386823), outV8 = f32(0x3F79290A), outU16 = f32(0x4339208B), outV16 = f32(0x437A2233);
    float inU8 = f32(0x3FB1B1B2), inV8 = f32(0x3F838384), inU16 = f32(0x3BB100B1), inV16 = f32(0x3B830083);
    float lowY = f32(0x3A911A80), lBreak = f32(0x40FFFCED), nudge = f32(0x38BCBE62);
    float epsMain = f32(0x37480000), epsTail = f32(0x34000000), third = f32(0x3EAAAAAB);
    double bD;
    K() {
        const uint64_t b = 0x3FF0EABEF06B3786ull;
        std::memcpy(&bD, &b, 8);
    }
};
inline const K& k() {
    static const K kk;
    return kk;
}

// The table of the 16-bit and float forms: segments 124..127 for x = (i + 1) / 128 + 0.0001.
struct Table128 {
    float c[128], kk[128];
};
inline const Table128& table128() {
    static const Table128 t = [] {
        Table128 r{};
        for (int i = 0; i < 128; ++i) r.c[i] = ref::lab::table().c[i], r.kk[i] = ref::lab::table().k[i];
        for (int i = 124; i < 128; ++i) {
            const double x = double(i + 1) / 128.0 + 0.0001;
            char buf[64];
            ref::lab::decimal6(std::cbrt(x), buf);
            r.c[i] = std::strtof(buf, nullptr);
            ref::lab::decimal6(1.0 / x, buf);
            r.kk[i] = std::strtof(buf, nullptr);
        }
        return r;
    }();
    return t;
}

// c p for x in segment i; terms 4 (fourth coefficient a5), 6 or 8.
inline float root(float x, int i, bool wideTable, int terms) {
    const float c = wideTable ? table128().c[i] : ref::lab::table().c[i];
    const float kk = wideTable ? table128().kk[i] : ref::lab::table().k[i];
    const float* a = k().a;
    const float e = kk * (x - (c * c) * c);
    float pw[9];
    pw[1] = e;
    for (int n = 2; n <= 8; ++n) pw[n] = pw[n - 1] * e;
    pw[8] = e * pw[7];
    float p = a[1] * e;
    p = p + 1.0f;
    p = p - a[2] * pw[2];
    p = p + a[3] * pw[3];
    if (terms == 4) return c * (p - a[5] * pw[4]);
    p = p - a[4] * pw[4];
    p = p + a[5] * pw[5];
    p = p - a[6] * pw[6];
    if (terms == 8) {
        p = p + a[7] * pw[7];
        p = p - a[8] * pw[8];
    }
    return c * p;
}

inline int segmentOf(float x) {
    const float m = k().indexScale * x;
    if (!(m >= 0.0f)) return 0;
    if (m >= 127.0f) return 127;
    return int(m);
}

// Float to int as the processor converts: beyond the int range (and NaN) the
// integer indefinite, -2^31.
inline double nearest(float v) {
    const double r = std::nearbyint(double(v));
    return r >= -2147483648.0 && r < 2147483648.0 ? r : -2147483648.0;
}
inline double toward0(float v) {
    const double r = std::trunc(double(v));
    return r >= -2147483648.0 && r < 2147483648.0 ? r : -2147483648.0;
}
inline double limit(double v, double hi) { return v < 0 ? 0 : v > hi ? hi : v; }

// ------------------------------------------------------------ RGB -> LUV
// s: the stored samples in R, G, B order (16s signed). tail16Trunc: the 16u
// AC4 tail (every conversion toward zero).
inline Out3 toLuv(Ty ty, bool mainPath, bool tail16Trunc, const double (&s)[3], Rc rc) {
    const K& q = k();
    float in[3];
    for (int i = 0; i < 3; ++i) {
        if (ty == Ty::U8) in[i] = float(s[i]) * q.unit8;
        else if (ty == Ty::S16) in[i] = float(s[i] + 32768.0);
        else in[i] = float(s[i]);
    }
    float xyz[3];
    for (int r = 0; r < 3; ++r) {
        float a = q.m[r][0] * in[0];
        a = a + q.m[r][1] * in[1];
        a = a + q.m[r][2] * in[2];
        xyz[r] = a;
    }
    const float X = xyz[0], Y = xyz[1], Z = xyz[2];
    const bool wide = ty != Ty::U8;
    float L;
    if (ty == Ty::U8 || ty == Ty::F32) {
        if (Y <= q.thresh) {
            L = q.lowL * Y;
        } else {
            L = root(Y, segmentOf(Y), wide, ty == Ty::U8 ? 4 : 8);
            L = L * 116.0f - 16.0f;
        }
    } else {
        const float y = Y * q.unit16;
        if (Y <= q.thresh16) {
            L = q.lowL * y;
        } else {
            const bool trunc = mainPath || tail16Trunc;
            int iy = int(trunc ? std::trunc(Y) : std::nearbyint(Y)) >> 9;
            if (iy > 127) iy = 127;
            L = root(y, iy, true, 6);
            L = L * 116.0f - 16.0f;
        }
    }
    const float den = ((Z * 3.0f) + (15.0f * Y)) + X;
    float up, vp;
    if (mainPath || ty == Ty::U16 || ty == Ty::S16) {
        const float d = den == 0.0f ? den + 3.0f : den;
        const float qq = refh::refd(d, rc);
        up = (X * 4.0f) * qq;
        vp = qq * (Y * 9.0f);
    } else if (Z == 0.0f) {
        up = vp = 0.0f;
    } else {
        const float qq = refh::refd(den, rc);
        up = (X * 4.0f) * qq;
        vp = (Y * 9.0f) * qq;
    }
    const float t = 13.0f * L;
    const float u = (up - q.un) * t, v = (vp - q.vn) * t;
    switch (ty) {
        case Ty::F32: return {L, u, v};
        case Ty::U8: {
            // the tail stores the low bits of the rounded value: shown as such
            auto low = [&](double x) { return mainPath ? limit(x, 255) : double(int64_t(x) & 255); };
            return {low(nearest(L * q.outL8)), low(nearest((u + 134.0f) * q.outU8)),
                    low(nearest((v + 140.0f) * q.outV8))};
        }
        default: {
            const double bias = ty == Ty::S16 ? 32768 : 0;
            const float lv = L * q.outL16, uv = (u + 134.0f) * q.outU16, vv = (v + 140.0f) * q.outV16 + 0.5f;
            double o[3];
            if (tail16Trunc && !mainPath) {
                o[0] = toward0(lv), o[1] = toward0(uv), o[2] = toward0(vv);
            } else {
                o[0] = mainPath ? toward0(lv) : nearest(lv);
                o[1] = nearest(uv), o[2] = nearest(vv);
            }
            return {limit(o[0], 65535) - bias, limit(o[1], 65535) - bias, limit(o[2], 65535) - bias};
        }
    }
}

// ------------------------------------------------------------ LUV -> RGB
// Variants of the main path.
enum class InvMain {
    F32,     // refined; L + nudge where L <= nudge; linear L' <= lBreak; stored as computed
    U8C3,    // estimate; nudge on sample 0; linear on sample 0; x 255, nearest
    U8AC4,   // estimate; nudge on small L'; linear L' <= lBreak; Y x 255; toward zero
    U16,     // refined; nudge on sample 0; Y x 65535; toward zero
    S16C3,   // refined; nudge on small L'; Y x 65535; toward zero
};

// rcT: provider of the reciprocal of 13 L'; rcD: that of the v' term.
// s as stored; signed16: 16s samples (32768 added on the way in, taken off on the way out).
inline Out3 fromLuvMain(InvMain kind, bool signed16, const double (&s)[3], Rc rcT, Rc rcD) {
    const double bias = signed16 ? 32768 : 0;
    const K& q = k();
    const bool est = kind == InvMain::U8C3 || kind == InvMain::U8AC4;
    auto rec = [&](float x, Rc rc) { return est ? refh::est(x, rc) : refh::refd(x, rc); };
    float Lp, Du, Dv;
    bool linear;
    double F = 1;
    if (kind == InvMain::F32) {
        const float L = float(s[0]);
        Lp = L <= q.nudge ? L + q.nudge : L;
        Du = float(s[1]), Dv = float(s[2]);
    } else {
        const bool b8 = kind == InvMain::U8C3 || kind == InvMain::U8AC4;
        const float l = float(s[0] + bias), uu = float(s[1] + bias), vvv = float(s[2] + bias);
        const float inL = b8 ? q.inL8 : q.inL16;
        if (kind == InvMain::U8AC4 || kind == InvMain::S16C3) {
            Lp = l * inL;
            if (Lp <= q.nudge) Lp = Lp + q.nudge;
        } else {
            Lp = (l == 0.0f ? l + q.nudge : l) * inL;
        }
        Du = uu * (b8 ? q.inU8 : q.inU16) + -134.0f;
        Dv = vvv * (b8 ? q.inV8 : q.inV16) + -140.0f;
        F = b8 ? 255 : 65535;
    }
    if (kind == InvMain::U8C3) linear = s[0] + bias == 0;
    else linear = Lp <= q.lBreak;
    const float fy = (Lp + 16.0f) * q.inv116;
    const float r = rec(13.0f * Lp, rcT);
    const float vv = Dv * r + q.vn;
    const float uu = Du * r + q.un;
    float Y = linear ? q.lowY * Lp : fy * (fy * fy);
    if (kind == InvMain::U8AC4 || kind == InvMain::U16 || kind == InvMain::S16C3) Y = Y * float(F);
    const float den = std::fabs(vv) <= q.epsMain ? vv + q.nudge : vv;
    const float w = rec(den, rcD) * Y;
    const float X = uu * (2.25f * w);
    const float Z = ((w * 3.0f) - (5.0f * Y)) - (q.third * X);
    Out3 o;
    for (int c = 0; c < 3; ++c) {
        float a = q.inv[c][0] * X;
        a = a + q.inv[c][1] * Y;
        a = a + q.inv[c][2] * Z;
        switch (kind) {
            case InvMain::F32: o[size_t(c)] = a; break;
            case InvMain::U8C3: o[size_t(c)] = limit(nearest(a * 255.0f), 255); break;
            case InvMain::U8AC4: o[size_t(c)] = limit(toward0(a), 255); break;
            default: o[size_t(c)] = limit(toward0(a), 65535) - bias; break;
        }
    }
    return o;
}

// Tail of the float forms.
inline Out3 fromLuvTailF(const double (&s)[3]) {
    const K& q = k();
    const float L = float(s[0]), u = float(s[1]), v = float(s[2]);
    if (L < q.nudge) return {0, 0, 0};
    const float fy = (16.0f + L) / 116.0f;
    const float Y = L >= q.lBreak ? (fy * fy) * fy : L / 903.299988f;
    const float vv = v / (L * 13.0f) + q.vn;
    const float uu = u / (L * 13.0f) + q.un;
    const float den = q.epsTail > std::fabs(vv) ? q.nudge + vv : vv;
    const float w = Y / den;
    const float X = (uu * 2.25f) * w;
    const float Z = ((w * 3.0f) - (5.0f * Y)) - (X / 3.0f);
    const float R = ((3.24047899f * X) - (1.53715003f * Y)) - (0.498535007f * Z);
    const float G = ((1.87599099f * Y) + (-0.969255984f * X)) + (0.0415560007f * Z);
    const float B = ((X * 0.055647999f) - (Y * 0.204043001f)) + (Z * 1.05731106f);
    auto cl = [](float x) { return double(x < 0.0f ? 0.0f : x > 1.0f ? 1.0f : x); };
    return {cl(R), cl(G), cl(B)};
}

// Tail of the integer forms; s as stored (16s signed).
inline Out3 fromLuvTailInt(Ty ty, const double (&s)[3]) {
    const K& q = k();
    const bool b8 = ty == Ty::U8;
    const double bias = ty == Ty::S16 ? 32768 : 0;
    const float F = b8 ? 255.0f : 65535.0f;
    const float Ls = float(s[0] + bias), Us = float(s[1] + bias), Vs = float(s[2] + bias);
    const float Lf = (Ls * 100.0f) / F;
    if (Lf < q.nudge) return {-bias, -bias, -bias};
    const float fy = (16.0f + Lf) / 116.0f;
    const float Y = (Lf >= q.lBreak ? (fy * fy) * fy : Lf / 903.299988f) * F;
    const float Du = ((Us * 354.0f) / F) - 134.0f;
    const float Dv = ((Vs * 262.0f) / F) - 140.0f;
    const float vv = Dv / (Lf * 13.0f) + q.vnTail;
    const float uu = Du / (Lf * 13.0f) + q.unTail;
    float w;
    if (b8) w = Y / vv;
    else w = Y / (q.epsMain > std::fabs(vv) ? q.nudge + vv : vv);
    const float X = (uu * 2.25f) * w;
    float Z, R, G;
    if (b8) {
        Z = ((w * 3.0f) - (X / 3.0f)) - (5.0f * Y);
        R = (((3.24047899f * X) + 0.5f) - (1.53715003f * Y)) - (0.498535007f * Z);
        G = (((-0.969255984f * X) + 0.5f) + (1.87599099f * Y)) + (0.0415560007f * Z);
    } else {
        Z = ((w * 3.0f) - (5.0f * Y)) - (X / 3.0f);
        R = ((0.5f - (1.53715003f * Y)) + (3.24047899f * X)) - (0.498535007f * Z);
        G = (((1.87599099f * Y) + 0.5f) + (-0.969255984f * X)) + (0.0415560007f * Z);
    }
    const float bxy = (X * 0.055647999f) - (Y * 0.204043001f);
    const double B = (double(bxy) + 0.5) + (double(Z) * q.bD);
    // values beyond int (an infinite w) convert to the processor's integer
    // indefinite, which the clamp takes to 0
    auto ti = [](double x) -> double {
        const double r = std::trunc(x);
        return r >= -2147483648.0 && r < 2147483648.0 ? r : -2147483648.0;
    };
    const double hi = F;
    return {limit(ti(R), hi) - bias, limit(ti(G), hi) - bias, limit(ti(B), hi) - bias};
}

}  // namespace ref::luv
