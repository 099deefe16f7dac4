#include "typed.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstring>

#include "ops.h"

namespace kt {

// ------------------------------------------------------------ samples
namespace {

int sampleBytes(Depth d) {
    switch (d) {
    case Depth::U8: return 1;
    case Depth::U16:
    case Depth::S16: return 2;
    case Depth::S32:
    case Depth::U32:
    case Depth::F32: return 4;
    case Depth::F64: return 8;
    }
    return 1;
}

// The integer value that stands for 8-bit 255 (and its offset for signed types).
double fullOf(const Side& s) {
    if (s.fullScale) return s.fullScale;
    switch (s.depth) {
    case Depth::U8: return 255;
    case Depth::U16:
    case Depth::S16:
    case Depth::S32: return 65535;
    default: return 1;
    }
}
// Signed samples hold the unsigned range moved down by 32768, unless the entry
// gives a scale of its own (then 0 stays 0).
double offsetOf(const Side& s) { return (s.depth == Depth::S16 || s.depth == Depth::S32) && !s.fullScale ? -32768 : 0; }
bool isFloat(Depth d) { return d == Depth::F32 || d == Depth::F64; }

// An 8-bit sample as the side's number, and back with rounding and limits.
double fromByte(const Side& s, int v) {
    const double x = v * fullOf(s) / 255.0 + offsetOf(s);
    return isFloat(s.depth) ? x : std::nearbyint(x);
}
uint8_t toByte(const Side& s, double x) {
    const double v = (x - offsetOf(s)) * 255.0 / fullOf(s);
    if (!(v == v)) return 0;  // NaN
    return static_cast<uint8_t>(std::clamp(std::nearbyint(v), 0.0, 255.0));
}

}  // namespace

TBuf::TBuf(const Side& s, int w, int h) : side(s), width(w), height(h) {
    const int n = s.planar ? 1 : s.count;
    step = w * n * sampleBytes(s.depth);
    for (int p = 0; p < planes(); ++p) mem[p].assign(static_cast<std::size_t>(step) * h, 0);
}

double TBuf::get(int c, int x, int y) const {
    const int p = side.planar ? c : 0, i = side.planar ? x : x * side.count + c;
    const unsigned char* row = mem[p].data() + static_cast<std::size_t>(step) * y;
    switch (side.depth) {
    case Depth::U8: return row[i];
    case Depth::U16: return reinterpret_cast<const Kro16u*>(row)[i];
    case Depth::S16: return reinterpret_cast<const Kro16s*>(row)[i];
    case Depth::S32: return reinterpret_cast<const Kro32s*>(row)[i];
    case Depth::U32: return reinterpret_cast<const Kro32u*>(row)[i];
    case Depth::F32: return reinterpret_cast<const Kro32f*>(row)[i];
    case Depth::F64: return reinterpret_cast<const Kro64f*>(row)[i];
    }
    return 0;
}

void TBuf::put(int c, int x, int y, double v) {
    const int p = side.planar ? c : 0, i = side.planar ? x : x * side.count + c;
    unsigned char* row = mem[p].data() + static_cast<std::size_t>(step) * y;
    auto lim = [&](double lo, double hi) { return std::clamp(std::nearbyint(v), lo, hi); };
    switch (side.depth) {
    case Depth::U8: row[i] = static_cast<Kro8u>(lim(0, 255)); break;
    case Depth::U16: reinterpret_cast<Kro16u*>(row)[i] = static_cast<Kro16u>(lim(0, 65535)); break;
    case Depth::S16: reinterpret_cast<Kro16s*>(row)[i] = static_cast<Kro16s>(lim(-32768, 32767)); break;
    case Depth::S32: reinterpret_cast<Kro32s*>(row)[i] = static_cast<Kro32s>(lim(-2147483648.0, 2147483647.0)); break;
    case Depth::U32: reinterpret_cast<Kro32u*>(row)[i] = static_cast<Kro32u>(lim(0, 4294967295.0)); break;
    case Depth::F32: reinterpret_cast<Kro32f*>(row)[i] = static_cast<Kro32f>(v); break;
    case Depth::F64: reinterpret_cast<Kro64f*>(row)[i] = v; break;
    }
}

namespace {

// ------------------------------------------------------------ names
// kroi<What>_<types>_<layouts>[_L]: types 8u16s (source, destination), layouts
// C3P3R, AC4IR, IP3R ... (source, destination; I in place).
bool depthOf(const std::string& t, std::size_t& at, Depth& d) {
    static const struct {
        const char* tag;
        Depth d;
    } tags[] = {{"8u", Depth::U8}, {"16u", Depth::U16}, {"16s", Depth::S16}, {"32s", Depth::S32},
                {"32u", Depth::U32}, {"32f", Depth::F32}, {"64f", Depth::F64}, {"12u", Depth::U8}, {"1u", Depth::U8}};
    for (const auto& g : tags)
        if (t.compare(at, std::strlen(g.tag), g.tag) == 0) {
            at += std::strlen(g.tag);
            d = g.d;
            return true;
        }
    return false;
}

struct Parsed {
    Side from, to;
    bool inPlace = false;
};

Parsed parseName(const std::string& name) {
    std::vector<std::string> tok;
    for (std::size_t a = 0, b; a <= name.size(); a = b + 1) {
        b = name.find('_', a);
        if (b == std::string::npos) b = name.size();
        tok.push_back(name.substr(a, b - a));
    }
    Parsed p;
    std::size_t ti = 1;
    Depth d0 = Depth::U8, d1 = Depth::U8;
    for (; ti < tok.size(); ++ti) {
        std::size_t at = 0;
        if (!depthOf(tok[ti], at, d0)) continue;
        d1 = d0;
        if (at < tok[ti].size() && !depthOf(tok[ti], at, d1)) continue;
        if (at == tok[ti].size()) break;
    }
    p.from.depth = d0;
    p.to.depth = d1;
    std::string lay = ti + 1 < tok.size() ? tok[ti + 1] : "C3R";
    if (!lay.empty() && lay.back() == 'R') lay.pop_back();
    if (const std::size_t i = lay.find('I'); i != std::string::npos) {
        p.inPlace = true;
        lay.erase(i, 1);
    }
    Side* s[2] = {&p.from, &p.to};
    int n = 0;
    for (std::size_t at = 0; at < lay.size() && n < 2; ++n) {
        Side& side = *s[n];
        if (lay[at] == 'A') {
            side.skipAlpha = lay[at + 1] == 'C';
            ++at;
        }
        side.planar = lay[at] == 'P';
        side.count = lay[at + 1] - '0';
        at += 2;
    }
    if (n == 1) {
        p.to.planar = p.from.planar;
        p.to.count = p.from.count;
    }
    // Which sides hold B, G, R.
    const std::string what = tok[0].substr(4);
    const std::size_t to = what.find("To", 1);
    const std::string left = to == std::string::npos ? what : what.substr(0, to);
    const std::string right = to == std::string::npos ? what : what.substr(to + 2);
    p.from.bgr = left.find("BGR") != std::string::npos;
    p.to.bgr = right.find("BGR") != std::string::npos;
    return p;
}

// ------------------------------------------------------------ call adapters
// One adapter per argument shape; trailing arguments of the operation's own
// (aval, gamma range, twist, weights) come from the table line.
kroiSize roiOf(const TBuf& b) { return kroiSize{b.width, b.height}; }

template <class T>
std::array<T*, 4> planesOf(TBuf& b) {
    std::array<T*, 4> p{};
    for (int i = 0; i < b.planes(); ++i) p[i] = static_cast<T*>(b.plane(i));
    return p;
}
template <class T>
std::array<const T*, 4> planesOf(const TBuf& b) {
    std::array<const T*, 4> p{};
    for (int i = 0; i < b.planes(); ++i) p[i] = static_cast<const T*>(b.plane(i));
    return p;
}

template <class S, class D, class... X, class... A>
OpFn adapt(KroStatus (*f)(const S*, int, D*, int, kroiSize, X...), A... a) {
    return [=](const TBuf& s, TBuf& d) {
        return f(static_cast<const S*>(s.plane(0)), s.step, static_cast<D*>(d.plane(0)), d.step, roiOf(s), static_cast<X>(a)...);
    };
}
template <class S, class D, class... X, class... A>
OpFn adapt(KroStatus (*f)(const S* const*, int, D* const*, int, kroiSize, X...), A... a) {
    return [=](const TBuf& s, TBuf& d) {
        return f(planesOf<S>(s).data(), s.step, planesOf<D>(d).data(), d.step, roiOf(s), static_cast<X>(a)...);
    };
}
template <class S, class D, class... X, class... A>
OpFn adapt(KroStatus (*f)(const S*, int, D* const*, int, kroiSize, X...), A... a) {
    return [=](const TBuf& s, TBuf& d) {
        return f(static_cast<const S*>(s.plane(0)), s.step, planesOf<D>(d).data(), d.step, roiOf(s), static_cast<X>(a)...);
    };
}
template <class S, class D, class... X, class... A>
OpFn adapt(KroStatus (*f)(const S* const*, int, D*, int, kroiSize, X...), A... a) {
    return [=](const TBuf& s, TBuf& d) {
        return f(planesOf<S>(s).data(), s.step, static_cast<D*>(d.plane(0)), d.step, roiOf(s), static_cast<X>(a)...);
    };
}
// In place: the destination already holds the source.
template <class T, class... X, class... A>
OpFn adapt(KroStatus (*f)(T*, int, kroiSize, X...), A... a) {
    return [=](const TBuf&, TBuf& d) { return f(static_cast<T*>(d.plane(0)), d.step, roiOf(d), static_cast<X>(a)...); };
}
template <class T, class... X, class... A>
OpFn adapt(KroStatus (*f)(T* const*, int, kroiSize, X...), A... a) {
    return [=](const TBuf&, TBuf& d) { return f(planesOf<T>(d).data(), d.step, roiOf(d), static_cast<X>(a)...); };
}
// Planes with a step each, and a region of either size type.
template <class S, class D, class Z>
OpFn adapt(KroStatus (*f)(const S* const*, const int*, D* const*, const int*, Z)) {
    return [=](const TBuf& s, TBuf& d) {
        const int ss[3] = {s.step, s.step, s.step}, ds[3] = {d.step, d.step, d.step};
        return f(planesOf<S>(s).data(), ss, planesOf<D>(d).data(), ds, Z{s.width, s.height});
    };
}

// Bit-depth reduction: the work block sized by the library's query.
template <class S, class D>
OpFn reduce(KroStatus (*f)(const S*, int, D*, int, kroiSize, int, KroDitherType, int, Kro8u*), int noise,
            KroDitherType dither, int levels) {
    return [=](const TBuf& s, TBuf& d) {
        const int code = s.side.count == 4 && s.side.skipAlpha ? 9 : s.side.count;
        int bytes = 0;
        KroStatus st = kroiReduceBitsGetBufferSize(code, roiOf(s), noise, dither, &bytes);
        if (st < 0) return st;
        std::vector<Kro8u> work(static_cast<std::size_t>(bytes) + 1);
        return f(static_cast<const S*>(s.plane(0)), s.step, static_cast<D*>(d.plane(0)), d.step, roiOf(s), noise,
                 dither, levels, work.data());
    };
}

TOp makeOp(const char* name, OpFn call) {
    const Parsed p = parseName(name);
    TOp op;
    op.name = name;
    op.from = p.from;
    op.to = p.to;
    op.inPlace = p.inPlace;
    op.call = std::move(call);
    return op;
}

// ------------------------------------------------------------ parameters
// A full-range luma/chroma matrix and its inverse, with the chroma offset of
// each sample type; the twist entries go there with one and back with the other.
struct Twists {
    Kro32f fwd[5][4][4];  // 8u, 16u, 16s, 32f, 32f 4 x 4
    Kro32f inv[5][4][4];
};

const Twists& twists() {
    static const Twists t = [] {
        Twists r{};
        const double m[3][3] = {{0.299, 0.587, 0.114}, {-0.168736, -0.331264, 0.5}, {0.5, -0.418688, -0.081312}};
        // Inverse by cofactors.
        double v[3][3];
        const double det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
                           m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
                           m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) {
                const int a = (j + 1) % 3, b = (j + 2) % 3, c = (i + 1) % 3, e = (i + 2) % 3;
                v[i][j] = (m[a][c] * m[b][e] - m[a][e] * m[b][c]) / det;
            }
        const double offsets[5] = {128, 32768, 0, 0.5, 0};
        for (int k = 0; k < 5; ++k)
            for (int i = 0; i < 3; ++i) {
                for (int j = 0; j < 3; ++j) {
                    r.fwd[k][i][j] = static_cast<Kro32f>(m[i][j]);
                    r.inv[k][i][j] = static_cast<Kro32f>(v[i][j]);
                }
                r.fwd[k][i][3] = static_cast<Kro32f>(i ? offsets[k] : 0);
                r.inv[k][i][3] = static_cast<Kro32f>(-(v[i][1] + v[i][2]) * offsets[k]);
                if (k == 4) r.fwd[k][i][3] = r.inv[k][i][3] = 0;
            }
        r.fwd[4][3][3] = r.inv[4][3][3] = 1;
        return r;
    }();
    return t;
}

const Kro32f kGreyWeights32[3] = {0.2126f, 0.7152f, 0.0722f};
const Kro64f kGreyWeights64[3] = {0.2126, 0.7152, 0.0722};

// ------------------------------------------------------------ Bayer mosaics
// Colour (0 R, 1 G, 2 B) at (x, y) of a grid: the name reads (0,0) (1,0) (0,1) (1,1).
int bayerColour(KroiBayerGrid g, int x, int y) {
    static const char* const names[4] = {"BGGR", "RGGB", "GBRG", "GRBG"};
    const char c = names[g][(y & 1) * 2 + (x & 1)];
    return c == 'R' ? 0 : c == 'G' ? 1 : 2;
}

std::function<void(const Channels&, TBuf&)> mosaic(KroiBayerGrid g) {
    return [g](const Channels& src, TBuf& in) {
        for (int y = 0; y < in.height; ++y)
            for (int x = 0; x < in.width; ++x)
                in.put(0, x, y, fromByte(in.side, src.c[bayerColour(g, x, y)][static_cast<std::size_t>(y) * src.width + x]));
    };
}

template <class T, class Z>
OpFn cfaRgb(KroStatus (*f)(const T*, kroiRect, Z, int, T*, int, KroiBayerGrid, int), KroiBayerGrid g) {
    return [=](const TBuf& s, TBuf& d) {
        return f(static_cast<const T*>(s.plane(0)), kroiRect{0, 0, s.width, s.height}, Z{s.width, s.height}, s.step,
                 static_cast<T*>(d.plane(0)), d.step, g, 0);
    };
}
template <class T, class Z>
OpFn cfaVng(KroStatus (*f)(const T*, kroiRect, Z, int, const Kro32f*, T*, int, KroiBayerGrid), KroiBayerGrid g) {
    return [=](const TBuf& s, TBuf& d) {
        return f(static_cast<const T*>(s.plane(0)), kroiRect{0, 0, s.width, s.height}, Z{s.width, s.height}, s.step,
                 nullptr, static_cast<T*>(d.plane(0)), d.step, g);
    };
}
// Homogeneity-directed demosaicing: 30 rows of work memory of the caller's,
// each ((width + 1) & ~1) + 6 samples long.
template <class T, class Z, class B>
[[maybe_unused]] OpFn cfaAhd(KroStatus (*f)(const T*, kroiRect, Z, int, T*, int, KroiBayerGrid, B*, int), KroiBayerGrid g) {
    return [=](const TBuf& s, TBuf& d) {
        const int rowBytes = (((s.width + 1) & ~1) + 6) * static_cast<int>(sizeof(T));
        std::vector<Kro64f> work(static_cast<std::size_t>(rowBytes) * 30 / sizeof(Kro64f) + 1);
        return f(static_cast<const T*>(s.plane(0)), kroiRect{0, 0, s.width, s.height}, Z{s.width, s.height}, s.step,
                 static_cast<T*>(d.plane(0)), d.step, g, static_cast<B*>(static_cast<void*>(work.data())), rowBytes);
    };
}

// ------------------------------------------------------------ one-off shapes
// 12-bit packing: two samples in three bytes, the rows of the three colour
// planes one above another.
OpFn pack12() {
    return [](const TBuf& s, TBuf& d) {
        return kroiPack_16u12u_C1R(static_cast<const Kro16u*>(s.plane(0)), s.step, static_cast<Kro8u*>(d.plane(0)), d.step,
                                   roiOf(s));
    };
}
OpFn unpack12() {
    return [](const TBuf& s, TBuf& d) {
        return kroiUnpack_12u16u_C1R(static_cast<const Kro8u*>(s.plane(0)), s.step, static_cast<Kro16u*>(d.plane(0)),
                                     d.step, kroiSize{d.width, d.height});
    };
}

// One bit a pixel, by Stucki diffusion; the bits are drawn as 0 and 255.
OpFn oneBit() {
    return [](const TBuf& s, TBuf& d) {
        const int rowBytes = (s.width + 7) / 8;
        std::vector<Kro8u> bits(static_cast<std::size_t>(rowBytes) * s.height);
        int bytes = 0;
        KroStatus st = kroiReduceBitsGetBufferSize(1, roiOf(s), 0, kroiDitherStucki, &bytes);
        if (st < 0) return st;
        std::vector<Kro8u> work(static_cast<std::size_t>(bytes) + 1);
        st = kroiReduceBits_8u1u_C1R(static_cast<const Kro8u*>(s.plane(0)), s.step, bits.data(), rowBytes, 0, roiOf(s), 0,
                                     0, kroiDitherStucki, 128, work.data());
        for (int y = 0; y < s.height; ++y)
            for (int x = 0; x < s.width; ++x)
                d.put(0, x, y, (bits[static_cast<std::size_t>(y) * rowBytes + x / 8] >> (7 - x % 8)) & 1 ? 255 : 0);
        return st;
    };
}

// 10-bit packed 4:2:2 video from an 8-bit picture: full-swing BT.709 luma and
// chroma centred on 512, at a scale that keeps the decoded 5-bit fields in range.
[[maybe_unused]] void makeV210(const Channels& src, TBuf& in) {
    const int w = src.width;
    const double k = 31.0 / 255.0;
    std::vector<int> Y(static_cast<std::size_t>(w)), C(static_cast<std::size_t>(w) + 2);
    for (int y = 0; y < in.height; ++y) {
        std::vector<Kro32u> words(static_cast<std::size_t>((w + 5) / 6 * 4), 0);
        for (int x = 0; x < w; x += 2) {
            double cb = 0, cr = 0;
            for (int i = 0; i < 2 && x + i < w; ++i) {
                const std::size_t at = static_cast<std::size_t>(y) * w + x + i;
                const double r = src.c[0][at] * k, g = src.c[1][at] * k, b = src.c[2][at] * k;
                const double yy = 0.2126 * r + 0.7152 * g + 0.0722 * b;
                Y[static_cast<std::size_t>(x + i)] = static_cast<int>(std::nearbyint(yy));
                if (i == 0) {
                    cb = (b - yy) / 1.8556;
                    cr = (r - yy) / 1.5748;
                }
            }
            C[static_cast<std::size_t>(x)] = static_cast<int>(std::nearbyint(512 + cb));
            C[static_cast<std::size_t>(x) + 1] = static_cast<int>(std::nearbyint(512 + cr));
        }
        // Field order of a group: Cb0 Y0 Cr0 | Y1 Cb1 Y2 | Cr1 Y3 Cb2 | Y4 Cr2 Y5.
        static const int kind[12] = {0, 1, 2, 1, 0, 1, 2, 1, 0, 1, 2, 1};  // 0 Cb, 1 Y, 2 Cr
        static const int pix[12] = {0, 0, 0, 1, 2, 2, 2, 3, 4, 4, 4, 5};
        for (int g = 0; g * 6 < w; ++g)
            for (int f = 0; f < 12; ++f) {
                const int x = std::min(g * 6 + pix[f], w - 1);
                const int v = kind[f] == 1 ? Y[static_cast<std::size_t>(x)] : C[static_cast<std::size_t>(x & ~1) + (kind[f] == 2)];
                words[static_cast<std::size_t>(g * 4 + f / 3)] |= static_cast<Kro32u>(std::clamp(v, 0, 1023)) << (10 * (f % 3));
            }
        std::memcpy(in.mem[0].data() + static_cast<std::size_t>(in.step) * y, words.data(), words.size() * 4);
    }
}

[[maybe_unused]] void read565(const TBuf& out, Channels& rgb, bool bgr) {
    for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x) {
            const unsigned v = static_cast<unsigned>(out.get(0, x, y));
            const unsigned hi = v >> 11, mid = (v >> 5) & 63, lo = v & 31;
            const std::size_t at = static_cast<std::size_t>(y) * out.width + x;
            auto up = [](unsigned f) { return static_cast<uint8_t>(std::min(255u, (f * 255 + 15) / 31)); };
            rgb.c[bgr ? 0 : 2][at] = up(hi);
            rgb.c[1][at] = up(mid);
            rgb.c[bgr ? 2 : 0][at] = up(lo);
        }
}

