// Row kernels and region drivers of the subsampled encoders, and the
// destination sides they write (planar, semi-planar, packed 4:2:2), all read
// from the format catalogue.
//
// One pass converts the source rows of one chroma row: one row for 4:2:2 and
// 4:1:1, a row pair for 4:2:0. In a pass, the first span(W) pixels go through
// the main forms in vector steps of 16, 8 and 4 pixels (the step size never
// changes a value), the remaining whole blocks through the tail forms one block
// at a time, and a column past the last whole block through the operation's
// odd-column rule.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "frame/layout8.h"
#include "frame/region.h"
#include "matrix/ycbcr_rows.h"
#include "subsampled/catalogue.h"
#include "subsampled/encode_forms.h"

namespace kro::sub {


// ------------------------------------------------------------ partial stores
// The low M bytes of a vector (M = 16, 8, 4 or 2).
template <int M>
inline void storeLow(uint8_t* p, V v) {
    if constexpr (M == 16) {
        _mm_storeu_si128(reinterpret_cast<V*>(p), v);
    } else if constexpr (M == 8) {
        _mm_storel_epi64(reinterpret_cast<V*>(p), v);
    } else if constexpr (M == 4) {
        const int w = _mm_cvtsi128_si32(v);
        std::memcpy(p, &w, 4);
    } else {
        static_assert(M == 2, "2, 4, 8 or 16 bytes");
        const auto w = static_cast<uint16_t>(_mm_extract_epi16(v, 0));
        std::memcpy(p, &w, 2);
    }
}

// Within each 4-byte group (Y0 Y1 C0 C1 as built below) bytes moved to the
// packed order of the catalogue entry.
constexpr Mask16 packedGroupMask(Packed422 f) {
    Mask16 m{};
    for (int g = 0; g < 4; ++g) {
        m.b[4 * g + f.y0] = static_cast<int8_t>(4 * g + 0);
        m.b[4 * g + f.y1] = static_cast<int8_t>(4 * g + 1);
        m.b[4 * g + f.cb] = static_cast<int8_t>(4 * g + 2);
        m.b[4 * g + f.cr] = static_cast<int8_t>(4 * g + 3);
    }
    return m;
}

// 16 bytes as the even pixels' eight then the odd pixels' eight, back in
// pixel order (also: eight Cb then eight Cr as pairs Cb Cr).
inline V evenOddToPixels(V eo) {
    return _mm_shuffle_epi8(eo, _mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15));
}
inline V evenOddToPairsSwapped(V eo) {
    return _mm_shuffle_epi8(eo, _mm_setr_epi8(8, 0, 9, 1, 10, 2, 11, 3, 12, 4, 13, 5, 14, 6, 15, 7));
}

// ------------------------------------------------------------ reading ahead
// Interleaved source rows are fetched some 1.5 KiB ahead of the 16-pixel
// steps. Where the frame outgrows the last-level cache the hardware's own
// prefetch falls behind the rows read side by side, and the steps wait on
// memory (a 3840 x 2160 frame of three-sample pixels runs a quarter faster
// with it; from cache it costs one instruction a step). A prefetch never
// faults, so the address may pass the end of the row; it is formed as an
// integer so that no pointer leaves its buffer.
template <class SRow>
inline constexpr int kPixelBytes =
    std::is_base_of_v<typename SrcC8<3, false>::Row, SRow> || std::is_base_of_v<typename SrcC8<3, true>::Row, SRow>
        ? 3
        : std::is_base_of_v<typename SrcC8<4, false>::Row, SRow> || std::is_base_of_v<typename SrcC8<4, true>::Row, SRow>
              ? 4
              : 0;

template <class SRow>
inline void readAhead(const SRow& s, int x) {
    if constexpr (kPixelBytes<SRow> > 0) {
        constexpr std::uintptr_t ahead = 1536;
        const std::uintptr_t at = reinterpret_cast<std::uintptr_t>(s.p) + std::uintptr_t(kPixelBytes<SRow>) * x + ahead;
        _mm_prefetch(reinterpret_cast<const char*>(at), _MM_HINT_T0);
    }
}

