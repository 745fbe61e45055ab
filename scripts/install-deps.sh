#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need. Idempotent and quiet when all is there.
# Usage: scripts/install-deps.sh [--web]   (--web adds the emscripten toolchain)
set -euo pipefail

packages=(
  cmake ninja-build g++ make pkg-config
  libgtest-dev libgmock-dev libbenchmark-dev
  libfmt-dev libcli11-dev nlohmann-json3-dev
  clang-14 libclang-rt-14-dev
  libjpeg62-turbo-dev libfreetype-dev libpng-dev libtiff-dev
  libjpeg-turbo-progs gcovr
  libfreetype-dev fonts-liberation2 fonts-dejavu-core
  libsdl2-dev
  xvfb xauth xdotool
  sox ffmpeg libavcodec-dev libavutil-dev
  ucblogo libedit-dev
)
if [[ "${1:-}" == "--web" ]]; then
  # dpkg-dev: apt-get source, which scripts/build-web-deps.sh uses for the web's own libraries.
  packages+=(emscripten dpkg-dev)
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

echo "Installing: ${missing[*]}"
sudo_cmd=()
[[ $(id -u) -ne 0 ]] && sudo_cmd=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
