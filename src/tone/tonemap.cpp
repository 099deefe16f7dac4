// Tone mapping of a one-channel float image to 8 bits by one scale: the image
// maximum to 255 (linear), or twice the image mean to 255 (mean). Two passes:
// measure, then convert. Entry: null (-8), size (-6); no step is tested. A
// measure below 0 returns kroStatusNothingDone with the destination as it was;
// a measure not above the smallest normal float fills the region with zeros.
#include <cfloat>
#include <cstdint>
#include <cstring>

#include "frame/forms_typed.h"
#include "frame/region.h"
#include "impl_decls.h"
#include "tone/cache_size.h"

using namespace kro;

namespace {

// One float from an address that may sit anywhere (rows step by bytes).
inline float sampleAt(const float* p, int x) {
    float f;
    std::memcpy(&f, p + x, sizeof f);
    return f;
}
inline VF loadOne(const float* p) {
    float f;
    std::memcpy(&f, p, sizeof f);
    return _mm_set_ss(f);
}


const float* rowAtByte(const Kro32f* p, int y, int step) {
    return reinterpret_cast<const float*>(reinterpret_cast<const char*>(p) + static_cast<std::ptrdiff_t>(y) * step);
}

// ------------------------------------------------------------ region fill
// Ordinary or non-temporal 16-byte stores of one byte value.
template <bool Stream>
inline void store16Aligned(uint8_t* p, V v) {
    if constexpr (Stream) _mm_stream_si128(reinterpret_cast<V*>(p), v);
    else _mm_store_si128(reinterpret_cast<V*>(p), v);
}

// One row of n bytes: an unaligned 16-byte store at its start when it has 64
// bytes or more and starts off alignment, then 64 bytes a step at aligned
// addresses, then 16-byte stores and single bytes.
template <bool Stream>
void fillRow(uint8_t* p, size_t n, uint8_t value) {
    const V v = _mm_set1_epi8(static_cast<char>(value));
    if (n >= 64) {
        const size_t mis = reinterpret_cast<uintptr_t>(p) & 15;
        if (mis) {
            _mm_storeu_si128(reinterpret_cast<V*>(p), v);
            p += 16 - mis;
            n -= 16 - mis;
        }
        for (; n >= 64; p += 64, n -= 64) {
            store16Aligned<Stream>(p, v);
            store16Aligned<Stream>(p + 16, v);
            store16Aligned<Stream>(p + 32, v);
            store16Aligned<Stream>(p + 48, v);
        }
    }
    for (; n >= 16; p += 16, n -= 16) _mm_storeu_si128(reinterpret_cast<V*>(p), v);
    for (; n > 0; ++p, --n) *p = value;
}

// The region of w x h bytes set to one value. Packed rows (step = width) are
// one row. Above 512 KiB, a region at least as large as the largest cache is
// written with non-temporal stores and a fence; the bytes are the same.
KroStatus fillRegion(uint8_t value, uint8_t* pDst, int dstStep, kroiSize roi) {
    size_t rowBytes = static_cast<size_t>(roi.width);
    int rows = roi.height;
    if (roi.width == dstStep) {
        rowBytes *= static_cast<size_t>(roi.height);
        rows = 1;
    }
    const long long total = static_cast<long long>(roi.width) * roi.height;
    bool stream = false;
    if (total > 524288) {
        int cacheBytes = 0;
        stream = core::kroGetMaxCacheSizeB(&cacheBytes) == 0 && total >= cacheBytes;
    }
    for (int y = 0; y < rows; ++y) {
        uint8_t* row = pDst + static_cast<std::ptrdiff_t>(y) * dstStep;
        if (stream) fillRow<true>(row, rowBytes, value);
        else fillRow<false>(row, rowBytes, value);
    }
    if (stream) _mm_sfence();
    return kroStatusOk;
}

// ------------------------------------------------------------ measures
// Largest sample: two vector accumulators, 8 samples a step, single samples
// after; the search starts from the most negative finite float.
float regionMax(const Kro32f* pSrc, int srcStep, kroiSize roi) {
    VF m0 = _mm_set1_ps(-FLT_MAX), m1 = m0;
    float m = -FLT_MAX;
    for (int y = 0; y < roi.height; ++y) {
        const float* p = rowAtByte(pSrc, y, srcStep);
        int x = 0;
        for (; x + 8 <= roi.width; x += 8) {
            m0 = _mm_max_ps(m0, _mm_loadu_ps(p + x));
            m1 = _mm_max_ps(m1, _mm_loadu_ps(p + x + 4));
        }
        for (; x < roi.width; ++x) m = _mm_cvtss_f32(_mm_max_ss(_mm_set_ss(m), loadOne(p + x)));
    }
    alignas(16) float l[4];
    _mm_store_ps(l, _mm_max_ps(m0, m1));
    for (float v : l) m = _mm_cvtss_f32(_mm_max_ss(_mm_set_ss(m), _mm_set_ss(v)));
    return m;
}

// Sum of one row in float lanes: four accumulators, the order of additions
// fixed by the row's address (see below), folded to two floats u and v.
struct RowSum {
    float u, v;
};
RowSum rowSum(const float* p, int n) {
    VF a = _mm_setzero_ps(), b = a, c = a, d = a;
    const uintptr_t at = reinterpret_cast<uintptr_t>(p);
    auto two = [](const float* q) { return _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const V*>(q))); };
    bool aligned = (at & 15) == 0;
    if (!aligned && (at & 3) == 0) {
        // 1, 2 or 3 samples to the next 16-byte boundary: two into lanes 0, 1
        // of A, one into lane 0 of B
        const int h = 4 - static_cast<int>((at & 15) >> 2);
        if (n >= h) {
            if (h >= 2) a = addF(a, two(p)), p += 2, n -= 2;
            if (h != 2) b = addF(b, loadOne(p)), p += 1, n -= 1;
        }
        aligned = true;
    }
    if (aligned) {
        for (; n >= 16; p += 16, n -= 16) {
            a = addF(a, _mm_loadu_ps(p));
            b = addF(b, _mm_loadu_ps(p + 4));
            c = addF(c, _mm_loadu_ps(p + 8));
            d = addF(d, _mm_loadu_ps(p + 12));
        }
        if (n >= 8) a = addF(a, _mm_loadu_ps(p)), b = addF(b, _mm_loadu_ps(p + 4)), p += 8, n -= 8;
        if (n >= 4) c = addF(c, _mm_loadu_ps(p)), p += 4, n -= 4;
    } else {
        // rows off the 4-byte grid: one accumulator
        for (; n >= 4; p += 4, n -= 4) a = addF(a, _mm_loadu_ps(p));
    }
    if (n >= 2) d = addF(d, two(p)), p += 2, n -= 2;
    if (n == 1) c = addF(c, loadOne(p));
    alignas(16) float t[4];
    _mm_store_ps(t, addF(addF(a, b), addF(c, d)));
    return {addF(t[0], t[2]), addF(t[1], t[3])};
}

