// Typed sides of the YCoCg operations: interleaved rows of 8-bit or signed
// 16-bit samples (three or four a pixel), and three planes of 8-bit, 16-bit or
// 32-bit samples. Steps are in bytes whatever the sample type, so no access
// assumes a sample-aligned address: vectors load and store unaligned, single
// samples go through memcpy.
//
// A vector step of N pixels (16, 8 or 4) moves between memory and the lanes a
// form runs in: Lane c[3][K], channel k of pixels 8j.. (I16x8) or 4j.. (I32x4)
// in c[k][j]. Which conversions exist follows the operations:
//   loads   8-bit -> I16x8; 16-bit -> I16x8 or I32x4 (sign-extended); 32-bit -> I32x4;
//   stores  I16x8 -> 8-bit saturated, 16-bit; I32x4 -> 32-bit, 16-bit planes
//           saturated (clampS16), 16-bit interleaved wrapped (low 16 bits).
// The scalar tail reads and writes one pixel as ints: get() gives the samples
// in the model's order, put() stores each result with the same rule as the
// vector store of the same side, except for 16-bit planes, where it keeps the
// low 16 bits.
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "frame/layout8.h"
#include "matrix/ycocg_forms.h"

namespace kro::ycocg {

// ------------------------------------------------------------ sample access
template <class T>
inline int loadSample(const uint8_t* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return static_cast<int>(v);
}
template <class T>
inline void storeSample(uint8_t* p, int v) {
    const T t = static_cast<T>(v);
    std::memcpy(p, &t, sizeof t);
}
// the value a destination of sample type T keeps of a result
template <class T>
inline int fitSample(int v) {
    if constexpr (std::is_same_v<T, uint8_t>) return clampU8(v);
    if constexpr (std::is_same_v<T, int16_t>) return wrap16(v);
    return v;
}

// ------------------------------------------------------------ 16-bit interleaving
// Channel ch of 8 interleaved pixels of cn 16-bit samples, from input vector vec.
constexpr Mask16 gather16(int cn, int vec, int ch) {
    Mask16 m{};
    for (int i = 0; i < 8; ++i) {
        const int s = cn * i + ch;
        const bool here = s / 8 == vec;
        m.b[2 * i] = static_cast<int8_t>(here ? 2 * (s % 8) : -128);
        m.b[2 * i + 1] = static_cast<int8_t>(here ? 2 * (s % 8) + 1 : -128);
    }
    return m;
}
// Output vector vec of 8 interleaved pixels of cn 16-bit samples: the lanes channel ch gives.
constexpr Mask16 scatter16(int cn, int vec, int ch) {
    Mask16 m{};
    for (int j = 0; j < 8; ++j) {
        const int s = 8 * vec + j;
        const bool here = s % cn == ch;
        m.b[2 * j] = static_cast<int8_t>(here ? 2 * (s / cn) : -128);
        m.b[2 * j + 1] = static_cast<int8_t>(here ? 2 * (s / cn) + 1 : -128);
    }
    return m;
}
template <int Cn>
struct Interleave16Tables {
    Mask16 gather[Cn][3];    // [vector][channel]; a fourth channel is never gathered
    Mask16 scatter[Cn][Cn];  // [vector][channel]
};
template <int Cn>
constexpr Interleave16Tables<Cn> makeInterleave16() {
    Interleave16Tables<Cn> t{};
    for (int v = 0; v < Cn; ++v) {
        for (int c = 0; c < 3; ++c) t.gather[v][c] = gather16(Cn, v, c);
        for (int c = 0; c < Cn; ++c) t.scatter[v][c] = scatter16(Cn, v, c);
    }
    return t;
}
template <int Cn>
inline constexpr Interleave16Tables<Cn> kInterleave16 = makeInterleave16<Cn>();

// Cn vectors of interleaved 16-bit samples to channels 0..2 (eight lanes each).
template <int Cn>
inline void deinterleave16(const V (&in)[Cn], V (&c)[3]) {
    const auto& t = kInterleave16<Cn>;
    for (int k = 0; k < 3; ++k) {
        V acc = _mm_shuffle_epi8(in[0], loadMask(t.gather[0][k]));
        for (int v = 1; v < Cn; ++v) acc = _mm_or_si128(acc, _mm_shuffle_epi8(in[v], loadMask(t.gather[v][k])));
        c[k] = acc;
    }
}
// Channels 0..Cn-1 (eight lanes each) to Cn vectors of interleaved samples.
template <int Cn>
inline void interleave16(const V (&c)[4], V (&out)[Cn]) {
    const auto& t = kInterleave16<Cn>;
    for (int v = 0; v < Cn; ++v) {
        V acc = _mm_shuffle_epi8(c[0], loadMask(t.scatter[v][0]));
        for (int k = 1; k < Cn; ++k) acc = _mm_or_si128(acc, _mm_shuffle_epi8(c[k], loadMask(t.scatter[v][k])));
        out[v] = acc;
    }
}

inline void swapV(V& a, V& b) {
    const V t = a;
    a = b;
    b = t;
}

// ------------------------------------------------------------ lane conversions
// signed 16-bit lanes 0..3 / 4..7 to 32-bit lanes
inline I32x4 lo32(V x) { return I32x4(_mm_cvtepi16_epi32(x)); }
inline I32x4 hi32(V x) { return I32x4(_mm_cvtepi16_epi32(_mm_srli_si128(x, 8))); }
// two vectors of 32-bit lanes to eight 16-bit lanes: their low 16 bits
inline V low16(V a, V b) {
    const V pick = _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, -128, -128, -128, -128, -128, -128, -128, -128);
    return _mm_unpacklo_epi64(_mm_shuffle_epi8(a, pick), _mm_shuffle_epi8(b, pick));
}

