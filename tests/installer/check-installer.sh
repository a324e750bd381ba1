#!/usr/bin/env bash
# The Windows packages (tools/package.sh), built from this build and checked.
#   check-installer.sh packages  both architectures: the installer's tables,
#                                its files (the right machine's), the zip
#   check-installer.sh install   the x86_64 package under Wine, in a fresh
#                                prefix: installed, started from the Start
#                                menu, a calendar opened by its file type,
#                                installed again, upgraded, removed
# Environment: BUILD_DIR (the native build, the Windows builds inside it),
# WORK_DIR. Without the tools the test is skipped, failed under CI=true.
set -u -o pipefail
export LC_ALL=C
mode=${1:?packages or install}
: "${BUILD_DIR:?}" "${WORK_DIR:?}"
root=$(cd "$(dirname "$0")/../.." && pwd)

give_up() {
  if [ "${CI:-}" = "true" ]; then echo "check-installer: $1" >&2; exit 1; fi
  echo "check-installer: skipped, $1" >&2
  exit 77
}
fail() { echo "check-installer: FAILED: $1" >&2; exit 1; }
tools="wixl msiinfo msibuild msiextract zip unzip"
[ "$mode" = install ] && tools="$tools wine wineserver xvfb-run xauth"
for tool in $tools; do
  command -v $tool >/dev/null 2>&1 || give_up "missing $tool (run tools/setup-debian.sh)"
done
version=$(sed -n 's/^project(Quernal VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")

# What ships, as the installer's File table and a zip listing name it.
shipped="General.CDF QUERNL.CCL Quernal.exe THEME_Ink.dll THEME_Standard.dll html/manual.htm"
# The machine a PE file was built for, in hex (8664 x86_64, 14c i686).
machine() {
  local pe
  pe=$(od -An -tu4 -j60 -N4 "$1" | tr -d ' ')
  od -An -tx2 -j$((pe + 4)) -N2 "$1" | tr -d ' '
}

if [ "$mode" = packages ]; then
  rm -rf "$WORK_DIR/packages"
  bash "$root/tools/package.sh" --no-build --build "$BUILD_DIR" --out "$WORK_DIR/packages" >/dev/null ||
    fail "tools/package.sh"
  for arch in x86_64 i686; do
    msi=$WORK_DIR/packages/Quernal-$version-$arch.msi
    zip=$WORK_DIR/packages/Quernal-$version-$arch.zip
    case $arch in
      x86_64) template="x64;1033" folder=ProgramFiles64Folder pe=8664 ;;
      i686) template="Intel;1033" folder=ProgramFilesFolder pe=014c ;;
    esac
    table() { msiinfo export "$msi" "$1" | tail -n +4 | tr -d '\r'; }
    msiinfo suminfo "$msi" | grep -qx "Template: $template" || fail "$arch: not a $template package"
    table Property | grep -qx $'ProductVersion\t'"$version" || fail "$arch: not version $version"
    table Property | grep -qx $'ALLUSERS\t1' || fail "$arch: not installed for all users"
    table Directory | grep -qx $'INSTALLDIR\t'"$folder"$'\tQuernal' || fail "$arch: not into $folder"
    files=$(table File | cut -f3 | sort | tr '\n' ' ')
    [ "$files" = "General.CDF QUERNL.CCL Quernal.exe THEME_Ink.dll THEME_Standard.dll manual.htm " ] ||
      fail "$arch: the package holds $files"
    # The user's events list and colour table are permanent and never overwritten.
    for component in EventsList ColourTable; do
      attributes=$(table Component | awk -F'\t' -v c=$component '$1 == c { print $4 }')
      [ $((attributes & 0x90)) = $((0x90)) ] || fail "$arch: $component has the attributes $attributes"
    done
    table Upgrade | grep -q $'\t'"$version"$'\t\t768\t\tOLDER_QUERNAL' || fail "$arch: the same version is not replaced"

    # The files inside are this architecture's, the same in the zip.
    unpacked=$WORK_DIR/unpacked-$arch
    rm -rf "$unpacked"
    msiextract -C "$unpacked/msi" "$msi" >/dev/null || fail "$arch: msiextract"
    unzip -q "$zip" -d "$unpacked/zip" ||
      fail "$arch: the zip does not unpack"
    listing=$(cd "$unpacked/zip/Quernal" && find . -type f | sed 's|^\./||' | sort | tr '\n' ' ')
    [ "$listing" = "$shipped " ] || fail "$arch: the zip holds $listing"
    installed=$(dirname "$(find "$unpacked/msi" -name Quernal.exe)")
    for f in $shipped; do
      cmp -s "$installed/$f" "$unpacked/zip/Quernal/$f" || fail "$arch: $f differs in the zip"
    done
    for f in Quernal.exe THEME_Standard.dll THEME_Ink.dll; do
      [ "$(machine "$unpacked/zip/Quernal/$f")" = $pe ] || fail "$arch: $f is not built for $arch"
    done
  done
  echo "check-installer: both packages hold the program of their architecture, and so do the zips"
  exit 0
