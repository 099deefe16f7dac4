// Typed pixel layouts for kernels that compute in four float lanes: 8u, 16u,
// 16s and 32f samples, interleaved (three or four samples a pixel, RGB or BGR
// order) or planar (three or four planes).
//
// A block is four pixels: each colour channel as four float lanes (the sample
// converted exactly, 16s with its bias of 32768 added), the fourth channel as
// raw samples in the low bytes of one register. Results come back as four
// 32-bit words a channel: integers that the store narrows with saturating
// pack steps, or the float bits themselves for 32f.
//
// Steps are in samples (the entry shifts byte steps); rows advance by them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "frame/forms.h"
#include "frame/layout8.h"

namespace kro::typed {

// ------------------------------------------------------------ sample types
template <class T>
struct Sample;

template <>
struct Sample<uint8_t> {
    using Word = int;  // what a scalar result is before it becomes a sample
    static constexpr int kSize = 1;
    static VF widen(V raw) { return _mm_cvtepi32_ps(_mm_cvtepu8_epi32(raw)); }
    // 32-bit lanes to bytes, each limited to 0..255 (two pack steps)
    static V narrow(V w) {
        const V h = _mm_packs_epi32(w, w);
        return _mm_packus_epi16(h, h);
    }
    static float toFloat(uint8_t s) { return static_cast<float>(s); }
    static uint8_t fromWord(int w) { return static_cast<uint8_t>(w); }
};

template <>
struct Sample<uint16_t> {
    using Word = int;
    static constexpr int kSize = 2;
    static VF widen(V raw) { return _mm_cvtepi32_ps(_mm_cvtepu16_epi32(raw)); }
    static V narrow(V w) { return _mm_packus_epi32(w, w); }  // limited to 0..65535
    static float toFloat(uint16_t s) { return static_cast<float>(s); }
    static uint16_t fromWord(int w) { return static_cast<uint16_t>(w); }
};

// Signed 16-bit samples: the unsigned computation with 32768 added on the way
// in and taken off on the way out.
template <>
struct Sample<int16_t> {
    using Word = int;
    static constexpr int kSize = 2;
    static VF widen(V raw) {
        return _mm_cvtepi32_ps(_mm_add_epi32(_mm_cvtepi16_epi32(raw), _mm_set1_epi32(32768)));
    }
    // limited to 0..65535, then minus 32768 (the top bit flipped)
    static V narrow(V w) { return _mm_xor_si128(_mm_packus_epi32(w, w), _mm_set1_epi16(-32768)); }
    static float toFloat(int16_t s) { return static_cast<float>(s + 32768); }
    static int16_t fromWord(int w) { return static_cast<int16_t>(static_cast<uint16_t>(w - 32768)); }
};

template <>
struct Sample<float> {
    using Word = float;
    static constexpr int kSize = 4;
    static VF widen(V raw) { return _mm_castsi128_ps(raw); }
    static V narrow(V w) { return w; }  // the words are the float bits
    static float toFloat(float s) { return s; }
    static float fromWord(float w) { return w; }
};

// ------------------------------------------------------------ shuffle tables
struct Mask {
    alignas(16) int8_t b[16];
};

// Four pixels of Cn samples of Sz bytes span NV registers.
template <int Cn, int Sz>
struct Shape {
    static constexpr int kBytes = 4 * Cn * Sz;
    static constexpr int kVecs = (kBytes + 15) / 16;
};

template <int Cn, int Sz>
struct Tables {
    static constexpr int NV = Shape<Cn, Sz>::kVecs;
    Mask gather[NV][Cn];   // channel c of the four pixels, from register v, into the low 4*Sz bytes
    Mask scatter[NV][Cn];  // register v of the interleaved block, the bytes channel c gives
    Mask fourth[NV];       // bytes of register v that belong to the fourth channel
};

template <int Cn, int Sz>
constexpr Tables<Cn, Sz> makeTables() {
    Tables<Cn, Sz> t{};
    for (int v = 0; v < Tables<Cn, Sz>::NV; ++v) {
        for (int c = 0; c < Cn; ++c)
            for (int j = 0; j < 16; ++j) {
                int g = -128;
                if (j < 4 * Sz) {
                    const int s = (Cn * (j / Sz) + c) * Sz + j % Sz;
                    if (s / 16 == v) g = s % 16;
                }
                t.gather[v][c].b[j] = static_cast<int8_t>(g);
                const int s = 16 * v + j, e = s / Sz;
                t.scatter[v][c].b[j] = static_cast<int8_t>(e % Cn == c ? (e / Cn) * Sz + s % Sz : -128);
            }
        for (int j = 0; j < 16; ++j) {
            const int e = (16 * v + j) / Sz;
            t.fourth[v].b[j] = static_cast<int8_t>(Cn == 4 && e % Cn == 3 ? -1 : 0);
        }
    }
    return t;
}

template <int Cn, int Sz>
inline constexpr Tables<Cn, Sz> kTables = makeTables<Cn, Sz>();

inline V mask(const Mask& m) { return _mm_load_si128(reinterpret_cast<const V*>(m.b)); }

// Exactly Bytes bytes (a multiple of 4) into registers; the rest of the last is zero.
template <int Bytes>
inline void loadExact(const void* src, V* r) {
    const auto* p = static_cast<const uint8_t*>(src);
    int v = 0;
    for (; (v + 1) * 16 <= Bytes; ++v) r[v] = _mm_loadu_si128(reinterpret_cast<const V*>(p + 16 * v));
    constexpr int rest = Bytes % 16;
    if constexpr (rest >= 8) r[v] = _mm_loadl_epi64(reinterpret_cast<const V*>(p + 16 * v));
    if constexpr (rest == 4) {
        int w;
        __builtin_memcpy(&w, p + 16 * v, 4);
        r[v] = _mm_cvtsi32_si128(w);
    }
    if constexpr (rest == 12) {
        int w;
        __builtin_memcpy(&w, p + 16 * v + 8, 4);
        r[v] = _mm_insert_epi32(r[v], w, 2);
    }
}

// Exactly Bytes bytes out of registers; Aligned: whole registers go to 16-byte-aligned addresses.
template <int Bytes, bool Aligned = false>
inline void storeExact(void* dst, const V* r) {
    auto* p = static_cast<uint8_t*>(dst);
    int v = 0;
    for (; (v + 1) * 16 <= Bytes; ++v) {
        if constexpr (Aligned)
            _mm_store_si128(reinterpret_cast<V*>(p + 16 * v), r[v]);
        else
            _mm_storeu_si128(reinterpret_cast<V*>(p + 16 * v), r[v]);
    }
    constexpr int rest = Bytes % 16;
    if constexpr (rest >= 8) _mm_storel_epi64(reinterpret_cast<V*>(p + 16 * v), r[v]);
    if constexpr (rest == 4) {
        const int w = _mm_cvtsi128_si32(r[v]);
        __builtin_memcpy(p + 16 * v, &w, 4);
    }
    if constexpr (rest == 12) {
        const int w = _mm_extract_epi32(r[v], 2);
        __builtin_memcpy(p + 16 * v + 8, &w, 4);
    }
}

template <class T>
inline T* rowAt(T* base, int step, int y) {
    return base + static_cast<std::ptrdiff_t>(y) * step;
}

// ------------------------------------------------------------ four float pixels by lanes
// Three samples a pixel: the frame's split3. Four samples a pixel: a 4 x 4 transpose.
template <int Cn>
inline void floatsToChannels(const V (&in)[Cn], V (&ch)[Cn]) {
    if constexpr (Cn == 3) {
        const VF f[3] = {_mm_castsi128_ps(in[0]), _mm_castsi128_ps(in[1]), _mm_castsi128_ps(in[2])};
        VF c[3];
        split3(f, c);
        for (int k = 0; k < 3; ++k) ch[k] = _mm_castps_si128(c[k]);
    } else {
        const VF p0 = _mm_castsi128_ps(in[0]), p1 = _mm_castsi128_ps(in[1]);
        const VF p2 = _mm_castsi128_ps(in[2]), p3 = _mm_castsi128_ps(in[3]);
        const VF t0 = _mm_unpacklo_ps(p0, p1), t1 = _mm_unpacklo_ps(p2, p3);  // c0 c0 c1 c1 of pixels 0 1, 2 3
        const VF t2 = _mm_unpackhi_ps(p0, p1), t3 = _mm_unpackhi_ps(p2, p3);  // c2 c2 c3 c3
        ch[0] = _mm_castps_si128(_mm_movelh_ps(t0, t1));
        ch[1] = _mm_castps_si128(_mm_movehl_ps(t1, t0));
        ch[2] = _mm_castps_si128(_mm_movelh_ps(t2, t3));
        ch[3] = _mm_castps_si128(_mm_movehl_ps(t3, t2));
    }
}

// Three channels back to three samples a pixel: the frame's join3.
inline void channelsToFloats(const V (&ch)[4], V (&out)[3]) {
    const VF c[3] = {_mm_castsi128_ps(ch[0]), _mm_castsi128_ps(ch[1]), _mm_castsi128_ps(ch[2])};
    VF f[3];
    join3(c, f);
    for (int v = 0; v < 3; ++v) out[v] = _mm_castps_si128(f[v]);
}

// Pixel registers c0 c1 c2 c3; WithFourth false: lane 3 is a copy of c2, never stored.
template <bool WithFourth>
inline void channelsToPixels(const V (&ch)[4], V (&px)[4]) {
    const VF c0 = _mm_castsi128_ps(ch[0]), c1 = _mm_castsi128_ps(ch[1]), c2 = _mm_castsi128_ps(ch[2]);
    const VF c3 = WithFourth ? _mm_castsi128_ps(ch[3]) : c2;
    const VF t0 = _mm_unpacklo_ps(c0, c1), t1 = _mm_unpackhi_ps(c0, c1);
    const VF u0 = _mm_unpacklo_ps(c2, c3), u1 = _mm_unpackhi_ps(c2, c3);
    px[0] = _mm_castps_si128(_mm_movelh_ps(t0, u0));
    px[1] = _mm_castps_si128(_mm_movehl_ps(u0, t0));
    px[2] = _mm_castps_si128(_mm_movelh_ps(t1, u1));
    px[3] = _mm_castps_si128(_mm_movehl_ps(u1, t1));
}

// ------------------------------------------------------------ blocks and pixels
struct Block {
    VF c[3];  // colour channels in the model's order, as floats
    V fourth; // the fourth channel's raw samples, low bytes (where the source has one)
};

template <class T>
struct Pixel {
    float c[3];
    T fourth;
};

// What a destination with a fourth channel does with it.
enum class Fourth {
    None,     // three samples a pixel (or three planes)
    Keep,     // left as it was
    FromSrc,  // the source's fourth channel, copied exactly
};

// ------------------------------------------------------------ interleaved source
template <class T, int Cn, bool Swap>
struct SrcC {
    static constexpr int Sz = Sample<T>::kSize;
    static constexpr int kPlanes = 0;
    const T* base;
    int step;
    struct Row {
        using Type = T;
        const T* p;
        void load4(int x, Block& b) const {
            constexpr int NV = Shape<Cn, Sz>::kVecs;
            const auto& t = kTables<Cn, Sz>;
            V in[NV];
            loadExact<Shape<Cn, Sz>::kBytes>(p + Cn * x, in);
            V ch[Cn];
            if constexpr (Sz == 4) {
                floatsToChannels(in, ch);
                for (int k = 0; k < 3; ++k) b.c[k] = _mm_castsi128_ps(ch[Swap ? 2 - k : k]);
                b.fourth = Cn == 4 ? ch[Cn - 1] : zero();
                return;
            }
            for (int c = 0; c < Cn; ++c) {
                V acc = _mm_shuffle_epi8(in[0], mask(t.gather[0][c]));
                for (int v = 1; v < NV; ++v) acc = _mm_or_si128(acc, _mm_shuffle_epi8(in[v], mask(t.gather[v][c])));
                ch[c] = acc;
            }
            for (int k = 0; k < 3; ++k) b.c[k] = Sample<T>::widen(ch[Swap ? 2 - k : k]);
            b.fourth = Cn == 4 ? ch[Cn - 1] : zero();
        }
        void get(int x, Pixel<T>& px) const {
            const T* q = p + Cn * x;
            for (int k = 0; k < 3; ++k) px.c[k] = Sample<T>::toFloat(q[Swap ? 2 - k : k]);
            px.fourth = Cn == 4 ? q[Cn - 1] : T{};
        }
        // 8u rows of three or four samples: 16 pixels, each colour channel's
        // bytes in pixel order (a fourth channel is not read into them).
        static constexpr bool kBytes16 = Sz == 1 && (Cn == 3 || Cn == 4);
        void loadBytes16(int x, V (&ch)[3]) const {
            static_assert(kBytes16, "16-pixel loads of 8u rows");
            V c[3];
            if constexpr (Cn == 3) {
                V in[3];
                kro::loadBytes<3, 16>(p + Cn * x, in);
                kro::deinterleave3(in, c);
            } else {
                V in[4];
                kro::loadBytes<4, 16>(p + Cn * x, in);
                Px px;
                kro::deinterleave<4>(in, px);
                for (int k = 0; k < 3; ++k) c[k] = px.c[k];
            }
            for (int k = 0; k < 3; ++k) ch[k] = c[Swap ? 2 - k : k];
        }
    };
    Row row(int y) const { return {rowAt(base, step, y)}; }
};

// ------------------------------------------------------------ planar source
// Swap: planes 0 and 2 hold the model's channels 2 and 0 (BGR planes).
template <class T, int K, bool Swap>
struct SrcP {
    static constexpr int Sz = Sample<T>::kSize;
    static constexpr int kPlanes = K;
    const T* const* planes;
    int step;
    struct Row {
        using Type = T;
        static constexpr bool kBytes16 = false;
        const T* p[K];
        void load4(int x, Block& b) const {
            V in[1];
            for (int k = 0; k < 3; ++k) {
                loadExact<4 * Sz>(p[Swap ? 2 - k : k] + x, in);
                b.c[k] = Sample<T>::widen(in[0]);
            }
            if constexpr (K == 4) {
                loadExact<4 * Sz>(p[3] + x, in);
                b.fourth = in[0];
            } else {
                b.fourth = zero();
            }
        }
        void get(int x, Pixel<T>& px) const {
            for (int k = 0; k < 3; ++k) px.c[k] = Sample<T>::toFloat(p[Swap ? 2 - k : k][x]);
            px.fourth = K == 4 ? p[K - 1][x] : T{};
        }
    };
    Row row(int y) const {
        Row r{};
        for (int k = 0; k < K; ++k) r.p[k] = rowAt(planes[k], step, y);
        return r;
    }
};

// ------------------------------------------------------------ interleaved destination
// Keep reads the destination's block back and rewrites the fourth channel's
// samples unchanged (the row must be readable).
template <class T, int Cn, bool Swap, Fourth F>
struct DstC {
    static_assert((Cn == 3) == (F == Fourth::None), "three samples a pixel have no fourth channel");
    static constexpr int Sz = Sample<T>::kSize;
    static constexpr int kPlanes = 0;
    T* base;
    int step;
    struct Row {
        using Type = T;
        T* p;
        bool aligned() const { return (reinterpret_cast<uintptr_t>(p) & 15) == 0; }
        template <bool Aligned = false>
        void store4(int x, const V (&w)[3], V fourth) const {
            constexpr int NV = Shape<Cn, Sz>::kVecs;
            const auto& t = kTables<Cn, Sz>;
            V ch[4];
            for (int k = 0; k < 3; ++k) ch[Swap ? 2 - k : k] = Sample<T>::narrow(w[k]);
            ch[3] = fourth;
            constexpr int colours = F == Fourth::FromSrc ? 4 : 3;
            V out[NV];
            if constexpr (Sz == 4) {
                T* q = p + Cn * x;
                if constexpr (Cn == 3) {
                    channelsToFloats(ch, out);
                    storeExact<48, Aligned>(q, out);
                } else {
                    V px[4];
                    channelsToPixels<F == Fourth::FromSrc>(ch, px);
                    // Keep: the fourth sample read back and written as it was
                    for (int v = 0; v < 4; ++v) {
                        if constexpr (F == Fourth::Keep) {
                            const VF old = _mm_loadu_ps(reinterpret_cast<const float*>(q + 4 * v));
                            px[v] = _mm_castps_si128(_mm_blend_ps(_mm_castsi128_ps(px[v]), old, 0x8));
                        }
                        storeExact<16>(q + 4 * v, &px[v]);
                    }
                }
                return;
            }
            for (int v = 0; v < NV; ++v) {
                V acc = _mm_shuffle_epi8(ch[0], mask(t.scatter[v][0]));
                for (int c = 1; c < colours; ++c) acc = _mm_or_si128(acc, _mm_shuffle_epi8(ch[c], mask(t.scatter[v][c])));
                out[v] = acc;
            }
            T* q = p + Cn * x;
            if constexpr (F == Fourth::Keep && Sz == 4) {
                // one pixel a register: three samples written, the fourth untouched
                for (int v = 0; v < NV; ++v) storeExact<12>(q + 4 * v, &out[v]);
                return;
            } else if constexpr (F == Fourth::Keep) {
                V old[NV];
                loadExact<Shape<Cn, Sz>::kBytes>(q, old);
                for (int v = 0; v < NV; ++v) out[v] = _mm_or_si128(out[v], _mm_and_si128(old[v], mask(t.fourth[v])));
            }
            storeExact<Shape<Cn, Sz>::kBytes, Aligned>(q, out);
        }
        // 8u rows of three samples, or of four whose fourth stays as it was:
        // 16 pixels from each colour channel's bytes in pixel order. Four
        // samples a pixel read the destination back for its fourth bytes.
        static constexpr bool kBytes16 = Sz == 1 && (Cn == 3 || (Cn == 4 && F == Fourth::Keep));
        void storeBytes16(int x, const V (&c)[3]) const {
            static_assert(kBytes16, "16-pixel stores of 8u rows");
            T* q = p + Cn * x;
            if constexpr (Cn == 3) {
                V ch[3];
                for (int k = 0; k < 3; ++k) ch[Swap ? 2 - k : k] = c[k];
                V out[3];
                kro::interleave3(ch, out);
                kro::storeBytes<3, 16>(q, out);
            } else {
                Px px;
                for (int k = 0; k < 3; ++k) px.c[Swap ? 2 - k : k] = c[k];
                px.c[3] = zero();
                V out[4], old[4];
                kro::interleave<4>(px, out);
                kro::loadBytes<4, 16>(q, old);
                const V fourth = _mm_set1_epi32(static_cast<int>(0xff000000u));
                for (int v = 0; v < 4; ++v) out[v] = _mm_blendv_epi8(out[v], old[v], fourth);
                kro::storeBytes<4, 16>(q, out);
            }
        }
        void put(int x, const typename Sample<T>::Word (&o)[3], T fourth) const {
            T* q = p + Cn * x;
            for (int k = 0; k < 3; ++k) q[Swap ? 2 - k : k] = Sample<T>::fromWord(o[k]);
            if constexpr (F == Fourth::FromSrc) q[3] = fourth;
        }
    };
    Row row(int y) const { return {rowAt(base, step, y)}; }
};

// ------------------------------------------------------------ planar destination
// K planes; a fourth plane receives the source's fourth channel.
template <class T, int K, bool Swap>
struct DstP {
    static constexpr int Sz = Sample<T>::kSize;
    static constexpr int kPlanes = K;
    T* const* planes;
    int step;
    struct Row {
        using Type = T;
        static constexpr bool kBytes16 = false;
        T* p[K];
        bool aligned() const { return false; }
        template <bool Aligned = false>
        void store4(int x, const V (&w)[3], V fourth) const {
            for (int k = 0; k < 3; ++k) {
                const V n = Sample<T>::narrow(w[k]);
                storeExact<4 * Sz>(p[Swap ? 2 - k : k] + x, &n);
            }
            if constexpr (K == 4) storeExact<4 * Sz>(p[3] + x, &fourth);
        }
        void put(int x, const typename Sample<T>::Word (&o)[3], T fourth) const {
            for (int k = 0; k < 3; ++k) p[Swap ? 2 - k : k][x] = Sample<T>::fromWord(o[k]);
            if constexpr (K == 4) p[3][x] = fourth;
        }
    };
    Row row(int y) const {
        Row r{};
        for (int k = 0; k < K; ++k) r.p[k] = rowAt(planes[k], step, y);
        return r;
    }
};

// ------------------------------------------------------------ row kernel and region driver
// Pixels 0 .. (width & ~(B - 1)) - 1 go through the vector form four at a time,
// the rest through the scalar tail form; B = 1: the whole row is scalar.
// ByAlignment: rows whose destination is 16-byte aligned store whole registers
// with aligned stores (same bytes as the general sequence).
// Bytes16: a form on 16 pixels of bytes (three channel registers in, three
// out) with the numbers of VecForm; where both sides move 8u rows of three or
// four samples, it takes the main path 16 pixels at a time.
template <int B, class VecForm, class TailForm, bool ByAlignment = false, class Bytes16 = void>
struct KernelF {
    static_assert(B == 1 || B == 4 || B == 8, "blocks of 4 or 8 pixels, or scalar only");

