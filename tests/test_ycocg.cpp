// YCoCg: every operation against the independent reference at every column
// (random, extreme and small samples; tight, padded, unaligned and negative
// steps; guards on both sides), checks and their order with nothing written on
// failure, exhaustive sweeps of the 8-bit forms, round trips of the reversible
// transforms, and the model's known values.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "harness.h"
#include "ref_ycocg.h"

using namespace kt;
namespace R = refycocg;

namespace {

enum class Ty { U8, S16, S32 };
inline int sizeOf(Ty t) { return t == Ty::U8 ? 1 : t == Ty::S16 ? 2 : 4; }

using Ref = R::T3 (*)(int64_t, int64_t, int64_t);
// Uniform call: the interleaved side is element 0 of its array; aval as an int.
using Call = std::function<KroStatus(const void* const* src, int srcStep, void* const* dst, int dstStep, kroiSize roi,
                                     int aval)>;

struct Op {
    const char* name;
    bool forward;  // interleaved -> planes; else planes -> interleaved
    Ty srcTy, dstTy;
    int cn;          // samples a pixel on the interleaved side
    bool sizeCheck;  // width and height tested (-6); else an empty region returns 0
    int mainCover;   // pixels 0 .. (width & ~(mainCover - 1)) - 1 use `main`; 0: `main` everywhere
    Ref main, tail;
    Call call;
};

// ------------------------------------------------------------ adapters
template <class S, class D>
Call fwd(KroStatus (*f)(const S*, int, D* const[3], int, kroiSize)) {
    return [f](const void* const* s, int ss, void* const* d, int ds, kroiSize r, int) {
        return f(s ? static_cast<const S*>(s[0]) : nullptr, ss, reinterpret_cast<D* const*>(d), ds, r);
    };
}
template <class S, class D>
Call inv(KroStatus (*f)(const S* const[3], int, D*, int, kroiSize)) {
    return [f](const void* const* s, int ss, void* const* d, int ds, kroiSize r, int) {
        return f(reinterpret_cast<const S* const*>(s), ss, d ? static_cast<D*>(d[0]) : nullptr, ds, r);
    };
}
template <class S, class D>
Call invA(KroStatus (*f)(const S* const[3], int, D*, int, kroiSize, D)) {
    return [f](const void* const* s, int ss, void* const* d, int ds, kroiSize r, int a) {
        return f(reinterpret_cast<const S* const*>(s), ss, d ? static_cast<D*>(d[0]) : nullptr, ds, r,
                 static_cast<D>(a));
    };
}

const std::vector<Op>& ops() {
    constexpr Ty U8 = Ty::U8, S16 = Ty::S16, S32 = Ty::S32;
    static const std::vector<Op> v = {
        {"kroiRGBToYCoCg_8u_C3P3R", true, U8, U8, 3, true, 0, R::fwd1, R::fwd1, fwd(kroiRGBToYCoCg_8u_C3P3R)},
        {"kroiYCoCgToRGB_8u_P3C3R", false, U8, U8, 3, false, 0, R::inv1, R::inv1, inv(kroiYCoCgToRGB_8u_P3C3R)},
        {"kroiBGRToYCoCg_8u16s_C3P3R", true, U8, S16, 3, true, 0, R::fwd2, R::fwd2, fwd(kroiBGRToYCoCg_8u16s_C3P3R)},
        {"kroiBGRToYCoCg_8u16s_C4P3R", true, U8, S16, 4, true, 0, R::fwd2, R::fwd2, fwd(kroiBGRToYCoCg_8u16s_C4P3R)},
        {"kroiBGRToYCoCg_Rev_8u16s_C3P3R", true, U8, S16, 3, true, 0, R::fwd3, R::fwd3,
         fwd(kroiBGRToYCoCg_Rev_8u16s_C3P3R)},
        {"kroiBGRToYCoCg_Rev_8u16s_C4P3R", true, U8, S16, 4, true, 0, R::fwd3, R::fwd3,
         fwd(kroiBGRToYCoCg_Rev_8u16s_C4P3R)},
        {"kroiSBGRToYCoCg_16s_C3P3R", true, S16, S16, 3, true, 4, R::fwd4Main, R::fwd4Tail,
         fwd(kroiSBGRToYCoCg_16s_C3P3R)},
        {"kroiSBGRToYCoCg_16s_C4P3R", true, S16, S16, 4, true, 4, R::fwd4Main, R::fwd4Tail,
         fwd(kroiSBGRToYCoCg_16s_C4P3R)},
        {"kroiSBGRToYCoCg_16s32s_C3P3R", true, S16, S32, 3, true, 0, R::fwd2, R::fwd2,
         fwd(kroiSBGRToYCoCg_16s32s_C3P3R)},
        {"kroiSBGRToYCoCg_16s32s_C4P3R", true, S16, S32, 4, false, 0, R::fwd2, R::fwd2,
         fwd(kroiSBGRToYCoCg_16s32s_C4P3R)},
        {"kroiSBGRToYCoCg_Rev_16s_C3P3R", true, S16, S16, 3, false, 0, R::fwd5, R::fwd5,
         fwd(kroiSBGRToYCoCg_Rev_16s_C3P3R)},
        {"kroiSBGRToYCoCg_Rev_16s_C4P3R", true, S16, S16, 4, false, 0, R::fwd5, R::fwd5,
         fwd(kroiSBGRToYCoCg_Rev_16s_C4P3R)},
        {"kroiSBGRToYCoCg_Rev_16s32s_C3P3R", true, S16, S32, 3, true, 0, R::fwd3, R::fwd3,
         fwd(kroiSBGRToYCoCg_Rev_16s32s_C3P3R)},
        {"kroiSBGRToYCoCg_Rev_16s32s_C4P3R", true, S16, S32, 4, false, 0, R::fwd3, R::fwd3,
         fwd(kroiSBGRToYCoCg_Rev_16s32s_C4P3R)},
        {"kroiYCoCgToBGR_16s8u_P3C3R", false, S16, U8, 3, false, 0, R::inv2Sat16, R::inv2Sat16,
         inv(kroiYCoCgToBGR_16s8u_P3C3R)},
        {"kroiYCoCgToBGR_16s8u_P3C4R", false, S16, U8, 4, false, 0, R::inv2Sat16, R::inv2Sat16,
         invA(kroiYCoCgToBGR_16s8u_P3C4R)},
        {"kroiYCoCgToBGR_Rev_16s8u_P3C3R", false, S16, U8, 3, false, 0, R::inv3Sat16, R::inv3Sat16,
         inv(kroiYCoCgToBGR_Rev_16s8u_P3C3R)},
        {"kroiYCoCgToBGR_Rev_16s8u_P3C4R", false, S16, U8, 4, false, 0, R::inv3Sat16, R::inv3Sat16,
         invA(kroiYCoCgToBGR_Rev_16s8u_P3C4R)},
        {"kroiYCoCgToSBGR_16s_P3C3R", false, S16, S16, 3, false, 0, R::inv2Wrap16, R::inv2Wrap16,
         inv(kroiYCoCgToSBGR_16s_P3C3R)},
        {"kroiYCoCgToSBGR_16s_P3C4R", false, S16, S16, 4, true, 0, R::inv2Wrap16, R::inv2Wrap16,
         invA(kroiYCoCgToSBGR_16s_P3C4R)},
        {"kroiYCoCgToSBGR_32s16s_P3C3R", false, S32, S16, 3, true, 0, R::inv2Wrap32, R::inv2Wrap32,
         inv(kroiYCoCgToSBGR_32s16s_P3C3R)},
        {"kroiYCoCgToSBGR_32s16s_P3C4R", false, S32, S16, 4, true, 0, R::inv2Wrap32, R::inv2Wrap32,
         invA(kroiYCoCgToSBGR_32s16s_P3C4R)},
        {"kroiYCoCgToSBGR_Rev_16s_P3C3R", false, S16, S16, 3, false, 0, R::inv3Wrap16, R::inv3Wrap16,
         inv(kroiYCoCgToSBGR_Rev_16s_P3C3R)},
        {"kroiYCoCgToSBGR_Rev_16s_P3C4R", false, S16, S16, 4, false, 0, R::inv3Wrap16, R::inv3Wrap16,
         invA(kroiYCoCgToSBGR_Rev_16s_P3C4R)},
        {"kroiYCoCgToSBGR_Rev_32s16s_P3C3R", false, S32, S16, 3, false, 0, R::inv3Wrap32, R::inv3Wrap32,
         inv(kroiYCoCgToSBGR_Rev_32s16s_P3C3R)},
        {"kroiYCoCgToSBGR_Rev_32s16s_P3C4R", false, S32, S16, 4, false, 0, R::inv3Wrap32, R::inv3Wrap32,
         invA(kroiYCoCgToSBGR_Rev_32s16s_P3C4R)},
    };
    return v;
}

// Interleaved sides of every operation but the first two hold B, G, R.
bool isBgr(const Op& o) {
    return std::strncmp(o.name, "kroiRGB", 7) != 0 && std::strcmp(o.name, "kroiYCoCgToRGB_8u_P3C3R") != 0;
}

// ------------------------------------------------------------ images of typed samples
struct Image {
    Ty ty;
    int cn;  // samples a pixel: 1 for each of three planes
    std::vector<Plane> planes;
    Image(Ty t, bool planar, int cnInterleaved, int width, int height, int pad, Guard g, bool negStep)
        : ty(t), cn(planar ? 1 : cnInterleaved) {
        for (int k = 0; k < (planar ? 3 : 1); ++k) planes.emplace_back(width * cn * sizeOf(t), height, pad, g, negStep);
    }
    bool planar() const { return planes.size() == 3; }
    int step() const { return planes[0].step; }
    uint8_t* at(int k, int x, int y) const {
        return planar() ? planes[k].row(y) + sizeOf(ty) * x : planes[0].row(y) + sizeOf(ty) * (cn * x + k);
    }
    uint8_t* atIn(std::vector<std::vector<uint8_t>>& snap, int k, int x, int y) const {
        const int p = planar() ? k : 0;
        return snap[p].data() + (at(k, x, y) - planes[p].buf.data());
    }
    static int64_t read(Ty t, const uint8_t* p) {
        int16_t s;
        int32_t l;
        if (t == Ty::U8) return *p;
        if (t == Ty::S16) return std::memcpy(&s, p, 2), s;
        return std::memcpy(&l, p, 4), l;
    }
    static void write(Ty t, uint8_t* p, int64_t v) {
        const int16_t s = static_cast<int16_t>(v);
        const int32_t l = static_cast<int32_t>(v);
        if (t == Ty::U8) *p = static_cast<uint8_t>(v);
        if (t == Ty::S16) std::memcpy(p, &s, 2);
        if (t == Ty::S32) std::memcpy(p, &l, 4);
    }
    int64_t get(int k, int x, int y) const { return read(ty, at(k, x, y)); }
    void set(int k, int x, int y, int64_t v) const { write(ty, at(k, x, y), v); }
    std::vector<void*> dst() const {
        std::vector<void*> o;
        for (auto& p : planes) o.push_back(p.origin());
        return o;
    }
    std::vector<const void*> csrc() const {
        const auto d = dst();
        return {d.begin(), d.end()};
    }
    std::vector<std::vector<uint8_t>> snapshot() const {
        std::vector<std::vector<uint8_t>> s;
        for (auto& p : planes) s.push_back(p.snapshot());
        return s;
    }
    bool equals(const std::vector<std::vector<uint8_t>>& s) const {
        for (size_t k = 0; k < planes.size(); ++k)
            if (planes[k].snapshot() != s[k]) return false;
        return true;
    }
};

// What the source samples hold: random bit patterns, extremes of the type, or
// small numbers (the range the forward transforms produce).
enum class Fill { Random, Extreme, Small };

int64_t pick(Ty t, Fill f) {
    auto& r = rng();
    static const int64_t ex8[] = {0, 255, 1, 254, 128, 127};
    static const int64_t ex16[] = {-32768, 32767, 0, 255, -1, 1, -32767, 256, -256, 16384, -16385};
    static const int64_t ex32[] = {INT32_MIN, INT32_MAX, 0,     255,    -1,     65535,   65536,        -65536,
                                   32767,     -32768,    32768, -32769, 131071, -131072, INT32_MIN + 1};
    if (t == Ty::U8) return f == Fill::Extreme ? ex8[r() % 6] : int64_t(r() & 255);
    if (f == Fill::Small) return int64_t(r() % 601) - 300;
    if (t == Ty::S16) return f == Fill::Extreme ? ex16[r() % 11] : int64_t(int16_t(r()));
    return f == Fill::Extreme ? ex32[r() % 15] : int64_t(int32_t(r()));
}

void fill(const Image& im, int width, int height, Fill f) {
    if (f == Fill::Random) return;  // the planes start as random bytes
    const int k3 = im.planar() ? 3 : im.cn;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int k = 0; k < k3; ++k) im.set(k, x, y, pick(im.ty, f));
}

