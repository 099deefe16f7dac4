// One bit a pixel: both selectors against the plain reference at every width
// from 1 to past three 16-pixel blocks, every bit offset, odd heights, padded
// and guarded rows; the checks in their order; the stated examples.
#include <gtest/gtest.h>

#include "harness.h"
#include "ref_reduce.h"

using namespace kt;

namespace {

KroStatus call(const uint8_t* s, int ss, uint8_t* d, int ds, int off, kroiSize r, int sel, int t, Kro8u* b) {
    return kroiReduceBits_8u1u_C1R(s, ss, d, ds, off, r, 0x5A5A, -7, static_cast<KroDitherType>(sel),
                                   static_cast<Kro8u>(t), b);
}

TEST(ReduceOneBit, EveryWidthOffsetAndSelector) {
    std::vector<int> widths;
    for (int w = 1; w <= 3 * 16 + 9; ++w) widths.push_back(w);
    for (int w : {64, 127, 255, 1000}) widths.push_back(w);
    for (int sel : {0, 3})
        for (int w : widths)
            for (int off : {0, 1, 3, 7, 8, 13}) {
                const int h = (w % 2) ? 5 : 3;
                const int t = (w * 37 + off) % 256;
                Plane src(w, h, 3, (w % 3) ? Guard::After : Guard::Before);
                // rows with runs of equal samples too, so the threshold meets equal values
                for (int y = 0; y < h; ++y)
                    if (y == 1)
                        for (int x = 0; x < w; ++x) src.row(y)[x] = static_cast<uint8_t>(x % 3 ? t : 128);
                const int bytes = ((off & 7) + w + 7) / 8;
                Plane dst(bytes, h, 2, (w % 2) ? Guard::After : Guard::Before);
                int size = 0;
                ASSERT_EQ(kroiReduceBitsGetBufferSize(1, {w, h}, 0, kroiDitherStucki, &size), 0);
                GuardedBuf work(static_cast<size_t>(size), Guard::After);
                fillRandom(work.data(), work.size());
                std::vector<uint8_t> expect = dst.snapshot();
                ref::onebit(src.origin(), src.step, dst.rowIn(expect, 0), dst.step, off, w, h, sel, t);
                ASSERT_EQ(call(src.origin(), src.step, dst.origin(), dst.step, off, {w, h}, sel, t, work.data()), 0);
                ASSERT_EQ(diffPlane(dst, expect, 1), "") << "selector " << sel << " width " << w << " offset " << off;
            }
}

TEST(ReduceOneBit, ChecksInOrderAndNothingWritten) {
    uint8_t src[16] = {}, dst[16];
    std::memset(dst, 0xA5, sizeof dst);
    uint8_t buf[1024];
    EXPECT_EQ(call(nullptr, 16, dst, 16, -1, {0, 0}, 9, 0, nullptr), kroStatusNullPointer);
    EXPECT_EQ(call(src, 16, nullptr, 16, -1, {0, 0}, 9, 0, nullptr), kroStatusNullPointer);
    EXPECT_EQ(call(src, 16, dst, 16, 0, {0, 1}, 9, 0, nullptr), kroStatusBadSize);
    EXPECT_EQ(call(src, 16, dst, 16, 0, {4, 0}, 9, 0, nullptr), kroStatusBadSize);
    EXPECT_EQ(call(src, 16, dst, 16, -1, {4, 1}, 9, 0, nullptr), kroStatusBadSize);
    for (int sel : {1, 2, 4, 5, -1}) {
        EXPECT_EQ(call(src, 16, dst, 16, 0, {4, 1}, sel, 0, nullptr), kroStatusBadDitherType);
        EXPECT_EQ(call(src, 16, dst, 16, 0, {4, 1}, sel, 0, buf), kroStatusBadDitherType);
    }
    EXPECT_EQ(call(src, 16, dst, 16, 0, {4, 1}, 3, 0, nullptr), kroStatusNullPointer);
    for (uint8_t b : dst) EXPECT_EQ(b, 0xA5);
    EXPECT_EQ(call(src, 16, dst, 16, 0, {4, 1}, 0, 0, nullptr), kroStatusOk);  // no block needed
}

TEST(ReduceOneBit, StatedExamples) {
    const uint8_t row[8] = {0, 127, 128, 255, 200, 0, 0, 1};
    uint8_t d[2] = {0xFF, 0xFF};
    ASSERT_EQ(call(row, 8, d, 2, 0, {8, 1}, 0, 127, nullptr), 0);
    EXPECT_EQ(d[0], 0x38);
    EXPECT_EQ(d[1], 0xFF);
    d[0] = d[1] = 0xFF;
    ASSERT_EQ(call(row, 8, d, 2, 8, {8, 1}, 0, 127, nullptr), 0);  // offset 8 is offset 0
    EXPECT_EQ(d[0], 0x38);
    // offset 3: pixels 0..4 in bits 4..0 of byte 0, 5..7 in bits 7..5 of byte 1
    for (uint8_t fill : {0x00, 0xFF}) {
        d[0] = d[1] = fill;
        ASSERT_EQ(call(row, 8, d, 2, 3, {8, 1}, 0, 127, nullptr), 0);
        EXPECT_EQ(d[0], (fill & 0xE0) | 0x07);  // bits 0 0 1 1 1
        EXPECT_EQ(d[1], (fill & 0x1F) | 0x00);  // 0 0 0
    }
    // 3 pixels at offset 2 touch bits 5, 4, 3 only
    const uint8_t three[3] = {255, 0, 255};
    d[0] = 0x00;
    ASSERT_EQ(call(three, 3, d, 1, 2, {3, 1}, 0, 0, nullptr), 0);
    EXPECT_EQ(d[0], 0x28);
    d[0] = 0xFF;
    ASSERT_EQ(call(three, 3, d, 1, 2, {3, 1}, 0, 0, nullptr), 0);
    EXPECT_EQ(d[0], 0xEF);
    // threshold 0: every non-zero sample is 1
    const uint8_t z[16] = {0, 1, 0, 2, 0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 3};
    uint8_t zb[2] = {};
    ASSERT_EQ(call(z, 16, zb, 2, 0, {16, 1}, 0, 0, nullptr), 0);
    EXPECT_EQ(zb[0], 0x50);
    EXPECT_EQ(zb[1], 0x81);
    // Stucki on a constant 128 with threshold 127: the first pixel is 1 and leaves -1023
    uint8_t c128[8];
    std::memset(c128, 128, 8);
    uint8_t buf[256];
    uint8_t out[1] = {0};
    ASSERT_EQ(call(c128, 8, out, 1, 0, {1, 1}, 3, 127, buf), 0);
    EXPECT_EQ(out[0], 0x80);
    // the second pixel gathers 8 x -1023: acc = 1048576 - 23 x 8184 = 860344 < 127 << 13
    ASSERT_EQ(call(c128, 8, out, 1, 0, {2, 1}, 3, 127, buf), 0);
    EXPECT_EQ(out[0] & 0xC0, 0x80);
}

}  // namespace
