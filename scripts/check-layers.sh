#!/usr/bin/env bash
# The rooms of src/ include one way only, downwards. This reads every `#include "…"` under src/ and
# apps/ and fails, naming file and line, when a room includes one above it, when a room that is not
# in the order appears, or when a platform backend is included from anywhere but apps/ and itself:
# only the programs choose a backend. A backend sits on top and may include any room.
# Usage: scripts/check-layers.sh [CHECKOUT]   (the checkout defaults to this script's own)
set -euo pipefail

# Bottom to top; docs/architecture.md says what each room is for.
readonly ROOMS=(base memory platform messages subsystems policy stack gfx pictures text transitions
                card player media sprites extensions logo actions ui host)
readonly BACKENDS=(platform/sdl platform/headless platform/web)

root=${1:-$(cd "$(dirname "$0")/.." && pwd)}
cd "$root"

declare -A rank
for i in "${!ROOMS[@]}"; do rank[${ROOMS[$i]}]=$i; done

is_backend() {
    local b
    for b in "${BACKENDS[@]}"; do [[ $1 == "$b" || $1 == "$b"/* ]] && return 0; done
    return 1
}

failures=0
fail() {
    echo "$1: $2"
    failures=$((failures + 1))
}

while IFS= read -r file; do
    case $file in
        apps/*) from=apps ;;
        src/*/*) from=${file#src/}; from=${from%%/*} ;;
        *) continue ;;
    esac
    backend_file=false
    is_backend "${file#src/}" && backend_file=true
    if [[ $from != apps && $backend_file == false && -z ${rank[$from]+x} ]]; then
        fail "$file" "the room '$from' is not in the layer order"
        continue
    fi
    while IFS=: read -r line target; do
        to=${target%%/*}
        [[ $target == */* ]] || continue  # a sibling header of the same folder
        if is_backend "$target"; then
            [[ $from == apps ]] && continue
            [[ $backend_file == true && ${file#src/} == "${target%/*}"/* ]] && continue
            fail "$file:$line" "includes the backend \"$target\"; only apps/ and the backend itself may"
            continue
        fi
        [[ -n ${rank[$to]+x} ]] || continue  # not one of our rooms (a generated or third-party header)
        [[ $from == apps || $backend_file == true ]] && continue
        if ((rank[$to] > rank[$from])); then
            fail "$file:$line" "the room '$from' includes \"$target\" from the higher room '$to'"
        fi
    done < <(grep -n -o '^[[:space:]]*#[[:space:]]*include[[:space:]]*"[^"]*"' "$file" |
             sed -E 's/^([0-9]+):[^"]*"([^"]*)"/\1:\2/')
done < <(find src apps -type f \( -name '*.cpp' -o -name '*.h' \) | sort)

if ((failures > 0)); then
    echo "The layer check found $failures include(s) against the order: ${ROOMS[*]}"
    exit 1
fi
echo "The layer check passed: every include goes downwards."
