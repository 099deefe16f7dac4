#include "bench_core.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#if KB_HAVE_PNG
#include <png.h>
#endif

namespace kb {

// ------------------------------------------------------------ layouts
int channelsOf(Layout l) {
    switch (l) {
        case Layout::C1: return 1;
        case Layout::C3: case Layout::P3: case Layout::I420: case Layout::NV: case Layout::C2: return 3;
        case Layout::C4: case Layout::P4: return 4;
    }
    return 0;
}

bool planarOf(Layout l) { return l == Layout::P3 || l == Layout::P4; }

bool subsampledOf(Layout l) { return l == Layout::I420 || l == Layout::NV || l == Layout::C2; }

int planesOf(Layout l) {
    switch (l) {
        case Layout::P3: case Layout::I420: return 3;
        case Layout::P4: return 4;
        case Layout::NV: return 2;
        default: return 1;
    }
}

const char* layoutName(Layout l) {
    switch (l) {
        case Layout::C1: return "C1";
        case Layout::C3: return "C3";
        case Layout::C4: return "C4";
        case Layout::P3: return "P3";
        case Layout::P4: return "P4";
        case Layout::I420: return "4:2:0 planes";
        case Layout::NV: return "4:2:0 luma + chroma pairs";
        case Layout::C2: return "4:2:2 packed";
    }
    return "?";
}

int bytesOf(Depth d) { return d == Depth::U8 ? 1 : d == Depth::F32 ? 4 : 8; }

// ------------------------------------------------------------ images
Image::Image(Format f, int width, int height) : fmt_(f), w_(width), h_(height) {
    const int ch = channelsOf(f.layout), bps = bytesOf(f.depth);
    const int cw = (width + 1) / 2, chh = (height + 1) / 2;
    auto pad = [](int bytes) { return (bytes + 63) & ~63; };
    std::size_t offs[4] = {};
    int nPlanes = 1;
    switch (f.layout) {
        case Layout::C1: case Layout::C3: case Layout::C4:
            steps_[0] = pad(width * ch * bps);
            bytes_ = std::size_t(steps_[0]) * height;
            break;
        case Layout::P3: case Layout::P4:
            nPlanes = ch;
            for (int k = 0; k < nPlanes; ++k) {
                steps_[k] = pad(width * bps);
                offs[k] = std::size_t(steps_[0]) * height * k;
            }
            bytes_ = std::size_t(steps_[0]) * height * nPlanes;
            break;
        case Layout::I420:
            nPlanes = 3;
            steps_[0] = width;
            steps_[1] = steps_[2] = cw;
            offs[1] = std::size_t(width) * height;
            offs[2] = offs[1] + std::size_t(cw) * chh;
            bytes_ = offs[2] + std::size_t(cw) * chh;
            break;
        case Layout::NV:
            nPlanes = 2;
            steps_[0] = width;
            steps_[1] = 2 * cw;
            offs[1] = std::size_t(width) * height;
            bytes_ = offs[1] + std::size_t(2 * cw) * chh;
            break;
        case Layout::C2:
            steps_[0] = pad(4 * cw);
            bytes_ = std::size_t(steps_[0]) * height;
            break;
    }
    void* p = std::aligned_alloc(64, (bytes_ + 63) & ~std::size_t(63));
    mem_.reset(static_cast<Kro8u*>(p), [](Kro8u* q) { std::free(q); });
    for (int k = 0; k < nPlanes; ++k) planes_[k] = mem_.get() + offs[k];
    for (int k = 0; k < 4; ++k) cplanes_[k] = planes_[k];
    std::memset(mem_.get(), 0, bytes_);
}

std::size_t Image::pixelBytes() const {
    const std::size_t w = std::size_t(w_), h = std::size_t(h_), cw = (w + 1) / 2, ch = (h + 1) / 2;
    switch (fmt_.layout) {
        case Layout::I420: case Layout::NV: return w * h + 2 * cw * ch;
        case Layout::C2: return 4 * cw * h;
        default: return w * h * std::size_t(channelsOf(fmt_.layout)) * std::size_t(bytesOf(fmt_.depth));
    }
}

Kro8u* Image::address(int x, int y, int c) const {
    const std::size_t bps = std::size_t(bytesOf(fmt_.depth)), yy = std::size_t(y), xx = std::size_t(x);
    switch (fmt_.layout) {
        case Layout::P3: case Layout::P4: return planes_[c] + yy * steps_[c] + xx * bps;
        case Layout::I420:
            if (c == 0) return planes_[0] + yy * steps_[0] + xx;
            return planes_[c] + yy / 2 * steps_[c] + xx / 2;
        case Layout::NV:
            if (c == 0) return planes_[0] + yy * steps_[0] + xx;
            return planes_[1] + yy / 2 * steps_[1] + xx / 2 * 2 + std::size_t(c - 1);
        case Layout::C2: {
            Kro8u* pair = planes_[0] + yy * steps_[0] + xx / 2 * 4;
            if (fmt_.order[c] != 'Y') return pair + c;
            const char* y0 = std::strchr(fmt_.order, 'Y');
            const char* yn = (x & 1) ? std::strchr(y0 + 1, 'Y') : y0;
            return pair + (yn - fmt_.order);
        }
        default:
            return planes_[0] + yy * steps_[0] + (xx * std::size_t(channelsOf(fmt_.layout)) + std::size_t(c)) * bps;
    }
}

Kro8u& Image::at(int x, int y, int c) { return *address(x, y, c); }

Kro8u Image::at(int x, int y, int c) const { return *address(x, y, c); }

double Image::value(int x, int y, int c) const {
    const Kro8u* p = address(x, y, c);
    switch (fmt_.depth) {
        case Depth::F32: {
            float v;
            std::memcpy(&v, p, sizeof v);
            return double(v) * 255.0;
        }
        case Depth::F64: {
            double v;
            std::memcpy(&v, p, sizeof v);
            return v * 255.0;
        }
        default: return double(*p);
    }
}

void Image::setValue(int x, int y, int c, double v) {
    Kro8u* p = address(x, y, c);
    switch (fmt_.depth) {
        case Depth::F32: {
            const float f = float(v / 255.0);
            std::memcpy(p, &f, sizeof f);
            break;
        }
        case Depth::F64: {
            const double d = v / 255.0;
            std::memcpy(p, &d, sizeof d);
            break;
        }
        default: *p = Kro8u(std::clamp(std::nearbyint(v), 0.0, 255.0));
    }
}

bool Image::holds(int x, int y, int c, Kro8u v) const {
    const Kro8u* p = address(x, y, c);
    for (int k = 0; k < bytesOf(fmt_.depth); ++k)
        if (p[k] != v) return false;
    return true;
}

void Image::fill(Kro8u v) { std::memset(mem_.get(), v, bytes_); }

// ------------------------------------------------------------ source picture
namespace {

struct Photo {
    int width = 0, height = 0;
    std::vector<Kro8u> rgb;
    std::string path;
};

// Decoded once; empty when there is no reader or no file.
const Photo& photo() {
    static const Photo p = [] {
        Photo r;
#if KB_HAVE_PNG
        const char* env = std::getenv("KROCC_BENCH_PICTURE");
        std::string path = env && *env ? env : KB_DEFAULT_PICTURE;
        png_image img;
        std::memset(&img, 0, sizeof img);
        img.version = PNG_IMAGE_VERSION;
        if (png_image_begin_read_from_file(&img, path.c_str())) {
            img.format = PNG_FORMAT_RGB;
            std::vector<Kro8u> buf(PNG_IMAGE_SIZE(img));
            if (png_image_finish_read(&img, nullptr, buf.data(), 0, nullptr)) {
                r.width = int(img.width);
                r.height = int(img.height);
                r.rgb = std::move(buf);
                r.path = path;
            }
            png_image_free(&img);
        }
#endif
        return r;
    }();
    return p;
}

// Mirror-tiles 0..n-1 over any coordinate: 0 1 .. n-1 n-1 .. 1 0 0 1 ..
int mirror(int x, int n) {
    const int m = x % (2 * n);
    return m < n ? m : 2 * n - 1 - m;
}

std::uint32_t hash32(std::uint32_t v) {
    v ^= v >> 16;
    v *= 0x7feb352dU;
    v ^= v >> 15;
    v *= 0x846ca68bU;
    v ^= v >> 16;
    return v;
}

}  // namespace

Picture makePicture(int width, int height) {
    Picture p;
    p.width = width;
    p.height = height;
    p.rgb.resize(std::size_t(width) * height * 3);
    const Photo& ph = photo();
    if (!ph.rgb.empty()) {
        // A smaller picture is the photograph's middle; a larger one mirrors it.
        const int ox = width < ph.width ? (ph.width - width) / 2 : 0;
        const int oy = height < ph.height ? (ph.height - height) / 2 : 0;
        for (int y = 0; y < height; ++y) {
            const int sy = mirror(y + oy, ph.height);
            for (int x = 0; x < width; ++x) {
                const int sx = mirror(x + ox, ph.width);
                std::memcpy(&p.rgb[(std::size_t(y) * width + x) * 3],
                            &ph.rgb[(std::size_t(sy) * ph.width + sx) * 3], 3);
            }
        }
        const std::size_t slash = ph.path.find_last_of('/');
        p.origin = "photograph " + ph.path.substr(slash == std::string::npos ? 0 : slash + 1) + " (" +
                   std::to_string(ph.width) + "x" + std::to_string(ph.height) + ", mirrored and tiled)";
        return p;
    }
    // Smooth colour fields with a little deterministic grain.
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const double fx = double(x) / width, fy = double(y) / height;
            const std::uint32_t n = hash32(std::uint32_t(y) * 65537U + std::uint32_t(x));
            const double v[3] = {128 + 110 * std::sin(6.0 * fx + 2.0 * fy), 128 + 110 * std::sin(5.0 * fy + 1.0),
                                 128 + 110 * std::cos(4.0 * (fx - fy))};
            for (int c = 0; c < 3; ++c) {
                const int g = int((n >> (8 * c)) & 15) - 8;
                p.rgb[(std::size_t(y) * width + x) * 3 + c] = Kro8u(std::clamp(int(v[c]) + g, 0, 255));
            }
        }
    p.origin = "synthetic picture (no photograph readable)";
    return p;
}