template <class F>
[[maybe_unused]] OpFn v210(F f) {
    return [f](const TBuf& s, TBuf& d) {
        return f(static_cast<const Kro32u*>(s.plane(0)), s.step / 4, static_cast<Kro16u*>(d.plane(0)), d.step / 2, roiOf(d));
    };
}

// ------------------------------------------------------------ the table
#define OP(fn) makeOp(#fn, adapt(fn))
#define OPX(fn, ...) makeOp(#fn, adapt(fn, __VA_ARGS__))
#define OPF(fn, call) makeOp(#fn, call)

TTrip trip(TOp there, TOp back, double bound, const char* note = "") {
    TTrip t;
    t.there = std::move(there);
    t.back = std::move(back);
    t.bound = bound;
    t.note = note;
    t.stacked = t.there.from.count == 1;
    return t;
}
TTrip oneWay(TOp there, double bound, Against a, const char* note = "") {
    TTrip t = trip(std::move(there), TOp{}, bound, note);
    t.against = a;
    return t;
}
TTrip withScale(TTrip t, int full) {
    t.there.from.fullScale = t.back.to.fullScale = full;
    if (!t.back.name) t.there.to.fullScale = full;
    return t;
}
TTrip withInput(TTrip t, std::function<void(const Channels&, TBuf&)> in) {
    t.makeInput = std::move(in);
    t.stacked = false;
    return t;
}

