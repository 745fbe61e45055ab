#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need. Idempotent and quiet when all is there.
# Usage: scripts/install-deps.sh [--web]   (--web adds the emscripten toolchain, and Chromium with
# playwright-core from npm for the web player's browser tests)
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
  # chromium and npm: the web player's browser tests (tests/web), which drive Debian's Chromium.
  packages+=(emscripten dpkg-dev chromium)
  # A machine whose node came from elsewhere brings its own npm; Debian's would fight it.
  command -v npm >/dev/null || packages+=(npm)
fi

# playwright-core only drives a browser; it never downloads one (the tests name /usr/bin/chromium).
install_web_node_modules() {
  [[ "${1:-}" == "--web" ]] || return 0
  local dir
  dir="$(cd "$(dirname "$0")/.." && pwd)/tests/web"
  [[ -d "$dir/node_modules/playwright-core" ]] && return 0
  echo "Installing playwright-core into tests/web/node_modules"
  (cd "$dir" && PLAYWRIGHT_SKIP_BROWSER_DOWNLOAD=1 npm ci --no-audit --no-fund --loglevel=error)
}

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done
if [[ ${#missing[@]} -eq 0 ]]; then
  install_web_node_modules "${1:-}"
  exit 0
fi

echo "Installing: ${missing[*]}"
sudo_cmd=()
[[ $(id -u) -ne 0 ]] && sudo_cmd=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
install_web_node_modules "${1:-}"
