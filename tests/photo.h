// Test photographs: the CC0 picture under tests/data, decoded with libpng where
// the build found it, else a deterministic synthetic picture of the same size.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "krocc.h"

#if KROCC_HAVE_PNG
#include <png.h>
#endif

namespace kt {

struct Photo {
    int width = 0, height = 0;
    std::vector<Kro8u> rgb;  // interleaved R, G, B, tight rows
    std::string name;
};

// Smooth ramps with a speckle of noise.
inline Photo syntheticPhoto(int width = 451, int height = 300) {
    Photo im;
    im.width = width;
    im.height = height;
    im.name = "synthetic " + std::to_string(width) + "x" + std::to_string(height);
    uint32_t seed = 7;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            seed = seed * 1664525u + 1013904223u;
            const int n = int(seed >> 28) % 9 - 4;
            im.rgb.push_back(Kro8u(std::clamp(x * 255 / (width - 1) + n, 0, 255)));
            im.rgb.push_back(Kro8u(std::clamp(y * 255 / (height - 1) - n, 0, 255)));
            im.rgb.push_back(Kro8u((x * 3 + y * 5) & 255));
        }
    return im;
}

// The named picture of tests/data (empty if it cannot be read).
inline Photo readPhoto(const std::string& file) {
    Photo im;
#if KROCC_HAVE_PNG
    const std::string path = std::string(KROCC_TEST_DATA) + "/" + file;
    png_image pi{};
    pi.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&pi, path.c_str())) return im;
    pi.format = PNG_FORMAT_RGB;
    im.rgb.resize(PNG_IMAGE_SIZE(pi));
    if (!png_image_finish_read(&pi, nullptr, im.rgb.data(), 0, nullptr)) {
        png_image_free(&pi);
        return {};
    }
    im.width = int(pi.width);
    im.height = int(pi.height);
    im.name = file;
#else
    (void)file;
#endif
    return im;
}

// The photograph where the build can read it, the synthetic picture elsewhere.
inline Photo photoOrSynthetic(const std::string& file = "chelsea.png") {
    Photo p = readPhoto(file);
    return p.width > 0 ? p : syntheticPhoto();
}

}  // namespace kt
