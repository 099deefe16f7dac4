// Raw sensor reconstruction: what every demosaicing operation shares.
//
// - Sites: the colour at an image position from the grid selector. The pattern
//   is anchored at the image origin, never at the region.
// - Image addressing: the source address is the image's top left sample, the
//   destination address the region's top left pixel; the region is a kroiRect
//   in image coordinates, cut at the image's edges.
// - Lanes: integer vectors of one pixel a lane (16-bit lanes for 8u data, 32-bit
//   lanes for 16u data) with the few operations the reconstructions use, and
//   their scalar counterparts on int, so a form is written once as a template
//   over its number type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/forms.h"
#include "frame/layout_typed.h"
#include "krocc.h"

namespace kro::raw {

// ------------------------------------------------------------ sites
enum Colour : int { Red = 0, Green = 1, Blue = 2 };

// Colour at (x, y): grid names the colours of (0,0), (1,0), (0,1), (1,1).
inline Colour siteColour(int grid, int x, int y) {
    static constexpr Colour kCell[4][4] = {
        {Blue, Green, Green, Red},   // BGGR
        {Red, Green, Green, Blue},   // RGGB
        {Green, Blue, Red, Green},   // GBRG
        {Green, Red, Blue, Green},   // GRBG
    };
    return kCell[grid][(x & 1) + 2 * (y & 1)];
}
inline bool isGreen(int grid, int x, int y) { return siteColour(grid, x, y) == Green; }
// The chroma (red or blue) that row y holds beside its greens.
inline Colour rowChroma(int grid, int y) {
    const Colour a = siteColour(grid, 0, y);
    return a == Green ? siteColour(grid, 1, y) : a;
}
inline Colour otherChroma(Colour c) { return c == Red ? Blue : Red; }
inline bool gridValid(int grid) { return grid >= 0 && grid <= 3; }

// ------------------------------------------------------------ image addressing
// A source image with a byte step: S(x, y).
template <class T>
struct Image {
    const uint8_t* base;
    int step;  // bytes
    const T* row(int y) const { return reinterpret_cast<const T*>(base + static_cast<std::ptrdiff_t>(y) * step); }
    int at(int x, int y) const { return loadSample(row(y) + x); }
};

// A destination addressed in image coordinates: the pixel of (x, y) lies at
// base + (y - y0) step bytes + (x - x0) pixels.
template <class T, int Cn>
struct Dest {
    uint8_t* base;
    int step;  // bytes
    int x0, y0;
    T* px(int x, int y) const {
        return reinterpret_cast<T*>(base + static_cast<std::ptrdiff_t>(y - y0) * step) +
               static_cast<std::ptrdiff_t>(Cn) * (x - x0);
    }
};

// The part of a region that lies in the image, as half-open bounds in image
// coordinates. Positions before the image's left or top edge are cut as those
// past its right or bottom edge; the destination address keeps its meaning.
struct Span {
    int x0, y0, x1, y1;
    bool empty() const { return x1 <= x0 || y1 <= y0; }
};
inline Span clipToImage(kroiRect r, kroiSize img) {
    const int64_t ex = static_cast<int64_t>(r.x) + (r.width > 0 ? r.width : 0);
    const int64_t ey = static_cast<int64_t>(r.y) + (r.height > 0 ? r.height : 0);
    Span s;
    s.x0 = r.x < 0 ? 0 : r.x;
    s.y0 = r.y < 0 ? 0 : r.y;
    s.x1 = static_cast<int>(ex > img.width ? img.width : ex);
    s.y1 = static_cast<int>(ey > img.height ? img.height : ey);
    if (r.width < 1 || r.height < 1) s.x1 = s.x0, s.y1 = s.y0;
    return s;
}

// ------------------------------------------------------------ scalar numbers
inline int absN(int a) { return a < 0 ? -a : a; }
inline int minN(int a, int b) { return a < b ? a : b; }
inline int maxN(int a, int b) { return a > b ? a : b; }
inline int lessMask(int a, int b) { return a < b ? -1 : 0; }      // all ones where a < b
inline int equalMask(int a, int b) { return a == b ? -1 : 0; }
inline int select(int m, int a, int b) { return (a & m) | (b & ~m); }  // a where m, else b
inline int countMask(int m) { return m & 1; }                       // 1 where m
inline int srai(int a, int n) { return a >> n; }

// ------------------------------------------------------------ 16-bit lanes (8u data, 8 pixels)
struct L16 {
    V v;
    L16() = default;
    explicit L16(V x) : v(x) {}
    L16(int k) : v(_mm_set1_epi16(static_cast<short>(k))) {}  // NOLINT: constants mix in like ints
    static constexpr int N = 8, bytes = 2;
    static L16 load(const Kro8u* p) { return L16(_mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const V*>(p)))); }
    friend L16 operator+(L16 a, L16 b) { return L16(_mm_add_epi16(a.v, b.v)); }
    friend L16 operator-(L16 a, L16 b) { return L16(_mm_sub_epi16(a.v, b.v)); }
    friend L16 operator&(L16 a, L16 b) { return L16(_mm_and_si128(a.v, b.v)); }
    friend L16 operator|(L16 a, L16 b) { return L16(_mm_or_si128(a.v, b.v)); }
    friend L16 operator>>(L16 a, int n) { return L16(_mm_srai_epi16(a.v, n)); }
    friend L16 operator<<(L16 a, int n) { return L16(_mm_slli_epi16(a.v, n)); }
};
inline L16 absN(L16 a) { return L16(_mm_abs_epi16(a.v)); }
inline L16 minN(L16 a, L16 b) { return L16(_mm_min_epi16(a.v, b.v)); }
inline L16 maxN(L16 a, L16 b) { return L16(_mm_max_epi16(a.v, b.v)); }
inline L16 lessMask(L16 a, L16 b) { return L16(_mm_cmplt_epi16(a.v, b.v)); }
inline L16 equalMask(L16 a, L16 b) { return L16(_mm_cmpeq_epi16(a.v, b.v)); }
inline L16 select(L16 m, L16 a, L16 b) { return L16(_mm_blendv_epi8(b.v, a.v, m.v)); }
inline L16 countMask(L16 m) { return L16(_mm_srli_epi16(m.v, 15)); }

