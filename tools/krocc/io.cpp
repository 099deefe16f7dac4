#include "io.h"

#include <fcntl.h>
#include <png.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <cstring>

namespace kt {

static std::string lower(std::string s) {
    for (char& c : s) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    return s;
}

FileKind kindOfPath(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    const std::size_t dot = path.find_last_of('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return FileKind::Raw;
    const std::string ext = lower(path.substr(dot + 1));
    if (ext == "png") return FileKind::Png;
    if (ext == "ppm" || ext == "pgm" || ext == "pnm") return FileKind::Pnm;
    return FileKind::Raw;
}

std::vector<uint8_t> readWholeFile(const std::string& path) {
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) throw Error("cannot read " + path + ": " + std::strerror(errno));
    struct stat st;
    if (fstat(fileno(f), &st) == 0 && S_ISDIR(st.st_mode)) {
        std::fclose(f);
        throw Error("cannot read " + path + ": it is a directory");
    }
    std::vector<uint8_t> bytes;
    uint8_t buf[1 << 16];
    std::size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) bytes.insert(bytes.end(), buf, buf + n);
    const bool bad = std::ferror(f);
    std::fclose(f);
    if (bad) throw Error("cannot read " + path);
    return bytes;
}

// ------------------------------------------------------------ PNG
namespace {

struct PngSource {
    const uint8_t* p;
    std::size_t left;
};

struct PngFailure {
    std::jmp_buf jump;
    char message[200];
};

void pngError(png_structp png, png_const_charp msg) {
    auto* fail = static_cast<PngFailure*>(png_get_error_ptr(png));
    std::snprintf(fail->message, sizeof fail->message, "%s", msg);
    std::longjmp(fail->jump, 1);
}

void pngWarning(png_structp, png_const_charp) {}  // quiet

void pngRead(png_structp png, png_bytep out, png_size_t n) {
    auto* src = static_cast<PngSource*>(png_get_io_ptr(png));
    if (n > src->left) png_error(png, "file is truncated");
    std::memcpy(out, src->p, n);
    src->p += n;
    src->left -= n;
}

}  // namespace

Picture decodePng(const uint8_t* bytes, std::size_t size, const std::string& what) {
    if (size < 8 || png_sig_cmp(bytes, 0, 8) != 0) throw Error(what + " is not a PNG file");
    PngFailure fail{};
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &fail, pngError, pngWarning);
    if (!png) throw Error("out of memory reading " + what);
    png_infop info = png_create_info_struct(png);
    Picture pic;
    std::vector<png_bytep> rows;
    PngSource src{bytes, size};
    std::string problem;
    if (setjmp(fail.jump) == 0) {
        if (!info) png_error(png, "out of memory");
        png_set_read_fn(png, &src, pngRead);
        png_set_user_limits(png, 1 << 20, 1 << 20);
        png_read_info(png, info);
        const png_uint_32 w = png_get_image_width(png, info);
        const png_uint_32 h = png_get_image_height(png, info);
        const int depth = png_get_bit_depth(png, info);
        const int type = png_get_color_type(png, info);
        if (depth == 16) {
            problem = "is a 16-bit PNG; krocc reads 8-bit PNG files";
        } else if (type == PNG_COLOR_TYPE_GRAY_ALPHA) {
            problem = "is a grey PNG with alpha; krocc reads grey, RGB and RGBA PNG files";
        } else if (static_cast<unsigned long long>(w) * h > (1ULL << 30)) {
            problem = "is too large";
        } else {
            if (type == PNG_COLOR_TYPE_PALETTE) png_set_palette_to_rgb(png);
            if (type == PNG_COLOR_TYPE_GRAY && depth < 8) png_set_expand_gray_1_2_4_to_8(png);
            if (png_get_valid(png, info, PNG_INFO_tRNS)) png_set_tRNS_to_alpha(png);
            png_set_interlace_handling(png);
            png_read_update_info(png, info);
            pic.width = static_cast<int>(w);
            pic.height = static_cast<int>(h);
            pic.channels = png_get_channels(png, info);
            pic.data.resize(static_cast<std::size_t>(w) * h * pic.channels);
            rows.resize(h);
            for (png_uint_32 y = 0; y < h; ++y) rows[y] = pic.data.data() + static_cast<std::size_t>(y) * w * pic.channels;
            png_read_image(png, rows.data());
            png_read_end(png, nullptr);
        }
    } else {
        problem = std::string("is not a readable PNG file (") + fail.message + ")";
    }
    png_destroy_read_struct(&png, info ? &info : nullptr, nullptr);
    if (!problem.empty()) throw Error(what + " " + problem);
    if (pic.channels == 2) throw Error(what + " is a grey PNG with alpha; krocc reads grey, RGB and RGBA PNG files");
    return pic;
}

