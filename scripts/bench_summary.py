#!/usr/bin/env python3
"""Runs the benchmarks, pairs each of ours with its peer and writes the ratios.

usage: bench_summary.py BENCHMARK_BINARY COMPARISONS_JSON OUTPUT_FOLDER

Both sides of a pair run in the same process, interleaved at random over
several repetitions; the median of each is compared. The ratio is ours over
the peer in throughput terms: above 1 means ours is faster.
"""
import json
import os
import re
import subprocess
import sys

UNITS = {
    "GB/s": ("bytes_per_second", 1e9),
    "MB/s": ("bytes_per_second", 1e6),
    "items/s": ("items_per_second", 1.0),
    "Mitems/s": ("items_per_second", 1e6),
}


def run(binary, names, output_folder):
    raw = os.path.join(output_folder, "raw.json")
    pattern = "^(" + "|".join(re.escape(n) for n in sorted(names)) + ")$"
    subprocess.run([binary, f"--benchmark_filter={pattern}", "--benchmark_repetitions=5",
                    "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.2",
                    "--benchmark_report_aggregates_only=true", f"--benchmark_out={raw}",
                    "--benchmark_out_format=json"], check=True, stdout=subprocess.DEVNULL)
    with open(raw) as handle:
        return {b["run_name"]: b for b in json.load(handle)["benchmarks"]
                if b.get("aggregate_name") == "median"}


def main():
    binary, comparisons_path, output_folder = sys.argv[1:4]
    os.makedirs(output_folder, exist_ok=True)
    with open(comparisons_path) as handle:
        comparisons = json.load(handle)
    medians = run(binary, {c["ours"] for c in comparisons} | {c["peer"] for c in comparisons},
                  output_folder)

    summary = []
    for comparison in comparisons:
        field, scale = UNITS[comparison["unit"]]
        ours = medians[comparison["ours"]][field] / scale
        peer = medians[comparison["peer"]][field] / scale
        row = dict(comparison, ours_value=round(ours, 4), peer_value=round(peer, 4),
                   ratio=round(ours / peer, 3))
        # Compressors also report how well they compress, each side its own.
        for side in ("ours", "peer"):
            extra = medians[comparison[side]].get("compression_ratio")
            if extra is not None:
                row[f"{side}_compression_ratio"] = round(extra, 3)
        summary.append(row)
    with open(os.path.join(output_folder, "summary.json"), "w") as handle:
        json.dump(summary, handle, indent=2)

    print(f"{'id':28} {'unit':8} {'ours':>10} {'peer':>10} {'ratio':>7} {'goal':>6}")
    for row in summary:
        mark = "" if row["ratio"] >= row["goal"] else "  below goal"
        if "ours_compression_ratio" in row:
            mark += (f"  compression {row['ours_compression_ratio']:.2f}"
                     f" vs {row['peer_compression_ratio']:.2f}")
        print(f"{row['id']:28} {row['unit']:8} {row['ours_value']:10.3f} {row['peer_value']:10.3f} "
              f"{row['ratio']:7.3f} {row['goal']:6.2f}{mark}")
    print(f"written: {os.path.join(output_folder, 'summary.json')}")


if __name__ == "__main__":
    main()