// ------------------------------------------------------------ 16 pixels of R rows
// Three-sample rows gathered by blends as the frame's deinterleave does, but
// ordered by blend mask: pblendvb takes its mask in one fixed register, and of
// the six masks of a row only three differ (channel c takes input 1 where
// input 2 gives channel c + 1), so each is loaded once for all rows and
// channels, not twice a row.
template <class SRow>
inline constexpr int kBlendRow = std::is_same_v<SRow, typename ycbcr::SrcC3Blend<false>::Row>  ? 1
                                 : std::is_same_v<SRow, typename ycbcr::SrcC3Blend<true>::Row> ? 2
                                                                                                : 0;

constexpr bool sameMask(const Mask16& a, const Mask16& b) {
    for (int i = 0; i < 16; ++i)
        if (a.b[i] != b.b[i]) return false;
    return true;
}

template <class SRow, int R>
inline void load16(const SRow (&s)[R], int x, Px (&px)[R]) {
    if constexpr (kBlendRow<SRow> > 0) {
        constexpr bool swap = kBlendRow<SRow> == 2;
        const auto& t = kBlend3<1>;
        V in[R][3], c[R][3];
        for (int k = 0; k < R; ++k) {
            loadBytes<3, 16>(s[k].p + 3 * x, in[k]);
            for (int ch = 0; ch < 3; ++ch) c[k][ch] = in[k][0];
        }
        for (int j = 0; j < 3; ++j) {
            const int c1 = (j + 1) % 3, c2 = (j + 2) % 3;  // takes input 1, input 2 under this mask
            const V m = loadMask(t.pick1[c1]);
            for (int k = 0; k < R; ++k) {
                c[k][c1] = _mm_blendv_epi8(c[k][c1], in[k][1], m);
                c[k][c2] = _mm_blendv_epi8(c[k][c2], in[k][2], m);
            }
        }
        for (int k = 0; k < R; ++k)
            for (int ch = 0; ch < 3; ++ch) px[k].c[swap ? 2 - ch : ch] = _mm_shuffle_epi8(c[k][ch], loadMask(t.order[ch]));
    } else {
        for (int k = 0; k < R; ++k) s[k].template load<16>(x, px[k]);
    }
}
static_assert(sameMask(kBlend3<1>.pick1[1], kBlend3<1>.pick2[2]) && sameMask(kBlend3<1>.pick1[2], kBlend3<1>.pick2[0]) &&
                  sameMask(kBlend3<1>.pick1[0], kBlend3<1>.pick2[1]),
              "three masks, each shared by two channels");

// ============================================================ destination sides
// A side gives, for pass j, a view with:
//   store<N>(x, y[rows], cb, cr): N luma bytes per row from x, and the chroma
//     bytes of those pixels' blocks (low bytes of cb, cr);
//   storeEvenOdd16(x, yeo[rows], cbcr): 16 pixels of 4:2:2 or 4:2:0 blocks,
//     each luma row as the even pixels' bytes then the odd ones', chroma as
//     the eight Cb bytes then the eight Cr bytes;
//   putY(k, x, v), putC(x0, cb, cr): one luma sample, one block's chroma;
//   putOdd(x, y, cb, cr, hasCr): a block of one pixel at column x.

