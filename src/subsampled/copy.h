// Whole-row and whole-plane byte copies shared by the repackers, the filtered
// and interlaced chroma forms and the plane resamplers. Every path copies the
// same bytes; the choice between them (cache-bypassing stores or not) only
// changes speed.
#pragma once

#include <cpuid.h>
#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

#include "krocc.h"

namespace kro::sub {

// ------------------------------------------------------------ line copy
// Copies n bytes. Below 64 bytes a plain byte loop; otherwise 16 bytes to the
// unaligned start, then 64 bytes a step from the destination's first 16-byte
// boundary, then 16 at a time and a last (overlapping) 16 bytes at the end.
// With `bypass` set the 64-byte steps use non-temporal stores, unless the
// source lies 16 to 320 bytes below the destination modulo 64 KiB (where the
// streamed lines would alias the loads ahead), and end with a store fence.
inline void lineCopy(const Kro8u* src, Kro8u* dst, std::ptrdiff_t n, bool bypass) {
    if (n < 64) {
        for (std::ptrdiff_t i = 0; i < n; ++i) dst[i] = src[i];
        return;
    }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst),
                     _mm_loadu_si128(reinterpret_cast<const __m128i*>(src)));
    std::ptrdiff_t i = static_cast<std::ptrdiff_t>((16 - (reinterpret_cast<std::uintptr_t>(dst) & 15)) & 15);
    const unsigned lag =
        static_cast<unsigned>((reinterpret_cast<std::uintptr_t>(src) - reinterpret_cast<std::uintptr_t>(dst)) & 0xFFFF);
    const bool stream = bypass && (lag == 0 || lag < 65216 || lag > 65520);
    const bool srcAligned = ((reinterpret_cast<std::uintptr_t>(src + i)) & 15) == 0;
    auto load = [&](std::ptrdiff_t k) {
        const __m128i* p = reinterpret_cast<const __m128i*>(src + k);
        return srcAligned ? _mm_load_si128(p) : _mm_loadu_si128(p);
    };
    for (; i + 64 <= n; i += 64) {
        const __m128i a = load(i), b = load(i + 16), c = load(i + 32), d = load(i + 48);
        __m128i* q = reinterpret_cast<__m128i*>(dst + i);
        if (stream) {
            _mm_stream_si128(q, a);
            _mm_stream_si128(q + 1, b);
            _mm_stream_si128(q + 2, c);
            _mm_stream_si128(q + 3, d);
        } else {
            _mm_store_si128(q, a);
            _mm_store_si128(q + 1, b);
            _mm_store_si128(q + 2, c);
            _mm_store_si128(q + 3, d);
        }
    }
    if (stream) _mm_sfence();
    for (; i + 16 <= n; i += 16) _mm_store_si128(reinterpret_cast<__m128i*>(dst + i), load(i));
    if (i < n)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + n - 16),
                         _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + n - 16)));
}

// ------------------------------------------------------------ largest cache size
// From the cache descriptors of identification leaf 2, on the one vendor that
// defines them, when a single call of the leaf reports them all. The table runs
// from the largest size down; the first descriptor of the table among those
// reported wins. A code byte gives the size as (code >> 4) << ((code & 15) + 18).
struct CacheDescriptor {
    unsigned char descriptor, code;
};
inline constexpr CacheDescriptor kCacheDescriptors[43] = {
    {0xEC, 0x35},                                                                         // 24 MiB
    {0xEB, 0x93},                                                                         // 18 MiB
    {0x4D, 0x16},                                                                         // 16 MiB
    {0xEA, 0x34}, {0x4C, 0x34},                                                           // 12 MiB
    {0xE4, 0x15}, {0xDE, 0x15}, {0x4B, 0x15}, {0x47, 0x15},                               // 8 MiB
    {0x4E, 0x33}, {0x4A, 0x33},                                                           // 6 MiB
    {0xE3, 0x14}, {0xDD, 0x14}, {0xD8, 0x14}, {0x49, 0x14}, {0x29, 0x14}, {0x46, 0x14},   // 4 MiB
    {0x48, 0x32},                                                                         // 3 MiB
    {0xE2, 0x13}, {0xDC, 0x13}, {0xD7, 0x13}, {0xD2, 0x13},                               // 2 MiB
    {0x25, 0x13}, {0x7D, 0x13}, {0x85, 0x13}, {0x45, 0x13},                               //
    {0xD6, 0x12}, {0xD1, 0x12}, {0x23, 0x12}, {0x87, 0x12},                               // 1 MiB
    {0x7C, 0x12}, {0x78, 0x12}, {0x84, 0x12}, {0x44, 0x12},                               //
    {0xD0, 0x11}, {0x22, 0x11}, {0x7B, 0x11}, {0x80, 0x11}, {0x86, 0x11},                 // 512 KiB
    {0x3E, 0x11}, {0x7F, 0x11}, {0x83, 0x11}, {0x43, 0x11},                               //
};

