// Bit-depth reduction: every form, selector and noise against the plain
// reference at every width from 1 to past three main-path blocks, odd heights,
// padded rows with canaries, guarded images and work blocks; the noise
// generator against an independent one; the size query; check order; and the
// stated examples.
#include <gtest/gtest.h>

#include <functional>

#include "bitdepth/reduce_frame.h"
#include "harness.h"
#include "ref_reduce.h"

using namespace kt;

namespace {

using CallFn = std::function<KroStatus(const void*, int, void*, int, kroiSize, int, int, int, Kro8u*)>;

struct Op {
    const char* name;
    ref::PairId pair;
    int layout;  // 1 C1, 3 C3, 4 AC4, 5 C4
    CallFn call;
};

#define OP(tag, P, lay, code, S, D)                                                                           \
    Op {                                                                                                      \
        "kroiReduceBits_" #tag "_" #lay, ref::P, code,                                                        \
            [](const void* s, int ss, void* d, int ds, kroiSize r, int n, int t, int l, Kro8u* b) {          \
                return kroiReduceBits_##tag##_##lay(static_cast<const S*>(s), ss, static_cast<D*>(d), ds, r, n, \
                                                    static_cast<KroDitherType>(t), l, b);                     \
            }                                                                                                 \
    }
#define OPS(tag, P, S, D) \
    OP(tag, P, C1R, 1, S, D), OP(tag, P, C3R, 3, S, D), OP(tag, P, AC4R, 4, S, D), OP(tag, P, C4R, 5, S, D)

const std::vector<Op>& allOps() {
    static const std::vector<Op> ops = {
        OPS(8u, R8u, Kro8u, Kro8u),         OPS(16u8u, R16u8u, Kro16u, Kro8u), OPS(16s8u, R16s8u, Kro16s, Kro8u),
        OPS(32f8u, R32f8u, Kro32f, Kro8u),  OPS(16u, R16u, Kro16u, Kro16u),    OPS(16s, R16s, Kro16s, Kro16s),
        OPS(32f16u, R32f16u, Kro32f, Kro16u), OPS(32f16s, R32f16s, Kro32f, Kro16s)};
    return ops;
}
const Op& opNamed(const std::string& n) {
    for (const Op& o : allOps())
        if (n == o.name) return o;
    std::abort();
}

int samplesOf(int layout) { return layout == 1 ? 1 : layout == 3 ? 3 : 4; }
int channelCode(int layout) { return layout == 1 ? 1 : layout == 3 ? 3 : layout == 4 ? 9 : 4; }

// Random source samples; float sources mostly 0..1 with a few outside and a
// few near the small-value clip.
void fillSource(const ref::PairDesc& p, Plane& pl) {
    if (!p.srcFloat) return;  // random bytes are random samples
    auto& r = rng();
    std::uniform_real_distribution<float> u(-0.05f, 1.05f);
    for (int y = 0; y < pl.height; ++y) {
        uint8_t* row = pl.row(y);
        for (int i = 0; i + 4 <= pl.rowBytes; i += 4) {
            float v = u(r);
            if (r() % 16 == 0) v = static_cast<float>(r() % 4) * 5.0e-8f;
            std::memcpy(row + i, &v, 4);
        }
    }
}

// A guarded work block of the queried size, starting `misalign` bytes past a
// 64-byte boundary; null when the size is 0.
struct WorkBlock {
    GuardedBuf buf;
    Kro8u* ptr = nullptr;
    WorkBlock(int layout, kroiSize roi, int noise, int sel, int misalign) {
        int size = -1;
        EXPECT_EQ(kroiReduceBitsGetBufferSize(channelCode(layout), roi, noise, static_cast<KroDitherType>(sel), &size),
                  kroStatusOk);
        if (size <= 0) return;
        // the last byte against the guard; the start's alignment varies with the size
        buf.alloc(static_cast<size_t>(size) + misalign, Guard::After);
        ptr = buf.data() + misalign;
        fillRandom(buf.data(), buf.size());      // the kernel clears what it needs
    }
};

struct Case {
    int width, height, noise, sel, levels;
    int srcPad = 3, dstPad = 5;
    Guard guard = Guard::After;
};

