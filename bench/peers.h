// The peers' calls, each wrapped as an Impl of the job table. A peer library
// that was not found at build time has no adapter, and the KB_<PEER>(...)
// entries of the tables vanish.
#pragma once

#include "bench_core.h"

#if KB_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#define KB_OPENCV(...) __VA_ARGS__,
#else
#define KB_OPENCV(...)
#endif

#if KB_HAVE_LIBYUV
#include <libyuv.h>
#define KB_LIBYUV(...) __VA_ARGS__,
#else
#define KB_LIBYUV(...)
#endif

#if KB_HAVE_SWSCALE
extern "C" {
#include <libavutil/pixfmt.h>
}
#define KB_SWSCALE(...) __VA_ARGS__,
#else
#define KB_SWSCALE(...)
#endif

namespace kb {

// The formats the tables name.
namespace fmt {
inline constexpr Format rgbC3{Layout::C3, Model::Rgb, "RGB"};
inline constexpr Format rgbaC4{Layout::C4, Model::Rgb, "RGBA"};
inline constexpr Format rgbxC4{Layout::C4, Model::Rgb, "RGBx"};
inline constexpr Format rgbP3{Layout::P3, Model::Rgb, "RGB"};
inline constexpr Format gbrP3{Layout::P3, Model::Rgb, "GBR"};
inline constexpr Format yuvC3{Layout::C3, Model::YuvAnalog, "YUV"};
inline constexpr Format yuvaC4{Layout::C4, Model::YuvAnalog, "YUVA"};
inline constexpr Format yuvxC4{Layout::C4, Model::YuvAnalog, "YUVx"};
inline constexpr Format yuvP3{Layout::P3, Model::YuvAnalog, "YUV"};
inline constexpr Format yuvaP4{Layout::P4, Model::YuvAnalog, "YUVA"};
inline constexpr Format jpegP3{Layout::P3, Model::YccFull601, "YUV"};
inline constexpr Format jpegaP4{Layout::P4, Model::YccFull601, "YUVA"};
inline constexpr Format jpegC3{Layout::C3, Model::YccFull601, "YUV"};
inline constexpr Format jpegCrCbC3{Layout::C3, Model::YccFull601, "YVU"};
inline constexpr Format videoC3{Layout::C3, Model::YccVideo601, "YUV"};
inline constexpr Format videoP3{Layout::P3, Model::YccVideo601, "YUV"};
inline constexpr Format videoaP4{Layout::P4, Model::YccVideo601, "YUVA"};
inline constexpr Format grayC1{Layout::C1, Model::Gray, "Y"};
inline constexpr Format opaqueC3{Layout::C3, Model::Opaque, "abc"};
}  // namespace fmt

#if KB_HAVE_OPENCV
// cv::cvtColor(src, dst, code, dcn) on interleaved images wrapped in place.
Impl opencvCvt(int code, int dcn, Format in, Format out, std::string call, std::string differs);
#endif

#if KB_HAVE_LIBYUV
// Packed RGB (C3 "RGB") or RGBA (C4 "RGBA") to I444 planes (P3) or I444 plus
// alpha (P4), BT.601 studio range: the pixels go through the library's ARGB
// order first, 16 rows at a time, as its converters take only that order.
Impl libyuvToI444(Format in, Format out, std::string differs);
// 4:4:4 planes to packed RGB (C3 "RGB") or RGBA (C4, alpha 255): J444
// (full-range BT.601) when the input's model is YccFull601, else I444 (studio).
Impl libyuvFrom444(Format in, Format out, std::string differs);
#endif

#if KB_HAVE_SWSCALE
// sws_scale at the same size (no scaling), one thread, nearest-neighbour
// filter; yuvFullRange chooses full-range (JPEG) samples on the YUV side.
Impl swscale(AVPixelFormat src, AVPixelFormat dst, bool yuvFullRange, Format in, Format out, std::string differs);
#endif

// Peer set-up done once before any benchmark (single thread for every peer).
// sseOnly: libyuv and swscale limited to SSE4.2 and below, like krocc (OpenCV
// reads OPENCV_CPU_DISABLE when it loads: main() sets it and starts again).
void peersSetUp(bool sseOnly);
// What OPENCV_CPU_DISABLE must hold for OpenCV to stop at SSE4.2.
inline const char* kOpenCvNoAvx = "AVX512-SKX,AVX512-COMMON,AVX512-CLX,AVX512-CNL,AVX512F,AVX512BW,AVX512CD,AVX512DQ,AVX512VL,AVX2,FMA3,AVX,FP16";
// Name and version of each peer found, for the benchmark context.
std::vector<std::pair<std::string, std::string>> peerVersions();

}  // namespace kb
