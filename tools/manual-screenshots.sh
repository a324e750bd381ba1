#!/usr/bin/env bash
# Takes the pictures of the manual (res/html/*.png) from the program itself.
# Quernal is installed into a throwaway Wine prefix, as tools/run.sh installs
# it, with a private PDF printer, and started on a virtual display (Xvfb)
# with the sample calendar; the helper quernal_manual_shots.exe opens its
# windows one by one and this script photographs each of them. The pictures
# are made small (at most 256 colours, under 100 KB) and replace those in
# res/html; look at them, then commit them.
#   tools/manual-screenshots.sh [--no-build] [--keep]
# --no-build takes the builds as they are; --keep leaves the prefix and the
# raw pictures in the work folder it names.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="$root/build"
out="$root/res/html"
no_build="" keep=""
for arg in "$@"; do
  case $arg in
    --no-build) no_build=1 ;;
    --keep) keep=1 ;;
    *) echo "usage: $0 [--no-build] [--keep]" >&2; exit 2 ;;
  esac
done

# The second half runs on the virtual display (see the end of this file).
take_pictures() {
  cd "$program_dir"
  coproc SHOTS { wine 'C:\Program Files\Quernal\quernal_manual_shots.exe' \
    'C:\Program Files\Quernal\Sample.CLN' 'C:\Photos\Harbour (256 colours).gif' 2>/dev/null; }
  local helper=$SHOTS_PID word name x y w h taken=0
  while read -r -u "${SHOTS[0]}" word name x y w h; do
    name=${name%$'\r'} h=${h%$'\r'}
    if [ "$word" = shot ]; then
      import -window root -crop "${w}x${h}+${x}+${y}" +repage "$raw/$name.png"
      echo "manual-screenshots: $name (${w}x${h})"
      taken=$((taken + 1))
      echo taken >&"${SHOTS[1]}"
    else
      echo "manual-screenshots: $word $name $x $y $w $h" >&2
    fi
  done
  wait "$helper" || echo "manual-screenshots: $? windows did not come" >&2
  wineserver -k 2>/dev/null || true
  [ "$taken" -gt 0 ]
}
if [ -n "${QUERNAL_SHOTS_ON_XVFB:-}" ]; then
  take_pictures
  exit
fi

bash "$root/tools/setup-debian.sh"
if [ -z "$no_build" ]; then
  bash "$root/tools/build.sh" --target windows-x86_64 --target sample-calendar
fi
bin="$build/windows-x86_64/bin"
(cd "$bin/../" && cmake --build . --target quernal_manual_shots -- -j2 >/dev/null) ||
  { echo "manual-screenshots: the helper does not build" >&2; exit 1; }

work=$(mktemp -d /tmp/quernal-shots.XXXXXX)
cups="$work/cups"
cleanup() {
  bash "$root/tests/print/cups-pdf-queue.sh" stop "$cups" >/dev/null 2>&1 || true
  if [ -n "$keep" ]; then echo "manual-screenshots: kept $work"; else rm -rf "$work"; fi
}
trap cleanup EXIT
export WINEPREFIX="$work/prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
echo "manual-screenshots: making a Wine prefix in $work"
xvfb-run -a wineboot --init >/dev/null 2>&1 || true
wineserver -w || true
# No window manager on the virtual display: Wine draws the title bars and
# frames itself, as Windows does.
wine reg add 'HKCU\Software\Wine\X11 Driver' /v Decorated /d N /f >/dev/null 2>&1
wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null 2>&1
cp /usr/share/wine/fonts/marlett.ttf "$WINEPREFIX/drive_c/windows/Fonts/" 2>/dev/null || true
wineserver -w || true

# Installed as the installer installs it, with the helper beside it.
program_dir="$WINEPREFIX/drive_c/Program Files/Quernal"
config="$WINEPREFIX/drive_c/users/$(id -un)/AppData/Roaming/Tarnwick"
photos="$WINEPREFIX/drive_c/Photos"
mkdir -p "$program_dir/html" "$config" "$photos"
cp "$bin/Quernal.exe" "$bin/General.CDF" "$bin/QUERNL.CCL" "$bin/THEME_Standard.dll" "$bin/THEME_Ink.dll" \
   "$bin/quernal_manual_shots.exe" "$program_dir/"
cp "$bin/html/"* "$program_dir/html/"
cp "$build/bin/Sample.CLN" "$program_dir/"
# A folder of photographs for the picture dialog, and one picture with a
# palette for the warning it brings.
convert -size 480x320 gradient:'#7fb2e5-#f4efe0' \( -size 480x120 plasma:'#3f7f3f-#9fbf5f' -seed 4 \) \
        -gravity south -composite "$photos/Meadow.jpg"
convert -size 480x320 gradient:'#f0b060-#304870' -gravity south \( -size 480x90 xc:'#203040' \) -composite \
        "$photos/Harbour.jpg"
convert "$photos/Harbour.jpg" -colors 256 "$photos/Harbour (256 colours).gif"
printf '[Quernal]\r\nShowStartupWindow = 0\r\nOpenPath = C:\\Photos\\\r\n' > "$config/QUERNL.INI"

# The printer: the double-sided question comes after the first pass.
if bash "$root/tests/print/cups-pdf-queue.sh" start "$cups" >/dev/null 2>&1; then
  export CUPS_SERVER="$cups/cups.sock"
else
  echo "manual-screenshots: no PDF printer (cups-pdf); the print pictures will be missing" >&2
fi

raw="$work/raw"
mkdir -p "$raw"
export raw program_dir QUERNAL_SHOTS_ON_XVFB=1
xvfb-run -a -s "-screen 0 1024x768x24" "$0" || { echo "manual-screenshots: no pictures taken" >&2; exit 1; }

# Small enough to ship: 256 colours at most, fewer while a picture is still
# 100 KB or more.
for picture in "$raw"/*.png; do
  name=$(basename "$picture")
  for colours in 256 128 64 32; do
    convert "$picture" -dither None -colors $colours -strip "PNG8:$out/$name"
    [ "$(stat -c %s "$out/$name")" -lt 100000 ] && break
  done
  echo "manual-screenshots: res/html/$name $(identify -format '%wx%h' "$out/$name") $(($(stat -c %s "$out/$name") / 1024)) KB"
done
