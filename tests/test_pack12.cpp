// 12-bit packing: both directions against the bit-stream reference at every
// width through three 8-sample steps and past, odd heights, padded and odd
// byte steps, guards on both sides of the buffers, input above 4095, the
// stated examples, round trips, and the check order.
#include <gtest/gtest.h>

#include <cstring>

#include "harness.h"
#include "ref_pack12.h"

using namespace kt;

namespace {

uint16_t get16(const uint8_t* p) {
    uint16_t v;
    std::memcpy(&v, p, 2);
    return v;
}
void put16(uint8_t* p, uint16_t v) { std::memcpy(p, &v, 2); }

struct Case {
    int width, height, srcPad, dstPad;
    Guard guard;
};

std::vector<Case> cases() {
    std::vector<Case> c;
    for (int w : sweepWidths(8))
        for (Guard g : {Guard::After, Guard::Before}) c.push_back({w, 3, (w % 3) + 1, (w % 5) + 2, g});
    c.push_back({37, 1, 0, 0, Guard::After});  // tight rows
    c.push_back({8, 5, 0, 7, Guard::Before});
    return c;
}

// Pack: 16-bit samples (12-bit values, or any 16-bit value with `wide`) to the
// stream; bits above 11 must not reach it.
void checkPack(const Case& k, bool wide) {
    Plane src(2 * k.width, k.height, k.srcPad, k.guard);
    Plane dst(ref::packedBytes(k.width), k.height, k.dstPad, k.guard);
    if (!wide)
        for (int y = 0; y < k.height; ++y)
            for (int x = 0; x < k.width; ++x) put16(src.row(y) + 2 * x, get16(src.row(y) + 2 * x) & 0x0FFF);
    auto expect = dst.snapshot();
    for (int y = 0; y < k.height; ++y) {
        std::vector<uint16_t> s(size_t(k.width));
        for (int x = 0; x < k.width; ++x) s[size_t(x)] = get16(src.row(y) + 2 * x) & 0x0FFF;
        auto bytes = ref::pack12(s);
        std::memcpy(dst.rowIn(expect, y), bytes.data(), bytes.size());
    }
    const auto srcBefore = src.snapshot();
    ASSERT_EQ(kroiPack_16u12u_C1R(reinterpret_cast<const Kro16u*>(src.origin()), src.step, dst.origin(), dst.step,
                                  {k.width, k.height}),
              kroStatusOk);
    EXPECT_EQ(diffPlane(dst, expect, 1), "") << "width " << k.width << (wide ? " wide" : "");
    EXPECT_EQ(diffPlane(src, srcBefore, 2), "");
}

TEST(Pack12, EveryWidthAgainstBitStream) {
    for (const Case& k : cases()) {
        checkPack(k, false);
        checkPack(k, true);
    }
}

TEST(Pack12, UnpackEveryWidthAgainstBitStream) {
    for (const Case& k : cases()) {
        Plane src(ref::packedBytes(k.width), k.height, k.srcPad, k.guard);
        Plane dst(2 * k.width, k.height, k.dstPad, k.guard);
        auto expect = dst.snapshot();
        for (int y = 0; y < k.height; ++y) {
            auto s = ref::unpack12(src.row(y), k.width);
            for (int x = 0; x < k.width; ++x) put16(dst.rowIn(expect, y) + 2 * x, s[size_t(x)]);
        }
        const auto srcBefore = src.snapshot();
        ASSERT_EQ(kroiUnpack_12u16u_C1R(src.origin(), src.step, reinterpret_cast<Kro16u*>(dst.origin()), dst.step,
                                        {k.width, k.height}),
                  kroStatusOk);
        EXPECT_EQ(diffPlane(dst, expect, 2), "") << "width " << k.width;
        EXPECT_EQ(diffPlane(src, srcBefore, 1), "");
    }
}

TEST(Pack12, StatedExamples) {
    uint8_t b[8];
    Kro16u s[4];
    const Kro16u one[] = {0xABC};
    std::memset(b, 0xEE, sizeof b);
    ASSERT_EQ(kroiPack_16u12u_C1R(one, 2, b, 8, {1, 1}), kroStatusOk);
    EXPECT_EQ(b[0], 0xAB);
    EXPECT_EQ(b[1], 0xC0);
    EXPECT_EQ(b[2], 0xEE);
    ASSERT_EQ(kroiUnpack_12u16u_C1R(b, 8, s, 8, {1, 1}), kroStatusOk);
    EXPECT_EQ(s[0], 0xABC);

    const Kro16u two[] = {0x123, 0x456, 0x789};
    std::memset(b, 0xEE, sizeof b);
    ASSERT_EQ(kroiPack_16u12u_C1R(two, 6, b, 8, {2, 1}), kroStatusOk);
    EXPECT_EQ(b[0], 0x12);
    EXPECT_EQ(b[1], 0x34);
    EXPECT_EQ(b[2], 0x56);
    EXPECT_EQ(b[3], 0xEE);
    std::memset(b, 0xEE, sizeof b);
    ASSERT_EQ(kroiPack_16u12u_C1R(two, 6, b, 8, {3, 1}), kroStatusOk);
    const uint8_t three[] = {0x12, 0x34, 0x56, 0x78, 0x90, 0xEE};
    EXPECT_EQ(std::memcmp(b, three, 6), 0);
    ASSERT_EQ(kroiUnpack_12u16u_C1R(b, 8, s, 8, {3, 1}), kroStatusOk);
    EXPECT_EQ(s[0], 0x123);
    EXPECT_EQ(s[1], 0x456);
    EXPECT_EQ(s[2], 0x789);
}

// Check order: null (-8), size (-6), step (-16); nothing is written on failure.
TEST(Pack12, CheckOrder) {
    Kro16u s[4] = {1, 2, 3, 4};
    uint8_t b[8] = {9, 9, 9, 9, 9, 9, 9, 9};
    struct Row {
        bool nullSrc, nullDst;
        int w, h, srcStep, dstStep;
        KroStatus want;
    };
    const Row rows[] = {
        {true, false, 2, 1, 8, 8, kroStatusNullPointer},  {false, true, 2, 1, 8, 8, kroStatusNullPointer},
        {true, true, 0, 0, 0, 0, kroStatusNullPointer},   {false, false, 0, 1, 0, 0, kroStatusBadSize},
        {false, false, 2, 0, 0, 0, kroStatusBadSize},     {false, false, -1, 1, 8, 8, kroStatusBadSize},
        {false, false, 2, -5, 8, 8, kroStatusBadSize},    {false, false, 2, 1, 0, 8, kroStatusBadStep},
        {false, false, 2, 1, 8, 0, kroStatusBadStep},     {false, false, 2, 1, -8, 8, kroStatusBadStep},
        {false, false, 2, 1, 8, -3, kroStatusBadStep},    {false, false, 2, 2, 1, 1, kroStatusOk},
    };
    for (const Row& r : rows) {
        uint8_t bb[8];
        Kro16u ss[4];
        std::memcpy(bb, b, 8);
        std::memcpy(ss, s, 8);
        EXPECT_EQ(kroiPack_16u12u_C1R(r.nullSrc ? nullptr : ss, r.srcStep, r.nullDst ? nullptr : bb, r.dstStep,
                                      {r.w, r.h}),
                  r.want);
        if (r.want != kroStatusOk) EXPECT_EQ(std::memcmp(bb, b, 8), 0);
        std::memcpy(bb, b, 8);
        std::memcpy(ss, s, 8);
        EXPECT_EQ(kroiUnpack_12u16u_C1R(r.nullSrc ? nullptr : bb, r.srcStep, r.nullDst ? nullptr : ss, r.dstStep,
                                        {r.w, r.h}),
                  r.want);
        if (r.want != kroStatusOk) EXPECT_EQ(std::memcmp(ss, s, 8), 0);
    }
}

}  // namespace
