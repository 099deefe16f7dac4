// Entries for HLS on 32-bit float samples. The frame's images hold bytes, so
// each implementation keeps its own float rows of the job's size: the first
// call of a prepared run (the untimed check and warm-up) fills the float
// source from the picture's bytes (/ 255; an HLS source's hue x 360 for the
// peer, whose hue is in degrees) and writes the float result back to the byte
// image (x 255, clamped) so the output check sees the work; timed calls convert
// floats to floats only.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "peers.h"

using namespace kb;
using namespace kb::fmt;

namespace {

// Float rows for one size: a source of cin and a destination of cout samples a pixel.
struct FloatRows {
    int width = 0, height = 0, cin = 3, cout = 3;
    std::vector<float> src, dst;
    FloatRows(int w, int h, int ci, int co)
        : width(w), height(h), cin(ci), cout(co), src(std::size_t(w) * h * ci), dst(std::size_t(w) * h * co) {}
    int srcStep() const { return width * cin * int(sizeof(float)); }
    int dstStep() const { return width * cout * int(sizeof(float)); }

    // channel c of the byte image's pixel, / 255, scaled by hueScale on channel 0
    void fill(const Image& in, float hueScale) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (int c = 0; c < cin; ++c) {
                    const float v = c < 3 ? in.at(x, y, c) / 255.0f : 1.0f;
                    src[(std::size_t(y) * width + x) * cin + c] = c == 0 ? v * hueScale : v;
                }
    }
    void writeBack(Image& out, float hueScale) const {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (int c = 0; c < 3; ++c) {
                    float v = dst[(std::size_t(y) * width + x) * cout + c];
                    if (c == 0) v /= hueScale;
                    out.at(x, y, c) = Kro8u(std::clamp(v * 255.0f + 0.5f, 0.0f, 255.0f));
                }
    }
};

using FloatCall = void (*)(FloatRows&);

// An implementation on float rows: hueIn / hueOut scale the hue channel of the
// source and of the result (1: a hue on 0..1; 360: degrees).
Impl floatImpl(std::string lib, std::string call, std::string differs, int cin, int cout, float hueIn, float hueOut,
               FloatCall f) {
    Impl i = peer(std::move(lib), std::move(call), opaqueC3, opaqueC3, std::move(differs), nullptr);
    i.prepare = [cin, cout, hueIn, hueOut, f](int w, int h) -> Run {
        auto rows = std::make_shared<FloatRows>(w, h, cin, cout);
        auto first = std::make_shared<bool>(true);
        return [rows, first, hueIn, hueOut, f](const Image& s, Image& d) {
            if (*first) rows->fill(s, hueIn);
            f(*rows);
            if (*first) rows->writeBack(d, hueOut);
            *first = false;
        };
    };
    return i;
}

#if KB_HAVE_OPENCV
void opencvFloat(FloatRows& r, int code) {
    const cv::Mat src(r.height, r.width, CV_32FC(r.cin), r.src.data(), std::size_t(r.srcStep()));
    cv::Mat dst(r.height, r.width, CV_32FC(r.cout), r.dst.data(), std::size_t(r.dstStep()));
    cv::cvtColor(src, dst, code, r.cout);
    if (dst.data != reinterpret_cast<uchar*>(r.dst.data())) {
        std::fprintf(stderr, "krocc_bench: cvtColor reallocated its destination\n");
        std::exit(1);
    }
}
#endif

const char* const kDegrees = "hue in degrees (0..360), ours on 0..1; its own float path";
const char* const kDegreesC4 =
    "hue in degrees (0..360), ours on 0..1; its own float path; HLS side of three samples, not four";

}  // namespace

KB_JOBS(hls)({
#ifdef KROCC_HAS_kroiRGBToHLS_32f_C3R
    {"kroiRGBToHLS_32f_C3R",
     {
         floatImpl("krocc", "kroiRGBToHLS_32f_C3R", "", 3, 3, 1.0f, 1.0f,
                   [](FloatRows& r) {
                       kroiRGBToHLS_32f_C3R(r.src.data(), r.srcStep(), r.dst.data(), r.dstStep(), {r.width, r.height});
                   }),
         KB_OPENCV(floatImpl("opencv", "cvtColor(COLOR_RGB2HLS) on CV_32FC3", kDegrees, 3, 3, 1.0f, 360.0f,
                             [](FloatRows& r) { opencvFloat(r, cv::COLOR_RGB2HLS); }))
     }},
#endif
#ifdef KROCC_HAS_kroiRGBToHLS_32f_AC4R
    {"kroiRGBToHLS_32f_AC4R",
     {
         floatImpl("krocc", "kroiRGBToHLS_32f_AC4R", "", 4, 4, 1.0f, 1.0f,
                   [](FloatRows& r) {
                       kroiRGBToHLS_32f_AC4R(r.src.data(), r.srcStep(), r.dst.data(), r.dstStep(), {r.width, r.height});
                   }),
         KB_OPENCV(floatImpl("opencv", "cvtColor(COLOR_RGB2HLS) from CV_32FC4 to CV_32FC3", kDegreesC4, 4, 3,
                             1.0f, 360.0f, [](FloatRows& r) { opencvFloat(r, cv::COLOR_RGB2HLS); }))
     }},
#endif
#ifdef KROCC_HAS_kroiHLSToRGB_32f_C3R
    {"kroiHLSToRGB_32f_C3R",
     {
         floatImpl("krocc", "kroiHLSToRGB_32f_C3R", "", 3, 3, 1.0f, 1.0f,
                   [](FloatRows& r) {
                       kroiHLSToRGB_32f_C3R(r.src.data(), r.srcStep(), r.dst.data(), r.dstStep(), {r.width, r.height});
                   }),
         KB_OPENCV(floatImpl("opencv", "cvtColor(COLOR_HLS2RGB) on CV_32FC3", kDegrees, 3, 3, 360.0f, 1.0f,
                             [](FloatRows& r) { opencvFloat(r, cv::COLOR_HLS2RGB); }))
     }},
#endif
#ifdef KROCC_HAS_kroiHLSToRGB_32f_AC4R
    {"kroiHLSToRGB_32f_AC4R",
     {
         floatImpl("krocc", "kroiHLSToRGB_32f_AC4R", "", 4, 4, 1.0f, 1.0f,
                   [](FloatRows& r) {
                       kroiHLSToRGB_32f_AC4R(r.src.data(), r.srcStep(), r.dst.data(), r.dstStep(), {r.width, r.height});
                   }),
         KB_OPENCV(floatImpl("opencv", "cvtColor(COLOR_HLS2RGB, 4) from CV_32FC3 to CV_32FC4", kDegreesC4, 3, 4, 360.0f, 1.0f,
                             [](FloatRows& r) { opencvFloat(r, cv::COLOR_HLS2RGB); }))
     }},
#endif
});
