#!/usr/bin/env bash
# The judge that the sanitizer steps run each test program through, held against a program that passes, one
# that fails a test, and ones that die part way or end with a bad status: only the first passes, whatever the
# exit status of the others, and each verdict says what happened.
#
#   judge_test.sh JUDGE PROGRAM
set -u
judge=$1 program=$2
failed=0
expect() {  # MODE STATUS VERDICT: the judge's exit status and a part of its verdict line
  local out status verdict
  out=$(VANTREL_END_MODE=$1 /usr/bin/python3 "$judge" "$program" 2>&1)
  status=$?
  verdict=$(printf '%s\n' "$out" | tail -n 1)
  if [ "$status" != "$2" ] || [[ "$verdict" != *"$3"* ]]; then
    echo "mode '$1': the judge gave status $status and \"$verdict\"; wanted status $2 and \"$3\""
    failed=1
  fi
}
name=$(basename "$program")
expect "" 0 "$name: all 3 tests ran and passed"
expect fail 1 "$name: 1 of 3 tests failed: Ending.Middle"
expect abort 1 "$name: died before its end (killed by SIGABRT) with 3 tests listed: it wrote no summary"
expect quiet-exit 1 "$name: died before its end (exit status 0) with 3 tests listed"
expect exit-status 1 "$name: all 3 tests passed, but it ended with exit status 66"
# What the flags leave out is not waited for.
out=$(/usr/bin/python3 "$judge" "$program" --gtest_filter=-Ending.Last 2>&1)
[[ "$(printf '%s\n' "$out" | tail -n 1)" == "$name: all 2 tests ran and passed" ]] || { echo "filtered: $out"; failed=1; }
exit $failed
