#!/usr/bin/env bash
# Installs the Debian packages needed to build Vantora, run its tests and make its .deb package.
set -euo pipefail

SUDO=""
if [ "$(id -u)" != "0" ]; then
  SUDO="sudo"
fi

packages=(
  cmake ninja-build g++ ccache pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-multimedia-dev qt6-svg-dev
  libgl1-mesa-dev libxkbcommon-dev
  qt6-qpa-plugins qt6-image-formats-plugins
  fonts-dejavu-core
  poppler-utils
  libreoffice-writer-nogui
  tzdata
  libglib2.0-bin gsettings-desktop-schemas
  desktop-file-utils appstream
  dpkg-dev file
  xvfb openbox xdotool x11-utils
  weston xwayland qt6-wayland
  libical-dev python3-icalendar
  dbus at-spi2-core python3-pyatspi
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ "${#missing[@]}" -gt 0 ]; then
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
