#!/usr/bin/env bash
# Installs the Debian 12 packages that building, running and testing Vantrel need, if any is missing
# (clang and its runtime for the sanitizer build and the fuzz targets of the checks; numpy for the outside
# comparison of bench/numpy_lm.py).
set -euo pipefail
packages=(cmake ninja-build g++ pkg-config qt6-base-dev libgl-dev libgtest-dev libbenchmark-dev
          libopenblas-dev liblapacke-dev fonts-liberation fonts-urw-base35 xdg-utils
          clang libclang-rt-14-dev
          pybind11-dev python3-dev python3-numpy python3-sklearn python3-pytest python3-matplotlib
          python3-dask python3-distributed)
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
