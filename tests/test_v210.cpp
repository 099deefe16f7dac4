// 10-bit packed video decoders and the gamma-encoded 4:2:2 encoder: every
// width through three groups and past against the plain reference, odd
// heights, padded steps in words and samples, guards on both sides, a large
// random sweep of the colour form, the stated values, and the check order.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "harness.h"
#include "ref_v210.h"
#include "subsampled/v210_forms.h"

using namespace kt;

namespace {

#ifndef KROCC_FULL_SWEEPS
#define KROCC_FULL_SWEEPS 0
#endif

enum class Out { Rgb, Bgr, Gray };

KroStatus call(Out o, const Kro32u* s, int ss, Kro16u* d, int ds, kroiSize r) {
    switch (o) {
        case Out::Rgb: return kroiYUV422v210ToRGB_709HDTV_32u16u_C3(s, ss, d, ds, r);
        case Out::Bgr: return kroiYUV422v210ToBGR_709HDTV_32u16u_C3(s, ss, d, ds, r);
        default: return kroiYUV422v210ToGray_709HDTV_32u16u_C3C1(s, ss, d, ds, r);
    }
}

// Words a row of width w reaches: 4 per whole group, and for a partial group
// of 1..5 pixels the words holding their luma (and their pairs' chroma).
// One table indexed by the flag: GCC 12 under -fsanitize=undefined drops the
// index of the second arm of `(flag ? arrayA : arrayB)[w % 6]` and reads its
// element 0, which sized the grey rows one word short.
int rowWords(int w, bool chroma) {
    static const int words[2][6] = {{0, 1, 2, 2, 3, 4}, {0, 1, 2, 3, 3, 4}};
    return w / 6 * 4 + words[chroma ? 1 : 0][w % 6];
}

uint16_t refPixel(Out o, const uint32_t* group, int p) {
    const unsigned y = ref::v210Y(group, p);
    if (o == Out::Gray) return uint16_t(y);
    int r, g, b;
    ref::v210Colour(y, ref::v210Cb(group, p), ref::v210Cr(group, p), r, g, b);
    return o == Out::Rgb ? ref::v210Rgb(r, g, b) : ref::v210Bgr(r, g, b);
}

void checkDecode(Out o, int w, int h, int padWords, int padSamples, Guard guard) {
    const int words = rowWords(w, o != Out::Gray);
    Plane src(4 * words, h, 4 * padWords, guard);
    Plane dst(2 * w, h, 2 * padSamples, guard);
    auto expect = dst.snapshot();
    for (int y = 0; y < h; ++y) {
        uint32_t group[4];
        for (int x = 0; x < w; ++x) {
            if (x % 6 == 0) {
                std::memset(group, 0, sizeof group);
                const int n = std::min(4, words - x / 6 * 4);
                std::memcpy(group, src.row(y) + 4 * (x / 6 * 4), size_t(4 * n));
            }
            const uint16_t v = refPixel(o, group, x % 6);
            std::memcpy(dst.rowIn(expect, y) + 2 * x, &v, 2);
        }
    }
    const auto before = src.snapshot();
    ASSERT_EQ(call(o, reinterpret_cast<const Kro32u*>(src.origin()), src.step / 4,
                   reinterpret_cast<Kro16u*>(dst.origin()), dst.step / 2, {w, h}),
              kroStatusOk);
    EXPECT_EQ(diffPlane(dst, expect, 2), "") << "out " << int(o) << " width " << w;
    EXPECT_EQ(diffPlane(src, before, 4), "");
}

TEST(V210, EveryWidthAgainstReference) {
    for (Out o : {Out::Rgb, Out::Bgr, Out::Gray})
        for (int w : sweepWidths(6))
            for (Guard g : {Guard::After, Guard::Before}) checkDecode(o, w, 3, w % 3, (w % 4) + 1, g);
}

TEST(V210, TightRows) {
    // W = 6: a tight source row is 4 words, a tight destination row 6 samples.
    for (Out o : {Out::Rgb, Out::Bgr, Out::Gray}) {
        checkDecode(o, 6, 5, 0, 0, Guard::After);
        checkDecode(o, 13, 4, 0, 0, Guard::After);
    }
}

// Many random pixels through the whole-group path and the partial path (the
// last group of a width-5 row) against the reference.
TEST(V210, RandomColourSweep) {
    const int groups = KROCC_FULL_SWEEPS ? (1 << 18) : (1 << 13);
    std::vector<uint32_t> src(size_t(4 * groups));
    auto& r = rng();
    for (auto& v : src) v = uint32_t(r());
    std::vector<Kro16u> out(size_t(6 * groups));
    for (Out o : {Out::Rgb, Out::Bgr}) {
        ASSERT_EQ(call(o, src.data(), 4 * groups, out.data(), 6 * groups, {6 * groups, 1}), kroStatusOk);
        for (int i = 0; i < 6 * groups; ++i)
            if (out[size_t(i)] != refPixel(o, &src[size_t(i / 6 * 4)], i % 6)) {
                ADD_FAILURE() << "pixel " << i;
                break;
            }
        // the same groups through the partial path, 5 pixels a row
        ASSERT_EQ(call(o, src.data(), 4, out.data(), 6, {5, groups}), kroStatusOk);
        for (int g = 0; g < groups; ++g)
            for (int p = 0; p < 5; ++p)
                if (out[size_t(6 * g + p)] != refPixel(o, &src[size_t(4 * g)], p)) {
                    ADD_FAILURE() << "partial group " << g << " pixel " << p;
                    g = groups;
                    break;
                }
    }
}

uint32_t word(unsigned a, unsigned b, unsigned c) { return a | (b << 10) | (c << 20); }

TEST(V210, StatedValues) {
    Kro16u d[8];
    // neutral chroma: R = G = B = Y before the limits
    for (auto [y, want] : {std::pair{16u, 33296}, {64u, 65535}, {1023u, 65535}, {0u, 0}}) {
        const Kro32u g[1] = {word(512, y, 512)};
        ASSERT_EQ(kroiYUV422v210ToRGB_709HDTV_32u16u_C3(g, 1, d, 1, {1, 1}), kroStatusOk);
        EXPECT_EQ(d[0], want) << y;
        ASSERT_EQ(kroiYUV422v210ToBGR_709HDTV_32u16u_C3(g, 1, d, 1, {1, 1}), kroStatusOk);
        EXPECT_EQ(d[0], want) << y;
    }
    // the order of G's sums shows: Y = 100, Cb = 63, Cr = 825 gives G = 39
    const Kro32u g1[1] = {word(63, 100, 825)};
    ASSERT_EQ(kroiYUV422v210ToRGB_709HDTV_32u16u_C3(g1, 1, d, 1, {1, 1}), kroStatusOk);
    EXPECT_EQ((d[0] >> 5) & 63, 39);
    // a negative sum is limited to 0 field by field: Cb = 0 pushes B below 0
    const Kro32u g2[1] = {word(0, 100, 512)};
    ASSERT_EQ(kroiYUV422v210ToRGB_709HDTV_32u16u_C3(g2, 1, d, 1, {1, 1}), kroStatusOk);
    EXPECT_EQ(d[0] >> 11, 0);      // B
    EXPECT_EQ(d[0] & 31, 31);      // R = 100 limited to 31
    // bits 30 and 31 change nothing
    const Kro32u g3[4] = {word(1, 2, 3) | 0xC0000000u, word(4, 5, 6) | 0x80000000u, word(7, 8, 9) | 0x40000000u,
                          word(10, 11, 12) | 0xC0000000u};
    const Kro32u g4[4] = {word(1, 2, 3), word(4, 5, 6), word(7, 8, 9), word(10, 11, 12)};
    Kro16u e[6];
    for (Out o : {Out::Rgb, Out::Bgr, Out::Gray}) {
        ASSERT_EQ(call(o, g3, 4, d, 6, {6, 1}), kroStatusOk);
        ASSERT_EQ(call(o, g4, 4, e, 6, {6, 1}), kroStatusOk);
        EXPECT_EQ(std::memcmp(d, e, 12), 0);
    }
    // grey: luma fields in pixel order; W = 1 gives Y0 alone, W = 7 a group and
    // then Y0 of the next group
    EXPECT_EQ(kroiYUV422v210ToGray_709HDTV_32u16u_C3C1(g4, 4, d, 8, {6, 1}), kroStatusOk);
    const Kro16u lumas[6] = {2, 4, 6, 8, 10, 12};
    EXPECT_EQ(std::memcmp(d, lumas, 12), 0);
    const Kro32u g5[5] = {word(1, 2, 3), word(4, 5, 6), word(7, 8, 9), word(10, 11, 12), word(13, 777, 15)};
    std::memset(d, 0xEE, sizeof d);
    EXPECT_EQ(kroiYUV422v210ToGray_709HDTV_32u16u_C3C1(g5, 5, d, 8, {1, 1}), kroStatusOk);
    EXPECT_EQ(d[0], 2);
    EXPECT_EQ(d[1], 0xEEEE);
    EXPECT_EQ(kroiYUV422v210ToGray_709HDTV_32u16u_C3C1(g5, 5, d, 8, {7, 1}), kroStatusOk);
    EXPECT_EQ(d[6], 777);
    EXPECT_EQ(d[7], 0xEEEE);
}

// Check order: null (-8), then size and both steps together (-6), never -16.
TEST(V210, CheckOrder) {
    Kro32u s[8] = {};
    const Kro16u fill = 0x5A5A;
    struct Row {
        bool nullSrc, nullDst;
        int w, h, ss, ds;
        KroStatus want;
    };
    const Row rows[] = {
        {true, false, 1, 1, 4, 6, kroStatusNullPointer}, {false, true, 1, 1, 4, 6, kroStatusNullPointer},
        {true, false, 0, 0, 0, 0, kroStatusNullPointer}, {false, false, 0, 1, 4, 6, kroStatusBadSize},
        {false, false, 1, 0, 4, 6, kroStatusBadSize},    {false, false, 1, 1, 0, 6, kroStatusBadSize},
        {false, false, 1, 1, 4, 0, kroStatusBadSize},    {false, false, 6, 1, -4, 6, kroStatusBadSize},
        {false, false, 6, 1, 4, -6, kroStatusBadSize},   {false, false, 1, 1, 1, 1, kroStatusOk},
    };
    for (Out o : {Out::Rgb, Out::Bgr, Out::Gray})
        for (const Row& r : rows) {
            Kro16u d[8];
            for (auto& v : d) v = fill;
            EXPECT_EQ(call(o, r.nullSrc ? nullptr : s, r.ss, r.nullDst ? nullptr : d, r.ds, {r.w, r.h}), r.want);
            if (r.want != kroStatusOk)
                for (auto v : d) EXPECT_EQ(v, fill);
        }
}

// ------------------------------------------------------------ gamma-encoded CbYCr 4:2:2

TEST(Gamma422, CurveTable) {
    for (int c = 0; c < 256; ++c) EXPECT_EQ(kro::v210::kGamma.t[c], ref::gammaT(c)) << c;
    // no entry of the power branch lies near a half, so the table is the rule's
    for (int c = 5; c < 256; ++c) {
        const double v = 255.0 * (1.099 * std::pow(c / 255.0, 0.45) - 0.099);
        EXPECT_GT(std::fabs(v - std::floor(v) - 0.5), 1e-6) << c;
    }
    const int head[8] = {0, 4, 9, 14, 18, 23, 27, 30}, tail[4] = {254, 254, 255, 255};
    for (int i = 0; i < 8; ++i) EXPECT_EQ(kro::v210::kGamma.t[i], head[i]);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(kro::v210::kGamma.t[252 + i], tail[i]);
}

TEST(Gamma422, EveryWidthAgainstReference) {
    for (int w : sweepWidths(4))
        for (Guard g : {Guard::After, Guard::Before}) {
            const int h = 3;
            Plane src(3 * w, h, w % 5, g), dst(2 * w, h, (w % 3) + 1, g);
            auto expect = dst.snapshot();
            for (int y = 0; y < h; ++y) {
                auto row = ref::gammaRow(src.row(y), w);
                std::memcpy(dst.rowIn(expect, y), row.data(), row.size());
            }
            const auto before = src.snapshot();
            ASSERT_EQ(kroiRGBToCbYCr422Gamma_8u_C3C2R(src.origin(), src.step, dst.origin(), dst.step, {w, h}),
                      kroStatusOk);
            EXPECT_EQ(diffPlane(dst, expect, 2), "") << "width " << w;
            EXPECT_EQ(diffPlane(src, before, 3), "");
        }
}

TEST(Gamma422, WorkedRows) {
    struct Ex {
        uint8_t rgb[3];
        uint8_t out[8];
    };
    const Ex ex[] = {
        {{0, 0, 0}, {128, 16, 128, 16, 128, 16, 128, 16}},
        {{255, 255, 255}, {128, 235, 128, 235, 128, 235, 128, 235}},
        {{128, 128, 128}, {128, 171, 128, 171, 128, 171, 128, 171}},
        {{255, 0, 0}, {100, 82, 212, 82, 90, 82, 240, 82}},
        {{0, 255, 0}, {72, 145, 58, 145, 54, 145, 34, 145}},
        {{0, 0, 255}, {212, 41, 114, 41, 240, 41, 110, 41}},
    };
    for (const Ex& e : ex) {
        uint8_t src[12], dst[8];
        for (int p = 0; p < 4; ++p) std::memcpy(src + 3 * p, e.rgb, 3);
        ASSERT_EQ(kroiRGBToCbYCr422Gamma_8u_C3C2R(src, 12, dst, 8, {4, 1}), kroStatusOk);
        EXPECT_EQ(std::memcmp(dst, e.out, 8), 0) << int(e.rgb[0]) << "," << int(e.rgb[1]) << "," << int(e.rgb[2]);
    }
}

TEST(Gamma422, OddWidths) {
    uint8_t src[9] = {0, 50, 190, 0, 50, 190, 0, 50, 190}, dst[8];
    std::memset(dst, 0xEE, sizeof dst);
    ASSERT_EQ(kroiRGBToCbYCr422Gamma_8u_C3C2R(src, 9, dst, 8, {1, 1}), kroStatusOk);
    EXPECT_EQ(dst[1], 92);  // the odd last column's luma
    EXPECT_EQ(dst[2], 0xEE);
    std::memset(dst, 0xEE, sizeof dst);
    ASSERT_EQ(kroiRGBToCbYCr422Gamma_8u_C3C2R(src, 9, dst, 8, {3, 1}), kroStatusOk);
    EXPECT_EQ(dst[1], 93);
    EXPECT_EQ(dst[3], 93);
    EXPECT_EQ(dst[5], 92);
    EXPECT_EQ(dst[6], 0xEE);
    // pixel 2 of a 3-wide row takes its Cb from itself alone: equal to a 1-wide row's
    uint8_t one[2];
    ASSERT_EQ(kroiRGBToCbYCr422Gamma_8u_C3C2R(src, 9, one, 2, {1, 1}), kroStatusOk);
    EXPECT_EQ(dst[4], one[0]);
}

TEST(Gamma422, CheckOrder) {
    uint8_t s[12] = {}, d[8];
    EXPECT_EQ(kroiRGBToCbYCr422Gamma_8u_C3C2R(nullptr, 12, d, 8, {0, 0}), kroStatusNullPointer);
    EXPECT_EQ(kroiRGBToCbYCr422Gamma_8u_C3C2R(s, 12, nullptr, 8, {1, 1}), kroStatusNullPointer);
    EXPECT_EQ(kroiRGBToCbYCr422Gamma_8u_C3C2R(s, 12, d, 8, {0, 1}), kroStatusBadSize);
    EXPECT_EQ(kroiRGBToCbYCr422Gamma_8u_C3C2R(s, 12, d, 8, {1, 0}), kroStatusBadSize);
    // steps are not tested: 0 writes every row in one place, negative runs upward
    std::memset(d, 0xEE, sizeof d);
    EXPECT_EQ(kroiRGBToCbYCr422Gamma_8u_C3C2R(s, 0, d, 0, {4, 3}), kroStatusOk);
    EXPECT_EQ(d[1], 16);
    EXPECT_EQ(kroiRGBToCbYCr422Gamma_8u_C3C2R(s + 6, -6, d + 4, -4, {2, 2}), kroStatusOk);
}

}  // namespace
