#!/usr/bin/env bash
# Makes the photographs the import is tested with, natively and under Wine,
# and beside each the pixels ImageMagick's own profile-managed, upright
# reading gives (NAME.ppm): colourful pictures with the colour profiles
# phones, cameras and print work embed, and a picture in each of the eight
# EXIF orientations, in both byte orders.
# Usage: make-photos.sh P3-PROFILE-MAKER OUT-DIR
set -euo pipefail
maker=$1
out=$2
mkdir -p "$out"
cd "$out"
srgb=/usr/share/color/icc/sRGB.icc
"$maker" P3.icc

# Four saturated corners blended across, a white and a black patch.
colourful() {
  convert -size 300x200 xc: -sparse-color Bilinear '0,0 #FF1010 299,0 #10FF30 0,199 #2020FF 299,199 #FFE000' \
    -fill white -draw 'rectangle 0,0 60,40' -fill black -draw 'rectangle 239,159 299,199' "$@"
}

# name, how the pixels get their profile (assigned: the numbers stay, their meaning changes)
while read -r name options; do
  eval "colourful $options -quality 95 $name"
  convert "$name" -profile "$srgb" -depth 8 "${name%.*}.ppm"
  # The numbers as stored, read as sRGB: what ignoring the profile shows.
  convert "$name" +profile '*' -depth 8 "${name%.*}-as-stored.ppm"
done <<'LIST'
p3.jpg -profile P3.icc
p3-png.png -profile P3.icc
adobe.jpg -profile /usr/share/color/icc/colord/AdobeRGB1998.icc
cmyk.jpg -colorspace CMYK -profile /usr/share/color/icc/ghostscript/default_cmyk.icc
grey.jpg -colorspace Gray -profile /usr/share/color/icc/ghostscript/default_gray.icc
LIST

colourful -quality 95 plain.jpg
for order in MM II; do
  for orientation in 1 2 3 4 5 6 7 8; do
    name=$order$orientation.jpg
    cp plain.jpg "$name"
    exiftool -q -overwrite_original -ExifByteOrder=$order -Orientation#=$orientation "$name"
    convert "$name" -auto-orient -depth 8 "${name%.*}.ppm"
  done
done
touch stamp
