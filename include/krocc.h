/* krocc: colour-conversion primitives for raster images.
 *
 * Every image operation takes the caller's buffers, row steps in bytes and a
 * region size in pixels, converts every pixel of the region and returns a
 * KroStatus. The library keeps no state, allocates nothing and may be called
 * from any number of threads on disjoint buffers.
 */
#ifndef KROCC_H
#define KROCC_H

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------ sample types */
typedef unsigned char Kro8u;
typedef unsigned short Kro16u;
typedef signed short Kro16s;
typedef unsigned int Kro32u;
typedef signed int Kro32s;
typedef float Kro32f;
typedef double Kro64f;

/* ------------------------------------------------------------ regions */
typedef struct kroiSize {
    int width;
    int height;
} kroiSize;

/* The same numbers as kroiSize, for the operations whose names end in _L. */
typedef struct kroiSizeL {
    int width;
    int height;
} kroiSizeL;

typedef struct kroiRect {
    int x;
    int y;
    int width;
    int height;
} kroiRect;

/* ------------------------------------------------------------ status */
/* 0 success, positive a warning, negative an error (nothing written). */
typedef enum KroStatusCode {
    kroStatusOk = 0,
    kroStatusNothingDone = 1,
    kroStatusOddSize = 35,
    kroStatusBadArgument = -5,
    kroStatusBadSize = -6,
    kroStatusNullPointer = -8,
    kroStatusBadNoiseState = -13,
    kroStatusBadStep = -16,
    kroStatusBadChannelCount = -47,
    kroStatusBadGammaRange = -49,
    kroStatusBadLevels = -54,
    kroStatusBadNoise = -55,
    kroStatusBadDitherType = -224
} KroStatusCode;
typedef int KroStatus;

/* ------------------------------------------------------------ selectors */
typedef enum KroDitherType {
    kroiDitherNone = 0,
    kroiDitherFloydSteinberg = 1,
    kroiDitherJarvisJudiceNinke = 2,
    kroiDitherStucki = 3,
    kroiDitherBayer = 4
} KroDitherType;

typedef enum KroiBayerGrid {
    kroiBayerBGGR = 0,
    kroiBayerRGGB = 1,
    kroiBayerGBRG = 2,
    kroiBayerGRBG = 3
} KroiBayerGrid;

/* Strip positions of the `layout` argument of the vertical filters with strips (an int argument);
 * a whole image is any value with all three bits set, such as 21. */
enum {
    kroiStripTop = 1,
    kroiStripCenter = 4,
    kroiStripBottom = 16
};

/* ------------------------------------------------------------ version */
typedef struct KroLibraryVersion {
    int majorVersion;
    int minorVersion;
    int updateVersion;
    unsigned int buildNumber;
    char targetCode[4];         /* "p8" and two zero bytes */
    const char* displayName;    /* "kroCC SSE4.2 (p8)" */
    const char* versionText;    /* "1.0.0 (r0x00000001)" */
    const char* buildDateText;  /* "Nov 24 2026" */
} KroLibraryVersion;

/* The library's one constant version record; the same address on every call. */
const KroLibraryVersion* kroccGetLibVersion(void);

/* ------------------------------------------------------------ RGB <-> YUV (8u) */
/* Interleaved RGB to interleaved YUV. */
KroStatus kroiRGBToYUV_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Interleaved RGB to three YUV planes. */
KroStatus kroiRGBToYUV_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
/* RGB planes to YUV planes. */
KroStatus kroiRGBToYUV_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
/* RGBA to YUVA; the destination's fourth sample is left as it was. */
KroStatus kroiRGBToYUV_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* RGBA to four planes Y, U, V, A; plane 3 receives the source's alpha. */
KroStatus kroiRGBToYUV_8u_AC4P4R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[4], int dstStep, kroiSize roiSize);
/* Interleaved YUV to interleaved RGB. */
KroStatus kroiYUVToRGB_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* YUVA to RGBA; the destination's fourth sample is left as it was. */
KroStatus kroiYUVToRGB_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Interleaved YUV to RGBA with the fourth sample set to aval. */
KroStatus kroiYUVToRGB_8u_C3C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* YUV planes to interleaved RGB. */
KroStatus kroiYUVToRGB_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* YUV planes to RGB planes. */
KroStatus kroiYUVToRGB_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);

/* ------------------------------------------------------------ RGB/BGR <-> YCbCr (8u) */
/* Interleaved RGB to interleaved YCbCr (studio range). */
KroStatus kroiRGBToYCbCr_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* RGBA to YCbCr with four samples a pixel; the fourth is set to 0 by the 16-pixel steps and left as it was in the rest of the row. */
KroStatus kroiRGBToYCbCr_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Interleaved RGB to three YCbCr planes. */
KroStatus kroiRGBToYCbCr_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
/* RGBA to three YCbCr planes; alpha is not read. */
KroStatus kroiRGBToYCbCr_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
/* RGB planes to YCbCr planes. */
KroStatus kroiRGBToYCbCr_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
/* Interleaved YCbCr to interleaved RGB. */
KroStatus kroiYCbCrToRGB_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* YCbCr with four samples a pixel to RGBA; the destination's fourth sample is left as it was. */
KroStatus kroiYCbCrToRGB_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* YCbCr planes to interleaved RGB. */
KroStatus kroiYCbCrToRGB_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* YCbCr planes to interleaved BGR. */
KroStatus kroiYCbCrToBGR_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* YCbCr planes to RGBA with the fourth sample set to aval. */
KroStatus kroiYCbCrToRGB_8u_P3C4R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* YCbCr planes to BGRA with the fourth sample set to aval. */
KroStatus kroiYCbCrToBGR_8u_P3C4R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* YCbCr planes to RGB planes. */
KroStatus kroiYCbCrToRGB_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
/* YCbCr planes to interleaved BGR by the BT.709 inverse. */
KroStatus kroiYCbCrToBGR_709CSC_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* YCbCr planes to BGRA by the BT.709 inverse, the fourth sample set to aval. */
KroStatus kroiYCbCrToBGR_709CSC_8u_P3C4R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);

/* ------------------------------------------------------------ RGB <-> YCC */
/* Interleaved RGB to photographic YCC (8u). */
KroStatus kroiRGBToYCC_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* RGBA to YCC with the destination's fourth sample kept (8u). */
KroStatus kroiRGBToYCC_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Interleaved YCC to RGB (8u). */
KroStatus kroiYCCToRGB_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* YCC with a fourth sample to RGBA, the destination's fourth sample kept (8u). */
KroStatus kroiYCCToRGB_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Interleaved RGB to YCC (16u). */
KroStatus kroiRGBToYCC_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
/* RGBA to YCC with the destination's fourth sample kept (16u). */
KroStatus kroiRGBToYCC_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
/* Interleaved YCC to RGB (16u). */
KroStatus kroiYCCToRGB_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
/* YCC with a fourth sample to RGBA, the destination's fourth sample kept (16u). */
KroStatus kroiYCCToRGB_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
/* Interleaved RGB to YCC (16s). */
KroStatus kroiRGBToYCC_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
/* RGBA to YCC with the destination's fourth sample kept (16s). */
KroStatus kroiRGBToYCC_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
/* Interleaved YCC to RGB (16s). */
KroStatus kroiYCCToRGB_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
/* YCC with a fourth sample to RGBA, the destination's fourth sample kept (16s). */
KroStatus kroiYCCToRGB_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
/* Interleaved RGB to YCC (32f). */
KroStatus kroiRGBToYCC_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
/* RGBA to YCC with the destination's fourth sample kept (32f). */
KroStatus kroiRGBToYCC_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
/* Interleaved YCC to RGB (32f). */
KroStatus kroiYCCToRGB_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
/* YCC with a fourth sample to RGBA, the destination's fourth sample kept (32f). */
KroStatus kroiYCCToRGB_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);

