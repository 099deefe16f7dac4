// RGB/BGR <-> HLS: every operation against the independent reference at every
// column (bit for bit with this processor's reciprocal estimate, and within the
// interval that any admissible estimate allows), statuses in order, exhaustive
// sweeps of the 8-bit forms, the model's identities and the stated values.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "harness.h"
#include "perceptual/hls_forms.h"
#include "ref_hls.h"

using namespace kt;
using refh::Out3;
using refh::Rc;

namespace {

enum class Ty { U8, U16, S16, F32 };
enum class Lay { C3, AC4, P3, P4 };
enum class Checks {
    NullSize,      // -8, -6; any step accepted
    NullSizeStep,  // -8, -6, -16
    DeepStepSize,  // -8 (array and elements), -16, -6
};
enum class Path { Fwd1C3, Fwd1AC4, Fwd2, Fwd3, Fwd4, Inv1, Inv2, Inv3, Inv4 };

using Call = std::function<KroStatus(void* const* src, int srcStep, void* const* dst, int dstStep, kroiSize roi)>;

struct HlsOp {
    const char* name;
    Ty ty;
    Lay src, dst;
    bool bgr;  // the RGB side stands B, G, R
    Path path;
    int block;  // pixels 0 .. (width & ~(block - 1)) - 1 take the main path; 1: no main path
    Checks checks;
    Call call;
};

bool forward(Path p) { return p <= Path::Fwd4; }
bool estimated(Path p) { return p <= Path::Fwd3; }  // integer forward: reciprocal estimates
int sizeOf(Ty t) { return t == Ty::U8 ? 1 : t == Ty::F32 ? 4 : 2; }
int planesOf(Lay l) { return l == Lay::P3 ? 3 : l == Lay::P4 ? 4 : 1; }
int samplesPerPixel(Lay l) { return l == Lay::C3 ? 3 : l == Lay::AC4 ? 4 : 1; }
bool hasFourth(Lay l) { return l == Lay::AC4 || l == Lay::P4; }
double fullScale(Ty t) { return t == Ty::U8 ? 255.0 : t == Ty::F32 ? 1.0 : 65535.0; }

// ------------------------------------------------------------ the operations
template <class T>
T* typed(void* const* p) { return p ? static_cast<T*>(p[0]) : nullptr; }
template <class T, int K>
struct PlaneArg {  // a plane array, or null when the test passes none
    T* a[K];
    T* const* get(void* const* p) {
        if (!p) return nullptr;
        for (int k = 0; k < K; ++k) a[k] = static_cast<T*>(p[k]);
        return a;
    }
};

template <class T>
Call one(KroStatus (*f)(const T*, int, T*, int, kroiSize)) {
    return [f](void* const* s, int ss, void* const* d, int ds, kroiSize r) {
        return f(typed<T>(s), ss, typed<T>(d), ds, r);
    };
}
template <int KS, int KD, class FS, class FD>
Call planes(KroStatus (*f)(FS, int, FD, int, kroiSize)) {
    return [f](void* const* s, int ss, void* const* d, int ds, kroiSize r) {
        FS ps;
        FD pd;
        PlaneArg<const Kro8u, KS ? KS : 1> as;
        PlaneArg<Kro8u, KD ? KD : 1> ad;
        if constexpr (KS == 0) {
            ps = typed<const Kro8u>(s);
        } else {
            ps = as.get(s);
        }
        if constexpr (KD == 0) {
            pd = typed<Kro8u>(d);
        } else {
            pd = ad.get(d);
        }
        return f(ps, ss, pd, ds, r);
    };
}

const std::vector<HlsOp>& hlsOps() {
    using C = Checks;
    static const std::vector<HlsOp> ops = {
        {"kroiRGBToHLS_8u_C3R", Ty::U8, Lay::C3, Lay::C3, false, Path::Fwd1C3, 8, C::NullSize, one(kroiRGBToHLS_8u_C3R)},
        {"kroiRGBToHLS_8u_AC4R", Ty::U8, Lay::AC4, Lay::AC4, false, Path::Fwd1AC4, 4, C::NullSize, one(kroiRGBToHLS_8u_AC4R)},
        {"kroiRGBToHLS_16u_C3R", Ty::U16, Lay::C3, Lay::C3, false, Path::Fwd2, 4, C::NullSize, one(kroiRGBToHLS_16u_C3R)},
        {"kroiRGBToHLS_16u_AC4R", Ty::U16, Lay::AC4, Lay::AC4, false, Path::Fwd2, 4, C::NullSize, one(kroiRGBToHLS_16u_AC4R)},
        {"kroiRGBToHLS_16s_C3R", Ty::S16, Lay::C3, Lay::C3, false, Path::Fwd2, 4, C::NullSize, one(kroiRGBToHLS_16s_C3R)},
        {"kroiRGBToHLS_16s_AC4R", Ty::S16, Lay::AC4, Lay::AC4, false, Path::Fwd2, 4, C::NullSize, one(kroiRGBToHLS_16s_AC4R)},
        {"kroiRGBToHLS_32f_C3R", Ty::F32, Lay::C3, Lay::C3, false, Path::Fwd4, 1, C::NullSize, one(kroiRGBToHLS_32f_C3R)},
        {"kroiRGBToHLS_32f_AC4R", Ty::F32, Lay::AC4, Lay::AC4, false, Path::Fwd4, 1, C::NullSize, one(kroiRGBToHLS_32f_AC4R)},
        {"kroiBGRToHLS_8u_AC4R", Ty::U8, Lay::AC4, Lay::AC4, true, Path::Fwd3, 4, C::NullSizeStep, one(kroiBGRToHLS_8u_AC4R)},
        {"kroiBGRToHLS_8u_AC4P4R", Ty::U8, Lay::AC4, Lay::P4, true, Path::Fwd3, 4, C::DeepStepSize, planes<0, 4>(kroiBGRToHLS_8u_AC4P4R)},
        {"kroiBGRToHLS_8u_AP4C4R", Ty::U8, Lay::P4, Lay::AC4, true, Path::Fwd3, 4, C::DeepStepSize, planes<4, 0>(kroiBGRToHLS_8u_AP4C4R)},
        {"kroiBGRToHLS_8u_AP4R", Ty::U8, Lay::P4, Lay::P4, true, Path::Fwd3, 4, C::DeepStepSize, planes<4, 4>(kroiBGRToHLS_8u_AP4R)},
        {"kroiBGRToHLS_8u_C3P3R", Ty::U8, Lay::C3, Lay::P3, true, Path::Fwd3, 4, C::DeepStepSize, planes<0, 3>(kroiBGRToHLS_8u_C3P3R)},
        {"kroiBGRToHLS_8u_P3C3R", Ty::U8, Lay::P3, Lay::C3, true, Path::Fwd3, 4, C::DeepStepSize, planes<3, 0>(kroiBGRToHLS_8u_P3C3R)},
        {"kroiBGRToHLS_8u_P3R", Ty::U8, Lay::P3, Lay::P3, true, Path::Fwd3, 4, C::DeepStepSize, planes<3, 3>(kroiBGRToHLS_8u_P3R)},
        {"kroiHLSToRGB_8u_C3R", Ty::U8, Lay::C3, Lay::C3, false, Path::Inv1, 8, C::NullSize, one(kroiHLSToRGB_8u_C3R)},
        {"kroiHLSToRGB_8u_AC4R", Ty::U8, Lay::AC4, Lay::AC4, false, Path::Inv1, 4, C::NullSize, one(kroiHLSToRGB_8u_AC4R)},
        {"kroiHLSToRGB_16u_C3R", Ty::U16, Lay::C3, Lay::C3, false, Path::Inv2, 4, C::NullSize, one(kroiHLSToRGB_16u_C3R)},
        {"kroiHLSToRGB_16u_AC4R", Ty::U16, Lay::AC4, Lay::AC4, false, Path::Inv2, 4, C::NullSize, one(kroiHLSToRGB_16u_AC4R)},
        {"kroiHLSToRGB_16s_C3R", Ty::S16, Lay::C3, Lay::C3, false, Path::Inv2, 4, C::NullSize, one(kroiHLSToRGB_16s_C3R)},
        {"kroiHLSToRGB_16s_AC4R", Ty::S16, Lay::AC4, Lay::AC4, false, Path::Inv2, 4, C::NullSize, one(kroiHLSToRGB_16s_AC4R)},
        {"kroiHLSToRGB_32f_C3R", Ty::F32, Lay::C3, Lay::C3, false, Path::Inv4, 4, C::NullSize, one(kroiHLSToRGB_32f_C3R)},
        {"kroiHLSToRGB_32f_AC4R", Ty::F32, Lay::AC4, Lay::AC4, false, Path::Inv4, 4, C::NullSize, one(kroiHLSToRGB_32f_AC4R)},
        {"kroiHLSToBGR_8u_AC4P4R", Ty::U8, Lay::AC4, Lay::P4, true, Path::Inv3, 4, C::DeepStepSize, planes<0, 4>(kroiHLSToBGR_8u_AC4P4R)},
        {"kroiHLSToBGR_8u_AP4C4R", Ty::U8, Lay::P4, Lay::AC4, true, Path::Inv3, 4, C::DeepStepSize, planes<4, 0>(kroiHLSToBGR_8u_AP4C4R)},
        {"kroiHLSToBGR_8u_AP4R", Ty::U8, Lay::P4, Lay::P4, true, Path::Inv3, 4, C::DeepStepSize, planes<4, 4>(kroiHLSToBGR_8u_AP4R)},
        {"kroiHLSToBGR_8u_C3P3R", Ty::U8, Lay::C3, Lay::P3, true, Path::Inv3, 4, C::DeepStepSize, planes<0, 3>(kroiHLSToBGR_8u_C3P3R)},
        {"kroiHLSToBGR_8u_P3C3R", Ty::U8, Lay::P3, Lay::C3, true, Path::Inv3, 4, C::DeepStepSize, planes<3, 0>(kroiHLSToBGR_8u_P3C3R)},
        {"kroiHLSToBGR_8u_P3R", Ty::U8, Lay::P3, Lay::P3, true, Path::Inv3, 4, C::DeepStepSize, planes<3, 3>(kroiHLSToBGR_8u_P3R)},
    };
    return ops;
}

const HlsOp& opNamed(const std::string& n) {
    for (auto& o : hlsOps())
        if (n == o.name) return o;
    std::abort();
}

// ------------------------------------------------------------ reference per path and column
Out3 reference(Path p, bool mainPath, const float (&v)[3], Rc rc) {
    using namespace refh;
    const float a = v[0], b = v[1], c = v[2];
    switch (p) {
        case Path::Fwd1C3: return mainPath ? fwdMain12(a, b, c, scale8(), false, rc) : fwdTail(a, b, c, scale8(), false, rc);
        case Path::Fwd1AC4: return mainPath ? fwdMain12(a, b, c, scale8(), false, rc) : fwdTail(a, b, c, scale8(), true, rc);
        case Path::Fwd2: return mainPath ? fwdMain12(a, b, c, scale16(), true, rc) : fwdTail(a, b, c, scale16(), false, rc);
        case Path::Fwd3: return mainPath ? fwdMain3(a, b, c, rc) : fwdTail(a, b, c, scale8(), false, rc);
        case Path::Fwd4: return fwdFloat(a, b, c);
        case Path::Inv1: return mainPath ? inv1Main(a, b, c) : inv1Tail(a, b, c);
        case Path::Inv2: return mainPath ? inv2Main(a, b, c) : inv2Tail(a, b, c);
        case Path::Inv3: return mainPath ? inv3Main(a, b, c) : inv3Tail(a, b, c);
        case Path::Inv4: return inv4(a, b, c, mainPath);
    }
    return {};
}

// ------------------------------------------------------------ images of any sample type
// Raw samples as doubles: the stored value (16s signed, 32f the float).
double getRaw(Ty t, const uint8_t* p) {
    switch (t) {
        case Ty::U8: return *p;
        case Ty::U16: { uint16_t v; std::memcpy(&v, p, 2); return v; }
        case Ty::S16: { int16_t v; std::memcpy(&v, p, 2); return v; }
        case Ty::F32: { float v; std::memcpy(&v, p, 4); return v; }
    }
    return 0;
}
void putRaw(Ty t, uint8_t* p, double x) {
    switch (t) {
        case Ty::U8: *p = static_cast<uint8_t>(static_cast<int64_t>(x)); break;
        case Ty::U16: { const uint16_t v = static_cast<uint16_t>(static_cast<int64_t>(x)); std::memcpy(p, &v, 2); break; }
        case Ty::S16: { const int16_t v = static_cast<int16_t>(static_cast<uint16_t>(static_cast<int64_t>(x))); std::memcpy(p, &v, 2); break; }
        case Ty::F32: { const float v = static_cast<float>(x); std::memcpy(p, &v, 4); break; }
    }
}
// The float a sample enters the computation as (16s: plus 32768), and the stored value of a result word.
float toModel(Ty t, double raw) { return static_cast<float>(t == Ty::S16 ? raw + 32768 : raw); }
double fromWord(Ty t, double w) { return t == Ty::S16 ? w - 32768 : w; }

struct Img {
    Ty ty;
    Lay lay;
    bool bgr;
    std::vector<Plane> planes;
    Img(Ty t, Lay l, bool b, int width, int height, int padSamples, Guard g, bool negStep) : ty(t), lay(l), bgr(b) {
        const int sz = sizeOf(t);
        for (int k = 0; k < planesOf(l); ++k)
            planes.emplace_back(width * samplesPerPixel(l) * sz, height, padSamples * sz, g, negStep);
    }
    int step() const { return planes[0].step; }
    std::vector<void*> origins() const {
        std::vector<void*> o;
        for (auto& p : planes) o.push_back(p.origin());
        return o;
    }
    // model channel k (0..2 in the model's order, 3 the fourth)
    int memChannel(int k) const { return k < 3 && bgr ? 2 - k : k; }
    const Plane& planeOf(int k) const { return planes[planesOf(lay) > 1 ? memChannel(k) : 0]; }
    size_t offset(int x, int y, int k) const {
        const Plane& p = planeOf(k);
        const int sz = sizeOf(ty);
        const size_t inRow = planesOf(lay) > 1 ? size_t(x) * sz : (size_t(x) * samplesPerPixel(lay) + memChannel(k)) * sz;
        return size_t(p.row(y) - p.buf.data()) + inRow;
    }
    double get(int x, int y, int k) const { return getRaw(ty, planeOf(k).buf.data() + offset(x, y, k)); }
    void set(int x, int y, int k, double v) { putRaw(ty, planeOf(k).buf.data() + offset(x, y, k), v); }
    int planeIndex(int k) const { return planesOf(lay) > 1 ? memChannel(k) : 0; }
    std::vector<std::vector<uint8_t>> snapshot() const {
        std::vector<std::vector<uint8_t>> s;
        for (auto& p : planes) s.push_back(p.snapshot());
        return s;
    }
};

// ------------------------------------------------------------ inputs worth converting
std::mt19937& gen() {
    static std::mt19937 g(2024);
    return g;
}
double uni() { return std::uniform_real_distribution<double>(0.0, 1.0)(gen()); }
int below(int n) { return static_cast<int>(gen()() % static_cast<uint32_t>(n)); }

// One pixel of source samples (stored values), in the model's order.
void randomPixel(const HlsOp& op, double (&v)[3]) {
    const Ty t = op.ty;
    if (t == Ty::F32) {
        for (double& x : v) {
            const int c = below(8);
            x = c == 0 ? below(256) / 255.0 : c == 1 ? uni() * 1.5 - 0.25 : c == 2 ? 0.5 : uni();
        }
        if (forward(op.path)) {
            if (below(6) == 0) v[1] = v[2] = v[0];
            if (below(6) == 0) v[below(3)] = v[(below(2) + 1) % 3];
        } else if (below(6) == 0) {
            v[2] = 0.0;
        }
        return;
    }
    const int F = static_cast<int>(fullScale(t));
    for (double& x : v) {
        const int c = below(10);
        x = c == 0 ? 0 : c == 1 ? F : c == 2 ? F / 2 : c == 3 ? F / 2 + 1 : below(F + 1);
    }
    if (forward(op.path)) {
        if (below(6) == 0) v[1] = v[2] = v[0];                          // achromatic
        if (below(6) == 0) v[below(3)] = v[(below(2) + 1) % 3];          // two channels equal
    } else {
        if (below(6) == 0) v[2] = 0;  // no saturation
    }
    if (t == Ty::S16)
        for (double& x : v) x -= 32768;
}

// ------------------------------------------------------------ one call against the reference
struct Expect {
    std::vector<std::vector<uint8_t>> exact;  // every plane as it must be after the call
};

// Expected planes (bit for bit with this processor's estimate) and, for the
// estimated paths, a check that every result lies where an admissible estimate puts it.
std::string compare(const HlsOp& op, const Img& src, const Img& dst, const std::vector<std::vector<uint8_t>>& before,
                    int width, int height) {
    auto want = before;
    const int cover = op.block > 1 ? (width & ~(op.block - 1)) : 0;
    Img& d = const_cast<Img&>(dst);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            float in[3];
            for (int k = 0; k < 3; ++k) in[k] = toModel(op.ty, src.get(x, y, k));
            const bool mainPath = x < cover;
            const Out3 o = reference(op.path, mainPath, in, Rc::Machine);
            for (int k = 0; k < 3; ++k)
                putRaw(op.ty, want[d.planeIndex(k)].data() + d.offset(x, y, k), fromWord(op.ty, o[k]));
            if (hasFourth(op.src) && hasFourth(op.dst) && op.dst != op.src)  // copied fourth channel
                putRaw(op.ty, want[d.planeIndex(3)].data() + d.offset(x, y, 3), src.get(x, y, 3));
            if (hasFourth(op.src) && op.src == op.dst && op.dst == Lay::P4)
                putRaw(op.ty, want[d.planeIndex(3)].data() + d.offset(x, y, 3), src.get(x, y, 3));
            if (estimated(op.path)) {
                const Out3 lo = reference(op.path, mainPath, in, Rc::Lo), hi = reference(op.path, mainPath, in, Rc::Hi);
                for (int k = 0; k < 3; ++k) {
                    const double got = toModel(op.ty, dst.get(x, y, k));
                    if (got < std::min(lo[k], hi[k]) || got > std::max(lo[k], hi[k])) {
                        char m[200];
                        std::snprintf(m, sizeof m, "pixel %d row %d channel %d: %g outside [%g, %g] of admissible estimates",
                                      x, y, k, got, std::min(lo[k], hi[k]), std::max(lo[k], hi[k]));
                        return m;
                    }
                }
            }
        }
    for (size_t k = 0; k < dst.planes.size(); ++k) {
        const std::string e = diffPlane(dst.planes[k], want[k], samplesPerPixel(op.dst) * sizeOf(op.ty));
        if (!e.empty()) return "plane " + std::to_string(k) + ": " + e;
    }
    return {};
}

