// Shared test machinery of the Bayer reconstructions: guarded source mosaics
// of 8u or 16u samples, the photograph as a mosaic, and the checks the three
// reconstructions share.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <cstring>
#include <string>
#include <vector>

#include "harness.h"
#include "krocc.h"
#include "photo.h"
#include "ref_bayer.h"

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
// The mosaic a sensor with this grid would have recorded from the photograph.
inline std::vector<uint8_t> mosaicOf(const Photo& p, int grid) {
    ref::Mosaic m;
    m.grid = grid;
    std::vector<uint8_t> out(static_cast<size_t>(p.width) * p.height);
    for (int y = 0; y < p.height; ++y)
        for (int x = 0; x < p.width; ++x) {
            const char c = m.colour(x, y);
            const int k = c == 'R' ? 0 : c == 'G' ? 1 : 2;
            out[static_cast<size_t>(y) * p.width + x] = p.rgb[(static_cast<size_t>(y) * p.width + x) * 3 + k];
        }
    return out;
}
// PSNR in dB over the inner part (a border of `margin` pixels left out) of an
// RGB result laid out with `cn` samples a pixel in the order given by `order`.
inline double psnr(const Photo& p, const uint8_t* out, int cn, const int (&order)[3], int margin) {
    double se = 0;
    long n = 0;
    for (int y = margin; y < p.height - margin; ++y)
        for (int x = margin; x < p.width - margin; ++x)
            for (int k = 0; k < 3; ++k) {
                const double d = double(out[(static_cast<size_t>(y) * p.width + x) * cn + order[k]]) -
                                 p.rgb[(static_cast<size_t>(y) * p.width + x) * 3 + k];
                se += d * d;
                ++n;
            }
    return 10.0 * std::log10(255.0 * 255.0 * n / se);
}

// ------------------------------------------------------------ checks shared by the reconstructions
// An entry in one shape: samples of 1 or 2 bytes, source mosaic, region, image
// size and step, destination and step, grid; each file's adapter supplies the rest
// (gains, work buffer, which twin).
using DemosaicCall =
    std::function<KroStatus(int sampleBytes, const void* s, kroiRect roi, kroiSize size, int sStep, void* d, int dStep, int grid)>;

// The photograph mosaicked with every grid and reconstructed (8-bit): at least
// minDb away from a border of two pixels.
inline void photographAbove(const DemosaicCall& call, int cn, const int (&order)[3], double minDb) {
    const Photo p = readPhoto("chelsea.png");
    if (p.width == 0) GTEST_SKIP() << "no libpng or no test image";
    for (int grid = 0; grid < 4; ++grid) {
        const std::vector<uint8_t> mos = mosaicOf(p, grid);
        std::vector<uint8_t> out(static_cast<size_t>(p.width) * p.height * cn);
        ASSERT_EQ(call(1, mos.data(), {0, 0, p.width, p.height}, {p.width, p.height}, p.width, out.data(), p.width * cn, grid), kroStatusOk);
        const double db = psnr(p, out.data(), cn, order, 2);
        EXPECT_GT(db, minDb) << "grid " << grid;
        ::testing::Test::RecordProperty("psnr_grid" + std::to_string(grid), std::to_string(db));
    }
}

// Empty regions (or regions wholly outside the image) return 0 and write nothing, in both sample sizes.
inline void emptyRegionsWriteNothing(const DemosaicCall& call, kroiSize size, std::initializer_list<kroiRect> rects) {
    std::vector<Kro16u> s(size_t(size.width) * size.height, 1234);
    Kro8u d[64];
    std::memset(d, 77, sizeof d);
    for (kroiRect r : rects)
        for (int e : {1, 2}) {
            EXPECT_EQ(call(e, s.data(), r, size, size.width * e, d, 16, 0), kroStatusOk) << r.x << "," << r.y;
            for (Kro8u v : d) ASSERT_EQ(v, 77);
        }
}

// Check order as a table, each row through both sample sizes on an 8 x 8 source;
// a failing call leaves the destination as it was (and `failed` may look at more).
struct StatusRow {
    bool sNull, dNull;
    kroiSize size;
    int grid;
    kroiRect roi;
    KroStatus want;
};
inline void statusTable(const DemosaicCall& call, int cn, std::initializer_list<StatusRow> rows,
                        const std::function<void()>& failed = {}) {
    Kro16u s[64] = {}, d[256];
    for (const StatusRow& w : rows)
        for (int e : {1, 2}) {
            std::fill(std::begin(d), std::end(d), Kro16u(33));
            EXPECT_EQ(call(e, w.sNull ? nullptr : s, w.roi, w.size, 8 * e, w.dNull ? nullptr : d, 8 * cn * e, w.grid), w.want)
                << "size " << w.size.width << "x" << w.size.height << " grid " << w.grid << " sample bytes " << e;
            if (w.want == kroStatusOk) continue;
            for (Kro16u v : d) ASSERT_EQ(v, 33);
            if (failed) failed();
        }
}

}  // namespace kt