/* ------------------------------------------------------------ YCoCg */
/* Y = (R + 2G + B) / 4, Co = (R - B) / 2, Cg = (2G - R - B) / 4 by shifts and adds,
 * between an interleaved side and three planes in the order Y, Co, Cg; one step
 * in bytes serves all three planes. _Rev: the reversible lifting transform, whose
 * inverse gives every source back exactly. A C4 source's fourth sample is not
 * read; a P3C4R destination's fourth sample is aval. The operations marked
 * "empty region: 0" have no size check: a width or height below 1 converts
 * nothing and returns kroStatusOk. */
/* RGB to 8-bit planes, chroma offset by 128 and limited to 255. */
KroStatus kroiRGBToYCoCg_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
/* 8-bit planes with offset chroma to RGB, saturated. Empty region: 0. */
KroStatus kroiYCoCgToRGB_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* BGR (three or four samples a pixel) to 16-bit planes, rounded. */
KroStatus kroiBGRToYCoCg_8u16s_C3P3R(const Kro8u* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep, kroiSize roiSize);
KroStatus kroiBGRToYCoCg_8u16s_C4P3R(const Kro8u* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep, kroiSize roiSize);
/* BGR to 16-bit planes, reversible (Co and Cg -255..255). */
KroStatus kroiBGRToYCoCg_Rev_8u16s_C3P3R(const Kro8u* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep, kroiSize roiSize);
KroStatus kroiBGRToYCoCg_Rev_8u16s_C4P3R(const Kro8u* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep, kroiSize roiSize);
/* Signed BGR to 16-bit planes, rounded; a Co or Cg of 32768 is stored as 32767 by
 * pixels 0 .. (width & ~3) - 1 and as -32768 by the rest of the row. */
KroStatus kroiSBGRToYCoCg_16s_C3P3R(const Kro16s* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep, kroiSize roiSize);
KroStatus kroiSBGRToYCoCg_16s_C4P3R(const Kro16s* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep, kroiSize roiSize);
/* Signed BGR to 32-bit planes, rounded. The C4 form: empty region: 0. */
KroStatus kroiSBGRToYCoCg_16s32s_C3P3R(const Kro16s* pSrc, int srcStep, Kro32s* const pDst[3], int dstStep, kroiSize roiSize);
KroStatus kroiSBGRToYCoCg_16s32s_C4P3R(const Kro16s* pSrc, int srcStep, Kro32s* const pDst[3], int dstStep, kroiSize roiSize);
/* Signed BGR to 16-bit planes, reversible in 16-bit wrap-around. Empty region: 0. */
KroStatus kroiSBGRToYCoCg_Rev_16s_C3P3R(const Kro16s* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep, kroiSize roiSize);
KroStatus kroiSBGRToYCoCg_Rev_16s_C4P3R(const Kro16s* pSrc, int srcStep, Kro16s* const pDst[3], int dstStep, kroiSize roiSize);
/* Signed BGR to 32-bit planes, reversible. The C4 form: empty region: 0. */
KroStatus kroiSBGRToYCoCg_Rev_16s32s_C3P3R(const Kro16s* pSrc, int srcStep, Kro32s* const pDst[3], int dstStep, kroiSize roiSize);
KroStatus kroiSBGRToYCoCg_Rev_16s32s_C4P3R(const Kro16s* pSrc, int srcStep, Kro32s* const pDst[3], int dstStep, kroiSize roiSize);
/* 16-bit planes to BGR, sums in 16-bit wrap-around, saturated to 0..255. Empty region: 0. */
KroStatus kroiYCoCgToBGR_16s8u_P3C3R(const Kro16s* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiYCoCgToBGR_16s8u_P3C4R(const Kro16s* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* 16-bit planes to BGR, reversible, saturated to 0..255. Empty region: 0. */
KroStatus kroiYCoCgToBGR_Rev_16s8u_P3C3R(const Kro16s* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiYCoCgToBGR_Rev_16s8u_P3C4R(const Kro16s* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* 16-bit planes to signed BGR in 16-bit wrap-around. The C3 form: empty region: 0. */
KroStatus kroiYCoCgToSBGR_16s_P3C3R(const Kro16s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiYCoCgToSBGR_16s_P3C4R(const Kro16s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize, Kro16s aval);
/* 32-bit planes to signed BGR: sums in 32 bits, their low 16 bits stored. */
KroStatus kroiYCoCgToSBGR_32s16s_P3C3R(const Kro32s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiYCoCgToSBGR_32s16s_P3C4R(const Kro32s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize, Kro16s aval);
/* 16-bit planes to signed BGR, reversible in 16-bit wrap-around. Empty region: 0. */
KroStatus kroiYCoCgToSBGR_Rev_16s_P3C3R(const Kro16s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiYCoCgToSBGR_Rev_16s_P3C4R(const Kro16s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize, Kro16s aval);
/* 32-bit planes to signed BGR, reversible: sums in 32 bits, low 16 bits stored. Empty region: 0. */
KroStatus kroiYCoCgToSBGR_Rev_32s16s_P3C3R(const Kro32s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiYCoCgToSBGR_Rev_32s16s_P3C4R(const Kro32s* const pSrc[3], int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize, Kro16s aval);

/* ------------------------------------------------------------ RGB <-> XYZ */
/* Linear RGB (BT.709 primaries, D65) to CIE XYZ and back. AC4: the fourth sample of a source
   pixel is never read and that of a destination pixel keeps its value. */
KroStatus kroiRGBToXYZ_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToXYZ_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToXYZ_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToXYZ_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToXYZ_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToXYZ_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToXYZ_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToXYZ_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiXYZToRGB_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiXYZToRGB_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiXYZToRGB_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiXYZToRGB_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiXYZToRGB_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiXYZToRGB_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiXYZToRGB_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiXYZToRGB_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);

/* ------------------------------------------------------------ grey */
/* Fixed weights 0.299, 0.587, 0.114 on samples 0, 1, 2 of each pixel, to one grey plane.
   AC4: the fourth sample is never read. */
KroStatus kroiRGBToGray_8u_C3C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToGray_8u_AC4C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToGray_16u_C3C1R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToGray_16u_AC4C1R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToGray_16s_C3C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToGray_16s_AC4C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToGray_32f_C3C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToGray_32f_AC4C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
/* The caller's three weights (Kro32f, or Kro64f for 64f); a null pCoeffs selects the fixed weights. */
KroStatus kroiColorToGray_8u_C3C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize,
                                 const Kro32f* pCoeffs);
KroStatus kroiColorToGray_8u_AC4C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize,
                                 const Kro32f* pCoeffs);
KroStatus kroiColorToGray_16u_C3C1R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize,
                                 const Kro32f* pCoeffs);
KroStatus kroiColorToGray_16u_AC4C1R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize,
                                 const Kro32f* pCoeffs);
KroStatus kroiColorToGray_16s_C3C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize,
                                 const Kro32f* pCoeffs);
KroStatus kroiColorToGray_16s_AC4C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize,
                                 const Kro32f* pCoeffs);
KroStatus kroiColorToGray_32f_C3C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize,
                                 const Kro32f* pCoeffs);
