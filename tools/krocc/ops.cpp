#include "ops.h"

#include <array>
#include <cstring>

namespace kt {

const std::vector<Model>& models() {
    static const std::vector<Model> table = {
        {"analog", "YUV of analogue video: Y = 0.299 R + 0.587 G + 0.114 B, U = 0.492 (B - Y), "
                   "V = 0.877 (R - Y), full range, chroma centred on 128"},
        {"bt601", "YCbCr of BT.601, studio range: Y 16..235, Cb and Cr 16..240 centred on 128"},
        {"bt709", "YCbCr of BT.709, studio range (full resolution: decoding only; 4:2:0 both ways)"},
        {"photoycc", "photographic YCC: Y = 0.7132668 Y0, chroma offset to 156 and 137"},
        {"luma", "grey of fixed weights 0.299 R + 0.587 G + 0.114 B, full range; grey to RGB copies it"},
        {"bt709full", "YCbCr of BT.709, full swing: Y 0..255, chroma centred on 128"},
        {"bt601f", "BT.601 studio range with chroma filtered 1/4 1/2 1/4 across (one encoder)"},
        {"curve", "BT.601 YCbCr of RGB sent through the BT.709 transfer curve first, chroma filtered 1/4 1/2 1/4"},
        {"layout", "no colour arithmetic: chroma samples moved, dropped or repeated between subsampled layouts"},
        {"interlace", "as layout, with chroma handled field by field (rows of one parity together)"},
        {"filter", "as layout, with chroma rows interpolated or filtered between lines"},
    };
    return table;
}

bool chromaOnly(const char* model) {
    return !std::strcmp(model, "layout") || !std::strcmp(model, "interlace") || !std::strcmp(model, "filter");
}

const Model* findModel(const std::string& name) {
    for (const Model& m : models())
        if (name == m.name) return &m;
    return nullptr;
}

// ------------------------------------------------------------ call adapters
// One adapter per argument shape of the library; the table below picks one
// by overload on the operation's own type.
namespace {

using Planes = std::array<Kro8u*, 4>;
using CPlanes = std::array<const Kro8u*, 4>;

// RGB planes go in the order R, G, B whatever the format's order; planes of
// other families in the format's own order (Y, V, U for yvu420p).
CPlanes planesOf(const Image& img) {
    CPlanes p{};
    for (int c = 0; c < img.fmt->planeCount; ++c) p[c] = img.fmt->family == Family::Rgb ? img.channelPlane(c) : img.data(c);
    return p;
}

Planes planesOf(Image& img) {
    Planes p{};
    for (int c = 0; c < img.fmt->planeCount; ++c) p[c] = img.fmt->family == Family::Rgb ? img.channelPlane(c) : img.data(c);
    return p;
}

// Steps of the planes in the same order.
std::array<int, 4> stepsOf(const Image& img) {
    std::array<int, 4> s{};
    for (int c = 0; c < img.fmt->planeCount; ++c) s[c] = img.step[c];
    return s;
}

using PackedToPacked = KroStatus (*)(const Kro8u*, int, Kro8u*, int, kroiSize);
using PackedToPackedFill = KroStatus (*)(const Kro8u*, int, Kro8u*, int, kroiSize, Kro8u);
using PackedToPlanes = KroStatus (*)(const Kro8u*, int, Kro8u* const*, int, kroiSize);
using PlanesToPacked = KroStatus (*)(const Kro8u* const*, int, Kro8u*, int, kroiSize);
using PlanesToPlanes = KroStatus (*)(const Kro8u* const*, int, Kro8u* const*, int, kroiSize);
using PlanesToPackedFill = KroStatus (*)(const Kro8u* const*, int, Kro8u*, int, kroiSize, Kro8u);

Call adapt(PackedToPacked f) {
    return [f](const Image& s, Image& d) { return f(s.data(0), s.step[0], d.data(0), d.step[0], s.roi()); };
}
// A fourth channel the source lacks is made opaque.
Call adapt(PackedToPackedFill f) {
    return [f](const Image& s, Image& d) { return f(s.data(0), s.step[0], d.data(0), d.step[0], s.roi(), 255); };
}
Call adapt(PackedToPlanes f) {
    return [f](const Image& s, Image& d) {
        Planes p = planesOf(d);
        return f(s.data(0), s.step[0], p.data(), d.step[0], s.roi());
    };
}
Call adapt(PlanesToPacked f) {
    return [f](const Image& s, Image& d) {
        CPlanes p = planesOf(s);
        return f(p.data(), s.step[0], d.data(0), d.step[0], s.roi());
    };
}
Call adapt(PlanesToPackedFill f) {
    return [f](const Image& s, Image& d) {
        CPlanes p = planesOf(s);
        return f(p.data(), s.step[0], d.data(0), d.step[0], s.roi(), 255);
    };
}
Call adapt(PlanesToPlanes f) {
    return [f](const Image& s, Image& d) {
        CPlanes sp = planesOf(s);
        Planes dp = planesOf(d);
        return f(sp.data(), s.step[0], dp.data(), d.step[0], s.roi());
    };
}

// Subsampled images: a step for each plane, two planes (luma and chroma
// pairs), or rows packed without steps.
using PackedToPlanesS = KroStatus (*)(const Kro8u*, int, Kro8u* const*, const int*, kroiSize);
using Planes1ToPlanesS = KroStatus (*)(const Kro8u* const*, int, Kro8u* const*, const int*, kroiSize);
using PackedToP2 = KroStatus (*)(const Kro8u*, int, Kro8u*, int, Kro8u*, int, kroiSize);
using PlanesSToPacked = KroStatus (*)(const Kro8u* const*, const int*, Kro8u*, int, kroiSize);
using PlanesSToPackedFill = KroStatus (*)(const Kro8u* const*, const int*, Kro8u*, int, kroiSize, Kro8u);
using P2ToPacked = KroStatus (*)(const Kro8u*, int, const Kro8u*, int, Kro8u*, int, kroiSize);
using P2ToPackedFill = KroStatus (*)(const Kro8u*, int, const Kro8u*, int, Kro8u*, int, kroiSize, Kro8u);
using PlanesSToPlanes1 = KroStatus (*)(const Kro8u* const*, const int*, Kro8u* const*, int, kroiSize);
using PackedToPlanesTight = KroStatus (*)(const Kro8u*, Kro8u* const*, kroiSize);
using PlanesToPlanesTight = KroStatus (*)(const Kro8u* const*, Kro8u* const*, kroiSize);
using PlanesToPackedTight = KroStatus (*)(const Kro8u* const*, Kro8u*, kroiSize);
using P2ToPlanesS = KroStatus (*)(const Kro8u*, int, const Kro8u*, int, Kro8u* const*, const int*, kroiSize);
using PlanesSToP2 = KroStatus (*)(const Kro8u* const*, const int*, Kro8u*, int, Kro8u*, int, kroiSize);
using PlanesSToPlanesS = KroStatus (*)(const Kro8u* const*, const int*, Kro8u* const*, const int*, kroiSize);

Call adapt(PackedToPlanesS f) {
    return [f](const Image& s, Image& d) { return f(s.data(0), s.step[0], planesOf(d).data(), stepsOf(d).data(), s.roi()); };
}
Call adapt(Planes1ToPlanesS f) {
    return [f](const Image& s, Image& d) { return f(planesOf(s).data(), s.step[0], planesOf(d).data(), stepsOf(d).data(), s.roi()); };
}
Call adapt(PackedToP2 f) {
    return [f](const Image& s, Image& d) { return f(s.data(0), s.step[0], d.data(0), d.step[0], d.data(1), d.step[1], s.roi()); };
}
Call adapt(PlanesSToPacked f) {
    return [f](const Image& s, Image& d) { return f(planesOf(s).data(), stepsOf(s).data(), d.data(0), d.step[0], s.roi()); };
}
Call adapt(PlanesSToPackedFill f) {
    return [f](const Image& s, Image& d) { return f(planesOf(s).data(), stepsOf(s).data(), d.data(0), d.step[0], s.roi(), 255); };
}
Call adapt(P2ToPacked f) {
    return [f](const Image& s, Image& d) { return f(s.data(0), s.step[0], s.data(1), s.step[1], d.data(0), d.step[0], s.roi()); };
}
Call adapt(P2ToPackedFill f) {
    return [f](const Image& s, Image& d) { return f(s.data(0), s.step[0], s.data(1), s.step[1], d.data(0), d.step[0], s.roi(), 255); };
}
Call adapt(PlanesSToPlanes1 f) {
    return [f](const Image& s, Image& d) { return f(planesOf(s).data(), stepsOf(s).data(), planesOf(d).data(), d.step[0], s.roi()); };
}
Call adapt(PackedToPlanesTight f) {
    return [f](const Image& s, Image& d) { return f(s.data(0), planesOf(d).data(), s.roi()); };
}
Call adapt(PlanesToPlanesTight f) {
    return [f](const Image& s, Image& d) { return f(planesOf(s).data(), planesOf(d).data(), s.roi()); };
}
Call adapt(PlanesToPackedTight f) {
    return [f](const Image& s, Image& d) { return f(planesOf(s).data(), d.data(0), s.roi()); };
}
Call adapt(P2ToPlanesS f) {
    return [f](const Image& s, Image& d) {
        return f(s.data(0), s.step[0], s.data(1), s.step[1], planesOf(d).data(), stepsOf(d).data(), s.roi());
    };
}
Call adapt(PlanesSToP2 f) {
    return [f](const Image& s, Image& d) {
        return f(planesOf(s).data(), stepsOf(s).data(), d.data(0), d.step[0], d.data(1), d.step[1], s.roi());
    };
}
// Strip filters: the whole image is one strip (the three strip bits together).
constexpr int kWholeImage = 21;

template <class Strip>
Call adapt(KroStatus (*f)(const Kro8u*, int, const Kro8u*, int, Kro8u*, int, kroiSize, Strip)) {
    return [f](const Image& s, Image& d) {
        return f(s.data(0), s.step[0], s.data(1), s.step[1], d.data(0), d.step[0], s.roi(), static_cast<Strip>(kWholeImage));
    };
}
template <class Strip>
Call adapt(KroStatus (*f)(const Kro8u*, int, const Kro8u*, int, Kro8u* const*, const int*, kroiSize, Strip)) {
    return [f](const Image& s, Image& d) {
        return f(s.data(0), s.step[0], s.data(1), s.step[1], planesOf(d).data(), stepsOf(d).data(), s.roi(),
                 static_cast<Strip>(kWholeImage));
    };
}
Call adapt(PlanesSToPlanesS f) {
    return [f](const Image& s, Image& d) {
        return f(planesOf(s).data(), stepsOf(s).data(), planesOf(d).data(), stepsOf(d).data(), s.roi());
    };
}

}  // namespace

#define KROCC_OP(fn, from, to, model) Conversion{#fn, from, to, model, adapt(fn)}
#define KROCC_OP_ROWS(fn, from, to, model, rows) Conversion{#fn, from, to, model, adapt(fn), rows}

// ------------------------------------------------------------ the table
// One line per library operation: exported name, source format, destination
// format, model. An operation of a new family may also need its formats in
// formats() (and a Family for channels that are not RGB, YUV or grey), its
// model in models(), and an adapter above if its arguments have a new shape;
// an operation with parameters of its own can give a lambda in place of
// adapt(). convert, list and demo pick every line up by themselves.
// A format pair that several lines reach goes to the line that needs the
// least repacking (see repackCost), the earlier line on a tie.
static std::vector<Conversion> makeConversions() {
    std::vector<Conversion> table = {
        // RGB <-> YUV of analogue video
        KROCC_OP(kroiRGBToYUV_8u_C3R, "rgb24", "yuv24", "analog"),
        KROCC_OP(kroiRGBToYUV_8u_C3P3R, "rgb24", "yuv444p", "analog"),
        KROCC_OP(kroiRGBToYUV_8u_P3R, "gbrp", "yuv444p", "analog"),
        KROCC_OP(kroiRGBToYUV_8u_AC4R, "rgba", "yuva32", "analog"),
        KROCC_OP(kroiRGBToYUV_8u_AC4P4R, "rgba", "yuva444p", "analog"),
        KROCC_OP(kroiYUVToRGB_8u_C3R, "yuv24", "rgb24", "analog"),
        KROCC_OP(kroiYUVToRGB_8u_AC4R, "yuva32", "rgba", "analog"),
        KROCC_OP(kroiYUVToRGB_8u_C3C4R, "yuv24", "rgba", "analog"),
        KROCC_OP(kroiYUVToRGB_8u_P3C3R, "yuv444p", "rgb24", "analog"),
        KROCC_OP(kroiYUVToRGB_8u_P3R, "yuv444p", "gbrp", "analog"),
        // RGB/BGR <-> YCbCr, BT.601 studio range (and the BT.709 decoders)
        KROCC_OP(kroiRGBToYCbCr_8u_C3R, "rgb24", "yuv24", "bt601"),
        KROCC_OP(kroiRGBToYCbCr_8u_C3P3R, "rgb24", "yuv444p", "bt601"),
        KROCC_OP(kroiRGBToYCbCr_8u_P3R, "gbrp", "yuv444p", "bt601"),
        KROCC_OP(kroiRGBToYCbCr_8u_AC4P3R, "rgba", "yuv444p", "bt601"),
        KROCC_OP(kroiRGBToYCbCr_8u_AC4R, "rgba", "yuva32", "bt601"),
        KROCC_OP(kroiYCbCrToRGB_8u_C3R, "yuv24", "rgb24", "bt601"),
        KROCC_OP(kroiYCbCrToRGB_8u_AC4R, "yuva32", "rgba", "bt601"),
        KROCC_OP(kroiYCbCrToRGB_8u_P3C3R, "yuv444p", "rgb24", "bt601"),
        KROCC_OP(kroiYCbCrToBGR_8u_P3C3R, "yuv444p", "bgr24", "bt601"),
        KROCC_OP(kroiYCbCrToRGB_8u_P3C4R, "yuv444p", "rgba", "bt601"),
        KROCC_OP(kroiYCbCrToBGR_8u_P3C4R, "yuv444p", "bgra", "bt601"),
        KROCC_OP(kroiYCbCrToRGB_8u_P3R, "yuv444p", "gbrp", "bt601"),
        KROCC_OP(kroiYCbCrToBGR_709CSC_8u_P3C3R, "yuv444p", "bgr24", "bt709"),
        KROCC_OP(kroiYCbCrToBGR_709CSC_8u_P3C4R, "yuv444p", "bgra", "bt709"),
        // RGB <-> photographic YCC
        KROCC_OP(kroiRGBToYCC_8u_C3R, "rgb24", "yuv24", "photoycc"),
        KROCC_OP(kroiRGBToYCC_8u_AC4R, "rgba", "yuva32", "photoycc"),
        KROCC_OP(kroiYCCToRGB_8u_C3R, "yuv24", "rgb24", "photoycc"),
        KROCC_OP(kroiYCCToRGB_8u_AC4R, "yuva32", "rgba", "photoycc"),
        // Grey
        KROCC_OP(kroiRGBToGray_8u_C3C1R, "rgb24", "gray", "luma"),
        KROCC_OP(kroiRGBToGray_8u_AC4C1R, "rgba", "gray", "luma"),
        KROCC_OP(kroiGrayToRGB_8u_C1C3R, "gray", "rgb24", "luma"),
        KROCC_OP(kroiGrayToRGB_8u_C1C4R, "gray", "rgba", "luma"),
        // Encoding into, decoding from and repacking between subsampled layouts
        KROCC_OP(kroiBGRToYCbCr420_8u_C3P3R, "bgr24", "yuv420p", "bt601"),
        KROCC_OP(kroiBGRToYCbCr420_8u_AC4P3R, "bgra", "yuv420p", "bt601"),
        KROCC_OP(kroiBGRToYCrCb420_8u_C3P3R, "bgr24", "yvu420p", "bt601"),
        KROCC_OP(kroiBGRToYCrCb420_8u_AC4P3R, "bgra", "yvu420p", "bt601"),
        KROCC_OP(kroiRGBToYCbCr420_8u_C3P3R, "rgb24", "yuv420p", "bt601"),
        KROCC_OP(kroiRGBToYCrCb420_8u_AC4P3R, "rgba", "yvu420p", "bt601"),
        KROCC_OP(kroiBGRToYCbCr420_8u_C3P2R, "bgr24", "nv12", "bt601"),
        KROCC_OP(kroiBGRToYCbCr420_8u_AC4P2R, "bgra", "nv12", "bt601"),
        KROCC_OP(kroiRGBToYCbCr420_8u_C3P2R, "rgb24", "nv12", "bt601"),
        KROCC_OP(kroiRGBToYCbCr420_8u_C4P2R, "rgba", "nv12", "bt601"),
        KROCC_OP(kroiBGRToYCbCr420_709CSC_8u_C3P2R, "bgr24", "nv12", "bt709"),
        KROCC_OP(kroiBGRToYCbCr420_709CSC_8u_AC4P2R, "bgra", "nv12", "bt709"),
        KROCC_OP(kroiBGRToYCbCr420_709CSC_8u_C3P3R, "bgr24", "yuv420p", "bt709"),
        KROCC_OP(kroiBGRToYCbCr420_709CSC_8u_AC4P3R, "bgra", "yuv420p", "bt709"),
        KROCC_OP(kroiBGRToYCrCb420_709CSC_8u_C3P3R, "bgr24", "yvu420p", "bt709"),
        KROCC_OP(kroiBGRToYCrCb420_709CSC_8u_AC4P3R, "bgra", "yvu420p", "bt709"),
        KROCC_OP(kroiBGRToYCbCr420_709HDTV_8u_AC4P3R, "bgra", "yuv420p", "bt709full"),
        KROCC_OP(kroiBGRToYUV420_8u_AC4P3R, "bgra", "yuv420p", "analog"),
        KROCC_OP(kroiRGBToYUV420_8u_C3P3R, "rgb24", "yuv420p", "analog"),
        KROCC_OP(kroiRGBToYUV420_8u_P3R, "gbrp", "yuv420p", "analog"),
        KROCC_OP(kroiRGBToYUV420_8u_C3P3, "rgb24", "yuv420p", "analog"),
        KROCC_OP(kroiRGBToYUV420_8u_P3, "gbrp", "yuv420p", "analog"),
        KROCC_OP(kroiBGRToYCbCr422_8u_C3C2R, "bgr24", "yuyv422", "bt601"),
        KROCC_OP(kroiBGRToYCbCr422_8u_AC4C2R, "bgra", "yuyv422", "bt601"),
        KROCC_OP(kroiBGRToYCbCr422_8u_C3P3R, "bgr24", "yuv422p", "bt601"),
        KROCC_OP(kroiBGRToYCbCr422_8u_AC4P3R, "bgra", "yuv422p", "bt601"),
        KROCC_OP(kroiRGBToYCbCr422_8u_C3P3R, "rgb24", "yuv422p", "bt601"),
        KROCC_OP(kroiRGBToYCbCr422_8u_C3C2R, "rgb24", "yuyv422", "bt601"),
        KROCC_OP(kroiRGBToYCrCb422_8u_C3C2R, "rgb24", "yvyu422", "bt601"),
        KROCC_OP(kroiRGBToYCbCr422_8u_P3C2R, "gbrp", "yuyv422", "bt601"),
        KROCC_OP(kroiRGBToYCrCb422_8u_P3C2R, "gbrp", "yvyu422", "bt601"),
        KROCC_OP(kroiBGRToCbYCr422_8u_AC4C2R, "bgra", "uyvy422", "bt601"),
        KROCC_OP(kroiBGRToCbYCr422_709HDTV_8u_AC4C2R, "bgra", "uyvy422", "bt709full"),
        KROCC_OP(kroiBGRToCbYCr422_709HDTV_8u_C3C2R, "bgr24", "uyvy422", "bt709full"),
        KROCC_OP(kroiRGBToCbYCr422_8u_C3C2R, "rgb24", "uyvy422", "bt601f"),
        KROCC_OP(kroiRGBToYUV422_8u_C3C2R, "rgb24", "yuyv422", "analog"),
        KROCC_OP(kroiRGBToYUV422_8u_C3P3R, "rgb24", "yuv422p", "analog"),
        KROCC_OP(kroiRGBToYUV422_8u_P3R, "gbrp", "yuv422p", "analog"),
        KROCC_OP(kroiRGBToYUV422_8u_C3P3, "rgb24", "yuv422p", "analog"),
        KROCC_OP(kroiRGBToYUV422_8u_P3, "gbrp", "yuv422p", "analog"),
        KROCC_OP(kroiBGRToYCbCr411_8u_C3P3R, "bgr24", "yuv411p", "bt601"),
        KROCC_OP(kroiBGRToYCbCr411_8u_AC4P3R, "bgra", "yuv411p", "bt601"),
        KROCC_OP(kroiCbYCr422ToBGR_709HDTV_8u_C2C3R, "uyvy422", "bgr24", "bt709full"),
        KROCC_OP(kroiCbYCr422ToBGR_709HDTV_8u_C2C4R, "uyvy422", "bgra", "bt709full"),
        KROCC_OP(kroiCbYCr422ToBGR_8u_C2C4R, "uyvy422", "bgra", "bt601"),
        KROCC_OP(kroiCbYCr422ToRGB_8u_C2C3R, "uyvy422", "rgb24", "bt601"),
        KROCC_OP(kroiYCbCr411ToBGR_8u_P3C3R, "yuv411p", "bgr24", "bt601"),
        KROCC_OP(kroiYCbCr411ToBGR_8u_P3C4R, "yuv411p", "bgra", "bt601"),
        KROCC_OP(kroiYCbCr420ToBGR_709CSC_8u_P3C3R, "yuv420p", "bgr24", "bt709"),
        KROCC_OP(kroiYCbCr420ToBGR_709HDTV_8u_P3C4R, "yuv420p", "bgra", "bt709full"),
        KROCC_OP(kroiYCbCr420ToBGR_8u_P2C3R, "nv12", "bgr24", "bt601"),
        KROCC_OP(kroiYCbCr420ToBGR_8u_P2C4R, "nv12", "bgra", "bt601"),
        KROCC_OP(kroiYCbCr420ToBGR_8u_P3C3R, "yuv420p", "bgr24", "bt601"),
        KROCC_OP(kroiYCbCr420ToBGR_8u_P3C4R, "yuv420p", "bgra", "bt601"),
        KROCC_OP(kroiYCbCr420ToRGB_8u_P2C3R, "nv12", "rgb24", "bt601"),
        KROCC_OP(kroiYCbCr420ToRGB_8u_P2C4R, "nv12", "rgba", "bt601"),
        KROCC_OP(kroiYCbCr420ToRGB_8u_P3C3R, "yuv420p", "rgb24", "bt601"),
        KROCC_OP(kroiYCbCr422ToBGR_8u_C2C3R, "yuyv422", "bgr24", "bt601"),
        KROCC_OP(kroiYCbCr422ToBGR_8u_C2C4R, "yuyv422", "bgra", "bt601"),
        KROCC_OP(kroiYCbCr422ToBGR_8u_P3C3R, "yuv422p", "bgr24", "bt601"),
        KROCC_OP(kroiYCbCr422ToGray_8u_C2C1R, "yuyv422", "gray", "bt601"),
        KROCC_OP(kroiYCbCr422ToRGB_8u_C2C3R, "yuyv422", "rgb24", "bt601"),
        KROCC_OP(kroiYCbCr422ToRGB_8u_C2C4R, "yuyv422", "rgba", "bt601"),
        KROCC_OP(kroiYCbCr422ToRGB_8u_C2P3R, "yuyv422", "gbrp", "bt601"),
        KROCC_OP(kroiYCbCr422ToRGB_8u_P3C3R, "yuv422p", "rgb24", "bt601"),
        KROCC_OP(kroiYCrCb420ToBGR_8u_P2C3R, "nv21", "bgr24", "bt601"),
        KROCC_OP(kroiYCrCb420ToBGR_8u_P2C4R, "nv21", "bgra", "bt601"),
        KROCC_OP(kroiYCrCb420ToRGB_8u_P2C3R, "nv21", "rgb24", "bt601"),
        KROCC_OP(kroiYCrCb420ToRGB_8u_P2C4R, "nv21", "rgba", "bt601"),
        KROCC_OP(kroiYCrCb420ToRGB_8u_P3C4R, "yvu420p", "rgba", "bt601"),
        KROCC_OP(kroiYCrCb422ToBGR_8u_C2C3R, "yvyu422", "bgr24", "bt601"),
        KROCC_OP(kroiYCrCb422ToBGR_8u_C2C4R, "yvyu422", "bgra", "bt601"),
        KROCC_OP(kroiYCrCb422ToRGB_8u_C2C3R, "yvyu422", "rgb24", "bt601"),
        KROCC_OP(kroiYCrCb422ToRGB_8u_C2C4R, "yvyu422", "rgba", "bt601"),
        KROCC_OP(kroiYCrCb422ToRGB_8u_C2P3R, "yvyu422", "gbrp", "bt601"),
        KROCC_OP(kroiYUV420ToBGR_8u_P3C3R, "yuv420p", "bgr24", "analog"),
        KROCC_OP(kroiYUV420ToRGB_8u_P3AC4R, "yuv420p", "rgba", "analog"),
        KROCC_OP(kroiYUV420ToRGB_8u_P3C3R, "yuv420p", "rgb24", "analog"),
        KROCC_OP(kroiYUV420ToRGB_8u_P3C3, "yuv420p", "rgb24", "analog"),
        KROCC_OP(kroiYUV420ToRGB_8u_P3R, "yuv420p", "gbrp", "analog"),
        KROCC_OP(kroiYUV420ToRGB_8u_P3, "yuv420p", "gbrp", "analog"),
        KROCC_OP(kroiYUV422ToRGB_8u_C2C3R, "yuyv422", "rgb24", "analog"),
        KROCC_OP(kroiYUV422ToRGB_8u_P3AC4R, "yuv422p", "rgba", "analog"),
        KROCC_OP(kroiYUV422ToRGB_8u_P3C3R, "yuv422p", "rgb24", "analog"),
        KROCC_OP(kroiYUV422ToRGB_8u_P3C3, "yuv422p", "rgb24", "analog"),
        KROCC_OP(kroiYUV422ToRGB_8u_P3R, "yuv422p", "gbrp", "analog"),
        KROCC_OP(kroiYUV422ToRGB_8u_P3, "yuv422p", "gbrp", "analog"),
        KROCC_OP(kroiCbYCr422ToYCbCr411_8u_C2P3R, "uyvy422", "yuv411p", "layout"),
        KROCC_OP(kroiCbYCr422ToYCbCr420_8u_C2P2R, "uyvy422", "nv12", "layout"),
        KROCC_OP(kroiCbYCr422ToYCbCr420_8u_C2P3R, "uyvy422", "yuv420p", "layout"),
        KROCC_OP(kroiCbYCr422ToYCbCr422_8u_C2P3R, "uyvy422", "yuv422p", "layout"),
        KROCC_OP(kroiCbYCr422ToYCbCr422_8u_C2R, "uyvy422", "yuyv422", "layout"),
        KROCC_OP(kroiCbYCr422ToYCrCb420_8u_C2P3R, "uyvy422", "yvu420p", "layout"),
        KROCC_OP(kroiYCbCr411ToYCbCr420_8u_P2P3R, "nv411", "yuv420p", "layout"),
        KROCC_OP(kroiYCbCr411ToYCbCr420_8u_P3P2R, "yuv411p", "nv12", "layout"),
        KROCC_OP(kroiYCbCr411ToYCbCr420_8u_P3R, "yuv411p", "yuv420p", "layout"),
        KROCC_OP(kroiYCbCr411ToYCbCr422_8u_P2C2R, "nv411", "yuyv422", "layout"),
        KROCC_OP(kroiYCbCr411ToYCbCr422_8u_P2P3R, "nv411", "yuv422p", "layout"),
        KROCC_OP(kroiYCbCr411ToYCbCr422_8u_P3C2R, "yuv411p", "yuyv422", "layout"),
        KROCC_OP(kroiYCbCr411ToYCbCr422_8u_P3R, "yuv411p", "yuv422p", "layout"),
        KROCC_OP(kroiYCbCr411ToYCrCb420_8u_P2P3R, "nv411", "yvu420p", "layout"),
        KROCC_OP(kroiYCbCr411ToYCrCb422_8u_P3C2R, "yuv411p", "yvyu422", "layout"),
        KROCC_OP(kroiYCbCr411ToYCrCb422_8u_P3R, "yuv411p", "yvu422p", "layout"),
        KROCC_OP(kroiYCbCr411_8u_P2P3R, "nv411", "yuv411p", "layout"),
        KROCC_OP(kroiYCbCr411_8u_P3P2R, "yuv411p", "nv411", "layout"),
        KROCC_OP(kroiYCbCr420ToCbYCr422_8u_P2C2R, "nv12", "uyvy422", "layout"),
        KROCC_OP(kroiYCbCr420ToYCbCr411_8u_P2P3R, "nv12", "yuv411p", "layout"),
        KROCC_OP(kroiYCbCr420ToYCbCr411_8u_P3P2R, "yuv420p", "nv411", "layout"),
        KROCC_OP(kroiYCbCr420ToYCbCr422_8u_P2C2R, "nv12", "yuyv422", "layout"),
        KROCC_OP(kroiYCbCr420ToYCbCr422_8u_P2P3R, "nv12", "yuv422p", "layout"),
        KROCC_OP(kroiYCbCr420ToYCbCr422_8u_P3R, "yuv420p", "yuv422p", "layout"),
        KROCC_OP(kroiYCbCr420ToYCrCb420_8u_P2P3R, "nv21", "yvu420p", "layout"),
        KROCC_OP(kroiYCbCr420_8u_P2P3R, "nv12", "yuv420p", "layout"),
        KROCC_OP(kroiYCbCr420_8u_P3P2R, "yuv420p", "nv12", "layout"),
        KROCC_OP(kroiYCbCr422ToCbYCr422_8u_C2R, "yuyv422", "uyvy422", "layout"),
        KROCC_OP(kroiYCbCr422ToCbYCr422_8u_P3C2R, "yuv422p", "uyvy422", "layout"),
        KROCC_OP(kroiYCbCr422ToYCbCr411_8u_C2P2R, "yuyv422", "nv411", "layout"),
        KROCC_OP(kroiYCbCr422ToYCbCr411_8u_C2P3R, "yuyv422", "yuv411p", "layout"),
        KROCC_OP(kroiYCbCr422ToYCbCr411_8u_P3P2R, "yuv422p", "nv411", "layout"),
        KROCC_OP(kroiYCbCr422ToYCbCr411_8u_P3R, "yuv422p", "yuv411p", "layout"),
        KROCC_OP(kroiYCbCr422ToYCbCr420_8u_C2P2R, "yuyv422", "nv12", "layout"),
        KROCC_OP(kroiYCbCr422ToYCbCr420_8u_C2P3R, "yuyv422", "yuv420p", "layout"),
        KROCC_OP(kroiYCbCr422ToYCbCr420_8u_P3P2R, "yuv422p", "nv12", "layout"),
        KROCC_OP(kroiYCbCr422ToYCbCr420_8u_P3R, "yuv422p", "yuv420p", "layout"),
        KROCC_OP(kroiYCbCr422ToYCrCb420_8u_C2P2R, "yuyv422", "nv21", "layout"),
        KROCC_OP(kroiYCbCr422ToYCrCb420_8u_C2P3R, "yuyv422", "yvu420p", "layout"),
        KROCC_OP(kroiYCbCr422ToYCrCb422_8u_C2R, "yuyv422", "yvyu422", "layout"),
        KROCC_OP(kroiYCbCr422ToYCrCb422_8u_P3C2R, "yuv422p", "yvyu422", "layout"),
        KROCC_OP(kroiYCbCr422_8u_C2P3R, "yuyv422", "yuv422p", "layout"),
        KROCC_OP(kroiYCbCr422_8u_P3C2R, "yuv422p", "yuyv422", "layout"),
        KROCC_OP(kroiYCrCb420ToCbYCr422_8u_P3C2R, "yvu420p", "uyvy422", "layout"),
        KROCC_OP(kroiYCrCb420ToYCbCr411_8u_P3P2R, "yvu420p", "nv411", "layout"),
        KROCC_OP(kroiYCrCb420ToYCbCr420_8u_P3P2R, "yvu420p", "nv12", "layout"),
        KROCC_OP(kroiYCrCb420ToYCbCr422_8u_P3C2R, "yvu420p", "yuyv422", "layout"),
        KROCC_OP(kroiYCrCb420ToYCbCr422_8u_P3R, "yvu420p", "yuv422p", "layout"),
        KROCC_OP(kroiYCrCb422ToYCbCr411_8u_C2P3R, "yvyu422", "yuv411p", "layout"),
        KROCC_OP(kroiYCrCb422ToYCbCr420_8u_C2P3R, "yvyu422", "yuv420p", "layout"),
        KROCC_OP(kroiYCrCb422ToYCbCr422_8u_C2P3R, "yvyu422", "yuv422p", "layout"),
        KROCC_OP_ROWS(kroiCbYCr422ToYCbCr420_Interlace_8u_C2P3R, "uyvy422", "yuv420p", "interlace", 4),
        KROCC_OP_ROWS(kroiYCbCr422To420_Interlace_8u_P3R, "yuv422p", "yuv420p", "interlace", 4),
        KROCC_OP_ROWS(kroiYCbCr420To422_Interlace_8u_P3R, "yuv420p", "yuv422p", "interlace", 4),
        KROCC_OP_ROWS(kroiYCbCr420ToCbYCr422_Interlace_8u_P3C2R, "yuv420p", "uyvy422", "interlace", 4),
        KROCC_OP_ROWS(kroiYCbCr420ToYCbCr422_Filter_8u_P3R, "yuv420p", "yuv422p", "filter", 8),
        KROCC_OP_ROWS(kroiYCrCb420ToYCbCr422_Filter_8u_P3R, "yvu420p", "yuv422p", "filter", 8),
        KROCC_OP_ROWS(kroiYCbCr420ToYCbCr422_Filter_8u_P2P3R, "nv12", "yuv422p", "filter", 8),
        KROCC_OP(kroiYCrCb420ToBGR_Filter_8u_P3C4R, "yvu420p", "bgra", "bt601"),
        KROCC_OP(kroiYCbCr1620To420_8u_P3R, "yuv410p", "yuv420p", "layout"),
        KROCC_OP(kroiYCbCr411To420_8u_P3R, "yuv411p", "yuv420p", "layout"),
        KROCC_OP(kroiYCbCr420To1620_8u_P3R, "yuv420p", "yuv410p", "layout"),
        KROCC_OP(kroiYCbCr420To411_8u_P3R, "yuv420p", "yuv411p", "layout"),
        KROCC_OP(kroiRGBToCbYCr422Gamma_8u_C3C2R, "rgb24", "uyvy422", "curve"),
    };
#ifdef KROCC_HAS_kroiYCbCr420ToYCbCr422_Filter_8u_P2C2R
    table.push_back(KROCC_OP(kroiYCbCr420ToYCbCr422_Filter_8u_P2C2R, "nv12", "yuyv422", "filter"));
#endif
#ifdef KROCC_HAS_kroiYCbCr420ToYCrCb420_Filter_8u_P2P3R
    table.push_back(KROCC_OP(kroiYCbCr420ToYCrCb420_Filter_8u_P2P3R, "nv21", "yvu420p", "filter"));
#endif
    return table;
}
// Built once: list, convert and demo keep pointers into it.
const std::vector<Conversion>& conversions() {
    static const std::vector<Conversion> table = makeConversions();
    return table;
}

#undef KROCC_OP

const Conversion* findConversion(const std::string& name) {
    for (const Conversion& c : conversions())
        if (name == c.name) return &c;
    return nullptr;
}

// How much repacking one format into another takes: none, or a copy that
// costs more when it also changes between packed and planar or adds or drops
// alpha.
static int repackCost(const Format& a, const Format& b) {
    if (&a == &b) return 0;
    return 2 + ((a.planeCount == 1) != (b.planeCount == 1)) + (a.hasAlpha() != b.hasAlpha());
}

bool findRoute(const Format& from, const Format& to, const std::string& model, Route& out) {
    const bool sameFamily = from.family == to.family;
    if (sameFamily && canRepack(from, to)) {
        out = Route{nullptr, &from != &to, false};
        return true;
    }
    for (const Model& m : models()) {
        // Between layouts of one family a colour model plays no part; the
        // chroma handling (layout, interlace, filter) may be chosen.
        if (!model.empty() && model != m.name && (!sameFamily || chromaOnly(model.c_str()))) continue;
        const Conversion* best = nullptr;
        int bestCost = 1 << 30;
        for (const Conversion& c : conversions()) {
            if (std::strcmp(c.model, m.name) != 0) continue;
            const Format& cf = c.fromFormat();
            const Format& ct = c.toFormat();
            if (!canRepack(from, cf) || !canRepack(ct, to)) continue;
            const int cost = repackCost(from, cf) + repackCost(ct, to);
            if (cost < bestCost) {
                best = &c;
                bestCost = cost;
            }
        }
        if (best) {
            out = Route{best, &best->fromFormat() != &from, &best->toFormat() != &to};
            return true;
        }
    }
    return false;
}

Image runOp(const Conversion& op, const Image& src, KroStatus* status) {
    Image dst(op.toFormat(), src.width, src.height);
    if (dst.fmt->hasAlpha()) {
        if (src.fmt->hasAlpha() && src.fmt->fullResolution()) {
            const Channels ch = unpack(src);
            fillAlpha(dst, &ch);
        } else {
            fillAlpha(dst, nullptr);
        }
    }
    *status = op.call(src, dst);
    return dst;
}

std::string statusText(KroStatus s) {
    switch (s) {
    case kroStatusOk: return "kroStatusOk";
    case kroStatusNothingDone: return "kroStatusNothingDone";
    case kroStatusOddSize: return "kroStatusOddSize";
    case kroStatusBadArgument: return "kroStatusBadArgument";
    case kroStatusBadSize: return "kroStatusBadSize";
    case kroStatusNullPointer: return "kroStatusNullPointer";
    case kroStatusBadStep: return "kroStatusBadStep";
    default: return "status " + std::to_string(s);
    }
}

}  // namespace kt
