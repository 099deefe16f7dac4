// RGB <-> CIE L*a*b*: the 8-bit and float interleaved operations beside
// OpenCV's linear-light conversions (COLOR_LRGB2Lab, COLOR_Lab2LRGB and their
// BGR twins), which take R, G, B as linear like ours: the same job.
//
// Lab is a model the output check cannot decode, so both sides use
// fmt::opaqueC3 as XYZ and HLS do: the picture's bytes go in as they are
// (read as L8, a8, b8 by the inverse operations).
//
// The frame's images hold 8-bit samples; the float jobs keep their own float
// buffers of the same size, made from the picture's bytes on the first call
// (RGB / 255; L = byte x 100 / 255, a and b = byte - 128). The first call also
// writes the result back into the 8-bit destination, rounded, so the output
// check sees that something was written. Every later (timed) call converts
// float to float and nothing else. The memcpy column of these jobs copies the
// 8-bit source, a quarter of the bytes a float job reads.
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "peers.h"

using namespace kb;
using namespace kb::fmt;

namespace {

[[maybe_unused]] const char* const kCvLab8 =
    "same job (linear R, G, B, D65); its own fixed-point tables and interpolation for 8-bit samples";
[[maybe_unused]] const char* const kCvLabF = "same job (linear R, G, B, D65); its own float cube root";

// What the float samples of a job stand for.
enum class FloatSide { Rgb, Lab };

// Float buffers of one job at one size: the source made once from the
// picture's bytes, the destination written by every call.
struct FloatImages {
    int width = 0, height = 0;
    std::vector<float> src, dst;
    bool ready = false;
    int step() const { return width * 3 * int(sizeof(float)); }

    void make(const Image& s, FloatSide side) {
        width = s.width();
        height = s.height();
        src.resize(std::size_t(width) * height * 3);
        dst.assign(src.size(), 0.0f);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (int c = 0; c < 3; ++c) {
                    const float v = s.at(x, y, c);
                    float& f = src[(std::size_t(y) * width + x) * 3 + c];
                    if (side == FloatSide::Rgb)
                        f = v / 255.0f;
                    else
                        f = c == 0 ? v * 100.0f / 255.0f : v - 128.0f;
                }
        ready = true;
    }
    // The float result, rounded into the 8-bit destination.
    void writeBack(Image& d, FloatSide side) const {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (int c = 0; c < 3; ++c) {
                    const float f = dst[(std::size_t(y) * width + x) * 3 + c];
                    const float v = side == FloatSide::Rgb ? f * 255.0f : (c == 0 ? f * 2.55f : f + 128.0f);
                    d.at(x, y, c) = Kro8u(std::clamp(std::lround(v), 0L, 255L));
                }
    }
};

// A float job: op(src, srcStep, dst, dstStep, width, height) on float buffers.
using FloatRun = std::function<void(const float* s, int sStep, float* d, int dStep, int w, int h)>;

Impl floatImpl(std::string lib, std::string call, std::string differs, FloatSide in, FloatSide out, FloatRun op) {
    Impl i;
    i.lib = std::move(lib);
    i.call = std::move(call);
    i.differs = std::move(differs);
    i.in = opaqueC3;
    i.out = opaqueC3;
    i.prepare = [in, out, op](int, int) -> Run {
        auto f = std::make_shared<FloatImages>();
        return [f, in, out, op](const Image& s, Image& d) {
            const bool first = !f->ready;
            if (first) f->make(s, in);
            op(f->src.data(), f->step(), f->dst.data(), f->step(), f->width, f->height);
            if (first) f->writeBack(d, out);
        };
    };
    return i;
}

using KroF = KroStatus (*)(const Kro32f*, int, Kro32f*, int, kroiSize);
[[maybe_unused]] Impl kroccF(const char* name, KroF fn, FloatSide in, FloatSide out) {
    return floatImpl("krocc", name, "", in, out,
                     [fn](const float* s, int ss, float* d, int ds, int w, int h) { fn(s, ss, d, ds, {w, h}); });
}

#if KB_HAVE_OPENCV
[[maybe_unused]] Impl opencvF(int code, std::string call, FloatSide in, FloatSide out) {
    return floatImpl("opencv", std::move(call), kCvLabF, in, out,
                     [code](const float* s, int ss, float* d, int ds, int w, int h) {
                         const cv::Mat src(h, w, CV_32FC3, const_cast<float*>(s), std::size_t(ss));
                         cv::Mat dst(h, w, CV_32FC3, d, std::size_t(ds));
                         cv::cvtColor(src, dst, code, 3);
                         if (dst.data != reinterpret_cast<uchar*>(d)) std::abort();  // must not reallocate
                     });
}
#endif

}  // namespace

