// Grey forms: the weighted sum of a pixel's first three samples, per sample
// type, and the replication of a grey sample into three or four.
// Weights are prepared once per call (fixed ones or the caller's) and carried
// by the form object into every row.
#pragma once

#include <cstdint>
#include <cstring>

#include "frame/forms_typed.h"
#include "frame/kernel_typed.h"

namespace kro::gray {

// ------------------------------------------------------------ weights
// Fixed weights 0.299, 0.587, 0.114: 15 fractional bits (sum 32769) for 8u,
// the nearest floats for 16u, 16s, 32f, and those floats widened for 64f.
inline constexpr uint16_t kFixed8[3] = {9798, 19235, 3736};
inline constexpr float kFixed32[3] = {0.299f, 0.587f, 0.114f};

// A caller's float weight as a 15-fraction-bit integer: widened to double,
// times 32768, plus 0.5, truncated toward zero (64-bit), low 16 bits kept.
// A negative weight becomes a large unsigned one; a weight too large for a
// 64-bit integer (or a NaN) converts to the integer indefinite value, whose low
// 16 bits are 0.
inline uint16_t weight8(float w) {
    const double d = static_cast<double>(w) * 32768.0 + 0.5;
    return static_cast<uint16_t>(_mm_cvttsd_si64(_mm_set_sd(d)));
}

// ------------------------------------------------------------ 8u
// Main path: 8 pixels in 16-bit lanes; S = sum of mulHighU16(c, sample << 8)
// and 64, each addition saturating at 65535; S read as signed, >> 7, clampU8.
// Tail: (c0 R + c1 G + c2 B + 16384) >> 15 in 32 bits, low 8 bits stored.
struct Weighted8 {
    static constexpr int N = 8, K = 1;
    static constexpr Lanes lanes = Lanes::Int16High;  // samples arrive as sample << 8
    static constexpr bool floatOut = false;
    using VOut = V;
    using SIn = int;
    using SOut = int;
    int c[3];
    V cv[3];

    explicit Weighted8(const uint16_t (&w)[3]) {
        for (int k = 0; k < 3; ++k) {
            c[k] = w[k];
            cv[k] = splat16(w[k]);
        }
    }
    void vec(const V (&in)[3], V (&o)[1]) const {
        V s = mulHighU16(cv[0], in[0]);
        s = addSatU16(s, mulHighU16(cv[1], in[1]));
        s = addSatU16(s, mulHighU16(cv[2], in[2]));
        s = addSatU16(s, splat16(64));
        o[0] = clampU8Lanes16(_mm_srai_epi16(s, 7));
    }
    void one(const int (&in)[3], int (&o)[1]) const {
        o[0] = (c[0] * in[0] + c[1] * in[1] + c[2] * in[2] + 16384) >> 15;  // low 8 bits stored
    }
};

// ------------------------------------------------------------ 16u, 16s, 32f
// V = (R c0 + G c1) + B c2 in floats; what becomes of V is the type's:
enum class Out {
    U16,  // roundEven(V), low 16 bits, both paths
    S16,  // on samples + 32768: roundEven(V) - 32768, clampS16 in the main path, low 16 bits in the tail
    F32,  // V as it is
};

template <Out O>
struct WeightedF {
    static constexpr int N = 4, K = 1;
    static constexpr Lanes lanes = Lanes::Float;
    static constexpr bool floatOut = O == Out::F32;
    using VOut = typename VecOut<floatOut>::type;
    using SIn = float;
    using SOut = std::conditional_t<O == Out::F32, float, int>;
    float c[3];
    VF cv[3];

