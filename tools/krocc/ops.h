// The library's conversions as the tool sees them: one table entry per
// exported operation, naming its source and destination formats, the model it
// computes and a call adapter; and the router that picks an entry for a
// format pair.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "image.h"

namespace kt {

struct Model {
    const char* name;  // value of --matrix
    const char* about;
};

// Models in order of preference: with no --matrix the first that reaches a
// pair is used.
const std::vector<Model>& models();
const Model* findModel(const std::string& name);
// Models of operations that only move chroma between subsampled layouts.
bool chromaOnly(const char* model);

using Call = std::function<KroStatus(const Image& src, Image& dst)>;

struct Conversion {
    const char* name;  // exported name
    const char* from;  // source format
    const char* to;    // destination format
    const char* model; // a Model name
    Call call;
    int rowMultiple = 1;  // the operation converts whole groups of this many rows and leaves the rest

    const Format& fromFormat() const { return formatOrThrow(from); }
    const Format& toFormat() const { return formatOrThrow(to); }
};

const std::vector<Conversion>& conversions();
const Conversion* findConversion(const std::string& name);

// Every name the library exports, in slot order (generated from the export list).
const std::vector<std::string>& exportedNames();

// How convert gets from one format to another: an optional lossless repack
// of the input, at most one library operation, an optional repack of the
// output. op == nullptr means the formats differ by layout only.
struct Route {
    const Conversion* op = nullptr;
    bool repackIn = false, repackOut = false;
};

// model: a model name, or empty for the first model that reaches the pair.
// Returns false if no route exists.
bool findRoute(const Format& from, const Format& to, const std::string& model, Route& out);

// Runs op on src (already in op's source format) into a fresh destination
// image whose alpha, where it has one, starts as src's alpha (or 255).
Image runOp(const Conversion& op, const Image& src, KroStatus* status);

std::string statusText(KroStatus s);

}  // namespace kt
