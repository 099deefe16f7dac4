// Planar 8-bit sides for rows whose plane addresses and step are multiples of
// 16: vector steps of 16 pixels load and store whole aligned lines. An entry
// picks these sides only after testing every address and step (aligned16);
// the values are those of the general sides, only the loads and stores differ.
#pragma once

#include <cstdint>

#include "frame/layout8.h"

namespace kro {

inline bool aligned16(const void* p) { return (reinterpret_cast<std::uintptr_t>(p) & 15) == 0; }
inline bool aligned16(int step) { return (step & 15) == 0; }

// Every plane of the first k and the step are multiples of 16.
template <class T>
inline bool planesAligned16(T* const* planes, int k, int step) {
    if (!aligned16(step)) return false;
    for (int i = 0; i < k; ++i)
        if (!aligned16(planes[i])) return false;
    return true;
}

template <int K>
struct SrcP8Aligned {
    const uint8_t* const* planes;
    int step;
    struct Row : SrcP8<K>::Row {
        template <int N>
        void load(int x, Px& px) const {
            if constexpr (N == 16) {
                for (int k = 0; k < K; ++k) px.c[k] = _mm_load_si128(reinterpret_cast<const V*>(this->p[k] + x));
            } else {
                SrcP8<K>::Row::template load<N>(x, px);
            }
        }
    };
    Row row(int y) const {
        Row r{};
        for (int k = 0; k < K; ++k) r.p[k] = rowAt(planes[k], step, y);
        return r;
    }
};

template <int K>
struct DstP8Aligned {
    uint8_t* const* planes;
    int step;
    struct Row : DstP8<K>::Row {
        template <int N>
        void store(int x, const Px& px) const {
            if constexpr (N == 16) {
                for (int k = 0; k < K; ++k) _mm_store_si128(reinterpret_cast<V*>(this->p[k] + x), px.c[k]);
            } else {
                DstP8<K>::Row::template store<N>(x, px);
            }
        }
    };
    Row row(int y) const {
        Row r{};
        for (int k = 0; k < K; ++k) r.p[k] = rowAt(planes[k], step, y);
        return r;
    }
};

}  // namespace kro