KB_JOBS(lab)({
#ifdef KROCC_HAS_kroiRGBToLab_8u_C3R
    {"kroiRGBToLab_8u_C3R",
     {
         krocc(rgbC3, opaqueC3, "kroiRGBToLab_8u_C3R",
               [](const Image& s, Image& d) { kroiRGBToLab_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_LRGB2Lab, 3, rgbC3, opaqueC3, "cvtColor(COLOR_LRGB2Lab)", kCvLab8))
     }},
#endif
#ifdef KROCC_HAS_kroiBGRToLab_8u_C3R
    {"kroiBGRToLab_8u_C3R",
     {
         krocc(rgbC3, opaqueC3, "kroiBGRToLab_8u_C3R",
               [](const Image& s, Image& d) { kroiBGRToLab_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_LBGR2Lab, 3, rgbC3, opaqueC3, "cvtColor(COLOR_LBGR2Lab)", kCvLab8))
     }},
#endif
#ifdef KROCC_HAS_kroiLabToRGB_8u_C3R
    {"kroiLabToRGB_8u_C3R",
     {
         krocc(opaqueC3, opaqueC3, "kroiLabToRGB_8u_C3R",
               [](const Image& s, Image& d) { kroiLabToRGB_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_Lab2LRGB, 3, opaqueC3, opaqueC3, "cvtColor(COLOR_Lab2LRGB)", kCvLab8))
     }},
#endif
#ifdef KROCC_HAS_kroiLabToBGR_8u_C3R
    {"kroiLabToBGR_8u_C3R",
     {
         krocc(opaqueC3, opaqueC3, "kroiLabToBGR_8u_C3R",
               [](const Image& s, Image& d) { kroiLabToBGR_8u_C3R(s.data(), s.step(), d.data(), d.step(), s.size()); }),
         KB_OPENCV(opencvCvt(cv::COLOR_Lab2LBGR, 3, opaqueC3, opaqueC3, "cvtColor(COLOR_Lab2LBGR)", kCvLab8))
     }},
#endif
#ifdef KROCC_HAS_kroiRGBToLab_32f_C3R
    {"kroiRGBToLab_32f_C3R",
     {
         kroccF("kroiRGBToLab_32f_C3R", kroiRGBToLab_32f_C3R, FloatSide::Rgb, FloatSide::Lab),
         KB_OPENCV(opencvF(cv::COLOR_LRGB2Lab, "cvtColor(COLOR_LRGB2Lab) on CV_32FC3", FloatSide::Rgb,
                           FloatSide::Lab))
     }},
#endif
#ifdef KROCC_HAS_kroiBGRToLab_32f_C3R
    {"kroiBGRToLab_32f_C3R",
     {
         kroccF("kroiBGRToLab_32f_C3R", kroiBGRToLab_32f_C3R, FloatSide::Rgb, FloatSide::Lab),
         KB_OPENCV(opencvF(cv::COLOR_LBGR2Lab, "cvtColor(COLOR_LBGR2Lab) on CV_32FC3", FloatSide::Rgb,
                           FloatSide::Lab))
     }},
#endif
#ifdef KROCC_HAS_kroiLabToRGB_32f_C3R
    {"kroiLabToRGB_32f_C3R",
     {
         kroccF("kroiLabToRGB_32f_C3R", kroiLabToRGB_32f_C3R, FloatSide::Lab, FloatSide::Rgb),
         KB_OPENCV(opencvF(cv::COLOR_Lab2LRGB, "cvtColor(COLOR_Lab2LRGB) on CV_32FC3", FloatSide::Lab,
                           FloatSide::Rgb))
     }},
#endif
#ifdef KROCC_HAS_kroiLabToBGR_32f_C3R
    {"kroiLabToBGR_32f_C3R",
     {
         kroccF("kroiLabToBGR_32f_C3R", kroiLabToBGR_32f_C3R, FloatSide::Lab, FloatSide::Rgb),
         KB_OPENCV(opencvF(cv::COLOR_Lab2LBGR, "cvtColor(COLOR_Lab2LBGR) on CV_32FC3", FloatSide::Lab,
                           FloatSide::Rgb))
     }},
#endif
});