// One call on fresh images; "" or the first difference.
std::string runOnce(const Op& op, int width, int height, int srcPad, int dstPad, Guard g, bool negStep, Fill f,
                    int aval) {
    Image src(op.srcTy, !op.forward, op.cn, width, height, srcPad, g, negStep);
    Image dst(op.dstTy, op.forward, op.cn, width, height, dstPad, g, negStep);
    fill(src, width, height, f);
    auto want = dst.snapshot();
    const bool bgr = isBgr(op);
    const int cover = op.mainCover ? (width & ~(op.mainCover - 1)) : width;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            int64_t in[3];
            for (int k = 0; k < 3; ++k) in[k] = src.get(op.forward && bgr ? 2 - k : k, x, y);
            const R::T3 o = (x < cover ? op.main : op.tail)(in[0], in[1], in[2]);
            for (int k = 0; k < 3; ++k)
                Image::write(op.dstTy, dst.atIn(want, !op.forward && bgr ? 2 - k : k, x, y), o[k]);
            if (!op.forward && op.cn == 4) Image::write(op.dstTy, dst.atIn(want, 3, x, y), aval);
        }
    const auto srcBefore = src.snapshot();
    const auto s = src.csrc();
    const auto d = dst.dst();
    const KroStatus st = op.call(s.data(), src.step(), d.data(), dst.step(), {width, height}, aval);
    if (st != kroStatusOk) return "status " + std::to_string(st);
    for (size_t k = 0; k < dst.planes.size(); ++k) {
        const std::string e = diffPlane(dst.planes[k], want[k], sizeOf(op.dstTy) * dst.cn);
        if (!e.empty()) return "plane " + std::to_string(k) + ": " + e;
    }
    if (!src.equals(srcBefore)) return "source changed";
    return {};
}

