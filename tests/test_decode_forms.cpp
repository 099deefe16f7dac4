// Every decoding form of the library, scalar and vector, against the
// independent reference over all 2^24 inputs (a scattered sample under
// sanitizers), and the worked values of the forms.
#include <gtest/gtest.h>

#include "ref_decode.h"
#include "subsampled/decode_forms.h"

namespace {

using namespace kro;
using Ref = ref::Px3 (*)(int, int, int);

template <class Scalar>
ref::Px3 scalarOf(int y, int cb, int cr) {
    int r, g, b;
    Scalar::apply(y, cb, cr, r, g, b);
    return {r, g, b};
}

uint32_t inputAt(int64_t i) { return KROCC_FULL_SWEEPS ? uint32_t(i) : uint32_t(i * 2654435761u) & 0xffffff; }
constexpr int64_t kCount = KROCC_FULL_SWEEPS ? (1 << 24) : (1 << 17);

// Scalar form: every input; vector form: eight inputs a step, lanes compared one by one.
template <class Scalar, class Vector>
void exhaustive(const char* name, Ref want) {
    int64_t bad = 0;
    for (int64_t i = 0; i < kCount; i += 8) {
        alignas(16) int16_t in[3][8];
        for (int l = 0; l < 8; ++l) {
            const uint32_t t = inputAt(i + l);
            in[0][l] = int16_t(t >> 16), in[1][l] = int16_t((t >> 8) & 255), in[2][l] = int16_t(t & 255);
        }
        V vin[3], vout[3];
        for (int k = 0; k < 3; ++k) vin[k] = _mm_load_si128(reinterpret_cast<const V*>(in[k]));
        Vector::apply(vin, vout);
        alignas(16) uint8_t out[3][16];
        for (int k = 0; k < 3; ++k) _mm_store_si128(reinterpret_cast<V*>(out[k]), _mm_packus_epi16(vout[k], vout[k]));
        for (int l = 0; l < 8; ++l) {
            const ref::Px3 e = want(in[0][l], in[1][l], in[2][l]);
            const ref::Px3 s = scalarOf<Scalar>(in[0][l], in[1][l], in[2][l]);
            const ref::Px3 v = {out[0][l], out[1][l], out[2][l]};
            if (s != e || v != e) {
                if (bad++ < 4)
                    ADD_FAILURE() << name << " (" << in[0][l] << "," << in[1][l] << "," << in[2][l] << "): scalar ("
                                  << s[0] << "," << s[1] << "," << s[2] << ") vector (" << v[0] << "," << v[1] << ","
                                  << v[2] << ") want (" << e[0] << "," << e[1] << "," << e[2] << ")";
            }
        }
    }
    EXPECT_EQ(bad, 0) << name;
}

template <class F>
void lanes16(const char* name, Ref want) {
    exhaustive<F, F>(name, want);
}
template <class F>
void lanes32(const char* name, Ref want) {
    exhaustive<F, Lanes32<F>>(name, want);
}

TEST(DecodeForms, D1) { lanes16<dec::D1>("D1", ref::d1); }
TEST(DecodeForms, D2) { lanes16<dec::D2>("D2", ref::d2); }
TEST(DecodeForms, D3) { lanes16<dec::D3>("D3", ref::d3); }
TEST(DecodeForms, D4) { lanes16<dec::D4>("D4", ref::d4); }
TEST(DecodeForms, D5) { lanes16<dec::D5>("D5", ref::d5); }
TEST(DecodeForms, D6) { lanes32<dec::D6>("D6", ref::d6); }
TEST(DecodeForms, D7) { lanes32<dec::D7>("D7", ref::d7); }
TEST(DecodeForms, D8) { lanes32<dec::D8>("D8", ref::d8); }
TEST(DecodeForms, H1) { lanes16<dec::H1>("H1", ref::h1); }
TEST(DecodeForms, H2) { lanes32<dec::H2>("H2", ref::h2); }
TEST(DecodeForms, H3) { lanes16<dec::H3>("H3", ref::h3); }
TEST(DecodeForms, Y1) { lanes16<dec::Y1>("Y1", ref::y1); }
TEST(DecodeForms, Y2) { lanes16<dec::Y2>("Y2", ref::y2); }
TEST(DecodeForms, Y3) { lanes16<dec::Y3>("Y3", ref::y3); }
TEST(DecodeForms, Y4) { lanes32<dec::Y4>("Y4", ref::y4); }
TEST(DecodeForms, Y5) { lanes32<dec::Y5>("Y5", ref::y5); }
TEST(DecodeForms, Y6) { lanes32<dec::Y6>("Y6", ref::y6); }

// The worked value: (128, 128, 128) in D1 gives (130, 131, 130); D2 and inverse form 4 give 130 throughout.
TEST(DecodeForms, WorkedValues) {
    EXPECT_EQ(scalarOf<dec::D1>(128, 128, 128), (ref::Px3{130, 131, 130}));
    EXPECT_EQ(ref::d1(128, 128, 128), (ref::Px3{130, 131, 130}));
    EXPECT_EQ(scalarOf<dec::D2>(128, 128, 128), (ref::Px3{130, 130, 130}));
    EXPECT_EQ(ref::inv4(128, 128, 128), (ref::Px3{130, 130, 130}));
    // inverse forms at the corners of the studio range
    for (auto f : {ref::inv1, ref::inv5}) EXPECT_EQ(f(235, 128, 128), (ref::Px3{254, 254, 254}));
    for (auto f : {ref::inv2, ref::inv3, ref::inv4, ref::inv6}) EXPECT_EQ(f(235, 128, 128), (ref::Px3{255, 255, 255}));
    for (auto f : {ref::inv1, ref::inv2, ref::inv3, ref::inv4, ref::inv5, ref::inv6})
        EXPECT_EQ(f(16, 128, 128), (ref::Px3{0, 0, 0}));
    EXPECT_EQ(ref::inv4(128, 0, 255)[1], 78);
    for (auto f : {ref::inv1, ref::inv2, ref::inv3, ref::inv5, ref::inv6}) EXPECT_EQ(f(128, 0, 255)[1], 77);
    for (auto f : {ref::inv1, ref::inv5}) EXPECT_EQ(f(128, 255, 0)[1], 184);
    for (auto f : {ref::inv2, ref::inv3, ref::inv4, ref::inv6}) EXPECT_EQ(f(128, 255, 0)[1], 185);
    // forms 7 and 8 differ by one at (252, 252, 210)
    EXPECT_NE(ref::inv7(252, 252, 210), ref::inv8(252, 252, 210));
}

// Adjacent forms are not interchangeable: each pair differs somewhere.
TEST(DecodeForms, NeighbouringFormsDiffer) {
    auto differs = [](Ref a, Ref b) {
        for (int y = 0; y < 256; y += 3)
            for (int u = 0; u < 256; u += 5)
                for (int v = 0; v < 256; v += 7)
                    if (a(y, u, v) != b(y, u, v)) return true;
        return false;
    };
    EXPECT_TRUE(differs(ref::d1, ref::d2));
    EXPECT_TRUE(differs(ref::d2, ref::d3));
    EXPECT_TRUE(differs(ref::d4, ref::inv6));
    EXPECT_TRUE(differs(ref::d5, ref::inv4));
    EXPECT_TRUE(differs(ref::d6, ref::inv1));
    EXPECT_TRUE(differs(ref::d7, ref::inv3));
    EXPECT_TRUE(differs(ref::h1, ref::h3));
    EXPECT_TRUE(differs(ref::y1, ref::y2));
    EXPECT_TRUE(differs(ref::y4, ref::y5));
}

}  // namespace
