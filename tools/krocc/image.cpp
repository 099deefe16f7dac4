#include "image.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace kt {

const char* familyLetters(Family f) {
    switch (f) {
    case Family::Rgb: return "RGBA";
    case Family::Yuv: return "YUVA";
    case Family::Gray: return "Y";
    }
    return "";
}

const char* familyName(Family f) {
    switch (f) {
    case Family::Rgb: return "RGB";
    case Family::Yuv: return "YUV";
    case Family::Gray: return "grey";
    }
    return "";
}

namespace {
constexpr PlaneDesc P(const char* l, int uw = 1, int rd = 1) { return PlaneDesc{l, uw, rd}; }
}  // namespace

// One line per format. Full-resolution formats repack into one another within
// their family; subsampled ones are read and written but only reached through
// library operations that take them directly.
const std::vector<Format>& formats() {
    static const std::vector<Format> table = {
        {"rgb24", Family::Rgb, true, 1, {P("RGB")}, "packed R, G, B"},
        {"bgr24", Family::Rgb, true, 1, {P("BGR")}, "packed B, G, R"},
        {"rgba", Family::Rgb, true, 1, {P("RGBA")}, "packed R, G, B, alpha"},
        {"bgra", Family::Rgb, true, 1, {P("BGRA")}, "packed B, G, R, alpha"},
        {"argb", Family::Rgb, true, 1, {P("ARGB")}, "packed alpha, R, G, B"},
        {"abgr", Family::Rgb, true, 1, {P("ABGR")}, "packed alpha, B, G, R"},
        {"gbrp", Family::Rgb, true, 3, {P("G"), P("B"), P("R")}, "planes G, B, R"},
        {"gbrap", Family::Rgb, true, 4, {P("G"), P("B"), P("R"), P("A")}, "planes G, B, R, alpha"},
        {"gray", Family::Gray, true, 1, {P("Y")}, "one grey plane"},
        {"yuv444p", Family::Yuv, true, 3, {P("Y"), P("U"), P("V")}, "planes Y, U, V"},
        {"yuva444p", Family::Yuv, true, 4, {P("Y"), P("U"), P("V"), P("A")}, "planes Y, U, V, alpha"},
        {"yuv24", Family::Yuv, false, 1, {P("YUV")}, "packed Y, U, V"},
        {"yuva32", Family::Yuv, false, 1, {P("YUVA")}, "packed Y, U, V, alpha"},
        {"vuya", Family::Yuv, true, 1, {P("VUYA")}, "packed V, U, Y, alpha"},
        {"yuv422p", Family::Yuv, true, 3, {P("Y"), P("U", 2), P("V", 2)}, "planes Y, U, V; chroma halved across"},
        {"yuv420p", Family::Yuv, true, 3, {P("Y"), P("U", 2, 2), P("V", 2, 2)}, "planes Y, U, V; chroma halved both ways"},
        {"yuv411p", Family::Yuv, true, 3, {P("Y"), P("U", 4), P("V", 4)}, "planes Y, U, V; chroma quartered across"},
        {"yuv410p", Family::Yuv, true, 3, {P("Y"), P("U", 4, 4), P("V", 4, 4)}, "planes Y, U, V; chroma quartered both ways"},
        {"yvu420p", Family::Yuv, false, 3, {P("Y"), P("V", 2, 2), P("U", 2, 2)}, "planes Y, V, U; chroma halved both ways"},
        {"yvu422p", Family::Yuv, false, 3, {P("Y"), P("V", 2), P("U", 2)}, "planes Y, V, U; chroma halved across"},
        {"nv411", Family::Yuv, false, 2, {P("Y"), P("UV", 4)}, "plane Y, plane of U, V pairs; 4:1:1"},
        {"nv12", Family::Yuv, true, 2, {P("Y"), P("UV", 2, 2)}, "plane Y, plane of U, V pairs; 4:2:0"},
        {"nv21", Family::Yuv, true, 2, {P("Y"), P("VU", 2, 2)}, "plane Y, plane of V, U pairs; 4:2:0"},
        {"yuyv422", Family::Yuv, true, 1, {P("YUYV", 2)}, "packed Y0, U, Y1, V; 4:2:2"},
        {"uyvy422", Family::Yuv, true, 1, {P("UYVY", 2)}, "packed U, Y0, V, Y1; 4:2:2"},
        {"yvyu422", Family::Yuv, true, 1, {P("YVYU", 2)}, "packed Y0, V, Y1, U; 4:2:2"},
    };
    return table;
}

