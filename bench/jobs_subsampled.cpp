// Subsampled formats, BT.601 studio range: RGB and BGR to 4:2:0 planes, luma
// plus chroma pairs and packed 4:2:2, and back. Per entry, krocc's call first,
// then the peers' closest jobs and how each differs from ours. Figures are per
// pixel, whatever each side writes for it.
#include "peers.h"

using namespace kb;
using namespace kb::fmt;

namespace {

// What the peers' jobs of this family have in common.
[[maybe_unused]] const char* const kEncYuv =
    "same model, range and layout; averages the 2 x 2 block in its own fixed point";
[[maybe_unused]] const char* const kEncCv =
    "same model, range and layout; chroma from the block's top-left pixel alone, not the block's mean";
[[maybe_unused]] const char* const kEncSws =
    "same model and range; nearest-neighbour filter: chroma from one pixel of the block, not the block's mean";
[[maybe_unused]] const char* const kDecSame = "same model, range and layout; its own fixed point";
[[maybe_unused]] const char* const kArgbOut =
    "same model and range; writes 4 bytes a pixel in B, G, R, A order (alpha 255), no 3-byte output from this "
    "format";

[[maybe_unused]] std::string also(const char* common, const char* more) { return std::string(common) + "; " + more; }

#if KB_HAVE_LIBYUV
// The 4:2:0 destinations as libyuv's calls take them.
void argbToNv12(const std::uint8_t* argb, int argbStep, Image& d, int y, int rows) {
    libyuv::ARGBToNV12(argb, argbStep, d.plane(0) + std::size_t(y) * d.step(0), d.step(0),
                       d.plane(1) + std::size_t(y / 2) * d.step(1), d.step(1), d.width(), rows);
}
void argbToYuy2(const std::uint8_t* argb, int argbStep, Image& d, int y, int rows) {
    libyuv::ARGBToYUY2(argb, argbStep, d.data() + std::size_t(y) * d.step(), d.step(), d.width(), rows);
}
void argbToUyvy(const std::uint8_t* argb, int argbStep, Image& d, int y, int rows) {
    libyuv::ARGBToUYVY(argb, argbStep, d.data() + std::size_t(y) * d.step(), d.step(), d.width(), rows);
}
#endif

}  // namespace

