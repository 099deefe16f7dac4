// Table-driven checks of the decoders from subsampled formats: each operation
// is one row (source layout, destination, span rule, forms, odd-column rule,
// check order) and one driver builds the expected image from the independent
// reference, sweeps widths and heights with independent plane steps, guards
// and canaries, and tests the statuses.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "harness.h"
#include "ref_decode.h"

namespace kt::dec {

enum class Src { C2, P3, P2 };
enum class Pk { YCbCr, CbYCr, YCrCb };  // packed 4:2:2 byte orders
enum class Dst { C3, C4, AC4Zero, P3 };
enum class SpanR { S16, S8, S4, All };
enum class OddR { Unwritten, O, OPrime, Plain, F };
enum class Chk {
    NullSize,          // addresses (-8), size (-6)
    SizeNull,          // size (-6), addresses (-8)
    DeepNullSize,      // addresses and plane elements (-8), size (-6)
    NullSizeDeepNull,  // addresses (-8), size (-6), plane elements (-8)
};

using Form = ref::Px3 (*)(int, int, int);
// src: plane addresses (one for C2, Y and pairs for P2, three for P3); srcSteps likewise.
using Call = std::function<KroStatus(const Kro8u* const* src, const int* srcSteps, Kro8u* const* dst, int dstStep,
                                     kroiSize roi, Kro8u aval)>;

struct DecOp {
    const char* name;
    Src src;
    Pk packed;      // C2 sources
    int bw, bh;     // chroma block
    bool crFirst;   // P3: element 1 is the Cr plane; P2: pairs stand Cr first
    Dst dst;
    bool bgr;
    SpanR span;
    Form mainForm, tailForm;
    OddR odd;
    Form oddForm;   // the odd column; for F the form of three leftovers (one or two take D7)
    Chk checks;
    int minW, minH;
    Call call;
    bool stepless = false;  // no steps: the call derives them
    bool oneRow = false;    // stepless 4:2:2: an even width and 256 pixels or more run as one row of W x H
};

inline bool is420(const DecOp& c) { return c.bh == 2; }

// ------------------------------------------------------------ images
struct Image {
    std::vector<Plane> planes;
};

inline int chromaCols(const DecOp& c, int w) {
    if (c.odd == OddR::Plain) return (w + 1) / 2;
    return w / c.bw;
}

inline Image makeSource(const DecOp& c, int w, int h, int pad, Guard g, bool neg) {
    Image im;
    if (c.src == Src::C2) {
        im.planes.emplace_back(2 * w, h, pad, g, neg);
        return im;
    }
    im.planes.emplace_back(w, h, pad, g, neg);
    const int ch = std::max(1, h / c.bh);
    const int more = c.stepless ? 0 : 1;  // stepless forms: every plane packed
    if (c.src == Src::P2) {
        im.planes.emplace_back(std::max(2, w & ~1), ch, pad + 3 * more, g, neg);
    } else {
        const int cw = std::max(1, chromaCols(c, w));
        im.planes.emplace_back(cw, ch, pad + 5 * more, g, neg);  // steps independent of each other and of luma
        im.planes.emplace_back(cw, ch, pad + 2 * more, g, neg);
    }
    return im;
}

inline int dstBytesPerPixel(Dst d) { return d == Dst::C3 ? 3 : d == Dst::P3 ? 1 : 4; }

inline Image makeDest(const DecOp& c, int w, int h, int pad, Guard g, bool neg) {
    Image im;
    const int k = c.dst == Dst::P3 ? 3 : 1;
    for (int i = 0; i < k; ++i) im.planes.emplace_back(w * dstBytesPerPixel(c.dst), h, pad, g, neg);
    return im;
}

// Samples of pixel x of row y as the catalogue places them: Y, Cb, Cr.
inline void readYCbCr(const DecOp& c, const Image& s, int x, int y, int& Y, int& Cb, int& Cr) {
    Y = Cb = Cr = 0;
    if (c.src == Src::C2) {
        const Kro8u* g = s.planes[0].row(y) + 4 * (x / 2);
        switch (c.packed) {
            case Pk::YCbCr: Y = g[x % 2 ? 2 : 0], Cb = g[1], Cr = g[3]; break;   // Y0 Cb Y1 Cr
            case Pk::CbYCr: Y = g[x % 2 ? 3 : 1], Cb = g[0], Cr = g[2]; break;   // Cb Y0 Cr Y1
            case Pk::YCrCb: Y = g[x % 2 ? 2 : 0], Cr = g[1], Cb = g[3]; break;   // Y0 Cr Y1 Cb
        }
        return;
    }
    Y = s.planes[0].row(y)[x];
    if (c.src == Src::P2) {
        const Kro8u* pr = s.planes[1].row(y / 2) + 2 * (x / 2);
        Cb = pr[c.crFirst ? 1 : 0];
        Cr = pr[c.crFirst ? 0 : 1];
        return;
    }
    const int cx = x / c.bw, cy = y / c.bh;
    const int a = s.planes[1].row(cy)[cx], b = s.planes[2].row(cy)[cx];
    Cb = c.crFirst ? b : a;
    Cr = c.crFirst ? a : b;
}

inline int spanOf(const DecOp& c, int w, int whole) {
    switch (c.span) {
        case SpanR::S16: return w / 16 * 16;
        case SpanR::S8: return w / 8 * 8;
        case SpanR::S4: return w / 4 * 4;
        default: return whole;
    }
}

inline void writePixel(const DecOp& c, const Image& d, std::vector<std::vector<uint8_t>>& snap, int x, int y,
                       ref::Px3 o, Kro8u aval) {
    if (c.bgr) std::swap(o[0], o[2]);
    if (c.dst == Dst::P3) {
        for (int k = 0; k < 3; ++k) d.planes[k].rowIn(snap[k], y)[x] = Kro8u(o[k]);
        return;
    }
    Kro8u* q = d.planes[0].rowIn(snap[0], y) + dstBytesPerPixel(c.dst) * x;
    for (int k = 0; k < 3; ++k) q[k] = Kro8u(o[k]);
    if (c.dst == Dst::C4) q[3] = aval;
    if (c.dst == Dst::AC4Zero) q[3] = 0;
}

// The destination as it must be after the call: its snapshot with the region's
// written pixels set by the reference.
inline std::vector<std::vector<uint8_t>> expected(const DecOp& c, const Image& s, const Image& d, int w, int h,
                                                  Kro8u aval) {
    std::vector<std::vector<uint8_t>> snap;
    for (auto& p : d.planes) snap.push_back(p.snapshot());
    const int rows = is420(c) ? h / 2 * 2 : h;
    const int whole = w / c.bw * c.bw;
    const int span = spanOf(c, w, whole);
    const bool oneRow = c.oneRow && w % 2 == 0 && int64_t(w) * h >= 256;
    const int64_t imageSpan = int64_t(w) * h / 16 * 16;
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < whole; ++x) {
            int Y, Cb, Cr;
            readYCbCr(c, s, x, y, Y, Cb, Cr);
            const bool main = oneRow ? int64_t(y) * w + x < imageSpan : x < span;
            writePixel(c, d, snap, x, y, (main ? c.mainForm : c.tailForm)(Y, Cb, Cr), aval);
        }
        if (whole == w || c.odd == OddR::Unwritten) continue;
        if (c.odd == OddR::Plain) {
            int Y, Cb, Cr;
            readYCbCr(c, s, whole, y, Y, Cb, Cr);
            writePixel(c, d, snap, whole, y, c.oddForm(Y, Cb, Cr), aval);
        } else if (c.odd == OddR::F) {
            const int b = whole / 4 - 1;
            for (int x = whole; x < w; ++x) {
                const int Y = s.planes[0].row(y)[x], Cb = s.planes[1].row(y)[b], Cr = s.planes[2].row(y)[b];
                writePixel(c, d, snap, x, y, (w - whole == 3 ? c.oddForm : ref::d7)(Y, Cb, Cr), aval);
            }
        } else {
            // packed rule O / O': luma, the own chroma byte of the last group, and the
            // other chroma of the group before (own again in rows too short)
            const Kro8u* row = s.planes[0].row(y);
            const int g = 4 * (whole / 2);
            int Y = 0, own = 0, other = 0;
            bool ownIsCb = true;
            switch (c.packed) {
                case Pk::YCbCr: Y = row[g], own = row[g + 1], ownIsCb = true; break;
                case Pk::CbYCr: Y = row[g + 1], own = row[g], ownIsCb = true; break;
                case Pk::YCrCb: Y = row[g], own = row[g + 1], ownIsCb = false; break;
            }
            const int minW = c.odd == OddR::O ? 3 : 5;
            if (w >= minW) {
                const int prevCr = c.packed == Pk::YCbCr ? row[g - 1] : c.packed == Pk::CbYCr ? row[g - 2] : 0;
                const int prevCb = c.packed == Pk::YCrCb ? row[g - 1] : 0;
                other = ownIsCb ? prevCr : prevCb;
            } else {
                other = own;
            }
            writePixel(c, d, snap, whole, y, ownIsCb ? c.oddForm(Y, own, other) : c.oddForm(Y, other, own), aval);
        }
    }
    return snap;
}

