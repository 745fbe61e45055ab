#!/usr/bin/env bash
# The layer check's own test: on a small tree it passes when every include goes downwards and
# fails, naming file and line, on each kind of wrong include.
set -euo pipefail
check=$(cd "$(dirname "$0")/../.." && pwd)/scripts/check-layers.sh
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT

put() {  # put FILE LINE...
    mkdir -p "$tree/$(dirname "$1")"
    local file=$1
    shift
    printf '%s\n' "$@" > "$tree/$file"
}

expect() {  # expect pass|fail [TEXT]
    local out status=0
    out=$("$check" "$tree" 2>&1) || status=$?
    if [[ $1 == pass && $status -ne 0 ]] || [[ $1 == fail && $status -eq 0 ]]; then
        echo "expected the check to $1, it said:"; echo "$out"; exit 1
    fi
    if [[ -n ${2:-} && $out != *"$2"* ]]; then
        echo "expected '$2' in:"; echo "$out"; exit 1
    fi
}

put src/stack/Card.cpp '#include "stack/Card.h"' '#include "memory/MemRef.h"' '#include "base/ByteOrder.h"'
put src/card/Item.cpp '#include "stack/Card.h"' '#include "gfx/Surface.h"'
put src/platform/headless/Fake.cpp '#include "ui/AlertBox.h"' '#include "platform/headless/Fake.h"'
put apps/tool/main.cpp '#include "platform/headless/Fake.h"' '#include "host/Main.h"'
expect pass

put src/stack/Bad.cpp '#include "stack/Card.h"' '#include "card/Item.h"'
expect fail 'src/stack/Bad.cpp:2: the room '\''stack'\'' includes "card/Item.h" from the higher room '\''card'\'''
rm "$tree/src/stack/Bad.cpp"

put src/host/Chooser.cpp '#include "platform/headless/Fake.h"'
expect fail 'src/host/Chooser.cpp:1: includes the backend "platform/headless/Fake.h"'
rm "$tree/src/host/Chooser.cpp"

put src/platform/Host.cpp '#include "platform/sdl/Window.h"'
expect fail 'src/platform/Host.cpp:1: includes the backend'
rm "$tree/src/platform/Host.cpp"

put src/attic/Old.cpp '#include "base/ByteOrder.h"'
expect fail "the room 'attic' is not in the layer order"
rm -r "$tree/src/attic"

expect pass
echo "the layer check passes on downward includes and names each wrong one"