std::string runOnce(const HlsOp& op, int width, int height, int padSamples, Guard g, bool negStep) {
    Img src(op.ty, op.src, op.bgr && forward(op.path), width, height, padSamples, g, negStep);
    Img dst(op.ty, op.dst, op.bgr && !forward(op.path), width, height, padSamples + 1, g, negStep);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            double v[3];
            randomPixel(op, v);
            for (int k = 0; k < 3; ++k) src.set(x, y, k, v[k]);
            if (op.ty == Ty::F32 && hasFourth(op.src)) src.set(x, y, 3, uni());
            if (op.ty == Ty::F32 && hasFourth(op.dst)) dst.set(x, y, 3, -uni());
        }
    const auto srcBefore = src.snapshot();
    const auto before = dst.snapshot();
    auto so = src.origins(), dO = dst.origins();
    const KroStatus st = op.call(so.data(), src.step(), dO.data(), dst.step(), {width, height});
    if (st != kroStatusOk) return "status " + std::to_string(st);
    if (src.snapshot() != srcBefore) return "source changed";
    return compare(op, src, dst, before, width, height);
}

class HlsOpTest : public ::testing::TestWithParam<int> {
protected:
    const HlsOp& op() const { return hlsOps()[GetParam()]; }
};

// Every width from 1 past three main blocks, one and three rows, tight and
// padded steps, guard after and before the buffers, a negative step where it is
// allowed. Tight rows end at the guard, so over the widths every row starts at
// every offset within 16 bytes; padded rows move the later rows' starts too.
TEST_P(HlsOpTest, MatchesReferenceAtEveryColumn) {
    const HlsOp& o = op();
    for (int w : sweepWidths(std::max(o.block, 4))) {
        for (int h : {1, 3}) {
            ASSERT_EQ(runOnce(o, w, h, 0, Guard::After, false), "") << o.name << " width " << w << " height " << h << " tight";
            ASSERT_EQ(runOnce(o, w, h, 3 + w % 5, Guard::Before, false), "") << o.name << " width " << w << " height " << h << " padded";
        }
    }
    if (o.checks == Checks::NullSize) {
        ASSERT_EQ(runOnce(o, 37, 5, 2, Guard::After, true), "") << o.name << " negative step";
    }
}

