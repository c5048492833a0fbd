#!/usr/bin/env bash
# Installs the Debian packages the project needs. Idempotent and non-interactive:
# packages already installed are left alone, and apt is only touched when something is missing.
#   PF_I386=1   also what the 32-bit x86 run (scripts/test-i386.sh) needs on this machine
set -euo pipefail

PACKAGES=(
  build-essential cmake ninja-build pkg-config
  qtbase5-dev qtbase5-dev-tools
  qt6-base-dev qt6-base-dev-tools libgl-dev  # the Qt 6 build: PF_QT_VERSION=6
  libboost-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  g++-multilib
  clang libclang-rt-14-dev
  libxml2-utils
  fonts-dejavu-core
  xvfb xauth poppler-utils
  xdotool  # the terminal driven with real X events under Xvfb
  ccache  # shared by the builds of every checkout
  file  # the Debian package (CPack) finds its binaries with it
)
if [ "${PF_I386:-0}" = "1" ]; then
  PACKAGES+=(debootstrap)
fi

missing=()
for p in "${PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  SUDO="sudo"
fi

echo "setup: installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
