#!/usr/bin/env python3
"""Instructions per pixel of benchmark jobs, counted by valgrind's callgrind
over krocc_cycles' loop of calls (the input made and one call done first, so
only the calls count), and where they go: the source lines that execute them,
inlined forms included. Python 3 standard library; needs valgrind.

  python3 bench/cycles.py kroiRGBToYCbCr420_8u_C3P3R kroiYCbCr420ToRGB_8u_P3C3R
  python3 bench/cycles.py --lib libyuv kroiRGBToYCbCr420_8u_C3P3R
  python3 bench/cycles.py --lines 20 --size 640x480 kroiYCbCr422ToRGB_8u_C2C3R

Build krocc_cycles with line tables for the breakdown (the code is the same):
  cmake -S . -B build-cg -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS=-g
  cmake --build build-cg --target krocc_cycles
"""
import argparse
import collections
import os
import re
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def parse(path):
    """Self cost (Ir) per (file, line) and per function, from a callgrind output file."""
    names = {"fl": {}, "fn": {}}
    per_line = collections.Counter()
    per_fn = collections.Counter()
    fl = fi = fn = "?"
    pos = 0
    skip_next = False

    def name(kind, text):
        m = re.match(r"\((\d+)\)(?: (.*))?", text)
        if not m:
            return text
        table = names["fn" if kind in ("fn", "cfn") else "fl"]
        if m.group(2) is not None:
            table[m.group(1)] = m.group(2)
        return table.get(m.group(1), "?")

    with open(path) as f:
        for raw in f:
            line = raw.rstrip("\n")
            if not line:
                continue
            head = line.split("=", 1)
            if len(head) == 2 and re.fullmatch(r"[a-z]+", head[0]):
                key, val = head
                if key == "fl":
                    fl = fi = name("fl", val)
                elif key in ("fi", "fe"):
                    fi = name("fl", val)
                elif key == "fn":
                    fn = name("fn", val)
                    fi = fl
                elif key in ("cfl", "cfi"):
                    name("fl", val)
                elif key == "cfn":
                    name("cfn", val)
                elif key == "calls":
                    skip_next = True  # the next cost line is the call's inclusive cost
                continue
            if not (line[0].isdigit() or line[0] in "+-*"):
                continue
            parts = line.split()
            p = parts[0]
            if p == "*":
                pass
            elif p[0] in "+-":
                pos += int(p)
            else:
                pos = int(p)
            if skip_next:
                skip_next = False
                continue
            ir = int(parts[1]) if len(parts) > 1 else 0
            per_line[(fi, pos)] += ir
            per_fn[fn] += ir
    return per_line, per_fn


def source_line(path, n, cache={}):
    if path not in cache:
        try:
            with open(path) as f:
                cache[path] = f.read().split("\n")
        except OSError:
            cache[path] = []
    lines = cache[path]
    return lines[n - 1].strip() if 0 < n <= len(lines) else ""


def short(path):
    return os.path.relpath(path, ROOT) if path.startswith(ROOT) else os.path.basename(path)


def kind_of(path, n):
    """What a source line executes: the SSE instruction of an intrinsic (the
    compiler inlines them, so their lines stand for the instructions), a plain
    load or store, or the line itself (loop control, scalar code)."""
    src = source_line(path, n)
    m = re.search(r"__builtin_ia32_(\w+?)(?:128)?\b", src)
    if m:
        return m.group(1)
    if "intrin.h" in path:
        if src == "return *__P;":
            return "load"
        if src.startswith("*") and "__B" in src:
            return "store"
        for op, name in (("|", "por"), ("&", "pand"), ("+", "padd"), ("-", "psub")):
            if op in src:
                return name
        return "other intrinsic"
    return f"{short(path)}:{n}"


def measure(exe, job, lib, size, calls, nlines):
    with tempfile.TemporaryDirectory() as tmp:
        out = os.path.join(tmp, "callgrind.out")
        cmd = ["valgrind", "--tool=callgrind", "--toggle-collect=kbTimedLoop", f"--callgrind-out-file={out}",
               exe, job, lib, size, str(calls)]
        r = subprocess.run(cmd, capture_output=True, text=True)
        if r.returncode != 0:
            sys.exit(f"{' '.join(cmd)} failed:\n{r.stderr[-2000:]}")
        m = re.search(r"pixels (\d+)", r.stdout)
        pixels = int(m.group(1))
        per_line, per_fn = parse(out)
    total = sum(per_line.values())
    print(f"\n{job} ({lib}, {size}, {calls} calls): {total / pixels:.2f} instructions a pixel")
    by_file = collections.Counter()
    for (f, _), ir in per_line.items():
        by_file[short(f)] += ir
    print("  by source file:")
    for f, ir in by_file.most_common(8):
        print(f"    {ir / pixels:7.2f}  {ir / total:6.1%}  {f}")
    by_kind = collections.Counter()
    for (f, n), ir in per_line.items():
        by_kind[kind_of(f, n)] += ir
    print("  by instruction (needs line tables):")
    for k, ir in by_kind.most_common(14):
        print(f"    {ir / pixels:7.2f}  {ir / total:6.1%}  {k}")
    print("  by function (inlined code counts in its caller):")
    for fn, ir in per_fn.most_common(6):
        print(f"    {ir / pixels:7.2f}  {ir / total:6.1%}  {fn[:110]}")
    if nlines:
        print(f"  top {nlines} lines:")
        for (f, n), ir in per_line.most_common(nlines):
            print(f"    {ir / pixels:7.2f}  {ir / total:6.1%}  {short(f)}:{n}  {source_line(f, n)[:90]}")
    return total / pixels


def main():
    ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument("jobs", nargs="+", help="operation names (jobs of the benchmark table)")
    ap.add_argument("--exe", default=None, help="krocc_cycles (default build-cg/, then build/)")
    ap.add_argument("--lib", default="krocc", help="krocc or a peer's name")
    ap.add_argument("--size", default="1920x1080")
    ap.add_argument("--calls", type=int, default=2)
    ap.add_argument("--lines", type=int, default=0, help="also show this many of the costliest source lines")
    args = ap.parse_args()
    exe = args.exe
    if exe is None:
        for d in ("build-cg", "build"):
            cand = os.path.join(ROOT, d, "bench", "krocc_cycles")
            if os.access(cand, os.X_OK):
                exe = cand
                break
    if exe is None:
        sys.exit("krocc_cycles not found: cmake --build build --target krocc_cycles")
    summary = [(job, measure(exe, job, args.lib, args.size, args.calls, args.lines)) for job in args.jobs]
    print("\ninstructions a pixel:")
    for job, ipp in summary:
        print(f"  {ipp:7.2f}  {job} ({args.lib})")


if __name__ == "__main__":
    main()
