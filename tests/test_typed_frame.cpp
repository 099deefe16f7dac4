// The typed layouts and row kernel on their own, in every combination a
// family may pick (sample type x samples a pixel x lane kind), not only the
// ones grey and XYZ use: a halving form (which shows whether samples arrive
// zero- or sign-extended) runs over random rows and is checked sample by sample;
// a kept fourth sample stays as it was.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "frame/kernel_typed.h"
#include "harness.h"

using namespace kro;

namespace {

// o[k] = in[k] halved: arithmetic shift in integer lanes, times 0.5 truncated in float lanes.
template <int NPix, Lanes Ln, int KOut, bool FloatOut>
struct Halve {
    static constexpr int N = NPix, K = KOut;
    static constexpr Lanes lanes = Ln;
    static constexpr bool floatOut = FloatOut;
    using VOut = typename VecOut<floatOut>::type;
    using SIn = std::conditional_t<Ln == Lanes::Float, float, int>;
    using SOut = std::conditional_t<FloatOut, float, int>;

    template <class VIn>
    void vec(const VIn (&in)[3], VOut (&o)[K]) const {
        for (int k = 0; k < K; ++k) {
            if constexpr (Ln == Lanes::Float && FloatOut) o[k] = _mm_mul_ps(in[k], _mm_set1_ps(0.5f));
            else if constexpr (Ln == Lanes::Float) o[k] = _mm_cvttps_epi32(_mm_mul_ps(in[k], _mm_set1_ps(0.5f)));
            else if constexpr (Ln == Lanes::Int32) o[k] = _mm_srai_epi32(in[k], 1);
            else if constexpr (Ln == Lanes::Int16) o[k] = _mm_srai_epi16(in[k], 1);
            else o[k] = _mm_srli_epi16(in[k], 9);  // Int16High: 8u sample << 8, halved
        }
    }
    void one(const SIn (&in)[3], SOut (&o)[K]) const {
        for (int k = 0; k < K; ++k) {
            if constexpr (Ln == Lanes::Float && FloatOut) o[k] = in[k] * 0.5f;
            else if constexpr (Ln == Lanes::Float) o[k] = int(in[k] * 0.5f);
            else o[k] = in[k] >> 1;
        }
    }
};

template <class T>
double expectHalf(T v, Lanes ln) {
    if constexpr (std::is_same_v<T, float>) return v * 0.5f;
    else if (ln == Lanes::Float) return double(int(float(v) * 0.5f));
    else return double(int(v) >> 1);
}

template <class T, int Cn, int NPix, Lanes Ln, bool FloatOut = false>
void check(const char* what) {
    constexpr int K = Cn == 4 ? 3 : Cn;
    using Dst = std::conditional_t<Cn == 4, DstCT<T, 4, Fourth::Keep>, DstCT<T, Cn>>;
    for (int width = 1; width <= 3 * NPix + 3; ++width) {
        const int height = 2, pad = 3;  // samples between rows
        const int step = width * Cn + pad;
        // the last row ends against an unreadable page on both sides
        const size_t n = size_t(step) * (height - 1) + size_t(width) * Cn;
        kt::GuardedBuf sbuf(n * sizeof(T), kt::Guard::After), dbuf(n * sizeof(T), kt::Guard::After);
        T* src = reinterpret_cast<T*>(sbuf.data());
        T* dst = reinterpret_cast<T*>(dbuf.data());
        kt::fillRandom(sbuf.data(), sbuf.size());
        if constexpr (std::is_same_v<T, float>)
            for (size_t i = 0; i < n; ++i) src[i] = float(int(kt::rng()() % 20001) - 10000) / 64.0f;
        kt::fillRandom(dbuf.data(), dbuf.size());
        const std::vector<T> before(dst, dst + n);
        runRegion(Halve<NPix, Ln, K, FloatOut>{}, SrcCT<T, Cn>{src, step}, Dst{dst, step}, kroiSize{width, height});
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (int k = 0; k < Cn; ++k) {
                    const size_t i = size_t(y) * step + size_t(x) * Cn + k;
                    if (k < K)
                        ASSERT_EQ(double(dst[i]), double(T(expectHalf(src[i], Ln))))
                            << what << " width " << width << " pixel " << x << " sample " << k;
                    else
                        ASSERT_EQ(std::memcmp(&dst[i], &before[i], sizeof(T)), 0)
                            << what << " kept sample, width " << width << " pixel " << x;
                }
        for (int y = 0; y < height; ++y)
            for (int j = width * Cn; j < step && y + 1 < height; ++j)
                ASSERT_EQ(std::memcmp(&dst[size_t(y) * step + j], &before[size_t(y) * step + j], sizeof(T)), 0)
                    << what << " padding";
    }
}

TEST(TypedFrame, IntegerLanes) {
    check<Kro8u, 3, 8, Lanes::Int16>("8u C3 16-bit lanes");
    check<Kro8u, 4, 4, Lanes::Int16>("8u AC4 16-bit lanes");
    check<Kro8u, 1, 8, Lanes::Int16>("8u C1 16-bit lanes");
    check<Kro8u, 3, 8, Lanes::Int16High>("8u C3 high in 16-bit lanes");
    check<Kro8u, 3, 4, Lanes::Int32>("8u C3 32-bit lanes");
    check<Kro16u, 3, 4, Lanes::Int32>("16u C3 32-bit lanes");
    check<Kro16u, 4, 4, Lanes::Int32>("16u AC4 32-bit lanes");
    check<Kro16s, 3, 4, Lanes::Int32>("16s C3 32-bit lanes");
    check<Kro16s, 1, 4, Lanes::Int32>("16s C1 32-bit lanes");
    check<Kro16s, 4, 4, Lanes::Int32>("16s AC4 32-bit lanes");
    check<Kro16s, 3, 8, Lanes::Int16>("16s C3 16-bit lanes");
    check<Kro16s, 4, 4, Lanes::Int16>("16s AC4 16-bit lanes");
}

TEST(TypedFrame, FloatLanes) {
    check<Kro8u, 3, 4, Lanes::Float>("8u C3 float lanes");
    check<Kro8u, 4, 4, Lanes::Float>("8u AC4 float lanes");
    check<Kro16u, 3, 4, Lanes::Float>("16u C3 float lanes");
    check<Kro16s, 3, 4, Lanes::Float>("16s C3 float lanes");
    check<Kro16s, 4, 4, Lanes::Float>("16s AC4 float lanes");
    check<Kro16u, 1, 4, Lanes::Float>("16u C1 float lanes");
    check<Kro32f, 3, 4, Lanes::Float, true>("32f C3 float lanes");
    check<Kro32f, 4, 4, Lanes::Float, true>("32f AC4 float lanes");
    check<Kro32f, 1, 4, Lanes::Float, true>("32f C1 float lanes");
}

}  // namespace
