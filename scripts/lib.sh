# Shared by the scripts in this folder: installing what the build needs and building.
# shellcheck shell=bash

ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

PACKAGES=(
  build-essential cmake ninja-build pkg-config clang
  qt6-base-dev qt6-tools-dev qt6-l10n-tools qt6-image-formats-plugins qt6-svg-dev
  libplist-dev libplist++-dev libplist-utils llvm
  libxkbcommon-dev libxkbcommon-x11-dev libicu-dev libxcb1-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  xvfb xauth dbus dbus-x11 desktop-file-utils adwaita-icon-theme xkb-data fonts-dejavu-core
  python3
)

# Installs the Debian packages that are missing (needs root or sudo).
install_dependencies() {
  local missing=()
  for package in "${PACKAGES[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "ok installed" || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing: ${missing[*]}"
  local sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# build_tree DIR [CMAKE OPTIONS...]: configures (once) and builds into DIR with two jobs.
build_tree() {
  local dir="$1"; shift
  cmake -S "$ROOT" -B "$dir" -G Ninja "$@" >/dev/null
  cmake --build "$dir" -j "${CORVALIS_JOBS:-2}"
}
