// Largest cache size from the processor's identification instruction: the
// deterministic cache parameters (leaf 4) where the processor has them, else
// the extended L2 and L3 descriptions (leaf 0x80000006). Read anew on every
// call: the library keeps no state.
#include "tone/cache_size.h"

#include <cpuid.h>

namespace kro::core {

int kroGetMaxCacheSizeB(int* pSizeByte) {
    if (!pSizeByte) return -1;
    long long largest = 0;
    unsigned a, b, c, d;
    if (__get_cpuid_max(0, nullptr) >= 4) {
        for (unsigned sub = 0; sub < 16; ++sub) {
            __cpuid_count(4, sub, a, b, c, d);
            const unsigned type = a & 0x1f;  // 0: no more caches; 2: instruction cache
            if (type == 0) break;
            if (type == 2) continue;
            const long long ways = ((b >> 22) & 0x3ff) + 1, parts = ((b >> 12) & 0x3ff) + 1, line = (b & 0xfff) + 1,
                            sets = static_cast<long long>(c) + 1;
            if (ways * parts * line * sets > largest) largest = ways * parts * line * sets;
        }
    }
    if (largest == 0 && __get_cpuid_max(0x80000000, nullptr) >= 0x80000006) {
        __cpuid(0x80000006, a, b, c, d);
        const long long l2 = static_cast<long long>(c >> 16) * 1024, l3 = static_cast<long long>(d >> 18) * 512 * 1024;
        largest = l2 > l3 ? l2 : l3;
    }
    if (largest <= 0) return -1;
    *pSizeByte = largest > 0x7fffffff ? 0x7fffffff : static_cast<int>(largest);
    return 0;
}

}  // namespace kro::core
