#!/usr/bin/env bash
# Installs the Debian packages that the build, the tests and the tour need; does nothing when all are there.
# Everything it prints goes to standard error.
set -euo pipefail
exec 1>&2

packages=(
  g++ cmake ninja-build ccache mold pkg-config git ca-certificates
  libexpected-dev libfmt-dev libedit-dev libcli11-dev doctest-dev librapidcheck-dev libbenchmark-dev
  libpng-dev libtiff-dev libjpeg-dev libembree-dev libosd-dev libeigen3-dev libtinyobjloader-dev liblua5.4-dev
  clang-format clang-tidy
  libegl-dev libgl-dev libopengl-dev libegl-mesa0 libgl1-mesa-dri
  assimp-testmodels
)
for package in "$@"; do packages+=("$package"); done
# The window and its tests; without them everything else is there.
wanted=(qt6-base-dev xvfb xdotool)

missing_of() {
  local package status
  for package in "$@"; do
    status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
    [ "$status" = "install ok installed" ] || echo "$package"
  done
}
mapfile -t missing < <(missing_of "${packages[@]}")
mapfile -t missing_wanted < <(missing_of "${wanted[@]}")
[ $((${#missing[@]} + ${#missing_wanted[@]})) -eq 0 ] && exit 0

root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    [ ${#missing[@]} -eq 0 ] && { echo "Without root or sudo the window is left out: ${missing_wanted[*]}"; exit 0; }
    echo "These packages are missing and need root or sudo: ${missing[*]}"
    exit 1
  fi
  root=(sudo)
fi
install() { "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "$@"; }
echo "Installing: ${missing[*]} ${missing_wanted[*]}"
"${root[@]}" apt-get update -qq || echo "apt-get update failed; trying with the package lists that are there"
[ ${#missing[@]} -eq 0 ] || install "${missing[@]}"
[ ${#missing_wanted[@]} -eq 0 ] || install "${missing_wanted[@]}" ||
  echo "These could not be installed; the window or its tests are left out: ${missing_wanted[*]}"