// Three planes, each with its own address and step; the catalogue names the
// plane of Cb and of Cr.
template <const Planar& F>
struct DstPlanes {
    uint8_t* const* planes;
    const int* steps;
    static constexpr int kRows = F.block.h;
    struct View {
        uint8_t* y[kRows];
        uint8_t* cb;
        uint8_t* cr;
        template <int N>
        void store(int x, const V (&yv)[kRows], V cbv, V crv) const {
            constexpr int M = N / F.block.w;
            for (int k = 0; k < kRows; ++k) storeLow<N>(y[k] + x, yv[k]);
            storeLow<M>(cb + x / F.block.w, cbv);
            storeLow<M>(cr + x / F.block.w, crv);
        }
        void storeEvenOdd16(int x, const V (&yeo)[kRows], V cbcr) const {
            static_assert(F.block.w == 2, "blocks two pixels wide");
            for (int k = 0; k < kRows; ++k) storeLow<16>(y[k] + x, evenOddToPixels(yeo[k]));
            storeLow<8>(cb + x / 2, cbcr);
            _mm_storeh_pi(reinterpret_cast<__m64*>(cr + x / 2), _mm_castsi128_ps(cbcr));
        }
        void putY(int k, int x, int v) const { y[k][x] = static_cast<uint8_t>(v); }
        void putC(int x0, int cbv, int crv) const {
            cb[x0 / F.block.w] = static_cast<uint8_t>(cbv);
            cr[x0 / F.block.w] = static_cast<uint8_t>(crv);
        }
        void putOdd(int x, int yv, int cbv, int crv, bool hasCr) const {
            y[0][x] = static_cast<uint8_t>(yv);
            cb[x / F.block.w] = static_cast<uint8_t>(cbv);
            if (hasCr) cr[x / F.block.w] = static_cast<uint8_t>(crv);
        }
    };
    View pass(int j) const {
        View v{};
        for (int k = 0; k < kRows; ++k) v.y[k] = rowAt(planes[0], steps[0], kRows * j + k);
        v.cb = rowAt(planes[F.cbPlane], steps[F.cbPlane], j);
        v.cr = rowAt(planes[F.crPlane], steps[F.crPlane], j);
        return v;
    }
};

// A luma plane and a plane of chroma pairs, in the catalogue's pair order.
template <const SemiPlanar& F>
struct DstSemi {
    uint8_t* yBase;
    int yStep;
    uint8_t* cBase;
    int cStep;
    static constexpr int kRows = F.block.h;
    struct View {
        uint8_t* y[kRows];
        uint8_t* c;
        template <int N>
        void store(int x, const V (&yv)[kRows], V cbv, V crv) const {
            constexpr int M = N / F.block.w;
            for (int k = 0; k < kRows; ++k) storeLow<N>(y[k] + x, yv[k]);
            const V pairs = F.cb == 0 ? _mm_unpacklo_epi8(cbv, crv) : _mm_unpacklo_epi8(crv, cbv);
            storeLow<2 * M>(c + 2 * (x / F.block.w), pairs);
        }
        void storeEvenOdd16(int x, const V (&yeo)[kRows], V cbcr) const {
            static_assert(F.block.w == 2, "blocks two pixels wide");
            for (int k = 0; k < kRows; ++k) storeLow<16>(y[k] + x, evenOddToPixels(yeo[k]));
            storeLow<16>(c + x, F.cb == 0 ? evenOddToPixels(cbcr) : evenOddToPairsSwapped(cbcr));
        }
        void putY(int k, int x, int v) const { y[k][x] = static_cast<uint8_t>(v); }
        void putC(int x0, int cbv, int crv) const {
            uint8_t* q = c + 2 * (x0 / F.block.w);
            q[F.cb] = static_cast<uint8_t>(cbv);
            q[F.cr] = static_cast<uint8_t>(crv);
        }
        void putOdd(int, int, int, int, bool) const {}  // 4:2:0 leaves an odd column alone
    };
    View pass(int j) const {
        View v{};
        for (int k = 0; k < kRows; ++k) v.y[k] = rowAt(yBase, yStep, kRows * j + k);
        v.c = rowAt(cBase, cStep, j);
        return v;
    }
};