class YCoCgOp : public ::testing::TestWithParam<int> {
protected:
    const Op& op() const { return ops()[GetParam()]; }
};

// Every width from 1 past three 16-pixel steps and beyond, one and three rows;
// tight steps with the guard after, padded and unequal steps (not multiples of
// the sample size either) with the guard before; three kinds of samples.
TEST_P(YCoCgOp, MatchesReferenceAtEveryColumn) {
    const Op& o = op();
    const Fill fills[] = {Fill::Random, Fill::Extreme, Fill::Small};
    for (int w : sweepWidths(16)) {
        for (int h : {1, 3}) {
            const Fill f = fills[(w + h) % 3];
            ASSERT_EQ(runOnce(o, w, h, 0, 0, Guard::After, false, f, 1234), "")
                << o.name << " width " << w << " height " << h << " tight";
            ASSERT_EQ(runOnce(o, w, h, 4 + (w % 9), 1 + (w % 13), Guard::Before, false, f, -77), "")
                << o.name << " width " << w << " height " << h << " padded";
        }
    }
    for (Fill f : fills)
        ASSERT_EQ(runOnce(o, 41, 5, 6, 10, Guard::After, true, f, 255), "") << o.name << " negative step";
    for (int pad = 0; pad < 16; ++pad)
        ASSERT_EQ(runOnce(o, 53, 2, pad, 15 - pad, Guard::After, false, Fill::Extreme, 7), "")
            << o.name << " pad " << pad;
}

