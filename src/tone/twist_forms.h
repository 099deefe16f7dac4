// Colour twist forms: a caller's affine 3 x 4 matrix (or a 4 x 4 one without
// constants) applied to every pixel in 32-bit floats. The same formula holds at
// every column, so main path and tail differ only in how many pixels they
// take at once. Sides keep their steps in bytes for every sample type.
#pragma once

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "frame/forms_typed.h"
#include "frame/kernel_typed.h"

namespace kro::twist {

// ------------------------------------------------------------ the sums
// One output channel of a 3 x 4 matrix row t: the constant joins the first
// product, the third product is added to the second, then the halves meet:
//   (t3 + s0 t0) + (s2 t2 + s1 t1)
template <class F>
inline F affine3(F s0, F s1, F s2, F t0, F t1, F t2, F t3) {
    return addF(addF(t3, mulF(s0, t0)), addF(mulF(s2, t2), mulF(s1, t1)));
}
// One output channel of a 4 x 4 matrix row t: ((s0 t0 + s1 t1) + s2 t2) + s3 t3.
template <class F>
inline F linear4(F s0, F s1, F s2, F s3, F t0, F t1, F t2, F t3) {
    return addF(addF(addF(mulF(s0, t0), mulF(s1, t1)), mulF(s2, t2)), mulF(s3, t3));
}

// ------------------------------------------------------------ saturation
// min(d, hi) then max(., lo) as the instructions do them: a NaN d takes the
// upper bound (the first min returns its second operand), infinities clamp.
inline float clampTo(float d, float lo, float hi) {
    return _mm_cvtss_f32(_mm_max_ss(_mm_min_ss(_mm_set_ss(d), _mm_set_ss(hi)), _mm_set_ss(lo)));
}
inline VF clampTo(VF d, VF lo, VF hi) { return _mm_max_ps(_mm_min_ps(d, hi), lo); }

// Saturation bounds and result kind of a sample type.
template <class T>
struct Bounds;
template <>
struct Bounds<Kro8u> {
    static constexpr bool clamps = true;
    static constexpr float lo = 0.0f, hi = 255.0f;
};
template <>
struct Bounds<Kro16u> {
    static constexpr bool clamps = true;
    static constexpr float lo = 0.0f, hi = 65535.0f;
};
template <>
struct Bounds<Kro16s> {
    static constexpr bool clamps = true;
    static constexpr float lo = -32768.0f, hi = 32767.0f;
};
template <>
struct Bounds<Kro32f> {
    static constexpr bool clamps = false;
    static constexpr float lo = 0.0f, hi = 0.0f;  // unused: stored as computed
};

// ------------------------------------------------------------ 3 x 4 form
// Four pixels in float lanes (one vector per channel) or one pixel. Integer
// samples: clamp to the type's bounds, round to nearest even (the entry has
// forced round-to-nearest), stored by their low bits. Float samples: stored
// as computed.
template <class T>
struct Affine3 {
    static constexpr int N = 4, K = 3;
    static constexpr Lanes lanes = Lanes::Float;
    static constexpr bool floatOut = !Bounds<T>::clamps;
    using VOut = typename VecOut<floatOut>::type;
    using SIn = float;
    using SOut = std::conditional_t<floatOut, float, int>;
    float t[3][4];  // the caller's matrix, copied at entry
    VF tv[3][4];    // each entry in every lane

    explicit Affine3(const Kro32f* twist) {
        std::memcpy(t, twist, sizeof t);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 4; ++j) tv[i][j] = _mm_set1_ps(t[i][j]);
    }
    void vec(const VF (&in)[3], VOut (&o)[3]) const {
        for (int i = 0; i < 3; ++i) {
            const VF d = affine3(in[0], in[1], in[2], tv[i][0], tv[i][1], tv[i][2], tv[i][3]);
            if constexpr (floatOut)
                o[i] = d;
            else
                o[i] = roundEven(clampTo(d, _mm_set1_ps(Bounds<T>::lo), _mm_set1_ps(Bounds<T>::hi)));
        }
    }
    void one(const float (&in)[3], SOut (&o)[3]) const {
        for (int i = 0; i < 3; ++i) {
            const float d = affine3(in[0], in[1], in[2], t[i][0], t[i][1], t[i][2], t[i][3]);
            if constexpr (floatOut)
                o[i] = d;
            else
                o[i] = roundEven(clampTo(d, Bounds<T>::lo, Bounds<T>::hi));
        }
    }
};

