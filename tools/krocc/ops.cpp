#include "ops.h"

#include <array>
#include <cstring>

namespace kt {

const std::vector<Model>& models() {
    static const std::vector<Model> table = {
        {"analog", "YUV of analogue video: Y = 0.299 R + 0.587 G + 0.114 B, U = 0.492 (B - Y), "
                   "V = 0.877 (R - Y), full range, chroma centred on 128"},
        {"bt601", "YCbCr of BT.601, studio range: Y 16..235, Cb and Cr 16..240 centred on 128"},
        {"bt709", "YCbCr of BT.709, studio range (the library decodes it; encoding at full resolution is BT.601 only)"},
        {"photoycc", "photographic YCC: Y = 0.7132668 Y0, chroma offset to 156 and 137"},
    };
    return table;
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

CPlanes planesOf(const Image& img) {
    CPlanes p{};
    for (int c = 0; c < img.fmt->planeCount; ++c) p[c] = img.channelPlane(c);
    return p;
}

Planes planesOf(Image& img) {
    Planes p{};
    for (int c = 0; c < img.fmt->planeCount; ++c) p[c] = img.channelPlane(c);
    return p;
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

}  // namespace

#define KROCC_OP(fn, from, to, model) Conversion{#fn, from, to, model, adapt(fn)}

// ------------------------------------------------------------ the table
// One line per library operation: exported name, source format, destination
// format, model. An operation of a new family may also need its formats in
// formats() (and a Family for channels that are not RGB, YUV or grey), its
// model in models(), and an adapter above if its arguments have a new shape;
// an operation with parameters of its own can give a lambda in place of
// adapt(). convert, list and demo pick every line up by themselves.
// A format pair that several lines reach goes to the line that needs the
// least repacking (see repackCost), the earlier line on a tie.
const std::vector<Conversion>& conversions() {
    static const std::vector<Conversion> table = {
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
    };
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
    if (from.family == to.family) {
        if (!canRepack(from, to)) return false;
        out = Route{nullptr, &from != &to, false};
        return true;
    }
    for (const Model& m : models()) {
        if (!model.empty() && model != m.name) continue;
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
