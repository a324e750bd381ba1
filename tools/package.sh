#!/usr/bin/env bash
# Builds Quernal's Windows packages from the Windows builds: for each
# architecture a Windows Installer package and a portable zip,
#   build/packages/Quernal-VERSION-x86_64.msi, Quernal-VERSION-x86_64.zip,
#   build/packages/Quernal-VERSION-i686.msi,   Quernal-VERSION-i686.zip.
#   tools/package.sh [--no-build] [--build DIR] [--out DIR] [--version V] [x86_64] [i686]
# --no-build takes the Windows builds as they are; --version overrides the
# project's version (a test builds a later package to upgrade to).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=$root/build out="" version="" no_build="" arches=()
while [ $# -gt 0 ]; do
  case $1 in
    --no-build) no_build=1 ;;
    --build) build=$(cd "$2" && pwd); shift ;;
    --out) out=$2; shift ;;
    --version) version=$2; shift ;;
    x86_64 | i686) arches+=("$1") ;;
    *) echo "usage: tools/package.sh [--no-build] [--build DIR] [--out DIR] [--version V] [x86_64] [i686]" >&2; exit 2 ;;
  esac
  shift
done
[ ${#arches[@]} -gt 0 ] || arches=(x86_64 i686)
out=${out:-$build/packages}
mkdir -p "$out"
out=$(cd "$out" && pwd)
version=${version:-$(sed -n 's/^project(Quernal VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")}
[ -n "$version" ] || { echo "package: no version in CMakeLists.txt" >&2; exit 1; }
for tool in wixl msibuild zip; do
  command -v $tool >/dev/null || { echo "package: $tool is missing (run tools/setup-debian.sh)" >&2; exit 1; }
done

stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
for arch in "${arches[@]}"; do
  [ -n "$no_build" ] || bash "$root/tools/build.sh" --target "windows-$arch" --target sample-calendar
  case $arch in x86_64) msi_arch=x64 ;; i686) msi_arch=x86 ;; esac
  bin=$build/windows-$arch/bin
  name=Quernal-$version-$arch

  # What ships, laid out as it is installed; the test themes never ship.
  rm -rf "${stage:?}"/*
  mkdir -p "$stage/Quernal/html"
  cp "$bin/Quernal.exe" "$bin/THEME_Standard.dll" "$bin/THEME_Ink.dll" "$bin/General.CDF" "$bin/QUERNL.CCL" "$stage/Quernal/"
  cp "$bin/html/"* "$stage/Quernal/html/"   # the manual and its pictures
  cp "$build/bin/Sample.CLN" "$stage/Quernal/"   # drawn by the native build
  # The debugging information stays in the build.
  "$arch-w64-mingw32-strip" "$stage/Quernal/Quernal.exe" "$stage/Quernal/"*.dll
  cp "$root/res/quernal.ico" "$stage/"

  # wixl takes its sources relative to the folder it runs in.
  (cd "$stage" && wixl -a $msi_arch -D Arch=$msi_arch -D Version="$version" -o "$out/$name.msi" "$root/installer/quernal.wxs")
  # wixl knows no Permanent or NeverOverwrite, so the events list's and the
  # colour table's components get them here: 0x10 permanent, 0x80 never
  # overwritten, beside 0x100 for a 64-bit component.
  attributes=$((0x10 | 0x80))
  [ $msi_arch = x86 ] || attributes=$((attributes | 0x100))
  for component in EventsList ColourTable; do
    msibuild "$out/$name.msi" -q "UPDATE \`Component\` SET \`Attributes\` = $attributes WHERE \`Component\` = '$component'"
  done
  # A long name in the installer's tables goes with an 8.3 one; wixl writes
  # the long one alone.
  msibuild "$out/$name.msi" -q "UPDATE \`Shortcut\` SET \`Name\` = 'QSAMPLE.LNK|Quernal Sample Calendar' WHERE \`Shortcut\` = 'SampleShortcut'"
  # wixl drops IncludeMaximum: a package of the same version (a rebuild, the
  # other architecture) is to be replaced too. 0x100 | 0x200: both ends inclusive.
  # Attributes are part of the Upgrade table's key, so the table is rewritten.
  msiinfo export "$out/$name.msi" Upgrade | sed 's/\t256\t\tOLDER_QUERNAL\r*$/\t768\t\tOLDER_QUERNAL/' >"$stage/Upgrade.idt"
  msibuild "$out/$name.msi" -i "$stage/Upgrade.idt"
  msiinfo export "$out/$name.msi" Upgrade | grep -q $'\t768\t\tOLDER_QUERNAL' ||
    { echo "package: the upgrade of the same version was not set" >&2; exit 1; }

  rm -f "$out/$name.zip"
  (cd "$stage" && zip -q -r -X "$out/$name.zip" Quernal)
  echo "package: $out/$name.msi"
  echo "package: $out/$name.zip"
done
