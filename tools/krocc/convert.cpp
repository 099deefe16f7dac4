// krocc convert IN OUT: one picture or raw video file from one pixel format
// to another through the library operation that fits.
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "commands.h"
#include "io.h"
#include "ops.h"

namespace kt {

bool takeOption(const Args& args, std::size_t& i, const char* longName, const char* shortName, std::string& value) {
    const std::string& a = args[i];
    const std::string eq = std::string(longName) + "=";
    if (a.compare(0, eq.size(), eq) == 0) {
        value = a.substr(eq.size());
        return true;
    }
    if (a == longName || (shortName && a == shortName)) {
        if (i + 1 >= args.size()) throw UsageError(std::string("option ") + longName + " needs a value");
        value = args[++i];
        return true;
    }
    return false;
}

namespace {

void parseSize(const std::string& s, int& w, int& h) {
    const std::size_t x = s.find('x');
    auto number = [&](const std::string& t) {
        if (t.empty() || t.size() > 9 || t.find_first_not_of("0123456789") != std::string::npos)
            throw UsageError("--size wants WIDTHxHEIGHT, e.g. 640x480, not '" + s + "'");
        return std::stoi(t);
    };
    if (x == std::string::npos) throw UsageError("--size wants WIDTHxHEIGHT, e.g. 640x480, not '" + s + "'");
    w = number(s.substr(0, x));
    h = number(s.substr(x + 1));
    if (w < 1 || h < 1) throw UsageError("--size wants a width and a height of at least 1, not '" + s + "'");
}

std::string sizeText(int w, int h) { return std::to_string(w) + "x" + std::to_string(h); }

// Raw frames from a file, one at a time. A regular file's length is checked
// against the frame size before anything is converted; from a pipe, a short
// last frame is found when it comes.
class RawInput {
public:
    ~RawInput() {
        if (f_) std::fclose(f_);
    }
    // Returns the number of frames, or 0 if the input's length is unknown.
    std::size_t open(const std::string& path, const Format& fmt, int w, int h) {
        path_ = path;
        fmt_ = &fmt;
        w_ = w;
        h_ = h;
        frame_ = frameBytes(fmt, w, h);
        f_ = path == "-" ? stdin : std::fopen(path.c_str(), "rb");
        if (!f_) throw Error("cannot read " + path + ": " + std::strerror(errno));
        struct stat st;
        if (fstat(fileno(f_), &st) != 0) throw Error("cannot read " + path + ": " + std::strerror(errno));
        if (S_ISDIR(st.st_mode)) throw Error("cannot read " + path + ": it is a directory");
        if (!S_ISREG(st.st_mode)) return 0;
        const auto bytes = static_cast<std::size_t>(st.st_size);
        if (bytes == 0 || bytes % frame_ != 0) throw Error(lengthMessage(bytes));
        return bytes / frame_;
    }
    bool next(Image& img) {
        img = Image(*fmt_, w_, h_);
        std::size_t got = 0;
        for (int p = 0; p < fmt_->planeCount; ++p) {
            const std::size_t n = std::fread(img.data(p), 1, img.plane[p].size(), f_);
            got += n;
            if (n < img.plane[p].size()) break;
        }
        if (std::ferror(f_)) throw Error("cannot read " + path_);
        if (got == 0) return false;
        if (got < frame_) throw Error(lengthMessage(read_ + got));
        read_ += got;
        return true;
    }

private:
    std::string lengthMessage(std::size_t bytes) const {
        return path_ + " holds " + std::to_string(bytes) + " bytes, not a whole number of " + sizeText(w_, h_) + " " +
               fmt_->name + " frames of " + std::to_string(frame_) + " bytes";
    }
    std::string path_;
    const Format* fmt_ = nullptr;
    int w_ = 0, h_ = 0;
    std::size_t frame_ = 0, read_ = 0;
    std::FILE* f_ = nullptr;
};

// What an operation does with a partial last block: two runs over
// destinations filled with 0 and with 255; bytes that keep the fill in both
// were not written. Returns what was left unwritten, or "" if nothing was.
std::string unwrittenEdge(const Conversion& op, int w, int h) {
    Image src(op.fromFormat(), w, h);
    for (int p = 0; p < src.fmt->planeCount; ++p) std::fill(src.plane[p].begin(), src.plane[p].end(), 128);
    Image a(op.toFormat(), w, h), b(op.toFormat(), w, h);
    for (int p = 0; p < b.fmt->planeCount; ++p) std::fill(b.plane[p].begin(), b.plane[p].end(), 255);
    const KroStatus sa = op.call(src, a), sb = op.call(src, b);
    if (sa < 0 || sb < 0) return "fails with " + statusText(sa < 0 ? sa : sb);
    // A column counts as unwritten when the last unit of every row of a plane
    // kept some fill, a row when the whole last row of a plane kept it.
    bool column = false, row = false;
    for (int p = 0; p < a.fmt->planeCount; ++p) {
        const std::size_t unit = std::strlen(a.fmt->planes[p].letters), step = static_cast<std::size_t>(a.step[p]);
        auto kept = [&](std::size_t at) { return a.plane[p][at] == 0 && b.plane[p][at] == 255; };
        bool everyRow = true, wholeRow = true;
        for (int r = 0; r < a.rows[p]; ++r) {
            bool any = false;
            for (std::size_t i = step - unit; i < step; ++i) any = any || kept(r * step + i);
            everyRow = everyRow && any;
        }
        for (std::size_t i = 0; i < step; ++i) wholeRow = wholeRow && kept((a.rows[p] - 1) * step + i);
        column = column || everyRow;
        row = row || wholeRow;
    }
    if (column && row) return "leaves the last column and the last row unwritten";
    if (column) return "leaves the last column unwritten";
    if (row) return "leaves the last row unwritten";
    return "";
}

const char* kindName(FileKind k) { return k == FileKind::Png ? "a PNG file" : "a PPM/PGM file"; }

std::string noRouteMessage(const Format& from, const Format& to, const std::string& model) {
    std::string m = std::string("no operation of this build converts ") + from.name + " to " + to.name;
    if (!model.empty()) {
        Route r;
        if (findRoute(from, to, "", r) && r.op) return m + " with model " + model + " (model " + r.op->model + " does)";
        m += " with model " + model;
    }
    if (from.family == to.family) m += " (krocc repacks only full-resolution layouts; changing the subsampling needs a library operation)";
    return m + " (krocc list shows what it reaches)";
}

}  // namespace

int runConvert(const Args& args) {
    std::string in, out, fromName, toName, model, size;
    bool verbose = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (takeOption(args, i, "--from", "-f", fromName) || takeOption(args, i, "--to", "-t", toName) ||
            takeOption(args, i, "--matrix", "-m", model) || takeOption(args, i, "--size", "-s", size))
            continue;
        if (a == "--verbose" || a == "-v") {
            verbose = true;
        } else if (a.size() > 1 && a[0] == '-') {
            throw UsageError("unknown option '" + a + "' for convert (krocc help)");
        } else if (in.empty()) {
            in = a;
        } else if (out.empty()) {
            out = a;
        } else {
            throw UsageError("convert takes one input and one output, and '" + a + "' is a third");
        }
    }
    if (out.empty()) throw UsageError("convert needs an input and an output file: krocc convert IN OUT [options]");