// Vectors a step of N pixels takes in lanes of type Lane (at least one).
template <class Lane, int N>
inline constexpr int kVecs = N >= LaneTraits<Lane>::kPixels ? N / LaneTraits<Lane>::kPixels : 1;

// N 16-bit samples from p (N = 8 or 4) into one vector, N 32-bit samples into
// N / 4 vectors; and back.
template <int N>
inline V load16(const uint8_t* p) {
    static_assert(N == 8 || N == 4);
    if constexpr (N == 8) return _mm_loadu_si128(reinterpret_cast<const V*>(p));
    return _mm_loadl_epi64(reinterpret_cast<const V*>(p));
}
template <int N>
inline void store16(uint8_t* p, V x) {
    static_assert(N == 8 || N == 4);
    if constexpr (N == 8)
        _mm_storeu_si128(reinterpret_cast<V*>(p), x);
    else
        _mm_storel_epi64(reinterpret_cast<V*>(p), x);
}

// ============================================================ sources
// Interleaved: T = uint8_t or int16_t, Cn = 3 or 4 samples a pixel (the fourth is
// never read by the tail, and the vector steps drop it), Swap: BGR order.
template <class T, int Cn, bool Swap>
struct SrcC {
    const void* base;
    int step;
    struct Row {
        const uint8_t* p;
        template <int N, class Lane>
        void load(int x, Lane (&c)[3][kVecs<Lane, N>]) const {
            if constexpr (std::is_same_v<T, uint8_t>) {
                static_assert(std::is_same_v<Lane, I16x8>, "8-bit samples run in 16-bit lanes");
                V in[Cn];
                loadBytes<Cn, N>(p + Cn * x, in);
                Px px;
                deinterleave<Cn>(in, px);
                if constexpr (Swap) swap02(px);
                for (int k = 0; k < 3; ++k) {
                    c[k][0] = I16x8(widenLo(px.c[k]));
                    if constexpr (N == 16) c[k][1] = I16x8(widenHi(px.c[k]));
                }
            } else {
                static_assert(N <= 8, "16-bit samples take 8 or 4 pixels a step");
                V in[Cn];
                loadBytes<Cn, 2 * N>(p + 2 * Cn * x, in);  // 2 N bytes of each of Cn samples
                V w[3];
                deinterleave16<Cn>(in, w);
                if constexpr (Swap) swapV(w[0], w[2]);
                for (int k = 0; k < 3; ++k) {
                    if constexpr (std::is_same_v<Lane, I16x8>) {
                        c[k][0] = I16x8(w[k]);
                    } else {
                        c[k][0] = lo32(w[k]);
                        if constexpr (N == 8) c[k][1] = hi32(w[k]);
                    }
                }
            }
        }
        void get(int x, int (&s)[3]) const {
            const uint8_t* q = p + sizeof(T) * Cn * x;
            s[0] = loadSample<T>(q + sizeof(T) * (Swap ? 2 : 0));
            s[1] = loadSample<T>(q + sizeof(T));
            s[2] = loadSample<T>(q + sizeof(T) * (Swap ? 0 : 2));
        }
    };
    Row row(int y) const { return {rowAt(static_cast<const uint8_t*>(base), step, y)}; }
};

// Three planes, one step: T = uint8_t, int16_t or int32_t.
template <class T>
struct SrcP3 {
    const T* const* planes;
    int step;
    struct Row {
        const uint8_t* p[3];
        template <int N, class Lane>
        void load(int x, Lane (&c)[3][kVecs<Lane, N>]) const {
            for (int k = 0; k < 3; ++k) {
                const uint8_t* q = p[k] + sizeof(T) * x;
                if constexpr (std::is_same_v<T, uint8_t>) {
                    static_assert(std::is_same_v<Lane, I16x8>);
                    V in[1];
                    loadBytes<1, N>(q, in);
                    c[k][0] = I16x8(widenLo(in[0]));
                    if constexpr (N == 16) c[k][1] = I16x8(widenHi(in[0]));
                } else if constexpr (std::is_same_v<T, int16_t>) {
                    static_assert(std::is_same_v<Lane, I16x8> && N <= 8);
                    c[k][0] = I16x8(load16<N>(q));
                } else {
                    static_assert(std::is_same_v<Lane, I32x4> && N <= 8);
                    for (int j = 0; j < N / 4; ++j)
                        c[k][j] = I32x4(_mm_loadu_si128(reinterpret_cast<const V*>(q + 16 * j)));
                }
            }
        }
        void get(int x, int (&s)[3]) const {
            for (int k = 0; k < 3; ++k) s[k] = loadSample<T>(p[k] + sizeof(T) * x);
        }
    };
    Row row(int y) const {
        Row r{};
        for (int k = 0; k < 3; ++k) r.p[k] = rowAt(reinterpret_cast<const uint8_t*>(planes[k]), step, y);
        return r;
    }
};

