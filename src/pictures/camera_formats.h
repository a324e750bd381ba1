// The formats phones and cameras write beside JPEG: TIFF, WebP, and the
// HEIF family (HEIC, AVIF), read through their own libraries in the native
// build. The Windows and fuzzing builds recognise them but read none.
#pragma once
#include <cstddef>
#include <cstdint>

#include "pictures/decoded_pixels.h"

// True when the bytes begin as a TIFF (II*\0 / MM\0*, or BigTIFF's II+\0 /
// MM\0+), WebP (RIFF....WEBP), or ISO-BMFF HEIF/HEIC/AVIF file (an `ftyp`
// box whose major or compatible brands include heic, heix, hevc, heim,
// heis, mif1, msf1, avif, avis).
bool LooksLikeCameraFormat(const uint8_t* data, size_t size);

// Decodes such a file from memory: the first picture of a TIFF (its
// Orientation tag reported, not applied), the first frame of a WebP (its
// EXIF orientation reported), the primary image of a HEIF file (turned and
// mirrored by the file's own transformations, so orientation 1). Nothing is
// decoded when width x height exceeds `maxPixels` (kTooLarge with
// filePixels). kUnsupported in builds without the libraries.
DecodedPixels DecodeCameraFormat(const uint8_t* data, size_t size, uint64_t maxPixels);
