// Typed pixel layouts: interleaved sides of 8u, 16u, 16s and 32f samples read
// into lanes (one lane per pixel, one vector per channel) and written back, and
// sample by sample for the scalar tail. The 8-bit layouts of layout8.h stay the
// model for byte vectors; this file serves every family that needs wider lanes.
//
// Words used below:
//   sample   one channel of one pixel in memory: S = 1, 2 or 4 bytes
//   lane     its place in a vector: L = 2 or 4 bytes, pixel i in lane i
//   block    N pixels moved by one vector step (N * L <= 16)
//
// A side holds a base address and a row step *in samples*: entries turn byte
// steps into samples themselves (stepInSamples, an arithmetic shift). For 8u
// a sample is a byte; wider types whose operations keep byte steps (64f grey,
// grey to colour) walk their rows by bytes in their own region drivers.
// row(y) gives a row view with:
//   loadLanes<N, L>(x, V (&c)[3])   channels 0..2 of pixels x..x+N-1, integer
//                                   lanes, zero- or sign-extended by type
//   loadLanesHigh<N, L>(x, V (&c)[3])  the same, each sample in the lane's high
//                                   bytes (an 8u sample in 16 bits: sample << 8)
//   loadFloats<N>(x, VF (&c)[3])    the same as float lanes (N = 4)
//   get(x, int (&s)[3]) / get(x, float (&s)[3])
// and for destinations
//   storeLanes<N, L>(x, const V (&c)[K])  the low S bytes of every lane
//   storeFloats<N>(x, const VF (&c)[K])
//   put(x, const int (&s)[K]) / put(x, const float (&s)[K])  (low bits)
//
// A four-sample source (`AC4`) steps four samples a pixel; its fourth sample is
// never taken into a channel. A four-sample destination with Fourth::Keep
// leaves its fourth sample as it was: vector stores blend the new samples into
// the bytes already there.
//
// Reuse: a family picks a side per operand (SrcCT<Kro16u, 4>, DstCT<Kro32f, 1>
// ...) and a form (see kernel_typed.h); the shuffles are generated here from
// (channels, sample size, lane size, block) and never written by hand.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "frame/forms.h"
#include "krocc.h"

