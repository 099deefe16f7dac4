// Independent reference of the 8-bit YCC forms, from the arithmetic as stated.
#pragma once

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
