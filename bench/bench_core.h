// Benchmark frame: images in the layouts the operations and their peers use,
// the colour models they are written in (for the one-off output check), and
// the job table that every family fills with one entry per operation.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "krocc.h"

namespace kb {

// ------------------------------------------------------------ layouts
// C1/C3/C4: interleaved, 1, 3 or 4 samples a pixel. P3/P4: that many planes,
// one step for all planes. Subsampled, rows not padded (a frame as video code
// stores it, the planes one after another): I420, a luma plane and two chroma
// planes of half width and half height; NV, a luma plane and one plane of
// chroma pairs, half height; C2, packed 4:2:2 (two pixels in four bytes, rows
// padded like the interleaved layouts).
enum class Layout { C1, C3, C4, P3, P4, I420, NV, C2 };

// Channels of the model a pixel carries (3 for the subsampled layouts).
int channelsOf(Layout l);
bool planarOf(Layout l);
bool subsampledOf(Layout l);
// Planes (1 for the interleaved and packed layouts).
int planesOf(Layout l);
const char* layoutName(Layout l);

// Sample type: bytes, or floats of 4 or 8 bytes holding 0..1 for 0..255.
enum class Depth { U8, F32, F64 };
int bytesOf(Depth d);

// ------------------------------------------------------------ colour models
// What the samples of an image mean. The check decodes both outputs to RGB
// through their models and compares; Opaque images are only checked for
// having been written.
enum class Model {
    Rgb,          // R, G, B 0..255
    YuvAnalog,    // krocc's YUV: Y = .299R+.587G+.114B, U = .492(B-Y)+128, V = .877(R-Y)+128
    YccFull601,   // BT.601 YCbCr, full range (JPEG): Cb = .564(B-Y)+128, Cr = .713(R-Y)+128
    YccVideo601,  // BT.601 YCbCr, studio range: Y 16..235, Cb/Cr 16..240
    Gray,         // one luma sample .299R+.587G+.114B, decoded as (Y, Y, Y)
    Opaque        // a model the check does not decode (XYZ, HLS...)
};

// A format: layout, model, and which sample (or plane) holds which channel of
// the model: a string over the model's letters ("RGB", "BGRA", "GBR", "YUVA",
// "YVU"; 'A' is alpha, 'x' a byte nobody reads). I420: the planes' order
// ("YUV", "YVU"); NV: "YUV" for U first in the pairs, "YVU" for V first; C2:
// the four bytes of a pixel pair ("YUYV", "UYVY", "YVYU").
struct Format {
    Layout layout;
    Model model;
    const char* order;
    Depth depth = Depth::U8;
};

// ------------------------------------------------------------ images
// A 64-byte aligned image; rows padded to a multiple of 64 bytes (except in
// the I420 and NV layouts, whose planes follow each other unpadded).
class Image {
public:
    Image() = default;
    Image(Format f, int width, int height);

    Format format() const { return fmt_; }
    int width() const { return w_; }
    int height() const { return h_; }
    int step() const { return steps_[0]; }
    int step(int k) const { return steps_[k]; }
    // Step array as the planar operations take it.
    const int* steps() const { return steps_; }
    kroiSize size() const { return {w_, h_}; }
    // Interleaved: the image; planar: plane 0.
    Kro8u* data() { return plane(0); }
    const Kro8u* data() const { return plane(0); }
    Kro8u* plane(int k) { return planes_[k]; }
    const Kro8u* plane(int k) const { return planes_[k]; }
    // Plane-pointer arrays as the operations take them.
    Kro8u* const* planes() { return planes_; }
    const Kro8u* const* cplanes() const { return cplanes_; }
    // Bytes of the pixels themselves (not the row padding), all planes.
    std::size_t pixelBytes() const;
    // Bytes of the whole allocation (rows with their padding).
    std::size_t totalBytes() const { return bytes_; }

