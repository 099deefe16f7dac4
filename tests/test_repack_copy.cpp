// The line copy and the plane copy: the same bytes on every path, at every
// alignment and length around their steps, nothing written outside; the
// plane copy's checks, its choice of cache-bypassing stores and the cache
// size read from the descriptor registers.
#include <gtest/gtest.h>

#include <vector>

#include "harness.h"
#include "subsampled/copy.h"

using namespace kt;
using kro::sub::cacheSizeFromLeaf2;
using kro::sub::largestCacheSize;
using kro::sub::lineCopy;
using kro::sub::planeCopy;
using kro::sub::planeCopyBypasses;

namespace {

// Every length to past three 64-byte steps, at every destination alignment
// within 16 (short lengths) and four source alignments, both flags; guarded so that an over-read or over-write faults.
TEST(LineCopy, SameBytesEverywhere) {
    for (bool flag : {false, true})
        for (int n = 0; n <= 260; ++n)
            for (int so : {0, 3, 8, 15})
                for (int d0 = 0; d0 < 16; d0 += (n < 80 ? 1 : 5)) {
                    GuardedBuf src(n + so, Guard::After), dst(n + d0 + 16, Guard::After);
                    fillRandom(src.data(), src.size());
                    fillRandom(dst.data(), dst.size());
                    std::vector<uint8_t> want(dst.data(), dst.data() + dst.size());
                    for (int i = 0; i < n; ++i) want[d0 + i] = src.data()[so + i];
                    lineCopy(src.data() + so, dst.data() + d0, n, flag);
                    ASSERT_TRUE(std::equal(want.begin(), want.end(), dst.data()))
                        << n << " " << so << " " << d0 << " " << flag;
                }
}

// Sources that lie 16 to 320 bytes below the destination modulo 64 KiB keep
// ordinary stores; the bytes are the same either way.
TEST(LineCopy, AliasingDistances) {
    const int n = 1000, span = 65536 + 8192;
    std::vector<uint8_t> buf(2 * span);
    for (int lag : {0, 16, 17, 320, 321, 65216, 65215, 65520, 65521, 4096}) {
        fillRandom(buf.data(), buf.size());
        uint8_t* src = buf.data() + 64;
        uint8_t* dst = src + (65536 - lag) % 65536 + 65536;  // never overlapping
        std::vector<uint8_t> want(src, src + n);
        lineCopy(src, dst, n, true);
        ASSERT_TRUE(std::equal(want.begin(), want.end(), dst)) << lag;
    }
}

// Plane copies at many widths, heights and steps (rows padded with canaries,
// steps equal to the width as one row, negative steps), both paths.
TEST(PlaneCopy, SameBytesEverywhere) {
    for (int W : {1, 2, 15, 16, 17, 31, 63, 64, 65, 127, 128, 129, 200, 300})
        for (int H : {1, 2, 3, 7})
            for (int pad : {0, 5, 16}) {
                Plane s(W, H, pad, Guard::After), d(W, H, (pad * 3) % 17, Guard::Before, H % 2 == 0);
                auto want = d.snapshot();
                for (int y = 0; y < H; ++y)
                    for (int x = 0; x < W; ++x) d.rowIn(want, y)[x] = s.row(y)[x];
                ASSERT_EQ(planeCopy(s.origin(), s.step, d.origin(), d.step, W, H), kroStatusOk);
                ASSERT_EQ(diffPlane(d, want, 1), "") << W << "x" << H << " pad " << pad;
            }
}

// Both row paths directly, at every destination alignment within 64.
TEST(PlaneCopy, RowPathsAgree) {
    for (int n : {0, 1, 15, 16, 17, 63, 64, 65, 127, 128, 129, 255, 256, 300, 1000})
        for (int d0 = 0; d0 < 64; d0 += 7)
            for (int path = 0; path < 2; ++path) {
                GuardedBuf src(n + 1, Guard::After), dst(n + d0 + 1, Guard::After);
                fillRandom(src.data(), src.size());
                fillRandom(dst.data(), dst.size());
                std::vector<uint8_t> want(dst.data(), dst.data() + dst.size());
                for (int i = 0; i < n; ++i) want[d0 + i] = src.data()[1 + i];
                if (path)
                    kro::sub::detail::planeRowStream(src.data() + 1, dst.data() + d0, n);
                else
                    kro::sub::detail::planeRowPlain(src.data() + 1, dst.data() + d0, n);
                _mm_sfence();
                ASSERT_TRUE(std::equal(want.begin(), want.end(), dst.data())) << n << " " << d0 << " " << path;
            }
}

// A 1000 x 200 plane with both steps 1000 is one row of 200000 bytes; copied whole.
TEST(PlaneCopy, ContiguousPlane) {
    const int W = 1000, H = 200;
    Plane s(W, H, 0, Guard::After), d(W, H, 0, Guard::After);
    ASSERT_EQ(planeCopy(s.origin(), W, d.origin(), W, W, H), kroStatusOk);
    EXPECT_TRUE(std::equal(s.buf.data(), s.buf.data() + s.buf.size(), d.buf.data()));
}

TEST(PlaneCopy, Checks) {
    uint8_t a[16] = {}, b[16] = {};
    EXPECT_EQ(planeCopy(nullptr, 4, b, 4, 0, 0), kroStatusNullPointer);
    EXPECT_EQ(planeCopy(a, 4, nullptr, 4, 4, 4), kroStatusNullPointer);
    EXPECT_EQ(planeCopy(a, 4, b, 4, 0, 4), kroStatusBadSize);
    EXPECT_EQ(planeCopy(a, 4, b, 4, 4, 0), kroStatusBadSize);
    EXPECT_EQ(planeCopy(a, 4, b, 4, -1, 4), kroStatusBadSize);
    for (uint8_t v : b) EXPECT_EQ(v, 0);
}

// Bypassing stores: when the size overflows 32 bits, or rows of 64 bytes or
// more, more than 131072 bytes, and more than half the largest cache.
TEST(PlaneCopy, BypassThresholds) {
    // (size, row bytes, largest cache, bypass)
    const long long cases[][4] = {{0x80000000LL, 1, 0, 1}, {0x7FFFFFFFLL, 1, 0, 0},     {131072, 131072, 1024, 0},
                                  {131073, 131073, 1024, 1}, {200000, 63, 1024, 0},     {200000, 64, 1024, 1},
                                  {200000, 1000, 0, 0},      {200000, 1000, 400000, 0}, {200001, 1000, 400000, 1}};
    for (const auto& c : cases) EXPECT_EQ(planeCopyBypasses(c[0], c[1], c[2]), c[3] != 0) << c[0] << " " << c[1] << " " << c[2];
}

// Descriptor registers: the first byte of the first register counts the calls
// (it must be 1); registers with the top bit set carry nothing; the largest
// size in the table among the reported bytes wins.
TEST(CacheSize, FromDescriptors) {
    auto regs = [](unsigned a, unsigned b, unsigned c, unsigned d) {
        const unsigned r[4] = {a, b, c, d};
        return cacheSizeFromLeaf2(r);
    };
    const long long KiB = 1024, MiB = 1024 * 1024;
    EXPECT_EQ(regs(0x00000001, 0, 0, 0), 0);
    EXPECT_EQ(regs(0x00EC0001, 0, 0, 0), 24 * MiB);
    EXPECT_EQ(regs(0x00EC0002, 0, 0, 0), 0);                 // needs two calls
    EXPECT_EQ(regs(0x80EC0001, 0, 0, 0), 0);                 // top bit: ignored
    EXPECT_EQ(regs(0x00000001, 0x43000000, 0, 0x00004900), 4 * MiB);
    EXPECT_EQ(regs(0x00000001, 0, 0x000000EB, 0x0000004D), 18 * MiB);
    EXPECT_EQ(regs(0x00000001, 0, 0x48, 0), 3 * MiB);
    EXPECT_EQ(regs(0x00000001, 0, 0, 0x43), 512 * KiB);
    EXPECT_EQ(regs(0x00000001, 0, 0, 0x4E), 6 * MiB);
    EXPECT_EQ(regs(0x00000001, 0, 0, 0x87), 1 * MiB);
    EXPECT_EQ(regs(0x00000001, 0x0C0B0A09, 0x0F0E0D01, 0), 0);  // no known descriptor
    EXPECT_EQ(regs(0x00000001, 0x80000049, 0, 0), 0);
}

// Every pair of the table: the code byte's size is the size the table names.
TEST(CacheSize, TableCodes) {
    const long long MiB = 1024 * 1024;
    long long last = 1LL << 62;
    int n = 0;
    for (const auto& d : kro::sub::kCacheDescriptors) {
        const long long s = kro::sub::cacheSizeOfCode(d.code);
        EXPECT_LE(s, last);
        last = s;
        ++n;
        (void)MiB;
    }
    EXPECT_EQ(n, 43);
    EXPECT_EQ(kro::sub::cacheSizeOfCode(0x35), 24 * MiB);
    EXPECT_EQ(kro::sub::cacheSizeOfCode(0x93), 18 * MiB);
    EXPECT_EQ(kro::sub::cacheSizeOfCode(0x32), 3 * MiB);
    EXPECT_EQ(kro::sub::cacheSizeOfCode(0x11), 512 * 1024);
}

TEST(CacheSize, ThisProcessor) {
    const long long s = largestCacheSize();
    EXPECT_TRUE(s == 0 || (s >= 512 * 1024 && s <= 24 * 1024 * 1024)) << s;
}

}  // namespace