// Null addresses first (-8), then the size where the member checks it (-6);
// members without a size check convert nothing for an empty region and return 0.
// No failing or empty call writes anything.
TEST_P(YCoCgOp, ChecksInOrderAndWritesNothing) {
    const Op& o = op();
    const int w = 9, h = 2;
    Image src(o.srcTy, !o.forward, o.cn, w, h, 3, Guard::After, false);
    Image dst(o.dstTy, o.forward, o.cn, w, h, 3, Guard::After, false);
    const auto before = dst.snapshot();
    const auto s = src.csrc();
    const auto d = dst.dst();
    const KroStatus sizeStatus = o.sizeCheck ? kroStatusBadSize : kroStatusOk;
    const kroiSize good{w, h};
    const kroiSize bad[] = {{0, h}, {w, 0}, {-1, h}, {w, -1}, {0, 0}, {INT_MIN, 1}, {1, INT_MIN}};

    EXPECT_EQ(o.call(nullptr, src.step(), d.data(), dst.step(), good, 1), kroStatusNullPointer);
    EXPECT_EQ(o.call(s.data(), src.step(), nullptr, dst.step(), good, 1), kroStatusNullPointer);
    for (const kroiSize& b : bad) {
        EXPECT_EQ(o.call(nullptr, src.step(), d.data(), dst.step(), b, 1), kroStatusNullPointer) << "null before size";
        EXPECT_EQ(o.call(s.data(), src.step(), nullptr, dst.step(), b, 1), kroStatusNullPointer) << "null before size";
        EXPECT_EQ(o.call(s.data(), src.step(), d.data(), dst.step(), b, 1), sizeStatus)
            << "size " << b.width << " x " << b.height;
    }
    for (int k = 0; k < 3; ++k) {
        auto s2 = s;
        auto d2 = d;
        if (o.forward)
            d2[k] = nullptr;
        else
            s2[k] = nullptr;
        EXPECT_EQ(o.call(s2.data(), src.step(), d2.data(), dst.step(), good, 1), kroStatusNullPointer) << "plane " << k;
        EXPECT_EQ(o.call(s2.data(), src.step(), d2.data(), dst.step(), {0, h}, 1), kroStatusNullPointer)
            << "plane " << k << " before size";
        EXPECT_EQ(o.call(s2.data(), src.step(), d2.data(), dst.step(), {w, -3}, 1), kroStatusNullPointer)
            << "plane " << k << " before size";
    }
    EXPECT_TRUE(dst.equals(before)) << "a failing or empty call wrote";
    // a step of 0 is accepted: every row read from and written to the same place
    EXPECT_EQ(o.call(s.data(), 0, d.data(), 0, good, 1), kroStatusOk);
}

