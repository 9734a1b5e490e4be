#!/usr/bin/env bash
# Peak memory of the window in its two longest-growing cases, through the session runner and /usr/bin/time -v:
# a first-order run of ITERATIONS iterations on a tiny network (its iteration curve), and a two-input
# classification set whose inputs span 10^6 (its decision grid). Prints, per case, the peak resident set, the
# wall time and the result file's first line; exits 1 when a peak passes LIMIT_MB.
#
#   bash bench/memory-check.sh [ITERATIONS] [LIMIT_MB]     (10^8 and 300 unless told; build/ must be built)
set -euo pipefail
cd "$(dirname "$0")/.."
iterations=${1:-100000000}
limit_mb=${2:-300}
runner=$PWD/build/vantrel-session
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export QT_QPA_PLATFORM=offscreen

# Four patterns of one input; and 41 of two inputs from 0 to 10^6, in two classes about the diagonal.
printf '0 0.1\r\n1 0.8\r\n2 0.9\r\n3 0.1\r\n' > "$work/tiny.txt"
awk 'BEGIN { for (p = 0; p < 41; p++) { x = (p * 7919) % 41 * 25000; y = (p * 104729) % 41 * 25000;
             printf "%d %d %d\r\n", x, y, (x > y) ? 1 : -1 } }' > "$work/wide.txt"

cat > "$work/first_order.session" <<EOF
file tiny.txt
dialog 129 click 1044 ok
click 1009
select 1014 3
dialog 130 set 1096 1 ok
click 1064
set 1019 $iterations
set 1020 0
click 1055
click 1010
wait 86400
text 1024
EOF
cat > "$work/wide_classification.session" <<EOF
file wide.txt
dialog 129 click 1043 ok
click 1009
dialog 130 set 1096 4 ok
click 1064
set 1019 5
click 1055
click 1010
wait 3600
text 1024
EOF

failed=0
for name in first_order wide_classification; do
  mkdir "$work/$name"
  /usr/bin/time -v -o "$work/$name.time" "$runner" --dir "$work/$name" "$work/$name.session" > "$work/$name.out"
  peak_kb=$(awk -F': ' '/Maximum resident set size/ { print $2 }' "$work/$name.time")
  wall=$(awk -F': ' '/Elapsed \(wall clock\)/ { print $2 }' "$work/$name.time")
  result=$(head -n 2 "$work/$name"/*_result.txt | tail -n 1 | tr -d '\r')
  echo "$name: peak $((peak_kb / 1024)) MB, wall $wall, $(tail -n 1 "$work/$name.out"); result file: $result"
  [ "$peak_kb" -le $((limit_mb * 1024)) ] || failed=1
done
exit $failed