// One call against the reference, compared byte for byte over the whole
// destination mapping (pixels, kept fourth samples and canaries).
void runCase(const Op& op, const Case& c) {
    const ref::PairDesc p = ref::desc(op.pair);
    const int spp = samplesOf(op.layout);
    // pads in whole samples so the dithering paths' step rounding changes nothing
    Plane src(c.width * spp * p.srcSize, c.height, c.srcPad * p.srcSize, c.guard);
    Plane dst(c.width * spp * p.dstSize, c.height, c.dstPad * p.dstSize, c.guard);
    fillSource(p, src);
    const kroiSize roi{c.width, c.height};
    WorkBlock work(op.layout, roi, c.noise, c.sel, c.width % 7);
    std::vector<uint8_t> expect = dst.snapshot();
    ref::Image im{src.origin(), src.step, dst.rowIn(expect, 0), dst.step, c.width, c.height, op.layout};
    ref::reduce(p, im, c.noise, c.sel, c.levels);
    const KroStatus st = op.call(src.origin(), src.step, dst.origin(), dst.step, roi, c.noise, c.sel, c.levels, work.ptr);
    ASSERT_EQ(st, kroStatusOk) << op.name;
    const std::string diff = diffPlane(dst, expect, spp * p.dstSize);
    ASSERT_TRUE(diff.empty()) << op.name << " width " << c.width << " height " << c.height << " noise " << c.noise
                              << " selector " << c.sel << " levels " << c.levels << ": " << diff;
}

std::vector<int> levelChoices(const ref::PairDesc& p) {
    if (p.maxLevels == 256) return {2, 5, 100, 256};
    return {2, 7, 1000, 65536};
}

// ------------------------------------------------------------ every form against the reference
class ReduceSweep : public ::testing::TestWithParam<int> {};

TEST_P(ReduceSweep, EveryWidthSelectorNoiseAndLevelCount) {
    const int sel = GetParam();
    std::vector<int> widths;
    for (int w = 1; w <= 3 * 8 + 5; ++w) widths.push_back(w);
    for (const Op& op : allOps()) {
        const ref::PairDesc p = ref::desc(op.pair);
        const std::vector<int> levels = levelChoices(p);
        for (int w : widths) {
            const int noise = (w % 3 == 0) ? 0 : (w % 3 == 1) ? 37 : 100;
            const int lv = levels[w % levels.size()];
            const int h = (w % 2) ? 3 : (w % 4) ? 5 : 4;  // an even height too: rows may go in pairs
            Case c{w, h, sel == 0 ? 50 : noise, sel, lv};
            c.guard = (w % 4 == 0) ? Guard::Before : Guard::After;
            runCase(op, c);
            if (::testing::Test::HasFatalFailure()) return;
        }
        // every level count of the short list with and without noise on one width
        for (int lv : levels)
            for (int noise : {0, 1, 100}) {
                runCase(op, Case{13, 7, noise, sel, lv});
                if (::testing::Test::HasFatalFailure()) return;
            }
    }
}
std::string selectorName(const ::testing::TestParamInfo<int>& i) {
    static const char* const names[] = {"None", "FloydSteinberg", "JarvisJudiceNinke", "Stucki", "Bayer"};
    return names[i.param];
}
INSTANTIATE_TEST_SUITE_P(Selectors, ReduceSweep, ::testing::Values(0, 1, 2, 3, 4), selectorName);

TEST(Reduce, WideRowsWrapTheIndexTable) {
    for (const char* name : {"kroiReduceBits_8u_C1R", "kroiReduceBits_8u_C3R", "kroiReduceBits_32f16s_C4R",
                             "kroiReduceBits_16s8u_AC4R"})
        for (int sel = 1; sel <= 4; ++sel) {
            runCase(opNamed(name), Case{1030, 3, 60, sel, 3});
            if (HasFatalFailure()) return;
        }
}