// Checks in their order; a failing call writes nothing.
TEST_P(HlsOpTest, ChecksInOrderAndWritesNothingOnFailure) {
    const HlsOp& o = op();
    const int w = 9, h = 2;
    Img src(o.ty, o.src, o.bgr && forward(o.path), w, h, 0, Guard::After, false);
    Img dst(o.ty, o.dst, o.bgr && !forward(o.path), w, h, 0, Guard::After, false);
    const auto before = dst.snapshot();
    auto so = src.origins(), dO = dst.origins();
    const int ss = src.step(), ds = dst.step();
    auto call = [&](void* const* s, int sst, void* const* d, int dst2, kroiSize r) { return o.call(s, sst, d, dst2, r); };
    const KroStatus N = kroStatusNullPointer, S = kroStatusBadSize, P = kroStatusBadStep;
    const kroiSize good{w, h};
    const std::vector<kroiSize> badSizes = {{0, h}, {w, 0}, {-1, h}, {w, -5}, {INT32_MIN, 1}};

    EXPECT_EQ(call(nullptr, ss, dO.data(), ds, good), N);
    EXPECT_EQ(call(so.data(), ss, nullptr, ds, good), N);
    EXPECT_EQ(call(nullptr, 0, dO.data(), -3, {0, h}), N) << "null before size and step";
    for (kroiSize b : badSizes) EXPECT_EQ(call(so.data(), ss, dO.data(), ds, b), S);
    // elements of plane arrays
    for (int side = 0; side < 2; ++side) {
        const Lay l = side == 0 ? o.src : o.dst;
        for (int k = 0; k < planesOf(l) && planesOf(l) > 1; ++k) {
            auto s2 = so, d2 = dO;
            (side == 0 ? s2 : d2)[k] = nullptr;
            EXPECT_EQ(call(s2.data(), ss, d2.data(), ds, good), N) << "plane " << k;
            EXPECT_EQ(call(s2.data(), 0, d2.data(), ds, {0, h}), N) << "plane " << k << " before step and size";
        }
    }
    switch (o.checks) {
        case Checks::NullSize: break;
        case Checks::NullSizeStep:
            EXPECT_EQ(call(so.data(), 0, dO.data(), ds, good), P);
            EXPECT_EQ(call(so.data(), ss, dO.data(), -ds, good), P);
            EXPECT_EQ(call(so.data(), 0, dO.data(), 0, {0, h}), S) << "size before step";
            break;
        case Checks::DeepStepSize:
            EXPECT_EQ(call(so.data(), 0, dO.data(), ds, good), P);
            EXPECT_EQ(call(so.data(), ss, dO.data(), -ds, good), P);
            EXPECT_EQ(call(so.data(), ss, dO.data(), 0, {0, -1}), P) << "step before size";
            break;
    }
    for (size_t k = 0; k < dst.planes.size(); ++k) EXPECT_EQ(dst.planes[k].snapshot(), before[k]) << o.name << " wrote on failure";
    // without a step check, zero and negative steps are taken as they come
    if (o.checks == Checks::NullSize) {
        EXPECT_EQ(call(so.data(), 0, dO.data(), 0, good), kroStatusOk) << o.name << " zero steps";
    }
}

