#!/usr/bin/env bash
# The manual (res/html) as it ships: every place the program opens it at
# exists, its links lead somewhere, its pictures are there, small, and go
# into the installer, it needs nothing from outside, and the controls it
# names are in the dialogs, and its lists of picture formats are the
# program's table of formats.
#   check-manual.sh [SOURCE_DIR]
set -u
root=${1:-$(cd "$(dirname "$0")/../.." && pwd)}
html=$root/res/html
manual=$html/manual.htm
failed=0
fail() { echo "check-manual: $1" >&2; failed=1; }

ids=$(grep -o ' id="[^"]*"' "$manual" | cut -d'"' -f2)
has_id() { grep -qx -- "$1" <<<"$ids"; }

# The anchors the program opens: its Help buttons and F1 (OpenManual), and
# the property sheets' help topics; then those the manual has always had,
# which other people's links may use.
opened=$(grep -rhoE 'OpenManual\([^,]+, *"[A-Za-z_]+"' "$root/src" | cut -d'"' -f2
         grep -rhoE 'RunSheet\(\{[^,]+, *"[^"]*", *[^,]+, *[^,]+, *"[A-Za-z_]+"' "$root/src" | cut -d'"' -f4)
[ "$(sort -u <<<"$opened" | wc -l)" -ge 6 ] || fail "found only these anchors in the program: $(echo $opened)"
for anchor in $(printf '%s\n' $opened DOCUMENTATION FILES VIEW Month Year SETUP EVENTS REPLICATE PRINTING COLORS SETTINGS | sort -u); do
  has_id "$anchor" || fail "no anchor $anchor"
done
dups=$(sort <<<"$ids" | uniq -d)
[ -z "$dups" ] || fail "anchors given twice: $(echo $dups)"

for link in $(grep -o 'href="#[^"]*"' "$manual" | cut -d'"' -f2 | cut -c2- | sort -u); do
  has_id "$link" || fail "a link to #$link, which is nowhere"
done
grep -qiE '(src|href)="(https?:|//|file:)|url\(|@import' "$manual" && fail "the manual loads something from outside"

pictures=$(grep -o '<img [^>]*src="[^"]*"' "$manual" | sed 's/.*src="//; s/"$//' | sort -u)
[ -n "$pictures" ] || fail "the manual shows no pictures"
for picture in $pictures; do
  [ -f "$html/$picture" ] || { fail "missing picture $picture"; continue; }
  size=$(stat -c %s "$html/$picture")
  [ "$size" -lt 100000 ] || fail "$picture is $size bytes, 100 KB or more"
  head -c 8 "$html/$picture" | od -An -tx1 | grep -q '89 50 4e 47 0d 0a 1a 0a' || fail "$picture is not a PNG"
done
for file in $(cd "$html" && ls); do
  [ "$file" = manual.htm ] || grep -qx -- "$file" <<<"$pictures" || fail "$file ships but the manual never shows it"
  # wixl takes no wildcards: each file of the folder is listed.
  grep -q "Source=\"Quernal/html/$file\"" "$root/installer/quernal.wxs" || fail "$file is not in installer/quernal.wxs"
done
# The controls the manual names, marked <b class="control">, are there: the
# texts of the dialog templates in res/*.rc as the dialogs show them,
# without the "&" of a shortcut key and a label's colon.
template_texts=$(awk '
  /^[A-Za-z_0-9]+[ \t]+DIALOG(EX)?[ \t]/ { dialog = 1 }
  /^BEGIN/ && dialog { inside = 1; next }
  /^END/ { inside = 0; dialog = 0 }
  inside && match($0, /"[^"]*"/) { print substr($0, RSTART + 1, RLENGTH - 2) }' "$root"/res/*.rc |
  tr -d '&' | sed 's/:$//')
controls=$(tr '\n' ' ' < "$manual" | grep -o '<b class="control">[^<]*</b>' |
  sed 's/<[^>]*>//g; s/  */ /g; s/^ //; s/ $//' | sort -u)
[ "$(grep -c . <<<"$controls")" -ge 40 ] || fail "the manual marks only these controls: $(echo $controls)"
[ "$(grep -c . <<<"$template_texts")" -ge 200 ] || fail "found only $(grep -c . <<<"$template_texts") texts in res/*.rc"
missing=""
while IFS= read -r name; do
  grep -qxF -- "$name" <<<"$template_texts" || missing="$missing \"$name\""
done <<<"$controls"
[ -z "$missing" ] || fail "the manual names controls that no dialog has:$missing"

# Each list of the formats the program opens by name, marked <span
# class="formats"> (names) or <span class="extensions"> (extensions), names
# every row of the formats table in its order, ending in "or" or "and".
table=$(grep -oE '\{"[a-z]+", "[A-Za-z]+", Read[A-Za-z]+Header' "$root/src/pictures/image_files.cpp")
names=$(cut -d'"' -f4 <<<"$table" | paste -sd, | sed 's/,/, /g')
extensions=$(cut -d'"' -f2 <<<"$table" | sed 's/^/./' | paste -sd, | sed 's/,/, /g')
[ "$(grep -c . <<<"$table")" -ge 6 ] || fail "found only these formats in src/pictures/image_files.cpp: $(echo $table)"
lists=$(tr '\n' ' ' < "$manual" | grep -oP '<span class="(formats|extensions)">.*?</span>' |
  sed -E 's/<span class="([a-z]+)">/\1 /; s/<[^>]*>//g; s/  */ /g; s/ (or|and) /, /; s/ $//')
[ "$(grep -c . <<<"$lists")" -ge 4 ] || fail "the manual marks only these lists of formats: $lists"
while read -r kind list; do
  expected=$([ "$kind" = formats ] && echo "$names" || echo "$extensions")
  [ "$list" = "$expected" ] || fail "the manual lists the formats as \"$list\", the program reads $expected"
done <<<"$lists"
exit $failed