    explicit WeightedF(const float (&w)[3]) {
        for (int k = 0; k < 3; ++k) {
            c[k] = w[k];
            cv[k] = _mm_set1_ps(w[k]);
        }
    }
    void vec(const VF (&in)[3], VOut (&o)[1]) const {
        if constexpr (O == Out::S16) {
            const VF bias = _mm_set1_ps(32768.0f);
            const VF v = sum3(addF(in[0], bias), addF(in[1], bias), addF(in[2], bias), cv[0], cv[1], cv[2]);
            o[0] = clampS16Lanes32(_mm_sub_epi32(roundEven(v), _mm_set1_epi32(32768)));
        } else {
            const VF v = sum3(in[0], in[1], in[2], cv[0], cv[1], cv[2]);
            if constexpr (O == Out::U16) o[0] = roundEven(v);
            else o[0] = v;
        }
    }
    void one(const float (&in)[3], SOut (&o)[1]) const {
        if constexpr (O == Out::S16) {
            const float v = sum3(addF(in[0], 32768.0f), addF(in[1], 32768.0f), addF(in[2], 32768.0f), c[0], c[1], c[2]);
            o[0] = static_cast<int>(static_cast<uint32_t>(roundEven(v)) - 32768u);  // low 16 bits stored
        } else {
            const float v = sum3(in[0], in[1], in[2], c[0], c[1], c[2]);
            if constexpr (O == Out::U16) o[0] = roundEven(v);
            else o[0] = v;
        }
    }
};

// ------------------------------------------------------------ 64f
// V = (R c0 + G c1) + B c2 in doubles. The C3 form's vector path works on pixel
// pairs loaded as [R0 G0] [B0 R1] [G1 B1]: the first pixel of a pair is summed
// in that order, the second as (G1 c1 + B1 c2) + R1 c0, which can differ in the
// last bit. The AC4 form sums every pixel in the first order and never loads
// the fourth sample.
//
// Row: one single pixel first when the destination row is 8 bytes off a
// 16-byte boundary, then pairs in steps of 8, 4 and 2 pixels, then a single
// last pixel.
template <int Cn>
struct Weighted64 {
    static_assert(Cn == 3 || Cn == 4, "three or four samples a pixel");
    double c[3];
    __m128d c01, c20, c12, c22;

    explicit Weighted64(const double (&w)[3]) {
        for (int k = 0; k < 3; ++k) c[k] = w[k];
        c01 = _mm_setr_pd(w[0], w[1]);
        c20 = _mm_setr_pd(w[2], w[0]);
        c12 = _mm_setr_pd(w[1], w[2]);
        c22 = _mm_set1_pd(w[2]);
    }

    double one(const Kro64f* q) const {
        return sum3(loadSample(q), loadSample(q + 1), loadSample(q + 2), c[0], c[1], c[2]);
    }

    // pixels x and x + 1
    __m128d pair(const Kro64f* p) const {
        if constexpr (Cn == 3) {
            const __m128d a = mulF(_mm_loadu_pd(p), c01);      // R0 c0, G0 c1
            const __m128d b = mulF(_mm_loadu_pd(p + 2), c20);  // B0 c2, R1 c0
            const __m128d d = mulF(_mm_loadu_pd(p + 4), c12);  // G1 c1, B1 c2
            return addF(_mm_hadd_pd(a, d), b);
        } else {
            const __m128d rg0 = mulF(_mm_loadu_pd(p), c01);
            const __m128d rg1 = mulF(_mm_loadu_pd(p + 4), c01);
            const __m128d bb = _mm_castsi128_pd(_mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const V*>(p + 2)),
                                                                   _mm_loadl_epi64(reinterpret_cast<const V*>(p + 6))));
            return addF(_mm_hadd_pd(rg0, rg1), mulF(bb, c22));
        }
    }

    void row(const uint8_t* src, uint8_t* dst, int width) const {
        const auto* s = reinterpret_cast<const Kro64f*>(src);
        auto* d = reinterpret_cast<Kro64f*>(dst);
        int x = 0;
        auto single = [&](int i) {
            storeSample(d + i, one(s + Cn * i));
        };
        auto pairs = [&](int i, int n) {
            for (int j = 0; j < n; j += 2) _mm_storeu_pd(d + i + j, pair(s + Cn * (i + j)));
        };
        if ((reinterpret_cast<uintptr_t>(dst) & 15) == 8) single(x++);
        for (; x + 8 <= width; x += 8) pairs(x, 8);
        if (x + 4 <= width) pairs(x, 4), x += 4;
        if (x + 2 <= width) pairs(x, 2), x += 2;
        if (x < width) single(x);
    }

    // Region driver: byte steps.
    void region(const Kro64f* src, int srcStep, Kro64f* dst, int dstStep, kroiSize roi) const {
        const auto* s = reinterpret_cast<const uint8_t*>(src);
        auto* d = reinterpret_cast<uint8_t*>(dst);
        for (int y = 0; y < roi.height; ++y)
            row(s + static_cast<std::ptrdiff_t>(y) * srcStep, d + static_cast<std::ptrdiff_t>(y) * dstStep, roi.width);
    }
};