// ------------------------------------------------------------ 4 x 4 form on 32f
// The matrix's columns in four vectors, one lane per output channel: a pixel
// becomes four broadcasts, four multiplies and three adds. The scalar version
// takes the rows one by one; both give the same bits.
struct Linear4 {
    float t[4][4];
    VF col[4];

    explicit Linear4(const Kro32f* twist) {
        std::memcpy(t, twist, sizeof t);
        for (int j = 0; j < 4; ++j) col[j] = _mm_setr_ps(t[0][j], t[1][j], t[2][j], t[3][j]);
    }
    VF vec(VF px) const {
        return linear4(_mm_shuffle_ps(px, px, 0x00), _mm_shuffle_ps(px, px, 0x55), _mm_shuffle_ps(px, px, 0xaa),
                       _mm_shuffle_ps(px, px, 0xff), col[0], col[1], col[2], col[3]);
    }
    void one(const float (&s)[4], float (&o)[4]) const {
        for (int i = 0; i < 4; ++i) o[i] = linear4(s[0], s[1], s[2], s[3], t[i][0], t[i][1], t[i][2], t[i][3]);
    }
};

// ------------------------------------------------------------ sides with byte steps
template <class T>
inline T* atByte(T* p, int y, int step) {
    using B = std::conditional_t<std::is_const_v<T>, const char, char>;
    return reinterpret_cast<T*>(reinterpret_cast<B*>(p) + static_cast<std::ptrdiff_t>(y) * step);
}

// Interleaved: the typed layer's row views, rows found by byte steps.
template <class T, int Cn>
struct SrcCB {
    const T* base;
    int step;  // bytes
    typename SrcCT<T, Cn>::Row row(int y) const { return {atByte(base, y, step)}; }
};
template <class T, int Cn, Fourth F = Fourth::None>
struct DstCB {
    T* base;
    int step;  // bytes
    typename DstCT<T, Cn, F>::Row row(int y) const { return {atByte(base, y, step)}; }
};

// Planar: three planes sharing one byte step; four pixels of a plane into
// float lanes, results back by their low bits (or as floats).
template <class T>
struct PlaneLanes {
    static VF load4(const T* p) {
        if constexpr (std::is_same_v<T, Kro32f>) {
            return _mm_loadu_ps(p);
        } else if constexpr (std::is_same_v<T, Kro8u>) {
            int w;
            std::memcpy(&w, p, 4);
            return _mm_cvtepi32_ps(_mm_cvtepu8_epi32(_mm_cvtsi32_si128(w)));
        } else {
            const V l = _mm_loadl_epi64(reinterpret_cast<const V*>(p));
            return _mm_cvtepi32_ps(std::is_same_v<T, Kro16s> ? _mm_cvtepi16_epi32(l) : _mm_cvtepu16_epi32(l));
        }
    }
    static void store4(T* p, VF v) {
        if constexpr (std::is_same_v<T, Kro32f>) _mm_storeu_ps(p, v);
        else store4(p, _mm_castps_si128(v));
    }
    static void store4(T* p, V v) {
        if constexpr (std::is_same_v<T, Kro8u>) {
            const int w = _mm_cvtsi128_si32(_mm_shuffle_epi8(v, _mm_setr_epi8(0, 4, 8, 12, -1, -1, -1, -1, -1, -1, -1,
                                                                               -1, -1, -1, -1, -1)));
            std::memcpy(p, &w, 4);
        } else if constexpr (sizeof(T) == 2) {
            _mm_storel_epi64(reinterpret_cast<V*>(p), _mm_shuffle_epi8(v, _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, -1,
                                                                                         -1, -1, -1, -1, -1, -1, -1)));
        } else {
            _mm_storeu_si128(reinterpret_cast<V*>(p), v);
        }
    }
};