KroStatus kroiColorToGray_32f_AC4C1R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize,
                                 const Kro32f* pCoeffs);
KroStatus kroiColorToGray_64f_C3C1R(const Kro64f* pSrc, int srcStep, Kro64f* pDst, int dstStep, kroiSize roiSize,
                                 const Kro64f* pCoeffs);
KroStatus kroiColorToGray_64f_AC4C1R(const Kro64f* pSrc, int srcStep, Kro64f* pDst, int dstStep, kroiSize roiSize,
                                 const Kro64f* pCoeffs);
/* A grey plane copied into samples 0, 1, 2 of each pixel; C1C4R sets the fourth to aval. */
KroStatus kroiGrayToRGB_8u_C1C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiGrayToRGB_8u_C1C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
KroStatus kroiGrayToRGB_16u_C1C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiGrayToRGB_16u_C1C4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize, Kro16u aval);
KroStatus kroiGrayToRGB_32f_C1C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiGrayToRGB_32f_C1C4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize, Kro32f aval);

/* ------------------------------------------------------------ HLS */
/* H, L, S in that order; 8u hue 0..255 for 0..360 degrees, 16u 0..65535, 16s the
   16u values minus 32768, 32f 0..1. AC4R forms leave the destination's fourth
   sample as it was (the integer forms read it and write it back); AC4P4R, AP4C4R
   and AP4R copy the fourth channel exactly. BGR planes stand B, G, R (, A). */
KroStatus kroiRGBToHLS_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToHLS_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToHLS_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToHLS_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToHLS_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToHLS_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToHLS_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToHLS_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiBGRToHLS_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiBGRToHLS_8u_AC4P4R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[4], int dstStep, kroiSize roiSize);
KroStatus kroiBGRToHLS_8u_AP4C4R(const Kro8u* const pSrc[4], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiBGRToHLS_8u_AP4R(const Kro8u* const pSrc[4], int srcStep, Kro8u* const pDst[4], int dstStep, kroiSize roiSize);
KroStatus kroiBGRToHLS_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
KroStatus kroiBGRToHLS_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiBGRToHLS_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
KroStatus kroiHLSToRGB_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiHLSToRGB_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiHLSToRGB_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiHLSToRGB_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiHLSToRGB_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiHLSToRGB_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiHLSToRGB_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiHLSToRGB_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiHLSToBGR_8u_AC4P4R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[4], int dstStep, kroiSize roiSize);
KroStatus kroiHLSToBGR_8u_AP4C4R(const Kro8u* const pSrc[4], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiHLSToBGR_8u_AP4R(const Kro8u* const pSrc[4], int srcStep, Kro8u* const pDst[4], int dstStep, kroiSize roiSize);
KroStatus kroiHLSToBGR_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
KroStatus kroiHLSToBGR_8u_P3C3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiHLSToBGR_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);

/* ------------------------------------------------------------ Lab */
/* CIE L*a*b* of linear RGB (BT.709 primaries, D65 white), in 32-bit floats.
 * 8u Lab: L x 2.55, a + 128, b + 128. 16u Lab: L x 655.35, (a + 128) x 255,
 * (b + 128) x 255. 32f: L 0..100, a, b themselves; RGB nominally 0..1.
 * Steps are in bytes for every sample type. */
