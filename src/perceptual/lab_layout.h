// Interleaved three-sample rows of 8-bit, 16-bit and float samples, as the
// float models see them: four pixels at a time into one 32-bit lane per pixel
// and channel (I32x4 for integer samples, F32x4 for floats), sixteen as four
// such groups, or one pixel at a time for the scalar tail. Steps are in bytes for every sample type. Swap
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

// Eight pixels of 8-bit or 16-bit samples stored from channel vectors that
// saturating packs have already limited to the sample range (packs of 32-bit
// lanes to 16 bits and then to 8 bits limit exactly as clampU8 does; unsigned
// packs to 16 bits as clampU16 does). Sources: 8 bits, [ch0 px0-7 | ch1 px0-7]
// and [ch2 px0-7 | ...]; 16 bits, one vector of px0-7 per channel. The 24 E
// bytes of the pixels leave in (24 E + 15) / 16 vectors, the last one half
// full for 8 bits.
template <int E>
struct C3Pack8 {
    static constexpr int srcs = E == 1 ? 2 : 3;
    static constexpr int vecs = (24 * E + 15) / 16;
    Mask16 store[vecs][srcs];  // [interleaved vector][packed source]
};

template <int E>
constexpr C3Pack8<E> makeC3Pack8() {
    C3Pack8<E> t{};
    for (int v = 0; v < C3Pack8<E>::vecs; ++v)
        for (int src = 0; src < C3Pack8<E>::srcs; ++src)
            for (int j = 0; j < 16; ++j) {
                const int at = 16 * v + j, el = at / E, b = at % E, px = el / 3, ch = el % 3;
                int from = -1, byte = 0;
                if (E == 1) {
                    from = ch < 2 ? 0 : 1;
                    byte = ch < 2 ? 8 * ch + px : px;
                } else {
                    from = ch;
                    byte = E * px + b;
                }
                t.store[v][src].b[j] = static_cast<int8_t>(at < 24 * E && from == src ? byte : -128);
            }
    return t;
}