template <class T>
struct SrcPB {
    const T* const* base;
    int step;  // bytes, every plane
    struct Row {
        const T* p[3];
        template <int N>
        void loadFloats(int x, VF (&c)[3]) const {
            static_assert(N == 4, "four float lanes");
            for (int ch = 0; ch < 3; ++ch) c[ch] = PlaneLanes<T>::load4(p[ch] + x);
        }
        template <class U>
        void get(int x, U (&s)[3]) const {
            for (int ch = 0; ch < 3; ++ch) s[ch] = static_cast<U>(loadSample(p[ch] + x));
        }
    };
    Row row(int y) const { return {{atByte(base[0], y, step), atByte(base[1], y, step), atByte(base[2], y, step)}}; }
};
template <class T>
struct DstPB {
    T* const* base;
    int step;  // bytes, every plane
    struct Row {
        T* p[3];
        template <int N, int L>
        void storeLanes(int x, const V (&c)[3]) const {
            static_assert(N == 4 && L == 4, "four 32-bit lanes");
            for (int k = 0; k < 3; ++k) PlaneLanes<T>::store4(p[k] + x, c[k]);
        }
        template <int N>
        void storeFloats(int x, const VF (&c)[3]) const {
            for (int k = 0; k < 3; ++k) PlaneLanes<T>::store4(p[k] + x, c[k]);
        }
        template <class U>
        void put(int x, const U (&s)[3]) const {
            for (int k = 0; k < 3; ++k) {
                if constexpr (std::is_floating_point_v<U>) storeSample(p[k] + x, static_cast<T>(s[k]));
                else storeSample(p[k] + x, static_cast<T>(static_cast<uint32_t>(s[k])));
            }
        }
    };
    Row row(int y) const { return {{atByte(base[0], y, step), atByte(base[1], y, step), atByte(base[2], y, step)}}; }
};

// ------------------------------------------------------------ 4 x 4 rows
// Two pixels a step, a last odd pixel by the scalar form; rows by byte steps.
inline void linear4Row(const Linear4& f, const Kro32f* s, Kro32f* d, int width) {
    int x = 0;
    for (; x + 2 <= width; x += 2) {
        const VF a = _mm_loadu_ps(s + 4 * x), b = _mm_loadu_ps(s + 4 * x + 4);
        const VF ra = f.vec(a), rb = f.vec(b);
        _mm_storeu_ps(d + 4 * x, ra);
        _mm_storeu_ps(d + 4 * x + 4, rb);
    }
    if (x < width) {
        float in[4], o[4];
        std::memcpy(in, s + 4 * x, sizeof in);
        f.one(in, o);
        std::memcpy(d + 4 * x, o, sizeof o);
    }
}

// ------------------------------------------------------------ rounding mode
// The integer forms round to nearest whatever mode the caller has set: the
// rounding-control bits of MXCSR are cleared for the call and put back on
// return. Flush-to-zero, denormals-are-zero and exception masks are left alone.
class NearestRounding {
public:
    NearestRounding() : saved_(_mm_getcsr()) {
        if (saved_ & kRoundingBits) {
            _mm_setcsr(saved_ & ~kRoundingBits);
            __asm__ volatile("" ::: "memory");
        }
    }
    ~NearestRounding() {
        if (saved_ & kRoundingBits) {
            __asm__ volatile("" ::: "memory");
            _mm_setcsr(saved_);
        }
    }
    NearestRounding(const NearestRounding&) = delete;
    NearestRounding& operator=(const NearestRounding&) = delete;

private:
    static constexpr unsigned kRoundingBits = 0x6000u;
    unsigned saved_;
};

}  // namespace kro::twist
