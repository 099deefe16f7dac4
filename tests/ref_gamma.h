// Plain reference of the gamma curves, written from the curve's definition and
// sharing nothing with the library: tables computed at run time by the C
// library's pow, float forms sample by sample in the stated order, and the
// power taken in long double under round-to-nearest and rounded once to float.
#pragma once

#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace ref {

// Entry i of the forward or inverse table with F = 255 or 65535: the value in
// doubles, rounded to a float, then to the nearest integer with ties to even.
inline int gammaEntry(bool forward, int i, int F) {
    const double x = double(i) / F;
    double v;
    if (forward)
        v = x < 0.018 ? 4.5 * i : (1.099 * std::pow(x, 0.45) - 0.099) * F;
    else
        v = x < 0.0812 ? i / 4.5 : std::pow((x + 0.099) / 1.099, 1.0 / 0.45) * F;
    const float f = float(v);
    const int lo = int(std::floor(f));
    const float frac = f - float(lo);
    if (frac > 0.5f) return lo + 1;
    if (frac < 0.5f) return lo;
    return (lo % 2 == 0) ? lo : lo + 1;
}

inline std::vector<int> gammaTable(bool forward, int F) {
    std::vector<int> t(size_t(F) + 1);
    for (int i = 0; i <= F; ++i) t[size_t(i)] = gammaEntry(forward, i, F);
    return t;
}

inline float bitsToFloat(uint32_t b) {
    float f;
    std::memcpy(&f, &b, 4);
    return f;
}

// The nine constants by their bit patterns.
inline float cA() { return bitsToFloat(0x3F8CAC08); }
inline float cB() { return bitsToFloat(0x3DCAC083); }
inline float cFwdBreak() { return bitsToFloat(0x3C9374BC); }
inline float cFwdSlope() { return bitsToFloat(0x40900000); }
inline float cFwdExp() { return bitsToFloat(0x3EE66666); }
inline float cInvBreak() { return bitsToFloat(0x3DA64C30); }
inline float cInvSlope() { return bitsToFloat(0x3E638E39); }
inline float cInvScale() { return bitsToFloat(0x3F68F065); }
inline float cInvExp() { return bitsToFloat(0x400E38E4); }

// v^e rounded once to float, whatever the rounding mode in force: zero gives 0,
// a negative base NaN.
inline float power(float v, float e) {
    const int mode = std::fegetround();
    std::fesetround(FE_TONEAREST);
    float r;
    if (std::isnan(v) || v < 0) r = std::nanf("");
    else if (v == 0) r = 0.0f;
    else r = float(std::pow((long double)v, (long double)e));
    std::fesetround(mode);
    return r;
}

// One float sample through the curve on the range vMin..vMax. `wide`: the break
// test (and for the inverse the power's base) in doubles. The steps are the
// ones of the definition, each on floats under the caller's rounding mode;
// when vMin is exactly 0 nothing is subtracted or added.
inline float gammaFloat(bool forward, bool wide, float x, float vMin, float vMax) {
    volatile float r = vMax - vMin;  // volatile: every step rounded at run time under the mode in force
    const bool zero = vMin == 0.0f;
    volatile float t = zero ? x : x - vMin;
    volatile float q = 1.0f / r;
    bool low;
    float y;
    if (forward) {
        float n;
        if (wide) {
            const double qd = 1.0 / double(r);
            volatile double nd = double(t) * qd;
            low = nd < double(cFwdBreak());
            n = float(nd);
        } else {
            n = t * q;
            low = n < cFwdBreak();
        }
        const float p = power(n, cFwdExp());
        if (low) {
            y = cFwdSlope() * t;
        } else {
            volatile float a = p * cA();
            volatile float b = a - cB();
            y = b * r;
        }
    } else {
        float b;
        if (wide) {
            const double qd = 1.0 / double(r);
            volatile double nd = double(t) * qd;
            low = nd < double(cInvBreak());
            volatile double s = nd + double(cB());
            volatile double bd = s * double(cInvScale());
            b = float(bd);
        } else {
            volatile float n = t * q;
            low = n < cInvBreak();
            volatile float s = n + cB();
            b = s * cInvScale();
        }
        const float p = power(b, cInvExp());
        y = low ? t * cInvSlope() : p * r;
    }
    if (zero) return y;
    volatile float out = y + vMin;
    return out;
}

}  // namespace ref
