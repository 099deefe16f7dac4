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
inline constexpr Format bgrC3{Layout::C3, Model::Rgb, "BGR"};
inline constexpr Format bgraC4{Layout::C4, Model::Rgb, "BGRA"};
// 4:2:0 and 4:2:2, BT.601 studio range.
inline constexpr Format i420{Layout::I420, Model::YccVideo601, "YUV"};
inline constexpr Format nv12{Layout::NV, Model::YccVideo601, "YUV"};
inline constexpr Format yuy2{Layout::C2, Model::YccVideo601, "YUYV"};
inline constexpr Format uyvy{Layout::C2, Model::YccVideo601, "UYVY"};
inline constexpr Format yvyu{Layout::C2, Model::YccVideo601, "YVYU"};
// Floats, 0..1.
inline constexpr Format rgbC3f{Layout::C3, Model::Rgb, "RGB", Depth::F32};
inline constexpr Format opaqueC3f{Layout::C3, Model::Opaque, "abc", Depth::F32};
inline constexpr Format grayC1f{Layout::C1, Model::Gray, "Y", Depth::F32};
inline constexpr Format rgbC3d{Layout::C3, Model::Rgb, "RGB", Depth::F64};
inline constexpr Format grayC1d{Layout::C1, Model::Gray, "Y", Depth::F64};
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
// Packed RGB through the library's ARGB order, 16 rows at a time, for the
// destinations it writes only from ARGB: toArgb turns a strip of source rows
// into a scratch, fromArgb writes the destination's rows y..y+rows-1 from it.
using LibyuvToArgb = int (*)(const std::uint8_t*, int, std::uint8_t*, int, int, int);
using LibyuvFromArgb = std::function<void(const std::uint8_t* argb, int argbStep, Image& d, int y, int rows)>;
Impl libyuvViaArgb(std::string call, Format in, Format out, std::string differs, LibyuvToArgb toArgb,
                   LibyuvFromArgb fromArgb);
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