// ------------------------------------------------------------ models
namespace {

struct Tri {
    double a, b, c;
};

double luma(const Tri& rgb) { return 0.299 * rgb.a + 0.587 * rgb.b + 0.114 * rgb.c; }

// RGB to (Y, U-like, V-like) of a model; Gray gives (Y, Y, Y).
Tri encode(Model m, const Tri& rgb) {
    const double y = luma(rgb), db = rgb.c - y, dr = rgb.a - y;
    switch (m) {
        case Model::YuvAnalog: return {y, 0.492 * db + 128, 0.877 * dr + 128};
        case Model::YccFull601: return {y, db / 1.772 + 128, dr / 1.402 + 128};
        case Model::YccVideo601:
            return {16 + y * 219 / 255, 128 + db / 1.772 * 224 / 255, 128 + dr / 1.402 * 224 / 255};
        case Model::Gray: return {y, y, y};
        case Model::Rgb: case Model::Opaque: break;
    }
    return rgb;
}

Tri decode(Model m, const Tri& s) {
    double y = s.a, db = 0, dr = 0;
    switch (m) {
        case Model::YuvAnalog: db = (s.b - 128) / 0.492; dr = (s.c - 128) / 0.877; break;
        case Model::YccFull601: db = (s.b - 128) * 1.772; dr = (s.c - 128) * 1.402; break;
        case Model::YccVideo601:
            y = (s.a - 16) * 255 / 219;
            db = (s.b - 128) * 255 / 224 * 1.772;
            dr = (s.c - 128) * 255 / 224 * 1.402;
            break;
        case Model::Gray: return {s.a, s.a, s.a};
        case Model::Rgb: case Model::Opaque: return s;
    }
    const double r = y + dr, b = y + db;
    const double g = (y - 0.299 * r - 0.114 * b) / 0.587;
    auto c8 = [](double v) { return std::clamp(std::nearbyint(v), 0.0, 255.0); };
    return {c8(r), c8(g), c8(b)};
}

// Where the model's three channels sit in a format's order string.
void channelIndex(const Format& f, int idx[3]) {
    const char* letters = f.model == Model::Rgb ? "RGB" : "YUV";
    const int n = f.model == Model::Gray ? 1 : 3;
    for (int k = 0; k < 3; ++k) idx[k] = -1;
    for (int k = 0; k < n; ++k) {
        const char* p = std::strchr(f.order, letters[k]);
        idx[k] = p ? int(p - f.order) : -1;
    }
    if (n == 1) idx[1] = idx[2] = idx[0];
}

Tri sampleOf(const Image& img, const int idx[3], int x, int y) {
    return {img.value(x, y, idx[0]), img.value(x, y, idx[1]), img.value(x, y, idx[2])};
}

}  // namespace

