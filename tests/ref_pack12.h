// Plain reference of the 12-bit packing: a row is a stream of bits, each
// sample's 12 bits written most significant first, one bit at a time; a row of
// odd width is padded with zero bits to a whole byte.
#pragma once

#include <cstdint>
#include <vector>

namespace ref {

inline int packedBytes(int width) { return (12 * width + 7) / 8; }

// samples: width values (only bits 11..0 belong to the stream).
inline std::vector<uint8_t> pack12(const std::vector<uint16_t>& samples) {
    std::vector<uint8_t> out(size_t(packedBytes(int(samples.size()))), 0);
    size_t bit = 0;
    for (uint16_t s : samples)
        for (int b = 11; b >= 0; --b, ++bit)
            if ((s >> b) & 1) out[bit / 8] |= uint8_t(0x80u >> (bit % 8));
    return out;
}

inline std::vector<uint16_t> unpack12(const uint8_t* stream, int width) {
    std::vector<uint16_t> out(size_t(width), 0);
    size_t bit = 0;
    for (int i = 0; i < width; ++i)
        for (int b = 11; b >= 0; --b, ++bit)
            if ((stream[bit / 8] >> (7 - bit % 8)) & 1) out[size_t(i)] |= uint16_t(1u << b);
    return out;
}

}  // namespace ref
