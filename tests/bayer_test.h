// Shared test machinery of the Bayer reconstructions: guarded source mosaics
// of 8u or 16u samples, destination planes in region coordinates, and the
// photograph used for end-to-end checks.
#pragma once

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "harness.h"
#include "krocc.h"
#include "ref_bayer.h"

#ifdef KROCC_HAVE_PNG
#include <png.h>
#endif

namespace kt {

template <class T>
inline T getS(const uint8_t* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
template <class T>
inline void setS(uint8_t* p, T v) {
    std::memcpy(p, &v, sizeof v);
}

// A guarded source mosaic and its plain copy for the references.
template <class T>
struct Src {
    Plane plane;
    ref::Mosaic m;
    Src(int W, int H, int grid, int pad, Guard g) : plane(W * int(sizeof(T)), H, pad, g) {
        m.W = W;
        m.H = H;
        m.grid = grid;
        m.v.resize(static_cast<size_t>(W) * H);
        for (int y = 0; y < H; ++y)
            for (int x = 0; x < W; ++x) m.v[static_cast<size_t>(y) * W + x] = getS<T>(plane.row(y) + sizeof(T) * x);
    }
    // Rewrites the samples from a function of the position.
    template <class F>
    void fill(F f) {
        for (int y = 0; y < m.H; ++y)
            for (int x = 0; x < m.W; ++x) {
                const int v = f(x, y);
                m.v[static_cast<size_t>(y) * m.W + x] = v;
                setS<T>(plane.row(y) + sizeof(T) * x, static_cast<T>(v));
            }
    }
    const T* ptr() const { return reinterpret_cast<const T*>(plane.origin()); }
};

template <class T>
inline constexpr int kMax = sizeof(T) == 1 ? 255 : 65535;

// ------------------------------------------------------------ a photograph as a mosaic
struct Photo {
    int w = 0, h = 0;
    std::vector<uint8_t> rgb;
};
inline Photo loadPhoto() {
    Photo im;
#ifdef KROCC_HAVE_PNG
    png_image pi{};
    pi.version = PNG_IMAGE_VERSION;
    const std::string path = std::string(KROCC_TEST_DATA) + "/chelsea.png";
    if (!png_image_begin_read_from_file(&pi, path.c_str())) return im;
    pi.format = PNG_FORMAT_RGB;
    im.rgb.resize(PNG_IMAGE_SIZE(pi));
    if (!png_image_finish_read(&pi, nullptr, im.rgb.data(), 0, nullptr)) {
        png_image_free(&pi);
        return {};
    }
    im.w = static_cast<int>(pi.width);
    im.h = static_cast<int>(pi.height);
#endif
    return im;
}
// The mosaic a sensor with this grid would have recorded from the photograph.
inline std::vector<uint8_t> mosaicOf(const Photo& p, int grid) {
    ref::Mosaic m;
    m.grid = grid;
    std::vector<uint8_t> out(static_cast<size_t>(p.w) * p.h);
    for (int y = 0; y < p.h; ++y)
        for (int x = 0; x < p.w; ++x) {
            const char c = m.colour(x, y);
            const int k = c == 'R' ? 0 : c == 'G' ? 1 : 2;
            out[static_cast<size_t>(y) * p.w + x] = p.rgb[(static_cast<size_t>(y) * p.w + x) * 3 + k];
        }
    return out;
}
// PSNR in dB over the inner part (a border of `margin` pixels left out) of an
// RGB result laid out with `cn` samples a pixel in the order given by `order`.
inline double psnr(const Photo& p, const uint8_t* out, int cn, const int (&order)[3], int margin) {
    double se = 0;
    long n = 0;
    for (int y = margin; y < p.h - margin; ++y)
        for (int x = margin; x < p.w - margin; ++x)
            for (int k = 0; k < 3; ++k) {
                const double d = double(out[(static_cast<size_t>(y) * p.w + x) * cn + order[k]]) -
                                 p.rgb[(static_cast<size_t>(y) * p.w + x) * 3 + k];
                se += d * d;
                ++n;
            }
    return 10.0 * std::log10(255.0 * 255.0 * n / se);
}

}  // namespace kt
