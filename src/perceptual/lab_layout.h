// Interleaved three-sample rows of 8-bit, 16-bit and float samples, as the
// float models see them: four pixels at a time into one 32-bit lane per pixel
// and channel (I32x4 for integer samples, F32x4 for floats), or one pixel at a
// time for the scalar tail. Steps are in bytes for every sample type. Swap
// exchanges channels 0 and 2 (BGR against RGB).
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "frame/layout8.h"
#include "perceptual/lab_forms.h"

namespace kro::lab {

// ------------------------------------------------------------ shuffle tables
// Four pixels of three samples of E bytes are 12 E bytes in (12 E + 15) / 16
// vectors. Loading spreads sample (pixel i, channel ch) into byte 4 i (zero
// extended) of channel vector ch; storing gathers it back.
template <int E>
struct C3Shuffles {
    static constexpr int vecs = (12 * E + 15) / 16;
    Mask16 load[3][vecs];   // [channel][interleaved vector]
    Mask16 store[vecs][3];  // [interleaved vector][channel]
};

template <int E>
constexpr C3Shuffles<E> makeC3Shuffles() {
    C3Shuffles<E> t{};
    for (int ch = 0; ch < 3; ++ch)
        for (int v = 0; v < C3Shuffles<E>::vecs; ++v) {
            for (int j = 0; j < 16; ++j) {
                const int i = j / 4, b = j % 4;
                const int s = E * (3 * i + ch) + b;
                t.load[ch][v].b[j] = static_cast<int8_t>(b < E && s / 16 == v ? s % 16 : -128);
            }
            for (int j = 0; j < 16; ++j) {
                const int s = 16 * v + j, el = s / E, b = s % E;
                const bool mine = s < 12 * E && el % 3 == ch;
                t.store[v][ch].b[j] = static_cast<int8_t>(mine ? 4 * (el / 3) + b : -128);
            }
        }
    return t;
}

template <int E>
inline constexpr C3Shuffles<E> kC3Shuffles = makeC3Shuffles<E>();

// Exactly the 12 E bytes of four pixels: nothing before or after is touched.
template <int E>
inline void load4px(const uint8_t* p, V (&in)[C3Shuffles<E>::vecs]) {
    if constexpr (E == 1) {
        int w;
        std::memcpy(&w, p + 8, 4);
        in[0] = _mm_insert_epi32(_mm_loadl_epi64(reinterpret_cast<const V*>(p)), w, 2);
    } else {
        for (int v = 0; v < 12 * E / 16; ++v) in[v] = _mm_loadu_si128(reinterpret_cast<const V*>(p + 16 * v));
        if constexpr (E == 2) in[1] = _mm_loadl_epi64(reinterpret_cast<const V*>(p + 16));
    }
}
template <int E>
inline void store4px(uint8_t* p, const V (&out)[C3Shuffles<E>::vecs]) {
    if constexpr (E == 1) {
        _mm_storel_epi64(reinterpret_cast<V*>(p), out[0]);
        const int w = _mm_extract_epi32(out[0], 2);
        std::memcpy(p + 8, &w, 4);
    } else {
        for (int v = 0; v < 12 * E / 16; ++v) _mm_storeu_si128(reinterpret_cast<V*>(p + 16 * v), out[v]);
        if constexpr (E == 2) _mm_storel_epi64(reinterpret_cast<V*>(p + 16), out[1]);
    }
}

template <class E>
struct SampleTraits {
    static constexpr bool isFloat = std::is_same_v<E, float>;
    using Lanes = std::conditional_t<isFloat, F32x4, I32x4>;  // four pixels of one channel
    using One = std::conditional_t<isFloat, float, int>;      // one sample in the tail
    static V bits(Lanes x) {
        if constexpr (isFloat)
            return _mm_castps_si128(x.v);
        else
            return x.v;
    }
    static Lanes fromBits(V x) {
        if constexpr (isFloat)
            return F32x4(_mm_castsi128_ps(x));
        else
            return I32x4(x);
    }
    // main path: integer lanes limited to the sample's range
    static Lanes limit(Lanes x) {
        if constexpr (std::is_same_v<E, uint8_t>)
            return clampU8(x);
        else if constexpr (std::is_same_v<E, uint16_t>)
            return clampU16(x);
        else
            return x;
    }
};

// ------------------------------------------------------------ source rows
template <class E, bool Swap>
struct SrcC3 {
    using Tr = SampleTraits<E>;
    using Lanes = typename Tr::Lanes;
    using One = typename Tr::One;
    static constexpr int vecs = C3Shuffles<sizeof(E)>::vecs;

    const uint8_t* base;
    int step;
    struct Row {
        const uint8_t* p;
        void load4(int x, Lanes (&s)[3]) const {
            const auto& t = kC3Shuffles<sizeof(E)>;
            V in[vecs];
            load4px<sizeof(E)>(p + 3 * sizeof(E) * x, in);
            for (int ch = 0; ch < 3; ++ch) {
                V acc = _mm_shuffle_epi8(in[0], loadMask(t.load[ch][0]));
                for (int v = 1; v < vecs; ++v) acc = _mm_or_si128(acc, _mm_shuffle_epi8(in[v], loadMask(t.load[ch][v])));
                s[Swap ? 2 - ch : ch] = Tr::fromBits(acc);
            }
        }
        void get(int x, One (&s)[3]) const {
            E v[3];
            std::memcpy(v, p + 3 * sizeof(E) * x, sizeof v);
            s[0] = static_cast<One>(v[Swap ? 2 : 0]);
            s[1] = static_cast<One>(v[1]);
            s[2] = static_cast<One>(v[Swap ? 0 : 2]);
        }
    };
    Row row(int y) const { return {rowAt(base, step, y)}; }
};

// ------------------------------------------------------------ destination rows
// The main path stores integer lanes limited to the sample's range; the tail
// stores the low bits of what it is given (a form that needs a clamp there
// applies it itself).
template <class E, bool Swap>
struct DstC3 {
    using Tr = SampleTraits<E>;
    using Lanes = typename Tr::Lanes;
    using One = typename Tr::One;
    static constexpr int vecs = C3Shuffles<sizeof(E)>::vecs;

    uint8_t* base;
    int step;
    struct Row {
        uint8_t* p;
        void store4(int x, const Lanes (&s)[3]) const {
            const auto& t = kC3Shuffles<sizeof(E)>;
            V w[3];
            for (int ch = 0; ch < 3; ++ch) w[Swap ? 2 - ch : ch] = Tr::bits(Tr::limit(s[ch]));
            V out[vecs];
            for (int v = 0; v < vecs; ++v) {
                V acc = _mm_shuffle_epi8(w[0], loadMask(t.store[v][0]));
                for (int ch = 1; ch < 3; ++ch) acc = _mm_or_si128(acc, _mm_shuffle_epi8(w[ch], loadMask(t.store[v][ch])));
                out[v] = acc;
            }
            store4px<sizeof(E)>(p + 3 * sizeof(E) * x, out);
        }
        void put(int x, const One (&s)[3]) const {
            const E v[3] = {static_cast<E>(s[Swap ? 2 : 0]), static_cast<E>(s[1]), static_cast<E>(s[Swap ? 0 : 2])};
            std::memcpy(p + 3 * sizeof(E) * x, v, sizeof v);
        }
    };
    Row row(int y) const { return {rowAt(base, step, y)}; }
};

}  // namespace kro::lab
