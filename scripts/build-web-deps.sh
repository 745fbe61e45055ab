#!/usr/bin/env bash
# Builds the C libraries the web build links and emscripten does not ship, from Debian's own source
# packages: libjpeg-turbo (format 3 card pictures) and FreeType (the text renderer). Each becomes a
# static wasm library under build/web-deps/prefix/, which cmake/WebDeps.cmake picks up.
#
# The sources come through `apt-get source` with a private deb-src list, package lists and caches
# under build/web-deps/apt/: nothing under /etc or /var is changed. A library that is already built
# is skipped, so the script costs nothing the second time. Quiet on success; on failure it prints
# the end of the step's log.
# Usage: scripts/build-web-deps.sh [BUILD_ROOT]      (default: build/web-deps in the checkout)
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
out=${1:-$root/build/web-deps}
mkdir -p "$out"
out=$(cd "$out" && pwd)
prefix=$out/prefix
src=$out/src
apt_dir=$out/apt
jobs=${JOBS:-$(nproc)}

# name|source package|library the prefix holds when the build is done. A name carries the
# recipe's revision, so that a changed recipe builds again in a folder built by the old one.
libraries=(
  "jpeg|libjpeg-turbo|$prefix/lib/libjpeg.a"
  "freetype-3|freetype|$prefix/lib/libfreetype.a"
)

log=""
fail() {
  echo "build-web-deps: $1" >&2
  if [[ -n "$log" && -f "$log" ]]; then
    echo "--- the end of $log:" >&2
    tail -n 30 "$log" >&2
  fi
  exit 1
}

# Runs a step with its output in the current log.
run() {
  "$@" >>"$log" 2>&1 || fail "'$*' failed"
}

needed=()
for entry in "${libraries[@]}"; do
  IFS='|' read -r name package product <<<"$entry"
  [[ -f "$product" && -f "$prefix/.$name.built" ]] || needed+=("$entry")
done
[[ ${#needed[@]} -eq 0 ]] && exit 0

for tool in emcmake emcc apt-get dpkg-source cmake ninja; do
  command -v "$tool" >/dev/null || fail "$tool is missing (scripts/install-deps.sh --web installs it)"
done

# A private apt view of Debian's source packages: its own list, state and caches.
apt_opts=(
  -o "Dir::Etc::SourceList=$apt_dir/sources.list"
  -o "Dir::Etc::SourceParts=$apt_dir/sources.list.d"
  -o "Dir::State::Lists=$apt_dir/lists"
  -o "Dir::Cache=$apt_dir/cache"
  -o "Dir::Cache::pkgcache="
  -o "Dir::Cache::srcpkgcache="
  -o "APT::Sandbox::User=root"
)
prepare_apt() {
  [[ -f "$apt_dir/.updated" ]] && return
  mkdir -p "$apt_dir/lists/partial" "$apt_dir/sources.list.d" "$apt_dir/cache/archives/partial"
  cat >"$apt_dir/sources.list" <<'EOF'
deb-src http://deb.debian.org/debian bookworm main
deb-src http://deb.debian.org/debian bookworm-updates main
deb-src http://deb.debian.org/debian-security bookworm-security main
EOF
  log=$out/apt.log
  : >"$log"
  run apt-get "${apt_opts[@]}" -q update
  touch "$apt_dir/.updated"
}

# Unpacks the newest source of a package under $src/<name>/ and prints the folder it made.
fetch() {
  local name=$1 package=$2 dir
  dir=$(find "$src/$name" -mindepth 1 -maxdepth 1 -type d 2>/dev/null | head -n 1)
  if [[ -z "$dir" ]]; then
    prepare_apt
    rm -rf "$src/$name"
    mkdir -p "$src/$name"
    (cd "$src/$name" && apt-get "${apt_opts[@]}" -q source "$package") >>"$log" 2>&1 ||
      fail "apt-get source $package failed"
    dir=$(find "$src/$name" -mindepth 1 -maxdepth 1 -type d | head -n 1)
    [[ -n "$dir" ]] || fail "apt-get source $package unpacked nothing"
  fi
  echo "$dir"
}

configure() {
  local source=$1 build=$2
  shift 2
  run emcmake cmake -S "$source" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR=lib "$@"
}

build_jpeg() {
  local source=$1 build=$out/jpeg
  # No SIMD (wasm has none of the assembly), no shared library, no TurboJPEG API, no programs: only
  # the libjpeg library target is built, and it and its headers are installed by hand, since the
  # project's own install step insists on its tools. CMake's type-size probe reads 9 from a wasm
  # object, so the two sizes wasm32 has are given.
  configure "$source" "$build" -DWITH_SIMD=0 -DENABLE_SHARED=0 -DENABLE_STATIC=1 -DWITH_TURBOJPEG=0 \
    -DWITH_JAVA=0 -DWITH_FUZZ=0 -DHAVE_SIZE_T=TRUE -DSIZE_T=4 -DHAVE_UNSIGNED_LONG=TRUE -DUNSIGNED_LONG=4
  run cmake --build "$build" --target jpeg-static -j "$jobs"
  mkdir -p "$prefix/lib" "$prefix/include"
  run cp "$build/libjpeg.a" "$prefix/lib/libjpeg.a"
  run cp "$build/jconfig.h" "$source/jpeglib.h" "$source/jmorecfg.h" "$source/jerror.h" "$prefix/include/"
}

build_freetype-3() {
  local source=$1 build=$out/freetype
  # Only the outlines and the rasteriser: no compressed fonts, no PNG glyphs, no shaping. The
  # rasteriser takes its SSE2 path on x86-64 and a plain one elsewhere, and the two round a few
  # edge pixels of a glyph apart; emscripten's SSE2 on wasm SIMD gives the desktop's pixels. The
  # build folder of an earlier recipe is not reused.
  rm -rf "$build"
  # Only the modules that draw the player's TrueType faces the way the desktop does: its glyphs are
  # loaded with the TrueType hinter and never the auto-hinter, and drawn anti-aliased. The other
  # drivers would be a sixth of the wasm, which every visitor downloads and compiles. The list is
  # read from the build's include folder, which comes before the source's.
  mkdir -p "$build/include/freetype/config"
  cat >"$build/include/freetype/config/ftmodule.h" <<'EOF'
FT_USE_MODULE( FT_Driver_ClassRec, tt_driver_class )
FT_USE_MODULE( FT_Module_Class, sfnt_module_class )
FT_USE_MODULE( FT_Renderer_Class, ft_smooth_renderer_class )
EOF
  configure "$source" "$build" -DBUILD_SHARED_LIBS=OFF -DFT_DISABLE_ZLIB=TRUE -DFT_DISABLE_BZIP2=TRUE \
    -DFT_DISABLE_PNG=TRUE -DFT_DISABLE_HARFBUZZ=TRUE -DFT_DISABLE_BROTLI=TRUE \
    "-DCMAKE_C_FLAGS=-msimd128 -msse2"
  run cmake --build "$build" --target freetype -j "$jobs"
  run cmake --install "$build"
}

for entry in "${needed[@]}"; do
  IFS='|' read -r name package product <<<"$entry"
  log=$out/$name.log
  : >"$log"
  source_dir=$(fetch "${name%%-*}" "$package")
  log=$out/$name.log
  "build_$name" "$source_dir"
  [[ -f "$product" ]] || fail "$name built, but $product is missing"
  basename "$source_dir" >"$prefix/.$name.built"
done