// Selector 0 takes steps in bytes: a 16-bit image whose rows start at odd addresses.
TEST(Reduce, PlainReductionKeepsByteSteps) {
    for (const char* name : {"kroiReduceBits_16u_C1R", "kroiReduceBits_16s8u_C3R", "kroiReduceBits_32f16u_AC4R"}) {
        const Op& op = opNamed(name);
        const ref::PairDesc p = ref::desc(op.pair);
        const int spp = samplesOf(op.layout), w = 11, h = 4;
        Plane src(w * spp * p.srcSize, h, 1, Guard::After);  // odd step
        Plane dst(w * spp * p.dstSize, h, 3, Guard::After);
        fillSource(p, src);
        std::vector<uint8_t> expect = dst.snapshot();
        ref::Image im{src.origin(), src.step, dst.rowIn(expect, 0), dst.step, w, h, op.layout};
        ref::reduce(p, im, 0, 0, 9);
        ASSERT_EQ(op.call(src.origin(), src.step, dst.origin(), dst.step, {w, h}, 0, 0, 9, nullptr), kroStatusOk);
        EXPECT_EQ(diffPlane(dst, expect, spp * p.dstSize), "") << name;
    }
}

// Float samples far outside 0..1 saturate under selectors 0 and 4 in the main
// path and the tail alike, as those just outside do.
TEST(Reduce, FarFloatSamplesSaturate) {
    const float far[] = {1.5f, 3.0f, 1e6f, 1e7f, 1e10f, INFINITY, -1.5f, -1e7f, -1e10f, -INFINITY};
    const int n = static_cast<int>(sizeof far / sizeof far[0]);
    std::vector<float> src;
    for (int k = 0; k < 5; ++k) src.insert(src.end(), far, far + n);  // every value in both paths
    const int w = static_cast<int>(src.size());
    std::vector<uint8_t> work(8192);
    for (int sel : {0, 4})
        for (int noise : {0, 100}) {
            std::vector<Kro8u> d8(w);
            std::vector<Kro16u> d16(w);
            std::vector<Kro16s> s16(w);
            ASSERT_EQ(kroiReduceBits_32f8u_C1R(src.data(), 4 * w, d8.data(), w, {w, 1}, noise,
                                               static_cast<KroDitherType>(sel), 256, work.data()), 0);
            ASSERT_EQ(kroiReduceBits_32f16u_C1R(src.data(), 4 * w, d16.data(), 2 * w, {w, 1}, noise,
                                                static_cast<KroDitherType>(sel), 65536, work.data()), 0);
            ASSERT_EQ(kroiReduceBits_32f16s_C1R(src.data(), 4 * w, s16.data(), 2 * w, {w, 1}, noise,
                                                static_cast<KroDitherType>(sel), 3, work.data()), 0);
            for (int i = 0; i < w; ++i) {
                const bool high = src[i] > 0;
                EXPECT_EQ(d8[i], high ? 255 : 0) << src[i] << " selector " << sel << " noise " << noise;
                EXPECT_EQ(d16[i], high ? 65535 : 0) << src[i] << " selector " << sel << " noise " << noise;
                EXPECT_EQ(s16[i], high ? 32767 : -32768) << src[i] << " selector " << sel << " noise " << noise;
            }
        }
}

// ------------------------------------------------------------ noise generator
TEST(ReduceNoise, FirstWordsAndIndexTableFromSeedZero) {
    ref::NoiseGen g = ref::intGen(0, 1024, 0);
    for (uint32_t w : {0x803EAAF0u, 0xA1521F56u, 0xB63261B9u, 0xE7368B1Eu}) EXPECT_EQ(static_cast<uint32_t>(g.word()), w);

    alignas(64) static uint8_t block[kro::reduce::kNoiseBlockSize];
    const kro::reduce::NoiseTables t = kro::reduce::buildNoiseTables(block, -0.5f, 0.5f);
    const int first[4] = {1, 133, 217, 413};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(t.index[i], first[i]) << i;
    for (int i = 0; i < 1024; ++i) EXPECT_LE(t.index[i], 1024);
}

