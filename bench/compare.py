#!/usr/bin/env python3
"""Runs krocc_bench (krocc beside its peers), prints per job and size the
Mpix/s of krocc, of each peer and of memcpy, and the ratio of krocc to the
fastest peer; writes the same as Markdown (docs/benchmarks.md) and as a bar
chart (docs/benchmarks.png). Python 3 standard library only.

  python3 bench/compare.py                      # build/bench/krocc_bench, all sizes
  python3 bench/compare.py --quick --filter=YCbCr420 --no-docs   # a look in a minute
  python3 bench/compare.py --json results.json  # re-render earlier results

A full run (every job, 1920x1080, 3840x2160 and 128x128, 3 repetitions) takes
a while: see the time it prints at the end. --quick keeps to 1920x1080, one
repetition and a short minimum time.
"""
import argparse
import json
import os
import re
import statistics
import struct
import subprocess
import sys
import tempfile
import time
import zlib

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
LIBS = ["krocc", "opencv", "libyuv", "swscale", "memcpy"]
PEERS = ["opencv", "libyuv", "swscale"]
COLOURS = {
    "krocc": (31, 119, 180),
    "opencv": (255, 127, 14),
    "libyuv": (44, 160, 44),
    "swscale": (214, 39, 40),
    "memcpy": (160, 160, 160),
}


# ---------------------------------------------------------------- running
def run_bench(exe, args):
    """Runs the benchmarks; returns (results json, check lines, describe json)."""
    describe = json.loads(subprocess.run([exe, "--describe"], check=True, capture_output=True, text=True).stdout)
    with tempfile.TemporaryDirectory() as tmp:
        out = os.path.join(tmp, "results.json")
        cmd = [exe, f"--benchmark_repetitions={args.repetitions}", f"--benchmark_min_time={args.min_time}",
               "--benchmark_out_format=json", f"--benchmark_out={out}"]
        if args.sizes:
            cmd.append(f"--sizes={args.sizes}")
        if args.filter:
            cmd.append(f"--benchmark_filter={args.filter}")
        if args.peers_sse:
            cmd.append("--peers_sse")
        print("running:", " ".join(cmd), file=sys.stderr, flush=True)
        checks = []
        proc = subprocess.Popen(cmd, stderr=subprocess.PIPE, text=True)
        for line in proc.stderr:
            sys.stderr.write(line)
            if line.startswith("check "):
                checks.append(line.rstrip("\n"))
        if proc.wait() != 0:
            sys.exit(f"krocc_bench failed with status {proc.returncode}")
        with open(out) as f:
            results = json.load(f)
    return {"results": results, "checks": checks, "describe": describe}


# ---------------------------------------------------------------- tables
def collect(data):
    """{(job, size): {lib: median Mpix/s}}, the sizes in first-seen order, the jobs likewise."""
    runs = {}
    for b in data["results"]["benchmarks"]:
        if b.get("run_type") != "iteration" or "Mpix/s" not in b:
            continue
        job, lib, size = b["run_name"].split("/")
        runs.setdefault((job, size), {}).setdefault(lib, []).append(b["Mpix/s"])
    sizes, jobs = [], []
    for job, size in runs:
        if size not in sizes:
            sizes.append(size)
        if job not in jobs:
            jobs.append(job)
    table = {k: {lib: statistics.median(v) for lib, v in libs.items()} for k, libs in runs.items()}
    return table, sizes, jobs


def ratio(row):
    peers = [row[p] for p in PEERS if p in row]
    if "krocc" not in row or not peers:
        return None
    return row["krocc"] / max(peers)


def ratio_to(row, lib):
    if "krocc" not in row or lib not in row:
        return "—"
    return f"{row['krocc'] / row[lib]:.2f}"


def fmt_rate(v):
    return "—" if v is None else f"{v:.0f}"


