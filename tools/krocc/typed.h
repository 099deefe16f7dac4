// The demo's second table: operations on 8-bit pictures that convert cannot
// hold (16u, 16s, 32s, 32f and 64f samples), operations with parameters of
// their own (gamma ranges, twist matrices, dither selectors, Bayer grids) and
// the perceptual models. One entry per round trip or one-way conversion; the
// layouts of both sides are read from the operation's name and its argument
// types, so an entry is one line.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "image.h"
#include "io.h"

namespace kt {

enum class Depth { U8, U16, S16, S32, U32, F32, F64 };

// One side of an operation: sample type, samples a pixel (interleaved) or
// planes (planar), and where the colour channels lie.
struct Side {
    Depth depth = Depth::U8;
    int count = 3;         // 1, 3 or 4
    bool planar = false;
    bool bgr = false;      // colour channels in the order B, G, R
    bool skipAlpha = false;  // AC4: the fourth sample is not a channel
    int fullScale = 0;     // integer samples: the value that stands for 255 (0: the type's own)
};

// An image of one side: every plane (one for interleaved) with the same step.
struct TBuf {
    Side side;
    int width = 0, height = 0, step = 0;
    std::vector<unsigned char> mem[4];

    TBuf() = default;
    TBuf(const Side& s, int w, int h);
    int planes() const { return side.planar ? side.count : 1; }
    void* plane(int p) { return mem[p].data(); }
    const void* plane(int p) const { return mem[p].data(); }
    double get(int c, int x, int y) const;  // channel c in memory order
    void put(int c, int x, int y, double v);
};

using OpFn = std::function<KroStatus(const TBuf& src, TBuf& dst)>;

// An operation as the demo calls it.
struct TOp {
    const char* name = nullptr;
    Side from, to;
    OpFn call;
    bool inPlace = false;
};

// How the result of a one-way entry compares with the source.
enum class Against { Colour, Grey, Nothing };

struct TTrip {
    TOp there, back;            // back.name null: one way
    double bound = -1;          // largest error allowed against the source; below 0: none stated
    const char* note = "";
    // Entries that build their own input or read their own output.
    std::function<void(const Channels& src, TBuf& in)> makeInput;
    std::function<void(const TBuf& out, Channels& rgb)> readOutput;
    Against against = Against::Colour;
    bool stacked = false;       // one-channel entries: the three colour planes one above another
};

const std::vector<TTrip>& typedTrips();

// What the demo shows and measures of one entry.
struct TripRun {
    Picture mid, back;
    bool hasBack = false, compared = false;
    Channels result;            // R, G, B to compare with the source
    double thereMps = 0, backMps = 0;
    KroStatus thereStatus = 0, backStatus = 0;
};

TripRun runTypedTrip(const TTrip& t, const Channels& src, double timeBudget);

// Every exported name some demo entry (either table) calls.
std::vector<std::string> demoReach();

}  // namespace kt
