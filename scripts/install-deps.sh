#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the station need.
# Does nothing when they are all there; needs root (or sudo) otherwise.
set -euo pipefail

PACKAGES=(
  build-essential cmake pkg-config python3
  qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite libqt6sql6-odbc
  qt6-multimedia-dev qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools
  qt6-image-formats-plugins
  zlib1g-dev libgtest-dev libsqlite3-dev
  fonts-wqy-microhei
  unixodbc-dev tdsodbc unixodbc libsqliteodbc
  espeak-ng sox
  clang libclang-rt-14-dev
  gstreamer1.0-plugins-base gstreamer1.0-plugins-good
)

missing=()
for p in "${PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "Installing missing packages: ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  if command -v sudo >/dev/null 2>&1; then
    SUDO="sudo"
  else
    echo "Missing packages and not root: ${missing[*]}" >&2
    exit 1
  fi
fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
