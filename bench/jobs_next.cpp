// Entries for the families after RGB <-> YUV. Each compiles as soon as its
// operation is in the entry list (KROCC_HAS_<name> comes from exports.list).
// Adding an operation is one entry: krocc's call, then KB_<PEER>(...) lines.
// Models the output check cannot decode (XYZ, HLS) use fmt::opaqueC3: both
// sides then get the picture's bytes as they are, and the check only asks that
// the destination was written.
#include "peers.h"

using namespace kb;
using namespace kb::fmt;

KB_JOBS(next)({
#ifdef KROCC_HAS_kroiRGBToYCbCr_8u_C3R
    {"kroiRGBToYCbCr_8u_C3R",
     {
         krocc(rgbC3, videoC3, "kroiRGBToYCbCr_8u_C3R",
               [](const Image& s, Image& d) {
                   kroiRGBToYCbCr_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_RGB2YCrCb, 3, rgbC3, jpegCrCbC3, "cvtColor(COLOR_RGB2YCrCb)",
                             "full range (JPEG), not studio range; samples in Y, Cr, Cb order"))
         KB_LIBYUV(libyuvToI444(rgbC3, videoP3,
                                "same model and range; no packed 4:4:4 output: writes planes, two passes through "
                                "its ARGB order"))
         KB_SWSCALE(swscale(AV_PIX_FMT_RGB24, AV_PIX_FMT_YUV444P, false, rgbC3, videoP3,
                            "same model and range; no packed 4:4:4 YUV format: writes planes"))
     }},
#endif
#ifdef KROCC_HAS_kroiYCbCrToRGB_8u_C3R
    {"kroiYCbCrToRGB_8u_C3R",
     {
         krocc(videoC3, rgbC3, "kroiYCbCrToRGB_8u_C3R",
               [](const Image& s, Image& d) {
                   kroiYCbCrToRGB_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YCrCb2RGB, 3, jpegCrCbC3, rgbC3, "cvtColor(COLOR_YCrCb2RGB)",
                             "full range (JPEG), not studio range; samples in Y, Cr, Cb order"))
         KB_LIBYUV(libyuvFrom444(videoP3, rgbC3, "same model and range; reads planes"))
         KB_SWSCALE(swscale(AV_PIX_FMT_YUV444P, AV_PIX_FMT_RGB24, false, videoP3, rgbC3,
                            "same model and range; no packed 4:4:4 YUV format: reads planes"))
     }},
#endif
#ifdef KROCC_HAS_kroiRGBToGray_8u_C3C1R
    {"kroiRGBToGray_8u_C3C1R",
     {
         krocc(rgbC3, grayC1, "kroiRGBToGray_8u_C3C1R",
               [](const Image& s, Image& d) {
                   kroiRGBToGray_8u_C3C1R(s.data(), s.step(), d.data(), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_RGB2GRAY, 1, rgbC3, grayC1, "cvtColor(COLOR_RGB2GRAY)",
                             "same weights; its own fixed point and rounding"))
         KB_LIBYUV(peer("libyuv", "RAWToJ400", rgbC3, grayC1, "full-range BT.601 luma in its own fixed point",
                        [](const Image& s, Image& d) {
                            libyuv::RAWToJ400(s.data(), s.step(), d.data(), d.step(), s.width(), s.height());
                        }))
     }},
#endif
#ifdef KROCC_HAS_kroiRGBToXYZ_8u_C3R
    {"kroiRGBToXYZ_8u_C3R",
     {
         krocc(rgbC3, opaqueC3, "kroiRGBToXYZ_8u_C3R",
               [](const Image& s, Image& d) { kroiRGBToXYZ_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_RGB2XYZ, 3, rgbC3, opaqueC3, "cvtColor(COLOR_RGB2XYZ)",
                             "its own matrix and scaling of X, Y, Z to 8 bits"))
     }},
#endif
#ifdef KROCC_HAS_kroiXYZToRGB_8u_C3R
    {"kroiXYZToRGB_8u_C3R",
     {
         krocc(opaqueC3, opaqueC3, "kroiXYZToRGB_8u_C3R",
               [](const Image& s, Image& d) { kroiXYZToRGB_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_XYZ2RGB, 3, opaqueC3, opaqueC3, "cvtColor(COLOR_XYZ2RGB)",
                             "its own matrix and scaling of X, Y, Z to 8 bits"))
     }},
#endif
#ifdef KROCC_HAS_kroiRGBToHLS_8u_C3R
    {"kroiRGBToHLS_8u_C3R",
     {
         krocc(rgbC3, opaqueC3, "kroiRGBToHLS_8u_C3R",
               [](const Image& s, Image& d) { kroiRGBToHLS_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_RGB2HLS_FULL, 3, rgbC3, opaqueC3, "cvtColor(COLOR_RGB2HLS_FULL)",
                             "hue over 0..255 as ours; its own float path and rounding"))
     }},
#endif
#ifdef KROCC_HAS_kroiHLSToRGB_8u_C3R
    {"kroiHLSToRGB_8u_C3R",
     {
         krocc(opaqueC3, opaqueC3, "kroiHLSToRGB_8u_C3R",
               [](const Image& s, Image& d) { kroiHLSToRGB_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_HLS2RGB_FULL, 3, opaqueC3, opaqueC3, "cvtColor(COLOR_HLS2RGB_FULL)",
                             "hue over 0..255 as ours; its own float path and rounding"))
     }},
#endif
});