// Image sum: rows in floats, across rows in a double (u, then v, per row).
double regionSum(const Kro32f* pSrc, int srcStep, kroiSize roi) {
    double s = 0.0;
    for (int y = 0; y < roi.height; ++y) {
        const RowSum r = rowSum(rowAtByte(pSrc, y, srcStep), roi.width);
        s = addF(s, static_cast<double>(r.u));
        s = addF(s, static_cast<double>(r.v));
    }
    return s;
}

// ------------------------------------------------------------ conversion forms
// x s as a float product, truncated to an integer; then the low 8 bits
// (linear) or clampU8 (mean; an out-of-range truncation is negative and gives 0).
template <bool Saturate>
struct ToneForm {
    float s;
    VF sv;
    uint8_t one(float x) const {
        const int t = truncToInt(mulF(x, s));
        return static_cast<uint8_t>(Saturate ? clampU8(t) : (t & 0xff));
    }
    // 16 samples to 16 bytes
    V vec(const float* p) const {
        V t[4];
        for (int k = 0; k < 4; ++k) {
            t[k] = truncToInt(mulF(_mm_loadu_ps(p + 4 * k), sv));
            if constexpr (!Saturate) t[k] = _mm_and_si128(t[k], _mm_set1_epi32(0xff));
        }
        if constexpr (Saturate)
            return _mm_packus_epi16(_mm_packs_epi32(t[0], t[1]), _mm_packs_epi32(t[2], t[3]));
        else
            return _mm_packus_epi16(_mm_packus_epi32(t[0], t[1]), _mm_packus_epi32(t[2], t[3]));
    }
};

