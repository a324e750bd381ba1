// Pictures read through Windows Imaging Component: the formats of phones and
// cameras that the program's own readers do not know, as far as this
// Windows has codecs for them. TIFF always; HEIC, HEIF, AVIF and WebP where
// Microsoft's extensions for them are installed; camera raw files on
// Windows 10 and later.
#pragma once
#include <cstdint>

#include "pictures/decoded_pixels.h"

// The first frame of the file at `path` (a name in the ANSI code page), as
// straight RGBA with its embedded colour profile and the orientation its
// metadata gives (the pixels as stored, not turned). Nothing is decoded when
// width x height exceeds `maxPixels` (kTooLarge with filePixels). Other
// errors: kUnreadableFile (missing, a folder, or cannot be opened),
// kNotAPicture (no codec of this Windows takes the bytes), kUnsupported (a
// TIFF, WebP or HEIF-family file whose codec or variant this Windows lacks,
// or no Windows Imaging Component at all), kDamaged, kOutOfMemory.
DecodedPixels DecodeWithWic(const char* path, uint64_t maxPixels);