namespace kro {

// ------------------------------------------------------------ sample types
template <class T>
struct Sample;
template <>
struct Sample<Kro8u> {
    static constexpr int size = 1;
    static constexpr bool isSigned = false, isFloat = false;
};
template <>
struct Sample<Kro16u> {
    static constexpr int size = 2;
    static constexpr bool isSigned = false, isFloat = false;
};
template <>
struct Sample<Kro16s> {
    static constexpr int size = 2;
    static constexpr bool isSigned = true, isFloat = false;
};
template <>
struct Sample<Kro32f> {
    static constexpr int size = 4;
    static constexpr bool isSigned = true, isFloat = true;
};

// Byte step to sample step: arithmetic shift, so a step that is not a multiple
// of the sample size is rounded down to one.
template <class T>
constexpr int stepInSamples(int byteStep) {
    return byteStep >> (Sample<T>::size == 4 ? 2 : Sample<T>::size == 2 ? 1 : 0);
}

// ------------------------------------------------------------ shuffle tables
struct ByteMask {
    alignas(16) int8_t b[16];
};
inline V loadMask(const ByteMask& m) { return _mm_load_si128(reinterpret_cast<const V*>(m.b)); }

constexpr int vectorsFor(int bytes) { return (bytes + 15) / 16; }

// Gather: channel ch of a block of N pixels of Cn samples (S bytes each) into
// lanes of L bytes, taken from memory vector v. The sample lands in the high S
// bytes of its lane (so an arithmetic or logical shift by 8 (L - S) extends it)
// unless L == S.
template <int Cn, int S, int L, int N, bool Low = false>
struct GatherTable {
    static constexpr int inVecs = vectorsFor(Cn * S * N);
    ByteMask m[inVecs][3];
};
// Low: the sample in the lane's low S bytes and zeros above (unsigned samples
// come out zero-extended, with no shift).
template <int Cn, int S, int L, int N, bool Low = false>
constexpr GatherTable<Cn, S, L, N, Low> makeGather() {
    GatherTable<Cn, S, L, N, Low> t{};
    for (int v = 0; v < t.inVecs; ++v)
        for (int ch = 0; ch < 3; ++ch)
            for (int j = 0; j < 16; ++j) {
                const int lane = j / L, inLane = Low ? (j % L < S ? j % L : -1) : j % L - (L - S);
                int8_t src = -128;
                if (lane < N && inLane >= 0) {
                    const int at = S * (Cn * lane + ch) + inLane;
                    if (at / 16 == v) src = static_cast<int8_t>(at % 16);
                }
                t.m[v][ch].b[j] = src;
            }
    return t;
}
template <int Cn, int S, int L, int N, bool Low = false>
inline constexpr GatherTable<Cn, S, L, N, Low> kGather = makeGather<Cn, S, L, N, Low>();

// Scatter: memory vector v of a block of N pixels of Cn samples, the bytes that
// channel ch (< K) gives from the low S bytes of its lanes; `keep` marks the
// bytes of channels K.. (left as they were).
template <int Cn, int K, int S, int L, int N>
struct ScatterTable {
    static constexpr int outVecs = vectorsFor(Cn * S * N);
    ByteMask m[outVecs][K];
    ByteMask keep[outVecs];
};
template <int Cn, int K, int S, int L, int N>
constexpr ScatterTable<Cn, K, S, L, N> makeScatter() {
    ScatterTable<Cn, K, S, L, N> t{};
    for (int v = 0; v < t.outVecs; ++v)
        for (int j = 0; j < 16; ++j) {
            const int at = 16 * v + j, s = at / S, b = at % S, px = s / Cn, ch = s % Cn;
            for (int k = 0; k < K; ++k)
                t.m[v][k].b[j] = static_cast<int8_t>(k == ch && px < N ? L * px + b : -128);
            t.keep[v].b[j] = static_cast<int8_t>(ch >= K ? -1 : 0);
        }
    return t;
}
template <int Cn, int K, int S, int L, int N>
inline constexpr ScatterTable<Cn, K, S, L, N> kScatter = makeScatter<Cn, K, S, L, N>();

// ------------------------------------------------------------ memory spans
// A span of Bytes (a multiple of 4) as whole vectors and a final part of 4, 8
// or 12 bytes; nothing beyond the span is read or written.
template <int Bytes>
inline void loadSpan(const void* p, V (&in)[vectorsFor(Bytes)]) {
    static_assert(Bytes % 4 == 0, "spans are whole 4-byte words");
    const auto* q = static_cast<const uint8_t*>(p);
    int v = 0;
    for (; (v + 1) * 16 <= Bytes; ++v) in[v] = _mm_loadu_si128(reinterpret_cast<const V*>(q + 16 * v));
    constexpr int rest = Bytes % 16;
    if constexpr (rest >= 8) in[v] = _mm_loadl_epi64(reinterpret_cast<const V*>(q + 16 * v));
    if constexpr (rest == 4 || rest == 12) {
        int w;
        std::memcpy(&w, q + 16 * v + rest - 4, 4);
        in[v] = rest == 4 ? _mm_cvtsi32_si128(w) : _mm_insert_epi32(in[v], w, 2);
    }
}
template <int Bytes>
inline void storeSpan(void* p, const V (&out)[vectorsFor(Bytes)]) {
    static_assert(Bytes % 4 == 0, "spans are whole 4-byte words");
    auto* q = static_cast<uint8_t*>(p);
    int v = 0;
    for (; (v + 1) * 16 <= Bytes; ++v) _mm_storeu_si128(reinterpret_cast<V*>(q + 16 * v), out[v]);
    constexpr int rest = Bytes % 16;
    if constexpr (rest >= 8) _mm_storel_epi64(reinterpret_cast<V*>(q + 16 * v), out[v]);
    if constexpr (rest == 4 || rest == 12) {
        const int w = rest == 4 ? _mm_cvtsi128_si32(out[v]) : _mm_extract_epi32(out[v], 2);
        std::memcpy(q + 16 * v + rest - 4, &w, 4);
    }
}

// Single samples by copy: a caller's address need not be aligned to the sample size.
template <class T>
inline T loadSample(const T* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
template <class T>
inline void storeSample(T* p, T v) {
    std::memcpy(p, &v, sizeof v);
}

// ------------------------------------------------------------ interleaved source
// Cn = 1, 3 or 4 samples a pixel (4: the fourth is never taken into a channel).
template <class T, int Cn>
struct SrcCT {
    static_assert(Cn == 1 || Cn == 3 || Cn == 4, "one, three or four samples a pixel");
    static constexpr int S = Sample<T>::size;
    const T* base;
    int step;  // in samples

    struct Row {
        const T* p;

        // Integer lanes of L bytes: samples zero-extended, or sign-extended for signed types.
        template <int N, int L>
        void loadLanes(int x, V (&c)[3]) const {
            if constexpr (!Sample<T>::isSigned && L > S) {
                gather<N, L, true>(x, c);  // zero-extended by the gather itself
            } else {
                gather<N, L, false>(x, c);
                for (int ch = 0; ch < (Cn < 3 ? Cn : 3); ++ch) c[ch] = extend<L>(c[ch]);
            }
        }

        // Integer lanes of L bytes with each sample in the lane's high S bytes and
        // zeros below (an 8u sample in a 16-bit lane comes out as sample << 8).
        template <int N, int L>
        void loadLanesHigh(int x, V (&c)[3]) const {
            gather<N, L, false>(x, c);
        }

        // Channels of N pixels into lanes of L bytes, each sample in the lane's
        // high bytes (Low: its low bytes, zeros above).
        template <int N, int L, bool Low>
        void gather(int x, V (&c)[3]) const {
            static_assert(!Sample<T>::isFloat && N * L <= 16 && L >= S, "integer samples in wider lanes");
            constexpr int bytes = Cn * S * N;
            V in[vectorsFor(bytes)];
            loadSpan<bytes>(p + Cn * x, in);
            const auto& t = kGather<Cn, S, L, N, Low>;
            for (int ch = 0; ch < (Cn < 3 ? Cn : 3); ++ch) {
                V acc = _mm_shuffle_epi8(in[0], loadMask(t.m[0][ch]));
                for (int v = 1; v < t.inVecs; ++v)
                    acc = _mm_or_si128(acc, _mm_shuffle_epi8(in[v], loadMask(t.m[v][ch])));
                c[ch] = acc;
            }
        }

        // Four float lanes: integer samples converted exactly, float samples as they are.
        template <int N>
        void loadFloats(int x, VF (&c)[3]) const {
            static_assert(N == 4, "four float lanes");
            if constexpr (Sample<T>::isFloat && Cn == 3) {
                VF in[3];
                for (int v = 0; v < 3; ++v) in[v] = _mm_loadu_ps(reinterpret_cast<const float*>(p + 3 * x) + 4 * v);
                split3(in, c);
            } else if constexpr (Sample<T>::isFloat && Cn == 4) {
                VF in[4];
                for (int v = 0; v < 4; ++v) in[v] = _mm_loadu_ps(reinterpret_cast<const float*>(p + 4 * x) + 4 * v);
                _MM_TRANSPOSE4_PS(in[0], in[1], in[2], in[3]);
                for (int ch = 0; ch < 3; ++ch) c[ch] = in[ch];
            } else if constexpr (Sample<T>::isFloat) {
                constexpr int bytes = Cn * S * N;
                V in[vectorsFor(bytes)];
                loadSpan<bytes>(p + Cn * x, in);
                const auto& t = kGather<Cn, 4, 4, 4>;
                for (int ch = 0; ch < (Cn < 3 ? Cn : 3); ++ch) {
                    V acc = _mm_shuffle_epi8(in[0], loadMask(t.m[0][ch]));
                    for (int v = 1; v < t.inVecs; ++v)
                        acc = _mm_or_si128(acc, _mm_shuffle_epi8(in[v], loadMask(t.m[v][ch])));
                    c[ch] = _mm_castsi128_ps(acc);
                }
            } else {
                V l[3];
                loadLanes<4, 4>(x, l);
                for (int ch = 0; ch < (Cn < 3 ? Cn : 3); ++ch) c[ch] = _mm_cvtepi32_ps(l[ch]);
            }
        }

        template <class U>
        void get(int x, U (&s)[3]) const {
            const T* q = p + Cn * x;
            for (int ch = 0; ch < (Cn < 3 ? Cn : 3); ++ch) s[ch] = static_cast<U>(loadSample(q + ch));
        }

    private:
        template <int L>
        static V extend(V acc) {
            if constexpr (L == S) return acc;
            constexpr int sh = 8 * (L - S);
            if constexpr (L == 4) return Sample<T>::isSigned ? _mm_srai_epi32(acc, sh) : _mm_srli_epi32(acc, sh);
            else return Sample<T>::isSigned ? _mm_srai_epi16(acc, sh) : _mm_srli_epi16(acc, sh);
        }
    };
    Row row(int y) const { return {base + static_cast<std::ptrdiff_t>(y) * step}; }
};

// ------------------------------------------------------------ interleaved destination
// What a four-sample destination does with the sample after the K written ones.
enum class Fourth {
    None,  // the destination has K samples a pixel
    Keep,  // left as it was, in every path
};

// Cn samples a pixel, of which the first K are written (K = Cn, or 3 of 4 with Keep).
template <class T, int Cn, Fourth F = Fourth::None>
struct DstCT {
    static constexpr int S = Sample<T>::size;
    static constexpr int K = F == Fourth::Keep ? Cn - 1 : Cn;
    static_assert((F == Fourth::Keep) == (Cn == 4), "the fourth rule is for four samples a pixel");
    T* base;
    int step;  // in samples

    struct Row {
        T* p;

        // The low S bytes of every L-byte lane (the form has clamped where it clamps).
        template <int N, int L>
        void storeLanes(int x, const V (&c)[K]) const {
            store<N, L>(x, c);
        }
        template <int N>
        void storeFloats(int x, const VF (&c)[K]) const {
            static_assert(Sample<T>::isFloat && N == 4, "four float lanes to float samples");
            float* q = reinterpret_cast<float*>(p + Cn * x);
            if constexpr (Cn == 3) {
                VF out[3];
                join3(c, out);
                for (int v = 0; v < 3; ++v) _mm_storeu_ps(q + 4 * v, out[v]);
            } else if constexpr (Cn == 4) {
                // transpose, then each pixel's fourth sample as it was (or the fourth channel)
                VF t[4] = {c[0], c[1], c[2], K == 4 ? c[K - 1] : c[0]};
                _MM_TRANSPOSE4_PS(t[0], t[1], t[2], t[3]);
                for (int v = 0; v < 4; ++v) {
                    if constexpr (F == Fourth::Keep) t[v] = _mm_blend_ps(t[v], _mm_loadu_ps(q + 4 * v), 8);
                    _mm_storeu_ps(q + 4 * v, t[v]);
                }
            } else {
                V l[K];
                for (int k = 0; k < K; ++k) l[k] = _mm_castps_si128(c[k]);
                store<4, 4>(x, l);
            }
        }
        // Low bits of an integer result; a float as it is.
        template <class U>
        void put(int x, const U (&s)[K]) const {
            T* q = p + Cn * x;
            for (int k = 0; k < K; ++k) {
                if constexpr (Sample<T>::isFloat || std::is_floating_point_v<U>)
                    storeSample(q + k, static_cast<T>(s[k]));
                else
                    storeSample(q + k, static_cast<T>(static_cast<uint32_t>(s[k])));  // modulo 2^(8 S)
            }
        }

    private:
        template <int N, int L>
        void store(int x, const V (&c)[K]) const {
            static_assert(N * L <= 16 && L >= S, "lanes hold whole samples");
            constexpr int bytes = Cn * S * N;
            const auto& t = kScatter<Cn, K, S, L, N>;
            V out[vectorsFor(bytes)];
            for (int v = 0; v < t.outVecs; ++v) {
                V acc = _mm_shuffle_epi8(c[0], loadMask(t.m[v][0]));
                for (int k = 1; k < K; ++k) acc = _mm_or_si128(acc, _mm_shuffle_epi8(c[k], loadMask(t.m[v][k])));
                out[v] = acc;
            }
            if constexpr (F == Fourth::Keep) {
                static_assert(bytes % 16 == 0, "a kept fourth sample is blended in whole vectors");
                V old[vectorsFor(bytes)];
                loadSpan<bytes>(p + Cn * x, old);
                for (int v = 0; v < t.outVecs; ++v) out[v] = _mm_blendv_epi8(out[v], old[v], loadMask(t.keep[v]));
            }
            storeSpan<bytes>(p + Cn * x, out);
        }
    };
    Row row(int y) const { return {base + static_cast<std::ptrdiff_t>(y) * step}; }
};

}  // namespace kro