TEST(ReduceNoise, StreamsMatchAnIndependentGenerator) {
    using namespace kro::reduce;
    const uint32_t seeds[] = {0u, 1u, 12345u, 0xFFFFFFFFu, 0x80000000u};
    for (uint32_t seed : seeds) {
        const int16_t ib[][2] = {{0, 1024}, {-300, 300}, {-32768, 32767}, {5, 5}};
        for (auto& b : ib) {
            NoiseState s;
            ASSERT_EQ(noiseInitInt16(&s, b[0], b[1], seed), kroStatusOk);
            EXPECT_EQ(s.tag, 38);
            std::vector<int16_t> got(3001);
            // pieces of odd lengths continue one stream
            ASSERT_EQ(noiseInt16(got.data(), 1, &s), kroStatusOk);
            ASSERT_EQ(noiseInt16(got.data() + 1, 1000, &s), kroStatusOk);
            ASSERT_EQ(noiseInt16(got.data() + 1001, 2000, &s), kroStatusOk);
            ref::NoiseGen g = ref::intGen(b[0], b[1], seed);
            for (int i = 0; i < 3001; ++i) ASSERT_EQ(got[i], ref::intValue(g)) << "seed " << seed << " at " << i;
        }
        const float fb[][2] = {{-1.0f, 1.0f}, {0.1f, 0.7f}, {-127.5f, 382.5f}, {2.0f, -3.0f}};
        for (auto& b : fb) {
            NoiseState s;
            ASSERT_EQ(noiseInitFloat(&s, b[0], b[1], seed), kroStatusOk);
            EXPECT_EQ(s.tag, 39);
            std::vector<float> got(2049);
            ASSERT_EQ(noiseFloat(got.data(), 2049, &s), kroStatusOk);
            ref::NoiseGen g = ref::floatGen(b[0], b[1], seed);
            for (int i = 0; i < 2049; ++i) ASSERT_EQ(got[i], ref::floatValue(g)) << "seed " << seed << " at " << i;
        }
    }
}

TEST(ReduceNoise, StatusesOfTheGenerator) {
    using namespace kro::reduce;
    int size = 0;
    EXPECT_EQ(noiseStateSize(nullptr), kroStatusNullPointer);
    EXPECT_EQ(noiseStateSize(&size), kroStatusOk);
    EXPECT_EQ(size, 56);
    EXPECT_EQ(noiseInitInt16(nullptr, 0, 1, 0), kroStatusNullPointer);
    EXPECT_EQ(noiseInitFloat(nullptr, 0, 1, 0), kroStatusNullPointer);
    NoiseState si, sf;
    noiseInitInt16(&si, 0, 10, 3);
    noiseInitFloat(&sf, 0, 10, 3);
    int16_t i16[4] = {7, 7, 7, 7};
    float f32[4] = {7, 7, 7, 7};
    EXPECT_EQ(noiseInt16(nullptr, 4, &si), kroStatusNullPointer);
    EXPECT_EQ(noiseInt16(i16, 0, &si), kroStatusBadSize);
    EXPECT_EQ(noiseInt16(i16, 4, &sf), kroStatusBadNoiseState);
    EXPECT_EQ(noiseFloat(f32, 4, &si), kroStatusBadNoiseState);
    EXPECT_EQ(noiseFloat(f32, -1, &sf), kroStatusBadSize);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(i16[i], 7);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(f32[i], 7.0f);
}

// ------------------------------------------------------------ size query
TEST(ReduceBufferSize, StatedValues) {
    int n = -1;
    // (channel code, width, height, noise, selector, size); the height is not read
    const int stated[][6] = {{1, 100, 1, 0, 0, 0},      {1, 100, 1, 50, 0, 0},   {1, 100, 1, 100, 0, 0},
                             {1, 100, 1, 0, 4, 0},      {3, 100, 1, 1, 4, 6336}, {1, 100, 1, 0, 1, 880},
                             {9, 100, 1, 100, 3, 7584}, {4, 100, -5, 0, 2, 12 * 100 + 48 + 64}};
    for (const auto& e : stated) {
        EXPECT_EQ(kroiReduceBitsGetBufferSize(e[0], {e[1], e[2]}, e[3], static_cast<KroDitherType>(e[4]), &n), kroStatusOk);
        EXPECT_EQ(n, e[5]) << "channels " << e[0] << " noise " << e[3] << " selector " << e[4];
    }
    for (int w : {1, 2, 3, 17, 1000, 4096})
        for (int sel = 0; sel <= 4; ++sel)
            for (int noise : {0, 1, 99, 100}) {
                ASSERT_EQ(kroiReduceBitsGetBufferSize(1, {w, 0}, noise, static_cast<KroDitherType>(sel), &n),
                          kroStatusOk);
                EXPECT_EQ(n, ref::bufferSize(w, noise, sel));
            }
}