INSTANTIATE_TEST_SUITE_P(All, HlsOpTest, ::testing::Range(0, int(hlsOps().size())),
                         [](const ::testing::TestParamInfo<int>& i) { return std::string(hlsOps()[i.param].name); });

// ------------------------------------------------------------ exhaustive 8-bit sweeps
// Every triple (RGB forward, HLS inverse) through the main path and through the
// tail of the operations that hold the 8-bit forms; sampled under sanitizers.
class HlsSweep : public ::testing::TestWithParam<std::tuple<const char*, bool>> {};

TEST_P(HlsSweep, EveryTriple) {
    const HlsOp& o = opNamed(std::get<0>(GetParam()));
    const bool mainPath = std::get<1>(GetParam());
    const int width = mainPath ? 4096 : o.block - 1;
    const int64_t total = KROCC_FULL_SWEEPS ? (int64_t(1) << 24) : (int64_t(1) << 16);
    const int height = static_cast<int>((total + width - 1) / width);
    Img src(o.ty, o.src, o.bgr && forward(o.path), width, height, 0, Guard::After, false);
    Img dst(o.ty, o.dst, o.bgr && !forward(o.path), width, height, 0, Guard::After, false);
    for (int64_t i = 0; i < int64_t(width) * height; ++i) {
        const uint32_t t = KROCC_FULL_SWEEPS ? uint32_t(i) : uint32_t(i * 2654435761u);
        const int x = int(i % width), y = int(i / width);
        src.set(x, y, 0, (t >> 16) & 255);
        src.set(x, y, 1, (t >> 8) & 255);
        src.set(x, y, 2, t & 255);
    }
    const auto before = dst.snapshot();
    auto so = src.origins(), dO = dst.origins();
    ASSERT_EQ(o.call(so.data(), src.step(), dO.data(), dst.step(), {width, height}), kroStatusOk);
    EXPECT_EQ(compare(o, src, dst, before, width, height), "") << o.name << (mainPath ? " main path" : " tail");
}

