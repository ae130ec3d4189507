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

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
  [ "$status" = "install ok installed" ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "These packages are missing and need root or sudo: ${missing[*]}"; exit 1; }
  root=(sudo)
fi
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${root[@]}" apt-get update -qq || echo "apt-get update failed; trying with the package lists that are there"
"${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