// ------------------------------------------------------------ 32-bit lanes (16u data, 4 pixels)
struct L32 {
    V v;
    L32() = default;
    explicit L32(V x) : v(x) {}
    L32(int k) : v(_mm_set1_epi32(k)) {}  // NOLINT: constants mix in like ints
    static constexpr int N = 4, bytes = 4;
    static L32 load(const Kro16u* p) { return L32(_mm_cvtepu16_epi32(_mm_loadl_epi64(reinterpret_cast<const V*>(p)))); }
    static L32 load(const Kro8u* p) {
        int w;
        std::memcpy(&w, p, 4);
        return L32(_mm_cvtepu8_epi32(_mm_cvtsi32_si128(w)));
    }
    friend L32 operator+(L32 a, L32 b) { return L32(_mm_add_epi32(a.v, b.v)); }
    friend L32 operator-(L32 a, L32 b) { return L32(_mm_sub_epi32(a.v, b.v)); }
    friend L32 operator*(L32 a, L32 b) { return L32(_mm_mullo_epi32(a.v, b.v)); }
    friend L32 operator&(L32 a, L32 b) { return L32(_mm_and_si128(a.v, b.v)); }
    friend L32 operator|(L32 a, L32 b) { return L32(_mm_or_si128(a.v, b.v)); }
    friend L32 operator>>(L32 a, int n) { return L32(_mm_srai_epi32(a.v, n)); }
    friend L32 operator<<(L32 a, int n) { return L32(_mm_slli_epi32(a.v, n)); }
};
inline L32 absN(L32 a) { return L32(_mm_abs_epi32(a.v)); }
inline L32 minN(L32 a, L32 b) { return L32(_mm_min_epi32(a.v, b.v)); }
inline L32 maxN(L32 a, L32 b) { return L32(_mm_max_epi32(a.v, b.v)); }
inline L32 lessMask(L32 a, L32 b) { return L32(_mm_cmplt_epi32(a.v, b.v)); }
inline L32 equalMask(L32 a, L32 b) { return L32(_mm_cmpeq_epi32(a.v, b.v)); }
inline L32 select(L32 m, L32 a, L32 b) { return L32(_mm_blendv_epi8(b.v, a.v, m.v)); }
inline L32 countMask(L32 m) { return L32(_mm_srli_epi32(m.v, 31)); }

// Lanes for a sample type: 8u data in 16-bit lanes, 16u data in 32-bit lanes
// (sums of four 16-bit samples need 18 bits).
template <class T>
struct LanesFor;
template <>
struct LanesFor<Kro8u> {
    using type = L16;
};
template <>
struct LanesFor<Kro16u> {
    using type = L32;
};

// A lane mask that alternates along the row: all ones in lanes of pixels
// x + i with (x + i + phase) even.
template <class L>
inline L alternating(int x, int phase) {
    const bool first = ((x + phase) & 1) == 0;
    if constexpr (L::bytes == 2)
        return L(first ? _mm_set1_epi32(0x0000FFFF) : _mm_set1_epi32(static_cast<int>(0xFFFF0000u)));
    else
        return L(first ? _mm_set_epi32(0, -1, 0, -1) : _mm_set_epi32(-1, 0, -1, 0));
}

}  // namespace kro::raw
