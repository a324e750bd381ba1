#!/usr/bin/env bash
# Installs every Debian package Quernal builds, tests and runs with, and
# fetches the sources of the two libraries the Windows builds compile
# themselves (Debian has no MinGW builds of them): libjpeg-turbo and Little
# CMS, from Debian's own source packages, into $deps (see
# cmake/ImageLibraries.cmake).
# Idempotent: when everything is already there it does nothing, otherwise it
# runs apt-get update once and installs or fetches what is missing.
set -euo pipefail

deps=/usr/local/src/quernal-deps
# Debian's source packages, each unpacked with its patches into $deps/<name>;
# a file that only a finished unpack has tells that it is there.
sources=(
  "libjpeg-turbo jpeglib.h"
  "lcms2 src/cmsxform.c"
)
# Where apt-get finds the source packages: bookworm's main, signed like the
# binary packages.
deb_src=/etc/apt/sources.list.d/quernal-sources.sources
deb_src_entry="Types: deb-src
URIs: http://deb.debian.org/debian
Suites: bookworm
Components: main
Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg"

packages=(
  # build
  cmake ninja-build g++ make pkg-config
  g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix binutils-mingw-w64
  # deflate/inflate of pictures
  zlib1g-dev libz-mingw-w64-dev
  # picture decoding, native rendering, fonts that match "ARIAL"
  libstb-dev libcairo2-dev libpango1.0-dev fonts-liberation
  # JPEG decoding and encoding (libjpeg-turbo)
  libjpeg62-turbo-dev
  # colour profiles of photographs to sRGB (Little CMS)
  liblcms2-dev
  # HEIC, HEIF and AVIF photographs (command line)
  libheif-dev
  # WebP photographs, animated ones through the demuxer (command line)
  libwebp-dev
  # TIFF photographs (command line)
  libtiff-dev
  # libjpeg-turbo's SIMD code in the Windows builds, which compile it
  nasm
  # unpacking the source packages above (dpkg-source)
  dpkg-dev
  # test photographs like real ones: EXIF orientation and embedded profiles,
  # HEIC, WebP and AVIF encoders
  libimage-exiftool-perl libheif-examples webp libavif-bin
  # ICC profiles for the colour tests: sRGB, colord's Adobe RGB, and
  # Ghostscript's CMYK and grey profiles
  icc-profiles-free colord-data libgs-common
  # tests: GoogleTest (native package and the sources for the cross builds),
  # libFuzzer with the sanitizers
  googletest libgtest-dev clang libclang-rt-14-dev
  # running the Windows build (Wine draws the title bars' buttons with its own
  # fonts, which the manual's screenshots show)
  wine wine64 fonts-wine xvfb xauth x11-utils
  # real printing in tests, screenshots
  cups cups-client printer-driver-cups-pdf poppler-utils imagemagick
  # reading back the PDFs the command line writes, as a print shop's tools do
  qpdf
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

missing_sources=()
for s in "${sources[@]}"; do
  read -r name marker <<<"$s"
  [ -f "$deps/$name/$marker" ] || missing_sources+=("$name")
done
new_deb_src=
[ -f "$deb_src" ] && [ "$(cat "$deb_src")" = "$deb_src_entry" ] || new_deb_src=yes

if [ ${#missing[@]} -eq 0 ] && [ ${#missing_sources[@]} -eq 0 ]; then
  exit 0
fi

if [ "$(id -u)" -ne 0 ]; then
  needed=("${missing[@]}" "${missing_sources[@]/%/ (source)}")
  echo "setup: missing, and getting them needs root: ${needed[*]}" >&2
  exit 1
fi

export DEBIAN_FRONTEND=noninteractive
if [ ${#missing_sources[@]} -gt 0 ] && [ -n "$new_deb_src" ]; then
  echo "setup: adding bookworm's source packages to apt ($deb_src)"
  printf '%s\n' "$deb_src_entry" >"$deb_src"
fi
apt-get update -qq
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
for name in "${missing_sources[@]}"; do
  echo "setup: fetching the source package $name into $deps/$name"
  # Fetched and unpacked beside, then renamed into place, so an interrupted
  # fetch is fetched again next time.
  mkdir -p "$deps"
  work=$(mktemp -d "$deps/.fetch-$name.XXXXXX")
  # apt downloads as its own user where it can write.
  chown _apt "$work" 2>/dev/null || true
  (cd "$work" && apt-get source -qq "$name" >/dev/null) || { rm -rf "$work"; exit 1; }
  rm -rf "${deps:?}/$name"
  mv "$(find "$work" -mindepth 1 -maxdepth 1 -type d -name "$name-*")" "$deps/$name"
  rm -rf "$work"
done