template <class F>
TOp twist(const char* name, F f, int k, bool back) {
    const Twists& t = twists();
    return makeOp(name, adapt(f, back ? t.inv[k] : t.fwd[k]));
}
#define TWIST(fn, k) trip(twist(#fn, fn, k, false), twist(#fn, fn, k, true), TWIST_BOUND_##k)
#define TWIST_BOUND_0 2
#define TWIST_BOUND_1 1
#define TWIST_BOUND_2 1
#define TWIST_BOUND_3 1
#define TWIST_BOUND_4 1

#define RB(fn, noise, dither, levels, bound) oneWay(OPF(fn, reduce(fn, noise, dither, levels)), bound, Against::Colour)

std::vector<TTrip> buildTable() {
    const KroiBayerGrid BGGR = kroiBayerBGGR, RGGB = kroiBayerRGGB, GBRG = kroiBayerGBRG, GRBG = kroiBayerGRBG;
    const KroDitherType none = kroiDitherNone, fs = kroiDitherFloydSteinberg, jjn = kroiDitherJarvisJudiceNinke,
                        stucki = kroiDitherStucki, bayer = kroiDitherBayer;
    std::vector<TTrip> t = {
        // Photographic YCC on wider samples
        trip(OP(kroiRGBToYCC_16u_C3R), OP(kroiYCCToRGB_16u_C3R), 7),
        trip(OP(kroiRGBToYCC_16u_AC4R), OP(kroiYCCToRGB_16u_AC4R), 7),
        trip(OP(kroiRGBToYCC_16s_C3R), OP(kroiYCCToRGB_16s_C3R), 7),
        trip(OP(kroiRGBToYCC_16s_AC4R), OP(kroiYCCToRGB_16s_AC4R), 7),
        trip(OP(kroiRGBToYCC_32f_C3R), OP(kroiYCCToRGB_32f_C3R), 7),
        trip(OP(kroiRGBToYCC_32f_AC4R), OP(kroiYCCToRGB_32f_AC4R), 7),
        // XYZ
        trip(OP(kroiRGBToXYZ_8u_C3R), OP(kroiXYZToRGB_8u_C3R), 4),
        trip(OP(kroiRGBToXYZ_8u_AC4R), OP(kroiXYZToRGB_8u_AC4R), 4),
        trip(OP(kroiRGBToXYZ_16u_C3R), OP(kroiXYZToRGB_16u_C3R), 1),
        trip(OP(kroiRGBToXYZ_16u_AC4R), OP(kroiXYZToRGB_16u_AC4R), 1),
        trip(OP(kroiRGBToXYZ_16s_C3R), OP(kroiXYZToRGB_16s_C3R), 1),
        trip(OP(kroiRGBToXYZ_16s_AC4R), OP(kroiXYZToRGB_16s_AC4R), 1),
        trip(OP(kroiRGBToXYZ_32f_C3R), OP(kroiXYZToRGB_32f_C3R), 1),
        trip(OP(kroiRGBToXYZ_32f_AC4R), OP(kroiXYZToRGB_32f_AC4R), 1),
        // Grey: there by fixed or given weights, back by copying into R, G, B
        // (the 8-bit fixed-weight pair is in convert's table)
        trip(OP(kroiRGBToGray_16u_C3C1R), OP(kroiGrayToRGB_16u_C1C3R), -1, "colour is dropped"),
        trip(OP(kroiRGBToGray_16u_AC4C1R), OPX(kroiGrayToRGB_16u_C1C4R, 65535), -1, "colour is dropped"),
        trip(OP(kroiRGBToGray_32f_C3C1R), OP(kroiGrayToRGB_32f_C1C3R), -1, "colour is dropped"),
        trip(OP(kroiRGBToGray_32f_AC4C1R), OPX(kroiGrayToRGB_32f_C1C4R, 1.0f), -1, "colour is dropped"),
        oneWay(OP(kroiRGBToGray_16s_C3C1R), -1, Against::Grey, "colour is dropped"),
        oneWay(OP(kroiRGBToGray_16s_AC4C1R), -1, Against::Grey, "colour is dropped"),
        oneWay(OPX(kroiColorToGray_8u_C3C1R, kGreyWeights32), -1, Against::Grey, "BT.709 weights"),
        oneWay(OPX(kroiColorToGray_8u_AC4C1R, kGreyWeights32), -1, Against::Grey, "BT.709 weights"),
        oneWay(OPX(kroiColorToGray_16u_C3C1R, kGreyWeights32), -1, Against::Grey, "BT.709 weights"),
        oneWay(OPX(kroiColorToGray_16u_AC4C1R, kGreyWeights32), -1, Against::Grey, "BT.709 weights"),
        oneWay(OPX(kroiColorToGray_16s_C3C1R, kGreyWeights32), -1, Against::Grey, "BT.709 weights"),
        oneWay(OPX(kroiColorToGray_16s_AC4C1R, kGreyWeights32), -1, Against::Grey, "BT.709 weights"),
        oneWay(OPX(kroiColorToGray_32f_C3C1R, kGreyWeights32), -1, Against::Grey, "BT.709 weights"),
        oneWay(OPX(kroiColorToGray_32f_AC4C1R, kGreyWeights32), -1, Against::Grey, "BT.709 weights"),
        oneWay(OPX(kroiColorToGray_64f_C3C1R, kGreyWeights64), -1, Against::Grey, "BT.709 weights"),
        oneWay(OPX(kroiColorToGray_64f_AC4C1R, kGreyWeights64), -1, Against::Grey, "BT.709 weights"),
        // YCoCg, lossy and reversible
        trip(OP(kroiRGBToYCoCg_8u_C3P3R), OP(kroiYCoCgToRGB_8u_P3C3R), 2),
        trip(OP(kroiBGRToYCoCg_8u16s_C3P3R), OP(kroiYCoCgToBGR_16s8u_P3C3R), 1),
        trip(OP(kroiBGRToYCoCg_8u16s_C4P3R), OPX(kroiYCoCgToBGR_16s8u_P3C4R, 255), 1),
        trip(OP(kroiBGRToYCoCg_Rev_8u16s_C3P3R), OP(kroiYCoCgToBGR_Rev_16s8u_P3C3R), 0),
        trip(OP(kroiBGRToYCoCg_Rev_8u16s_C4P3R), OPX(kroiYCoCgToBGR_Rev_16s8u_P3C4R, 255), 0),
        withScale(trip(OP(kroiSBGRToYCoCg_16s_C3P3R), OP(kroiYCoCgToSBGR_16s_P3C3R), 1), 255),
        withScale(trip(OP(kroiSBGRToYCoCg_16s_C4P3R), OPX(kroiYCoCgToSBGR_16s_P3C4R, 32767), 1), 255),
        withScale(trip(OP(kroiSBGRToYCoCg_16s32s_C3P3R), OP(kroiYCoCgToSBGR_32s16s_P3C3R), 1), 255),
        withScale(trip(OP(kroiSBGRToYCoCg_16s32s_C4P3R), OPX(kroiYCoCgToSBGR_32s16s_P3C4R, 32767), 1), 255),
        withScale(trip(OP(kroiSBGRToYCoCg_Rev_16s_C3P3R), OP(kroiYCoCgToSBGR_Rev_16s_P3C3R), 0), 255),
        withScale(trip(OP(kroiSBGRToYCoCg_Rev_16s_C4P3R), OPX(kroiYCoCgToSBGR_Rev_16s_P3C4R, 32767), 0), 255),
        withScale(trip(OP(kroiSBGRToYCoCg_Rev_16s32s_C3P3R), OP(kroiYCoCgToSBGR_Rev_32s16s_P3C3R), 0), 255),
        withScale(trip(OP(kroiSBGRToYCoCg_Rev_16s32s_C4P3R), OPX(kroiYCoCgToSBGR_Rev_32s16s_P3C4R, 32767), 0), 255),
        // HLS
        trip(OP(kroiRGBToHLS_8u_C3R), OP(kroiHLSToRGB_8u_C3R), 6),
        trip(OP(kroiRGBToHLS_8u_AC4R), OP(kroiHLSToRGB_8u_AC4R), 6),
        trip(OP(kroiRGBToHLS_16u_C3R), OP(kroiHLSToRGB_16u_C3R), 1),
        trip(OP(kroiRGBToHLS_16u_AC4R), OP(kroiHLSToRGB_16u_AC4R), 1),
        trip(OP(kroiRGBToHLS_16s_C3R), OP(kroiHLSToRGB_16s_C3R), 1),
        trip(OP(kroiRGBToHLS_16s_AC4R), OP(kroiHLSToRGB_16s_AC4R), 1),
        trip(OP(kroiRGBToHLS_32f_C3R), OP(kroiHLSToRGB_32f_C3R), 1),
        trip(OP(kroiRGBToHLS_32f_AC4R), OP(kroiHLSToRGB_32f_AC4R), 1),
        trip(OP(kroiBGRToHLS_8u_AC4R), OP(kroiHLSToBGR_8u_AC4P4R), 6),
        trip(OP(kroiBGRToHLS_8u_AC4P4R), OP(kroiHLSToBGR_8u_AP4C4R), 6),
        trip(OP(kroiBGRToHLS_8u_AP4C4R), OP(kroiHLSToBGR_8u_AP4R), 6),
        trip(OP(kroiBGRToHLS_8u_AP4R), OP(kroiHLSToBGR_8u_P3C3R), 6),
        trip(OP(kroiBGRToHLS_8u_C3P3R), OP(kroiHLSToBGR_8u_P3R), 6),
        trip(OP(kroiBGRToHLS_8u_P3C3R), OP(kroiHLSToBGR_8u_C3P3R), 6),
        trip(OP(kroiBGRToHLS_8u_P3R), OP(kroiHLSToRGB_8u_C3R), 6),
        // HSV
        trip(OP(kroiRGBToHSV_8u_C3R), OP(kroiHSVToRGB_8u_C3R), 4),
        trip(OP(kroiRGBToHSV_8u_AC4R), OP(kroiHSVToRGB_8u_AC4R), 4),
        trip(OP(kroiRGBToHSV_16u_C3R), OP(kroiHSVToRGB_16u_C3R), 1),
        trip(OP(kroiRGBToHSV_16u_AC4R), OP(kroiHSVToRGB_16u_AC4R), 1),
        // LUV
        trip(OP(kroiRGBToLUV_8u_C3R), OP(kroiLUVToRGB_8u_C3R), 8),
        trip(OP(kroiBGRToLUV_8u_C3R), OP(kroiLUVToBGR_8u_C3R), 8),
        trip(OP(kroiRGBToLUV_8u_AC4R), OP(kroiLUVToRGB_8u_AC4R), 8),
        trip(OP(kroiRGBToLUV_16u_C3R), OP(kroiLUVToRGB_16u_C3R), 1),
        trip(OP(kroiRGBToLUV_16u_AC4R), OP(kroiLUVToRGB_16u_AC4R), 1),
        trip(OP(kroiRGBToLUV_16s_C3R), OP(kroiLUVToRGB_16s_C3R), 1),
        trip(OP(kroiRGBToLUV_16s_AC4R), OP(kroiLUVToRGB_16s_AC4R), 1),
        trip(OP(kroiRGBToLUV_32f_C3R), OP(kroiLUVToRGB_32f_C3R), 1),
        trip(OP(kroiBGRToLUV_32f_C3R), OP(kroiLUVToBGR_32f_C3R), 1),
        trip(OP(kroiRGBToLUV_32f_AC4R), OP(kroiLUVToRGB_32f_AC4R), 1),
        // Lab
        trip(OP(kroiRGBToLab_8u_C3R), OP(kroiLabToRGB_8u_C3R), 8),
        trip(OP(kroiBGRToLab_8u_C3R), OP(kroiLabToBGR_8u_C3R), 8),
        trip(OP(kroiBGRToLab_8u16u_C3R), OP(kroiLabToBGR_16u8u_C3R), 1),
        trip(OP(kroiRGBToLab_32f_C3R), OP(kroiLabToRGB_32f_C3R), 1),
        trip(OP(kroiBGRToLab_32f_C3R), OP(kroiLabToBGR_32f_C3R), 1),
        trip(OP(kroiRGBToLab_32f_P3R), OP(kroiLabToRGB_32f_P3R), 1),
        trip(OP(kroiRGBToLab_32f_P3R_L), OP(kroiLabToRGB_32f_P3R_L), 1),
        trip(OP(kroiRGBToLab_64f_P3R), OP(kroiLabToRGB_64f_P3R), 1),
        trip(OP(kroiRGBToLab_64f_P3R_L), OP(kroiLabToRGB_64f_P3R_L), 1),
        // Gamma: the transfer curve and back
        trip(OP(kroiGammaFwd_8u_C3R), OP(kroiGammaInv_8u_C3R), 2),
        trip(OP(kroiGammaFwd_8u_C3IR), OP(kroiGammaInv_8u_C3IR), 2),
        trip(OP(kroiGammaFwd_8u_AC4R), OP(kroiGammaInv_8u_AC4R), 2),
        trip(OP(kroiGammaFwd_8u_AC4IR), OP(kroiGammaInv_8u_AC4IR), 2),
        trip(OP(kroiGammaFwd_8u_P3R), OP(kroiGammaInv_8u_P3R), 2),
        trip(OP(kroiGammaFwd_8u_IP3R), OP(kroiGammaInv_8u_IP3R), 2),
        trip(OP(kroiGammaFwd_16u_C3R), OP(kroiGammaInv_16u_C3R), 1),
        trip(OP(kroiGammaFwd_16u_C3IR), OP(kroiGammaInv_16u_C3IR), 1),
        trip(OP(kroiGammaFwd_16u_AC4R), OP(kroiGammaInv_16u_AC4R), 1),
        trip(OP(kroiGammaFwd_16u_AC4IR), OP(kroiGammaInv_16u_AC4IR), 1),
        trip(OP(kroiGammaFwd_16u_P3R), OP(kroiGammaInv_16u_P3R), 1),
        trip(OP(kroiGammaFwd_16u_IP3R), OP(kroiGammaInv_16u_IP3R), 1),
        trip(OPX(kroiGammaFwd_32f_C3R, 0.f, 1.f), OPX(kroiGammaInv_32f_C3R, 0.f, 1.f), 1),
        trip(OPX(kroiGammaFwd_32f_C3IR, 0.f, 1.f), OPX(kroiGammaInv_32f_C3IR, 0.f, 1.f), 1),
        trip(OPX(kroiGammaFwd_32f_AC4R, 0.f, 1.f), OPX(kroiGammaInv_32f_AC4R, 0.f, 1.f), 1),
        trip(OPX(kroiGammaFwd_32f_AC4IR, 0.f, 1.f), OPX(kroiGammaInv_32f_AC4IR, 0.f, 1.f), 1),
        trip(OPX(kroiGammaFwd_32f_P3R, 0.f, 1.f), OPX(kroiGammaInv_32f_P3R, 0.f, 1.f), 1),
        trip(OPX(kroiGammaFwd_32f_IP3R, 0.f, 1.f), OPX(kroiGammaInv_32f_IP3R, 0.f, 1.f), 1),
        // Colour twist: a full-range luma/chroma matrix there, its inverse back
        TWIST(kroiColorTwist32f_8u_C3R, 0), TWIST(kroiColorTwist32f_8u_AC4R, 0), TWIST(kroiColorTwist32f_8u_C3IR, 0),
        TWIST(kroiColorTwist32f_8u_AC4IR, 0), TWIST(kroiColorTwist32f_8u_P3R, 0), TWIST(kroiColorTwist32f_8u_IP3R, 0),
        TWIST(kroiColorTwist32f_16u_C3R, 1), TWIST(kroiColorTwist32f_16u_AC4R, 1), TWIST(kroiColorTwist32f_16u_C3IR, 1),
        TWIST(kroiColorTwist32f_16u_AC4IR, 1), TWIST(kroiColorTwist32f_16u_P3R, 1), TWIST(kroiColorTwist32f_16u_IP3R, 1),
        TWIST(kroiColorTwist32f_16s_C3R, 2), TWIST(kroiColorTwist32f_16s_AC4R, 2), TWIST(kroiColorTwist32f_16s_C3IR, 2),
        TWIST(kroiColorTwist32f_16s_AC4IR, 2), TWIST(kroiColorTwist32f_16s_P3R, 2), TWIST(kroiColorTwist32f_16s_IP3R, 2),
        TWIST(kroiColorTwist_32f_C3R, 3), TWIST(kroiColorTwist_32f_AC4R, 3), TWIST(kroiColorTwist_32f_C3IR, 3),
        TWIST(kroiColorTwist_32f_AC4IR, 3), TWIST(kroiColorTwist_32f_P3R, 3), TWIST(kroiColorTwist_32f_IP3R, 3),
        TWIST(kroiColorTwist_32f_C4R, 4),
        // Tone mapping: each colour plane's float samples to 8 bits
        oneWay(OP(kroiToneMapLinear_32f8u_C1R), -1, Against::Colour, "image maximum to 255"),
        oneWay(OP(kroiToneMapMean_32f8u_C1R), -1, Against::Colour, "twice the image mean to 255"),
        // 12-bit packing
        withScale(trip(OPF(kroiPack_16u12u_C1R, pack12()), OPF(kroiUnpack_12u16u_C1R, unpack12()), 0), 4095),
        // Bit-depth reduction: 8 levels a channel, each dither in turn
        RB(kroiReduceBits_8u_C1R, 0, none, 8, 19), RB(kroiReduceBits_8u_C3R, 0, fs, 8, 40),
        RB(kroiReduceBits_8u_C4R, 0, jjn, 8, 40), RB(kroiReduceBits_8u_AC4R, 0, stucki, 8, 40),
        RB(kroiReduceBits_16u8u_C1R, 0, bayer, 8, 40), RB(kroiReduceBits_16u8u_C3R, 30, none, 8, 60),
        RB(kroiReduceBits_16u8u_C4R, 0, fs, 8, 40), RB(kroiReduceBits_16u8u_AC4R, 0, jjn, 8, 40),
        RB(kroiReduceBits_16s8u_C1R, 0, stucki, 8, 40), RB(kroiReduceBits_16s8u_C3R, 0, bayer, 8, 40),
        RB(kroiReduceBits_16s8u_C4R, 0, none, 8, 19), RB(kroiReduceBits_16s8u_AC4R, 0, fs, 8, 40),
        RB(kroiReduceBits_32f8u_C1R, 0, jjn, 8, 40), RB(kroiReduceBits_32f8u_C3R, 0, stucki, 8, 40),
        RB(kroiReduceBits_32f8u_C4R, 0, bayer, 8, 40), RB(kroiReduceBits_32f8u_AC4R, 0, none, 8, 19),
        RB(kroiReduceBits_16u_C1R, 0, fs, 8, 40), RB(kroiReduceBits_16u_C3R, 0, jjn, 8, 40),
        RB(kroiReduceBits_16u_C4R, 0, stucki, 8, 40), RB(kroiReduceBits_16u_AC4R, 0, bayer, 8, 40),
        RB(kroiReduceBits_16s_C1R, 0, none, 8, 19), RB(kroiReduceBits_16s_C3R, 0, fs, 8, 40),
        RB(kroiReduceBits_16s_C4R, 0, jjn, 8, 40), RB(kroiReduceBits_16s_AC4R, 0, stucki, 8, 40),
        RB(kroiReduceBits_32f16u_C1R, 0, bayer, 8, 40), RB(kroiReduceBits_32f16u_C3R, 0, none, 8, 19),
        RB(kroiReduceBits_32f16u_C4R, 0, fs, 8, 40), RB(kroiReduceBits_32f16u_AC4R, 0, jjn, 8, 40),
        RB(kroiReduceBits_32f16s_C1R, 0, stucki, 8, 40), RB(kroiReduceBits_32f16s_C3R, 0, bayer, 8, 40),
        RB(kroiReduceBits_32f16s_C4R, 30, fs, 8, 60), RB(kroiReduceBits_32f16s_AC4R, 0, none, 8, 19),
        oneWay(OPF(kroiReduceBits_8u1u_C1R, oneBit()), -1, Against::Colour, "one bit a sample, Stucki diffusion"),
        // Bayer demosaicing: the picture sampled through a colour filter and rebuilt
        withInput(oneWay(OPF(kroiCFAToRGB_8u_C1C3R, cfaRgb(kroiCFAToRGB_8u_C1C3R, BGGR)), -1, Against::Colour), mosaic(BGGR)),
        withInput(oneWay(OPF(kroiCFAToRGB_16u_C1C3R, cfaRgb(kroiCFAToRGB_16u_C1C3R, RGGB)), -1, Against::Colour), mosaic(RGGB)),
        withInput(oneWay(OPF(kroiCFAToBGRA_VNG_8u_C1C4R, cfaVng(kroiCFAToBGRA_VNG_8u_C1C4R, GBRG)), -1, Against::Colour), mosaic(GBRG)),
        withInput(oneWay(OPF(kroiCFAToBGRA_VNG_16u_C1C4R, cfaVng(kroiCFAToBGRA_VNG_16u_C1C4R, GRBG)), -1, Against::Colour), mosaic(GRBG)),
        withInput(oneWay(OPF(kroiCFAToBGRA_VNG_8u_C1C4R_L, cfaVng(kroiCFAToBGRA_VNG_8u_C1C4R_L, RGGB)), -1, Against::Colour), mosaic(RGGB)),
        withInput(oneWay(OPF(kroiCFAToBGRA_VNG_16u_C1C4R_L, cfaVng(kroiCFAToBGRA_VNG_16u_C1C4R_L, BGGR)), -1, Against::Colour), mosaic(BGGR)),
    };
#ifdef KROCC_HAS_kroiDemosaicAHD_8u_C1C3R
    t.push_back(withInput(oneWay(OPF(kroiDemosaicAHD_8u_C1C3R, cfaAhd(kroiDemosaicAHD_8u_C1C3R, GRBG)), -1, Against::Colour), mosaic(GRBG)));
#endif
#ifdef KROCC_HAS_kroiDemosaicAHD_16u_C1C3R
    t.push_back(withInput(oneWay(OPF(kroiDemosaicAHD_16u_C1C3R, cfaAhd(kroiDemosaicAHD_16u_C1C3R, GBRG)), -1, Against::Colour), mosaic(GBRG)));
#endif
    // 10-bit packed video decoded to 5-6-5 colour or 10-bit luma
    auto v210Trip = [&](TOp op, bool bgr, bool grey) {
        TTrip r = withInput(oneWay(std::move(op), -1, grey ? Against::Grey : Against::Colour, "input at a 5-bit scale"), makeV210);
        r.there.from.depth = Depth::U32;
        r.there.from.count = 4;  // room for 6 pixels in 4 words
        r.there.to.depth = Depth::U16;
        r.there.to.count = 1;
        if (grey)
            r.readOutput = [](const TBuf& out, Channels& rgb) {
                for (int y = 0; y < out.height; ++y)
                    for (int x = 0; x < out.width; ++x)
                        for (int c = 0; c < 3; ++c)
                            rgb.c[c][static_cast<std::size_t>(y) * out.width + x] =
                                static_cast<uint8_t>(std::min(255.0, out.get(0, x, y) * 255 / 31));
            };
        else
            r.readOutput = [bgr](const TBuf& out, Channels& rgb) { read565(out, rgb, bgr); };
        return r;
    };
    (void)v210Trip;
#ifdef KROCC_HAS_kroiYUV422v210ToRGB_709HDTV_32u16u_C3
    t.push_back(v210Trip(OPF(kroiYUV422v210ToRGB_709HDTV_32u16u_C3, v210(kroiYUV422v210ToRGB_709HDTV_32u16u_C3)), false, false));
#endif
#ifdef KROCC_HAS_kroiYUV422v210ToBGR_709HDTV_32u16u_C3
    t.push_back(v210Trip(OPF(kroiYUV422v210ToBGR_709HDTV_32u16u_C3, v210(kroiYUV422v210ToBGR_709HDTV_32u16u_C3)), true, false));
#endif
#ifdef KROCC_HAS_kroiYUV422v210ToGray_709HDTV_32u16u_C3C1
    t.push_back(v210Trip(OPF(kroiYUV422v210ToGray_709HDTV_32u16u_C3C1, v210(kroiYUV422v210ToGray_709HDTV_32u16u_C3C1)), false, true));
#endif
    return t;
}