INSTANTIATE_TEST_SUITE_P(All, YCoCgOp, ::testing::Range(0, 26),
                         [](const ::testing::TestParamInfo<int>& i) { return std::string(ops()[i.param].name); });

// ------------------------------------------------------------ exhaustive 8-bit sweeps
// Every triple of 8-bit samples (a scattered sample under sanitizers) through
// the vector steps (width 4096) and through the tail (width 3), in chunks.
const Op& byName(const char* n) {
    for (auto& o : ops())
        if (std::strcmp(o.name, n) == 0) return o;
    std::abort();
}

void sweepTriples(const Op& o) {
    const int64_t total = KROCC_FULL_SWEEPS ? (int64_t(1) << 24) : (int64_t(1) << 18);
    const int64_t chunk = std::min<int64_t>(total, int64_t(1) << 20);
    const bool bgr = isBgr(o);
    for (int width : {4096, 3}) {
        const int height = static_cast<int>((chunk + width - 1) / width);
        Image src(o.srcTy, !o.forward, o.cn, width, height, 0, Guard::After, false);
        Image dst(o.dstTy, o.forward, o.cn, width, height, 0, Guard::After, false);
        int64_t bad = 0;
        for (int64_t base = 0; base < total; base += chunk) {
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    const int64_t i = base + int64_t(y) * width + x;
                    const uint32_t t = KROCC_FULL_SWEEPS ? uint32_t(i) : uint32_t(i * 2654435761u);
                    const int64_t v[3] = {(t >> 16) & 255, (t >> 8) & 255, t & 255};
                    for (int k = 0; k < 3; ++k) src.set(o.forward && bgr ? 2 - k : k, x, y, v[k]);
                }
            const auto s = src.csrc();
            const auto d = dst.dst();
            ASSERT_EQ(o.call(s.data(), src.step(), d.data(), dst.step(), {width, height}, 9), kroStatusOk);
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    int64_t in[3];
                    for (int k = 0; k < 3; ++k) in[k] = src.get(o.forward && bgr ? 2 - k : k, x, y);
                    const R::T3 e = o.main(in[0], in[1], in[2]);
                    for (int k = 0; k < 3; ++k) {
                        const int64_t got = dst.get(!o.forward && bgr ? 2 - k : k, x, y);
                        if (got != e[k] && bad++ < 3)
                            ADD_FAILURE() << o.name << " width " << width << " (" << in[0] << "," << in[1] << ","
                                          << in[2] << ") result " << k << ": " << got << " want " << e[k];
                    }
                }
        }
        EXPECT_EQ(bad, 0) << o.name << " width " << width;
    }
}

