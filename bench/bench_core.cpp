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
        case Layout::C3: case Layout::P3: return 3;
        case Layout::C4: case Layout::P4: return 4;
    }
    return 0;
}

bool planarOf(Layout l) { return l == Layout::P3 || l == Layout::P4; }

const char* layoutName(Layout l) {
    switch (l) {
        case Layout::C1: return "C1";
        case Layout::C3: return "C3";
        case Layout::C4: return "C4";
        case Layout::P3: return "P3";
        case Layout::P4: return "P4";
    }
    return "?";
}

// ------------------------------------------------------------ images
Image::Image(Format f, int width, int height) : fmt_(f), w_(width), h_(height) {
    const int ch = channelsOf(f.layout);
    const int rowBytes = planarOf(f.layout) ? width : width * ch;
    step_ = (rowBytes + 63) & ~63;
    const int nPlanes = planarOf(f.layout) ? ch : 1;
    const std::size_t planeBytes = std::size_t(step_) * std::size_t(height);
    bytes_ = planeBytes * std::size_t(nPlanes);
    void* p = std::aligned_alloc(64, (bytes_ + 63) & ~std::size_t(63));
    mem_.reset(static_cast<Kro8u*>(p), [](Kro8u* q) { std::free(q); });
    for (int k = 0; k < nPlanes; ++k) planes_[k] = mem_.get() + planeBytes * std::size_t(k);
    for (int k = 0; k < 4; ++k) cplanes_[k] = planes_[k];
    std::memset(mem_.get(), 0, bytes_);
}

std::size_t Image::pixelBytes() const {
    return std::size_t(w_) * std::size_t(h_) * std::size_t(channelsOf(fmt_.layout));
}

Kro8u& Image::at(int x, int y, int c) {
    if (planarOf(fmt_.layout)) return planes_[c][std::size_t(y) * step_ + x];
    return planes_[0][std::size_t(y) * step_ + std::size_t(x) * channelsOf(fmt_.layout) + c];
}

Kro8u Image::at(int x, int y, int c) const { return const_cast<Image*>(this)->at(x, y, c); }

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
    return {double(img.at(x, y, idx[0])), double(img.at(x, y, idx[1])), double(img.at(x, y, idx[2]))};
}

}  // namespace

void encodePicture(const Picture& p, Image& img) {
    const Format f = img.format();
    const int nch = channelsOf(f.layout);
    const char* alpha = std::strchr(f.order, 'A');
    const int ia = alpha ? int(alpha - f.order) : -1;
    int idx[3];
    channelIndex(f, idx);
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x) {
            const Kro8u* s = &p.rgb[(std::size_t(y) * p.width + x) * 3];
            if (f.model == Model::Opaque) {
                for (int c = 0; c < nch; ++c) img.at(x, y, c) = s[c % 3];
                continue;
            }
            const Tri e = encode(f.model, {double(s[0]), double(s[1]), double(s[2])});
            const double v[3] = {e.a, e.b, e.c};
            const int n = f.model == Model::Gray ? 1 : 3;
            for (int k = 0; k < n; ++k) img.at(x, y, idx[k]) = Kro8u(std::clamp(std::nearbyint(v[k]), 0.0, 255.0));
            if (ia >= 0) img.at(x, y, ia) = Kro8u((x + 3 * y) & 255);
        }
}

Agreement compare(const Image& ours, const Image& theirs, Kro8u fillValue) {
    Agreement a;
    const Format fo = ours.format(), ft = theirs.format();
    const int w = std::min(ours.width(), theirs.width()), h = std::min(ours.height(), theirs.height());
    std::size_t unwritten = 0, samples = 0;
    const int nt = channelsOf(ft.layout);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < nt; ++c) {
                if (ft.order[c] == 'x') continue;
                ++samples;
                unwritten += theirs.at(x, y, c) == fillValue;
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