def text_table(table, sizes, jobs, libs):
    lines = []
    for size in sizes:
        cv = "opencv" in libs
        head = ["operation"] + libs + (["krocc/opencv"] if cv else []) + ["krocc/fastest peer"]
        rows = []
        for job in jobs:
            row = table.get((job, size))
            if not row:
                continue
            r = ratio(row)
            rows.append([job] + [fmt_rate(row.get(lib)) for lib in libs] + ([ratio_to(row, "opencv")] if cv else []) +
                        ["—" if r is None else f"{r:.2f}"])
        widths = [max(len(h), *(len(r[i]) for r in rows)) for i, h in enumerate(head)]
        lines.append(f"\n{size}: Mpix/s (median of repetitions, CPU time)")
        lines.append("  ".join(h.ljust(w) if i == 0 else h.rjust(w) for i, (h, w) in enumerate(zip(head, widths))))
        for r in rows:
            lines.append("  ".join(c.ljust(w) if i == 0 else c.rjust(w) for i, (c, w) in enumerate(zip(r, widths))))
    return "\n".join(lines)


def markdown(data, table, sizes, jobs, libs, chart_name):
    ctx = data["results"]["context"]
    reps = max((b.get("repetitions", 1) for b in data["results"]["benchmarks"]), default=1)
    sse = "peers" in ctx
    title = "# Benchmarks: krocc beside the libraries users would otherwise pick"
    if sse:
        title += ", all at SSE4.2"
    md = [title, "",
          "Generated by `python3 bench/compare.py` from `krocc_bench` (Google Benchmark). Do not edit by hand.", "",
          "## How it was measured", ""]
    md.append(f"- Machine: {ctx.get('num_cpus')} CPUs at {ctx.get('mhz_per_cpu')} MHz; caches: " +
              ", ".join(f"L{c['level']} {c['type'].lower()} {c['size'] // 1024} KiB" for c in ctx.get("caches", [])) +
              f"; run {ctx.get('date', '')[:10]}.")
    for key in ("krocc", "picture", "opencv", "libyuv", "swscale"):
        if key in ctx:
            md.append(f"- {key}: {ctx[key]}.")
    md += [
        "- One thread everywhere (`cv::setNumThreads(1)`, swscale `threads=1`, libyuv and krocc never start threads).",
        "- Every implementation converts the same picture, encoded once into each input format (a peer whose model "
        "differs gets the picture in its own model). Each benchmark makes one untimed call first, so caches and "
        "pages are warm alike.",
        "- This run limits the peers to SSE4.2 and below, krocc's own level (`--peers_sse`: libyuv `MaskCpuFlags`, "
        "swscale `av_force_cpu_flags`, OpenCV `OPENCV_CPU_DISABLE`)." if sse else
        "- The peers use whatever vector units they dispatch to at run time (AVX2/AVX-512 here); krocc is SSE4.2 "
        "only. `benchmarks-sse.md` has the same jobs with the peers limited to SSE4.2.",
        "- Before timing, every peer's output is decoded to RGB and compared with krocc's (mean absolute difference "
        "at most 4, at most 2% of samples more than 16 apart, destination written): a call that silently did "
        "nothing stops the run.",
        "- Figures count pixels, whatever each side reads and writes for one: where a peer has no call with "
        "krocc's layout (libyuv's `YUY2ToARGB` writes 4 bytes a pixel beside krocc's 3), the closest call is "
        "timed and the table below says so.",
        f"- Figures are Mpix/s (pixels per second of CPU time / 10^6), the median of {reps} repetitions; "
        "`krocc / fastest peer` divides krocc's figure by the best of OpenCV, libyuv and swscale (memcpy is not a "
        "peer: it copies the source's bytes, the bandwidth ceiling).",
        "- 128x128 stays in the L1/L2 caches; 1920x1080 fits in the L3; 3840x2160 does not.",
        "- The machine is shared: other jobs ran beside these benchmarks, so single figures can move by 10% or so "
        "between runs; ratios of neighbouring rows move less. (Google Benchmark's warning that it was built as a "
        "debug library concerns its own harness, not the code measured.)", ""]
    md += ["## Run it", "", "```sh",
           "cmake -S . -B build -G Ninja && cmake --build build --target krocc_bench",
           "build/bench/krocc_bench --sizes=1920x1080,128x128 --benchmark_filter=/krocc/   # krocc alone",
           "python3 bench/compare.py               # beside the peers: prints the table, writes docs/benchmarks.*",
           "python3 bench/compare.py --peers-sse   # the peers limited to SSE4.2: docs/benchmarks-sse.*",
           "python3 bench/compare.py --quick --filter=YCbCr420 --no-docs   # a quick look, 1920x1080 only",
           "```", "",
           "Peers missing at build time (CMake says which) are left out; `-DKROCC_BENCH_PEERS=opencv` chooses. "
           "New operations join with one entry in a `bench/jobs_*.cpp` table.", ""]
    md += ["## Results", "", f"![Mpix/s per operation and library]({chart_name})", ""]
    for size in sizes:
        cv = "opencv" in libs
        md += [f"### {size}", "", "| operation | " + " | ".join(libs) + (" | krocc / opencv" if cv else "") +
               " | krocc / fastest peer |", "|---|" + "---:|" * (len(libs) + 1 + cv)]
        for job in jobs:
            row = table.get((job, size))
            if not row:
                continue
            r = ratio(row)
            cells = [fmt_rate(row.get(lib)) for lib in libs]
            if "krocc" in row:
                cells[0] = f"**{cells[0]}**"
            if cv:
                cells.append(ratio_to(row, "opencv"))
            md.append(f"| `{job}` | " + " | ".join(cells) + f" | {'—' if r is None else f'{r:.2f}'} |")
        md.append("")
    # How each peer's job differs, and how far its output was from krocc's.
    agree = {}
    for line in data.get("checks", []):
        m = re.match(r"check (\S+) (\S+) (\S+) vs krocc: mean \|d\| ([0-9.]+)", line)
        if m and m.group(3) == sizes[0]:
            agree[(m.group(1), m.group(2))] = m.group(4)
    md += ["## Where each peer's job differs from krocc's", "",
           f"Mean |d|: mean absolute difference from krocc's output at {sizes[0]}, both decoded to RGB 0..255. "
           "Layouts: C3/C4 interleaved, P3/P4 planes.", "",
           "| operation | library | call | input → output | differs from krocc | mean \\|d\\| |",
           "|---|---|---|---|---|---:|"]
    for job in data["describe"]["jobs"]:
        if job["name"] not in jobs:
            continue
        for impl in job["impls"]:
            if impl["lib"] == "memcpy":
                continue
            differs = impl["differs"] or "(the operation itself)"
            md.append(f"| `{job['name']}` | {impl['lib']} | `{impl['call']}` | {impl['in']} → {impl['out']} | "
                      f"{differs} | {agree.get((job['name'], impl['lib']), '')} |")
    md.append("")
    return "\n".join(md)


