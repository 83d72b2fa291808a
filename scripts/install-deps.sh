#!/usr/bin/env bash
# Installs every build and test dependency of Clipwright on Debian 12 (bookworm).
# Safe to run repeatedly: apt-get skips what is already installed.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git ccache
  qt6-base-dev qt6-base-dev-tools qt6-multimedia-dev libqt6opengl6-dev libgl-dev
  qt6-qpa-plugins qt6-svg-dev
  libxml2-dev libxxhash-dev xxhash
  libavformat-dev libavcodec-dev libswscale-dev libswresample-dev libavutil-dev
  googletest libgtest-dev libgmock-dev libbenchmark-dev strace
  xvfb xauth x11-utils imagemagick
  fonts-dejavu-core
  clang libclang-rt-14-dev clang-format-14
  desktop-file-utils appstream
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -q
$sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
