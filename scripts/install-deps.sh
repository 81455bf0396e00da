#!/usr/bin/env bash
# Installs the Debian packages Sondar builds, runs and tests with; asks apt only for what is missing.
set -euo pipefail

packages=(
  build-essential cmake pkg-config
  qt6-base-dev qt6-base-dev-tools libqt6opengl6-dev qt6-charts-dev qt6-svg-dev libqt6svg6 qt6-qpa-plugins
  libgl-dev libsqlite3-dev libgtest-dev googletest
  iproute2 nftables procps iputils-ping traceroute mtr-tiny
  xvfb xauth x11-utils tint2 xdotool imagemagick
  iso-codes fonts-dejavu-core libcap2-bin
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
