// Arithmetic vocabulary for lanes wider than bytes: clamps of 16- and 32-bit
// integer lanes, the float clamp to 0..1, float operations pinned to their
// written operand order, and the three-term float sums that the float forms
// of the matrix, grey and perceptual families share. Scalar and vector
// versions side by side; the scalar float versions use the same SSE
// instructions as the vector ones, so a NaN comes out with the same bits in
// the tail as in the main path.
#pragma once

#include "frame/forms.h"

namespace kro {

// ------------------------------------------------------------ integer lane clamps
// signed 16-bit lanes limited to 0..255
inline V clampU8Lanes16(V x) { return _mm_min_epi16(_mm_max_epi16(x, zero()), _mm_set1_epi16(255)); }
// 32-bit lanes limited to the range of an unsigned / signed 16-bit sample
inline V clampU16Lanes32(V x) { return _mm_min_epi32(_mm_max_epi32(x, zero()), _mm_set1_epi32(65535)); }
inline V clampS16Lanes32(V x) { return _mm_min_epi32(_mm_max_epi32(x, _mm_set1_epi32(-32768)), _mm_set1_epi32(32767)); }

// ------------------------------------------------------------ float clamp to 0..1
// max(x, 0) then min(., 1) as the instructions do it: a NaN gives 0, -0 gives +0.
inline float clamp01(float x) {
    const __m128 lo = _mm_max_ss(_mm_set_ss(x), _mm_setzero_ps());
    return _mm_cvtss_f32(_mm_min_ss(lo, _mm_set_ss(1.0f)));
}
inline VF clamp01(VF x) { return _mm_min_ps(_mm_max_ps(x, _mm_setzero_ps()), _mm_set1_ps(1.0f)); }

// ------------------------------------------------------------ float operations in written order
// The compiler treats float addition and multiplication as commutative and
// may swap the operands of an intrinsic. The values do not change, but when
// both operands are NaN the instruction returns its first operand's (quieted),
// so the float forms pin the order they are written in with these.
inline VF addF(VF a, VF b) {
    __asm__("addps %1, %0" : "+x"(a) : "x"(b));
    return a;
}
inline VF mulF(VF a, VF b) {
    __asm__("mulps %1, %0" : "+x"(a) : "x"(b));
    return a;
}
inline float addF(float a, float b) {
    __asm__("addss %1, %0" : "+x"(a) : "x"(b));
    return a;
}
inline float mulF(float a, float b) {
    __asm__("mulss %1, %0" : "+x"(a) : "x"(b));
    return a;
}
inline __m128d addF(__m128d a, __m128d b) {
    __asm__("addpd %1, %0" : "+x"(a) : "x"(b));
    return a;
}
inline __m128d mulF(__m128d a, __m128d b) {
    __asm__("mulpd %1, %0" : "+x"(a) : "x"(b));
    return a;
}
inline double addF(double a, double b) {
    __asm__("addsd %1, %0" : "+x"(a) : "x"(b));
    return a;
}
inline double mulF(double a, double b) {
    __asm__("mulsd %1, %0" : "+x"(a) : "x"(b));
    return a;
}

// ------------------------------------------------------------ weighted sums
// (a w0 + b w1) + c w2, every product and sum rounded; products sample first.
template <class F>
inline F sum3(F a, F b, F c, F w0, F w1, F w2) {
    return addF(addF(mulF(a, w0), mulF(b, w1)), mulF(c, w2));
}

}  // namespace kro
