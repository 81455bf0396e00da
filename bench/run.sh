#!/usr/bin/env bash
# Runs every benchmark and prints its figures. They run inside the test lab's client namespace,
# so the ones that need the lab find it; without root they say so and measure what they can.
set -u
build=$(cd "${1:-build}" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
lab="$here/../tests/netlab/lab.sh"
export SONDAR_NETLAB_BIN="$build/tests/netlab"

echo "machine: $(uname -srm), $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2 | sed 's/^ //'), $(nproc) cores"
"$lab" up
for bench in "$build"/bench/*_bench; do
  [ -x "$bench" ] || continue
  echo
  echo "== $(basename "$bench")"
  "$lab" exec "$bench"
done
"$lab" down
