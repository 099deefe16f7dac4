// Generic checks for 8-bit three-channel conversions: every operation is one
// row of a table (layouts, forms per column, fourth-sample rule, check order)
// and the same driver sweeps widths, heights, steps and guards for all.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "harness.h"
#include "ref_yuv.h"

namespace kt {

enum class L { C3, AC4, P3, P4 };  // AC4: four samples a pixel, interleaved
enum class A4 {
    None,      // no fourth sample on the destination
    Keep,      // destination's fourth sample left as it was
    Aval,      // set to aval
    FromSrc,   // the source's fourth sample (AC4 to P4)
    ZeroMain,  // 0 in the main path, kept in the tail
};
enum class Order {
    NullSize,        // image addresses and plane elements (-8), then size (-6)
    NullSizePlanes,  // image addresses (-8), size (-6), plane elements (-8)
};

using Form = ref::Px3 (*)(int, int, int);
using Call = std::function<KroStatus(const Kro8u* const* src, int srcStep, Kro8u* const* dst, int dstStep,
                                     kroiSize roi, Kro8u aval)>;

// One adapter for every entry shape, told apart by what the entry accepts:
// interleaved or planar on either side, with or without the fourth sample's value.
template <class F>
inline Call callOf(F f) {
    using cp = const Kro8u*;
    using cpp = const Kro8u* const*;
    using pp = Kro8u* const*;
    return [f](cpp s, int ss, pp d, int ds, kroiSize r, Kro8u a) -> KroStatus {
        const Kro8u* s0 = s ? s[0] : nullptr;
        Kro8u* d0 = d ? d[0] : nullptr;
        if constexpr (std::is_invocable_v<F, cp, int, Kro8u*, int, kroiSize>) return f(s0, ss, d0, ds, r);
        else if constexpr (std::is_invocable_v<F, cp, int, Kro8u*, int, kroiSize, Kro8u>) return f(s0, ss, d0, ds, r, a);
        else if constexpr (std::is_invocable_v<F, cp, int, pp, int, kroiSize>) return f(s0, ss, d, ds, r);
        else if constexpr (std::is_invocable_v<F, cpp, int, Kro8u*, int, kroiSize>) return f(s, ss, d0, ds, r);
        else if constexpr (std::is_invocable_v<F, cpp, int, Kro8u*, int, kroiSize, Kro8u>) return f(s, ss, d0, ds, r, a);
        else return f(s, ss, d, ds, r);
    };
}

struct Conv8 {
    const char* name;
    L src, dst;
    A4 alpha;
    bool srcSwap, dstSwap;  // BGR order on that side
    int mainCover;          // pixels 0 .. (width & ~(mainCover - 1)) - 1 use mainForm; 0: none
    Form mainForm, tailForm;
    Order order;
    Call call;
};

inline int planesOf(L l) { return l == L::P3 ? 3 : l == L::P4 ? 4 : 1; }
inline int bytesPerPixel(L l) { return l == L::C3 ? 3 : l == L::AC4 ? 4 : 1; }

struct Side {
    std::vector<Plane> planes;
    Side(L l, int width, int height, int pad, Guard g, bool negStep) {
        for (int k = 0; k < planesOf(l); ++k) planes.emplace_back(width * bytesPerPixel(l), height, pad, g, negStep);
    }
    int step() const { return planes[0].step; }
    std::vector<Kro8u*> origins() const {
        std::vector<Kro8u*> o;
        for (auto& p : planes) o.push_back(p.origin());
        return o;
    }
};

// Samples of pixel x on row y, in the model's order; s[3] the fourth sample if any.
inline void readPixel(const Side& s, L l, bool swap, int x, int y, int (&v)[4]) {
    v[3] = 0;
    if (l == L::P3 || l == L::P4) {
        for (int k = 0; k < planesOf(l); ++k) v[k] = s.planes[k].row(y)[x];
    } else {
        const Kro8u* p = s.planes[0].row(y) + bytesPerPixel(l) * x;
        v[0] = p[0], v[1] = p[1], v[2] = p[2];
        if (l == L::AC4) v[3] = p[3];
    }
    if (swap) std::swap(v[0], v[2]);
}

// Expected destination: the snapshot of every plane with the region's pixels written by the reference.
inline std::vector<std::vector<uint8_t>> expected(const Conv8& c, const Side& src, const Side& dst, int width,
                                                  int height, Kro8u aval) {
    std::vector<std::vector<uint8_t>> snap;
    for (auto& p : dst.planes) snap.push_back(p.snapshot());
    const int cover = c.mainCover ? (width & ~(c.mainCover - 1)) : 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            int v[4];
            readPixel(src, c.src, c.srcSwap, x, y, v);
            const bool main = x < cover;
            ref::Px3 o = (main ? c.mainForm : c.tailForm)(v[0], v[1], v[2]);
            if (c.dstSwap) std::swap(o[0], o[2]);
            if (c.dst == L::C3 || c.dst == L::AC4) {
                Kro8u* q = dst.planes[0].rowIn(snap[0], y) + bytesPerPixel(c.dst) * x;
                for (int k = 0; k < 3; ++k) q[k] = static_cast<Kro8u>(o[k]);
                if (c.alpha == A4::Aval) q[3] = aval;
                if (c.alpha == A4::ZeroMain && main) q[3] = 0;
            } else {
                for (int k = 0; k < 3; ++k) dst.planes[k].rowIn(snap[k], y)[x] = static_cast<Kro8u>(o[k]);
                if (c.dst == L::P4) dst.planes[3].rowIn(snap[3], y)[x] = static_cast<Kro8u>(v[3]);
            }
        }
    return snap;
}

