// krocc_bench: every krocc operation of the job table, beside the peers' closest
// calls and a memcpy of the same bytes, at 1920x1080, 3840x2160 and 128x128.
//
//   krocc_bench [--sizes=WxH,WxH,...] [--peers_sse] [--describe] [Google Benchmark flags]
//
// Benchmarks are named <operation>/<library>/<W>x<H>; each reports Mpix/s and
// items_per_second (items = pixels). Before anything is timed, every peer's
// output is checked loosely against krocc's on the same picture; a peer that
// disagrees (or wrote nothing) stops the program. --describe prints the job
// table (calls, formats, differences) as JSON and exits. --peers_sse keeps the
// peers to SSE4.2 and below, krocc's own level, for a like-for-like look.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <regex>
#include <string>
#include <tuple>
#include <unistd.h>
#include <vector>

#include "bench_core.h"
#include "peers.h"

using namespace kb;

namespace {

constexpr Kro8u kFill = 0xA5;

struct Size {
    int w, h;
};

std::string sizeName(Size s) { return std::to_string(s.w) + "x" + std::to_string(s.h); }

std::vector<Size> parseSizes(const char* text) {
    std::vector<Size> v;
    const char* p = text;
    while (*p) {
        int w = 0, h = 0, n = 0;
        if (std::sscanf(p, "%dx%d%n", &w, &h, &n) != 2 || w < 1 || h < 1) {
            std::fprintf(stderr, "krocc_bench: bad --sizes entry at \"%s\"\n", p);
            std::exit(1);
        }
        v.push_back({w, h});
        p += n;
        if (*p == ',') ++p;
    }
    return v;
}

const Picture& pictureOf(Size s) {
    static std::map<std::pair<int, int>, Picture> cache;
    auto it = cache.find({s.w, s.h});
    if (it == cache.end()) it = cache.emplace(std::make_pair(s.w, s.h), makePicture(s.w, s.h)).first;
    return it->second;
}

// Inputs are made once per format and size and shared by every benchmark.
const Image& inputOf(const Format& f, Size s) {
    static std::map<std::tuple<int, int, std::string, int, int, int>, Image> cache;
    const auto key = std::make_tuple(int(f.layout), int(f.model), std::string(f.order), int(f.depth), s.w, s.h);
    auto it = cache.find(key);
    if (it == cache.end()) {
        Image img(f, s.w, s.h);
        encodePicture(pictureOf(s), img);
        it = cache.emplace(key, img).first;
    }
    return it->second;
}

// The bandwidth ceiling: one memcpy of all the source's bytes.
Impl memcpyOf(const Impl& k) {
    Impl m = peer("memcpy", "memcpy of the source's bytes", k.in, k.in, "copies, converts nothing",
                  [](const Image& s, Image& d) { std::memcpy(d.data(), s.data(), s.totalBytes()); });
    return m;
}

Image runOnce(const Impl& impl, Size s) {
    Image out(impl.out, s.w, s.h);
    out.fill(kFill);
    impl.prepare(s.w, s.h)(inputOf(impl.in, s), out);
    return out;
}

// Every implementation of every job, at every size, once: krocc against the
// picture, the others against krocc.
// Only what the benchmark filter selects is checked.
bool checkAll(const std::vector<Job>& jobs, const std::vector<Size>& sizes, const std::regex& filter) {
    bool ok = true;
    for (const Job& job : jobs)
        for (Size s : sizes) {
            bool wanted = false;
            for (const Impl& impl : job.impls)
                wanted = wanted || std::regex_search(job.name + "/" + impl.lib + "/" + sizeName(s), filter);
            if (!wanted) continue;
            const Impl& k = job.impls.front();
            const Image ref = runOnce(k, s);
            // What krocc should have written: the picture in its output format.
            Image pic(k.out, s.w, s.h);
            encodePicture(pictureOf(s), pic);
            for (const Impl& impl : job.impls) {
                if (&impl != &k && !std::regex_search(job.name + "/" + impl.lib + "/" + sizeName(s), filter))
                    continue;
                if (!takes(impl, s.w, s.h)) continue;
                std::string verdict;
                bool good;
                if (impl.lib == "memcpy") {
                    const Image out = runOnce(impl, s);
                    good = std::memcmp(out.data(), inputOf(impl.in, s).data(), out.totalBytes()) == 0;
                    verdict = good ? "bytes equal" : "bytes differ";
                } else {
                    const bool self = &impl == &k;
                    const Image out = self ? ref : runOnce(impl, s);
                    const Agreement a = compare(self ? pic : ref, out, kFill, k.in.layout);
                    char buf[160];
                    if (a.decoded) {
                        // Against the picture, subsampled chroma loses detail that a small,
                        // busy crop shows: krocc's own check allows twice the mean.
                        good = a.unwritten < 0.5 && a.meanAbs <= (self ? 8.0 : 4.0) && a.farShare <= 0.02;
                        std::snprintf(buf, sizeof buf, "mean |d| %.2f, share > 16 %.4f, fill left %.3f", a.meanAbs,
                                      a.farShare, a.unwritten);
                    } else {
                        good = a.unwritten < 0.5;
                        std::snprintf(buf, sizeof buf, "not decoded; fill left %.3f", a.unwritten);
                    }
                    verdict = buf;
                }
                std::fprintf(stderr, "check %s %s %s vs %s: %s%s\n", job.name.c_str(), impl.lib.c_str(),
                             sizeName(s).c_str(), &impl == &k ? "picture" : "krocc", verdict.c_str(),
                             good ? "" : "  <-- FAILED");
                ok = ok && good;
            }
        }
    return ok;
}

void benchImpl(benchmark::State& st, const Impl* impl, Size s) {
    const Image& in = inputOf(impl->in, s);
    Image out(impl->out, s.w, s.h);
    out.fill(kFill);
    const Run run = impl->prepare(s.w, s.h);
    run(in, out);  // every implementation starts with warm caches and touched pages
    for (auto _ : st) {
        run(in, out);
        benchmark::ClobberMemory();
    }
    const double px = double(s.w) * double(s.h);
    st.SetItemsProcessed(std::int64_t(double(st.iterations()) * px));
    st.SetBytesProcessed(std::int64_t(double(st.iterations()) * double(in.pixelBytes() + out.pixelBytes())));
    st.counters["Mpix/s"] = benchmark::Counter(px / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}

std::string jsonText(const std::string& s) {
    std::string o = "\"";
    for (char c : s) {
        if (c == '"' || c == '\\') o += '\\';
        o += c;
    }
    return o + "\"";
}

std::string formatText(const Format& f) {
    static const char* models[] = {"", "analogue YUV", "BT.601 YCbCr full range", "BT.601 YCbCr studio range",
                                   "grey", "opaque"};
    std::string t = std::string(layoutName(f.layout)) + " " + f.order;
    if (f.depth != Depth::U8) t += f.depth == Depth::F32 ? " 32f" : " 64f";
    if (f.model != Model::Rgb) t += std::string(" (") + models[int(f.model)] + ")";
    return t;
}

void describe(const std::vector<Job>& jobs) {
    std::printf("{\"jobs\": [\n");
    for (std::size_t j = 0; j < jobs.size(); ++j) {
        std::printf("  {\"name\": %s, \"impls\": [\n", jsonText(jobs[j].name).c_str());
        for (std::size_t i = 0; i < jobs[j].impls.size(); ++i) {
            const Impl& m = jobs[j].impls[i];
            std::printf("    {\"lib\": %s, \"call\": %s, \"in\": %s, \"out\": %s, \"differs\": %s}%s\n",
                        jsonText(m.lib).c_str(), jsonText(m.call).c_str(), jsonText(formatText(m.in)).c_str(),
                        jsonText(formatText(m.out)).c_str(), jsonText(m.differs).c_str(),
                        i + 1 < jobs[j].impls.size() ? "," : "");
        }
        std::printf("  ]}%s\n", j + 1 < jobs.size() ? "," : "");
    }
    std::printf("]}\n");
}

// Console lines with Mpix/s as a plain number (the stock console reporter
// prints counters with k/M suffixes).
class PixelReporter : public benchmark::ConsoleReporter {
public:
    PixelReporter() : benchmark::ConsoleReporter(OO_None) {}

protected:
    void PrintHeader(const Run&) override {
        if (header_) return;
        header_ = true;
        std::printf("%-50s %12s %10s %10s %8s\n", "benchmark (operation/library/size)", "CPU us/call", "iterations",
                    "Mpix/s", "GB/s");
        std::printf("%s\n", std::string(94, '-').c_str());
    }
    void PrintRunData(const Run& r) override {
        if (r.error_occurred) {
            std::printf("%-50s ERROR: %s\n", r.benchmark_name().c_str(), r.error_message.c_str());
            return;
        }
        if (r.run_type == Run::RT_Aggregate && r.aggregate_unit == benchmark::kPercentage) {
            std::printf("%-50s %11.2f%% (coefficient of variation)\n", r.benchmark_name().c_str(),
                        100.0 * r.cpu_accumulated_time);
            return;
        }
        auto counter = [&](const char* name) {
            const auto it = r.counters.find(name);
            return it == r.counters.end() ? 0.0 : double(it->second);
        };
        const double us = r.GetAdjustedCPUTime() * benchmark::GetTimeUnitMultiplier(benchmark::kMicrosecond) /
                          benchmark::GetTimeUnitMultiplier(r.time_unit);
        std::printf("%-50s %12.2f %10lld %10.1f %8.2f\n", r.benchmark_name().c_str(), us, (long long)r.iterations,
                    counter("Mpix/s"), counter("bytes_per_second") / 1e9);
        std::fflush(stdout);
    }

private:
    bool header_ = false;
};

}  // namespace

int main(int argc, char** argv) {
    std::vector<Size> sizes = {{1920, 1080}, {3840, 2160}, {128, 128}};
    bool describeOnly = false, ownFormat = false, peersSse = false;
    std::string filter = ".";
    std::vector<char*> rest;
    for (int i = 0; i < argc; ++i) {
        if (std::strncmp(argv[i], "--benchmark_filter=", 19) == 0) filter = argv[i] + 19;
        if (std::strncmp(argv[i], "--benchmark_format=", 19) == 0) ownFormat = true;
        if (std::strncmp(argv[i], "--sizes=", 8) == 0)
            sizes = parseSizes(argv[i] + 8);
        else if (std::strcmp(argv[i], "--describe") == 0)
            describeOnly = true;
        else if (std::strcmp(argv[i], "--peers_sse") == 0)
            peersSse = true;
        else
            rest.push_back(argv[i]);
    }
    int rargc = int(rest.size());
    benchmark::Initialize(&rargc, rest.data());
    if (benchmark::ReportUnrecognizedArguments(rargc, rest.data())) return 1;

    std::vector<Job> jobs = jobTable();
    std::stable_sort(jobs.begin(), jobs.end(), [](const Job& a, const Job& b) { return a.name < b.name; });
    for (Job& j : jobs) j.impls.push_back(memcpyOf(j.impls.front()));
    if (describeOnly) {
        describe(jobs);
        return 0;
    }

#if KB_HAVE_OPENCV
    // OpenCV chooses its code paths when it loads: start again with them limited.
    if (peersSse && !std::getenv("OPENCV_CPU_DISABLE")) {
        setenv("OPENCV_CPU_DISABLE", kOpenCvNoAvx, 1);
        execv("/proc/self/exe", argv);
        std::perror("krocc_bench: execv");
        return 1;
    }
#endif
    peersSetUp(peersSse);
    if (peersSse) benchmark::AddCustomContext("peers", "limited to SSE4.2 (no AVX, AVX2, AVX-512)");
    const KroLibraryVersion* v = kroccGetLibVersion();
    benchmark::AddCustomContext("krocc", std::string(v->displayName) + " " + v->versionText);
    benchmark::AddCustomContext("picture", pictureOf(sizes.front()).origin);
    for (const auto& [name, text] : peerVersions()) benchmark::AddCustomContext(name, text);

    if (filter.empty() || filter == "all") filter = ".";
    const bool negative = filter[0] == '-';
    if (negative) filter = ".";  // a negative filter: check everything
    if (!checkAll(jobs, sizes, std::regex(filter))) {
        std::fprintf(stderr, "krocc_bench: an implementation disagrees with krocc; nothing timed\n");
        return 2;
    }

    // Per job and size, the implementations side by side.
    static std::vector<Job> keep;
    keep = std::move(jobs);
    for (const Job& job : keep)
        for (Size s : sizes)
            for (const Impl& impl : job.impls)
                if (takes(impl, s.w, s.h))
                    benchmark::RegisterBenchmark((job.name + "/" + impl.lib + "/" + sizeName(s)).c_str(), benchImpl,
                                             &impl, s);
    if (ownFormat) {
        benchmark::RunSpecifiedBenchmarks();
    } else {
        PixelReporter console;
        benchmark::RunSpecifiedBenchmarks(&console);
    }
    benchmark::Shutdown();
    return 0;
}
