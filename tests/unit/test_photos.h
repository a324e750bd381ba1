// Photographs made in the tests, shaped like real ones: colourful pictures
// drawn by ImageMagick and tagged by exiftool, large JPEGs written by
// libjpeg itself, and the pixels ImageMagick's own profile-managed reading
// gives for the same files, to compare the import with. The prepared set
// (tests/photos/make-photos.sh) is read by the Windows tests too; making
// pictures in a test is for the native tests only.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "base/global_block.h"

// The folder of the prepared photographs (the environment's
// QUERNAL_TEST_PHOTOS), or "" when the test runs without them.
std::string PreparedPhotos();
// Top-down red-green-blue bytes of a picture.
struct RgbPixels {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> rgb;
};
// A binary PPM file's pixels (empty when it cannot be read).
RgbPixels ReadPpm(const std::string& path);

#ifndef _WIN32
// Runs a shell command, its output discarded; true when it exits 0.
bool Shell(const std::string& command);
// A colourful picture of w x h by ImageMagick: four saturated corners
// blended across, with a white and a black patch, as `path` in the format
// its extension names, after `options` (a profile to assign, say).
bool MakeColourfulPicture(const std::string& path, int width, int height, const std::string& options = "");
// What ImageMagick reads from `path` after `options` (-auto-orient,
// -profile sRGB.icc, -resize ...), as 8-bit RGB.
RgbPixels MagickPixels(const std::string& path, const std::string& options);
#endif
RgbPixels DibPixels(BlockHandle dib);
// The mean CIEDE2000 difference of two pictures of one size (sRGB), or a
// huge number when their sizes differ.
double MeanDeltaE(const RgbPixels& a, const RgbPixels& b);
// The mean absolute difference of their bytes, likewise.
double MeanDifference(const RgbPixels& a, const RgbPixels& b);
// The structural similarity of their luminance (1 for the same picture),
// averaged over 8 x 8 windows; 0 when their sizes differ.
double Ssim(const RgbPixels& a, const RgbPixels& b);
