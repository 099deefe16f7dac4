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

/* ------------------------------------------------------------ RGB <-> XYZ */

/* ------------------------------------------------------------ grey */

/* ------------------------------------------------------------ HLS */

/* ------------------------------------------------------------ Lab */

/* ------------------------------------------------------------ encoding into subsampled formats */

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

#ifdef __cplusplus
}
#endif

#endif /* KROCC_H */