// ============================================================ destinations
// Interleaved: T = uint8_t (results saturated to 0..255 as signed 16-bit
// numbers) or int16_t (low 16 bits); Cn = 4: the fourth sample is aval.
template <class T, int Cn, bool Swap>
struct DstC {
    void* base;
    int step;
    T aval = 0;
    struct Row {
        uint8_t* p;
        T aval;
        template <int N, class Lane>
        void store(int x, const Lane (&c)[3][kVecs<Lane, N>]) const {
            if constexpr (std::is_same_v<T, uint8_t>) {
                static_assert(std::is_same_v<Lane, I16x8>, "8-bit results come from 16-bit lanes");
                Px px;
                for (int k = 0; k < 3; ++k) px.c[k] = clampU8(c[k][0].v, c[k][N == 16 ? 1 : 0].v);
                if constexpr (Swap) swap02(px);
                px.c[3] = _mm_set1_epi8(static_cast<char>(aval));
                V out[Cn];
                interleave<Cn>(px, out);
                storeBytes<Cn, N>(p + Cn * x, out);
            } else {
                static_assert(N <= 8, "16-bit samples take 8 or 4 pixels a step");
                V w[4];
                for (int k = 0; k < 3; ++k) {
                    if constexpr (std::is_same_v<Lane, I16x8>)
                        w[k] = c[k][0].v;
                    else
                        w[k] = low16(c[k][0].v, c[k][N == 8 ? 1 : 0].v);
                }
                if constexpr (Swap) swapV(w[0], w[2]);
                w[3] = splat16(aval);
                V out[Cn];
                interleave16<Cn>(w, out);
                storeBytes<Cn, 2 * N>(p + 2 * Cn * x, out);
            }
        }
        void put(int x, int a, int b, int c) const {
            uint8_t* q = p + sizeof(T) * Cn * x;
            storeSample<T>(q + sizeof(T) * (Swap ? 2 : 0), fitSample<T>(a));
            storeSample<T>(q + sizeof(T), fitSample<T>(b));
            storeSample<T>(q + sizeof(T) * (Swap ? 0 : 2), fitSample<T>(c));
            if constexpr (Cn == 4) storeSample<T>(q + 3 * sizeof(T), aval);
        }
    };
    Row row(int y) const { return {rowAt(static_cast<uint8_t*>(base), step, y), aval}; }
};

// Three planes, one step: T = uint8_t (scalar only), int16_t or int32_t.
// 16-bit planes from 32-bit lanes: the vector steps saturate (clampS16), the
// tail keeps the low 16 bits.
template <class T>
struct DstP3 {
    T* const* planes;
    int step;
    struct Row {
        uint8_t* p[3];
        template <int N, class Lane>
        void store(int x, const Lane (&c)[3][kVecs<Lane, N>]) const {
            for (int k = 0; k < 3; ++k) {
                uint8_t* q = p[k] + sizeof(T) * x;
                if constexpr (std::is_same_v<T, int16_t> && std::is_same_v<Lane, I16x8>) {
                    if constexpr (N == 16) {
                        store16<8>(q, c[k][0].v);
                        store16<8>(q + 16, c[k][1].v);
                    } else {
                        store16<N>(q, c[k][0].v);
                    }
                } else if constexpr (std::is_same_v<T, int16_t>) {
                    static_assert(N <= 8);
                    store16<N>(q, clampS16(c[k][0].v, c[k][N == 8 ? 1 : 0].v));
                } else {
                    static_assert(std::is_same_v<T, int32_t> && std::is_same_v<Lane, I32x4> && N <= 8);
                    for (int j = 0; j < N / 4; ++j) _mm_storeu_si128(reinterpret_cast<V*>(q + 16 * j), c[k][j].v);
                }
            }
        }
        void put(int x, int a, int b, int c) const {
            storeSample<T>(p[0] + sizeof(T) * x, fitSample<T>(a));
            storeSample<T>(p[1] + sizeof(T) * x, fitSample<T>(b));
            storeSample<T>(p[2] + sizeof(T) * x, fitSample<T>(c));
        }
    };
    Row row(int y) const {
        Row r{};
        for (int k = 0; k < 3; ++k) r.p[k] = rowAt(reinterpret_cast<uint8_t*>(planes[k]), step, y);
        return r;
    }
};

}  // namespace kro::ycocg
