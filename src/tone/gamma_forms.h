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
// out[i] = in[i]^e for count floats, computed in doubles as 2^(e log2 v) and
// rounded once to float. The double result is within about 2^-47 of the true
// power (relative), so the float is the correctly rounded one but for inputs
// whose power lies within that distance of a halfway point between floats.
// Zero gives 0, a negative input NaN, NaN stays NaN, +inf gives inf, for an
// exponent e in kPowerExponents (the curves' two).
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

// log2: v = 2^k m, m in [1, 2); the top 7 bits of m's fraction pick a cell i
// with a reciprocal c_i of its centre, kept to 28 significant bits so that
// m c_i (24 + 28 bits) is exact, and r = m c_i - 1 is exact too, |r| < 2^-8.
// log2 v = k - log2 c_i + log2(1 + r), the last by its series to r^5 (the
// next term is below 2^-50).
constexpr int kLogCells = 128;
struct alignas(16) LogCell {
    double inv;     // c_i
    double log2c;   // -log2 c_i
};
constexpr double round28(double x) {  // x in (1/2, 1]: to 28 significant bits, nearest
    return static_cast<double>(static_cast<long long>(x * 268435456.0 + 0.5)) / 268435456.0;
}
struct LogTable {
    LogCell c[kLogCells];
};
constexpr LogTable makeLogTable() {
    LogTable t{};
    for (int i = 0; i < kLogCells; ++i) {
        const double inv = round28(1.0 / (1.0 + (i + 0.5) / kLogCells));
        t.c[i] = {inv, -__builtin_log2(inv)};
    }
    return t;
}
alignas(16) inline constexpr LogTable kLog = makeLogTable();

// 1 / ln 2 and the series of log2(1 + r) = (r - r^2/2 + r^3/3 - r^4/4 + r^5/5) / ln 2.
constexpr double kInvLn2 = 1.4426950408889634;
constexpr double kLog2Series[5] = {kInvLn2, -kInvLn2 / 2, kInvLn2 / 3, -kInvLn2 / 4, kInvLn2 / 5};

// exp2: y = j / 128 + f / 128 with j the nearest integer to 128 y, |f| <= 1/2
// (f found exactly); 2^y = 2^(j >> 7) 2^((j & 127) / 128) 2^(f / 128), the
// middle factor from a table and the last by its series to f^4 (the next term
// is below 2^-49).
constexpr int kExpCells = 128;
struct ExpTable {
    double v[kExpCells];
};
constexpr ExpTable makeExpTable() {
    ExpTable t{};
    for (int j = 0; j < kExpCells; ++j) t.v[j] = __builtin_exp2(static_cast<double>(j) / kExpCells);
    return t;
}
alignas(16) inline constexpr ExpTable kExp2 = makeExpTable();

// exp((ln 2 / 128) f) = 1 + a1 f + a2 f^2 + a3 f^3 + a4 f^4
constexpr double kLn2Cell = 0.6931471805599453 / kExpCells;
constexpr double kExpSeries[4] = {kLn2Cell, kLn2Cell * kLn2Cell / 2, kLn2Cell * kLn2Cell * kLn2Cell / 6,
                                  kLn2Cell * kLn2Cell * kLn2Cell * kLn2Cell / 24};


// c0 + c1 x + c2 x^2 + c3 x^3 (+ c4 x^4), in pairs so that the terms run side by side.
inline VD series4(VD x, const double* c) {
    const VD x2 = _mm_mul_pd(x, x);
    const VD lo = _mm_add_pd(_mm_set1_pd(c[0]), _mm_mul_pd(_mm_set1_pd(c[1]), x));
    const VD hi = _mm_add_pd(_mm_set1_pd(c[2]), _mm_mul_pd(_mm_set1_pd(c[3]), x));
    return _mm_add_pd(lo, _mm_mul_pd(x2, hi));
}
inline VD series5(VD x, const double* c) {
    const VD x2 = _mm_mul_pd(x, x);
    const VD lo = _mm_add_pd(_mm_set1_pd(c[0]), _mm_mul_pd(_mm_set1_pd(c[1]), x));
    const VD hi = _mm_add_pd(_mm_add_pd(_mm_set1_pd(c[2]), _mm_mul_pd(_mm_set1_pd(c[3]), x)),
                             _mm_mul_pd(_mm_set1_pd(c[4]), x2));
    return _mm_add_pd(lo, _mm_mul_pd(x2, hi));
}

