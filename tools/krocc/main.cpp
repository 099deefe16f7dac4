// krocc: the colour-conversion library from a shell.
#include <cstdio>
#include <cstring>
#include <new>

#include "commands.h"
#include "image.h"
#include "io.h"
#include "ops.h"
#include "typed.h"

namespace kt {

namespace {

const char* const kUsage =
    "usage: krocc COMMAND [options]\n"
    "\n"
    "  krocc demo [PICTURE] [--out DIR]\n"
    "      Sends a picture (a built-in photograph by default) through every conversion\n"
    "      of the library and back, writes the results as PNG files and an index.html\n"
    "      into DIR (default krocc-demo), and prints speed and error figures.\n"
    "\n"
    "  krocc convert IN OUT [--from FORMAT] [--to FORMAT] [--matrix MODEL] [--size WxH] [--verbose]\n"
    "      Converts a .png, .ppm or .pgm picture, or a raw video file (any other name;\n"
    "      needs --from and --size), from one pixel format to another. Formats use\n"
    "      FFmpeg's pixel-format names (rgb24, bgr24, rgba, gray, yuv444p, ...). A picture\n"
    "      file's channels are read as --from's channels in order (R, G, B or Y, U, V);\n"
    "      --from defaults to gray, rgb24 or rgba by the picture's channels, --to to\n"
    "      --from. --verbose tells which library operation runs. A raw file may hold\n"
    "      several frames; - reads raw frames from standard input or writes them to\n"
    "      standard output.\n"
    "\n"
    "  krocc list\n"
    "      Lists the operations the library exports, the format pairs that reach\n"
    "      each (or that only the demo calls it), the pixel formats and the models.\n";

void wrap(const std::string& lead, const std::vector<std::string>& items) {
    std::string line = lead;
    const std::string indent(lead.size(), ' ');
    for (std::size_t i = 0; i < items.size(); ++i) {
        const std::string item = items[i] + (i + 1 < items.size() ? "," : "");
        if (line.size() + 1 + item.size() > 100 && line != lead) {
            std::printf("%s\n", line.c_str());
            line = indent;
        }
        line += (line == lead || line == indent ? "" : " ") + item;
    }
    std::printf("%s\n", line.c_str());
}

}  // namespace

int runList(const Args& args) {
    if (!args.empty()) throw UsageError("list takes no arguments");
    const KroLibraryVersion* v = kroccGetLibVersion();
    std::printf("%s, version %s, built %s\n\n", v->displayName, v->versionText, v->buildDateText);

    // For every operation, the format pairs for which convert picks it.
    const std::vector<Format>& fs = formats();
    std::printf("Operations (%zu exported):\n", exportedNames().size());
    for (const std::string& name : exportedNames()) {
        const Conversion* c = findConversion(name);
        if (name == "kroccGetLibVersion") {
            std::printf("  %-28s the version record\n", name.c_str());
            continue;
        }
        if (!c) {
            std::string how = "not reached";
            for (const TTrip& t : typedTrips()) {
                if (name == t.there.name && t.back.name) how = std::string("demo only, there; back by ") + t.back.name;
                else if (name == t.there.name) how = "demo only, one way";
                else if (t.back.name && name == t.back.name) how = std::string("demo only, back; there by ") + t.there.name;
                if (how != "not reached") break;
            }
            if (name == "kroiReduceBitsGetBufferSize") how = "demo only, sizes the kroiReduceBits_ work blocks";
            std::printf("  %-28s %s\n", name.c_str(), how.c_str());
            continue;
        }
        std::printf("  %-28s %s -> %s, model %s\n", name.c_str(), c->from, c->to, c->model);
        std::vector<std::string> pairs;
        for (const Format& a : fs)
            for (const Format& b : fs) {
                Route r;
                if ((&a != &c->fromFormat() || &b != &c->toFormat()) && findRoute(a, b, c->model, r) && r.op == c)
                    pairs.push_back(std::string(a.name) + " -> " + b.name);
            }
        if (!pairs.empty()) wrap(std::string(32, ' ') + "also ", pairs);
    }

    std::printf("\nPixel formats (* krocc's own name: FFmpeg has none for the layout):\n");
    for (const Format& f : fs) {
        bool reached = false;
        for (const Format& g : fs) {
            Route r;
            if (&g != &f && (findRoute(f, g, "", r) || findRoute(g, f, "", r))) reached = true;
        }
        std::printf("  %-10s %-4s %-48s %s\n", (std::string(f.name) + (f.ffmpegName ? "" : "*")).c_str(),
                    familyName(f.family), f.about, reached ? "" : "(no operation reaches it yet)");
    }
    std::printf("\nModels (--matrix; the first that reaches a pair is the default):\n");
    for (const Model& m : models()) std::printf("  %-10s %s\n", m.name, m.about);
    return 0;
}

}  // namespace kt

int main(int argc, char** argv) {
    using namespace kt;
    const Args all(argv + 1, argv + argc);
    if (all.empty()) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    const std::string cmd = all[0];
    const Args rest(all.begin() + 1, all.end());
    removeTemporaryOnSignals();
    try {
        if (cmd == "demo") return runDemo(rest);
        if (cmd == "convert") return runConvert(rest);
        if (cmd == "list") return runList(rest);
        if (cmd == "help" || cmd == "--help" || cmd == "-h") {
            std::fputs(kUsage, stdout);
            return 0;
        }
        if (cmd == "--version") {
            std::printf("krocc %s\n", kroccGetLibVersion()->versionText);
            return 0;
        }
        throw UsageError("unknown command '" + cmd + "' (krocc help)");
    } catch (const UsageError& e) {
        std::fprintf(stderr, "krocc: %s\n", e.what());
        return 2;
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "krocc: out of memory\n");
        return 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "krocc: %s\n", e.what());
        return 1;
    }
}