INSTANTIATE_TEST_SUITE_P(Forms, HlsSweep,
                         ::testing::Combine(::testing::Values("kroiRGBToHLS_8u_C3R", "kroiRGBToHLS_8u_AC4R",
                                                              "kroiBGRToHLS_8u_C3P3R", "kroiHLSToRGB_8u_C3R",
                                                              "kroiHLSToBGR_8u_P3C3R"),
                                            ::testing::Bool()),
                         [](const auto& i) {
                             return std::string(std::get<0>(i.param)).substr(4) + (std::get<1>(i.param) ? "_main" : "_tail");
                         });

// ------------------------------------------------------------ the reciprocal estimate
// The library's estimate is within the stated bound on this processor, and the
// refined step is as the bound allows.
TEST(HlsEstimate, WithinBound) {
    for (uint32_t i = 0; i < (KROCC_FULL_SWEEPS ? 1u << 23 : 1u << 14); ++i) {
        const float x = refh::fromBits(0x3F800000u + (KROCC_FULL_SWEEPS ? i : i * 509u));  // every mantissa of one binade
        const float r = kro::hls::estimate(x);
        ASSERT_TRUE(refh::admissible(x, r)) << x << " -> " << r;
        ASSERT_EQ(r, kro::hls::estimate(_mm_set1_ps(x))[2]);
    }
    for (int x = 1; x <= 131070; ++x) {
        const float f = static_cast<float>(x);
        const refh::Bounds& b = refh::boundsOf(f);
        const float q = kro::hls::refined(f);
        ASSERT_TRUE(q >= b.refLo && q <= b.refHi) << x;
        if (x > 600) x += 97;
    }
}

