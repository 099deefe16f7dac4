// Table-driven checks of the subsampled encoders: every operation is one row
// (source layout, destination layout, the reference's EncDesc, check order,
// smallest region) and one driver sweeps widths, heights, plane steps and
// guards against the reference for all of them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "harness.h"
#include "ref_encode.h"

namespace kt {

enum class SrcL { C3, AC4, P3 };
enum class Checks { DeepNullSize, NullSize, NullSizeDeepNull };
enum class Align { Any, Aligned, Unaligned };  // forced alignment of every address and step

// Every encoder through one signature: src planes (1 or 3) and step, destination
// addresses (1, 2 or 3) with a step each.
using EncCall = std::function<KroStatus(const Kro8u* const* src, int srcStep, Kro8u* const* dst,
                                        const int* dstSteps, kroiSize roi)>;

struct EncOp {
    std::string name;
    SrcL src;
    bool bgr;
    ref::OutLayout out;
    ref::EncDesc desc;
    Checks checks;
    int minW, minH;
    EncCall call;
    Align align = Align::Any;
};

inline int srcBpp(SrcL s) { return s == SrcL::C3 ? 3 : s == SrcL::AC4 ? 4 : 1; }

// Row bytes and rows of each destination plane for a W x H region: exactly what
// the operation may write, so the guard follows its last byte.
inline std::vector<std::pair<int, int>> dstShape(const EncOp& op, int W, int H) {
    const auto& s = op.desc;
    const int rows = std::max(1, H / s.bh);
    switch (op.out.kind) {
        case ref::Out::C2: return {{2 * W, H}};
        case ref::Out::P2: return {{W, H}, {2 * (W / 2), rows}};
        case ref::Out::P3: {
            int cw = W / s.bw;
            if (W % s.bw && (s.odd == ref::Odd::E4 || s.odd == ref::Odd::E5)) cw += 1;
            return {{W, H}, {cw, rows}, {cw, rows}};
        }
    }
    return {};
}

struct EncImages {
    std::vector<Plane> src, dst;
    std::vector<int> dstSteps;
    int srcStep = 0;
};

inline int padFor(Align a, int rowBytes, int pad) {
    if (a == Align::Aligned) return (rowBytes + pad + 15) / 16 * 16 - rowBytes;
    return pad;
}

inline EncImages makeImages(const EncOp& op, int W, int H, int pad, Guard g, bool neg) {
    EncImages im;
    const Guard gg = op.align == Align::Aligned ? Guard::Before : g;
    const int nSrc = op.src == SrcL::P3 ? 3 : 1;
    int sp = padFor(op.align, W * srcBpp(op.src), pad);
    if (op.align == Align::Unaligned && (W * srcBpp(op.src) + sp) % 16 == 0) sp += 1;
    for (int k = 0; k < nSrc; ++k) im.src.emplace_back(W * srcBpp(op.src), H, sp, gg, neg);
    im.srcStep = im.src[0].step;
    int i = 0;
    for (auto [bytes, rows] : dstShape(op, W, H)) {
        im.dst.emplace_back(bytes, rows, padFor(op.align, bytes, pad + 3 * i + 1), gg, neg);  // steps differ per plane
        im.dstSteps.push_back(im.dst.back().step);
        ++i;
    }
    return im;
}

inline ref::Image refSource(const EncOp& op, const std::vector<Plane>& src) {
    ref::Image img;
    for (auto& p : src) img.planes.push_back(p.origin());
    img.step = src[0].step;
    img.bytesPerPixel = srcBpp(op.src);
    img.bgr = op.bgr;
    return img;
}

inline KroStatus callOn(const EncOp& op, EncImages& im, kroiSize roi) {
    std::vector<const Kro8u*> s;
    for (auto& p : im.src) s.push_back(p.origin());
    std::vector<Kro8u*> d;
    for (auto& p : im.dst) d.push_back(p.origin());
    return op.call(s.data(), im.srcStep, d.data(), im.dstSteps.data(), roi);
}

inline KroStatus expectedStatus(const EncOp& op, int W, int H) {
    const bool warn = op.desc.bh == 2 ? (W % 2 || H % 2) : op.desc.bw == 4 ? (W % 4 != 0) : false;
    return warn ? kroStatusOddSize : kroStatusOk;
}

// One call on fresh random images against the reference; "" or the first difference.
inline std::string runEncode(const EncOp& op, int W, int H, int pad, Guard g, bool neg) {
    EncImages im = makeImages(op, W, H, pad, g, neg);
    std::vector<std::vector<uint8_t>> want;
    ref::Dest d{op.out, {}, im.dstSteps};
    for (auto& p : im.dst) {
        want.push_back(p.snapshot());
        d.planes.push_back(p.rowIn(want.back(), 0));
    }
    ref::refEncode(op.desc, refSource(op, im.src), d, W, H);
    std::vector<std::vector<uint8_t>> srcBefore;
    for (auto& p : im.src) srcBefore.push_back(p.snapshot());
    const KroStatus st = callOn(op, im, {W, H});
    if (st != expectedStatus(op, W, H)) return "status " + std::to_string(st);
    for (size_t k = 0; k < im.dst.size(); ++k) {
        const std::string e = diffPlane(im.dst[k], want[k], op.out.kind == ref::Out::C2 ? 2 : 1);
        if (!e.empty()) return "plane " + std::to_string(k) + ": " + e;
    }
    for (size_t k = 0; k < im.src.size(); ++k)
        if (im.src[k].snapshot() != srcBefore[k]) return "source changed";
    return {};
}

inline std::vector<int> encodeWidths() {
    std::vector<int> w;
    for (int i = 1; i <= 3 * 16 + 6; ++i) w.push_back(i);
    // around the 32-pixel boundaries of the SH and SX spans, and one long row
    for (int i : {60, 61, 62, 63, 64, 65, 66, 67, 68, 69, 70, 71, 72, 73, 76, 79, 80, 84, 87, 88, 92, 95, 96, 97, 100,
                  104, 111, 120, 127, 128, 129, 131, 255})
        w.push_back(i);
    return w;
}

inline void sweepEncode(const EncOp& op) {
    for (int W : encodeWidths()) {
        if (W < op.minW) continue;
        for (int H : {1, 2, 3, 4}) {
            if (H < op.minH) continue;
            ASSERT_EQ(runEncode(op, W, H, 0, Guard::After, false), "")
                << op.name << " width " << W << " height " << H << " tight, guard after";
            ASSERT_EQ(runEncode(op, W, H, 3 + W % 13, Guard::Before, false), "")
                << op.name << " width " << W << " height " << H << " padded, guard before";
        }
    }
    ASSERT_EQ(runEncode(op, 45, 6, 7, Guard::After, true), "") << op.name << " negative steps";
    for (int pad = 0; pad < 16; ++pad)
        ASSERT_EQ(runEncode(op, 53, 2, pad, Guard::After, false), "") << op.name << " pad " << pad;
}

// The checks in their order; a failing call writes nothing.
inline void checkEncodeStatuses(const EncOp& op) {
    const int W = 9, H = 4;
    EncImages im = makeImages(op, W, H, 2, Guard::After, false);
    std::vector<std::vector<uint8_t>> before;
    for (auto& p : im.dst) before.push_back(p.snapshot());
    std::vector<const Kro8u*> s;
    for (auto& p : im.src) s.push_back(p.origin());
    std::vector<Kro8u*> d;
    for (auto& p : im.dst) d.push_back(p.origin());
    const int* steps = im.dstSteps.data();
    auto call = [&](const Kro8u* const* ss, Kro8u* const* dd, const int* st, kroiSize r) {
        return op.call(ss, im.srcStep, dd, st, r);
    };
    const bool srcPlanar = op.src == SrcL::P3;
    const bool dstArray = op.out.kind == ref::Out::P3;

    // null: the source (address or array), each destination address or the array
    EXPECT_EQ(call(nullptr, d.data(), steps, {W, H}), kroStatusNullPointer) << op.name;
    EXPECT_EQ(call(nullptr, d.data(), steps, {0, H}), kroStatusNullPointer) << op.name << " before size";
    if (dstArray) {
        EXPECT_EQ(call(s.data(), nullptr, steps, {W, H}), kroStatusNullPointer) << op.name;
        EXPECT_EQ(call(s.data(), nullptr, steps, {0, -1}), kroStatusNullPointer) << op.name << " before size";
        EXPECT_EQ(call(s.data(), d.data(), nullptr, {W, H}), kroStatusNullPointer) << op.name << " step array";
        // a step array is no address: a rejected region reports its size first
        EXPECT_EQ(call(s.data(), d.data(), nullptr, {0, H}), kroStatusBadSize) << op.name << " step array, width 0";
    }
    // deep null: each element of a plane array, and each address of a P2 or C2 side
    const KroStatus deepBeforeSize =
        op.checks == Checks::NullSizeDeepNull ? kroStatusBadSize : kroStatusNullPointer;
    for (size_t k = 0; k < d.size(); ++k) {
        auto d2 = d;
        d2[k] = nullptr;
        EXPECT_EQ(call(s.data(), d2.data(), steps, {W, H}), kroStatusNullPointer) << op.name << " plane " << k;
        // a P3 element is a deep null; a P2 or C2 address is a plain null, tested first
        const KroStatus withBadSize = dstArray ? deepBeforeSize : kroStatusNullPointer;
        EXPECT_EQ(call(s.data(), d2.data(), steps, {0, H}), withBadSize) << op.name << " plane " << k << ", width 0";
    }
    if (srcPlanar)
        for (int k = 0; k < 3; ++k) {
            auto s2 = s;
            s2[k] = nullptr;
            EXPECT_EQ(call(s2.data(), d.data(), steps, {W, H}), kroStatusNullPointer) << op.name << " source " << k;
            EXPECT_EQ(call(s2.data(), d.data(), steps, {W, 0}), deepBeforeSize) << op.name << " source " << k;
        }
    // size: below the smallest region, zero, negative
    for (kroiSize bad : {kroiSize{op.minW - 1, H}, kroiSize{W, op.minH - 1}, kroiSize{0, 0}, kroiSize{-3, H},
                         kroiSize{W, -1}, kroiSize{INT32_MIN, H}})
        EXPECT_EQ(call(s.data(), d.data(), steps, bad), kroStatusBadSize)
            << op.name << " size " << bad.width << " x " << bad.height;
    for (size_t k = 0; k < im.dst.size(); ++k)
        EXPECT_TRUE(im.dst[k].snapshot() == before[k]) << op.name << ": a failing call wrote plane " << k;
}

}  // namespace kt