void writePng(const std::string& path, const Picture& pic) {
    OutFile out(path);
    PngFailure fail{};
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &fail, pngError, pngWarning);
    if (!png) throw Error("out of memory writing " + path);
    png_infop info = png_create_info_struct(png);
    std::vector<png_bytep> rows(static_cast<std::size_t>(pic.height));
    volatile bool ok = false;
    if (setjmp(fail.jump) == 0) {
        if (!info) png_error(png, "out of memory");
        png_init_io(png, out.file());
        png_set_compression_level(png, 1);
        png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);  // fast: the demo writes hundreds
        const int type = pic.channels == 1 ? PNG_COLOR_TYPE_GRAY
                         : pic.channels == 3 ? PNG_COLOR_TYPE_RGB
                                             : PNG_COLOR_TYPE_RGB_ALPHA;
        png_set_IHDR(png, info, static_cast<png_uint_32>(pic.width), static_cast<png_uint_32>(pic.height), 8, type,
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png, info);
        for (int y = 0; y < pic.height; ++y)
            rows[y] = const_cast<png_bytep>(pic.data.data()) + static_cast<std::size_t>(y) * pic.width * pic.channels;
        png_write_image(png, rows.data());
        png_write_end(png, nullptr);
        ok = true;
    }
    png_destroy_write_struct(&png, info ? &info : nullptr);
    if (!ok) throw Error("cannot write " + path + ": " + fail.message);
    out.commit();
}

// ------------------------------------------------------------ PPM / PGM
namespace {

struct PnmCursor {
    const uint8_t* p;
    const uint8_t* end;
    const std::string& what;

    void skipSpace() {
        while (p < end) {
            if (*p == '#') {
                while (p < end && *p != '\n') ++p;
            } else if (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\r' || *p == '\v' || *p == '\f') {
                ++p;
            } else {
                break;
            }
        }
    }
    long number() {
        skipSpace();
        if (p >= end || *p < '0' || *p > '9') throw Error(what + " has a damaged PPM/PGM header");
        long v = 0;
        while (p < end && *p >= '0' && *p <= '9') {
            v = v * 10 + (*p++ - '0');
            if (v > (1L << 24)) throw Error(what + " has a damaged PPM/PGM header");
        }
        return v;
    }
};

}  // namespace

Picture decodePnm(const uint8_t* bytes, std::size_t size, const std::string& what) {
    if (size < 2 || bytes[0] != 'P') throw Error(what + " is not a PPM or PGM file");
    int channels;
    if (bytes[1] == '6') channels = 3;
    else if (bytes[1] == '5') channels = 1;
    else if (bytes[1] >= '1' && bytes[1] <= '4') throw Error(what + " is a plain-text or one-bit PNM file; krocc reads binary PPM (P6) and PGM (P5)");
    else throw Error(what + " is not a PPM or PGM file");
    PnmCursor c{bytes + 2, bytes + size, what};
    const long w = c.number(), h = c.number(), maxval = c.number();
    if (c.p >= c.end) throw Error(what + " is truncated");
    ++c.p;  // the single blank after the maximum value
    if (w < 1 || h < 1) throw Error(what + " has an empty image");
    if (maxval != 255) throw Error(what + " has samples up to " + std::to_string(maxval) + "; krocc reads 8-bit files (maximum 255)");
    const std::size_t need = static_cast<std::size_t>(w) * h * channels;
    if (static_cast<std::size_t>(c.end - c.p) < need) throw Error(what + " is truncated");
    Picture pic;
    pic.width = static_cast<int>(w);
    pic.height = static_cast<int>(h);
    pic.channels = channels;
    pic.data.assign(c.p, c.p + need);
    return pic;
}