// One call on fresh random images; returns "" or the first difference.
inline std::string runOnce(const Conv8& c, int width, int height, int pad, Guard g, bool negStep, Kro8u aval = 77) {
    Side src(c.src, width, height, pad, g, negStep);
    Side dst(c.dst, width, height, pad + 3, g, negStep);
    auto want = expected(c, src, dst, width, height, aval);
    auto srcBefore = src.planes[0].snapshot();
    auto so = src.origins();
    auto dO = dst.origins();
    const KroStatus st = c.call(so.data(), src.step(), dO.data(), dst.step(), {width, height}, aval);
    if (st != kroStatusOk) return "status " + std::to_string(st);
    for (size_t k = 0; k < dst.planes.size(); ++k) {
        std::string d = diffPlane(dst.planes[k], want[k], k == 0 ? bytesPerPixel(c.dst) : 1);
        if (!d.empty()) return "plane " + std::to_string(k) + ": " + d;
    }
    if (srcBefore != src.planes[0].snapshot()) return "source changed";
    return {};
}

// Every width from 1 past three main blocks, at one and three rows, padded and
// tight steps, guard after and before, and a negative step.
inline void sweep(const Conv8& c) {
    const int block = c.mainCover ? std::max(c.mainCover, 16) : 16;
    for (int w : sweepWidths(block)) {
        for (int h : {1, 3}) {
            const std::string e1 = runOnce(c, w, h, 0, Guard::After, false);
            ASSERT_EQ(e1, "") << c.name << " width " << w << " height " << h << " tight, guard after";
            const std::string e2 = runOnce(c, w, h, 5 + (w % 11), Guard::Before, false);
            ASSERT_EQ(e2, "") << c.name << " width " << w << " height " << h << " padded, guard before";
        }
    }
    ASSERT_EQ(runOnce(c, 37, 5, 7, Guard::After, true), "") << c.name << " negative step";
    // every start offset within a 16-byte line: the kernels must not assume alignment
    for (int pad = 0; pad < 16; ++pad)
        ASSERT_EQ(runOnce(c, 53, 2, pad, Guard::After, false), "") << c.name << " pad " << pad;
}