    template <bool Aligned, class SRow, class DRow>
    static int mainPath(const SRow& s, const DRow& d, int width) {
        const int n = width & ~(B - 1);
        int x = 0;
        if constexpr (!std::is_void_v<Bytes16> && SRow::kBytes16 && DRow::kBytes16 && !Aligned) {
            for (; x + 16 <= n; x += 16) {
                V in[3], out[3];
                s.loadBytes16(x, in);
                Bytes16::apply(in, out);
                d.storeBytes16(x, out);
            }
        }
        if constexpr (sizeof(typename SRow::Type) == 4 && sizeof(typename DRow::Type) == 4) {
            // float rows: two blocks a step, so one block's divisions overlap the other's work
            for (; x + 8 <= n; x += 8) {
                Block b0, b1;
                s.load4(x, b0);
                s.load4(x + 4, b1);
                V w0[3], w1[3];
                VecForm::apply(b0.c, w0);
                VecForm::apply(b1.c, w1);
                d.template store4<Aligned>(x, w0, b0.fourth);
                d.template store4<Aligned>(x + 4, w1, b1.fourth);
            }
        }
        for (; x < n; x += 4) {
            Block b;
            s.load4(x, b);
            V w[3];
            VecForm::apply(b.c, w);
            d.template store4<Aligned>(x, w, b.fourth);
        }
        return n;
    }

    template <class SRow, class DRow>
    static void row(const SRow& s, const DRow& d, int width) {
        int x = 0;
        if constexpr (B > 1) {
            if (ByAlignment && d.aligned())
                x = mainPath<true>(s, d, width);
            else
                x = mainPath<false>(s, d, width);
        }
        for (; x < width; ++x) {
            Pixel<typename SRow::Type> px;
            s.get(x, px);
            typename Sample<typename DRow::Type>::Word o[3];
            TailForm::apply(px.c, o);
            d.put(x, o, px.fourth);
        }
    }

    template <class Src, class Dst>
    static void region(const Src& src, const Dst& dst, kroiSize roi) {
        for (int y = 0; y < roi.height; ++y) row(src.row(y), dst.row(y), roi.width);
    }
};

}  // namespace kro::typed
