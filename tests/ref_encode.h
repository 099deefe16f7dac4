// Independent reference of the subsampled encoders, written from the stated
// arithmetic: 64-bit integers, explicit floors, 16-bit wrap where a form says
// "keeping the low 16 bits"; no code shared with the library.
//
// An encoder is described by a table row (EncDesc): block shape, span rule,
// forms of the main span and of the tail, odd-column rule. refEncode turns a
// source image into the expected destination planes from that row alone.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace ref {

// ------------------------------------------------------------ vocabulary
inline int64_t fdiv(int64_t n, int64_t d) {  // floor
    int64_t q = n / d;
    if ((n % d != 0) && ((n < 0) != (d < 0))) --q;
    return q;
}
inline int64_t sh(int64_t x, int s) { return fdiv(x, int64_t(1) << s); }  // arithmetic shift right
inline int64_t low16s(int64_t x) { return int16_t(uint16_t(uint64_t(x) & 0xffff)); }
inline int64_t low16u(int64_t x) { return int64_t(uint64_t(x) & 0xffff); }
inline int64_t mHU(int64_t a, int64_t b) { return fdiv(low16u(a) * low16u(b), 65536); }
inline int64_t mHS(int64_t a, int64_t b) { return fdiv(low16s(a) * low16s(b), 65536); }
inline int64_t mR15(int64_t a, int64_t b) { return low16s(sh(low16s(a) * low16s(b) + 16384, 15)); }
inline int c8(int64_t x) { return x < 0 ? 0 : x > 255 ? 255 : int(x); }
inline int cV(int64_t x) { return x < 1 ? 1 : x > 254 ? 254 : int(x); }

struct Rgb {
    int r, g, b;
};

// ------------------------------------------------------------ luma forms L1..L18
inline int64_t A14(const Rgb& p) { return mR15(4211, p.r * 128) + mR15(8258, p.g * 128) + mR15(1606, p.b * 128); }
inline int64_t P11(const Rgb& p) { return mR15(4899, p.r * 128) + mR15(9617, p.g * 128) + mR15(1868, p.b * 128); }
inline int64_t P13(const Rgb& p) { return mHS(9798, p.r * 4) + mHS(19235, p.g * 4) + mHS(3736, p.b * 4); }
inline int64_t X(int c) { return sh(257 * c, 6); }
inline int64_t P14(const Rgb& p) { return mHS(9798, X(p.r)) + mHS(19235, X(p.g)) + mHS(3736, X(p.b)); }
inline int64_t P17(const Rgb& p) { return sh(9798LL * p.r + 19235LL * p.g, 14) + sh(3736LL * p.b, 14); }

inline int luma(int form, const Rgb& p) {
    const int64_t R = p.r, G = p.g, B = p.b;
    switch (form) {
        case 1: return c8(sh(A14(p) + 1056, 6));
        case 2: return c8(sh(A14(p) + 1026, 6));
        case 3: return c8(sh(A14(p), 6) + 16);
        case 4: return c8(sh(mHU(8422, R * 256) + mHU(16515, G * 256) + mHU(3212, B * 256) + 2112, 7));
        case 5: return int(sh(16843 * R + 33030 * G + 6423 * B + 1081344, 16));
        case 6: return int(sh(16843 * R + 33030 * G + 6423 * B + 1048576, 16));
        case 7: return c8(sh(mHU(5997, R * 256) + mHU(20120, G * 256) + mHU(2032, B * 256) + 2112, 7));
        case 8: return int(sh(11993 * R + 40239 * G + 4063 * B + 1081344, 16));
        case 9: return cV(sh(mHU(6980, R * 256) + mHU(23429, G * 256) + mHU(2359, B * 256) + 64, 7));
        case 10: return cV(sh(13959 * R + 46858 * G + 4719 * B + 32768, 16));
        case 11: return c8(sh(P11(p), 6));
        case 12: return int(sh(4899 * R + 9617 * G + 1868 * B + 2, 14));
        case 13: return c8(sh(P13(p), 1));
        case 14: return c8(sh(P14(p), 1));
        case 15: return int(sh(19595 * R + 38470 * G + 7471 * B, 16));
        case 16: return int(sh(19595 * R + 38470 * G + 7471 * B + 32768, 16));
        case 17: return c8(sh(P17(p) + 1, 1));
        case 18: return c8(sh(P17(p), 1));
    }
    return -1;
}

// ------------------------------------------------------------ chroma forms C1..C16
struct Chroma {
    int form;        // 1..16
    int64_t k = 0;   // the form's argument (C1, C4, C9: Cb offset; C14, C15: k)
    int64_t kr = 0;  // Cr offset where it differs (C4, C9 with two-pixel blocks); 0: same as k
};
using Pair = std::array<int, 2>;