// Checks and their order: each failure returns its status and writes nothing.
inline void checkStatuses(const Conv8& c) {
    const int w = 9, h = 2;
    Side src(c.src, w, h, 0, Guard::After, false);
    Side dst(c.dst, w, h, 0, Guard::After, false);
    std::vector<std::vector<uint8_t>> before;
    for (auto& p : dst.planes) before.push_back(p.snapshot());
    auto unchanged = [&] {
        for (size_t k = 0; k < dst.planes.size(); ++k)
            if (dst.planes[k].snapshot() != before[k]) return false;
        return true;
    };
    auto so = src.origins();
    auto dO = dst.origins();
    const bool srcPlanar = planesOf(c.src) > 1, dstPlanar = planesOf(c.dst) > 1;
    const KroStatus planeFirst = c.order == Order::NullSize ? kroStatusNullPointer : kroStatusBadSize;

    EXPECT_EQ(c.call(nullptr, src.step(), dO.data(), dst.step(), {w, h}, 1), kroStatusNullPointer) << c.name;
    EXPECT_EQ(c.call(so.data(), src.step(), nullptr, dst.step(), {w, h}, 1), kroStatusNullPointer) << c.name;
    EXPECT_EQ(c.call(nullptr, src.step(), dO.data(), dst.step(), {0, h}, 1), kroStatusNullPointer) << c.name;
    for (kroiSize bad : {kroiSize{0, h}, kroiSize{w, 0}, kroiSize{-1, h}, kroiSize{w, -5}, kroiSize{INT32_MIN, 1}})
        EXPECT_EQ(c.call(so.data(), src.step(), dO.data(), dst.step(), bad, 1), kroStatusBadSize) << c.name;
    if (srcPlanar)
        for (int k = 0; k < planesOf(c.src); ++k) {
            auto s2 = so;
            s2[k] = nullptr;
            EXPECT_EQ(c.call(s2.data(), src.step(), dO.data(), dst.step(), {w, h}, 1), kroStatusNullPointer)
                << c.name << " source plane " << k;
            EXPECT_EQ(c.call(s2.data(), src.step(), dO.data(), dst.step(), {0, h}, 1), planeFirst)
                << c.name << " source plane " << k << " with zero width";
        }
    if (dstPlanar)
        for (int k = 0; k < 3; ++k) {
            auto d2 = dO;
            d2[k] = nullptr;
            EXPECT_EQ(c.call(so.data(), src.step(), d2.data(), dst.step(), {w, h}, 1), kroStatusNullPointer)
                << c.name << " destination plane " << k;
            EXPECT_EQ(c.call(so.data(), src.step(), d2.data(), dst.step(), {w, -1}, 1), planeFirst)
                << c.name << " destination plane " << k << " with negative height";
        }
    EXPECT_TRUE(unchanged()) << c.name << ": a failing call wrote";
}

// All 2^24 triples through the main path (width 4096) and through the tail (a
// width below one main block), sampled under sanitizers. Each triple is written
// in the model's order and read back in it.
inline void exhaustiveTriples(const Conv8& c) {
    for (bool mainPath : {true, false}) {
        if (mainPath && !c.mainCover) continue;
        const int width = mainPath ? 4096 : (c.mainCover ? c.mainCover - 1 : 4093);
        const int64_t total = KROCC_FULL_SWEEPS ? (1 << 24) : (1 << 18);
        const int height = static_cast<int>((total + width - 1) / width);
        Side src(c.src, width, height, 0, Guard::After, false);
        Side dst(c.dst, width, height, 0, Guard::After, false);
        // pixel i holds triple i (full sweep) or a scattered sample of triples
        for (int64_t i = 0; i < int64_t(width) * height; ++i) {
            const uint32_t t = KROCC_FULL_SWEEPS ? uint32_t(i) : uint32_t(i * 2654435761u);
            const int x = int(i % width), y = int(i / width);
            int v[3] = {int(t >> 16) & 255, int(t >> 8) & 255, int(t) & 255};
            if (c.srcSwap) std::swap(v[0], v[2]);
            for (int k = 0; k < 3; ++k) {
                if (planesOf(c.src) > 1)
                    src.planes[k].row(y)[x] = Kro8u(v[k]);
                else
                    src.planes[0].row(y)[bytesPerPixel(c.src) * x + k] = Kro8u(v[k]);
            }
        }
        auto so = src.origins();
        auto dO = dst.origins();
        ASSERT_EQ(c.call(so.data(), src.step(), dO.data(), dst.step(), {width, height}, 9), kroStatusOk);
        const Form f = mainPath ? c.mainForm : c.tailForm;
        int64_t bad = 0;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                int v[4], o[4];
                readPixel(src, c.src, c.srcSwap, x, y, v);
                readPixel(dst, c.dst, c.dstSwap, x, y, o);
                const ref::Px3 e = f(v[0], v[1], v[2]);
                if (e[0] != o[0] || e[1] != o[1] || e[2] != o[2]) {
                    if (bad++ < 3)
                        ADD_FAILURE() << c.name << (mainPath ? " main" : " tail") << " (" << v[0] << "," << v[1]
                                      << "," << v[2] << ") -> (" << o[0] << "," << o[1] << "," << o[2]
                                      << ") want (" << e[0] << "," << e[1] << "," << e[2] << ")";
                }
            }
        EXPECT_EQ(bad, 0) << c.name;
    }
}

}  // namespace kt
