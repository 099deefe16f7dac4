// Plain reference of the interlaced and four-tap chroma operations: each
// destination chroma row as a function of the source chroma rows.
#pragma once

#include <cmath>
#include <functional>

namespace ref {

using ChromaRow = std::function<int(int row, int i)>;  // S(row) sample i

// Interlaced 4:2:2 -> 4:2:0, destination chroma row j.
inline int interlaceDown(const ChromaRow& S, int j, int i) {
    const int m = j / 2;
    if (j % 2 == 0) return (3 * S(4 * m, i) + S(4 * m + 2, i) + 2) / 4;
    return (S(4 * m + 1, i) + 3 * S(4 * m + 3, i) + 2) / 4;
}

// Interlaced 4:2:0 -> 4:2:2, destination row d of `rows` (a multiple of 4).
inline int interlaceUp(const ChromaRow& S, int rows, int d, int i) {
    const int n = rows / 2;
    if (d < 2) return S(d, i);
    if (d >= rows - 2) return S(n - 2 + (d - (rows - 2)), i);
    const int k = (d - 2) / 4;
    switch ((d - 2) % 4) {
        case 0: return (5 * S(2 * k, i) + 3 * S(2 * k + 2, i) + 4) / 8;
        case 1: return (7 * S(2 * k + 1, i) + 1 * S(2 * k + 3, i) + 4) / 8;
        case 2: return (1 * S(2 * k, i) + 7 * S(2 * k + 2, i) + 4) / 8;
        default: return (3 * S(2 * k + 1, i) + 5 * S(2 * k + 3, i) + 4) / 8;
    }
}

// Four-tap 4:2:0 -> 4:2:2, destination row d of `rows` (a multiple of 8).
inline int fourTap(const ChromaRow& S, int rows, int d, int i) {
    const int n = rows / 2;
    auto s = [&](int k) { return S(k < 0 ? 0 : (k >= n ? n - 1 : k), i); };
    const int k = d / 2;
    if (d % 2 == 0) return s(k);
    const int v = 9 * s(k) + 9 * s(k + 1) - s(k - 1) - s(k + 2) + 8;
    const int q = v >= 0 ? v / 16 : -((-v + 15) / 16);  // floor
    return q < 0 ? 0 : (q > 255 ? 255 : q);
}

// 4:2:0 to BGRA with chroma interpolated across: pixel x of a row with n
// chroma samples; main = the column lies below (W - 1) AND NOT 15.
inline void bgrFilterPixel(int Y, const int* cb, const int* cr, int n, int x, bool main, int out[3]) {
    const int i = x / 2, j = x % 2 ? (i + 1 < n ? i + 1 : n - 1) : i;
    const int y = Y - 16, u = (cb[i] + cb[j] + 1) / 2 - 128, v = (cr[i] + cr[j] + 1) / 2 - 128;
    auto clamp = [](int t) { return t < 0 ? 0 : (t > 255 ? 255 : t); };
    auto hi = [](int a, int k) { return int(std::floor(double(a) * k / 65536.0)); };
    auto sar3 = [](int t) { return int(std::floor(t / 8.0)); };
    auto sar12 = [](int t) { return int(std::floor(t / 4096.0)); };
    if (main) {
        const int T = hi(y * 128, 4769);
        out[2] = clamp(sar3(T + hi(v * 128, 6537)));
        out[1] = clamp(sar3(T - (hi(u * 128, 1605) + hi(v * 128, 3330))));
        out[0] = clamp(sar3(T + hi(u * 128, 8263)));
    } else {
        out[2] = clamp(sar12(4769 * y + 6537 * v));
        out[1] = clamp(sar12(4769 * y - 1605 * u - 3330 * v));
        out[0] = clamp(sar12(4769 * y + 8263 * u));
    }
}

}  // namespace ref
