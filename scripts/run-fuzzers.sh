#!/usr/bin/env bash
# Runs every fuzz target in FOLDER for SECONDS each, starting from its seeds
# in fuzz/corpus/<Target>/ (copied, so the repository's seeds stay as they
# are). Fails on the first crash, leak or sanitizer report.
#   scripts/run-fuzzers.sh FOLDER SECONDS
set -euo pipefail
folder=$1
seconds=$2
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

found=0
for target in "$folder"/*Fuzzer; do
    [[ -x "$target" ]] || continue
    found=1
    name=$(basename "$target")
    mkdir -p "$work/$name"
    if [[ -d "$root/fuzz/corpus/$name" ]]; then cp -r "$root/fuzz/corpus/$name/." "$work/$name/"; fi
    echo "--- $name for ${seconds}s"
    "$target" -max_total_time="$seconds" -print_final_stats=1 -artifact_prefix="$work/" "$work/$name" \
        2>"$work/$name.log" || { tail -n 40 "$work/$name.log"; exit 1; }
    grep -E '^(stat::number_of_executed_units|Done)' "$work/$name.log" || true
done
[[ $found -eq 1 ]] || { echo "no fuzz targets in $folder"; exit 1; }