void writePnm(const std::string& path, const Picture& pic) {
    if (pic.channels == 4) throw Error("a PPM file cannot hold alpha: write " + path.substr(0, path.find_last_of('.')) + ".png or a raw file");
    const bool grey = pic.channels == 1;
    const FileKind kind = kindOfPath(path);
    const std::string ext = lower(path.substr(path.find_last_of('.') + 1));
    if (kind == FileKind::Pnm && ext == "pgm" && !grey) throw Error("a PGM file holds one channel; this image has 3 (use .ppm)");
    if (kind == FileKind::Pnm && ext == "ppm" && grey) throw Error("a PPM file holds three channels; this image has 1 (use .pgm)");
    OutFile out(path);
    const std::string header = std::string(grey ? "P5\n" : "P6\n") + std::to_string(pic.width) + " " +
                               std::to_string(pic.height) + "\n255\n";
    out.write(header.data(), header.size());
    out.write(pic.data.data(), pic.data.size());
    out.commit();
}

Picture readPicture(const std::string& path) {
    const std::vector<uint8_t> bytes = readWholeFile(path);
    if (bytes.size() >= 8 && png_sig_cmp(bytes.data(), 0, 8) == 0) return decodePng(bytes.data(), bytes.size(), path);
    if (kindOfPath(path) == FileKind::Png) return decodePng(bytes.data(), bytes.size(), path);
    return decodePnm(bytes.data(), bytes.size(), path);
}

void writePicture(const std::string& path, const Picture& pic) {
    if (kindOfPath(path) == FileKind::Png) writePng(path, pic);
    else writePnm(path, pic);
}

// ------------------------------------------------------------ output files
// The temporary file being written, so that an interrupted run removes it.
// The tool writes one file at a time.
namespace {
char pendingTemp[4096];

void removePendingTemp(int sig) {
    if (pendingTemp[0]) ::unlink(pendingTemp);
    std::signal(sig, SIG_DFL);
    std::raise(sig);
}

void setPendingTemp(const std::string& path) {
    if (path.size() < sizeof pendingTemp) std::memcpy(pendingTemp, path.c_str(), path.size() + 1);
}
}  // namespace

void removeTemporaryOnSignals() {
    for (int sig : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) std::signal(sig, removePendingTemp);
}

OutFile::OutFile(const std::string& path) : path_(path) {
    if (path == "-") {  // standard output: written as it comes
        f_ = stdout;
        return;
    }
    const std::size_t slash = path.find_last_of('/');
    const std::string dir = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    const std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
    if (base.empty()) throw Error("no file name in output path " + path);
    std::vector<char> name(dir.begin(), dir.end());
    const std::string tail = "." + base + ".krocc-XXXXXX";
    name.insert(name.end(), tail.begin(), tail.end());
    name.push_back(0);
    const int fd = mkstemp(name.data());
    if (fd < 0) throw Error("cannot write " + path + ": " + std::strerror(errno));
    tmp_ = name.data();
    setPendingTemp(tmp_);
    // mkstemp makes the file private; give it the mode a new file would get.
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(fd, 0666 & ~mask);
    f_ = fdopen(fd, "wb");
    if (!f_) {
        ::close(fd);
        ::unlink(tmp_.c_str());
        throw Error("cannot write " + path + ": " + std::strerror(errno));
    }
}

OutFile::~OutFile() {
    pendingTemp[0] = 0;
    if (done_ || f_ == stdout) return;
    if (f_) std::fclose(f_);
    ::unlink(tmp_.c_str());
}

void OutFile::write(const void* p, std::size_t n) {
    if (n && std::fwrite(p, 1, n, f_) != n) throw Error("cannot write " + path_ + ": " + std::strerror(errno));
}

void OutFile::commit() {
    if (f_ == stdout) {
        if (std::fflush(stdout) != 0) throw Error(std::string("cannot write to standard output: ") + std::strerror(errno));
        done_ = true;
        return;
    }
    const bool bad = std::fflush(f_) != 0 || std::ferror(f_);
    const int err = errno;
    std::fclose(f_);
    f_ = nullptr;
    if (bad) throw Error("cannot write " + path_ + ": " + std::strerror(err));
    if (std::rename(tmp_.c_str(), path_.c_str()) != 0) throw Error("cannot write " + path_ + ": " + std::strerror(errno));
    pendingTemp[0] = 0;
    done_ = true;
}

