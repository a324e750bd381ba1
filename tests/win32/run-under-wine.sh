#!/usr/bin/env bash
# Runs a Windows program of this build under Wine, in the build's private
# prefix ($WINEPREFIX), on a private Xvfb display, and passes on its exit code.
#   run-under-wine.sh --init        makes the prefix
#   run-under-wine.sh PROGRAM ARGS  runs the program
# Without Wine or Xvfb the test is skipped (exit 77), except under CI=true,
# where a missing tool fails the run.
set -u
: "${WINEPREFIX:?WINEPREFIX must name the private prefix of the build}"
export WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="

missing=""
for tool in wine wineserver xvfb-run xauth; do
  command -v "$tool" >/dev/null 2>&1 || missing="$missing $tool"
done
if [ -n "$missing" ]; then
  if [ "${CI:-}" = "true" ]; then
    echo "run-under-wine: missing:$missing (run tools/setup-debian.sh)" >&2
    exit 1
  fi
  echo "run-under-wine: skipped, missing:$missing" >&2
  exit 77
fi

inner='
  if [ "$1" = "--init" ]; then wineboot --init >/dev/null 2>&1; rc=$?
  else wine "$@"; rc=$?; fi
  wineserver -w
  exit $rc'
exec xvfb-run --auto-servernum --server-args="-screen 0 1280x1024x24" sh -c "$inner" sh "$@"
