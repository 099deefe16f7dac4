// krocc demo: one picture through every conversion of the library and back,
// with speed, error figures and an index page of the results.
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "commands.h"
#include "io.h"
#include "ops.h"
#include "typed.h"

namespace kt {

extern const unsigned char kroccDemoPng[];
extern const std::size_t kroccDemoPngSize;

namespace {

void makeDirs(const std::string& dir) {
    for (std::size_t at = 1; at <= dir.size(); ++at) {
        if (at < dir.size() && dir[at] != '/') continue;
        const std::string part = dir.substr(0, at);
        if (mkdir(part.c_str(), 0777) != 0 && errno != EEXIST)
            throw Error("cannot make directory " + part + ": " + std::strerror(errno));
    }
    struct stat st;
    if (stat(dir.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) throw Error(dir + " is not a directory");
}

// A conversion there and, where the library has one, back.
// An operation whose input no picture is becomes reachable behind an encoder
// (pre) that makes its input from the picture.
struct Trip {
    const Conversion* there = nullptr;
    const Conversion* back = nullptr;
    const Conversion* pre = nullptr;
    const Conversion* pre2 = nullptr;  // a repacking after pre
    const Conversion* via = nullptr;   // a repacking before back
};

// BT.709 studio-range YCbCr planes computed by the tool itself, for the
// library's full-resolution BT.709 decoders, which have no encoder of their own.
const Conversion& toolBt709Encoder() {
    static const Conversion c{"BT.709 encoder of the tool", "rgb24", "yuv444p", "bt709", [](const Image& s, Image& d) {
        const std::size_t n = static_cast<std::size_t>(s.width) * s.height;
        for (std::size_t i = 0; i < n; ++i) {
            const double r = s.plane[0][i * 3], g = s.plane[0][i * 3 + 1], b = s.plane[0][i * 3 + 2];
            const double y = 0.2126 * r + 0.7152 * g + 0.0722 * b;
            d.plane[0][i] = static_cast<uint8_t>(std::lround(16 + y * 219 / 255));
            d.plane[1][i] = static_cast<uint8_t>(std::clamp(std::lround(128 + (b - y) / 1.8556 * 224 / 255), 0L, 255L));
            d.plane[2][i] = static_cast<uint8_t>(std::clamp(std::lround(128 + (r - y) / 1.5748 * 224 / 255), 0L, 255L));
        }
        return KroStatus(kroStatusOk);
    }};
    return c;
}

bool isRgb(const Format& f) { return f.family == Family::Rgb; }

// The decoders' model for what an encoder wrote: a filtered or curved
// BT.601 encoding is decoded as plain BT.601.
const char* decodedAs(const char* model) {
    return !std::strcmp(model, "bt601f") || !std::strcmp(model, "curve") ? "bt601" : model;
}

std::vector<Trip> planTrips(std::vector<const Conversion*>& skipped) {
    const std::vector<Conversion>& ops = conversions();
    std::vector<Trip> trips;
    std::vector<bool> used(ops.size(), false);
    auto index = [&](const Conversion* c) { return static_cast<std::size_t>(c - ops.data()); };
    // Each conversion from RGB, with the best way back: same layout in, same
    // layout out, one not yet shown.
    for (const Conversion& f : ops) {
        if (!isRgb(f.fromFormat()) || isRgb(f.toFormat())) continue;
        const Conversion* best = nullptr;
        int bestScore = -1;
        for (const Conversion& b : ops) {
            if (std::strcmp(b.model, decodedAs(f.model)) != 0 || !isRgb(b.toFormat()) || isRgb(b.fromFormat())) continue;
            if (!canRepack(f.toFormat(), b.fromFormat())) continue;
            const int score = (&b.fromFormat() == &f.toFormat()) * 4 + (&b.toFormat() == &f.fromFormat()) * 2 +
                              !used[index(&b)];
            if (score > bestScore) {
                best = &b;
                bestScore = score;
            }
        }
        // A layout no decoder of the model reads: repacked into one that it reads.
        const Conversion* via = nullptr;
        for (const Conversion& l : ops) {
            if (best || !chromaOnly(l.model) || &l.fromFormat() != &f.toFormat()) continue;
            for (const Conversion& b : ops)
                if (!best && !std::strcmp(b.model, decodedAs(f.model)) && isRgb(b.toFormat()) &&
                    canRepack(l.toFormat(), b.fromFormat())) {
                    best = &b;
                    via = &l;
                }
        }
        used[index(&f)] = true;
        if (best) used[index(best)] = true;
        trips.push_back({&f, best, nullptr, nullptr, via});
    }
    // Conversions back to RGB not shown yet, behind a conversion there.
    for (const Conversion& b : ops) {
        if (used[index(&b)] || isRgb(b.fromFormat()) || !isRgb(b.toFormat())) continue;
        const Conversion* best = nullptr;
        int bestScore = -1;
        for (const Conversion& f : ops) {
            if (std::strcmp(b.model, f.model) != 0 || !isRgb(f.fromFormat()) || isRgb(f.toFormat())) continue;
            if (!canRepack(f.toFormat(), b.fromFormat())) continue;
            const int score = (&b.fromFormat() == &f.toFormat()) * 4 + (&b.toFormat() == &f.fromFormat()) * 2;
            if (score > bestScore) {
                best = &f;
                bestScore = score;
            }
        }
        if (!best) continue;
        used[index(&b)] = true;
        trips.push_back({best, &b});
    }
    // Anything else that starts from RGB runs one way; the rest behind an
    // encoder of its input (BT.601 where the operation has no model), and,
    // where it ends in another layout, before a decoder of that.
    auto pick = [&](const char* model, auto fits) -> const Conversion* {
        const char* want = chromaOnly(model) ? "bt601" : model;
        for (const Conversion& c : ops)
            if (std::strcmp(c.model, want) == 0 && fits(c)) return &c;
        return nullptr;
    };
    for (const Conversion& c : ops) {
        if (used[index(&c)]) continue;
        if (isRgb(c.fromFormat())) {
            trips.push_back({&c, nullptr});
            continue;
        }
        const Conversion* pre = pick(c.model, [&](const Conversion& e) {
            return isRgb(e.fromFormat()) && canRepack(e.toFormat(), c.fromFormat());
        });
        if (!pre && std::strcmp(c.model, "bt709") == 0 && canRepack(toolBt709Encoder().toFormat(), c.fromFormat()))
            pre = &toolBt709Encoder();
        // Inputs no encoder writes: an encoder, then a repacking into them.
        const Conversion* pre2 = nullptr;
        for (const Conversion& l : ops) {
            if (pre || !chromaOnly(l.model) || &l.toFormat() != &c.fromFormat()) continue;
            pre = pick(c.model, [&](const Conversion& e) { return isRgb(e.fromFormat()) && &e.toFormat() == &l.fromFormat(); });
            if (pre) pre2 = &l;
        }
        const Conversion* back = nullptr;
        const Conversion* via = nullptr;
        auto decoderOf = [&](const Format& f) {
            return pick(pre->model, [&](const Conversion& d) { return isRgb(d.toFormat()) && canRepack(f, d.fromFormat()); });
        };
        if (c.toFormat().family == Family::Yuv && pre) {
            back = decoderOf(c.toFormat());
            for (const Conversion& l : ops) {  // outputs no decoder reads: a repacking first
                if (back || !chromaOnly(l.model) || &l.fromFormat() != &c.toFormat()) continue;
                back = decoderOf(l.toFormat());
                if (back) via = &l;
            }
        }
        if (pre) trips.push_back({&c, back, pre, pre2, via});
        else skipped.push_back(&c);
    }
    return trips;
}

Image runChecked(const Conversion& op, const Image& in) {
    KroStatus st;
    Image out = runOp(op, in, &st);
    if (st < 0) throw Error(std::string(op.name) + " failed with " + statusText(st));
    return out;
}

// Best time of one call, in seconds, over enough calls to fill about 4 ms.
double timeOp(const Conversion& op, const Image& in, Image& out) {
    using Clock = std::chrono::steady_clock;
    double best = 1e30, total = 0;
    for (int run = 0; run < 400 && (run < 2 || total < 0.004); ++run) {
        const auto t0 = Clock::now();
        op.call(in, out);
        const double t = std::chrono::duration<double>(Clock::now() - t0).count();
        best = std::min(best, t);
        total += t;
    }
    return best;
}

// The top left w x h pixels of a full-resolution image.
Image cropped(const Image& img, int w, int h) {
    if (w == img.width && h == img.height) return img;
    Channels ch = unpack(img);
    for (auto& c : ch.c) {
        for (int y = 0; y < h; ++y)
            std::memmove(&c[static_cast<std::size_t>(y) * w], &c[static_cast<std::size_t>(y) * ch.width], static_cast<std::size_t>(w));
        c.resize(static_cast<std::size_t>(w) * h);
    }
    ch.width = w;
    ch.height = h;
    return pack(ch, *img.fmt);
}

struct Error3 {
    double psnr = 0;  // +inf for identical pictures
    int largest = 0;
};

// Compares R, G, B of a round trip with the source; draws the difference
// as 128 + 32 x (result - source) per channel.
Error3 compare(const Channels& src, const Channels& got, Picture& diff) {
    const std::size_t n = static_cast<std::size_t>(src.width) * src.height;
    diff.width = src.width;
    diff.height = src.height;
    diff.channels = 3;
    diff.data.resize(n * 3);
    double sq = 0;
    Error3 e;
    for (int c = 0; c < 3; ++c)
        for (std::size_t i = 0; i < n; ++i) {
            const int d = got.c[c][i] - src.c[c][i];
            sq += static_cast<double>(d) * d;
            e.largest = std::max(e.largest, std::abs(d));
            diff.data[i * 3 + c] = static_cast<uint8_t>(std::clamp(128 + 32 * d, 0, 255));
        }
    const double mse = sq / (3.0 * static_cast<double>(n));
    e.psnr = mse == 0 ? INFINITY : 10.0 * std::log10(255.0 * 255.0 / mse);
    return e;
}

std::string fixed(double v, int decimals) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
    return buf;
}

std::string html(const std::string& s) {
    std::string r;
    for (char c : s) {
        if (c == '<') r += "&lt;";
        else if (c == '>') r += "&gt;";
        else if (c == '&') r += "&amp;";
        else if (c == '"') r += "&quot;";
        else r += c;
    }
    return r;
}

struct Shown {
    std::string there, back, about, midFile, backFile, diffFile, midNote;
    double thereMps = 0, backMps = 0, bound = -1;
    bool hasBack = false, compared = false;
    Error3 err;
    bool over() const { return compared && bound >= 0 && err.largest > bound; }
};

std::string errorText(const Shown& r) {
    if (!r.compared) return "";
    return std::isinf(r.err.psnr) ? std::string("identical") : fixed(r.err.psnr, 2);
}

void writeIndex(const std::string& path, const std::string& imageName, int w, int h, const std::vector<Shown>& rows,
                const std::vector<const Conversion*>& skipped) {
    const KroLibraryVersion* v = kroccGetLibVersion();
    std::string s;
    s += "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>krocc demo</title>\n"
         "<style>body{font-family:sans-serif;margin:1.5em}figure{display:inline-block;margin:0 .6em .6em 0;"
         "vertical-align:top}figcaption{font-size:small;max-width:460px}img{image-rendering:pixelated;"
         "max-width:100%;border:1px solid #ccc}td,th{padding:0 .6em;text-align:right}"
         "td:first-child,th:first-child,td:nth-child(3),th:nth-child(3){text-align:left}"
         "h2{font-size:1.05em;margin-top:1.4em}.over{color:#b00}</style>\n"
         "</head><body>\n";
    s += "<h1>krocc demo</h1>\n<p>" + html(imageName) + ", " + std::to_string(w) + " x " + std::to_string(h) +
         " pixels, through every conversion of " + html(v->displayName) + " " + html(v->versionText) +
         " and back.</p>\n";
    s += "<p>Pictures in YUV and other non-RGB models are shown as one <b>grey</b> picture of their planes "
         "side by side (Y, U, V from left to right; samples wider than 8 bits stretched from their smallest to "
         "their largest value). Alpha is not shown. A difference picture shows "
         "128 + 32 &times; (result &minus; source) for each of R, G and B, limited to 0 to 255: "
         "mid-grey is no difference, and one step of error is a clear tint. Speeds are the best of repeated "
         "calls on this picture, on one thread, with the data in cache. The bound is the largest error the "
         "round trip is allowed.</p>\n";
    s += "<table><tr><th>conversion</th><th>Mpixel/s</th><th>back</th><th>Mpixel/s</th><th>PSNR dB</th>"
         "<th>largest error</th><th>bound</th></tr>\n";
    for (const Shown& r : rows) {
        s += "<tr" + std::string(r.over() ? " class=\"over\"" : "") + "><td>" + r.there + "</td><td>" +
             fixed(r.thereMps, 0) + "</td><td>" + (r.hasBack ? r.back : "&ndash;") + "</td><td>" +
             (r.hasBack ? fixed(r.backMps, 0) : "") + "</td><td>" + errorText(r) + "</td><td>" +
             (r.compared ? std::to_string(r.err.largest) : "") + "</td><td>" +
             (r.bound >= 0 ? fixed(r.bound, 0) : "") + "</td></tr>\n";
    }
    s += "</table>\n<h2>Source</h2>\n<figure><img src=\"source.png\" alt=\"source\"><figcaption>source.png</figcaption></figure>\n";
    for (const Shown& r : rows) {
        s += "<h2>" + r.there + (r.hasBack ? " and " + r.back : "") + "</h2>\n";
        s += "<figure><img src=\"" + r.midFile + "\" alt=\"result\"><figcaption>" + r.there + ": " + html(r.about) +
             "; " + html(r.midNote) + "</figcaption></figure>\n";
        if (r.compared) {
            s += "<figure><img src=\"" + r.backFile + "\" alt=\"result in colour\"><figcaption>" +
                 (r.hasBack ? r.back + ": back to RGB" : std::string("the result as RGB")) + "</figcaption></figure>\n";
            s += "<figure><img src=\"" + r.diffFile + "\" alt=\"difference\"><figcaption>difference &times;32, largest " +
                 std::to_string(r.err.largest) + "</figcaption></figure>\n";
        }
    }
    s += "<p>kroiReduceBitsGetBufferSize sized the work block of every kroiReduceBits_ entry.</p>\n";
    if (!skipped.empty()) {
        s += "<h2>Not shown</h2>\n<p>No picture of the source leads to these operations' input:";
        for (const Conversion* c : skipped) s += std::string(" ") + c->name;
        s += ".</p>\n";
    }
    s += "</body></html>\n";
    OutFile f(path);
    f.write(s.data(), s.size());
    f.commit();
}

// The largest round-trip error each model allows at full resolution; chroma
// subsampling has no bound of its own (it depends on the picture).
double conversionBound(const Trip& t) {
    if (!t.back) return -1;
    const Format* fs[4] = {&t.there->fromFormat(), &t.there->toFormat(), &t.back->fromFormat(), &t.back->toFormat()};
    for (const Format* f : fs)
        if (!f->fullResolution()) return -1;
    const std::string m = t.there->model;
    if (m == "luma") return -1;  // colour is dropped
    if (m == "analog") return 4;
    if (m == "photoycc") return 12;  // its chroma range clips saturated colours
    return 3;
}

void printRow(const Shown& r) {
    std::printf("%-36s %8.0f  %-36s %8s %9s %7s %5s%s\n", r.there.c_str(), r.thereMps, r.hasBack ? r.back.c_str() : "-",
                r.hasBack ? fixed(r.backMps, 0).c_str() : "", errorText(r).c_str(),
                r.compared ? std::to_string(r.err.largest).c_str() : "", r.bound >= 0 ? fixed(r.bound, 0).c_str() : "",
                r.over() ? "  over its bound" : "");
    std::fflush(stdout);
}

}  // namespace

int runDemo(const Args& args) {
    std::string outDir = "krocc-demo", input;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (takeOption(args, i, "--out", "-o", outDir)) continue;
        if (args[i].size() > 1 && args[i][0] == '-') throw UsageError("unknown option '" + args[i] + "' for demo (krocc help)");
        if (!input.empty()) throw UsageError("demo takes at most one picture");
        input = args[i];
    }
    if (outDir.empty()) throw UsageError("--out needs a directory");
    while (outDir.size() > 1 && outDir.back() == '/') outDir.pop_back();

