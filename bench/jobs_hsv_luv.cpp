// HSV and CIE L*u*v* on 8-bit interleaved pixels beside OpenCV's cvtColor.
// Neither model is one the output check decodes, so both sides take the
// picture's bytes as they are (fmt::opaqueC3, as XYZ and HLS do).
#include "peers.h"

using namespace kb;
using namespace kb::fmt;

KB_JOBS(hsv_luv)({
#ifdef KROCC_HAS_kroiRGBToHSV_8u_C3R
    {"kroiRGBToHSV_8u_C3R",
     {
         krocc(rgbC3, opaqueC3, "kroiRGBToHSV_8u_C3R",
               [](const Image& s, Image& d) { kroiRGBToHSV_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_RGB2HSV_FULL, 3, rgbC3, opaqueC3, "cvtColor(COLOR_RGB2HSV_FULL)",
                             "hue over 0..255 as ours; its own fixed-point division tables"))
     }},
#endif
#ifdef KROCC_HAS_kroiHSVToRGB_8u_C3R
    {"kroiHSVToRGB_8u_C3R",
     {
         krocc(opaqueC3, opaqueC3, "kroiHSVToRGB_8u_C3R",
               [](const Image& s, Image& d) { kroiHSVToRGB_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_HSV2RGB_FULL, 3, opaqueC3, opaqueC3, "cvtColor(COLOR_HSV2RGB_FULL)",
                             "hue over 0..255 as ours; its own float path and rounding"))
     }},
#endif
#ifdef KROCC_HAS_kroiRGBToLUV_8u_C3R
    {"kroiRGBToLUV_8u_C3R",
     {
         krocc(rgbC3, opaqueC3, "kroiRGBToLUV_8u_C3R",
               [](const Image& s, Image& d) { kroiRGBToLUV_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_LRGB2Luv, 3, rgbC3, opaqueC3, "cvtColor(COLOR_LRGB2Luv)",
                             "linear R, G, B as ours; its own fixed-point tables for 8-bit samples"))
     }},
#endif
#ifdef KROCC_HAS_kroiLUVToRGB_8u_C3R
    {"kroiLUVToRGB_8u_C3R",
     {
         krocc(opaqueC3, opaqueC3, "kroiLUVToRGB_8u_C3R",
               [](const Image& s, Image& d) { kroiLUVToRGB_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_Luv2LRGB, 3, opaqueC3, opaqueC3, "cvtColor(COLOR_Luv2LRGB)",
                             "linear R, G, B as ours; its own fixed-point tables for 8-bit samples"))
     }},
#endif
});
