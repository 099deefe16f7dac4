// Sources and the row kernel of the decoders from subsampled formats.
//
// A source row gives, for N pixels from an even column x (a multiple of 4 in
// 4:1:1), one byte vector of luma and one each of Cb and Cr with every block's
// chroma duplicated into the lanes of its pixels: the chroma never goes through
// a full-resolution plane. get(x) gives one pixel's samples for the scalar forms.
// Destinations are the interleaved and planar sides of frame/layout8.h.
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "frame/region.h"
#include "subsampled/catalogue.h"
#include "subsampled/decode_forms.h"
#include "subsampled/decode_pairs.h"

namespace kro::dec {

using sub::Packed422;

// ------------------------------------------------------------ loads of a few bytes
// Bytes 0 .. M-1 at p in the low lanes, the rest zero; never touches byte M.
template <int M, bool Aligned = false>
inline V loadLow(const uint8_t* p) {
    if constexpr (M == 16) {
        if constexpr (Aligned) return _mm_load_si128(reinterpret_cast<const V*>(p));
        return _mm_loadu_si128(reinterpret_cast<const V*>(p));
    } else if constexpr (M == 8) {
        return _mm_loadl_epi64(reinterpret_cast<const V*>(p));
    } else if constexpr (M == 4) {
        int w;
        __builtin_memcpy(&w, p, 4);
        return _mm_cvtsi32_si128(w);
    } else if constexpr (M == 2) {
        uint16_t w;
        __builtin_memcpy(&w, p, 2);
        return _mm_cvtsi32_si128(w);
    } else {
        static_assert(M == 1, "1, 2, 4, 8 or 16 bytes");
        return _mm_cvtsi32_si128(*p);
    }
}

// Lane i takes byte i / Rep: each chroma sample repeated over its block's pixels.
constexpr Mask16 repeatMask(int rep) {
    Mask16 m{};
    for (int i = 0; i < 16; ++i) m.b[i] = static_cast<int8_t>(i / rep);
    return m;
}
// Lane i takes byte 2 (i / 2) + off: one member of each interleaved chroma pair, repeated.
constexpr Mask16 pairMask(int off) {
    Mask16 m{};
    for (int i = 0; i < 16; ++i) m.b[i] = static_cast<int8_t>(i / 2 * 2 + off);
    return m;
}
// Channel ch (0 luma, 1 Cb, 2 Cr) of 16 pixels of a packed 4:2:2 row, from its 16-byte vector vec.
constexpr Mask16 packedMask(const Packed422& l, int vec, int ch) {
    Mask16 m{};
    for (int i = 0; i < 16; ++i) {
        const int at = ch == 0 ? (i & 1 ? l.y1 : l.y0) : ch == 1 ? l.cb : l.cr;
        const int pos = i / 2 * 4 + at;
        m.b[i] = static_cast<int8_t>(pos / 16 == vec ? pos % 16 : -128);
    }
    return m;
}
// Chroma ch (1 Cb, 2 Cr) of the eight groups of 32 bytes into bytes 0..7, from vector vec.
constexpr Mask16 packedChromaMask(const Packed422& l, int vec, int ch) {
    Mask16 m{};
    for (int i = 0; i < 16; ++i) {
        const int pos = i * 4 + (ch == 1 ? l.cb : l.cr);
        m.b[i] = static_cast<int8_t>(i < 8 && pos / 16 == vec ? pos % 16 : -128);
    }
    return m;
}
struct PackedMasks {
    Mask16 m[2][3];       // [vector][channel]
    Mask16 chroma[2][2];  // [vector][Cb, Cr]: one sample a group
};
constexpr PackedMasks makePackedMasks(const Packed422& l) {
    PackedMasks t{};
    for (int v = 0; v < 2; ++v) {
        for (int c = 0; c < 3; ++c) t.m[v][c] = packedMask(l, v, c);
        for (int c = 0; c < 2; ++c) t.chroma[v][c] = packedChromaMask(l, v, c + 1);
    }
    return t;
}
template <const Packed422& L>
inline constexpr PackedMasks kPackedMasks = makePackedMasks(L);

inline constexpr Mask16 kRepeat2 = repeatMask(2);
inline constexpr Mask16 kRepeat4 = repeatMask(4);

// ------------------------------------------------------------ packed 4:2:2 rows (C2)
// Aligned: the 16-byte loads of the vector steps are aligned ones (the caller
// has tested the address and the step).
template <const Packed422& L, bool Aligned = false>
struct SrcC2 {
    const uint8_t* base;
    int step;
    struct Row {
        static constexpr bool kChroma8 = true;
        const uint8_t* p;
        // Pixels x .. x + 15 from their 32 bytes: luma and chroma take opposite
        // byte parities, so masking and shifting each 16-bit lane and packing
        // gives the 16 luma bytes and the eight groups' chroma pairs in order.
        static constexpr bool kLumaEven = L.y0 == 0;
        static constexpr int kCbOff = L.cb < L.cr ? 0 : 1;  // Cb's place in a chroma pair
        // packed lanes (PairStep): luma in the low byte of each 16-bit lane, Cb the group's first chroma
        static constexpr bool kLumaLow = L.y0 % 2 == 0;
        static constexpr bool kCbFirst = L.cb < 2;
        void bytes32(int x, V& a, V& b) const {
            a = loadLow<16, Aligned>(p + 2 * x);
            b = loadLow<16, Aligned>(p + 2 * x + 16);
        }
        void split16(int x, V& luma, V& pairs) const {
            const V a = loadLow<16, Aligned>(p + 2 * x), b = loadLow<16, Aligned>(p + 2 * x + 16);
            const V low = _mm_set1_epi16(0x00ff);
            const V even = _mm_packus_epi16(_mm_and_si128(a, low), _mm_and_si128(b, low));
            const V odd = _mm_packus_epi16(_mm_srli_epi16(a, 8), _mm_srli_epi16(b, 8));
            luma = kLumaEven ? even : odd;
            pairs = kLumaEven ? odd : even;
        }
        // the luma bytes of pixels x .. x + 15, and their eight groups' chroma in 16-bit lanes
        V luma16(int x) const {
            V luma, pairs;
            split16(x, luma, pairs);
            return luma;
        }
        void chroma8(int x, V& u, V& v) const {
            V luma, pairs;
            split16(x, luma, pairs);
            const V first = _mm_and_si128(pairs, _mm_set1_epi16(0x00ff)), second = _mm_srli_epi16(pairs, 8);
            u = kCbOff == 0 ? first : second;
            v = kCbOff == 0 ? second : first;
        }
        template <int N>
        void load(int x, Px& px) const {
            if constexpr (N == 16) {
                static constexpr Mask16 kCb = pairMask(kCbOff), kCr = pairMask(1 - kCbOff);
                V pairs;
                split16(x, px.c[0], pairs);
                px.c[1] = _mm_shuffle_epi8(pairs, loadMask(kCb));
                px.c[2] = _mm_shuffle_epi8(pairs, loadMask(kCr));
            } else {
                const auto& t = kPackedMasks<L>;
                const V a = loadLow<2 * N, Aligned && N == 8>(p + 2 * x);
                for (int c = 0; c < 3; ++c) px.c[c] = _mm_shuffle_epi8(a, loadMask(t.m[0][c]));
            }
            px.c[3] = zero();
        }
        void get(int x, int (&s)[4]) const {
            const uint8_t* g = p + (x >> 1) * 4;
            s[0] = g[x & 1 ? L.y1 : L.y0];
            s[1] = g[L.cb];
            s[2] = g[L.cr];
            s[3] = 0;
        }
        // The last pixel x (even) of an odd width: its luma and the one chroma
        // byte of its group, which is its own; the other chroma comes from the
        // previous group, or is the own one again where there is none or where
        // minGroups says the row is too short (rule O: 1 group, O': 2 groups).
        void getOdd(int x, int minGroups, int (&s)[4]) const {
            const int k = x >> 1;
            const uint8_t* g = p + k * 4;
            const bool cbOwn = L.cb < 2;
            const int own = g[cbOwn ? L.cb : L.cr];
            const int other = k >= minGroups ? g[-4 + (cbOwn ? L.cr : L.cb)] : own;
            s[0] = g[L.y0];
            s[1] = cbOwn ? own : other;
            s[2] = cbOwn ? other : own;
            s[3] = 0;
        }
    };
    Row row(int y) const { return {rowAt(base, step, y)}; }
};

// ------------------------------------------------------------ planar sources (P3)
// Chroma planes subsampled by BW across and BH down; element CbIdx of the plane
// array is the Cb (U) plane, CrIdx the Cr (V) plane. Each plane has its own step.
template <int BW, int BH, int CbIdx = 1, int CrIdx = 2>
struct SrcP3Sub {
    const uint8_t* const* planes;
    const int* steps;
    struct Row {
        static constexpr bool kChroma8 = BW == 2;
        const uint8_t *y, *cb, *cr;
        template <int N>
        void load(int x, Px& px) const {
            px.c[0] = loadLow<N>(y + x);
            const V rep = loadMask(BW == 2 ? kRepeat2 : kRepeat4);
            px.c[1] = _mm_shuffle_epi8(loadLow<N / BW>(cb + x / BW), rep);
            px.c[2] = _mm_shuffle_epi8(loadLow<N / BW>(cr + x / BW), rep);
            px.c[3] = zero();
        }
        void get(int x, int (&s)[4]) const {
            s[0] = y[x];
            s[1] = cb[x / BW];
            s[2] = cr[x / BW];
            s[3] = 0;
        }
        // 4:2:x: the luma bytes of pixels x .. x + 15, and their eight blocks'
        // chroma in 16-bit lanes
        V luma16(int x) const { return loadLow<16>(y + x); }
        void chroma8(int x, V& u, V& v) const {
            static_assert(BW == 2, "two pixels a block across");
            u = widenLo(loadLow<8>(cb + x / 2));
            v = widenLo(loadLow<8>(cr + x / 2));
        }
        // Pixel x with the chroma of block b (the leftover pixels of a 4:1:1 row).
        void getWithBlock(int x, int b, int (&s)[4]) const {
            s[0] = y[x];
            s[1] = cb[b];
            s[2] = cr[b];
            s[3] = 0;
        }
    };
    Row row(int r) const {
        return {rowAt(planes[0], steps[0], r), rowAt(planes[CbIdx], steps[CbIdx], r / BH),
                rowAt(planes[CrIdx], steps[CrIdx], r / BH)};
    }
};

// ------------------------------------------------------------ semi-planar 4:2:0 sources (P2)
// A luma plane and a plane of chroma pairs, CbOff the offset of Cb within a pair.
template <int CbOff>
struct SrcP2 {
    const uint8_t* yBase;
    int yStep;
    const uint8_t* cBase;
    int cStep;
    struct Row {
        static constexpr bool kChroma8 = true;
        const uint8_t *y, *c;
        template <int N>
        void load(int x, Px& px) const {
            static constexpr Mask16 kCb = pairMask(CbOff), kCr = pairMask(1 - CbOff);
            px.c[0] = loadLow<N>(y + x);
            const V pairs = loadLow<N>(c + x);
            px.c[1] = _mm_shuffle_epi8(pairs, loadMask(kCb));
            px.c[2] = _mm_shuffle_epi8(pairs, loadMask(kCr));
            px.c[3] = zero();
        }
        V luma16(int x) const { return loadLow<16>(y + x); }
        void chroma8(int x, V& u, V& v) const {
            const V pairs = loadLow<16>(c + x);
            const V first = _mm_and_si128(pairs, _mm_set1_epi16(0x00ff)), second = _mm_srli_epi16(pairs, 8);
            u = CbOff == 0 ? first : second;
            v = CbOff == 0 ? second : first;
        }
        void get(int x, int (&s)[4]) const {
            const uint8_t* pr = c + (x & ~1);
            s[0] = y[x];
            s[1] = pr[CbOff];
            s[2] = pr[1 - CbOff];
            s[3] = 0;
        }
    };
    Row row(int r) const { return {rowAt(yBase, yStep, r), rowAt(cBase, cStep, r / 2)}; }
};

// ------------------------------------------------------------ aligned four-sample destination
// As DstC8<4, Swap, Alpha::Aval>, with aligned 16-byte stores in the vector steps.
template <bool Swap>
struct DstC4Aligned {
    using Base = DstC8<4, Swap, Alpha::Aval>;
    uint8_t* base;
    int step;
    uint8_t aval;
    struct Row : Base::Row {
        template <int N>
        void store(int x, Px px) const {
            if constexpr (Swap) swap02(px);
            px.c[3] = _mm_set1_epi8(static_cast<char>(this->aval));
            V out[4];
            interleave<4>(px, out);
            for (int v = 0; v < N / 4; ++v) _mm_store_si128(reinterpret_cast<V*>(this->p + 4 * x + 16 * v), out[v]);
        }
    };
    Row row(int y) const { return {{rowAt(base, step, y), aval}}; }
};

inline bool aligned16(const void* p) { return (reinterpret_cast<uintptr_t>(p) & 15) == 0; }
inline bool aligned16(int step) { return (step & 15) == 0; }

// ------------------------------------------------------------ one pixel through a vector form
// Lane 0 of the form's vector version: the numbers of the form where it has no
// scalar version (the leftover pixels of a 4:1:1 row).
template <class VecForm>
inline void vectorPixel(int y, int cb, int cr, int (&o)[3]) {
    const V in[3] = {_mm_cvtsi32_si128(y), _mm_cvtsi32_si128(cb), _mm_cvtsi32_si128(cr)};
    V out[3];
    VecForm::apply(in, out);
    for (int k = 0; k < 3; ++k) o[k] = _mm_cvtsi128_si32(clampU8(out[k], out[k])) & 0xff;
}

// ------------------------------------------------------------ the row kernel
enum class Span { S16, S8, S4, All };  // main span: the span rules, or every whole block
enum class Odd {
    Unwritten,  // the last pixel of an odd width is not written
    O,          // packed rule O: the other chroma from the previous group, own alone at W = 1
    OPrime,     // packed rule O': as O, own alone at W = 1 and W = 3
    Plain,      // planar: the pixel's own chroma index, the last samples of the chroma planes
    F,          // 4:1:1 leftovers: the last whole block's chroma; D7 for 1 or 2 pixels, OddForm for 3
};

// A form in pieces (luma, chroma, join) lets row pairs share their chroma terms.
template <class F, class = void>
struct HasPieces : std::false_type {};
template <class F>
struct HasPieces<F, std::void_t<decltype(F::join(std::declval<V>(), std::declval<V>()))>> : std::true_type {};

// Pixels 0 .. span - 1 go through the main form: vector steps of 16, 8 and 4
// (never below NMin, the granularity of the span rule), then MainScalar for the
// pixels of an "all" span that no vector step covers; whole blocks after the
// span through Tail; the odd remainder as OddRule says, through OddForm.
template <Span SP, class MainVec, class MainScalar, class Tail, Odd OddRule = Odd::Unwritten, class OddForm = Tail>
struct DecodeRow {
    static constexpr int NMin = SP == Span::S16 ? 16 : SP == Span::S8 ? 8 : 4;
    using Steps = Kernel8<16, NMin, MainVec, Tail>;