inline std::vector<const Kro8u*> origins(const Image& im) {
    std::vector<const Kro8u*> o;
    for (auto& p : im.planes) o.push_back(p.origin());
    return o;
}
inline std::vector<Kro8u*> dstOrigins(const Image& im) {
    std::vector<Kro8u*> o;
    for (auto& p : im.planes) o.push_back(p.origin());
    return o;
}
inline std::vector<int> steps(const Image& im) {
    std::vector<int> s;
    for (auto& p : im.planes) s.push_back(p.step);
    return s;
}

inline KroStatus wantStatus(const DecOp& c, int w, int h) {
    return is420(c) && (w % 2 || h % 2) ? kroStatusOddSize : kroStatusOk;
}

inline std::string compare(const DecOp& c, const Image& d, const std::vector<std::vector<uint8_t>>& want) {
    for (size_t k = 0; k < d.planes.size(); ++k) {
        const std::string e = diffPlane(d.planes[k], want[k], c.dst == Dst::P3 ? 1 : dstBytesPerPixel(c.dst));
        if (!e.empty()) return "plane " + std::to_string(k) + ": " + e;
    }
    return {};
}

// One call on fresh random images: "" or the first difference.
inline std::string runOnce(const DecOp& c, int w, int h, int pad, Guard g, bool neg, Kro8u aval = 77) {
    if (c.stepless) pad = 0, neg = false;
    Image s = makeSource(c, w, h, pad, g, neg);
    Image d = makeDest(c, w, h, c.stepless ? 0 : pad + 3, g, neg);
    auto want = expected(c, s, d, w, h, aval);
    std::vector<std::vector<uint8_t>> srcBefore;
    for (auto& p : s.planes) srcBefore.push_back(p.snapshot());
    auto so = origins(s);
    auto ss = steps(s);
    auto dO = dstOrigins(d);
    const KroStatus st = c.call(so.data(), ss.data(), dO.data(), d.planes[0].step, {w, h}, aval);
    if (st != wantStatus(c, w, h)) return "status " + std::to_string(st);
    const std::string e = compare(c, d, want);
    if (!e.empty()) return e;
    for (size_t k = 0; k < s.planes.size(); ++k)
        if (srcBefore[k] != s.planes[k].snapshot()) return "source changed";
    return {};
}