KroStatus kroiRGBToLab_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiBGRToLab_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiBGRToLab_8u16u_C3R(const Kro8u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToLab_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiBGRToLab_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiLabToRGB_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiLabToBGR_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiLabToBGR_16u8u_C3R(const Kro16u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Float RGB is stored as computed: no clamp to 0..1. */
KroStatus kroiLabToRGB_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiLabToBGR_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);

/* ------------------------------------------------------------ encoding into subsampled formats */
/* 4:2:0 planes and chroma-pair planes. Each plane of a P3 side has its own step (dstStep[3]). */
KroStatus kroiBGRToYCbCr420_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiBGRToYCbCr420_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiBGRToYCrCb420_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiBGRToYCrCb420_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiRGBToYCbCr420_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiRGBToYCrCb420_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiBGRToYCbCr420_8u_C3P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
KroStatus kroiBGRToYCbCr420_8u_AC4P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
KroStatus kroiRGBToYCbCr420_8u_C3P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
KroStatus kroiRGBToYCbCr420_8u_C4P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
KroStatus kroiBGRToYCbCr420_709CSC_8u_C3P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
KroStatus kroiBGRToYCbCr420_709CSC_8u_AC4P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
KroStatus kroiBGRToYCbCr420_709CSC_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiBGRToYCbCr420_709CSC_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiBGRToYCrCb420_709CSC_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiBGRToYCrCb420_709CSC_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiBGRToYCbCr420_709HDTV_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiBGRToYUV420_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiRGBToYUV420_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiRGBToYUV420_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* Without steps: rows packed one after the other (source 3 x width or width, Y width, chroma width / 2). */
KroStatus kroiRGBToYUV420_8u_C3P3(const Kro8u* pSrc, Kro8u* const pDst[3], kroiSize roiSize);
KroStatus kroiRGBToYUV420_8u_P3(const Kro8u* const pSrc[3], Kro8u* const pDst[3], kroiSize roiSize);
/* 4:2:2 packed (C2) and planar. */
KroStatus kroiBGRToYCbCr422_8u_C3C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiBGRToYCbCr422_8u_AC4C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiBGRToYCbCr422_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiBGRToYCbCr422_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiRGBToYCbCr422_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiRGBToYCbCr422_8u_C3C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToYCrCb422_8u_C3C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToYCbCr422_8u_P3C2R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToYCrCb422_8u_P3C2R(const Kro8u* const pSrc[3], int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiBGRToCbYCr422_8u_AC4C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiBGRToCbYCr422_709HDTV_8u_AC4C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiBGRToCbYCr422_709HDTV_8u_C3C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Chroma filtered 1/4, 1/2, 1/4 around each even pixel. */
KroStatus kroiRGBToCbYCr422_8u_C3C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToYUV422_8u_C3C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToYUV422_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiRGBToYUV422_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* Without steps: chroma rows of (width + 1) / 2 samples. */
KroStatus kroiRGBToYUV422_8u_C3P3(const Kro8u* pSrc, Kro8u* const pDst[3], kroiSize roiSize);
KroStatus kroiRGBToYUV422_8u_P3(const Kro8u* const pSrc[3], Kro8u* const pDst[3], kroiSize roiSize);
/* 4:1:1 planes. */
KroStatus kroiBGRToYCbCr411_8u_C3P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiBGRToYCbCr411_8u_AC4P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);

/* ------------------------------------------------------------ decoding subsampled formats */
/* Packed Cb Y Cr Y to BGR, full-swing BT.709. */
KroStatus kroiCbYCr422ToBGR_709HDTV_8u_C2C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Packed Cb Y Cr Y to BGRA (fourth sample aval), full-swing BT.709. */
KroStatus kroiCbYCr422ToBGR_709HDTV_8u_C2C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* Packed Cb Y Cr Y to BGRA (fourth sample aval). */
KroStatus kroiCbYCr422ToBGR_8u_C2C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* Packed Cb Y Cr Y to RGB. */
KroStatus kroiCbYCr422ToRGB_8u_C2C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:1:1 planes to BGR; leftover pixels of a width not a multiple of 4 take the last block's chroma. */
KroStatus kroiYCbCr411ToBGR_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:1:1 planes to BGRA (fourth sample aval). */
KroStatus kroiYCbCr411ToBGR_8u_P3C4R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* 4:2:0 planes to BGR, BT.709 studio range. */
KroStatus kroiYCbCr420ToBGR_709CSC_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 planes to BGRA (fourth sample aval), full-swing BT.709. */
KroStatus kroiYCbCr420ToBGR_709HDTV_8u_P3C4R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* 4:2:0 luma and Cb Cr pairs to BGR. */
KroStatus kroiYCbCr420ToBGR_8u_P2C3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 luma and Cb Cr pairs to BGRA (fourth sample aval). */
KroStatus kroiYCbCr420ToBGR_8u_P2C4R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* 4:2:0 planes to BGR. */
KroStatus kroiYCbCr420ToBGR_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 planes to BGRA (fourth sample aval). */
KroStatus kroiYCbCr420ToBGR_8u_P3C4R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* 4:2:0 luma and Cb Cr pairs to RGB. */
KroStatus kroiYCbCr420ToRGB_8u_P2C3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 luma and Cb Cr pairs to RGBA (fourth sample aval). */
KroStatus kroiYCbCr420ToRGB_8u_P2C4R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* 4:2:0 planes to RGB. */
KroStatus kroiYCbCr420ToRGB_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Packed Y Cb Y Cr to BGR; at least two pixels across. */
KroStatus kroiYCbCr422ToBGR_8u_C2C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Packed Y Cb Y Cr to BGRA (fourth sample aval); at least two pixels across. */
KroStatus kroiYCbCr422ToBGR_8u_C2C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* 4:2:2 planes to BGR; an odd last column is not written. */
KroStatus kroiYCbCr422ToBGR_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* The luma of a packed 4:2:2 row (even bytes) as grey. */
KroStatus kroiYCbCr422ToGray_8u_C2C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Packed Y Cb Y Cr to RGB. */
KroStatus kroiYCbCr422ToRGB_8u_C2C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Packed Y Cb Y Cr to RGBA (fourth sample aval). */
KroStatus kroiYCbCr422ToRGB_8u_C2C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* Packed Y Cb Y Cr to three RGB planes (one step). */
KroStatus kroiYCbCr422ToRGB_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
/* 4:2:2 planes to RGB; an odd last column is not written. */
KroStatus kroiYCbCr422ToRGB_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 luma and Cr Cb pairs to BGR. */
KroStatus kroiYCrCb420ToBGR_8u_P2C3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 luma and Cr Cb pairs to BGRA (fourth sample aval); tests the size first. */
KroStatus kroiYCrCb420ToBGR_8u_P2C4R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* 4:2:0 luma and Cr Cb pairs to RGB. */
KroStatus kroiYCrCb420ToRGB_8u_P2C3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 luma and Cr Cb pairs to RGBA (fourth sample aval); tests the size first. */
KroStatus kroiYCrCb420ToRGB_8u_P2C4R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* 4:2:0 planes Y, Cr, Cb to RGBA (fourth sample aval). */
KroStatus kroiYCrCb420ToRGB_8u_P3C4R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* Packed Y Cr Y Cb to BGR. */
KroStatus kroiYCrCb422ToBGR_8u_C2C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Packed Y Cr Y Cb to BGRA (fourth sample aval). */
KroStatus kroiYCrCb422ToBGR_8u_C2C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* Packed Y Cr Y Cb to RGB. */
KroStatus kroiYCrCb422ToRGB_8u_C2C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Packed Y Cr Y Cb to RGBA (fourth sample aval). */
KroStatus kroiYCrCb422ToRGB_8u_C2C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);
/* Packed Y Cr Y Cb to three RGB planes (one step). */
KroStatus kroiYCrCb422ToRGB_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
/* 4:2:0 YUV planes to BGR; at least 2 x 2. */
KroStatus kroiYUV420ToBGR_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 YUV planes to RGBA with the fourth sample 0. */
KroStatus kroiYUV420ToRGB_8u_P3AC4R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 YUV planes to RGB. */
KroStatus kroiYUV420ToRGB_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 YUV planes to RGB, rows packed without steps. */
KroStatus kroiYUV420ToRGB_8u_P3C3(const Kro8u* const pSrc[3], Kro8u* pDst, kroiSize roiSize);
/* 4:2:0 YUV planes to RGB planes (one destination step). */
KroStatus kroiYUV420ToRGB_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
/* 4:2:0 YUV planes to RGB planes, rows packed without steps. */
KroStatus kroiYUV420ToRGB_8u_P3(const Kro8u* const pSrc[3], Kro8u* const pDst[3], kroiSize roiSize);
/* Packed Y U Y V to RGB. */
KroStatus kroiYUV422ToRGB_8u_C2C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:2 YUV planes to RGBA with the fourth sample 0. */
KroStatus kroiYUV422ToRGB_8u_P3AC4R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:2 YUV planes to RGB. */
KroStatus kroiYUV422ToRGB_8u_P3C3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:2 YUV planes to RGB, rows packed without steps. */
KroStatus kroiYUV422ToRGB_8u_P3C3(const Kro8u* const pSrc[3], Kro8u* pDst, kroiSize roiSize);
/* 4:2:2 YUV planes to RGB planes (one destination step). */
KroStatus kroiYUV422ToRGB_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
/* 4:2:2 YUV planes to RGB planes, rows packed without steps. */
KroStatus kroiYUV422ToRGB_8u_P3(const Kro8u* const pSrc[3], Kro8u* const pDst[3], kroiSize roiSize);