    const Format* from = fromName.empty() ? nullptr : &formatOrThrow(fromName);
    const Format* to = toName.empty() ? nullptr : &formatOrThrow(toName);
    if (!model.empty() && !findModel(model)) {
        std::string known;
        for (const Model& m : models()) known += std::string(known.empty() ? "" : ", ") + m.name;
        throw UsageError("unknown model '" + model + "' for --matrix; this build offers: " + known);
    }
    const FileKind inKind = kindOfPath(in), outKind = kindOfPath(out);
    int w = 0, h = 0;
    if (!size.empty()) parseSize(size, w, h);

    // The input: raw frames, read one at a time, or one picture.
    RawInput raw;
    Image picture;
    std::size_t frameCount = 1;
    if (inKind == FileKind::Raw) {
        if (!from) throw UsageError("a raw input needs --from FORMAT and --size WxH (" + in + " is not .png, .ppm or .pgm)");
        if (size.empty()) throw UsageError("a raw input needs --size WxH");
        checkSizeFits(*from, w, h, false);  // a partial last block: see below
        frameCount = raw.open(in, *from, w, h);
    } else {
        if (from && !from->fullResolution())
            throw Error(std::string(kindName(inKind)) + " cannot hold " + from->name + "; give it as a raw file with --size");
        const Picture pic = readPicture(in);
        if (!size.empty() && (pic.width != w || pic.height != h))
            throw Error(in + " is " + sizeText(pic.width, pic.height) + ", not the " + size + " that --size gives");
        w = pic.width;
        h = pic.height;
        if (!from) from = &formatOrThrow(pic.channels == 1 ? "gray" : pic.channels == 3 ? "rgb24" : "rgba");
        picture = fromPicture(pic, *from);
        if (verbose && pic.channels == 4 && !from->hasAlpha())
            std::fprintf(stderr, "krocc: %s drops the input's alpha\n", from->name);
    }
    if (!to) to = from;

