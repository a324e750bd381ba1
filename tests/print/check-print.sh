#!/usr/bin/env bash
# One printing case, end to end: Quernal.exe under Wine prints a calendar
# through the private CUPS queue (cups-pdf-queue.sh) into PDFs; each printed
# page must match, among all pages of the calendar, the one that belongs
# there, as quernal-cli draws it.
#   check-print.sh CASE    all | range | double | faceup | noprinter | shape
# Environment: CUPS_DIR (the queue's folder), CUPS_SERVER, WINEPREFIX,
# RUN_UNDER_WINE, E2E_TESTS (quernal_e2e_tests.exe), QUERNAL_CLI, APP_DIR
# (the shipped data files, for the events), WORK_DIR.
set -u
case_name=${1:?case}
: "${CUPS_DIR:?}" "${CUPS_SERVER:?}" "${RUN_UNDER_WINE:?}" "${E2E_TESTS:?}" "${QUERNAL_CLI:?}" "${APP_DIR:?}" "${WORK_DIR:?}"
export PATH=$PATH:/usr/sbin

give_up() {
  if [ "${CI:-}" = "true" ]; then echo "check-print: $1" >&2; exit 1; fi
  echo "check-print: skipped, $1" >&2
  exit 77
}
fail() { echo "check-print: FAILED: $1" >&2; exit 1; }

for tool in lpstat pdfinfo pdftoppm compare convert; do
  command -v "$tool" >/dev/null 2>&1 || give_up "missing $tool (run tools/setup-debian.sh)"
done
[ -S "$CUPS_SERVER" ] && lpstat -r 2>/dev/null | grep -q "is running" || give_up "no private CUPS server at $CUPS_SERVER"

work=$WORK_DIR/$case_name
rm -rf "$work"
mkdir -p "$work"
"$QUERNAL_CLI" new --year 2027 --month 1 -o "$work/cal.CLN" >/dev/null || fail "quernal-cli new"
rm -f "$CUPS_DIR"/pdf/*.pdf

run_wine_test() {  # FILTER [VAR=VALUE...]
  local filter=$1
  shift
  env "$@" QUERNAL_PRINT_CALENDAR="$work/cal.CLN" "$RUN_UNDER_WINE" "$E2E_TESTS" --gtest_filter="$filter" \
    --gtest_also_run_disabled_tests >"$work/wine.log" 2>&1
  local rc=$?
  cat "$work/wine.log"
  [ $rc = 0 ] || fail "the program did not print as it should (exit $rc)"
  grep -q "\[  SKIPPED \]" "$work/wine.log" && fail "the case was skipped"
  return 0
}

case $case_name in
  all) run_wine_test Print.AllPages ;;
  range) run_wine_test Print.PageRange ;;
  double) run_wine_test Print.DoubleSided ;;
  faceup) run_wine_test Print.DoubleSidedFaceUp ;;
  # Wine forgets the CUPS printers when the server it asks has none.
  noprinter) run_wine_test Print.PageShapeFollowsThePrinter CUPS_SERVER="$CUPS_DIR/nothing.sock" QUERNAL_PRINT_PRINTER=none
             exit 0 ;;
  shape) run_wine_test "Print.PageShapeFollowsThePrinter:Print.PrinterSetupKeepsThePagePortrait" QUERNAL_PRINT_PRINTER=QuernalPDF
         exit 0 ;;
  letter) run_wine_test Print.ThePaperChosenInSetupIsThePaperPrinted ;;
  *) fail "unknown case $case_name" ;;
esac

# Every job has gone through ghostscript.
for _ in $(seq 240); do
  [ -z "$(lpstat -o 2>/dev/null)" ] && break
  sleep 0.5
done
[ -z "$(lpstat -o 2>/dev/null)" ] || fail "the jobs did not finish: $(lpstat -o)"

# The printed documents in the order they were printed (cups-pdf ends each
# name with its job number).
mapfile -t pdfs < <(ls "$CUPS_DIR"/pdf/*.pdf 2>/dev/null | sed 's/.*job_\([0-9]*\)\.pdf$/\1 &/' | sort -n | cut -d' ' -f2-)

# Letter chosen in printer setup: every page of the single-sided job (14)
# and of the booklet's two passes (7 sides each) is Letter, portrait.
if [ "$case_name" = letter ]; then
  [ ${#pdfs[@]} = 3 ] || fail "expected three jobs, got ${#pdfs[@]}"
  total=0
  for pdf in "${pdfs[@]}"; do
    pages=$(pdfinfo "$pdf" | sed -n 's/^Pages: *//p')
    total=$((total + pages))
    sizes=$(pdfinfo -f 1 -l "$pages" "$pdf" | sed -n 's/^Page *[0-9]* size: *\([0-9.]*\) x \([0-9.]*\).*/\1x\2/p' | sort -u)
    [ "$sizes" = 612x792 ] || fail "$pdf: pages of $sizes points, not Letter (612x792)"
  done
  [ $total = 28 ] || fail "$total pages printed, not 28"
  echo "check-print: every page of both commands printed on Letter"
  exit 0
