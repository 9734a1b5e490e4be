#!/usr/bin/env bash
# Remakes the pictures of the README's tour from the real window (docs/tour.session), at the window's own
# scale. Run it from anywhere after building, whenever the window changes.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
runner="${1:-$root/build/vantrel-session}"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
QT_QPA_PLATFORM=offscreen "$runner" --dir "$work" "$root/docs/tour.session"
cp "$work"/*.png "$root/docs/pictures/"