    // Byte sample of channel c (index into the order string; the pair's
    // sample for subsampled chroma) at (x, y). 8-bit formats only.
    Kro8u& at(int x, int y, int c);
    Kro8u at(int x, int y, int c) const;
    // Any depth: the sample in units of 0..255 (floats times 255).
    double value(int x, int y, int c) const;
    void setValue(int x, int y, int c, double v);
    // Whether every byte of the sample still holds v.
    bool holds(int x, int y, int c, Kro8u v) const;
    void fill(Kro8u v);

private:
    Format fmt_{Layout::C3, Model::Rgb, "RGB"};
    int w_ = 0, h_ = 0;
    int steps_[4] = {};
    Kro8u* address(int x, int y, int c) const;
    std::size_t bytes_ = 0;
    std::shared_ptr<Kro8u> mem_;
    Kro8u* planes_[4] = {};
    const Kro8u* cplanes_[4] = {};
};

// ------------------------------------------------------------ source picture
// The one picture every implementation converts: a photograph, mirrored and
// tiled to the size asked, or a deterministic synthetic picture when no
// photograph can be read. Values are RGB 0..255, 3 bytes a pixel, no padding.
struct Picture {
    int width = 0, height = 0;
    std::vector<Kro8u> rgb;
    std::string origin;  // what it was made from
};
Picture makePicture(int width, int height);

// Writes the picture into an image of any format: RGB models get the samples,
// the others the picture encoded through their model (float, rounded, clamped);
// alpha gets a ramp. Opaque images get the RGB bytes as they are.
void encodePicture(const Picture& p, Image& img);

// Loose comparison of two outputs of one job, decoded to RGB through their
// models: mean absolute difference per sample, and the share of samples more
// than 16 apart. Opaque: fraction of samples still holding the fill value.
// With a subsampled output or source, whole chroma blocks only.
struct Agreement {
    bool decoded = false;
    double meanAbs = 0.0;
    double farShare = 0.0;
    double unwritten = 0.0;
};
Agreement compare(const Image& ours, const Image& theirs, Kro8u fillValue, Layout source = Layout::C1);

// ------------------------------------------------------------ the job table
// One implementation of a job: a krocc operation or a peer's closest call.
// prepare() runs once per image size, outside the timed loop, and returns the
// call that is timed (it may capture contexts and scratch rows).
using Run = std::function<void(const Image& in, Image& out)>;
struct Impl {
    std::string lib;      // "krocc", "opencv", "libyuv", "swscale"
    std::string call;     // what is called, as a user would write it
    std::string differs;  // how the job differs from krocc's (empty for krocc)
    Format in, out;
    std::function<Run(int width, int height)> prepare;
    // Takes only even widths and heights: left out at other sizes.
    bool evenSizes = false;
};

// Whether an implementation runs at a size.
inline bool takes(const Impl& i, int width, int height) { return !i.evenSizes || ((width | height) & 1) == 0; }

// A job: the krocc operation first, then the peers found at build time. A
// memcpy of the source's bytes is added to every job as the bandwidth ceiling.
struct Job {
    std::string name;  // the krocc operation's name
    std::vector<Impl> impls;
};

// Families register their table with KB_JOBS(family) { ...entries... };
std::vector<Job>& jobTable();
struct JobRegistrar {
    explicit JobRegistrar(std::vector<Job> jobs);
};
#define KB_JOBS_CAT2(a, b) a##b
#define KB_JOBS_CAT(a, b) KB_JOBS_CAT2(a, b)
#define KB_JOBS(family) static const ::kb::JobRegistrar KB_JOBS_CAT(kbJobs_, family)

// A krocc implementation: one line per operation.
Impl krocc(Format in, Format out, std::string call, Run run);
// A peer's call that needs no set-up, written inline in a table entry.
Impl peer(std::string lib, std::string call, Format in, Format out, std::string differs, Run run);

}  // namespace kb