fi

[ "$mode" = install ] || fail "unknown mode $mode"
# The whole story runs on one virtual display, with one Wine prefix.
if [ -z "${CHECK_INSTALLER_DISPLAY:-}" ]; then
  CHECK_INSTALLER_DISPLAY=1 exec xvfb-run --auto-servernum --server-args="-screen 0 1280x1024x24" "$0" "$@"
fi
export WINEPREFIX=$WORK_DIR/prefix WINEDEBUG=-all
# No Gecko or Mono prompts, and no menu entries or file types on the host.
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
trap 'wineserver -k 2>/dev/null' EXIT
rm -rf "$WORK_DIR/prefix" "$WORK_DIR/install" "$WORK_DIR/rebuilt" "$WORK_DIR/upgrade"
# A later version of the same program to upgrade to.
later=$(echo "$version" | awk -F. '{ print $1 "." $2 "." $3 + 1 }')
bash "$root/tools/package.sh" --no-build --build "$BUILD_DIR" --out "$WORK_DIR/install" x86_64 >/dev/null &&
  bash "$root/tools/package.sh" --no-build --build "$BUILD_DIR" --out "$WORK_DIR/rebuilt" x86_64 >/dev/null &&
  bash "$root/tools/package.sh" --no-build --build "$BUILD_DIR" --out "$WORK_DIR/upgrade" --version "$later" x86_64 >/dev/null ||
  fail "tools/package.sh"
msi="Z:$WORK_DIR/install/Quernal-$version-x86_64.msi"
rebuilt="Z:$WORK_DIR/rebuilt/Quernal-$version-x86_64.msi"
upgrade="Z:$WORK_DIR/upgrade/Quernal-$later-x86_64.msi"
shell_open=$BUILD_DIR/windows-x86_64/bin/quernal_shell_open.exe
wineboot --init >/dev/null 2>&1 || fail "wineboot"

c=$WINEPREFIX/drive_c
program_dir="$c/Program Files/Quernal"
user="$c/users/$(id -un)"
ini="$user/AppData/Roaming/Tarnwick/QUERNL.INI"
calendar='C:\users\'"$(id -un)"'\My Calendars\my cal.CLN'
msiexec() {  # ARGS...: runs msiexec quietly with a log, and says how it ended
  wine msiexec "$@" /qn /l*v "Z:$WORK_DIR/msiexec.log" >/dev/null 2>&1
}
# The list of programs: a line "version|publisher" per entry named Quernal.
entries() {
  wine reg query 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall' /s 2>/dev/null | tr -d '\r' |
    awk '/^HKEY/ { if (name == "Quernal") print v "|" p; name = v = p = "" }
         $1 == "DisplayName" { name = $3 } $1 == "DisplayVersion" { v = $3 } $1 == "Publisher" { p = $3 }
         END { if (name == "Quernal") print v "|" p }'
}
registered() { wine reg query "$1" >/dev/null 2>&1; }

# Installed for the machine: the files, the shortcut, the file type, one entry.
msiexec /i "$msi" || fail "msiexec /i ended with $?"
for f in $shipped; do [ -f "$program_dir/$f" ] || fail "$f was not installed"; done
[ "$(entries)" = "$version|Quernal" ] || fail "the list of programs holds: $(entries)"
wine reg query 'HKCR\Installer\Products' /s 2>/dev/null | tr -d '\r' | grep -q 'ProductIcon.*quernal\.ico$' ||
  fail "no icon for the list of programs"