constexpr long long cacheSizeOfCode(unsigned char code) {
    return static_cast<long long>(code >> 4) << ((code & 15) + 18);
}

// The size from the four registers of one leaf-2 call; 0 when no descriptor is
// known or the leaf needs more than one call.
inline long long cacheSizeFromLeaf2(const unsigned reg[4]) {
    if ((reg[0] & 0xFF) != 1) return 0;
    unsigned char seen[16] = {};
    int n = 0;
    for (int r = 0; r < 4; ++r) {
        if (reg[r] & 0x80000000u) continue;
        for (int b = (r == 0 ? 1 : 0); b < 4; ++b) seen[n++] = static_cast<unsigned char>(reg[r] >> (8 * b));
    }
    for (const CacheDescriptor& d : kCacheDescriptors)
        for (int k = 0; k < n; ++k)
            if (seen[k] == d.descriptor) return cacheSizeOfCode(d.code);
    return 0;
}

// Largest cache size in bytes, or 0 when not found.
inline long long largestCacheSize() {
    unsigned a, b, c, d;
    if (!__get_cpuid(0, &a, &b, &c, &d) || a < 2) return 0;
    // "GenuineIntel" in EBX, EDX, ECX
    if (b != 0x756E6547u || d != 0x49656E69u || c != 0x6C65746Eu) return 0;
    unsigned reg[4];
    __cpuid(2, reg[0], reg[1], reg[2], reg[3]);
    return cacheSizeFromLeaf2(reg);
}

// ------------------------------------------------------------ plane copy
// Whether a plane of n bytes in rows of rowBytes goes through cache-bypassing
// stores, given the largest cache size (0: not known).
constexpr bool planeCopyBypasses(long long n, long long rowBytes, long long cacheSize) {
    if (n > 0x7FFFFFFFLL) return true;
    return rowBytes >= 64 && n > 131072 && cacheSize > 0 && n > cacheSize / 2;
}

namespace detail {

// Plain row: bytes below 16; else the destination aligned by 1, 2, 4 and 8
// byte steps, 128 bytes a step, then 16 at a time and single bytes.
inline void planeRowPlain(const Kro8u* s, Kro8u* d, std::ptrdiff_t n) {
    if (n < 16) {
        for (std::ptrdiff_t i = 0; i < n; ++i) d[i] = s[i];
        return;
    }
    std::ptrdiff_t i = 0;
    for (int k = 1; k <= 8; k *= 2)
        if (reinterpret_cast<std::uintptr_t>(d + i) & k)
            for (int b = 0; b < k; ++b, ++i) d[i] = s[i];
    for (; i + 128 <= n; i += 128)
        for (int k = 0; k < 128; k += 16)
            _mm_store_si128(reinterpret_cast<__m128i*>(d + i + k),
                            _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + k)));
    for (; i + 16 <= n; i += 16)
        _mm_store_si128(reinterpret_cast<__m128i*>(d + i), _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i)));
    for (; i < n; ++i) d[i] = s[i];
}

// Bypassing row: single bytes up to the destination's 64-byte boundary, 64
// bytes a step with non-temporal stores, then single bytes.
inline void planeRowStream(const Kro8u* s, Kro8u* d, std::ptrdiff_t n) {
    std::ptrdiff_t i = 0;
    for (; i < n && (reinterpret_cast<std::uintptr_t>(d + i) & 63); ++i) d[i] = s[i];
    for (; i + 64 <= n; i += 64)
        for (int k = 0; k < 64; k += 16)
            _mm_stream_si128(reinterpret_cast<__m128i*>(d + i + k),
                             _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + k)));
    for (; i < n; ++i) d[i] = s[i];
}

}  // namespace detail

// An 8-bit region copy of width bytes by height rows, with the checks of a
// plain region operation: null (-8), then width and height at least 1 (-6).
// Steps equal to the width make the plane one row of width x height bytes.
inline KroStatus planeCopy(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, int width, int height) {
    if (pSrc == nullptr || pDst == nullptr) return kroStatusNullPointer;
    if (width < 1 || height < 1) return kroStatusBadSize;
    const long long n = static_cast<long long>(width) * height;
    long long rowBytes = width;
    int rows = height;
    if (srcStep == width && dstStep == width) {
        rowBytes = n;
        rows = 1;
    }
    bool bypass = n > 0x7FFFFFFFLL;
    if (!bypass && rowBytes >= 64 && n > 131072) bypass = planeCopyBypasses(n, rowBytes, largestCacheSize());
    for (int y = 0; y < rows; ++y) {
        const Kro8u* s = pSrc + static_cast<std::ptrdiff_t>(y) * srcStep;
        Kro8u* d = pDst + static_cast<std::ptrdiff_t>(y) * dstStep;
        if (bypass)
            detail::planeRowStream(s, d, static_cast<std::ptrdiff_t>(rowBytes));
        else
            detail::planeRowPlain(s, d, static_cast<std::ptrdiff_t>(rowBytes));
    }
    if (bypass) _mm_sfence();
    return kroStatusOk;
}

}  // namespace kro::sub