class YCoCgExhaustive : public ::testing::TestWithParam<const char*> {};
TEST_P(YCoCgExhaustive, EveryTriple) { sweepTriples(byName(GetParam())); }
INSTANTIATE_TEST_SUITE_P(Forms8, YCoCgExhaustive,
                         ::testing::Values("kroiRGBToYCoCg_8u_C3P3R", "kroiYCoCgToRGB_8u_P3C3R", "kroiBGRToYCoCg_8u16s_C3P3R",
                                           "kroiBGRToYCoCg_8u16s_C4P3R", "kroiBGRToYCoCg_Rev_8u16s_C3P3R",
                                           "kroiBGRToYCoCg_Rev_8u16s_C4P3R"),
                         [](const auto& i) { return std::string(i.param).substr(4); });

// ------------------------------------------------------------ round trips
// A source image through a reversible forward operation and back through its
// inverse comes back exactly (the 16-bit pair by its wrap-around); the fourth
// sample takes aval.
void roundTrip(const char* fwdName, const char* invName, int width, int height,
               const std::function<void(const Image&)>& fillSource) {
    const Op& f = byName(fwdName);
    const Op& i = byName(invName);
    Image src(f.srcTy, false, f.cn, width, height, 6, Guard::After, false);
    Image mid(f.dstTy, true, 1, width, height, 2, Guard::Before, false);
    Image back(i.dstTy, false, i.cn, width, height, 0, Guard::After, false);
    fillSource(src);
    const auto s = src.csrc();
    const auto m = mid.dst();
    const std::vector<const void*> mc(m.begin(), m.end());
    const auto b = back.dst();
    ASSERT_EQ(f.call(s.data(), src.step(), m.data(), mid.step(), {width, height}, 0), kroStatusOk);
    ASSERT_EQ(i.call(mc.data(), mid.step(), b.data(), back.step(), {width, height}, 100), kroStatusOk);
    int64_t bad = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            for (int k = 0; k < 3; ++k) bad += back.get(k, x, y) != src.get(k, x, y);
            if (i.cn == 4) bad += back.get(3, x, y) != 100;
        }
    EXPECT_EQ(bad, 0) << fwdName << " then " << invName << ", width " << width;
}

// Every 8-bit BGR triple, through the vector steps and the tail both.
TEST(YCoCgRoundTrip, Reversible8BitEveryTriple) {
    const int64_t total = KROCC_FULL_SWEEPS ? (int64_t(1) << 24) : (int64_t(1) << 18);
    for (int cn : {3, 4})
        for (int width : {4096, 5}) {
            const int height = static_cast<int>((total + width - 1) / width);
            roundTrip(cn == 3 ? "kroiBGRToYCoCg_Rev_8u16s_C3P3R" : "kroiBGRToYCoCg_Rev_8u16s_C4P3R",
                      cn == 3 ? "kroiYCoCgToBGR_Rev_16s8u_P3C3R" : "kroiYCoCgToBGR_Rev_16s8u_P3C4R", width, height,
                      [&](const Image& im) {
                          for (int y = 0; y < height; ++y)
                              for (int x = 0; x < width; ++x) {
                                  const int64_t n = int64_t(y) * width + x;
                                  const uint32_t t = KROCC_FULL_SWEEPS ? uint32_t(n) : uint32_t(n * 2654435761u);
                                  for (int k = 0; k < 3; ++k) im.set(k, x, y, (t >> (8 * k)) & 255);
                              }
                      });
        }
}

TEST(YCoCgRoundTrip, LossyPairIsNot) {
    const Kro8u bgr[3 * 4] = {0, 0, 255, 1, 2, 4, 255, 254, 0, 7, 100, 200};
    Kro16s y[4], co[4], cg[4];
    Kro16s* const p[3] = {y, co, cg};
    const Kro16s* const pc[3] = {y, co, cg};
    Kro8u back[12];
    ASSERT_EQ(kroiBGRToYCoCg_8u16s_C3P3R(bgr, 12, p, 8, {4, 1}), kroStatusOk);
    ASSERT_EQ(kroiYCoCgToBGR_16s8u_P3C3R(pc, 8, back, 12, {4, 1}), kroStatusOk);
    EXPECT_NE(std::memcmp(bgr, back, 12), 0);
}

