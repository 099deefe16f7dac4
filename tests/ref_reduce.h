// Plain reference of bit-depth reduction, written from the arithmetic as
// stated: single-precision expressions in their written order (no vector
// code), the noise generator from its recurrence, the error rows as plain
// arrays. Shares nothing with the library's kernels.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace ref {

// float to int towards zero; out of range (or NaN) gives the "indefinite" integer
inline int64_t truncF(float v) {
    if (!(v >= -2147483648.0f && v < 2147483648.0f)) return INT32_MIN;
    return static_cast<int64_t>(static_cast<int32_t>(v));
}
inline int64_t sat(int64_t v, int64_t lo, int64_t hi) { return v < lo ? lo : v > hi ? hi : v; }

// ------------------------------------------------------------ noise generator
struct NoiseGen {
    uint32_t lcg, lagA, lagB, lagC;
    int32_t borrow;
    double mean, scale;
    void seed(uint32_t s) {
        lagA = s;
        lagB = s * 69069u + 1013904243u;
        lagC = lagB * 69069u + 1013904243u;
        lcg = 1131199209u;
        borrow = -1;
    }
    // the next word w
    int32_t word() {
        lcg = lcg * 69069u + 1013904243u;
        int64_t t = static_cast<int64_t>(static_cast<int32_t>(lagB - lagC + static_cast<uint32_t>(borrow)));
        if (t < 0) {
            borrow = -1;
            t = static_cast<int32_t>(static_cast<uint32_t>(t) - 18u);
        } else {
            borrow = 0;
        }
        lagC = lagB;
        lagB = lagA;
        lagA = static_cast<uint32_t>(t);
        return static_cast<int32_t>(lagA + lcg);
    }
    double value() { return static_cast<double>(word()) * scale + mean; }
};
inline NoiseGen intGen(int low, int high, uint32_t s) {
    NoiseGen g;
    g.seed(s);
    g.mean = static_cast<double>(low + high) * 0.5;
    g.scale = static_cast<double>(high - low) * 2.3283064365386963e-10;
    return g;
}
inline NoiseGen floatGen(float low, float high, uint32_t s) {
    NoiseGen g;
    g.seed(s);
    const float sum = low + high, diff = high - low;
    g.mean = static_cast<double>(sum) * 0.5;
    g.scale = static_cast<double>(diff) * 2.3283064365386963e-10;
    return g;
}
inline int16_t intValue(NoiseGen& g) { return static_cast<int16_t>(static_cast<int32_t>(std::nearbyint(g.value()))); }
inline float floatValue(NoiseGen& g) { return static_cast<float>(g.value()); }

struct Tables {
    std::vector<float> noise;
    std::vector<uint16_t> index;
    float at(int x, int y) const { return noise[(index[x & 1023] + x + 2 * y) & 1023]; }
};
inline Tables tables(float low, float high) {
    Tables t;
    NoiseGen gi = intGen(0, 1024, 0);
    for (int i = 0; i < 1024; ++i) t.index.push_back(static_cast<uint16_t>(intValue(gi)));
    NoiseGen gf = floatGen(low, high, 0);
    for (int i = 0; i < 1024; ++i) t.noise.push_back(floatValue(gf));
    return t;
}

// ------------------------------------------------------------ buffer size
inline int64_t bufferSize(int width, int noise, int sel) {
    if (sel == 0) return 0;
    int64_t n = sel == 4 ? 0 : sel == 1 ? 8LL * width + 16 : 12LL * width + 48;
    if (noise > 0) n += 6144 + 128;
    return n > 0 ? n + 64 : 0;
}

// ------------------------------------------------------------ pairs
enum PairId { R8u, R16u8u, R16s8u, R32f8u, R16u, R16s, R32f16u, R32f16s };
struct PairDesc {
    PairId id;
    int srcSize, dstSize;  // bytes a sample
    bool srcSigned, srcFloat, dstSigned;
    int maxLevels;
};
inline PairDesc desc(PairId id) {
    switch (id) {
        case R8u: return {id, 1, 1, false, false, false, 256};
        case R16u8u: return {id, 2, 1, false, false, false, 256};
        case R16s8u: return {id, 2, 1, true, false, false, 256};
        case R32f8u: return {id, 4, 1, false, true, false, 256};
        case R16u: return {id, 2, 2, false, false, false, 65536};
        case R16s: return {id, 2, 2, true, false, true, 65536};
        case R32f16u: return {id, 4, 2, false, true, false, 65536};
        default: return {id, 4, 2, false, true, true, 65536};
    }
}

