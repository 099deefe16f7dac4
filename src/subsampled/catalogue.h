// The catalogue of chroma-subsampled layouts: every encoder, decoder,
// repacker and resampler reads its layout from here instead of spelling out
// byte positions, block shapes and plane sizes itself.
//
// Chroma sample (i, j) belongs to the pixels of block (i, j): 4:2:2 blocks are
// 2 x 1 pixels, 4:2:0 blocks 2 x 2, 4:1:1 blocks 4 x 1 (in one row), and the
// 16:2:0 layout ("1620") 4 x 4. Each plane has its own address and, in the
// forms with step arrays, its own step.
#pragma once

#include "krocc.h"

namespace kro::sub {

// ------------------------------------------------------------ chroma blocks
struct Block {
    int w, h;  // pixels a chroma sample covers, across and down
};
inline constexpr Block k422{2, 1};
inline constexpr Block k420{2, 2};
inline constexpr Block k411{4, 1};
inline constexpr Block k1620{4, 4};

// Whole blocks across and down: chroma plane sizes, in samples.
constexpr int chromaWidth(Block b, int width) { return width / b.w; }
constexpr int chromaHeight(Block b, int height) { return height / b.h; }

// ------------------------------------------------------------ packed 4:2:2 rows (C2)
// Byte positions inside each 4-byte group of two pixels.
struct Packed422 {
    int y0, y1;  // luma of the even and of the odd pixel
    int cb, cr;  // the group's chroma pair (U and V for the YUV model)
};
inline constexpr Packed422 kYCbCr422C2{0, 2, 1, 3};  // Y0 Cb0 Y1 Cr0 ...
inline constexpr Packed422 kYUV422C2 = kYCbCr422C2;  // Y0 U0 Y1 V0 ...
inline constexpr Packed422 kCbYCr422C2{1, 3, 0, 2};  // Cb0 Y0 Cr0 Y1 ...
inline constexpr Packed422 kYCrCb422C2{0, 2, 3, 1};  // Y0 Cr0 Y1 Cb0 ...

// Bytes of a packed 4:2:2 row of `width` pixels: two a pixel.
constexpr int packedRowBytes(int width) { return 2 * width; }

// ------------------------------------------------------------ planar (P3)
// Element 0 of the plane array is luma; cbPlane and crPlane name the others.
struct Planar {
    Block block;
    int cbPlane, crPlane;
};
inline constexpr Planar kYCbCr422P3{k422, 1, 2};
inline constexpr Planar kYUV422P3 = kYCbCr422P3;
inline constexpr Planar kYCbCr420P3{k420, 1, 2};
inline constexpr Planar kYUV420P3 = kYCbCr420P3;
inline constexpr Planar kYCrCb420P3{k420, 2, 1};  // element 1 is the Cr plane
inline constexpr Planar kYCrCb422P3{k422, 2, 1};  // element 1 is the Cr plane
inline constexpr Planar kYCbCr411P3{k411, 1, 2};
inline constexpr Planar kYCbCr1620P3{k1620, 1, 2};

// ------------------------------------------------------------ semi-planar (P2)
// A luma plane, then one plane of interleaved chroma pairs: byte offsets of Cb
// and Cr within a pair.
struct SemiPlanar {
    Block block;
    int cb, cr;
};
inline constexpr SemiPlanar kYCbCr420P2{k420, 0, 1};  // Cb0 Cr0 Cb1 Cr1 ...
inline constexpr SemiPlanar kYCrCb420P2{k420, 1, 0};  // Cr0 Cb0 Cr1 Cb1 ...
inline constexpr SemiPlanar kYCbCr411P2{k411, 0, 1};

// Bytes of a chroma-pair row: two per block across.
constexpr int pairRowBytes(Block b, int width) { return 2 * chromaWidth(b, width); }

// ------------------------------------------------------------ 10-bit packed 4:2:2 (v210)
// Four 32-bit words hold a group of 6 pixels in 10-bit fields at bits 0, 10
// and 20 (bits 30 and 31 unused):
//   word 0: Cb0 Y0 Cr0   word 1: Y1 Cb1 Y2   word 2: Cr1 Y3 Cb2   word 3: Y4 Cr2 Y5
// Pixel x of a group takes luma Yx and chroma pair x / 2.
struct V210Field {
    int word, shift;
};
inline constexpr int kV210GroupPixels = 6;
inline constexpr int kV210GroupWords = 4;
inline constexpr V210Field kV210Y[6] = {{0, 10}, {1, 0}, {1, 20}, {2, 10}, {3, 0}, {3, 20}};
inline constexpr V210Field kV210Cb[3] = {{0, 0}, {1, 10}, {2, 20}};
inline constexpr V210Field kV210Cr[3] = {{0, 20}, {2, 0}, {3, 10}};
constexpr unsigned v210Field(const Kro32u* group, V210Field f) { return (group[f.word] >> f.shift) & 0x3FFu; }
// Words of a group that the first `pixels` pixels reach: their luma, and with
// `chroma` their pairs' Cb and Cr.
constexpr int v210WordsFor(int pixels, bool chroma) {
    int last = 0;
    for (int x = 0; x < pixels; ++x) {
        last = kV210Y[x].word > last ? kV210Y[x].word : last;
        if (chroma) {
            last = kV210Cb[x / 2].word > last ? kV210Cb[x / 2].word : last;
            last = kV210Cr[x / 2].word > last ? kV210Cr[x / 2].word : last;
        }
    }
    return pixels > 0 ? last + 1 : 0;
}

// ------------------------------------------------------------ forms without steps
// Rows lie packed one after the other: luma and full-resolution planes step by
// the width, an interleaved three-sample side by 3 x width, chroma planes by
// width / 2 in 4:2:0 and by width / 2 rounded up in 4:2:2.
constexpr int steplessLumaStep(int width) { return width; }
constexpr int steplessC3Step(int width) { return 3 * width; }
constexpr int stepless420ChromaStep(int width) { return width / 2; }
constexpr int stepless422ChromaStep(int width) { return (width + 1) / 2; }

// ------------------------------------------------------------ span rules
// Pixels at the start of a row that go through an operation's main forms.
constexpr int spanS16(int w) { return w & ~15; }
constexpr int spanS8(int w) { return w & ~7; }
constexpr int spanS4(int w) { return w & ~3; }
constexpr int spanSH(int w) { return (w & ~15) + (w & 4); }
constexpr int spanSX(int w) { return (w & ~31) + ((w & 15) >= 8 ? 8 : 0); }
// "none": every whole block goes through the tail forms
constexpr int spanNone(int) { return 0; }
// "all": every whole block of the row
constexpr int spanAll(Block b, int w) { return w / b.w * b.w; }

// ------------------------------------------------------------ odd sizes
// 4:2:0 and 4:1:1 regions that are not whole blocks convert the whole blocks
// and warn; 4:2:2 forms never warn.
constexpr KroStatus oddStatus(Block b, kroiSize roi) {
    return (roi.width % b.w != 0 || roi.height % b.h != 0) ? kroStatusOddSize : kroStatusOk;
}

}  // namespace kro::sub
