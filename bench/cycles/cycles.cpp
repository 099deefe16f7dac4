// krocc_cycles: one implementation of one job of the benchmark table, called
// a number of times in a loop of its own, for counting instructions:
//
//   valgrind --tool=callgrind --toggle-collect=kbTimedLoop krocc_cycles JOB [LIB] [WxH] [CALLS]
//
// LIB is krocc (default) or a peer's name; WxH defaults to 1920x1080, CALLS to
// 4. The input is made and one untimed call is done before the loop, so the
// count covers the calls alone. bench/cycles.py runs it and sums the counts.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "bench_core.h"

using namespace kb;

// Kept out of line: callgrind counts from its entry to its return.
extern "C" __attribute__((noinline)) void kbTimedLoop(const Run& run, const Image& in, Image& out, int calls) {
    for (int i = 0; i < calls; ++i) run(in, out);
}

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: krocc_cycles JOB [LIB] [WxH] [CALLS]\n");
        return 1;
    }
    const std::string job = argv[1], lib = argc > 2 ? argv[2] : "krocc";
    int w = 1920, h = 1080;
    if (argc > 3 && std::sscanf(argv[3], "%dx%d", &w, &h) != 2) {
        std::fprintf(stderr, "krocc_cycles: bad size %s\n", argv[3]);
        return 1;
    }
    const int calls = argc > 4 ? std::atoi(argv[4]) : 4;
    for (const Job& j : jobTable()) {
        if (j.name != job) continue;
        for (const Impl& impl : j.impls) {
            if (impl.lib != lib) continue;
            Image in(impl.in, w, h), out(impl.out, w, h);
            encodePicture(makePicture(w, h), in);
            const Run run = impl.prepare(w, h);
            run(in, out);
            kbTimedLoop(run, in, out, calls);
            std::printf("%s %s %dx%d calls %d pixels %lld\n", job.c_str(), lib.c_str(), w, h, calls,
                        (long long)w * h * calls);
            return 0;
        }
        std::fprintf(stderr, "krocc_cycles: %s has no %s entry\n", job.c_str(), lib.c_str());
        return 1;
    }
    std::fprintf(stderr, "krocc_cycles: no job %s\n", job.c_str());
    return 1;
}