/* ------------------------------------------------------------ HSV */
/* Interleaved RGB to HSV (8u). */
KroStatus kroiRGBToHSV_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* RGBA to HSV with the destination's fourth sample kept (8u). */
KroStatus kroiRGBToHSV_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Interleaved HSV to RGB (8u). */
KroStatus kroiHSVToRGB_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* HSV with a fourth sample to RGBA, the destination's fourth sample kept (8u). */
KroStatus kroiHSVToRGB_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Interleaved RGB to HSV (16u). */
KroStatus kroiRGBToHSV_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
/* RGBA to HSV with the destination's fourth sample kept (16u). */
KroStatus kroiRGBToHSV_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
/* Interleaved HSV to RGB (16u). */
KroStatus kroiHSVToRGB_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
/* HSV with a fourth sample to RGBA, the destination's fourth sample kept (16u). */
KroStatus kroiHSVToRGB_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);

/* ------------------------------------------------------------ LUV */
/* CIE L*u*v* of linear RGB (BT.709 primaries, D65 white), in 32-bit floats.
 * 8u LUV: L x 2.55, (u + 134) x 255/354, (v + 140) x 255/262. 16u: L x 655.35,
 * (u + 134) x 65535/354, (v + 140) x 65535/262; 16s: the 16u samples minus
 * 32768. 32f: L 0..100, u, v themselves; RGB nominally 0..1. Steps are in
 * bytes for 8u and 32f (32f AC4 LUV to RGB: in samples, the byte step shifted
 * right by 2), and in samples for 16u and 16s (the byte step shifted right
 * by 1). AC4: the fourth sample is ignored and left as it was. The main path
 * (blocks of four pixels) and the tail of a row compute differently; results
 * that go through a reciprocal estimate follow the processor's estimate. */
KroStatus kroiRGBToLUV_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiBGRToLUV_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToLUV_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToLUV_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToLUV_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToLUV_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToLUV_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToLUV_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiBGRToLUV_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiRGBToLUV_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiLUVToRGB_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiLUVToBGR_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiLUVToRGB_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiLUVToRGB_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiLUVToRGB_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiLUVToRGB_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiLUVToRGB_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiLUVToRGB_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiLUVToBGR_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiLUVToRGB_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize);

/* ------------------------------------------------------------ Lab on planar float images */
/* Three planes R, G, B and L, a, b of Kro32f or Kro64f samples, each plane with
 * its own step in bytes. The 32f forms compute what kroiRGBToLab_32f_C3R and
 * kroiLabToRGB_32f_C3R compute; the 64f forms compute in double precision
 * throughout. Checks: pSrc, pDst, the source planes, srcStep, the destination
 * planes, dstStep (null: kroStatusNullPointer), then the size. The plain forms
 * test the step arrays first and then do what their _L forms do. */
