#!/usr/bin/env bash
# The Debian package as a user meets it. Builds the .deb in the build folder, installs it with apt-get, checks
# its desktop entry and icon, runs the installed vantrel-session as an ordinary user on a session that trains
# with Save Training Results and verifies, and finds both files in that user's ~/.local/share/vantrel with the
# rows expected. Then installs the Python package with pip into a fresh virtual environment on the system's
# numpy and scikit-learn and runs the package's tests against that copy, and against the .deb's copy. Last it
# removes the package with apt-get remove --purge and checks that no file of it is left. Any failure fails.
#
#   bash tools/package-check.sh [BUILD_DIR]      (build unless told)
#
# Runs as root, as CI does: it installs a package and adds a user (vantrel-check), and takes both away again.
# Needs what `bash tools/install-deps.sh --tests` installs.
set -euo pipefail
cd "$(dirname "$0")/.."
if [ "$(id -u)" -ne 0 ]; then
  echo "package-check.sh installs a package and adds a user: run it as root" >&2
  exit 1
fi
checkout=$PWD
build=${1:-build}
user=vantrel-check
samples=/usr/share/vantrel/data
export DEBIAN_FRONTEND=noninteractive
work=$(mktemp -d)
started=$SECONDS

fail() {
  echo "package-check: $*" >&2
  exit 1
}
purge() {
  if dpkg -s vantrel >/dev/null 2>&1; then apt-get remove --purge -y -qq vantrel >/dev/null; fi
}
remove_user() {
  if id "$user" >/dev/null 2>&1; then userdel --remove "$user" 2>/dev/null || true; fi
}
# A check that fails half-way leaves neither the package nor the user behind.
trap 'purge; remove_user; rm -rf "$work"' EXIT

echo "+ package"
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$build" -j2
rm -f "$build"/vantrel_*.deb
(cd "$build" && cpack -G DEB >/dev/null)
deb=$(realpath "$build"/vantrel_*.deb)
echo "$(basename "$deb"): $(stat -c %s "$deb") bytes"
echo "Depends: $(dpkg-deb -f "$deb" Depends)"

echo "+ install"
purge
apt-get install -y -qq "$deb" >/dev/null
dpkg -L vantrel >"$work/files"
desktop-file-validate /usr/share/applications/vantrel.desktop
icon=$(sed -n 's/^Icon=//p' /usr/share/applications/vantrel.desktop)
[ -n "$(find /usr/share/icons/hicolor -path "*/apps/$icon.png")" ] || fail "no icon $icon in the hicolor theme"
command -v vantrel >/dev/null || fail "vantrel is not on the PATH"

echo "+ a session as an ordinary user"
remove_user
useradd --create-home --shell /bin/bash "$user"
home=$(getent passwd "$user" | cut -d: -f6)
chmod 755 "$work"
mkdir -m 700 "$work/runtime"
chown "$user:" "$work/runtime"
# Two trials of the Second Order Gradient Method from the sample network, saved; then Verification on the
# training patterns.
cat >"$work/save.session" <<EOF
file $samples/sin1d.txt
dialog 129 click 1044 ok
click 1009
click 1055
select 1014 0
set 1019 5
set 1047 2
file $samples/sin1d_3units.ini
dialog 130 click 1070 ok
click 1064
click 1010
wait 120
click 1038
EOF
chmod 644 "$work/save.session"
runuser -u "$user" -- env -i HOME="$home" PATH=/usr/bin:/bin LANG=C.UTF-8 XDG_RUNTIME_DIR="$work/runtime" \
  vantrel-session "$work/save.session" | tee "$work/transcript"
folder=$home/.local/share/vantrel
[ -d "$folder" ] || fail "no folder $folder"
[ "$(stat -c %U "$folder")" = "$user" ] || fail "$folder is not the user's"
shopt -s nullglob
results=("$folder"/*_result.txt)
stamped=("$folder"/*_output.txt)
shopt -u nullglob
[ ${#results[@]} -eq 1 ] || fail "${#results[@]} result files in $folder, not 1"
[ ${#stamped[@]} -eq 1 ] || fail "${#stamped[@]} stamped output files in $folder, not 1"
blocks=$(grep -c $'^Training Results\r$' "${results[0]}" || true)
[ "$blocks" -eq 2 ] || fail "${results[0]} has $blocks blocks, not one per trial (2)"
patterns=$(grep -c . "$samples/sin1d.txt")
rows=$(grep -c $'\t\r$' "$folder/output.txt" || true)
[ "$rows" -eq "$patterns" ] || fail "output.txt has $rows rows, not one per pattern ($patterns)"
cmp -s "${stamped[0]}" "$folder/output.txt" || fail "the stamped output file differs from output.txt"
grep -qxF "opened ${stamped[0]}" "$work/transcript" || fail "the session did not open ${stamped[0]}"
echo "$folder: $(basename "${results[0]}") ($blocks blocks), $(basename "${stamped[0]}") and output.txt ($rows rows)"

echo "+ the Python package with pip, and its tests against the installed copies"
/usr/bin/python3 -m venv --system-site-packages "$work/env"
"$work/env/bin/pip" install -q --no-build-isolation --no-index "$checkout"
# From a folder apart from the checkout, so that nothing but the installed package is imported.
run_tests() {
  local python=$1 expected=$2
  (
    cd "$work"
    export VANTREL_SOURCE_DIR="$checkout" VANTREL_SESSION=/usr/bin/vantrel-session QT_QPA_PLATFORM=offscreen \
      MPLBACKEND=Agg PYTHONDONTWRITEBYTECODE=1
    "$python" -c "import vantrel; assert vantrel.__file__.startswith('$expected'), vantrel.__file__"
    "$python" -m pytest -q -p no:cacheprovider "$checkout/tests/python"
  )
}
run_tests "$work/env/bin/python" "$work/env/"
run_tests /usr/bin/python3 /usr/lib/python3/dist-packages/

echo "+ remove"
apt-get remove --purge -y -qq vantrel >/dev/null
left=()
while read -r path; do
  [ "$path" = "/." ] && continue
  [ -e "$path" ] || [ -L "$path" ] || continue
  # A folder that stays is one that other packages share (/usr/bin, the icon theme's folders).
  if [ -d "$path" ] && [ ! -L "$path" ] && dpkg -S "$path" >/dev/null 2>&1; then continue; fi
  left+=("$path")
done <"$work/files"
[ ${#left[@]} -eq 0 ] || fail "left behind after the purge: ${left[*]}"
echo "package-check: $(grep -vc '^/\.$' "$work/files") paths installed, none left; $((SECONDS - started)) s"
