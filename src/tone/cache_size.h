// The largest cache of the processor, as the core support layer reports it:
// the one routine of that layer that this library calls. Only the choice of
// stores in large fills depends on it.
#pragma once

namespace kro::core {

// Fills *pSizeByte with the size in bytes of the largest data or unified cache
// that the processor's identification instruction reports and returns 0; on a
// null address, or when the processor reports no cache, returns -1 and leaves
// *pSizeByte as it was.
int kroGetMaxCacheSizeB(int* pSizeByte);

}  // namespace kro::core
