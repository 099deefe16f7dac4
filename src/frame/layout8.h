// 8-bit pixel layouts: how a row of C3, AC4, C4, P3, P4 samples is read into
// one byte vector per channel and written back, in steps of 16, 8 or 4 pixels,
// and sample by sample for the scalar tail.
//
// A side (SrcC8, DstP8...) holds a base address and a step in bytes; row(y)
// gives the row view the kernels work on. Channel order is the model's:
// Swap exchanges samples 0 and 2 (BGR against RGB).
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/forms.h"

namespace kro {

// One vector step of pixels: lane i of c[k] is channel k of pixel i.
// c[3] carries alpha where a side has it.
struct Px {
    V c[4];
};

// ------------------------------------------------------------ shuffle tables
struct Mask16 {
    alignas(16) int8_t b[16];
};

// Channel ch of 16 interleaved pixels of cn samples, gathered from input vector vec.
constexpr Mask16 gatherMask(int cn, int vec, int ch) {
    Mask16 m{};
    for (int i = 0; i < 16; ++i) {
        const int s = cn * i + ch;
        m.b[i] = static_cast<int8_t>(s / 16 == vec ? s % 16 : -128);
    }
    return m;
}

// Output vector vec of 16 interleaved pixels of cn samples, the bytes that channel ch gives.
constexpr Mask16 scatterMask(int cn, int vec, int ch) {
    Mask16 m{};
    for (int j = 0; j < 16; ++j) {
        const int s = 16 * vec + j;
        m.b[j] = static_cast<int8_t>(s % cn == ch ? s / cn : -128);
    }
    return m;
}

template <int Cn>
struct InterleaveTables {
    Mask16 gather[Cn][Cn];   // [vector][channel]
    Mask16 scatter[Cn][Cn];  // [vector][channel]
};

template <int Cn>
constexpr InterleaveTables<Cn> makeInterleaveTables() {
    InterleaveTables<Cn> t{};
    for (int v = 0; v < Cn; ++v)
        for (int c = 0; c < Cn; ++c) {
            t.gather[v][c] = gatherMask(Cn, v, c);
            t.scatter[v][c] = scatterMask(Cn, v, c);
        }
    return t;
}

template <int Cn>
inline constexpr InterleaveTables<Cn> kInterleave = makeInterleaveTables<Cn>();

inline V loadMask(const Mask16& m) { return _mm_load_si128(reinterpret_cast<const V*>(m.b)); }

// Bytes of N pixels (N = 16, 8 or 4) of cn samples: in[] holds N*cn bytes, rest zero.
template <int Cn, int N>
inline void loadBytes(const uint8_t* p, V (&in)[Cn]) {
    constexpr int bytes = Cn * N;
    for (int v = 0; v < Cn; ++v) in[v] = zero();
    int v = 0;
    for (; (v + 1) * 16 <= bytes; ++v) in[v] = _mm_loadu_si128(reinterpret_cast<const V*>(p + 16 * v));
    if constexpr (bytes % 16 == 8) in[v] = _mm_loadl_epi64(reinterpret_cast<const V*>(p + 16 * v));
    if constexpr (bytes % 16 == 4) {
        int w;
        __builtin_memcpy(&w, p + 16 * v, 4);
        in[v] = _mm_cvtsi32_si128(w);
    }
    if constexpr (bytes % 16 == 12) {
        in[v] = _mm_loadl_epi64(reinterpret_cast<const V*>(p + 16 * v));
        int w;
        __builtin_memcpy(&w, p + 16 * v + 8, 4);
        in[v] = _mm_insert_epi32(in[v], w, 2);
    }
}

template <int Cn, int N>
inline void storeBytes(uint8_t* p, const V (&out)[Cn]) {
    constexpr int bytes = Cn * N;
    int v = 0;
    for (; (v + 1) * 16 <= bytes; ++v) _mm_storeu_si128(reinterpret_cast<V*>(p + 16 * v), out[v]);
    if constexpr (bytes % 16 == 8) _mm_storel_epi64(reinterpret_cast<V*>(p + 16 * v), out[v]);
    if constexpr (bytes % 16 == 4) {
        const int w = _mm_cvtsi128_si32(out[v]);
        __builtin_memcpy(p + 16 * v, &w, 4);
    }
    if constexpr (bytes % 16 == 12) {
        _mm_storel_epi64(reinterpret_cast<V*>(p + 16 * v), out[v]);
        const int w = _mm_extract_epi32(out[v], 2);
        __builtin_memcpy(p + 16 * v + 8, &w, 4);
    }
}

// Three samples a pixel go by blends (below).
template <int Wd = 1>
inline void deinterleave3(const V (&in)[3], V (&c)[3]);
inline void interleave3(const V (&c)[3], V (&out)[3]);

// Interleaved bytes to channel vectors (channels 0..Cn-1 of px).
template <int Cn>
inline void deinterleave(const V (&in)[Cn], Px& px) {
    if constexpr (Cn == 4) {
        // group each vector's four pixels by channel, then transpose 4 x 4 dwords
        const V byChannel = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
        const V a = _mm_shuffle_epi8(in[0], byChannel), b = _mm_shuffle_epi8(in[1], byChannel);
        const V c = _mm_shuffle_epi8(in[2], byChannel), d = _mm_shuffle_epi8(in[3], byChannel);
        const V t0 = _mm_unpacklo_epi32(a, b), t1 = _mm_unpackhi_epi32(a, b);
        const V t2 = _mm_unpacklo_epi32(c, d), t3 = _mm_unpackhi_epi32(c, d);
        px.c[0] = _mm_unpacklo_epi64(t0, t2);
        px.c[1] = _mm_unpackhi_epi64(t0, t2);
        px.c[2] = _mm_unpacklo_epi64(t1, t3);
        px.c[3] = _mm_unpackhi_epi64(t1, t3);
        return;
    }
    if constexpr (Cn == 3) {
        V c[3];
        deinterleave3(in, c);
        for (int k = 0; k < 3; ++k) px.c[k] = c[k];
        return;
    }
    const auto& t = kInterleave<Cn>;
    for (int c = 0; c < Cn; ++c) {
        V acc = _mm_shuffle_epi8(in[0], loadMask(t.gather[0][c]));
        for (int v = 1; v < Cn; ++v) acc = _mm_or_si128(acc, _mm_shuffle_epi8(in[v], loadMask(t.gather[v][c])));
        px.c[c] = acc;
    }
}

template <int Cn>
inline void interleave(const Px& px, V (&out)[Cn]) {
    if constexpr (Cn == 4) {
        const V t0 = _mm_unpacklo_epi8(px.c[0], px.c[1]), t1 = _mm_unpackhi_epi8(px.c[0], px.c[1]);
        const V t2 = _mm_unpacklo_epi8(px.c[2], px.c[3]), t3 = _mm_unpackhi_epi8(px.c[2], px.c[3]);
        out[0] = _mm_unpacklo_epi16(t0, t2);
        out[1] = _mm_unpackhi_epi16(t0, t2);
        out[2] = _mm_unpacklo_epi16(t1, t3);
        out[3] = _mm_unpackhi_epi16(t1, t3);
        return;
    }
    if constexpr (Cn == 3) {
        const V c[3] = {px.c[0], px.c[1], px.c[2]};
        interleave3(c, out);
        return;
    }
    const auto& t = kInterleave<Cn>;
    for (int v = 0; v < Cn; ++v) {
        V acc = _mm_shuffle_epi8(px.c[0], loadMask(t.scatter[v][0]));
        for (int c = 1; c < Cn; ++c) acc = _mm_or_si128(acc, _mm_shuffle_epi8(px.c[c], loadMask(t.scatter[v][c])));
        out[v] = acc;
    }
}

// ------------------------------------------------------------ three samples a pixel, by blends
// 16 pixels of three samples in three vectors: input vector v holds at byte p
// channel (v + p) mod 3, so for each channel the three inputs hold its bytes at
// disjoint positions. Two blends gather a channel's 16 bytes into one vector and
// one byte shuffle puts them in order; the reverse for interleaving. Three
// shuffles each way instead of nine.
//
// Lane order: with Wd = 1, byte i of a channel is pixel i. With Wd = 2 or 4, the
// channel comes in lanes of Wd bytes: byte j of lane k is pixel (16 / Wd) j + k,
// so masking and shifting each lane gives pixels in order, 16 / Wd at a time,
// without widening shuffles (see splitWords, splitDwords).
struct Blend3Tables {
    Mask16 pick1[3], pick2[3];  // [channel]: positions taken from input 1, from input 2
    Mask16 order[3];            // [channel]: the gathered bytes in lane order
};

constexpr Blend3Tables makeBlend3Tables(int wd) {
    Blend3Tables t{};
    const int per = 16 / wd;
    for (int c = 0; c < 3; ++c)
        for (int p = 0; p < 16; ++p) {
            const int v = ((c - p) % 3 + 3) % 3;  // the input holding channel c at byte p
            t.pick1[c].b[p] = static_cast<int8_t>(v == 1 ? -1 : 0);
            t.pick2[c].b[p] = static_cast<int8_t>(v == 2 ? -1 : 0);
            const int pixel = per * (p % wd) + p / wd;
            t.order[c].b[p] = static_cast<int8_t>((3 * pixel + c) % 16);
        }
    return t;
}

template <int Wd>
inline constexpr Blend3Tables kBlend3 = makeBlend3Tables(Wd);

template <int Wd>
inline void deinterleave3(const V (&in)[3], V (&c)[3]) {
    const auto& t = kBlend3<Wd>;
    for (int k = 0; k < 3; ++k) {
        const V m = _mm_blendv_epi8(_mm_blendv_epi8(in[0], in[1], loadMask(t.pick1[k])), in[2], loadMask(t.pick2[k]));
        c[k] = _mm_shuffle_epi8(m, loadMask(t.order[k]));
    }
}

// Output vector v at byte j takes channel (v + j) mod 3 of pixel (16 v + j) / 3.
struct Interleave3Tables {
    Mask16 spread[3];           // [channel]: each byte of the channel where some output wants it
    Mask16 pick1[3], pick2[3];  // [output]: positions taken from channel 1, from channel 2
};

constexpr Interleave3Tables makeInterleave3Tables() {
    Interleave3Tables t{};
    for (int j = 0; j < 16; ++j) {
        for (int c = 0; c < 3; ++c) {
            const int v = ((c - j) % 3 + 3) % 3;  // the output wanting channel c at byte j
            t.spread[c].b[j] = static_cast<int8_t>((16 * v + j) / 3);
        }
        for (int v = 0; v < 3; ++v) {
            const int c = (v + j) % 3;
            t.pick1[v].b[j] = static_cast<int8_t>(c == 1 ? -1 : 0);
            t.pick2[v].b[j] = static_cast<int8_t>(c == 2 ? -1 : 0);
        }
    }
    return t;
}

inline constexpr Interleave3Tables kInterleave3 = makeInterleave3Tables();

inline void interleave3(const V (&c)[3], V (&out)[3]) {
    const auto& t = kInterleave3;
    V s[3];
    for (int k = 0; k < 3; ++k) s[k] = _mm_shuffle_epi8(c[k], loadMask(t.spread[k]));
    for (int v = 0; v < 3; ++v)
        out[v] = _mm_blendv_epi8(_mm_blendv_epi8(s[0], s[1], loadMask(t.pick1[v])), s[2], loadMask(t.pick2[v]));
}

// A channel in lanes of two bytes (deinterleave3<2>): pixels 0..7 and 8..15 as 16-bit words.
inline void splitWords(V c, V& lo, V& hi) {
    lo = _mm_and_si128(c, _mm_set1_epi16(0xff));
    hi = _mm_srli_epi16(c, 8);
}

// A channel in lanes of four bytes (deinterleave3<4>): pixels 4j..4j+3 as 32-bit words.
inline void splitDwords(V c, V (&q)[4]) {
    const V low = _mm_set1_epi32(0xff);
    q[0] = _mm_and_si128(c, low);
    q[1] = _mm_and_si128(_mm_srli_epi32(c, 8), low);
    q[2] = _mm_and_si128(_mm_srli_epi32(c, 16), low);
    q[3] = _mm_srli_epi32(c, 24);
}

inline void swap02(Px& px) {
    const V t = px.c[0];
    px.c[0] = px.c[2];
    px.c[2] = t;
}

inline const uint8_t* rowAt(const uint8_t* base, int step, int y) {
    return base + static_cast<std::ptrdiff_t>(y) * step;
}
inline uint8_t* rowAt(uint8_t* base, int step, int y) { return base + static_cast<std::ptrdiff_t>(y) * step; }

// What a destination with four samples a pixel does with the fourth.
enum class Alpha {
    None,      // three samples a pixel
    Keep,      // left as it was (vector steps read the row back and rewrite the same bytes)
    Aval,      // set to the caller's aval
    FromSrc,   // the source's fourth sample
    ZeroMain,  // 0 from the vector steps, left as it was by the tail
};

// ------------------------------------------------------------ interleaved source
// Cn samples a pixel; ReadAlpha: the fourth is loaded into c[3] (else never read
// by the tail, though vector loads of an AC4 row take it in with the rest).
template <int Cn, bool Swap, bool ReadAlpha = false>
struct SrcC8 {
    const uint8_t* base;
    int step;
    struct Row {
        const uint8_t* p;
        template <int N>
        void load(int x, Px& px) const {
            V in[Cn];
            loadBytes<Cn, N>(p + Cn * x, in);
            deinterleave<Cn>(in, px);
            if constexpr (Swap) swap02(px);
        }
        void get(int x, int (&s)[4]) const {
            const uint8_t* q = p + Cn * x;
            s[0] = q[Swap ? 2 : 0];
            s[1] = q[1];
            s[2] = q[Swap ? 0 : 2];
            s[3] = ReadAlpha ? q[3] : 0;
        }
    };
    Row row(int y) const { return {rowAt(base, step, y)}; }
};

// ------------------------------------------------------------ planar source
template <int K>
struct SrcP8 {
    const uint8_t* const* planes;
    int step;
    struct Row {
        const uint8_t* p[K];
        template <int N>
        void load(int x, Px& px) const {
            for (int k = 0; k < K; ++k) {
                V in[1];
                loadBytes<1, N>(p[k] + x, in);
                px.c[k] = in[0];
            }
        }
        void get(int x, int (&s)[4]) const {
            for (int k = 0; k < K; ++k) s[k] = p[k][x];
            if constexpr (K < 4) s[3] = 0;
        }
    };
    Row row(int y) const {
        Row r{};
        for (int k = 0; k < K; ++k) r.p[k] = rowAt(planes[k], step, y);
        return r;
    }
};

// ------------------------------------------------------------ interleaved destination
template <int Cn, bool Swap, Alpha A>
struct DstC8 {
    static_assert((Cn == 3) == (A == Alpha::None), "three samples a pixel has no fourth rule");
    uint8_t* base;
    int step;
    uint8_t aval = 0;
    struct Row {
        uint8_t* p;
        uint8_t aval;
        template <int N>
        void store(int x, Px px) const {
            if constexpr (Swap) swap02(px);
            if constexpr (A == Alpha::Aval) px.c[3] = _mm_set1_epi8(static_cast<char>(aval));
            if constexpr (A == Alpha::ZeroMain || A == Alpha::Keep) px.c[3] = zero();
            V out[Cn];
            interleave<Cn>(px, out);
            if constexpr (A == Alpha::Keep) {
                // read the row back and keep every fourth byte as it was
                V old[Cn];
                loadBytes<Cn, N>(p + Cn * x, old);
                const V fourth = _mm_set1_epi32(static_cast<int>(0xff000000u));
                for (int v = 0; v < Cn; ++v) out[v] = _mm_blendv_epi8(out[v], old[v], fourth);
            }
            storeBytes<Cn, N>(p + Cn * x, out);
        }
        void put(int x, int a, int b, int c, int alpha) const {
            uint8_t* q = p + Cn * x;
            q[Swap ? 2 : 0] = static_cast<uint8_t>(a);
            q[1] = static_cast<uint8_t>(b);
            q[Swap ? 0 : 2] = static_cast<uint8_t>(c);
            if constexpr (A == Alpha::Aval) q[3] = aval;
            if constexpr (A == Alpha::FromSrc) q[3] = static_cast<uint8_t>(alpha);
        }
    };
    Row row(int y) const { return {rowAt(base, step, y), aval}; }
};

// ------------------------------------------------------------ planar destination
// K planes; a fourth plane receives the source's fourth sample.
template <int K>
struct DstP8 {
    uint8_t* const* planes;
    int step;
    struct Row {
        uint8_t* p[K];
        template <int N>
        void store(int x, const Px& px) const {
            for (int k = 0; k < K; ++k) {
                const V out[1] = {px.c[k]};
                storeBytes<1, N>(p[k] + x, out);
            }
        }
        void put(int x, int a, int b, int c, int alpha) const {
            p[0][x] = static_cast<uint8_t>(a);
            p[1][x] = static_cast<uint8_t>(b);
            p[2][x] = static_cast<uint8_t>(c);
            if constexpr (K == 4) p[3][x] = static_cast<uint8_t>(alpha);
        }
    };
    Row row(int y) const {
        Row r{};
        for (int k = 0; k < K; ++k) r.p[k] = rowAt(planes[k], step, y);
        return r;
    }
};

}  // namespace kro