// A sample as stored, as a number (float sources as their value)
inline float readSrc(const PairDesc& p, const uint8_t* at) {
    if (p.srcFloat) {
        float f;
        std::memcpy(&f, at, 4);
        return f;
    }
    if (p.srcSize == 1) return static_cast<float>(*at);
    if (p.srcSigned) {
        int16_t v;
        std::memcpy(&v, at, 2);
        return static_cast<float>(v + 32768);  // the source scale
    }
    uint16_t v;
    std::memcpy(&v, at, 2);
    return static_cast<float>(v);
}
inline void writeDst(const PairDesc& p, uint8_t* at, int64_t v) {
    if (p.dstSize == 1) {
        *at = static_cast<uint8_t>(sat(v, 0, 255));
    } else if (p.dstSigned) {
        const int16_t s = static_cast<int16_t>(sat(v, -32768, 32767));
        std::memcpy(at, &s, 2);
    } else {
        const uint16_t s = static_cast<uint16_t>(sat(v, 0, 65535));
        std::memcpy(at, &s, 2);
    }
}
inline int readDst(const PairDesc& p, const uint8_t* at) {
    if (p.dstSize == 1) return *at;
    if (p.dstSigned) {
        int16_t s;
        std::memcpy(&s, at, 2);
        return s;
    }
    uint16_t s;
    std::memcpy(&s, at, 2);
    return s;
}

// ------------------------------------------------------------ plain reduction
inline int64_t plainValue(const PairDesc& p, float u, int L) {
    float x;
    switch (p.id) {
        case R8u: x = u * 0.00392156886f; break;
        case R16u8u: case R16s8u: case R16u: case R16s: x = u * 1.52590219e-05f; break;
        default: x = u;
    }
    const float Lf = static_cast<float>(L);
    const float qn = 1.0f / Lf, hn = 0.5f / Lf;
    const int64_t t = truncF(Lf * x);
    float f = static_cast<float>(t) * qn;
    if (x - f > hn) f = f + qn;
    const float M = p.dstSize == 1 ? 255.0f : 65535.0f;
    int64_t n = truncF(f * M);
    if (p.dstSigned) n -= 32768;
    return n;
}

// ------------------------------------------------------------ dithering numbers
inline float stepQ(const PairDesc& p, int L) {
    const float Lf = static_cast<float>(L);
    if (p.srcFloat) return 1.0f / Lf;
    if (p.srcSize == 1) return (65280.0f / Lf) * 0.00390625f;
    return 65535.0f / Lf;
}
inline float invR(const PairDesc& p, int L) {
    const float Lf = static_cast<float>(L);
    if (p.srcFloat) return Lf;
    if (p.srcSize == 1) return Lf / 255.0f;
    return Lf / 65535.0f;
}
// Level maps of the error-diffusion table (selector 1 column when fs) and of
// the ordered table (the rounded column when rounded).
inline int64_t levelMap(const PairDesc& p, float f, bool rounded) {
    switch (p.id) {
        case R8u: return truncF(f);
        case R16u8u: return truncF(f) >> 8;
        case R16s8u: return (rounded ? truncF(f + 0.5f) : truncF(f)) >> 8;
        case R32f8u: return rounded ? truncF(f * 255.0f + 0.5f) : truncF(f * 255.0f);
        case R16u: return sat(truncF(f), 0, 65535);
        case R16s: return sat(truncF(f), 0, 65535) - 32768;
        case R32f16u: return rounded ? truncF(f * 65535.0f + 0.5f) : truncF(f * 65535.0f);
        default: return sat(rounded ? truncF(f * 65535.0f + 0.5f) : truncF(f * 65535.0f), 0, 65535) - 32768;
    }
}
inline bool roundedPair(PairId id) { return id == R16s8u || id == R32f8u || id == R32f16u || id == R32f16s; }

// An image as the reference sees it.
struct Image {
    const uint8_t* src;
    int srcStep;
    uint8_t* dst;
    int dstStep;
    int width, height;
    int layout;  // 1 C1, 3 C3, 4 AC4, 5 C4
    int channels() const { return layout == 1 ? 1 : layout == 5 ? 4 : 3; }
    int stride() const { return layout == 1 ? 1 : layout == 3 ? 3 : 4; }
};