fi

# The candidates, as quernal-cli draws them: the fourteen pages (cover,
# year, January..December) or the fourteen booklet sides (fronts of sheets
# 0..6, then the backs of sheets 0..6); as a PDF for their words and as
# small grey pictures.
w=62 h=88
which=--all
case $case_name in double | faceup) which=--booklet ;; esac
"$QUERNAL_CLI" render "$work/cal.CLN" $which --app-dir "$APP_DIR" --paper a4 --dpi 150 --format pdf -o "$work/ref.pdf" &&
  "$QUERNAL_CLI" render "$work/cal.CLN" $which --app-dir "$APP_DIR" --width 248 --height 351 --format png -o "$work/ref.png" ||
  fail "quernal-cli render"

# The words of a PDF page, one per line, each once.
words() { pdftotext -f "$2" -l "$2" "$1" - | tr -s ' \t\f' '\n\n\n' | grep -v '^$' | sort -u; }
# A page as a small blurred grey picture: what a page looks like, not its
# exact strokes, which the two renderers draw a little differently.
small() { convert "$1" -colorspace Gray -blur 0x3 -resize ${w}x${h}! "$2"; }
# How alike two pages' words are, 0..100; two pages without words are alike.
alike() {
  local common all
  common=$(comm -12 "$1" "$2" | wc -l)
  all=$(sort -u "$1" "$2" | wc -l)
  [ "$all" = 0 ] && echo 100 || echo $((100 * common / all))
}
for n in $(seq 14); do
  words "$work/ref.pdf" "$n" >"$work/ref-$n.words"
  small "$work/ref-$(printf %02d "$n").png" "$work/ref-$n.pgm"
done

# Expected: per document, the candidates (1-based) of its pages in order.
case $case_name in
  all) expected=("1 2 3 4 5 6 7 8 9 10 11 12 13 14") ;;
  # The dialog counts the months from 1 (page p is PageIndex p - 1): March, April, May.
  range) expected=("5 6 7") ;;
  double) expected=("1 2 3 4 5 6 7" "8 9 10 11 12 13 14") ;;
  faceup) expected=("1 2 3 4 5 6 7" "14 13 12 11 10 9 8") ;;
esac

[ ${#pdfs[@]} = ${#expected[@]} ] || fail "${#pdfs[@]} documents printed, ${#expected[@]} expected: ${pdfs[*]}"
status=0 checked=0
for d in "${!expected[@]}"; do
  pdf=${pdfs[$d]}
  want=(${expected[$d]})
  pages=$(pdfinfo "$pdf" | sed -n 's/^Pages: *//p')
  echo "document $((d + 1)): $(basename "$pdf"), $pages pages"
  [ "$pages" = ${#want[@]} ] || fail "document $((d + 1)) has $pages pages, not ${#want[@]}"
  pdfinfo "$pdf" | awk '/^Page size/ { exit !($3 < $5) }' || fail "document $((d + 1)) is not portrait"
  for p in "${!want[@]}"; do
    page=$(printf "%s/doc%d-%02d" "$work" "$d" $((p + 1)))
    words "$pdf" $((p + 1)) >"$page.words"
    pdftoppm -r 30 -f $((p + 1)) -l $((p + 1)) -singlefile "$pdf" "$page"
    small "$page.ppm" "$page.pgm"
    # The page's words must be those of the expected candidate and of no
    # other, and the page must look like it.
    best=0 bestScore=-1 tie=0
    for n in $(seq 14); do
      score=$(alike "$page.words" "$work/ref-$n.words")
      if [ "$score" -gt "$bestScore" ]; then best=$n bestScore=$score tie=0
      elif [ "$score" = "$bestScore" ]; then tie=1; fi
    done
    e=${want[$p]}
    rmse=$(compare -metric RMSE "$page.pgm" "$work/ref-$e.pgm" null: 2>&1 | sed 's/.*(\(.*\))/\1/')
    verdict=ok
    if [ "$best" != "$e" ] || [ $tie = 1 ] || [ "$bestScore" -lt 95 ]; then
      verdict="WRONG: its words are most like candidate $best's, expected $e"; status=1
    elif ! awk "BEGIN { exit !($rmse < 0.08) }"; then
      verdict="WRONG: it does not look like candidate $e"; status=1
    fi
    checked=$((checked + 1))
    echo "  page $((p + 1)): candidate $best (words ${bestScore}% alike, picture RMSE $rmse) $verdict"
  done
done
[ $status = 0 ] || fail "pages in the wrong order"
[ $checked -gt 0 ] || fail "no page was checked"
echo "check-print: $case_name passed"
