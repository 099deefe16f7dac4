#!/usr/bin/env bash
# Puts src/frame/exports.list back into byte order (after merges), keeping its comment head.
set -euo pipefail
f="$(dirname "$0")/../src/frame/exports.list"
{ grep '^#' "$f"; grep -v '^#' "$f" | grep -v '^$' | LC_ALL=C sort -u; } > "$f.tmp"
mv "$f.tmp" "$f"
