// Constants of the CIE L*a*b* model (and of the LUV and planar Lab families
// that share them): the RGB <-> XYZ matrices of the BT.709 primaries with the
// D65 white, the scales of each sample type, the coefficients of the binomial
// series of the cube root, and the cube-root table of 128 segments.
//
// Every float constant is written by its 32-bit pattern: the pattern is the
// constant, the decimal beside it only a reading aid.
#pragma once

#include <cstdint>

namespace kro::lab {

constexpr float bitsF(uint32_t b) { return __builtin_bit_cast(float, b); }

// ------------------------------------------------------------ matrices
// Linear RGB to XYZ, rows X, Y, Z; columns R, G, B.
inline constexpr float kRgbToXyz[3][3] = {
    {bitsF(0x3ED32D0A), bitsF(0x3EB714BA), bitsF(0x3E38C0CF)},  // 0.412452996 0.357580006 0.180423006
    {bitsF(0x3E59C66D), bitsF(0x3F3714BA), bitsF(0x3D93CD57)},  // 0.212670997 0.715160012 0.0721689984
    {bitsF(0x3C9E6256), bitsF(0x3DF41B76), bitsF(0x3F734214)},  // 0.0193339996 0.119193003 0.950227022
};

// XYZ to linear RGB, rows R, G, B; columns X, Y, Z.
inline constexpr float kXyzToRgb[3][3] = {
    {bitsF(0x404F6402), bitsF(0xBFC4C155), bitsF(0xBEFF3FFB)},  // 3.24047899 -1.53715003 -0.498535007
    {bitsF(0xBF782129), bitsF(0x3FF02079), bitsF(0x3D2A36A0)},  // -0.969255984 1.87599099 0.0415560007
    {bitsF(0x3D63EF28), bitsF(0xBE50F0A6), bitsF(0x3F8755F8)},  // 0.055647999 -0.204043001 1.05731106
};

// ------------------------------------------------------------ scales and model constants
namespace c {
// XYZ of 0..255 samples to X/Xn, Y/Yn, Z/Zn
inline constexpr float xScale8 = bitsF(0x3B873353);  // 1 / (255 x 0.950456)
inline constexpr float yScale8 = bitsF(0x3B808081);  // 1 / 255
inline constexpr float zScale8 = bitsF(0x3B6C0DB2);  // 1 / (255 x 1.088754)
// XYZ of 0..1 samples to X/Xn, Z/Zn (Y/Yn = Y)
inline constexpr float xScaleF = bitsF(0x3F86AC15);  // 1.05212653
inline constexpr float zScaleF = bitsF(0x3F6B2195);  // 0.918481171
// linear segment of f(t) and of L, at and below thresh
inline constexpr float thresh = bitsF(0x3C1118C2);  // 0.008856
inline constexpr float slope = bitsF(0x40F92F1B);   // 7.787
inline constexpr float offs = bitsF(0x3E0D3DCB);    // 16 / 116
inline constexpr float lowL = bitsF(0x4461D333);    // 903.3
// L to samples and back
inline constexpr float outL8 = bitsF(0x40233333);   // 2.55
inline constexpr float outL16 = bitsF(0x4423D666);  // 655.35
inline constexpr float inL8 = bitsF(0x3EC8C8C9);    // 100 / 255
inline constexpr float inL16 = bitsF(0x3AC800C8);   // 100 / 65535
inline constexpr float inAB16 = bitsF(0x3B808081);  // 1 / 255
inline constexpr float inv116 = bitsF(0x3C0D3DCB);
inline constexpr float inv500 = bitsF(0x3B03126F);
inline constexpr float inv200 = bitsF(0x3BA3D70A);
// white point: float outputs, and x 255 for integer outputs
inline constexpr float xn = bitsF(0x3F735116);     // 0.950456
inline constexpr float zn = bitsF(0x3F8B5C4A);     // 1.088754
inline constexpr float xn255 = bitsF(0x43725DB2);  // 242.366
inline constexpr float zn255 = bitsF(0x438AD0E5);  // 277.632
// segment index of x: truncToInt(x x 127.998047), not 128
inline constexpr float cubeIndexScale = bitsF(0x42FFFF00);
}  // namespace c

// ------------------------------------------------------------ binomial series
// (1 + e)^(1/3) = 1 + a1 e - a2 e^2 + a3 e^3 - a4 e^4 + ... with alternating signs.
// A series names its number of terms and its last two coefficients, which
// exist in two roundings.
namespace c {
inline constexpr float a1 = bitsF(0x3EAAAAAB);  // 1/3
inline constexpr float a2 = bitsF(0x3DE38E39);  // 1/9
inline constexpr float a3 = bitsF(0x3D7CD6EA);  // 5/81
inline constexpr float a4 = bitsF(0x3D288F47);  // 10/243
inline constexpr float a5 = bitsF(0x3CF7388A);  // 22/729
inline constexpr float a6 = bitsF(0x3CC0486B);  // 154/6561
}  // namespace c

struct Series4 {  // 8-bit forms
    static constexpr int terms = 4;
    static constexpr float a4 = c::a4;
};
struct Series8 {  // float forms: 374/19683 and 935/59049 to the float's precision
    static constexpr int terms = 8;
    static constexpr float a7 = bitsF(0x3C9BA857);
    static constexpr float a8 = bitsF(0x3C81B6F3);
};
struct Series8Short {  // 8-bit to 16-bit form: the same two, stored to fewer digits
    static constexpr int terms = 8;
    static constexpr float a7 = bitsF(0x3C9BA868);
    static constexpr float a8 = bitsF(0x3C81B6EF);
};

// ------------------------------------------------------------ cube-root table
// Segment i covers x up to x_i = (i + 1) / 127.998046875 + 0.0001; c is the
// cube root of x_i and k is 1 / x_i, each rounded to six decimals and then to
// a float. Built at compile time from that rule; six entries are stored one
// unit of the sixth decimal away from it.
struct CubeSeg {
    float c, k;
};
struct CubeTable {
    CubeSeg seg[128];
};

namespace detail {
constexpr double cubeRootD(double x) {  // Newton's method from above, to a fixed point
    double y = x > 1.0 ? x : 1.0;
    for (int n = 0; n < 200; ++n) {
        const double next = y - (y * y * y - x) / (3.0 * y * y);
        if (next >= y) break;
        y = next;
    }
    return y;
}
// v > 0 rounded to six decimals, then to the nearest float
constexpr float sixDecimals(double v) {
    const auto units = static_cast<long long>(v * 1e6 + 0.5);
    return static_cast<float>(static_cast<double>(units) / 1e6);
}
constexpr CubeTable makeCubeTable() {
    CubeTable t{};
    for (int i = 0; i < 128; ++i) {
        const double x = (i + 1) / 127.998046875 + 0.0001;
        t.seg[i].c = sixDecimals(cubeRootD(x));
        t.seg[i].k = sixDecimals(1.0 / x);
    }
    t.seg[16].c = 0.510337f;
    t.seg[18].c = 0.529599f;
    t.seg[6].k = 18.252060f;
    t.seg[7].k = 15.974197f;
    t.seg[17].k = 7.105949f;
    t.seg[28].k = 4.411778f;
    return t;
}
}  // namespace detail

alignas(16) inline constexpr CubeTable kCubeTable = detail::makeCubeTable();

static_assert(kCubeTable.seg[0].c == 0.199269f && kCubeTable.seg[0].k == 126.380402f, "first segment");
static_assert(kCubeTable.seg[1].c == 0.250533f && kCubeTable.seg[1].k == 63.592041f, "second segment");
static_assert(kCubeTable.seg[2].c == 0.286586f && kCubeTable.seg[2].k == 42.484749f, "third segment");
static_assert(kCubeTable.seg[126].c == 0.997428f && kCubeTable.seg[126].k == 1.007757f, "next to last segment");
static_assert(kCubeTable.seg[127].c == 1.000038f && kCubeTable.seg[127].k == 0.999885f, "last segment");

}  // namespace kro::lab
