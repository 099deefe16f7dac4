// Float images (0..1): XYZ and grey in 32-bit floats, grey in doubles. Few
// peers take these; the memcpy of the source's bytes every job gets is the
// yardstick that matters here (4 or 8 bytes a sample: bandwidth, not
// arithmetic, sets the pace at 3840x2160).
#include "peers.h"

using namespace kb;
using namespace kb::fmt;

namespace {

const Kro32f* f32(const Image& s) { return reinterpret_cast<const Kro32f*>(s.data()); }
Kro32f* f32(Image& d) { return reinterpret_cast<Kro32f*>(d.data()); }
const Kro64f* f64(const Image& s) { return reinterpret_cast<const Kro64f*>(s.data()); }
Kro64f* f64(Image& d) { return reinterpret_cast<Kro64f*>(d.data()); }

}  // namespace

KB_JOBS(float)({
#ifdef KROCC_HAS_kroiRGBToXYZ_32f_C3R
    {"kroiRGBToXYZ_32f_C3R",
     {
         krocc(opaqueC3f, opaqueC3f, "kroiRGBToXYZ_32f_C3R",
               [](const Image& s, Image& d) { kroiRGBToXYZ_32f_C3R(f32(s), s.step(), f32(d), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_RGB2XYZ, 3, opaqueC3f, opaqueC3f, "cvtColor(COLOR_RGB2XYZ) on CV_32FC3",
                             "same matrix (BT.709 primaries, D65), its own float path"))
     }},
#endif
#ifdef KROCC_HAS_kroiXYZToRGB_32f_C3R
    {"kroiXYZToRGB_32f_C3R",
     {
         krocc(opaqueC3f, opaqueC3f, "kroiXYZToRGB_32f_C3R",
               [](const Image& s, Image& d) { kroiXYZToRGB_32f_C3R(f32(s), s.step(), f32(d), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_XYZ2RGB, 3, opaqueC3f, opaqueC3f, "cvtColor(COLOR_XYZ2RGB) on CV_32FC3",
                             "same inverse matrix to a few digits, its own float path"))
     }},
#endif
#ifdef KROCC_HAS_kroiRGBToGray_32f_C3C1R
    {"kroiRGBToGray_32f_C3C1R",
     {
         krocc(rgbC3f, grayC1f, "kroiRGBToGray_32f_C3C1R",
               [](const Image& s, Image& d) {
                   kroiRGBToGray_32f_C3C1R(f32(s), s.step(), f32(d), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_RGB2GRAY, 1, rgbC3f, grayC1f, "cvtColor(COLOR_RGB2GRAY) on CV_32FC3",
                             "same weights, its own float path"))
     }},
#endif
#ifdef KROCC_HAS_kroiColorToGray_64f_C3C1R
    {"kroiColorToGray_64f_C3C1R",
     {
         krocc(rgbC3d, grayC1d, "kroiColorToGray_64f_C3C1R (0.299, 0.587, 0.114)",
               [](const Image& s, Image& d) {
                   static const Kro64f k[3] = {0.299, 0.587, 0.114};
                   kroiColorToGray_64f_C3C1R(f64(s), s.step(), f64(d), d.step(), s.size(), k);
               }),
     }},
#endif
});
