// Bayer demosaicing beside OpenCV's edge-aware and gradient demosaics. The
// source is the picture's grey plane read as an RGGB mosaic; the outputs are
// not compared (the methods differ), only timed.
#include <vector>

#include "peers.h"

using namespace kb;
using namespace kb::fmt;

namespace {
// The caller's work rows, grown once outside the timed loop's steady state.
Kro8u* workRows(int width, int& step) {
    static std::vector<Kro8u> rows;
    step = ((width + 1) & ~1) + 6;
    if (rows.size() < size_t(step) * 30) rows.resize(size_t(step) * 30);
    return rows.data();
}
}  // namespace

KB_JOBS(ahd)({
#ifdef KROCC_HAS_kroiDemosaicAHD_8u_C1C3R
    {"kroiDemosaicAHD_8u_C1C3R",
     {
         krocc(grayC1, opaqueC3, "kroiDemosaicAHD_8u_C1C3R",
               [](const Image& s, Image& d) {
                   int step = 0;
                   Kro8u* work = workRows(s.width(), step);
                   kroiDemosaicAHD_8u_C1C3R(s.data(), {0, 0, s.width(), s.height()}, s.size(), s.step(), d.data(),
                                            d.step(), kroiBayerRGGB, work, step);
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_BayerBG2RGB_EA, 3, grayC1, opaqueC3, "cvtColor(COLOR_BayerBG2RGB_EA)",
                             "edge-aware demosaic, another method; same RGGB cell in OpenCV's naming"))
         KB_OPENCV(opencvCvt(cv::COLOR_BayerBG2RGB_VNG, 3, grayC1, opaqueC3, "cvtColor(COLOR_BayerBG2RGB_VNG)",
                             "gradient demosaic, another method; same RGGB cell in OpenCV's naming"))
     }},
#endif
});
