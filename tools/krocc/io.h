// Files of the krocc tool: PNG and PPM/PGM pictures, raw video frames, and
// output that appears under its name only once it is complete.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "image.h"

namespace kt {

// An 8-bit picture as stored in a PNG or PNM file: rows of 1, 3 or 4
// interleaved samples (grey, three colour channels, or those and alpha).
struct Picture {
    int width = 0, height = 0, channels = 0;
    std::vector<uint8_t> data;  // width * channels bytes a row, rows packed
};

enum class FileKind { Png, Pnm, Raw };
FileKind kindOfPath(const std::string& path);  // by extension: .png, .ppm/.pgm/.pnm, else raw

std::vector<uint8_t> readWholeFile(const std::string& path);

Picture decodePng(const uint8_t* bytes, std::size_t size, const std::string& what);
Picture decodePnm(const uint8_t* bytes, std::size_t size, const std::string& what);
Picture readPicture(const std::string& path);  // PNG or PNM by content

// Writes to a temporary file beside the target and renames it into place on
// commit(); a file that is never committed is removed.
class OutFile {
public:
    explicit OutFile(const std::string& path);
    ~OutFile();
    OutFile(const OutFile&) = delete;
    OutFile& operator=(const OutFile&) = delete;
    std::FILE* file() { return f_; }
    void write(const void* p, std::size_t n);
    void commit();

private:
    std::string path_, tmp_;
    std::FILE* f_ = nullptr;
    bool done_ = false;
};

// Makes SIGINT, SIGTERM, SIGHUP and SIGPIPE remove an unfinished output.
void removeTemporaryOnSignals();

void writePng(const std::string& path, const Picture& pic);
void writePnm(const std::string& path, const Picture& pic);  // P5 for grey, P6 for colour
void writePicture(const std::string& path, const Picture& pic);  // by extension

// Pictures from and to images: the picture's channels are the format's
// family channels in canonical order (R, G, B or Y, U, V, then alpha).
Picture toPicture(const Image& img);

// How an image is shown to a person: RGB in colour (alpha dropped); any
// other family as one grey picture of its colour channels side by side in
// the family's order (Y, U, V), each at its own resolution, so subsampled
// chroma shows at its true size.
Picture showPicture(const Image& img);
Image fromPicture(const Picture& pic, const Format& f);

}  // namespace kt