inline Pair chroma(const Chroma& c, const std::vector<Rgb>& blk) {
    const int n = int(blk.size());
    int64_t SR = 0, SG = 0, SB = 0;
    for (auto& p : blk) SR += p.r, SG += p.g, SB += p.b;
    const int e = n == 2 ? 6 : 5;
    const int s = n == 2 ? 17 : 18;
    const int64_t Rp = SR << e, Gp = SG << e, Bp = SB << e;
    const int64_t D14b = mR15(7193, Bp) - mR15(4768, Gp) - mR15(2425, Rp);
    const int64_t D14r = mR15(7193, Rp) - mR15(6029, Gp) - mR15(1163, Bp);
    const int64_t K = c.k, Kr = c.kr ? c.kr : c.k;
    switch (c.form) {
        case 1: return {c8(sh(D14b + K, 6)), c8(sh(D14r + K, 6))};
        case 2: return {c8(sh(D14b, 6) + 128), c8(sh(D14r, 6) + 128)};
        case 3:
            return {c8(sh(mHU(28770, Bp) - mHU(19071, Gp) - mHU(9699, Rp) + 16400, 7)),
                    c8(sh(mHU(28770, Rp) - mHU(24117, Gp) - mHU(4653, Bp) + 16400, 7))};
        case 4:
            return {int(sh(28770 * SB - 19071 * SG - 9699 * SR + K, s)),
                    int(sh(28770 * SR - 24117 * SG - 4653 * SB + Kr, s))};
        case 5:
            return {c8(sh(mHS(28770, Bp) + mHS(-19071, Gp) + mHS(-9699, Rp) + 16448, 7)),
                    c8(sh(mHS(28770, Rp) + mHS(-24117, Gp) + mHS(-4653, Bp) + 16448, 7))};
        case 6:
            return {c8(sh(mHU(28770, Bp) - mHU(22151, Gp) - mHU(6619, Rp) + 16400, 7)),
                    c8(sh(mHU(28770, Rp) - mHU(26149, Gp) - mHU(2621, Bp) + 16400, 7))};
        case 7:
            return {int(sh(28770 * SB - 22151 * SG - 6619 * SR + 33587200, 18)),
                    int(sh(28770 * SR - 26149 * SG - 2621 * SB + 33587200, 18))};
        case 8:
            return {cV(sh(mHU(16744, Bp) - mHU(12911, Gp) - mHU(3834, Rp) + 8224, 6)),
                    cV(sh(mHU(16744, Rp) - mHU(15204, Gp) - mHU(1540, Bp) + 8224, 6))};
        case 9:
            return {cV(sh(33489 * SB - 25821 * SG - 7668 * SR + K, s)),
                    cV(sh(33489 * SR - 30409 * SG - 3080 * SB + Kr, s))};
        case 13:
            return {cV(sh(mHS(16744, Bp) + mHS(-12911, Gp) + mHS(-3834, Rp) + 8224, 6)),
                    cV(sh(mHS(16744, Rp) + mHS(-15204, Gp) + mHS(-1540, Bp) + 8224, 6))};
        case 10: {
            int64_t Yq = 0;
            for (auto& p : blk) Yq += P11(p);
            const int64_t T = n == 4 ? (uint64_t(Yq) >> 1) : Yq;
            return {c8(sh(mR15(8061, Bp - T), 6) + 128), c8(sh(mR15(14369, Rp - T), 6) + 128)};
        }
        case 11: {
            const int64_t Q = 4899 * SR + 9617 * SG + 1868 * SB;
            return {int(sh(sh(SB * 16384 - Q, 14) * 8061, 16) + 128),
                    c8(sh(sh(SR * 16384 - Q, 14) * 14369, 16) + 128)};
        }
        case 12: {
            int64_t Yq = 0;
            for (auto& p : blk) Yq += P13(p);
            const int64_t T = sh(Yq, 2), b = sh(SB * 4, 3), r = sh(SR * 4, 3);
            return {c8(mHS(16121, b - T) + 128), c8(mHS(28737, r - T) + 128)};
        }
        case 14: {
            const int64_t Q = 19595 * SR + 38470 * SG + 7471 * SB;
            return {int(sh(sh(SB * 65536 - Q + K, 16) * 32244, s) + 128),
                    c8(sh(sh(SR * 65536 - Q + K, 16) * 57475, s) + 128)};
        }
        case 15: {
            const int64_t T = sh(P17(blk[0]) + P17(blk[1]) + 2 * K, 1);
            return {c8(mHS(16121, SB - T) + 128), c8(mHS(28737, SR - T) + 128)};
        }
        case 16: {
            const int64_t T = P14(blk[0]) + P14(blk[1]);
            const int64_t b = sh(X(blk[0].b) + X(blk[1].b), 1), r = sh(X(blk[0].r) + X(blk[1].r), 1);
            return {c8(sh(mHS(16121, b - T), 1) + 128), c8(sh(mHS(28737, r - T), 1) + 128)};
        }
    }
    return {-1, -1};
}