    static int mainSpan(int w, int whole) {
        switch (SP) {
            case Span::S16: return sub::spanS16(w);
            case Span::S8: return sub::spanS8(w);
            case Span::S4: return sub::spanS4(w);
            default: return whole;
        }
    }

    template <class Form, class DRow>
    static void pixel(const DRow& d, int x, const int (&in)[4]) {
        int o[3];
        Form::apply(in[0], in[1], in[2], o[0], o[1], o[2]);
        d.put(x, o[0], o[1], o[2], 0);
    }

    // w: the row's width in pixels; bw: pixels of a chroma block across; x0:
    // the first pixel not yet written (a multiple of 16 within the main span).
    template <class SRow, class DRow>
    static void row(const SRow& s, const DRow& d, int w, int bw, int x0 = 0) {
        const int whole = w / bw * bw;
        const int span = mainSpan(w, whole);
        const int vecEnd = span & ~(NMin - 1);
        int x = x0;
        if constexpr (PairTermsOf<MainVec>::kHas && HasPairLanes<SRow>::value)
            x = PairStep<MainVec>::run(s, d, x, vecEnd);
        if constexpr (HasPieces<MainVec>::value && SRow::kChroma8)
            for (; x + 16 <= vecEnd; x += 16) chromaStep16(s, d, x);
        for (; x + 16 <= vecEnd; x += 16) Steps::template step<16>(s, d, x);
        if constexpr (NMin <= 8)
            for (; x + 8 <= vecEnd; x += 8) Steps::template step<8>(s, d, x);
        if constexpr (NMin <= 4)
            for (; x + 4 <= vecEnd; x += 4) Steps::template step<4>(s, d, x);
        int in[4];
        for (; x < span; ++x) {
            s.get(x, in);
            pixel<MainScalar>(d, x, in);
        }
        for (; x < whole; ++x) {
            s.get(x, in);
            pixel<Tail>(d, x, in);
        }
        if (whole == w) return;
        if constexpr (OddRule == Odd::O || OddRule == Odd::OPrime) {
            s.getOdd(whole, OddRule == Odd::O ? 1 : 2, in);
            pixel<OddForm>(d, whole, in);
        } else if constexpr (OddRule == Odd::Plain) {
            s.get(whole, in);
            pixel<OddForm>(d, whole, in);
        } else if constexpr (OddRule == Odd::F) {
            // OddForm is the vector form for three leftovers; one or two take D7
            const int lastBlock = whole / bw - 1;
            for (; x < w; ++x) {
                s.getWithBlock(x, lastBlock, in);
                if (w - whole == 3) {
                    int o[3];
                    vectorPixel<OddForm>(in[0], in[1], in[2], o);
                    d.put(x, o[0], o[1], o[2], 0);
                } else {
                    pixel<D7>(d, x, in);
                }
            }
        }
    }

