#!/usr/bin/env bash
# Builds and runs every test twice: an optimised build with the full
# exhaustive sweeps, and an AddressSanitizer + UndefinedBehaviorSanitizer
# build with the sweeps sampled.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc 2>/dev/null || echo 2)

cmake -S . -B build -DCMAKE_BUILD_TYPE=Release
cmake --build build -j "$jobs"
ctest --test-dir build -j "$jobs" --output-on-failure

cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKROCC_SANITIZE=ON -DKROCC_BUILD_BENCH=OFF
cmake --build build-asan -j "$jobs"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ctest --test-dir build-asan -j "$jobs" --output-on-failure -E c_abi_installed
