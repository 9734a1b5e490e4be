#!/usr/bin/env bash
# Installs the Debian 12 packages that Vantrel needs, if any is missing.
#
#   bash tools/install-deps.sh           what building and starting the application and the Python package need
#   bash tools/install-deps.sh --tests   that, and the tools of the tests and checks
set -euo pipefail

# Building and starting: the compilers and build tools, Qt and the BLAS, the fonts the dialogs name (their
# metric-compatible faces), xdg-utils for opening an output file on the desktop, and the Python package's
# build and run time (Dask for fits on a cluster).
packages=(cmake ninja-build g++ pkg-config qt6-base-dev libgl-dev libopenblas-dev liblapacke-dev
          fonts-liberation fonts-urw-base35 xdg-utils
          pybind11-dev python3-dev python3-numpy python3-sklearn python3-dask python3-distributed)
# Tests and checks: GoogleTest, Google Benchmark, pytest and matplotlib (the example's plot), clang and its
# runtime for the sanitizer builds and the fuzz targets, and what the packaging check builds, validates and
# installs with (a .deb with computed dependencies, the desktop entry, a virtual environment for pip).
test_packages=(libgtest-dev libbenchmark-dev python3-pytest python3-matplotlib clang libclang-rt-14-dev
               dpkg-dev desktop-file-utils python3-venv python3-pip)

case "${1:-}" in
  "") ;;
  --tests) packages+=("${test_packages[@]}") ;;
  *) echo "usage: bash tools/install-deps.sh [--tests]" >&2; exit 2 ;;
esac

missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update -qq
  $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