// ------------------------------------------------------------ identities and stated values
// Pixels of one row, all through one call; a helper per sample type.
template <class T>
std::vector<T> runRow(KroStatus (*f)(const T*, int, T*, int, kroiSize), const std::vector<T>& in, int cn) {
    std::vector<T> out(in.size());
    const int width = static_cast<int>(in.size()) / cn;
    EXPECT_EQ(f(in.data(), width * cn * int(sizeof(T)), out.data(), width * cn * int(sizeof(T)), {width, 1}), kroStatusOk);
    return out;
}

// S = 0 gives R = G = B = L for every H and L in the 8-bit inverse forms
// (the kernels meet these references at every triple in the sweeps above).
TEST(HlsIdentity, NoSaturationGivesGrey8) {
    for (int h = 0; h < 256; ++h)
        for (int l = 0; l < 256; ++l) {
            const Out3 grey{double(l), double(l), double(l)};
            const float H = float(h), L = float(l);
            for (const Out3& o : {refh::inv1Main(H, L, 0), refh::inv1Tail(H, L, 0), refh::inv3Main(H, L, 0),
                                  refh::inv3Tail(H, L, 0)})
                ASSERT_EQ(o, grey) << "H " << h << " L " << l;
        }
}

TEST(HlsIdentity, NoSaturationGivesGrey16) {
    for (int width : {65536, 65535}) {
        std::vector<Kro16u> u(size_t(width) * 3);
        std::vector<Kro16s> s(size_t(width) * 3);
        for (int i = 0; i < width; ++i) {
            u[3 * i] = Kro16u(i * 13), u[3 * i + 1] = Kro16u(i), u[3 * i + 2] = 0;
            s[3 * i] = Kro16s(i * 13 - 32768), s[3 * i + 1] = Kro16s(i - 32768), s[3 * i + 2] = -32768;
        }
        const auto ou = runRow(kroiHLSToRGB_16u_C3R, u, 3);
        const auto os = runRow(kroiHLSToRGB_16s_C3R, s, 3);
        for (int i = 0; i < width; ++i)
            for (int k = 0; k < 3; ++k) {
                ASSERT_EQ(ou[3 * size_t(i) + k], Kro16u(i)) << "16u L " << i;
                ASSERT_EQ(os[3 * size_t(i) + k], Kro16s(i - 32768)) << "16s L " << i;
            }
    }
    // every L through the tail: rows of three pixels
    const int rows = 65536 / 3 + 1;
    std::vector<Kro16u> u(size_t(rows) * 9), ou(u.size());
    for (int i = 0; i < rows * 3; ++i) u[3 * size_t(i)] = Kro16u(i * 29), u[3 * size_t(i) + 1] = Kro16u(i), u[3 * size_t(i) + 2] = 0;
    ASSERT_EQ(kroiHLSToRGB_16u_C3R(u.data(), 18, ou.data(), 18, {3, rows}), kroStatusOk);
    for (int i = 0; i < rows * 3; ++i)
        for (int k = 0; k < 3; ++k) ASSERT_EQ(ou[3 * size_t(i) + k], Kro16u(i)) << "16u tail L " << i;
}

