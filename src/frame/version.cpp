// The library's version record and its one query.
#include "impl_decls.h"
#include "version_config.h"

#define KROCC_STR2(x) #x
#define KROCC_STR(x) KROCC_STR2(x)

namespace {

// "r0x" and eight lower-case hexadecimal digits of the build number.
constexpr char hexDigit(unsigned v) { return "0123456789abcdef"[v & 15u]; }

struct VersionText {
    char text[64];
};

constexpr VersionText makeVersionText() {
    VersionText t{};
    const char* head = KROCC_STR(KROCC_VERSION_MAJOR) "." KROCC_STR(KROCC_VERSION_MINOR) "." KROCC_STR(
        KROCC_VERSION_UPDATE) " (r0x";
    int n = 0;
    while (head[n] != 0) {
        t.text[n] = head[n];
        ++n;
    }
    for (int shift = 28; shift >= 0; shift -= 4) t.text[n++] = hexDigit(KROCC_BUILD_NUMBER >> shift);
    t.text[n++] = ')';
    t.text[n] = 0;
    return t;
}

constexpr VersionText kVersionText = makeVersionText();

const KroLibraryVersion kVersion = {
    KROCC_VERSION_MAJOR,
    KROCC_VERSION_MINOR,
    KROCC_VERSION_UPDATE,
    KROCC_BUILD_NUMBER,
    {'p', '8', 0, 0},
    "kroCC SSE4.2 (p8)",
    kVersionText.text,
    KROCC_BUILD_DATE,
};

}  // namespace

const KroLibraryVersion* impl_kroccGetLibVersion(void) { return &kVersion; }