KB_JOBS(subsampled)({
// ------------------------------------------------------------ encoders, 4:2:0
#ifdef KROCC_HAS_kroiRGBToYCbCr420_8u_C3P3R
    {"kroiRGBToYCbCr420_8u_C3P3R",
     {
         krocc(rgbC3, i420, "kroiRGBToYCbCr420_8u_C3P3R",
               [](const Image& s, Image& d) {
                   kroiRGBToYCbCr420_8u_C3P3R(s.data(), s.step(), d.planes(), d.steps(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_RGB2YUV_I420, 0, rgbC3, i420, "cvtColor(COLOR_RGB2YUV_I420)", kEncCv))
         KB_LIBYUV(peer("libyuv", "RAWToI420 (its RAW is R, G, B in memory)", rgbC3, i420, kEncYuv,
                        [](const Image& s, Image& d) {
                            libyuv::RAWToI420(s.data(), s.step(), d.plane(0), d.step(0), d.plane(1), d.step(1),
                                              d.plane(2), d.step(2), s.width(), s.height());
                        }))
         KB_SWSCALE(swscale(AV_PIX_FMT_RGB24, AV_PIX_FMT_YUV420P, false, rgbC3, i420, kEncSws))
     }},
#endif
#ifdef KROCC_HAS_kroiBGRToYCbCr420_8u_C3P3R
    {"kroiBGRToYCbCr420_8u_C3P3R",
     {
         krocc(bgrC3, i420, "kroiBGRToYCbCr420_8u_C3P3R",
               [](const Image& s, Image& d) {
                   kroiBGRToYCbCr420_8u_C3P3R(s.data(), s.step(), d.planes(), d.steps(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_BGR2YUV_I420, 0, bgrC3, i420, "cvtColor(COLOR_BGR2YUV_I420)", kEncCv))
         KB_LIBYUV(peer("libyuv", "RGB24ToI420 (its RGB24 is B, G, R in memory)", bgrC3, i420, kEncYuv,
                        [](const Image& s, Image& d) {
                            libyuv::RGB24ToI420(s.data(), s.step(), d.plane(0), d.step(0), d.plane(1), d.step(1),
                                                d.plane(2), d.step(2), s.width(), s.height());
                        }))
     }},
#endif
#ifdef KROCC_HAS_kroiRGBToYCbCr420_8u_C3P2R
    {"kroiRGBToYCbCr420_8u_C3P2R",
     {
         krocc(rgbC3, nv12, "kroiRGBToYCbCr420_8u_C3P2R",
               [](const Image& s, Image& d) {
                   kroiRGBToYCbCr420_8u_C3P2R(s.data(), s.step(), d.plane(0), d.step(0), d.plane(1), d.step(1),
                                              s.size());
               }),
         KB_LIBYUV(libyuvViaArgb("RAWToARGB + ARGBToNV12", rgbC3, nv12,
                                 also(kEncYuv, "no packed-RGB to NV12 call: two passes through its ARGB order "
                                               "(as fast as RAWToI420 + MergeUVPlane)"),
                                 libyuv::RAWToARGB, argbToNv12))
         KB_SWSCALE(swscale(AV_PIX_FMT_RGB24, AV_PIX_FMT_NV12, false, rgbC3, nv12, kEncSws))
     }},
#endif
// ------------------------------------------------------------ encoders, 4:2:2 packed
#ifdef KROCC_HAS_kroiRGBToYCbCr422_8u_C3C2R
    {"kroiRGBToYCbCr422_8u_C3C2R",
     {
         krocc(rgbC3, yuy2, "kroiRGBToYCbCr422_8u_C3C2R",
               [](const Image& s, Image& d) {
                   kroiRGBToYCbCr422_8u_C3C2R(s.data(), s.step(), d.data(), d.step(), s.size());
               }),
         KB_LIBYUV(libyuvViaArgb("RAWToARGB + ARGBToYUY2", rgbC3, yuy2,
                                 "same model, range and layout; averages the pair in its own fixed point; no "
                                 "packed-RGB to YUY2 call: two passes through its ARGB order",
                                 libyuv::RAWToARGB, argbToYuy2))
         KB_SWSCALE(swscale(AV_PIX_FMT_RGB24, AV_PIX_FMT_YUYV422, false, rgbC3, yuy2,
                            "same model and range; nearest-neighbour filter: chroma from one pixel of the pair"))
     }},
#endif
#ifdef KROCC_HAS_kroiBGRToYCbCr422_8u_C3C2R
    {"kroiBGRToYCbCr422_8u_C3C2R",
     {
         krocc(bgrC3, yuy2, "kroiBGRToYCbCr422_8u_C3C2R",
               [](const Image& s, Image& d) {
                   kroiBGRToYCbCr422_8u_C3C2R(s.data(), s.step(), d.data(), d.step(), s.size());
               }),
         KB_LIBYUV(libyuvViaArgb("RGB24ToARGB + ARGBToYUY2", bgrC3, yuy2,
                                 "same model, range and layout; averages the pair in its own fixed point; no "
                                 "packed-BGR to YUY2 call: two passes through its ARGB order",
                                 libyuv::RGB24ToARGB, argbToYuy2))
         KB_SWSCALE(swscale(AV_PIX_FMT_BGR24, AV_PIX_FMT_YUYV422, false, bgrC3, yuy2,
                            "same model and range; nearest-neighbour filter: chroma from one pixel of the pair"))
     }},
#endif
#ifdef KROCC_HAS_kroiRGBToCbYCr422_8u_C3C2R
    {"kroiRGBToCbYCr422_8u_C3C2R",
     {
         krocc(rgbC3, uyvy, "kroiRGBToCbYCr422_8u_C3C2R",
               [](const Image& s, Image& d) {
                   kroiRGBToCbYCr422_8u_C3C2R(s.data(), s.step(), d.data(), d.step(), s.size());
               }),
         KB_LIBYUV(libyuvViaArgb("RAWToARGB + ARGBToUYVY", rgbC3, uyvy,
                                 "same model, range and layout; chroma the pair's mean, where krocc filters across "
                                 "pairs; no packed-RGB to UYVY call: two passes through its ARGB order",
                                 libyuv::RAWToARGB, argbToUyvy))
         KB_SWSCALE(swscale(AV_PIX_FMT_RGB24, AV_PIX_FMT_UYVY422, false, rgbC3, uyvy,
                            "same model and range; nearest-neighbour filter: chroma from one pixel, where krocc "
                            "filters across pairs"))
     }},
#endif
// ------------------------------------------------------------ decoders, 4:2:0
#ifdef KROCC_HAS_kroiYCbCr420ToRGB_8u_P3C3R
    {"kroiYCbCr420ToRGB_8u_P3C3R",
     {
         krocc(i420, rgbC3, "kroiYCbCr420ToRGB_8u_P3C3R",
               [](const Image& s, Image& d) {
                   kroiYCbCr420ToRGB_8u_P3C3R(s.cplanes(), s.steps(), d.data(), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2RGB_I420, 0, i420, rgbC3, "cvtColor(COLOR_YUV2RGB_I420)", kDecSame))
         KB_LIBYUV(peer("libyuv", "I420ToRAW (its RAW is R, G, B in memory)", i420, rgbC3, kDecSame,
                        [](const Image& s, Image& d) {
                            libyuv::I420ToRAW(s.plane(0), s.step(0), s.plane(1), s.step(1), s.plane(2), s.step(2),
                                              d.data(), d.step(), s.width(), s.height());
                        }))
         KB_SWSCALE(swscale(AV_PIX_FMT_YUV420P, AV_PIX_FMT_RGB24, false, i420, rgbC3, kDecSame))
     }},
#endif
#ifdef KROCC_HAS_kroiYCbCr420ToBGR_8u_P3C3R
    {"kroiYCbCr420ToBGR_8u_P3C3R",
     {
         krocc(i420, bgrC3, "kroiYCbCr420ToBGR_8u_P3C3R",
               [](const Image& s, Image& d) {
                   kroiYCbCr420ToBGR_8u_P3C3R(s.cplanes(), s.steps(), d.data(), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2BGR_I420, 0, i420, bgrC3, "cvtColor(COLOR_YUV2BGR_I420)", kDecSame))
         KB_LIBYUV(peer("libyuv", "I420ToRGB24 (its RGB24 is B, G, R in memory)", i420, bgrC3, kDecSame,
                        [](const Image& s, Image& d) {
                            libyuv::I420ToRGB24(s.plane(0), s.step(0), s.plane(1), s.step(1), s.plane(2), s.step(2),
                                                d.data(), d.step(), s.width(), s.height());
                        }))
     }},
#endif
#ifdef KROCC_HAS_kroiYCbCr420ToBGR_8u_P3C4R
    {"kroiYCbCr420ToBGR_8u_P3C4R",
     {
         krocc(i420, bgraC4, "kroiYCbCr420ToBGR_8u_P3C4R",
               [](const Image& s, Image& d) {
                   kroiYCbCr420ToBGR_8u_P3C4R(s.cplanes(), s.steps(), d.data(), d.step(), s.size(), 255);
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2BGRA_I420, 0, i420, bgraC4, "cvtColor(COLOR_YUV2BGRA_I420)", kDecSame))
         KB_LIBYUV(peer("libyuv", "I420ToARGB (its ARGB is B, G, R, A in memory)", i420, bgraC4, kDecSame,
                        [](const Image& s, Image& d) {
                            libyuv::I420ToARGB(s.plane(0), s.step(0), s.plane(1), s.step(1), s.plane(2), s.step(2),
                                               d.data(), d.step(), s.width(), s.height());
                        }))
     }},
#endif
#ifdef KROCC_HAS_kroiYCbCr420ToRGB_8u_P2C3R
    {"kroiYCbCr420ToRGB_8u_P2C3R",
     {
         krocc(nv12, rgbC3, "kroiYCbCr420ToRGB_8u_P2C3R",
               [](const Image& s, Image& d) {
                   kroiYCbCr420ToRGB_8u_P2C3R(s.plane(0), s.step(0), s.plane(1), s.step(1), d.data(), d.step(),
                                              s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2RGB_NV12, 0, nv12, rgbC3, "cvtColor(COLOR_YUV2RGB_NV12)", kDecSame))
         KB_LIBYUV(peer("libyuv", "NV12ToRAW (its RAW is R, G, B in memory)", nv12, rgbC3, kDecSame,
                        [](const Image& s, Image& d) {
                            libyuv::NV12ToRAW(s.plane(0), s.step(0), s.plane(1), s.step(1), d.data(), d.step(),
                                              s.width(), s.height());
                        }))
         KB_SWSCALE(swscale(AV_PIX_FMT_NV12, AV_PIX_FMT_RGB24, false, nv12, rgbC3, kDecSame))
     }},
#endif
#ifdef KROCC_HAS_kroiYCbCr420ToBGR_8u_P2C3R
    {"kroiYCbCr420ToBGR_8u_P2C3R",
     {
         krocc(nv12, bgrC3, "kroiYCbCr420ToBGR_8u_P2C3R",
               [](const Image& s, Image& d) {
                   kroiYCbCr420ToBGR_8u_P2C3R(s.plane(0), s.step(0), s.plane(1), s.step(1), d.data(), d.step(),
                                              s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2BGR_NV12, 0, nv12, bgrC3, "cvtColor(COLOR_YUV2BGR_NV12)", kDecSame))
         KB_LIBYUV(peer("libyuv", "NV12ToRGB24 (its RGB24 is B, G, R in memory)", nv12, bgrC3, kDecSame,
                        [](const Image& s, Image& d) {
                            libyuv::NV12ToRGB24(s.plane(0), s.step(0), s.plane(1), s.step(1), d.data(), d.step(),
                                                s.width(), s.height());
                        }))
     }},
#endif
#ifdef KROCC_HAS_kroiYCbCr420ToRGB_8u_P2C4R
    {"kroiYCbCr420ToRGB_8u_P2C4R",
     {
         krocc(nv12, rgbaC4, "kroiYCbCr420ToRGB_8u_P2C4R",
               [](const Image& s, Image& d) {
                   kroiYCbCr420ToRGB_8u_P2C4R(s.plane(0), s.step(0), s.plane(1), s.step(1), d.data(), d.step(),
                                              s.size(), 255);
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2RGBA_NV12, 0, nv12, rgbaC4, "cvtColor(COLOR_YUV2RGBA_NV12)", kDecSame))
         KB_LIBYUV(peer("libyuv", "NV12ToABGR (its ABGR is R, G, B, A in memory)", nv12, rgbaC4, kDecSame,
                        [](const Image& s, Image& d) {
                            libyuv::NV12ToABGR(s.plane(0), s.step(0), s.plane(1), s.step(1), d.data(), d.step(),
                                               s.width(), s.height());
                        }))
     }},
#endif
#ifdef KROCC_HAS_kroiYCbCr420ToBGR_8u_P2C4R
    {"kroiYCbCr420ToBGR_8u_P2C4R",
     {
         krocc(nv12, bgraC4, "kroiYCbCr420ToBGR_8u_P2C4R",
               [](const Image& s, Image& d) {
                   kroiYCbCr420ToBGR_8u_P2C4R(s.plane(0), s.step(0), s.plane(1), s.step(1), d.data(), d.step(),
                                              s.size(), 255);
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2BGRA_NV12, 0, nv12, bgraC4, "cvtColor(COLOR_YUV2BGRA_NV12)", kDecSame))
         KB_LIBYUV(peer("libyuv", "NV12ToARGB (its ARGB is B, G, R, A in memory)", nv12, bgraC4, kDecSame,
                        [](const Image& s, Image& d) {
                            libyuv::NV12ToARGB(s.plane(0), s.step(0), s.plane(1), s.step(1), d.data(), d.step(),
                                               s.width(), s.height());
                        }))
     }},
#endif
// ------------------------------------------------------------ decoders, 4:2:2 packed
#ifdef KROCC_HAS_kroiYCbCr422ToRGB_8u_C2C3R
    {"kroiYCbCr422ToRGB_8u_C2C3R",
     {
         krocc(yuy2, rgbC3, "kroiYCbCr422ToRGB_8u_C2C3R",
               [](const Image& s, Image& d) {
                   kroiYCbCr422ToRGB_8u_C2C3R(s.data(), s.step(), d.data(), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2RGB_YUY2, 0, yuy2, rgbC3, "cvtColor(COLOR_YUV2RGB_YUY2)", kDecSame))
         KB_LIBYUV(peer("libyuv", "YUY2ToARGB", yuy2, bgraC4, kArgbOut,
                        [](const Image& s, Image& d) {
                            libyuv::YUY2ToARGB(s.data(), s.step(), d.data(), d.step(), s.width(), s.height());
                        }))
         KB_SWSCALE(swscale(AV_PIX_FMT_YUYV422, AV_PIX_FMT_RGB24, false, yuy2, rgbC3, kDecSame))
     }},
#endif
#ifdef KROCC_HAS_kroiYCbCr422ToBGR_8u_C2C3R
    {"kroiYCbCr422ToBGR_8u_C2C3R",
     {
         krocc(yuy2, bgrC3, "kroiYCbCr422ToBGR_8u_C2C3R",
               [](const Image& s, Image& d) {
                   kroiYCbCr422ToBGR_8u_C2C3R(s.data(), s.step(), d.data(), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2BGR_YUY2, 0, yuy2, bgrC3, "cvtColor(COLOR_YUV2BGR_YUY2)", kDecSame))
         KB_LIBYUV(peer("libyuv", "YUY2ToARGB", yuy2, bgraC4, kArgbOut,
                        [](const Image& s, Image& d) {
                            libyuv::YUY2ToARGB(s.data(), s.step(), d.data(), d.step(), s.width(), s.height());
                        }))
     }},
#endif
#ifdef KROCC_HAS_kroiYCbCr422ToRGB_8u_C2C4R
    {"kroiYCbCr422ToRGB_8u_C2C4R",
     {
         krocc(yuy2, rgbaC4, "kroiYCbCr422ToRGB_8u_C2C4R",
               [](const Image& s, Image& d) {
                   kroiYCbCr422ToRGB_8u_C2C4R(s.data(), s.step(), d.data(), d.step(), s.size(), 255);
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2RGBA_YUY2, 0, yuy2, rgbaC4, "cvtColor(COLOR_YUV2RGBA_YUY2)", kDecSame))
         KB_LIBYUV(peer("libyuv", "YUY2ToARGB", yuy2, bgraC4,
                        "same model and range; its own fixed point; B, G, R, A order (no YUY2 to R, G, B, A call)",
                        [](const Image& s, Image& d) {
                            libyuv::YUY2ToARGB(s.data(), s.step(), d.data(), d.step(), s.width(), s.height());
                        }))
     }},
#endif
#ifdef KROCC_HAS_kroiYCbCr422ToBGR_8u_C2C4R
    {"kroiYCbCr422ToBGR_8u_C2C4R",
     {
         krocc(yuy2, bgraC4, "kroiYCbCr422ToBGR_8u_C2C4R",
               [](const Image& s, Image& d) {
                   kroiYCbCr422ToBGR_8u_C2C4R(s.data(), s.step(), d.data(), d.step(), s.size(), 255);
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2BGRA_YUY2, 0, yuy2, bgraC4, "cvtColor(COLOR_YUV2BGRA_YUY2)", kDecSame))
         KB_LIBYUV(peer("libyuv", "YUY2ToARGB (its ARGB is B, G, R, A in memory)", yuy2, bgraC4, kDecSame,
                        [](const Image& s, Image& d) {
                            libyuv::YUY2ToARGB(s.data(), s.step(), d.data(), d.step(), s.width(), s.height());
                        }))
     }},
#endif
#ifdef KROCC_HAS_kroiCbYCr422ToRGB_8u_C2C3R
    {"kroiCbYCr422ToRGB_8u_C2C3R",
     {
         krocc(uyvy, rgbC3, "kroiCbYCr422ToRGB_8u_C2C3R",
               [](const Image& s, Image& d) {
                   kroiCbYCr422ToRGB_8u_C2C3R(s.data(), s.step(), d.data(), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2RGB_UYVY, 0, uyvy, rgbC3, "cvtColor(COLOR_YUV2RGB_UYVY)", kDecSame))
         KB_LIBYUV(peer("libyuv", "UYVYToARGB", uyvy, bgraC4, kArgbOut,
                        [](const Image& s, Image& d) {
                            libyuv::UYVYToARGB(s.data(), s.step(), d.data(), d.step(), s.width(), s.height());
                        }))
         KB_SWSCALE(swscale(AV_PIX_FMT_UYVY422, AV_PIX_FMT_RGB24, false, uyvy, rgbC3, kDecSame))
     }},
#endif
#ifdef KROCC_HAS_kroiCbYCr422ToBGR_8u_C2C4R
    {"kroiCbYCr422ToBGR_8u_C2C4R",
     {
         krocc(uyvy, bgraC4, "kroiCbYCr422ToBGR_8u_C2C4R",
               [](const Image& s, Image& d) {
                   kroiCbYCr422ToBGR_8u_C2C4R(s.data(), s.step(), d.data(), d.step(), s.size(), 255);
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2BGRA_UYVY, 0, uyvy, bgraC4, "cvtColor(COLOR_YUV2BGRA_UYVY)", kDecSame))
         KB_LIBYUV(peer("libyuv", "UYVYToARGB (its ARGB is B, G, R, A in memory)", uyvy, bgraC4, kDecSame,
                        [](const Image& s, Image& d) {
                            libyuv::UYVYToARGB(s.data(), s.step(), d.data(), d.step(), s.width(), s.height());
                        }))
     }},
#endif
#ifdef KROCC_HAS_kroiYCrCb422ToRGB_8u_C2C3R
    {"kroiYCrCb422ToRGB_8u_C2C3R",
     {
         krocc(yvyu, rgbC3, "kroiYCrCb422ToRGB_8u_C2C3R",
               [](const Image& s, Image& d) {
                   kroiYCrCb422ToRGB_8u_C2C3R(s.data(), s.step(), d.data(), d.step(), s.size());
               }),
         KB_OPENCV(opencvCvt(cv::COLOR_YUV2RGB_YVYU, 0, yvyu, rgbC3, "cvtColor(COLOR_YUV2RGB_YVYU)", kDecSame))
         KB_SWSCALE(swscale(AV_PIX_FMT_YVYU422, AV_PIX_FMT_RGB24, false, yvyu, rgbC3, kDecSame))
     }},
#endif
});