# ---------------------------------------------------------------- PNG chart
# 5x7 glyphs, one string of 7 rows of 5 columns each.
FONT_ROWS = {
    " ": ".....|.....|.....|.....|.....|.....|.....",
    "0": ".###.|#...#|#..##|#.#.#|##..#|#...#|.###.",
    "1": "..#..|.##..|..#..|..#..|..#..|..#..|.###.",
    "2": ".###.|#...#|....#|...#.|..#..|.#...|#####",
    "3": "#####|...#.|..#..|...#.|....#|#...#|.###.",
    "4": "...#.|..##.|.#.#.|#..#.|#####|...#.|...#.",
    "5": "#####|#....|####.|....#|....#|#...#|.###.",
    "6": "..##.|.#...|#....|####.|#...#|#...#|.###.",
    "7": "#####|....#|...#.|..#..|.#...|.#...|.#...",
    "8": ".###.|#...#|#...#|.###.|#...#|#...#|.###.",
    "9": ".###.|#...#|#...#|.####|....#|...#.|.##..",
    "A": ".###.|#...#|#...#|#####|#...#|#...#|#...#",
    "B": "####.|#...#|#...#|####.|#...#|#...#|####.",
    "C": ".###.|#...#|#....|#....|#....|#...#|.###.",
    "D": "###..|#..#.|#...#|#...#|#...#|#..#.|###..",
    "E": "#####|#....|#....|####.|#....|#....|#####",
    "F": "#####|#....|#....|####.|#....|#....|#....",
    "G": ".###.|#...#|#....|#.###|#...#|#...#|.####",
    "H": "#...#|#...#|#...#|#####|#...#|#...#|#...#",
    "I": ".###.|..#..|..#..|..#..|..#..|..#..|.###.",
    "J": "..###|...#.|...#.|...#.|...#.|#..#.|.##..",
    "K": "#...#|#..#.|#.#..|##...|#.#..|#..#.|#...#",
    "L": "#....|#....|#....|#....|#....|#....|#####",
    "M": "#...#|##.##|#.#.#|#.#.#|#...#|#...#|#...#",
    "N": "#...#|#...#|##..#|#.#.#|#..##|#...#|#...#",
    "O": ".###.|#...#|#...#|#...#|#...#|#...#|.###.",
    "P": "####.|#...#|#...#|####.|#....|#....|#....",
    "Q": ".###.|#...#|#...#|#...#|#.#.#|#..#.|.##.#",
    "R": "####.|#...#|#...#|####.|#.#..|#..#.|#...#",
    "S": ".####|#....|#....|.###.|....#|....#|####.",
    "T": "#####|..#..|..#..|..#..|..#..|..#..|..#..",
    "U": "#...#|#...#|#...#|#...#|#...#|#...#|.###.",
    "V": "#...#|#...#|#...#|#...#|#...#|.#.#.|..#..",
    "W": "#...#|#...#|#...#|#.#.#|#.#.#|#.#.#|.#.#.",
    "X": "#...#|#...#|.#.#.|..#..|.#.#.|#...#|#...#",
    "Y": "#...#|#...#|.#.#.|..#..|..#..|..#..|..#..",
    "Z": "#####|....#|...#.|..#..|.#...|#....|#####",
    "a": ".....|.....|.###.|....#|.####|#...#|.####",
    "b": "#....|#....|#.##.|##..#|#...#|#...#|####.",
    "c": ".....|.....|.###.|#....|#....|#...#|.###.",
    "d": "....#|....#|.##.#|#..##|#...#|#...#|.####",
    "e": ".....|.....|.###.|#...#|#####|#....|.###.",
    "f": "..##.|.#..#|.#...|###..|.#...|.#...|.#...",
    "g": ".....|.####|#...#|#...#|.####|....#|.###.",
    "h": "#....|#....|#.##.|##..#|#...#|#...#|#...#",
    "i": "..#..|.....|.##..|..#..|..#..|..#..|.###.",
    "j": "...#.|.....|..##.|...#.|...#.|#..#.|.##..",
    "k": "#....|#....|#..#.|#.#..|##...|#.#..|#..#.",
    "l": ".##..|..#..|..#..|..#..|..#..|..#..|.###.",
    "m": ".....|.....|##.#.|#.#.#|#.#.#|#...#|#...#",
    "n": ".....|.....|#.##.|##..#|#...#|#...#|#...#",
    "o": ".....|.....|.###.|#...#|#...#|#...#|.###.",
    "p": ".....|.....|####.|#...#|####.|#....|#....",
    "q": ".....|.....|.##.#|#..##|.####|....#|....#",
    "r": ".....|.....|#.##.|##..#|#....|#....|#....",
    "s": ".....|.....|.###.|#....|.###.|....#|####.",
    "t": ".#...|.#...|###..|.#...|.#...|.#..#|..##.",
    "u": ".....|.....|#...#|#...#|#...#|#..##|.##.#",
    "v": ".....|.....|#...#|#...#|#...#|.#.#.|..#..",
    "w": ".....|.....|#...#|#...#|#.#.#|#.#.#|.#.#.",
    "x": ".....|.....|#...#|.#.#.|..#..|.#.#.|#...#",
    "y": ".....|.....|#...#|#...#|.####|....#|.###.",
    "z": ".....|.....|#####|...#.|..#..|.#...|#####",
    "_": ".....|.....|.....|.....|.....|.....|#####",
    "/": ".....|....#|...#.|..#..|.#...|#....|.....",
    ".": ".....|.....|.....|.....|.....|.##..|.##..",
    ",": ".....|.....|.....|.....|.##..|..#..|.#...",
    ":": ".....|.##..|.##..|.....|.##..|.##..|.....",
    "-": ".....|.....|.....|#####|.....|.....|.....",
    "(": "...#.|..#..|.#...|.#...|.#...|..#..|...#.",
    ")": ".#...|..#..|...#.|...#.|...#.|..#..|.#...",
    ">": ".#...|..#..|...#.|....#|...#.|..#..|.#...",
    "%": "##...|##..#|...#.|..#..|.#...|#..##|...##",
}
FONT = {ch: [row for row in rows.split("|")] for ch, rows in FONT_ROWS.items() if rows}