TEST(ReduceBufferSize, CheckOrder) {
    int n = 12345;
    const auto q = [&](int ch, int w, int noise, int sel, int* out) {
        return kroiReduceBitsGetBufferSize(ch, {w, 1}, noise, static_cast<KroDitherType>(sel), out);
    };
    EXPECT_EQ(q(2, 0, 101, 9, nullptr), kroStatusNullPointer);
    EXPECT_EQ(q(2, 0, 101, 9, &n), kroStatusBadSize);
    EXPECT_EQ(q(2, -1, 101, 9, &n), kroStatusBadSize);
    EXPECT_EQ(q(2, 1, 101, 9, &n), kroStatusBadChannelCount);
    for (int ch : {0, 2, 5, 8, 10, -1}) EXPECT_EQ(q(ch, 1, 0, 1, &n), kroStatusBadChannelCount);
    EXPECT_EQ(q(9, 1, 101, 9, &n), kroStatusBadNoise);
    EXPECT_EQ(q(9, 1, -1, 9, &n), kroStatusBadNoise);
    EXPECT_EQ(q(9, 1, 100, 5, &n), kroStatusBadDitherType);
    EXPECT_EQ(q(9, 1, 100, -1, &n), kroStatusBadDitherType);
    EXPECT_EQ(n, 12345);  // nothing stored on failure
    // a block too large for the 32-bit answer
    EXPECT_EQ(q(1, 0x7FFFFFFF, 0, 3, &n), kroStatusBadSize);
    EXPECT_EQ(n, 12345);
}

// ------------------------------------------------------------ checks of the reductions
TEST(ReduceChecks, OrderAndNothingWritten) {
    for (const Op& op : allOps()) {
        const ref::PairDesc p = ref::desc(op.pair);
        const int spp = samplesOf(op.layout);
        Plane src(4 * spp * p.srcSize, 2, 0, Guard::After);
        Plane dst(4 * spp * p.dstSize, 2, 0, Guard::After);
        const std::vector<uint8_t> before = dst.snapshot();
        const void* s = src.origin();
        void* d = dst.origin();
        const int ss = src.step, ds = dst.step, maxL = p.maxLevels;
        const auto call = [&](const void* sp, void* dp, kroiSize r, int noise, int sel, int levels, Kro8u* b) {
            return op.call(sp, ss, dp, ds, r, noise, sel, levels, b);
        };
        struct Row {
            KroStatus want;
            const void* s;
            void* d;
            kroiSize r;
            int noise, sel, levels;
        };
        const Row rows[] = {
            {kroStatusNullPointer, nullptr, d, {0, 0}, 101, 9, 1},
            {kroStatusNullPointer, s, nullptr, {0, 0}, 101, 9, 1},
            {kroStatusBadSize, s, d, {0, 2}, 101, 9, 1},
            {kroStatusBadSize, s, d, {4, 0}, 101, 9, 1},
            {kroStatusBadSize, s, d, {-4, 2}, 101, 9, 1},
            {kroStatusBadNoise, s, d, {4, 2}, 101, 9, 1},
            {kroStatusBadNoise, s, d, {4, 2}, -1, 9, 1},
            {kroStatusBadLevels, s, d, {4, 2}, 100, 9, 1},
            {kroStatusBadLevels, s, d, {4, 2}, 0, -1, maxL + 1},
            {kroStatusBadLevels, s, d, {4, 2}, 0, 0, -3},
            {kroStatusBadDitherType, s, d, {4, 2}, 100, 5, maxL},
            {kroStatusBadDitherType, s, d, {4, 2}, 0, -1, 2},
            {kroStatusBadDitherType, s, d, {4, 2}, 0, 0x7FFFFFFF, 2},
            // the work block is looked for only after the selector
            {kroStatusNullPointer, s, d, {4, 2}, 0, 1, 2},
            {kroStatusNullPointer, s, d, {4, 2}, 0, 2, 2},
            {kroStatusNullPointer, s, d, {4, 2}, 0, 3, 2},
            {kroStatusNullPointer, s, d, {4, 2}, 1, 4, 2},
        };
        for (const Row& r : rows) {
            EXPECT_EQ(call(r.s, r.d, r.r, r.noise, r.sel, r.levels, nullptr), r.want)
                << op.name << " noise " << r.noise << " selector " << r.sel << " levels " << r.levels;
            EXPECT_EQ(diffPlane(dst, before, 1), "") << op.name;
        }
        // a null work block is fine where none is needed
        EXPECT_EQ(call(s, d, {4, 2}, 50, 0, 2, nullptr), kroStatusOk) << op.name;
        EXPECT_EQ(call(s, d, {4, 2}, 0, 4, 2, nullptr), kroStatusOk) << op.name;
        EXPECT_EQ(call(s, d, {4, 2}, 100, 0, maxL, nullptr), kroStatusOk) << op.name;
    }
}

