#!/usr/bin/env bash
# Installs every Debian package Quernal builds, tests and runs with.
# Idempotent: when everything is already there it does nothing, otherwise it
# runs apt-get update once and installs what is missing.
set -euo pipefail

packages=(
  # build
  cmake ninja-build g++ make pkg-config
  g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix binutils-mingw-w64
  # deflate/inflate of pictures
  zlib1g-dev libz-mingw-w64-dev
  # picture decoding, native rendering, fonts that match "ARIAL"
  libstb-dev libcairo2-dev libpango1.0-dev fonts-liberation
  # tests: GoogleTest (native package and the sources for the cross builds),
  # libFuzzer with the sanitizers
  googletest libgtest-dev clang libclang-rt-14-dev
  # running the Windows build (Wine draws the title bars' buttons with its own
  # fonts, which the manual's screenshots show)
  wine wine64 fonts-wine xvfb xauth x11-utils
  # real printing in tests, screenshots
  cups cups-client printer-driver-cups-pdf poppler-utils imagemagick
  # the command line: holidays from iCalendar files, day and month names of
  # other languages
  libical-dev locales-all
  # the Windows Installer package (wixl builds it, msiinfo reads it) and the
  # portable zip
  msitools wixl zip unzip
  # the Linux menu entry, double-clickable calendars and the manual page
  desktop-file-utils xdg-utils shared-mime-info man-db
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

if [ "$(id -u)" -ne 0 ]; then
  echo "setup: these packages are missing and installing them needs root: ${missing[*]}" >&2
  exit 1
fi

echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