KroStatus kroiRGBToLab_32f_P3R(const Kro32f* const pSrc[3], const int srcStep[3], Kro32f* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiRGBToLab_32f_P3R_L(const Kro32f* const pSrc[3], const int srcStep[3], Kro32f* const pDst[3], const int dstStep[3], kroiSizeL roiSize);
KroStatus kroiLabToRGB_32f_P3R(const Kro32f* const pSrc[3], const int srcStep[3], Kro32f* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiLabToRGB_32f_P3R_L(const Kro32f* const pSrc[3], const int srcStep[3], Kro32f* const pDst[3], const int dstStep[3], kroiSizeL roiSize);
KroStatus kroiRGBToLab_64f_P3R(const Kro64f* const pSrc[3], const int srcStep[3], Kro64f* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiRGBToLab_64f_P3R_L(const Kro64f* const pSrc[3], const int srcStep[3], Kro64f* const pDst[3], const int dstStep[3], kroiSizeL roiSize);
KroStatus kroiLabToRGB_64f_P3R(const Kro64f* const pSrc[3], const int srcStep[3], Kro64f* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiLabToRGB_64f_P3R_L(const Kro64f* const pSrc[3], const int srcStep[3], Kro64f* const pDst[3], const int dstStep[3], kroiSizeL roiSize);

/* ------------------------------------------------------------ repacking between subsampled layouts */

/* Packed Cb Y Cr Y to 4:1:1 planes; odd chroma samples dropped. */
KroStatus kroiCbYCr422ToYCbCr411_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* Packed Cb Y Cr Y to 4:2:0 luma and CbCr pairs; chroma of odd rows dropped. */
KroStatus kroiCbYCr422ToYCbCr420_8u_C2P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
/* Packed Cb Y Cr Y to 4:2:0 planes; chroma of odd rows dropped. */
KroStatus kroiCbYCr422ToYCbCr420_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* Packed Cb Y Cr Y to 4:2:2 planes. */
KroStatus kroiCbYCr422ToYCbCr422_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* Packed Cb Y Cr Y to packed Y Cb Y Cr. */
KroStatus kroiCbYCr422ToYCbCr422_8u_C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Packed Cb Y Cr Y to 4:2:0 planes Y, Cr, Cb; chroma of odd rows dropped. */
KroStatus kroiCbYCr422ToYCrCb420_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:1:1 luma and CbCr pairs to 4:2:0 planes; two rows of chroma folded into one. */
KroStatus kroiYCbCr411ToYCbCr420_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:1:1 planes to 4:2:0 luma and CbCr pairs; two rows of chroma folded into one. */
KroStatus kroiYCbCr411ToYCbCr420_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
/* 4:1:1 planes to 4:2:0 planes; two rows of chroma folded into one. */
KroStatus kroiYCbCr411ToYCbCr420_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:1:1 luma and CbCr pairs to packed Y Cb Y Cr; each chroma sample doubled. */
KroStatus kroiYCbCr411ToYCbCr422_8u_P2C2R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:1:1 luma and CbCr pairs to 4:2:2 planes; each chroma sample doubled. */
KroStatus kroiYCbCr411ToYCbCr422_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:1:1 planes to packed Y Cb Y Cr; each chroma sample doubled. */
KroStatus kroiYCbCr411ToYCbCr422_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:1:1 planes to 4:2:2 planes; each chroma sample doubled. */
KroStatus kroiYCbCr411ToYCbCr422_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:1:1 luma and CbCr pairs to 4:2:0 planes Y, Cr, Cb; two rows of chroma folded into one. */
KroStatus kroiYCbCr411ToYCrCb420_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:1:1 planes to packed Y Cr Y Cb; each chroma sample doubled. */
KroStatus kroiYCbCr411ToYCrCb422_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:1:1 planes to 4:2:2 planes Y, Cr, Cb; each chroma sample doubled. */
KroStatus kroiYCbCr411ToYCrCb422_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:1:1 luma and CbCr pairs to 4:1:1 planes. */
KroStatus kroiYCbCr411_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:1:1 planes to 4:1:1 luma and CbCr pairs. */
KroStatus kroiYCbCr411_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
/* 4:2:0 luma and CbCr pairs to packed Cb Y Cr Y; each chroma row serves two rows. */
KroStatus kroiYCbCr420ToCbYCr422_8u_P2C2R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 luma and CbCr pairs to 4:1:1 planes; each chroma row unfolded into two. */
KroStatus kroiYCbCr420ToYCbCr411_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:2:0 planes to 4:1:1 luma and CbCr pairs; each chroma row unfolded into two. */
KroStatus kroiYCbCr420ToYCbCr411_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
/* 4:2:0 luma and CbCr pairs to packed Y Cb Y Cr; each chroma row serves two rows. */
KroStatus kroiYCbCr420ToYCbCr422_8u_P2C2R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 luma and CbCr pairs to 4:2:2 planes; each chroma row serves two rows. */
KroStatus kroiYCbCr420ToYCbCr422_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:2:0 planes to 4:2:2 planes; each chroma row serves two rows. */
KroStatus kroiYCbCr420ToYCbCr422_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:2:0 luma and CbCr pairs to 4:2:0 planes; the first byte of each pair goes to element 1. */
KroStatus kroiYCbCr420ToYCrCb420_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:2:0 luma and CbCr pairs to 4:2:0 planes. */
KroStatus kroiYCbCr420_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:2:0 planes to 4:2:0 luma and CbCr pairs. */
KroStatus kroiYCbCr420_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
/* Packed Y Cb Y Cr to packed Cb Y Cr Y. */
KroStatus kroiYCbCr422ToCbYCr422_8u_C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:2 planes to packed Cb Y Cr Y (+35 for an odd width). */
KroStatus kroiYCbCr422ToCbYCr422_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Packed Y Cb Y Cr to 4:1:1 luma and CbCr pairs; odd chroma samples dropped. */
KroStatus kroiYCbCr422ToYCbCr411_8u_C2P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
/* Packed Y Cb Y Cr to 4:1:1 planes; odd chroma samples dropped. */
KroStatus kroiYCbCr422ToYCbCr411_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:2:2 planes to 4:1:1 luma and CbCr pairs; odd chroma samples dropped. */
KroStatus kroiYCbCr422ToYCbCr411_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
/* 4:2:2 planes to 4:1:1 planes; odd chroma samples dropped. */
KroStatus kroiYCbCr422ToYCbCr411_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* Packed Y Cb Y Cr to 4:2:0 luma and CbCr pairs; chroma of odd rows dropped. */
KroStatus kroiYCbCr422ToYCbCr420_8u_C2P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
/* Packed Y Cb Y Cr to 4:2:0 planes; chroma of odd rows dropped. */
KroStatus kroiYCbCr422ToYCbCr420_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:2:2 planes to 4:2:0 luma and CbCr pairs; chroma of odd rows dropped. */
KroStatus kroiYCbCr422ToYCbCr420_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
/* 4:2:2 planes to 4:2:0 planes; chroma of odd rows dropped. */
KroStatus kroiYCbCr422ToYCbCr420_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* Packed Y Cb Y Cr to 4:2:0 luma and CrCb pairs; chroma of odd rows dropped. */
KroStatus kroiYCbCr422ToYCrCb420_8u_C2P2R(const Kro8u* pSrc, int srcStep, Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
/* Packed Y Cb Y Cr to 4:2:0 planes Y, Cr, Cb; chroma of odd rows dropped. */
KroStatus kroiYCbCr422ToYCrCb420_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* Packed Y Cb Y Cr to packed Y Cr Y Cb. */
KroStatus kroiYCbCr422ToYCrCb422_8u_C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:2 planes to packed Y Cr Y Cb. */
KroStatus kroiYCbCr422ToYCrCb422_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* Packed Y Cb Y Cr to 4:2:2 planes. */
KroStatus kroiYCbCr422_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* 4:2:2 planes to packed Y Cb Y Cr. */
KroStatus kroiYCbCr422_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 planes Y, Cr, Cb to packed Cb Y Cr Y; each chroma row serves two rows. */
KroStatus kroiYCrCb420ToCbYCr422_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 planes Y, Cr, Cb to 4:1:1 luma and CbCr pairs; each chroma row unfolded into two. */
KroStatus kroiYCrCb420ToYCbCr411_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
/* 4:2:0 planes Y, Cr, Cb to 4:2:0 luma and CbCr pairs. */
KroStatus kroiYCrCb420ToYCbCr420_8u_P3P2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDstY, int dstYStep, Kro8u* pDstCbCr, int dstCbCrStep, kroiSize roiSize);
/* 4:2:0 planes Y, Cr, Cb to packed Y Cb Y Cr; each chroma row serves two rows. */
KroStatus kroiYCrCb420ToYCbCr422_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 planes Y, Cr, Cb to 4:2:2 planes; each chroma row serves two rows. */
KroStatus kroiYCrCb420ToYCbCr422_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* Packed Y Cr Y Cb to 4:1:1 planes; odd chroma samples dropped. */
KroStatus kroiYCrCb422ToYCbCr411_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* Packed Y Cr Y Cb to 4:2:0 planes; chroma of odd rows dropped. */
KroStatus kroiYCrCb422ToYCbCr420_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* Packed Y Cr Y Cb to 4:2:2 planes. */
KroStatus kroiYCrCb422ToYCbCr422_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);

/* ------------------------------------------------------------ filtered and interlaced chroma */
/* Interlaced frames: chroma handled field by field (rows of one parity together). */
KroStatus kroiCbYCr422ToYCbCr420_Interlace_8u_C2P3R(const Kro8u* pSrc, int srcStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiYCbCr422To420_Interlace_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiYCbCr420To422_Interlace_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiYCbCr420ToCbYCr422_Interlace_8u_P3C2R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize);
/* 4:2:0 to 4:2:2 with a four-tap vertical chroma filter. */
KroStatus kroiYCbCr420ToYCbCr422_Filter_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiYCrCb420ToYCbCr422_Filter_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiYCbCr420ToYCbCr422_Filter_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
/* Semi-planar 4:2:0 to packed YCbCr 4:2:2 and to three planes, luma smoothed between rows and chroma
 * averaged between two rows. layout: kroiStripTop (1), kroiStripCenter (4), kroiStripBottom (16) for an
 * image passed in strips (center and bottom strips start two luma rows and one chroma row above their
 * addresses), any value with those three bits set for a whole image; any other value does nothing. */
KroStatus kroiYCbCr420ToYCbCr422_Filter_8u_P2C2R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int layout);
KroStatus kroiYCbCr420ToYCrCb420_Filter_8u_P2P3R(const Kro8u* pSrcY, int srcYStep, const Kro8u* pSrcCbCr, int srcCbCrStep, Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize, int layout);
/* 4:2:0 YCrCb planes to BGRA, chroma interpolated across between pairs; aval fills the fourth sample. */
KroStatus kroiYCrCb420ToBGR_Filter_8u_P3C4R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* pDst, int dstStep, kroiSize roiSize, Kro8u aval);

/* ------------------------------------------------------------ 10-bit packed video and gamma-encoded 4:2:2 */
/* 10-bit packed 4:2:2 (groups of 6 pixels in 4 words) to one 16-bit 5-6-5 sample a pixel, or to the
 * 10-bit luma. srcStep counts 32-bit words and dstStep 16-bit samples. */
KroStatus kroiYUV422v210ToRGB_709HDTV_32u16u_C3(const Kro32u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiYUV422v210ToBGR_709HDTV_32u16u_C3(const Kro32u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiYUV422v210ToGray_709HDTV_32u16u_C3C1(const Kro32u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
/* RGB through the forward BT.709 transfer curve to packed CbYCr 4:2:2 with a 1/4 1/2 1/4 chroma filter. */
KroStatus kroiRGBToCbYCr422Gamma_8u_C3C2R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);

/* ------------------------------------------------------------ plane resamplers */
/* P3 images: luma copied, each chroma plane resampled by averages of two neighbours (doubling) or by
 * dropping samples (halving). 1620: one chroma sample for 4 x 4 luma samples. */
KroStatus kroiYCbCr1620To420_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiYCbCr411To420_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiYCbCr420To1620_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);
KroStatus kroiYCbCr420To411_8u_P3R(const Kro8u* const pSrc[3], const int srcStep[3], Kro8u* const pDst[3], const int dstStep[3], kroiSize roiSize);

/* ------------------------------------------------------------ gamma */

/* BT.709 transfer curve on three channels: Fwd linear light to coded, Inv the
 * way back. 8u and 16u samples go through a table of every input; 32f samples
 * through the curve on the value range vMin..vMax (a sample at vMin stays vMin;
 * samples outside the range are not clamped). AC4 forms leave the fourth sample
 * as it was. Steps are in bytes for every type; all three planes share one step.
 * Checks: 32f first vMax - vMin not above 0 (kroStatusBadGammaRange), then null
 * addresses and plane elements, width or height below 1, any step below 1
 * (kroStatusBadStep). */
KroStatus kroiGammaFwd_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiGammaFwd_8u_C3IR(Kro8u* pSrcDst, int srcDstStep, kroiSize roiSize);
KroStatus kroiGammaFwd_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiGammaFwd_8u_AC4IR(Kro8u* pSrcDst, int srcDstStep, kroiSize roiSize);
KroStatus kroiGammaFwd_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
KroStatus kroiGammaFwd_8u_IP3R(Kro8u* const pSrcDst[3], int srcDstStep, kroiSize roiSize);
KroStatus kroiGammaFwd_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiGammaFwd_16u_C3IR(Kro16u* pSrcDst, int srcDstStep, kroiSize roiSize);
KroStatus kroiGammaFwd_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiGammaFwd_16u_AC4IR(Kro16u* pSrcDst, int srcDstStep, kroiSize roiSize);
KroStatus kroiGammaFwd_16u_P3R(const Kro16u* const pSrc[3], int srcStep, Kro16u* const pDst[3], int dstStep, kroiSize roiSize);
KroStatus kroiGammaFwd_16u_IP3R(Kro16u* const pSrcDst[3], int srcDstStep, kroiSize roiSize);
KroStatus kroiGammaFwd_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax);
KroStatus kroiGammaFwd_32f_C3IR(Kro32f* pSrcDst, int srcDstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax);
KroStatus kroiGammaFwd_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax);
KroStatus kroiGammaFwd_32f_AC4IR(Kro32f* pSrcDst, int srcDstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax);
KroStatus kroiGammaFwd_32f_P3R(const Kro32f* const pSrc[3], int srcStep, Kro32f* const pDst[3], int dstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax);
KroStatus kroiGammaFwd_32f_IP3R(Kro32f* const pSrcDst[3], int srcDstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax);
KroStatus kroiGammaInv_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiGammaInv_8u_C3IR(Kro8u* pSrcDst, int srcDstStep, kroiSize roiSize);
KroStatus kroiGammaInv_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiGammaInv_8u_AC4IR(Kro8u* pSrcDst, int srcDstStep, kroiSize roiSize);
KroStatus kroiGammaInv_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize);
KroStatus kroiGammaInv_8u_IP3R(Kro8u* const pSrcDst[3], int srcDstStep, kroiSize roiSize);
KroStatus kroiGammaInv_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiGammaInv_16u_C3IR(Kro16u* pSrcDst, int srcDstStep, kroiSize roiSize);
KroStatus kroiGammaInv_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiGammaInv_16u_AC4IR(Kro16u* pSrcDst, int srcDstStep, kroiSize roiSize);
KroStatus kroiGammaInv_16u_P3R(const Kro16u* const pSrc[3], int srcStep, Kro16u* const pDst[3], int dstStep, kroiSize roiSize);
KroStatus kroiGammaInv_16u_IP3R(Kro16u* const pSrcDst[3], int srcDstStep, kroiSize roiSize);
KroStatus kroiGammaInv_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax);
KroStatus kroiGammaInv_32f_C3IR(Kro32f* pSrcDst, int srcDstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax);
KroStatus kroiGammaInv_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax);
KroStatus kroiGammaInv_32f_AC4IR(Kro32f* pSrcDst, int srcDstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax);
KroStatus kroiGammaInv_32f_P3R(const Kro32f* const pSrc[3], int srcStep, Kro32f* const pDst[3], int dstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax);
KroStatus kroiGammaInv_32f_IP3R(Kro32f* const pSrcDst[3], int srcDstStep, kroiSize roiSize, Kro32f vMin, Kro32f vMax);

