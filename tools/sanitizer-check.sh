#!/usr/bin/env bash
# Builds everything with AddressSanitizer and UndefinedBehaviorSanitizer (clang) in build-san, runs every test
# program there, then each fuzz target for SECONDS seconds from its seed corpus. Exits non-zero on any sanitizer
# report, and on a test program that does not reach its own end with every test run and passed.
#
#   bash tools/sanitizer-check.sh [SECONDS]
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
launcher=()
# Paths below the checkout are hashed relative to it, so that another clone reuses the compiler cache.
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache) && export CCACHE_BASEDIR=$PWD
cmake -S . -B build-san -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
  -DVANTREL_SANITIZE=ON -DVANTREL_BENCH=OFF "${launcher[@]}"
cmake --build build-san -j2

# A report ends its process with the sanitizer's own non-zero status, which the judge and the fuzz targets' runs
# see; nothing here sets it to 0.
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:detect_stack_use_after_return=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export QT_QPA_PLATFORM=offscreen
judged=0 failed=0
for program in build-san/tests/test_*; do
  [[ -x $program && $program != *.* ]] || continue  # not the test lists that ctest reads
  echo "+ $(basename "$program")"
  judged=$((judged + 1))
  /usr/bin/python3 tools/judge-test-program.py "$program" --gtest_brief=1 || failed=1
done
[ "$judged" != 0 ] || { echo "no test program in build-san/tests" >&2; exit 1; }
[ "$failed" = 0 ] || { echo "a test program did not pass: its verdict is above" >&2; exit 1; }
# A slice of the random sessions (tools/session-stress.py; 10^4 of them for a full stress) and quick Start /
# Initialization cycles, each session judged by its end.
/usr/bin/python3 tools/session-stress.py build-san/vantrel-session --sessions "${STRESS_SESSIONS:-100}"
/usr/bin/python3 tools/session-stress.py build-san/vantrel-session --start-init 300

# Each target starts from a copy of its seed corpus, so that what it finds stays out of the source tree.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for target in scanner:text datafile:text paramfile:paramfile; do
  name=${target%%:*} corpus=${target#*:}
  mkdir -p "$work/$name"
  cp fuzz/corpus/"$corpus"/* "$work/$name/"
  echo "+ fuzz_$name for $seconds s"
  build-san/fuzz/fuzz_"$name" -max_total_time="$seconds" -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$work/" "$work/$name"
done