template <int E>
inline constexpr C3Pack8<E> kC3Pack8 = makeC3Pack8<E>();

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
    using Lanes16 = Pair<Pair<Lanes>>;  // sixteen pixels of one channel
    using One = typename Tr::One;
    static constexpr int vecs = C3Shuffles<sizeof(E)>::vecs;

    const uint8_t* base;
    int step;
    struct Row {
        const uint8_t* p;
        void load4(int x, Lanes (&s)[3]) const {
            if constexpr (Tr::isFloat) {
                // 4 x 3 floats to three lanes of four in five shuffles
                const float* q = reinterpret_cast<const float*>(p) + 3 * x;
                const VF v0 = _mm_loadu_ps(q);      // c0 c1 c2 c0 of pixels 0 0 0 1
                const VF v1 = _mm_loadu_ps(q + 4);  // c1 c2 c0 c1 of pixels 1 1 2 2
                const VF v2 = _mm_loadu_ps(q + 8);  // c2 c0 c1 c2 of pixels 2 3 3 3
                const VF u = _mm_shuffle_ps(v1, v2, _MM_SHUFFLE(2, 1, 3, 2));  // c0 c1 of pixel 2, of pixel 3
                const VF w = _mm_shuffle_ps(v0, v1, _MM_SHUFFLE(1, 0, 2, 1));  // c1 c2 of pixel 0, of pixel 1
                s[Swap ? 2 : 0] = F32x4(_mm_shuffle_ps(v0, u, _MM_SHUFFLE(2, 0, 3, 0)));
                s[1] = F32x4(_mm_shuffle_ps(w, u, _MM_SHUFFLE(3, 1, 2, 0)));
                s[Swap ? 0 : 2] = F32x4(_mm_shuffle_ps(w, v2, _MM_SHUFFLE(3, 0, 3, 1)));
                return;
            }
            const auto& t = kC3Shuffles<sizeof(E)>;
            V in[vecs];
            load4px<sizeof(E)>(p + 3 * sizeof(E) * x, in);
            for (int ch = 0; ch < 3; ++ch) {
                V acc = _mm_shuffle_epi8(in[0], loadMask(t.load[ch][0]));
                for (int v = 1; v < vecs; ++v) acc = _mm_or_si128(acc, _mm_shuffle_epi8(in[v], loadMask(t.load[ch][v])));
                s[Swap ? 2 - ch : ch] = Tr::fromBits(acc);
            }
        }
        // eight pixels: 8-bit and 16-bit rows load their 24 E bytes at once
        // and take the second four from the same vectors
        void load8(int x, Pair<Lanes> (&s)[3]) const {
            if constexpr (sizeof(E) == 1 || sizeof(E) == 2) {
                const auto& t = kC3Shuffles<sizeof(E)>;
                const uint8_t* q = p + 3 * sizeof(E) * x;
                V lo[vecs], hi[vecs];
                if constexpr (sizeof(E) == 1) {
                    lo[0] = _mm_loadu_si128(reinterpret_cast<const V*>(q));
                    hi[0] = _mm_alignr_epi8(_mm_loadl_epi64(reinterpret_cast<const V*>(q + 16)), lo[0], 12);
                } else {
                    const V a = _mm_loadu_si128(reinterpret_cast<const V*>(q));
                    const V b = _mm_loadu_si128(reinterpret_cast<const V*>(q + 16));
                    const V c = _mm_loadu_si128(reinterpret_cast<const V*>(q + 32));
                    lo[0] = a, lo[1] = b;
                    hi[0] = _mm_alignr_epi8(c, b, 8), hi[1] = _mm_srli_si128(c, 8);
                }
                for (int ch = 0; ch < 3; ++ch) {
                    V l = _mm_shuffle_epi8(lo[0], loadMask(t.load[ch][0]));
                    V h = _mm_shuffle_epi8(hi[0], loadMask(t.load[ch][0]));
                    for (int v = 1; v < vecs; ++v) {
                        l = _mm_or_si128(l, _mm_shuffle_epi8(lo[v], loadMask(t.load[ch][v])));
                        h = _mm_or_si128(h, _mm_shuffle_epi8(hi[v], loadMask(t.load[ch][v])));
                    }
                    s[Swap ? 2 - ch : ch] = {Tr::fromBits(l), Tr::fromBits(h)};
                }
            } else {
                Lanes a[3], b[3];
                load4(x, a);
                load4(x + 4, b);
                for (int ch = 0; ch < 3; ++ch) s[ch] = {a[ch], b[ch]};
            }
        }
        void load16(int x, Lanes16 (&s)[3]) const {
            Pair<Lanes> a[3], b[3];
            load8(x, a);
            load8(x + 8, b);
            for (int ch = 0; ch < 3; ++ch) s[ch] = {a[ch], b[ch]};
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
    using Lanes16 = Pair<Pair<Lanes>>;  // sixteen pixels of one channel
    using One = typename Tr::One;
    static constexpr int vecs = C3Shuffles<sizeof(E)>::vecs;

    uint8_t* base;
    int step;
    struct Row {
        uint8_t* p;
        void store4(int x, const Lanes (&s)[3]) const {
            if constexpr (Tr::isFloat) {
                // three lanes of four floats to 4 x 3 in seven shuffles
                const VF a = s[Swap ? 2 : 0].v, b = s[1].v, c = s[Swap ? 0 : 2].v;
                const VF t0 = _mm_unpacklo_ps(a, b);                             // a0 b0 a1 b1
                const VF t1 = _mm_unpackhi_ps(a, b);                             // a2 b2 a3 b3
                const VF t2 = _mm_shuffle_ps(c, t0, _MM_SHUFFLE(3, 2, 1, 0));    // c0 c1 a1 b1
                const VF t3 = _mm_shuffle_ps(c, t1, _MM_SHUFFLE(3, 2, 3, 2));    // c2 c3 a3 b3
                float* q = reinterpret_cast<float*>(p) + 3 * x;
                _mm_storeu_ps(q, _mm_shuffle_ps(t0, t2, _MM_SHUFFLE(2, 0, 1, 0)));      // a0 b0 c0 a1
                _mm_storeu_ps(q + 4, _mm_shuffle_ps(t2, t1, _MM_SHUFFLE(1, 0, 1, 3)));  // b1 c1 a2 b2
                _mm_storeu_ps(q + 8, _mm_shuffle_ps(t3, t3, _MM_SHUFFLE(1, 3, 2, 0)));  // c2 a3 b3 c3
                return;
            }
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
        // eight pixels: 8-bit and 16-bit rows limit by saturating packs and
        // store their 24 E bytes at once
        void store8(int x, const Pair<Lanes> (&s)[3]) const {
            uint8_t* q = p + 3 * sizeof(E) * x;
            if constexpr (sizeof(E) == 1 || sizeof(E) == 2) {
                constexpr int E_ = sizeof(E);
                static_assert(std::is_unsigned_v<E>, "saturating packs limit to unsigned samples");
                const auto& t = kC3Pack8<E_>;
                const Pair<Lanes>* c[3] = {&s[Swap ? 2 : 0], &s[1], &s[Swap ? 0 : 2]};
                V src[C3Pack8<E_>::srcs];
                if constexpr (E_ == 1) {
                    const V c0 = _mm_packs_epi32(c[0]->lo.v, c[0]->hi.v);
                    const V c1 = _mm_packs_epi32(c[1]->lo.v, c[1]->hi.v);
                    const V c2 = _mm_packs_epi32(c[2]->lo.v, c[2]->hi.v);
                    src[0] = _mm_packus_epi16(c0, c1);
                    src[1] = _mm_packus_epi16(c2, c2);
                } else {
                    for (int ch = 0; ch < 3; ++ch) src[ch] = _mm_packus_epi32(c[ch]->lo.v, c[ch]->hi.v);
                }
                V out[C3Pack8<E_>::vecs];
                for (int v = 0; v < C3Pack8<E_>::vecs; ++v) {
                    V acc = _mm_shuffle_epi8(src[0], loadMask(t.store[v][0]));
                    for (int k = 1; k < C3Pack8<E_>::srcs; ++k)
                        acc = _mm_or_si128(acc, _mm_shuffle_epi8(src[k], loadMask(t.store[v][k])));
                    out[v] = acc;
                }
                if constexpr (E_ == 1) {
                    _mm_storeu_si128(reinterpret_cast<V*>(q), out[0]);
                    _mm_storel_epi64(reinterpret_cast<V*>(q + 16), out[1]);
                } else {
                    for (int v = 0; v < 3; ++v) _mm_storeu_si128(reinterpret_cast<V*>(q + 16 * v), out[v]);
                }
            } else {
                const Lanes a[3] = {s[0].lo, s[1].lo, s[2].lo}, b[3] = {s[0].hi, s[1].hi, s[2].hi};
                store4(x, a);
                store4(x + 4, b);
            }
        }
        void store16(int x, const Lanes16 (&s)[3]) const {
            const Pair<Lanes> a[3] = {s[0].lo, s[1].lo, s[2].lo}, b[3] = {s[0].hi, s[1].hi, s[2].hi};
            store8(x, a);
            store8(x + 8, b);
        }
        void put(int x, const One (&s)[3]) const {
            const E v[3] = {static_cast<E>(s[Swap ? 2 : 0]), static_cast<E>(s[1]), static_cast<E>(s[Swap ? 0 : 2])};
            std::memcpy(p + 3 * sizeof(E) * x, v, sizeof v);
        }
    };
    Row row(int y) const { return {rowAt(base, step, y)}; }
};

}  // namespace kro::lab
