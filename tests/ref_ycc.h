// Independent reference of the YCC forms, from the arithmetic as stated.
#pragma once

#include <array>

#include "ref_float.h"
#include "ref_yuv.h"

namespace ref {

inline Px3 yccFwdMain(int R, int G, int B) {
    int64_t S = hiU(4898, R * 256) + hiU(9617, G * 256) + hiU(1867, B * 256);
    int64_t DB = B * 64 - S, DR = R * 64 - S;
    return {clip8(floorDiv(hiS(S, 2921), 4)), clip8(floorDiv(hiS(DB, 1789) + 624, 4)),
            clip8(floorDiv(hiS(DR, 2178) + 548, 4))};
}
inline Px3 yccFwdTail(int R, int G, int B) {
    int64_t S = 4898LL * R + 9617LL * G + 1867LL * B;
    return {int(floorDiv(floorDiv(S, 1024) * 2921, 65536)),
            int(floorDiv(floorDiv(B * 16384LL - S, 1024) * 1789, 65536) + 156),
            int(floorDiv(floorDiv(R * 16384LL - S, 1024) * 2178, 65536) + 137)};
}
inline Px3 yccInvMain(int Y, int C1, int C2) {
    int YQ = hiU(Y * 256, 5563);
    int P = hiS((C1 - 156) * 128, 18168), Q = hiS((C2 - 137) * 128, 14921);
    return {clip8(floorDiv(YQ + Q, 16)), clip8(floorDiv(YQ / 2 + hiS(P, -6357) + hiS(Q, -16679), 8)),
            clip8(floorDiv(YQ + P, 16))};
}
inline Px3 yccInvTail(int Y, int C1, int C2) {
    int64_t T = 5564LL * Y, P = 9084LL * C1 - 1417104, Q = 7460LL * C2 - 1022020;
    return {clip8(floorDiv(T + Q, 4096)),
            clip8(floorDiv(16 * T - 794 * floorDiv(P, 256) - 2084 * floorDiv(Q, 256), 65536)),
            clip8(floorDiv(T + P, 4096))};
}

}  // namespace ref