// An achromatic pixel: H = 0 and S = 0 on every forward path (-32768 for 16s).
TEST(HlsIdentity, AchromaticForward) {
    for (int width : {8, 7, 4, 3}) {
        std::vector<Kro16s> s(size_t(width) * 3, Kro16s(1234));
        const auto o = runRow(kroiRGBToHLS_16s_C3R, s, 3);
        for (int i = 0; i < width; ++i) {
            EXPECT_EQ(o[3 * i], -32768);
            EXPECT_EQ(o[3 * i + 2], -32768);
            EXPECT_EQ(o[3 * i + 1], 1234);
        }
        std::vector<Kro8u> b(size_t(width) * 3, Kro8u(77));
        const auto o8 = runRow(kroiRGBToHLS_8u_C3R, b, 3);
        for (int i = 0; i < width; ++i) EXPECT_EQ(o8[3 * i] + o8[3 * i + 2], 0);
    }
}

// 8-bit samples meet no infinity or NaN on any path: black, white, grey and
// pure hues, 16-pixel steps and tails, raise no floating-point exception.
TEST(HlsIdentity, EightBitRaisesNoFloatException) {
    std::vector<Kro8u> c3, c4;
    for (int i = 0; i < 37; ++i) {
        const int v = i % 4 == 0 ? 0 : i % 4 == 1 ? 255 : 7 * i;
        for (int k = 0; k < 4; ++k) {
            const Kro8u s = Kro8u(i % 4 == 3 ? (k == i % 3 ? 255 : 0) : v);
            if (k < 3) c3.push_back(s);
            c4.push_back(s);
        }
    }
    std::feclearexcept(FE_ALL_EXCEPT);
    runRow(kroiRGBToHLS_8u_C3R, c3, 3);
    runRow(kroiRGBToHLS_8u_AC4R, c4, 4);
    runRow(kroiHLSToRGB_8u_C3R, c3, 3);
    runRow(kroiHLSToRGB_8u_AC4R, c4, 4);
    EXPECT_EQ(std::fetestexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW), 0);
}

Out3 at8(KroStatus (*f)(const Kro8u*, int, Kro8u*, int, kroiSize), int width, int x, int a, int b, int c) {
    std::vector<Kro8u> in(size_t(width) * 3);
    for (int i = 0; i < width; ++i) in[3 * i] = Kro8u(a), in[3 * i + 1] = Kro8u(b), in[3 * i + 2] = Kro8u(c);
    const auto o = runRow(f, in, 3);
    return {double(o[3 * x]), double(o[3 * x + 1]), double(o[3 * x + 2])};
}

TEST(HlsValues, LightnessRoundsByPath) {
    // Lf = 21.5: nearest even in the main path, truncated in the tail
    EXPECT_EQ(at8(kroiRGBToHLS_8u_C3R, 9, 0, 11, 20, 32)[1], 22);
    EXPECT_EQ(at8(kroiRGBToHLS_8u_C3R, 9, 8, 11, 20, 32)[1], 21);
    std::vector<Kro8u> c4 = {11, 20, 32, 0, 11, 20, 32, 0, 11, 20, 32, 0, 11, 20, 32, 0, 11, 20, 32, 0};
    const auto o4 = runRow(kroiRGBToHLS_8u_AC4R, c4, 4);
    EXPECT_EQ(o4[1], 22);
    EXPECT_EQ(o4[17], 22);
    // Lf = 22.5 under the caller's upward mode: 23 in the 16-pixel and the 4-pixel steps alike
    std::vector<Kro8u> c20;
    for (int i = 0; i < 20; ++i) c20.insert(c20.end(), {11, 20, 34, 0});
    std::fesetround(FE_UPWARD);
    const auto up = runRow(kroiRGBToHLS_8u_AC4R, c20, 4);
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(up[1], 23);
    EXPECT_EQ(up[4 * 16 + 1], 23);
    Kro8u p0[5], p1[5], p2[5];
    Kro8u* d[3] = {p0, p1, p2};
    const Kro8u bgr[15] = {32, 20, 11, 32, 20, 11, 32, 20, 11, 32, 20, 11, 32, 20, 11};
    ASSERT_EQ(kroiBGRToHLS_8u_C3P3R(bgr, 15, d, 5, {5, 1}), kroStatusOk);
    EXPECT_EQ(p1[0], 21);
    EXPECT_EQ(p1[4], 21);
}

