// The frame: version record, the shared library's export table against the
// one list of names, the processor level of the code, and the arithmetic
// vocabulary's scalar and vector versions against each other.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include "frame/forms.h"
#include "harness.h"
#include "krocc.h"

namespace {

std::vector<std::string> runLines(const std::string& cmd) {
    std::vector<std::string> out;
    FILE* p = popen(cmd.c_str(), "r");
    if (!p) return out;
    char buf[4096];
    std::string line;
    while (fgets(buf, sizeof buf, p)) {
        line += buf;
        if (!line.empty() && line.back() == '\n') {
            line.pop_back();
            out.push_back(line);
            line.clear();
        }
    }
    pclose(p);
    return out;
}

std::vector<std::string> exportList() {
    std::ifstream f(KROCC_EXPORTS_LIST);
    std::vector<std::string> names;
    for (std::string l; std::getline(f, l);)
        if (!l.empty() && l[0] != '#') names.push_back(l);
    return names;
}

TEST(Version, OneConstantRecord) {
    const KroLibraryVersion* v = kroccGetLibVersion();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v, kroccGetLibVersion());
    EXPECT_EQ(std::string(v->targetCode, 4), std::string("p8\0\0", 4));
    EXPECT_STREQ(v->displayName, "kroCC SSE4.2 (p8)");
    char want[64];
    std::snprintf(want, sizeof want, "%d.%d.%d (r0x%08x)", v->majorVersion, v->minorVersion, v->updateVersion,
                  v->buildNumber);
    EXPECT_STREQ(v->versionText, want);
    EXPECT_TRUE(std::regex_match(v->buildDateText,
                                 std::regex("(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [1-9][0-9]? [0-9]{4}")))
        << v->buildDateText;
}

TEST(EntryTable, ListIsInByteOrderAndSharedLibraryExportsExactlyIt) {
    const auto names = exportList();
    ASSERT_FALSE(names.empty());
    EXPECT_EQ(names[0], "kroccGetLibVersion");
    for (size_t i = 1; i < names.size(); ++i) EXPECT_LT(names[i - 1], names[i]) << "not in byte order at " << i;
    // defined dynamic symbols, in address order: the stubs stand in slot order
    auto syms = runLines(std::string("nm -D --defined-only -n ") + KROCC_SHARED_LIB);
    std::vector<std::string> exported;
    for (auto& s : syms) {
        auto sp = s.rfind(' ');
        exported.push_back(s.substr(sp + 1));
    }
    EXPECT_EQ(exported, names);
}

TEST(EntryTable, StubsAreSingleJumpsThroughTheirSlots) {
    const auto names = exportList();
    auto dis = runLines(std::string("objdump -d --no-show-raw-insn ") + KROCC_SHARED_LIB);
    std::regex head("^[0-9a-f]+ <(kroi[A-Za-z0-9_]*|kroccGetLibVersion)>:$");
    std::regex jump("jmp +\\*0x[0-9a-f]+\\(%rip\\) +# [0-9a-f]+ <krocc_slots(\\+0x([0-9a-f]+))?>");
    size_t seen = 0;
    for (size_t i = 0; i + 1 < dis.size(); ++i) {
        std::smatch m;
        if (!std::regex_match(dis[i], m, head)) continue;
        const std::string name = m[1];
        auto it = std::find(names.begin(), names.end(), name);
        ASSERT_NE(it, names.end()) << name;
        std::smatch j;
        ASSERT_TRUE(std::regex_search(dis[i + 1], j, jump)) << name << ": " << dis[i + 1];
        const long off = j[2].matched ? std::stol(j[2], nullptr, 16) : 0;
        EXPECT_EQ(off, 8 * (it - names.begin())) << name;
        ++seen;
    }
    EXPECT_EQ(seen, names.size());
}

TEST(ProcessorLevel, NoVexOrEvexInstructions) {
    auto dis = runLines(std::string("objdump -d --no-show-raw-insn ") + KROCC_SHARED_LIB);
    ASSERT_GT(dis.size(), 100u);
    std::regex vex("\\t(v[a-z0-9]+) .*%[xyz]mm|\\{%k[0-7]\\}|%ymm|%zmm");
    int hits = 0;
    for (auto& l : dis)
        if (std::regex_search(l, vex) && hits++ < 5) ADD_FAILURE() << l;
    EXPECT_EQ(hits, 0);
}

// ------------------------------------------------------------ arithmetic vocabulary
// The vector version of each term against its scalar version on all lane pairs
// of a dense grid of 16-bit values.
TEST(Vocabulary, VectorAndScalarAgree) {
    using namespace kro;
    std::vector<int> vals;
    for (int v = -32768; v < 32768; v += 97) vals.push_back(v);
    for (int v : {-32768, -32767, -1, 0, 1, 127, 128, 255, 256, 32767}) vals.push_back(v);
    auto lanes = [](V x, int i) {
        alignas(16) int16_t t[8];
        _mm_store_si128(reinterpret_cast<V*>(t), x);
        return int(t[i]);
    };
    auto ulanes = [](V x, int i) {
        alignas(16) uint16_t t[8];
        _mm_store_si128(reinterpret_cast<V*>(t), x);
        return int(t[i]);
    };
    for (size_t i = 0; i < vals.size(); ++i) {
        alignas(16) int16_t a[8], b[8];
        for (int k = 0; k < 8; ++k) {
            a[k] = int16_t(vals[i]);
            b[k] = int16_t(vals[(i * 7 + size_t(k) * 131) % vals.size()]);
        }
        const V va = _mm_load_si128(reinterpret_cast<V*>(a)), vb = _mm_load_si128(reinterpret_cast<V*>(b));
        for (int k = 0; k < 8; ++k) {
            const int x = a[k], y = b[k];
            ASSERT_EQ(lanes(mulHighS16(va, vb), k), mulHighS16(x, y));
            ASSERT_EQ(ulanes(mulHighU16(va, vb), k), mulHighU16(x & 0xffff, y & 0xffff));
            ASSERT_EQ(lanes(mulRoundS15(va, vb), k), mulRoundS15(x, y));
            ASSERT_EQ(lanes(addSatS16(va, vb), k), addSatS16(x, y));
            ASSERT_EQ(lanes(subSatS16(va, vb), k), subSatS16(x, y));
            ASSERT_EQ(ulanes(addSatU16(va, vb), k), addSatU16(x & 0xffff, y & 0xffff));
            ASSERT_EQ(ulanes(subSatU16(va, vb), k), subSatU16(x & 0xffff, y & 0xffff));
        }
    }
    // statements of the terms on plain numbers
    EXPECT_EQ(mulHighS16(-1, 1), -1);  // floor, not truncation
    EXPECT_EQ(mulRoundS15(16384, 16384), 8192);
    EXPECT_EQ(mulRoundS15(-32768, -32768), -32768);  // low 16 bits of 32768
    EXPECT_EQ(roundEven(2.5f), 2);
    EXPECT_EQ(roundEven(-3.5f), -4);
    EXPECT_EQ(truncToInt(-2.9f), -2);
    EXPECT_EQ(clampU8(-5), 0);
    EXPECT_EQ(clampU8(300), 255);
}

// The harness itself: a read one byte past a guarded buffer must fault.
TEST(HarnessDeathTest, GuardPageFaults) {
    EXPECT_DEATH(
        {
            kt::GuardedBuf b(10, kt::Guard::After);
            volatile uint8_t x = b.data()[10];
            (void)x;
        },
        "");
}

}  // namespace