// Widths from 1 past three 16-pixel blocks and a few long ones, heights odd and
// even, tight and padded steps, guards after and before, negative steps, every
// start offset within a 16-byte line.
inline void sweep(const DecOp& c) {
    std::vector<int> ws;
    for (int w = std::max(1, c.minW); w <= 53; ++w) ws.push_back(w);
    for (int w : {64, 95, 126, 127, 129, 255}) ws.push_back(w);
    const std::vector<int> hs = is420(c) ? std::vector<int>{1, 2, 3, 4} : std::vector<int>{1, 3};
    for (int w : ws)
        for (int h : hs) {
            if (h < c.minH) continue;
            ASSERT_EQ(runOnce(c, w, h, 0, Guard::After, false), "") << c.name << " " << w << "x" << h << " tight";
            ASSERT_EQ(runOnce(c, w, h, 1 + w % 13, Guard::Before, false), "")
                << c.name << " " << w << "x" << h << " padded, guard before";
        }
    if (!c.stepless) {
        ASSERT_EQ(runOnce(c, 37, 6, 7, Guard::After, true), "") << c.name << " negative steps";
        for (int pad = 0; pad < 16; ++pad)
            ASSERT_EQ(runOnce(c, 45, 4, pad, Guard::After, false), "") << c.name << " pad " << pad;
    }
}

