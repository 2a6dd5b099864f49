#!/usr/bin/env bash
# Runs each fuzz target for a number of seconds on its seed corpus and prints
# the executions it made. Fails on the first crash or failed check.
set -euo pipefail
bin=$1; seconds=$2; shift 2
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
total=0
for f in "$@"; do
  mkdir -p "$work/$f"
  seeds="$root/fuzz/corpus/$f"
  [ -d "$seeds" ] && cp -r "$seeds/." "$work/$f/" 2>/dev/null || true
  log="$work/$f.log"
  # A target that opens a widget loads fonts: their library's own leaks are not ours.
  if ! QT_QPA_PLATFORM=offscreen LSAN_OPTIONS=suppressions=$root/tests/lsan.supp "$bin/$f" -max_total_time="$seconds" -rss_limit_mb=4096 -print_final_stats=1 \
        -artifact_prefix="$work/" "$work/$f" >"$log" 2>&1; then
    tail -n 40 "$log"
    echo "fuzz: $f failed" >&2
    exit 1
  fi
  runs=$(grep -oE 'stat::number_of_executed_units: *[0-9]+' "$log" | grep -oE '[0-9]+$' || echo 0)
  total=$((total + runs))
  echo "fuzz: $f ran $runs inputs in ${seconds}s, no failure"
done
echo "fuzz: $total inputs in all"