#undef OP
#undef OPX
#undef OPF

// ------------------------------------------------------------ running
void fillFromRgb(const Channels& src, TBuf& in, bool stacked) {
    const int w = src.width, h = src.height;
    const Side& s = in.side;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const std::size_t at = static_cast<std::size_t>(y) * w + x;
            if (stacked) {
                for (int c = 0; c < 3; ++c) in.put(0, x, y + c * h, fromByte(s, src.c[c][at]));
                continue;
            }
            for (int c = 0; c < 3; ++c) in.put(s.bgr ? 2 - c : c, x, y, fromByte(s, src.c[c][at]));
            if (s.count == 4) in.put(3, x, y, fromByte(s, 255));
        }
}

Channels emptyRgb(int w, int h) {
    Channels ch;
    ch.family = Family::Rgb;
    ch.width = w;
    ch.height = h;
    ch.c.assign(3, std::vector<uint8_t>(static_cast<std::size_t>(w) * h));
    return ch;
}

// A result back as 8-bit R, G, B: colour sides by their channel order, the
// three stacked planes of a one-channel side, or one grey plane three times.
Channels readRgb(const TBuf& b, int w, int h) {
    Channels ch = emptyRgb(w, h);
    const bool stacked = b.side.count == 1 && b.height == 3 * h;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const std::size_t at = static_cast<std::size_t>(y) * w + x;
            for (int c = 0; c < 3; ++c) {
                double v;
                if (stacked) v = b.get(0, x, y + c * h);
                else if (b.side.count == 1) v = b.get(0, x, y);
                else v = b.get(b.side.bgr ? 2 - c : c, x, y);
                ch.c[c][at] = toByte(b.side, v);
            }
        }
    return ch;
}