// Checks in their order; a failing call writes nothing. A region smaller than
// the operation's minimum is refused; a 4:2:0 region without a whole block is
// accepted with +35 and nothing written.
inline void checkStatuses(const DecOp& c) {
    const int w = 9, h = 4;
    Image s = makeSource(c, w, h, 0, Guard::After, false);
    Image d = makeDest(c, w, h, 0, Guard::After, false);
    std::vector<std::vector<uint8_t>> before;
    for (auto& p : d.planes) before.push_back(p.snapshot());
    auto so = origins(s);
    auto ss = steps(s);
    auto dO = dstOrigins(d);
    const int ds = d.planes[0].step;
    auto call = [&](const Kro8u* const* a, Kro8u* const* b, kroiSize r) { return c.call(a, ss.data(), b, ds, r, 1); };
    const bool sizeFirst = c.checks == Chk::SizeNull;
    const KroStatus nullWithBadSize = sizeFirst ? kroStatusBadSize : kroStatusNullPointer;

    // top-level addresses
    for (size_t k = 0; k < so.size(); ++k) {
        if (c.src == Src::P3) break;  // a plane array: its elements are tested below
        auto s2 = so;
        s2[k] = nullptr;
        EXPECT_EQ(call(s2.data(), dO.data(), {w, h}), kroStatusNullPointer) << c.name << " source " << k;
        EXPECT_EQ(call(s2.data(), dO.data(), {0, h}), nullWithBadSize) << c.name << " source " << k << " zero width";
    }
    if (c.src == Src::P3) {
        EXPECT_EQ(call(nullptr, dO.data(), {w, h}), kroStatusNullPointer) << c.name << " plane array";
        EXPECT_EQ(call(nullptr, dO.data(), {0, h}), kroStatusNullPointer) << c.name << " plane array, zero width";
    }
    if (c.dst == Dst::P3) {
        EXPECT_EQ(call(so.data(), nullptr, {w, h}), kroStatusNullPointer) << c.name << " destination array";
    } else {
        std::vector<Kro8u*> d2 = {nullptr};
        EXPECT_EQ(call(so.data(), d2.data(), {w, h}), kroStatusNullPointer) << c.name << " destination";
        EXPECT_EQ(call(so.data(), d2.data(), {w, 0}), nullWithBadSize) << c.name << " destination, zero height";
    }
    // sizes below the minimum
    std::vector<kroiSize> bad = {{0, h}, {w, 0}, {-1, h}, {w, -3}, {INT32_MIN, 1}};
    if (c.minW > 1) bad.push_back({c.minW - 1, h});
    if (c.minH > 1) bad.push_back({w, c.minH - 1});
    for (kroiSize r : bad) EXPECT_EQ(call(so.data(), dO.data(), r), kroStatusBadSize) << c.name << " " << r.width << "x" << r.height;
    // plane elements
    const bool deepFirst = c.checks == Chk::DeepNullSize;
    if (c.src == Src::P3)
        for (int k = 0; k < 3; ++k) {
            auto s2 = so;
            s2[k] = nullptr;
            EXPECT_EQ(call(s2.data(), dO.data(), {w, h}), kroStatusNullPointer) << c.name << " source plane " << k;
            EXPECT_EQ(call(s2.data(), dO.data(), {0, h}), deepFirst ? kroStatusNullPointer : kroStatusBadSize)
                << c.name << " source plane " << k << " zero width";
        }
    if (c.dst == Dst::P3)
        for (int k = 0; k < 3; ++k) {
            auto d2 = dO;
            d2[k] = nullptr;
            EXPECT_EQ(call(so.data(), d2.data(), {w, h}), kroStatusNullPointer) << c.name << " destination plane " << k;
            EXPECT_EQ(call(so.data(), d2.data(), {w, -1}), deepFirst ? kroStatusNullPointer : kroStatusBadSize)
                << c.name << " destination plane " << k << " negative height";
        }
    for (size_t k = 0; k < d.planes.size(); ++k)
        EXPECT_TRUE(d.planes[k].snapshot() == before[k]) << c.name << ": a failing call wrote";
    // the smallest accepted region
    EXPECT_EQ(call(so.data(), dO.data(), {c.minW, c.minH}), wantStatus(c, c.minW, c.minH)) << c.name;
    if (is420(c)) {
        Image d3 = makeDest(c, w, h, 0, Guard::After, false);
        std::vector<std::vector<uint8_t>> b3;
        for (auto& p : d3.planes) b3.push_back(p.snapshot());
        auto o3 = dstOrigins(d3);
        for (kroiSize r : {kroiSize{w, 1}, kroiSize{1, h}}) {
            if (r.width >= c.minW && r.height >= c.minH) {
                EXPECT_EQ(call(so.data(), o3.data(), r), kroStatusOddSize) << c.name;
            }
        }
        for (size_t k = 0; k < d3.planes.size(); ++k)
            EXPECT_TRUE(d3.planes[k].snapshot() == b3[k]) << c.name << ": a region without a whole block wrote";
    }
}

