// Generic checks for typed conversions (any sample size, C1/C3/AC4/C4 sides):
// every operation is one table row naming its sides, its step rule, its
// per-pixel reference (told which path the pixel takes) and how its source is
// filled; the same driver sweeps widths, heights, steps, start offsets and
// guards, and the check order, for all.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "harness.h"

namespace kt {

// Which arithmetic a pixel goes through.
enum Path { Tail = 0, Main = 1, PairFirst = 2, PairSecond = 3 };

// An image of `height` rows of `rowBytes`; the step handed to the operation is
// stepArg (bytes); rows really lie stepEff bytes apart: stepArg with `shift`
// low bits dropped by an arithmetic shift, as the entries that count samples do.
// `lead` canary bytes stand before the region when guarded before, so the
// region can start at any offset within a 16-byte line.
struct TImg {
    GuardedBuf buf;
    int rowBytes = 0, height = 0, stepArg = 0, stepEff = 0, lead = 0;

    TImg(int rowBytes_, int height_, int pad, int shift, Guard g, int lead_, bool neg) {
        rowBytes = rowBytes_;
        height = height_;
        lead = g == Guard::Before ? lead_ : 0;
        stepArg = neg ? -(rowBytes + pad) : rowBytes + pad;
        stepEff = (stepArg >> shift) * (1 << shift);
        const int absEff = stepEff < 0 ? -stepEff : stepEff;
        buf.alloc(size_t(lead) + size_t(absEff) * size_t(height - 1) + size_t(rowBytes), g);
        fillRandom(buf.data(), buf.size());
    }
    uint8_t* origin() const {
        const int absEff = stepEff < 0 ? -stepEff : stepEff;
        return buf.data() + lead + (stepEff < 0 ? size_t(absEff) * size_t(height - 1) : 0);
    }
    uint8_t* row(int y) const { return origin() + std::ptrdiff_t(y) * stepEff; }
    std::vector<uint8_t> snapshot() const { return {buf.data(), buf.data() + buf.size()}; }
    uint8_t* rowIn(std::vector<uint8_t>& s, int y) const { return s.data() + (row(y) - buf.data()); }
};

using RefFn = std::function<void(const uint8_t* srcPixel, uint8_t* dstPixel, Path path)>;
using PathFn = std::function<Path(int x, int width, const uint8_t* dstRow)>;
using FillFn = std::function<void(uint8_t* p, int samples)>;
using TCall = std::function<KroStatus(const void* src, int srcStep, void* dst, int dstStep, kroiSize roi)>;

struct TCase {
    std::string name;
    int srcS, srcCn;  // sample bytes, samples a pixel
    int dstS, dstCn;
    int shift;        // 0: steps in bytes; 1 or 2: steps turned into samples
    int block;        // main-path pixels a step
    RefFn ref;
    PathFn path;
    FillFn fill;
    TCall call;
};

// Pixels 0 .. (width & ~(n - 1)) - 1 in the main path.
inline PathFn blockPath(int n) {
    return [n](int x, int width, const uint8_t*) { return x < (width & ~(n - 1)) ? Main : Tail; };
}

// A failing call's message, or "".
inline std::string runOnceT(const TCase& c, int w, int h, int pad, Guard g, int srcLead, int dstLead, bool neg) {
    TImg src(w * c.srcS * c.srcCn, h, pad, c.shift, g, srcLead, neg);
    TImg dst(w * c.dstS * c.dstCn, h, pad + 2 * c.dstS + 1, c.shift, g, dstLead, neg);
    for (int y = 0; y < h; ++y) c.fill(src.row(y), w * c.srcCn);
    std::vector<uint8_t> want = dst.snapshot();
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            c.ref(src.row(y) + x * c.srcS * c.srcCn, dst.rowIn(want, y) + x * c.dstS * c.dstCn,
                  c.path(x, w, dst.row(y)));
    const std::vector<uint8_t> srcBefore = src.snapshot();
    const KroStatus st = c.call(src.origin(), src.stepArg, dst.origin(), dst.stepArg, {w, h});
    if (st != kroStatusOk) return "status " + std::to_string(st);
    for (size_t i = 0; i < want.size(); ++i) {
        if (dst.buf.data()[i] == want[i]) continue;
        const std::ptrdiff_t off = dst.buf.data() + i - dst.origin();
        char msg[300];
        std::snprintf(msg, sizeof msg,
                      "width %d height %d pad %d lead %d/%d%s: byte %zu (region offset %td, pixel %td of row 0 "
                      "counting) got 0x%02x want 0x%02x",
                      w, h, pad, srcLead, dstLead, neg ? " negative step" : "", i, off,
                      off / (c.dstS * c.dstCn), dst.buf.data()[i], want[i]);
        return msg;
    }
    if (srcBefore != src.snapshot()) return "source changed";
    return {};
}

// Every width from 1 past three main blocks: tight rows against the guard
// after, padded rows against the guard before, then at every start offset of
// source and destination within a 16-byte line, with steps that are not a
// multiple of the sample size; a negative step (unless the operation refuses them).
inline void sweepT(const TCase& c, int extraWidths = 1, bool negativeSteps = true) {
    std::vector<int> widths;
    for (int i = 1; i <= 3 * c.block + 5; ++i) widths.push_back(i);
    if (extraWidths)
        for (int i : {64, 95, 127, 129, 255}) widths.push_back(i);
    for (int w : widths)
        for (int h : {1, 3}) {
            ASSERT_EQ(runOnceT(c, w, h, 0, Guard::After, 0, 0, false), "") << c.name;
            ASSERT_EQ(runOnceT(c, w, h, 5 + (w % 11), Guard::Before, 0, 0, false), "") << c.name;
        }
    for (int off = 0; off < 16; ++off)
        for (int w = 1; w <= 3 * c.block + 5; ++w)
            ASSERT_EQ(runOnceT(c, w, 2, 3 + off % 5, Guard::Before, off, (5 * off + 3) % 16, false), "") << c.name;
    if (!negativeSteps) return;
    ASSERT_EQ(runOnceT(c, 37, 5, 7, Guard::After, 0, 0, true), "") << c.name;
    ASSERT_EQ(runOnceT(c, 37, 5, 6, Guard::Before, 3, 11, true), "") << c.name;
}

// Checks in order (null, then size); a failing call writes nothing.
inline void checkStatusesT(const TCase& c) {
    const int w = 9, h = 2;
    TImg src(w * c.srcS * c.srcCn, h, 0, 0, Guard::After, 0, false);
    TImg dst(w * c.dstS * c.dstCn, h, 0, 0, Guard::After, 0, false);
    const auto before = dst.snapshot();
    void* s = src.origin();
    void* d = dst.origin();
    EXPECT_EQ(c.call(nullptr, src.stepArg, d, dst.stepArg, {w, h}), kroStatusNullPointer) << c.name;
    EXPECT_EQ(c.call(s, src.stepArg, nullptr, dst.stepArg, {w, h}), kroStatusNullPointer) << c.name;
    EXPECT_EQ(c.call(nullptr, src.stepArg, d, dst.stepArg, {0, h}), kroStatusNullPointer) << c.name;
    EXPECT_EQ(c.call(s, src.stepArg, nullptr, dst.stepArg, {w, -1}), kroStatusNullPointer) << c.name;
    for (kroiSize bad : {kroiSize{0, h}, kroiSize{w, 0}, kroiSize{-1, h}, kroiSize{w, -5}, kroiSize{INT32_MIN, 1},
                         kroiSize{1, INT32_MIN}})
        EXPECT_EQ(c.call(s, src.stepArg, d, dst.stepArg, bad), kroStatusBadSize) << c.name;
    EXPECT_TRUE(dst.snapshot() == before) << c.name << ": a failing call wrote";
    // No step is tested: zero and negative steps are accepted (one row here).
    EXPECT_EQ(c.call(s, 0, d, -3, {w, 1}), kroStatusOk) << c.name;
}

// Steps are not checked: with steps of 0 every row converts the same source
// row into the same destination row.
inline void zeroStepT(const TCase& c) {
    const int w = 5;
    TImg src(w * c.srcS * c.srcCn, 1, 0, 0, Guard::After, 0, false);
    TImg dst(w * c.dstS * c.dstCn, 1, 0, 0, Guard::After, 0, false);
    c.fill(src.row(0), w * c.srcCn);
    std::vector<uint8_t> want = dst.snapshot();
    for (int x = 0; x < w; ++x)
        c.ref(src.row(0) + x * c.srcS * c.srcCn, dst.rowIn(want, 0) + x * c.dstS * c.dstCn, c.path(x, w, dst.row(0)));
    ASSERT_EQ(c.call(src.origin(), 0, dst.origin(), 0, {w, 7}), kroStatusOk) << c.name;
    EXPECT_TRUE(dst.snapshot() == want) << c.name << ": steps of 0";
}

// All 2^24 triples of an 8-bit interleaved source (a scattered `sampled` of
// them under sanitizers) through the main path (rows of 4096) and through the
// tail (rows of tailWidth). A fourth source sample is filled too; a fourth
// destination sample starts as 0x5a. ok(source pixel, result pixel, path)
// judges each pixel; the first failures are reported.
using Call8 = std::function<KroStatus(const Kro8u*, int, Kro8u*, int, kroiSize)>;
inline void exhaustive8(const std::string& label, int srcCn, int dstCn, int tailWidth, int64_t sampled,
                        const Call8& f, const std::function<bool(const Kro8u*, const Kro8u*, Path)>& ok) {
    for (bool mainPath : {true, false}) {
        const int width = mainPath ? 4096 : tailWidth;
        const int64_t total = KROCC_FULL_SWEEPS ? (int64_t(1) << 24) : sampled;
        const int height = int((total + width - 1) / width);
        const size_t n = size_t(width) * size_t(height);
        std::vector<Kro8u> src(n * size_t(srcCn)), dst(n * size_t(dstCn), 0x5a);
        for (size_t i = 0; i < n; ++i) {
            const uint32_t t = KROCC_FULL_SWEEPS ? uint32_t(i) : uint32_t(i * 2654435761u);
            Kro8u* s = &src[i * size_t(srcCn)];
            s[0] = Kro8u(t >> 16), s[1] = Kro8u(t >> 8), s[2] = Kro8u(t);
            if (srcCn == 4) s[3] = Kro8u(t ^ 0x33);
        }
        ASSERT_EQ(f(src.data(), width * srcCn, dst.data(), width * dstCn, {width, height}), kroStatusOk) << label;
        int64_t bad = 0;
        for (size_t i = 0; i < n; ++i) {
            const Kro8u* s = &src[i * size_t(srcCn)];
            const Kro8u* d = &dst[i * size_t(dstCn)];
            if (!ok(s, d, mainPath ? Main : Tail) && bad++ < 3)
                ADD_FAILURE() << label << (mainPath ? " main" : " tail") << " (" << int(s[0]) << "," << int(s[1])
                              << "," << int(s[2]) << ") -> (" << int(d[0]) << (dstCn > 1 ? "," : "")
                              << (dstCn > 1 ? std::to_string(d[1]) + "," + std::to_string(d[2]) : std::string())
                              << ")";
        }
        EXPECT_EQ(bad, 0) << label;
    }
}

// One pixel (a, b, c) repeated over `width` columns of a three-sample
// operation, steps of 0; pixel x of the result.
template <class T>
std::array<T, 3> at3(KroStatus (*f)(const T*, int, T*, int, kroiSize), int x, int width, T a, T b, T c) {
    std::vector<T> src(size_t(width) * 3), dst(size_t(width) * 3);
    for (int i = 0; i < width; ++i) src[size_t(i) * 3] = a, src[size_t(i) * 3 + 1] = b, src[size_t(i) * 3 + 2] = c;
    EXPECT_EQ(f(src.data(), 0, dst.data(), 0, {width, 1}), kroStatusOk);
    return {dst[size_t(x) * 3], dst[size_t(x) * 3 + 1], dst[size_t(x) * 3 + 2]};
}

// ------------------------------------------------------------ sample fills
inline uint32_t rnd() { return rng()(); }
template <class T>
inline void putAt(uint8_t* p, int i, T v) {
    std::memcpy(p + sizeof(T) * size_t(i), &v, sizeof v);
}
template <class T>
inline T getAt(const uint8_t* p, int i) {
    T v;
    std::memcpy(&v, p + sizeof(T) * size_t(i), sizeof v);
    return v;
}

inline void fill8u(uint8_t* p, int n) {
    for (int i = 0; i < n; ++i) p[i] = uint8_t(rnd() >> 11);
}
inline void fill16u(uint8_t* p, int n) {
    static const uint16_t ext[] = {0, 65535, 1, 65534, 32768, 32767};
    for (int i = 0; i < n; ++i) {
        const uint32_t r = rnd();
        putAt<uint16_t>(p, i, (r & 7) == 0 ? ext[(r >> 3) % 6] : uint16_t(r >> 9));
    }
}
inline void fill16s(uint8_t* p, int n) {
    static const int16_t ext[] = {-32768, 32767, 0, -1, 1, -32767};
    for (int i = 0; i < n; ++i) {
        const uint32_t r = rnd();
        putAt<int16_t>(p, i, (r & 7) == 0 ? ext[(r >> 3) % 6] : int16_t(uint16_t(r >> 9)));
    }
}
inline float bitsF(uint32_t b) {
    float f;
    std::memcpy(&f, &b, 4);
    return f;
}
inline double bitsD(uint64_t b) {
    double d;
    std::memcpy(&d, &b, 8);
    return d;
}
// Mostly 0..1, some wider numbers, and the extremes: zeros of both signs, 1,
// full scales, NaNs (quiet, signalling, negative, with payloads), infinities,
// denormals, the largest floats, random bit patterns.
inline void fill32f(uint8_t* p, int n) {
    static const uint32_t ext[] = {0x00000000, 0x80000000, 0x3f800000, 0x477fff00, 0x7fc00000, 0x7fc12345,
                                   0x7f800001, 0xffc00001, 0x7f800000, 0xff800000, 0x00000001, 0x007fffff,
                                   0x80000003, 0x7f7fffff, 0xff7fffff, 0x3f7fffff};
    for (int i = 0; i < n; ++i) {
        const uint32_t r = rnd(), k = r & 15;
        float v;
        if (k < 9) v = float(rnd() >> 8) / 16777216.0f;
        else if (k < 12) v = float(int32_t(rnd() >> 8) - 4000000) / 1048576.0f;
        else if (k < 15) v = bitsF(ext[(r >> 4) % 16]);
        else v = bitsF(rnd());
        putAt<float>(p, i, v);
    }
}
inline void fill64f(uint8_t* p, int n) {
    static const uint64_t ext[] = {0, 0x8000000000000000ull, 0x3ff0000000000000ull, 0x40efffe000000000ull,
                                   0x7ff8000000000000ull, 0x7ff8000000012345ull, 0x7ff0000000000001ull,
                                   0xfff8000000000001ull, 0x7ff0000000000000ull, 0xfff0000000000000ull, 1,
                                   0x000fffffffffffffull, 0x8000000000000003ull, 0x7fefffffffffffffull,
                                   0xffefffffffffffffull, 0x3fefffffffffffffull};
    for (int i = 0; i < n; ++i) {
        const uint32_t r = rnd(), k = r & 15;
        double v;
        if (k < 9) v = double((uint64_t(rnd()) << 21) ^ rnd()) / 9007199254740992.0;
        else if (k < 12) v = double(int32_t(rnd() >> 4) - 100000000) / 33554432.0;
        else if (k < 15) v = bitsD(ext[(r >> 4) % 16]);
        else v = bitsD((uint64_t(rnd()) << 32) | rnd());
        putAt<double>(p, i, v);
    }
}

}  // namespace kt