// Packed 4:2:2: luma and chroma in one row, 4 bytes per pair of pixels.
template <const Packed422& F>
struct DstPacked {
    uint8_t* base;
    int step;
    static constexpr int kRows = 1;
    struct View {
        uint8_t* p;
        template <int N>
        void store(int x, const V (&yv)[1], V cbv, V crv) const {
            static constexpr Mask16 order = packedGroupMask(F);
            const V pairs = _mm_unpacklo_epi8(cbv, crv);  // (Cb_i, Cr_i) as 16-bit units
            const V g0 = _mm_shuffle_epi8(_mm_unpacklo_epi16(yv[0], pairs), loadMask(order));
            uint8_t* q = p + 2 * x;
            if constexpr (N == 4) {
                storeLow<8>(q, g0);
            } else {
                storeLow<16>(q, g0);
                if constexpr (N == 16)
                    storeLow<16>(q + 16, _mm_shuffle_epi8(_mm_unpackhi_epi16(yv[0], pairs), loadMask(order)));
            }
        }
        // A group holds two 16-bit units, each a luma byte and a chroma byte:
        // the even pixel's luma in the first unit, the odd pixel's in the second.
        void storeEvenOdd16(int x, const V (&yeo)[1], V cbcr) const {
            static_assert(F.y0 < 2 && F.y1 == F.y0 + 2, "even luma in the first unit, odd in the second");
            // chroma of the first unit in the low half
            const V c = F.cb < 2 ? cbcr : _mm_shuffle_epi32(cbcr, _MM_SHUFFLE(1, 0, 3, 2));
            const V first = F.y0 == 0 ? _mm_unpacklo_epi8(yeo[0], c) : _mm_unpacklo_epi8(c, yeo[0]);
            const V second = F.y0 == 0 ? _mm_unpackhi_epi8(yeo[0], c) : _mm_unpackhi_epi8(c, yeo[0]);
            uint8_t* q = p + 2 * x;
            storeLow<16>(q, _mm_unpacklo_epi16(first, second));
            storeLow<16>(q + 16, _mm_unpackhi_epi16(first, second));
        }
        void putY(int, int x, int v) const { p[2 * (x & ~1) + ((x & 1) ? F.y1 : F.y0)] = static_cast<uint8_t>(v); }
        void putC(int x0, int cbv, int crv) const {
            p[2 * x0 + F.cb] = static_cast<uint8_t>(cbv);
            p[2 * x0 + F.cr] = static_cast<uint8_t>(crv);
        }
        // The last pixel's two bytes hold its Y and the chroma sample that
        // stands in the first half of the group.
        void putOdd(int x, int yv, int cbv, int crv, bool hasCr) const {
            uint8_t* q = p + 2 * x;
            q[F.y0] = static_cast<uint8_t>(yv);
            if (F.cb < 2) q[F.cb] = static_cast<uint8_t>(cbv);
            if (hasCr && F.cr < 2) q[F.cr] = static_cast<uint8_t>(crv);
        }
    };
    View pass(int j) const { return {rowAt(base, step, j)}; }
};

// ============================================================ odd-column rules
// What happens to the columns past the last whole block of a row.
struct OddNone {  // left as they were
    template <class SRow, class DView>
    static void apply(const SRow&, const DView&, int, int) {}
};
template <class E>
struct OddRule {  // a block of one pixel (4:2:2, odd width)
    template <class SRow, class DView>
    static void apply(const SRow& s, const DView& d, int whole, int width) {
        if (whole == width) return;
        int px[4];
        s.get(whole, px);
        int y, cb, cr;
        E::one(px[0], px[1], px[2], y, cb, cr);
        d.putOdd(whole, y, cb, cr, E::HasCr);
    }
};
template <class Luma>
struct OddLuma {  // luma only, by the given form (4:1:1)
    template <class SRow, class DView>
    static void apply(const SRow& s, const DView& d, int whole, int width) {
        for (int x = whole; x < width; ++x) {
            int px[4];
            s.get(x, px);
            d.putY(0, x, Luma::one(px[0], px[1], px[2]));
        }
    }
};

// ============================================================ the encoder
// BW x BH: block shape. Span: the main-span rule. MY, MC: main luma and chroma
// forms; TYE, TYO: tail luma of even and odd columns; TC: tail chroma; Odd:
// the rule for columns past the last whole block.
template <int BW, int BH, int (*Span)(int), class MY, class MC, class TYE, class TYO, class TC, class Odd>
struct Encoder {
    static constexpr int kPix = BW * BH;
    static constexpr Block kBlock{BW, BH};