// Row kernel: single pixels to a 16-byte-aligned destination, 16 a step, single
// pixels after. Pairs of single pixels where destination and source may meet.
template <class Form>
void toneRow(const Form& f, const float* s, uint8_t* d, int width, bool pairs) {
    int x = 0;
    if (pairs) {
        for (; x + 2 <= width; x += 2) {
            const uint8_t a = f.one(sampleAt(s, x)), b = f.one(sampleAt(s, x + 1));
            d[x] = a, d[x + 1] = b;
        }
    } else {
        const int head = static_cast<int>((16 - (reinterpret_cast<uintptr_t>(d) & 15)) & 15);
        for (; x < head && x < width; ++x) d[x] = f.one(sampleAt(s, x));
        for (; x + 16 <= width; x += 16) _mm_store_si128(reinterpret_cast<V*>(d + x), f.vec(s + x));
    }
    for (; x < width; ++x) d[x] = f.one(sampleAt(s, x));
}

// Region driver: each source row at its byte offset y x srcStep rounded down
// to whole samples (a step off the 4-byte grid moves rows by whole floats).
template <class Form>
void toneRegion(const Form& f, const Kro32f* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roi) {
    // does the destination's span reach into the first source row?
    const intptr_t d0 = reinterpret_cast<intptr_t>(pDst);
    const intptr_t dLast = d0 + static_cast<intptr_t>(roi.height - 1) * dstStep;
    const intptr_t dLo = (dLast < d0 ? dLast : d0), dHi = (dLast < d0 ? d0 : dLast) + roi.width;
    const intptr_t s0 = reinterpret_cast<intptr_t>(pSrc), s1 = s0 + 4 * static_cast<intptr_t>(roi.width);
    const bool pairs = roi.width > dstStep || (dLo < s1 && dHi > s0);
    for (int y = 0; y < roi.height; ++y)
        toneRow(f, pSrc + ((static_cast<std::ptrdiff_t>(y) * srcStep) >> 2), pDst + static_cast<std::ptrdiff_t>(y) * dstStep,
                roi.width, pairs);
}

constexpr float kMinNormal = 1.17549435e-38f;  // 0x00800000

}  // namespace

KroStatus impl_kroiToneMapLinear_32f8u_C1R(const Kro32f* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                           kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    const float m = regionMax(pSrc, srcStep, roiSize);
    if (m < 0.0f) return kroStatusNothingDone;
    if (!(m > kMinNormal)) return fillRegion(0, pDst, dstStep, roiSize);
    const float s = 255.0f / m;
    toneRegion(ToneForm<false>{s, _mm_set1_ps(s)}, pSrc, srcStep, pDst, dstStep, roiSize);
    return kroStatusOk;
}

KroStatus impl_kroiToneMapMean_32f8u_C1R(const Kro32f* pSrc, int srcStep, Kro8u* pDst, int dstStep,
                                         kroiSize roiSize) {
    if (anyNull(pSrc, pDst)) return kroStatusNullPointer;
    if (badSize(roiSize)) return kroStatusBadSize;
    const double sum = regionSum(pSrc, srcStep, roiSize);
    // the pixel count as a 32-bit product (it wraps past 2^31 - 1 pixels)
    const int count = static_cast<int>(static_cast<uint32_t>(roiSize.width) * static_cast<uint32_t>(roiSize.height));
    const double mean = sum / static_cast<double>(count);
    const double m2 = addF(mean, mean);
    if (m2 < 0.0) return kroStatusNothingDone;
    if (!(m2 > static_cast<double>(kMinNormal))) return fillRegion(0, pDst, dstStep, roiSize);
    const float s = static_cast<float>(255.0 / m2);
    toneRegion(ToneForm<true>{s, _mm_set1_ps(s)}, pSrc, srcStep, pDst, dstStep, roiSize);
    return kroStatusOk;
}
