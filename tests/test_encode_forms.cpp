// The encoders' forms one by one against the independent reference: every
// luma form on all 2^24 colours (scalar and vector versions), every chroma
// form on blocks of one colour for all colours and on random mixed blocks,
// the odd-column rules on all colours. Sampled under sanitizers.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "harness.h"
#include "ref_encode.h"
#include "subsampled/encode_forms.h"

using namespace kro;
using namespace kro::sub;

namespace {

constexpr uint32_t kStride = KROCC_FULL_SWEEPS ? 1 : 97;  // colours stepped over

ref::Rgb colour(uint32_t t) { return {int(t >> 16) & 255, int(t >> 8) & 255, int(t) & 255}; }

// Eight lanes of Y: by the vector form, and where the form takes A14, also from
// the bytes of the even and of the odd pixels as the 16-pixel steps read them.
static_assert(HasFromA14<L2>::value && !HasFromA14<L4>::value, "the byte path is checked where it is taken");

struct LumaLanes {
    V v[3];
    int n = 0;
};
template <class F>
LumaLanes lumaVectors(V r, V g, V b) {
    LumaLanes out;
    out.v[out.n++] = F::vec(r, g, b);
    if constexpr (HasFromA14<F>::value) {
        out.v[out.n++] = F::fromA14(a14(Neg7{evenNeg7(r)}, Neg7{evenNeg7(g)}, Neg7{evenNeg7(b)}));
        const V r1 = _mm_slli_epi16(r, 8), g1 = _mm_slli_epi16(g, 8), b1 = _mm_slli_epi16(b, 8);
        out.v[out.n++] = F::fromA14(a14(Neg7{oddNeg7(r1)}, Neg7{oddNeg7(g1)}, Neg7{oddNeg7(b1)}));
    }
    return out;
}

template <class F>
void checkLuma(int form) {
    int64_t bad = 0;
    alignas(16) int16_t r[8], g[8], b[8], y[8];
    int n = 0;
    uint32_t ts[8];
    auto flush = [&] {
        if constexpr (HasVec<F>::value) {
            const LumaLanes lanes = lumaVectors<F>(_mm_load_si128(reinterpret_cast<V*>(r)),
                                                   _mm_load_si128(reinterpret_cast<V*>(g)),
                                                   _mm_load_si128(reinterpret_cast<V*>(b)));
            for (int k = 0; k < lanes.n; ++k) {
                const V out = lanes.v[k];
                _mm_store_si128(reinterpret_cast<V*>(y), _mm_packus_epi16(out, out));
                const auto* yb = reinterpret_cast<const uint8_t*>(y);
                for (int i = 0; i < n; ++i)
                    if (yb[i] != ref::luma(form, colour(ts[i])) && bad++ < 3)
                        ADD_FAILURE() << "L" << form << " vector at " << std::hex << ts[i];
            }
        }
        n = 0;
    };
    for (uint32_t t = 0; t < (1u << 24); t += kStride) {
        const ref::Rgb c = colour(t);
        if (F::one(c.r, c.g, c.b) != ref::luma(form, c) && bad++ < 3)
            ADD_FAILURE() << "L" << form << " scalar at " << std::hex << t;
        r[n] = int16_t(c.r), g[n] = int16_t(c.g), b[n] = int16_t(c.b), ts[n] = t;
        if (++n == 8) flush();
    }
    flush();
    EXPECT_EQ(bad, 0) << "L" << form;
}

TEST(EncodeForms, LumaOnAllColours) {
    checkLuma<L1>(1);
    checkLuma<L2>(2);
    checkLuma<L3>(3);
    checkLuma<L4>(4);
    checkLuma<L5>(5);
    checkLuma<L6>(6);
    checkLuma<L7>(7);
    checkLuma<L8>(8);
    checkLuma<L9>(9);
    checkLuma<L10>(10);
    checkLuma<L11>(11);
    checkLuma<L12>(12);
    checkLuma<L13>(13);
    checkLuma<L14>(14);
    checkLuma<L15>(15);
    checkLuma<L16>(16);
    checkLuma<L17>(17);
    checkLuma<L18>(18);
}

// ------------------------------------------------------------ chroma
template <class F, class = void>
struct HasChromaVec : std::false_type {};
template <class F>
struct HasChromaVec<F, std::void_t<decltype(sizeof(&F::template vec<2>))>> : std::true_type {};

// A block's sums as the kernels form them: samples, the form's luma term, stretched samples.
template <class C, int Pix>
BlockSums sumsOf(const std::array<ref::Rgb, Pix>& blk) {
    BlockSums s{};
    for (auto& p : blk) {
        s.sr += p.r, s.sg += p.g, s.sb += p.b;
        s.yq += C::YTerm::term(p.r, p.g, p.b);
        s.xr += stretch10(p.r), s.xb += stretch10(p.b);
    }
    return s;
}

// blockAt(i) gives block i of count.
template <class C, int Pix, class Gen>
void checkChroma(const ref::Chroma& rc, size_t count, const Gen& blockAt, const char* what) {
    int64_t bad = 0;
    std::vector<ref::Rgb> rb(Pix);
    for (size_t at = 0; at < count; at += 8) {
        const size_t n = std::min<size_t>(8, count - at);
        alignas(16) int16_t lane[6][8] = {};
        ref::Pair want[8];
        for (size_t i = 0; i < n; ++i) {
            const std::array<ref::Rgb, Pix> blk = blockAt(at + i);
            for (int k = 0; k < Pix; ++k) rb[k] = blk[k];
            want[i] = ref::chroma(rc, rb);
            const BlockSums s = sumsOf<C, Pix>(blk);
            int cb, cr;
            C::template one<Pix>(s, cb, cr);
            if ((cb != want[i][0] || cr != want[i][1]) && bad++ < 3)
                ADD_FAILURE() << "C" << rc.form << " scalar, " << Pix << " pixels, " << what << ": got " << cb << ","
                              << cr << " want " << want[i][0] << "," << want[i][1];
            const int v[6] = {s.sr, s.sg, s.sb, s.yq, s.xr, s.xb};
            for (int k = 0; k < 6; ++k) lane[k][i] = int16_t(uint16_t(v[k]));
        }
        if constexpr (HasChromaVec<C>::value) {
            auto ld = [&](int k) { return _mm_load_si128(reinterpret_cast<const V*>(lane[k])); };
            const BlockSumsV sv{ld(0), ld(1), ld(2), ld(3), ld(4), ld(5)};
            V cb, cr;
            C::template vec<Pix>(sv, cb, cr);
            alignas(16) uint8_t ob[16], orr[16];
            _mm_store_si128(reinterpret_cast<V*>(ob), _mm_packus_epi16(cb, cb));
            _mm_store_si128(reinterpret_cast<V*>(orr), _mm_packus_epi16(cr, cr));
            for (size_t i = 0; i < n; ++i)
                if ((ob[i] != want[i][0] || orr[i] != want[i][1]) && bad++ < 3)
                    ADD_FAILURE() << "C" << rc.form << " vector, " << Pix << " pixels, " << what << ": got "
                                  << int(ob[i]) << "," << int(orr[i]) << " want " << want[i][0] << "," << want[i][1];
        }
    }
    EXPECT_EQ(bad, 0) << "C" << rc.form << " " << what;
}

// Blocks of one colour, stepping over the cube.
template <int Pix>
std::array<ref::Rgb, Pix> uniformBlock(size_t i) {
    std::array<ref::Rgb, Pix> b;
    b.fill(colour(uint32_t(i * (KROCC_FULL_SWEEPS ? 3 : 301))));
    return b;
}
template <int Pix>
size_t uniformCount() {
    return ((1u << 24) + (KROCC_FULL_SWEEPS ? 3 : 301) - 1) / (KROCC_FULL_SWEEPS ? 3 : 301);
}

// Random blocks of mixed colours, then the corners of the cube in every combination of two.
template <int Pix>
std::vector<std::array<ref::Rgb, Pix>> mixedBlocks() {
    std::vector<std::array<ref::Rgb, Pix>> v(KROCC_FULL_SWEEPS ? (1 << 18) : (1 << 13));
    for (auto& b : v)
        for (auto& p : b) p = colour(kt::rng()() >> 8);
    const uint32_t corners[] = {0x000000, 0xff0000, 0x00ff00, 0x0000ff, 0xffff00, 0xff00ff, 0x00ffff, 0xffffff};
    for (uint32_t a : corners)
        for (uint32_t c : corners) {
            std::array<ref::Rgb, Pix> b;
            for (int k = 0; k < Pix; ++k) b[k] = colour(k % 2 ? c : a);
            v.push_back(b);
        }
    return v;
}

template <class C, int Pix>
void checkChromaAll(const ref::Chroma& rc) {
    static const auto mix = mixedBlocks<Pix>();
    checkChroma<C, Pix>(rc, uniformCount<Pix>(), uniformBlock<Pix>, "one colour");
    checkChroma<C, Pix>(rc, mix.size(), [&](size_t i) { return mix[i]; }, "mixed");
}

TEST(EncodeForms, ChromaOfFourPixels) {
    checkChromaAll<C1<8194>, 4>({1, 8194});
    checkChromaAll<C2, 4>({2});
    checkChromaAll<C3, 4>({3});
    checkChromaAll<C4<33587200>, 4>({4, 33587200});
    checkChromaAll<C6, 4>({6});
    checkChromaAll<C7, 4>({7});
    checkChromaAll<C8, 4>({8});
    checkChromaAll<C9<33587200>, 4>({9, 33587200});
    checkChromaAll<C10, 4>({10});
    checkChromaAll<C11, 4>({11});
    checkChromaAll<C12, 4>({12});
    checkChromaAll<C14Quad, 4>({14, 131071});
}

TEST(EncodeForms, ChromaOfTwoPixels) {
    checkChromaAll<C1<8224>, 2>({1, 8224});
    checkChromaAll<C4<16793600>, 2>({4, 16793600});
    checkChromaAll<C4<16842752>, 2>({4, 16842752});
    checkChromaAll<C4<16842752, 16842750>, 2>({4, 16842752, 16842750});
    checkChromaAll<C5, 2>({5});
    checkChromaAll<C9<16842752, 16842750>, 2>({9, 16842752, 16842750});
    checkChromaAll<C10, 2>({10});
    checkChromaAll<C13, 2>({13});
    checkChromaAll<C14<32768>, 2>({14, 32768});
    checkChromaAll<C14<65535>, 2>({14, 65535});
    checkChromaAll<C15<0>, 2>({15, 0});
    checkChromaAll<C15<1>, 2>({15, 1});
    checkChromaAll<C16, 2>({16});
}

// ------------------------------------------------------------ odd last column
template <class E>
void checkOdd(int rule) {
    int64_t bad = 0;
    for (uint32_t t = 0; t < (1u << 24); t += kStride) {
        const ref::Rgb c = colour(t);
        int y, cb, cr;
        E::one(c.r, c.g, c.b, y, cb, cr);
        const auto w = ref::oddColumn(rule, c);
        if ((y != w[0] || cb != w[1] || (w[2] >= 0 && cr != w[2])) && bad++ < 3)
            ADD_FAILURE() << "E" << rule << " at " << std::hex << t;
        EXPECT_EQ(E::HasCr, w[2] >= 0);
    }
    EXPECT_EQ(bad, 0) << "E" << rule;
}

TEST(EncodeForms, OddColumnRulesOnAllColours) {
    checkOdd<E1>(1);
    checkOdd<E2>(2);
    checkOdd<E3>(3);
    checkOdd<E4>(4);
    checkOdd<E5>(5);
}

TEST(EncodeForms, ClampVideoLimits) {
    for (int x : {-40000, -1, 0, 1, 2, 128, 253, 254, 255, 300, 40000}) {
        const int want = x < 1 ? 1 : x > 254 ? 254 : x;
        EXPECT_EQ(clampVideo(x), want) << x;
        if (x >= -32768 && x <= 32767) {
            EXPECT_EQ(_mm_extract_epi16(clampVideo(splat16(x)), 3), want) << x;
        }
    }
}

}  // namespace
