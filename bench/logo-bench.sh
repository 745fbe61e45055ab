#!/usr/bin/env bash
# QuillLogo against ucblogo on the same programs (bench/logo/*.lg): the whole process timed, best
# of five runs each, with the peak resident memory of each beside it. Both run inside one virtual
# X server, which ucblogo wants, so that its start-up is not counted. Target: ours >= 3x faster.
# Usage: bench/logo-bench.sh QUILLBROOK
set -euo pipefail
qb=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
command -v ucblogo >/dev/null || { echo "logo-bench: ucblogo is not installed" >&2; exit 2; }
inner=$(mktemp)
trap 'rm -f "$inner"' EXIT
cat > "$inner" <<INNER
set -euo pipefail
best() {  # best wall seconds and the peak RSS (KB) of five runs of "\$@"
  local t m bt=999 bm=0 out
  out=\$(mktemp)
  for _ in 1 2 3 4 5; do
    /usr/bin/time -f '%e %M' -o "\$out" "\$@" >/dev/null 2>&1
    read -r t m < "\$out"
    bt=\$(echo "\$t \$bt" | awk '{print (\$1 < \$2) ? \$1 : \$2}'); bm=\$m
  done
  rm -f "\$out"
  echo "\$bt \$bm"
}
printf '%-12s %10s %10s %8s %12s %12s\n' program ours_s ucblogo_s ratio ours_rss_kb ucb_rss_kb
for program in "$here"/logo/*.lg; do
  name=\$(basename "\$program" .lg)
  read -r ot om < <(best "$qb" logo "\$program")
  ucb=\$(mktemp --suffix=.lg); { cat "\$program"; echo bye; } > "\$ucb"
  read -r ut um < <(best ucblogo "\$ucb")
  rm -f "\$ucb"
  ratio=\$(echo "\$ut \$ot" | awk '{ if (\$2 > 0) printf "%.1fx", \$1 / \$2; else print "inf" }')
  printf '%-12s %10s %10s %8s %12s %12s\n' "\$name" "\$ot" "\$ut" "\$ratio" "\$om" "\$um"
done
INNER
xvfb-run -a bash "$inner"