// Random and extreme 16-bit images through the reversible 16-bit pairs.
TEST(YCoCgRoundTrip, Reversible16Bit) {
    const char* pairs[][2] = {{"kroiSBGRToYCoCg_Rev_16s_C3P3R", "kroiYCoCgToSBGR_Rev_16s_P3C3R"},
                              {"kroiSBGRToYCoCg_Rev_16s_C4P3R", "kroiYCoCgToSBGR_Rev_16s_P3C4R"},
                              {"kroiSBGRToYCoCg_Rev_16s32s_C3P3R", "kroiYCoCgToSBGR_Rev_32s16s_P3C3R"},
                              {"kroiSBGRToYCoCg_Rev_16s32s_C4P3R", "kroiYCoCgToSBGR_Rev_32s16s_P3C4R"}};
    for (auto& p : pairs)
        for (Fill f : {Fill::Random, Fill::Extreme})
            for (int width : {203, 7}) roundTrip(p[0], p[1], width, 41, [&](const Image& im) { fill(im, width, 41, f); });
}

// ------------------------------------------------------------ known values
TEST(YCoCgValues, BlueRedThroughBothForward8BitForms) {
    Kro8u bgr[3 * 17];
    for (int i = 0; i < 17; ++i) bgr[3 * i] = 0, bgr[3 * i + 1] = 0, bgr[3 * i + 2] = 255;
    Kro16s y[17], co[17], cg[17];
    Kro16s* const p[3] = {y, co, cg};
    ASSERT_EQ(kroiBGRToYCoCg_8u16s_C3P3R(bgr, 51, p, 34, {17, 1}), kroStatusOk);
    for (int x : {0, 16}) EXPECT_EQ((std::vector<int>{y[x], co[x], cg[x]}), (std::vector<int>{64, 128, -64}));
    ASSERT_EQ(kroiBGRToYCoCg_Rev_8u16s_C3P3R(bgr, 51, p, 34, {17, 1}), kroStatusOk);
    for (int x : {0, 16}) EXPECT_EQ((std::vector<int>{y[x], co[x], cg[x]}), (std::vector<int>{63, 255, -127}));
}

TEST(YCoCgValues, ChromaOf32768IsClampedInMainPathAndWrappedInTail) {
    Kro16s bgr[3 * 5];
    for (int i = 0; i < 5; ++i) bgr[3 * i] = -32768, bgr[3 * i + 1] = 0, bgr[3 * i + 2] = 32767;
    Kro16s y[5], co[5], cg[5];
    Kro16s* const p[3] = {y, co, cg};
    ASSERT_EQ(kroiSBGRToYCoCg_16s_C3P3R(bgr, 30, p, 10, {5, 1}), kroStatusOk);
    for (int x = 0; x < 4; ++x) EXPECT_EQ(co[x], 32767) << x;
    EXPECT_EQ(co[4], -32768);
}

TEST(YCoCgValues, ReversibleWrapAroundAgainst32Bits) {
    const Kro16s bgr[3] = {23955, 32767, -32768};
    Kro16s y, co, cg;
    Kro16s* const p[3] = {&y, &co, &cg};
    ASSERT_EQ(kroiSBGRToYCoCg_Rev_16s_C3P3R(bgr, 6, p, 2, {1, 1}), kroStatusOk);
    EXPECT_EQ(y, 30564);
    EXPECT_EQ(co, 8813);
    EXPECT_EQ(cg, 4406);
    Kro32s y32, co32, cg32;
    Kro32s* const p32[3] = {&y32, &co32, &cg32};
    ASSERT_EQ(kroiSBGRToYCoCg_Rev_16s32s_C3P3R(bgr, 6, p32, 4, {1, 1}), kroStatusOk);
    EXPECT_EQ(co32, -56723);
}

TEST(YCoCgValues, SaturatedInverseAndLimitedForwardChroma) {
    const Kro16s y[9] = {300, 300, 300, 300, 300, 300, 300, 300, 300}, z[9] = {};
    const Kro16s* const p[3] = {y, z, z};
    Kro8u bgr[27];
    ASSERT_EQ(kroiYCoCgToBGR_16s8u_P3C3R(p, 18, bgr, 27, {9, 1}), kroStatusOk);
    for (int i = 0; i < 27; ++i) EXPECT_EQ(bgr[i], 255) << i;

    const Kro8u rgb[3] = {255, 0, 0};
    Kro8u Y, Co, Cg;
    Kro8u* const q[3] = {&Y, &Co, &Cg};
    ASSERT_EQ(kroiRGBToYCoCg_8u_C3P3R(rgb, 3, q, 1, {1, 1}), kroStatusOk);
    EXPECT_EQ(Y, 64);
    EXPECT_EQ(Co, 255);
    EXPECT_EQ(Cg, 64);
}

}  // namespace