// ------------------------------------------------------------ odd last column E1..E5
// {Y, Cb, Cr}; Cr is -1 where the rule gives none.
inline std::array<int, 3> oddColumn(int rule, const Rgb& p) {
    const int64_t R = p.r, G = p.g, B = p.b;
    switch (rule) {
        case 1: return {luma(5, p), int(sh(28770 * B - 19071 * G - 9699 * R + 8421376, 16)), -1};
        case 2: return {luma(10, p), cV(sh(33489 * B - 25821 * G - 7668 * R + 8421376, 16)), -1};
        case 3: {
            const int64_t Q = 19595 * R + 38470 * G + 7471 * B;
            return {luma(16, p), int(sh(sh(B * 65536 - Q + 32768, 16) * 32244, 16) + 128), -1};
        }
        case 4:
        case 5: {
            const int64_t Q = 9798 * R + 19235 * G + 3736 * B;
            const int64_t ru = rule == 4 ? 16383 : 0, rv = rule == 4 ? 32767 : 0;
            return {int(sh(Q, 15)), int(sh(sh(B * 32768 - Q + ru, 15) * 16121, 15) + 128),
                    c8(sh(sh(R * 32768 - Q + rv, 15) * 28737, 15) + 128)};
        }
    }
    return {-1, -1, -1};
}

// ------------------------------------------------------------ span rules
enum class Span { S16, S8, S4, SH, SX, None };
inline int span(Span s, int W) {
    switch (s) {
        case Span::S16: return W - W % 16;
        case Span::S8: return W - W % 8;
        case Span::S4: return W - W % 4;
        case Span::SH: return (W - W % 16) + (W % 8 >= 4 ? 4 : 0);
        case Span::SX: return (W - W % 32) + (W % 16 >= 8 ? 8 : 0);
        case Span::None: return 0;
    }
    return 0;
}

// ------------------------------------------------------------ encoders as table rows
enum class Odd { None, E1, E2, E3, E4, E5, LumaL5 };
enum class Out { P3, P2, C2 };

struct EncDesc {
    int bw, bh;
    Span span;
    int mainY;
    Chroma mainC;
    int tailYEven, tailYOdd;
    Chroma tailC;
    Odd odd;
    bool filter = false;  // the CbYCr encoder with filtered chroma
};

// Destination layout: P3 plane indices of Cb, Cr; P2 byte offsets in a pair;
// C2 byte positions of Y0, Y1, Cb, Cr in a 4-byte group.
struct OutLayout {
    Out kind;
    int cb, cr;       // P3: plane index; P2: offset in pair; C2: position
    int y0 = 0, y1 = 0;  // C2 only
};

// Source pixel reader and destination writer on raw memory.
struct Image {
    std::vector<const uint8_t*> planes;  // 1 (interleaved) or 3 (planar R, G, B)
    int step;
    int bytesPerPixel;  // 3 or 4 for interleaved
    bool bgr;
    Rgb at(int x, int y) const {
        if (planes.size() == 3)
            return {planes[0][int64_t(y) * step + x], planes[1][int64_t(y) * step + x],
                    planes[2][int64_t(y) * step + x]};
        const uint8_t* p = planes[0] + int64_t(y) * step + int64_t(bytesPerPixel) * x;
        return bgr ? Rgb{p[2], p[1], p[0]} : Rgb{p[0], p[1], p[2]};
    }
};
struct Dest {
    OutLayout lay;
    std::vector<uint8_t*> planes;  // P3: Y, plane 1, plane 2; P2: Y, pairs; C2: one
    std::vector<int> steps;
    uint8_t* at(int plane, int row, int col) const { return planes[plane] + int64_t(row) * steps[plane] + col; }
    void y(int x, int row, int v) const {
        if (lay.kind == Out::C2)
            *at(0, row, 2 * (x - x % 2) + (x % 2 ? lay.y1 : lay.y0)) = uint8_t(v);
        else
            *at(0, row, x) = uint8_t(v);
    }
    // chroma of block i on chroma row j; cr < 0: not written
    void c(int i, int j, int cb, int cr, bool odd = false) const {
        if (lay.kind == Out::P3) {
            *at(lay.cb, j, i) = uint8_t(cb);
            if (cr >= 0) *at(lay.cr, j, i) = uint8_t(cr);
        } else if (lay.kind == Out::P2) {
            *at(1, j, 2 * i + lay.cb) = uint8_t(cb);
            *at(1, j, 2 * i + lay.cr) = uint8_t(cr);
        } else {
            // an odd last pixel owns only the first two bytes of its group
            if (!odd || lay.cb < 2) *at(0, j, 4 * i + lay.cb) = uint8_t(cb);
            if (cr >= 0 && (!odd || lay.cr < 2)) *at(0, j, 4 * i + lay.cr) = uint8_t(cr);
        }
    }
};

