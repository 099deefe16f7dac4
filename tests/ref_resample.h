// Plain reference of the plane resamplers: each destination chroma sample as
// a function of its column and row, straight from the rules.
#pragma once

#include <functional>

namespace ref {

using Sample = std::function<int(int x, int y)>;  // source chroma S(x, y)

inline int avgUp(int a, int b) { return (a + b + 1) / 2; }
inline int avgDown(int a, int b) { return (a + b) / 2; }

// 1620 -> 420: n x m source samples; destination (X, Y).
inline int r1620To420(const Sample& S, int n, int m, int X, int Y) {
    const int x = X / 2, y = Y / 2, L = 16 * ((n - 1) / 16);
    auto A = [&](int a, int b) { return x < L ? avgUp(a, b) : avgDown(a, b); };
    const bool xo = X % 2, yo = Y % 2;
    if (y < m - 1) {
        if (x < n - 1) {
            if (!xo && !yo) return S(x, y);
            if (xo && !yo) return A(S(x, y), S(x + 1, y));
            if (!xo && yo) return A(S(x, y), S(x, y + 1));
            return A(A(S(x, y), S(x + 1, y)), A(S(x, y + 1), S(x + 1, y + 1)));
        }
        return yo ? avgDown(S(x, y), S(x, y + 1)) : S(x, y);
    }
    if (x < n - 1 && !yo && xo) return A(S(x, y), S(x + 1, y));
    return S(x, y);
}

// 411 -> 420: source rows 2j only.
inline int r411To420(const Sample& S, int n, int X, int j) {
    const int x = X / 2, L = 16 * ((n - 1) / 16);
    if (x < n - 1 && X % 2) return x < L ? avgUp(S(x, 2 * j), S(x + 1, 2 * j)) : avgDown(S(x, 2 * j), S(x + 1, 2 * j));
    return S(x, 2 * j);
}

// 420 -> 1620: pure decimation.
inline int r420To1620(const Sample& S, int x, int y) { return S(2 * x, 2 * y); }

// 420 -> 411: n destination columns, m source rows.
inline int r420To411(const Sample& S, int n, int m, int x, int Y) {
    const int y = Y / 2, L = 32 * (n / 32);
    if (y < m - 1 && Y % 2) return x < L ? avgUp(S(2 * x, y), S(2 * x, y + 1)) : avgDown(S(2 * x, y), S(2 * x, y + 1));
    return S(2 * x, y);
}

}  // namespace ref