// An intermediate image for a person: its colour channels side by side in
// grey, each stretched from its smallest to its largest value (8-bit samples
// as they are).
Picture showTyped(const TBuf& b) {
    const int n = b.side.count == 1 ? 1 : 3, w = b.width, h = b.height;
    Picture pic;
    pic.width = w * n;
    pic.height = h;
    pic.channels = 1;
    pic.data.assign(static_cast<std::size_t>(pic.width) * h, 0);
    for (int c = 0; c < n; ++c) {
        double lo = 0, hi = 255;
        if (b.side.depth != Depth::U8) {
            lo = INFINITY;
            hi = -INFINITY;
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) {
                    const double v = b.get(c, x, y);
                    if (std::isfinite(v)) {
                        lo = std::min(lo, v);
                        hi = std::max(hi, v);
                    }
                }
            if (!(hi > lo)) hi = lo + 1;
        }
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const double v = (b.get(c, x, y) - lo) * 255.0 / (hi - lo);
                pic.data[static_cast<std::size_t>(y) * pic.width + c * w + x] =
                    static_cast<uint8_t>(std::isfinite(v) ? std::clamp(std::nearbyint(v), 0.0, 255.0) : 0);
            }
    }
    return pic;
}

Picture colourPicture(const Channels& ch) {
    Picture pic;
    pic.width = ch.width;
    pic.height = ch.height;
    pic.channels = 3;
    pic.data.resize(static_cast<std::size_t>(ch.width) * ch.height * 3);
    for (std::size_t i = 0; i < pic.data.size() / 3; ++i)
        for (int c = 0; c < 3; ++c) pic.data[i * 3 + c] = ch.c[c][i];
    return pic;
}

