#!/usr/bin/env bash
# Installs Quernal for the current user on Linux: the Windows program in a
# Wine prefix of its own (~/.local/share/quernal), a `quernal` launcher and
# quernal-cli with its manual page in ~/.local/bin and ~/.local/share/man, a
# menu entry with the icon, and a MIME type so file managers open .CLN
# calendars in Quernal.
#   tools/install-linux.sh              build what is missing, then install
#   tools/install-linux.sh --uninstall  remove all of it; the user's calendars,
#                                       events lists and settings stay
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
data="${XDG_DATA_HOME:-$HOME/.local/share}"
bin_dir="$HOME/.local/bin"
home="$data/quernal"
prefix="$home/prefix"
program_dir="$prefix/drive_c/Program Files/Quernal"
manifest="$home/installed-files"   # what was installed, with checksums
mime_type="application/x-quernal-calendar"
# The program's folder; install() adds the manual (everything in html/).
shipped=(Quernal.exe THEME_Standard.dll THEME_Ink.dll General.CDF QUERNL.CCL Sample.CLN)
export WINEPREFIX="$prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"

refresh_desktop() {
  update-mime-database "$data/mime" >/dev/null 2>&1 || true
  update-desktop-database "$data/applications" >/dev/null 2>&1 || true
}

uninstall() {
  rm -f "$bin_dir/quernal" "$bin_dir/quernal-cli" "$data/man/man1/quernal-cli.1" \
        "$data/applications/quernal.desktop" "$data/mime/packages/quernal.xml" \
        "$data/icons/hicolor/48x48/apps/quernal.png" "$data/icons/hicolor/256x256/apps/quernal.png"
  # xdg-mime keeps the association in mimeapps.list; take out our line only.
  local list="${XDG_CONFIG_HOME:-$HOME/.config}/mimeapps.list"
  [ -f "$list" ] && sed -i "\#^$mime_type=quernal.desktop;\?\$#d" "$list"
  refresh_desktop
  if [ -d "$prefix" ]; then
    # A shipped file the user changed (an events list edited in the program)
    # is theirs now; so are new lists, backups, calendars and the settings
    # file. Everything else in the prefix is Wine's or ours.
    if [ -f "$manifest" ]; then
      while read -r sum file; do
        [ "$(sha256sum < "$program_dir/$file" 2>/dev/null | cut -d' ' -f1)" = "$sum" ] && rm -f "$program_dir/$file"
      done < "$manifest"
    fi
    find "$prefix" \( -type f -o -type l \) ! -path "$program_dir/*" ! -path "*/AppData/Roaming/Tarnwick/*" \
         ! -iname '*.CLN' -delete
    find "$prefix" -depth -type d -empty -delete
  fi
  rm -f "$manifest"
  # The databases the refresh wrote hold nothing but ours now.
  [ -z "$(ls "$data/mime/packages" 2>/dev/null)" ] && rm -rf "$data/mime"
  [ "$(ls "$data/applications" 2>/dev/null)" = "mimeinfo.cache" ] && rm -f "$data/applications/mimeinfo.cache"
  [ -f "$list" ] && ! grep -q = "$list" && rm -f "$list"
  # Folders made for us go when they are empty, up to the HOME.
  for d in "$home" "$bin_dir" "$data/man/man1" "$data/applications" "$data/mime/packages" \
           "$data/icons/hicolor/48x48/apps" "$data/icons/hicolor/256x256/apps" "$(dirname "$list")"; do
    while [ "$d" != "$HOME" ] && [ "$d" != / ] && rmdir "$d" 2>/dev/null; do d=$(dirname "$d"); done
  done
  echo "install-linux: Quernal is removed; your calendars, events lists and settings are kept"
}

