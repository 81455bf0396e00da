#!/usr/bin/env bash
# Installs the build into a temporary prefix and checks that every file lands in its XDG place.
set -euo pipefail
build=$1
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT

cmake --install "$build" --prefix "$prefix" >/dev/null
for file in bin/sondar share/sondar/country.txt share/applications/sondar.desktop \
            share/icons/hicolor/scalable/apps/sondar.svg; do
  [ -s "$prefix/$file" ] || { echo "missing after install: $file"; exit 1; }
done
grep -q '^Exec=sondar$' "$prefix/share/applications/sondar.desktop"
grep -q '^Icon=sondar$' "$prefix/share/applications/sondar.desktop"
grep -q '^DE;Germany$' "$prefix/share/sondar/country.txt"

echo "installed layout ok"