const Format* findFormat(const std::string& name) {
    for (const Format& f : formats())
        if (name == f.name) return &f;
    return nullptr;
}

const Format& formatOrThrow(const std::string& name) {
    const Format* f = findFormat(name);
    if (!f) throw UsageError("unknown pixel format '" + name + "' (krocc list shows the known ones)");
    return *f;
}

bool Format::hasAlpha() const {
    for (int p = 0; p < planeCount; ++p)
        if (std::strchr(planes[p].letters, 'A')) return true;
    return false;
}

int Format::channelCount() const {
    int n = static_cast<int>(std::strlen(familyLetters(family)));
    if (family == Family::Gray) return 1;
    return hasAlpha() ? n : n - 1;
}

bool Format::fullResolution() const {
    for (int p = 0; p < planeCount; ++p)
        if (planes[p].unitWidth != 1 || planes[p].rowDiv != 1) return false;
    return true;
}

int Format::blockWidth() const {
    int b = 1;
    for (int p = 0; p < planeCount; ++p) b = std::max(b, planes[p].unitWidth);
    return b;
}

int Format::blockHeight() const {
    int b = 1;
    for (int p = 0; p < planeCount; ++p) b = std::max(b, planes[p].rowDiv);
    return b;
}

static int unitBytes(const PlaneDesc& p) { return static_cast<int>(std::strlen(p.letters)); }

bool holdsWholeBlocks(const Format& f, int w, int h) { return w % f.blockWidth() == 0 && h % f.blockHeight() == 0; }

void checkSizeFits(const Format& f, int w, int h, bool wholeBlocks) {
    if (w < 1 || h < 1)
        throw Error("image size " + std::to_string(w) + "x" + std::to_string(h) + " is empty");
    // Steps are 32-bit signed in the library, and whole frames must fit in memory.
    long long widest = 0;
    for (int p = 0; p < f.planeCount; ++p)
        widest = std::max(widest, static_cast<long long>(w) * unitBytes(f.planes[p]));
    if (widest > INT_MAX / 2 || static_cast<long long>(w) * h > (1LL << 30))
        throw Error("image size " + std::to_string(w) + "x" + std::to_string(h) + " is too large");
    const int bw = f.blockWidth(), bh = f.blockHeight();
    if (wholeBlocks && (w % bw != 0 || h % bh != 0)) {
        std::string need;
        if (w % bw != 0) need = "a width that is a multiple of " + std::to_string(bw);
        if (h % bh != 0)
            need += std::string(need.empty() ? "" : " and ") + "a height that is a multiple of " + std::to_string(bh);
        throw Error(std::string(f.name) + " cannot hold a " + std::to_string(w) + "x" + std::to_string(h) +
                    " image: it needs " + need);
    }
}

Image::Image(const Format& f, int w, int h) : fmt(&f), width(w), height(h) {
    for (int p = 0; p < f.planeCount; ++p) {
        const PlaneDesc& d = f.planes[p];
        step[p] = (w + d.unitWidth - 1) / d.unitWidth * unitBytes(d);
        rows[p] = (h + d.rowDiv - 1) / d.rowDiv;
        plane[p].assign(static_cast<std::size_t>(step[p]) * rows[p], 0);
    }
}

std::size_t Image::frameBytes() const {
    std::size_t n = 0;
    for (int p = 0; p < fmt->planeCount; ++p) n += plane[p].size();
    return n;
}

std::size_t frameBytes(const Format& f, int w, int h) {
    std::size_t n = 0;
    for (int p = 0; p < f.planeCount; ++p) {
        const PlaneDesc& d = f.planes[p];
        n += static_cast<std::size_t>((w + d.unitWidth - 1) / d.unitWidth) * unitBytes(d) *
             static_cast<std::size_t>((h + d.rowDiv - 1) / d.rowDiv);
    }
    return n;
}

