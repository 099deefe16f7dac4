// One-bit output: an 8-bit grey image to a bilevel image packed eight pixels a
// byte, most significant bit first, from a bit offset in each row's first
// byte. By a fixed threshold (selector 0; vector compares, 16 then 8 pixels a
// byte-aligned step) or by Stucki error diffusion in integers (selector 3; a
// plain loop). Bits outside the region keep their values.
#include "bitdepth/reduce_frame.h"
#include "frame/region.h"
#include "impl_decls.h"

using namespace kro;
using namespace kro::reduce;

namespace {

// The pixel at bit position pos of a row: set or clear its bit alone.
inline void putBit(uint8_t* row, int64_t pos, bool on) {
    uint8_t& b = row[pos >> 3];
    const uint8_t m = static_cast<uint8_t>(0x80u >> (pos & 7));
    b = on ? static_cast<uint8_t>(b | m) : static_cast<uint8_t>(b & ~m);
}

// ------------------------------------------------------------ fixed threshold
// bit = sample > threshold, as unsigned bytes
inline bool above(uint8_t s, uint8_t t) { return s > t; }
// 16 samples to 16 bits, pixel 0 in bit 7 of the low byte: a byte-reversing
// shuffle within each half, then the sign mask.
inline int above(V s, V t) {
    const V gt = _mm_xor_si128(_mm_cmpeq_epi8(_mm_subs_epu8(s, t), _mm_setzero_si128()), _mm_set1_epi8(-1));
    const V rev = _mm_setr_epi8(7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8);
    return _mm_movemask_epi8(_mm_shuffle_epi8(gt, rev));
}

void thresholdRow(const uint8_t* s, uint8_t* d, int o, int width, uint8_t t) {
    // pixels up to the first byte boundary one at a time
    const int head = o > 0 ? (8 - o < width ? 8 - o : width) : 0;
    int x = 0;
    for (; x < head; ++x) putBit(d, o + x, above(s[x], t));
    uint8_t* out = d + ((o + x) >> 3);
    const V tv = _mm_set1_epi8(static_cast<char>(t));
    for (; x + 16 <= width; x += 16, out += 2) {
        const int m = above(_mm_loadu_si128(reinterpret_cast<const V*>(s + x)), tv);
        out[0] = static_cast<uint8_t>(m);
        out[1] = static_cast<uint8_t>(m >> 8);
    }
    for (; x + 8 <= width; x += 8, ++out)
        out[0] = static_cast<uint8_t>(above(_mm_loadl_epi64(reinterpret_cast<const V*>(s + x)), tv));
    for (; x < width; ++x) putBit(d, o + x, above(s[x], t));
}

// ------------------------------------------------------------ Stucki in integers
// Error cells count eight units a sample step; white leaves 2047 on that scale.
void stuckiRegion(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, int o, kroiSize roi, uint8_t threshold,
                  uint8_t* buffer) {
    const int width = roi.width, len = width + 4;
    auto* cells = reinterpret_cast<int32_t*>(alignedBase(buffer));
    for (int64_t i = 0; i < 3LL * len; ++i) cells[i] = 0;
    int32_t* A = cells + 2;  // guards at -2, -1, width, width + 1
    int32_t* B = cells + len + 2;
    int32_t* C = cells + 2 * len + 2;
    const uint32_t limit = static_cast<uint32_t>(threshold) << 13;
    for (int y = 0; y < roi.height; ++y) {
        const uint8_t* s = src + static_cast<std::ptrdiff_t>(y) * srcStep;
        uint8_t* d = dst + static_cast<std::ptrdiff_t>(y) * dstStep;
        for (int x = 0; x < width; ++x) {
            // 32-bit words that wrap, as the sums are defined
            const uint32_t W = (uint32_t(A[x - 2]) + uint32_t(A[x + 2])) + 8u * (uint32_t(B[x]) + uint32_t(C[x - 1])) +
                               4u * (uint32_t(A[x]) + uint32_t(B[x - 1]) + uint32_t(B[x + 1]) + uint32_t(C[x - 2])) +
                               2u * (uint32_t(A[x - 1]) + uint32_t(A[x + 1]) + uint32_t(B[x - 2]) + uint32_t(B[x + 2]));
            const int32_t acc = static_cast<int32_t>((uint32_t(s[x]) << 13) + 23u * W);
            int32_t e = acc >> 10;
            const bool on = acc > static_cast<int32_t>(limit);
            if (on) e -= 2047;
            C[x] = e;
            putBit(d, o + x, on);
        }
        int32_t* oldA = A;
        A = B;
        B = C;
        C = oldA;
    }
}

}  // namespace

KroStatus impl_kroiReduceBits_8u1u_C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, int dstBitOffset,
                                       kroiSize roiSize, int reserved1, int reserved2, KroDitherType ditherType,
                                       Kro8u threshold, Kro8u* pBuffer) {
    (void)reserved1;
    (void)reserved2;
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize) || dstBitOffset < 0) return kroStatusBadSize;
    int sel;
    std::memcpy(&sel, &ditherType, sizeof sel);
    if (sel != kroiDitherNone && sel != kroiDitherStucki) return kroStatusBadDitherType;
    const int o = dstBitOffset & 7;  // pDst is never moved by whole bytes
    if (sel == kroiDitherStucki) {
        if (pBuffer == nullptr) return kroStatusNullPointer;
        stuckiRegion(pSrc, srcStep, pDst, dstStep, o, roiSize, threshold, pBuffer);
        return kroStatusOk;
    }
    for (int y = 0; y < roiSize.height; ++y)
        thresholdRow(pSrc + static_cast<std::ptrdiff_t>(y) * srcStep, pDst + static_cast<std::ptrdiff_t>(y) * dstStep, o,
                     roiSize.width, threshold);
    return kroStatusOk;
}
