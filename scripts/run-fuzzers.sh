#!/usr/bin/env bash
# Runs each fuzz target for a number of seconds on its seed corpus and prints
# the executions it made, FUZZ_JOBS targets side by side (default: the cores).
# Fails when any target crashes or fails a check.
set -euo pipefail
bin=$1; seconds=$2; shift 2
root=$(cd "$(dirname "$0")/.." && pwd)
jobs=${FUZZ_JOBS:-$(nproc)}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

run_one() {
  local f=$1
  mkdir -p "$work/$f"
  local seeds="$root/fuzz/corpus/$f"
  [ -d "$seeds" ] && cp -r "$seeds/." "$work/$f/" 2>/dev/null || true
  # A target that opens a widget loads fonts: their library's own leaks are not ours.
  QT_QPA_PLATFORM=offscreen LSAN_OPTIONS=suppressions=$root/tests/lsan.supp "$bin/$f" -max_total_time="$seconds" \
    -rss_limit_mb=4096 -print_final_stats=1 -artifact_prefix="$work/$f-" "$work/$f" >"$work/$f.log" 2>&1
  echo $? >"$work/$f.rc"
}

running=0
for f in "$@"; do
  run_one "$f" &
  running=$((running + 1))
  if [ "$running" -ge "$jobs" ]; then
    wait -n || true
    running=$((running - 1))
  fi
done
wait || true

total=0; failed=0
for f in "$@"; do
  if [ "$(cat "$work/$f.rc" 2>/dev/null || echo 1)" != 0 ]; then
    tail -n 40 "$work/$f.log"
    echo "fuzz: $f failed" >&2
    failed=1
    continue
  fi
  runs=$(grep -oE 'stat::number_of_executed_units: *[0-9]+' "$work/$f.log" | grep -oE '[0-9]+$' || echo 0)
  total=$((total + runs))
  echo "fuzz: $f ran $runs inputs in ${seconds}s, no failure"
done
[ "$failed" = 0 ] || exit 1
echo "fuzz: $total inputs in all"
