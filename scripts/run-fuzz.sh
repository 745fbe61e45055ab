#!/usr/bin/env bash
# Runs every libFuzzer target of a fuzz build for SECONDS each, starting from its corpus
# (fuzz/corpus/<name>/) and the malformed inputs under tests/data/. New corpus entries and crash
# files go to BUILD_DIR/fuzz-out/<target>/, never into the repository; that folder is kept, so the
# next run goes on from where this one stopped. Fails if a target crashes, leaks, or times out.
# Usage: scripts/run-fuzz.sh BUILD_DIR SECONDS        (make fuzz: build/fuzz, 300 s)
# Extra libFuzzer flags can be given in FUZZ_FLAGS, e.g. FUZZ_FLAGS="-max_len=4096".
set -euo pipefail

if [[ $# -ne 2 || ! "$2" =~ ^[0-9]+$ ]]; then
  echo "usage: $0 BUILD_DIR SECONDS" >&2
  exit 2
fi
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$1" && pwd)
seconds=$2

shopt -s nullglob
targets=()
for exe in "$build"/fuzz/fuzz_*; do
  [[ -f "$exe" && -x "$exe" ]] && targets+=("$exe")
done
if [[ ${#targets[@]} -eq 0 ]]; then
  echo "run-fuzz: no fuzz targets in $build/fuzz (build the fuzz preset first)" >&2
  exit 2
fi
help=$("${targets[0]}" -help=1 2>&1 || true)
if [[ "$help" != *max_total_time* ]]; then
  echo "run-fuzz: ${targets[0]} is not a libFuzzer program (use the fuzz preset)" >&2
  exit 2
fi

failed=0
for exe in "${targets[@]}"; do
  name=$(basename "$exe")
  corpus="$root/fuzz/corpus/${name#fuzz_}"
  out="$build/fuzz-out/$name"
  mkdir -p "$out/corpus" "$out/crashes"
  log="$out/last-run.log"
  seeds=()
  [[ -d "$corpus" ]] && seeds+=("$corpus")
  [[ -d "$root/tests/data" ]] && seeds+=("$root/tests/data")

  echo "== $name: ${seconds}s, corpus $corpus, new entries in $out/corpus"
  status=0
  touch "$out/.started"
  # The first folder receives new entries; the seeds after it are only read.
  ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1}" UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1}" \
    "$exe" "$out/corpus" ${seeds[@]+"${seeds[@]}"} \
      -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
      -artifact_prefix="$out/crashes/" ${FUZZ_FLAGS:-} >"$log" 2>&1 || status=$?

  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -1)
  peak=$(sed -n 's/^stat::peak_rss_mb: *//p' "$log" | tail -1)
  entries=$(find "$out/corpus" -type f | wc -l)
  echo "   ${runs:-?} executions (${rate:-?}/s), peak RSS ${peak:-?} MB, $entries entries in the scratch corpus"
  if [[ $status -ne 0 ]]; then
    failed=1
    echo "   FAILED (exit $status); from $log:"
    grep -E '^(==[0-9]+== ?ERROR|SUMMARY|.*runtime error|fuzz_[a-z_]+: |artifact_prefix)' "$log" | head -20 | sed 's/^/   /'
    find "$out/crashes" -type f -newer "$out/.started" | while read -r crash; do
      echo "   reproduce: $exe $crash"
      echo "   keep it:   cp $crash $root/tests/data/  (and add a line to tests/data/README.md)"
    done
  fi
done
exit $failed
