// RGB <-> YUV: one entry per operation, krocc's call first, then the peers'
// closest jobs and how each differs from ours.
#include "peers.h"

using namespace kb;
using namespace kb::fmt;

namespace {

// What every peer job of this family has in common.
const char* const kCvFwd = "same model (analogue YUV), full range; rounds to nearest where krocc's main path truncates";
const char* const kCvInv = "same model (analogue YUV), full range; its own fixed point, rounds to nearest";
const char* const kYuvFwd =
    "BT.601 YCbCr, studio range (Y 16..235), not analogue YUV; no packed-RGB to 4:4:4 call: two passes through "
    "its ARGB order";
const char* const kYuvInv = "BT.601 YCbCr, full range (J444), not analogue YUV; takes planes only";
const char* const kSwsFwd = "BT.601 YCbCr, full range, not analogue YUV; no packed 4:4:4 YUV format: writes planes";
const char* const kSwsInv = "BT.601 YCbCr, full range, not analogue YUV; no packed 4:4:4 YUV format: reads planes";

[[maybe_unused]] std::string also(const char* common, const char* more) { return std::string(common) + "; " + more; }

}  // namespace

KB_JOBS(yuv)({
    {"kroiRGBToYUV_8u_C3R",
     {
         krocc(rgbC3, yuvC3, "kroiRGBToYUV_8u_C3R",
               [](const Image& s, Image& d) { kroiRGBToYUV_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_RGB2YUV, 3, rgbC3, yuvC3, "cvtColor(COLOR_RGB2YUV)", kCvFwd))
         KB_LIBYUV(libyuvToI444(rgbC3, videoP3, also(kYuvFwd, "writes planes")))
         KB_SWSCALE(swscale(AV_PIX_FMT_RGB24, AV_PIX_FMT_YUV444P, true, rgbC3, jpegP3, kSwsFwd))
     }},
    {"kroiRGBToYUV_8u_C3P3R",
     {
         krocc(rgbC3, yuvP3, "kroiRGBToYUV_8u_C3P3R",
               [](const Image& s, Image& d) {
                   kroiRGBToYUV_8u_C3P3R(s.data(), s.step(), d.planes(), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_RGB2YUV, 3, rgbC3, yuvC3, "cvtColor(COLOR_RGB2YUV)",
                             also(kCvFwd, "no planar output: writes interleaved YUV")))
         KB_LIBYUV(libyuvToI444(rgbC3, videoP3, kYuvFwd))
         KB_SWSCALE(swscale(AV_PIX_FMT_RGB24, AV_PIX_FMT_YUV444P, true, rgbC3, jpegP3,
                            "BT.601 YCbCr, full range, not analogue YUV"))
     }},
    {"kroiRGBToYUV_8u_P3R",
     {
         krocc(rgbP3, yuvP3, "kroiRGBToYUV_8u_P3R",
               [](const Image& s, Image& d) {
                   kroiRGBToYUV_8u_P3R(s.cplanes(), s.step(), d.planes(), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_RGB2YUV, 3, rgbC3, yuvC3, "cvtColor(COLOR_RGB2YUV)",
                             also(kCvFwd, "no planar path: interleaved in and out")))
         KB_SWSCALE(swscale(AV_PIX_FMT_GBRP, AV_PIX_FMT_YUV444P, true, gbrP3, jpegP3,
                            "BT.601 YCbCr, full range, not analogue YUV; planes in G, B, R order"))
     }},
    {"kroiRGBToYUV_8u_AC4R",
     {
         krocc(rgbaC4, yuvxC4, "kroiRGBToYUV_8u_AC4R",
               [](const Image& s, Image& d) { kroiRGBToYUV_8u_AC4R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_RGB2YUV, 3, rgbaC4, yuvC3, "cvtColor(COLOR_RGB2YUV) on 4 channels",
                             also(kCvFwd, "writes 3-sample pixels (no fourth sample to keep)")))
         KB_LIBYUV(libyuvToI444(rgbaC4, videoP3, also(kYuvFwd, "writes three planes, alpha dropped")))
         KB_SWSCALE(swscale(AV_PIX_FMT_RGBA, AV_PIX_FMT_YUV444P, true, rgbaC4, jpegP3,
                            also(kSwsFwd, "alpha dropped")))
     }},
    {"kroiRGBToYUV_8u_AC4P4R",
     {
         krocc(rgbaC4, yuvaP4, "kroiRGBToYUV_8u_AC4P4R",
               [](const Image& s, Image& d) {
                   kroiRGBToYUV_8u_AC4P4R(s.data(), s.step(), d.planes(), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_RGB2YUV, 3, rgbaC4, yuvC3, "cvtColor(COLOR_RGB2YUV) on 4 channels",
                             also(kCvFwd, "writes interleaved 3-sample pixels, alpha dropped")))
         KB_LIBYUV(libyuvToI444(rgbaC4, videoaP4, kYuvFwd))
         KB_SWSCALE(swscale(AV_PIX_FMT_RGBA, AV_PIX_FMT_YUVA444P, true, rgbaC4, jpegaP4,
                            "BT.601 YCbCr, full range, not analogue YUV"))
     }},
    {"kroiYUVToRGB_8u_C3R",
     {
         krocc(yuvC3, rgbC3, "kroiYUVToRGB_8u_C3R",
               [](const Image& s, Image& d) { kroiYUVToRGB_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2RGB, 3, yuvC3, rgbC3, "cvtColor(COLOR_YUV2RGB)", kCvInv))
         KB_LIBYUV(libyuvFrom444(jpegP3, rgbC3, kYuvInv))
         KB_SWSCALE(swscale(AV_PIX_FMT_YUV444P, AV_PIX_FMT_RGB24, true, jpegP3, rgbC3, kSwsInv))
     }},
    {"kroiYUVToRGB_8u_AC4R",
     {
         krocc(yuvaC4, rgbxC4, "kroiYUVToRGB_8u_AC4R",
               [](const Image& s, Image& d) { kroiYUVToRGB_8u_AC4R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2RGB, 4, yuvC3, rgbaC4, "cvtColor(COLOR_YUV2RGB, dcn 4)",
                             also(kCvInv, "reads 3-sample pixels; sets alpha to 255 instead of keeping it")))
         KB_LIBYUV(libyuvFrom444(jpegP3, rgbaC4, also(kYuvInv, "sets alpha to 255 instead of keeping it")))
         KB_SWSCALE(swscale(AV_PIX_FMT_YUV444P, AV_PIX_FMT_RGBA, true, jpegP3, rgbaC4,
                            also(kSwsInv, "sets alpha to 255 instead of keeping it")))
     }},
    {"kroiYUVToRGB_8u_C3C4R",
     {
         krocc(yuvC3, rgbaC4, "kroiYUVToRGB_8u_C3C4R",
               [](const Image& s, Image& d) {
                   kroiYUVToRGB_8u_C3C4R(s.data(), s.step(), d.data(), d.step(), s.size(), 255);
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2RGB, 4, yuvC3, rgbaC4, "cvtColor(COLOR_YUV2RGB, dcn 4)",
                             also(kCvInv, "alpha always 255")))
         KB_LIBYUV(libyuvFrom444(jpegP3, rgbaC4, also(kYuvInv, "alpha always 255")))
         KB_SWSCALE(swscale(AV_PIX_FMT_YUV444P, AV_PIX_FMT_RGBA, true, jpegP3, rgbaC4,
                            also(kSwsInv, "alpha always 255")))
     }},
    {"kroiYUVToRGB_8u_P3C3R",
     {
         krocc(yuvP3, rgbC3, "kroiYUVToRGB_8u_P3C3R",
               [](const Image& s, Image& d) {
                   kroiYUVToRGB_8u_P3C3R(s.cplanes(), s.step(), d.data(), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2RGB, 3, yuvC3, rgbC3, "cvtColor(COLOR_YUV2RGB)",
                             also(kCvInv, "no planar input: reads interleaved YUV")))
         KB_LIBYUV(libyuvFrom444(jpegP3, rgbC3, "BT.601 YCbCr, full range (J444), not analogue YUV"))
         KB_SWSCALE(swscale(AV_PIX_FMT_YUV444P, AV_PIX_FMT_RGB24, true, jpegP3, rgbC3,
                            "BT.601 YCbCr, full range, not analogue YUV"))
     }},
    {"kroiYUVToRGB_8u_P3R",
     {
         krocc(yuvP3, rgbP3, "kroiYUVToRGB_8u_P3R",
               [](const Image& s, Image& d) {
                   kroiYUVToRGB_8u_P3R(s.cplanes(), s.step(), d.planes(), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2RGB, 3, yuvC3, rgbC3, "cvtColor(COLOR_YUV2RGB)",
                             also(kCvInv, "no planar path: interleaved in and out")))
         KB_SWSCALE(swscale(AV_PIX_FMT_YUV444P, AV_PIX_FMT_GBRP, true, jpegP3, gbrP3,
                            "BT.601 YCbCr, full range, not analogue YUV; planes out in G, B, R order"))
     }},
});