    // Pair sums of adjacent lanes (lo: pixels 0-7, hi: 8-15); quads for 4:1:1.
    // The sums wrap in 16 bits, which the forms read as unsigned.
    template <int N>
    static V across(V lo, V hi) {
        const V pairs = _mm_hadd_epi16(lo, N == 16 ? hi : lo);
        if constexpr (BW == 4) return _mm_hadd_epi16(pairs, pairs);
        return pairs;
    }

    // 16-pixel steps straight from the channel bytes, where the luma form
    // works on A14 and the chroma form on scaled sums: pmaddubsw gives the
    // samples << 7 of the even and the odd pixels and the pair sums << e.
    static constexpr bool kFromBytes = BW == 2 && HasFromA14<MY>::value && HasScaled<MC>::value;

    template <class SRow, class DView>
    static void step16FromBytes(const SRow (&s)[BH], const DView& d, int x) {
        constexpr int e = kMeanShift<kPix>;
        V yeo[BH];
        V sum[3];
        Px pxs[BH];
        load16(s, x, pxs);
        for (int k = 0; k < BH; ++k) {
            const Px& px = pxs[k];
            readAhead(s[k], x);
            Neg7 ev[3], od[3];
            for (int c = 0; c < 3; ++c) {
                ev[c] = {evenNeg7(px.c[c])};
                od[c] = {oddNeg7(px.c[c])};
                // pairs << e over BH rows: the block's sum << e, at most 4 x 255 << 5
                const V pr = pairSumsShl<e>(px.c[c]);
                sum[c] = k == 0 ? pr : add16(sum[c], pr);
            }
            yeo[k] = clampU8(MY::fromA14(a14(ev[0], ev[1], ev[2])), MY::fromA14(a14(od[0], od[1], od[2])));
        }
        V cb, cr;
        MC::scaled(sum[0], sum[1], sum[2], cb, cr);
        d.storeEvenOdd16(x, yeo, clampU8(cb, cr));
    }

    // One vector step of N pixels at column x.
    template <int N, class SRow, class DView>
    static void step(const SRow (&s)[BH], const DView& d, int x) {
        if constexpr (N == 16 && kFromBytes) {
            step16FromBytes(s, d, x);
            return;
        }
        constexpr int H = N == 16 ? 2 : 1;  // 16-bit halves
        V ch[BH][3][2];
        V yb[BH];
        for (int k = 0; k < BH; ++k) {
            if constexpr (N == 16 && ycbcr::HasWords<SRow>::value) {
                // 16 pixels straight into 16-bit lanes
                V lo[3], hi[3];
                s[k].loadWords(x, lo, hi);
                for (int c = 0; c < 3; ++c) {
                    ch[k][c][0] = lo[c];
                    ch[k][c][1] = hi[c];
                }
            } else {
                Px px;
                s[k].template load<N>(x, px);
                for (int c = 0; c < 3; ++c) {
                    ch[k][c][0] = widenLo(px.c[c]);
                    ch[k][c][1] = H == 2 ? widenHi(px.c[c]) : ch[k][c][0];
                }
            }
            const V y0 = MY::vec(ch[k][0][0], ch[k][1][0], ch[k][2][0]);
            const V y1 = H == 2 ? MY::vec(ch[k][0][1], ch[k][1][1], ch[k][2][1]) : y0;
            yb[k] = clampU8(y0, y1);
        }
        // column sums of the pass's rows, then across the block
        V col[4][2];  // R, G, B, luma term
        for (int h = 0; h < H; ++h) {
            for (int c = 0; c < 3; ++c) {
                col[c][h] = ch[0][c][h];
                if constexpr (BH == 2) col[c][h] = add16(col[c][h], ch[1][c][h]);
            }
            using YT = typename MC::YTerm;
            col[3][h] = YT::vterm(ch[0][0][h], ch[0][1][h], ch[0][2][h]);
            if constexpr (BH == 2) col[3][h] = add16(col[3][h], YT::vterm(ch[1][0][h], ch[1][1][h], ch[1][2][h]));
        }
        BlockSumsV bs{};
        bs.sr = across<N>(col[0][0], col[0][H - 1]);
        bs.sg = across<N>(col[1][0], col[1][H - 1]);
        bs.sb = across<N>(col[2][0], col[2][H - 1]);
        bs.yq = across<N>(col[3][0], col[3][H - 1]);
        if constexpr (MC::NeedsX) {
            static_assert(BH == 1, "stretched sums in one row");
            bs.xr = across<N>(stretch10(ch[0][0][0]), stretch10(ch[0][0][H - 1]));
            bs.xb = across<N>(stretch10(ch[0][2][0]), stretch10(ch[0][2][H - 1]));
        }
        V cb, cr;
        MC::template vec<kPix>(bs, cb, cr);
        d.template store<N>(x, yb, clampU8(cb, cb), clampU8(cr, cr));
    }