    // Check the output side before converting anything.
    if (outKind != FileKind::Raw) {
        if (!to->fullResolution())
            throw Error(std::string(kindName(outKind)) + " cannot hold " + to->name + "; write a raw file");
        if (frameCount > 1)
            throw Error(in + " holds " + std::to_string(frameCount) + " frames; " + kindName(outKind) +
                        " holds one (write a raw file)");
        if (outKind == FileKind::Pnm && to->hasAlpha())
            throw Error(std::string("a PPM file cannot hold alpha, and ") + to->name + " has it; write a PNG or a raw file");
    }
    checkSizeFits(*to, w, h, false);
    Route route;
    if (!findRoute(*from, *to, model, route)) throw Error(noRouteMessage(*from, *to, model));
    // Sizes that end in a partial block: only where the operation writes every pixel.
    if (!holdsWholeBlocks(*from, w, h) || !holdsWholeBlocks(*to, w, h)) {
        if (!route.op) {
            checkSizeFits(*from, w, h);
            checkSizeFits(*to, w, h);
        }
        const std::string edge = unwrittenEdge(*route.op, w, h);
        if (!edge.empty()) {
            const Format& f = holdsWholeBlocks(*to, w, h) ? *from : *to;
            std::string need;
            if (w % f.blockWidth()) need = "a width that is a multiple of " + std::to_string(f.blockWidth());
            if (h % f.blockHeight())
                need += (need.empty() ? "" : " and ") + std::string("a height that is a multiple of ") + std::to_string(f.blockHeight());
            throw Error(std::string(f.name) + " cannot hold a " + sizeText(w, h) + " image as " + route.op->name +
                        " converts it: the operation " + edge + " (give " + need + ")");
        }
    }
    if (route.op && h % route.op->rowMultiple != 0) {
        const int n = route.op->rowMultiple, left = h % n;
        throw Error(std::string(route.op->name) + " converts whole groups of " + std::to_string(n) + " rows: it would leave the last " +
                    std::to_string(left) + (left == 1 ? " row" : " rows") + " of a " + sizeText(w, h) +
                    " image unwritten (give a height that is a multiple of " + std::to_string(n) + ")");
    }

    if (verbose) {
        std::string chain = from->name;
        if (route.op) {
            if (route.repackIn) chain += std::string(" -> repack -> ") + route.op->from;
            chain += std::string(" -> ") + route.op->name + " (model " + route.op->model + ") -> " + route.op->to;
            if (route.repackOut) chain += std::string(" -> repack -> ") + to->name;
        } else {
            chain += std::string(" -> ") + (route.repackIn ? "repack" : "copy") + " -> " + to->name + " (no library operation needed)";
            if (!model.empty()) chain += "; --matrix is not used";
        }
        std::string frames = frameCount ? std::to_string(frameCount) : std::string("streamed");
        frames += frameCount == 1 ? " frame" : " frames";
        std::fprintf(stderr, "krocc: %s, %s, %s\n", chain.c_str(), sizeText(w, h).c_str(), frames.c_str());
    }

    auto convertFrame = [&](Image img) {
        if (!route.op) return repack(img, *to);
        if (route.repackIn) img = repack(img, route.op->fromFormat());
        KroStatus st;
        Image res = runOp(*route.op, img, &st);
        if (st < 0) throw Error(std::string(route.op->name) + " failed with " + statusText(st));
        if (st > 0 && verbose) std::fprintf(stderr, "krocc: %s warns %s\n", route.op->name, statusText(st).c_str());
        return route.repackOut ? repack(res, *to) : res;
    };

    if (outKind != FileKind::Raw) {
        if (inKind == FileKind::Raw) {  // exactly one frame
            Image extra;
            if (!raw.next(picture)) throw Error(in + " is empty");
            if (raw.next(extra)) throw Error(in + " holds more than one frame; " + kindName(outKind) + " holds one (write a raw file)");
        }
        writePicture(out, toPicture(convertFrame(std::move(picture))));
        return 0;
    }
    OutFile f(out);
    auto put = [&](const Image& img) {
        for (int p = 0; p < img.fmt->planeCount; ++p) f.write(img.data(p), img.plane[p].size());
    };
    if (inKind == FileKind::Raw) {
        Image frame;
        std::size_t n = 0;
        while (raw.next(frame)) {
            put(convertFrame(std::move(frame)));
            ++n;
        }
        if (n == 0) throw Error(in + " is empty");
    } else {
        put(convertFrame(std::move(picture)));
    }
    f.commit();
    return 0;
}

}  // namespace kt
