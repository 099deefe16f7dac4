// Gamma: the BT.709 transfer curve forward (linear light to coded) and
// inverse, as stored tables for integer samples and as the curve itself with a
// power routine for float samples. Every form once, scalar beside vector.
//
//   forward  y = 4.5 x below 0.018, else 1.099 x^0.45 - 0.099
//   inverse  y = x / 4.5 below 0.0812, else ((x + 0.099) / 1.099)^(1 / 0.45)
//
// The inverse break is 0.0812, not the 0.081 that 4.5 x 0.018 gives.
#pragma once

#include <cstdint>
#include <cstring>

#include "frame/forms.h"
#include "krocc.h"

namespace kro {
namespace gamma {

// ------------------------------------------------------------ float constants
// 32-bit values with their bit patterns; each appears here only.
constexpr float gA = 1.09899998f;        // 0x3F8CAC08  1.099
constexpr float gB = 0.0989999995f;      // 0x3DCAC083  0.099
constexpr float gBreak = 0.0179999992f;  // 0x3C9374BC  forward break
constexpr float gSlope = 4.5f;           // 0x40900000  forward slope
constexpr float gExp = 0.449999988f;     // 0x3EE66666  forward exponent
constexpr float iBreak = 0.0812000036f;  // 0x3DA64C30  inverse break
constexpr float iSlope = 0.222222224f;   // 0x3E638E39  1 / 4.5
constexpr float iScale = 0.909918129f;   // 0x3F68F065  1 / 1.099
constexpr float iExp = 2.22222233f;      // 0x400E38E4  1 / 0.45

// ------------------------------------------------------------ integer tables
// Entry i of a table of F + 1 entries (F = 255 or 65535), x = i / F in doubles:
//   forward  4.5 i below 0.018, else (1.099 x^0.45 - 0.099) F
//   inverse  i / 4.5 below 0.0812, else ((x + 0.099) / 1.099)^(1 / 0.45) F
// rounded first to a 32-bit float, then to the nearest integer, ties to even
// (the float step decides near-ties: forward 16-bit 4082 gives 14164).
// Generated when the library is built.
enum class Dir { Fwd, Inv };

constexpr int nearestEven(float v) {  // 0 <= v < 2^23: the float's value rounded, ties to even
    const int i = static_cast<int>(v);
    const float frac = v - static_cast<float>(i);
    return frac > 0.5f || (frac == 0.5f && (i & 1)) ? i + 1 : i;
}

constexpr int tableEntry(Dir d, int i, int F) {
    const double x = static_cast<double>(i) / F;
    double v = 0;
    if (d == Dir::Fwd)
        v = x < 0.018 ? 4.5 * i : (1.099 * __builtin_pow(x, 0.45) - 0.099) * F;
    else
        v = x < 0.0812 ? i / 4.5 : __builtin_pow((x + 0.099) / 1.099, 1 / 0.45) * F;
    return nearestEven(static_cast<float>(v));
}

template <class T, Dir D>
struct Table {
    static constexpr int F = sizeof(T) == 1 ? 255 : 65535;
    alignas(16) T v[F + 1];
};
template <class T, Dir D>
constexpr Table<T, D> makeTable() {
    Table<T, D> t{};
    for (int i = 0; i <= Table<T, D>::F; ++i) t.v[i] = static_cast<T>(tableEntry(D, i, Table<T, D>::F));
    return t;
}
template <class T, Dir D>
inline constexpr Table<T, D> kTable = makeTable<T, D>();

static_assert(tableEntry(Dir::Fwd, 255, 255) == 255 && tableEntry(Dir::Fwd, 65535, 65535) == 65535 &&
                  tableEntry(Dir::Inv, 255, 255) == 255 && tableEntry(Dir::Inv, 65535, 65535) == 65535,
              "the ends of every table stay in range");

// ------------------------------------------------------------ table lookup
// Scalar: one entry.
template <class T>
inline T lookup(const T* table, T s) {
    return table[s];
}
// Sixteen bytes through a 256-entry table: for each 16-entry chunk c, the lanes
// whose high nibble is c take pshufb(chunk, low nibble); XOR with 16c clears a
// matching high nibble, and a saturating add of 0x70 sets bit 7 (pshufb gives
// 0) in every other lane while keeping the low nibble of the matching ones.
inline V lookup(const Kro8u* table, V s) {
    V r = zero();
    for (int c = 0; c < 16; ++c) {
        const V chunk = _mm_load_si128(reinterpret_cast<const V*>(table + 16 * c));
        const V idx = _mm_adds_epu8(_mm_xor_si128(s, _mm_set1_epi8(static_cast<char>(16 * c))), _mm_set1_epi8(0x70));
        r = _mm_or_si128(r, _mm_shuffle_epi8(chunk, idx));
    }
    return r;
}
// Eight 16-bit lanes through a 65536-entry table: one read per lane.
template <int L = 0>
inline V lookupLanes16(const Kro16u* table, V s, V r) {
    if constexpr (L == 8) {
        (void)table;
        (void)s;
        return r;
    } else {
        const int e = table[_mm_extract_epi16(s, L)];
        return lookupLanes16<L + 1>(table, s, _mm_insert_epi16(r, e, L));
    }
}
inline V lookup(const Kro16u* table, V s) { return lookupLanes16(table, s, s); }

// ------------------------------------------------------------ the power routine
// out[i] = in[i]^e for count floats, computed in doubles as exp(e ln v) and
// rounded once to float: within one unit in the last place of the true power
// (correctly rounded but for near-halfway cases at the 2^-40 level).
// Zero gives 0, a negative input NaN, NaN stays NaN, +inf gives inf (e > 0).
//
// It runs under round-to-nearest with every float exception masked and
// denormals kept (MXCSR 0x1F80), whatever the caller's settings, and gives the
// caller's MXCSR back whole at its end, status flags included: nothing it does
// shows in the caller's float state.
class PowerMode {
public:
    PowerMode() {
        __asm__ volatile("stmxcsr %0" : "=m"(saved_) : : "memory");
        const unsigned nearest = 0x1F80;
        __asm__ volatile("ldmxcsr %0" : : "m"(nearest) : "memory");
    }
    ~PowerMode() { __asm__ volatile("ldmxcsr %0" : : "m"(saved_) : "memory"); }
    PowerMode(const PowerMode&) = delete;
    PowerMode& operator=(const PowerMode&) = delete;

private:
    unsigned saved_ = 0;
};

using VD = __m128d;

// ln v for two positive, finite, normal doubles: v = 2^k m with m in
// [sqrt(1/2), sqrt(2)), ln m = 2 atanh(s), s = (m - 1) / (m + 1), |s| < 0.172,
// by its series to s^23 (the next term is below 2^-60 of the sum).
inline VD lnPositive(VD v) {
    const V bits = _mm_castpd_si128(v);
    const V biased = _mm_srli_epi64(bits, 52);
    VD m = _mm_castsi128_pd(_mm_or_si128(_mm_and_si128(bits, _mm_set1_epi64x(0x000FFFFFFFFFFFFFLL)),
                                         _mm_set1_epi64x(0x3FF0000000000000LL)));
    const VD big = _mm_cmpgt_pd(m, _mm_set1_pd(1.4142135623730951));
    m = _mm_blendv_pd(m, _mm_mul_pd(m, _mm_set1_pd(0.5)), big);
    VD k = _mm_cvtepi32_pd(_mm_shuffle_epi32(biased, _MM_SHUFFLE(3, 2, 2, 0)));
    k = _mm_add_pd(_mm_sub_pd(k, _mm_set1_pd(1023.0)), _mm_and_pd(big, _mm_set1_pd(1.0)));
    const VD s = _mm_div_pd(_mm_sub_pd(m, _mm_set1_pd(1.0)), _mm_add_pd(m, _mm_set1_pd(1.0)));
    const VD s2 = _mm_mul_pd(s, s);
    VD poly = _mm_set1_pd(1.0 / 23);
    for (int j = 21; j >= 1; j -= 2) poly = _mm_add_pd(_mm_mul_pd(poly, s2), _mm_set1_pd(1.0 / j));
    const VD lnm = _mm_mul_pd(_mm_add_pd(s, s), poly);
    // k ln 2 in two parts: the high part has 32 trailing zero bits, so k times it is exact
    const VD hi = _mm_mul_pd(k, _mm_set1_pd(6.93147180369123816490e-01));
    const VD lo = _mm_mul_pd(k, _mm_set1_pd(1.90821492927058770002e-10));
    return _mm_add_pd(hi, _mm_add_pd(lo, lnm));
}

// exp y for two doubles limited to -700..700: y = j ln 2 + r, |r| <= ln 2 / 2,
// exp r by its Taylor series to r^14, times 2^j built in the exponent field.
inline VD expLimited(VD y) {
    y = _mm_min_pd(_mm_max_pd(y, _mm_set1_pd(-700.0)), _mm_set1_pd(700.0));
    const VD j = _mm_round_pd(_mm_mul_pd(y, _mm_set1_pd(1.4426950408889634)), _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
    VD r = _mm_sub_pd(y, _mm_mul_pd(j, _mm_set1_pd(6.93147180369123816490e-01)));
    r = _mm_sub_pd(r, _mm_mul_pd(j, _mm_set1_pd(1.90821492927058770002e-10)));
    double c = 1.0;
    double coef[15];
    for (int n = 0; n <= 14; ++n) {
        coef[n] = 1.0 / c;
        c *= n + 1;
    }
    VD p = _mm_set1_pd(coef[14]);
    for (int n = 13; n >= 0; --n) p = _mm_add_pd(_mm_mul_pd(p, r), _mm_set1_pd(coef[n]));
    const V ji = _mm_cvtepi32_epi64(_mm_cvtpd_epi32(j));
    const VD scale = _mm_castsi128_pd(_mm_slli_epi64(_mm_add_epi64(ji, _mm_set1_epi64x(1023)), 52));
    return _mm_mul_pd(p, scale);
}

// Two float powers held as doubles (v exactly a float, e > 0).
inline VD powerPair(VD v, VD e) {
    const VD a = _mm_andnot_pd(_mm_set1_pd(-0.0), v);
    VD r = expLimited(_mm_mul_pd(e, lnPositive(_mm_max_pd(a, _mm_set1_pd(1e-300)))));
    r = _mm_andnot_pd(_mm_cmpeq_pd(a, _mm_setzero_pd()), r);                 // 0 (and -0) give 0
    const VD odd = _mm_or_pd(_mm_cmplt_pd(v, _mm_setzero_pd()), _mm_cmpunord_pd(v, v));
    return _mm_blendv_pd(r, _mm_sqrt_pd(v), odd);                             // negative: NaN; NaN stays
}

// Four lanes: the two halves in doubles, each rounded once to float.
inline VF power4(VF v, VD e) {
    const VD lo = powerPair(_mm_cvtps_pd(v), e);
    const VD hi = powerPair(_mm_cvtps_pd(_mm_movehl_ps(v, v)), e);
    return _mm_movelh_ps(_mm_cvtpd_ps(lo), _mm_cvtpd_ps(hi));
}

// The routine over an array (in and out may be the same): blocks of four, and
// the last one to three through a zero-padded block of four.
inline void power(const float* in, float e, float* out, int count) {
    PowerMode mode;
    const VD ev = _mm_set1_pd(static_cast<double>(e));
    int i = 0;
    for (; i + 4 <= count; i += 4) _mm_storeu_ps(out + i, power4(_mm_loadu_ps(in + i), ev));
    if (i < count) {
        float last[4] = {0, 0, 0, 0};
        std::memcpy(last, in + i, sizeof(float) * static_cast<size_t>(count - i));
        _mm_storeu_ps(last, power4(_mm_loadu_ps(last), ev));
        std::memcpy(out + i, last, sizeof(float) * static_cast<size_t>(count - i));
    }
}

// ------------------------------------------------------------ float curve forms
// Per call: r = vMax - vMin, q = 1 / r (float, and in doubles for the forms
// that test the break in doubles). Per sample t = x - vMin (x itself when vMin
// is exactly 0), then a power argument from t, then the result from t and the
// power, plus vMin (nothing added when vMin is 0).
enum class Prec { Float, Double };

struct Range {
    float vMin, r, q;
    double qd;
    bool zeroMin;
    Range(float lo, float hi) : vMin(lo), r(hi - lo), q(1.0f / r), qd(1.0 / static_cast<double>(r)), zeroMin(lo == 0.0f) {}
};

// Float lanes of a 4-lane double form: low and high pairs widened.
inline VD lowPair(VF x) { return _mm_cvtps_pd(x); }
inline VD highPair(VF x) { return _mm_cvtps_pd(_mm_movehl_ps(x, x)); }
inline VF joinPairs(VD lo, VD hi) { return _mm_movelh_ps(_mm_cvtpd_ps(lo), _mm_cvtpd_ps(hi)); }
// Two 64-bit masks pairs to one four-lane mask.
inline VF joinMasks(VD lo, VD hi) {
    return _mm_shuffle_ps(_mm_castpd_ps(lo), _mm_castpd_ps(hi), _MM_SHUFFLE(2, 0, 2, 0));
}

// t = x - vMin
inline float start(const Range& g, float x) { return x - g.vMin; }
inline VF start(const Range& g, VF x) { return _mm_sub_ps(x, _mm_set1_ps(g.vMin)); }
// result = y + vMin
inline float end(const Range& g, float y) { return y + g.vMin; }
inline VF end(const Range& g, VF y) { return _mm_add_ps(y, _mm_set1_ps(g.vMin)); }

template <Dir D, Prec P>
struct Curve;

// Forward. n = t q; low: n below gBreak; power argument n;
// y = gSlope t if low, else ((p gA) - gB) r.
template <Prec P>
struct CurveFwd {
    static constexpr float exponent = gExp;
    // the power argument and the low-branch test
    static float arg(const Range& g, float t, bool& low) {
        if constexpr (P == Prec::Float) {
            const float n = t * g.q;
            low = n < gBreak;
            return n;
        } else {
            const double n = static_cast<double>(t) * g.qd;
            low = n < static_cast<double>(gBreak);
            return static_cast<float>(n);
        }
    }
    static VF arg(const Range& g, VF t, VF& low) {
        if constexpr (P == Prec::Float) {
            const VF n = _mm_mul_ps(t, _mm_set1_ps(g.q));
            low = _mm_cmplt_ps(n, _mm_set1_ps(gBreak));
            return n;
        } else {
            const VD q = _mm_set1_pd(g.qd), brk = _mm_set1_pd(static_cast<double>(gBreak));
            const VD nl = _mm_mul_pd(lowPair(t), q), nh = _mm_mul_pd(highPair(t), q);
            low = joinMasks(_mm_cmplt_pd(nl, brk), _mm_cmplt_pd(nh, brk));
            return joinPairs(nl, nh);
        }
    }
    static float finish(const Range& g, float t, float p, bool low) {
        return low ? gSlope * t : ((p * gA) - gB) * g.r;
    }
    static VF finish(const Range& g, VF t, VF p, VF low) {
        const VF lin = _mm_mul_ps(_mm_set1_ps(gSlope), t);
        const VF cur = _mm_mul_ps(_mm_sub_ps(_mm_mul_ps(p, _mm_set1_ps(gA)), _mm_set1_ps(gB)), _mm_set1_ps(g.r));
        return _mm_blendv_ps(cur, lin, low);
    }
};

// Inverse. n = t q; low: n below iBreak; power argument b = (n + gB) iScale;
// y = t iSlope if low, else p r.
template <Prec P>
struct CurveInv {
    static constexpr float exponent = iExp;
    static float arg(const Range& g, float t, bool& low) {
        if constexpr (P == Prec::Float) {
            const float n = t * g.q;
            low = n < iBreak;
            return (n + gB) * iScale;
        } else {
            const double n = static_cast<double>(t) * g.qd;
            low = n < static_cast<double>(iBreak);
            return static_cast<float>((n + static_cast<double>(gB)) * static_cast<double>(iScale));
        }
    }
    static VF arg(const Range& g, VF t, VF& low) {
        if constexpr (P == Prec::Float) {
            const VF n = _mm_mul_ps(t, _mm_set1_ps(g.q));
            low = _mm_cmplt_ps(n, _mm_set1_ps(iBreak));
            return _mm_mul_ps(_mm_add_ps(n, _mm_set1_ps(gB)), _mm_set1_ps(iScale));
        } else {
            const VD q = _mm_set1_pd(g.qd), brk = _mm_set1_pd(static_cast<double>(iBreak));
            const VD b = _mm_set1_pd(static_cast<double>(gB)), s = _mm_set1_pd(static_cast<double>(iScale));
            const VD nl = _mm_mul_pd(lowPair(t), q), nh = _mm_mul_pd(highPair(t), q);
            low = joinMasks(_mm_cmplt_pd(nl, brk), _mm_cmplt_pd(nh, brk));
            return joinPairs(_mm_mul_pd(_mm_add_pd(nl, b), s), _mm_mul_pd(_mm_add_pd(nh, b), s));
        }
    }
    static float finish(const Range& g, float t, float p, bool low) { return low ? t * iSlope : p * g.r; }
    static VF finish(const Range& g, VF t, VF p, VF low) {
        return _mm_blendv_ps(_mm_mul_ps(p, _mm_set1_ps(g.r)), _mm_mul_ps(t, _mm_set1_ps(iSlope)), low);
    }
};

template <Prec P>
struct Curve<Dir::Fwd, P> : CurveFwd<P> {};
template <Prec P>
struct Curve<Dir::Inv, P> : CurveInv<P> {};

}  // namespace gamma
}  // namespace kro
