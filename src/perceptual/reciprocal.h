// Fast reciprocals shared by the perceptual families (HLS, HSV).
//
// estimate: the vector unit's reciprocal instruction (rcpps), relative error at
// most 1.5 x 2^-12; the exact value is the processor's. The scalar form takes
// lane 0 of the same instruction, so a value gives the same estimate in the
// main path and in the tail.
// refined: one Newton step on the estimate, (r + r) - ((x * r) * r).
#pragma once

#include "frame/forms.h"

namespace kro::perceptual {

inline VF estimate(VF x) { return _mm_rcp_ps(x); }
inline float estimate(float x) { return _mm_cvtss_f32(_mm_rcp_ps(_mm_set_ss(x))); }

template <class X>
inline X refined(X x) {
    const X r = estimate(x);
    return (r + r) - ((x * r) * r);
}

}  // namespace kro::perceptual
