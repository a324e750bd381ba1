#!/usr/bin/env bash
# tools/install-linux.sh in a throwaway HOME: the menu entry validates, the
# calendar type and the manual page are found, the launcher opens a calendar
# given as a Linux path with a space, and --uninstall leaves the HOME as it
# was apart from the user's files. Environment: BUILD_DIR, WORK_DIR.
set -u -o pipefail
export LC_ALL=C
root=$(cd "$(dirname "$0")/../.." && pwd)
fail() { echo "check-linux-install: FAILED: $1" >&2; exit 1; }
for tool in wine xvfb-run desktop-file-validate update-mime-database xdg-mime man convert; do
  command -v $tool >/dev/null && continue
  [ "${CI:-}" = true ] && fail "missing $tool"
  echo "check-linux-install: skipped, missing $tool (run tools/setup-debian.sh)" >&2 && exit 77
done
[ -n "${ON_XVFB:-}" ] || ON_XVFB=1 exec xvfb-run -a -s "-screen 0 1280x1024x24" "$0" "$@"
export HOME=$WORK_DIR/home XDG_DATA_HOME= XDG_CONFIG_HOME= QUERNAL_PREBUILT=1 QUERNAL_BUILD_DIR=$BUILD_DIR
rm -rf "$WORK_DIR" && mkdir -p "$HOME/My Calendars"
cp "$BUILD_DIR/bin/Sample.CLN" "$HOME/My Calendars/my cal.CLN"
snapshot() { (cd "$HOME" && find . | sort); }
before=$(snapshot)
prefix=$HOME/.local/share/quernal/prefix
trap 'WINEPREFIX=$prefix wineserver -k 2>/dev/null' EXIT

bash "$root/tools/install-linux.sh" >/dev/null 2>&1 || fail "install"
desktop-file-validate "$HOME/.local/share/applications/quernal.desktop" || fail "the menu entry does not validate"
[ "$(xdg-mime query default application/x-quernal-calendar)" = quernal.desktop ] || fail "calendars open elsewhere"
grep -qx 'application/x-quernal-calendar:\*.cln' "$HOME/.local/share/mime/globs" || fail "no file type for *.CLN"
PATH=$HOME/.local/bin:$PATH man -w quernal-cli >/dev/null || fail "no manual page"
PATH=$HOME/.local/bin:$PATH quernal-cli --version | grep -q '^quernal-cli ' || fail "no quernal-cli"

# A calendar by its Linux path from its folder, as a file manager starts it;
# the shell helper sees it open, then closes the program as a user does.
(cd "$HOME/My Calendars" && "$HOME/.local/bin/quernal" "my cal.CLN" >/dev/null 2>&1 &)
out=$(WINEPREFIX=$prefix WINEDEBUG=-all wine "$BUILD_DIR/windows-x86_64/bin/quernal_shell_open.exe" --running "my cal.CLN" |
      tr -d '\r') || fail "the calendar did not open: $out"
grep -q '^title: Quernal \[ my cal.CLN' <<<"$out" || fail "the calendar did not open: $out"
WINEPREFIX=$prefix wineserver -w
settings=$(cd "$HOME" && find . -name QUERNL.INI)
[ -n "$settings" ] || fail "the program wrote no settings"

bash "$root/tools/install-linux.sh" --uninstall >/dev/null 2>&1 || fail "uninstall"
# What is left: the HOME as before, the calendar, and the settings with the folders that hold them.
expected=$( (echo "$before"; d=$settings; while [ "$d" != . ]; do echo "$d"; d=$(dirname "$d"); done) | sort -u)
diff <(echo "$expected") <(snapshot) >&2 || fail "the HOME is not as it was"
echo "check-linux-install: installed, a calendar opened by its Linux path, removed keeping the user's files"
