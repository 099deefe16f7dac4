// Plain reference of the repackers: read every sample of the source by its
// layout into whole planes, map each destination chroma sample to the source
// sample its rule names, write the destination by its layout. Shares nothing
// with the library's kernels.
#pragma once

#include <cstdint>
#include <vector>

namespace kt::rep {

enum class K { C2, P3, P2 };
enum class Pk { YCbCr, CbYCr, YCrCb };
enum class Rule { Keep, DropRows, DoubleRows, DropCols, DoubleCols, Fold, Unfold };

// A layout: packed 4:2:2 in one of three orders, or planes (P3: element 1 the
// Cr plane when crFirst) or luma and pairs (P2: pairs Cr first when crFirst).
struct Fmt {
    K k;
    int bw, bh;  // pixels a chroma sample covers
    Pk pk;
    bool crFirst;
};

// Byte layouts of one side: plane addresses and steps.
struct Side {
    uint8_t* p[3];
    int s[3];
};

// Packed byte positions, from the rows "Y0 Cb0 Y1 Cr0", "Cb0 Y0 Cr0 Y1", "Y0 Cr0 Y1 Cb0".
inline int packedY(Pk o, int x) { return o == Pk::CbYCr ? 2 * x + 1 : 2 * x; }
inline int packedC(Pk o, int c, int i) {  // c: 0 Cb, 1 Cr
    switch (o) {
    case Pk::YCbCr: return 4 * i + (c == 0 ? 1 : 3);
    case Pk::CbYCr: return 4 * i + (c == 0 ? 0 : 2);
    default: return 4 * i + (c == 0 ? 3 : 1);
    }
}

inline uint8_t* yAt(const Fmt& f, const Side& sd, int x, int y) {
    uint8_t* row = sd.p[0] + static_cast<std::ptrdiff_t>(y) * sd.s[0];
    return f.k == K::C2 ? row + packedY(f.pk, x) : row + x;
}
inline uint8_t* cAt(const Fmt& f, const Side& sd, int c, int i, int j) {
    if (f.k == K::C2) return sd.p[0] + static_cast<std::ptrdiff_t>(j) * sd.s[0] + packedC(f.pk, c, i);
    if (f.k == K::P3) {
        const int plane = (c == 0) != f.crFirst ? 1 : 2;
        return sd.p[plane] + static_cast<std::ptrdiff_t>(j) * sd.s[plane] + i;
    }
    const int off = (c == 0) != f.crFirst ? 0 : 1;
    return sd.p[1] + static_cast<std::ptrdiff_t>(j) * sd.s[1] + 2 * i + off;
}

// The source chroma sample (si, sj) that destination sample (i, j) copies.
inline void ruleSource(Rule r, int i, int j, int& si, int& sj) {
    switch (r) {
    case Rule::Keep: si = i, sj = j; break;
    case Rule::DropRows: si = i, sj = 2 * j; break;
    case Rule::DoubleRows: si = i, sj = j / 2; break;
    case Rule::DropCols: si = 2 * i, sj = j; break;
    case Rule::DoubleCols: si = i / 2, sj = j; break;
    case Rule::Fold: si = i / 2, sj = 2 * j + (i & 1); break;
    case Rule::Unfold: si = 2 * i + (j & 1), sj = j / 2; break;
    }
}

// Writes the destination of a W x H region, W and H already rounded to whole blocks.
inline void repack(Rule r, const Fmt& sf, const Side& src, const Fmt& df, const Side& dst, int W, int H) {
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x) *yAt(df, dst, x, y) = *yAt(sf, src, x, y);
    for (int j = 0; j < H / df.bh; ++j)
        for (int i = 0; i < W / df.bw; ++i)
            for (int c = 0; c < 2; ++c) {
                int si = 0, sj = 0;
                ruleSource(r, i, j, si, sj);
                *cAt(df, dst, c, i, j) = *cAt(sf, src, c, si, sj);
            }
}

}  // namespace kt::rep
