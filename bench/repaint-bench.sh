#!/usr/bin/env bash
# The page view's benchmark: quernal-repaint-bench.exe under Wine on its own
# Xvfb display, printing to the private CUPS queue, then the size each print
# job took in the spool. Arguments go to the program (--size WxH, --runs N).
# Needs the build of tools/build.sh and root for the queue.
set -euo pipefail
cd "$(dirname "$0")/.."
bash tools/build.sh >/dev/null
dir=$PWD/build/bench-cups
export WINEPREFIX=$PWD/build/wineprefix CUPS_SERVER=$dir/cups.sock PATH=$PATH:/usr/sbin
print=()
if bash tests/print/cups-pdf-queue.sh start "$dir" >/dev/null 2>&1; then
  print=(--print)
  trap 'bash tests/print/cups-pdf-queue.sh stop "$dir"' EXIT
else
  echo "no private CUPS queue: printing not measured"
fi
tests/win32/run-under-wine.sh build/windows-x86_64/bin/quernal-repaint-bench.exe "${print[@]}" "$@"
[ ${#print[@]} = 0 ] && exit 0
for _ in $(seq 600); do [ -z "$(lpstat -o 2>/dev/null)" ] && break; sleep 0.5; done
# Jobs 1 and 2: the calendar as printed, and with whole pictures.
for job in 1 2; do
  f=$(printf '%s/spool/d%05d-001' "$dir" "$job")
  [ -f "$f" ] && printf 'spool of job %d: %.1f MB\n' "$job" "$(echo "$(stat -c %s "$f") / 1000000" | bc -l)"
done