// ------------------------------------------------------------ 16u, 16s, 32f
// Float forms written from the model as stated: every product and sum a
// 32-bit float, in the order given; x86 NaN rules through ref_float.h.
namespace ref {

inline float ysub(float a, float b) {
    volatile float r = a - b;
    return nanRule(a, b, float(r));
}
// Y0 = (0.299 R + 0.587 G) + 0.114 B
inline float yccY0(float r, float g, float b) {
    return add(add(mul(0.299f, r), mul(0.587f, g)), mul(0.114f, b));
}
inline int lim16u(int64_t v) { return v < 0 ? 0 : v > 65535 ? 65535 : int(v); }
inline int lim16sY(int64_t v) { return v < -32768 ? -32768 : v > 32767 ? 32767 : int(v); }

using U3 = std::array<uint16_t, 3>;
using S3 = std::array<int16_t, 3>;
using F3 = std::array<float, 3>;

inline U3 ycc16uFwdMain(int R, int G, int B) {
    const float r = float(R), g = float(G), b = float(B), y0 = yccY0(r, g, b);
    return {uint16_t(lim16u(roundEvenRef(mul(0.7132668f, y0)))),
            uint16_t(lim16u(roundEvenRef(add(mul(ysub(b, y0), 0.4368627f), 40092.0f)))),
            uint16_t(lim16u(roundEvenRef(add(mul(ysub(r, y0), 0.5319216f), 35209.0f))))};
}
inline U3 ycc16uFwdTail(int R, int G, int B) {
    const float r = float(R), g = float(G), b = float(B);
    const float y = add(add(add(mul(0.213267f, r), 0.49999f), mul(0.418688f, g)), mul(0.0813124f, b));
    const float c1 = add(ysub(add(mul(-0.130621f, r), 40092.5f), mul(0.256437f, g)), mul(0.387058f, b));
    const float c2 = ysub(ysub(add(mul(0.372876f, r), 35209.5f), mul(0.312237f, g)), mul(0.0606389f, b));
    return {uint16_t(truncRef(y)), uint16_t(truncRef(c1)), uint16_t(truncRef(c2))};
}
inline S3 ycc16sFwdMain(int R, int G, int B) {
    const float r = float(R + 32768), g = float(G + 32768), b = float(B + 32768), y0 = yccY0(r, g, b);
    return {int16_t(lim16sY(int64_t(roundEvenRef(mul(0.7132668f, y0))) - 32768)),
            int16_t(lim16sY(int64_t(roundEvenRef(add(mul(ysub(b, y0), 0.4368627f), 40092.0f))) - 32768)),
            int16_t(lim16sY(int64_t(roundEvenRef(add(mul(ysub(r, y0), 0.5319216f), 35209.0f))) - 32768))};
}
inline S3 ycc16sFwdTail(int R, int G, int B) {
    const float r = float(R + 32768), g = float(G + 32768), b = float(B + 32768), y0 = yccY0(r, g, b);
    auto low = [](int v) { return int16_t(uint16_t(uint32_t(v - 32768))); };
    return {low(truncRef(add(mul(0.7132668f, y0), 0.49999f))), low(truncRef(add(mul(ysub(b, y0), 0.4368627f), 40092.5f))),
            low(truncRef(add(mul(ysub(r, y0), 0.5319216f), 35209.5f)))};
}
inline F3 ycc32fFwd(float r, float g, float b) {
    const float y0 = yccY0(r, g, b);
    return {mul(y0, 0.7132668f), add(mul(ysub(b, y0), 0.4368627f), 0.6117647f),
            add(mul(ysub(r, y0), 0.53192f), 0.5372549f)};
}

inline U3 ycc16uInvMain(int Y, int C1, int C2) {
    const float t = mul(1.3584f, float(Y));
    const float p = mul(ysub(float(C1), 40092.0f), 2.2179f), q = mul(ysub(float(C2), 35209.0f), 1.8215f);
    return {uint16_t(lim16u(roundEvenRef(add(t, q)))),
            uint16_t(lim16u(roundEvenRef(ysub(ysub(t, mul(0.194f, p)), mul(0.509f, q))))),
            uint16_t(lim16u(roundEvenRef(add(t, p))))};
}
inline U3 ycc16uInvTail(int Y, int C1, int C2) {
    const float t = add(mul(1.3584f, float(Y)), 0.49999f);
    const float p = float(C1 - 40092), q = float(C2 - 35209);
    return {uint16_t(lim16u(truncRef(add(mul(1.8215f, q), t)))),
            uint16_t(lim16u(truncRef(ysub(ysub(t, mul(0.4302726f, p)), mul(0.92714345f, q))))),
            uint16_t(lim16u(truncRef(add(t, mul(2.2179f, p)))))};
}
inline S3 ycc16sInv(int Y, int C1, int C2) {
    const float t = mul(float(Y + 32768), 1.3584f);
    const float p = mul(float(C1 - 7324), 2.2179f), q = mul(float(C2 - 2441), 1.8215f);
    auto out = [](float v) { return int16_t(lim16sY(int64_t(truncRef(v)) - 32768)); };
    return {out(add(t, q)), out(ysub(ysub(t, mul(0.194f, p)), mul(0.509f, q))), out(add(t, p))};
}
// limited to 0..1 as max(x, 0) then min(., 1): a NaN gives 0, -0 gives +0
inline float yccLimit01(float x) {
    const float lo = x > 0.0f ? x : 0.0f;
    return lo < 1.0f ? lo : 1.0f;
}
inline F3 ycc32fInv(float Y, float C1, float C2) {
    const float t = mul(1.3584f, Y);
    const float p = mul(ysub(C1, 0.6117647f), 2.2179f), q = mul(ysub(C2, 0.5372549f), 1.8215f);
    return {yccLimit01(add(t, q)), yccLimit01(ysub(ysub(t, mul(0.194f, p)), mul(0.509f, q))), yccLimit01(add(t, p))};
}

}  // namespace ref
