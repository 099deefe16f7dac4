#include "peers.h"

#include <cstdio>
#include <cstdlib>

#if KB_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#endif

#if KB_HAVE_LIBYUV
#include <libyuv.h>
#endif

#if KB_HAVE_SWSCALE
extern "C" {
#include <libavutil/cpu.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
#include <libswscale/version.h>
}
#endif

namespace kb {

namespace {
[[noreturn, maybe_unused]] void fail(const std::string& what) {
    std::fprintf(stderr, "krocc_bench: %s\n", what.c_str());
    std::exit(2);
}
}  // namespace

// ------------------------------------------------------------ OpenCV
#if KB_HAVE_OPENCV
namespace {
// The image wrapped in place as cvtColor takes it: a 4:2:0 frame is one
// single-channel matrix of 3H/2 rows (luma, then the chroma planes or pairs),
// 4:2:2 packed two channels a pixel.
cv::Mat matOf(Image& img) {
    const Format f = img.format();
    const int w = img.width(), h = img.height();
    const std::size_t step = std::size_t(img.step());
    switch (f.layout) {
        case Layout::I420: case Layout::NV: return cv::Mat(h * 3 / 2, w, CV_8UC1, img.data(), step);
        case Layout::C2: return cv::Mat(h, w, CV_8UC2, img.data(), step);
        default: break;
    }
    const int depth = f.depth == Depth::F32 ? CV_32F : f.depth == Depth::F64 ? CV_64F : CV_8U;
    return cv::Mat(h, w, CV_MAKETYPE(depth, channelsOf(f.layout)), img.data(), step);
}
}  // namespace

Impl opencvCvt(int code, int dcn, Format in, Format out, std::string call, std::string differs) {
    Impl i;
    i.lib = "opencv";
    i.call = std::move(call);
    i.differs = std::move(differs);
    i.in = in;
    i.out = out;
    i.evenSizes = subsampledOf(in.layout) || subsampledOf(out.layout);  // cvtColor refuses odd 4:2:x sizes
    i.prepare = [code, dcn](int, int) -> Run {
        return [code, dcn](const Image& s, Image& d) {
            const cv::Mat src = matOf(const_cast<Image&>(s));
            cv::Mat dst = matOf(d);
            cv::cvtColor(src, dst, code, dcn);
            // A destination of the wrong type would be reallocated and the
            // work land elsewhere: refuse to time that.
            if (dst.data != d.data()) fail("cvtColor reallocated its destination");
        };
    };
    return i;
}
#endif

// ------------------------------------------------------------ libyuv
#if KB_HAVE_LIBYUV
namespace {
constexpr int kRows = 16;  // rows per pass through the ARGB scratch
}  // namespace

Impl libyuvToI444(Format in, Format out, std::string differs) {
    Impl i;
    i.lib = "libyuv";
    const bool rgba = in.layout == Layout::C4, alpha = out.layout == Layout::P4;
    i.call = std::string(rgba ? "ABGRToARGB" : "RAWToARGB") + " + ARGBToI444" + (alpha ? " + ARGBExtractAlpha" : "") +
             ", 16 rows at a time";
    i.differs = std::move(differs);
    i.in = in;
    i.out = out;
    i.prepare = [rgba, alpha](int width, int) -> Run {
        const int argbStep = width * 4;
        auto scratch = std::make_shared<std::vector<std::uint8_t>>(std::size_t(argbStep) * kRows);
        return [rgba, alpha, scratch, argbStep](const Image& s, Image& d) {
            std::uint8_t* argb = scratch->data();
            const int w = s.width(), ss = s.step(), ds = d.step();
            for (int y = 0; y < s.height(); y += kRows) {
                const int n = std::min(kRows, s.height() - y);
                const std::uint8_t* src = s.data() + std::size_t(y) * ss;
                if (rgba)
                    libyuv::ABGRToARGB(src, ss, argb, argbStep, w, n);
                else
                    libyuv::RAWToARGB(src, ss, argb, argbStep, w, n);
                const std::size_t off = std::size_t(y) * ds;
                libyuv::ARGBToI444(argb, argbStep, d.plane(0) + off, ds, d.plane(1) + off, ds, d.plane(2) + off, ds,
                                   w, n);
                if (alpha) libyuv::ARGBExtractAlpha(argb, argbStep, d.plane(3) + off, ds, w, n);
            }
        };
    };
    return i;
}

Impl libyuvViaArgb(std::string call, Format in, Format out, std::string differs, LibyuvToArgb toArgb,
                   LibyuvFromArgb fromArgb) {
    Impl i;
    i.lib = "libyuv";
    i.call = std::move(call) + ", 16 rows at a time";
    i.differs = std::move(differs);
    i.in = in;
    i.out = out;
    i.prepare = [toArgb, fromArgb](int width, int) -> Run {
        const int argbStep = width * 4;
        auto scratch = std::make_shared<std::vector<std::uint8_t>>(std::size_t(argbStep) * kRows);
        return [toArgb, fromArgb, scratch, argbStep](const Image& s, Image& d) {
            std::uint8_t* argb = scratch->data();
            for (int y = 0; y < s.height(); y += kRows) {
                const int n = std::min(kRows, s.height() - y);
                toArgb(s.data() + std::size_t(y) * s.step(), s.step(), argb, argbStep, s.width(), n);
                fromArgb(argb, argbStep, d, y, n);
            }
        };
    };
    return i;
}

Impl libyuvFrom444(Format in, Format out, std::string differs) {
    Impl i;
    i.lib = "libyuv";
    const bool rgba = out.layout == Layout::C4, full = in.model == Model::YccFull601;
    const std::string fam = full ? "J444" : "I444";
    i.call = rgba ? fam + "ToABGR" : std::string("I444ToRGB24Matrix(V, U swapped, ") +
                                         (full ? "kYvuJPEGConstants)" : "kYvuI601Constants)");
    i.differs = std::move(differs);
    i.in = in;
    i.out = out;
    const libyuv::YuvConstants* k = full ? &libyuv::kYvuJPEGConstants : &libyuv::kYvuI601Constants;
    i.prepare = [rgba, full, k](int, int) -> Run {
        return [rgba, full, k](const Image& s, Image& d) {
            const int ss = s.step();
            if (rgba && full)
                libyuv::J444ToABGR(s.plane(0), ss, s.plane(1), ss, s.plane(2), ss, d.data(), d.step(), s.width(),
                                   s.height());
            else if (rgba)
                libyuv::I444ToABGR(s.plane(0), ss, s.plane(1), ss, s.plane(2), ss, d.data(), d.step(), s.width(),
                                   s.height());
            else  // RGB in memory order is the library's RAW: its RGB24 matrix with U and V exchanged
                libyuv::I444ToRGB24Matrix(s.plane(0), ss, s.plane(2), ss, s.plane(1), ss, d.data(), d.step(), k,
                                          s.width(), s.height());
        };
    };
    return i;
}
#endif

// ------------------------------------------------------------ swscale
#if KB_HAVE_SWSCALE
namespace {
const char* pixName(AVPixelFormat f) {
    switch (f) {
        case AV_PIX_FMT_RGB24: return "rgb24";
        case AV_PIX_FMT_RGBA: return "rgba";
        case AV_PIX_FMT_GBRP: return "gbrp";
        case AV_PIX_FMT_YUV444P: return "yuv444p";
        case AV_PIX_FMT_YUVA444P: return "yuva444p";
        case AV_PIX_FMT_BGR24: return "bgr24";
        case AV_PIX_FMT_YUV420P: return "yuv420p";
        case AV_PIX_FMT_NV12: return "nv12";
        case AV_PIX_FMT_YUYV422: return "yuyv422";
        case AV_PIX_FMT_UYVY422: return "uyvy422";
        case AV_PIX_FMT_YVYU422: return "yvyu422";
        default: return "?";
    }
}
bool isYuv(AVPixelFormat f) {
    switch (f) {
        case AV_PIX_FMT_YUV444P: case AV_PIX_FMT_YUVA444P: case AV_PIX_FMT_YUV420P: case AV_PIX_FMT_NV12:
        case AV_PIX_FMT_YUYV422: case AV_PIX_FMT_UYVY422: case AV_PIX_FMT_YVYU422: return true;
        default: return false;
    }
}
}  // namespace

Impl swscale(AVPixelFormat src, AVPixelFormat dst, bool yuvFullRange, Format in, Format out, std::string differs) {
    Impl i;
    i.lib = "swscale";
    i.call = std::string("sws_scale ") + pixName(src) + " -> " + pixName(dst) +
             (yuvFullRange ? ", full range" : ", studio range");
    i.differs = std::move(differs);
    i.in = in;
    i.out = out;
    i.prepare = [src, dst, yuvFullRange](int width, int height) -> Run {
        SwsContext* c = sws_alloc_context();
        if (!c) fail("sws_alloc_context failed");
        av_opt_set_int(c, "srcw", width, 0);
        av_opt_set_int(c, "srch", height, 0);
        av_opt_set_int(c, "src_format", src, 0);
        av_opt_set_int(c, "dstw", width, 0);
        av_opt_set_int(c, "dsth", height, 0);
        av_opt_set_int(c, "dst_format", dst, 0);
        av_opt_set_int(c, "sws_flags", SWS_POINT, 0);
        av_opt_set_int(c, "threads", 1, 0);  // one thread (where the option exists)
        if (sws_init_context(c, nullptr, nullptr) < 0) fail("sws_init_context failed");
        const int* coefs = sws_getCoefficients(SWS_CS_ITU601);
        const int srcRange = isYuv(src) ? int(yuvFullRange) : 1, dstRange = isYuv(dst) ? int(yuvFullRange) : 1;
        sws_setColorspaceDetails(c, coefs, srcRange, coefs, dstRange, 0, 1 << 16, 1 << 16);
        std::shared_ptr<SwsContext> ctx(c, [](SwsContext* p) { sws_freeContext(p); });
        return [ctx](const Image& s, Image& d) {
            const std::uint8_t* sp[4] = {};
            std::uint8_t* dp[4] = {};
            int sl[4] = {}, dl[4] = {};
            const int sn = planesOf(s.format().layout), dn = planesOf(d.format().layout);
            for (int k = 0; k < sn; ++k) sp[k] = s.plane(k), sl[k] = s.step(k);
            for (int k = 0; k < dn; ++k) dp[k] = d.plane(k), dl[k] = d.step(k);
            sws_scale(ctx.get(), sp, sl, 0, s.height(), dp, dl);
        };
    };
    return i;
}
#endif

// ------------------------------------------------------------ set-up
void peersSetUp(bool sseOnly) {
#if KB_HAVE_OPENCV
    cv::setNumThreads(1);
#endif
    if (!sseOnly) return;
#if KB_HAVE_LIBYUV
    libyuv::MaskCpuFlags(~(libyuv::kCpuHasAVX | libyuv::kCpuHasAVX2 | libyuv::kCpuHasFMA3 | libyuv::kCpuHasF16C |
                           libyuv::kCpuHasGFNI | libyuv::kCpuHasAVX512BW | libyuv::kCpuHasAVX512VL |
                           libyuv::kCpuHasAVX512VNNI | libyuv::kCpuHasAVX512VBMI | libyuv::kCpuHasAVX512VBMI2 |
                           libyuv::kCpuHasAVX512VBITALG | libyuv::kCpuHasAVX512VPOPCNTDQ));
#endif
#if KB_HAVE_SWSCALE
    av_force_cpu_flags(av_get_cpu_flags() & ~(AV_CPU_FLAG_AVX | AV_CPU_FLAG_AVXSLOW | AV_CPU_FLAG_AVX2 |
                                              AV_CPU_FLAG_FMA3 | AV_CPU_FLAG_FMA4 | AV_CPU_FLAG_XOP |
                                              AV_CPU_FLAG_AVX512 | AV_CPU_FLAG_AVX512ICL));
#endif
}

std::vector<std::pair<std::string, std::string>> peerVersions() {
    std::vector<std::pair<std::string, std::string>> v;
#if KB_HAVE_OPENCV
    v.emplace_back("opencv", std::string(cv::getVersionString()) + ", threads " + std::to_string(cv::getNumThreads()) +
                                 ", dispatch " + cv::getCPUFeaturesLine());
#endif
#if KB_HAVE_LIBYUV
    v.emplace_back("libyuv", "version " + std::to_string(LIBYUV_VERSION) + ", cpu flags 0x" + [] {
        char b[16];
        std::snprintf(b, sizeof b, "%x", unsigned(libyuv::TestCpuFlag(-1)));
        return std::string(b);
    }());
#endif
#if KB_HAVE_SWSCALE
    v.emplace_back("swscale", std::string(LIBSWSCALE_IDENT) + ", cpu flags 0x" + [] {
        char b[16];
        std::snprintf(b, sizeof b, "%x", unsigned(av_get_cpu_flags()));
        return std::string(b);
    }());
#endif
    return v;
}

}  // namespace kb