void encodePicture(const Picture& p, Image& img) {
    const Format f = img.format();
    const int nsamples = int(std::strlen(f.order));
    const char* alpha = std::strchr(f.order, 'A');
    const int ia = alpha ? int(alpha - f.order) : -1;
    int idx[3];
    channelIndex(f, idx);
    const int n = f.model == Model::Gray ? 1 : 3;
    auto encoded = [&](int x, int y) {
        const Kro8u* s = &p.rgb[(std::size_t(y) * p.width + x) * 3];
        return encode(f.model, {double(s[0]), double(s[1]), double(s[2])});
    };
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x) {
            const Kro8u* s = &p.rgb[(std::size_t(y) * p.width + x) * 3];
            if (f.model == Model::Opaque) {
                for (int c = 0; c < nsamples; ++c) img.setValue(x, y, c, s[c % 3]);
                continue;
            }
            const Tri e = encoded(x, y);
            const double v[3] = {e.a, e.b, e.c};
            // Subsampled chroma is written once a block, below.
            for (int k = 0; k < (subsampledOf(f.layout) ? 1 : n); ++k) img.setValue(x, y, idx[k], v[k]);
            if (ia >= 0) img.setValue(x, y, ia, (x + 3 * y) & 255);
        }
    if (!subsampledOf(f.layout) || f.model == Model::Opaque) return;
    // Chroma of a block: the mean of its pixels' encoded chroma.
    const int bh = f.layout == Layout::C2 ? 1 : 2;
    for (int y = 0; y < img.height(); y += bh)
        for (int x = 0; x < img.width(); x += 2) {
            double u = 0, v = 0;
            int m = 0;
            for (int dy = 0; dy < bh && y + dy < img.height(); ++dy)
                for (int dx = 0; dx < 2 && x + dx < img.width(); ++dx, ++m) {
                    const Tri e = encoded(x + dx, y + dy);
                    u += e.b;
                    v += e.c;
                }
            img.setValue(x, y, idx[1], u / m);
            img.setValue(x, y, idx[2], v / m);
        }
}