// ------------------------------------------------------------ stated examples
// One constant 8u C1 image through kroiReduceBits_8u_C1R.
std::vector<std::vector<int>> run8u(int value, int width, int height, int noise, int sel, int levels) {
    std::vector<uint8_t> src(static_cast<size_t>(width) * height, static_cast<uint8_t>(value));
    std::vector<uint8_t> dst(src.size(), 7);
    std::vector<uint8_t> buf(20000);
    EXPECT_EQ(kroiReduceBits_8u_C1R(src.data(), width, dst.data(), width, {width, height}, noise,
                                    static_cast<KroDitherType>(sel), levels, buf.data()),
              kroStatusOk);
    std::vector<std::vector<int>> rows(height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) rows[y].push_back(dst[static_cast<size_t>(y) * width + x]);
    return rows;
}
using Rows = std::vector<std::vector<int>>;

TEST(ReduceExamples, PlainLevels) {
    std::vector<uint8_t> all(256), out(256);
    for (int i = 0; i < 256; ++i) all[i] = static_cast<uint8_t>(i);
    ASSERT_EQ(kroiReduceBits_8u_C1R(all.data(), 256, out.data(), 256, {256, 1}, 0, kroiDitherNone, 256, nullptr), 0);
    EXPECT_EQ(out, all);
    ASSERT_EQ(kroiReduceBits_8u_C1R(all.data(), 256, out.data(), 256, {256, 1}, 0, kroiDitherNone, 4, nullptr), 0);
    for (auto [in, want] : {std::pair{0, 0}, {42, 0}, {43, 85}, {127, 85}, {128, 170}, {212, 170}, {213, 255}, {255, 255}})
        EXPECT_EQ(out[in], want) << in;
    ASSERT_EQ(kroiReduceBits_8u_C1R(all.data(), 256, out.data(), 256, {256, 1}, 0, kroiDitherNone, 2, nullptr), 0);
    EXPECT_EQ(out[127], 0);
    EXPECT_EQ(out[128], 255);
}

TEST(ReduceExamples, SixteenBitFullLevelsIsNotTheIdentity) {
    std::vector<Kro16u> all(65536), out(65536);
    for (int i = 0; i < 65536; ++i) all[i] = static_cast<Kro16u>(i);
    ASSERT_EQ(kroiReduceBits_16u_C1R(all.data(), 1 << 17, out.data(), 1 << 17, {65536, 1}, 0, kroiDitherNone, 65536,
                                     nullptr),
              0);
    int lower = 0, first = -1;
    for (int i = 0; i < 65536; ++i) {
        if (out[i] == i) continue;
        EXPECT_EQ(out[i], i - 1) << i;
        if (first < 0) first = i;
        ++lower;
    }
    EXPECT_EQ(lower, 512);
    EXPECT_EQ(first, 257);
    EXPECT_EQ(out[257], 256);
}

TEST(ReduceExamples, ErrorDiffusionOnSixByThree) {
    const Rows checker = {{255, 0, 255, 0, 255, 0}, {0, 255, 0, 255, 0, 255}, {255, 0, 255, 0, 255, 0}};
    for (int sel = 1; sel <= 3; ++sel) EXPECT_EQ(run8u(128, 6, 3, 0, sel, 2), checker) << sel;
    EXPECT_EQ(run8u(100, 6, 3, 0, 1, 4),
              (Rows{{85, 85, 85, 85, 85, 85}, {85, 85, 170, 85, 85, 85}, {85, 85, 85, 85, 170, 85}}));
    EXPECT_EQ(run8u(100, 6, 3, 0, 2, 4),
              (Rows{{85, 85, 85, 85, 85, 85}, {85, 85, 85, 85, 85, 85}, {85, 85, 85, 170, 85, 85}}));
    EXPECT_EQ(run8u(100, 6, 3, 0, 3, 4),
              (Rows{{85, 85, 85, 85, 85, 85}, {85, 85, 85, 85, 85, 85}, {85, 85, 170, 85, 85, 85}}));
}