/* ------------------------------------------------------------ colour twist */
/* Each output channel a weighted sum of the three input channels plus a constant, in 32-bit
 * floats: d_i = (twist[i][3] + s0 twist[i][0]) + (s2 twist[i][2] + s1 twist[i][1]). Integer
 * samples saturate to their type and round to nearest even whatever the caller's rounding mode;
 * 32f samples are stored as computed. Steps are in bytes for every sample type. AC4: the fourth
 * sample is never written. kroiColorTwist_32f_C4R: a 4 x 4 matrix without constants, all four
 * samples written. */
KroStatus kroiColorTwist32f_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_8u_C3IR(Kro8u* pSrcDst, int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_8u_AC4IR(Kro8u* pSrcDst, int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_8u_P3R(const Kro8u* const pSrc[3], int srcStep, Kro8u* const pDst[3], int dstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_8u_IP3R(Kro8u* const pSrcDst[3], int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_16u_C3IR(Kro16u* pSrcDst, int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_16u_AC4IR(Kro16u* pSrcDst, int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_16u_P3R(const Kro16u* const pSrc[3], int srcStep, Kro16u* const pDst[3], int dstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_16u_IP3R(Kro16u* const pSrcDst[3], int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_16s_C3IR(Kro16s* pSrcDst, int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_16s_AC4IR(Kro16s* pSrcDst, int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_16s_P3R(const Kro16s* const pSrc[3], int srcStep, Kro16s* const pDst[3], int dstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist32f_16s_IP3R(Kro16s* const pSrcDst[3], int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist_32f_C3R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist_32f_AC4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist_32f_C3IR(Kro32f* pSrcDst, int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist_32f_AC4IR(Kro32f* pSrcDst, int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist_32f_P3R(const Kro32f* const pSrc[3], int srcStep, Kro32f* const pDst[3], int dstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist_32f_IP3R(Kro32f* const pSrcDst[3], int srcDstStep, kroiSize roiSize, const Kro32f twist[3][4]);
KroStatus kroiColorTwist_32f_C4R(const Kro32f* pSrc, int srcStep, Kro32f* pDst, int dstStep, kroiSize roiSize, const Kro32f twist[4][4]);

/* ------------------------------------------------------------ tone mapping */
/* One-channel float image to 8 bits by one scale: the image maximum to 255 (Linear: low 8 bits of
 * the truncated product), or twice the image mean to 255 (Mean: saturated). A measure below 0
 * returns kroStatusNothingDone and writes nothing; a measure not above the smallest normal float
 * fills the region with 0. Steps in bytes, not tested. */
KroStatus kroiToneMapLinear_32f8u_C1R(const Kro32f* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiToneMapMean_32f8u_C1R(const Kro32f* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);

/* ------------------------------------------------------------ bit-depth reduction and dithering */
/* Reduction of samples to `levels` equally spaced output levels, plainly
 * (kroiDitherNone), by error diffusion (Floyd-Steinberg, Jarvis-Judice-Ninke,
 * Stucki) or by the 4x4 Bayer matrix, with `noise` (0..100 percent) moving the
 * decision thresholds. pBuffer is the caller's work block of the size that
 * kroiReduceBitsGetBufferSize gives (any alignment; it may be null where that
 * size is 0). channelCode: 1 C1, 3 C3, 4 C4, 9 AC4. */
KroStatus kroiReduceBitsGetBufferSize(int channelCode, kroiSize roiSize, int noise, KroDitherType ditherType,
                                      int* pBufferSize);
KroStatus kroiReduceBits_8u_C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_8u_C3R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_8u_C4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_8u_AC4R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16u8u_C1R(const Kro16u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16u8u_C3R(const Kro16u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16u8u_C4R(const Kro16u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16u8u_AC4R(const Kro16u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16s8u_C1R(const Kro16s* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16s8u_C3R(const Kro16s* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16s8u_C4R(const Kro16s* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16s8u_AC4R(const Kro16s* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_32f8u_C1R(const Kro32f* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_32f8u_C3R(const Kro32f* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_32f8u_C4R(const Kro32f* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_32f8u_AC4R(const Kro32f* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16u_C1R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16u_C3R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16u_C4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16u_AC4R(const Kro16u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16s_C1R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16s_C3R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16s_C4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_16s_AC4R(const Kro16s* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_32f16u_C1R(const Kro32f* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_32f16u_C3R(const Kro32f* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_32f16u_C4R(const Kro32f* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_32f16u_AC4R(const Kro32f* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_32f16s_C1R(const Kro32f* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_32f16s_C3R(const Kro32f* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_32f16s_C4R(const Kro32f* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
KroStatus kroiReduceBits_32f16s_AC4R(const Kro32f* pSrc, int srcStep, Kro16s* pDst, int dstStep, kroiSize roiSize, int noise,
    KroDitherType ditherType, int levels, Kro8u* pBuffer);
/* An 8-bit grey image to one bit a pixel, most significant bit first, from bit
 * (dstBitOffset & 7) of each row's first byte: sample > threshold
 * (kroiDitherNone) or Stucki error diffusion (kroiDitherStucki, work block of
 * kroiReduceBitsGetBufferSize(1, roiSize, 0, kroiDitherStucki)). reserved1 and
 * reserved2 are not read. Bits outside the region keep their values. */
KroStatus kroiReduceBits_8u1u_C1R(const Kro8u* pSrc, int srcStep, Kro8u* pDst, int dstStep, int dstBitOffset,
    kroiSize roiSize, int reserved1, int reserved2, KroDitherType ditherType, Kro8u threshold, Kro8u* pBuffer);

/* ------------------------------------------------------------ 12-bit packing */
/* 12-bit samples in 16-bit storage to two samples in three bytes, high bits first, and back.
 * A row of odd width ends in two bytes for its last sample. Steps in bytes on both sides. */
KroStatus kroiPack_16u12u_C1R(const Kro16u* pSrc, int srcStep, Kro8u* pDst, int dstStep, kroiSize roiSize);
KroStatus kroiUnpack_12u16u_C1R(const Kro8u* pSrc, int srcStep, Kro16u* pDst, int dstStep, kroiSize roiSize);

/* ------------------------------------------------------------ Bayer demosaicing */
/* The raw operations address the source by the image's top left sample and take
 * the region (srcRoi) in image coordinates and the whole image's size; the
 * destination address is the region's top left pixel. The pattern is anchored
 * at the image origin. A region reaching past the image is cut at its edges. */
/* Bayer mosaic to RGB by directional interpolation; images from 2 x 2. reserved is not read. */
KroStatus kroiCFAToRGB_8u_C1C3R(const Kro8u* pSrc, kroiRect srcRoi, kroiSize srcSize, int srcStep, Kro8u* pDst, int dstStep, KroiBayerGrid grid, int reserved);
KroStatus kroiCFAToRGB_16u_C1C3R(const Kro16u* pSrc, kroiRect srcRoi, kroiSize srcSize, int srcStep, Kro16u* pDst, int dstStep, KroiBayerGrid grid, int reserved);
/* Bayer mosaic to BGRA by a variable number of gradients; images from 5 x 5. scale: gains for
 * B, G, R, or null for none. The fourth sample of computed pixels is kept; the two-pixel image
 * frame inside the region is copied whole from the nearest computed pixel. */
KroStatus kroiCFAToBGRA_VNG_8u_C1C4R(const Kro8u* pSrc, kroiRect srcRoi, kroiSize srcSize, int srcStep, const Kro32f* scale, Kro8u* pDst, int dstStep, KroiBayerGrid grid);
KroStatus kroiCFAToBGRA_VNG_16u_C1C4R(const Kro16u* pSrc, kroiRect srcRoi, kroiSize srcSize, int srcStep, const Kro32f* scale, Kro16u* pDst, int dstStep, KroiBayerGrid grid);
KroStatus kroiCFAToBGRA_VNG_8u_C1C4R_L(const Kro8u* pSrc, kroiRect srcRoi, kroiSizeL srcSize, int srcStep, const Kro32f* scale, Kro8u* pDst, int dstStep, KroiBayerGrid grid);
KroStatus kroiCFAToBGRA_VNG_16u_C1C4R_L(const Kro16u* pSrc, kroiRect srcRoi, kroiSizeL srcSize, int srcStep, const Kro32f* scale, Kro16u* pDst, int dstStep, KroiBayerGrid grid);
/* Bayer mosaic to RGB by adaptive homogeneity-directed demosaicing; images from 5 x 5. A negative
 * srcRoi.x or srcRoi.y becomes 0 with the width and height kept. pBuffer: the caller's work memory,
 * 30 rows bufferStep bytes apart, each of at least ((width + 1) & ~1) + 6 samples, width being the
 * region's width after it is cut at the image; its content afterwards means nothing. */
KroStatus kroiDemosaicAHD_8u_C1C3R(const Kro8u* pSrc, kroiRect srcRoi, kroiSize srcSize, int srcStep, Kro8u* pDst, int dstStep, KroiBayerGrid grid, Kro8u* pBuffer, int bufferStep);
KroStatus kroiDemosaicAHD_16u_C1C3R(const Kro16u* pSrc, kroiRect srcRoi, kroiSize srcSize, int srcStep, Kro16u* pDst, int dstStep, KroiBayerGrid grid, Kro16u* pBuffer, int bufferStep);

#ifdef __cplusplus
}
#endif

#endif /* KROCC_H */
