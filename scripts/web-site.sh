#!/usr/bin/env bash
# Puts the web player together as a site: quillbrook.js (the script a page includes), the module's
# code in quillbrook-module.js with quillbrook.wasm, and its Asyncify build for browsers that
# cannot suspend a wasm stack (quillbrook-module-asyncify.js, quillbrook-asyncify.wasm), the font
# files the player fetches on first use (fonts/, the same files the desktop draws with), each wasm
# and font file also packed (.gz, for servers that do not compress what they send), the
# drag-and-drop page, the package description, and the demo stack.
# Usage: scripts/web-site.sh WASM_BUILD_DIR DEMO_STK OUT_DIR
set -euo pipefail
build=$1 demo=$2 out=$3
root=$(cd "$(dirname "$0")/.." && pwd)
fonts=${QB_FONT_FOLDER:-/usr/share/fonts/truetype}

mkdir -p "$out/fonts/liberation2" "$out/fonts/dejavu"
cp "$root/apps/web/quillbrook.js" "$build"/apps/web/quillbrook-module{,-asyncify}.js "$out/"
cp "$build/apps/web/quillbrook-module.wasm" "$out/quillbrook.wasm"
cp "$build/apps/web/quillbrook-module-asyncify.wasm" "$out/quillbrook-asyncify.wasm"
for wasm in quillbrook quillbrook-asyncify; do gzip -9 -n -c "$out/$wasm.wasm" >"$out/$wasm.wasm.gz"; done
cp "$root/apps/web/index.html" "$root/apps/web/package.json" "$root/apps/web/README.md" "$out/"
cp "$fonts"/liberation2/Liberation{Sans,Serif,Mono}-{Regular,Bold,Italic,BoldItalic}.ttf "$out/fonts/liberation2/"
cp "$fonts"/dejavu/DejaVuSans{,-Bold}.ttf "$out/fonts/dejavu/"
for font in "$out"/fonts/*/*.ttf; do gzip -9 -n -c "$font" >"$font.gz"; done
cp "$demo" "$out/demo.stk"
