// Photograph-like JPEG files of any size for benchmarks and tests, written
// by libjpeg a row at a time (no picture of that size is ever held): smooth
// gradients under fine noise with sharp-edged bands, as a camera's files
// are, so they compress and decode like real ones.
#pragma once
#include <string>

struct PhotoJpeg {
  int width = 4000;
  int height = 3000;
  int quality = 92;
  bool progressive = false;
  bool fullChroma = false;  // 4:4:4 instead of the cameras' 4:2:0
};

bool WritePhotoJpeg(const std::string& path, const PhotoJpeg& photo);