// ------------------------------------------------------------ grey to colour
// Each grey sample copied bit for bit into samples 0..2 of a pixel of Cn (3 or
// 4); with Cn = 4 the fourth receives aval. Main path: one vector of grey
// samples a step (8 pixels of 8u or 16u, 4 of 32f) spread by byte shuffles;
// the tail copies single pixels. The shuffles come from the scatter tables of
// layout_typed.h: every colour channel takes lanes of the one grey vector.
template <class T, int Cn>
struct Replicate {
    static constexpr int S = Sample<T>::size;
    static constexpr int N = S == 4 ? 4 : 8;
    static constexpr int bytes = Cn * S * N;
    static_assert(Cn == 3 || Cn == 4, "three or four samples a pixel");
    using Table = ScatterTable<Cn, 3, S, S, N>;
    T aval;
    V avalv;  // aval in every fourth sample of a 16-byte span, zero elsewhere

    explicit Replicate(T a = T()) : aval(a) {
        alignas(16) uint8_t b[16] = {};
        if constexpr (Cn == 4)
            for (int i = 0; i < 16 / (4 * S); ++i) std::memcpy(b + (4 * i + 3) * S, &a, S);
        avalv = _mm_load_si128(reinterpret_cast<const V*>(b));
    }

    void row(const T* s, T* d, int width) const {
        const auto& t = kScatter<Cn, 3, S, S, N>;
        const int n = width & ~(N - 1);
        int x = 0;
        for (; x < n; x += N) {
            V g[1];
            loadSpan<S * N>(s + x, g);
            V out[vectorsFor(bytes)];
            for (int v = 0; v < t.outVecs; ++v) {
                V acc = _mm_shuffle_epi8(g[0], loadMask(t.m[v][0]));
                acc = _mm_or_si128(acc, _mm_shuffle_epi8(g[0], loadMask(t.m[v][1])));
                acc = _mm_or_si128(acc, _mm_shuffle_epi8(g[0], loadMask(t.m[v][2])));
                if constexpr (Cn == 4) acc = _mm_or_si128(acc, avalv);
                out[v] = acc;
            }
            storeSpan<bytes>(d + Cn * x, out);
        }
        for (; x < width; ++x) {
            T* q = d + Cn * x;
            std::memcpy(q, s + x, S);
            std::memcpy(q + 1, s + x, S);
            std::memcpy(q + 2, s + x, S);
            if constexpr (Cn == 4) std::memcpy(q + 3, &aval, S);
        }
    }

    // Region driver: byte steps.
    void region(const T* src, int srcStep, T* dst, int dstStep, kroiSize roi) const {
        const auto* s = reinterpret_cast<const uint8_t*>(src);
        auto* d = reinterpret_cast<uint8_t*>(dst);
        for (int y = 0; y < roi.height; ++y)
            row(reinterpret_cast<const T*>(s + static_cast<std::ptrdiff_t>(y) * srcStep),
                reinterpret_cast<T*>(d + static_cast<std::ptrdiff_t>(y) * dstStep), roi.width);
    }
};

}  // namespace kro::gray