Agreement compare(const Image& ours, const Image& theirs, Kro8u fillValue, Layout source) {
    Agreement a;
    const Format fo = ours.format(), ft = theirs.format();
    int w = std::min(ours.width(), theirs.width()), h = std::min(ours.height(), theirs.height());
    // Subsampled: whole chroma blocks only (an odd last column or row is
    // left unwritten by some operations).
    if (subsampledOf(fo.layout) || subsampledOf(ft.layout) || subsampledOf(source)) w &= ~1;
    for (Layout l : {fo.layout, ft.layout, source})
        if (l == Layout::I420 || l == Layout::NV) h &= ~1;
    std::size_t unwritten = 0, samples = 0;
    const int nt = int(std::strlen(ft.order));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < nt; ++c) {
                if (ft.order[c] == 'x') continue;
                ++samples;
                unwritten += theirs.holds(x, y, c, fillValue);
            }
    a.unwritten = samples ? double(unwritten) / double(samples) : 1.0;
    if (fo.model == Model::Opaque || ft.model == Model::Opaque) return a;
    a.decoded = true;
    int io[3], it[3];
    channelIndex(fo, io);
    channelIndex(ft, it);
    double sum = 0;
    std::size_t far = 0, n = 0;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const Tri p = decode(fo.model, sampleOf(ours, io, x, y));
            const Tri q = decode(ft.model, sampleOf(theirs, it, x, y));
            const double d[3] = {std::fabs(p.a - q.a), std::fabs(p.b - q.b), std::fabs(p.c - q.c)};
            for (double v : d) {
                sum += v;
                far += v > 16;
                ++n;
            }
        }
    a.meanAbs = sum / double(n);
    a.farShare = double(far) / double(n);
    return a;
}

// ------------------------------------------------------------ the job table
std::vector<Job>& jobTable() {
    static std::vector<Job> table;
    return table;
}

JobRegistrar::JobRegistrar(std::vector<Job> jobs) {
    for (Job& j : jobs) jobTable().push_back(std::move(j));
}

Impl krocc(Format in, Format out, std::string call, Run run) {
    Impl i;
    i.lib = "krocc";
    i.call = std::move(call);
    i.in = in;
    i.out = out;
    i.prepare = [run](int, int) { return run; };
    return i;
}

Impl peer(std::string lib, std::string call, Format in, Format out, std::string differs, Run run) {
    Impl i = krocc(in, out, std::move(call), std::move(run));
    i.lib = std::move(lib);
    i.differs = std::move(differs);
    return i;
}

}  // namespace kb