TEST(ReduceExamples, DiffusionEdges) {
    // white stays white and passes nothing on; width 1 works
    for (int sel = 1; sel <= 3; ++sel) {
        EXPECT_EQ(run8u(255, 5, 3, 0, sel, 3), Rows(3, std::vector<int>(5, 255)));
        EXPECT_EQ(run8u(0, 5, 3, 0, sel, 3), Rows(3, std::vector<int>(5, 0)));
        const Rows one = run8u(100, 1, 5, 0, sel, 4);
        EXPECT_EQ(one[0][0], 85);  // the first sample: its plain nearest level
    }
    // a tiny float sample: black under Floyd-Steinberg, quantised under the others
    const float tiny = 5.0e-8f;
    std::vector<float> src(8, tiny);
    std::vector<Kro8u> dst(8, 9);
    std::vector<uint8_t> buf(1000);
    ASSERT_EQ(kroiReduceBits_32f8u_C1R(src.data(), 32, dst.data(), 8, {8, 1}, 0, kroiDitherFloydSteinberg, 256,
                                       buf.data()),
              0);
    for (int v : dst) EXPECT_EQ(v, 0);
    // C3 with equal channels: channel 1 starts with the errors channel 0 left
    std::vector<Kro8u> c3(6 * 4 * 3, 100), o3(c3.size());
    ASSERT_EQ(kroiReduceBits_8u_C3R(c3.data(), 18, o3.data(), 18, {6, 4}, 0, kroiDitherFloydSteinberg, 4, buf.data()),
              0);
    bool differ = false;
    for (size_t i = 0; i < o3.size(); i += 3) differ |= o3[i] != o3[i + 1];
    EXPECT_TRUE(differ);
}

TEST(ReduceExamples, Bayer) {
    const Rows r128 = run8u(128, 8, 8, 0, 4, 2);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) EXPECT_EQ(r128[y][x], ((x + y) % 2 == 0) ? 255 : 0) << x << "," << y;
    const Rows r64 = run8u(64, 8, 8, 0, 4, 2);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) EXPECT_EQ(r64[y][x], (y % 2 == 0 && x % 2 == 0) ? 255 : 0) << x << "," << y;
    EXPECT_EQ(run8u(0, 9, 5, 0, 4, 2), Rows(5, std::vector<int>(9, 0)));
    EXPECT_EQ(run8u(255, 9, 5, 0, 4, 2), Rows(5, std::vector<int>(9, 255)));
    EXPECT_EQ(run8u(255, 9, 5, 100, 4, 2), Rows(5, std::vector<int>(9, 255)));
    // width 1: column 0 of the matrix only (k = 0, 12, 3, 15 down the rows)
    const Rows w1 = run8u(128, 1, 4, 0, 4, 2);
    EXPECT_EQ(w1, (Rows{{255}, {0}, {255}, {0}}));
    // the pattern is anchored at the region's corner
    std::vector<uint8_t> img(16 * 4), a(16 * 4), b(16 * 4);
    for (size_t i = 0; i < img.size(); ++i) img[i] = static_cast<uint8_t>(60 + 9 * (i % 16));
    ASSERT_EQ(kroiReduceBits_8u_C1R(img.data() + 1, 16, a.data(), 16, {8, 4}, 0, kroiDitherBayer, 2, nullptr), 0);
    ASSERT_EQ(kroiReduceBits_8u_C1R(img.data() + 2, 16, b.data(), 16, {8, 4}, 0, kroiDitherBayer, 2, nullptr), 0);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 8; ++x) {
            const int v1 = img[y * 16 + 1 + x], v2 = img[y * 16 + 2 + x];
            static const int k[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
            EXPECT_EQ(a[y * 16 + x], v1 > 17 * k[y][x & 3] ? 255 : 0);
            EXPECT_EQ(b[y * 16 + x], v2 > 17 * k[y][x & 3] ? 255 : 0);
        }
}

}  // namespace