shortcut=$(cd "$c" && find . -name Quernal.lnk | head -n 1)
[ -n "$shortcut" ] || fail "no Start-menu shortcut"
shortcut='C:'$(echo "${shortcut#.}" | tr / '\\')

# Started from the Start menu: the installed program in its own folder; it
# saves a calendar (in a folder with a space) and its settings on exit.
mkdir -p "$user/My Calendars"
out=$(wine "$shell_open" --save-as "$calendar" "$shortcut" | tr -d '\r') || fail "the shortcut: $out"
echo "$out"
grep -qx 'shortcut folder: C:\\Program Files\\Quernal\\\?' <<<"$out" || fail "the shortcut starts elsewhere"
grep -qx 'program: C:\\Program Files\\Quernal\\Quernal.exe' <<<"$out" || fail "not the installed program"
grep -q "^title: Quernal \[ Untitled.CLN" <<<"$out" || fail "no Quernal title"
grep -q '^ApplicationPath = C:\\Program Files\\Quernal\\' "$ini" 2>/dev/null || fail "no settings written"

# A double click on the calendar: its path with spaces, as it stands.
out=$(wine "$shell_open" --expect "Quernal [ my cal.CLN" "$calendar" | tr -d '\r') || fail "opening my cal.CLN: $out"
echo "$out"
grep '^message' <<<"$out" | grep -qv 'default printer' && fail "a message came"

# The user's events: the list edited as the events dialog saves it (the old
# one kept as .BAK), and a list of their own.
mv "$program_dir/General.CDF" "$program_dir/General.BAK"
echo "Jan01 New year at home" >"$program_dir/General.CDF"
echo "Mar03 Grandmother" >"$program_dir/Birthdays.CDF"

# Installed again, from the same package and from a rebuild of the same
# version, then upgraded: one entry, the later version, the edits kept.
msiexec /i "$msi" || fail "installing again ended with $?"
[ "$(entries)" = "$version|Quernal" ] || fail "installed twice, the list of programs holds: $(entries)"
msiexec /i "$rebuilt" || fail "installing a rebuild ended with $?"
[ "$(entries)" = "$version|Quernal" ] || fail "after a rebuild, the list of programs holds: $(entries)"
msiexec /i "$upgrade" || fail "the upgrade ended with $?"
[ "$(entries)" = "$later|Quernal" ] || fail "upgraded, the list of programs holds: $(entries)"
grep -q "New year at home" "$program_dir/General.CDF" || fail "the upgrade replaced the edited events list"
[ -f "$program_dir/Quernal.exe" ] || fail "the upgrade removed the program"
# The older package does not go over the newer one.
msiexec /i "$msi" && fail "the older package went over the newer one"
[ "$(entries)" = "$later|Quernal" ] || fail "after the older package, the list of programs holds: $(entries)"

# Removed: the program, its shortcut and file type go; what the user made
# or edited stays (and the events list and colour table, which are theirs).
msiexec /x "$upgrade" || fail "msiexec /x ended with $?"
[ -z "$(entries)" ] || fail "still in the list of programs: $(entries)"
for f in Quernal.exe THEME_Standard.dll THEME_Ink.dll html; do
  [ ! -e "$program_dir/$f" ] || fail "$f is still there"
done
[ -z "$(cd "$c" && find . -name Quernal.lnk)" ] || fail "the shortcut is still there"
registered 'HKCR\.CLN' && fail "the file type is still registered"
registered 'HKCR\Quernal.Calendar' && fail "the file type's program is still registered"
for f in "$user/My Calendars/my cal.CLN" "$ini" "$program_dir/General.BAK" "$program_dir/Birthdays.CDF" "$program_dir/QUERNL.CCL"; do
  [ -f "$f" ] || fail "$f was removed"
done
grep -q "New year at home" "$program_dir/General.CDF" || fail "the edited events list was removed"
echo "check-installer: installed, started, opened a calendar by its type, upgraded and removed"
