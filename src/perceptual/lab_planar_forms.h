// CIE L*a*b* on planes of doubles: the double-precision cube root (32 mantissa
// slices, a high and a low part of each slice's root, a short polynomial in
// the distance from the slice's centre) and the forward and inverse forms.
//
// Forms are templates over the number type: double for the scalar tail, D2
// for two pixels of the main path. The exponent and slice arithmetic works on
// the bits of the double, scalar beside vector.
#pragma once

#include <cstdint>

#include "frame/forms.h"
#include "perceptual/lab_tables.h"

namespace kro::lab64 {

// ------------------------------------------------------------ two double lanes as a number
struct D2 {
    __m128d v;
    D2() = default;
    explicit D2(__m128d x) : v(x) {}
    D2(double k) : v(_mm_set1_pd(k)) {}  // NOLINT: constants mix in like doubles
    friend D2 operator+(D2 a, D2 b) { return D2(_mm_add_pd(a.v, b.v)); }
    friend D2 operator-(D2 a, D2 b) { return D2(_mm_sub_pd(a.v, b.v)); }
    friend D2 operator*(D2 a, D2 b) { return D2(_mm_mul_pd(a.v, b.v)); }
};

// ------------------------------------------------------------ constants
// The float constants of the model at their exact float values, widened.
namespace c {
inline constexpr double thresh = lab::c::thresh;  // 0.008856000378727913
inline constexpr double slope = lab::c::slope;    // 7.7870001792907715
inline constexpr double lowL = lab::c::lowL;      // 903.2999877929688
inline constexpr double xn = lab::c::xn;          // 0.9504560232162476
inline constexpr double zn = lab::c::zn;          // 1.0887539386749268
// true double constants
inline constexpr double xScaleD = 1.0521265327391165;  // 1 / xn
inline constexpr double zScaleD = 0.9184811767477967;  // 1 / zn
inline constexpr double offsD = 0.13793103448275862;   // 16/116
inline constexpr double inv116D = 0.008620689655172414;
inline constexpr double inv500D = 0.002;
inline constexpr double inv200D = 0.005;
// ((1 + r)^(1/3) - 1) / r, highest power first
inline constexpr double poly[8] = {-0.01583430710088232, 0.019001168521058782, -0.023472031702484377,
                                   0.03017832647462277,  -0.0411522633744856,  0.06172839506172839,
                                   -0.1111111111111111,  0.3333333333333333};
}  // namespace c

// The matrices of the float model, widened.
struct Matrices {
    double toXyz[3][3], toRgb[3][3];
};
constexpr Matrices makeMatrices() {
    Matrices m{};
    for (int r = 0; r < 3; ++r)
        for (int k = 0; k < 3; ++k) m.toXyz[r][k] = lab::kRgbToXyz[r][k], m.toRgb[r][k] = lab::kXyzToRgb[r][k];
    return m;
}
inline constexpr Matrices kMat = makeMatrices();

// ------------------------------------------------------------ cube-root tables
// Slice i of the mantissa (top 5 bits) has centre c_i = 1 + i/32 + 1/64.
// invCentre = -1 / c_i; rootHigh[r][i] = cbrt(2^r c_i) rounded toward zero to
// a double, rootLow the rest (always positive), from a 113-bit root.
struct RootTables {
    double invCentre[32];
    double rootHigh[3][32];
    double rootLow[3][32];
};
namespace detail {
using Wide = __float128;  // 113-bit mantissa: the low part comes out correctly rounded
constexpr Wide cbrtWide(Wide x) {  // Newton from above to a fixed point
    Wide y = x > 1 ? x : Wide(1);
    for (int n = 0; n < 400; ++n) {
        const Wide next = y - (y * y * y - x) / (3 * y * y);
        if (next >= y) break;
        y = next;
    }
    return y;
}
constexpr RootTables makeRootTables() {
    RootTables t{};
    for (int i = 0; i < 32; ++i) {
        const double ci = 1.0 + i / 32.0 + 1.0 / 64.0;
        t.invCentre[i] = -1.0 / ci;
        for (int r = 0; r < 3; ++r) {
            const Wide root = cbrtWide(static_cast<Wide>(ci) * (1 << r));
            double hi = static_cast<double>(root);
            if (static_cast<Wide>(hi) > root) hi = __builtin_bit_cast(double, __builtin_bit_cast(uint64_t, hi) - 1);
            t.rootHigh[r][i] = hi;
            t.rootLow[r][i] = static_cast<double>(root - static_cast<Wide>(hi));
        }
    }
    return t;
}
}  // namespace detail
alignas(16) inline constexpr RootTables kRoots = detail::makeRootTables();
static_assert(kRoots.rootHigh[0][0] == 1.0051814396472645 && kRoots.rootHigh[0][1] == 1.0153870251114199,
              "first roots");

// ------------------------------------------------------------ the root's bit steps
// From x: s (the power of two of the exponent's third), the slice's table row
// and index, r = invCentre x (c_i - m) = (m - c_i) / c_i (c_i - m is exact:
// c_i is m cut to its first six mantissa bits with the sixth set), and the
// slice's high and low root.
inline void sliceOf(double x, double& s, double& r, double& high, double& low) {
    const uint64_t b = __builtin_bit_cast(uint64_t, x);
    const uint64_t e = (b >> 52) & 0x7FF, i = (b >> 47) & 31;
    const uint64_t q = (5462 * e) >> 14, row = e - 3 * q;
    s = __builtin_bit_cast(double, (q + 682) << 52);
    const uint64_t mant = b & 0x000FFFFFFFFFFFFFull;
    const double m = __builtin_bit_cast(double, mant | 0x3FF0000000000000ull);
    const double ci = __builtin_bit_cast(double, (mant & 0x000F800000000000ull) | 0x3FF0400000000000ull);
    r = kRoots.invCentre[i] * (ci - m);
    high = kRoots.rootHigh[row][i];
    low = kRoots.rootLow[row][i];
}
inline void sliceOf(D2 x, D2& s, D2& r, D2& high, D2& low) {
    const V b = _mm_castpd_si128(x.v);
    const V e = _mm_and_si128(_mm_srli_epi64(b, 52), _mm_set1_epi64x(0x7FF));
    const V i = _mm_and_si128(_mm_srli_epi64(b, 47), _mm_set1_epi64x(31));
    const V q = _mm_srli_epi64(_mm_mul_epu32(e, _mm_set1_epi64x(5462)), 14);
    const V row = _mm_sub_epi64(e, _mm_add_epi64(q, _mm_add_epi64(q, q)));
    s = D2(_mm_castsi128_pd(_mm_slli_epi64(_mm_add_epi64(q, _mm_set1_epi64x(682)), 52)));
    const V mant = _mm_and_si128(b, _mm_set1_epi64x(0x000FFFFFFFFFFFFFll));
    const D2 m(_mm_castsi128_pd(_mm_or_si128(mant, _mm_set1_epi64x(0x3FF0000000000000ll))));
    const D2 ci(_mm_castsi128_pd(_mm_or_si128(_mm_and_si128(mant, _mm_set1_epi64x(0x000F800000000000ll)),
                                              _mm_set1_epi64x(0x3FF0400000000000ll))));
    const V at = _mm_add_epi64(_mm_slli_epi64(row, 5), i);  // row x 32 + i
    const int a0 = _mm_cvtsi128_si32(at), a1 = _mm_extract_epi32(at, 2);
    const int i0 = _mm_cvtsi128_si32(i), i1 = _mm_extract_epi32(i, 2);
    const D2 inv(_mm_loadh_pd(_mm_load_sd(&kRoots.invCentre[i0]), &kRoots.invCentre[i1]));
    r = inv * (ci - m);
    const double* hi = &kRoots.rootHigh[0][0];
    const double* lo = &kRoots.rootLow[0][0];
    high = D2(_mm_loadh_pd(_mm_load_sd(hi + a0), hi + a1));
    low = D2(_mm_loadh_pd(_mm_load_sd(lo + a0), lo + a1));
}

// Cube root of a positive normal double (within about 0.51 units in the last place).
template <class T>
inline T cubeRootD(T x) {
    T s, r, high, low;
    sliceOf(x, s, r, high, low);
    const T h = high * s;
    T p = c::poly[0];
    for (int k = 1; k < 8; ++k) p = (p * r) + c::poly[k];
    return h + ((s * low) + ((r * h) * p));
}

// ------------------------------------------------------------ choices
inline double larger(double a, double b) { return _mm_cvtsd_f64(_mm_max_sd(_mm_set_sd(a), _mm_set_sd(b))); }
inline D2 larger(D2 a, D2 b) { return D2(_mm_max_pd(a.v, b.v)); }
// t <= lim ? a : b
inline double pickAtMost(double t, double lim, double a, double b) { return t <= lim ? a : b; }
inline D2 pickAtMost(D2 t, double lim, D2 a, D2 b) {
    return D2(_mm_blendv_pd(b.v, a.v, _mm_cmple_pd(t.v, _mm_set1_pd(lim))));
}

// ------------------------------------------------------------ forms
template <class T>
inline T rowSum(const double (&m)[3], T a, T b, T d) {
    return ((m[0] * a) + (m[1] * b)) + (m[2] * d);
}

// f(t): the cube root of the larger of t and thresh above thresh, (t slope) + 16/116 at and below it.
template <class T>
inline T labF(T t) {
    const T root = cubeRootD(larger(t, T(c::thresh)));
    return pickAtMost(t, c::thresh, (t * c::slope) + c::offsD, root);
}

struct ToLab {
    template <class T>
    static void apply(const T (&s)[3], T (&d)[3]) {
        const T X = rowSum(kMat.toXyz[0], s[0], s[1], s[2]);
        const T Y = rowSum(kMat.toXyz[1], s[0], s[1], s[2]);
        const T Z = rowSum(kMat.toXyz[2], s[0], s[1], s[2]);
        const T fx = labF(X * c::xScaleD), fy = labF(Y), fz = labF(Z * c::zScaleD);
        d[0] = pickAtMost(Y, c::thresh, Y * c::lowL, (116.0 * fy) - 16.0);
        d[1] = (fx - fy) * 500.0;
        d[2] = (fy - fz) * 200.0;
    }
};

struct FromLab {
    template <class T>
    static void apply(const T (&s)[3], T (&d)[3]) {
        const T fy = (s[0] + 16.0) * c::inv116D;
        const T fx = (s[1] * c::inv500D) + fy;
        const T fz = fy - (s[2] * c::inv200D);
        const T X = (fx * (fx * fx)) * c::xn;
        const T Y = fy * (fy * fy);
        const T Z = (fz * (fz * fz)) * c::zn;
        for (int k = 0; k < 3; ++k) d[k] = rowSum(kMat.toRgb[k], X, Y, Z);
    }
};

}  // namespace kro::lab64