    // 4:2:2 and 4:1:1: every row by itself.
    template <class Src, class Dst>
    static void rows(const Src& src, const Dst& dst, kroiSize roi, int bw) {
        for (int y = 0; y < roi.height; ++y) row(src.row(y), dst.row(y), roi.width, bw);
    }
    // One luma row of 16 pixels with chroma terms already repeated over the
    // block's two lanes (lo: pixels 0..7, hi: pixels 8..15).
    template <class SRow, class DRow>
    static void joinRow16(const SRow& s, const DRow& d, int x, const V (&lo)[3], const V (&hi)[3]) {
        const V yb = s.luma16(x);
        const V tl = MainVec::luma(widenLo(yb)), th = MainVec::luma(widenHi(yb));
        Px px;
        for (int k = 0; k < 3; ++k) px.c[k] = clampU8(MainVec::join(tl, lo[k]), MainVec::join(th, hi[k]));
        px.c[3] = zero();
        d.template store<16>(x, px);
    }

    // The chroma terms of the eight blocks of pixels x .. x + 15, computed once
    // in eight lanes and repeated into the two lanes of each block.
    template <class SRow>
    static void chromaTerms16(const SRow& s, int x, V (&lo)[3], V (&hi)[3]) {
        V u, v, t[3];
        s.chroma8(x, u, v);
        MainVec::chroma(u, v, t[0], t[1], t[2]);
        for (int k = 0; k < 3; ++k) {
            lo[k] = _mm_unpacklo_epi16(t[k], t[k]);
            hi[k] = _mm_unpackhi_epi16(t[k], t[k]);
        }
    }
    template <class SRow, class DRow>
    static void chromaStep16(const SRow& s, const DRow& d, int x) {
        V lo[3], hi[3];
        chromaTerms16(s, x, lo, hi);
        joinRow16(s, d, x, lo, hi);
    }
    // 16 pixels of both rows of a 4:2:0 pair on one set of chroma terms.
    template <class SRow, class DRow>
    static void pairStep16(const SRow& s0, const SRow& s1, const DRow& d0, const DRow& d1, int x) {
        V lo[3], hi[3];
        chromaTerms16(s0, x, lo, hi);
        joinRow16(s0, d0, x, lo, hi);
        joinRow16(s1, d1, x, lo, hi);
    }

    // 4:2:0: H / 2 row pairs, each luma row with its pair's chroma row (the source
    // gives it), the odd last row and column left out. The 16-pixel steps of a
    // form in pieces take both rows at once; the rest goes row by row.
    template <class Src, class Dst>
    static void rowPairs(const Src& src, const Dst& dst, kroiSize roi) {
        const int h = roi.height & ~1, w = roi.width & ~1;
        for (int y = 0; y < h; y += 2) {
            const auto s0 = src.row(y), s1 = src.row(y + 1);
            const auto d0 = dst.row(y), d1 = dst.row(y + 1);
            int x = 0;
            if constexpr (HasPieces<MainVec>::value) {
                const int end = mainSpan(w, w) & ~15;
                for (; x + 16 <= end; x += 16) pairStep16(s0, s1, d0, d1, x);
            }
            row(s0, d0, w, 2, x);
            row(s1, d1, w, 2, x);
        }
    }
};

}  // namespace kro::dec