// log2 v for two doubles that are non-negative floats (so normal as doubles, or
// zero). The power of two is held to -420..420 (zero would give -1023, inf
// 1024): with an exponent e in kPowerExponents the power of zero is then
// below 2^-150 (0 as a float), that of inf above 2^150 (inf), and every power
// stays a normal double.
constexpr int kPowerTwoBound = 420;
struct ExponentRange {
    double lo, hi;
};
constexpr ExponentRange kPowerExponents = {0.36, 2.4};
static_assert(kPowerTwoBound * kPowerExponents.lo > 151 && kPowerTwoBound * kPowerExponents.hi < 1020,
              "zero and inf reach 0 and inf as floats, every power stays a normal double");
static_assert(gExp > kPowerExponents.lo && iExp < kPowerExponents.hi, "the curves' exponents are in range");
inline VD log2Positive(VD v) {
    const V bits = _mm_castpd_si128(v);
    const VD m = _mm_castsi128_pd(_mm_or_si128(_mm_and_si128(bits, _mm_set1_epi64x(0x000FFFFFFFFFFFFFLL)),
                                               _mm_set1_epi64x(0x3FF0000000000000LL)));
    const V hi = _mm_shuffle_epi32(bits, _MM_SHUFFLE(3, 1, 3, 1));  // the high words in lanes 0 and 1
    const V ki = _mm_sub_epi32(_mm_srli_epi32(hi, 20), _mm_set1_epi32(1023));
    const VD k = _mm_cvtepi32_pd(_mm_min_epi32(_mm_max_epi32(ki, _mm_set1_epi32(-kPowerTwoBound)), _mm_set1_epi32(kPowerTwoBound)));
    const V cell = _mm_and_si128(_mm_srli_epi32(hi, 13), _mm_set1_epi32(kLogCells - 1));
    const int i0 = _mm_cvtsi128_si32(cell), i1 = _mm_extract_epi32(cell, 1);
    const VD c0 = _mm_load_pd(&kLog.c[i0].inv), c1 = _mm_load_pd(&kLog.c[i1].inv);
    const VD inv = _mm_unpacklo_pd(c0, c1), log2c = _mm_unpackhi_pd(c0, c1);
    const VD r = _mm_sub_pd(_mm_mul_pd(m, inv), _mm_set1_pd(1.0));
    const VD p = series5(r, kLog2Series);
    return _mm_add_pd(_mm_add_pd(k, log2c), _mm_mul_pd(p, r));
}

// 2^(y / 128) for two doubles, |y| below 1020 128 (the integer part exact in
// 32 bits, the power a normal double).
inline VD exp2Cells(VD y128) {
    const VD shifter = _mm_set1_pd(6755399441055744.0);  // 1.5 2^52: adding it rounds to an integer
    const VD js = _mm_add_pd(y128, shifter);
    const VD f = _mm_sub_pd(y128, _mm_sub_pd(js, shifter));
    const V j = _mm_shuffle_epi32(_mm_castpd_si128(js), _MM_SHUFFLE(2, 0, 2, 0));  // low words: j in lanes 0 and 1
    const V cell = _mm_and_si128(j, _mm_set1_epi32(kExpCells - 1));
    const VD t = _mm_loadh_pd(_mm_load_sd(kExp2.v + _mm_cvtsi128_si32(cell)), kExp2.v + _mm_extract_epi32(cell, 1));
    const V scale = _mm_slli_epi64(_mm_cvtepi32_epi64(_mm_srai_epi32(j, 7)), 52);
    const VD p = series4(f, kExpSeries);
    const VD tp = _mm_add_pd(t, _mm_mul_pd(t, _mm_mul_pd(p, f)));
    return _mm_castsi128_pd(_mm_add_epi64(_mm_castpd_si128(tp), scale));
}

// Two float powers held as doubles (v exactly a float, e128 = 128 e with e in
// kPowerExponents). Zero (and -0) gives 0; a negative input or NaN a quiet NaN.
inline VD powerPair(VD v, VD e128) {
    const VD r = exp2Cells(_mm_mul_pd(e128, log2Positive(_mm_andnot_pd(_mm_set1_pd(-0.0), v))));
    const VD nan = _mm_or_pd(v, _mm_castsi128_pd(_mm_set1_epi64x(0x7FF8000000000000LL)));
    return _mm_blendv_pd(r, nan, _mm_cmpnge_pd(v, _mm_setzero_pd()));
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
    const VD ev = _mm_set1_pd(static_cast<double>(e) * kExpCells);
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