TEST(HlsValues, InverseCornersByColumn) {
    // columns 0 and 8 of nine: the main path and the tail; H = 255 is 360 degrees, the pixel of H = 0
    const struct { int width, x, h, l, s; Out3 want; } ex[] = {
        {9, 0, 0, 128, 255, {255, 1, 1}}, {9, 8, 0, 128, 255, {254, 1, 1}}, {9, 0, 85, 128, 255, {1, 255, 1}},
        {9, 8, 85, 128, 255, {1, 254, 1}}, {9, 0, 170, 64, 128, {32, 32, 96}}, {9, 8, 170, 64, 128, {31, 31, 96}},
        {8, 0, 255, 100, 100, {139, 61, 61}}, {8, 0, 0, 100, 100, {139, 61, 61}}};
    for (const auto& e : ex) EXPECT_EQ(at8(kroiHLSToRGB_8u_C3R, e.width, e.x, e.h, e.l, e.s), e.want) << e.h << " " << e.x;
    for (int width : {3, 4, 5}) {
        std::vector<Kro8u> in(size_t(width) * 3), b(width), g(width), r(width);
        for (int i = 0; i < width; ++i) in[3 * i] = 170, in[3 * i + 1] = 64, in[3 * i + 2] = 128;
        Kro8u* d[3] = {b.data(), g.data(), r.data()};
        ASSERT_EQ(kroiHLSToBGR_8u_C3P3R(in.data(), 3 * width, d, width, {width, 1}), kroStatusOk);
        for (int i = 0; i < width; ++i) EXPECT_EQ((Out3{double(r[i]), double(g[i]), double(b[i])}), (Out3{31, 31, 96}));
    }
}

TEST(HlsValues, SixteenBitHueWrapsLikeZero) {
    std::vector<Kro16u> in = {65535, 30000, 40000, 0, 30000, 40000, 65535, 30000, 40000, 0, 30000, 40000};
    const auto o = runRow(kroiHLSToRGB_16u_C3R, in, 3);
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(o[k], o[3 + k]);
        EXPECT_EQ(o[6 + k], o[9 + k]);
    }
}

// The byte step of a 16-bit or float form drops its low bits.
TEST(HlsSteps, OddByteStepRoundsDownToSamples) {
    std::vector<Kro16u> in(3 * 4 * 2), a(3 * 4 * 2), b(3 * 4 * 2);
    for (size_t i = 0; i < in.size(); ++i) in[i] = Kro16u(i * 2311);
    ASSERT_EQ(kroiRGBToHLS_16u_C3R(in.data(), 25, a.data(), 25, {4, 2}), kroStatusOk);
    ASSERT_EQ(kroiRGBToHLS_16u_C3R(in.data(), 24, b.data(), 24, {4, 2}), kroStatusOk);
    EXPECT_EQ(a, b);
    std::vector<Kro32f> f(3 * 4 * 2), fa(3 * 4 * 2), fb(3 * 4 * 2);
    for (size_t i = 0; i < f.size(); ++i) f[i] = float(i) / 24;
    ASSERT_EQ(kroiHLSToRGB_32f_C3R(f.data(), 51, fa.data(), 50, {4, 2}), kroStatusOk);
    ASSERT_EQ(kroiHLSToRGB_32f_C3R(f.data(), 48, fb.data(), 48, {4, 2}), kroStatusOk);
    EXPECT_EQ(0, std::memcmp(fa.data(), fb.data(), fa.size() * 4));
}

// Rows of kroiBGRToHLS_8u_AC4R whose destination is 16-byte aligned are stored
// by another sequence: every destination offset gives the same bytes.
TEST(HlsAlignment, BgrAc4SameBytesAtEveryDestinationOffset) {
    const int width = 45, height = 3, step = 4 * 48;
    std::vector<Kro8u> src(size_t(step) * height);
    fillRandom(src.data(), src.size());
    alignas(16) static Kro8u dst[16 + 4 * 48 * 3 + 16];
    std::vector<Kro8u> first;
    for (int off = 0; off < 16; ++off) {
        std::memset(dst, 0xA5, sizeof dst);
        ASSERT_EQ(kroiBGRToHLS_8u_AC4R(src.data(), step, dst + off, step, {width, height}), kroStatusOk);
        std::vector<Kro8u> got(dst + off, dst + off + size_t(step) * height);
        for (int i = 0; i < off; ++i) ASSERT_EQ(dst[i], 0xA5) << "offset " << off;
        if (off == 0)
            first = got;
        else
            ASSERT_EQ(got, first) << "destination offset " << off;
    }
}

}  // namespace
