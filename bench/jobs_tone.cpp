// Gamma and error-diffusion bit reduction. The float gamma jobs run on 0..1
// RGB floats, the power being most of the work: OpenCV's cv::pow on the same
// image is the nearest peer (a bare power, no breaks, no linear segment).
// Error diffusion has no peer here: the memcpy of the source's bytes every
// job gets is the yardstick.
#include <vector>

#include "peers.h"

#if KB_HAVE_OPENCV
#include <opencv2/core.hpp>
#endif

using namespace kb;
using namespace kb::fmt;

namespace {

constexpr Format opaqueC4{Layout::C4, Model::Opaque, "abcd"};

const Kro32f* f32(const Image& s) { return reinterpret_cast<const Kro32f*>(s.data()); }
Kro32f* f32(Image& d) { return reinterpret_cast<Kro32f*>(d.data()); }

#if KB_HAVE_OPENCV
Impl opencvPow(double e, const char* call) {
    return peer("opencv", call, rgbC3f, opaqueC3f, "a bare power, no break, no linear segment, no range",
                [e](const Image& s, Image& d) {
                    const cv::Mat in(s.height(), s.width(), CV_32FC3, const_cast<std::uint8_t*>(s.data()),
                                     static_cast<size_t>(s.step()));
                    cv::Mat out(d.height(), d.width(), CV_32FC3, d.data(), static_cast<size_t>(d.step()));
                    cv::pow(in, e, out);
                });
}
#endif

// One ReduceBits call with its work block held across runs.
template <class Call>
Run reduceRun(int channelCode, KroDitherType type, int levels, Call call) {
    return [=](const Image& s, Image& d) {
        static std::vector<Kro8u> buf;
        int size = 0;
        kroiReduceBitsGetBufferSize(channelCode, s.size(), 0, type, &size);
        if (buf.size() < static_cast<size_t>(size)) buf.resize(static_cast<size_t>(size));
        call(s, d, buf.data(), type, levels);
    };
}

}  // namespace

KB_JOBS(tone)({
#ifdef KROCC_HAS_kroiGammaFwd_32f_C3R
    {"kroiGammaFwd_32f_C3R",
     {
         krocc(rgbC3f, opaqueC3f, "kroiGammaFwd_32f_C3R (0..1)",
               [](const Image& s, Image& d) {
                   kroiGammaFwd_32f_C3R(f32(s), s.step(), f32(d), d.step(), s.size(), 0.0f, 1.0f);
               }),
         KB_OPENCV(opencvPow(0.45, "pow(x, 0.45) on CV_32FC3"))
     }},
#endif
#ifdef KROCC_HAS_kroiGammaInv_32f_C3R
    {"kroiGammaInv_32f_C3R",
     {
         krocc(rgbC3f, opaqueC3f, "kroiGammaInv_32f_C3R (0..1)",
               [](const Image& s, Image& d) {
                   kroiGammaInv_32f_C3R(f32(s), s.step(), f32(d), d.step(), s.size(), 0.0f, 1.0f);
               }),
         KB_OPENCV(opencvPow(1 / 0.45, "pow(x, 1/0.45) on CV_32FC3"))
     }},
#endif
#ifdef KROCC_HAS_kroiGammaFwd_8u_C3R
    {"kroiGammaFwd_8u_C3R",
     {
         krocc(rgbC3, opaqueC3, "kroiGammaFwd_8u_C3R",
               [](const Image& s, Image& d) { kroiGammaFwd_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
     }},
#endif
#ifdef KROCC_HAS_kroiReduceBits_8u_C3R
    {"kroiReduceBits_8u_C3R (Floyd-Steinberg)",
     {
         krocc(rgbC3, opaqueC3, "kroiReduceBits_8u_C3R (Floyd-Steinberg, 4 levels)",
               reduceRun(3, kroiDitherFloydSteinberg, 4,
                         [](const Image& s, Image& d, Kro8u* b, KroDitherType t, int l) {
                             kroiReduceBits_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size(), 0, t, l, b);
                         })),
     }},
#endif
#ifdef KROCC_HAS_kroiReduceBits_8u_AC4R
    {"kroiReduceBits_8u_AC4R (Stucki)",
     {
         krocc(rgbaC4, opaqueC4, "kroiReduceBits_8u_AC4R (Stucki, 16 levels)",
               reduceRun(9, kroiDitherStucki, 16,
                         [](const Image& s, Image& d, Kro8u* b, KroDitherType t, int l) {
                             kroiReduceBits_8u_AC4R(s.data(), s.step(), d.data(), d.step(), s.size(), 0, t, l, b);
                         })),
     }},
#endif
});