    const Picture pic = input.empty() ? decodePng(kroccDemoPng, kroccDemoPngSize, "the built-in picture")
                                      : readPicture(input);
    if (pic.channels < 3) throw Error(input + " is grey; the demo needs a colour picture");
    const std::string imageName = input.empty() ? "chelsea.png (built in)" : input.substr(input.find_last_of('/') + 1);
    const Format& rgb = formatOrThrow("rgb24");
    const Image source = fromPicture(pic, rgb);

    makeDirs(outDir);
    writePng(outDir + "/source.png", showPicture(source));

    std::vector<const Conversion*> skipped;
    const std::vector<Trip> trips = planTrips(skipped);
    std::vector<Shown> rows;

    std::printf("%s, %d x %d\n", imageName.c_str(), source.width, source.height);
    std::printf("%-36s %8s  %-36s %8s %9s %7s %5s\n", "conversion", "Mpixel/s", "back", "Mpixel/s", "PSNR dB", "largest",
                "bound");
    int number = 0;
    bool anyOver = false;
    auto prefixOf = [&](int n) {
        char prefix[16];
        std::snprintf(prefix, sizeof prefix, "%03d-", n);
        return std::string(prefix);
    };
    for (const Trip& t : trips) {
        Shown r;
        r.there = t.there->name;
        r.about = std::string(t.there->from) + " to " + t.there->to + ", model " + t.there->model;
        if (t.pre) r.about += std::string("; its input made by ") + t.pre->name + (t.pre2 ? std::string(" and ") + t.pre2->name : "");
        if (t.via) r.about += std::string("; its output repacked by ") + t.via->name + " for the way back";
        const std::string prefix = prefixOf(++number);
        // Subsampled formats take whole chroma blocks: crop the picture to fit.
        int bw = std::max(t.there->fromFormat().blockWidth(), t.there->toFormat().blockWidth());
        int bh = std::max(t.there->fromFormat().blockHeight(), t.there->toFormat().blockHeight());
        bh = std::max(bh, t.there->rowMultiple);
        for (const Conversion* c : {t.pre, t.pre2, t.via})
            if (c) {
                bw = std::max({bw, c->fromFormat().blockWidth(), c->toFormat().blockWidth()});
                bh = std::max({bh, c->fromFormat().blockHeight(), c->toFormat().blockHeight()});
            }
        if (t.back) {
            bw = std::max({bw, t.back->fromFormat().blockWidth(), t.back->toFormat().blockWidth()});
            bh = std::max({bh, t.back->fromFormat().blockHeight(), t.back->toFormat().blockHeight()});
        }
        if (source.width < bw || source.height < bh) {
            std::printf("%-36s not run: the picture is smaller than one %d x %d block\n", r.there.c_str(), bw, bh);
            continue;
        }
        const Image fitted = cropped(source, source.width / bw * bw, source.height / bh * bh);
        const double mpix = static_cast<double>(fitted.width) * fitted.height / 1e6;
        try {
            Image in = fitted;
            for (const Conversion* c : {t.pre, t.pre2})
                if (c) in = runChecked(*c, repack(in, c->fromFormat()));
            in = repack(in, t.there->fromFormat());
            Image mid = runChecked(*t.there, in);
            r.thereMps = mpix / timeOp(*t.there, in, mid);
            r.midFile = prefix + std::string(t.there->name + 4) + ".png";
            writePng(outDir + "/" + r.midFile, showPicture(mid));
            r.midNote = mid.fmt->family == Family::Rgb ? "shown in colour" : "planes shown in grey side by side";
            if (t.back) {
                r.hasBack = r.compared = true;
                r.back = t.back->name;
                r.bound = conversionBound(t);
                const Image backIn = repack(t.via ? runChecked(*t.via, mid) : mid, t.back->fromFormat());
                Image back = runChecked(*t.back, backIn);
                r.backMps = mpix / timeOp(*t.back, backIn, back);
                const Image backRgb = repack(back, rgb);
                r.backFile = prefix + std::string(t.back->name + 4) + ".png";
                writePng(outDir + "/" + r.backFile, showPicture(backRgb));
                Picture diff;
                r.err = compare(unpack(fitted), unpack(backRgb), diff);
                r.diffFile = prefix + std::string("difference.png");
                writePng(outDir + "/" + r.diffFile, diff);
            } else if (mid.fmt->fullResolution() && mid.fmt->family != Family::Yuv) {
                // One way to RGB or grey: the result itself against the source.
                r.compared = true;
                Channels got = unpack(mid);
                if (got.family == Family::Gray) got.c.assign(3, got.c[0]);
                got.family = Family::Rgb;
                got.alpha = false;
                got.c.resize(3);
                r.backFile = prefix + "result-rgb.png";
                writePng(outDir + "/" + r.backFile, showPicture(repack(pack(got, rgb), rgb)));
                Picture diff;
                r.err = compare(unpack(fitted), got, diff);
                r.diffFile = prefix + std::string("difference.png");
                writePng(outDir + "/" + r.diffFile, diff);
            }
        } catch (const Error& e) {  // a picture too small for the operation
            std::printf("%-36s not run on this picture: %s\n", r.there.c_str(), e.what());
            continue;
        }
        printRow(r);
        anyOver = anyOver || r.over();
        rows.push_back(std::move(r));
    }
    const Channels src = unpack(source);
    for (const TTrip& t : typedTrips()) {
        Shown r;
        r.there = t.there.name;
        r.about = t.note;
        r.bound = t.bound;
        const std::string prefix = prefixOf(++number);
        const TripRun run = runTypedTrip(t, src, 0.004);
        if (run.thereStatus < 0 || run.backStatus < 0) {  // e.g. a mosaic smaller than the operation's least
            std::printf("%-36s not run on this picture: %s\n", r.there.c_str(),
                        statusText(run.thereStatus < 0 ? run.thereStatus : run.backStatus).c_str());
            continue;
        }
        r.thereMps = run.thereMps;
        r.midFile = prefix + std::string(t.there.name + 4) + ".png";
        writePng(outDir + "/" + r.midFile, run.mid);
        r.midNote = "samples shown in grey, each plane stretched to its range";
        r.hasBack = run.hasBack;
        if (run.hasBack) {
            r.back = t.back.name;
            r.backMps = run.backMps;
        }
        if (run.compared) {
            r.compared = true;
            r.backFile = prefix + (run.hasBack ? std::string(t.back.name + 4) : std::string("result")) + "-rgb.png";
            writePng(outDir + "/" + r.backFile, run.back);
            Picture diff;
            r.err = compare(src, run.result, diff);
            r.diffFile = prefix + "difference.png";
            writePng(outDir + "/" + r.diffFile, diff);
        }
        printRow(r);
        anyOver = anyOver || r.over();
        rows.push_back(std::move(r));
    }
    for (const Conversion* c : skipped) std::printf("%-36s not shown: no picture leads to its input\n", c->name);
    std::printf("%-36s sized the work block of every kroiReduceBits_ entry\n", "kroiReduceBitsGetBufferSize");
    if (anyOver) std::printf("some round trips are over their bound\n");

    const std::string index = outDir + "/index.html";
    writeIndex(index, imageName, source.width, source.height, rows, skipped);
    char real[PATH_MAX];
    std::printf("%s\n", realpath(index.c_str(), real) ? real : index.c_str());
    return 0;
}

}  // namespace kt
