#!/usr/bin/env bash
# The dense kernels that training leans on, on each BLAS of Debian 12 that is installed: OpenBLAS (on the kernel
# family that the program would choose), BLIS (libblis4-pthread) and ATLAS (libatlas3-base), on one core and on
# two. The program links OpenBLAS itself; this only says whether another library would serve better.
#
#   bash bench/other_blas/run.sh
set -euo pipefail
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
lib=/usr/lib/x86_64-linux-gnu
g++ -O2 kernels.cpp -o "$work/kernels" -L"$lib/openblas-pthread" -l:libblas.so.3
# The family the program would choose: numpy_lm.py's reading of the processor's features.
family=$(cd .. && /usr/bin/python3 -c 'from numpy_lm import best_kernel_family; print(best_kernel_family() or "")')
for impl in openblas-pthread blis-pthread atlas; do
  [ -e "$lib/$impl/libblas.so.3" ] || { echo "== $impl: not installed"; continue; }
  for threads in 1 2; do
    echo "== $impl, $threads thread(s)"
    LD_LIBRARY_PATH="$lib/$impl" OPENBLAS_CORETYPE=${OPENBLAS_CORETYPE:-$family} OPENBLAS_NUM_THREADS=$threads \
      BLIS_NUM_THREADS=$threads "$work/kernels"
  done
done