    // One block through the tail forms; x0 its first column.
    template <class SRow, class DView>
    static void tailBlock(const SRow (&s)[BH], const DView& d, int x0) {
        BlockSums bs{};
        for (int k = 0; k < BH; ++k)
            for (int i = 0; i < BW; ++i) {
                const int x = x0 + i;
                int px[4];
                s[k].get(x, px);
                const int y = (x & 1) ? TYO::one(px[0], px[1], px[2]) : TYE::one(px[0], px[1], px[2]);
                d.putY(k, x, y);
                bs.sr += px[0];
                bs.sg += px[1];
                bs.sb += px[2];
                bs.yq += TC::YTerm::term(px[0], px[1], px[2]);
                bs.xr += stretch10(px[0]);
                bs.xb += stretch10(px[2]);
            }
        int cb, cr;
        TC::template one<kPix>(bs, cb, cr);
        d.putC(x0, cb, cr);
    }

    // One pass: the source rows of one chroma row.
    template <class SRow, class DView>
    static void pass(const SRow (&s)[BH], const DView& d, int width) {
        const int whole = spanAll(kBlock, width);
        const int span = Span(width);
        int x = 0;
        if constexpr (HasVec<MY>::value) {
            for (; x + 16 <= span; x += 16) step<16>(s, d, x);
            for (; x + 8 <= span; x += 8) step<8>(s, d, x);
            if constexpr (BW == 2)
                for (; x + 4 <= span; x += 4) step<4>(s, d, x);
        }
        for (; x < whole; x += BW) tailBlock(s, d, x);
        Odd::apply(s[0], d, whole, width);
    }

    // Region driver: H / BH passes; an odd last row of a 4:2:0 region is left alone.
    template <class Src, class Dst>
    static void region(const Src& src, const Dst& dst, kroiSize roi) {
        const int passes = roi.height / BH;
        for (int j = 0; j < passes; ++j) {
            typename Src::Row rows[BH];
            for (int k = 0; k < BH; ++k) rows[k] = src.row(BH * j + k);
            pass(rows, dst.pass(j), roi.width);
        }
    }
};

// ============================================================ entry checks
// The orders of the encoders' checks. Null covers the image addresses (all
// three of a semi-planar side); deep null also the elements of plane arrays.
enum class CheckOrder {
    DeepNullSize,      // null and deep null (-8), size (-6)
    NullSize,          // null (-8), size (-6)
    NullSizeDeepNull,  // null (-8), size (-6), deep null (-8)
};

template <CheckOrder O, class DeepNull>
inline KroStatus checkEntry(bool nullTop, const DeepNull& nullDeep, kroiSize roi, int minW, int minH) {
    if (nullTop) return kroStatusNullPointer;
    if (O == CheckOrder::DeepNullSize && nullDeep()) return kroStatusNullPointer;
    if (badSize(roi, minW, minH)) return kroStatusBadSize;
    if (O == CheckOrder::NullSizeDeepNull && nullDeep()) return kroStatusNullPointer;
    return kroStatusOk;
}

// Interleaved and planar RGB sources, in the model's channel order.
using SrcRGB = ycbcr::SrcC3Blend<false>;  // 16 pixels gathered by blends
using SrcBGR = ycbcr::SrcC3Blend<true>;
using SrcRGBx = SrcC8<4, false>;  // fourth sample never read into a result
using SrcBGRx = SrcC8<4, true>;
using SrcRGBPlanes = SrcP8<3>;

}  // namespace kro::sub