// The same image in another layout of the same samples (channels in memory order).
TBuf relayout(const TBuf& b, const Side& to) {
    TBuf r(to, b.width, b.height);
    const int n = std::min(b.side.count, to.count);
    for (int y = 0; y < b.height; ++y)
        for (int x = 0; x < b.width; ++x)
            for (int c = 0; c < n; ++c) r.put(c, x, y, b.get(c, x, y));
    return r;
}

bool sameLayout(const Side& a, const Side& b) {
    return a.depth == b.depth && a.count == b.count && a.planar == b.planar;
}

// The destination of an operation: the source itself in place; a row of
// bytes for packed 12-bit samples (two in three bytes).
TBuf makeDst(const TOp& op, const TBuf& in) {
    if (op.inPlace) return in;
    if (!std::strcmp(op.name, "kroiPack_16u12u_C1R")) return TBuf(op.to, (in.width * 3 + 1) / 2, in.height);
    if (!std::strcmp(op.name, "kroiUnpack_12u16u_C1R")) return TBuf(op.to, in.width * 2 / 3, in.height);
    return TBuf(op.to, in.width, in.height);
}

double timeCall(const TOp& op, const TBuf& in, TBuf& out, double budget) {
    using Clock = std::chrono::steady_clock;
    double best = 1e30, total = 0;
    TBuf scratch = out;
    for (int run = 0; run < 200 && (run < 2 || total < budget); ++run) {
        if (op.inPlace)  // each call starts from the source again
            for (int p = 0; p < 4; ++p) scratch.mem[p] = in.mem[p];
        const auto t0 = Clock::now();
        op.call(in, scratch);
        const double s = std::chrono::duration<double>(Clock::now() - t0).count();
        best = std::min(best, s);
        total += s;
    }
    return best;
}

}  // namespace

