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
// one step for all planes.
enum class Layout { C1, C3, C4, P3, P4 };

int channelsOf(Layout l);
bool planarOf(Layout l);
const char* layoutName(Layout l);

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
// "YVU"; 'A' is alpha, 'x' a byte nobody reads).
struct Format {
    Layout layout;
    Model model;
    const char* order;
};

// ------------------------------------------------------------ images
// A 64-byte aligned image; rows padded to a multiple of 64 bytes.
class Image {
public:
    Image() = default;
    Image(Format f, int width, int height);

    Format format() const { return fmt_; }
    int width() const { return w_; }
    int height() const { return h_; }
    int step() const { return step_; }
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

    // Sample of channel c (index into the order string) at (x, y).
    Kro8u& at(int x, int y, int c);
    Kro8u at(int x, int y, int c) const;
    void fill(Kro8u v);

private:
    Format fmt_{Layout::C3, Model::Rgb, "RGB"};
    int w_ = 0, h_ = 0, step_ = 0;
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
struct Agreement {
    bool decoded = false;
    double meanAbs = 0.0;
    double farShare = 0.0;
    double unwritten = 0.0;
};
Agreement compare(const Image& ours, const Image& theirs, Kro8u fillValue);

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
};

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