inline void reducePlain(const PairDesc& p, const Image& im, int L) {
    for (int y = 0; y < im.height; ++y)
        for (int x = 0; x < im.width; ++x)
            for (int c = 0; c < im.channels(); ++c) {
                const int i = x * im.stride() + c;
                const float u = readSrc(p, im.src + static_cast<ptrdiff_t>(y) * im.srcStep + i * p.srcSize);
                writeDst(p, im.dst + static_cast<ptrdiff_t>(y) * im.dstStep + i * p.dstSize, plainValue(p, u, L));
            }
}

// steps of the dithering paths: whole samples
inline int wholeSamples(int step, int size) { return (step >> (size == 4 ? 2 : size == 2 ? 1 : 0)) * size; }

inline void reduceOrdered(const PairDesc& p, const Image& im, int L, int noise) {
    static const int k[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
    const float q = stepQ(p, L), r = invR(p, L);
    Tables t;
    if (noise > 0) t = tables(static_cast<float>(-noise) / 100.0f, static_cast<float>(noise) / 100.0f);
    const bool rounded = noise > 0 && im.layout != 5 && roundedPair(p.id);
    const int ss = wholeSamples(im.srcStep, p.srcSize), ds = wholeSamples(im.dstStep, p.dstSize);
    for (int y = 0; y < im.height; ++y)
        for (int x = 0; x < im.width; ++x) {
            const float m = static_cast<float>(k[y & 3][x & 3]) / 15.0f;
            int xn = x;
            if (p.id == R8u && im.layout == 3 && x < (im.width & ~7)) xn = (x & ~7) | (x & 3);
            const float T = noise > 0 ? (t.at(xn, y) + m) * q : m * q;
            for (int c = 0; c < im.channels(); ++c) {
                const int i = x * im.stride() + c;
                const float u = readSrc(p, im.src + static_cast<ptrdiff_t>(y) * ss + i * p.srcSize);
                float f = static_cast<float>(truncF(u * r)) * q;
                const float d = u - f;
                if (T < d) f = f + q;
                writeDst(p, im.dst + static_cast<ptrdiff_t>(y) * ds + i * p.dstSize, levelMap(p, f, rounded));
            }
        }
}

// Error diffusion, selectors 1 to 3.
inline void reduceDiffusion(const PairDesc& p, const Image& im, int L, int noise, int sel) {
    const float q = stepQ(p, L), r = invR(p, L);
    Tables t;
    if (noise > 0) {
        const float n = static_cast<float>(noise);
        t = tables((50.0f - n) * q / 100.0f, (50.0f + n) * q / 100.0f);
    }
    const float H = p.srcFloat ? 1.0f : p.srcSize == 1 ? 255.0f : 65535.0f;
    const float lowClip = p.srcFloat && sel == 1 ? 1.1920929e-07f : 0.0f;
    const int64_t top = p.dstSize == 1 ? 255 : p.dstSigned ? 32767 : 65535;
    const int64_t bottom = p.dstSigned ? -32768 : 0;
    const bool rounded = sel == 1 && roundedPair(p.id);
    const int W = im.width;
    const int g = sel == 1 ? 1 : 2;  // guard cells a side
    const int len = W + 2 * g;
    std::vector<std::vector<float>> rows(sel == 1 ? 2 : 3, std::vector<float>(len, 0.0f));
    // roles: rows[ra] y-2, rows[rb] y-1, rows[rc] y
    int ra = 0, rb = sel == 1 ? 0 : 1, rc = sel == 1 ? 1 : 2;
    static const float wJ[3][5] = {{1, 3, 5, 3, 1}, {3, 5, 7, 5, 3}, {5, 7, 0, 0, 0}};
    static const float wS[3][5] = {{1, 2, 4, 2, 1}, {2, 4, 8, 4, 2}, {4, 8, 0, 0, 0}};
    const float(*w)[5] = sel == 2 ? wJ : wS;
    const float mult = sel == 1 ? 0.0625f : sel == 2 ? 0.020833334f : 0.023809524f;
    const int ss = wholeSamples(im.srcStep, p.srcSize), ds = wholeSamples(im.dstStep, p.dstSize);
    for (int c = 0; c < im.channels(); ++c)
        for (int y = 0; y < im.height; ++y) {
            const float* A = rows[ra].data() + g;
            const float* B = rows[rb].data() + g;
            float* C = rows[rc].data() + g;
            for (int x = 0; x < W; ++x) {
                const int i = x * im.stride() + c;
                const float u = readSrc(p, im.src + static_cast<ptrdiff_t>(y) * ss + i * p.srcSize);
                float S;
                if (sel == 1) {
                    const float* P = B;
                    if (roundedPair(p.id)) S = ((3 * P[x + 1] + 5 * P[x]) + P[x - 1]) + 7 * C[x - 1];
                    else S = ((3 * P[x + 1] + P[x - 1]) + 5 * P[x]) + 7 * C[x - 1];
                } else {
                    float l[4];
                    for (int j = 0; j < 4; ++j) {
                        const float ab = w[0][j] * A[x - 2 + j] + w[1][j] * B[x - 2 + j];
                        l[j] = j < 2 ? ab + w[2][j] * C[x - 2 + j] : ab + 0.0f;  // C ahead of x unread
                    }
                    S = (l[0] + l[2]) + (l[1] + l[3]);
                    S = S + A[x + 2];
                    S = S + w[1][0] * B[x + 2];
                }
                const float v = u + S * mult;
                int64_t out;
                if (v >= H) {
                    out = top;
                    C[x] = 0;
                } else if (v < lowClip) {
                    out = bottom;
                    C[x] = 0;
                } else {
                    float f = static_cast<float>(truncF(v * r)) * q;
                    const float d = v - f;
                    int xn = x;
                    if (sel != 1 && x < (W & ~3)) xn = x & ~3;
                    const float T = noise > 0 ? t.at(xn, y) : 0.5f * q;
                    if (T < d) f = f + q;
                    C[x] = v - f;
                    out = levelMap(p, f, rounded);
                }
                writeDst(p, im.dst + static_cast<ptrdiff_t>(y) * ds + i * p.dstSize, out);
            }
            if (sel == 1) {
                std::swap(rb, rc);
            } else {
                const int oldA = ra;
                ra = rb;
                rb = rc;
                rc = oldA;
            }
        }
}

inline void reduce(const PairDesc& p, const Image& im, int noise, int sel, int levels) {
    const int L = levels - 1;
    if (sel == 0) reducePlain(p, im, L);
    else if (sel == 4) reduceOrdered(p, im, L, noise);
    else reduceDiffusion(p, im, L, noise, sel);
}

// ------------------------------------------------------------ one bit a pixel
// Bits of every row first, packed afterwards; Stucki errors as plain integers.
inline void onebit(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, int offset, int width, int height,
                   int sel, int threshold) {
    const int len = width + 4;
    std::vector<int64_t> rowsE(3 * static_cast<size_t>(len), 0);
    int ia = 0, ib = 1, ic = 2;
    for (int y = 0; y < height; ++y) {
        const uint8_t* s = src + static_cast<ptrdiff_t>(y) * srcStep;
        std::vector<int> bits(width);
        const int64_t* A = rowsE.data() + ia * len + 2;
        const int64_t* B = rowsE.data() + ib * len + 2;
        int64_t* C = rowsE.data() + ic * len + 2;
        for (int x = 0; x < width; ++x) {
            if (sel == 0) {
                bits[x] = s[x] > threshold;
                continue;
            }
            const int64_t W = (A[x - 2] + A[x + 2]) + 8 * (B[x] + C[x - 1]) + 4 * (A[x] + B[x - 1] + B[x + 1] + C[x - 2]) +
                              2 * (A[x - 1] + A[x + 1] + B[x - 2] + B[x + 2]);
            const int64_t acc = s[x] * 8192 + 23 * W;
            int64_t e = acc >= 0 ? acc / 1024 : -((-acc + 1023) / 1024);  // floor
            bits[x] = acc > threshold * 8192;
            if (bits[x]) e -= 2047;
            C[x] = e;
        }
        if (sel != 0) {
            const int t = ia;
            ia = ib;
            ib = ic;
            ic = t;
        }
        uint8_t* d = dst + static_cast<ptrdiff_t>(y) * dstStep;
        for (int x = 0; x < width; ++x) {
            const int pos = (offset & 7) + x;
            const int mask = 1 << (7 - pos % 8);
            d[pos / 8] = static_cast<uint8_t>(bits[x] ? (d[pos / 8] | mask) : (d[pos / 8] & ~mask));
        }
    }
}

}  // namespace ref