class Canvas:
    def __init__(self, w, h, bg=(255, 255, 255)):
        self.w, self.h = w, h
        self.px = bytearray(bytes(bg) * (w * h))

    def rect(self, x0, y0, x1, y1, colour):
        x0, y0, x1, y1 = max(0, int(x0)), max(0, int(y0)), min(self.w, int(x1)), min(self.h, int(y1))
        if x1 <= x0:
            return
        line = bytes(colour) * (x1 - x0)
        for y in range(y0, y1):
            o = (y * self.w + x0) * 3
            self.px[o:o + len(line)] = line

    def text(self, x, y, s, colour=(0, 0, 0), scale=2):
        for ch in s:
            glyph = FONT.get(ch, FONT[" "])
            for r, row in enumerate(glyph):
                for c, bit in enumerate(row):
                    if bit == "#":
                        self.rect(x + c * scale, y + r * scale, x + (c + 1) * scale, y + (r + 1) * scale, colour)
            x += 6 * scale
        return x

    @staticmethod
    def text_width(s, scale=2):
        return len(s) * 6 * scale

    def png(self):
        raw = b"".join(b"\x00" + bytes(self.px[y * self.w * 3:(y + 1) * self.w * 3]) for y in range(self.h))

        def chunk(kind, body):
            return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body) & 0xFFFFFFFF)

        return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", self.w, self.h, 8, 2, 0, 0, 0)) +
                chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


