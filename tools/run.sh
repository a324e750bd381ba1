#!/usr/bin/env bash
# Installs what is missing, builds Quernal.exe and starts it under Wine.
# The program is installed into a Wine prefix of its own (build/run-prefix)
# as an installer would: its folder under Program Files with the events list,
# the colour table, the themes and the manual, and the (empty) configuration
# folder that QUERNL.INI is written to. With no display it runs on a virtual
# one, with a private PDF printer, and keeps a screenshot of the main window.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/setup-debian.sh
bash tools/build.sh --target windows-x86_64 --target sample-calendar

export WINEPREFIX="$PWD/build/run-prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
bin=build/windows-x86_64/bin
if [ ! -f "$WINEPREFIX/system.reg" ]; then
  echo "run: making the Wine prefix $WINEPREFIX (once)"
  xvfb-run -a wineboot --init >/dev/null 2>&1 || true
  wineserver -w || true
fi
program_dir="$WINEPREFIX/drive_c/Program Files/Quernal"
mkdir -p "$program_dir/html" "$WINEPREFIX/drive_c/users/$(id -un)/AppData/Roaming/Tarnwick"
cp "$bin/Quernal.exe" "$bin/General.CDF" "$bin/QUERNL.CCL" "$program_dir/"
cp "$bin/THEME_Standard.dll" "$bin/THEME_Ink.dll" "$program_dir/"
cp "$bin/html/"* "$program_dir/html/"   # the manual and its pictures
cp build/bin/Sample.CLN "$program_dir/"   # the finished calendar a new user can open first
program='C:\Program Files\Quernal\Quernal.exe'

if [ -n "${DISPLAY:-}" ] && xdpyinfo >/dev/null 2>&1; then
  echo "run: starting Quernal on $DISPLAY"
  cd "$program_dir"   # as its shortcut would start it
  exec wine "$program" "$@"
fi

shot="$PWD/build/quernal-screenshot.png"
echo "run: no display, so Quernal runs on a virtual one (Xvfb) for 20 seconds"
# A printer that writes PDFs (build/run-cups/pdf), so the program has one.
cups="$PWD/build/run-cups"
if bash tests/print/cups-pdf-queue.sh start "$cups" >/dev/null 2>&1; then
  export CUPS_SERVER="$cups/cups.sock"
  trap 'bash tests/print/cups-pdf-queue.sh stop "$cups" >/dev/null 2>&1' EXIT
fi
xvfb-run -a -s "-screen 0 1280x1024x24" sh -c '
  cd "$(dirname "$3")" && wine "$1" &
  sleep 20      # start-up, and the start-up screen goes after LogoDelay
  import -window root "$2"
  wineserver -k' sh "$program" "$shot" "$program_dir/Quernal.exe"
echo "run: screenshot of the main window: $shot"
