// Gamma: all 36 operations against the independent reference at every width
// to past three float blocks, every start offset, padded steps with canaries
// and guarded buffers; every 8-bit and 16-bit input; float edge values bit for
// bit; the caller's rounding mode and float state kept; check order; the
// known values.
#include <gtest/gtest.h>

#include <cfenv>
#include <cfloat>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>

#include "harness.h"
#include "krocc.h"
#include "ref_gamma.h"
#include "tone/gamma_forms.h"

using namespace kt;

namespace {

enum class Ty { U8, U16, F32 };
enum class Lay { C3, AC4, P3 };

// Every operation called through one shape: planes (one for interleaved
// sides), byte steps, region, range (ignored by the integer forms). In-place
// forms use the destination side only.
using Call = KroStatus (*)(uint8_t* const* src, int ss, uint8_t* const* dst, int ds, kroiSize r, float lo, float hi);

struct Op {
    const char* name;
    Ty ty;
    Lay lay;
    bool inPlace, forward, wide;
    Call call;
};

// One adapter for every entry shape: interleaved, in-place, planar, with or
// without the range.
template <class T, auto Fn>
KroStatus callAs(uint8_t* const* s, int ss, uint8_t* const* d, int ds, kroiSize r, float lo, float hi) {
    using F = decltype(Fn);
    T* s0 = s ? reinterpret_cast<T*>(s[0]) : nullptr;
    T* d0 = d ? reinterpret_cast<T*>(d[0]) : nullptr;
    auto sp = reinterpret_cast<const T* const*>(s);
    auto dp = reinterpret_cast<T* const*>(d);
    if constexpr (std::is_invocable_v<F, const T*, int, T*, int, kroiSize>) return Fn(s0, ss, d0, ds, r);
    else if constexpr (std::is_invocable_v<F, T*, int, kroiSize>) return Fn(d0, ds, r);
    else if constexpr (std::is_invocable_v<F, const T* const*, int, T* const*, int, kroiSize>) return Fn(sp, ss, dp, ds, r);
    else if constexpr (std::is_invocable_v<F, T* const*, int, kroiSize>) return Fn(dp, ds, r);
    else if constexpr (std::is_invocable_v<F, const T*, int, T*, int, kroiSize, float, float>)
        return Fn(s0, ss, d0, ds, r, lo, hi);
    else if constexpr (std::is_invocable_v<F, T*, int, kroiSize, float, float>) return Fn(d0, ds, r, lo, hi);
    else if constexpr (std::is_invocable_v<F, const T* const*, int, T* const*, int, kroiSize, float, float>)
        return Fn(sp, ss, dp, ds, r, lo, hi);
    else return Fn(dp, ds, r, lo, hi);
}

// w1..w6: whether the float form takes the break test in doubles (part of each operation).
#define OPS(D, fw, T, tag, ty, w1, w2, w3, w4, w5, w6)                                                          \
    {"kroiGamma" #D "_" #tag "_C3R", ty, Lay::C3, false, fw, w1, callAs<T, kroiGamma##D##_##tag##_C3R>},        \
        {"kroiGamma" #D "_" #tag "_C3IR", ty, Lay::C3, true, fw, w2, callAs<T, kroiGamma##D##_##tag##_C3IR>},   \
        {"kroiGamma" #D "_" #tag "_AC4R", ty, Lay::AC4, false, fw, w3, callAs<T, kroiGamma##D##_##tag##_AC4R>}, \
        {"kroiGamma" #D "_" #tag "_AC4IR", ty, Lay::AC4, true, fw, w4, callAs<T, kroiGamma##D##_##tag##_AC4IR>}, \
        {"kroiGamma" #D "_" #tag "_P3R", ty, Lay::P3, false, fw, w5, callAs<T, kroiGamma##D##_##tag##_P3R>},    \
        {"kroiGamma" #D "_" #tag "_IP3R", ty, Lay::P3, true, fw, w6, callAs<T, kroiGamma##D##_##tag##_IP3R>}

const Op kOps[] = {
    OPS(Fwd, true, Kro8u, 8u, Ty::U8, 0, 0, 0, 0, 0, 0),     OPS(Inv, false, Kro8u, 8u, Ty::U8, 0, 0, 0, 0, 0, 0),
    OPS(Fwd, true, Kro16u, 16u, Ty::U16, 0, 0, 0, 0, 0, 0),  OPS(Inv, false, Kro16u, 16u, Ty::U16, 0, 0, 0, 0, 0, 0),
    OPS(Fwd, true, Kro32f, 32f, Ty::F32, 0, 0, 0, 1, 0, 0), OPS(Inv, false, Kro32f, 32f, Ty::F32, 0, 0, 1, 1, 1, 1),
};

int sampleSize(Ty t) { return t == Ty::U8 ? 1 : t == Ty::U16 ? 2 : 4; }
int samplesPerPixel(Lay l) { return l == Lay::C3 ? 3 : l == Lay::AC4 ? 4 : 1; }
int planesOf(Lay l) { return l == Lay::P3 ? 3 : 1; }

const std::vector<int>& table(bool forward, Ty t) {
    static const std::vector<int> t8f = ref::gammaTable(true, 255), t8i = ref::gammaTable(false, 255),
                                  t16f = ref::gammaTable(true, 65535), t16i = ref::gammaTable(false, 65535);
    if (t == Ty::U8) return forward ? t8f : t8i;
    return forward ? t16f : t16i;
}

// The reference for one sample: src bytes to dst bytes.
void refSample(const Op& op, const uint8_t* s, uint8_t* d, float lo, float hi) {
    if (op.ty == Ty::U8) {
        d[0] = uint8_t(table(op.forward, op.ty)[s[0]]);
    } else if (op.ty == Ty::U16) {
        uint16_t v;
        std::memcpy(&v, s, 2);
        v = uint16_t(table(op.forward, op.ty)[v]);
        std::memcpy(d, &v, 2);
    } else {
        float v;
        std::memcpy(&v, s, 4);
        v = ref::gammaFloat(op.forward, op.wide, v, lo, hi);
        std::memcpy(d, &v, 4);
    }
}

// Float samples worth meeting: spread over and beyond the range, and the edges.
float pickFloat(std::mt19937& r, float lo, float hi) {
    static const float edges[] = {0.0f, -0.0f, 1.0f, FLT_MIN, -FLT_MIN, 1e-45f, -1e-45f, 1e-39f, FLT_MAX, -FLT_MAX,
                                  INFINITY, -INFINITY, NAN, -NAN, 0.018f, 0.0812f, 1e-30f, 1e30f};
    const uint32_t k = r() % 64;
    if (k == 0) return edges[r() % (sizeof edges / sizeof edges[0])];
    if (k == 1) return lo;
    if (k == 2) return hi;
    const float u = float(r() % 1000000) / 1000000.0f;
    if (k < 8) return lo + (hi - lo) * (u * 1.4f - 0.2f);  // a little outside the range
    if (k < 20) return lo + (hi - lo) * u * 0.1f;          // near the break
    return lo + (hi - lo) * u;
}

// One image side: 1 or 3 guarded planes of `rows` rows, each padded by `pad`
// canary bytes, the first row at byte `offset` of its mapping.
struct Side {
    std::vector<GuardedBuf> bufs;
    std::vector<uint8_t*> origin;
    int step = 0, rowBytes = 0, rows = 0;
    Side(int planes, int rowBytes_, int rows_, int pad, int offset, Guard g) : rowBytes(rowBytes_), rows(rows_) {
        step = rowBytes + pad;
        for (int p = 0; p < planes; ++p) {
            bufs.emplace_back(size_t(offset) + size_t(step) * (rows - 1) + rowBytes, g);
            fillRandom(bufs.back().data(), bufs.back().size());
            origin.push_back(bufs.back().data() + offset);
        }
    }
    uint8_t* at(int p, int y, int byte) const { return origin[size_t(p)] + size_t(step) * y + byte; }
    std::vector<std::vector<uint8_t>> snapshot() const {
        std::vector<std::vector<uint8_t>> s;
        for (auto& b : bufs) s.emplace_back(b.data(), b.data() + b.size());
        return s;
    }
    // Expected images are snapshots; the same byte offsets address them.
    uint8_t* atIn(std::vector<std::vector<uint8_t>>& snap, int p, int y, int byte) const {
        return snap[size_t(p)].data() + (at(p, y, byte) - bufs[size_t(p)].data());
    }
};

// Random samples; every integer value from the seed up; or (floats) edge values
// starting at the seed, every other one on the range's scale.
enum class Fill { Random, Ramp, Edges };
const float kEdges[] = {0.0f, -0.0f, 1e-45f, -1e-45f, 1e-39f, FLT_MIN, -FLT_MIN, 1e-30f, 0.0179999992f, 0.018f,
                        0.0812000036f, 0.0812f, 0.5f, 1.0f, 1.0000001f, 0.99999994f, 2.0f, 255.0f, 1e30f, FLT_MAX,
                        -FLT_MAX, INFINITY, -INFINITY, NAN, -1.0f, -0.5f};
const int kNumEdges = int(sizeof kEdges / sizeof kEdges[0]);

void fillSamples(const Op& op, Side& s, int width, Fill f, float lo, float hi, uint32_t seed) {
    std::mt19937 r(seed);
    const int S = sampleSize(op.ty), spp = samplesPerPixel(op.lay);
    int count = 0;
    for (int p = 0; p < planesOf(op.lay); ++p)
        for (int y = 0; y < s.rows; ++y)
            for (int i = 0; i < width * spp; ++i) {
                uint8_t* q = s.at(p, y, S * i);
                if (op.ty == Ty::F32 && f == Fill::Edges) {
                    const float v = (i + p) % 2 ? kEdges[(i + seed) % kNumEdges]
                                                : kEdges[(i + seed + p) % kNumEdges] * (hi - lo) + lo;
                    std::memcpy(q, &v, 4);
                } else if (op.ty == Ty::F32) {
                    const float v = pickFloat(r, lo, hi);
                    std::memcpy(q, &v, 4);
                } else if (f == Fill::Ramp) {  // the ramp starts at the seed
                    const uint16_t v = uint16_t(seed + unsigned(count++));
                    std::memcpy(q, &v, size_t(S));
                }
            }
}

// Equal as bytes, or both NaN (the payload of a NaN result is the library's).
bool sameSample(const Op& op, const uint8_t* a, const uint8_t* b) {
    if (op.ty == Ty::F32) {
        float x, y;
        std::memcpy(&x, a, 4);
        std::memcpy(&y, b, 4);
        if (std::isnan(x) && std::isnan(y)) return true;
    }
    return std::memcmp(a, b, size_t(sampleSize(op.ty))) == 0;
}

// One call against the reference; whole mappings compared (pixels, kept
// fourth samples and canaries). Returns a message on the first difference.
std::string runCase(const Op& op, int width, int height, int pad, int offset, Guard g, Fill fill, float lo, float hi,
                    uint32_t seed) {
    const int S = sampleSize(op.ty), spp = samplesPerPixel(op.lay), np = planesOf(op.lay);
    const int rowBytes = width * spp * S;
    Side dst(np, rowBytes, height, pad, offset, g);
    Side src(np, rowBytes, height, pad + 3, (offset + 5) % 16, g);
    Side& in = op.inPlace ? dst : src;
    fillSamples(op, in, width, fill, lo, hi, seed);
    const auto before = in.snapshot();
    auto expect = dst.snapshot();
    for (int p = 0; p < np; ++p)
        for (int y = 0; y < height; ++y)
            for (int i = 0; i < width * spp; ++i) {
                if (op.lay == Lay::AC4 && i % 4 == 3) continue;
                const uint8_t* sp = op.inPlace ? in.atIn(const_cast<std::vector<std::vector<uint8_t>>&>(before), p, y, S * i)
                                               : in.at(p, y, S * i);
                refSample(op, sp, dst.atIn(expect, p, y, S * i), lo, hi);
            }
    const KroStatus st = op.call(in.origin.data(), in.step, dst.origin.data(), dst.step, {width, height}, lo, hi);
    if (st != kroStatusOk) return "status " + std::to_string(st);
    if (!op.inPlace)
        for (int p = 0; p < np; ++p)
            if (std::memcmp(src.bufs[size_t(p)].data(), before[size_t(p)].data(), before[size_t(p)].size()) != 0)
                return "source changed";
    for (int p = 0; p < np; ++p) {
        const uint8_t* got = dst.bufs[size_t(p)].data();
        const auto& want = expect[size_t(p)];
        for (size_t b = 0; b < want.size(); b += 1) {
            if (got[b] == want[b]) continue;
            const std::ptrdiff_t off = (dst.bufs[size_t(p)].data() + b) - dst.origin[size_t(p)];
            const std::ptrdiff_t y = off / dst.step, inRow = off % dst.step;
            const std::ptrdiff_t sampleStart = b - size_t(inRow % S);
            if (inRow >= 0 && inRow < rowBytes && sameSample(op, got + sampleStart, want.data() + sampleStart)) continue;
            char msg[200];
            std::snprintf(msg, sizeof msg, "plane %d row %td byte %td (sample %td%s): got %d want %d", p, y, inRow,
                          inRow / S, inRow >= rowBytes ? ", canary" : "", got[b], want[b]);
            return msg;
        }
    }
    return {};
}

struct RangeCase {
    float lo, hi;
};
const RangeCase kRanges[] = {{0.0f, 1.0f}, {0.1f, 0.6f}, {0.0f, 255.0f}, {-1.0f, 1.0f}, {-0.0f, 2.0f}, {1000.0f, 1000.5f}};

std::vector<int> widths() {
    std::vector<int> w;
    for (int i = 1; i <= 40; ++i) w.push_back(i);
    // float blocks are 384 samples (128 pixels of C3 or AC4): past three of them
    for (int i : {63, 64, 65, 95, 127, 128, 129, 130, 131, 255, 256, 257, 383, 384, 385, 386, 387, 389, 400})
        w.push_back(i);
    return w;
}

class GammaOp : public ::testing::TestWithParam<Op> {};

// Every width to past three float blocks, each twice: against the guard after
// and against the guard before, at start offsets that run through all of a
// 16-byte line (source and destination apart), tight and padded rows.
TEST_P(GammaOp, EveryWidthOffsetAndGuardAgainstReference) {
    const Op& op = GetParam();
    uint32_t seed = 1;
    for (int w : widths())
        for (Guard g : {Guard::After, Guard::Before}) {
            const RangeCase rc = kRanges[size_t(w + int(g)) % (sizeof kRanges / sizeof kRanges[0])];
            const int off = g == Guard::After ? w % 16 : (7 * w + 3) % 16, pad = g == Guard::After ? (w % 3) * 7 : w % 17;
            const std::string e = runCase(op, w, 2 + w % 4, pad, off, g, Fill::Random, rc.lo, rc.hi, seed++);
            ASSERT_TRUE(e.empty()) << op.name << " width " << w << " offset " << off << " pad " << pad
                                   << (g == Guard::Before ? " guard before" : " guard after") << " range " << rc.lo
                                   << ".." << rc.hi << ": " << e;
        }
}

// Every input value of the integer forms, in every path of the row.
TEST_P(GammaOp, EveryIntegerInput) {
    const Op& op = GetParam();
    if (op.ty == Ty::F32) return;  // float forms: see the edge values
    const int values = op.ty == Ty::U8 ? 256 : 65536;
    const int spp = samplesPerPixel(op.lay);
    const int perPixel = op.lay == Lay::AC4 ? 4 : spp;  // ramp counts every sample, kept ones included
    // AC4: shifted by a sample at a time, so that every value lands in a colour channel too
    for (unsigned shift = 0; shift < (op.lay == Lay::AC4 ? 4u : 1u); ++shift)
        for (int extra : {0, 1, 2}) {
            const int width = (values + perPixel - 1) / perPixel + extra;
            const std::string e = runCase(op, width, 1, 0, extra, Guard::After, Fill::Ramp, 0, 1, shift);
            ASSERT_TRUE(e.empty()) << op.name << " shift " << shift << ": " << e;
        }
}

// Edge values of the float forms in every lane position, bit for bit (NaN as NaN).
TEST_P(GammaOp, FloatEdgeValues) {
    const Op& op = GetParam();
    if (op.ty != Ty::F32) return;  // integer forms: see every input
    for (const RangeCase& rc : kRanges)
        for (unsigned shift = 0; shift < 4; ++shift) {
            const int width = (kNumEdges + int(shift) + samplesPerPixel(op.lay) - 1) / samplesPerPixel(op.lay) + 1;
            const std::string e = runCase(op, width, 1, 0, 0, Guard::After, Fill::Edges, rc.lo, rc.hi, shift);
            ASSERT_TRUE(e.empty()) << op.name << " range " << rc.lo << ".." << rc.hi << ": " << e;
        }
}

// Under each rounding mode (and with flush-to-zero and denormals-are-zero
// set), the results are the reference's under that mode with the power at
// round-to-nearest, and the caller's control bits are back after the call.
TEST_P(GammaOp, CallersRoundingModeKept) {
    const Op& op = GetParam();
    const unsigned saved = _mm_getcsr();
    const int savedMode = std::fegetround();  // the x87 control word too, which later tests' printf reads
    for (int mode : {FE_TONEAREST, FE_DOWNWARD, FE_UPWARD, FE_TOWARDZERO}) {
        for (bool ftz : {false, true}) {
            std::fesetround(mode);
            const unsigned before = _mm_getcsr() | (ftz ? 0x8040u : 0u);
            _mm_setcsr(before);
            std::string e;
            if (!ftz) e = runCase(op, 131, 2, 4, 3, Guard::After, Fill::Random, 0.0f, 1.0f, 900 + unsigned(mode));
            if (!ftz && e.empty())
                e = runCase(op, 131, 2, 4, 3, Guard::After, Fill::Random, 0.1f, 0.6f, 901 + unsigned(mode));
            if (ftz) {
                Side d(planesOf(op.lay), 20 * samplesPerPixel(op.lay) * sampleSize(op.ty), 2, 0, 0, Guard::After);
                _mm_setcsr(before);
                op.call(d.origin.data(), d.step, d.origin.data(), d.step, {20, 2}, 0.0f, 1.0f);
            }
            const unsigned after = _mm_getcsr();
            _mm_setcsr(saved);
            EXPECT_TRUE(e.empty()) << op.name << " mode " << mode << ": " << e;
            EXPECT_EQ(after & ~0x3Fu, before & ~0x3Fu) << op.name << " mode " << mode << (ftz ? " ftz" : "");
        }
    }
    std::fesetround(savedMode);
    _mm_setcsr(saved);
}

// Check order: range (float forms), null, deep null, size, step; nothing written.
TEST_P(GammaOp, StatusAndCheckOrder) {
    const Op& op = GetParam();
    const bool isF = op.ty == Ty::F32;
    const int np = planesOf(op.lay), rb = 4 * samplesPerPixel(op.lay) * sampleSize(op.ty);
    Side s(np, rb, 2, 0, 0, Guard::After), d(np, rb, 2, 0, 0, Guard::After);
    Side& in = op.inPlace ? d : s;
    const auto snapS = s.snapshot(), snapD = d.snapshot();
    uint8_t* nullPlanes[3] = {nullptr, nullptr, nullptr};
    std::vector<uint8_t*> holeIn = in.origin, holeOut = d.origin;
    holeIn[size_t(np - 1)] = nullptr;
    holeOut[0] = nullptr;
    struct Row {
        const char* what;
        uint8_t* const* src;
        uint8_t* const* dst;
        int ss, ds;
        kroiSize r;
        float lo, hi;
        KroStatus want;
    };
    const kroiSize ok{4, 2};
    const float nanf = NAN;
    std::vector<Row> rows = {
        {"ok", in.origin.data(), d.origin.data(), in.step, d.step, ok, 0, 1, kroStatusOk},
        {"null dst, zero size, zero step", in.origin.data(), nullptr, 0, 0, {0, 0}, 0, 1, kroStatusNullPointer},
        {"null element, zero size", in.origin.data(), np == 3 ? holeOut.data() : nullPlanes, 1, 1, {0, 1}, 0, 1,
         kroStatusNullPointer},
        {"zero width, zero step", in.origin.data(), d.origin.data(), 0, 0, {0, 2}, 0, 1, kroStatusBadSize},
        {"negative height", in.origin.data(), d.origin.data(), in.step, d.step, {4, -1}, 0, 1, kroStatusBadSize},
        {"zero dst step", in.origin.data(), d.origin.data(), in.step, 0, ok, 0, 1, kroStatusBadStep},
        {"negative dst step", in.origin.data(), d.origin.data(), in.step, -d.step, ok, 0, 1, kroStatusBadStep},
    };
    if (!op.inPlace) {
        rows.push_back({"null src", nullptr, d.origin.data(), 0, 0, {0, 0}, 0, 1, kroStatusNullPointer});
        rows.push_back({"zero src step", in.origin.data(), d.origin.data(), 0, d.step, ok, 0, 1, kroStatusBadStep});
        if (np == 3)
            rows.push_back({"null src element", holeIn.data(), d.origin.data(), 1, 1, ok, 0, 1, kroStatusNullPointer});
    }
    if (isF) {
        const std::vector<Row> bad = {
            {"range equal, null, zero size", nullptr, nullptr, 0, 0, {0, 0}, 0.5f, 0.5f, kroStatusBadGammaRange},
            {"range reversed", in.origin.data(), d.origin.data(), in.step, d.step, ok, 1, 0, kroStatusBadGammaRange},
            {"range NaN", in.origin.data(), d.origin.data(), in.step, d.step, ok, 0, nanf, kroStatusBadGammaRange},
            {"range -0..0", in.origin.data(), d.origin.data(), in.step, d.step, ok, -0.0f, 0.0f, kroStatusBadGammaRange},
            {"range one unit wide", in.origin.data(), d.origin.data(), in.step, d.step, ok, 1.0f,
             std::nextafter(1.0f, 2.0f), kroStatusOk},
        };
        rows.insert(rows.end(), bad.begin(), bad.end());
    } else {
        rows.push_back({"reversed range ignored", in.origin.data(), d.origin.data(), in.step, d.step, ok, 1, 0, kroStatusOk});
    }
    for (const Row& r : rows) {
        EXPECT_EQ(op.call(r.src, r.ss, r.dst, r.ds, r.r, r.lo, r.hi), r.want) << op.name << ": " << r.what;
        for (int p = 0; p < np; ++p) {
            for (auto [side, snap] : {std::make_pair(&d, &snapD), std::make_pair(&s, &snapS)}) {
                uint8_t* b = side->bufs[size_t(p)].data();
                const auto& want = (*snap)[size_t(p)];
                if (r.want != kroStatusOk) EXPECT_EQ(0, std::memcmp(b, want.data(), want.size())) << op.name << ": " << r.what << " wrote";
                std::memcpy(b, want.data(), want.size());  // as before, for the next row
            }
        }
    }
}

std::string opName(const ::testing::TestParamInfo<Op>& i) { return std::string(i.param.name).substr(4); }
INSTANTIATE_TEST_SUITE_P(All, GammaOp, ::testing::ValuesIn(kOps), opName);

// ------------------------------------------------------------ known values (the tables are checked
// entry by entry through every integer input above)
template <class T, class Fn>
int one(Fn fn, int v) {
    T px[3] = {T(v), T(v), T(v)}, out[3] = {};
    EXPECT_EQ(fn(px, int(sizeof px), out, int(sizeof out), kroiSize{1, 1}), kroStatusOk);
    EXPECT_TRUE(out[0] == out[1] && out[1] == out[2]);
    return out[0];
}

TEST(GammaExamples, Integer) {
    struct Ex {
        bool fwd, u16;
        int in, out;
    };
    const Ex ex[] = {{1, 0, 0, 0},      {1, 0, 1, 4},         {1, 0, 2, 9},         {1, 0, 3, 14},        {1, 0, 4, 18},
                     {1, 0, 254, 255},  {1, 0, 255, 255},     {0, 0, 0, 0},         {0, 0, 1, 0},         {0, 0, 2, 0},
                     {0, 0, 3, 1},      {0, 0, 7, 2},         {0, 0, 254, 253},     {0, 0, 255, 255},     {1, 1, 1, 4},
                     {1, 1, 5, 22},     {1, 1, 9, 40},        {1, 1, 4082, 14164},  {1, 1, 7069, 19952},  {1, 1, 65535, 65535},
                     {0, 1, 1, 0},      {0, 1, 2, 0},         {0, 1, 3, 1},         {0, 1, 12009, 3196},  {0, 1, 65535, 65535}};
    for (const Ex& e : ex) {
        const int got = e.u16 ? one<Kro16u>(e.fwd ? kroiGammaFwd_16u_C3R : kroiGammaInv_16u_C3R, e.in)
                              : one<Kro8u>(e.fwd ? kroiGammaFwd_8u_C3R : kroiGammaInv_8u_C3R, e.in);
        EXPECT_EQ(got, e.out) << (e.fwd ? "forward " : "inverse ") << (e.u16 ? "16u " : "8u ") << e.in;
    }
}

float oneF(const Op& op, float x, float lo, float hi) {
    const int spp = samplesPerPixel(op.lay), np = planesOf(op.lay);
    Side s(np, 4 * spp, 1, 0, 0, Guard::After), d(np, 4 * spp, 1, 0, 0, Guard::After);
    for (int p = 0; p < np; ++p)
        for (int i = 0; i < spp; ++i) std::memcpy(s.at(p, 0, 4 * i), &x, 4);
    Side& out = op.inPlace ? s : d;
    EXPECT_EQ(op.call(s.origin.data(), s.step, out.origin.data(), out.step, {1, 1}, lo, hi), kroStatusOk);
    float y;
    std::memcpy(&y, out.at(np - 1, 0, 0), 4);
    return y;
}
const Op& opNamed(const char* n) {
    for (const Op& o : kOps)
        if (std::string(o.name) == n) return o;
    std::abort();
}

TEST(GammaExamples, Float) {
    const Op& fc3 = opNamed("kroiGammaFwd_32f_C3R");
    // 0.005 gives 0.0225 as a rounded figure: the product 4.5 x 0.005f is the float
    // just below the one nearest 0.0225
    EXPECT_EQ(oneF(fc3, 0.005f, 0, 1), 0.022499999f);
    EXPECT_NEAR(oneF(fc3, 0.005f, 0, 1), 0.0225, 1e-9);
    EXPECT_EQ(oneF(fc3, 0.05f, 0, 1), 0.186452746f);
    EXPECT_EQ(oneF(fc3, 0.9f, 0, 1), 0.949109912f);
    const Op& ic3 = opNamed("kroiGammaInv_32f_C3R");
    EXPECT_EQ(oneF(ic3, 0.005f, 0, 1), 0.00111111114f);
    EXPECT_EQ(oneF(ic3, 0.05f, 0, 1), 0.0111111114f);
    EXPECT_EQ(oneF(ic3, 0.9f, 0, 1), 0.808962464f);
    EXPECT_EQ(oneF(opNamed("kroiGammaInv_32f_AC4R"), 0.9f, 0, 1), 0.808962584f);
    // a sample at vMin stays vMin in every float form
    for (const Op& o : kOps)
        if (o.ty == Ty::F32)
            for (const RangeCase& rc : kRanges) EXPECT_EQ(oneF(o, rc.lo, rc.lo, rc.hi), rc.lo) << o.name;
    EXPECT_NEAR(oneF(opNamed("kroiGammaFwd_32f_P3R"), 0.55f, 0.1f, 0.6f), 0.574555f, 2e-6);
    EXPECT_NEAR(oneF(opNamed("kroiGammaInv_32f_P3R"), 0.574555f, 0.1f, 0.6f), 0.55f, 2e-6);
    EXPECT_NEAR(oneF(fc3, 229.5f, 0, 255), 242.023f, 1e-3);
    // vMin exactly 0 (either sign): nothing subtracted or added, so -0 stays -0
    for (const Op& o : kOps)
        if (o.ty == Ty::F32) {
            EXPECT_TRUE(std::signbit(oneF(o, -0.0f, 0.0f, 1.0f))) << o.name;
            EXPECT_TRUE(std::signbit(oneF(o, -0.0f, -0.0f, 1.0f))) << o.name;
        }
}

// ------------------------------------------------------------ the power routine
int ulpDiff(float a, float b) {
    int32_t x, y;
    std::memcpy(&x, &a, 4);
    std::memcpy(&y, &b, 4);
    return std::abs(x - y);
}

TEST(GammaPower, WithinOneUnitOfTheTruePowerMostlyExact) {
    namespace g = kro::gamma;
    std::mt19937 r(77);
    const int n = KROCC_FULL_SWEEPS ? 1 << 18 : 1 << 13;
    std::vector<float> in(size_t(n) + 3), out(size_t(n) + 3);
    // even places: every positive finite float, denormals included; odd places:
    // [2^-20, 2^10], where the curves take their powers, in even strides
    const uint32_t lo = 0x35800000u, span = 0x44800000u - lo, stride = span / uint32_t(n / 2 + 2);
    for (int i = 0; i < n + 3; ++i) {
        const uint32_t b = i % 2 ? lo + uint32_t(i / 2) * stride : r() % 0x7F800000u;
        std::memcpy(&in[size_t(i)], &b, 4);
    }
    for (float e : {g::gExp, g::iExp}) {
        for (int count : {n + 3, n + 1, 7}) {
            g::power(in.data(), e, out.data(), count);
            int inexact = 0;
            for (int i = 0; i < count; ++i) {
                const float want = ref::power(in[size_t(i)], e);
                const int d = ulpDiff(out[size_t(i)], want);
                ASSERT_LE(d, 1) << in[size_t(i)] << "^" << e;
                inexact += d != 0;
            }
            EXPECT_LE(inexact, count / 100000 + 1) << e;
        }
    }
}

TEST(GammaPower, SpecialInputsAndStateKept) {
    namespace g = kro::gamma;
    const float in[7] = {0.0f, -0.0f, -1.0f, NAN, INFINITY, 1.0f, -INFINITY};
    float out[7];
    const unsigned saved = _mm_getcsr();
    _mm_setcsr((saved & ~0x603Fu) | 0x6000u | 0x8040u);  // toward zero, flush and denormals-as-zero, no flags
    const unsigned before = _mm_getcsr();
    g::power(in, g::iExp, out, 7);
    const unsigned after = _mm_getcsr();
    _mm_setcsr(saved);
    EXPECT_EQ(after, before) << "flags and controls as they were";
    EXPECT_EQ(out[0], 0.0f);
    EXPECT_EQ(out[1], 0.0f);
    EXPECT_TRUE(std::isnan(out[2]));
    EXPECT_TRUE(std::isnan(out[3]));
    EXPECT_EQ(out[4], INFINITY);
    EXPECT_EQ(out[5], 1.0f);
    EXPECT_TRUE(std::isnan(out[6]));
    // denormal input kept (not flushed) even with the caller's DAZ set
    const float tiny = 1e-42f;
    float res;
    _mm_setcsr(saved | 0x8040u);
    g::power(&tiny, g::gExp, &res, 1);
    _mm_setcsr(saved);
    EXPECT_EQ(res, ref::power(tiny, g::gExp));
    EXPECT_GT(res, 0.0f);
}

}  // namespace
