// 12-bit packing: 16-bit storage of 12-bit samples to a dense stream of two
// samples in three bytes, most significant bits first, and back.
//
//   byte 0 = A bits 11..4, byte 1 = A bits 3..0 : B bits 11..8, byte 2 = B bits 7..0
//
// A row of odd width ends in two bytes for its last sample (byte 1's low
// nibble 0). Rows start on their own bytes; steps are bytes on both sides.
// Entry: null (-8), size (-6), steps at least 1 (-16).
// Row kernel: 8 samples a step in a byte shuffle, then 4, then a pair, then
// the odd sample. Every step computes the same pair form: bits 12 to 15 of a
// 16-bit sample never reach the stream, so the bytes of a sample do not depend
// on its column, whatever the input.
#include <smmintrin.h>

#include <cstdint>
#include <cstring>

#include "frame/region.h"
#include "impl_decls.h"

using namespace kro;

namespace {

// ------------------------------------------------------------ unaligned scalar access
inline uint16_t load16(const uint8_t* p) {
    uint16_t v;
    std::memcpy(&v, p, 2);
    return v;
}
inline void store16(uint8_t* p, uint16_t v) { std::memcpy(p, &v, 2); }

// ------------------------------------------------------------ pair form, scalar
// Pack: one pair A, B to three bytes; the odd sample A to two.
inline void packPair(unsigned a, unsigned b, uint8_t* d) {
    d[0] = uint8_t(a >> 4);
    d[1] = uint8_t((a << 4) | ((b >> 8) & 15));
    d[2] = uint8_t(b);
}
inline void packLast(unsigned a, uint8_t* d) {
    d[0] = uint8_t(a >> 4);
    d[1] = uint8_t(a << 4);
}
// Unpack: three bytes to a pair; the last two bytes of an odd row to one sample.
inline void unpackPair(const uint8_t* s, uint16_t& a, uint16_t& b) {
    a = uint16_t((unsigned(s[0]) << 4) | (s[1] >> 4));
    b = uint16_t(((s[1] & 15u) << 8) | s[2]);
}
inline uint16_t unpackLast(const uint8_t* s) { return uint16_t((unsigned(s[0]) << 4) | (s[1] >> 4)); }

// ------------------------------------------------------------ pair form, SSE
// Pack: 16-bit samples (pairs in 32-bit lanes) to 24-bit words A:B in each
// lane, then a shuffle takes each lane's three bytes high byte first.
inline __m128i packPairs(__m128i v) {
    const __m128i m12 = _mm_set1_epi16(0x0FFF);
    v = _mm_and_si128(v, m12);
    const __m128i a = _mm_and_si128(v, _mm_set1_epi32(0xFFFF));
    const __m128i w = _mm_or_si128(_mm_slli_epi32(a, 12), _mm_srli_epi32(v, 16));
    const __m128i order = _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
    return _mm_shuffle_epi8(w, order);
}
// Unpack: each three-byte group to a 24-bit word in a 32-bit lane, then
// A = word >> 12 to the low half and B = word AND 0xFFF to the high half.
inline __m128i unpackPairs(__m128i bytes) {
    const __m128i order = _mm_setr_epi8(2, 1, 0, -1, 5, 4, 3, -1, 8, 7, 6, -1, 11, 10, 9, -1);
    const __m128i w = _mm_shuffle_epi8(bytes, order);
    const __m128i a = _mm_srli_epi32(w, 12);
    const __m128i b = _mm_slli_epi32(_mm_and_si128(w, _mm_set1_epi32(0x0FFF)), 16);
    return _mm_or_si128(a, b);
}

// Loads and stores of exactly the bytes a step owns (12 or 6 bytes of stream,
// 16 or 8 bytes of samples): nothing past a row's end is touched.
inline __m128i loadBytes12(const uint8_t* p) {
    int32_t hi;
    std::memcpy(&hi, p + 8, 4);
    return _mm_insert_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), hi, 2);
}
inline __m128i loadBytes6(const uint8_t* p) {
    int32_t lo;
    std::memcpy(&lo, p, 4);
    return _mm_insert_epi16(_mm_cvtsi32_si128(lo), load16(p + 4), 2);
}
inline void storeBytes12(uint8_t* p, __m128i v) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v);
    const int32_t hi = _mm_extract_epi32(v, 2);
    std::memcpy(p + 8, &hi, 4);
}
inline void storeBytes6(uint8_t* p, __m128i v) {
    const int32_t lo = _mm_cvtsi128_si32(v);
    std::memcpy(p, &lo, 4);
    store16(p + 4, uint16_t(_mm_extract_epi16(v, 2)));
}

// ------------------------------------------------------------ row kernels
// s: 16-bit samples (byte address, any alignment); d: the packed stream.
void packRow(const uint8_t* s, uint8_t* d, int width) {
    int x = 0;
    for (; x + 8 <= width; x += 8, s += 16, d += 12)
        storeBytes12(d, packPairs(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s))));
    if (x + 4 <= width) {
        storeBytes6(d, packPairs(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(s))));
        x += 4, s += 8, d += 6;
    }
    if (x + 2 <= width) {
        packPair(load16(s), load16(s + 2), d);
        x += 2, s += 4, d += 3;
    }
    if (x < width) packLast(load16(s), d);
}

void unpackRow(const uint8_t* s, uint8_t* d, int width) {
    int x = 0;
    for (; x + 8 <= width; x += 8, s += 12, d += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d), unpackPairs(loadBytes12(s)));
    if (x + 4 <= width) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(d), unpackPairs(loadBytes6(s)));
        x += 4, s += 6, d += 8;
    }
    if (x + 2 <= width) {
        uint16_t a, b;
        unpackPair(s, a, b);
        store16(d, a);
        store16(d + 2, b);
        x += 2, s += 3, d += 4;
    }
    if (x < width) store16(d, unpackLast(s));
}

// ------------------------------------------------------------ region driver
template <void (*Row)(const uint8_t*, uint8_t*, int)>
void region(const uint8_t* s, int srcStep, uint8_t* d, int dstStep, kroiSize roi) {
    for (int y = 0; y < roi.height; ++y)
        Row(s + std::ptrdiff_t(y) * srcStep, d + std::ptrdiff_t(y) * dstStep, roi.width);
}

// ------------------------------------------------------------ entry
template <void (*Row)(const uint8_t*, uint8_t*, int)>
KroStatus entry(const void* pSrc, int srcStep, void* pDst, int dstStep, kroiSize roi) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roi)) return kroStatusBadSize;
    if (srcStep < 1 || dstStep < 1) return kroStatusBadStep;
    region<Row>(static_cast<const uint8_t*>(pSrc), srcStep, static_cast<uint8_t*>(pDst), dstStep, roi);
    return kroStatusOk;
}

}  // namespace

KroStatus impl_kroiPack_16u12u_C1R(const Kro16u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize) {
    return entry<packRow>(pSrc, srcStep, pDst, dstStep, roiSize);
}
KroStatus impl_kroiUnpack_12u16u_C1R(const Kro8u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize) {
    return entry<unpackRow>(pSrc, srcStep, pDst, dstStep, roiSize);
}