static int planeOfLetter(const Format& f, char letter) {
    for (int p = 0; p < f.planeCount; ++p)
        if (f.planes[p].letters[0] == letter && f.planes[p].letters[1] == 0) return p;
    return -1;
}

uint8_t* Image::channelPlane(int c) {
    return const_cast<uint8_t*>(static_cast<const Image*>(this)->channelPlane(c));
}

const uint8_t* Image::channelPlane(int c) const {
    const int p = planeOfLetter(*fmt, familyLetters(fmt->family)[c]);
    if (p < 0) throw Error(std::string("internal: ") + fmt->name + " has no plane for channel " + std::to_string(c));
    return plane[p].data();
}

// For every channel of the family (canonical index), where its samples lie:
// plane, offset within a pixel, bytes per pixel. Full-resolution formats only.
struct Where {
    int plane = -1, offset = 0, stride = 0;
};

static std::vector<Where> locate(const Format& f) {
    const char* letters = familyLetters(f.family);
    std::vector<Where> w(std::strlen(letters));
    for (int p = 0; p < f.planeCount; ++p) {
        const char* l = f.planes[p].letters;
        for (int i = 0; l[i]; ++i) {
            const char* at = std::strchr(letters, l[i]);
            w[static_cast<std::size_t>(at - letters)] = Where{p, i, unitBytes(f.planes[p])};
        }
    }
    return w;
}

Channels unpack(const Image& img) {
    const Format& f = *img.fmt;
    if (!f.fullResolution()) throw Error(std::string("internal: cannot unpack subsampled ") + f.name);
    Channels ch;
    ch.family = f.family;
    ch.width = img.width;
    ch.height = img.height;
    ch.alpha = f.hasAlpha();
    const std::vector<Where> where = locate(f);
    const std::size_t n = static_cast<std::size_t>(img.width) * img.height;
    for (std::size_t c = 0; c < where.size(); ++c) {
        if (where[c].plane < 0) continue;  // alpha absent
        std::vector<uint8_t> v(n);
        const uint8_t* src = img.plane[where[c].plane].data() + where[c].offset;
        for (std::size_t i = 0; i < n; ++i) v[i] = src[i * where[c].stride];
        ch.c.push_back(std::move(v));
    }
    return ch;
}

Image pack(const Channels& ch, const Format& f) {
    if (ch.family != f.family || !f.fullResolution())
        throw Error(std::string("internal: cannot pack into ") + f.name);
    Image img(f, ch.width, ch.height);
    const std::vector<Where> where = locate(f);
    const std::size_t n = static_cast<std::size_t>(ch.width) * ch.height;
    const std::size_t colour = f.family == Family::Gray ? 1 : 3;
    for (std::size_t c = 0; c < where.size(); ++c) {
        if (where[c].plane < 0) continue;
        uint8_t* dst = img.plane[where[c].plane].data() + where[c].offset;
        const std::vector<uint8_t>* src = nullptr;
        if (c < colour) src = &ch.c[c];
        else if (ch.alpha) src = &ch.c[colour];
        for (std::size_t i = 0; i < n; ++i) dst[i * where[c].stride] = src ? (*src)[i] : 255;
    }
    return img;
}

bool canRepack(const Format& from, const Format& to) {
    return &from == &to || (from.family == to.family && from.fullResolution() && to.fullResolution());
}

Image repack(const Image& img, const Format& to) {
    if (img.fmt == &to) return img;
    if (!canRepack(*img.fmt, to))
        throw Error(std::string("internal: cannot repack ") + img.fmt->name + " as " + to.name);
    return pack(unpack(img), to);
}

void fillAlpha(Image& img, const Channels* ch) {
    const Format& f = *img.fmt;
    if (!f.hasAlpha() || !f.fullResolution()) return;
    const Where a = locate(f).back();
    const std::size_t n = static_cast<std::size_t>(img.width) * img.height;
    uint8_t* dst = img.plane[a.plane].data() + a.offset;
    const bool have = ch && ch->alpha;
    for (std::size_t i = 0; i < n; ++i) dst[i * a.stride] = have ? ch->c.back()[i] : 255;
}

}  // namespace kt
