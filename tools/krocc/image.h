// Pixel formats and in-memory images of the krocc command-line tool.
//
// A format is a named memory layout (FFmpeg's pixel-format names where FFmpeg
// has one): which planes there are, which channels each plane holds in which
// order, and how far each plane is subsampled. The colour meaning of the
// channels comes from the format's family (RGB, YUV-like, grey); what a YUV-like
// format means numerically is chosen by the model (--matrix), not the format.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "krocc.h"

namespace kt {

// Every error the tool reports: one line, then a non-zero exit.
struct Error : std::runtime_error {
    using std::runtime_error::runtime_error;
};
// A command-line mistake (exit code 2 rather than 1).
struct UsageError : Error {
    using Error::Error;
};

enum class Family { Rgb, Yuv, Gray };

// Channel letters of a family in canonical order; the last one is alpha where
// the family has it.
const char* familyLetters(Family f);
const char* familyName(Family f);

struct PlaneDesc {
    const char* letters;  // channels in memory order within one unit, e.g. "BGR", "UV", "YUYV"
    int unitWidth;        // pixels covered by one unit horizontally (2 for 4:2:2 chroma)
    int rowDiv;           // rows covered by one plane row (2 for 4:2:0 chroma)
};

struct Format {
    const char* name;
    Family family;
    bool ffmpegName;      // false: a krocc name for a layout FFmpeg does not name
    int planeCount;
    PlaneDesc planes[4];
    const char* about;

    bool hasAlpha() const;
    int channelCount() const;       // colour channels plus alpha
    bool fullResolution() const;    // every plane one unit per pixel, every row
    int blockWidth() const;         // width and height must be multiples of these
    int blockHeight() const;
};

const std::vector<Format>& formats();
const Format* findFormat(const std::string& name);  // nullptr if unknown
const Format& formatOrThrow(const std::string& name);

// Throws Error if the format cannot hold a w x h image. Without wholeBlocks
// only the size's range is checked: a subsampled format then holds a partial
// last block as FFmpeg lays it out (chroma of ceil(w / 2) samples a row).
void checkSizeFits(const Format& f, int w, int h, bool wholeBlocks = true);
bool holdsWholeBlocks(const Format& f, int w, int h);

// One frame in memory: one tightly packed buffer per plane, as in a raw file.
struct Image {
    const Format* fmt = nullptr;
    int width = 0, height = 0;
    std::vector<uint8_t> plane[4];
    int step[4] = {0, 0, 0, 0};
    int rows[4] = {0, 0, 0, 0};

    Image() = default;
    Image(const Format& f, int w, int h);  // zero-filled

    std::size_t frameBytes() const;
    kroiSize roi() const { return kroiSize{width, height}; }
    // Interleaved formats: the one plane. Planar formats: the plane holding
    // the family's channel number c (0 R or Y, 1 G or U, 2 B or V, 3 alpha).
    uint8_t* data(int p) { return plane[p].data(); }
    const uint8_t* data(int p) const { return plane[p].data(); }
    uint8_t* channelPlane(int c);
    const uint8_t* channelPlane(int c) const;
};

std::size_t frameBytes(const Format& f, int w, int h);

// Full-resolution images as separate channel planes in the family's canonical
// order (R, G, B[, A] or Y, U, V[, A] or Y). Repacking between formats of one
// family goes through this form and loses nothing.
struct Channels {
    Family family = Family::Rgb;
    int width = 0, height = 0;
    bool alpha = false;
    std::vector<std::vector<uint8_t>> c;  // colour channels, then alpha if present
};

Channels unpack(const Image& img);
// Missing alpha becomes 255; alpha the format has no room for is dropped.
Image pack(const Channels& ch, const Format& f);
bool canRepack(const Format& from, const Format& to);
Image repack(const Image& img, const Format& to);

// Sets the alpha channel of img from ch's alpha, or to 255 if ch has none.
void fillAlpha(Image& img, const Channels* ch);

}  // namespace kt