// The filtered CbYCr row: L1 in the S8 span, L5 after; chroma 1/4, 1/2, 1/4.
inline void filterRow(const Image& src, const Dest& d, int W, int row) {
    const int S = span(Span::S8, W);
    auto term7 = [](const Rgb& p, bool odd, bool cr) -> int64_t {
        const int64_t R = p.r * 128, G = p.g * 128, B = p.b * 128;
        if (!odd) return cr ? mR15(7193, R) - mR15(6029, G) - mR15(1163, B) : mR15(7193, B) - mR15(4768, G) - mR15(2425, R);
        return cr ? mR15(3596, R) - mR15(3015, G) - mR15(582, B) : mR15(3596, B) - mR15(2384, G) - mR15(1212, R);
    };
    auto term16 = [](const Rgb& p, bool cr) -> int64_t {
        return cr ? 28770LL * p.r - 24117LL * p.g - 4653LL * p.b : -9699LL * p.r - 19071LL * p.g + 28770LL * p.b;
    };
    int64_t p[2] = {0, 0};
    for (int i = 0; 2 * i + 1 < W; ++i) {
        const Rgb e = src.at(2 * i, row), o = src.at(2 * i + 1, row);
        int out[2];
        if (2 * i < S) {
            d.y(2 * i, row, luma(1, e));
            d.y(2 * i + 1, row, luma(1, o));
            for (int k = 0; k < 2; ++k) {
                const int64_t prev = i > 0 ? term7(src.at(2 * i - 1, row), true, k) : 0;
                out[k] = int(sh(term7(e, false, k) + term7(o, true, k) + prev + 16448, 7));
            }
        } else {
            d.y(2 * i, row, luma(5, e));
            d.y(2 * i + 1, row, luma(5, o));
            for (int k = 0; k < 2; ++k) {
                if (2 * i == S) p[k] = S > 0 ? term7(src.at(S - 1, row), true, k) * 512 : 0;
                out[k] = int(sh(sh(term16(e, k), 1) + p[k] + sh(term16(o, k), 2) + 8421375, 16));
                p[k] = sh(term16(o, k), 2);
            }
        }
        d.c(i, row, out[0], out[1]);
    }
    if (W % 2) {
        const auto v = oddColumn(1, src.at(W - 1, row));
        d.y(W - 1, row, v[0]);
        d.c(W / 2, row, v[1], -1, true);
    }
}

// Every written sample of a W x H region.
inline void refEncode(const EncDesc& s, const Image& src, const Dest& d, int W, int H) {
    const int passes = H / s.bh;
    const int S = span(s.span, W);
    for (int j = 0; j < passes; ++j) {
        if (s.filter) {
            filterRow(src, d, W, j);
            continue;
        }
        const int blocks = W / s.bw;
        for (int i = 0; i < blocks; ++i) {
            const int x0 = i * s.bw;
            const bool main = x0 < S;
            std::vector<Rgb> blk;
            for (int k = 0; k < s.bh; ++k)
                for (int c = 0; c < s.bw; ++c) {
                    const int x = x0 + c, y = j * s.bh + k;
                    const Rgb p = src.at(x, y);
                    blk.push_back(p);
                    const int form = main ? s.mainY : (x % 2 ? s.tailYOdd : s.tailYEven);
                    d.y(x, y, luma(form, p));
                }
            // block order for the two-pixel forms that name pixel 0 and pixel 1: left, right
            const Pair c = chroma(main ? s.mainC : s.tailC, blk);
            d.c(i, j, c[0], c[1]);
        }
        const int rest = blocks * s.bw;
        if (rest < W) {
            switch (s.odd) {
                case Odd::None: break;
                case Odd::LumaL5:
                    for (int x = rest; x < W; ++x) d.y(x, j, luma(5, src.at(x, j)));
                    break;
                default: {
                    const int rule = int(s.odd) - int(Odd::E1) + 1;
                    const auto v = oddColumn(rule, src.at(W - 1, j));
                    d.y(W - 1, j, v[0]);
                    d.c(W / 2, j, v[1], v[2], true);
                }
            }
        }
    }
}

}  // namespace ref