// ------------------------------------------------------------ call adapters
// One adapter for every entry shape, told apart by what the entry accepts:
// interleaved, three planes (steps as an array), Y and pairs, no steps; with
// or without the fourth sample's value.
template <class F>
inline Call call(F f) {
    using cp = const Kro8u*;
    using cpp = const Kro8u* const*;
    using pp = Kro8u* const*;
    using A = Kro8u;
    using R = kroiSize;
    return [f](cpp s, const int* ss, pp d, int ds, R r, A a) -> KroStatus {
        const Kro8u* s0 = s ? s[0] : nullptr;
        Kro8u* d0 = d ? d[0] : nullptr;
        if constexpr (std::is_invocable_v<F, cp, int, Kro8u*, int, R>) return f(s0, ss[0], d0, ds, r);
        else if constexpr (std::is_invocable_v<F, cp, int, Kro8u*, int, R, A>) return f(s0, ss[0], d0, ds, r, a);
        else if constexpr (std::is_invocable_v<F, cp, int, pp, int, R>) return f(s0, ss[0], d, ds, r);
        else if constexpr (std::is_invocable_v<F, cpp, const int*, Kro8u*, int, R>) return f(s, ss, d0, ds, r);
        else if constexpr (std::is_invocable_v<F, cpp, const int*, Kro8u*, int, R, A>) return f(s, ss, d0, ds, r, a);
        else if constexpr (std::is_invocable_v<F, cpp, const int*, pp, int, R>) return f(s, ss, d, ds, r);
        else if constexpr (std::is_invocable_v<F, cp, int, cp, int, Kro8u*, int, R>)
            return f(s[0], ss[0], s[1], ss[1], d0, ds, r);
        else if constexpr (std::is_invocable_v<F, cp, int, cp, int, Kro8u*, int, R, A>)
            return f(s[0], ss[0], s[1], ss[1], d0, ds, r, a);
        else if constexpr (std::is_invocable_v<F, cpp, Kro8u*, R>) return f(s, d0, r);
        else return f(s, d, r);
    };
}

}  // namespace kt::dec

namespace kt::dec {

// The same image through the aligned path (addresses and steps multiples of 16)
// and through the unaligned one (a step or address off by 4): both must give
// the reference's bytes, and the same bytes as each other.
inline void alignedTwins(const DecOp& c, int w, int h) {
    auto padTo16 = [](int bytes) { return (16 - bytes % 16) % 16; };
    const int srcRow = c.src == Src::C2 ? 2 * w : w;
    const int dstRow = w * dstBytesPerPixel(c.dst);
    for (int variant = 0; variant < 3; ++variant) {
        // 0: all aligned; 1: destination step off; 2: source step off
        Image s = makeSource(c, w, h, padTo16(srcRow) + (variant == 2 ? 4 : 0), Guard::Before, false);
        Image dA = makeDest(c, w, h, padTo16(dstRow), Guard::Before, false);
        Image dB = makeDest(c, w, h, padTo16(dstRow) + (variant == 1 ? 4 : 0), Guard::Before, false);
        ASSERT_EQ(reinterpret_cast<uintptr_t>(dA.planes[0].origin()) % 16, 0u);
        auto so = origins(s);
        auto ss = steps(s);
        auto want = expected(c, s, dB, w, h, 33);
        auto oB = dstOrigins(dB);
        ASSERT_EQ(c.call(so.data(), ss.data(), oB.data(), dB.planes[0].step, {w, h}, 33), wantStatus(c, w, h));
        ASSERT_EQ(compare(c, dB, want), "") << c.name << " variant " << variant;
        auto oA = dstOrigins(dA);
        ASSERT_EQ(c.call(so.data(), ss.data(), oA.data(), dA.planes[0].step, {w, h}, 33), wantStatus(c, w, h));
        for (int y = 0; y < h; ++y)
            ASSERT_EQ(0, std::memcmp(dA.planes[0].row(y), dB.planes[0].row(y), size_t(dstRow)))
                << c.name << " variant " << variant << " row " << y;
    }
}

}  // namespace kt::dec