def nice_step(top):
    for step in (250, 500, 1000, 2000, 2500, 5000, 10000, 20000):
        if top / step <= 6:
            return step
    return 50000


def chart(table, sizes, jobs, libs, sse=False):
    """Horizontal grouped bars, one panel per size, side by side."""
    scale, bar, gap, group_gap = 2, 14, 2, 12
    label_w = max(Canvas.text_width(j.replace("kroi", ""), scale) for j in jobs) + 20
    panel_w, value_w = 440, 64
    top, bottom = 110, 50
    group_h = len(libs) * (bar + gap) + group_gap
    w = label_w + len(sizes) * (panel_w + value_w) + 20
    h = top + len(jobs) * group_h + bottom
    cv = Canvas(w, h)
    cv.text(20, 14, "Mpix/s, one thread, higher is better (memcpy: bandwidth ceiling, clipped)" +
            (", peers at SSE4.2" if sse else ""), scale=scale)
    x = 20
    for lib in libs:
        cv.rect(x, 44, x + 24, 58, COLOURS[lib])
        x = cv.text(x + 30, 44, lib, scale=scale) + 24
    for p, size in enumerate(sizes):
        px0 = label_w + p * (panel_w + value_w)
        vals = [v for (j, s), row in table.items() if s == size for lib, v in row.items() if lib != "memcpy"]
        vmax = max(vals) * 1.05 if vals else 1.0
        cv.text(px0, 76, size, scale=scale)
        step = nice_step(vmax)
        t = 0
        while t <= vmax:
            gx = px0 + t / vmax * panel_w
            cv.rect(gx, top - 6, gx + 1, h - bottom + 4, (225, 225, 225))
            label = f"{t // 1000}k" if t >= 1000 and t % 1000 == 0 else str(t)
            cv.text(gx - Canvas.text_width(label, 1) / 2, h - bottom + 10, label, (90, 90, 90), scale=1)
            t += step
        cv.rect(px0, top - 6, px0 + 1, h - bottom + 4, (0, 0, 0))
        for g, job in enumerate(jobs):
            row = table.get((job, size), {})
            y = top + g * group_h
            if p == 0:
                cv.text(10, y + (len(libs) * (bar + gap)) / 2 - 7, job.replace("kroi", ""), scale=scale)
            for k, lib in enumerate(libs):
                v = row.get(lib)
                by = y + k * (bar + gap)
                if v is None:
                    continue
                length = min(v, vmax) / vmax * panel_w
                cv.rect(px0 + 1, by, px0 + 1 + length, by + bar, COLOURS[lib])
                cv.text(px0 + length + 4, by + 2, f"{v:.0f}" + (">" if v > vmax else ""), (60, 60, 60), scale=1)
    return cv.png()


