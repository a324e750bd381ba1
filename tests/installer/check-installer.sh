#!/usr/bin/env bash
# The Windows packages of tools/package.sh, built from this build.
#   check-installer.sh packages  both architectures' files, as msiinfo and the zip show them
#   check-installer.sh install   the x86_64 package's life under Wine, in a fresh prefix
# Environment: BUILD_DIR (the native build), WORK_DIR. Skipped without the
# tools, failed under CI=true.
set -u -o pipefail
export LC_ALL=C
mode=${1:?packages or install}
root=$(cd "$(dirname "$0")/../.." && pwd)
fail() { echo "check-installer: FAILED: $1" >&2; exit 1; }
tools="wixl msiinfo msiextract zip"
[ "$mode" = install ] && tools="$tools wine xvfb-run xauth"
for tool in $tools; do
  command -v $tool >/dev/null && continue
  [ "${CI:-}" = true ] && fail "missing $tool"
  echo "check-installer: skipped, missing $tool (run tools/setup-debian.sh)" >&2 && exit 77
done
version=$(sed -n 's/^project(Quernal VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
package() { bash "$root/tools/package.sh" --no-build --build "$BUILD_DIR" --out "$WORK_DIR/$1" "${@:2}" >/dev/null || fail "package.sh $*"; }
# The manual is everything in res/html, its pictures included.
shipped="$(printf '%s\n' General.CDF QUERNL.CCL Quernal.exe Sample.CLN THEME_Ink.dll THEME_Standard.dll \
  $(cd "$root/res/html" && ls | sed 's|^|html/|') | sort | tr '\n' ' ')"

if [ "$mode" = packages ]; then
  package packages
  for case in "x86_64 x64 8664" "i686 Intel 014c"; do
    read -r arch template machine <<<"$case"
    msi=$WORK_DIR/packages/Quernal-$version-$arch
    msiinfo suminfo "$msi.msi" | grep -qx "Template: $template;1033" || fail "$arch: not a $template package"
    rm -rf "$msi" && msiextract -C "$msi" "$msi.msi" >/dev/null || fail "$arch: msiextract"
    [ "$(cd "$(dirname "$(find "$msi" -name Quernal.exe)")" && find . -type f | cut -c3- | sort | tr '\n' ' ')" = "$shipped" ] ||
      fail "$arch: the package holds other files"
    [ "$(zip -sf "$msi.zip" | grep -o 'Quernal/.*[^/]$' | cut -c9- | sort | tr '\n' ' ')" = "$shipped" ] ||
      fail "$arch: the zip holds other files"
    # The PE header's machine: the program of this architecture.
    exe=$(find "$msi" -name Quernal.exe)
    pe=$(od -An -tu4 -j60 -N4 "$exe")
    [ "$(od -An -tx2 -j$((pe + 4)) -N2 "$exe" | tr -d ' ')" = "$machine" ] ||
      fail "$arch: Quernal.exe is not built for $arch"
    # Its characteristics: large address aware (0x20), so that the 32-bit
    # program has 4 GB for its photographs on 64-bit Windows.
    (( 0x$(od -An -tx2 -j$((pe + 22)) -N2 "$exe" | tr -d ' ') & 0x20 )) ||
      fail "$arch: Quernal.exe is not large address aware"
  done
  exit 0
fi

# One virtual display and one prefix for the whole story; no Gecko or Mono
# prompts, and no menu entries or file types on the host.
[ -n "${ON_XVFB:-}" ] || ON_XVFB=1 exec xvfb-run -a -s "-screen 0 1280x1024x24" "$0" "$@"
export WINEPREFIX=$WORK_DIR/prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
trap 'wineserver -k 2>/dev/null' EXIT
rm -rf "$WINEPREFIX"
later=$(echo "$version" | awk -F. '{ print $1 "." $2 "." $3 + 1 }')
package install x86_64 && package rebuilt x86_64 && package upgrade x86_64 --version "$later"
wineboot --init >/dev/null 2>&1 || fail "wineboot"
msi() { echo "Z:$WORK_DIR/$1/Quernal-${2:-$version}-x86_64.msi"; }
msiexec() { wine msiexec "$@" /qn >/dev/null 2>&1; }
# The list of programs: "version publisher" of each entry named Quernal.
entries() {
  wine reg query 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall' /s | tr -d '\r' |
    awk '/^HKEY/ { n = "" } $1 == "DisplayName" { n = $3 } $1 == "DisplayVersion" { v = $3 }
         $1 == "Publisher" && n == "Quernal" { print v, $3 }'
}
dir="$WINEPREFIX/drive_c/Program Files/Quernal" user="$WINEPREFIX/drive_c/users/$(id -un)"
calendar="C:\\users\\$(id -un)\\My Calendars\\my cal.CLN"
open() { out=$(wine "$BUILD_DIR/windows-x86_64/bin/quernal_shell_open.exe" "$@" | tr -d '\r') || fail "opening $1: $out"; echo "$out"; }

msiexec /i "$(msi install)" || fail "msiexec /i"
[ "$(entries)" = "$version Quernal" ] || fail "the list of programs holds: $(entries)"
# Started from the Start menu: the installed program, which saves a calendar
# in a folder with a space and, on exit, its settings.
shortcut=$(cd "$WINEPREFIX/drive_c" && find . -name Quernal.lnk | cut -c2- | tr / '\\')
mkdir -p "$user/My Calendars"
open "C:$shortcut" "$calendar"
grep -qx 'program: C:\\Program Files\\Quernal\\Quernal.exe' <<<"$out" || fail "not the installed program"
grep -q '^ApplicationPath = C:\\Program Files\\Quernal\\' "$user/AppData/Roaming/Tarnwick/QUERNL.INI" || fail "no settings"
# The sample calendar's shortcut opens it from Program Files, spaces and all.
open --title Sample.CLN "C:${shortcut%Quernal.lnk}Quernal Sample Calendar.lnk"
grep -q '^title: Quernal \[ Sample.CLN' <<<"$out" || fail "the sample calendar did not open: $out"
# A double click on the calendar opens it: the path, spaces and all.
open "$calendar"
grep -q '^title: Quernal \[ my cal.CLN' <<<"$out" && ! grep -v 'default printer' <<<"$out" | grep -q '^message' ||
  fail "the calendar did not open"

# The user's events: General.CDF saved as the events dialog saves it, and a list of their own.
mv "$dir/General.CDF" "$dir/General.BAK" && echo "Jan01 At home" >"$dir/General.CDF" && echo "Mar03 Ann" >"$dir/Ann.CDF"
# Again, a rebuild, an upgrade: one entry, the edits kept; the older one is refused.
for step in "install $version" "rebuilt $version" "upgrade $later"; do
  msiexec /i "$(msi $step)" || fail "msiexec /i $step"
  [ "$(entries)" = "${step#* } Quernal" ] || fail "after $step, the list of programs holds: $(entries)"
done
msiexec /i "$(msi install)" && fail "the older package went over the newer one"
grep -q "At home" "$dir/General.CDF" || fail "the edited events list was replaced"

# Removed: the program, shortcut and file type go; all the user made or edited stays.
msiexec /x "$(msi upgrade "$later")" || fail "msiexec /x"
[ -z "$(entries)" ] || fail "still in the list of programs"
wine reg query 'HKCR\.CLN' >/dev/null 2>&1 && fail "the file type is still there"
for f in Quernal.exe THEME_Standard.dll THEME_Ink.dll Sample.CLN html "../../${shortcut//\\//}"; do
  [ ! -e "$dir/$f" ] || fail "$f is still there"
done
for f in "$user/My Calendars/my cal.CLN" "$user/AppData/Roaming/Tarnwick/QUERNL.INI" "$dir/General.BAK" "$dir/Ann.CDF" "$dir/QUERNL.CCL"; do
  [ -f "$f" ] || fail "$f was removed"
done
grep -q "At home" "$dir/General.CDF" || fail "the edited events list was removed"
echo "check-installer: installed, started, a calendar opened by its type, upgraded, removed"
