#!/usr/bin/env python3
"""Runs the benchmark program and prints, row by row, our time divided by theirs.

Each side runs many times, in random order with all others; the shortest time of each side counts, because whatever
else a machine does only makes times longer. The medians stand beside it: far apart, the machine was busy.
The result is 1 when a row misses its goal."""
import argparse
import json
import statistics
import subprocess
import sys
import tempfile
from collections import defaultdict


def run(arguments):
    with tempfile.NamedTemporaryFile(suffix=".json") as report:
        command = [arguments.program, f"--benchmark_out={report.name}", "--benchmark_out_format=json",
                   f"--benchmark_repetitions={arguments.repetitions}", "--benchmark_enable_random_interleaving=true",
                   f"--benchmark_min_time={arguments.seconds}", "--benchmark_report_aggregates_only=false"]
        if arguments.rows:
            command.append(f"--benchmark_filter={arguments.rows}")
        done = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        if done.returncode != 0:
            sys.exit(done.stderr)
        return json.load(report)


def collect(report):
    times, goals = defaultdict(lambda: {"ours": [], "theirs": []}), {}
    for entry in sorted(report["benchmarks"], key=lambda entry: entry.get("row", 0)):
        if entry.get("error_occurred"):
            sys.exit(f"{entry['name']}: {entry['error_message']}")
        if entry["run_type"] == "iteration":
            row, side = entry["run_name"].rsplit("|", 1)
            times[row][side].append(entry["cpu_time"])
            goals[row] = entry["goal"]
    return times, goals


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--repetitions", type=int, default=15, help="runs of each side")
    parser.add_argument("--seconds", type=float, default=0.05, help="least time of one run")
    parser.add_argument("--rows", help="only the rows that this regular expression finds")
    arguments = parser.parse_args()
    times, goals = collect(run(arguments))
    width = max((len(row) for row in times), default=0)
    print(f"{'ours / theirs':{width}}  ratio  median   goal")
    missed = 0
    for row, sides in times.items():
        ratio = min(sides["ours"]) / min(sides["theirs"])
        median = statistics.median(sides["ours"]) / statistics.median(sides["theirs"])
        missed += ratio > goals[row]
        print(f"{row:{width}}  {ratio:5.3f}   {median:5.3f}  {goals[row]:5.2f}  {'FAIL' if ratio > goals[row] else 'pass'}")
    print(f"{len(times)} rows, {missed} miss their goal")
    return 1 if missed or not times else 0


if __name__ == "__main__":
    sys.exit(main())