const std::vector<TTrip>& typedTrips() {
    static const std::vector<TTrip> table = buildTable();
    return table;
}

TripRun runTypedTrip(const TTrip& t, const Channels& src, double budget) {
    TripRun r;
    const int w = src.width, h = src.height;
    const bool stacked = t.stacked;
    int inWidth = w;
    if (t.there.from.depth == Depth::U32) inWidth = (w + 5) / 6;  // v210 groups of four words
    TBuf in(t.there.from, inWidth, stacked ? 3 * h : h);
    if (t.makeInput) t.makeInput(src, in);
    else fillFromRgb(src, in, stacked);
    if (t.there.from.depth == Depth::U32) in.width = w;  // the region counts pixels

    TBuf mid = makeDst(t.there, in);
    if (t.there.from.depth == Depth::U32) mid = TBuf(t.there.to, w, h);
    r.thereStatus = t.there.call(in, mid);
    if (r.thereStatus < 0) return r;
    const double mpix = static_cast<double>(w) * h * (stacked ? 3 : 1) / 1e6;
    r.thereMps = mpix / timeCall(t.there, in, mid, budget);
    r.mid = showTyped(mid);

    if (t.back.name) {
        r.hasBack = true;
        const bool unpack = std::strcmp(t.back.name, "kroiUnpack_12u16u_C1R") == 0;
        TBuf backIn = unpack || sameLayout(mid.side, t.back.from) ? mid : relayout(mid, t.back.from);
        TBuf out = makeDst(t.back, backIn);
        r.backStatus = t.back.call(backIn, out);
        if (r.backStatus < 0) return r;
        r.backMps = mpix / timeCall(t.back, backIn, out, budget);
        r.result = readRgb(out, w, h);
        r.back = colourPicture(r.result);
        r.compared = true;
    } else if (t.against != Against::Nothing) {
        if (t.readOutput) {
            r.result = emptyRgb(w, h);
            t.readOutput(mid, r.result);
        } else {
            r.result = readRgb(mid, w, h);
        }
        r.back = colourPicture(r.result);
        r.compared = true;
    }
    return r;
}

std::vector<std::string> demoReach() {
    std::vector<std::string> names = {"kroiReduceBitsGetBufferSize"};  // sizes the reduction entries' work blocks
    for (const Conversion& c : conversions()) names.push_back(c.name);
    for (const TTrip& t : typedTrips()) {
        names.push_back(t.there.name);
        if (t.back.name) names.push_back(t.back.name);
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

}  // namespace kt