# ---------------------------------------------------------------- main
def main():
    ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument("--bench", default=os.path.join(ROOT, "build", "bench", "krocc_bench"))
    ap.add_argument("--json", help="results saved by an earlier run (--save) instead of running")
    ap.add_argument("--save", help="also save the raw results here")
    ap.add_argument("--docs", default=os.path.join(ROOT, "docs"), help="where benchmarks.md/.png go")
    ap.add_argument("--no-docs", action="store_true", help="print only")
    ap.add_argument("--repetitions", type=int, default=3)
    ap.add_argument("--min-time", type=float, default=0.3)
    ap.add_argument("--sizes", help="e.g. 1920x1080,3840x2160,128x128 (the program's default)")
    ap.add_argument("--filter", help="Google Benchmark filter, e.g. _C3R/")
    ap.add_argument("--peers-sse", action="store_true",
                    help="limit the peers to SSE4.2 like krocc; writes benchmarks-sse.md/.png")
    ap.add_argument("--name", help="base name of the files in --docs (default benchmarks, or benchmarks-sse)")
    ap.add_argument("--quick", action="store_true",
                    help="1920x1080 only (unless --sizes), one repetition, 0.05 s minimum time")
    args = ap.parse_args()
    if args.quick:
        args.sizes = args.sizes or "1920x1080"
        args.repetitions = 1
        args.min_time = min(args.min_time, 0.05)
    started = time.monotonic()

    if args.json:
        with open(args.json) as f:
            data = json.load(f)
    else:
        if not os.access(args.bench, os.X_OK):
            sys.exit(f"{args.bench} not found: build it with cmake --build build --target krocc_bench")
        data = run_bench(args.bench, args)
    if args.save:
        with open(args.save, "w") as f:
            json.dump(data, f, indent=1)

    table, sizes, jobs = collect(data)
    present = {lib for row in table.values() for lib in row}
    libs = [lib for lib in LIBS if lib in present]
    print(text_table(table, sizes, jobs, libs))
    if not args.json:
        print(f"\nbenchmark run took {(time.monotonic() - started) / 60:.1f} min", file=sys.stderr)
    if args.no_docs:
        return
    name = args.name or ("benchmarks-sse" if "peers" in data["results"]["context"] else "benchmarks")
    os.makedirs(args.docs, exist_ok=True)
    with open(os.path.join(args.docs, name + ".md"), "w") as f:
        f.write(markdown(data, table, sizes, jobs, libs, name + ".png"))
    with open(os.path.join(args.docs, name + ".png"), "wb") as f:
        f.write(chart(table, sizes, jobs, libs, "peers" in data["results"]["context"]))
    print(f"\nwrote {os.path.join(args.docs, name)}.md and .png", file=sys.stderr)


if __name__ == "__main__":
    main()