install() {
  # QUERNAL_PREBUILT=1 installs the build as it stands (the tests do, from inside it).
  local build="${QUERNAL_BUILD_DIR:-$root/build}"
  if [ -z "${QUERNAL_PREBUILT:-}" ]; then
    bash "$root/tools/setup-debian.sh"
    bash "$root/tools/build.sh" --target windows-x86_64 --target sample-calendar --target quernal-cli
  fi
  local win="$build/windows-x86_64/bin"
  local manual
  for manual in "$win"/html/*; do shipped+=("html/${manual##*/}"); done
  mkdir -p "$home" "$bin_dir" "$data/man/man1" "$data/applications" "$data/mime/packages" \
           "$data/icons/hicolor/48x48/apps" "$data/icons/hicolor/256x256/apps"
  if [ ! -f "$prefix/system.reg" ]; then
    echo "install-linux: making the Wine prefix $prefix (once)"
    xvfb-run -a wineboot --init >/dev/null 2>&1 || wineboot --init >/dev/null 2>&1 || true
    wineserver -w || true
  fi
  # The program keeps its settings in its configuration folder but never makes it.
  mkdir -p "$program_dir/html" "$prefix/drive_c/users/$(id -un)/AppData/Roaming/Tarnwick"
  local previous=""
  [ -f "$manifest" ] && previous="$(cat "$manifest")"
  : > "$manifest"
  for file in "${shipped[@]}"; do
    local from="$win/$file" sum
    [ "$file" = Sample.CLN ] && from="$build/bin/Sample.CLN"
    # Installing again keeps an events list or colour table the user changed
    # (it no longer matches what was installed); it stays theirs.
    if [[ "$file" == *.CDF || "$file" == *.CCL ]] && [ -f "$program_dir/$file" ]; then
      sum="$(sha256sum < "$program_dir/$file" | cut -d' ' -f1)"
      grep -qx "$sum  $file" <<< "$previous" || continue
    fi
    cp "$from" "$program_dir/$file"
    echo "$(sha256sum < "$from" | cut -d' ' -f1)  $file" >> "$manifest"
  done

  cp "$build/bin/quernal-cli" "$bin_dir/quernal-cli"
  "$bin_dir/quernal-cli" help --man > "$data/man/man1/quernal-cli.1"
  convert "$root/res/quernal.ico[0]" -resize 48x48 "$data/icons/hicolor/48x48/apps/quernal.png"
  convert "$root/res/quernal.ico[0]" -resize 256x256 "$data/icons/hicolor/256x256/apps/quernal.png"

  # The program takes its command line as it stands, so the Windows path goes
  # to it unquoted: each blank-separated word as its own argument, which Wine
  # joins with single blanks. A path Wine would have to quote even so (runs
  # of blanks) goes by its short name.
  cat > "$bin_dir/quernal" <<LAUNCHER
#!/bin/sh
# Starts Quernal (installed by tools/install-linux.sh), opening FILE if given.
export WINEPREFIX="$prefix" WINEDEBUG=-all WINEDLLOVERRIDES="winemenubuilder.exe=d"
program='C:\\Program Files\\Quernal\\Quernal.exe'
cd "$program_dir" || exit 1
[ \$# -eq 0 ] && exec wine "\$program"
case "\$1" in /*) file="\$1" ;; *) file="\$OLDPWD/\$1" ;; esac
path=\$(winepath -w "\$file" 2>/dev/null) || exit 1
case "\$path" in *"  "*|" "*|*" ") path=\$(winepath -s "\$file" 2>/dev/null) || exit 1 ;; esac
set -f
# shellcheck disable=SC2086
exec wine "\$program" \$path
LAUNCHER
  chmod +x "$bin_dir/quernal"

  cat > "$data/applications/quernal.desktop" <<DESKTOP
[Desktop Entry]
Type=Application
Name=Quernal
GenericName=Calendar Designer
Comment=Design and print wall calendars with your pictures
Exec=$bin_dir/quernal %f
Icon=quernal
Terminal=false
Categories=Office;Calendar;
MimeType=$mime_type;
DESKTOP
  cat > "$data/mime/packages/quernal.xml" <<MIME
<?xml version="1.0" encoding="UTF-8"?>
<mime-info xmlns="http://www.freedesktop.org/standards/shared-mime-info">
  <mime-type type="$mime_type">
    <comment>Quernal calendar</comment>
    <icon name="quernal"/>
    <glob pattern="*.cln" case-sensitive="false"/>
    <magic><match type="string" offset="0" value="TRWK"/></magic>
  </mime-type>
</mime-info>
MIME
  refresh_desktop
  xdg-mime default quernal.desktop "$mime_type" 2>/dev/null || true
  echo "install-linux: Quernal is in your menu; run it as quernal [FILE.CLN], or quernal-cli (man quernal-cli)"
  case ":$PATH:" in *":$bin_dir:"*) ;; *) echo "install-linux: add $bin_dir to your PATH" ;; esac
}

case "${1:-}" in
  --uninstall) uninstall ;;
  "") install ;;
  *) echo "usage: tools/install-linux.sh [--uninstall]" >&2; exit 2 ;;
esac
