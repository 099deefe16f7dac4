// End to end: a photograph encoded into each subsampled format by an encoder
// and decoded by the matching decoder.
//
// Two measures per pair. On a copy of the photograph whose chroma blocks are
// each one colour, subsampling loses nothing and the only error is the two
// matrices' rounding: it must stay within the bound stated per pair. On the
// photograph itself, chroma averaging adds its own loss at colour edges; the
// PSNR there only shows that planes, blocks and channels line up.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "photo.h"

using namespace kt;

namespace {

enum class Kind { P3, P2, C2 };

// A subsampled frame: up to three tight planes.
struct Frame {
    Kind kind;
    int bw, bh, width, height;
    std::vector<Kro8u> plane[3];
    int step[3] = {0, 0, 0};
    Frame(Kind k, int bw_, int bh_, int w, int h) : kind(k), bw(bw_), bh(bh_), width(w), height(h) {
        const int cw = w / bw, ch = h / bh;
        if (k == Kind::C2) {
            step[0] = 2 * w;
            plane[0].assign(size_t(step[0]) * h, 0);
        } else {
            step[0] = w;
            plane[0].assign(size_t(w) * h, 0);
            step[1] = k == Kind::P2 ? 2 * cw : cw;
            plane[1].assign(size_t(step[1]) * ch, 0);
            if (k == Kind::P3) {
                step[2] = cw;
                plane[2].assign(size_t(cw) * ch, 0);
            }
        }
    }
    Kro8u* planes[3] = {};
    Kro8u* const* out() {
        for (int i = 0; i < 3; ++i) planes[i] = plane[i].data();
        return planes;
    }
    const Kro8u* const* in() { return out(); }
};

struct Pair {
    const char* name;
    Kind kind;
    int bw, bh;
    int srcCn;  // encoder input: 3 or 4 samples a pixel
    bool srcBgr;
    int dstCn;  // decoder output
    bool dstBgr;
    // largest error on one-colour blocks: the rounding of the two integer
    // matrices (studio-range luma steps of 255 / 219, chroma in 7 or 8
    // fractional bits, the decoders' truncations); measured on the
    // photograph and held as the limit
    int bound;
    std::function<KroStatus(const Kro8u*, int, Frame&, kroiSize)> enc;
    std::function<KroStatus(Frame&, Kro8u*, int, kroiSize)> dec;
};

#define P3ENC(f) [](const Kro8u* s, int ss, Frame& fr, kroiSize r) { return f(s, ss, fr.out(), fr.step, r); }
#define P2ENC(f) \
    [](const Kro8u* s, int ss, Frame& fr, kroiSize r) { \
        return f(s, ss, fr.plane[0].data(), fr.step[0], fr.plane[1].data(), fr.step[1], r); \
    }
#define C2ENC(f) [](const Kro8u* s, int ss, Frame& fr, kroiSize r) { return f(s, ss, fr.plane[0].data(), fr.step[0], r); }
#define P3DEC(f) [](Frame& fr, Kro8u* d, int ds, kroiSize r) { return f(fr.in(), fr.step, d, ds, r); }
#define P3DEC4(f) [](Frame& fr, Kro8u* d, int ds, kroiSize r) { return f(fr.in(), fr.step, d, ds, r, 255); }
#define P2DEC(f) \
    [](Frame& fr, Kro8u* d, int ds, kroiSize r) { \
        return f(fr.plane[0].data(), fr.step[0], fr.plane[1].data(), fr.step[1], d, ds, r); \
    }
#define C2DEC(f) [](Frame& fr, Kro8u* d, int ds, kroiSize r) { return f(fr.plane[0].data(), fr.step[0], d, ds, r); }
#define C2DEC4(f) [](Frame& fr, Kro8u* d, int ds, kroiSize r) { return f(fr.plane[0].data(), fr.step[0], d, ds, r, 255); }

const std::vector<Pair>& pairs() {
    static const std::vector<Pair> p = {
        // 4:2:0, BT.601 studio range
        {"BGRToYCbCr420_C3P3R / YCbCr420ToBGR_P3C3R", Kind::P3, 2, 2, 3, true, 3, true, 3,
         P3ENC(kroiBGRToYCbCr420_8u_C3P3R), P3DEC(kroiYCbCr420ToBGR_8u_P3C3R)},
        {"RGBToYCbCr420_C3P3R / YCbCr420ToRGB_P3C3R", Kind::P3, 2, 2, 3, false, 3, false, 3,
         P3ENC(kroiRGBToYCbCr420_8u_C3P3R), P3DEC(kroiYCbCr420ToRGB_8u_P3C3R)},
        {"BGRToYCrCb420_C3P3R / YCrCb420ToRGB_P3C4R", Kind::P3, 2, 2, 3, true, 4, false, 3,
         P3ENC(kroiBGRToYCrCb420_8u_C3P3R), P3DEC4(kroiYCrCb420ToRGB_8u_P3C4R)},
        {"RGBToYCbCr420_C3P2R / YCbCr420ToRGB_P2C3R", Kind::P2, 2, 2, 3, false, 3, false, 3,
         P2ENC(kroiRGBToYCbCr420_8u_C3P2R), P2DEC(kroiYCbCr420ToRGB_8u_P2C3R)},
        {"BGRToYCbCr420_AC4P2R / YCbCr420ToBGR_P2C4R", Kind::P2, 2, 2, 4, true, 4, true, 3,
         P2ENC(kroiBGRToYCbCr420_8u_AC4P2R),
         [](Frame& fr, Kro8u* d, int ds, kroiSize r) {
             return kroiYCbCr420ToBGR_8u_P2C4R(fr.plane[0].data(), fr.step[0], fr.plane[1].data(), fr.step[1], d, ds,
                                               r, 255);
         }},
        // 4:2:0, BT.709
        {"BGRToYCbCr420_709CSC_C3P3R / YCbCr420ToBGR_709CSC_P3C3R", Kind::P3, 2, 2, 3, true, 3, true, 3,
         P3ENC(kroiBGRToYCbCr420_709CSC_8u_C3P3R), P3DEC(kroiYCbCr420ToBGR_709CSC_8u_P3C3R)},
        {"BGRToYCbCr420_709HDTV_AC4P3R / YCbCr420ToBGR_709HDTV_P3C4R", Kind::P3, 2, 2, 4, true, 4, true, 1,
         P3ENC(kroiBGRToYCbCr420_709HDTV_8u_AC4P3R), P3DEC4(kroiYCbCr420ToBGR_709HDTV_8u_P3C4R)},
        // 4:2:0, analogue YUV
        {"RGBToYUV420_C3P3R / YUV420ToRGB_P3C3R", Kind::P3, 2, 2, 3, false, 3, false, 3,
         P3ENC(kroiRGBToYUV420_8u_C3P3R), P3DEC(kroiYUV420ToRGB_8u_P3C3R)},
        {"BGRToYUV420_AC4P3R / YUV420ToBGR_P3C3R", Kind::P3, 2, 2, 4, true, 3, true, 4,
         P3ENC(kroiBGRToYUV420_8u_AC4P3R), P3DEC(kroiYUV420ToBGR_8u_P3C3R)},
        // 4:2:2 packed and planar
        {"RGBToYCbCr422_C3C2R / YCbCr422ToRGB_C2C3R", Kind::C2, 2, 1, 3, false, 3, false, 2,
         C2ENC(kroiRGBToYCbCr422_8u_C3C2R), C2DEC(kroiYCbCr422ToRGB_8u_C2C3R)},
        {"RGBToYCrCb422_C3C2R / YCrCb422ToRGB_C2C3R", Kind::C2, 2, 1, 3, false, 3, false, 2,
         C2ENC(kroiRGBToYCrCb422_8u_C3C2R), C2DEC(kroiYCrCb422ToRGB_8u_C2C3R)},
        {"BGRToCbYCr422_AC4C2R / CbYCr422ToBGR_C2C4R", Kind::C2, 2, 1, 4, true, 4, true, 2,
         C2ENC(kroiBGRToCbYCr422_8u_AC4C2R), C2DEC4(kroiCbYCr422ToBGR_8u_C2C4R)},
        {"BGRToCbYCr422_709HDTV_C3C2R / CbYCr422ToBGR_709HDTV_C2C3R", Kind::C2, 2, 1, 3, true, 3, true, 1,
         C2ENC(kroiBGRToCbYCr422_709HDTV_8u_C3C2R), C2DEC(kroiCbYCr422ToBGR_709HDTV_8u_C2C3R)},
        {"RGBToYCbCr422_C3P3R / YCbCr422ToRGB_P3C3R", Kind::P3, 2, 1, 3, false, 3, false, 2,
         P3ENC(kroiRGBToYCbCr422_8u_C3P3R), P3DEC(kroiYCbCr422ToRGB_8u_P3C3R)},
        {"RGBToYUV422_C3C2R / YUV422ToRGB_C2C3R", Kind::C2, 2, 1, 3, false, 3, false, 3,
         C2ENC(kroiRGBToYUV422_8u_C3C2R), C2DEC(kroiYUV422ToRGB_8u_C2C3R)},
        // 4:1:1
        {"BGRToYCbCr411_C3P3R / YCbCr411ToBGR_P3C3R", Kind::P3, 4, 1, 3, true, 3, true, 3,
         P3ENC(kroiBGRToYCbCr411_8u_C3P3R), P3DEC(kroiYCbCr411ToBGR_8u_P3C3R)},
    };
    return p;
}

// The photograph cropped to whole blocks of 4 x 2, optionally with each
// bw x bh block painted in the colour of its first pixel.
Photo prepared(const Photo& src, int bw, int bh, bool oneColourBlocks) {
    Photo p;
    p.width = src.width & ~3;
    p.height = src.height & ~1;
    p.rgb.resize(size_t(p.width) * p.height * 3);
    for (int y = 0; y < p.height; ++y)
        for (int x = 0; x < p.width; ++x) {
            const int sx = oneColourBlocks ? x / bw * bw : x, sy = oneColourBlocks ? y / bh * bh : y;
            for (int k = 0; k < 3; ++k)
                p.rgb[(size_t(y) * p.width + x) * 3 + k] = src.rgb[(size_t(sy) * src.width + sx) * 3 + k];
        }
    return p;
}

struct Result {
    int maxError = 0;
    double psnr = 0;
};

Result roundTrip(const Pair& c, const Photo& p) {
    const int W = p.width, H = p.height;
    std::vector<Kro8u> in(size_t(W) * H * c.srcCn, 200);  // the fourth sample: anything
    for (size_t i = 0; i < size_t(W) * H; ++i)
        for (int k = 0; k < 3; ++k) in[i * c.srcCn + (c.srcBgr ? 2 - k : k)] = p.rgb[i * 3 + k];
    Frame f(c.kind, c.bw, c.bh, W, H);
    EXPECT_EQ(c.enc(in.data(), W * c.srcCn, f, {W, H}), kroStatusOk) << c.name;
    std::vector<Kro8u> out(size_t(W) * H * c.dstCn, 0);
    EXPECT_EQ(c.dec(f, out.data(), W * c.dstCn, {W, H}), kroStatusOk) << c.name;
    Result r;
    double se = 0;
    for (size_t i = 0; i < size_t(W) * H; ++i)
        for (int k = 0; k < 3; ++k) {
            const int d = std::abs(int(out[i * c.dstCn + (c.dstBgr ? 2 - k : k)]) - int(p.rgb[i * 3 + k]));
            r.maxError = std::max(r.maxError, d);
            se += double(d) * d;
        }
    const double mse = se / (double(W) * H * 3);
    r.psnr = mse > 0 ? 10 * std::log10(255.0 * 255.0 / mse) : 99;
    return r;
}

class SubsampledRoundTrip : public ::testing::TestWithParam<int> {};

TEST_P(SubsampledRoundTrip, WithinTheMatricesErrorOnOneColourBlocks) {
    const Pair& c = pairs()[GetParam()];
    const Photo photo = photoOrSynthetic();
    const Result blocks = roundTrip(c, prepared(photo, c.bw, c.bh, true));
    EXPECT_LE(blocks.maxError, c.bound) << c.name << " on " << photo.name;
    const Result real = roundTrip(c, prepared(photo, c.bw, c.bh, false));
    EXPECT_GT(real.psnr, 30.0) << c.name << " on " << photo.name;
    RecordProperty("blocks_max_error", blocks.maxError);
    RecordProperty("photo_psnr_x100", int(real.psnr * 100));
    std::printf("%-62s one-colour blocks: largest error %d; photograph: PSNR %.2f dB, largest error %d\n", c.name,
                blocks.maxError, real.psnr, real.maxError);
}

INSTANTIATE_TEST_SUITE_P(Pairs, SubsampledRoundTrip, ::testing::Range(0, int(pairs().size())));

}  // namespace