// ------------------------------------------------------------ pictures <-> images
Picture toPicture(const Image& img) {
    const Channels ch = unpack(img);
    Picture pic;
    pic.width = ch.width;
    pic.height = ch.height;
    pic.channels = static_cast<int>(ch.c.size());
    const std::size_t n = static_cast<std::size_t>(ch.width) * ch.height;
    pic.data.resize(n * pic.channels);
    for (int c = 0; c < pic.channels; ++c)
        for (std::size_t i = 0; i < n; ++i) pic.data[i * pic.channels + c] = ch.c[c][i];
    return pic;
}

Picture showPicture(const Image& img) {
    const Format& f = *img.fmt;
    Picture pic;
    if (f.family == Family::Rgb) {
        const Channels ch = unpack(img);
        pic.width = ch.width;
        pic.height = ch.height;
        pic.channels = 3;
        const std::size_t n = static_cast<std::size_t>(ch.width) * ch.height;
        pic.data.resize(n * 3);
        for (int c = 0; c < 3; ++c)
            for (std::size_t i = 0; i < n; ++i) pic.data[i * 3 + c] = ch.c[c][i];
        return pic;
    }
    // Gather each colour channel from wherever it lies: a plane of its own,
    // interleaved with others, or several times in one unit (Y in YUYV).
    struct Part {
        int width = 0, height = 0;
        std::vector<uint8_t> data;
    };
    const char* letters = familyLetters(f.family);
    const int colour = f.family == Family::Gray ? 1 : 3;
    std::vector<Part> parts(colour);
    for (int c = 0; c < colour; ++c) {
        for (int p = 0; p < f.planeCount; ++p) {
            const char* l = f.planes[p].letters;
            const int unit = static_cast<int>(std::strlen(l));
            const int units = img.step[p] / unit;
            std::vector<int> at;
            for (int i = 0; i < unit; ++i)
                if (l[i] == letters[c]) at.push_back(i);
            if (at.empty()) continue;
            Part& part = parts[c];
            part.width = units * static_cast<int>(at.size());
            part.height = img.rows[p];
            for (int y = 0; y < img.rows[p]; ++y)
                for (int u = 0; u < units; ++u)
                    for (int i : at) part.data.push_back(img.plane[p][static_cast<std::size_t>(y) * img.step[p] + u * unit + i]);
        }
    }
    pic.channels = 1;
    for (const Part& part : parts) {
        pic.width += part.width;
        pic.height = std::max(pic.height, part.height);
    }
    pic.data.assign(static_cast<std::size_t>(pic.width) * pic.height, 0);
    int x0 = 0;
    for (const Part& part : parts) {
        for (int y = 0; y < part.height; ++y)
            std::memcpy(&pic.data[static_cast<std::size_t>(y) * pic.width + x0],
                        &part.data[static_cast<std::size_t>(y) * part.width], static_cast<std::size_t>(part.width));
        x0 += part.width;
    }
    return pic;
}

Image fromPicture(const Picture& pic, const Format& f) {
    const int colour = f.family == Family::Gray ? 1 : 3;
    const int have = pic.channels == 4 ? 3 : pic.channels;
    if (have != colour)
        throw Error("the input holds " + std::to_string(have) + (have == 1 ? " channel" : " channels") + "; " + f.name +
                    " needs " + std::to_string(colour));
    Channels ch;
    ch.family = f.family;
    ch.width = pic.width;
    ch.height = pic.height;
    ch.alpha = pic.channels == 4;
    const std::size_t n = static_cast<std::size_t>(pic.width) * pic.height;
    ch.c.assign(pic.channels, std::vector<uint8_t>(n));
    for (int c = 0; c < pic.channels; ++c)
        for (std::size_t i = 0; i < n; ++i) ch.c[c][i] = pic.data[i * pic.channels + c];
    return pack(ch, f);
}

}  // namespace kt
